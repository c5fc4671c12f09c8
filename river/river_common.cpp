#include "river/river_common.h"

#include "flop/strength_common.h"

namespace felthawk::river {

int16_t HoleRank(const CalcState& state, int slot) {
    return static_cast<int16_t>(RankOf(state.gCards[slot]));
}

BoardSuits CountBoardSuits(const CalcState& state) {
    BoardSuits suits;
    for (int slot = 2; slot <= 6; ++slot) suits.count[SuitIndex(state.gCards[slot])] += 1;
    for (int suit = 0; suit <= 3; ++suit) {
        if (suits.count[suit] > suits.most) {
            suits.most = suits.count[suit];
            suits.mostSuit = static_cast<int16_t>(suit);
        }
    }
    return suits;
}

RankCounts BoardRanksWithoutHole(const CalcState& state) {
    RankCounts board = state.gRiverRankCount;
    board[HoleRank(state, 0)] -= 1;
    board[HoleRank(state, 1)] -= 1;
    return board;
}

int16_t FirstRankWithCount(const RankCounts& counts, int wanted) {
    for (int rank = 2; rank <= 14; ++rank) {
        if (counts[rank] == wanted) return static_cast<int16_t>(rank);
    }
    return 0;
}

int CountSpan(const RankCounts& counts, int start, int width, RankTest test) {
    int passing = 0;
    for (int rank = start; rank < start + width; ++rank) {
        const int16_t count = counts[rank];
        if (test == RankTest::AtLeastOne ? count >= 1 : count == 1) ++passing;
    }
    return passing;
}

int FirstSpanWithCount(const RankCounts& counts, int width, int wanted, RankTest test) {
    for (int start = 2; start <= LastSpanStart(width); ++start) {
        if (CountSpan(counts, start, width, test) == wanted) return start;
    }
    return 0;
}

void CloseRiverLeaf(CalcState& state, const char* leaf, double outs) {
    state.trace.Note(leaf, ": outs ", outs, ", N ", kRiverUnseen);
    state.gStrength = ToInt16(100.0 * DrawChance(kRiverUnseen, outs, outs));
}

}  // namespace felthawk::river
