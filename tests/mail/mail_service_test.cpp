#include "mail/mail_service.h"

#include <QApplication>
#include <QTimer>

#include <gtest/gtest.h>

#include "mail/send_to_friend_form.h"
#include "settings/dialogs.h"

namespace felthawk {
namespace {

TEST(SendMailSettingsFromEnvironment, TakesValidValuesAndLeavesOutTheRest) {
    const struct {
        const char* server;
        const char* port;
        std::optional<QHostAddress> nameServer;
        quint16 smtpPort;
    } cases[] = {
        {"", "", std::nullopt, 25},
        {"127.53.0.1", "2525", QHostAddress("127.53.0.1"), 2525},
        {"::1", "65535", QHostAddress("::1"), 65535},
        {"dns.example", "0", std::nullopt, 25},
        {"300.1.1.1", "65536", std::nullopt, 25},
        {"127.0.0.1", "25x", QHostAddress("127.0.0.1"), 25},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(std::string(c.server) + " " + c.port);
        qputenv("FELTHAWK_DNS_SERVER", c.server);
        qputenv("FELTHAWK_SMTP_PORT", c.port);
        const SendMailSettings settings = SendMailSettingsFromEnvironment();
        EXPECT_EQ(settings.nameServer, c.nameServer);
        EXPECT_EQ(settings.smtpPort, c.smtpPort);
    }
    qunsetenv("FELTHAWK_DNS_SERVER");
    qunsetenv("FELTHAWK_SMTP_PORT");
}

class NoDialogs : public IDialogs {
  public:
    QString InputBox(QWidget*, const QString&, const QString&, const QString&,
                     bool* accepted) override {
        *accepted = false;
        return {};
    }
    void MessageBox(QWidget*, const QString&, const QString&, MessageIcon) override {}
    bool AskYesNo(QWidget*, const QString&, const QString&) override { return false; }
};

TEST(MailService, ShowsTheFormModalOverTheBoard) {
    NoDialogs dialogs;
    MailService service(dialogs, SendMailSettings{});
    QWidget board;
    board.show();
    QString shown;
    QWidget* parent = nullptr;
    bool modal = false;
    // Runs inside the form's own event loop, then closes it.
    QTimer::singleShot(0, [&] {
        for (QWidget* form : QApplication::topLevelWidgets()) {
            if (form == &board || !form->isVisible()) continue;
            shown = form->objectName();
            parent = form->parentWidget();
            modal = QApplication::activeModalWidget() == form;
            form->close();
        }
    });
    service.ShowSendToFriend(&board);
    EXPECT_EQ(shown, "frmSendEmailtoFriend");
    EXPECT_EQ(parent, &board);
    EXPECT_TRUE(modal);
}

}  // namespace
}  // namespace felthawk
