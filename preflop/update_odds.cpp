#include "preflop/update_odds.h"

#include <array>

#include "preflop/hand_search.h"

namespace felthawk {
namespace {

// Rows are the first card's rank from the ace down, columns the second card's
// rank from 2 up. A cell is a digit and a blank, "NA", or (suited 9 then J)
// the digit alone. The grid is not symmetric: the same two cards can read
// differently in the other slot order, and suited 2-2 was never filled.
using StraightOddsGrid = std::array<std::array<std::string_view, 13>, 13>;

// first \ second:      2      3      4      5      6      7      8      9      T      J      Q K A
constexpr StraightOddsGrid kSuitedStraightOdds{{
    /* A */ {"3 ", "3 ", "4 ", "4 ", "3 ", "3 ", "3 ", "2 ", "4 ", "4 ", "3 ", "3 ", "NA"},
    /* K */ {"2 ", "2 ", "2 ", "3 ", "3 ", "3 ", "2 ", "4 ", "5 ", "5 ", "5 ", "NA", "3 "},
    /* Q */ {"2 ", "3 ", "3 ", "3 ", "3 ", "3 ", "4 ", "5 ", "7 ", "7 ", "NA", "5 ", "4 "},
    /* J */ {"3 ", "3 ", "3 ", "4 ", "3 ", "4 ", "6 ", "7 ", "9 ", "NA", "7 ", "5 ", "4 "},
    /* T */ {"3 ", "3 ", "4 ", "4 ", "5 ", "6 ", "7 ", "9 ", "NA", "9 ", "7 ", "5 ", "4 "},
    /* 9 */ {"3 ", "3 ", "3 ", "5 ", "6 ", "7 ", "9 ", "NA", "9 ", "7", "5 ", "4 ", "2 "},
    /* 8 */ {"3 ", "3 ", "4 ", "6 ", "7 ", "9 ", "NA", "9 ", "7 ", "6 ", "4 ", "2 ", "3 "},
    /* 7 */ {"2 ", "4 ", "6 ", "7 ", "9 ", "NA", "9 ", "7 ", "6 ", "4 ", "3 ", "3 ", "3 "},
    /* 6 */ {"4 ", "5 ", "7 ", "9 ", "NA", "9 ", "7 ", "6 ", "5 ", "3 ", "3 ", "3 ", "3 "},
    /* 5 */ {"5 ", "7 ", "9 ", "NA", "9 ", "7 ", "6 ", "5 ", "4 ", "4 ", "3 ", "3 ", "4 "},
    /* 4 */ {"5 ", "7 ", "NA", "9 ", "7 ", "6 ", "4 ", "3 ", "4 ", "3 ", "3 ", "3 ", "4 "},
    /* 3 */ {"5 ", "NA", "7 ", "7 ", "5 ", "4 ", "3 ", "3 ", "3 ", "3 ", "3 ", "2 ", "3 "},
    /* 2 */ {"", "5 ", "5 ", "5 ", "4 ", "2 ", "3 ", "3 ", "3 ", "3 ", "2 ", "2 ", "3 "},
}};

// first \ second:      2      3      4      5      6      7      8      9      T      J      Q K A
constexpr StraightOddsGrid kUnsuitedStraightOdds{{
    /* A */ {"3 ", "4 ", "4 ", "4 ", "3 ", "3 ", "3 ", "3 ", "4 ", "4 ", "4 ", "3 ", "1 "},
    /* K */ {"2 ", "2 ", "3 ", "3 ", "3 ", "3 ", "3 ", "4 ", "6 ", "5 ", "5 ", "1 ", "3 "},
    /* Q */ {"2 ", "3 ", "3 ", "3 ", "3 ", "3 ", "4 ", "6 ", "7 ", "7 ", "2 ", "5 ", "4 "},
    /* J */ {"3 ", "3 ", "3 ", "4 ", "3 ", "5 ", "6 ", "7 ", "9 ", "2 ", "7 ", "5 ", "4 "},
    /* T */ {"3 ", "3 ", "4 ", "4 ", "5 ", "6 ", "8 ", "9 ", "2 ", "9 ", "7 ", "6 ", "4 "},
    /* 9 */ {"3 ", "3 ", "3 ", "5 ", "6 ", "8 ", "9 ", "2 ", "9 ", "7 ", "6 ", "4 ", "3 "},
    /* 8 */ {"3 ", "3 ", "5 ", "6 ", "8 ", "9 ", "2 ", "9 ", "8 ", "6 ", "4 ", "3 ", "3 "},
    /* 7 */ {"3 ", "4 ", "6 ", "8 ", "9 ", "2 ", "9 ", "8 ", "6 ", "5 ", "3 ", "3 ", "3 "},
    /* 6 */ {"4 ", "6 ", "7 ", "9 ", "2 ", "9 ", "8 ", "6 ", "5 ", "3 ", "3 ", "3 ", "3 "},
    /* 5 */ {"6 ", "7 ", "9 ", "2 ", "9 ", "8 ", "6 ", "5 ", "4 ", "4 ", "3 ", "3 ", "4 "},
    /* 4 */ {"5 ", "7 ", "2 ", "9 ", "7 ", "6 ", "5 ", "3 ", "4 ", "3 ", "3 ", "3 ", "4 "},
    /* 3 */ {"5 ", "2 ", "7 ", "7 ", "6 ", "4 ", "3 ", "3 ", "3 ", "3 ", "3 ", "2 ", "4 "},
    /* 2 */ {"1 ", "5 ", "5 ", "6 ", "4 ", "3 ", "3 ", "3 ", "3 ", "3 ", "2 ", "2 ", "3 "},
}};

// Pre-flop figures by whether the hole cards pair (or, for the flush cell,
// are suited): the designers' constants, not computed.
struct PreflopCell {
    int handClass;
    std::string_view whenTrue;
    std::string_view whenFalse;
};
constexpr std::array<PreflopCell, 5> kPairCells{{
    {kPair, kCurrent, "44"},
    {kTwoPair, "40", "22"},
    {kThreeOfAKind, "12", "4"},
    {kFullHouse, "9", "2"},
    {kFourOfAKind, "1", ""},
}};
constexpr PreflopCell kFlushCell{kFlush, "7", "2"};

}  // namespace

std::string_view StraightOddsCell(long column, long secondRank, long firstRank) {
    if (column < 0 || column > 1) RaiseSubscriptFault(column, 0, 1);
    if (secondRank < 2 || secondRank > 14) RaiseSubscriptFault(secondRank, 2, 14);
    if (firstRank < 2 || firstRank > 14) RaiseSubscriptFault(firstRank, 2, 14);
    const StraightOddsGrid& grid = column == 0 ? kSuitedStraightOdds : kUnsuitedStraightOdds;
    return grid[static_cast<std::size_t>(14 - firstRank)][static_cast<std::size_t>(secondRank - 2)];
}

void UpdateOdds(CalcState& state) {
    for (int i = 0; i < kHandClassCount; ++i) state.gOdds[i].clear();
    state.gOuts.Reset({0});
    state.gOpenEndedDraw = 0;
    state.gOpenEndedDraw2 = 0;

    int known = 0;
    for (int slot = 0; slot < kSlotCount; ++slot) {
        if (state.gCards[slot] != kNoCard) ++known;
    }
    if (known == 2) {
        PreflopOdds(state);
    } else if (known >= 5) {
        PostflopOdds(state, 2);
    }
}

void PreflopOdds(CalcState& state) {
    CardCode cards[2] = {kNoCard, kNoCard};
    int found = 0;
    for (int slot = 0; slot < kSlotCount && found < 2; ++slot) {
        if (state.gCards[slot] != kNoCard) cards[found++] = state.gCards[slot];
    }
    const bool pair = RankOf(cards[0]) == RankOf(cards[1]);
    const bool suited = SuitBase(cards[0]) == SuitBase(cards[1]);

    for (const PreflopCell& cell : kPairCells) {
        state.gOdds[cell.handClass] = pair ? cell.whenTrue : cell.whenFalse;
    }
    state.gOdds[kStraight] = StraightOddsCell(suited ? 0 : 1, RankOf(cards[1]), RankOf(cards[0]));
    state.gOdds[kFlush] = suited ? kFlushCell.whenTrue : kFlushCell.whenFalse;
    state.trace.Note("pre-flop chances: ", pair ? "pair" : "no pair", ", ",
                     suited ? "suited" : "not suited");
}

}  // namespace felthawk
