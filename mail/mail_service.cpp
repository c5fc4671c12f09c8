#include "mail/mail_service.h"

#include <utility>

#include "mail/send_to_friend_form.h"

namespace felthawk {

MailService::MailService(IDialogs& dialogs, SendMailSettings settings)
    : dialogs_(dialogs), settings_(std::move(settings)) {}

void MailService::ShowSendToFriend(QWidget* parent) {
    frmSendEmailtoFriend form(dialogs_, settings_, parent);
    form.exec();
}

}  // namespace felthawk
