// The board under test: a real main window on the offscreen platform, with
// dialogs answered from a script and the settings in a temporary folder.
#pragma once

#include <deque>
#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <QAction>
#include <QLabel>
#include <QSettings>
#include <QString>

#include "board/frm_felthawk.h"
#include "settings/dialogs.h"

namespace felthawk::testing {

class ScriptedDialogs : public IDialogs {
  public:
    std::deque<QString> answers;  // input box answers; empty: cancelled
    std::vector<QString> prompts;
    std::vector<QString> messages;

    QString InputBox(QWidget*, const QString& prompt, const QString&, const QString&,
                     bool* accepted) override {
        prompts.push_back(prompt);
        if (accepted != nullptr) *accepted = !answers.empty();
        if (answers.empty()) return QString();
        const QString answer = answers.front();
        answers.pop_front();
        return answer;
    }
    void MessageBox(QWidget*, const QString& text, const QString&, MessageIcon) override {
        messages.push_back(text);
    }
    bool AskYesNo(QWidget*, const QString& text, const QString&) override {
        messages.push_back(text);
        return false;
    }
};

inline void StoreSettings(const QString& transparency, const QString& mouse) {
    QSettings store(QStringLiteral("FELTHAWK"), QStringLiteral("FELTHAWK"));
    store.beginGroup(QStringLiteral("SETTINGS"));
    store.setValue(QStringLiteral("MTRANS"), transparency);
    store.setValue(QStringLiteral("MOUSE"), mouse);
}

inline QAction* Action(const frmFelthawk& form, const char* name) {
    QAction* action = form.findChild<QAction*>(QString::fromLatin1(name));
    EXPECT_NE(action, nullptr) << name;
    return action;
}

class BoardTest : public ::testing::Test {
  protected:
    void SetUp() override {
        QSettings(QStringLiteral("FELTHAWK"), QStringLiteral("FELTHAWK")).clear();
    }

    frmFelthawk& Start() {
        form = std::make_unique<frmFelthawk>(services, dialogs);
        form->FormLoad(false);
        return *form;
    }

    void Click(int row, int rank, int button) {
        form->DeckMouseDown(row, rank, button, 30, 45);
        form->DeckMouseUp(row, rank, button, 30, 45);
    }
    void Type(const std::string& keys) {
        for (char key : keys) form->KeyDown(key);
    }

    QString Text(const char* name, int index = -1) const {
        for (QLabel* label : form->findChildren<QLabel*>(QString::fromLatin1(name))) {
            if (index < 0 || label->property("index").toInt() == index) return label->text();
        }
        ADD_FAILURE() << "no label " << name << "(" << index << ")";
        return QString();
    }
    std::vector<std::string> Cells() const {
        return std::vector<std::string>(form->mCards.begin(), form->mCards.end());
    }

    ScriptedDialogs dialogs;
    BoardServices services;
    std::unique_ptr<frmFelthawk> form;
};

}  // namespace felthawk::testing
