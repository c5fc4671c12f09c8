// The strength of the user's hand with six cards known.
#pragma once

#include "cards/calc_state.h"

namespace felthawk {

// Leaves the strength percentage in gStrength.
void CalcTurnStrength(CalcState& state);

}  // namespace felthawk
