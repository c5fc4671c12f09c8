#include "settings/dialogs.h"

#include <QInputDialog>
#include <QLineEdit>
#include <QMessageBox>

namespace felthawk {

namespace {

QMessageBox::Icon ToQtIcon(MessageIcon icon) {
    switch (icon) {
        case MessageIcon::Information:
            return QMessageBox::Information;
        case MessageIcon::Question:
            return QMessageBox::Question;
        case MessageIcon::Warning:
            return QMessageBox::Warning;
        case MessageIcon::Critical:
            return QMessageBox::Critical;
        case MessageIcon::None:
            break;
    }
    return QMessageBox::NoIcon;
}

}  // namespace

QString QtDialogs::InputBox(QWidget* parent, const QString& prompt, const QString& title,
                            const QString& defaultAnswer, bool* accepted) {
    bool ok = false;
    QString answer =
        QInputDialog::getText(parent, title, prompt, QLineEdit::Normal, defaultAnswer, &ok);
    if (accepted) *accepted = ok;
    return ok ? answer : QString();
}

void QtDialogs::MessageBox(QWidget* parent, const QString& text, const QString& title,
                           MessageIcon icon) {
    QMessageBox box(ToQtIcon(icon), title, text, QMessageBox::Ok, parent);
    // Texts may come from a server: they are shown as they are, never as markup.
    box.setTextFormat(Qt::PlainText);
    box.exec();
}

bool QtDialogs::AskYesNo(QWidget* parent, const QString& text, const QString& title) {
    QMessageBox box(QMessageBox::Information, title, text, QMessageBox::Yes | QMessageBox::No,
                    parent);
    box.setDefaultButton(QMessageBox::Yes);
    box.setTextFormat(Qt::PlainText);
    return box.exec() == QMessageBox::Yes;
}

}  // namespace felthawk
