// frmSendEmailtoFriend: the form behind "Send to a Friend". The user gives
// a name and an address, the friend's address, and sends an invitation that
// is ready to go and free to edit. clsSendMail does the sending while the
// form shows how it goes; Cancel stops it.
#pragma once

#include <QDialog>
#include <QString>

#include "mail/send_mail.h"

class QLabel;
class QLineEdit;
class QPlainTextEdit;
class QPushButton;

namespace felthawk {

class IDialogs;

// The invitation the form starts with, signed with `yourName` if any.
QString InvitationText(const QString& yourName);

class frmSendEmailtoFriend : public QDialog {
    Q_OBJECT
  public:
    frmSendEmailtoFriend(IDialogs& dialogs, const SendMailSettings& settings,
                         QWidget* parent = nullptr);

    static const QString kTitle;  // "Send to a Friend"

  public slots:
    // Esc and Cancel: stop a message under way, otherwise close.
    void reject() override;

  protected:
    void closeEvent(QCloseEvent* event) override;

  private:
    void OnSend();
    void OnFinished(const SendResult& result);
    bool CheckAddressField(QLineEdit* field, const QString& missing, const QString& whose);
    void SetWorking(bool working);
    void Warn(const QString& text);

    IDialogs& dialogs_;
    clsSendMail mail_;
    QLineEdit* txtYourName;
    QLineEdit* txtYourEmail;
    QLineEdit* txtFriendEmail;
    QLineEdit* txtSubject;
    QPlainTextEdit* txtMessage;
    QLabel* lblStatus;
    QPushButton* cmdSend;
    QPushButton* cmdCancel;
};

}  // namespace felthawk
