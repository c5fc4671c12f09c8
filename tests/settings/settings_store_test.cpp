#include "settings/settings_store.h"

#include <gtest/gtest.h>
#include <QStringList>

#include "tests/settings/test_support.h"

namespace felthawk {
namespace {

using testing::ClearStore;
using testing::PutRawValue;
using testing::RawContains;
using testing::RawValue;

class SettingsStoreTest : public ::testing::Test {
  protected:
    void SetUp() override {
        testing::EnsureApplication();
        ClearStore();
    }
};

TEST_F(SettingsStoreTest, EmptyStoreGivesDefaults) {
    FelthawkSettings settings = GetFelthawkSettings();
    EXPECT_EQ(settings.transparency, 80);
    EXPECT_TRUE(settings.leftMouse);
    // Reading writes nothing.
    EXPECT_FALSE(RawContains("MTRANS"));
    EXPECT_FALSE(RawContains("MOUSE"));
}

TEST_F(SettingsStoreTest, RoundTripWritesDigitsAndMouseWords) {
    struct Case {
        int16_t transparency;
        bool leftMouse;
        const char* storedTransparency;
        const char* storedMouse;
    };
    const Case cases[] = {
        {80, true, "80", "LEFT"},
        {1, false, "1", "RIGHT"},
        {100, true, "100", "LEFT"},
        {150, false, "150", "RIGHT"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.storedTransparency);
        SetFelthawksettings({c.transparency, c.leftMouse});
        EXPECT_EQ(RawValue("MTRANS").toString(), c.storedTransparency);
        EXPECT_EQ(RawValue("MOUSE").toString(), c.storedMouse);
        FelthawkSettings back = GetFelthawkSettings();
        EXPECT_EQ(back.transparency, c.transparency);
        EXPECT_EQ(back.leftMouse, c.leftMouse);
    }
}

TEST_F(SettingsStoreTest, StoredTransparencyIsReadAsAPositiveWholeNumber) {
    struct Case {
        const char* stored;
        int16_t expected;
    };
    const Case cases[] = {
        {"0", 80},     {"abc", 80},  {"", 80},     {"-5", 80},  {"150", 150},  {" 45", 45},
        {"45abc", 45}, {"12.5", 12}, {"13.5", 14}, {"0.4", 80}, {"99999", 80}, {"32767", 32767},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.stored);
        PutRawValue("MTRANS", QString::fromLatin1(c.stored));
        EXPECT_EQ(GetFelthawkSettings().transparency, c.expected);
    }
}

TEST_F(SettingsStoreTest, AnyMouseTextButLeftMeansRight) {
    struct Case {
        const char* stored;
        bool left;
    };
    const Case cases[] = {
        {"LEFT", true},   {"RIGHT", false}, {"left", false},
        {"LEFT ", false}, {"", false},      {"garbage", false},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.stored);
        PutRawValue("MOUSE", QString::fromLatin1(c.stored));
        EXPECT_EQ(GetFelthawkSettings().leftMouse, c.left);
    }
}

TEST_F(SettingsStoreTest, SavedHandsKeepTheirTextUnderNumberedKeys) {
    const QString texts[] = {
        "pair:AS,AH,,,,,",
        "a:b,c:KD,KC,2S,3S,4S,,",
        ":,,,,TD,,",
        "@home; \"q\"=1:AS,,,,,,",
        "x",
        "  leading and trailing  ",
    };
    uint8_t place = 1;
    for (const QString& text : texts) {
        SCOPED_TRACE(text.toStdString());
        PutSavedHand(text, place);
        EXPECT_EQ(GetSavedHand(place), text);
        EXPECT_EQ(RawValue("HAND" + QString::number(place)).toString(), text);
        ++place;
    }
    EXPECT_EQ(GetSavedHand(10), "");
    PutSavedHand("last:AS,,,,,,", 10);
    EXPECT_TRUE(RawContains("HAND10"));
    EXPECT_FALSE(RawContains("HAND010"));
}

TEST_F(SettingsStoreTest, DeletingAHandThatIsNotThereIsNoFault) {
    DeleteSavedHand(4);
    EXPECT_EQ(GetSavedHand(4), "");
    PutSavedHand("h:AS,,,,,,", 4);
    DeleteSavedHand(4);
    EXPECT_EQ(GetSavedHand(4), "");
    EXPECT_FALSE(RawContains("HAND4"));
}

TEST_F(SettingsStoreTest, AHandWrittenAsAListKeepsItsCommas) {
    // What a hand-edited file with unquoted commas reads back as.
    PutRawValue("HAND2", QStringList{"pair:AS", "AH", "", "", "", "", ""});
    EXPECT_EQ(GetSavedHand(2), "pair:AS,AH,,,,,");
}

}  // namespace
}  // namespace felthawk
