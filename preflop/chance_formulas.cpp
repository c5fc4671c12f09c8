#include "preflop/chance_formulas.h"

#include <charconv>

#include "cards/runtime_fault.h"

namespace felthawk {
namespace {

double ToPercent(double fraction) {
    return RoundHalfEven(fraction * 100.0) / 100.0 * 100.0;
}

}  // namespace

double ChanceTwoCards(uint8_t n) {
    return ToPercent(1.0 - ((47.0 - n) / 47.0) * ((46.0 - n) / 46.0));
}

double ChanceOneCard(uint8_t n) {
    return ToPercent(n / 46.0);
}

double ChanceBoth(uint8_t a, uint8_t b) {
    return ToPercent((a / 47.0) * (b / 46.0));
}

std::string ChanceText(double chance) {
    char text[32];
    const auto end =
        std::to_chars(text, text + sizeof text, chance, std::chars_format::general, 15);
    return std::string(text, end.ptr);
}

}  // namespace felthawk
