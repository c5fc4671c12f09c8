// The equity library's speed: raw evaluations and whole equity questions.
// Each equity case reports the process's peak resident size so far; run one
// case per process (bench/equity_bench.sh) for a per-case peak.
#include <benchmark/benchmark.h>
#include <sys/resource.h>

#include <random>
#include <string>
#include <vector>

#include "equity/equity.h"
#include "equity/evaluator.h"

namespace felthawk::equity {
namespace {

std::vector<Hand> RandomSevenCardHands(std::size_t count) {
    std::mt19937_64 random(450);
    std::vector<Card> deck(kDeckSize);
    for (Card c = 0; c < kDeckSize; ++c) deck[c] = c;
    std::vector<Hand> hands(count);
    for (auto& hand : hands) {
        for (int i = 0; i < 7; ++i) {
            std::swap(deck[i], deck[i + random() % (kDeckSize - i)]);
            hand += Hand::Of(deck[i]);
        }
    }
    return hands;
}

// Hands summed beforehand, as the equity walks use them.
void BM_EvaluateRandomHands(benchmark::State& bench) {
    const auto hands = RandomSevenCardHands(1 << 16);
    for (auto _ : bench) {
        uint32_t sum = 0;
        for (const Hand& h : hands) sum += Evaluate(h);
        benchmark::DoNotOptimize(sum);
    }
    bench.SetItemsProcessed(bench.iterations() * static_cast<int64_t>(hands.size()));
}
BENCHMARK(BM_EvaluateRandomHands);

// The same with the seven cards added up for every evaluation.
void BM_EvaluateRandomCards(benchmark::State& bench) {
    std::mt19937_64 random(451);
    std::vector<std::array<Card, 7>> deals(1 << 16);
    std::vector<Card> deck(kDeckSize);
    for (Card c = 0; c < kDeckSize; ++c) deck[c] = c;
    for (auto& deal : deals) {
        for (int i = 0; i < 7; ++i) {
            std::swap(deck[i], deck[i + random() % (kDeckSize - i)]);
            deal[i] = deck[i];
        }
    }
    std::array<Hand, kDeckSize> single;
    for (Card c = 0; c < kDeckSize; ++c) single[c] = Hand::Of(c);
    for (auto _ : bench) {
        uint32_t sum = 0;
        for (const auto& d : deals) {
            sum += Evaluate(single[d[0]] + single[d[1]] + single[d[2]] + single[d[3]] +
                            single[d[4]] + single[d[5]] + single[d[6]]);
        }
        benchmark::DoNotOptimize(sum);
    }
    bench.SetItemsProcessed(bench.iterations() * static_cast<int64_t>(deals.size()));
}
BENCHMARK(BM_EvaluateRandomCards);

void BM_Equity(benchmark::State& bench, const char* hero, std::vector<std::string> ranges,
               EquityMethod expected) {
    EquityRequest request;
    request.hero = {*ParseCard(std::string_view(hero, 2)),
                    *ParseCard(std::string_view(hero + 2, 2))};
    for (const auto& r : ranges) request.opponents.push_back(ParseRange(r));
    EquityResult result;
    for (auto _ : bench) {
        result = ComputeEquity(request);
        benchmark::DoNotOptimize(result);
    }
    if (result.method != expected) bench.SkipWithError("a different method was chosen");
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    bench.counters["equity_pct"] = result.equity * 100;
    bench.counters["stderr_pct"] = result.stderr * 100;
    bench.counters["samples"] = static_cast<double>(result.samples);
    bench.counters["peak_rss_kB"] = static_cast<double>(usage.ru_maxrss);
}
BENCHMARK_CAPTURE(BM_Equity, AhAs_v_KdKc_exact, "AhAs", {"KdKc"}, EquityMethod::kExact)
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();
BENCHMARK_CAPTURE(BM_Equity, AKs_v_random_exact, "AsKs", {"random"}, EquityMethod::kExact)
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();
BENCHMARK_CAPTURE(BM_Equity, AKs_v_5_random_mc, "AsKs", std::vector<std::string>(5, "random"),
                  EquityMethod::kMonteCarlo)
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();
BENCHMARK_CAPTURE(BM_Equity, AKs_v_9_random_mc, "AsKs", std::vector<std::string>(9, "random"),
                  EquityMethod::kMonteCarlo)
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();

}  // namespace
}  // namespace felthawk::equity

BENCHMARK_MAIN();
