// The real felthawk program on a real X server: it starts, shows its window,
// takes cards typed, dragged and clicked, turns see-through on F3 and closes
// on SIGTERM. The test starts its own Xvfb and leaves screenshots of the hand
// on the flop and on the river beside itself (felthawk-flop.png,
// felthawk-window.png in the test's working folder).
#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>
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
#include <QImage>
#include <QProcess>
#include <QTemporaryDir>

#include "board/layout.h"

extern char** environ;

namespace {

using namespace std::chrono_literals;
using felthawk::Px;

// An Xvfb of our own on a display number it picks itself.
class VirtualScreen {
  public:
    VirtualScreen() {
        int fds[2];
        if (pipe(fds) != 0) return;
        const std::string fd = std::to_string(fds[1]);
        const char* argv[] = {"Xvfb",         "-displayfd", fd.c_str(), "-screen", "0",
                              "1280x1024x24", "-nolisten",  "tcp",      nullptr};
        if (posix_spawnp(&pid_, "Xvfb", nullptr, nullptr, const_cast<char**>(argv), environ) != 0) {
            pid_ = 0;
        }
        close(fds[1]);
        std::string number;
        char c = 0;
        while (read(fds[0], &c, 1) == 1 && c != '\n') number += c;
        close(fds[0]);
        if (!number.empty()) name_ = ":" + number;
    }
    ~VirtualScreen() {
        if (pid_ > 0) {
            kill(pid_, SIGTERM);
            waitpid(pid_, nullptr, 0);
        }
    }
    const std::string& Name() const { return name_; }

  private:
    pid_t pid_ = 0;
    std::string name_;
};

std::string Property(xcb_connection_t* x, xcb_window_t window, xcb_atom_t atom) {
    auto* reply = xcb_get_property_reply(
        x, xcb_get_property(x, 0, window, atom, XCB_GET_PROPERTY_TYPE_ANY, 0, 256), nullptr);
    if (reply == nullptr) return {};
    std::string value(static_cast<const char*>(xcb_get_property_value(reply)),
                      xcb_get_property_value_length(reply));
    free(reply);
    return value;
}

// The mapped top-level window with the given title.
std::optional<xcb_window_t> FindWindow(xcb_connection_t* x, xcb_window_t root,
                                       const std::string& title) {
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
        if (viewable && Property(x, children[i], XCB_ATOM_WM_NAME) == title) found = children[i];
    }
    free(tree);
    return found;
}

// Presses and releases the key of a keysym with the X test extension.
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
    xcb_test_fake_input(x, XCB_KEY_PRESS, code, XCB_CURRENT_TIME, XCB_NONE, 0, 0, 0);
    xcb_test_fake_input(x, XCB_KEY_RELEASE, code, XCB_CURRENT_TIME, XCB_NONE, 0, 0, 0);
    xcb_flush(x);
    std::this_thread::sleep_for(60ms);
}

// Moves the pointer to a point of the root window.
void MoveTo(xcb_connection_t* x, xcb_window_t root, QPoint at) {
    xcb_test_fake_input(x, XCB_MOTION_NOTIFY, 0, XCB_CURRENT_TIME, root,
                        static_cast<int16_t>(at.x()), static_cast<int16_t>(at.y()), 0);
    xcb_flush(x);
    std::this_thread::sleep_for(40ms);
}

void Button(xcb_connection_t* x, uint8_t type, uint8_t button) {
    xcb_test_fake_input(x, type, button, XCB_CURRENT_TIME, XCB_NONE, 0, 0, 0);
    xcb_flush(x);
    std::this_thread::sleep_for(80ms);
}

// Where a point of the board (the window below its menu bar) is on the root.
QPoint OnRoot(xcb_connection_t* x, xcb_window_t window, xcb_window_t root, int menuBar,
              QPoint board) {
    auto* reply = xcb_translate_coordinates_reply(
        x, xcb_translate_coordinates(x, window, root, 0, 0), nullptr);
    QPoint origin;
    if (reply != nullptr) origin = QPoint(reply->dst_x, reply->dst_y);
    free(reply);
    return origin + QPoint(0, menuBar) + board;
}

// The centre of a card picture at a place of the design, in board pixels.
QPoint CardCentre(int leftTwips, int topTwips) {
    return QPoint(Px(leftTwips) + 9, Px(topTwips) + 15);
}

// Whether the card picture at a place of the board shows a face: near white
// beside the suit sign, where an empty cell is dark felt.
bool FaceAt(const QImage& shot, int menuBar, int leftTwips, int topTwips) {
    return shot.pixelColor(Px(leftTwips) + 2, menuBar + Px(topTwips) + 16).lightness() > 200;
}

// The window's opacity as a fraction, or nothing when the property is unset.
std::optional<double> Opacity(const std::string& display, xcb_window_t window) {
    QProcess xprop;
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.insert(QStringLiteral("DISPLAY"), QString::fromStdString(display));
    xprop.setProcessEnvironment(env);
    xprop.start(QStringLiteral("xprop"), {QStringLiteral("-id"), QString::number(window),
                                          QStringLiteral("_NET_WM_WINDOW_OPACITY")});
    if (!xprop.waitForFinished(10000)) return std::nullopt;
    const QString out = QString::fromLocal8Bit(xprop.readAllStandardOutput());
    const int equals = out.indexOf(QLatin1Char('='));
    if (equals < 0) return std::nullopt;
    return out.mid(equals + 1).trimmed().toDouble() / 4294967295.0;
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
        std::this_thread::sleep_for(100ms);
    }
    return test();
}

TEST(Program, ShowsTheBoardTakesAHandAndTurnsSeeThroughOnF3) {
    VirtualScreen screen;
    ASSERT_FALSE(screen.Name().empty()) << "Xvfb did not start";
    QTemporaryDir home;

    QProcess program;
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.insert(QStringLiteral("DISPLAY"), QString::fromStdString(screen.Name()));
    env.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("xcb"));
    env.insert(QStringLiteral("XDG_CONFIG_HOME"), home.filePath(QStringLiteral("config")));
    env.insert(QStringLiteral("XDG_DATA_HOME"), home.filePath(QStringLiteral("data")));
    // Nothing answers here: the version check and the banners fail at once.
    env.insert(QStringLiteral("FELTHAWK_SERVER"), QStringLiteral("http://127.0.0.1:9/"));
    program.setProcessEnvironment(env);
    program.setProcessChannelMode(QProcess::ForwardedChannels);
    program.start(QStringLiteral(FELTHAWK_PROGRAM), {});
    ASSERT_TRUE(program.waitForStarted(10000));

    xcb_connection_t* x = xcb_connect(screen.Name().c_str(), nullptr);
    ASSERT_EQ(xcb_connection_has_error(x), 0);
    const xcb_window_t root = xcb_setup_roots_iterator(xcb_get_setup(x)).data->root;
    std::optional<xcb_window_t> window;
    ASSERT_TRUE(
        WaitFor([&] { return (window = FindWindow(x, root, "Felthawk")).has_value(); }, 20000ms))
        << "the board never showed";
    std::this_thread::sleep_for(500ms);

    // A flop typed on the keyboard: the ace and king of spades in the hole,
    // queen and jack of spades and the two of diamonds on the table.
    xcb_set_input_focus(x, XCB_INPUT_FOCUS_POINTER_ROOT, *window, XCB_CURRENT_TIME);
    xcb_flush(x);
    std::this_thread::sleep_for(300ms);
    for (xcb_keysym_t key : {'a', 's', 'k', 's', 'q', 's', 'j', 's', '2', 'd'}) TypeKey(x, key);
    std::this_thread::sleep_for(700ms);

    QImage shot = Screenshot(x, *window);
    ASSERT_FALSE(shot.isNull());
    EXPECT_EQ(shot.width(), 674);
    ASSERT_GE(shot.height(), 533);
    const int menuBar = shot.height() - 533;
    EXPECT_TRUE(shot.save(QStringLiteral("felthawk-flop.png")));
    // The user's cards stand at seat 0, the flop from the third cell on.
    EXPECT_TRUE(FaceAt(shot, menuBar, 3930, 4830)) << "the typed ace is not on the table";
    EXPECT_TRUE(FaceAt(shot, menuBar, 4215, 5940)) << "the typed flop is not on the table";
    EXPECT_FALSE(FaceAt(shot, menuBar, 5181, 5940)) << "the turn is still empty";

    // The turn by the mouse: a left drag of the nine of hearts onto the
    // turn's cell. The river: a right click on the three of clubs.
    MoveTo(x, root, OnRoot(x, *window, root, menuBar, CardCentre(5370 + 7 * 345, 2520)));
    Button(x, XCB_BUTTON_PRESS, 1);
    const QPoint from = OnRoot(x, *window, root, menuBar, CardCentre(5370 + 7 * 345, 2520));
    const QPoint to = OnRoot(x, *window, root, menuBar, CardCentre(5181, 5940));
    for (int step = 1; step <= 10; ++step) MoveTo(x, root, from + (to - from) * step / 10);
    Button(x, XCB_BUTTON_RELEASE, 1);
    MoveTo(x, root, OnRoot(x, *window, root, menuBar, CardCentre(5370 + 345, 3120)));
    Button(x, XCB_BUTTON_PRESS, 3);
    Button(x, XCB_BUTTON_RELEASE, 3);
    MoveTo(x, root, OnRoot(x, *window, root, menuBar, QPoint(660, 520)));
    std::this_thread::sleep_for(500ms);

    shot = Screenshot(x, *window);
    EXPECT_TRUE(shot.save(QStringLiteral("felthawk-window.png")));
    EXPECT_TRUE(FaceAt(shot, menuBar, 5181, 5940)) << "the dragged nine is not on the turn";
    EXPECT_TRUE(FaceAt(shot, menuBar, 5505, 5940)) << "the clicked three is not on the river";
    EXPECT_FALSE(FaceAt(shot, menuBar, 5370 + 7 * 345, 2520))
        << "the nine's deck slot is not blank";

    EXPECT_FALSE(Opacity(screen.Name(), *window).has_value()) << "opaque at start";
    TypeKey(x, 0xffc0);  // F3, at the default setting of 80
    std::optional<double> opacity;
    EXPECT_TRUE(
        WaitFor([&] { return (opacity = Opacity(screen.Name(), *window)).has_value(); }, 5000ms));
    EXPECT_NEAR(opacity.value_or(0), 204 / 255.0, 0.001);

    // SIGTERM closes the window the way Exit does, and the program ends.
    program.terminate();
    EXPECT_TRUE(program.waitForFinished(10000));
    EXPECT_EQ(program.exitStatus(), QProcess::NormalExit);
    EXPECT_EQ(program.exitCode(), 0);
    xcb_disconnect(x);
}

}  // namespace

int main(int argc, char* argv[]) {
    QCoreApplication app(argc, argv);
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
