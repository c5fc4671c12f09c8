#include "settings/frm_save_hands.h"

#include <gtest/gtest.h>
#include <QListWidget>
#include <QPushButton>
#include <QStringList>

#include "settings/settings_store.h"
#include "tests/settings/test_support.h"

namespace felthawk {
namespace {

using testing::FakeDialogs;

const QString kPairCells = "AS,AH,,,,,";

class SaveHandsTest : public ::testing::Test {
  protected:
    void SetUp() override {
        testing::EnsureApplication();
        testing::ClearStore();
    }

    // HAND1..HAND10 as they stand, absent keys left out.
    static QStringList StoredHands() {
        QStringList hands;
        for (int place = 1; place <= kMaxSavedHands; ++place) {
            if (testing::RawContains("HAND" + QString::number(place))) {
                hands << GetSavedHand(static_cast<uint8_t>(place));
            }
        }
        return hands;
    }

    static QStringList Shown(const frmSaveHands& form) {
        QStringList items;
        for (int row = 0; row < form.lstSave()->count(); ++row) {
            items << form.lstSave()->item(row)->text();
        }
        return items;
    }

    // Saves ten hands "h1".."h10" through the form.
    static void SaveTen(frmSaveHands& form, FakeDialogs& dialogs) {
        for (int i = 1; i <= kMaxSavedHands; ++i) {
            dialogs.answers.push_back("h" + QString::number(i));
            form.NewHand(kPairCells);
        }
    }

    static QStringList Named(std::initializer_list<int> numbers) {
        QStringList hands;
        for (int n : numbers) hands << "h" + QString::number(n) + ":" + kPairCells;
        return hands;
    }

    FakeDialogs dialogs;
};

TEST_F(SaveHandsTest, NewHandAsksForANameAndStoresNameColonCells) {
    frmSaveHands form(dialogs);
    EXPECT_FALSE(form.isVisible());
    dialogs.answers.push_back("pair");
    form.NewHand(kPairCells);

    ASSERT_EQ(dialogs.inputs.size(), 1u);
    EXPECT_EQ(dialogs.inputs[0].prompt, "Enter an appropriate Handname");
    EXPECT_EQ(dialogs.inputs[0].title, "Save Hand");
    EXPECT_EQ(dialogs.inputs[0].defaultAnswer, kPairCells);
    EXPECT_TRUE(dialogs.messages.empty());
    EXPECT_EQ(StoredHands(), QStringList{"pair:AS,AH,,,,,"});
    EXPECT_EQ(Shown(form), StoredHands());
}

TEST_F(SaveHandsTest, NamesAreStoredAndShownAsTyped) {
    const QString names[] = {"", "a:b,c", "  spaced  ", "@x=1;\"y\"", "10:30, river"};
    frmSaveHands form(dialogs);
    QStringList expected;
    for (const QString& name : names) {
        dialogs.answers.push_back(name);
        form.NewHand(",,,,KD,,");
        expected << name + ":,,,,KD,,";
    }
    EXPECT_EQ(StoredHands(), expected);
    // A fresh form reads the same back from the store.
    frmSaveHands reopened(dialogs);
    EXPECT_EQ(Shown(reopened), expected);
}

TEST_F(SaveHandsTest, ACancelledNameStillStoresTheHand) {
    frmSaveHands form(dialogs);
    dialogs.answers.push_back(std::nullopt);
    form.NewHand(kPairCells);
    EXPECT_EQ(StoredHands(), QStringList{":" + kPairCells});
}

TEST_F(SaveHandsTest, TheEleventhHandIsRefusedAfterTheQuestion) {
    frmSaveHands form(dialogs);
    SaveTen(form, dialogs);
    const QStringList ten = StoredHands();
    ASSERT_EQ(ten, Named({1, 2, 3, 4, 5, 6, 7, 8, 9, 10}));

    dialogs.answers.push_back("h11");
    form.NewHand(kPairCells);

    EXPECT_EQ(dialogs.inputs.size(), 11u) << "the name is asked before the limit is tested";
    ASSERT_EQ(dialogs.messages.size(), 1u);
    EXPECT_EQ(dialogs.messages[0].text,
              "You have exceeded the limit, Please remove one Item and try again");
    EXPECT_EQ(dialogs.messages[0].icon, MessageIcon::Information);
    EXPECT_EQ(StoredHands(), ten);
    EXPECT_FALSE(testing::RawContains("HAND11"));
    EXPECT_EQ(Shown(form), ten);
}

TEST_F(SaveHandsTest, RemovingClosesUpAndANewHandGoesLast) {
    frmSaveHands form(dialogs);
    SaveTen(form, dialogs);

    form.lstSave()->setCurrentRow(2);
    form.Command1()->click();
    EXPECT_EQ(StoredHands(), Named({1, 2, 4, 5, 6, 7, 8, 9, 10}));
    EXPECT_FALSE(testing::RawContains("HAND10")) << "the store keeps no hole and no tail";

    dialogs.answers.push_back("h11");
    form.NewHand(kPairCells);
    EXPECT_TRUE(dialogs.messages.empty());
    EXPECT_EQ(StoredHands(), Named({1, 2, 4, 5, 6, 7, 8, 9, 10, 11}));
    EXPECT_EQ(Shown(form), StoredHands());
}

TEST_F(SaveHandsTest, StoringClosesUpGapsLeftInTheStore) {
    PutSavedHand("b:AS,,,,,,", 2);
    PutSavedHand("e:KS,,,,,,", 5);
    PutSavedHand("j:QS,,,,,,", 10);
    frmSaveHands form(dialogs);
    const QStringList loaded{"b:AS,,,,,,", "e:KS,,,,,,", "j:QS,,,,,,"};
    EXPECT_EQ(Shown(form), loaded);

    form.DeleteAllHands();
    EXPECT_TRUE(StoredHands().isEmpty());
    form.StoreHands();
    for (int place = 1; place <= 3; ++place) {
        EXPECT_EQ(GetSavedHand(static_cast<uint8_t>(place)), loaded[place - 1]);
    }
    EXPECT_FALSE(testing::RawContains("HAND5"));
    EXPECT_FALSE(testing::RawContains("HAND10"));
}

}  // namespace
}  // namespace felthawk
