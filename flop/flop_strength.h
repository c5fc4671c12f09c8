// The strength of the user's hand with five cards known.
#pragma once

#include "cards/calc_state.h"

namespace felthawk {

// Leaves the strength percentage in gStrength.
void CalcFlopStrength(CalcState& state);

}  // namespace felthawk
