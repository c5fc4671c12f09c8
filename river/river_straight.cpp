// A straight on the river, by how many hole cards it uses. S is the low rank
// of the straight's span; A and B are the ranks of slots 0 and 1, never
// sorted, and the rules read them differently on purpose. A straight that
// only the board makes is shared by everyone; a hole card that extends it
// upward, or the top straight, is what makes it worth something.
#include "river/river_common.h"

namespace felthawk::river {
namespace {

// Four of a suit on the board beat any straight; three leave a flush likely.
double StraightSuitStep(const BoardSuits& suits, double outs) {
    if (suits.most == 4) return 0.0;
    if (suits.most == 3) return outs * 63 / 100;
    return outs;
}

void RiverStraightBoard(CalcState& state, int16_t low, int16_t a, int16_t b) {
    double outs = 0.0;
    if (low == 10) {
        outs = 45.0;
    } else {
        outs = 2.75;
        // A hole card one above the board's straight makes a better one.
        if (a == low + 5 || b == low + 5) outs = 30.0;
    }
    outs = StraightSuitStep(CountBoardSuits(state), outs);
    CloseRiverLeaf(state, "RiverStraightBoard", outs);
}

void RiverStraightOneHole(CalcState& state, int16_t low, int16_t a, int16_t b) {
    double outs = 0.0;
    if (a == 14 && low == 10) {
        outs = 45.0;  // only slot 0 is asked for the ace
    } else if (low == a || low == b) {
        outs = 2.5;  // the hole card is the low end: the sucker straight
    } else if (a == low + 5 && b == low + 5) {
        outs = 30.0;
    } else if (low == 9) {
        outs = 45.0;
    } else {
        // The lowest single board rank outside the straight.
        const RankCounts board = BoardRanksWithoutHole(state);
        int16_t loose = 0;
        for (int rank = 2; rank <= 14 && loose == 0; ++rank) {
            if ((rank < low || rank > low + 4) && board[rank] == 1) {
                loose = static_cast<int16_t>(rank);
            }
        }
        outs = loose >= low ? 30.0 : 23.0;
    }
    outs = StraightSuitStep(CountBoardSuits(state), outs);
    CloseRiverLeaf(state, "RiverStraightOneHole", outs);
}

void RiverStraightTwoHole(CalcState& state, int16_t low, int16_t a, int16_t b) {
    double outs = 45.0;
    if (b == low && a == low + 1) {
        outs = low == 10 ? 45.0 : (low == 9 ? 30.0 : 23.0);
    } else if (b == low && a <= low + 4) {
        outs = low == 10 ? 45.0 : 30.0;
    }
    const RankCounts board = BoardRanksWithoutHole(state);
    bool boardPair = false;
    for (int rank = 2; rank <= 14; ++rank) {
        if (board[rank] == 2) boardPair = true;
    }
    const BoardSuits suits = CountBoardSuits(state);
    if (boardPair) {
        // A paired board allows a full house as well.
        outs *= 0.77;
        if (suits.most == 4) {
            outs = 0.0;
        } else if (suits.most == 3) {
            outs -= 3.0;
        }
    } else {
        outs = StraightSuitStep(suits, outs);
    }
    CloseRiverLeaf(state, "RiverStraightTwoHole", outs);
}

}  // namespace

void RiverStraight(CalcState& state) {
    const int16_t a = HoleRank(state, 0);
    const int16_t b = HoleRank(state, 1);
    const RankCounts board = BoardRanksWithoutHole(state);
    if (const int low = FirstSpanWithCount(board, 5, 5, RankTest::AtLeastOne)) {
        RiverStraightBoard(state, static_cast<int16_t>(low), a, b);
    } else if (const int low = FirstSpanWithCount(board, 5, 4, RankTest::AtLeastOne)) {
        RiverStraightOneHole(state, static_cast<int16_t>(low), a, b);
    } else if (const int low =
                   FirstSpanWithCount(state.gRiverRankCount, 5, 5, RankTest::AtLeastOne)) {
        RiverStraightTwoHole(state, static_cast<int16_t>(low), a, b);
    } else {
        state.trace.Note("RiverStraight: no five-rank span found, 0");
    }
}

}  // namespace felthawk::river
