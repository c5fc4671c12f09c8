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

TextCells Cells(std::string_view text) {
    std::string error;
    const std::optional<TextCells> cells = ParseTableCells(text, error);
    EXPECT_TRUE(cells) << error;
    return cells.value_or(TextCells{});
}

// A made-up desktop whose client shows the test table's picture.
class FakeDesktop : public ::testing::Test {
  protected:
    void Show(std::string_view cells, int meSeat = 0) {
        if (client == 0) client = windows.Add(FakeWindowSystem::kDesktop, "Texas Hold'em");
        windows[client].picture = DrawTable(Cells(cells), meSeat);
    }
    TextCells Pass() {
        board.shown.clear();
        capture.ReadClientCards(board);
        return board.shown.empty() ? TextCells{{"none"}} : board.shown.back();
    }
    // The messages of one pass over `cells` with these folders.
    std::vector<std::string> Stops(CaptureFolders folders, std::string_view cells) {
        RecordingBoard strict;
        ClientCapture other(windows, std::move(folders));
        Show(cells);
        other.ReadClientCards(strict);
        EXPECT_TRUE(strict.shown.empty());
        EXPECT_EQ(strict.clears, 1);
        return strict.stops;
    }

    TempFolder data;
    FakeWindowSystem windows;
    RecordingBoard board;
    ClientCapture capture{windows, {data.path(), {FELTHAWK_TEST_ICONS_DIR}}};
    WindowId client = 0;
};

TEST(ClientSearchWalk, TheWalkKeepsItsQuirks) {
    // Windows top of the stack first; each leading space is one level below
    // the desktop. The last raised window is the client.
    struct Case {
        const char* name;
        std::vector<std::string> windows;
        std::vector<int> raised, unread;
    } cases[] = {
        {"a top-level hit ends the walk", {"Texas Hold'em - 1", "Texas Hold'em - 2"}, {0}, {1}},
        {"a child hit stops the children, not the top-level titles; every hit docks",
         {"frame", " Hold'em lobby", "frame", " Hold'em not searched", "HOLD'EM table"},
         {1, 4},
         {3}},
        {"the last hit stays the client", {"frame", " hold'em", "editor", " Hold'em"}, {1}, {3}},
        {"grandchildren are never searched", {"top", " child", "  Hold'em"}, {}, {2}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        TempFolder data;
        FakeWindowSystem windows;
        RecordingBoard board;
        ClientCapture capture(windows, {data.path(), {}});
        std::vector<WindowId> ids, parents{FakeWindowSystem::kDesktop};
        for (const std::string& title : c.windows) {
            const std::size_t depth = title.find_first_not_of(' ');
            ids.push_back(windows.Add(parents[depth], title.substr(depth)));
            parents.resize(depth + 1);
            parents.push_back(ids.back());
        }
        std::vector<WindowId> raised;
        for (int i : c.raised) raised.push_back(ids[i]);
        capture.FindClient(board, 0);
        EXPECT_EQ(windows.raised, raised);
        EXPECT_EQ(board.compactViews, static_cast<int>(raised.size()));
        EXPECT_EQ(capture.ClientFound(), !raised.empty());
        EXPECT_EQ(capture.ClientWindow(), raised.empty() ? 0 : raised.back());
        for (int i : c.unread) EXPECT_EQ(std::ranges::count(windows.titlesRead, ids[i]), 0) << i;
    }
}

TEST_F(FakeDesktop, EachSearchStartsAfresh) {
    const WindowId frame = windows.Add(FakeWindowSystem::kDesktop, "frame");
    const WindowId child = windows.Add(frame, "Hold'em child");
    const WindowId later = windows.Add(FakeWindowSystem::kDesktop, "other");
    const WindowId laterChild = windows.Add(later, "plain");
    capture.FindClient(board, 0);
    windows.titlesRead.clear();
    windows.Close(child);
    capture.FindClient(board, 0);  // the raised level of the last walk is gone
    EXPECT_FALSE(capture.ClientFound());
    EXPECT_EQ(std::ranges::count(windows.titlesRead, laterChild), 1);
}

TEST_F(FakeDesktop, TheClientDocksCentredAboveTheStrip) {
    struct Case {
        WindowRect own;
        int clientWidth, clientHeight;
        int ownTopAfter;
        PixelPoint clientAt;
    } cases[] = {
        {{100, 600, 674, 71}, 780, 440, 600, {47, 160}},
        {{100, 40, 674, 71}, 780, 440, 90, {47, -350}},  // strip moved down
        {{100, 90, 674, 71}, 780, 440, 90, {47, -350}},
        {{100, 500, 675, 71}, 780, 440, 500, {48, 60}},  // 47.5 to even
        {{101, 500, 675, 71}, 780, 440, 500, {48, 60}},  // 48.5 to even
        {{0, 700, 674, 71}, 100, 50, 700, {287, 650}},
    };
    for (const Case& c : cases) {
        FakeWindowSystem desk;
        ClientCapture search(desk, {data.path(), {}});
        RecordingBoard strip;
        strip.own = desk.Add(FakeWindowSystem::kDesktop, "Felthawk", c.own);
        const WindowId client =
            desk.Add(FakeWindowSystem::kDesktop, "Hold'em", {5, 5, c.clientWidth, c.clientHeight});
        search.FindClient(strip, 0);
        EXPECT_EQ(desk[strip.own].rect,
                  (WindowRect{c.own.left, c.ownTopAfter, c.own.width, c.own.height}));
        EXPECT_EQ(desk[client].rect,
                  (WindowRect{c.clientAt.x, c.clientAt.y, c.clientWidth, c.clientHeight}));
    }
}

TEST_F(FakeDesktop, EveryCardOfTheDeckIsReadInEverySlotAndHoleCardsAtTheSeatBefore) {
    for (int first = 0; first < kTemplateCount; first += 3) {
        std::string table;
        for (int cell = 0; cell < kSlotCount; ++cell) {
            table += (cell ? "," : "") + TemplateCard((first + cell * 8) % kTemplateCount);
        }
        SCOPED_TRACE(table);
        Show(table);
        EXPECT_EQ(Pass(), Cells(table));
    }
    Show("AH,AD,KC,,,,", 4);
    board.previousSeat = 3;
    EXPECT_EQ(Pass(), Cells("AH,AD,KC,,,,"));
    board.previousSeat = 9;  // the hole cards are read at another seat
    EXPECT_EQ(Pass(), Cells(",,KC,,,,"));
    EXPECT_TRUE(board.stops.empty());
}

TEST_F(FakeDesktop, WritesTheSevenFilesAndTheProbeAndDeletesOldFilesFirst) {
    Show(",,,,,,");
    EXPECT_EQ(Pass(), Cells(",,,,,,"));
    for (int cell = 0; cell < kSlotCount; ++cell) {
        EXPECT_EQ(fs::file_size(data.path() / CaptureFileName(cell)), 326u);
    }

    windows.Close(client);
    EXPECT_EQ(Pass(), TextCells{{"none"}});  // no client: nothing shown
    EXPECT_EQ(board.clears, 2);              // but the board is cleared
    for (int cell = 0; cell < kSlotCount; ++cell) {
        EXPECT_FALSE(fs::exists(data.path() / CaptureFileName(cell)));
    }
}

TEST_F(FakeDesktop, NoTemplateFolderOrAnUnwritableFolderStopsCaptureWithOneMessage) {
    // No template folder at all: the first template where the user keeps them.
    EXPECT_EQ(Stops({data.path(), {data.path() / "nowhere"}}, ",,,,,,"),
              std::vector<std::string>{"Card template missing or unreadable: " +
                                       (data.path() / "Icons" / "2 D.ico").string()});

    std::ofstream(data.path() / "blocked") << "a file where the folder should be";
    const std::vector<std::string> stops =
        Stops({data.path() / "blocked", {FELTHAWK_TEST_ICONS_DIR}}, "AS,,,,,,");
    ASSERT_EQ(stops.size(), 1u);
    EXPECT_NE(stops[0].find("t6.icc"), std::string::npos);
}

}  // namespace
}  // namespace felthawk
