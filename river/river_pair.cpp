// One pair and no pair on the river. A pair is rated by its rank and cut for
// every overcard the board shows, for a straight the board nearly makes and
// for a suit the board nearly completes. With no pair the hand is worth
// something only when few opponents remain.
#include <algorithm>

#include "river/river_common.h"

namespace felthawk::river {
namespace {

// A pocket pair's outs by the board's overcards: 0, 1, 2, 3 or more.
constexpr std::array<double, 4> kPocketPairByOvercards = {6.5, 1.5, 0.5, 0.0};

// A pair made with one hole card, by its rank.
//                                     2       3       4       5       6       7       8
constexpr OutsByRank kHolePairOuts = {{kOther, kOther, kOther, kOther, kOther, kOther, kOther,
                                       // 9     10      J    Q    K     A
                                       kOther, kOther, 2.5, 3.0, 3.75, 4.75},
                                      2.25};

// No pair: the figure by the higher hole rank (rows) and the empty seats
// (columns); every other number of empty seats gives 0.
constexpr int kNoPairFirstColumn = 6;
//                                                  6  7   8 empty seats
constexpr std::array<std::array<int16_t, 3>, 6> kNoPairTable = {{{0, 0, 2},     // below 10
                                                                 {0, 1, 8},     // 10
                                                                 {0, 2, 9},     // jack
                                                                 {0, 3, 14},    // queen
                                                                 {0, 5, 24},    // king
                                                                 {2, 8, 32}}};  // ace

// The ranks above `rank` that the board shows, each counted once.
int Overcards(const RankCounts& board, int16_t rank) {
    int overcards = 0;
    for (int above = rank + 1; above <= 14; ++above) {
        if (board[above] >= 1) ++overcards;
    }
    return overcards;
}

// The board's straight picture, in this order: four ranks of one five-rank
// span replace the outs by 0.75; otherwise four ranks of a six-rank span
// take 1.5 off, which may go below 0.
double PairBoardStraightStep(const RankCounts& board, double outs) {
    if (FirstSpanWithCount(board, 5, 4, RankTest::AtLeastOne) != 0) return 0.75;
    if (FirstSpanWithCount(board, 6, 4, RankTest::AtLeastOne) != 0) return outs - 1.5;
    return outs;
}

// Four of a suit on the board leave the pair worth nothing; three cut it to
// the share given.
double PairSuitStep(const BoardSuits& suits, double outs, int keptPercent) {
    if (suits.most == 4) return 0.0;
    if (suits.most == 3) return outs * keptPercent / 100;
    return outs;
}

void RiverPocketPair(CalcState& state, int16_t pair) {
    const RankCounts board = BoardRanksWithoutHole(state);
    const int overcards = Overcards(board, pair);
    double outs = kPocketPairByOvercards[static_cast<std::size_t>(overcards < 3 ? overcards : 3)];
    outs = PairBoardStraightStep(board, outs);
    outs = PairSuitStep(CountBoardSuits(state), outs, 63);
    CloseRiverLeaf(state, "RiverPocketPair", outs);
}

void RiverHolePair(CalcState& state, int16_t pair) {
    const RankCounts board = BoardRanksWithoutHole(state);
    double outs = kHolePairOuts(pair);
    switch (Overcards(board, pair)) {
        case 0:
            break;
        case 1:
            outs = outs * 50 / 100;
            break;
        case 2:
            outs = outs * 10 / 100;
            break;
        default:
            outs = 0.0;
            break;
    }
    outs = PairBoardStraightStep(board, outs);
    outs = PairSuitStep(CountBoardSuits(state), outs, 55);
    CloseRiverLeaf(state, "RiverHolePair", outs);
}

}  // namespace

void RiverPair(CalcState& state) {
    const int16_t pair = FirstRankWithCount(state.gRiverRankCount, 2);
    const int16_t a = HoleRank(state, 0);
    const int16_t b = HoleRank(state, 1);
    if (a == pair && b == pair) {
        RiverPocketPair(state, pair);
    } else if (a == pair || b == pair) {
        RiverHolePair(state, pair);
    } else {
        state.trace.Note("RiverPair: the pair is on the board, 0");
    }
}

void RiverNoPair(CalcState& state) {
    const int16_t high = std::max(HoleRank(state, 0), HoleRank(state, 1));
    const int16_t empty = state.gRiverEmptyCount;
    const int column = empty - kNoPairFirstColumn;
    if (column < 0 || column >= 3) {
        state.trace.Note("RiverNoPair: high card ", high, ", empty seats ", empty, ", 0");
        return;
    }
    const int row = high < 10 ? 0 : high - 9;
    state.gStrength = kNoPairTable[static_cast<std::size_t>(row)][static_cast<std::size_t>(column)];
    state.trace.Note("RiverNoPair: high card ", high, ", empty seats ", empty, ", table ",
                     state.gStrength);
}

}  // namespace felthawk::river
