// The foot of the flop cascade: one pair, and no class made at all. These
// are the only leaves that rate draws: four to a straight, four to a flush,
// and the size of the hole cards.
#include "flop/flop_leaves.h"

namespace felthawk {
namespace {

// Column: the larger of the folded and the empty count, less one.
constexpr FlopSeatTable kPairSeats = {"one pair",
                                      {{0, 0, 0, 0, 0, 0, 1, 6},    // folded
                                       {1, 2, 3, 4, 5, 6, 7, 8}}};  // empty

// The suit index with four of the five known cards, or -1.
int FourFlushSuit(const CalcState& state) {
    const FixedArray<int16_t, 0, 3> suits = CountSuits(state, 0, 4);
    for (int suit = 0; suit <= 3; ++suit) {
        if (suits[suit] == 4) return suit;
    }
    return -1;
}

// How many of the ranks first..last (those up to the ace) are held once.
int SinglesIn(const CalcState& state, int first, int last) {
    int singles = 0;
    for (int rank = first; rank <= last && rank <= 14; ++rank) {
        if (state.gRankCount[rank] == 1) ++singles;
    }
    return singles;
}

}  // namespace

void FlopPair(CalcState& state) {
    if (!state.IsCurrent(kPair)) {
        FlopNoPair(state);
        return;
    }
    if (SlotRank(state, 0) == SlotRank(state, 1)) {
        FlopPocketPair(state);
        return;
    }
    for (int slot = 2; slot <= 4; ++slot) {
        if (RankAtLeast(state, SlotRank(state, slot), 2, 4, 2)) {
            FlopBoardPair(state);
            return;
        }
    }
    FlopHolePair(state);
}

void FlopBoardPair(CalcState& state) {
    const bool flushDraw = FourFlushSuit(state) >= 0;
    bool straightDraw = false;
    for (int rank = 2; rank <= 14; ++rank) {
        if (state.gRankCount[rank] == 1 && SinglesIn(state, rank, rank + 4) == 4) {
            straightDraw = true;
        }
    }
    double outs = 1.0;
    if (flushDraw && straightDraw) {
        outs = 7.5;
    } else if (flushDraw) {
        outs = 5.0;
    } else if (straightDraw) {
        outs = 4.5;
    }
    CloseFlopLeaf(state, "FlopBoardPair", outs, kPairSeats);
}

void FlopPocketPair(CalcState& state) {
    const int pocket = SlotRank(state, 0);
    double outs = 2.0;

    // Each hole card looks at the board until two suited cards are found in
    // all, so the second hole card sees slot 2 alone when the first already
    // matched two. Three means slots 3 and 4 follow slot 0's suit and slot 2
    // follows slot 1's.
    int suited = 0;
    for (int hole = 0; hole <= 1; ++hole) {
        for (int slot = 2; slot <= 4; ++slot) {
            if (SuitBase(state.gCards[hole]) == SuitBase(state.gCards[slot])) ++suited;
            if (suited >= 2) break;
        }
    }
    if (suited == 3) {
        if (pocket == 13) outs += 6.5;
        if (pocket == 14) outs += 10.5;
    }

    // Board cards just above the pair. Three board cards can't make four;
    // that row stays as the rule.
    const int above = pocket < 11 ? SinglesIn(state, pocket, pocket + 4) : 0;
    if (above == 4) {
        outs += pocket == 10 ? 5.5 : 1.0;
    } else if (above == 3) {
        outs += state.gRankCount[pocket - 1] == 1 ? 3.0 : 2.0;
    } else if (above == 1 && pocket >= 6) {
        if (SinglesIn(state, pocket - 4, pocket) == 4) outs += 5.5;
    }

    // No draw found: the size of the pair decides.
    //                                     T    J    Q    K    A  below
    static constexpr RankBonus kPocketSize = {1.5, 2.0, 2.5, 3.0, 4.0, 1.0};
    if (outs == 2.0) outs += kPocketSize.For(pocket);
    CloseFlopLeaf(state, "FlopPocketPair", outs, kPairSeats);
}

void FlopHolePair(CalcState& state) {
    // The pair is looked up by the whole card code, which equals a rank only
    // for a club: the pair is seen through its club, or not at all (P 0).
    int pair = 0;
    CardCode club = kNoCard;
    for (int slot = 0; slot <= 4; ++slot) {
        const CardCode code = state.gCards[slot];
        if (RankAtLeast(state, code, 0, 4, 2)) {
            pair = RankOf(code);
            club = code;
            break;
        }
    }
    //                                   T    J     Q    K    A  other
    static constexpr RankBonus kPairSize = {2.5, 4.0, 4.25, 5.5, 6.0, 2.5};
    double outs = kPairSize.For(pair);

    const FixedArray<int16_t, 0, 3> boardSuits = CountSuits(state, 2, 4);
    const bool boardOneSuit = SuitBase(state.gCards[2]) == SuitBase(state.gCards[3]) &&
                              SuitBase(state.gCards[2]) == SuitBase(state.gCards[4]);
    if (boardOneSuit) {
        outs -= 1.0;
    } else {
        const CardCode kicker = SlotRank(state, 0) == pair ? state.gCards[1] : state.gCards[0];
        if (SuitBase(club) == SuitBase(kicker)) {
            // Both are clubs here, and the count is read at SuitBase 1: the
            // spades on the board.
            const int16_t count = boardSuits[SuitBase(kicker)];
            const int kickerRank = RankOf(kicker);
            //                                    T    J     Q    K    A  other
            static constexpr RankBonus kOneSuited = {2.5, 4.0, 4.75, 6.5, 7.5, 2.5};
            static constexpr RankBonus kTwoSuited = {6.0, 7.0, 7.0, 8.5, 8.5, 6.0};
            if (count == 1) outs += kOneSuited.For(kickerRank);
            if (count == 2) outs += kTwoSuited.For(kickerRank);
        }
    }
    // Slot 4 is never looked at: the test reads slot 2, slot 3 and slot 2.
    const int slot2 = SlotRank(state, 2);
    const int slot3 = SlotRank(state, 3);
    if (!(pair > slot2 || pair > slot3 || pair > slot2)) outs += 1.0;
    state.trace.Note("FlopHolePair: pair seen through its club ", pair);
    CloseFlopLeaf(state, "FlopHolePair", outs, kPairSeats);
}

void FlopNoPair(CalcState& state) {
    static constexpr FlopSeatTable kStrongDraw = {"no pair, outs 2 or more",
                                                  {{0, 0, 0, 0, 0, 0, 1, 3},          // folded
                                                   {0, 0, 0.5, 0.5, 1, 1.5, 2, 4}}};  // empty
    static constexpr FlopSeatTable kWeakDraw = {"no pair, outs below 2",
                                                {{0, 0, 0, 0, 0, 0, 0, 1.5},        // folded
                                                 {0, 0, 0.5, 0.5, 1, 1.5, 2, 4}}};  // empty
    const int hole0 = SlotRank(state, 0);
    const int hole1 = SlotRank(state, 1);
    const int hi = hole0 > hole1 ? hole0 : hole1;
    const int lo = hole0 > hole1 ? hole1 : hole0;
    double outs = 0.0;

    // Straight part: the first window of five ranks that holds four.
    int first = 0;
    int gap = 0;
    bool fourInWindow = false;
    for (int s = 2; s <= 10 && !fourInWindow; ++s) {
        first = 0;
        gap = 0;
        for (int rank = s; rank <= s + 4; ++rank) {
            if (state.gRankCount[rank] == 1) {
                if (first == 0) first = rank;
            } else {
                gap = rank;
            }
        }
        fourInWindow = SinglesIn(state, s, s + 4) == 4;
    }
    if (fourInWindow) {
        if (hi == first + 1) {
            // The high hole card second in the run: the board cards just
            // above it decide.
            int board = 0;
            for (int slot = 2; slot <= 4; ++slot) {
                const int rank = SlotRank(state, slot);
                if (rank == first + 2 || rank == first + 3) ++board;
            }
            if (board == 2) outs = first == 9 ? 6.5 : 2.5;
            if (board == 1) outs = first == 9 ? 3.2 : 0.6;
        } else {
            if (hi - lo == 1) {
                const bool openAbove = hi == first + 5 && gap == first + 1;
                const bool openBelow = gap == first - 1 && first + 5 == hi + 2;
                outs = (openAbove || openBelow) ? 6.5 : 3.0;
            }
            // Open at both ends: two windows of four, their gaps more than
            // four ranks apart. A rank past the ace counts as a gap.
            int end1 = 0;
            int end2 = 0;
            const int from = lo - 3 > 2 ? lo - 3 : 2;
            const int to = hi + 3 < 14 ? hi + 3 : 14;
            for (int a = from; a <= to; ++a) {
                if (SinglesIn(state, a, a + 4) != 4) continue;
                for (int rank = a; rank <= a + 4; ++rank) {
                    if (rank <= 14 && state.gRankCount[rank] != 0) continue;
                    if (end1 == 0) {
                        end1 = rank;
                        break;
                    }
                    if (rank > end1 + 4 && end2 == 0) end2 = rank;
                }
            }
            if (end1 != 0 && end2 != 0) outs = 5.2;
        }
        if (outs == 0.0) outs = 2.1;
    }

    // Flush part.
    const FixedArray<int16_t, 0, 3> boardSuits = CountSuits(state, 2, 4);
    bool boardTwoSuited = false;
    bool boardThreeSuited = false;
    for (int16_t count : boardSuits) {
        if (count == 2) boardTwoSuited = true;
        if (count == 3) boardThreeSuited = true;
    }
    const int flushSuit = FourFlushSuit(state);
    if (flushSuit >= 0) {
        const CardCode card0 = state.gCards[0];
        const CardCode card1 = state.gCards[1];
        if (SuitBase(card0) != SuitBase(card1)) {
            const CardCode suitedHole = SuitIndex(card0) == flushSuit ? card0 : card1;
            outs += (RankOf(suitedHole) - 4) / 2.0 + 1.0;
        } else {
            if (outs == 0.0) outs += 2.0;
            outs += hi - 4.0;
        }
        // The user's own draw: the board's suits no longer count against it.
        boardTwoSuited = false;
        boardThreeSuited = false;
    }
    if (boardThreeSuited && outs >= 4.0) {
        outs -= 4.0;
    } else if (boardTwoSuited && outs >= 1.0) {
        outs -= 1.0;
    }
    if (outs <= 0.0) outs = 0.4;
    CloseFlopLeaf(state, "FlopNoPair", outs, outs >= 2.0 ? kStrongDraw : kWeakDraw);
}

}  // namespace felthawk
