#include "settings/transparency.h"

#include <gtest/gtest.h>
#include <memory>

#include <QWidget>

#include "settings/settings_store.h"
#include "tests/settings/test_support.h"

namespace felthawk {
namespace {

using testing::FakeDialogs;

// One window's attribute, with the option to refuse.
class FakeLayer : public IWindowLayer {
  public:
    bool layered = false;
    int alpha = -1;  // -1: never set
    int redraws = 0;
    bool refuse = false;

    bool IsLayered(QWidget*) const override { return layered; }
    bool SetLayered(QWidget*, bool on) override {
        if (refuse) return false;
        layered = on;
        return true;
    }
    bool SetLayeredAlpha(QWidget*, uint8_t value) override {
        if (refuse) return false;
        alpha = value;
        return true;
    }
    bool Redraw(QWidget*) override {
        ++redraws;
        return !refuse;
    }
};

class TransparencyTest : public ::testing::Test {
  protected:
    void SetUp() override {
        testing::EnsureApplication();
        owner_ = std::make_unique<QWidget>();
        window = owner_.get();
    }

    FakeLayer layer;
    QWidget* window = nullptr;

  private:
    std::unique_ptr<QWidget> owner_;  // made once the application exists
};

TEST_F(TransparencyTest, F3ScalesToAByteWithHalvesToEven) {
    struct Case {
        int16_t transparency;
        std::optional<uint8_t> alpha;
    };
    const Case cases[] = {
        {100, 255},
        {80, 204},
        {1, 3},
        {50, 128},  // 127.5 rounds up to the even 128
        {30, 76},   // 76.5 rounds down to the even 76
        {10, 26},
        {0, 0},
        {101, std::nullopt},
        {150, std::nullopt},
        {-1, std::nullopt},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.transparency);
        EXPECT_EQ(F3Alpha(c.transparency), c.alpha);
    }
}

TEST_F(TransparencyTest, HeldPressGivesTheQuirkyAlpha) {
    struct Case {
        int16_t transparency;
        int16_t scaled;  // what the press hands over
        int alpha;       // what the window gets
    };
    const Case cases[] = {
        {80, 203, 80},  {30, 76, 76},   {1, 3, 3},
        {39, 99, 99},   {40, 102, 80},  {25, 64, 64},  // 63.5 to the even 64
        {100, 254, 80}, {150, 381, 80}, {32767, 32767, 80},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.transparency);
        int16_t value = HeldAlphaValue(c.transparency);
        EXPECT_EQ(value, c.scaled);
        FakeLayer fresh;
        EXPECT_EQ(SetWindowAlpha(fresh, window, value), kAlphaDone);
        EXPECT_TRUE(fresh.layered);
        EXPECT_EQ(fresh.alpha, c.alpha);
        EXPECT_EQ(value, c.alpha) << "the caller sees the replaced value";
    }
}

TEST_F(TransparencyTest, SetWindowAlphaStatuses) {
    struct Case {
        int16_t value;
        int status;
        int16_t valueAfter;
        bool layered;
    };
    const Case cases[] = {
        {0, kAlphaDone, 80, true},    {101, kAlphaDone, 80, true},       {50, kAlphaDone, 50, true},
        {100, kAlphaDone, 100, true}, {-5, kAlphaOutOfRange, -5, false},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.value);
        FakeLayer fresh;
        int16_t value = c.value;
        EXPECT_EQ(SetWindowAlpha(fresh, window, value), c.status);
        EXPECT_EQ(value, c.valueAfter);
        EXPECT_EQ(fresh.layered, c.layered);
    }

    int16_t value = 50;
    EXPECT_EQ(SetWindowAlpha(layer, nullptr, value), kAlphaFault);
    EXPECT_EQ(ClearWindowAlpha(layer, nullptr), kAlphaFault);
    layer.refuse = true;
    EXPECT_EQ(SetWindowAlpha(layer, window, value), kAlphaFault);
    EXPECT_EQ(ClearWindowAlpha(layer, window), kAlphaFault);
}

TEST_F(TransparencyTest, HeldPressActsOnlyForButtonTwoInTheTopBand) {
    struct Case {
        int button;
        int y;
        bool acts;
    };
    const Case cases[] = {
        {2, 1139, true}, {2, 1140, false}, {2, 0, true}, {1, 0, false}, {2, 5000, false},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(::testing::Message() << c.button << " at " << c.y);
        EXPECT_EQ(HeldPressActs(c.button, c.y), c.acts);
    }
}

TEST_F(TransparencyTest, ClearingEndsTheLookWhateverSetIt) {
    clsAlpha alpha(layer);
    alpha.SetAlpha(window, true, *F3Alpha(80));
    EXPECT_TRUE(layer.layered);
    EXPECT_EQ(layer.alpha, 204);
    // A release of the held button clears what F3 set.
    EXPECT_EQ(ClearWindowAlpha(layer, window), kAlphaDone);
    EXPECT_FALSE(layer.layered);
    EXPECT_EQ(layer.alpha, 0);
    EXPECT_EQ(layer.redraws, 0);

    alpha.SetAlpha(window, true, kF4Alpha);
    EXPECT_EQ(layer.alpha, 255);
    alpha.Clear(window);
    EXPECT_FALSE(layer.layered);
    EXPECT_EQ(layer.redraws, 1) << "ending the look repaints the window";
}

TEST_F(TransparencyTest, RealLayerShowsTheAlphaAsOpacity) {
    QtWindowLayer real;
    clsAlpha alpha(real);
    EXPECT_FALSE(real.IsLayered(window));
    EXPECT_DOUBLE_EQ(window->windowOpacity(), 1.0);

    alpha.SetAlpha(window, true, *F3Alpha(80));
    EXPECT_TRUE(real.IsLayered(window));
    EXPECT_NEAR(window->windowOpacity(), 204 / 255.0, 0.005);

    alpha.SetAlpha(window, true, kF4Alpha);
    EXPECT_TRUE(real.IsLayered(window));
    EXPECT_DOUBLE_EQ(window->windowOpacity(), 1.0);

    int16_t value = HeldAlphaValue(30);
    EXPECT_EQ(SetWindowAlpha(window, value), kAlphaDone);
    EXPECT_NEAR(window->windowOpacity(), 76 / 255.0, 0.005);
    EXPECT_EQ(ClearWindowAlpha(window), kAlphaDone);
    EXPECT_FALSE(real.IsLayered(window));
    EXPECT_DOUBLE_EQ(window->windowOpacity(), 1.0) << "alpha 0 on a plain window shows nothing";

    alpha.SetAlpha(window, true, 100);
    alpha.Clear(window);
    EXPECT_FALSE(real.IsLayered(window));
    EXPECT_DOUBLE_EQ(window->windowOpacity(), 1.0);
}

class TransparencyDialogTest : public TransparencyTest {
  protected:
    void SetUp() override {
        TransparencyTest::SetUp();
        testing::ClearStore();
    }
    FakeDialogs dialogs;
};

TEST_F(TransparencyDialogTest, AnswersDecideSettingAndStore) {
    struct Case {
        std::optional<QString> answer;  // nullopt: cancelled
        int16_t transparency;
        bool written;
    };
    const Case cases[] = {
        {"50", 50, true},          {" 75 ", 75, true}, {"12.5", 12, true},
        {"100", 100, true},        {"1", 1, true},     {"0", 80, true},
        {"101", 80, true},         {"-3", 80, true},   {"abc", 80, false},
        {"", 80, false},           {"50%", 80, false}, {"99999", 80, false},
        {std::nullopt, 80, false},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.answer.value_or("<cancel>").toStdString());
        testing::ClearStore();
        FelthawkSettings settings{80, false};
        dialogs.answers.push_back(c.answer);
        EXPECT_EQ(AskTransparency(nullptr, dialogs, settings), c.written);
        EXPECT_EQ(settings.transparency, c.transparency);
        EXPECT_EQ(testing::RawContains("MTRANS"), c.written);
        if (c.written) {
            EXPECT_EQ(testing::RawValue("MTRANS").toString(), QString::number(c.transparency));
            EXPECT_EQ(testing::RawValue("MOUSE").toString(), "RIGHT");
        }
    }
}

TEST_F(TransparencyDialogTest, AsksWithTheStoredSettingAsDefault) {
    testing::PutRawValue("MTRANS", "150");
    FelthawkSettings settings = GetFelthawkSettings();
    dialogs.answers.push_back(std::nullopt);
    AskTransparency(nullptr, dialogs, settings);
    ASSERT_EQ(dialogs.inputs.size(), 1u);
    EXPECT_EQ(dialogs.inputs[0].prompt, "Enter the % of Transparency");
    EXPECT_EQ(dialogs.inputs[0].title, "Felthawk");
    EXPECT_EQ(dialogs.inputs[0].defaultAnswer, "150");
}

}  // namespace
}  // namespace felthawk
