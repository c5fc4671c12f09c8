// clsSendMail against real servers on loopback: dnsmasq answers the MX
// queries, an aiosmtpd server takes (or refuses) the mail.
#include "mail/send_mail.h"

#include <QJsonArray>
#include <QSet>

#include <gtest/gtest.h>

#include "tests/mail/loopback_mail.h"

namespace felthawk {
namespace {

using Status = SendResult::Status;

class SendMail : public testing::WithLoopbackMail {};

// Sends one message with clsSendMail, noting the progress texts on the way.
SendResult SendAndWait(const SendMailSettings& settings, const MailMessage& message,
                       QStringList* progress) {
    clsSendMail mail(settings);
    std::optional<SendResult> result;
    QObject::connect(&mail, &clsSendMail::progress,
                     [progress](const QString& text) { *progress << text; });
    QObject::connect(&mail, &clsSendMail::finished,
                     [&result](const SendResult& outcome) { result = outcome; });
    mail.Send(message);
    if (!testing::RunUntil([&result] { return result.has_value(); }))
        return SendResult{SendResult::Status::Cancelled, QStringLiteral("no answer in time"), {}};
    return *result;
}

struct Route {
    const char* to;
    Status status;
    const char* exchanger;  // the server that took or refused it, "" for none
    const char* says;       // part of the message for the user
    bool looksUp;           // "Looking up the mail server…" was shown
    bool sends;             // "Sending…" was shown
};

TEST_F(SendMail, FindsTheExchangerAndEndsWithAClearResult) {
    const Route routes[] = {
        {"bob@friend.test", Status::Sent, "mx.friend.test", "has been sent to bob@friend.test",
         true, true},
        // The lower preference goes first, whatever the order of the records.
        {"bob@order.test", Status::Sent, "mx1.order.test", "has been sent", true, true},
        // The first exchanger does not answer; the second takes it.
        {"bob@backup.test", Status::Sent, "mx.backup.test", "has been sent", true, true},
        // No MX record: the domain is its own exchanger.
        {"bob@plain.test", Status::Sent, "plain.test", "has been sent", true, true},
        {"bob@nosuch.test", Status::NoSuchDomain, "", "There is no domain \"nosuch.test\"", true,
         false},
        {"bob@nomx.test", Status::NoMailServer, "", "\"nomx.test\" has no mail server", true,
         false},
        {"bob@nullmx.test", Status::NoMailServer, "", "\"nullmx.test\" takes no mail", true, false},
        {"bob@dead.test", Status::NoAnswer, "", "No mail server for \"dead.test\" answered", true,
         true},
        {"bob@noaddr.test", Status::NoAnswer, "", "ghost.noaddr.test: no address", true, false},
        {"bob@refuse.test", Status::Refused, "mx.refuse.test",
         "The mail server mx.refuse.test refused the message: 550 5.1.1 No such user here", true,
         true},
        {"bob@later.test", Status::Deferred, "mx.later.test", "451 4.3.2 Try again later", true,
         true},
        {"bob@", Status::BadAddress, "", "nothing after the @", false, false},
    };
    // A sender name and a subject that try to smuggle in a header, a subject
    // that a reader would take for an encoded word, and bare CR line ends.
    const MailMessage message{"Ann \"Ace\" \\ Lee\r\nBcc: x@y.test",
                              "ann@home.test",
                              {},
                              "Poker =?UTF-8?B?SGk=?=\nBcc: x@y.test",
                              "Come\r\nand\rplay."};
    qsizetype delivered = world_->Delivered().size();
    QSet<QString> messageIds;
    for (const Route& route : routes) {
        SCOPED_TRACE(route.to);
        QStringList progress;
        MailMessage to = message;
        to.toAddress = route.to;
        const SendResult result = SendAndWait(world_->Settings(), to, &progress);
        EXPECT_EQ(result.status, route.status) << result.message.toStdString();
        EXPECT_EQ(result.exchanger, QString::fromLatin1(route.exchanger));
        EXPECT_TRUE(result.message.contains(QString::fromUtf8(route.says)))
            << result.message.toStdString();
        EXPECT_EQ(progress.contains(clsSendMail::kLookingUp), route.looksUp);
        EXPECT_EQ(progress.contains(clsSendMail::kSending), route.sends);
        // Exactly the sent messages reach the server, each whole.
        const QList<QJsonObject> now = world_->Delivered();
        ASSERT_EQ(now.size(), delivered + (route.status == Status::Sent ? 1 : 0));
        delivered = now.size();
        if (route.status != Status::Sent) continue;
        const QJsonObject mail = now.back();
        const QJsonObject headers = mail["headers"].toObject();
        EXPECT_EQ(mail["rcpt_tos"].toArray(), QJsonArray{QString::fromLatin1(route.to)});
        EXPECT_EQ(mail["defects"].toArray(), QJsonArray{});
        EXPECT_EQ(mail["from_name"].toString(), "Ann \"Ace\" \\ Lee Bcc: x@y.test");
        EXPECT_EQ(headers["Subject"].toString(), "Poker =?UTF-8?B?SGk=?= Bcc: x@y.test");
        EXPECT_FALSE(headers.contains("Bcc"));
        EXPECT_EQ(mail["text"].toString(), "Come\nand\nplay.\n");
        messageIds << headers["Message-ID"].toString();
    }
    EXPECT_EQ(messageIds.size(), 4);  // one of its own for each message sent
}

TEST_F(SendMail, ANameServerThatDoesNotAnswer) {
    SendMailSettings settings = world_->Settings();
    // A loopback address where no name server listens.
    settings.nameServer = QHostAddress("127.0.0.2");
    QStringList progress;
    const SendResult result = SendAndWait(
        settings, MailMessage{"Ann", "ann@home.test", "bob@friend.test", "Poker?", "Come."},
        &progress);
    EXPECT_EQ(result.status, Status::LookupFailed) << result.message.toStdString();
    EXPECT_TRUE(result.message.contains("could not be looked up")) << result.message.toStdString();
}

}  // namespace
}  // namespace felthawk
