#include "turn/turn_strength.h"

namespace felthawk {

// The turn cascade is not written yet: the strength stays 0.
void CalcTurnStrength(CalcState& state) { state.gStrength = 0; }

}  // namespace felthawk
