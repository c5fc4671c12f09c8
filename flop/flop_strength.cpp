#include "flop/flop_strength.h"

namespace felthawk {

// The flop cascade is not written yet: the strength stays 0.
void CalcFlopStrength(CalcState& state) { state.gStrength = 0; }

}  // namespace felthawk
