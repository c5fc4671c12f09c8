// The real felthawk program on an Xvfb of the test's own: it starts, shows
// its window, takes a typed flop (screenshot left as felthawk-window.png),
// turns see-through on F3 and ends on SIGTERM.
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
    // Nothing answers: the version check and the banners fail at once.
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
    EXPECT_TRUE(shot.save(QStringLiteral("felthawk-window.png")));
    EXPECT_TRUE(FaceAt(shot, menuBar, 3930, 4830)) << "the typed ace is not on the table";
    EXPECT_TRUE(FaceAt(shot, menuBar, 4215, 5940)) << "the typed flop is not on the table";
    EXPECT_FALSE(FaceAt(shot, menuBar, 5181, 5940)) << "the turn is still empty";

    EXPECT_FALSE(Opacity(x, *window).has_value()) << "opaque at start";
    TypeKey(x, 0xffc0);  // F3, at the default setting of 80
    std::optional<double> opacity;
    EXPECT_TRUE(WaitFor([&] { return (opacity = Opacity(x, *window)).has_value(); }, 5000ms));
    EXPECT_NEAR(opacity.value_or(0), 204 / 255.0, 0.001);

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
