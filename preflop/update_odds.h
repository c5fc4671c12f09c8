// The per-class chances: eight gOdds cells rebuilt on every recalculation.
#pragma once

#include <string_view>

#include "cards/calc_state.h"

namespace felthawk {

// Rebuilds gOdds and gOuts from gCards: two known cards are answered from
// fixed figures, five, six or seven go to the hand search, any other count
// leaves every cell empty.
void UpdateOdds(CalcState& state);

// Fills gOdds when exactly two cards are known.
void PreflopOdds(CalcState& state);

// The straight chance before the flop, by column (0 suited, 1 not suited),
// the second card's rank and the first card's rank (2..14). Another rank is
// a subscript fault.
std::string_view StraightOddsCell(long column, long secondRank, long firstRank);

}  // namespace felthawk
