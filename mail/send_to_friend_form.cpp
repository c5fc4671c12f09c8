#include "mail/send_to_friend_form.h"

#include <QCloseEvent>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QVBoxLayout>

#include "mail/mail_address.h"
#include "settings/dialogs.h"

namespace felthawk {
namespace {

constexpr char kWebSite[] = FELTHAWK_MAIL_WEB_SITE;
constexpr char kDefaultSubject[] = "An invitation to Felthawk";
// Long enough for any subject a person writes, short enough for a header.
constexpr int kMaxSubjectLength = 200;

template <typename Widget>
Widget* Named(Widget* widget, const char* name) {
    widget->setObjectName(QString::fromLatin1(name));
    return widget;
}

}  // namespace

const QString frmSendEmailtoFriend::kTitle = QStringLiteral("Send to a Friend");

QString InvitationText(const QString& yourName) {
    const QString name = yourName.simplified();
    return QStringLiteral(
               "Hi,\n\n"
               "I have been playing Texas Hold'em with Felthawk, a free assistant that shows "
               "at every stage of a hand the chances of each hand class, the strength of your "
               "cards and a suggestion for your next move. Have a look: %1\n\n"
               "See you at the tables%2\n")
        .arg(QString::fromLatin1(kWebSite), name.isEmpty() ? QStringLiteral("!") : ",\n" + name);
}

frmSendEmailtoFriend::frmSendEmailtoFriend(IDialogs& dialogs, const SendMailSettings& settings,
                                           QWidget* parent)
    : QDialog(parent),
      dialogs_(dialogs),
      mail_(settings),
      txtYourName(Named(new QLineEdit, "txtYourName")),
      txtYourEmail(Named(new QLineEdit, "txtYourEmail")),
      txtFriendEmail(Named(new QLineEdit, "txtFriendEmail")),
      txtSubject(Named(new QLineEdit(QString::fromLatin1(kDefaultSubject)), "txtSubject")),
      txtMessage(Named(new QPlainTextEdit(InvitationText({})), "txtMessage")),
      lblStatus(Named(new QLabel, "lblStatus")),
      cmdSend(Named(new QPushButton(QStringLiteral("&Send")), "cmdSend")),
      cmdCancel(Named(new QPushButton(QStringLiteral("&Cancel")), "cmdCancel")) {
    setObjectName(QStringLiteral("frmSendEmailtoFriend"));
    setWindowTitle(kTitle);
    setModal(true);
    txtSubject->setMaxLength(kMaxSubjectLength);
    txtYourEmail->setPlaceholderText(QStringLiteral("you@example.com"));
    txtFriendEmail->setPlaceholderText(QStringLiteral("friend@example.com"));
    lblStatus->setWordWrap(true);
    // The status quotes the mail server, whose words are never markup.
    lblStatus->setTextFormat(Qt::PlainText);
    lblStatus->setTextInteractionFlags(Qt::TextSelectableByMouse);

    auto* fields = new QFormLayout;
    fields->addRow(QStringLiteral("Your &name:"), txtYourName);
    fields->addRow(QStringLiteral("Your &e-mail:"), txtYourEmail);
    fields->addRow(QStringLiteral("&Friend's e-mail:"), txtFriendEmail);
    fields->addRow(QStringLiteral("S&ubject:"), txtSubject);
    fields->addRow(QStringLiteral("&Message:"), txtMessage);
    auto* buttons = new QDialogButtonBox;
    buttons->addButton(cmdSend, QDialogButtonBox::AcceptRole);
    buttons->addButton(cmdCancel, QDialogButtonBox::RejectRole);
    cmdSend->setDefault(true);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(fields);
    layout->addWidget(lblStatus);
    layout->addWidget(buttons);
    resize(480, 420);

    // The invitation signs itself with the user's name until the user
    // writes a text of their own.
    connect(txtYourName, &QLineEdit::textChanged, this, [this](const QString& name) {
        if (txtMessage->document()->isModified()) return;
        txtMessage->setPlainText(InvitationText(name));
        txtMessage->document()->setModified(false);
    });
    connect(cmdSend, &QPushButton::clicked, this, &frmSendEmailtoFriend::OnSend);
    connect(cmdCancel, &QPushButton::clicked, this, &frmSendEmailtoFriend::reject);
    connect(&mail_, &clsSendMail::progress, lblStatus, &QLabel::setText);
    connect(&mail_, &clsSendMail::finished, this, &frmSendEmailtoFriend::OnFinished);
}

void frmSendEmailtoFriend::reject() {
    if (mail_.IsBusy())
        mail_.Cancel();
    else
        QDialog::reject();
}

void frmSendEmailtoFriend::closeEvent(QCloseEvent* event) {
    // Closing the window while a message goes out stops it and closes.
    mail_.Cancel();
    QDialog::closeEvent(event);
}

void frmSendEmailtoFriend::OnSend() {
    if (!CheckAddressField(txtYourEmail,
                           QStringLiteral("Please enter your e-mail address, so that your "
                                          "friend can answer you."),
                           QStringLiteral("your")) ||
        !CheckAddressField(txtFriendEmail,
                           QStringLiteral("Please enter your friend's e-mail address."),
                           QStringLiteral("your friend's")))
        return;
    if (txtMessage->toPlainText().trimmed().isEmpty()) {
        Warn(QStringLiteral("Please write a message to your friend."));
        txtMessage->setFocus();
        return;
    }
    SetWorking(true);
    lblStatus->clear();
    mail_.Send(MailMessage{txtYourName->text(), txtYourEmail->text(), txtFriendEmail->text(),
                           txtSubject->text(), txtMessage->toPlainText()});
}

bool frmSendEmailtoFriend::CheckAddressField(QLineEdit* field, const QString& missing,
                                             const QString& whose) {
    if (field->text().trimmed().isEmpty()) {
        Warn(missing);
    } else {
        const AddressCheck check = CheckAddress(field->text());
        if (check.ok) return true;
        Warn(QStringLiteral("Please check %1 e-mail address. %2").arg(whose, check.problem));
    }
    field->setFocus();
    field->selectAll();
    return false;
}

void frmSendEmailtoFriend::OnFinished(const SendResult& result) {
    SetWorking(false);
    lblStatus->setText(result.message);
    switch (result.status) {
        case SendResult::Status::Sent:
            dialogs_.MessageBox(this, result.message, kTitle, MessageIcon::Information);
            accept();
            return;
        case SendResult::Status::Cancelled:
            return;
        default:
            Warn(result.message);
            return;
    }
}

void frmSendEmailtoFriend::SetWorking(bool working) {
    for (QWidget* field : std::initializer_list<QWidget*>{txtYourName, txtYourEmail, txtFriendEmail,
                                                          txtSubject, txtMessage})
        field->setEnabled(!working);
    cmdSend->setEnabled(!working);
}

void frmSendEmailtoFriend::Warn(const QString& text) {
    dialogs_.MessageBox(this, text, kTitle, MessageIcon::Warning);
}

}  // namespace felthawk
