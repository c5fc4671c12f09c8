#include "turn/turn_common.h"

#include "flop/strength_common.h"

namespace felthawk {
namespace {

constexpr int16_t kTurnUnseen = 46;  // 52 less the six known cards

const char* RuleName(UnseenRule rule) {
    switch (rule) {
        case UnseenRule::kLarger:
            return "Larger";
        case UnseenRule::kSum:
            return "Sum";
        case UnseenRule::kFixed46:
            return "Fixed 46";
        case UnseenRule::kFixed45:
            return "Fixed 45";
    }
    return "";
}

}  // namespace

bool RankCountIs(const CalcState& state, long rank, long first, long last, long wanted) {
    if (last > 6) last = 6;
    long count = 0;
    for (long slot = first; slot <= last; ++slot) {
        if (RankOf(state.gCards[slot]) == rank) ++count;
    }
    return count == wanted;
}

int16_t UnseenCards(const CalcState& state, UnseenRule rule) {
    const int16_t folded = state.gFoldedCount;
    const int16_t empty = state.gEmptyCount;
    switch (rule) {
        case UnseenRule::kLarger:
            return ToInt16(kTurnUnseen - (folded > empty ? folded : empty));
        case UnseenRule::kSum:
            return ToInt16(kTurnUnseen - folded - empty);
        case UnseenRule::kFixed46:
            return 46;
        case UnseenRule::kFixed45:
            return 45;
    }
    return kTurnUnseen;
}

void TurnStrengthFromOuts(CalcState& state, std::string_view leaf, double outs, UnseenRule rule) {
    const int16_t unseen = UnseenCards(state, rule);
    state.trace.Note(leaf, ": outs ", outs, ", N ", unseen, " (", RuleName(rule), ")");
    state.gStrength = ToInt16(100.0 * DrawChance(unseen, outs, outs));
}

void TurnStrengthFixed(CalcState& state, std::string_view leaf, int16_t strength) {
    state.trace.Note(leaf, ": fixed ", strength);
    state.gStrength = strength;
}

}  // namespace felthawk
