// Input boxes and message boxes behind one small interface, so that the
// logic that asks the user can be tested without a real dialog. The program
// uses QtDialogs; tests give a fake that answers from a script.
#pragma once

#include <QString>

class QWidget;

namespace felthawk {

enum class MessageIcon { None, Information, Question, Warning, Critical };

class IDialogs {
public:
    virtual ~IDialogs() = default;
    // An input box. `accepted` is false when the user cancelled; the answer
    // is then "".
    virtual QString InputBox(QWidget* parent, const QString& prompt, const QString& title,
                             const QString& defaultAnswer, bool* accepted) = 0;
    // A modal message box with an OK button.
    virtual void MessageBox(QWidget* parent, const QString& text, const QString& title,
                            MessageIcon icon) = 0;
    // A modal Yes/No question; true for Yes.
    virtual bool AskYesNo(QWidget* parent, const QString& text, const QString& title) = 0;
};

// The real dialogs: QInputDialog and QMessageBox, modal.
class QtDialogs : public IDialogs {
public:
    QString InputBox(QWidget* parent, const QString& prompt, const QString& title,
                     const QString& defaultAnswer, bool* accepted) override;
    void MessageBox(QWidget* parent, const QString& text, const QString& title,
                    MessageIcon icon) override;
    bool AskYesNo(QWidget* parent, const QString& text, const QString& title) override;
};

}  // namespace felthawk
