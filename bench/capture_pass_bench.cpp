// One capture pass against felthawk-table on an Xvfb of its own: the seven
// screenshots, the crops, the icon writes and the recognition. The pass runs
// every 2000 ms; the goal is a median under 20 ms. The search, with its
// fixed 10 ms wait for the raised client, is measured on its own.
#include <benchmark/benchmark.h>

#include <QGuiApplication>
#include <cstdlib>
#include <iostream>

#include "capture/client_capture.h"
#include "capture/xcb_window_system.h"
#include "tests/capture/temp_folder.h"
#include "tests/capture/x11_session.h"

namespace felthawk {
namespace {

class BenchBoard : public ICaptureBoard {
  public:
    WindowId OwnWindow() override { return 0; }
    void EnterCompactView() override {}
    void ClearCards() override {}
    int StripHeight() override { return 0; }
    void ShowStripNote(const std::string&) override {}
    int PreviousSeat() override { return 9; }
    void ShowCapturedCards(const TextCells& cells) override { last = cells; }
    void StopCapture(const std::string& message) override { stopped = message; }
    TextCells last;
    std::string stopped;
};

ClientCapture* gCapture = nullptr;

void BM_CaptureAndRecognise(benchmark::State& state) {
    BenchBoard board;
    gCapture->FindClient(board, 0);
    for (auto _ : state) {
        gCapture->ReadFoundClient(board);
        benchmark::DoNotOptimize(board.last);
    }
    if (board.last[6] != "TD" || !board.stopped.empty()) state.SkipWithError("cards not read");
}
BENCHMARK(BM_CaptureAndRecognise)
    ->Unit(benchmark::kMillisecond)
    ->Iterations(10)
    ->Repetitions(15)
    ->ReportAggregatesOnly(true);

void BM_WholePass(benchmark::State& state) {
    BenchBoard board;
    for (auto _ : state) gCapture->ReadClientCards(board);
    if (board.last[0] != "AS") state.SkipWithError("cards not read");
}
BENCHMARK(BM_WholePass)
    ->Unit(benchmark::kMillisecond)
    ->Iterations(10)
    ->Repetitions(5)
    ->ReportAggregatesOnly(true);

}  // namespace
}  // namespace felthawk

int main(int argc, char** argv) {
    using namespace felthawk;
    benchmark::Initialize(&argc, argv);
    XvfbServer server;
    std::string error;
    if (!server.Start(error)) {
        std::cerr << error << '\n';
        return 1;
    }
    ::setenv("DISPLAY", server.Display().c_str(), 1);
    ::setenv("QT_QPA_PLATFORM", "xcb", 1);
    QGuiApplication app(argc, argv);
    TableProcess table;
    if (table.Start({"--cells", "AS,KS,QH,JD,2C,9H,TD"}) == 0) {
        std::cerr << "felthawk-table did not start\n";
        return 1;
    }
    std::unique_ptr<XcbWindowSystem> windows = XcbWindowSystem::Open(error);
    if (!windows) {
        std::cerr << error << '\n';
        return 1;
    }
    TempFolder data;
    ClientCapture capture(*windows, {data.path(), {FELTHAWK_BENCH_ICONS_DIR}});
    gCapture = &capture;
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
