#include "equity/equity.h"

#include <cmath>
#include <string>

#include "equity/showdown.h"

namespace felthawk::equity {
namespace {

// Exact enumeration is chosen up to about this many evaluations: a few
// hundred milliseconds on two cores.
constexpr double kExactBudget = 1.5e8;

detail::Spot CheckedSpot(const EquityRequest& request) {
    detail::Spot spot;
    spot.hero = request.hero;
    spot.board = request.board;
    if (request.board.size() > 5) throw EquityError("the board holds at most five cards");
    const int opponents = static_cast<int>(request.opponents.size());
    if (opponents < 1 || opponents > kMaxOpponents) {
        throw EquityError("equity needs 1 to " + std::to_string(kMaxOpponents) +
                          " opponents, not " + std::to_string(opponents));
    }
    std::vector<Card> cards{request.hero[0], request.hero[1]};
    cards.insert(cards.end(), request.board.begin(), request.board.end());
    for (Card c : cards) {
        if (c >= kDeckSize) throw EquityError("a card code is outside 0..51");
        if (spot.known & Bit(c)) throw EquityError(CardText(c) + " is dealt twice");
        spot.known |= Bit(c);
    }
    spot.cardsToCome = 5 - static_cast<int>(request.board.size());
    for (int i = 0; i < opponents; ++i) {
        spot.everyCombo.push_back(IsEveryCombo(request.opponents[i]));
        spot.ranges.push_back(WithoutCards(request.opponents[i], spot.known));
        if (spot.ranges.back().empty()) {
            throw EquityError("opponent " + std::to_string(i + 1) +
                              "'s range has no hand left beside the known cards");
        }
    }
    if (!(request.targetStderr > 0) || !std::isfinite(request.targetStderr)) {
        throw EquityError("the target standard error must be above 0");
    }
    // One joint holding must exist, or no deal can be made at all.
    std::array<int, kMaxOpponents> combos{};
    const bool none = detail::ForEachHolding(spot, 0, spot.known, 1.0, combos,
                                             [](const auto&, double) { return false; });
    if (none) throw EquityError("the ranges cannot all be dealt at once: too few cards for them");
    return spot;
}

}  // namespace

EquityResult ComputeEquity(const EquityRequest& request) {
    const detail::Spot spot = CheckedSpot(request);
    const bool exact =
        request.method == EquityMethod::kExact ||
        (request.method == EquityMethod::kAuto && detail::ExactCost(spot) <= kExactBudget);
    return exact ? detail::ExactEquity(spot, request) : detail::MonteCarloEquity(spot, request);
}

}  // namespace felthawk::equity
