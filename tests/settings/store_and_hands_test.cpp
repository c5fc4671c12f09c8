#include "settings/settings_store.h"

#include <tuple>

#include <gtest/gtest.h>
#include <QListWidget>
#include <QPushButton>
#include <QStringList>

#include "settings/frm_save_hands.h"

#include "tests/settings/test_support.h"

namespace felthawk {
namespace {

using testing::Raw;
using SettingsStoreTest = testing::StoreTest;

TEST_F(SettingsStoreTest, RoundTripWritesDigitsAndMouseWords) {
    const FelthawkSettings cases[] = {{80, true}, {1, false}, {100, true}, {150, false}};
    for (const FelthawkSettings& c : cases) {
        SCOPED_TRACE(c.transparency);
        SetFelthawksettings(c);
        EXPECT_EQ(Raw().value("MTRANS").toString(), QString::number(c.transparency));
        EXPECT_EQ(Raw().value("MOUSE").toString(), c.leftMouse ? "LEFT" : "RIGHT");
        const FelthawkSettings back = GetFelthawkSettings();
        EXPECT_EQ(back.transparency, c.transparency);
        EXPECT_EQ(back.leftMouse, c.leftMouse);
    }
}

TEST_F(SettingsStoreTest, StoredTextsAreReadWithDefaults) {
    // "MTRANS" and "MOUSE" as stored (nullptr: absent), and what they mean.
    const std::tuple<const char*, const char*, int16_t, bool> cases[] = {
        {nullptr, nullptr, 80, true},   {"0", "LEFT", 80, true},     {"abc", "RIGHT", 80, false},
        {"150", "left", 150, false},    {"", "LEFT ", 80, false},    {"-5", "", 80, false},
        {" 45", "garbage", 45, false},  {"45abc", "LEFT", 45, true}, {"12.5", "LEFT", 12, true},
        {"13.5", "LEFT", 14, true},     {"0.4", "LEFT", 80, true},   {"99999", "LEFT", 80, true},
        {"32767", "LEFT", 32767, true},
    };
    for (const auto& [mtrans, mouse, transparency, left] : cases) {
        SCOPED_TRACE(::testing::Message()
                     << (mtrans ? mtrans : "-") << " " << (mouse ? mouse : "-"));
        Raw().clear();
        if (mtrans) Raw().setValue("MTRANS", QString::fromLatin1(mtrans));
        if (mouse) Raw().setValue("MOUSE", QString::fromLatin1(mouse));
        const FelthawkSettings settings = GetFelthawkSettings();
        EXPECT_EQ(settings.transparency, transparency);
        EXPECT_EQ(settings.leftMouse, left);
        EXPECT_EQ(Raw().contains("MTRANS"), mtrans != nullptr) << "reading writes nothing";
    }
}

TEST_F(SettingsStoreTest, SavedHandsLiveUnderHand1ToHand10) {
    const QString hand = "a:b,c:KD,KC,2S,3S,4S,,";
    PutSavedHand(hand, 10);
    EXPECT_EQ(Raw().value("HAND10").toString(), hand);
    EXPECT_EQ(GetSavedHand(10), hand);
    DeleteSavedHand(10);
    DeleteSavedHand(10);  // a key that is not there is no fault
    EXPECT_FALSE(Raw().contains("HAND10"));
    EXPECT_EQ(GetSavedHand(10), "");
    // What a hand-edited file with unquoted commas reads back as.
    Raw().setValue("HAND2", QStringList{"pair:AS", "AH", "", "", "", "", ""});
    EXPECT_EQ(GetSavedHand(2), "pair:AS,AH,,,,,");
}

const QString kCells = "AS,AH,,,,,";

class SaveHandsTest : public testing::StoreTest {
  protected:
    // HAND1..HAND10 as they stand, absent keys left out.
    static QStringList Stored() {
        QStringList hands;
        for (int place = 1; place <= kMaxSavedHands; ++place) {
            if (Raw().contains("HAND" + QString::number(place))) hands << GetSavedHand(place);
        }
        return hands;
    }
    static QStringList Shown(const frmSaveHands& form) {
        QStringList items;
        for (int row = 0; row < form.lstSave()->count(); ++row)
            items << form.lstSave()->item(row)->text();
        return items;
    }
    // Names the hand "h<number>" and saves it through the form.
    void Save(frmSaveHands& form, int number) {
        dialogs.answers.push_back("h" + QString::number(number));
        form.NewHand(kCells);
    }
    static QStringList Named(std::initializer_list<int> numbers) {
        QStringList hands;
        for (int n : numbers) hands << "h" + QString::number(n) + ":" + kCells;
        return hands;
    }
};

TEST_F(SaveHandsTest, NamesAreStoredAndShownAsTyped) {
    // nullopt: a cancelled box, which still keeps the hand with an empty name.
    const std::optional<QString> names[] = {"pair",       "a:b,c",        "  spaced  ",
                                            "@x=1;\"y\"", "10:30, river", std::nullopt};
    frmSaveHands form(dialogs);
    QStringList expected;
    for (const std::optional<QString>& name : names) {
        dialogs.answers.push_back(name);
        form.NewHand(kCells);
        EXPECT_EQ(dialogs.defaults.back(), kCells);
        expected << name.value_or("") + ":" + kCells;
    }
    EXPECT_EQ(dialogs.messages, 0);
    EXPECT_EQ(Stored(), expected);
    EXPECT_EQ(Shown(form), expected);
    frmSaveHands reopened(dialogs);
    EXPECT_EQ(Shown(reopened), expected);
}

TEST_F(SaveHandsTest, TheEleventhIsRefusedAfterTheQuestionUntilOneIsRemoved) {
    frmSaveHands form(dialogs);
    for (int n = 1; n <= kMaxSavedHands; ++n) Save(form, n);
    const QStringList ten = Named({1, 2, 3, 4, 5, 6, 7, 8, 9, 10});
    ASSERT_EQ(Stored(), ten);

    Save(form, 11);
    EXPECT_EQ(dialogs.defaults.size(), 11u) << "the name is asked before the limit is tested";
    EXPECT_EQ(dialogs.messages, 1);
    EXPECT_EQ(Stored(), ten);
    EXPECT_FALSE(Raw().contains("HAND11"));
    EXPECT_EQ(Shown(form), ten);

    form.lstSave()->setCurrentRow(2);
    form.Command1()->click();
    EXPECT_EQ(Stored(), Named({1, 2, 4, 5, 6, 7, 8, 9, 10}));
    EXPECT_FALSE(Raw().contains("HAND10")) << "the store keeps no hole and no tail";

    Save(form, 12);
    EXPECT_EQ(dialogs.messages, 1);
    EXPECT_EQ(Stored(), Named({1, 2, 4, 5, 6, 7, 8, 9, 10, 12}));
    EXPECT_EQ(Shown(form), Stored());
}

TEST_F(SaveHandsTest, HolesInTheStoreAreSkippedAndClosedUp) {
    PutSavedHand("b:AS,,,,,,", 2);
    PutSavedHand("j:QS,,,,,,", 10);
    frmSaveHands form(dialogs);
    EXPECT_EQ(Shown(form), (QStringList{"b:AS,,,,,,", "j:QS,,,,,,"}));
    form.lstSave()->setCurrentRow(0);
    form.Command1()->click();
    EXPECT_EQ(GetSavedHand(1), "j:QS,,,,,,");
    EXPECT_EQ(Stored().size(), 1);
}

}  // namespace
}  // namespace felthawk
