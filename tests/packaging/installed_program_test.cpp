// The programs as the Debian package installs them, unpacked into a root of
// their own: felthawk-calc answers, and felthawk under a window manager shows
// its board, its default banner and reads a table with the card templates
// of its installed data folder.
#include <gtest/gtest.h>
#include <xcb/xcb.h>
#include <xcb/xtest.h>

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QImage>
#include <QProcess>
#include <QTemporaryDir>
#include <chrono>
#include <functional>
#include <memory>
#include <string_view>
#include <thread>

#include "board/layout.h"
#include "capture/xcb_window_system.h"
#include "tests/capture/x11_session.h"
#include "tools/table/table_process.h"

namespace felthawk {
namespace {

using namespace std::chrono_literals;

// Room above the board for felthawk-table and a window frame.
constexpr int kTableClearance = 480;

const QString kRoot = QStringLiteral(FELTHAWK_INSTALL_ROOT);
const QString kData = kRoot + "/usr/share/felthawk";

QString Installed(const char* program) {
    return kRoot + "/usr/bin/" + program;
}

bool WaitFor(const std::function<bool()>& test, std::chrono::milliseconds limit) {
    const auto end = std::chrono::steady_clock::now() + limit;
    while (std::chrono::steady_clock::now() < end) {
        if (test()) return true;
        QCoreApplication::processEvents();
        std::this_thread::sleep_for(100ms);
    }
    return test();
}

TEST(InstalledCalc, AnswersATableAndRefusesABadOne) {
    const struct {
        QStringList arguments;
        QByteArray input;
        int exitCode;
        const char* inOutput;
        const char* inErrors;
    } cases[] = {
        {{"--cells", "AS,KS,,,,,"}, {}, 0, "\"stage\": 2,", ""},
        {{"--batch"}, "AS,KS,QS,JS,TS,, MHHHHHHHHH\nAS MH\n", 0, "\"error\"", ""},
        {{"--cells", "AS,KS,ZZ,,,,"}, {}, 2, "", "cell 2"},
        {{"--seats", "MHHHHHHHHH"}, {}, 2, "", "--cells is needed"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.arguments.join(' ').toStdString());
        QProcess calc;
        calc.start(Installed("felthawk-calc"), c.arguments);
        ASSERT_TRUE(calc.waitForStarted(5000));
        calc.write(c.input);
        calc.closeWriteChannel();
        ASSERT_TRUE(calc.waitForFinished(10000));
        EXPECT_EQ(calc.exitCode(), c.exitCode);
        EXPECT_TRUE(calc.readAllStandardOutput().contains(c.inOutput));
        EXPECT_TRUE(calc.readAllStandardError().contains(c.inErrors));
    }
}

// The viewable window with `title`, frames of a window manager looked into.
WindowId FindTitled(XcbWindowSystem& windows, WindowId parent, const std::string& title) {
    for (WindowId child = windows.FirstChild(parent); child != 0;
         child = windows.NextSibling(child)) {
        if (windows.GetShowCommand(child) != kShowNormal) continue;
        if (windows.WindowText(child) == title) return child;
        if (const WindowId inner = FindTitled(windows, child, title)) return inner;
    }
    return 0;
}

// A left click at a point of the screen, through the X test extension.
void ClickAt(xcb_connection_t* x, int left, int top) {
    xcb_test_fake_input(x, XCB_MOTION_NOTIFY, 0, XCB_CURRENT_TIME, XCB_NONE,
                        static_cast<int16_t>(left), static_cast<int16_t>(top), 0);
    xcb_flush(x);
    std::this_thread::sleep_for(150ms);
    for (uint8_t type : {XCB_BUTTON_PRESS, XCB_BUTTON_RELEASE}) {
        xcb_test_fake_input(x, type, 1, XCB_CURRENT_TIME, XCB_NONE, 0, 0, 0);
        xcb_flush(x);
        std::this_thread::sleep_for(100ms);
    }
}

xcb_atom_t Atom(xcb_connection_t* x, std::string_view name) {
    auto* reply = xcb_intern_atom_reply(
        x, xcb_intern_atom(x, 0, static_cast<uint16_t>(name.size()), name.data()), nullptr);
    xcb_atom_t atom = XCB_ATOM_NONE;
    if (reply != nullptr) atom = reply->atom;
    free(reply);
    return atom;
}

xcb_window_t Root(xcb_connection_t* x) {
    return xcb_setup_roots_iterator(xcb_get_setup(x)).data->root;
}

bool WindowManagerRuns(xcb_connection_t* x) {
    auto* property = xcb_get_property_reply(
        x,
        xcb_get_property(x, 0, Root(x), Atom(x, "_NET_SUPPORTING_WM_CHECK"), XCB_ATOM_WINDOW, 0, 1),
        nullptr);
    const bool set = property != nullptr && xcb_get_property_value_length(property) == 4;
    free(property);
    return set;
}

// What openbox leaves on the root window when it ends; a window manager
// that has gone names no active window.
void ForgetWindowManager(xcb_connection_t* x) {
    for (const char* name : {"_NET_SUPPORTING_WM_CHECK", "_NET_ACTIVE_WINDOW"}) {
        xcb_delete_property(x, Root(x), Atom(x, name));
    }
    xcb_flush(x);
}

// Whether the compact strip shows `card`'s picture in ITEMP(`cell`).
bool StripShows(const QImage& strip, int cell, const char* card) {
    const QImage picture =
        QImage(QStringLiteral(FELTHAWK_BOARD_PICTURES "/%1.png").arg(QLatin1String(card)))
            .convertToFormat(QImage::Format_ARGB32);
    if (picture.isNull()) return false;
    const QPoint at(Px(kTempLeft[cell]), Px(kTempTop));
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x) {
            const QRgb want = picture.pixel(x, y);
            if (qAlpha(want) < 255) continue;
            if (!strip.rect().contains(at + QPoint(x, y)) ||
                (strip.pixel(at + QPoint(x, y)) & 0xffffff) != (want & 0xffffff))
                return false;
        }
    }
    return true;
}

class Program {
  public:
    Program(const QString& path, const QStringList& arguments, const QProcessEnvironment& env) {
        process_.setProcessEnvironment(env);
        process_.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        process_.start(path, arguments);
        process_.waitForStarted(10000);
    }
    ~Program() {
        process_.terminate();
        if (!process_.waitForFinished(5000)) {
            process_.kill();
            process_.waitForFinished(5000);
        }
    }
    Program(const Program&) = delete;
    Program& operator=(const Program&) = delete;
    QProcess& process() { return process_; }

  private:
    QProcess process_;
};

TEST(InstalledProgram, ShowsItsBoardAndBannerAndReadsATableWithItsTemplates) {
    XvfbServer screen;
    std::string error;
    ASSERT_TRUE(screen.Start(24, error)) << error;
    QTemporaryDir home;
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.insert("DISPLAY", QString::fromStdString(screen.Display()));
    const QProcessEnvironment system = env;
    env.insert("QT_QPA_PLATFORM", "xcb");
    env.insert("HOME", home.path());
    env.insert("XDG_CONFIG_HOME", home.filePath("config"));
    env.insert("XDG_DATA_HOME", home.filePath("data"));
    // No system-wide data: only what the package installed.
    env.insert("XDG_DATA_DIRS", home.filePath("none"));
    // Nothing answers there, so the default banner stands in.
    env.insert("FELTHAWK_SERVER", "http://127.0.0.1:9/");

    std::unique_ptr<XcbWindowSystem> windows =
        XcbWindowSystem::Connect(screen.Display().c_str(), error);
    ASSERT_TRUE(windows) << error;
    xcb_connection_t* x = xcb_connect(screen.Display().c_str(), nullptr);
    ASSERT_EQ(xcb_connection_has_error(x), 0);
    auto openbox = std::make_unique<Program>("openbox", QStringList{"--sm-disable"}, system);
    ASSERT_TRUE(WaitFor([&] { return WindowManagerRuns(x); }, 10s)) << "openbox did not start";

    Program table(Installed("felthawk-table"), {"--commands", "--cells", "AS,KS,QH,JD,2C,,"}, env);
    ASSERT_NE(WaitForTableReady(table.process(), 20000), 0u) << "felthawk-table did not show";

    Program felthawk(Installed("felthawk"), {}, env);
    WindowId board = 0;
    ASSERT_TRUE(WaitFor(
        [&] { return (board = FindTitled(*windows, windows->DesktopWindow(), "Felthawk")) != 0; },
        20s))
        << "the board never showed";

    // The banner page names the default banner and its page where the
    // package put them.
    const QString page = QDir(home.filePath("data/FELTHAWK/FELTHAWK")).filePath("temp.htm");
    QByteArray banner;
    EXPECT_TRUE(WaitFor(
        [&] {
            QFile file(page);
            return file.open(QIODevice::ReadOnly) && !(banner = file.readAll()).isEmpty();
        },
        15s))
        << "no banner page was written";
    EXPECT_TRUE(banner.contains((kData + "/Default.gif").toUtf8())) << banner.toStdString();
    EXPECT_TRUE(banner.contains((kData + "/DefaultLink/").toUtf8())) << banner.toStdString();

    // Capture reads the table once the window manager has gone (the board
    // and the table stay): how capture copes with frames is the capture
    // tests' business, here only the folder the templates come from counts.
    // The board goes low enough for the table to dock above its strip, the
    // eye button arms capture, and the next pass docks the table and reads
    // its flop against the installed templates.
    openbox.reset();
    ForgetWindowManager(x);
    std::optional<WindowRect> rect = windows->GetWindowRect(board);
    ASSERT_TRUE(rect);
    windows->MoveFrame(board, 0, kTableClearance);
    ASSERT_TRUE(WaitFor(
        [&] { return (rect = windows->GetWindowRect(board)) && rect->top >= kTableClearance; },
        5s));
    const int menuBar = rect->height - Px(kFormInnerHeight);
    ClickAt(x, rect->left + Px(kImSpAt.x() + kButtonSize / 2),
            rect->top + menuBar + Px(kImSpAt.y() + kButtonSize / 2));
    const struct {
        int cell;
        const char* card;
    } flop[] = {{2, "QH"}, {3, "JD"}, {4, "2C"}};
    QImage strip;
    const bool read = WaitFor(
        [&] {
            if (windows->WindowText(board) == "Felthawk") return false;
            strip = windows->GrabContent(board).ToImage();
            for (const auto& c : flop) {
                if (!StripShows(strip, c.cell, c.card)) return false;
            }
            return true;
        },
        20s);
    if (!read) strip.save("installed-felthawk-strip.png");
    EXPECT_TRUE(read) << "the strip never showed the flop (left as installed-felthawk-strip.png)";
    EXPECT_EQ(FindTitled(*windows, windows->DesktopWindow(), "Felthawk"), 0u)
        << "a message box is open, or capture stopped";
    xcb_disconnect(x);
}

}  // namespace
}  // namespace felthawk

int main(int argc, char* argv[]) {
    QCoreApplication app(argc, argv);
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
