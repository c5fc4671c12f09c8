#include "settings/display_mode.h"

#include <cstdlib>
#include <functional>
#include <memory>
#include <tuple>
#include <vector>

#include <gtest/gtest.h>
#include <xcb/randr.h>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>

#include "settings/display_guard.h"
#include "tests/settings/xvfb_modes.h"

namespace felthawk {
namespace {

using Modes = std::vector<DisplayMode>;

// A screen that remembers what was asked of it.
class FakeDisplayModes : public IDisplayModes {
  public:
    std::optional<DisplayMode> current;
    bool depthFixed = false;
    Modes applied;

    // Called before each change reaches the screen.
    std::function<void()> beforeApply;

    std::optional<DisplayMode> Current() override { return current; }
    bool Apply(const DisplayMode& mode) override {
        if (beforeApply) beforeApply();
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

TEST(DisplayModeNoteTest, TheNoteStandsExactlyWhileTheScreenIsSwitched) {
    QTemporaryDir folder;
    const DisplayModeNote note(DisplayModeNote::PathFor(folder.path(), ":7"));
    EXPECT_NE(note.Path(), DisplayModeNote::PathFor(folder.path(), ":8"));
    const DisplayMode start{1280, 1024, 24, 60};
    FakeDisplayModes screen;
    screen.current = start;
    std::vector<std::optional<DisplayMode>> notedAtChange;
    screen.beforeApply = [&] { notedAtChange.push_back(note.Read()); };

    modresolution keeper(screen, &note);
    keeper.SaveDisplayMode();
    EXPECT_EQ(note.Read(), start) << "noted for the run";
    keeper.RestoreDisplayMode();
    EXPECT_FALSE(QFile::exists(note.Path()));
    keeper.RestoreDisplayMode();
    EXPECT_EQ(screen.applied, (Modes{kCaptureMode, start})) << "a second restore does nothing";
    EXPECT_EQ(notedAtChange, (std::vector<std::optional<DisplayMode>>{start, start}))
        << "the note is written before the switch and removed after the mode is back";

    // Where no note can be written the screen is left alone.
    const DisplayModeNote nowhere(folder.filePath("missing/folder/note"));
    FakeDisplayModes other;
    other.current = start;
    modresolution careful(other, &nowhere);
    careful.SaveDisplayMode();
    EXPECT_TRUE(other.applied.empty());
}

TEST(DisplayModeNoteTest, ANoteLeftBehindIsPutBackAndDropped) {
    // The note's text (nullptr: no note) and the mode put back.
    const std::pair<const char*, Modes> cases[] = {
        {"1280 1024 24 60\n", {{1280, 1024, 24, 60}}},
        {" 800  600 16 1 ", {{800, 600, 16, 1}}},
        {"1280 1024 24", {}},
        {"0 0 0 0", {}},
        {"99999 768 16 60", {}},
        {"1024 768 16 60 7", {}},
        {"garbage", {}},
        {"", {}},
        {nullptr, {}},
    };
    QTemporaryDir folder;
    for (const auto& [text, restored] : cases) {
        SCOPED_TRACE(text ? text : "no note");
        const DisplayModeNote note(DisplayModeNote::PathFor(folder.path(), ":0"));
        if (text != nullptr) {
            QFile file(note.Path());
            ASSERT_TRUE(file.open(QIODevice::WriteOnly));
            file.write(text);
        }
        FakeDisplayModes screen;
        screen.current = DisplayMode{1024, 768, 24, 60};
        EXPECT_EQ(RestoreNotedMode(note, screen), text != nullptr);
        EXPECT_EQ(screen.applied, restored);
        EXPECT_FALSE(QFile::exists(note.Path()));
    }
}

TEST(XRandrDisplayModesTest, ReadsXvfbRefusesAMissingModeAndSwitchesToAnOfferedOne) {
    testing::Xvfb server("1280x1024x24");
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

    const auto offered = testing::OfferCaptureMode(server.Display());
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
