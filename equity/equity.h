// Equity of the user's two cards against one to nine opponents, each holding
// a hand from a range, on a board of zero to five known cards.
//
// Exact enumeration is used when the deals are few enough to finish quickly,
// Monte Carlo otherwise, stopping at a target standard error. Both spread
// over threads. A call keeps nothing for the next one; Monte Carlo draws from
// a generator seeded by the request, so equal requests get equal answers.
#pragma once

#include <array>
#include <atomic>
#include <cstdint>
#include <vector>

#include "equity/card.h"
#include "equity/range.h"

namespace felthawk::equity {

constexpr int kMaxOpponents = 9;

enum class EquityMethod { kAuto, kExact, kMonteCarlo };

struct EquityRequest {
    std::array<Card, 2> hero{};
    std::vector<Card> board;       // the known community cards, 0 to 5
    std::vector<Range> opponents;  // one range per opponent still in the hand
    double targetStderr = 0.002;   // Monte Carlo stops at this standard error of equity
    EquityMethod method = EquityMethod::kAuto;
    uint64_t seed = 0x5eed;
    int threads = 2;
    double maxSeconds = 30;                     // Monte Carlo stops here whatever its error
    const std::atomic<bool>* cancel = nullptr;  // set by another thread to stop early
};

struct EquityResult {
    double win = 0;     // share of deals the user wins alone, 0..1
    double tie = 0;     // share of deals the user ties for the best hand
    double equity = 0;  // win plus each tie's share of the pot
    int opponents = 0;
    EquityMethod method = EquityMethod::kExact;  // what was used: exact or Monte Carlo
    double stderr = 0;                           // of equity; 0 when exact
    uint64_t samples = 0;                        // deals enumerated or drawn
    double milliseconds = 0;
    bool cancelled = false;
};

// Throws EquityError when the request is impossible: a card twice, too many
// opponents, or a range that no deal can satisfy.
EquityResult ComputeEquity(const EquityRequest& request);

}  // namespace felthawk::equity
