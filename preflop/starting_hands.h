// The starting-hand table: the winning percentage of each of the 169
// distinct two-card hands against one to nine opponents.
#pragma once

#include <array>
#include <optional>
#include <string_view>

#include "cards/calc_state.h"

namespace felthawk {

struct StartingHand {
    // Two rank letters, high first ("AK", "72", "AA"), and "S" for the
    // suited row ("AKS").
    std::string_view name;
    // Winning percentage against 1..9 opponents (index 0 is one opponent).
    std::array<double, 9> winPercent;
};

constexpr int kStartingHandCount = 169;
extern const std::array<StartingHand, kStartingHandCount> gStartingHands;

// The row name for the two hole cards in gCards slots 0 and 1.
std::string StartingHandKey(const CalcState& state);

// The figure of the hole cards in the given column (1..9 opponents), or
// nothing when no row matches. A column outside 1..9 is a subscript fault.
std::optional<double> HoleCardValue(const CalcState& state, long column);

}  // namespace felthawk
