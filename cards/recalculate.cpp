#include "cards/recalculate.h"

#include "flop/flop_strength.h"
#include "preflop/starting_hands.h"
#include "preflop/update_odds.h"
#include "river/river_strength.h"
#include "turn/turn_strength.h"

namespace felthawk {
namespace {

constexpr int kStartingHandColumn = 9;     // the figure against nine opponents
constexpr int16_t kPreFlopFullScale = 31;  // the best column-9 figure, rounded
constexpr int16_t kStrengthFullScale = 100;

// The driver steps over a faulting statement: the statement is abandoned and
// the next one runs. A fault inside a stage therefore ends that stage.
template <class Statement>
void Step(CalcState& state, Statement&& statement) {
    try {
        statement();
    } catch (const RuntimeFault& fault) {
        state.trace.Note("fault: ", fault.what());
    }
}

std::string PercentCaption(long whole) {
    return std::to_string(whole) + " %";
}

void ShowSuggestion(DisplayModel& display, long score, int stage) {
    const uint8_t byteScore = ToByte(score);
    if (auto text = SuggestionText(byteScore, stage)) display.suggestion = *text;
}

void ShowGauge(DisplayModel& display, long score, int16_t fullScale) {
    display.gaugeX2 = GaugeEndPoint(ToInt16(score), fullScale);
}

void ShowStrength(DisplayModel& display, long whole) {
    display.me = PercentCaption(whole);
    display.hasStrength = true;
    display.strength = static_cast<int>(whole);
}

void PreFlopStage(CalcState& state, DisplayModel& display) {
    double value = 0.0;
    Step(state, [&] { value = HoleCardValue(state, kStartingHandColumn).value_or(0.0); });
    int16_t rounded = 0;
    Step(state, [&] { rounded = ToInt16(value); });
    state.trace.Note("pre-flop: starting hand figure ", value, " shown ", rounded);
    Step(state, [&] { ShowStrength(display, rounded); });
    Step(state, [&] { ShowSuggestion(display, rounded, kSuggestPreFlop); });
    Step(state, [&] { ShowGauge(display, rounded, kPreFlopFullScale); });
}

template <class StrengthStage>
void PostFlopStage(CalcState& state, DisplayModel& display, StrengthStage&& calcStrength) {
    Step(state, [&] { calcStrength(state); });
    state.trace.Note("strength ", state.gStrength);
    Step(state, [&] { ShowSuggestion(display, state.gStrength, kSuggestAfterFlop); });
    Step(state, [&] { ShowGauge(display, state.gStrength, kStrengthFullScale); });
    Step(state, [&] { ShowStrength(display, state.gStrength); });
}

}  // namespace

int ChooseStage(const TextCells& mCards) {
    auto filled = [&](int cell) { return !mCards[cell].empty(); };
    const bool hole = filled(0) && filled(1);
    const bool flop = filled(2) && filled(3) && filled(4);
    if (hole && flop && filled(5) && filled(6)) return kRiverStage;
    if (hole && flop && filled(5) && !filled(6)) return kTurnStage;
    if (hole && flop && !filled(5) && !filled(6)) return kFlopStage;
    if (hole && !filled(2) && !filled(3) && !filled(4) && !filled(5) && !filled(6)) {
        return kPreFlopStage;
    }
    return kNoStage;
}

std::string ChanceCaption(const std::string& odds) {
    if (odds == kCurrent) return std::string(kCurrent);
    const std::string trimmed = Trim(odds);
    if (trimmed.size() == 2) return trimmed + " %";
    if (odds.empty()) return "";
    // Written for one digit; longer texts take the zero too ("0100 %").
    return "0" + trimmed + " %";
}

DisplayModel RecalculateHand(CalcState& state, const TextCells& mCards) {
    DisplayModel display;  // ClearLabels: every label blank, the gauge collapsed
    state.trace.Clear();

    Step(state, [&] { state.gCards.Erase(); });
    for (int i = 0; i < kSlotCount; ++i) {
        Step(state, [&] {
            const CardCode card = CardFromText(mCards[i]);
            if (card != kNoCard) state.gCards[i] = card;
        });
    }
    Step(state, [&] { UpdateOdds(state); });
    for (int i = 0; i < kHandClassCount; ++i) {
        Step(state, [&] { display.chances[i] = ChanceCaption(state.gOdds[i]); });
    }

    display.stage = ChooseStage(mCards);
    state.trace.Note("stage ", display.stage);
    switch (display.stage) {
        case kPreFlopStage:
            PreFlopStage(state, display);
            break;
        case kFlopStage:
            PostFlopStage(state, display, CalcFlopStrength);
            break;
        case kTurnStage:
            PostFlopStage(state, display, CalcTurnStrength);
            break;
        case kRiverStage:
            PostFlopStage(state, display, CalcRiverStrength);
            break;
        default:
            break;
    }
    return display;
}

}  // namespace felthawk
