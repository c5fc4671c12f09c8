#include <gtest/gtest.h>

#include <fstream>

#include "capture/client_capture.h"
#include "capture/client_layout.h"
#include "tests/capture/fake_windows.h"
#include "tests/capture/temp_folder.h"
#include "tools/table/table_picture.h"

namespace felthawk {
namespace {

namespace fs = std::filesystem;

class ClientSearch : public ::testing::Test {
  protected:
    ClientSearch() : capture(windows, {data.path(), {FELTHAWK_TEST_ICONS_DIR}}) {}

    TempFolder data;
    FakeWindowSystem windows;
    RecordingBoard board;
    ClientCapture capture;
};

TEST_F(ClientSearch, AHitOnATopLevelWindowEndsTheWalk) {
    const WindowId first = windows.Add(FakeWindowSystem::kDesktop, "Texas Hold'em - table 1");
    const WindowId second = windows.Add(FakeWindowSystem::kDesktop, "Texas Hold'em - table 2");
    capture.FindClient(board, 0);
    EXPECT_TRUE(capture.ClientFound());
    EXPECT_EQ(capture.ClientWindow(), first);
    EXPECT_EQ(windows.raised, std::vector<WindowId>{first});
    EXPECT_EQ(std::count(windows.titlesRead.begin(), windows.titlesRead.end(), second), 0);
}

TEST_F(ClientSearch, AHitOnAChildStopsTheChildrenButNotTheTopLevelTitles) {
    // frame1 > hit1, frame2 > hit2, then a top-level hit, then a top-level
    // window whose child would also be a hit.
    const WindowId frame1 = windows.Add(FakeWindowSystem::kDesktop, "frame");
    const WindowId hit1 = windows.Add(frame1, "Hold'em lobby");
    const WindowId frame2 = windows.Add(FakeWindowSystem::kDesktop, "frame");
    const WindowId hidden = windows.Add(frame2, "Hold'em not searched");
    const WindowId top = windows.Add(FakeWindowSystem::kDesktop, "HOLD'EM table");
    capture.FindClient(board, 0);
    EXPECT_EQ(windows.raised, (std::vector<WindowId>{hit1, top}));
    EXPECT_EQ(capture.ClientWindow(), top);
    EXPECT_EQ(board.compactViews, 2);  // every hit docks
    EXPECT_EQ(std::count(windows.titlesRead.begin(), windows.titlesRead.end(), hidden), 0);
}

TEST_F(ClientSearch, TheLastHitStaysTheClientAndGrandchildrenAreNeverSearched) {
    const WindowId frame = windows.Add(FakeWindowSystem::kDesktop, "frame");
    const WindowId hit = windows.Add(frame, "hold'em");
    const WindowId other = windows.Add(FakeWindowSystem::kDesktop, "editor");
    windows.Add(other, "Hold'em in a child after the first hit");
    capture.FindClient(board, 0);
    EXPECT_EQ(capture.ClientWindow(), hit);

    FakeWindowSystem deep;
    ClientCapture deepCapture(deep, {data.path(), {}});
    const WindowId a = deep.Add(FakeWindowSystem::kDesktop, "top");
    const WindowId b = deep.Add(a, "child");
    deep.Add(b, "Hold'em grandchild");
    deepCapture.FindClient(board, 0);
    EXPECT_FALSE(deepCapture.ClientFound());
    EXPECT_EQ(deepCapture.ClientWindow(), 0u);
}

TEST_F(ClientSearch, EachSearchStartsAfresh) {
    const WindowId frame = windows.Add(FakeWindowSystem::kDesktop, "frame");
    const WindowId child = windows.Add(frame, "Hold'em child");
    const WindowId later = windows.Add(FakeWindowSystem::kDesktop, "other");
    const WindowId laterChild = windows.Add(later, "plain");
    capture.FindClient(board, 0);
    windows.titlesRead.clear();
    windows.Close(child);
    capture.FindClient(board, 0);  // the raised level of the last walk is gone
    EXPECT_FALSE(capture.ClientFound());
    EXPECT_EQ(std::count(windows.titlesRead.begin(), windows.titlesRead.end(), laterChild), 1);
}

struct DockCase {
    WindowRect own;
    int clientWidth, clientHeight;
    WindowRect ownAfter;
    PixelPoint clientAt;
};

TEST_F(ClientSearch, TheClientDocksCentredAboveTheStrip) {
    const DockCase cases[] = {
        {{100, 600, 674, 71}, 780, 440, {100, 600, 674, 71}, {47, 160}},
        {{100, 40, 674, 71}, 780, 440, {100, 90, 674, 71}, {47, -350}},  // strip moved down
        {{100, 90, 674, 71}, 780, 440, {100, 90, 674, 71}, {47, -350}},
        {{100, 500, 675, 71}, 780, 440, {100, 500, 675, 71}, {48, 60}},  // 47.5 to even
        {{101, 500, 675, 71}, 780, 440, {101, 500, 675, 71}, {48, 60}},  // 48.5 to even
        {{0, 700, 674, 71}, 100, 50, {0, 700, 674, 71}, {287, 650}},
    };
    for (const DockCase& c : cases) {
        FakeWindowSystem desk;
        ClientCapture search(desk, {data.path(), {}});
        RecordingBoard strip;
        strip.own = desk.Add(FakeWindowSystem::kDesktop, "Felthawk", c.own);
        const WindowId client =
            desk.Add(FakeWindowSystem::kDesktop, "Hold'em", {5, 5, c.clientWidth, c.clientHeight});
        search.FindClient(strip, 0);
        EXPECT_EQ(desk[strip.own].rect, c.ownAfter);
        EXPECT_EQ(desk[client].rect,
                  (WindowRect{c.clientAt.x, c.clientAt.y, c.clientWidth, c.clientHeight}));
        EXPECT_EQ(strip.compactViews, 1);
    }
}

TEST_F(ClientSearch, AMinimisedClientIsRestoredBeforeItIsRead) {
    const WindowId client = windows.Add(FakeWindowSystem::kDesktop, "Hold'em");
    windows[client].minimised = true;
    capture.FindClient(board, 0);
    EXPECT_EQ(windows.showCommands, (std::vector<ShowCommand>{kShow, kShowNormal}));
    EXPECT_EQ(windows.GetShowCommand(client), kShowNormal);
    EXPECT_EQ(windows.captures, 1);  // the probe, after the restore

    windows.showCommands.clear();
    capture.FindClient(board, 0);
    EXPECT_EQ(windows.showCommands, std::vector<ShowCommand>{kShow});
}

// The pass, with the client's window showing the test table's picture.
class CapturePassTest : public ClientSearch {
  protected:
    void Show(std::string_view cellsText, int meSeat = 0) {
        std::string error;
        const std::optional<TextCells> cells = ParseTableCells(cellsText, error);
        ASSERT_TRUE(cells) << error;
        if (client == 0) client = windows.Add(FakeWindowSystem::kDesktop, "Texas Hold'em");
        windows[client].picture = DrawTable(*cells, meSeat);
    }
    TextCells Pass() {
        board.shown.clear();
        capture.ReadClientCards(board);
        return board.shown.empty() ? TextCells{{"none"}} : board.shown.back();
    }
    static TextCells Cells(std::string_view text) {
        std::string error;
        return *ParseTableCells(text, error);
    }

    WindowId client = 0;
};

TEST_F(CapturePassTest, RecognisesWhatTheTableShows) {
    struct Case {
        const char* table;
        int meSeat;
        int previousSeat;
        const char* expected;
    } cases[] = {
        {"AS,KS,QH,JD,2C,,", 0, 9, "AS,KS,QH,JD,2C,,"},
        {",,,,,,", 0, 9, ",,,,,,"},
        {"TS,9D,8C,7H,6S,5D,4C", 0, 9, "TS,9D,8C,7H,6S,5D,4C"},
        {"2D,AS,3C,,,,", 0, 9, "2D,AS,3C,,,,"},  // three known: no stage, but read
        {"XX,KH,2S,3S,4S,,", 0, 9, ",KH,2S,3S,4S,,"},
        {"AH,AD,,,,,", 4, 3, "AH,AD,,,,,"},
        {"AH,AD,KC,,,,", 4, 9, ",,KC,,,,"},  // the board reads another seat
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.table);
        Show(c.table, c.meSeat);
        board.previousSeat = c.previousSeat;
        EXPECT_EQ(Pass(), Cells(c.expected));
        EXPECT_TRUE(board.stops.empty());
    }
    EXPECT_EQ(board.clears, static_cast<int>(std::size(cases)));
}

TEST_F(CapturePassTest, EveryCardOfTheDeckIsReadInEverySlot) {
    for (int first = 0; first < kTemplateCount; first += 3) {
        std::string table;
        for (int cell = 0; cell < kSlotCount; ++cell) {
            table += (cell ? "," : "") + TemplateCard((first + cell * 8) % kTemplateCount);
        }
        SCOPED_TRACE(table);
        Show(table);
        EXPECT_EQ(Pass(), Cells(table));
    }
}

TEST_F(CapturePassTest, WritesTheSevenFilesAndTheProbeAndDeletesOldFilesFirst) {
    Show(",,,,,,");
    Pass();
    for (int cell = 0; cell < kSlotCount; ++cell) {
        EXPECT_EQ(fs::file_size(data.path() / CaptureFileName(cell)), 326u);
    }
    EXPECT_TRUE(fs::exists(data.path() / kProbeIconName));

    windows.Close(client);
    EXPECT_EQ(Pass(), TextCells{{"none"}});  // no client: nothing shown
    EXPECT_EQ(board.clears, 2);              // but the board is cleared
    for (int cell = 0; cell < kSlotCount; ++cell) {
        EXPECT_FALSE(fs::exists(data.path() / CaptureFileName(cell)));
    }
}

TEST_F(CapturePassTest, AClientThatClosesDuringThePassLeavesTheBoardEmpty) {
    Show("AS,KS,QH,JD,2C,,");
    windows.onCapture = [&](int count) {
        if (count == 1) windows.Close(client);  // right after the probe
    };
    EXPECT_EQ(Pass(), Cells(",,,,,,"));
    EXPECT_TRUE(board.stops.empty());
}

TEST_F(CapturePassTest, AMissingTemplateStopsCaptureAndNamesTheFile) {
    TempFolder icons;
    for (const auto& entry : fs::directory_iterator(FELTHAWK_TEST_ICONS_DIR)) {
        fs::copy_file(entry.path(), icons.path() / entry.path().filename());
    }
    struct Case {
        const char* removed;
        const char* table;
    } cases[] = {{"7 H.ico", "AS,KS,,,,,"}, {"2 D.ico", ",,,,,,"}, {"A S.ico", "AS,,,,,,"}};
    for (const Case& c : cases) {
        SCOPED_TRACE(c.removed);
        fs::remove(icons.path() / c.removed);
        RecordingBoard strict;
        ClientCapture partial(windows, {data.path(), {icons.path()}});
        Show(c.table);
        partial.ReadClientCards(strict);
        ASSERT_EQ(strict.stops.size(), 1u);
        EXPECT_EQ(strict.stops[0],
                  "Card template missing or unreadable: " + (icons.path() / c.removed).string());
        EXPECT_TRUE(strict.shown.empty());
        EXPECT_EQ(strict.clears, 1);
        fs::copy_file(fs::path(FELTHAWK_TEST_ICONS_DIR) / c.removed, icons.path() / c.removed);
    }
}

TEST_F(CapturePassTest, NoTemplateFolderAtAllNamesTheFirstTemplateWhereTheUserKeepsThem) {
    ClientCapture bare(windows, {data.path(), {data.path() / "nowhere"}});
    Show("AS,,,,,,");
    bare.ReadClientCards(board);
    ASSERT_EQ(board.stops.size(), 1u);
    EXPECT_EQ(board.stops[0], "Card template missing or unreadable: " +
                                  (data.path() / "Icons" / "2 D.ico").string());
}

TEST_F(CapturePassTest, AFolderThatCannotBeWrittenStopsCaptureWithAMessage) {
    std::ofstream(data.path() / "blocked") << "a file where the folder should be";
    ClientCapture blocked(windows, {data.path() / "blocked", {FELTHAWK_TEST_ICONS_DIR}});
    Show("AS,,,,,,");
    blocked.ReadClientCards(board);
    ASSERT_EQ(board.stops.size(), 1u);
    EXPECT_NE(board.stops[0].find("t6.icc"), std::string::npos);
    EXPECT_TRUE(board.shown.empty());
}

}  // namespace
}  // namespace felthawk
