// Monte Carlo equity: deals drawn at random until the standard error of the
// user's equity reaches the target.
//
// Opponents with a narrower range than "random" draw a combo by weight, and
// the whole draw starts again when two of them collide, so joint holdings
// come in proportion to the product of their weights. Opponents with every
// combo then take cards from the deck like the board does, which gives the
// same distribution without rejections.
//
// Work goes in rounds of one batch per thread. Each batch has its own
// generator seeded from the request and the batch's number, and the rounds'
// sizes follow from the results so far alone, so the answer does not depend
// on which thread ran what or how fast.
#include <cmath>
#include <thread>

#include "equity/showdown.h"

namespace felthawk::equity::detail {
namespace {

// splitmix64: spreads a seed over 64 bits.
uint64_t Mix(uint64_t x) {
    x += 0x9e3779b97f4a7c15ull;
    x = (x ^ (x >> 30)) * 0xbf58476d1ce4e5b9ull;
    x = (x ^ (x >> 27)) * 0x94d049bb133111ebull;
    return x ^ (x >> 31);
}

// xoshiro256+ style generator: four words of state, shifts and rotations.
class Generator {
  public:
    explicit Generator(uint64_t seed) {
        for (auto& word : state_) word = seed = Mix(seed);
    }
    uint64_t Next() {
        const uint64_t result = state_[0] + state_[3];
        const uint64_t t = state_[1] << 17;
        state_[2] ^= state_[0];
        state_[3] ^= state_[1];
        state_[1] ^= state_[2];
        state_[0] ^= state_[3];
        state_[2] ^= t;
        state_[3] = std::rotl(state_[3], 45);
        return result;
    }
    // 0 <= result < n, from the top 32 bits; the bias is below n / 2^32.
    uint32_t Below(uint32_t n) { return static_cast<uint32_t>(((Next() >> 32) * n) >> 32); }
    double Unit() { return static_cast<double>(Next() >> 11) * 0x1.0p-53; }

  private:
    std::array<uint64_t, 4> state_{};
};

// Draws a combo index in proportion to the weights in O(1) (alias method):
// column i keeps its own index with probability keep[i], else gives alias[i].
class WeightedDraw {
  public:
    explicit WeightedDraw(const Range& range) : keep_(range.size()), alias_(range.size()) {
        const std::size_t n = range.size();
        double total = 0;
        for (const auto& c : range) total += c.weight;
        std::vector<double> scaled(n);
        std::vector<std::size_t> small, large;
        for (std::size_t i = 0; i < n; ++i) {
            scaled[i] = range[i].weight * static_cast<double>(n) / total;
            (scaled[i] < 1 ? small : large).push_back(i);
        }
        while (!small.empty() && !large.empty()) {
            const std::size_t s = small.back(), l = large.back();
            small.pop_back();
            keep_[s] = scaled[s];
            alias_[s] = static_cast<uint32_t>(l);
            scaled[l] -= 1 - scaled[s];
            if (scaled[l] < 1) {
                large.pop_back();
                small.push_back(l);
            }
        }
        for (std::size_t i : small) keep_[i] = 1;
        for (std::size_t i : large) keep_[i] = 1;
    }

    std::size_t operator()(Generator& g) const {
        const uint32_t column = g.Below(static_cast<uint32_t>(keep_.size()));
        return g.Unit() < keep_[column] ? column : alias_[column];
    }

  private:
    std::vector<double> keep_;
    std::vector<uint32_t> alias_;
};

struct Stats {
    uint64_t samples = 0;
    uint64_t wins = 0;
    uint64_t ties = 0;
    double sum = 0;  // of the user's share of each pot
    double sumOfSquares = 0;

    void operator+=(const Stats& o) {
        samples += o.samples;
        wins += o.wins;
        ties += o.ties;
        sum += o.sum;
        sumOfSquares += o.sumOfSquares;
    }
    double Stderr() const {
        const double n = static_cast<double>(samples);
        const double mean = sum / n;
        return std::sqrt(std::max(0.0, sumOfSquares / n - mean * mean) / n);
    }
};

class Sampler {
  public:
    explicit Sampler(const Spot& spot) : spot_(spot) {
        for (Card c : spot.board) board_ += Hand::Of(c);
        hero_ = board_ + Hand::Of(spot.hero[0]) + Hand::Of(spot.hero[1]);
        for (std::size_t i = 0; i < spot.ranges.size(); ++i) {
            if (spot.everyCombo[i]) {
                ++dealtFromDeck_;
            } else {
                ranged_.push_back(&spot.ranges[i]);
                draws_.emplace_back(spot.ranges[i]);
            }
        }
    }

    Stats Run(uint64_t seed, uint64_t count, const std::atomic<bool>* cancel) const {
        Generator g(seed);
        Stats stats;
        std::array<Card, kDeckSize> deck{};
        int n = 0;  // cards in the deck
        HandValue values[kMaxPlayers] = {};
        std::array<Hand, kMaxPlayers> hands{};
        const int players = static_cast<int>(spot_.ranges.size()) + 1;
        for (uint64_t i = 0; i < count; ++i) {
            if ((i & 1023) == 0 && cancel && cancel->load(std::memory_order_relaxed)) break;
            CardMask used;
            int p = 1;
            do {  // the ranged opponents, again from the start after any collision
                used = spot_.known;
                p = 1;
                for (std::size_t r = 0; r < ranged_.size(); ++r, ++p) {
                    const auto& combo = (*ranged_[r])[draws_[r](g)];
                    if (combo.Mask() & used) break;
                    used |= combo.Mask();
                    hands[p] = board_ + Hand::Of(combo.high) + Hand::Of(combo.low);
                }
            } while (p != static_cast<int>(ranged_.size()) + 1);

            // Without ranged opponents the deck stays the same set of cards
            // from deal to deal; a partial shuffle draws from any order of it.
            if (!ranged_.empty() || n == 0) {
                n = 0;
                for (Card c = 0; c < kDeckSize; ++c) {
                    if (!(used & Bit(c))) deck[n++] = c;
                }
            }
            int drawn = 0;
            auto take = [&] {
                const uint32_t j = drawn + g.Below(static_cast<uint32_t>(n - drawn));
                std::swap(deck[drawn], deck[j]);
                return deck[drawn++];
            };
            for (int d = 0; d < dealtFromDeck_; ++d, ++p) {
                const Card a = take();
                hands[p] = board_ + Hand::Of(a) + Hand::Of(take());
            }
            Hand rest;
            for (int b = 0; b < spot_.cardsToCome; ++b) rest += Hand::Of(take());
            values[0] = Evaluate(hero_ + rest);
            for (int q = 1; q < players; ++q) values[q] = Evaluate(hands[q] + rest);
            Tally one;
            Score(values, players, 1, one);
            const double share = static_cast<double>(one.shares) / kWholePot;
            ++stats.samples;
            stats.wins += one.wins;
            stats.ties += one.ties;
            stats.sum += share;
            stats.sumOfSquares += share * share;
        }
        return stats;
    }

  private:
    const Spot& spot_;
    Hand board_;
    Hand hero_;
    int dealtFromDeck_ = 0;
    std::vector<const Range*> ranged_;
    std::vector<WeightedDraw> draws_;
};

constexpr uint64_t kFirstBatch = 4096;
constexpr uint64_t kLargestBatch = uint64_t{1} << 22;
constexpr uint64_t kMostSamples = uint64_t{1} << 32;

}  // namespace

EquityResult MonteCarloEquity(const Spot& spot, const EquityRequest& request) {
    const auto start = std::chrono::steady_clock::now();
    const int threads = std::max(1, request.threads);
    const Sampler sampler(spot);
    Stats total;
    uint64_t batch = 0;
    uint64_t size = kFirstBatch;
    bool cancelled = false;
    while (true) {
        std::vector<Stats> results(threads);
        std::vector<std::thread> helpers;
        auto run = [&](int t) {
            results[t] = sampler.Run(Mix(request.seed ^ Mix(batch + t)), size, request.cancel);
        };
        for (int t = 1; t < threads; ++t) helpers.emplace_back(run, t);
        run(0);
        for (auto& h : helpers) h.join();
        batch += threads;
        for (const auto& r : results) total += r;

        cancelled = request.cancel && request.cancel->load();
        const double error = total.Stderr();
        if (cancelled || error <= request.targetStderr || total.samples >= kMostSamples ||
            MillisecondsSince(start) >= request.maxSeconds * 1000) {
            break;
        }
        // Enough for the target at the spread seen so far, and a tenth more.
        const double variance = error * error * static_cast<double>(total.samples);
        const double needed = variance / (request.targetStderr * request.targetStderr) * 1.1;
        const double more = std::max(0.0, needed - static_cast<double>(total.samples)) / threads;
        size = std::clamp<uint64_t>(static_cast<uint64_t>(more), kFirstBatch, kLargestBatch);
    }

    EquityResult result;
    result.opponents = static_cast<int>(spot.ranges.size());
    result.method = EquityMethod::kMonteCarlo;
    const double n = static_cast<double>(std::max<uint64_t>(total.samples, 1));
    result.win = static_cast<double>(total.wins) / n;
    result.tie = static_cast<double>(total.ties) / n;
    result.equity = total.sum / n;
    result.stderr = total.samples ? total.Stderr() : 0;
    result.samples = total.samples;
    result.milliseconds = MillisecondsSince(start);
    result.cancelled = cancelled;
    return result;
}

}  // namespace felthawk::equity::detail
