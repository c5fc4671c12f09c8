#include "settings/display_mode.h"

#include <cstdlib>
#include <memory>
#include <tuple>
#include <vector>

#include <gtest/gtest.h>
#include <xcb/randr.h>
#include <QProcess>

namespace felthawk {
namespace {

using Modes = std::vector<DisplayMode>;

// A screen that remembers what was asked of it.
class FakeDisplayModes : public IDisplayModes {
  public:
    std::optional<DisplayMode> current;
    bool depthFixed = false;
    Modes applied;

    std::optional<DisplayMode> Current() override { return current; }
    bool Apply(const DisplayMode& mode) override {
        applied.push_back(mode);
        current = mode;
        return true;
    }
    bool DepthIsFixed() const override { return depthFixed; }
};

TEST(DisplayModeLogic, SaveForcesTheCaptureModeUnlessAlreadyThere) {
    // The mode at start, whether the depth is fixed, and whether it is forced.
    const std::tuple<DisplayMode, bool, bool> cases[] = {
        {{1024, 768, 16, 75}, false, false},  // frequency is not looked at
        {{1024, 768, 32, 60}, false, true},  {{1280, 1024, 32, 60}, false, true},
        {{800, 600, 16, 60}, false, true},   {{1024, 768, 24, 60}, true, false},
        {{1280, 1024, 24, 60}, true, true},
    };
    for (const auto& [start, depthFixed, forced] : cases) {
        SCOPED_TRACE(&start - &std::get<0>(cases[0]));
        FakeDisplayModes screen;
        screen.current = start;
        screen.depthFixed = depthFixed;
        modresolution keeper(screen);
        keeper.SaveDisplayMode();
        EXPECT_EQ(screen.applied, forced ? Modes{kCaptureMode} : Modes{});
        keeper.RestoreDisplayMode();
        EXPECT_EQ(screen.applied.back(), start) << "the noted values are written back";
        EXPECT_EQ(screen.current, start);
    }
}

TEST(DisplayModeLogic, GivenValuesAreFilledFromTheLastSet) {
    FakeDisplayModes screen;
    modresolution keeper(screen);
    // The values given, and what reaches the screen.
    const std::pair<DisplayMode, Modes> steps[] = {
        {{1024, 768, 16, 60}, {{1024, 768, 16, 60}}},
        {{800, 600, 0, 0}, {{800, 600, 16, 60}}},
        {{0, 0, 32, 0}, {{800, 600, 32, 60}}},
        {{0, 0, 0, 75}, {{800, 600, 32, 75}}},
        // A mix hands the record back as it stands and keeps nothing.
        {{640, 0, 8, 0}, {{800, 600, 32, 75}}},
        {{0, 0, 0, 0}, {}},
        {{0, 0, 16, 0}, {{800, 600, 16, 75}}},
    };
    for (const auto& [asked, handed] : steps) {
        SCOPED_TRACE(&asked - &steps[0].first);
        screen.applied.clear();
        keeper.SetDisplayMode(asked.width, asked.height, asked.depth, asked.frequency);
        EXPECT_EQ(screen.applied, handed);
    }
}

// An Xvfb server of our own, on a display number it picks itself; "" when it
// did not come up.
class Xvfb {
  public:
    explicit Xvfb(const QString& screen) {
        process_.start("Xvfb", {"-displayfd", "1", "-screen", "0", screen, "-nolisten", "tcp"});
        while (display_.isEmpty() && process_.waitForReadyRead(10000)) {
            if (process_.canReadLine()) display_ = ":" + process_.readLine().trimmed();
        }
    }
    ~Xvfb() {
        process_.terminate();
        process_.waitForFinished(5000);
    }
    const char* Display() const { return display_.constData(); }

  private:
    QProcess process_;
    QByteArray display_;
};

// Offers 1024x768 at 60 Hz (the VESA timings) on the first output, as a
// monitor would; the server drops the mode when the returned connection closes.
using Connection = std::unique_ptr<xcb_connection_t, void (*)(xcb_connection_t*)>;
Connection OfferCaptureMode(const char* display) {
    Connection conn(xcb_connect(display, nullptr), xcb_disconnect);
    xcb_connection_t* c = conn.get();
    const xcb_window_t root = xcb_setup_roots_iterator(xcb_get_setup(c)).data->root;
    std::free(xcb_randr_query_version_reply(c, xcb_randr_query_version(c, 1, 2), nullptr));
    auto* resources = xcb_randr_get_screen_resources_current_reply(
        c, xcb_randr_get_screen_resources_current(c, root), nullptr);
    if (resources == nullptr) return conn;
    const xcb_randr_output_t output = xcb_randr_get_screen_resources_current_outputs(resources)[0];
    std::free(resources);
    const char name[] = "1024x768_60";
    // Id, size, dot clock, horizontal sync, total and skew, vertical sync and
    // total, name length, flags.
    const xcb_randr_mode_info_t mode{0,   1024, 768, 65000000,        1048, 1184, 1344, 0,
                                     771, 777,  806, sizeof name - 1, 0};
    auto* created = xcb_randr_create_mode_reply(
        c, xcb_randr_create_mode(c, root, mode, mode.name_len, name), nullptr);
    if (created == nullptr) return conn;
    std::free(xcb_request_check(c, xcb_randr_add_output_mode_checked(c, output, created->mode)));
    std::free(created);
    return conn;
}

TEST(XRandrDisplayModesTest, ReadsXvfbRefusesAMissingModeAndSwitchesToAnOfferedOne) {
    Xvfb server("1280x1024x24");
    ASSERT_STRNE(server.Display(), "") << "Xvfb did not start";
    XRandrDisplayModes screen(server.Display());
    const std::optional<DisplayMode> found = screen.Current();
    // Xvfb's mode has no timings: the default rate.
    EXPECT_EQ(found, (DisplayMode{1280, 1024, 24, 1}));

    // Xvfb offers no 1024x768 mode of its own: the change is refused quietly.
    EXPECT_FALSE(screen.Apply(kCaptureMode));
    modresolution keeper(screen);
    keeper.SaveDisplayMode();
    EXPECT_EQ(screen.Current(), found);

    const auto offered = OfferCaptureMode(server.Display());
    keeper.SaveDisplayMode();
    EXPECT_EQ(keeper.StartMode(), found);
    // The depth stays the root visual's; the refresh comes from the timings.
    EXPECT_EQ(screen.Current(), (DisplayMode{1024, 768, 24, 60}));
    keeper.RestoreDisplayMode();
    EXPECT_EQ(screen.Current(), found);
}

TEST(XRandrDisplayModesTest, NoServerMeansNoModeAndNoChange) {
    XRandrDisplayModes screen("/nonexistent/felthawk-no-such-server:0");
    EXPECT_FALSE(screen.Current().has_value());
    EXPECT_FALSE(screen.Apply(kCaptureMode));
    modresolution keeper(screen);
    keeper.SaveDisplayMode();
    keeper.RestoreDisplayMode();
    EXPECT_EQ(keeper.StartMode(), DisplayMode{});
}

}  // namespace
}  // namespace felthawk
