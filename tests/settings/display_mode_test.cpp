#include "settings/display_mode.h"

#include <cstdlib>
#include <cstring>
#include <iostream>
#include <vector>

#include <gtest/gtest.h>
#include <xcb/randr.h>
#include <QProcess>
#include <QStandardPaths>

namespace felthawk {
namespace {

// A screen that remembers what was asked of it.
class FakeDisplayModes : public IDisplayModes {
  public:
    std::optional<DisplayMode> current;
    bool depthFixed = false;
    bool refuse = false;
    std::vector<DisplayMode> applied;

    std::optional<DisplayMode> Current() override { return current; }
    bool Apply(const DisplayMode& mode) override {
        applied.push_back(mode);
        if (refuse) return false;
        current = mode;
        return true;
    }
    bool DepthIsFixed() const override { return depthFixed; }
};

TEST(DisplayModeLogic, SaveForcesTheCaptureModeUnlessAlreadyThere) {
    struct Case {
        DisplayMode start;
        bool depthFixed;
        bool forced;
    };
    const Case cases[] = {
        {{1024, 768, 16, 75}, false, false},  // frequency is not looked at
        {{1024, 768, 32, 60}, false, true},  {{1280, 1024, 32, 60}, false, true},
        {{800, 600, 16, 60}, false, true},   {{1024, 768, 24, 60}, true, false},
        {{1280, 1024, 24, 60}, true, true},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(::testing::Message() << c.start.width << "x" << c.start.height << "x"
                                          << c.start.depth << " fixed " << c.depthFixed);
        FakeDisplayModes screen;
        screen.current = c.start;
        screen.depthFixed = c.depthFixed;
        modresolution keeper(screen);
        keeper.SaveDisplayMode();
        EXPECT_EQ(keeper.StartMode(), c.start);
        if (c.forced) {
            EXPECT_EQ(screen.applied, std::vector<DisplayMode>{kCaptureMode});
        } else {
            EXPECT_TRUE(screen.applied.empty());
        }

        keeper.RestoreDisplayMode();
        ASSERT_FALSE(screen.applied.empty());
        EXPECT_EQ(screen.applied.back(), c.start) << "the noted values are written back";
        EXPECT_EQ(screen.current, c.start);
    }
}

TEST(DisplayModeLogic, GivenValuesAreFilledFromTheLastSet) {
    FakeDisplayModes screen;
    modresolution keeper(screen);
    struct Step {
        DisplayMode asked;
        std::optional<DisplayMode> handed;  // nothing: no call at all
        DisplayMode lastSet;
    };
    const Step steps[] = {
        {{1024, 768, 16, 60}, DisplayMode{1024, 768, 16, 60}, {1024, 768, 16, 60}},
        {{800, 600, 0, 0}, DisplayMode{800, 600, 16, 60}, {800, 600, 16, 60}},
        {{0, 0, 32, 0}, DisplayMode{800, 600, 32, 60}, {800, 600, 32, 60}},
        {{0, 0, 0, 75}, DisplayMode{800, 600, 32, 75}, {800, 600, 32, 75}},
        // A mix hands the record back as it stands and keeps nothing.
        {{640, 0, 8, 0}, DisplayMode{800, 600, 32, 75}, {800, 600, 32, 75}},
        {{0, 0, 0, 0}, std::nullopt, {800, 600, 32, 75}},
    };
    for (const Step& step : steps) {
        SCOPED_TRACE(::testing::Message() << step.asked.width << "x" << step.asked.height << "x"
                                          << step.asked.depth << "@" << step.asked.frequency);
        screen.applied.clear();
        keeper.SetDisplayMode(step.asked.width, step.asked.height, step.asked.depth,
                              step.asked.frequency);
        if (step.handed) {
            EXPECT_EQ(screen.applied, std::vector<DisplayMode>{*step.handed});
        } else {
            EXPECT_TRUE(screen.applied.empty());
        }
        EXPECT_EQ(keeper.LastSet(), step.lastSet);
    }
}

TEST(DisplayModeLogic, ARefusedOrUnreadableScreenIsNoFault) {
    FakeDisplayModes refusing;
    refusing.current = DisplayMode{1280, 1024, 32, 60};
    refusing.refuse = true;
    modresolution keeper(refusing);
    keeper.SaveDisplayMode();
    keeper.RestoreDisplayMode();
    EXPECT_EQ(refusing.applied.size(), 2u);
    EXPECT_EQ(refusing.current, (DisplayMode{1280, 1024, 32, 60}));

    FakeDisplayModes unreadable;
    modresolution blind(unreadable);
    blind.SaveDisplayMode();
    blind.RestoreDisplayMode();
    EXPECT_TRUE(unreadable.applied.empty()) << "with no mode noted there is nothing to put back";
}

// An Xvfb server of our own, on a display number it picks itself.
class Xvfb {
  public:
    explicit Xvfb(const QString& screen) {
        const QString program = QStandardPaths::findExecutable("Xvfb");
        if (program.isEmpty()) return;
        process_.start(program, {"-displayfd", "1", "-screen", "0", screen, "-nolisten", "tcp"});
        while (process_.waitForReadyRead(10000)) {
            if (!process_.canReadLine()) continue;
            display_ = ":" + QString::fromLatin1(process_.readLine()).trimmed();
            return;
        }
    }
    ~Xvfb() {
        process_.terminate();
        process_.waitForFinished(5000);
    }
    Xvfb(const Xvfb&) = delete;
    Xvfb& operator=(const Xvfb&) = delete;

    // ":N", or "" when the server did not come up.
    QByteArray Display() const { return display_.toLatin1(); }

  private:
    QProcess process_;
    QString display_;
};

// Offers a 1024x768 mode at 60 Hz on the first output, as a monitor that has
// one would. The server drops the mode when this connection closes.
class ExtraMode {
  public:
    explicit ExtraMode(const char* display) {
        connection_ = xcb_connect(display, nullptr);
        if (xcb_connection_has_error(connection_)) return;
        xcb_screen_t* screen = xcb_setup_roots_iterator(xcb_get_setup(connection_)).data;
        std::free(xcb_randr_query_version_reply(
            connection_, xcb_randr_query_version(connection_, 1, 2), nullptr));
        auto* resources = xcb_randr_get_screen_resources_current_reply(
            connection_, xcb_randr_get_screen_resources_current(connection_, screen->root),
            nullptr);
        if (resources == nullptr) return;
        const xcb_randr_output_t output =
            xcb_randr_get_screen_resources_current_outputs(resources)[0];
        std::free(resources);

        // The common VESA timings of 1024x768 at 60 Hz.
        const char name[] = "1024x768_60";
        xcb_randr_mode_info_t mode{};
        mode.width = 1024;
        mode.height = 768;
        mode.dot_clock = 65000000;
        mode.hsync_start = 1048;
        mode.hsync_end = 1184;
        mode.htotal = 1344;
        mode.vsync_start = 771;
        mode.vsync_end = 777;
        mode.vtotal = 806;
        mode.name_len = std::strlen(name);
        auto* created = xcb_randr_create_mode_reply(
            connection_,
            xcb_randr_create_mode(connection_, screen->root, mode, mode.name_len, name), nullptr);
        if (created == nullptr) return;
        xcb_generic_error_t* error = xcb_request_check(
            connection_, xcb_randr_add_output_mode_checked(connection_, output, created->mode));
        added_ = error == nullptr;
        std::free(error);
        std::free(created);
    }
    ~ExtraMode() { xcb_disconnect(connection_); }
    ExtraMode(const ExtraMode&) = delete;
    ExtraMode& operator=(const ExtraMode&) = delete;

    bool Added() const { return added_; }

  private:
    xcb_connection_t* connection_ = nullptr;
    bool added_ = false;
};

void Report(const char* what, const std::optional<DisplayMode>& mode) {
    if (!mode) {
        std::cout << what << ": no mode\n";
        return;
    }
    std::cout << what << ": " << mode->width << "x" << mode->height << "x" << mode->depth << " @ "
              << mode->frequency << " Hz\n";
}

TEST(XRandrDisplayModesTest, ReadsXvfbAndLivesWithARefusal) {
    Xvfb server("1280x1024x24");
    ASSERT_FALSE(server.Display().isEmpty()) << "Xvfb did not start";
    XRandrDisplayModes screen(server.Display().constData());

    const std::optional<DisplayMode> found = screen.Current();
    Report("found", found);
    ASSERT_TRUE(found.has_value());
    EXPECT_EQ(found->width, 1280);
    EXPECT_EQ(found->height, 1024);
    EXPECT_EQ(found->depth, 24);
    EXPECT_EQ(found->frequency, 1) << "Xvfb's mode has no timings: the default rate";

    // Xvfb offers no 1024x768 mode of its own: the change is refused quietly.
    EXPECT_FALSE(screen.Apply(kCaptureMode));
    modresolution keeper(screen);
    keeper.SaveDisplayMode();
    EXPECT_EQ(keeper.StartMode(), *found);
    EXPECT_EQ(screen.Current(), found);
    keeper.RestoreDisplayMode();
    EXPECT_EQ(screen.Current(), found);
}

TEST(XRandrDisplayModesTest, SwitchesToTheCaptureModeAndBack) {
    Xvfb server("1280x1024x24");
    ASSERT_FALSE(server.Display().isEmpty()) << "Xvfb did not start";
    ExtraMode offered(server.Display().constData());
    ASSERT_TRUE(offered.Added());
    XRandrDisplayModes screen(server.Display().constData());
    const std::optional<DisplayMode> found = screen.Current();
    ASSERT_TRUE(found.has_value());

    modresolution keeper(screen);
    keeper.SaveDisplayMode();
    const std::optional<DisplayMode> forced = screen.Current();
    Report("forced", forced);
    ASSERT_TRUE(forced.has_value());
    // The depth stays the root visual's; the refresh comes from the timings.
    EXPECT_EQ(*forced, (DisplayMode{1024, 768, 24, 60}));

    keeper.RestoreDisplayMode();
    const std::optional<DisplayMode> restored = screen.Current();
    Report("restored", restored);
    ASSERT_TRUE(restored.has_value());
    EXPECT_EQ(*restored, *found);
}

TEST(XRandrDisplayModesTest, LeavesAScreenOfTheRightSizeAlone) {
    Xvfb server("1024x768x16");
    ASSERT_FALSE(server.Display().isEmpty()) << "Xvfb did not start";
    XRandrDisplayModes screen(server.Display().constData());
    const std::optional<DisplayMode> found = screen.Current();
    Report("found", found);
    ASSERT_TRUE(found.has_value());
    EXPECT_EQ(found->depth, 16);

    modresolution keeper(screen);
    keeper.SaveDisplayMode();
    EXPECT_EQ(keeper.LastSet(), DisplayMode{}) << "nothing was set";
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
