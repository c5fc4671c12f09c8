// clsSendMail against real servers on loopback: dnsmasq answers the MX
// queries, an aiosmtpd server takes (or refuses) the mail.
#include "mail/send_mail.h"

#include <QDateTime>
#include <QJsonArray>
#include <QTcpServer>

#include <gtest/gtest.h>

#include "tests/mail/loopback_mail.h"

namespace felthawk {
namespace {

using Status = SendResult::Status;
using testing::SendAndWait;

class SendMail : public testing::WithLoopbackMail {
  protected:
    static MailMessage To(const QString& address) {
        return MailMessage{"Ann", "ann@home.test", address, "Poker?", "Come and play."};
    }
};

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
    qsizetype delivered = world_->Delivered().size();
    for (const Route& route : routes) {
        SCOPED_TRACE(route.to);
        QStringList progress;
        const SendResult result = SendAndWait(world_->Settings(), To(route.to), &progress);
        EXPECT_EQ(result.status, route.status) << result.message.toStdString();
        EXPECT_EQ(result.exchanger, QString::fromLatin1(route.exchanger));
        EXPECT_TRUE(result.message.contains(QString::fromUtf8(route.says)))
            << result.message.toStdString();
        EXPECT_EQ(progress.contains(clsSendMail::kLookingUp), route.looksUp);
        EXPECT_EQ(progress.contains(clsSendMail::kSending), route.sends);
        // Exactly the sent messages reach the server.
        const QList<QJsonObject> now = world_->Delivered();
        ASSERT_EQ(now.size(), delivered + (route.status == Status::Sent ? 1 : 0));
        if (route.status == Status::Sent) {
            EXPECT_EQ(now.back()["rcpt_tos"].toArray(), QJsonArray{QString::fromLatin1(route.to)});
        }
        delivered = now.size();
    }
}

TEST_F(SendMail, TheDeliveredMessageReadsBackWhole) {
    const QString text = QString::fromUtf8(
        "Salut Zoë,\n"
        "\n"
        "Viens jouer : la table est ouverte à 21 h, mise 0,50 € = rien du tout.\n"
        ".\n"
        ". a line that starts with a dot\n"
        "A line long enough to need a soft break, well over seventy-six characters in all, "
        "with ♠♥♦♣ and 🂡 on it.\n"
        "trailing blanks  \n"
        "\ttab first\n"
        "Ann");
    const QString subject = QString::fromUtf8("Partie de poker ♠ ce soir ? Ça te dit, Zoë ?");
    const MailMessage message{QString::fromUtf8("Ann Lée"), "ann@home.test", "Zoe@Friend.Test",
                              subject, text};
    const QDateTime before = QDateTime::currentDateTimeUtc().addSecs(-2);
    const SendResult result = SendAndWait(world_->Settings(), message);
    ASSERT_EQ(result.status, Status::Sent) << result.message.toStdString();

    const QList<QJsonObject> delivered = world_->Delivered();
    ASSERT_FALSE(delivered.isEmpty());
    const QJsonObject mail = delivered.back();
    const QJsonObject headers = mail["headers"].toObject();
    EXPECT_EQ(mail["helo"].toString(), "player.test");
    EXPECT_EQ(mail["mail_from"].toString(), "ann@home.test");
    EXPECT_EQ(mail["rcpt_tos"].toArray(), QJsonArray{"Zoe@friend.test"});
    EXPECT_EQ(mail["defects"].toArray(), QJsonArray{});
    EXPECT_EQ(mail["from_name"].toString(), QString::fromUtf8("Ann Lée"));
    EXPECT_EQ(mail["from_address"].toString(), "ann@home.test");
    EXPECT_EQ(headers["To"].toString(), "Zoe@friend.test");
    EXPECT_EQ(headers["Subject"].toString(), subject);
    EXPECT_EQ(mail["charset"].toString(), "utf-8");
    EXPECT_EQ(mail["text"].toString(), text + "\n");

    const QString id = headers["Message-ID"].toString();
    EXPECT_TRUE(id.startsWith(u'<') && id.endsWith("@home.test>")) << id.toStdString();
    const QDateTime date = QDateTime::fromString(mail["date"].toString(), Qt::ISODate);
    ASSERT_TRUE(date.isValid()) << headers["Date"].toString().toStdString();
    EXPECT_GE(date, before);
    EXPECT_LE(date, QDateTime::currentDateTimeUtc().addSecs(2));

    // What went over the wire is 7-bit, in short lines ended by CRLF.
    const QString raw = mail["raw"].toString();
    EXPECT_EQ(raw.count(u'\n'), raw.count("\r\n"));
    for (const QString& line : raw.split("\r\n")) {
        EXPECT_LE(line.size(), 78) << line.toStdString();
        for (QChar c : line) EXPECT_LT(c.unicode(), 128) << line.toStdString();
    }
}

TEST_F(SendMail, EachMessageHasItsOwnMessageId) {
    ASSERT_EQ(SendAndWait(world_->Settings(), To("bob@friend.test")).status, Status::Sent);
    ASSERT_EQ(SendAndWait(world_->Settings(), To("bob@friend.test")).status, Status::Sent);
    const QList<QJsonObject> delivered = world_->Delivered();
    ASSERT_GE(delivered.size(), 2);
    EXPECT_NE(delivered[delivered.size() - 1]["headers"].toObject()["Message-ID"],
              delivered[delivered.size() - 2]["headers"].toObject()["Message-ID"]);
}

TEST_F(SendMail, CancelStopsTheAttemptAtOnce) {
    clsSendMail mail(world_->Settings());
    QStringList progress;
    QList<SendResult> results;
    QObject::connect(&mail, &clsSendMail::progress, [&](const QString& text) { progress << text; });
    QObject::connect(&mail, &clsSendMail::finished,
                     [&](const SendResult& result) { results << result; });
    mail.Send(To("bob@silent.test"));
    // Connected to the server that never greets.
    ASSERT_TRUE(testing::RunUntil([&] { return world_->OpenSilentConnections() == 1; }));
    EXPECT_TRUE(mail.IsBusy());
    EXPECT_EQ(progress, (QStringList{clsSendMail::kLookingUp, clsSendMail::kSending}));
    mail.Cancel();
    ASSERT_EQ(results.size(), 1);
    EXPECT_EQ(results[0].status, Status::Cancelled);
    EXPECT_EQ(results[0].message, "Sending was cancelled.");
    EXPECT_FALSE(mail.IsBusy());
    // The connection is dropped without a word and nothing more is reported.
    EXPECT_TRUE(testing::RunUntil([&] { return world_->OpenSilentConnections() == 0; }));
    EXPECT_EQ(world_->SilentServerHeard(), QByteArray());
    testing::RunUntil([] { return false; }, 1);
    EXPECT_EQ(results.size(), 1);
}

TEST_F(SendMail, CancelDuringTheLookUp) {
    clsSendMail mail(world_->Settings());
    QList<SendResult> results;
    QObject::connect(&mail, &clsSendMail::finished,
                     [&](const SendResult& result) { results << result; });
    mail.Send(To("bob@friend.test"));
    mail.Cancel();
    ASSERT_EQ(results.size(), 1);
    EXPECT_EQ(results[0].status, Status::Cancelled);
    // The look-up's answer, when it comes, changes nothing.
    testing::RunUntil([] { return false; }, 1);
    EXPECT_EQ(results.size(), 1);
    const qsizetype before = world_->Delivered().size();
    // And the sender is ready for the next message.
    ASSERT_EQ(SendAndWait(world_->Settings(), To("bob@friend.test")).status, Status::Sent);
    EXPECT_EQ(world_->Delivered().size(), before + 1);
}

TEST_F(SendMail, ANameServerThatDoesNotAnswer) {
    SendMailSettings settings = world_->Settings();
    // A loopback address where no name server listens.
    settings.nameServer = QHostAddress("127.0.0.2");
    const SendResult result = SendAndWait(settings, To("bob@friend.test"));
    EXPECT_EQ(result.status, Status::LookupFailed) << result.message.toStdString();
    EXPECT_TRUE(result.message.contains("could not be looked up")) << result.message.toStdString();
}

}  // namespace
}  // namespace felthawk
