// Pieces of the turn stage: the rank test that the river shares, and the
// turn's closing step with its rules for the number of unseen cards.
#pragma once

#include <cstdint>
#include <string_view>

#include "cards/calc_state.h"

namespace felthawk {

// True when exactly `wanted` of the slots first..last hold the rank. last is
// capped at 6.
bool RankCountIs(const CalcState& state, long rank, long first, long last, long wanted);

// How a turn leaf counts the unseen cards N its outs are drawn from. Each
// leaf keeps its own rule on purpose: seats that are out thin the field for
// some hands and are ignored for others.
enum class UnseenRule {
    kLarger,   // 46 less the larger of the folded and the empty seat counts
    kSum,      // 46 less the folded and the empty seat counts together
    kFixed46,  // 46 whatever the seats
    kFixed45,  // 45 whatever the seats
};

// N under the rule, from gFoldedCount and gEmptyCount.
int16_t UnseenCards(const CalcState& state, UnseenRule rule);

// The turn's closing step: gStrength = 100 * DrawChance(N, outs, outs),
// rounded half to even. The leaf's name, its outs and N go to the trace.
void TurnStrengthFromOuts(CalcState& state, std::string_view leaf, double outs, UnseenRule rule);

// A leaf that gives its figure directly, without outs.
void TurnStrengthFixed(CalcState& state, std::string_view leaf, int16_t strength);

}  // namespace felthawk
