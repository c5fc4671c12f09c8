// The two routines that turn a score into what the user reads: the one-line
// betting advice and the end point of the red gauge line.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace felthawk {

// Suggestion stages: before the flop the score is a starting-hand figure
// (0..31), after it a strength percentage (0..100).
constexpr int kSuggestPreFlop = 1;
constexpr int kSuggestAfterFlop = 2;

// The gauge line l_Temp runs from X1 = 900 twips to 900 + 3750 at full scale.
constexpr double kGaugeStartX = 900.0;
constexpr double kGaugeLength = 3750.0;

// The caption that ShowSuggestion gives lblSuggestion, or nothing when the
// caption stays as it is (a score above 100 after the flop, an unknown stage).
std::optional<std::string_view> SuggestionText(uint8_t score, int stage);

// The X2 that ShowGauge gives l_Temp for a score on the given full scale.
double GaugeEndPoint(int16_t score, int16_t fullScale);

}  // namespace felthawk
