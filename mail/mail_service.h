// The mail service the main window calls for "Send to a Friend".
#pragma once

#include "board/services.h"
#include "mail/send_mail.h"

namespace felthawk {

class IDialogs;

class MailService : public IMailService {
  public:
    explicit MailService(IDialogs& dialogs,
                         SendMailSettings settings = SendMailSettingsFromEnvironment());
    void ShowSendToFriend(QWidget* parent) override;

  private:
    IDialogs& dialogs_;
    SendMailSettings settings_;
};

}  // namespace felthawk
