// The real felthawk program on an X desktop of the test's own (Xvfb and
// openbox): it shows its window, takes a river hand by keys (screenshot left
// as felthawk-board.png), turns see-through on F3, shrinks to the strip when
// capture finds a poker table (felthawk-strip.png) and ends on SIGTERM. It
// puts the screen mode back however it ends, runs once per display, and
// without a display says how to get one.
#include <signal.h>
#include <xcb/xcb.h>
#include <xcb/xtest.h>

#include <chrono>
#include <cstdlib>
#include <cstring>
#include <optional>
#include <string>
#include <thread>

#include <gtest/gtest.h>
#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QImage>
#include <QProcess>
#include <QSettings>
#include <QTemporaryDir>

#include "board/layout.h"
#include "settings/display_mode.h"
#include "tests/settings/xvfb_modes.h"

namespace {

using namespace std::chrono_literals;
using felthawk::DisplayMode;
using felthawk::Px;
using felthawk::testing::Xvfb;

std::string Property(xcb_connection_t* x, xcb_window_t window, xcb_atom_t atom) {
    auto* reply = xcb_get_property_reply(
        x, xcb_get_property(x, 0, window, atom, XCB_GET_PROPERTY_TYPE_ANY, 0, 256), nullptr);
    if (reply == nullptr) return {};
    std::string value(static_cast<const char*>(xcb_get_property_value(reply)),
                      xcb_get_property_value_length(reply));
    free(reply);
    return value;
}

// The mapped window with the given title, searched below `root` (a window
// manager puts the program's window inside a frame of its own).
std::optional<xcb_window_t> FindWindow(xcb_connection_t* x, xcb_window_t root,
                                       const std::string& title, int depth = 0) {
    auto* tree = xcb_query_tree_reply(x, xcb_query_tree(x, root), nullptr);
    if (tree == nullptr) return std::nullopt;
    std::optional<xcb_window_t> found;
    const xcb_window_t* children = xcb_query_tree_children(tree);
    for (int i = 0; i < xcb_query_tree_children_length(tree) && !found; ++i) {
        auto* attributes =
            xcb_get_window_attributes_reply(x, xcb_get_window_attributes(x, children[i]), nullptr);
        const bool viewable =
            attributes != nullptr && attributes->map_state == XCB_MAP_STATE_VIEWABLE;
        free(attributes);
        if (!viewable) continue;
        if (Property(x, children[i], XCB_ATOM_WM_NAME) == title) {
            found = children[i];
        } else if (depth < 3) {
            found = FindWindow(x, children[i], title, depth + 1);
        }
    }
    free(tree);
    return found;
}

// Presses and releases the key of a keysym through the X test extension.
void TypeKey(xcb_connection_t* x, xcb_keysym_t keysym) {
    const xcb_setup_t* setup = xcb_get_setup(x);
    const int count = setup->max_keycode - setup->min_keycode + 1;
    auto* map = xcb_get_keyboard_mapping_reply(
        x, xcb_get_keyboard_mapping(x, setup->min_keycode, count), nullptr);
    ASSERT_NE(map, nullptr);
    const xcb_keysym_t* syms = xcb_get_keyboard_mapping_keysyms(map);
    xcb_keycode_t code = 0;
    for (int i = 0; i < count * map->keysyms_per_keycode && code == 0; ++i) {
        if (syms[i] == keysym) {
            code = static_cast<xcb_keycode_t>(setup->min_keycode + i / map->keysyms_per_keycode);
        }
    }
    free(map);
    ASSERT_NE(code, 0) << "no key for keysym " << keysym;
    for (uint8_t type : {XCB_KEY_PRESS, XCB_KEY_RELEASE}) {
        xcb_test_fake_input(x, type, code, XCB_CURRENT_TIME, XCB_NONE, 0, 0, 0);
        xcb_flush(x);
        std::this_thread::sleep_for(60ms);
    }
}

// A card's face is near white beside the suit sign; an empty cell is felt.
bool FaceAt(const QImage& shot, int menuBar, int leftTwips, int topTwips) {
    return shot.pixelColor(Px(leftTwips) + 2, menuBar + Px(topTwips) + 16).lightness() > 200;
}

// The window's opacity as a fraction, or nothing when the property is unset.
std::optional<double> Opacity(xcb_connection_t* x, xcb_window_t window) {
    const char name[] = "_NET_WM_WINDOW_OPACITY";
    auto* atom = xcb_intern_atom_reply(x, xcb_intern_atom(x, 0, sizeof name - 1, name), nullptr);
    if (atom == nullptr) return std::nullopt;
    const std::string value = Property(x, window, atom->atom);
    free(atom);
    if (value.size() != sizeof(uint32_t)) return std::nullopt;
    uint32_t opacity = 0;
    std::memcpy(&opacity, value.data(), sizeof opacity);
    return opacity / 4294967295.0;
}

QImage Screenshot(xcb_connection_t* x, xcb_window_t window) {
    auto* geometry = xcb_get_geometry_reply(x, xcb_get_geometry(x, window), nullptr);
    if (geometry == nullptr) return {};
    auto* image = xcb_get_image_reply(x,
                                      xcb_get_image(x, XCB_IMAGE_FORMAT_Z_PIXMAP, window, 0, 0,
                                                    geometry->width, geometry->height, ~0u),
                                      nullptr);
    QImage shot;
    if (image != nullptr && image->depth == 24) {
        shot = QImage(xcb_get_image_data(image), geometry->width, geometry->height,
                      QImage::Format_RGB32)
                   .copy();
    }
    free(image);
    free(geometry);
    return shot;
}

template <class Test>
bool WaitFor(Test&& test, std::chrono::milliseconds limit) {
    const auto end = std::chrono::steady_clock::now() + limit;
    while (std::chrono::steady_clock::now() < end) {
        if (test()) return true;
        std::this_thread::sleep_for(20ms);
    }
    return test();
}

// Clicks the left button at a point of `window`.
void Click(xcb_connection_t* x, xcb_window_t root, xcb_window_t window, int px, int py) {
    auto* at = xcb_translate_coordinates_reply(
        x,
        xcb_translate_coordinates(x, window, root, static_cast<int16_t>(px),
                                  static_cast<int16_t>(py)),
        nullptr);
    ASSERT_NE(at, nullptr);
    xcb_test_fake_input(x, XCB_MOTION_NOTIFY, 0, XCB_CURRENT_TIME, root, at->dst_x, at->dst_y, 0);
    free(at);
    for (uint8_t type : {XCB_BUTTON_PRESS, XCB_BUTTON_RELEASE}) {
        xcb_flush(x);
        std::this_thread::sleep_for(60ms);
        xcb_test_fake_input(x, type, 1, XCB_CURRENT_TIME, XCB_NONE, 0, 0, 0);
    }
    xcb_flush(x);
}

// The desktop of one test: Xvfb at 1280x1024, openbox, and the felthawk
// programs started on it, each with the same per-user folders.
class Desktop {
  public:
    Desktop() : server_("1280x1024x24") {
        if (*server_.Display() == '\0') return;
        managed_ = server_.StartWindowManager();
        x_ = xcb_connect(server_.Display(), nullptr);
        root_ = xcb_setup_roots_iterator(xcb_get_setup(x_)).data->root;
    }
    ~Desktop() {
        if (x_ != nullptr) xcb_disconnect(x_);
    }
    bool Ready() const { return managed_ && x_ != nullptr && xcb_connection_has_error(x_) == 0; }
    const char* Display() const { return server_.Display(); }
    xcb_connection_t* X() const { return x_; }
    xcb_window_t Root() const { return root_; }

    QProcessEnvironment Environment() const {
        QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
        env.insert("DISPLAY", QString::fromLatin1(server_.Display()));
        env.insert("QT_QPA_PLATFORM", "xcb");
        env.insert("XDG_CONFIG_HOME", home_.filePath("config"));
        env.insert("XDG_DATA_HOME", home_.filePath("data"));
        // Nothing answers: the version check and the banners fail at once.
        env.insert("FELTHAWK_SERVER", "http://127.0.0.1:9/");
        return env;
    }
    void Start(QProcess& program) const {
        program.setProcessEnvironment(Environment());
        program.setProcessChannelMode(QProcess::ForwardedChannels);
        program.start(FELTHAWK_PROGRAM, {});
        program.waitForStarted(10000);
    }
    // The board's window once it shows.
    std::optional<xcb_window_t> Board(std::chrono::milliseconds limit = 30s) const {
        std::optional<xcb_window_t> window;
        WaitFor([&] { return (window = FindWindow(x_, root_, "Felthawk")).has_value(); }, limit);
        return window;
    }
    std::optional<DisplayMode> Mode() const {
        return felthawk::XRandrDisplayModes(server_.Display()).Current();
    }
    // The display mode notes in the data folder.
    QStringList Notes() const {
        return QDir(home_.filePath("data/FELTHAWK/FELTHAWK"))
            .entryList({"display-mode-*.note"}, QDir::Files);
    }
    void SetSwitchMode(bool on) const {
        QSettings store(home_.filePath("config/FELTHAWK/FELTHAWK.conf"), QSettings::IniFormat);
        store.setValue("SETTINGS/SWITCHMODE", on ? "1" : "0");
    }

  private:
    Xvfb server_;
    bool managed_ = false;
    xcb_connection_t* x_ = nullptr;
    xcb_window_t root_ = 0;
    QTemporaryDir home_;
};

bool IsSize(const std::optional<DisplayMode>& mode, int width, int height) {
    return mode && mode->width == width && mode->height == height;
}

// The process whose parent is `parent` and whose name is `name`; 0 if none.
pid_t ChildNamed(qint64 parent, const std::string& name) {
    for (const QString& entry : QDir("/proc").entryList(QDir::Dirs)) {
        QFile stat("/proc/" + entry + "/stat");
        if (!stat.open(QIODevice::ReadOnly)) continue;
        // pid (comm) state ppid ...
        const QByteArray line = stat.readAll();
        const int open = line.indexOf('('), close = line.lastIndexOf(')');
        if (open < 0 || close < open) continue;
        const QList<QByteArray> rest = line.mid(close + 2).split(' ');
        if (line.mid(open + 1, close - open - 1).toStdString() == name && rest.size() > 1 &&
            rest[1].toLongLong() == parent) {
            return static_cast<pid_t>(entry.toInt());
        }
    }
    return 0;
}

TEST(Program, TakesARiverHandTurnsSeeThroughAndShrinksToTheStripForCapture) {
    Desktop desktop;
    ASSERT_TRUE(desktop.Ready()) << "Xvfb or openbox did not start";
    xcb_connection_t* x = desktop.X();
    QProcess program;
    desktop.Start(program);
    ASSERT_TRUE(program.waitForStarted(10000));
    std::optional<xcb_window_t> window = desktop.Board();
    ASSERT_TRUE(window) << "the board never showed";
    EXPECT_TRUE(IsSize(desktop.Mode(), 1280, 1024)) << "no 1024x768 on offer: the screen stays";

    xcb_set_input_focus(x, XCB_INPUT_FOCUS_POINTER_ROOT, *window, XCB_CURRENT_TIME);
    xcb_flush(x);
    std::this_thread::sleep_for(300ms);
    for (xcb_keysym_t key :
         {'a', 's', 'k', 's', 'q', 's', 'j', 's', '2', 'd', '9', 'h', '3', 'c'}) {
        TypeKey(x, key);
    }
    QImage shot;
    ASSERT_TRUE(WaitFor(
        [&] {
            shot = Screenshot(x, *window);
            return !shot.isNull() && shot.height() >= 533 &&
                   FaceAt(shot, shot.height() - 533, 5505, 5940);
        },
        10s))
        << "the typed river is not on the table";
    EXPECT_EQ(shot.width(), 674);
    const int menuBar = shot.height() - 533;
    EXPECT_TRUE(shot.save("felthawk-board.png"));
    EXPECT_TRUE(FaceAt(shot, menuBar, 3930, 4830)) << "the typed ace is not on the table";
    EXPECT_TRUE(FaceAt(shot, menuBar, 4215, 5940)) << "the typed flop is not on the table";

    EXPECT_FALSE(Opacity(x, *window).has_value()) << "opaque at start";
    TypeKey(x, 0xffc0);  // F3, at the default setting of 80
    std::optional<double> opacity;
    EXPECT_TRUE(WaitFor([&] { return (opacity = Opacity(x, *window)).has_value(); }, 5000ms));
    EXPECT_NEAR(opacity.value_or(0), 204 / 255.0, 0.001);

    // The eye button arms capture, and the first pass that finds a poker
    // table shrinks the board to the strip.
    Click(x, desktop.Root(), *window, Px(870) + 16, menuBar + Px(120) + 16);
    QProcess table;
    table.setProcessEnvironment(desktop.Environment());
    table.start(FELTHAWK_TABLE_PROGRAM, {"--cells", "AS,KS,QS,JS,2D,9H,3C", "--me-seat", "0"});
    ASSERT_TRUE(table.waitForStarted(10000));
    ASSERT_TRUE(WaitFor([&] { return table.canReadLine() || table.waitForReadyRead(100); }, 30s));
    ASSERT_TRUE(WaitFor(
        [&] {
            shot = Screenshot(x, *window);
            return !shot.isNull() && shot.height() < 100;
        },
        30s))
        << "the board never became the strip";
    EXPECT_EQ(shot.height(), Px(990 + 80));
    // With the table gone the strip shows in full; a typed hand gives it the
    // longest advice there is.
    table.kill();
    table.waitForFinished(5000);
    xcb_set_input_focus(x, XCB_INPUT_FOCUS_POINTER_ROOT, *window, XCB_CURRENT_TIME);
    xcb_flush(x);
    std::this_thread::sleep_for(300ms);
    for (xcb_keysym_t key : {'q', 'h', '9', 'c'}) TypeKey(x, key);
    // Advice is pale yellow text beside the eye button.
    const auto advice = [&] {
        shot = Screenshot(x, *window);
        for (int px = Px(1440); !shot.isNull() && px < Px(3885); ++px) {
            for (int py = 0; py < shot.height(); ++py) {
                const QColor c = shot.pixelColor(px, py);
                if (c.red() > 200 && c.green() > 200 && c.blue() < 190) return true;
            }
        }
        return false;
    };
    EXPECT_TRUE(WaitFor(advice, 10s)) << "no advice on the strip";
    EXPECT_TRUE(shot.save("felthawk-strip.png"));

    program.terminate();
    EXPECT_TRUE(program.waitForFinished(10000));
    EXPECT_EQ(program.exitStatus(), QProcess::NormalExit);
    EXPECT_EQ(program.exitCode(), 0);
}

// However the program ends the screen goes back: a kill with SIGKILL leaves
// it to the guard, a kill of both leaves a note that the next start acts on.
// A second start on the same display raises the first and ends.
TEST(Program, PutsTheScreenBackHoweverItEndsAndRunsOncePerDisplay) {
    Desktop desktop;
    ASSERT_TRUE(desktop.Ready()) << "Xvfb or openbox did not start";
    const auto offered = felthawk::testing::OfferCaptureMode(desktop.Display());
    const std::optional<DisplayMode> original = desktop.Mode();
    ASSERT_TRUE(IsSize(original, 1280, 1024));
    const auto switched = [&] { return IsSize(desktop.Mode(), 1024, 768); };
    const auto restored = [&] { return desktop.Mode() == original; };

    QProcess first;
    desktop.Start(first);
    std::optional<xcb_window_t> window = desktop.Board();
    ASSERT_TRUE(window);
    EXPECT_TRUE(switched());
    EXPECT_EQ(desktop.Notes().size(), 1);

    // Minimised, then a second start: it ends, and the first comes back.
    xcb_set_input_focus(desktop.X(), XCB_INPUT_FOCUS_POINTER_ROOT, *window, XCB_CURRENT_TIME);
    xcb_flush(desktop.X());
    std::this_thread::sleep_for(300ms);
    TypeKey(desktop.X(), 0xffc2);  // F5
    EXPECT_TRUE(WaitFor([&] { return !desktop.Board(0ms); }, 10s)) << "F5 did not minimise";
    QProcess second;
    desktop.Start(second);
    EXPECT_TRUE(second.waitForFinished(30000));
    EXPECT_EQ(second.exitCode(), 0);
    EXPECT_EQ(first.state(), QProcess::Running);
    EXPECT_TRUE(desktop.Board(10s)) << "the running board was not raised";
    EXPECT_TRUE(switched()) << "the second start left the screen to the first";

    const pid_t firstPid = static_cast<pid_t>(first.processId());
    const auto killed = std::chrono::steady_clock::now();
    ::kill(firstPid, SIGKILL);
    EXPECT_TRUE(WaitFor(restored, 10s)) << "the guard did not put the mode back";
    const auto back = std::chrono::duration_cast<std::chrono::milliseconds>(
        std::chrono::steady_clock::now() - killed);
    ::testing::Test::RecordProperty("mode_back_after_kill_ms", static_cast<int>(back.count()));
    std::printf("mode back %lld ms after SIGKILL\n", static_cast<long long>(back.count()));
    first.waitForFinished(10000);
    EXPECT_TRUE(WaitFor([&] { return desktop.Notes().isEmpty(); }, 10s));

    // The guard killed too: the note stays, and the next start puts the
    // mode back before it notes the one it finds.
    QProcess crashed;
    desktop.Start(crashed);
    ASSERT_TRUE(desktop.Board());
    ASSERT_TRUE(switched());
    const pid_t guard = ChildNamed(crashed.processId(), "felthawk-guard");
    ASSERT_NE(guard, 0) << "no guard process";
    ::kill(guard, SIGKILL);
    ::kill(static_cast<pid_t>(crashed.processId()), SIGKILL);
    crashed.waitForFinished(10000);
    EXPECT_TRUE(switched());
    EXPECT_EQ(desktop.Notes().size(), 1);

    QProcess next;
    desktop.Start(next);
    ASSERT_TRUE(desktop.Board());
    EXPECT_TRUE(switched());
    next.terminate();
    EXPECT_TRUE(next.waitForFinished(10000));
    EXPECT_EQ(next.exitCode(), 0);
    EXPECT_TRUE(WaitFor(restored, 10s)) << "the mode noted is the original, not 1024x768";
    EXPECT_TRUE(desktop.Notes().isEmpty());

    // With the setting off the screen is left alone.
    desktop.SetSwitchMode(false);
    QProcess alone;
    desktop.Start(alone);
    ASSERT_TRUE(desktop.Board());
    EXPECT_TRUE(restored());
    EXPECT_TRUE(desktop.Notes().isEmpty());
    alone.terminate();
    EXPECT_TRUE(alone.waitForFinished(10000));
}

TEST(Program, WithoutADisplaySaysHowToStartAndEndsWithStatusOne) {
    // DISPLAY as set (nullptr: unset).
    for (const char* display : {static_cast<const char*>(nullptr), ":65531"}) {
        SCOPED_TRACE(display ? display : "unset");
        QTemporaryDir home;
        QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
        env.remove("DISPLAY");
        env.remove("WAYLAND_DISPLAY");
        env.remove("QT_QPA_PLATFORM");
        if (display != nullptr) env.insert("DISPLAY", display);
        env.insert("XDG_DATA_HOME", home.path());
        QProcess program;
        program.setProcessEnvironment(env);
        program.start(FELTHAWK_PROGRAM, {});
        ASSERT_TRUE(program.waitForFinished(30000));
        EXPECT_EQ(program.exitStatus(), QProcess::NormalExit);
        EXPECT_EQ(program.exitCode(), 1);
        const QString error = QString::fromLocal8Bit(program.readAllStandardError());
        EXPECT_EQ(error.count('\n'), 1) << error.toStdString();
        EXPECT_TRUE(error.contains("xvfb-run")) << error.toStdString();
    }
}

}  // namespace

int main(int argc, char* argv[]) {
    QCoreApplication app(argc, argv);
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
