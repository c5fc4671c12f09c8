// The hand search: with five, six or seven cards known, one stage per hand
// class from the straight flush down, counting outs into the gOdds cells.
#pragma once

#include <cstdint>

#include "cards/calc_state.h"

namespace felthawk {

// Runs the search when the stage number is 1 or 2 (UpdateOdds passes 2).
void PostflopOdds(CalcState& state, int16_t stage);

}  // namespace felthawk
