// A full house on the flop: three of a kind on the board, a pocket pair, or
// two different hole cards that fill the board.
#include <string>
#include <string_view>
#include <utility>

#include "flop/flop_leaves.h"

namespace felthawk {
namespace {

// Outs of a pocket pair that makes a full house, by pocket rank.
// Row 0: the pocket pair is not above the other board rank; row 1: it is.
// The two 0 cells can't be read: twos are never above, aces never below.
// clang-format off
constexpr std::array<std::array<double, 13>, 2> kPocketOuts = {{
    //  2    3     4     5     6     7     8     9    10     J     Q     K     A
    {  22,  22, 22.5, 22.5,   24,   24,   25,   25,   25, 25.5,   26,   27,    0},  // not above
    {   0,  28,   29, 30.5, 30.5, 30.5, 33.5,   34,   34,   35, 35.5,   36,   36},  // above
}};
// clang-format on

// Outs of two different hole cards that fill the board, as "first-second":
// row the rank held three times, column the rank held twice, both 2..14.
// Only the number before the minus is used (hence 35-34 stands as it is).
// The diagonal is never read: equal hole ranks go to the pocket leaf.
using GridRow = std::array<std::string_view, 13>;
// clang-format off
constexpr std::array<GridRow, 13> kOpenGrid = {{
    // pair: 2       3        4        5        6        7        8        9        10       J        Q        K        A
    /* 2 */ {"NA",    "29-32", "29-32", "29-32", "30-32", "30-32", "30-32", "31-33", "31-33", "31-33", "31-32", "31-32", "31-33"},
    /* 3 */ {"30-32", "NA",    "30-32", "30-32", "30-32", "31-32", "31-32", "31-32", "31-32", "31-32", "31-32", "32-32", "32-32"},
    /* 4 */ {"30-33", "30-32", "NA",    "30-32", "30-32", "31-32", "31-32", "31-32", "32-33", "32-33", "32-33", "32-33", "32-33"},
    /* 5 */ {"30-32", "30-32", "31-32", "NA",    "31-32", "31-33", "31-32", "32-33", "32-33", "32-33", "32-33", "32-33", "33-33"},
    /* 6 */ {"31-32", "31-32", "31-32", "31-32", "NA",    "32-32", "32-32", "32-32", "32-32", "32-33", "32-33", "33-33", "33-33"},
    /* 7 */ {"32-33", "32-33", "32-33", "32-33", "31-32", "NA",    "31-32", "32-33", "33-33", "33-33", "33-33", "33-33", "33-33"},
    /* 8 */ {"32-33", "32-32", "32-33", "33-33", "32-32", "33-33", "NA",    "33-33", "33-33", "33-33", "33-33", "34-34", "35-35"},
    /* 9 */ {"33-33", "33-33", "32-33", "33-33", "33-33", "33-33", "33-33", "NA",    "35-35", "35-35", "35-35", "35-35", "35-35"},
    /* T */ {"33-33", "33-33", "33-33", "35-35", "35-34", "34-34", "34-34", "34-34", "NA",    "36-36", "36-36", "36-36", "36-36"},
    /* J */ {"34-34", "34-34", "35-35", "35-35", "35-35", "35-35", "36-36", "36-36", "36-36", "NA",    "36-36", "37-37", "36-36"},
    /* Q */ {"35-35", "35-35", "35-35", "35-35", "35-35", "36-36", "36-36", "36-36", "36-36", "36-36", "NA",    "36-36", "36-36"},
    /* K */ {"35-35", "35-35", "36-36", "36-36", "36-36", "36-36", "36-36", "37-37", "37-37", "38-38", "38-38", "NA",    "38-38"},
    /* A */ {"36-36", "36-36", "36-36", "36-36", "37-37", "38-38", "38-38", "38-38", "38-38", "38-38", "39-39", "40-40", "NA"   },
}};
// clang-format on

// Splits a grid cell at "-", as the runtime's Split does.
GrowingList<std::string> SplitAtMinus(std::string_view text) {
    GrowingList<std::string> parts;
    std::size_t begin = 0;
    for (std::size_t minus = text.find('-'); minus != std::string_view::npos;
         minus = text.find('-', begin)) {
        parts.Append(std::string(text.substr(begin, minus - begin)));
        begin = minus + 1;
    }
    parts.Append(std::string(text.substr(begin)));
    return parts;
}

}  // namespace

void FlopFullHouse(CalcState& state) {
    // The board-trips leaf does not end the routine: with a pocket pair the
    // pocket leaf runs after it and has the last word.
    if (BoardRankHeld(state, 3)) FlopFullHouseBoardTrips(state);
    const bool boardPair = BoardRankHeld(state, 2).has_value();
    if (boardPair && RankAtLeast(state, SlotRank(state, 0), 0, 1, 2)) {
        FlopFullHousePocket(state);
        return;
    }
    FlopFullHouseOpen(state);
}

void FlopFullHouseBoardTrips(CalcState& state) {
    const int pocket = SlotRank(state, 0);
    const int board = SlotRank(state, 2);
    // Below jacks, and jacks or queens under the board's rank: pocket - 3.
    double outs = pocket - 3.0;
    if (pocket == 11 && board > pocket) outs = 10.0;
    if (pocket == 12 && board > pocket) outs = 13.0;
    if (pocket == 13) outs = board > pocket ? 17.0 : 12.5;
    if (pocket == 14) outs = 17.0;
    CloseFlopLeaf(state, "FlopFullHouseBoardTrips", outs, MadeHandSeats(outs));
}

void FlopFullHousePocket(CalcState& state) {
    const int pocket = SlotRank(state, 0);
    // The rank of the other board cards.
    const int other = SlotRank(state, 2) == pocket ? SlotRank(state, 3) : SlotRank(state, 2);
    const int row = pocket > other ? 1 : 0;
    const double outs = TableAt(kPocketOuts[row], pocket, 2);
    CloseFlopLeaf(state, "FlopFullHousePocket", outs, MadeHandSeats(outs));
}

void FlopFullHouseOpen(CalcState& state) {
    int16_t trips = ToInt16(SlotRank(state, 0));
    int16_t pair = ToInt16(SlotRank(state, 1));
    if (!RankAtLeast(state, trips, 0, 4, 3)) std::swap(trips, pair);
    const GrowingList<std::string> halves =
        SplitAtMinus(TableAt(TableAt(kOpenGrid, trips, 2), pair, 2));
    const double outs = Val(halves[0]);
    const double second = Val(halves[1]);  // read, and of no use
    state.trace.Note("FlopFullHouseOpen: grid ", trips, " over ", pair, " reads ", outs, "-",
                     second);
    CloseFlopLeaf(state, "FlopFullHouseOpen", outs, MadeHandSeats(outs));
}

}  // namespace felthawk
