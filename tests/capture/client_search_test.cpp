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
    return ParseTableCells(text, error).value_or(TextCells{{"bad"}});
}

TEST(ClientSearchWalk, TheWalkKeepsItsQuirks) {
    // Each leading space is one level below the desktop; the last raised
    // window is the client.
    struct Case {
        std::vector<std::string> windows;
        std::vector<int> raised, unread;
    } cases[] = {
        {{"Texas Hold'em - 1", "Texas Hold'em - 2"}, {0}, {1}},
        {{"frame", " Hold'em lobby", "frame", " Hold'em not searched", "HOLD'EM table"},
         {1, 4},
         {3}},
        {{"frame", " hold'em", "editor", " Hold'em"}, {1}, {3}},
        {{"top", " child", "  Hold'em"}, {}, {2}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.windows.back());
        TempFolder data;
        FakeWindowSystem windows;
        RecordingBoard board;
        ClientCapture capture(windows, {data.path(), {}});
        std::vector<WindowId> ids, parents{FakeWindowSystem::kDesktop}, raised;
        for (const std::string& title : c.windows) {
            const std::size_t depth = title.find_first_not_of(' ');
            ids.push_back(windows.Add(parents[depth], title.substr(depth)));
            parents.resize(depth + 1);
            parents.push_back(ids.back());
        }
        for (int i : c.raised) raised.push_back(ids[i]);
        capture.FindClient(board, 0);
        EXPECT_EQ(windows.raised, raised);
        EXPECT_EQ(board.compactViews, static_cast<int>(raised.size()));
        EXPECT_EQ(capture.ClientWindow(), raised.empty() ? 0 : raised.back());
        for (int i : c.unread) EXPECT_EQ(std::ranges::count(windows.titlesRead, ids[i]), 0) << i;
        if (raised.empty()) continue;
        // The next search starts afresh: the other "Hold'em" is found.
        windows.Close(raised.back());
        capture.FindClient(board, 0);
        EXPECT_TRUE(capture.ClientFound());
    }
}

TEST(FakeDesktop, TheClientsFrameDocksCentredAboveTheStripsFrameAndStaysOnScreen) {
    TempFolder data;
    constexpr FrameExtents kNone{};
    constexpr FrameExtents kThin{1, 1, 20, 1};
    constexpr FrameExtents kThick{5, 5, 24, 5};
    struct Case {
        const char* what;
        WindowRect strip;  // content, 71 high
        FrameExtents stripFrame;
        WindowRect client;
        FrameExtents clientFrame;
        PixelPoint stripAt, clientAt;  // content
        bool belowScreen;
    } cases[] = {
        {"low strip, 47.5 to even",
         {100, 500, 675, 71},
         kNone,
         {5, 5, 780, 440},
         kNone,
         {100, 500},
         {48, 60},
         false},
        {"48.5 to even",
         {101, 500, 675, 71},
         kNone,
         {5, 5, 780, 440},
         kNone,
         {101, 500},
         {48, 60},
         false},
        {"strip at 40 goes to 90",
         {100, 40, 674, 71},
         kNone,
         {5, 5, 780, 50},
         kNone,
         {100, 90},
         {47, 40},
         false},
        {"top-left strip goes down and right",
         {0, 0, 674, 71},
         kNone,
         {5, 5, 780, 440},
         kNone,
         {53, 440},
         {0, 0},
         false},
        {"right edge",
         {400, 300, 674, 71},
         kNone,
         {5, 5, 780, 440},
         kNone,
         {297, 440},
         {244, 0},
         false},
        {"frames touch",
         {100, 600, 674, 71},
         kThin,
         {5, 5, 780, 440},
         kThick,
         {100, 600},
         {47, 135},
         false},
        {"frames on screen",
         {0, 20, 674, 71},
         kThin,
         {5, 5, 780, 440},
         kThick,
         {58, 489},
         {5, 24},
         false},
        {"too tall", {0, 20, 674, 71}, kThin, {5, 5, 780, 700}, kThick, {58, 749}, {5, 24}, true},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        FakeWindowSystem desk;
        ClientCapture search(desk, {data.path(), {}});
        RecordingBoard strip;
        strip.own = desk.Add(FakeWindowSystem::kDesktop, "Felthawk", c.strip);
        desk[strip.own].frame = c.stripFrame;
        const WindowId table = desk.Add(FakeWindowSystem::kDesktop, "Hold'em", c.client);
        desk[table].frame = c.clientFrame;
        search.FindClient(strip, 0);
        EXPECT_EQ(desk[strip.own].rect, (WindowRect{c.stripAt.x, c.stripAt.y, c.strip.width, 71}));
        EXPECT_EQ(desk[table].rect,
                  (WindowRect{c.clientAt.x, c.clientAt.y, c.client.width, c.client.height}));
        // Said once; a second search moves nothing and says nothing more.
        const std::vector<std::string> said{std::string(kStripBelowScreenNote)};
        EXPECT_EQ(strip.notes, c.belowScreen ? said : std::vector<std::string>{});
        desk.moves.clear();
        search.FindClient(strip, 0);
        EXPECT_TRUE(desk.moves.empty());
        EXPECT_EQ(strip.notes, c.belowScreen ? said : std::vector<std::string>{});
        if (!c.belowScreen) continue;
        // Once the user has raised the strip and the table fits, the note goes.
        desk[table].rect.height = 400;
        desk[strip.own].rect.top = 500;
        search.FindClient(strip, 0);
        EXPECT_EQ(strip.notes.back(), "");
    }
}

TEST(FakeDesktop, OnePassReadsEveryCardWritesItsFilesOrStopsWithOneMessage) {
    TempFolder data;
    FakeWindowSystem windows;
    RecordingBoard board;
    ClientCapture capture{windows, {data.path(), {FELTHAWK_TEST_ICONS_DIR}}};
    const WindowId client = windows.Add(FakeWindowSystem::kDesktop, "Texas Hold'em");
    auto pass = [&](std::string_view cells, int meSeat = 0, ClientCapture* other = nullptr) {
        windows[client].picture = DrawTable(Cells(cells), meSeat);
        board.shown.clear();
        (other != nullptr ? *other : capture).ReadClientCards(board);
        return board.shown.empty() ? TextCells{{"none"}} : board.shown.back();
    };
    for (int first = 0; first < kTemplateCount; first += 3) {
        std::string table;
        for (int cell = 0; cell < kSlotCount; ++cell) {
            table += (cell ? "," : "") + TemplateCard((first + cell * 8) % kTemplateCount);
        }
        EXPECT_EQ(pass(table), Cells(table));
    }
    board.previousSeat = 3;
    EXPECT_EQ(pass("AH,AD,KC,,,,", 4), Cells("AH,AD,KC,,,,"));
    board.previousSeat = 9;
    EXPECT_EQ(pass("AH,AD,KC,,,,", 4), Cells(",,KC,,,,"));
    EXPECT_TRUE(board.stops.empty());
    for (int cell = 0; cell < kSlotCount; ++cell) {
        EXPECT_EQ(fs::file_size(data.path() / CaptureFileName(cell)), 326u);
    }

    ClientCapture noTemplates(windows, {data.path(), {data.path() / "nowhere"}});
    EXPECT_EQ(pass(",,,,,,", 0, &noTemplates), TextCells{{"none"}});
    EXPECT_EQ(board.stops, std::vector<std::string>{"Card template missing or unreadable: " +
                                                    (data.path() / "Icons" / "2 D.ico").string()});
    std::ofstream(data.path() / "blocked") << "a file where the folder should be";
    ClientCapture unwritable(windows, {data.path() / "blocked", {FELTHAWK_TEST_ICONS_DIR}});
    EXPECT_EQ(pass("AS,,,,,,", 0, &unwritable), TextCells{{"none"}});
    ASSERT_EQ(board.stops.size(), 2u);
    EXPECT_NE(board.stops[1].find("t6.icc"), std::string::npos);

    const int clears = board.clears;
    windows.Close(client);
    board.shown.clear();
    capture.ReadClientCards(board);
    EXPECT_TRUE(board.shown.empty());
    EXPECT_EQ(board.clears, clears + 1);
    for (int cell = 0; cell < kSlotCount; ++cell) {
        EXPECT_FALSE(fs::exists(data.path() / CaptureFileName(cell)));
    }
}

}  // namespace
}  // namespace felthawk
