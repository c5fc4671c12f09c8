// Two pair on the flop, told apart by where the pairs lie: a pocket pair
// beside a board pair, one hole card paired beside a board pair, or both
// hole cards paired with the board.
#include "flop/flop_leaves.h"

namespace felthawk {

void FlopTwoPair(CalcState& state) {
    if (!state.IsCurrent(kTwoPair)) {
        FlopPair(state);
        return;
    }
    const int16_t hole0 = ToInt16(SlotRank(state, 0));
    const int16_t hole1 = ToInt16(SlotRank(state, 1));
    if (hole0 == hole1) {
        FlopTwoPairPocket(state, hole0);
        return;
    }
    // The two paired ranks, in slot order.
    int16_t first = 0;
    int16_t second = 0;
    for (int slot = 0; slot <= 4; ++slot) {
        const int16_t rank = ToInt16(SlotRank(state, slot));
        if (!RankAtLeast(state, rank, 0, 4, 2)) continue;
        if (first == 0) {
            first = rank;
        } else if (rank != first) {
            second = rank;
            break;
        }
    }
    auto isHole = [&](int16_t rank) { return rank == hole0 || rank == hole1; };
    auto otherHole = [&](int16_t rank) { return rank == hole0 ? hole1 : hole0; };
    if (isHole(first) && isHole(second)) {
        FlopTwoPairHole(state, first, second);
    } else if (!isHole(first)) {
        FlopTwoPairBoard(state, second, otherHole(second), first);
    } else {
        FlopTwoPairBoard(state, first, otherHole(first), second);
    }
}

void FlopTwoPairBoard(CalcState& state, int16_t holePair, int16_t kicker, int16_t boardPair) {
    static constexpr FlopSeatTable kSeats = {"two pair, board paired",
                                             {{0, 0, 0, 0, 1, 1, 3, 6},      // folded
                                              {1, 2, 3, 4, 6, 8, 10, 12}}};  // empty
    //                                   T    J    Q    K    A  below
    static constexpr RankBonus kPaired = {2.0, 2.0, 3.0, 4.5, 5.0, 0.0};

    double outs = 2.0 + kPaired.For(holePair);
    // A board pair above the user's pair gives the others the better two pair.
    if (boardPair > holePair) outs -= 1.5;
    if (kicker > 10) outs += 1.5;
    CloseFlopLeaf(state, "FlopTwoPairBoard", outs, kSeats);
}

void FlopTwoPairPocket(CalcState& state, int16_t pocket) {
    static constexpr FlopSeatTable kHighPocket = {"two pair, pocket 10 or more",
                                                  {{0, 0, 0, 0, 1, 1, 2, 4},      // folded
                                                   {1, 2, 3, 5, 7, 9, 13, 17}}};  // empty
    static constexpr FlopSeatTable kLowPocket = {"two pair, pocket below 10",
                                                 {{0, 0, 0, 0, 0, 0, 1, 3},    // folded
                                                  {0, 0, 0, 0, 1, 2, 4, 9}}};  // empty
    //                                             T    J    Q    K    A  below
    static constexpr RankBonus kPocketUnderBoard = {1.0, 2.0, 3.0, 4.0, 4.0, 0.0};

    const int slot2 = SlotRank(state, 2);
    const int boardPair = RankAtLeast(state, slot2, 2, 4, 2) ? slot2 : SlotRank(state, 3);
    double outs = 2.0;
    if (pocket > boardPair) {
        outs += pocket >= 10 ? 2.0 : 1.0;
    } else {
        outs += kPocketUnderBoard.For(pocket);
    }
    // The single board card.
    int single = 0;
    for (int slot = 2; slot <= 4; ++slot) {
        single = SlotRank(state, slot);
        if (!RankAtLeast(state, single, 2, 4, 2)) break;
    }
    if (single < pocket) {
        // The ace can't be below the pocket pair; the bonus stays as a rule.
        if (single == 14) {
            outs += 2.0;
        } else if (single < 6) {
            outs -= 0.5;
        } else {
            outs += 0.5;
        }
    }
    CloseFlopLeaf(state, "FlopTwoPairPocket", outs, pocket >= 10 ? kHighPocket : kLowPocket);
}

void FlopTwoPairHole(CalcState& state, int16_t first, int16_t second) {
    static constexpr FlopSeatTable kSeats = {"two pair, both hole cards paired",
                                             {{0, 0, 0, 0, 0, 1, 2, 5},     // folded
                                              {0, 1, 1, 2, 3, 5, 8, 13}}};  // empty
    state.trace.Note("FlopTwoPairHole: pairs of ", first, " and ", second);

    // Ranks that could pair the board into trips or fill a straight with it
    // are covered; every rank left is a safe card.
    FixedArray<bool, 0, 18> covered;
    FixedArray<bool, 0, 18> onBoard;
    for (int slot = 2; slot <= 4; ++slot) {
        covered[SlotRank(state, slot)] = true;
        onBoard[SlotRank(state, slot)] = true;
    }
    for (int rank = 2; rank <= 14; ++rank) {
        if (!onBoard[rank]) continue;
        covered[rank - 1] = true;
        covered[rank + 1] = true;
        if (rank - 3 >= 2 && onBoard[rank - 3]) {
            covered[rank - 2] = true;
            covered[rank + 1] = true;
        }
        if (rank + 3 < 15) {
            if (onBoard[rank + 1]) {
                for (int near = rank + 1; near <= rank + 4; ++near) covered[near] = true;
            }
            if (onBoard[rank + 3]) {
                covered[rank + 1] = true;
                covered[rank + 2] = true;
            }
        }
    }
    double outs = 4.0;
    for (int rank = 2; rank <= 14; ++rank) {
        if (!covered[rank]) outs += 1.0;
    }
    for (int16_t count : CountSuits(state, 2, 4)) {
        if (count == 2) outs -= 1.0;
        if (count == 3) outs -= 2.5;
    }
    CloseFlopLeaf(state, "FlopTwoPairHole", outs, kSeats);
}

}  // namespace felthawk
