#include "preflop/hand_search.h"

namespace felthawk {

void PostflopOdds(CalcState&, int16_t) {}

}  // namespace felthawk
