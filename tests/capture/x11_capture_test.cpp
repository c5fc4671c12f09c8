// Capture against the real felthawk-table on an Xvfb of the tests' own:
// through the capture module, then through the whole main window.
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

// One Xvfb and one QApplication for the whole run.
class X11Environment : public ::testing::Environment {
  public:
    X11Environment(int argc, char** argv) : argc_(argc), argv_(argv) {}
    void SetUp() override {
        std::string error;
        ASSERT_TRUE(server_.Start(error)) << error;
        ::setenv("DISPLAY", server_.Display().c_str(), 1);
        ::setenv("QT_QPA_PLATFORM", "xcb", 1);
        // Settings and per-user files of the program stay inside the test.
        ::setenv("XDG_CONFIG_HOME", home_.path().c_str(), 1);
        ::setenv("XDG_DATA_HOME", home_.path().c_str(), 1);
        app_ = std::make_unique<QApplication>(argc_, argv_);
    }
    void TearDown() override { app_.reset(); }

  private:
    int argc_;
    char** argv_;
    XvfbServer server_;
    TempFolder home_;
    std::unique_ptr<QApplication> app_;
};

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
        QTest::qWait(100);
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

TEST_F(X11Capture, TheClientIsFoundByHoldEmInItsTitleInAnyCase) {
    const std::pair<std::string, bool> cases[] = {
        {"Texas HOLD'EM - table 4", true},
        {"hOLD'eM no limit", true},
        {"Texas Holdem - table 4", false},
        {"Hold em", false},
        {"Hold\u2019em", false},
        {std::string(240, 'x') + "Hold'em", true},
        {std::string(250, 'x') + "Hold'em", false},  // past the 254 characters read
    };
    for (const auto& [title, found] : cases) {
        SCOPED_TRACE(title);
        TableProcess client;
        const WindowId id = client.Start({"--title", QString::fromStdString(title)});
        ASSERT_NE(id, 0u);
        capture->FindClient(board, 0);
        EXPECT_EQ(capture->ClientFound(), found);
        EXPECT_EQ(capture->ClientWindow(), found ? id : 0);
    }
}

TEST_F(X11Capture, OnePassReadsWhatTheTableShows) {
    ASSERT_NE(table.Start({}), 0u);
    const std::pair<const char*, const char*> deals[] = {
        {"AS,KS,QH,JD,2C,,", "AS,KS,QH,JD,2C,,"},          // hole cards and a flop, no turn
        {",,,,,,", ",,,,,,"},                              // an empty table
        {"9C,9D,,,,,", "9C,9D,,,,,"},                      // before the flop
        {"XX,KH,2S,3S,4S,,", ",KH,2S,3S,4S,,"},            // one hole card face down
        {"TS,2H,7D,8D,9D,JC,AC", "TS,2H,7D,8D,9D,JC,AC"},  // the river
    };
    for (const auto& [deal, read] : deals) {
        SCOPED_TRACE(deal);
        ASSERT_TRUE(table.Deal(deal));
        EXPECT_EQ(Pass(), Cells(read));
        EXPECT_TRUE(board.stops.empty());
    }
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
    QTest::qWait(300);  // the table repaints once it is back
    EXPECT_EQ(Pass(), Cells("AH,AD,,,,,"));
}

TEST_F(X11Capture, ATableThatClosesDuringThePassLeavesTheBoardEmpty) {
    // The pass asks for the seat once for the search's probe, then before
    // each crop: the table goes away after the search, before the first crop.
    struct ClosingBoard : RecordingBoard {
        TableProcess* table = nullptr;
        int asked = 0;
        int PreviousSeat() override {
            if (++asked == 2) table->Kill();
            return previousSeat;
        }
    } closing;
    closing.own = board.own;
    closing.table = &table;
    ASSERT_NE(table.Start({"--cells", "AS,KS,QH,JD,2C,,"}), 0u);
    capture->ReadClientCards(closing);
    EXPECT_EQ(closing.shown, std::vector<TextCells>{Cells(",,,,,,")});
    EXPECT_TRUE(closing.stops.empty());
}

TEST_F(X11Capture, TheShippedTemplatesAreFiftyTwoDistinctFilesThatFelthawkIconsMakes) {
    TempFolder made;
    QProcess icons;
    icons.start(FELTHAWK_ICONS_PROGRAM,
                {"--from-table", "--out", QString::fromStdString(made.path().string()), "--table",
                 FELTHAWK_TABLE_PROGRAM});
    ASSERT_TRUE(icons.waitForFinished(60000)) << icons.errorString().toStdString();
    ASSERT_EQ(icons.exitCode(), 0) << icons.readAllStandardError().toStdString();
    auto read = [](const fs::path& path) {
        std::ifstream file(path, std::ios::binary);
        return std::string{std::istreambuf_iterator<char>(file), {}};
    };
    std::set<std::string> seen;  // as recognition sees them
    for (int i = 0; i < kTemplateCount; ++i) {
        const std::string name = TemplateFileName(TemplateCard(i));
        const fs::path shipped = fs::path(FELTHAWK_TEST_ICONS_DIR) / name;
        EXPECT_EQ(read(shipped).size(), 326u) << name;
        EXPECT_EQ(read(shipped), read(made.path() / name)) << name;
        EXPECT_TRUE(seen.insert(ReadJoinedLines(shipped).value_or("")).second) << name;
    }
}

class RecordingDialogs : public IDialogs {
  public:
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

// The whole road: the real main window, its capture switch and one tick of
// tmr_Read.
class BoardCapture : public ::testing::Test {
  protected:
    BoardCapture()
        : service(dialogs, {data.path(), {FELTHAWK_TEST_ICONS_DIR}}),
          board(BoardServices{.capture = &service}, dialogs) {}
    void SetUp() override {
        board.FormLoad(false);
        board.move(175, 600);
        board.show();
        QTest::qWait(100);
    }

    TempFolder data;
    RecordingDialogs dialogs;
    CaptureService service;
    frmFelthawk board;
    TableProcess table;
};

TEST_F(BoardCapture, SwitchingCaptureOnFillsTheBoardWithinOnePassAndShowsTheNumbers) {
    const QString cells = "AS,KS,QH,JD,2C,,";
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

    // The same numbers as felthawk-calc for the same cells and seats.
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

    // The compact strip stands right under the table, centred.
    std::string error;
    auto windows = XcbWindowSystem::Open(error);
    ASSERT_TRUE(windows) << error;
    const WindowRect strip = *windows->GetWindowRect(board.winId());
    const WindowRect tableRect = *windows->GetWindowRect(client);
    EXPECT_EQ(tableRect.top + tableRect.height, strip.top);
    EXPECT_EQ(tableRect.left,
              static_cast<int>(std::nearbyint(strip.left + strip.width / 2.0 - kTableWidth / 2.0)));
    EXPECT_LT(strip.height, 100);
}

TEST_F(BoardCapture, AnIncompleteTemplateFolderStopsCaptureWithOneMessage) {
    TempFolder partial;
    for (const auto& entry : fs::directory_iterator(FELTHAWK_TEST_ICONS_DIR)) {
        if (entry.path().filename() != "Q C.ico") {
            fs::copy_file(entry.path(), partial.path() / entry.path().filename());
        }
    }
    CaptureService strict(dialogs, {data.path(), {partial.path()}});
    ASSERT_NE(table.Start({"--cells", "AS,KS,,,,,"}), 0u);  // a card that is not shown
    board.mCaptureOn = true;
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
    ::testing::InitGoogleTest(&argc, argv);
    ::testing::AddGlobalTestEnvironment(new felthawk::X11Environment(argc, argv));
    return RUN_ALL_TESTS();
}
