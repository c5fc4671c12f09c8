// Two pair on the turn, sorted by where the pairs lie.
#include "turn/turn_branches.h"

namespace felthawk {
namespace {

using namespace turn;

bool BoardSuitCountAtLeast(const CalcState& state, int wanted) {
    return LargestOf(BoardSuitTable(state)) >= wanted;
}

// Both pairs on the board: the hole cards only play when they reach into a
// straight with a flush draw about.
void TurnTwoPairBoard(CalcState& state) {
    double outs = 1.0;
    if (BoardSuitCountAtLeast(state, 3)) {
        const HoleRanks hole = HoleRanksOf(state);
        for (long start = 2; start <= 10; ++start) {
            const int held = CountRanksIn(start, start + 4,
                                          [&](long rank) { return state.gRankCount[rank] != 0; });
            if (held == 4 && (hole.high >= start + 3 || hole.low >= start + 3)) {
                outs += 1.0;
                break;
            }
        }
    }
    TurnStrengthFromOuts(state, "TurnTwoPairBoard", outs, UnseenRule::kLarger);
}

// A pocket pair and a pair on the board. Only a pocket pair below the board's
// higher pair gets a figure, and it plays as the low pair even when it is the
// middle one of three pairs; as the highest pair it gives 0 on purpose.
void TurnTwoPairPocket(CalcState& state, int lo, int hi) {
    const SuitTable board = BoardSuitTable(state);
    bool suitedThree = false;
    for (int16_t count : board) suitedThree = suitedThree || count == 3;
    // a and b: the two cards outside both pairs, a the lower.
    FixedArray<int16_t, 0, 1> others;
    int found = 0;
    for (int slot = 0; slot <= kLastBoardSlot && found < 2; ++slot) {
        const int rank = RankAt(state, slot);
        if (rank != lo && rank != hi) others[found++] = ToInt16(rank);
    }
    const int a = others[0] <= others[1] ? others[0] : others[1];
    const int b = others[0] <= others[1] ? others[1] : others[0];
    const int pocket = RankAt(state, 0);
    const int singlesAbove =
        CountRanksIn(pocket + 1, 14, [&](long rank) { return state.gRankCount[rank] == 1; });
    const double suitPenalty = suitedThree ? 1.0 : 0.0;
    double outs = 0.0;
    if (pocket != hi) {
        switch (singlesAbove) {
            case 2:
                outs = 1.0;
                break;
            case 0:
                outs = 4.5 - suitPenalty;
                break;
            case 1:
                if (a == pocket - 1 && hi - pocket <= 3 && b > pocket && b < hi) {
                    outs = 2.0 + (hi - pocket <= 2 ? 2.0 : 0.0);
                } else if (a == pocket - 1 && hi - pocket == 1 && b == hi + 1) {
                    outs = 4.0 - suitPenalty;
                } else {
                    outs = 1.24;
                }
                break;
            default:
                break;
        }
    }
    state.trace.Note("TurnTwoPairPocket: lo ", lo, ", hi ", hi, ", a ", a, ", b ", b,
                     ", singles above the pocket pair ", singlesAbove);
    TurnStrengthFromOuts(state, "TurnTwoPairPocket", outs, UnseenRule::kLarger);
}

// At least one hole card pairs the board.
double HolePairBase(int lo) {
    switch (lo) {
        case 10:
            return 13.0;
        case 11:
            return 14.5;
        case 12:
            return 16.0;
        case 13:
            return 18.5;
        case 14:
            return 20.0;
        default:
            return 12.0;
    }
}

void TurnTwoPairHole(CalcState& state, int lo, int hi) {
    double outs = HolePairBase(lo);
    RankCounts rest = state.gRankCount;
    rest[lo] -= 1;
    rest[hi] -= 1;
    // Paired ranks crowding a five-wide span. With both pairs taken down to
    // one card at most one rank stays above one, so neither test fires; the
    // factors stand.
    const auto paired = [&](long rank) { return rest[rank] > 1; };
    if (FirstSpan(2, 10, 5, paired, [](int count) { return count == 4; }).found) {
        outs *= 0.68;
    } else if (FirstSpan(2, 10, 5, paired, [](int count) { return count == 3; }).found) {
        outs *= 0.77;
    }
    switch (LargestOf(BoardSuitTable(state))) {
        case 2:
            outs *= 0.92;
            break;
        case 3:
            outs *= 0.5;
            break;
        case 4:
            outs *= 0.16;
            break;
        default:
            break;
    }
    // A third pair on the table counts against the user.
    if (CountRanksIn(2, 14, [&](long rank) { return rest[rank] == 2; }) > 0) outs *= 0.35;
    TurnStrengthFromOuts(state, "TurnTwoPairHole", outs, UnseenRule::kFixed45);
}

}  // namespace

void TurnTwoPair(CalcState& state) {
    // Lowest and highest pair; a middle pair of three is ignored.
    int lo = 0;
    int hi = 0;
    for (int rank = 2; rank <= 14; ++rank) {
        if (state.gRankCount[rank] != 2) continue;
        if (lo == 0) {
            lo = rank;
        } else {
            hi = rank;
        }
    }
    const int h0 = RankAt(state, 0);
    const int h1 = RankAt(state, 1);
    if (h0 == h1) {
        TurnTwoPairPocket(state, lo, hi);
    } else if (h0 != lo && h0 != hi && h1 != lo && h1 != hi) {
        TurnTwoPairBoard(state);
    } else {
        TurnTwoPairHole(state, lo, hi);
    }
}

}  // namespace felthawk
