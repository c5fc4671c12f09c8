#include "tests/settings/test_support.h"

#include <gtest/gtest.h>
#include <QApplication>
#include <QSettings>
#include <QTemporaryDir>

namespace felthawk::testing {

namespace {

// The group every key of the program lives in.
struct RawStore {
    RawStore() { settings.beginGroup(QStringLiteral("SETTINGS")); }
    QSettings settings{QStringLiteral("FELTHAWK"), QStringLiteral("FELTHAWK")};
};

}  // namespace

void EnsureApplication() {
    static int argc = 1;
    static char name[] = "settings_tests";
    static char* argv[] = {name, nullptr};
    static QApplication* app = nullptr;
    static QTemporaryDir* folder = nullptr;
    if (app != nullptr) return;
    folder = new QTemporaryDir();
    ASSERT_TRUE(folder->isValid());
    // Before any store is opened, so that no test touches the user's own.
    for (QSettings::Scope scope : {QSettings::UserScope, QSettings::SystemScope}) {
        QSettings::setPath(QSettings::NativeFormat, scope, folder->path());
        QSettings::setPath(QSettings::IniFormat, scope, folder->path());
    }
    app = new QApplication(argc, argv);
}

QVariant RawValue(const QString& key) {
    return RawStore().settings.value(key);
}

void PutRawValue(const QString& key, const QVariant& value) {
    RawStore().settings.setValue(key, value);
}

bool RawContains(const QString& key) {
    return RawStore().settings.contains(key);
}

void ClearStore() {
    QSettings store(QStringLiteral("FELTHAWK"), QStringLiteral("FELTHAWK"));
    store.clear();
}

QString FakeDialogs::InputBox(QWidget*, const QString& prompt, const QString& title,
                              const QString& defaultAnswer, bool* accepted) {
    inputs.push_back({prompt, title, defaultAnswer});
    std::optional<QString> answer;
    if (!answers.empty()) {
        answer = answers.front();
        answers.pop_front();
    }
    if (accepted != nullptr) *accepted = answer.has_value();
    return answer.value_or(QString());
}

void FakeDialogs::MessageBox(QWidget*, const QString& text, const QString& title,
                             MessageIcon icon) {
    messages.push_back({text, title, icon});
}

bool FakeDialogs::AskYesNo(QWidget*, const QString&, const QString&) {
    ADD_FAILURE() << "no question is asked here";
    return false;
}

}  // namespace felthawk::testing
