// Pieces of the turn stage that the river shares.
#pragma once

#include "cards/calc_state.h"

namespace felthawk {

// True when exactly `wanted` of the slots first..last hold the rank. last is
// capped at 6.
bool RankCountIs(const CalcState& state, long rank, long first, long last, long wanted);

}  // namespace felthawk
