#include "settings/settings_store.h"

#include <signal.h>
#include <sys/resource.h>

#include <csignal>
#include <random>
#include <tuple>

#include <gtest/gtest.h>
#include <QFile>
#include <QListWidget>
#include <QProcess>
#include <QPushButton>
#include <QStringList>
#include <QTemporaryDir>
#include <QTest>

#include "settings/frm_save_hands.h"
#include "settings/store_file.h"

#include "tests/settings/save_loop.h"
#include "tests/settings/test_support.h"

namespace felthawk {
namespace {

using testing::Disk;
using testing::Raw;
using SettingsStoreTest = testing::StoreTest;

TEST_F(SettingsStoreTest, RoundTripWritesDigitsAndMouseWords) {
    const FelthawkSettings cases[] = {
        {80, true, true}, {1, false, false}, {100, true, false}, {150, false, true}};
    for (const FelthawkSettings& c : cases) {
        SCOPED_TRACE(c.transparency);
        EXPECT_EQ(SetFelthawksettings(c), "");
        EXPECT_EQ(Disk("MTRANS"), QString::number(c.transparency));
        EXPECT_EQ(Disk("MOUSE"), c.leftMouse ? "LEFT" : "RIGHT");
        EXPECT_EQ(Disk("SWITCHMODE"), c.switchDisplayMode ? "1" : "0");
        const FelthawkSettings back = GetFelthawkSettings();
        EXPECT_EQ(back.transparency, c.transparency);
        EXPECT_EQ(back.leftMouse, c.leftMouse);
        EXPECT_EQ(back.switchDisplayMode, c.switchDisplayMode);
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
        EXPECT_TRUE(settings.switchDisplayMode) << "the screen is switched unless told not to";
        EXPECT_EQ(Disk("MTRANS").has_value(), mtrans != nullptr) << "reading writes nothing";
    }
}

TEST_F(SettingsStoreTest, SavedHandsLiveUnderHand1ToHand10) {
    const QString hand = "a:b,c:KD,KC,2S,3S,4S,,";
    {
        StoreWrite write;
        PutSavedHand(write, hand, 10);
        EXPECT_EQ(write.Commit(), "");
    }
    EXPECT_EQ(Disk("HAND10"), hand);
    EXPECT_EQ(GetSavedHand(10), hand);
    {
        StoreWrite write;
        DeleteSavedHand(write, 10);
        DeleteSavedHand(write, 10);  // a key that is not there is no fault
        EXPECT_EQ(write.Commit(), "");
    }
    EXPECT_FALSE(Disk("HAND10").has_value());
    EXPECT_EQ(GetSavedHand(10), "");
    // What a hand-edited file with unquoted commas reads back as.
    Raw().setValue("HAND2", QStringList{"pair:AS", "AH", "", "", "", "", ""});
    EXPECT_EQ(GetSavedHand(2), "pair:AS,AH,,,,,");
}

// The file is the platform's store: what we write QSettings reads as the
// same text, and what QSettings writes we read as it meant it.
TEST_F(SettingsStoreTest, TheFileSpeaksTheFormatOfQSettings) {
    const QString texts[] = {"pair:AS,AH,,,,,",
                             "  spaced  ",
                             "@x=1;\"y\"",
                             "back\\slash",
                             "line\nbreak\ttab",
                             "caf\u00e9 \u2660",
                             "",
                             "@@at",
                             "semi;colon",
                             "hash#",
                             "ctl\x01"
                             "9"};
    QTemporaryDir folder;
    int n = 0;
    for (const QString& text : texts) {
        SCOPED_TRACE(text.toStdString());
        // Fresh file names: QSettings keeps what it read of a file.
        const QString ours = folder.filePath(QString("ours%1.conf").arg(n));
        const QString theirs = folder.filePath(QString("theirs%1.conf").arg(n++));
        ASSERT_EQ(WriteStoreFile(ours, "SETTINGS", {{"KEY", text}, {"OTHER", "x"}}), "");
        EXPECT_EQ(QSettings(ours, QSettings::IniFormat).value("SETTINGS/KEY").toString(), text);
        {
            QSettings qt(theirs, QSettings::IniFormat);
            qt.setValue("General", 1);
            qt.setValue("SETTINGS/KEY", text);
            qt.setValue("OTHERS/KEY", "not ours");
        }
        EXPECT_EQ(ReadStoreText(theirs, "SETTINGS", "KEY"), text);
        // A write of ours keeps every line that is not its own.
        ASSERT_EQ(WriteStoreFile(theirs, "SETTINGS", {{"NEW", text}}), "");
        QSettings back(theirs, QSettings::IniFormat);
        EXPECT_EQ(back.value("SETTINGS/KEY").toString(), text);
        EXPECT_EQ(back.value("SETTINGS/NEW").toString(), text);
        EXPECT_EQ(back.value("OTHERS/KEY").toString(), "not ours");
        EXPECT_EQ(back.value("General").toInt(), 1);
    }
}

const QString kCells = "AS,AH,,,,,";

class SaveHandsTest : public testing::StoreTest {
  protected:
    // HAND1..HAND10 as they stand, absent keys left out.
    static QStringList Stored() {
        QStringList hands;
        for (int place = 1; place <= kMaxSavedHands; ++place) {
            if (Disk("HAND" + QString::number(place)).has_value()) hands << GetSavedHand(place);
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
    EXPECT_FALSE(Disk("HAND11").has_value());
    EXPECT_EQ(Shown(form), ten);

    form.lstSave()->setCurrentRow(2);
    dialogs.yes.push_back(true);
    form.Command1()->click();
    EXPECT_EQ(Stored(), Named({1, 2, 4, 5, 6, 7, 8, 9, 10}));
    EXPECT_FALSE(Disk("HAND10").has_value()) << "the store keeps no hole and no tail";

    Save(form, 12);
    EXPECT_EQ(dialogs.messages, 1);
    EXPECT_EQ(Stored(), Named({1, 2, 4, 5, 6, 7, 8, 9, 10, 12}));
    EXPECT_EQ(Shown(form), Stored());
}

TEST_F(SaveHandsTest, HolesInTheStoreAreSkippedAndClosedUp) {
    Raw().setValue("HAND2", "b:AS,,,,,,");
    Raw().setValue("HAND10", "j:QS,,,,,,");
    frmSaveHands form(dialogs);
    EXPECT_EQ(Shown(form), (QStringList{"b:AS,,,,,,", "j:QS,,,,,,"}));
    form.lstSave()->setCurrentRow(0);
    dialogs.yes.push_back(true);
    form.Command1()->click();
    EXPECT_EQ(GetSavedHand(1), "j:QS,,,,,,");
    EXPECT_EQ(Stored().size(), 1);
}

TEST_F(SaveHandsTest, EnterNeverRemovesAndRemoveAsksOnceByName) {
    frmSaveHands form(dialogs);
    for (int n = 1; n <= 3; ++n) Save(form, n);
    form.show();
    form.lstSave()->setCurrentRow(1);
    // Enter on the list, and on "&Remove" itself when it has the focus.
    for (QWidget* focus : std::initializer_list<QWidget*>{form.lstSave(), form.Command1()}) {
        form.show();
        focus->setFocus();
        QTest::keyClick(focus, Qt::Key_Return);
        EXPECT_FALSE(form.isVisible()) << "Enter closes the form";
    }
    EXPECT_TRUE(dialogs.questions.empty());
    EXPECT_EQ(Stored(), Named({1, 2, 3}));

    dialogs.yes = {false, true};
    form.Command1()->click();
    EXPECT_EQ(Stored(), Named({1, 2, 3})) << "No keeps the hand";
    form.Command1()->click();
    EXPECT_EQ(Stored(), Named({1, 3}));
    EXPECT_EQ(dialogs.questions, (std::vector<QString>{"Remove h2?", "Remove h2?"}));
}

// A write that cannot be completed (here the file size limit of a full disk)
// leaves the store as it was, says so once, and the list shows the store.
TEST_F(SaveHandsTest, AFailedWriteIsReportedOnceAndLosesNothing) {
    frmSaveHands form(dialogs);
    for (int n = 1; n <= kMaxSavedHands; ++n) Save(form, n);
    const FelthawkSettings before{45, false, true};
    ASSERT_EQ(SetFelthawksettings(before), "");
    // Enough text that the new file is larger than the limit below.
    Raw().setValue("FILLER", QString(8192, QLatin1Char('x')));
    const QStringList ten = Stored();

    rlimit saved{};
    ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &saved), 0);
    rlimit small = saved;
    small.rlim_cur = 4096;
    const auto oldHandler = std::signal(SIGXFSZ, SIG_IGN);
    ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &small), 0);

    form.lstSave()->setCurrentRow(0);
    dialogs.yes.push_back(true);
    form.Command1()->click();
    EXPECT_EQ(dialogs.messages, 1);
    EXPECT_TRUE(dialogs.lastMessage.contains("could not save"))
        << dialogs.lastMessage.toStdString();
    const QString settingsFailure = SetFelthawksettings({80, true, false});

    setrlimit(RLIMIT_FSIZE, &saved);
    std::signal(SIGXFSZ, oldHandler);

    EXPECT_FALSE(settingsFailure.isEmpty());
    EXPECT_EQ(Stored(), ten);
    QFile file(Raw().fileName());
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const QByteArray disk = file.readAll();
    for (const QString& hand : ten) EXPECT_TRUE(disk.contains(hand.toUtf8())) << hand.toStdString();
    EXPECT_TRUE(disk.contains("MTRANS=45"));
    EXPECT_EQ(Shown(form), ten) << "the list shows what the store holds";
    const FelthawkSettings after = GetFelthawkSettings();
    EXPECT_EQ(std::tuple(after.transparency, after.leftMouse, after.switchDisplayMode),
              std::tuple(before.transparency, before.leftMouse, before.switchDisplayMode));
    frmSaveHands reopened(dialogs);
    EXPECT_EQ(Shown(reopened), ten);

    dialogs.yes.push_back(true);
    form.lstSave()->setCurrentRow(0);
    form.Command1()->click();
    EXPECT_EQ(dialogs.messages, 1) << "with room again the same removal goes through";
    EXPECT_EQ(Stored(), Named({2, 3, 4, 5, 6, 7, 8, 9, 10}));
}

// A user's saves, each killed with SIGKILL at a random moment: the store that
// survives holds the list before the save in flight or the list after it,
// never less.
TEST_F(SaveHandsTest, AKillDuringSavesLeavesTheOldOrTheNewList) {
    constexpr int kSaves = 200;
    constexpr int kKills = 8;
    // states[k] is the list once k saves are done.
    std::vector<QStringList> states{QStringList{}};
    for (int i = 0; i < kSaves; ++i) states.push_back(testing::LoopStep(states.back(), i));

    const unsigned seed = std::random_device{}();
    SCOPED_TRACE(::testing::Message() << "seed " << seed);
    std::mt19937 random(seed);
    for (int kill = 0; kill < kKills; ++kill) {
        QTemporaryDir config;
        QProcess loop;
        QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
        env.insert("XDG_CONFIG_HOME", config.path());
        loop.setProcessEnvironment(env);
        loop.start(FELTHAWK_SAVE_LOOP, {QString::number(kSaves)});
        ASSERT_TRUE(loop.waitForStarted(30000));

        // Kill after a random number of saves, a random fraction of a save
        // later.
        const int target = std::uniform_int_distribution<int>(0, kSaves - 1)(random);
        int done = 0;  // saves reported complete
        auto readReports = [&] {
            while (loop.canReadLine()) {
                const QByteArray line = loop.readLine().trimmed();
                if (line.startsWith("saved ")) done = line.mid(6).toInt() + 1;
            }
        };
        while (done <= target && loop.state() == QProcess::Running) {
            loop.waitForReadyRead(100);
            readReports();
        }
        QTest::qSleep(std::uniform_int_distribution<int>(0, 4)(random));
        ::kill(static_cast<pid_t>(loop.processId()), SIGKILL);
        loop.waitForFinished(30000);
        readReports();

        QSettings store(config.filePath("FELTHAWK/FELTHAWK.conf"), QSettings::IniFormat);
        store.beginGroup("SETTINGS");
        EXPECT_EQ(store.status(), QSettings::NoError);
        QStringList stored;
        for (int place = 1; place <= kMaxSavedHands; ++place) {
            const QVariant value = store.value("HAND" + QString::number(place));
            if (value.isValid()) stored << value.toStringList().join(',');
        }
        SCOPED_TRACE(::testing::Message() << "killed after " << done << " saves");
        const bool old = stored == states[done];
        const bool next = done < kSaves && stored == states[done + 1];
        EXPECT_TRUE(old || next) << stored.join(" ").toStdString();
    }
}

}  // namespace
}  // namespace felthawk
