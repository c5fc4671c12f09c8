#include "river/river_strength.h"

#include "flop/strength_common.h"
#include "river/river_common.h"

namespace felthawk {

namespace river {

// A made straight flush is worth everything unless a hole card sits at its
// foot, where a longer suited run above may beat it; then the length of the
// suited run the hand search found decides.
void RiverStraightFlush(CalcState& state) {
    const StraightFlushRun run = FindStraightFlushRun(state.gRiverRankCount);
    const int16_t a = HoleRank(state, 0);
    const int16_t b = HoleRank(state, 1);
    if (a == run.top || b == run.top) {
        state.trace.Note("RiverStraightFlush: hole card at the top ", run.top, ", 100");
        state.gStrength = 100;
        return;
    }
    if (a != run.bottom && b != run.bottom) {
        state.trace.Note("RiverStraightFlush: no hole card at either end, 100");
        state.gStrength = 100;
        return;
    }
    const int16_t width = ToInt16(state.gFlushRunHigh - state.gFlushRunLow);
    state.trace.Note("RiverStraightFlush: hole card at the foot ", run.bottom, ", run ",
                     state.gFlushRunLow, "..", state.gFlushRunHigh);
    switch (width) {
        case 6: {
            bool cardAboveRun = false;
            for (int rank = 2; rank <= 14; ++rank) {
                if (state.gRiverRankCount[rank] == 1 && rank == state.gFlushRunHigh + 1) {
                    cardAboveRun = true;
                }
            }
            state.gStrength = cardAboveRun ? 60 : 99;
            break;
        }
        case 7:
            state.gStrength = 61;
            break;
        case 8:
            state.gStrength = 58;
            break;
        default:
            break;  // any other run leaves the figure at 0
    }
}

}  // namespace river

void CalcRiverStrength(CalcState& state) {
    using namespace river;
    state.gRiverRankCount.Erase();
    CountSeats(state, state.gRiverFoldedCount, state.gRiverEmptyCount);
    CountRanks(state, state.gRiverRankCount);
    state.gStrength = 0;

    // Only the best made class is looked at.
    if (state.IsCurrent(kStraightFlush)) {
        RiverStraightFlush(state);
    } else if (state.IsCurrent(kFourOfAKind)) {
        RiverFourOfAKind(state);
    } else if (state.IsCurrent(kFullHouse)) {
        RiverFullHouse(state);
    } else if (state.IsCurrent(kFlush)) {
        RiverFlush(state);
    } else if (state.IsCurrent(kStraight)) {
        RiverStraight(state);
    } else if (state.IsCurrent(kThreeOfAKind)) {
        RiverThreeOfAKind(state);
    } else if (state.IsCurrent(kTwoPair)) {
        RiverTwoPair(state);
    } else if (state.IsCurrent(kPair)) {
        RiverPair(state);
    } else {
        RiverNoPair(state);
    }
}

}  // namespace felthawk
