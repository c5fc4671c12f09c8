#include "river/river_strength.h"

namespace felthawk {

// The river cascade is not written yet: the strength stays 0.
void CalcRiverStrength(CalcState& state) { state.gStrength = 0; }

}  // namespace felthawk
