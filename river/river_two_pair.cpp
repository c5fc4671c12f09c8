// Two pair on the river. H is the higher pair and L the lower; with three
// pairs among the seven cards the highest and the lowest are kept and the
// middle one is lost. Two pair made with both hole cards hides best; a
// pocket pair under a board pair, or one hole card in a pair, are cut for
// every higher card the board shows.
#include "river/river_common.h"

namespace felthawk::river {
namespace {

// A pocket pair's outs by its rank.
//                                          2       3       4       5       6       7    8
constexpr OutsByRank kPocketOuts = {{kOther, kOther, kOther, kOther, kOther, kOther, 4.0,
                                     // 9  10   J     Q    K    A
                                     4.5, 5.0, 5.25, 5.5, 6.0, 8.0},
                                    1.0};

// The outs of a pair made with one hole card, by that pair's rank.
//                                          2       3       4       5       6       7       8
constexpr OutsByRank kOneHoleOuts = {{kOther, kOther, kOther, kOther, kOther, kOther, kOther,
                                      // 9  10   J    Q     K    A
                                      2.0, 3.0, 3.0, 4.75, 5.0, 6.0},
                                     1.5};

void RiverTwoPairPocket(CalcState& state, int16_t high, int16_t low) {
    const int16_t pocket = HoleRank(state, 0);
    const int16_t other = pocket == high ? low : high;  // the pair on the board
    RankCounts withoutPocket = state.gRiverRankCount;
    withoutPocket[pocket] = 0;

    double outs = kPocketOuts(pocket);
    if (pocket < other) outs += 2.5;
    int higherRanks = 0;
    for (int rank = pocket + 1; rank <= 14; ++rank) {
        if (rank != other && state.gRiverRankCount[rank] >= 1) ++higherRanks;
    }
    switch (higherRanks) {
        case 1:
            outs = 1.0;
            break;
        case 2:
            outs = 0.25;
            break;
        case 3:
            outs = 0.0;
            break;
        default:
            break;  // none, or four and more, leave the figure
    }
    if (FirstSpanWithCount(withoutPocket, 5, 4, RankTest::AtLeastOne) != 0) outs = 0.5;
    const BoardSuits suits = CountBoardSuits(state);
    if (suits.most == 3) {
        outs = outs * 85 / 100;
    } else if (suits.most == 4) {
        outs = 0.0;
    }
    CloseRiverLeaf(state, "RiverTwoPairPocket", outs);
}

// The straight tests run on one count that is never reset between spans,
// so they fire on the running total and far less often than their shape
// suggests.
void RiverTwoPairBothHole(CalcState& state) {
    const RankCounts& counts = state.gRiverRankCount;
    struct Pass {
        int width;
        int wanted;
        double outs;
    };
    // In order: four-rank spans, five-rank spans twice, six-rank spans.
    constexpr std::array<Pass, 4> kPasses = {
        {{4, 4, 0.25}, {5, 4, 1.5}, {5, 3, 12.5}, {6, 3, 15.5}}};

    double outs = 9.5;
    int running = 0;
    bool hit = false;
    for (const Pass& pass : kPasses) {
        for (int start = 2; start <= LastSpanStart(pass.width) && !hit; ++start) {
            running += CountSpan(counts, start, pass.width, RankTest::AtLeastOne);
            if (running == pass.wanted) {
                outs = pass.outs;
                hit = true;
            }
        }
        if (hit) break;
    }
    const BoardSuits suits = CountBoardSuits(state);
    if (suits.most == 4) {
        outs = 0.0;
    } else if (suits.most == 3) {
        outs *= 0.63;
    }
    CloseRiverLeaf(state, "RiverTwoPairBothHole", outs);
}

void RiverTwoPairOneHole(CalcState& state, int16_t high, int16_t low) {
    const int16_t a = HoleRank(state, 0);
    const int16_t b = HoleRank(state, 1);
    const bool highIsOurs = a == high || b == high;
    const int16_t ours = highIsOurs ? high : low;
    // The slot taken off is fixed by which pair is ours, whichever hole card
    // that slot holds.
    RankCounts counts = state.gRiverRankCount;
    counts[highIsOurs ? b : a] -= 1;

    double outs = kOneHoleOuts(ours);
    int higherRanks = 0;
    for (int rank = ours + 1; rank <= 14; ++rank) {
        if (counts[rank] >= 1) ++higherRanks;
    }
    if (higherRanks == 1) {
        outs = 1.5;
    } else if (higherRanks >= 2) {
        outs = 0.5;
    }
    if (CountBoardSuits(state).most >= 3) {
        outs -= 2.5;
        if (outs < 1.0) outs = 0.5;
    }
    if (FirstSpanWithCount(counts, 4, 4, RankTest::AtLeastOne) != 0) {
        outs = 0.2;
    } else if (FirstSpanWithCount(counts, 5, 4, RankTest::AtLeastOne) != 0) {
        outs = 0.5;
    }
    CloseRiverLeaf(state, "RiverTwoPairOneHole", outs);
}

}  // namespace

void RiverTwoPair(CalcState& state) {
    int16_t first = 0;
    int16_t second = 0;
    for (int rank = 2; rank <= 14; ++rank) {
        if (state.gRiverRankCount[rank] != 2) continue;
        if (first == 0) {
            first = static_cast<int16_t>(rank);
        } else {
            second = static_cast<int16_t>(rank);
        }
    }
    const int16_t high = std::max(first, second);
    const int16_t low = std::min(first, second);
    const int16_t a = HoleRank(state, 0);
    const int16_t b = HoleRank(state, 1);
    if (a == b) {
        RiverTwoPairPocket(state, high, low);
    } else if ((a == high && b == low) || (a == low && b == high)) {
        RiverTwoPairBothHole(state);
    } else if (a == high || a == low || b == high || b == low) {
        RiverTwoPairOneHole(state, high, low);
    } else {
        CloseRiverLeaf(state, "RiverTwoPairBoard", 0.0);
    }
}

}  // namespace felthawk::river
