#include "settings/transparency.h"

#include <gtest/gtest.h>
#include <tuple>

#include <QWidget>

#include "settings/settings_store.h"
#include "tests/settings/test_support.h"

namespace felthawk {
namespace {

// The routes on a real window: a layered window shows alpha / 255 as its
// opacity, any other window is opaque.
class TransparencyTest : public testing::StoreTest {
  protected:
    void ExpectLook(bool layered, int alpha) {
        EXPECT_EQ(layer.IsLayered(window), layered);
        EXPECT_NEAR(window->windowOpacity(), layered ? alpha / 255.0 : 1.0, 0.002);
    }

    QtWindowLayer layer;
    QWidget widget;  // made once the application exists
    QWidget* window = &widget;
};

TEST_F(TransparencyTest, F3ScalesToAByteWithHalvesToEven) {
    // Nothing: the key does nothing.
    const std::pair<int16_t, std::optional<uint8_t>> cases[] = {
        {100, 255},          {80, 204}, {1, 3}, {50, 128} /* 127.5 */,
        {30, 76} /* 76.5 */, {10, 26},  {0, 0}, {101, {}},
        {150, {}},           {-1, {}},
    };
    for (const auto& [transparency, alpha] : cases) {
        SCOPED_TRACE(transparency);
        EXPECT_EQ(F3Alpha(transparency), alpha);
    }
}

TEST_F(TransparencyTest, HeldPressGivesTheQuirkyAlpha) {
    EXPECT_TRUE(HeldPressActs(2, 0));
    EXPECT_TRUE(HeldPressActs(2, 1139));
    EXPECT_FALSE(HeldPressActs(2, 1140));
    EXPECT_FALSE(HeldPressActs(1, 0));

    // The setting, and the alpha the window gets and the caller sees.
    const std::pair<int16_t, int16_t> cases[] = {
        {80, 80},  {30, 76},  {1, 3},      {39, 99}, {40, 80} /* 102 */, {25, 64} /* 63.5 */,
        {100, 80}, {150, 80}, {32767, 80}, {0, 80},
    };
    for (const auto& [transparency, alpha] : cases) {
        SCOPED_TRACE(transparency);
        int16_t value = HeldAlphaValue(transparency);
        EXPECT_EQ(SetWindowAlpha(window, value), kAlphaDone);
        EXPECT_EQ(value, alpha);
        ExpectLook(true, alpha);
    }

    int16_t value = -5;
    EXPECT_EQ(SetWindowAlpha(window, value), kAlphaOutOfRange);
    value = 50;
    EXPECT_EQ(SetWindowAlpha(nullptr, value), kAlphaFault);
    EXPECT_EQ(ClearWindowAlpha(nullptr), kAlphaFault);
}

TEST_F(TransparencyTest, F3F4AndTheHeldRouteShareOneLook) {
    clsAlpha alpha(layer);
    ExpectLook(false, 0);
    alpha.SetAlpha(window, true, *F3Alpha(80));
    ExpectLook(true, 204);
    alpha.SetAlpha(window, true, kF4Alpha);
    ExpectLook(true, 255);
    // A release of the held button ends what F3 set: alpha 0, but not layered.
    EXPECT_EQ(ClearWindowAlpha(window), kAlphaDone);
    ExpectLook(false, 0);
    alpha.SetAlpha(window, true, 100);
    alpha.Clear(window);
    ExpectLook(false, 0);
}

TEST_F(TransparencyTest, TheDialogAnswerDecidesSettingAndStore) {
    // The answer (nothing: cancelled), the setting after, and whether it is
    // written; the setting is 45 before.
    const std::tuple<std::optional<QString>, int16_t, bool> cases[] = {
        {"50", 50, true},         {" 75 ", 75, true}, {"12.5", 12, true}, {"100", 100, true},
        {"1", 1, true},           {"0", 45, true},    {"101", 45, true},  {"-3", 45, true},
        {"abc", 45, false},       {"", 45, false},    {"50%", 45, false}, {"99999", 45, false},
        {std::nullopt, 45, false}};
    for (const auto& [answer, transparency, written] : cases) {
        SCOPED_TRACE(answer.value_or("<cancel>").toStdString());
        testing::Raw().clear();
        FelthawkSettings settings{45, false};
        dialogs.answers.push_back(answer);
        EXPECT_EQ(AskTransparency(nullptr, dialogs, settings), written);
        EXPECT_EQ(dialogs.defaults.back(), "45") << "the current setting is offered";
        EXPECT_EQ(settings.transparency, transparency);
        EXPECT_EQ(testing::Disk("MTRANS").value_or(""),
                  written ? QString::number(transparency) : "");
        EXPECT_EQ(testing::Disk("MOUSE").value_or(""), written ? "RIGHT" : "");
    }
}

}  // namespace
}  // namespace felthawk
