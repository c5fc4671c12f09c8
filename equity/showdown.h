// Pieces shared by the exact and the Monte Carlo equity: a request checked
// and reduced to what the counting needs, and the scoring of one showdown.
#pragma once

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <vector>

#include "equity/equity.h"
#include "equity/evaluator.h"

namespace felthawk::equity::detail {

constexpr int kMaxPlayers = kMaxOpponents + 1;
// A pot split among k players (k = 1..10) gives each 2520 / k, a whole number.
constexpr int64_t kWholePot = 2520;

// The request after checking: opponents' ranges without the known cards.
struct Spot {
    std::array<Card, 2> hero;
    std::vector<Card> board;
    std::vector<Range> ranges;
    std::vector<bool> everyCombo;  // the range was every combo at one weight
    CardMask known = 0;            // hero and board
    int cardsToCome = 0;
};

// The user's result over a set of deals, in whole numbers.
struct Tally {
    int64_t deals = 0;
    int64_t wins = 0;
    int64_t ties = 0;
    int64_t shares = 0;  // in units of kWholePot

    Tally& operator+=(const Tally& o) {
        deals += o.deals;
        wins += o.wins;
        ties += o.ties;
        shares += o.shares;
        return *this;
    }
};

// The user is player 0. Adds one showdown, `weight` times, with sign.
inline void Score(const HandValue* values, int players, int64_t weight, Tally& tally) {
    HandValue best = 0;
    for (int p = 1; p < players; ++p) best = std::max(best, values[p]);
    if (values[0] > best) {
        tally.wins += weight;
        tally.shares += weight * kWholePot;
    } else if (values[0] == best) {
        int tied = 1;
        for (int p = 1; p < players; ++p) tied += values[p] == best;
        tally.ties += weight;
        tally.shares += weight * (kWholePot / tied);
    }
}

inline double MillisecondsSince(std::chrono::steady_clock::time_point start) {
    return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start)
        .count();
}

// Deals every opponent a combo from its range so that no card is used twice,
// calling visit(combos, weight) for each joint holding; combos[i] indexes
// ranges[i]. Opponents from `first` on are dealt; `used` holds the cards
// already out. Stops early when visit returns false.
template <class Visit>
bool ForEachHolding(const Spot& spot, std::size_t first, CardMask used, double weight,
                    std::array<int, kMaxOpponents>& combos, const Visit& visit) {
    if (first == spot.ranges.size()) return visit(combos, weight);
    const Range& range = spot.ranges[first];
    for (std::size_t i = 0; i < range.size(); ++i) {
        if (range[i].Mask() & used) continue;
        combos[first] = static_cast<int>(i);
        if (!ForEachHolding(spot, first + 1, used | range[i].Mask(), weight * range[i].weight,
                            combos, visit)) {
            return false;
        }
    }
    return true;
}

// The estimated cost of enumerating every deal exactly, in evaluations.
double ExactCost(const Spot& spot);

EquityResult ExactEquity(const Spot& spot, const EquityRequest& request);
EquityResult MonteCarloEquity(const Spot& spot, const EquityRequest& request);

}  // namespace felthawk::equity::detail
