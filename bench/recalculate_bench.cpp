#include <benchmark/benchmark.h>

#include "cards/recalculate.h"

namespace felthawk {
namespace {

void BM_RecalculateHand(benchmark::State& bench, TextCells cells) {
    CalcState state;
    for (auto _ : bench) {
        DisplayModel display = RecalculateHand(state, cells);
        benchmark::DoNotOptimize(display);
    }
}

BENCHMARK_CAPTURE(BM_RecalculateHand, preflop, TextCells{"AS", "KS", "", "", "", "", ""});
BENCHMARK_CAPTURE(BM_RecalculateHand, flop, TextCells{"AS", "KS", "QH", "7D", "2C", "", ""});
BENCHMARK_CAPTURE(BM_RecalculateHand, turn, TextCells{"AS", "KS", "QH", "7D", "2C", "9S", ""});
BENCHMARK_CAPTURE(BM_RecalculateHand, river,
                  TextCells{"AS", "KS", "QH", "7D", "2C", "9S", "3S"});

}  // namespace
}  // namespace felthawk

BENCHMARK_MAIN();
