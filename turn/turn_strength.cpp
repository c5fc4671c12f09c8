// The turn cascade: entry, dispatch, and the two classes that mostly need
// no outs at all, the straight flush and four of a kind.
#include "turn/turn_strength.h"

#include <algorithm>

#include "flop/strength_common.h"
#include "turn/turn_branches.h"

namespace felthawk {
namespace {

using namespace turn;

void TurnStraightFlush(CalcState& state) {
    const StraightFlushRun run = FindStraightFlushRun(state.gRankCount);
    const HoleRanks hole = HoleRanksOf(state);
    const bool holeAtTop = hole.high == run.top || hole.low == run.top;
    const bool holeAtBottom = hole.high == run.bottom || hole.low == run.bottom;
    if (holeAtTop || !holeAtBottom) {
        TurnStrengthFixed(state, "TurnStraightFlush", 100);
        return;
    }
    // A hole card at the foot of the run: a higher straight flush may still
    // come. The search leaves the run's bounds, one below and one above it.
    const int width = state.gFlushRunHigh - state.gFlushRunLow;
    if (width == 6) {
        const bool cardAbove =
            CountRanksIn(2, 14, [&](long rank) {
                return state.gRankCount[rank] == 1 && rank == state.gFlushRunHigh + 1;
            }) > 0;
        TurnStrengthFixed(state, "TurnStraightFlush", cardAbove ? 60 : 98);
    } else if (width == 7) {
        TurnStrengthFixed(state, "TurnStraightFlush", 59);
    } else {
        state.trace.Note("TurnStraightFlush: run width ", width, " sets nothing");
    }
}

// Pocket pair quads: three board cards of one suit threaten a straight
// flush, the tighter they lie the more.
void TurnQuadsFromPocketPair(CalcState& state, int quads) {
    FixedArray<int16_t, 0, 2> ranks;  // quads rank, then two ranks of the suited board cards
    ranks[0] = ToInt16(quads);
    bool suitedThree = false;
    for (int slot = kFirstBoardSlot; slot <= kLastBoardSlot && !suitedThree; ++slot) {
        const int16_t suit = SuitBase(state.gCards[slot]);
        int count = 0;
        for (int other = kFirstBoardSlot; other <= kLastBoardSlot; ++other) {
            if (SuitBase(state.gCards[other]) != suit) continue;
            ++count;
            const int rank = RankAt(state, other);
            if (rank != ranks[0]) ranks[ranks[1] == 0 ? 1 : 2] = ToInt16(rank);
            if (count == 3) {
                suitedThree = true;
                break;
            }
        }
    }
    if (!suitedThree) {
        TurnStrengthFixed(state, "TurnFourOfAKind", 100);
        return;
    }
    std::sort(ranks.begin(), ranks.end());
    double outs = 0.0;
    switch (ranks[2] - ranks[0]) {
        case 2:
            outs = 32.0;
            break;
        case 3:
            outs = 35.0;
            break;
        case 4:
            outs = 37.0;
            break;
        default:
            TurnStrengthFixed(state, "TurnFourOfAKind", 100);
            return;
    }
    TurnStrengthFromOuts(state, "TurnFourOfAKind", outs, UnseenRule::kSum);
}

void TurnFourOfAKind(CalcState& state) {
    int quads = 0;
    for (int slot = 0; slot <= 2 && quads == 0; ++slot) {
        if (RankCountIs(state, RankAt(state, slot), 0, 5, 4)) quads = RankAt(state, slot);
    }
    const HoleRanks hole = HoleRanksOf(state);
    if (quads != hole.high && quads != hole.low) {
        // All four on the board: only the kicker plays.
        if (hole.high == 14) {
            TurnStrengthFixed(state, "TurnFourOfAKind", 100);
        } else {
            const double outs = hole.high == 13 ? 4.25 : 2.25;
            TurnStrengthFromOuts(state, "TurnFourOfAKind", outs, UnseenRule::kSum);
        }
    } else if (hole.high != hole.low) {
        TurnStrengthFixed(state, "TurnFourOfAKind", 100);
    } else {
        TurnQuadsFromPocketPair(state, quads);
    }
}

}  // namespace

void CalcTurnStrength(CalcState& state) {
    state.gRankCount.Erase();
    CountSeats(state, state.gFoldedCount, state.gEmptyCount);
    CountRanks(state, state.gRankCount);
    state.gStrength = 0;

    // Only the best made class is looked at.
    if (state.IsCurrent(kStraightFlush)) {
        TurnStraightFlush(state);
    } else if (state.IsCurrent(kFourOfAKind)) {
        TurnFourOfAKind(state);
    } else if (state.IsCurrent(kFullHouse)) {
        TurnFullHouse(state);
    } else if (state.IsCurrent(kFlush)) {
        TurnFlush(state);
    } else if (state.IsCurrent(kStraight)) {
        TurnStraight(state);
    } else if (state.IsCurrent(kThreeOfAKind)) {
        TurnThreeOfAKind(state);
    } else if (state.IsCurrent(kTwoPair)) {
        TurnTwoPair(state);
    } else if (state.IsCurrent(kPair)) {
        TurnPair(state);
    } else {
        TurnNoPair(state);
    }
}

}  // namespace felthawk
