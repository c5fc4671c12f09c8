// The real felthawk program on a real X server: it starts, shows its window,
// takes cards typed, dragged and clicked, turns see-through on F3 and closes
// on SIGTERM. The test starts its own Xvfb and leaves screenshots of the hand
// on the flop and on the river beside itself (felthawk-flop.png,
// felthawk-window.png in the test's working folder).
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

namespace {

using namespace std::chrono_literals;
using felthawk::Px;

// An Xvfb of our own on a display number it picks itself and writes out.
struct VirtualScreen {
    QProcess xvfb;
    std::string name;
    VirtualScreen() {
        xvfb.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        xvfb.start(QStringLiteral("Xvfb"),
                   {"-displayfd", "1", "-screen", "0", "1280x1024x24", "-nolisten", "tcp"});
        while (!xvfb.canReadLine() && xvfb.waitForReadyRead(10000)) {
        }
        if (xvfb.canReadLine()) name = ":" + xvfb.readLine().trimmed().toStdString();
    }
    ~VirtualScreen() {
        xvfb.terminate();
        xvfb.waitForFinished(5000);
    }
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

// One event of the X test extension: a key or button (detail) press or
// release, or a pointer motion to `at` on the root.
void Fake(xcb_connection_t* x, uint8_t type, uint8_t detail, xcb_window_t root = XCB_NONE,
          QPoint at = {}) {
    xcb_test_fake_input(x, type, detail, XCB_CURRENT_TIME, root, static_cast<int16_t>(at.x()),
                        static_cast<int16_t>(at.y()), 0);
    xcb_flush(x);
    std::this_thread::sleep_for(60ms);
}

// Presses and releases the key of a keysym.
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
    Fake(x, XCB_KEY_PRESS, code);
    Fake(x, XCB_KEY_RELEASE, code);
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
        std::this_thread::sleep_for(100ms);
    }
    return test();
}

TEST(Program, ShowsTheBoardTakesAHandAndTurnsSeeThroughOnF3) {
    VirtualScreen screen;
    ASSERT_FALSE(screen.name.empty()) << "Xvfb did not start";
    QTemporaryDir home;

    QProcess program;
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.insert(QStringLiteral("DISPLAY"), QString::fromStdString(screen.name));
    env.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("xcb"));
    env.insert(QStringLiteral("XDG_CONFIG_HOME"), home.filePath(QStringLiteral("config")));
    env.insert(QStringLiteral("XDG_DATA_HOME"), home.filePath(QStringLiteral("data")));
    // Nothing answers here: the version check and the banners fail at once.
    env.insert(QStringLiteral("FELTHAWK_SERVER"), QStringLiteral("http://127.0.0.1:9/"));
    program.setProcessEnvironment(env);
    program.setProcessChannelMode(QProcess::ForwardedChannels);
    program.start(QStringLiteral(FELTHAWK_PROGRAM), {});
    ASSERT_TRUE(program.waitForStarted(10000));

    xcb_connection_t* x = xcb_connect(screen.name.c_str(), nullptr);
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
    auto* corner = xcb_translate_coordinates_reply(
        x, xcb_translate_coordinates(x, *window, root, 0, 0), nullptr);
    ASSERT_NE(corner, nullptr);
    const QPoint board(corner->dst_x, corner->dst_y + menuBar);
    free(corner);
    const QPoint from = board + CardCentre(5370 + 7 * 345, 2520);
    const QPoint to = board + CardCentre(5181, 5940);
    Fake(x, XCB_MOTION_NOTIFY, 0, root, from);
    Fake(x, XCB_BUTTON_PRESS, 1);
    for (int step = 1; step <= 10; ++step)
        Fake(x, XCB_MOTION_NOTIFY, 0, root, from + (to - from) * step / 10);
    Fake(x, XCB_BUTTON_RELEASE, 1);
    Fake(x, XCB_MOTION_NOTIFY, 0, root, board + CardCentre(5370 + 345, 3120));
    Fake(x, XCB_BUTTON_PRESS, 3);
    Fake(x, XCB_BUTTON_RELEASE, 3);
    Fake(x, XCB_MOTION_NOTIFY, 0, root, board + QPoint(660, 520));
    std::this_thread::sleep_for(500ms);

    shot = Screenshot(x, *window);
    EXPECT_TRUE(shot.save(QStringLiteral("felthawk-window.png")));
    EXPECT_TRUE(FaceAt(shot, menuBar, 5181, 5940)) << "the dragged nine is not on the turn";
    EXPECT_TRUE(FaceAt(shot, menuBar, 5505, 5940)) << "the clicked three is not on the river";
    EXPECT_FALSE(FaceAt(shot, menuBar, 5370 + 7 * 345, 2520))
        << "the nine's deck slot is not blank";

    EXPECT_FALSE(Opacity(x, *window).has_value()) << "opaque at start";
    TypeKey(x, 0xffc0);  // F3, at the default setting of 80
    std::optional<double> opacity;
    EXPECT_TRUE(WaitFor([&] { return (opacity = Opacity(x, *window)).has_value(); }, 5000ms));
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
