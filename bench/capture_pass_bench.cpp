// One capture pass against felthawk-table on an Xvfb of its own, with a
// window manager and a strip to dock to, as a user has them:
//
//   felthawk_capture_bench --wm=openbox --depth=16
//
// The pass runs every 2000 ms. It waits 10 ms for the raised client to show;
// everything else (search, docking, the reading of the screen, seven crops,
// their icon files and recognition) should take under 3 ms median, and the
// whole pass under 15 ms.
#include <benchmark/benchmark.h>

#include <QApplication>
#include <QWidget>
#include <cstdlib>
#include <iostream>

#include "capture/client_capture.h"
#include "capture/xcb_window_system.h"
#include "tests/capture/temp_folder.h"
#include "tests/capture/x11_session.h"

namespace felthawk {
namespace {

constexpr const char* kCells = "AS,KS,QH,JD,2C,9H,TD";

class BenchBoard : public ICaptureBoard {
  public:
    explicit BenchBoard(QWidget& strip) : strip_(strip) {}
    WindowId OwnWindow() override { return static_cast<WindowId>(strip_.winId()); }
    void EnterCompactView() override {}
    int StripHeight() override { return strip_.height(); }
    void ShowStripNote(const std::string&) override {}
    void ClearCards() override {}
    int PreviousSeat() override { return 9; }
    void ShowCapturedCards(const TextCells& cells) override { last = cells; }
    void StopCapture(const std::string& message) override { stopped = message; }
    TextCells last;
    std::string stopped;

  private:
    QWidget& strip_;
};

ClientCapture* gCapture = nullptr;
BenchBoard* gBoard = nullptr;

bool ReadAll(benchmark::State& state) {
    const TextCells expected{"AS", "KS", "QH", "JD", "2C", "9H", "TD"};
    if (gBoard->last == expected && gBoard->stopped.empty()) return true;
    state.SkipWithError("the pass did not read the table");
    return false;
}

void BM_WholePass(benchmark::State& state) {
    for (auto _ : state) gCapture->ReadClientCards(*gBoard);
    ReadAll(state);
}
BENCHMARK(BM_WholePass)
    ->Unit(benchmark::kMillisecond)
    ->Iterations(20)
    ->Repetitions(5)
    ->ReportAggregatesOnly(true);

// The same pass, timed without the wait for the raised client.
void BM_PassWithoutTheWait(benchmark::State& state) {
    for (auto _ : state) {
        const auto start = std::chrono::steady_clock::now();
        gCapture->ReadClientCards(*gBoard);
        const auto spent = std::chrono::steady_clock::now() - start - gCapture->RaiseWaitTime();
        state.SetIterationTime(std::chrono::duration<double>(spent).count());
    }
    ReadAll(state);
}
BENCHMARK(BM_PassWithoutTheWait)
    ->Unit(benchmark::kMillisecond)
    ->UseManualTime()
    ->Iterations(20)
    ->Repetitions(5)
    ->ReportAggregatesOnly(true);

}  // namespace
}  // namespace felthawk

int main(int argc, char** argv) {
    using namespace felthawk;
    benchmark::Initialize(&argc, argv);
    std::string manager = "openbox";
    int depth = 24;
    for (int i = 1; i < argc; ++i) {
        const std::string argument = argv[i];
        if (argument.rfind("--wm=", 0) == 0) manager = argument.substr(5);
        if (argument.rfind("--depth=", 0) == 0) depth = std::atoi(argument.c_str() + 8);
    }
    XvfbServer server;
    std::string error;
    if (!server.Start(depth, error)) {
        std::cerr << error << '\n';
        return 1;
    }
    ::setenv("DISPLAY", server.Display().c_str(), 1);
    ::setenv("QT_QPA_PLATFORM", "xcb", 1);
    QApplication app(argc, argv);
    WindowManager windowManager;
    if (!windowManager.Start(manager, error)) {
        std::cerr << error << '\n';
        return 1;
    }
    QWidget strip;
    strip.setFixedSize(674, 71);
    strip.show();
    TableProcess table;
    if (table.Start({"--cells", kCells}) == 0) {
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
    BenchBoard board(strip);
    gCapture = &capture;
    gBoard = &board;
    std::cout << "window manager " << manager << ", " << depth << " bits\n";
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
