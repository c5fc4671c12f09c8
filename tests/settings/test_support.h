// Shared pieces of the settings tests: an application object, a settings
// store in a temporary folder, and dialogs answered from a script.
#pragma once

#include <deque>
#include <optional>
#include <vector>

#include <QString>
#include <QVariant>

#include "settings/dialogs.h"

namespace felthawk::testing {

// Makes the application object (offscreen) and points the settings store at
// a temporary folder, once per process.
void EnsureApplication();

// The raw store, as another program would see it: "SETTINGS/<key>".
QVariant RawValue(const QString& key);
void PutRawValue(const QString& key, const QVariant& value);
bool RawContains(const QString& key);
void ClearStore();

struct InputCall {
    QString prompt;
    QString title;
    QString defaultAnswer;
};

struct MessageCall {
    QString text;
    QString title;
    MessageIcon icon;
};

// Answers input boxes from a queue; an empty optional is a cancel.
class FakeDialogs : public IDialogs {
  public:
    std::deque<std::optional<QString>> answers;
    std::vector<InputCall> inputs;
    std::vector<MessageCall> messages;

    QString InputBox(QWidget* parent, const QString& prompt, const QString& title,
                     const QString& defaultAnswer, bool* accepted) override;
    void MessageBox(QWidget* parent, const QString& text, const QString& title,
                    MessageIcon icon) override;
    bool AskYesNo(QWidget* parent, const QString& text, const QString& title) override;
};

}  // namespace felthawk::testing
