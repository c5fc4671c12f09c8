// The flop stage's entry and dispatch, the shared leaf pieces, and the three
// classes that need no table of their own: straight flush, four of a kind
// and flush.
#include "flop/flop_strength.h"

#include "flop/flop_leaves.h"

namespace felthawk {

void CalcFlopStrength(CalcState& state) {
    state.gRankCount.Erase();
    CountSeats(state, state.gFoldedCount, state.gEmptyCount);
    CountRanks(state, state.gRankCount);
    state.gStrength = 0;

    // Only the best made class is ever looked at; the rest of the cascade
    // (straight, trips, two pair, pair, nothing) chains from the gate.
    if (state.IsCurrent(kStraightFlush)) {
        FlopStraightFlush(state);
    } else if (state.IsCurrent(kFourOfAKind)) {
        FlopFourOfAKind(state);
    } else if (state.IsCurrent(kFullHouse)) {
        FlopFullHouse(state);
    } else if (state.IsCurrent(kFlush)) {
        FlopFlush(state);
    } else {
        FlopStraightGate(state);
    }
}

void CloseFlopLeaf(CalcState& state, const char* leaf, double outs, const FlopSeatTable& seats) {
    state.trace.Note(leaf, ": outs ", outs, ", seat table ", seats.name);
    StrengthFromOuts(state, outs, seats.table);
}

const FlopSeatTable& MadeHandSeats(double outs) {
    // Column: the larger of the folded and the empty count, less one.
    static constexpr FlopSeatTable kUpTo20 = {"made hand, outs up to 20",
                                              {{0, 0, 0, 0, 1, 1, 2, 4},      // folded
                                               {1, 2, 3, 4, 5, 7, 10, 14}}};  // empty
    static constexpr FlopSeatTable kAbove20 = {"made hand, outs above 20",
                                               {{0, 0, 0, 0, 1, 1, 2, 4},    // folded
                                                {1, 2, 3, 4, 5, 6, 7, 9}}};  // empty
    return outs <= 20.0 ? kUpTo20 : kAbove20;
}

std::optional<int16_t> BoardRankHeld(const CalcState& state, long minCount) {
    for (int slot = 2; slot <= 6; ++slot) {
        const int16_t rank = ToInt16(SlotRank(state, slot));
        if (RankAtLeast(state, rank, 2, 6, minCount)) return rank;
    }
    return std::nullopt;
}

FixedArray<int16_t, 0, 3> CountSuits(const CalcState& state, int first, int last) {
    FixedArray<int16_t, 0, 3> counts;
    for (int slot = first; slot <= last; ++slot) counts[SuitIndex(state.gCards[slot])] += 1;
    return counts;
}

void FlopStraightFlush(CalcState& state) {
    const StraightFlushRun run = FindStraightFlushRun(state.gRankCount);
    const int hole0 = SlotRank(state, 0);
    const int hole1 = SlotRank(state, 1);
    // A hole card at the foot of the run can still be beaten by a higher
    // straight flush. Ten to ace keeps top 0, so a hole ten reads as the foot
    // there too.
    const bool holdsTop = hole0 == run.top || hole1 == run.top;
    const bool holdsBottom = hole0 == run.bottom || hole1 == run.bottom;
    state.gStrength = (!holdsTop && holdsBottom) ? 96 : 100;
    state.trace.Note("FlopStraightFlush: bottom ", run.bottom, ", top ", run.top, ", fixed ",
                     state.gStrength);
}

void FlopFourOfAKind(CalcState& state) {
    const int pocket = SlotRank(state, 0);
    if (pocket != SlotRank(state, 1)) {
        state.gStrength = 100;
        state.trace.Note("FlopFourOfAKind: one hole card in the quads, fixed 100");
        return;
    }
    CardCode kicker = kNoCard;
    for (int slot = 2; slot <= FixedArray<CardCode, 0, 6>::kUpper; ++slot) {
        if (SlotRank(state, slot) != pocket) {
            kicker = state.gCards[slot];
            break;
        }
    }
    const int kickerRank = RankOf(kicker);
    const bool kickerSuited = SuitBase(kicker) == SuitBase(state.gCards[0]) ||
                              SuitBase(kicker) == SuitBase(state.gCards[1]);
    // A kicker close to the pair in a suit the user doesn't hold leaves room
    // for a straight flush.
    const int distance = pocket > kickerRank ? pocket - kickerRank : kickerRank - pocket;
    state.gStrength = (!kickerSuited && distance < 4) ? 99 : 100;
    state.trace.Note("FlopFourOfAKind: pocket ", pocket, ", kicker ", kickerRank, ", fixed ",
                     state.gStrength);
}

void FlopFlush(CalcState& state) {
    static constexpr FlopSeatTable kFlushSeats = {"flush",
                                                  {{0, 0, 0, 1, 2, 3, 4, 5},    // folded
                                                   {1, 2, 3, 4, 5, 6, 7, 8}}};  // empty
    // Bonus for the higher hole rank.
    //                                       T    J    Q    K    A  below
    static constexpr RankBonus kHighHoleBonus = {2.0, 4.0, 5.0, 7.0, 13.0, 0.0};

    double outs = 13.0;
    const int hole0 = SlotRank(state, 0);
    const int hole1 = SlotRank(state, 1);
    const int high = hole0 > hole1 ? hole0 : hole1;
    outs += kHighHoleBonus.For(high);

    // Windows of five ranks missing one or two cards: a straight flush the
    // others could still make. A later window only replaces an earlier one by
    // missing more.
    int best = 0;
    int start = 0;
    for (int s = 2; s <= 9; ++s) {
        int miss = 0;
        for (int rank = s; rank <= s + 4; ++rank) {
            if (state.gRankCount[rank] == 0) ++miss;
        }
        if ((miss == 1 || miss == 2) && miss > best) {
            best = miss;
            for (int rank = s; rank <= s + 4; ++rank) {
                if (state.gRankCount[rank] == 1) {
                    start = rank;
                    break;
                }
            }
        }
    }
    const bool holdsStart = hole0 == start || hole1 == start;
    if (best == 2) outs += holdsStart ? -1.0 : 1.5;
    if (best == 1) outs += holdsStart ? -0.5 : 1.0;

    // The high-card flags were meant to see every slot, but the loop reads
    // slot 0 on each pass, so at most one flag is set and the 30-outs rule
    // never fires. The flags exist for ranks 9..14 only.
    FixedArray<bool, 9, 14> highCards;
    const int slot = 0;
    for (int pass = 0; pass < 5; ++pass) {
        const int rank = SlotRank(state, slot);
        if (rank >= 9) highCards[rank] = true;
    }
    int clear = 0;
    for (bool flag : highCards) {
        if (!flag) ++clear;
    }
    if (clear == 1) outs = 30.0;

    CloseFlopLeaf(state, "FlopFlush", outs, kFlushSeats);
}

void FlopStraightGate(CalcState& state) {
    if (state.IsCurrent(kStraight)) {
        FlopStraight(state);
    } else {
        FlopThreeOfAKind(state);
    }
}

}  // namespace felthawk
