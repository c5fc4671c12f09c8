// clsSendMail and the send-to-a-friend form against real servers on
// loopback: dnsmasq answers the MX queries, smtp_sink.py takes (or refuses)
// the mail and files each message as parsed by Python's mail parser.
#include "mail/send_mail.h"

#include <memory>
#include <optional>

#include <QApplication>
#include <QDeadlineTimer>
#include <QDir>
#include <QElapsedTimer>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QProcess>
#include <QPushButton>
#include <QRegularExpression>
#include <QSet>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTemporaryDir>
#include <QTest>
#include <QThread>
#include <QTimer>

#include <gtest/gtest.h>

#include "mail/mail_service.h"
#include "mail/send_to_friend_form.h"
#include "settings/dialogs.h"

namespace felthawk {
namespace {

using Status = SendResult::Status;

bool RunUntil(const std::function<bool()>& done, int seconds = 30) {
    const QDeadlineTimer deadline(seconds * 1000);
    while (!done()) {
        if (deadline.hasExpired()) return false;
        QCoreApplication::processEvents(QEventLoop::AllEvents, 50);
        QThread::msleep(5);
    }
    return true;
}

QByteArray WaitForLine(QProcess& process, QProcess::ProcessChannel channel, const char* marker) {
    process.setReadChannel(channel);
    const QDeadlineTimer deadline(20000);
    while (!deadline.hasExpired() && process.state() != QProcess::NotRunning) {
        while (process.canReadLine()) {
            const QByteArray line = process.readLine();
            if (line.startsWith(marker)) return line.trimmed();
        }
        process.waitForReadyRead(100);
    }
    return {};
}

// QDnsLookup always asks port 53, so each test process takes loopback
// addresses of its own and test processes can run side by side.
QHostAddress LoopbackFor(quint32 second) {
    const auto pid = static_cast<quint32>(QCoreApplication::applicationPid()) & 0xffff;
    return QHostAddress((127u << 24) | (second << 16) | pid);
}

// A refusal that would be a link if it were read as markup.
constexpr char kMarkupRefusal[] = R"(5.7.1 <a href="file:///usr/bin/xterm">click</a> <b>now</b>)";

// Names under .test not given to dnsmasq do not exist; nothing listens at
// `dead`; the silent server accepts connections and never speaks.
struct LoopbackMail {
    QString Start() {
        smtp.start(
            QString::fromLatin1(FELTHAWK_TEST_PYTHON),
            {FELTHAWK_TEST_SMTP_SINK, folder.path(), "--reply", "refuse.test", "550",
             "5.1.1 No such user here", "--reply", "later.test", "451", "4.3.2 Try again later",
             "--reply", "markup.test", "550", kMarkupRefusal});
        const QByteArray ready = WaitForLine(smtp, QProcess::StandardOutput, "PORT ");
        if (ready.isEmpty()) return "the SMTP sink did not start: " + smtp.readAllStandardError();
        smtpPort = static_cast<quint16>(ready.mid(5).toUInt());
        if (!silent.listen(silentAddress, smtpPort)) return "silent: " + silent.errorString();
        QObject::connect(&silent, &QTcpServer::newConnection, &silent, [this] {
            while (QTcpSocket* socket = silent.nextPendingConnection())
                QObject::connect(socket, &QTcpSocket::readyRead, socket,
                                 [this, socket] { silentHeard += socket->readAll(); });
        });
        const QString live = "127.0.0.1", dead = dnsAddress.toString();
        QStringList arguments =
            QString(
                "--no-daemon --conf-file=/dev/null --no-resolv --no-hosts --port=53 "
                "--bind-interfaces --local=/test/ --txt-record=nomx.test,no-mail")
                .split(u' ');
        arguments << "--pid-file=" + folder.filePath("dnsmasq.pid") << "--listen-address=" + dead
                  << "--host-record=plain.test," + live;
        // Domain, exchanger, preference, the exchanger's address.
        const QString exchangers[][4] = {
            {"friend.test", "mx.friend.test", "10", live},
            {"order.test", "mx2.order.test", "30", live},
            {"order.test", "mx1.order.test", "10", live},
            {"backup.test", "dead.backup.test", "5", dead},
            {"backup.test", "mx.backup.test", "20", live},
            {"dead.test", "dead.dead.test", "10", dead},
            {"refuse.test", "mx.refuse.test", "10", live},
            {"later.test", "mx.later.test", "10", live},
            {"markup.test", "mx.markup.test", "10", live},
            {"silent.test", "mx.silent.test", "10", silentAddress.toString()},
        };
        for (const auto& [domain, exchanger, preference, address] : exchangers)
            arguments << "--mx-host=" + domain + ',' + exchanger + ',' + preference
                      << "--host-record=" + exchanger + ',' + address;
        dns.start(QString::fromLatin1(FELTHAWK_TEST_DNSMASQ), arguments);
        if (WaitForLine(dns, QProcess::StandardError, "dnsmasq: started").isEmpty())
            return "dnsmasq did not start on " + dead + ":53: " + dns.readAllStandardError();
        return {};
    }
    ~LoopbackMail() {
        for (QProcess* process : {&dns, &smtp}) {
            process->kill();
            process->waitForFinished(5000);
        }
    }
    SendMailSettings Settings() const {
        return {dnsAddress, smtpPort, "player.test", std::chrono::seconds(5),
                std::chrono::seconds(10)};
    }
    QList<QJsonObject> Delivered() const {
        QList<QJsonObject> messages;
        for (int n = 1;; ++n) {
            QFile file(QDir(folder.path()).filePath(QStringLiteral("%1.json").arg(n)));
            if (!file.open(QIODevice::ReadOnly)) return messages;
            messages << QJsonDocument::fromJson(file.readAll()).object();
        }
    }
    int OpenSilentConnections() const {
        int open = 0;
        for (const QTcpSocket* socket : silent.findChildren<QTcpSocket*>())
            open += socket->state() == QAbstractSocket::ConnectedState;
        return open;
    }

    QTemporaryDir folder;
    QProcess smtp, dns;
    QTcpServer silent;
    QByteArray silentHeard;
    QHostAddress dnsAddress = LoopbackFor(53), silentAddress = LoopbackFor(54);
    quint16 smtpPort = 0;
};

LoopbackMail* world = nullptr;
QString worldProblem;

// One QApplication and one mail world for all tests, in a zone of UTC-3:30
// so that a Date header shows whether the offset's sign and minutes are right.
class MailEnvironment : public ::testing::Environment {
  public:
    void SetUp() override {
        qputenv("TZ", "XST+3:30");
        static int argc = 1;
        static char name[] = "mail_tests";
        static char* argv[] = {name, nullptr};
        application_ = std::make_unique<QApplication>(argc, argv);
        world = new LoopbackMail;
        worldProblem = world->Start();
    }
    void TearDown() override {
        delete world;
        application_.reset();
    }

  private:
    std::unique_ptr<QApplication> application_;
};

[[maybe_unused]] ::testing::Environment* const kEnvironment =
    ::testing::AddGlobalTestEnvironment(new MailEnvironment);

class WithLoopbackMail : public ::testing::Test {
  protected:
    void SetUp() override { ASSERT_TRUE(worldProblem.isEmpty()) << worldProblem.toStdString(); }
};

using SendMail = WithLoopbackMail;

TEST_F(SendMail, FindsTheExchangerAndEndsWithAClearResult) {
    const struct {
        const char* to;
        Status status;
        const char* exchanger;  // the server that took or refused it
        const char* says;
        bool sends;  // "Sending…" was shown
    } routes[] = {
        {"bob@friend.test", Status::Sent, "mx.friend.test", "has been sent to bob@friend.test",
         true},
        // The lower preference goes first, whatever the order of the records.
        {"bob@order.test", Status::Sent, "mx1.order.test", "has been sent", true},
        {"bob@backup.test", Status::Sent, "mx.backup.test", "has been sent", true},
        {"bob@plain.test", Status::Sent, "plain.test", "has been sent", true},
        {"bob@nosuch.test", Status::NoSuchDomain, "", "There is no domain \"nosuch.test\"", false},
        {"bob@nomx.test", Status::NoMailServer, "", "\"nomx.test\" has no mail server", false},
        {"bob@dead.test", Status::NoAnswer, "", "No mail server for \"dead.test\" answered", true},
        {"bob@refuse.test", Status::Refused, "mx.refuse.test",
         "The mail server mx.refuse.test refused the message: 550 5.1.1 No such user here", true},
        {"bob@later.test", Status::Deferred, "mx.later.test", "451 4.3.2 Try again later", true},
        {"bob@", Status::BadAddress, "", "nothing after the @", false},
    };
    // A sender name and a subject that try to smuggle in a header, a subject
    // that a reader would take for an encoded word, and bare CR line ends.
    MailMessage message{"Ann \"Ace\" \\ Lee\r\nBcc: x@y.test",
                        "ann@home.test",
                        {},
                        "Poker =?UTF-8?B?SGk=?=\nBcc: x@y.test",
                        "Come\r\nand\rplay."};
    qsizetype delivered = world->Delivered().size();
    QSet<QString> messageIds;
    for (const auto& route : routes) {
        SCOPED_TRACE(route.to);
        message.toAddress = route.to;
        clsSendMail mail(world->Settings());
        QStringList progress;
        std::optional<SendResult> result;
        QObject::connect(&mail, &clsSendMail::progress, [&](const QString& s) { progress << s; });
        QObject::connect(&mail, &clsSendMail::finished, [&](const SendResult& r) { result = r; });
        mail.Send(message);
        ASSERT_TRUE(RunUntil([&] { return result.has_value(); }));
        EXPECT_EQ(result->status, route.status) << result->message.toStdString();
        EXPECT_EQ(result->exchanger, QString::fromLatin1(route.exchanger));
        EXPECT_TRUE(result->message.contains(QString::fromUtf8(route.says)))
            << result->message.toStdString();
        EXPECT_EQ(progress.contains(clsSendMail::kLookingUp), route.status != Status::BadAddress);
        EXPECT_EQ(progress.contains(clsSendMail::kSending), route.sends);
        const QList<QJsonObject> now = world->Delivered();
        ASSERT_EQ(now.size(), delivered + (route.status == Status::Sent ? 1 : 0));
        delivered = now.size();
        if (route.status != Status::Sent) continue;
        const QJsonObject headers = now.back()["headers"].toObject();
        EXPECT_EQ(now.back()["rcpt_tos"].toArray(), QJsonArray{QString::fromLatin1(route.to)});
        EXPECT_EQ(now.back()["defects"].toArray(), QJsonArray{});
        EXPECT_EQ(now.back()["from_name"].toString(), "Ann \"Ace\" \\ Lee Bcc: x@y.test");
        EXPECT_EQ(headers["Subject"].toString(), "Poker =?UTF-8?B?SGk=?= Bcc: x@y.test");
        EXPECT_FALSE(headers.contains("Bcc"));
        EXPECT_EQ(now.back()["text"].toString(), "Come\nand\nplay.\n");
        messageIds << headers["Message-ID"].toString();
    }
    EXPECT_EQ(messageIds.size(), 4);  // one of its own for each message sent
}

// Records the message boxes instead of showing them.
struct RecordingDialogs : IDialogs {
    struct Box {
        QString text, title;
        MessageIcon icon;
    };
    QString InputBox(QWidget*, const QString&, const QString&, const QString&, bool* ok) override {
        *ok = false;
        return {};
    }
    void MessageBox(QWidget*, const QString& text, const QString& title, MessageIcon i) override {
        boxes << Box{text, title, i};
    }
    bool AskYesNo(QWidget*, const QString&, const QString&) override { return false; }
    QList<Box> boxes;
};

class SendToFriendForm : public WithLoopbackMail {
  protected:
    void SetUp() override {
        WithLoopbackMail::SetUp();
        Open();
    }
    void Open() {
        dialogs_.boxes.clear();
        form_ = std::make_unique<frmSendEmailtoFriend>(dialogs_, world->Settings());
        form_->show();
    }
    template <typename Widget = QLineEdit>
    Widget* Find(const char* name) {
        auto* widget = form_->findChild<Widget*>(QString::fromLatin1(name));
        EXPECT_NE(widget, nullptr) << name;
        return widget;
    }
    QPlainTextEdit* Message() { return Find<QPlainTextEdit>("txtMessage"); }
    QString Status() { return Find<QLabel>("lblStatus")->text(); }
    void Click(const char* button) { QTest::mouseClick(Find<QPushButton>(button), Qt::LeftButton); }
    void Fill(const QString& yourEmail, const QString& friendEmail) {
        Find("txtYourName")->setText("Ann");
        Find("txtYourEmail")->setText(yourEmail);
        Find("txtFriendEmail")->setText(friendEmail);
    }
    bool Editable() {
        bool all = Find<QPushButton>("cmdSend")->isEnabled() && Message()->isEnabled();
        for (const char* name : {"txtYourName", "txtYourEmail", "txtFriendEmail", "txtSubject"})
            all = all && Find(name)->isEnabled();
        return all;
    }

    RecordingDialogs dialogs_;
    std::unique_ptr<frmSendEmailtoFriend> form_;
};

TEST_F(SendToFriendForm, StartsReadyChecksEveryFieldAndKeepsTheTextOnFailure) {
    EXPECT_EQ(form_->windowTitle(), "Send to a Friend");
    EXPECT_EQ(Find("txtSubject")->text(), "An invitation to Felthawk");
    EXPECT_TRUE(Message()->toPlainText().contains(FELTHAWK_MAIL_WEB_SITE));
    QTest::keyClicks(Find("txtYourName"), "  Ann  Lee ");
    EXPECT_TRUE(Message()->toPlainText().endsWith("See you at the tables,\nAnn Lee\n"));
    // Once the user has written in the message, the name no longer signs it.
    Message()->moveCursor(QTextCursor::End);
    QTest::keyClicks(Message(), "PS: bring chips.");
    const QString own = Message()->toPlainText();
    QTest::keyClicks(Find("txtYourName"), "x");
    EXPECT_EQ(Message()->toPlainText(), own);

    const struct {
        const char *yourEmail, *friendEmail, *text, *says, *focus;
    } cases[] = {
        {"", "bob@friend.test", "Hi", "Please enter your e-mail address", "txtYourEmail"},
        {"ann@home", "bob@friend.test", "Hi",
         "Please check your e-mail address. The part after the @ in \"ann@home\"", "txtYourEmail"},
        {"ann@home.test", " ", "Hi", "Please enter your friend's e-mail address", "txtFriendEmail"},
        {"ann@home.test", "bob at friend.test", "Hi",
         "Please check your friend's e-mail address. \"bob at friend.test\" has no @",
         "txtFriendEmail"},
        {"ann@home.test", "bob@friend.test", " \n\t", "Please write a message", "txtMessage"},
    };
    const qsizetype delivered = world->Delivered().size();
    for (const auto& c : cases) {
        SCOPED_TRACE(c.says);
        dialogs_.boxes.clear();
        Fill(c.yourEmail, c.friendEmail);
        Message()->setPlainText(c.text);
        Click("cmdSend");
        ASSERT_EQ(dialogs_.boxes.size(), 1);
        EXPECT_TRUE(dialogs_.boxes[0].text.startsWith(c.says))
            << dialogs_.boxes[0].text.toStdString();
        EXPECT_EQ(dialogs_.boxes[0].title, "Send to a Friend");
        EXPECT_EQ(dialogs_.boxes[0].icon, MessageIcon::Warning);
        EXPECT_EQ(form_->focusWidget()->objectName(), c.focus);
        EXPECT_TRUE(Editable() && Status().isEmpty() && form_->isVisible());
    }
    EXPECT_EQ(world->Delivered().size(), delivered);

    // A failure on the way is explained, and nothing typed is lost.
    dialogs_.boxes.clear();
    Fill("ann@home.test", "bob@nosuch.test");
    Message()->setPlainText("My own words.");
    Click("cmdSend");
    ASSERT_TRUE(RunUntil([&] { return !dialogs_.boxes.isEmpty(); }));
    EXPECT_TRUE(dialogs_.boxes[0].text.startsWith("There is no domain \"nosuch.test\""));
    EXPECT_EQ(dialogs_.boxes[0].icon, MessageIcon::Warning);
    EXPECT_EQ(Status(), dialogs_.boxes[0].text);
    EXPECT_TRUE(form_->isVisible() && Editable());
    EXPECT_EQ(Find("txtFriendEmail")->text(), "bob@nosuch.test");
    EXPECT_EQ(Message()->toPlainText(), "My own words.");
}

TEST_F(SendToFriendForm, WhatIsTypedArrivesWholeAndTheFormCloses) {
    // Dots and blanks where mail is fussy about them, lines long enough for
    // soft breaks (one falling on an escape, one before a dot), every width
    // of UTF-8.
    const QString text =
        QString::fromUtf8(
            "Salut Zoë,\n\nViens jouer : la table ouvre à 21 h, mise 0,50 € = rien.\n"
            ".\n. a line that starts with a dot\ntrailing blanks  \n\ttab first\n"
            "A line long enough to need a soft break, well over seventy-six "
            "characters in all, with ♠♥♦♣ and 🂡 on it.\n") +
        QString(74, u'a') + QString::fromUtf8("é\n") + QString(75, u'b') + ".c\nAnn\n";
    const QString subject =
        QString::fromUtf8("Partie de poker ♠ ce soir ? Ça te dit, Zoë ? 🂡🂮 ♠♥♦♣ 🂡🂮").repeated(2);
    Find("txtYourName")->setText(QString::fromUtf8("Ann Lée"));
    Find("txtYourEmail")->setText("ann@home.test");
    Find("txtFriendEmail")->setText("Zoe@Friend.Test");
    Find("txtSubject")->setText(subject);
    Message()->setPlainText(text);
    const QDateTime before = QDateTime::currentDateTimeUtc().addSecs(-2);
    Click("cmdSend");
    EXPECT_FALSE(Editable());
    ASSERT_TRUE(RunUntil([&] { return !form_->isVisible(); }));
    EXPECT_EQ(form_->result(), QDialog::Accepted);
    ASSERT_EQ(dialogs_.boxes.size(), 1);
    EXPECT_EQ(dialogs_.boxes[0].text, "Your message has been sent to Zoe@friend.test.");
    EXPECT_EQ(dialogs_.boxes[0].icon, MessageIcon::Information);

    const QJsonObject mail = world->Delivered().back();
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
    EXPECT_EQ(mail["text"].toString(), text);
    const QString id = headers["Message-ID"].toString();
    EXPECT_TRUE(id.startsWith(u'<') && id.endsWith("@home.test>")) << id.toStdString();
    EXPECT_TRUE(headers["Date"].toString().endsWith(" -0330"))
        << headers["Date"].toString().toStdString();
    const QDateTime date = QDateTime::fromString(mail["date"].toString(), Qt::ISODate);
    EXPECT_TRUE(date >= before && date <= QDateTime::currentDateTimeUtc().addSecs(2));

    // On the wire: 7-bit, short CRLF lines that no server would trim or take
    // for the end of the data, encoded words holding whole characters.
    const QString raw = mail["raw"].toString();
    EXPECT_EQ(raw.count(u'\n'), raw.count("\r\n"));
    const QRegularExpression encodedWord(QStringLiteral("=\\?UTF-8\\?B\\?([^?]*)\\?="));
    for (const QString& line : raw.split("\r\n")) {
        SCOPED_TRACE(line.toStdString());
        EXPECT_LE(line.size(), 76);
        for (const QRegularExpressionMatch& word : encodedWord.globalMatch(line)) {
            const QByteArray bytes = QByteArray::fromBase64(word.captured(1).toLatin1());
            EXPECT_EQ(QString::fromUtf8(bytes).toUtf8(), bytes);
        }
        EXPECT_FALSE(line.startsWith(u'.') || line.endsWith(u' ') || line.endsWith(u'\t'));
        for (QChar c : line) EXPECT_LT(c.unicode(), 128);
    }
}

TEST_F(SendToFriendForm, CancelOrCloseStopsTheAttemptAtOnce) {
    // Cancel while the mail server is looked up, and Cancel or closing the
    // window on a server that never greets.
    const std::pair<QString, bool> cases[] = {
        {"bob@friend.test", false}, {"bob@silent.test", false}, {"bob@silent.test", true}};
    for (const auto& [to, close] : cases) {
        SCOPED_TRACE(to.toStdString() + (close ? " closed" : ""));
        Open();
        const qsizetype delivered = world->Delivered().size();
        Fill("ann@home.test", to);
        Click("cmdSend");
        if (to == "bob@silent.test") {
            ASSERT_TRUE(RunUntil([&] { return world->OpenSilentConnections() == 1; }));
            EXPECT_EQ(Status(), "Sending…");
        }
        QElapsedTimer clock;
        clock.start();
        close ? void(form_->close()) : Click("cmdCancel");
        EXPECT_LT(clock.elapsed(), 1000);
        EXPECT_EQ(form_->isVisible(), !close);
        EXPECT_TRUE(close || (Status() == "Sending was cancelled." && Editable()))
            << Status().toStdString();
        // The connection is dropped without a word, and nothing more comes.
        EXPECT_TRUE(RunUntil([&] { return world->OpenSilentConnections() == 0; }));
        RunUntil([] { return false; }, 1);
        EXPECT_EQ(world->silentHeard, QByteArray());
        EXPECT_TRUE(dialogs_.boxes.isEmpty());
        EXPECT_EQ(world->Delivered().size(), delivered);
        if (close) continue;
        Click("cmdCancel");  // with nothing under way, Cancel closes the form
        EXPECT_FALSE(form_->isVisible());
        EXPECT_EQ(form_->result(), QDialog::Rejected);
    }
}

TEST_F(SendToFriendForm, TheServersWordsShowAsTheyAreNotAsMarkup) {
    QtDialogs real;
    form_ = std::make_unique<frmSendEmailtoFriend>(real, world->Settings());
    form_->show();
    Fill("ann@home.test", "bob@markup.test");
    Message()->setPlainText("Hi");
    std::optional<Qt::TextFormat> format;
    QString text;
    QTimer poll;
    QObject::connect(&poll, &QTimer::timeout, [&] {
        auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
        if (!box || format) return;
        format = box->textFormat();
        text = box->text();
        box->close();
    });
    poll.start(50);
    Click("cmdSend");
    ASSERT_TRUE(RunUntil([&] { return format.has_value(); }));
    EXPECT_EQ(*format, Qt::PlainText);
    EXPECT_TRUE(text.contains(QString::fromLatin1(kMarkupRefusal))) << text.toStdString();
    EXPECT_EQ(Find<QLabel>("lblStatus")->textFormat(), Qt::PlainText);
    EXPECT_TRUE(Status().contains(QString::fromLatin1(kMarkupRefusal)));
}

TEST(MailService, ShowsTheFormModalOverTheBoard) {
    RecordingDialogs dialogs;
    MailService service(dialogs, SendMailSettings{});
    QWidget board;
    board.show();
    QString shown;
    QTimer::singleShot(0, [&] {  // runs inside the form's own event loop
        QWidget* form = QApplication::activeModalWidget();
        if (!form || form->parentWidget() != &board) return;
        shown = form->objectName();
        form->close();
    });
    service.ShowSendToFriend(&board);
    EXPECT_EQ(shown, "frmSendEmailtoFriend");
}

TEST(SendMailSettingsFromEnvironment, TakesValidValuesAndLeavesOutTheRest) {
    const std::tuple<const char*, const char*, std::optional<QHostAddress>, quint16> cases[] = {
        {"", "", std::nullopt, 25},
        {"::1", "65535", QHostAddress("::1"), 65535},
        {"300.1.1.1", "65536", std::nullopt, 25},
        {"127.0.0.1", "25x", QHostAddress("127.0.0.1"), 25},
    };
    for (const auto& [server, port, nameServer, smtpPort] : cases) {
        qputenv("FELTHAWK_DNS_SERVER", server);
        qputenv("FELTHAWK_SMTP_PORT", port);
        const SendMailSettings settings = SendMailSettingsFromEnvironment();
        EXPECT_EQ(settings.nameServer, nameServer) << server;
        EXPECT_EQ(settings.smtpPort, smtpPort) << port;
    }
    qunsetenv("FELTHAWK_DNS_SERVER");
    qunsetenv("FELTHAWK_SMTP_PORT");
}

}  // namespace
}  // namespace felthawk
