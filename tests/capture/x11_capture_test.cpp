// Capture against the real felthawk-table on a real X server.
#include <gtest/gtest.h>
#include <xcb/xcb.h>

#include <QApplication>
#include <QElapsedTimer>
#include <QWidget>
#include <fstream>
#include <iterator>

#include "capture/client_capture.h"
#include "capture/client_layout.h"
#include "capture/xcb_window_system.h"
#include "tests/capture/fake_windows.h"
#include "tests/capture/temp_folder.h"
#include "tests/capture/x11_session.h"
#include "tools/table/table_picture.h"

namespace felthawk {
namespace {

namespace fs = std::filesystem;

TextCells Cells(std::string_view text) {
    std::string error;
    return *ParseTableCells(text, error);
}

void Settle(int ms) {
    QElapsedTimer timer;
    timer.start();
    while (timer.elapsed() < ms) QApplication::processEvents(QEventLoop::AllEvents, 10);
}

class X11Capture : public ::testing::Test {
  protected:
    void SetUp() override {
        std::string error;
        windows = XcbWindowSystem::Open(error);
        ASSERT_TRUE(windows) << error;
        capture = std::make_unique<ClientCapture>(
            *windows, CaptureFolders{data.path(), {FELTHAWK_TEST_ICONS_DIR}});
        // A stand-in for the board's strip, low enough that the docked
        // table stays on the screen.
        strip.setFixedSize(674, 71);
        strip.move(150, 600);
        strip.show();
        Settle(100);
        board.own = strip.winId();
    }

    TextCells Pass() {
        board.shown.clear();
        capture->ReadClientCards(board);
        return board.shown.empty() ? TextCells{{"none"}} : board.shown.back();
    }

    TempFolder data;
    std::unique_ptr<XcbWindowSystem> windows;
    std::unique_ptr<ClientCapture> capture;
    QWidget strip;
    RecordingBoard board;
    TableProcess table;
};

TEST_F(X11Capture, TheClientIsFoundByTheWordInItsTitleInAnyCase) {
    struct Case {
        std::string title;
        bool found;
    } cases[] = {
        {"Texas HOLD'EM - table 4", true},
        {"Texas Holdem - table 4", false},
        {std::string(240, 'x') + "Hold'em", true},
        {std::string(250, 'x') + "Hold'em", false},  // past the 254 characters read
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.title);
        TableProcess client;
        const WindowId id = client.Start({"--title", QString::fromStdString(c.title)});
        ASSERT_NE(id, 0u);
        capture->FindClient(board, 0);
        EXPECT_EQ(capture->ClientFound(), c.found);
        EXPECT_EQ(capture->ClientWindow(), c.found ? id : 0);
    }
}

TEST_F(X11Capture, OnePassReadsWhatTheTableShows) {
    ASSERT_NE(table.Start({}), 0u);
    const char* deals[] = {
        "AS,KS,QH,JD,2C,,",      // hole cards and a flop, no turn
        ",,,,,,",                // an empty table
        "9C,9D,,,,,",            // before the flop
        "XX,KH,2S,3S,4S,,",      // one hole card face down
        "TS,2H,7D,8D,9D,JC,AC",  // the river
    };
    for (const char* deal : deals) {
        SCOPED_TRACE(deal);
        ASSERT_TRUE(table.Deal(deal));
        EXPECT_EQ(Pass(),
                  Cells(std::string_view(deal) == "XX,KH,2S,3S,4S,," ? ",KH,2S,3S,4S,," : deal));
        EXPECT_TRUE(board.stops.empty());
    }
}

TEST_F(X11Capture, TheStripMovesDownToNinetyAndTheTableDocksAboveIt) {
    strip.move(100, 40);
    Settle(100);
    const WindowId id = table.Start({"--at", "300,300"});
    ASSERT_NE(id, 0u);
    capture->FindClient(board, 0);
    EXPECT_EQ(windows->GetWindowRect(board.own), (WindowRect{100, 90, 674, 71}));
    EXPECT_EQ(windows->GetWindowRect(id),
              (WindowRect{47, 90 - kTableHeight, kTableWidth, kTableHeight}));
    EXPECT_EQ(windows->ForegroundWindow(), id);
}

TEST_F(X11Capture, AMinimisedTableIsShownAgainAndRead) {
    const WindowId id = table.Start({"--cells", "AH,AD,,,,,"});
    ASSERT_NE(id, 0u);
    xcb_connection_t* other = xcb_connect(nullptr, nullptr);
    xcb_unmap_window(other, id);
    std::free(xcb_get_input_focus_reply(other, xcb_get_input_focus(other), nullptr));
    xcb_disconnect(other);
    ASSERT_EQ(windows->GetShowCommand(id), kShowMinimised);

    capture->FindClient(board, 0);
    EXPECT_EQ(windows->GetShowCommand(id), kShowNormal);
    Settle(300);  // the table repaints once it is back
    EXPECT_EQ(Pass(), Cells("AH,AD,,,,,"));
}

// Forwards to the real window system, and closes the table at the first
// screenshot after the search's probe.
class ClosingWindows : public IWindowSystem {
  public:
    ClosingWindows(IWindowSystem& real, TableProcess& table) : real_(real), table_(table) {}
    WindowId DesktopWindow() override { return real_.DesktopWindow(); }
    WindowId FirstChild(WindowId w) override { return real_.FirstChild(w); }
    WindowId NextSibling(WindowId w) override { return real_.NextSibling(w); }
    std::string WindowText(WindowId w) override { return real_.WindowText(w); }
    std::string ClassName(WindowId w) override { return real_.ClassName(w); }
    std::optional<WindowRect> GetWindowRect(WindowId w) override { return real_.GetWindowRect(w); }
    void MoveWindow(WindowId w, const WindowRect& r) override { real_.MoveWindow(w, r); }
    ShowCommand GetShowCommand(WindowId w) override { return real_.GetShowCommand(w); }
    void SetShowCommand(WindowId w, ShowCommand c) override { real_.SetShowCommand(w, c); }
    void BringWindowToTop(WindowId w) override { real_.BringWindowToTop(w); }
    WindowId ForegroundWindow() override { return real_.ForegroundWindow(); }
    QImage CaptureWindow(WindowId w) override {
        if (++captures_ == 2) table_.Kill();
        return real_.CaptureWindow(w);
    }

  private:
    IWindowSystem& real_;
    TableProcess& table_;
    int captures_ = 0;
};

TEST_F(X11Capture, ATableThatClosesDuringThePassLeavesTheBoardEmpty) {
    ASSERT_NE(table.Start({"--cells", "AS,KS,QH,JD,2C,,"}), 0u);
    ClosingWindows closing(*windows, table);
    ClientCapture doomed(closing, {data.path(), {FELTHAWK_TEST_ICONS_DIR}});
    doomed.ReadClientCards(board);
    ASSERT_EQ(board.shown.size(), 1u);
    EXPECT_EQ(board.shown[0], Cells(",,,,,,"));
    EXPECT_TRUE(board.stops.empty());
}

TEST_F(X11Capture, TheShippedTemplatesAreWhatFelthawkIconsMakesFromTheTable) {
    TempFolder made;
    QProcess icons;
    icons.start(FELTHAWK_ICONS_PROGRAM,
                {"--from-table", "--out", QString::fromStdString(made.path().string()), "--table",
                 FELTHAWK_TABLE_PROGRAM});
    ASSERT_TRUE(icons.waitForFinished(60000)) << icons.errorString().toStdString();
    ASSERT_EQ(icons.exitCode(), 0) << icons.readAllStandardError().toStdString();
    for (int i = 0; i < kTemplateCount; ++i) {
        const std::string name = TemplateFileName(TemplateCard(i));
        std::ifstream shipped(fs::path(FELTHAWK_TEST_ICONS_DIR) / name, std::ios::binary);
        std::ifstream fresh(made.path() / name, std::ios::binary);
        const std::string a{std::istreambuf_iterator<char>(shipped), {}};
        const std::string b{std::istreambuf_iterator<char>(fresh), {}};
        EXPECT_TRUE(!a.empty() && a == b) << name;
    }
}

}  // namespace
}  // namespace felthawk
