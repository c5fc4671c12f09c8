// Four of a kind on the river. No outs here: the figure is fixed or comes
// straight from a seat table by the number of empty seats, since with quads
// what matters is how many opponents are left to hold the few hands that
// beat them.
#include "river/river_common.h"

namespace felthawk::river {
namespace {

// A seat table: the figure with no empty seat, and the figures for 1 to 8
// empty seats. Every figure rises as seats empty, for fewer opponents
// remain.
struct SeatTable {
    const char* name;
    int16_t noEmptySeat;
    std::array<int16_t, 8> byEmptySeats;  // index 0 for one empty seat, 7 for eight
};

//                                 none    1   2   3   4   5   6   7   8 empty seats
constexpr SeatTable kTableA = {"A", 35, {40, 46, 56, 60, 68, 75, 83, 91}};
constexpr SeatTable kTableB = {"B", 59, {65, 70, 73, 77, 82, 86, 91, 95}};
constexpr SeatTable kTableC = {"C", 12, {16, 20, 28, 36, 45, 56, 68, 83}};
constexpr SeatTable kTableD = {"D", 2, {2, 4, 7, 12, 19, 28, 43, 67}};
constexpr SeatTable kTableE = {"E", 0, {0, 0, 0, 0, 2, 6, 15, 41}};

// Sets the default first; the list is a fixed array 0..7, so nine empty
// seats read past its end and the fault ends the stage with the default
// standing.
void ReadSeatTable(CalcState& state, const char* leaf, const SeatTable& table) {
    const int16_t empty = state.gRiverEmptyCount;
    state.trace.Note(leaf, ": seat table ", table.name, ", empty seats ", empty);
    state.gStrength = table.noEmptySeat;
    if (empty == 0) return;
    FixedArray<int16_t, 0, 7> figures;
    for (int column = 0; column < 8; ++column) figures[column] = table.byEmptySeats[column];
    state.gStrength = figures[empty - 1];
}

void SetFixed(CalcState& state, const char* leaf, int16_t figure) {
    state.trace.Note(leaf, ": fixed ", figure);
    state.gStrength = figure;
}

// A pocket pair made quads. Only four board cards of one suit threaten:
// four of them in five ranks leave a straight flush open to one card.
void RiverQuadsPocket(CalcState& state, const BoardSuits& suits) {
    constexpr const char* kLeaf = "RiverQuadsPocket";
    const RankCounts& counts = state.gRiverRankCount;
    if (suits.most != 4) return SetFixed(state, kLeaf, 100);
    if (FirstSpanWithCount(counts, 5, 4, RankTest::AtLeastOne) == 0) {
        return SetFixed(state, kLeaf, 99);
    }
    const bool fourInARow = FirstSpanWithCount(counts, 4, 4, RankTest::AtLeastOne) != 0;
    ReadSeatTable(state, kLeaf, fourInARow ? kTableA : kTableB);
}

// Quads on the board: everybody holds them, the kicker decides.
void RiverQuadsBoard(CalcState& state) {
    constexpr const char* kLeaf = "RiverQuadsBoard";
    const RankCounts& counts = state.gRiverRankCount;
    if (counts[14] == 1) return SetFixed(state, kLeaf, 100);
    if (counts[13] == 1 || counts[14] == 4) return ReadSeatTable(state, kLeaf, kTableC);
    if (counts[12] >= 1 || counts[13] == 4) return ReadSeatTable(state, kLeaf, kTableD);
    ReadSeatTable(state, kLeaf, kTableE);
}

// One hole card in the quads. Only a straight flush beats it: three of a
// suit on the board with three ranks in a row.
void RiverQuadsOneHole(CalcState& state, const BoardSuits& suits, int16_t otherHoleRank) {
    constexpr const char* kLeaf = "RiverQuadsOneHole";
    bool threeOfASuit = false;
    for (int suit = 0; suit <= 3; ++suit) {
        if (suits.count[suit] == 3) threeOfASuit = true;
    }
    // The span that starts at the user's other hole rank is left out.
    bool threeInARow = false;
    for (int start = 2; start <= LastSpanStart(3) && !threeInARow; ++start) {
        if (start == otherHoleRank) continue;
        threeInARow = CountSpan(state.gRiverRankCount, start, 3, RankTest::AtLeastOne) == 3;
    }
    if (threeOfASuit && threeInARow) {
        return SetFixed(state, kLeaf, state.gRiverEmptyCount < 4 ? 97 : 100);
    }
    SetFixed(state, kLeaf, 100);
}

}  // namespace

void RiverFourOfAKind(CalcState& state) {
    const int16_t quads = FirstRankWithCount(state.gRiverRankCount, 4);
    const int16_t a = HoleRank(state, 0);
    const int16_t b = HoleRank(state, 1);
    const BoardSuits suits = CountBoardSuits(state);
    if (a == b) {
        RiverQuadsPocket(state, suits);
    } else if (a != quads && b != quads) {
        RiverQuadsBoard(state);
    } else {
        RiverQuadsOneHole(state, suits, a == quads ? b : a);
    }
}

}  // namespace felthawk::river
