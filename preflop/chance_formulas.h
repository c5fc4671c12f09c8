// The three chance formulas of the hand search. Each result is a fraction
// rounded to two decimals (ties to even) and then multiplied by 100, so it is
// always a whole percentage. The denominators are 47 and 46 on every street:
// ChanceOneCard keeps 46 on the river too.
#pragma once

#include <cstdint>
#include <string>

namespace felthawk {

// Two cards to come, n outs.
double ChanceTwoCards(uint8_t n);
// One card to come, n outs.
double ChanceOneCard(uint8_t n);
// Two particular cards needed, a for the first and b for the second.
double ChanceBoth(uint8_t a, uint8_t b);

// A chance as a cell holds it: plain digits, at most 15 significant digits,
// so that 0.29 * 100 reads "29".
std::string ChanceText(double chance);

}  // namespace felthawk
