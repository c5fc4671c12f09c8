// Three of a kind on the river: a set from a pocket pair, or trips made with
// one hole card. Both lose value to a straight the cards nearly make and to
// a suit the board nearly completes; a set hides better than trips, so it
// starts higher.
#include <algorithm>

#include "river/river_common.h"

namespace felthawk::river {
namespace {

// A set. The straight picture is read on all seven cards.
void RiverSet(CalcState& state, int16_t trips) {
    const RankCounts& counts = state.gRiverRankCount;
    const BoardSuits suits = CountBoardSuits(state);
    double outs = 0.0;
    if (FirstSpanWithCount(counts, 4, 4, RankTest::AtLeastOne) != 0) {
        // Four ranks in a row: one card makes a straight.
        if (suits.most == 4) {
            outs = 0.0;
        } else {
            outs = trips == 14 ? 2.75 : 0.25;
        }
    } else if (FirstSpanWithCount(counts, 5, 4, RankTest::AtLeastOne) != 0) {
        // Four ranks with a hole in five: one card fills it.
        if (suits.most == 4) {
            outs = 0.25;
        } else if (suits.most == 3) {
            outs = 2.0;
        } else {
            outs = 3.25;
        }
    } else if (FirstSpanWithCount(counts, 6, 4, RankTest::AtLeastOne) != 0) {
        bool boardCardAbove = false;
        for (int slot = 2; slot <= 6; ++slot) {
            if (RankOf(state.gCards[slot]) > trips) boardCardAbove = true;
        }
        outs = boardCardAbove ? 19.0 : 16.0;
    } else {
        outs = 27.0;
    }
    if (suits.most == 4) outs = 0.2;
    CloseRiverLeaf(state, "RiverSet", outs);
    if (suits.most == 3) {
        // Three of a suit on the board: a flush is likely out there, but a
        // made set never shows less than 5.
        state.gStrength = ToInt16(state.gStrength - 60);
        if (state.gStrength < 6) state.gStrength = 5;
        state.trace.Note("RiverSet: three of a suit on the board, ", state.gStrength);
    }
}

// Trips with one hole card. The straight picture is read on the board's
// single ranks alone.
void RiverTripsOneHole(CalcState& state) {
    const RankCounts board = BoardRanksWithoutHole(state);
    const BoardSuits suits = CountBoardSuits(state);
    double outs = 24.0;
    int mostInFour = 0;
    for (int start = 2; start <= LastSpanStart(4); ++start) {
        mostInFour = std::max(mostInFour, CountSpan(board, start, 4, RankTest::ExactlyOne));
    }
    if (mostInFour == 4) {
        outs = 0.24;
    } else if (mostInFour == 3) {
        outs = 17.0;
    } else if (FirstSpanWithCount(board, 5, 4, RankTest::ExactlyOne) != 0) {
        outs = 2.0;
    }
    if (suits.most == 4) {
        if (outs > 1.0) outs = 0.25;
    } else if (suits.most == 3) {
        outs = outs <= 12.0 ? outs / 2 : 11.5;
    } else {
        int suitsWithTwo = 0;
        for (int suit = 0; suit <= 3; ++suit) {
            if (suits.count[suit] == 2) ++suitsWithTwo;
        }
        // Two flush draws on the board that did not come in still cost.
        if (outs > 15.0 && suitsWithTwo == 2) outs -= 3.0;
    }
    CloseRiverLeaf(state, "RiverTripsOneHole", outs);
}

}  // namespace

void RiverThreeOfAKind(CalcState& state) {
    const int16_t trips = FirstRankWithCount(state.gRiverRankCount, 3);
    const bool first = HoleRank(state, 0) == trips;
    const bool second = HoleRank(state, 1) == trips;
    if (first && second) {
        RiverSet(state, trips);
    } else if (first || second) {
        RiverTripsOneHole(state);
    } else {
        state.trace.Note("RiverThreeOfAKind: the trips are on the board, 0");
    }
}

}  // namespace felthawk::river
