// One pair and no pair on the turn. Small figures here stand for a hand that
// must still improve: the two draws of the closing step are taken at their
// word.
#include "turn/turn_branches.h"

namespace felthawk {
namespace {

using namespace turn;

// A pocket pair's worth by its rank and whether a board card is above it.
// The jack and the ten gain from an overcard, the king and the queen lose by
// it; the asymmetry is the rule's.
double PocketPairBase(int rank, bool overcard) {
    switch (rank) {
        case 14:
            return 6.5;
        case 13:
            return overcard ? 2.0 : 4.5;
        case 12:
            return overcard ? 2.0 : 3.0;
        case 11:
            return overcard ? 2.5 : 2.0;
        case 10:
            return overcard ? 2.0 : 1.5;
        default:
            return 1.0;
    }
}

double PocketPairOuts(const CalcState& state, int pair) {
    const int overcards =
        CountBoardCards(state, [&](CardCode card) { return RankOf(card) > pair; });
    double outs = PocketPairBase(pair, overcards > 0);

    // Four board cards in the suit of the second hole card (the first hole
    // card's suit stops the count at three).
    int suited = 0;
    for (int slot = 0; slot <= 1; ++slot) {
        const int16_t suit = SuitBase(state.gCards[slot]);
        suited = CountBoardCards(state, [&](CardCode card) { return SuitBase(card) == suit; });
        if (suited == 3) break;
    }
    if (suited > 3) outs += overcards > 0 ? -0.25 : 1.0;

    // Four singles in a five-wide span: the rule reads the count held at the
    // span's start rank, not the start itself.
    const SpanHit draw = FirstSpan(
        2, 10, 5, [&](long rank) { return state.gRankCount[rank] == 1; },
        [](int count) { return count == 4; });
    if (draw.found) {
        const int v = state.gRankCount[draw.start];
        if (pair < v + 5 && pair > v) outs += pair == v + 4 ? 2.0 : 1.5;
    }
    return outs;
}

// A pair made with the board, or lying on it. Suited hole cards with two
// more of their suit on the board hold a flush draw, worth more the fewer
// cards of the suit lie below the high hole card.
double OtherPairOuts(const CalcState& state, int i, int j) {
    const int16_t suit = SuitBase(state.gCards[0]);
    if (suit != SuitBase(state.gCards[1])) return 0.0;
    if (CountBoardCards(state, [&](CardCode card) { return SuitBase(card) == suit; }) != 2) {
        return 0.0;
    }
    const HoleRanks hole = HoleRanksOf(state);
    int below = 0;  // c
    for (int slot = 0; slot <= kLastBoardSlot; ++slot) {
        if (SuitBase(state.gCards[slot]) == suit && RankAt(state, slot) < hole.high) ++below;
    }
    const bool pairOnBoard = i >= 2 && j >= 2;
    return pairOnBoard ? (hole.high - below - 2) / 2.0 + 1.0 : hole.high - below - 2 + 1.0;
}

// The straight draw of a hand without a pair: four singles in a five-wide
// span with a gap inside. The read of the rank above the span comes first,
// so a span from ten reads past the ace and the stage ends there.
double TurnStraightDrawOuts(const CalcState& state) {
    const RankCounts& counts = state.gRankCount;
    const SpanHit hit = FirstSpan(
        2, 10, 5, [&](long rank) { return counts[rank] == 1; },
        [](int count) { return count >= 4; });
    if (!hit.found || hit.count != 4) return 0.0;
    const long start = hit.start;
    if (counts[start] != 1 || counts[start + 4] != 1) return 0.0;
    const bool aboveNotSingle = counts[start + 5] != 1;
    return aboveNotSingle || start >= 9 ? 1.0 : 2.0;
}

}  // namespace

void TurnPair(CalcState& state) {
    int first = -1;
    int second = -1;
    for (int i = 0; i <= 4 && first < 0; ++i) {
        for (int j = i + 1; j <= kLastBoardSlot; ++j) {
            if (RankAt(state, i) == RankAt(state, j)) {
                first = i;
                second = j;
                break;
            }
        }
    }
    const bool pocketPair = first == 0 && second == 1;
    double outs =
        pocketPair ? PocketPairOuts(state, RankAt(state, 0)) : OtherPairOuts(state, first, second);
    outs += 0.25;
    state.trace.Note("TurnPair: pair in slots ", first, " and ", second);
    TurnStrengthFromOuts(state, "TurnPair", outs, UnseenRule::kLarger);
}

void TurnNoPair(CalcState& state) {
    double outs = TurnStraightDrawOuts(state);
    const int16_t suit = SuitBase(state.gCards[0]);
    if (suit == SuitBase(state.gCards[1]) &&
        CountBoardCards(state, [&](CardCode card) { return SuitBase(card) == suit; }) == 2) {
        outs += 4.0;  // a four-flush draw
    }
    TurnStrengthFromOuts(state, "TurnNoPair", outs, UnseenRule::kLarger);
}

}  // namespace felthawk
