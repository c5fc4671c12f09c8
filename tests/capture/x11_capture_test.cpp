// Capture against the real felthawk-table on an Xvfb of the tests' own.
#include <gtest/gtest.h>
#include <xcb/xcb.h>

#include <QApplication>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLabel>
#include <QTest>
#include <QTimer>
#include <cmath>
#include <fstream>
#include <iostream>
#include <iterator>
#include <set>

#include "board/frm_felthawk.h"
#include "capture/capture_service.h"
#include "capture/client_layout.h"
#include "capture/compare_files.h"
#include "capture/xcb_window_system.h"
#include "settings/dialogs.h"
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

class X11Capture : public ::testing::Test {
  protected:
    void SetUp() override { ASSERT_TRUE(windows) << error; }
    TextCells Pass() {
        board.shown.clear();
        capture.ReadClientCards(board);
        return board.shown.empty() ? TextCells{{"none"}} : board.shown.back();
    }

    std::string error;
    std::unique_ptr<XcbWindowSystem> windows = XcbWindowSystem::Open(error);
    TempFolder data;
    ClientCapture capture{*windows, {data.path(), {FELTHAWK_TEST_ICONS_DIR}}};
    RecordingBoard board;
    TableProcess table;
};

TEST_F(X11Capture, TheClientIsFoundByHoldEmInItsTitleInAnyCase) {
    const std::pair<std::string, bool> cases[] = {
        {"Texas HOLD'EM - table 4", true},
        {"Texas Holdem - table 4", false},
        {std::string(240, 'x') + "Hold'em", true},
        {std::string(250, 'x') + "Hold'em", false},  // past the 254 characters read
    };
    for (const auto& [title, found] : cases) {
        SCOPED_TRACE(title);
        TableProcess client;
        const WindowId id = client.Start({"--title", QString::fromStdString(title)});
        ASSERT_NE(id, 0u);
        capture.FindClient(board, 0);
        EXPECT_EQ(capture.ClientWindow(), found ? id : 0);
    }
}

TEST_F(X11Capture, AMinimisedTableIsShownAgainAndEachPassReadsWhatItShows) {
    const WindowId id = table.Start({});
    ASSERT_NE(id, 0u);
    xcb_connection_t* other = xcb_connect(nullptr, nullptr);
    xcb_unmap_window(other, id);
    std::free(xcb_get_input_focus_reply(other, xcb_get_input_focus(other), nullptr));
    xcb_disconnect(other);
    ASSERT_EQ(windows->GetShowCommand(id), kShowMinimised);
    capture.FindClient(board, 0);
    EXPECT_EQ(windows->GetShowCommand(id), kShowNormal);
    const std::pair<const char*, const char*> deals[] = {
        {",,,,,,", ",,,,,,"},
        {"XX,KH,2S,3S,4S,,", ",KH,2S,3S,4S,,"},
        {"TS,2H,7D,8D,9D,JC,AC", "TS,2H,7D,8D,9D,JC,AC"},
    };
    for (const auto& [deal, read] : deals) {
        ASSERT_TRUE(table.Deal(deal));
        EXPECT_EQ(Pass(), Cells(read)) << deal;
    }
    EXPECT_TRUE(board.stops.empty());
}

TEST_F(X11Capture, ATableThatClosesDuringThePassLeavesTheBoardEmpty) {
    // The seat is asked for the search's probe, then before each crop.
    struct ClosingBoard : RecordingBoard {
        TableProcess* table = nullptr;
        int asked = 0;
        int PreviousSeat() override {
            if (++asked == 2) table->Kill();
            return previousSeat;
        }
    } closing;
    closing.table = &table;
    ASSERT_NE(table.Start({"--cells", "AS,KS,QH,JD,2C,,"}), 0u);
    capture.ReadClientCards(closing);
    EXPECT_EQ(closing.shown, std::vector<TextCells>{Cells(",,,,,,")});
    EXPECT_TRUE(closing.stops.empty());
}

TEST(ShippedTemplates, AreFiftyTwoDistinctFilesThatFelthawkIconsMakes) {
    TempFolder made;
    QProcess icons;
    icons.start(FELTHAWK_ICONS_PROGRAM,
                {"--from-table", "--out", QString::fromStdString(made.path()), "--table",
                 FELTHAWK_TABLE_PROGRAM});
    ASSERT_TRUE(icons.waitForFinished(60000)) << icons.errorString().toStdString();
    ASSERT_EQ(icons.exitCode(), 0) << icons.readAllStandardError().toStdString();
    auto read = [](const fs::path& path) {
        std::ifstream file(path, std::ios::binary);
        return std::string{std::istreambuf_iterator<char>(file), {}};
    };
    std::set<std::string> seen;
    for (int i = 0; i < kTemplateCount; ++i) {
        const std::string name = TemplateFileName(TemplateCard(i));
        const fs::path shipped = fs::path(FELTHAWK_TEST_ICONS_DIR) / name;
        EXPECT_EQ(read(shipped).size(), 326u) << name;
        EXPECT_EQ(read(shipped), read(made.path() / name)) << name;
        EXPECT_TRUE(seen.insert(ReadJoinedLines(shipped).value_or("")).second) << name;
    }
}

struct RecordingDialogs : IDialogs {
    QString InputBox(QWidget*, const QString&, const QString&, const QString&,
                     bool* accepted) override {
        if (accepted != nullptr) *accepted = false;
        return {};
    }
    void MessageBox(QWidget*, const QString& text, const QString&, MessageIcon) override {
        messages.push_back(text.toStdString());
    }
    bool AskYesNo(QWidget*, const QString&, const QString&) override { return false; }
    std::vector<std::string> messages;
};

// The real main window, its capture switch and one tick of tmr_Read; then a
// pass with one template missing.
TEST(BoardCapture, FillsTheBoardWithinOnePassThenAMissingTemplateStopsIt) {
    TempFolder data, partial;
    RecordingDialogs dialogs;
    CaptureService service(dialogs, {data.path(), {FELTHAWK_TEST_ICONS_DIR}});
    frmFelthawk board(BoardServices{.capture = &service}, dialogs);
    board.FormLoad(false);
    board.move(175, 600);
    board.show();
    QTest::qWait(100);
    const QString cells = "AS,KS,QH,JD,2C,,";
    TableProcess table;
    const WindowId client = table.Start({"--cells", cells});
    ASSERT_NE(client, 0u);
    bool passed = false;
    QObject::connect(board.ReadTimer(), &QTimer::timeout, &board, [&] { passed = true; });
    QTest::mouseClick(board.findChild<QWidget*>(QStringLiteral("imSp")), Qt::LeftButton);
    ASSERT_TRUE(QTest::qWaitFor([&] { return passed; }, 5000));

    EXPECT_EQ(board.mCards, Cells(cells.toStdString()));
    EXPECT_TRUE(board.mCaptureOn);
    EXPECT_TRUE(dialogs.messages.empty());
    for (int cell = 0; cell < kSlotCount; ++cell) {
        const std::string shown = board.TempImage(cell)->GetPicture().name.toStdString();
        EXPECT_EQ(shown,
                  board.mCards[cell].empty() ? kBlankPicture.toStdString() : board.mCards[cell]);
    }

    QProcess calc;
    calc.start(FELTHAWK_CALC_PROGRAM, {"--cells", cells, "--seats", "MHHHHHHHHH"});
    calc.waitForFinished(30000);
    const QJsonObject expected = QJsonDocument::fromJson(calc.readAllStandardOutput()).object();
    ASSERT_FALSE(expected.isEmpty());
    const QList<QLabel*> chances = board.findChildren<QLabel*>(QStringLiteral("lP"));
    ASSERT_EQ(chances.size(), kHandClassCount);
    for (int i = 0; i < kHandClassCount; ++i) {
        EXPECT_EQ(chances[i]->text(), expected["chances"].toArray()[i].toString()) << i;
    }
    EXPECT_EQ(board.findChild<QLabel*>(QStringLiteral("l_Me"))->text(), expected["me"].toString());
    EXPECT_EQ(board.findChild<QLabel*>(QStringLiteral("lblSuggestion"))->text(),
              expected["suggestion"].toString());

    std::string error;
    auto windows = XcbWindowSystem::Open(error);
    ASSERT_TRUE(windows) << error;
    const WindowRect strip = *windows->GetWindowRect(board.winId());
    const WindowRect tableRect = *windows->GetWindowRect(client);
    EXPECT_EQ(tableRect.top + tableRect.height, strip.top);
    EXPECT_EQ(tableRect.left,
              static_cast<int>(std::nearbyint(strip.left + strip.width / 2.0 - kTableWidth / 2.0)));
    EXPECT_LT(strip.height, 100);

    for (const auto& entry : fs::directory_iterator(FELTHAWK_TEST_ICONS_DIR)) {
        if (entry.path().filename() != "Q C.ico") {  // a card that is not shown
            fs::copy_file(entry.path(), partial.path() / entry.path().filename());
        }
    }
    CaptureService strict(dialogs, {data.path(), {partial.path()}});
    strict.CapturePass(board);
    EXPECT_EQ(dialogs.messages, std::vector<std::string>{"Card template missing or unreadable: " +
                                                         (partial.path() / "Q C.ico").string()});
    EXPECT_FALSE(board.mCaptureOn);
    EXPECT_FALSE(board.ReadTimer()->isActive());
    EXPECT_EQ(board.mCards, TextCells{});
}

}  // namespace
}  // namespace felthawk

int main(int argc, char** argv) {
    using namespace felthawk;
    ::testing::InitGoogleTest(&argc, argv);
    XvfbServer server;
    std::string error;
    if (!server.Start(error)) {
        std::cerr << error << '\n';
        return 1;
    }
    TempFolder home;  // settings and per-user files stay inside the test
    ::setenv("DISPLAY", server.Display().c_str(), 1);
    ::setenv("QT_QPA_PLATFORM", "xcb", 1);
    ::setenv("XDG_CONFIG_HOME", home.path().c_str(), 1);
    ::setenv("XDG_DATA_HOME", home.path().c_str(), 1);
    QApplication app(argc, argv);
    return RUN_ALL_TESTS();
}
