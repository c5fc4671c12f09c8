// The strength of the user's hand with all seven cards known.
#pragma once

#include "cards/calc_state.h"

namespace felthawk {

// Leaves the strength percentage in gStrength.
void CalcRiverStrength(CalcState& state);

}  // namespace felthawk
