// Capture against the real felthawk-table on an Xvfb of the tests' own,
// with the window manager and depth that the command line names:
//   capture_x11_tests --wm=openbox --depth=16
#include <gtest/gtest.h>
#include <xcb/xcb.h>

#include <QApplication>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLabel>
#include <QMenuBar>
#include <QTest>
#include <QTimer>
#include <cmath>
#include <cstring>
#include <fstream>
#include <iostream>
#include <iterator>
#include <set>

#include "board/frm_felthawk.h"
#include "board/picture_box.h"
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

std::string gWindowManager = "none";
int gDepth = 24;
// Generous limits: the machine may be busy with other work.
constexpr int kSettleMs = 10000;
constexpr int kPassLimit = 10;

bool UnderWindowManager() {
    return gWindowManager != "none";
}

TextCells Cells(std::string_view text) {
    std::string error;
    return *ParseTableCells(text, error);
}

// Another client's request to the window manager, or with none the plain
// X request, that minimises a window.
void Minimise(WindowId window) {
    xcb_connection_t* c = xcb_connect(nullptr, nullptr);
    const xcb_window_t root = xcb_setup_roots_iterator(xcb_get_setup(c)).data->root;
    if (UnderWindowManager()) {
        constexpr const char* kChangeState = "WM_CHANGE_STATE";
        auto* atom = xcb_intern_atom_reply(
            c,
            xcb_intern_atom(c, 0, static_cast<uint16_t>(std::strlen(kChangeState)), kChangeState),
            nullptr);
        xcb_client_message_event_t message{};
        message.response_type = XCB_CLIENT_MESSAGE;
        message.format = 32;
        message.window = window;
        message.type = atom->atom;
        message.data.data32[0] = 3;  // iconic
        xcb_send_event(c, 0, root,
                       XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT | XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY,
                       reinterpret_cast<const char*>(&message));
        std::free(atom);
    } else {
        xcb_unmap_window(c, window);
    }
    std::free(xcb_get_input_focus_reply(c, xcb_get_input_focus(c), nullptr));
    xcb_disconnect(c);
}

void DeleteFrameExtents(WindowId window) {
    xcb_connection_t* c = xcb_connect(nullptr, nullptr);
    constexpr const char* kExtents = "_NET_FRAME_EXTENTS";
    auto* atom = xcb_intern_atom_reply(
        c, xcb_intern_atom(c, 0, static_cast<uint16_t>(std::strlen(kExtents)), kExtents), nullptr);
    xcb_delete_property(c, window, atom->atom);
    std::free(atom);
    std::free(xcb_get_input_focus_reply(c, xcb_get_input_focus(c), nullptr));
    xcb_disconnect(c);
}

class X11Capture : public ::testing::Test {
  protected:
    void SetUp() override { ASSERT_TRUE(windows) << error; }
    TextCells Pass(RecordingBoard& on) {
        on.shown.clear();
        capture.ReadClientCards(on);
        return on.shown.empty() ? TextCells{{"none"}} : on.shown.back();
    }
    // Passes until the board shows `expected`: how many it took, 0 when
    // it never did. A window manager raises and repaints in its own time.
    int PassesUntil(const TextCells& expected) {
        for (int pass = 1; pass <= kPassLimit; ++pass) {
            if (Pass(board) == expected) return pass;
            QTest::qWait(100);
        }
        return 0;
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

TEST_F(X11Capture, AMinimisedOrCoveredTableIsBroughtForwardAndEachPassReadsWhatItShows) {
    const WindowId id = table.Start({});
    ASSERT_NE(id, 0u);
    Minimise(id);
    ASSERT_TRUE(
        QTest::qWaitFor([&] { return windows->GetShowCommand(id) == kShowMinimised; }, kSettleMs));
    EXPECT_NE(PassesUntil(Cells(",,,,,,")), 0);
    EXPECT_EQ(windows->GetShowCommand(id), kShowNormal);
    const std::pair<const char*, const char*> deals[] = {
        {"XX,KH,2S,3S,4S,,", ",KH,2S,3S,4S,,"},
        {"TS,2H,7D,8D,9D,JC,AC", "TS,2H,7D,8D,9D,JC,AC"},
    };
    for (const auto& [deal, read] : deals) {
        ASSERT_TRUE(table.Deal(deal));
        EXPECT_NE(PassesUntil(Cells(read)), 0) << deal;
    }

    // A window of another program over the whole screen.
    QWidget cover;
    cover.setWindowTitle("cover");
    cover.setGeometry(0, 0, 1024, 768);
    cover.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&cover));
    QTest::qWait(200);
    ASSERT_TRUE(table.Deal("AS,KS,QH,JD,2C,,"));
    EXPECT_NE(PassesUntil(Cells("AS,KS,QH,JD,2C,,")), 0);
    EXPECT_TRUE(board.stops.empty());
}

TEST_F(X11Capture, BadInputLeavesTheBoardConsistentAndStopsWithOneMessageWhereItMust) {
    // The table closes as the pass docks it.
    struct ClosingBoard : RecordingBoard {
        TableProcess* table = nullptr;
        void EnterCompactView() override { table->Kill(); }
    } closing;
    closing.table = &table;
    ASSERT_NE(table.Start({"--cells", "AS,KS,QH,JD,2C,,"}), 0u);
    EXPECT_EQ(Pass(closing), Cells(",,,,,,"));
    EXPECT_EQ(Pass(closing), TextCells{{"none"}});  // no client: nothing to show
    EXPECT_EQ(closing.clears, 2);
    EXPECT_TRUE(closing.stops.empty());

    // A client smaller than the points where cards are read.
    TableProcess small;
    ASSERT_NE(small.Start({"--cells", "AS,KS,QH,JD,2C,9H,TD", "--size", "270x180"}), 0u);
    EXPECT_EQ(Pass(board), Cells(",,,,,,"));
    small.Kill();

    // Templates that change while capture runs: replaced in place during a
    // pass, then one removed, which stops capture with one message.
    TempFolder icons;
    for (const auto& entry : fs::directory_iterator(FELTHAWK_TEST_ICONS_DIR)) {
        fs::copy_file(entry.path(), icons.path() / entry.path().filename());
    }
    struct SwappingBoard : RecordingBoard {
        std::function<void()> midPass;
        int PreviousSeat() override {
            if (midPass) std::exchange(midPass, nullptr)();
            return previousSeat;
        }
    } swapping;
    ClientCapture watching(*windows, {data.path(), {icons.path()}});
    const WindowId shown = table.Start({"--cells", "AS,KS,QH,JD,2C,,"});
    ASSERT_NE(shown, 0u);
    const auto passUntil = [&](std::string_view expected) {
        for (int pass = 0; pass < kPassLimit; ++pass) {
            swapping.shown.clear();
            watching.ReadClientCards(swapping);
            if (!swapping.shown.empty() && swapping.shown.back() == Cells(expected)) return true;
            QTest::qWait(100);
        }
        return false;
    };
    EXPECT_TRUE(passUntil("AS,KS,QH,JD,2C,,"));
    swapping.midPass = [&] {
        fs::copy_file(icons.path() / "K S.ico", icons.path() / "A S.ico",
                      fs::copy_options::overwrite_existing);
    };
    EXPECT_TRUE(passUntil(",KS,QH,JD,2C,,"));
    fs::remove(icons.path() / "Q H.ico");
    swapping.shown.clear();
    watching.ReadClientCards(swapping);
    EXPECT_TRUE(swapping.shown.empty());
    EXPECT_EQ(swapping.stops, std::vector<std::string>{"Card template missing or unreadable: " +
                                                       (icons.path() / "Q H.ico").string()});

    // A window manager that does not say how wide its frame is: the frame
    // is measured instead.
    const FrameExtents said = windows->GetFrameExtents(shown);
    EXPECT_EQ(said == FrameExtents{}, !UnderWindowManager());
    DeleteFrameExtents(shown);
    EXPECT_EQ(windows->GetFrameExtents(shown), said);
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

// The main window with the real capture service, shown where it opens.
class BoardCapture : public ::testing::Test {
  protected:
    void SetUp() override {
        board.FormLoad(false);
        board.show();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(&board));
    }

    TempFolder data;
    RecordingDialogs dialogs;
    CaptureService service{dialogs, {data.path(), {FELTHAWK_TEST_ICONS_DIR}}};
    frmFelthawk board{BoardServices{.capture = &service}, dialogs};
};

// The real main window where it opens, its capture switch and the ticks of
// tmr_Read: armed while there is no client, then the table is found, docked
// above the strip without covering it, and read within one pass; then a
// pass with one template missing.
TEST_F(BoardCapture, FromWhereItOpensTheBoardArmsThenFillsWithinOnePass) {
    int passes = 0;
    QObject::connect(board.ReadTimer(), &QTimer::timeout, &board, [&] { ++passes; });
    auto* eye = board.findChild<PictureBox*>(QStringLiteral("imSp"));
    QTest::mouseClick(eye, Qt::LeftButton);
    ASSERT_TRUE(QTest::qWaitFor([&] { return passes == 1; }, kSettleMs));
    EXPECT_TRUE(board.mCaptureOn);
    EXPECT_TRUE(board.menuBar()->isVisible());  // still the full board
    EXPECT_EQ(eye->GetPicture().name, "sp2");
    EXPECT_NE(eye->toolTip().indexOf("Hold'em"), -1) << eye->toolTip().toStdString();

    const QString cells = "AS,KS,QH,JD,2C,,";
    TableProcess table;
    const WindowId client = table.Start({"--cells", cells});
    ASSERT_NE(client, 0u);
    ASSERT_TRUE(QTest::qWaitFor([&] { return passes == 2; }, kSettleMs));
    EXPECT_EQ(board.mCards, Cells(cells.toStdString()));
    EXPECT_TRUE(board.mCaptureOn);
    EXPECT_FALSE(board.menuBar()->isVisible());
    EXPECT_EQ(eye->toolTip(), "Cancel Capture");
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

    // The table's frame stands on the screen, centred on the strip's frame
    // and touching it; nothing of the strip is covered.
    std::string error;
    auto windows = XcbWindowSystem::Open(error);
    ASSERT_TRUE(windows) << error;
    const auto frameOf = [&](WindowId window) {
        return FrameRect(windows->GetWindowRect(window).value_or(WindowRect{}),
                         windows->GetFrameExtents(window));
    };
    const auto docked = [&] {
        const WindowRect strip = frameOf(board.winId());
        const WindowRect table = frameOf(client);
        return table.top >= 0 && table.top + table.height == strip.top &&
               table.left == static_cast<int>(std::nearbyint(strip.left + strip.width / 2.0 -
                                                             table.width / 2.0));
    };
    EXPECT_TRUE(QTest::qWaitFor(docked, kSettleMs));
    const WindowRect strip = frameOf(board.winId());
    EXPECT_LE(strip.top + strip.height, windows->Screen().height);
    EXPECT_LT(board.height(), 100);
    EXPECT_EQ(UnderWindowManager(), windows->GetFrameExtents(board.winId()).top > 0);

    TempFolder partial;
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

// A screen of 8 bits has a palette that capture cannot read: the first
// pass stops capture and says so, once, and docks nothing.
TEST_F(BoardCapture, AScreenCaptureCannotReadStopsItWithOneMessage) {
    TableProcess table;
    ASSERT_NE(table.Start({"--cells", "AS,KS,QH,JD,2C,,"}), 0u);
    QTest::mouseClick(board.findChild<QWidget*>(QStringLiteral("imSp")), Qt::LeftButton);
    ASSERT_TRUE(QTest::qWaitFor([&] { return !dialogs.messages.empty(); }, kSettleMs));
    QTest::qWait(2500);  // a further tick would say it again
    ASSERT_EQ(dialogs.messages.size(), 1u);
    EXPECT_NE(dialogs.messages[0].find("8 bits per pixel"), std::string::npos)
        << dialogs.messages[0];
    EXPECT_FALSE(board.mCaptureOn);
    EXPECT_TRUE(board.menuBar()->isVisible());
    EXPECT_EQ(board.mCards, TextCells{});
}

}  // namespace
}  // namespace felthawk

int main(int argc, char** argv) {
    using namespace felthawk;
    ::testing::InitGoogleTest(&argc, argv);
    for (int i = 1; i < argc; ++i) {
        const std::string argument = argv[i];
        if (argument.rfind("--wm=", 0) == 0) gWindowManager = argument.substr(5);
        if (argument.rfind("--depth=", 0) == 0) gDepth = std::atoi(argument.c_str() + 8);
    }
    XvfbServer server;
    std::string error;
    if (!server.Start(gDepth, error)) {
        std::cerr << error << '\n';
        return 1;
    }
    TempFolder home;  // settings and per-user files stay inside the test
    ::setenv("DISPLAY", server.Display().c_str(), 1);
    ::setenv("QT_QPA_PLATFORM", "xcb", 1);
    ::setenv("XDG_CONFIG_HOME", home.path().c_str(), 1);
    ::setenv("XDG_DATA_HOME", home.path().c_str(), 1);
    QApplication app(argc, argv);
    WindowManager manager;
    if (!manager.Start(gWindowManager, error)) {
        std::cerr << error << '\n';
        return 1;
    }
    return RUN_ALL_TESTS();
}
