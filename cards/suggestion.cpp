#include "cards/suggestion.h"

#include <array>

#include "cards/runtime_fault.h"

namespace felthawk {
namespace {

struct AdviceRow {
    int lowestScore;
    std::string_view caption;
};

// Read from the top: the first row whose lowest score the score reaches.
// The trailing blank and the two spellings of "Re-raise" are the captions
// users know; keep them.
constexpr std::array<AdviceRow, 5> kPreFlopAdvice{{
    {26, "Raise or Re-Raise"},
    {21, "Raise or call Raised"},
    {16, "Raise or call 1 small Raise"},
    {11, "Small Blind. Call. Fold if raised "},
    {0, "Fold"},
}};

constexpr std::array<AdviceRow, 5> kAfterFlopAdvice{{
    {81, "Raise or Re-raise"},
    {56, "Raise or call one Raise"},
    {31, "Bet or call one small bet"},
    {11, "Check or call one small bet"},
    {0, "Check or fold"},
}};

constexpr int kAfterFlopTopScore = 100;  // above it the caption stays blank

std::string_view Advice(const std::array<AdviceRow, 5>& rows, int score) {
    for (const AdviceRow& row : rows) {
        if (score >= row.lowestScore) return row.caption;
    }
    return rows.back().caption;
}

}  // namespace

std::optional<std::string_view> SuggestionText(uint8_t score, int stage) {
    if (stage == kSuggestPreFlop) return Advice(kPreFlopAdvice, score);
    if (stage == kSuggestAfterFlop && score <= kAfterFlopTopScore) {
        return Advice(kAfterFlopAdvice, score);
    }
    return std::nullopt;
}

double GaugeEndPoint(int16_t score, int16_t fullScale) {
    if (fullScale == 0) {
        throw RuntimeFault(RuntimeFault::Kind::DivisionByZero, "Division by zero");
    }
    const int16_t percent = ToInt16(static_cast<double>(score) / fullScale * 100.0);
    return percent / 100.0 * kGaugeLength + kGaugeStartX;
}

}  // namespace felthawk
