// Shared pieces of the settings tests: the raw store, dialogs answered from a
// script, and a fixture with an application and an empty store.
#pragma once

#include <deque>
#include <optional>
#include <vector>

#include <gtest/gtest.h>
#include <QApplication>
#include <QSettings>
#include <QTemporaryDir>

#include "settings/dialogs.h"
#include "settings/store_file.h"

namespace felthawk::testing {

// The raw store as another program sees it: "SETTINGS/<key>", for setting
// up what a test starts from.
struct Raw : QSettings {
    Raw() : QSettings(QStringLiteral("FELTHAWK"), QStringLiteral("FELTHAWK")) {
        beginGroup(QStringLiteral("SETTINGS"));
    }
};

// The text of a key as the file on disk holds it now; nothing when absent.
// (A QSettings object may answer from what it read earlier.)
inline std::optional<QString> Disk(const QString& key) {
    return ReadStoreText(Raw().fileName(), QStringLiteral("SETTINGS"), key);
}

// Answers input boxes from a queue (an empty optional is a cancel) and
// questions from another (nothing queued: No).
class FakeDialogs : public IDialogs {
  public:
    std::deque<std::optional<QString>> answers;
    std::vector<QString> defaults;  // the default answer each box offered
    int messages = 0;
    QString lastMessage;
    std::deque<bool> yes;
    std::vector<QString> questions;

    QString InputBox(QWidget*, const QString&, const QString&, const QString& defaultAnswer,
                     bool* accepted) override {
        defaults.push_back(defaultAnswer);
        std::optional<QString> answer;
        if (!answers.empty()) answer = answers.front(), answers.pop_front();
        if (accepted != nullptr) *accepted = answer.has_value();
        return answer.value_or(QString());
    }
    void MessageBox(QWidget*, const QString& text, const QString&, MessageIcon) override {
        ++messages;
        lastMessage = text;
    }
    bool AskYesNo(QWidget*, const QString& text, const QString&) override {
        questions.push_back(text);
        if (yes.empty()) return false;
        const bool answer = yes.front();
        yes.pop_front();
        return answer;
    }
};

// An application object (offscreen) whose store lives in a temporary folder,
// made once per process before any store is opened, so that no test touches
// the user's own; and a fresh, empty store for every test.
class StoreTest : public ::testing::Test {
  protected:
    StoreTest() {
        static int argc = 1;
        static char name[] = "settings_tests";
        static char* argv[] = {name, nullptr};
        static QTemporaryDir* folder = nullptr;
        if (folder == nullptr) {
            folder = new QTemporaryDir();
            EXPECT_TRUE(folder->isValid());
            for (QSettings::Scope scope : {QSettings::UserScope, QSettings::SystemScope}) {
                QSettings::setPath(QSettings::NativeFormat, scope, folder->path());
                QSettings::setPath(QSettings::IniFormat, scope, folder->path());
            }
            new QApplication(argc, argv);
        }
        Raw().clear();
    }
    FakeDialogs dialogs;
};

}  // namespace felthawk::testing
