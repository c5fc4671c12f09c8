// The send-to-a-friend form, offscreen, sending through the loopback world,
// and the mail service that shows it.
#include "mail/send_to_friend_form.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QJsonArray>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QRegularExpression>
#include <QTest>
#include <QTimer>

#include <gtest/gtest.h>

#include "mail/mail_service.h"
#include "settings/dialogs.h"
#include "tests/mail/loopback_mail.h"

namespace felthawk {
namespace {

// Records the message boxes instead of showing them.
class RecordingDialogs : public IDialogs {
  public:
    struct Box {
        QString text;
        QString title;
        MessageIcon icon;
    };
    QString InputBox(QWidget*, const QString&, const QString&, const QString&,
                     bool* accepted) override {
        *accepted = false;
        return {};
    }
    void MessageBox(QWidget*, const QString& text, const QString& title,
                    MessageIcon icon) override {
        boxes << Box{text, title, icon};
    }
    bool AskYesNo(QWidget*, const QString&, const QString&) override { return false; }

    QList<Box> boxes;
};

class SendToFriendForm : public testing::WithLoopbackMail {
  protected:
    void SetUp() override {
        WithLoopbackMail::SetUp();
        if (!HasFatalFailure()) Open();
    }
    void Open() {
        dialogs_.boxes.clear();
        form_ = std::make_unique<frmSendEmailtoFriend>(dialogs_, world_->Settings());
        form_->show();
    }

    template <typename Widget>
    Widget* Find(const char* name) {
        auto* widget = form_->findChild<Widget*>(QString::fromLatin1(name));
        EXPECT_NE(widget, nullptr) << name;
        return widget;
    }
    QLineEdit* Field(const char* name) { return Find<QLineEdit>(name); }
    QPlainTextEdit* Message() { return Find<QPlainTextEdit>("txtMessage"); }
    QString Status() { return Find<QLabel>("lblStatus")->text(); }
    void Click(const char* button) { QTest::mouseClick(Find<QPushButton>(button), Qt::LeftButton); }
    void Fill(const QString& yourEmail, const QString& friendEmail) {
        Field("txtYourName")->setText("Ann");
        Field("txtYourEmail")->setText(yourEmail);
        Field("txtFriendEmail")->setText(friendEmail);
    }
    bool Editable() {
        bool all = Find<QPushButton>("cmdSend")->isEnabled() && Message()->isEnabled();
        for (const char* name : {"txtYourName", "txtYourEmail", "txtFriendEmail", "txtSubject"})
            all = all && Field(name)->isEnabled();
        return all;
    }

    RecordingDialogs dialogs_;
    std::unique_ptr<frmSendEmailtoFriend> form_;
};

TEST_F(SendToFriendForm, StartsReadyToSendAndSignsUntilTheUserWritesTheirOwn) {
    EXPECT_EQ(form_->windowTitle(), "Send to a Friend");
    EXPECT_EQ(Field("txtSubject")->text(), "An invitation to Felthawk");
    EXPECT_TRUE(Message()->toPlainText().contains(FELTHAWK_MAIL_WEB_SITE));
    EXPECT_TRUE(Message()->toPlainText().endsWith("See you at the tables!\n"));
    EXPECT_TRUE(Status().isEmpty());
    EXPECT_TRUE(Editable());

    QTest::keyClicks(Field("txtYourName"), "  Ann  Lee ");
    EXPECT_TRUE(Message()->toPlainText().endsWith("See you at the tables,\nAnn Lee\n"));
    Message()->moveCursor(QTextCursor::End);
    QTest::keyClicks(Message(), "PS: bring chips.");
    const QString own = Message()->toPlainText();
    QTest::keyClicks(Field("txtYourName"), "x");
    EXPECT_EQ(Message()->toPlainText(), own);
}

TEST_F(SendToFriendForm, ChecksBeforeSendingAndSaysWhatIsWrong) {
    const struct {
        const char* yourEmail;
        const char* friendEmail;
        const char* text;
        const char* says;
        const char* focus;
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
    const qsizetype delivered = world_->Delivered().size();
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
        // Nothing started: the form is as it was.
        EXPECT_TRUE(Editable());
        EXPECT_TRUE(Status().isEmpty());
        EXPECT_TRUE(form_->isVisible());
    }
    EXPECT_EQ(world_->Delivered().size(), delivered);
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
    Field("txtYourName")->setText(QString::fromUtf8("Ann Lée"));
    Field("txtYourEmail")->setText("ann@home.test");
    Field("txtFriendEmail")->setText("Zoe@Friend.Test");
    Field("txtSubject")->setText(subject);
    Message()->setPlainText(text);
    const QDateTime before = QDateTime::currentDateTimeUtc().addSecs(-2);
    Click("cmdSend");
    EXPECT_FALSE(Editable());
    ASSERT_TRUE(testing::RunUntil([&] { return !form_->isVisible(); }));
    EXPECT_EQ(form_->result(), QDialog::Accepted);
    ASSERT_EQ(dialogs_.boxes.size(), 1);
    EXPECT_EQ(dialogs_.boxes[0].text, "Your message has been sent to Zoe@friend.test.");
    EXPECT_EQ(dialogs_.boxes[0].icon, MessageIcon::Information);

    // Read back by Python's own mail parser.
    const QJsonObject mail = world_->Delivered().back();
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
    // The tests run at UTC-3:30 (see loopback_mail.cpp): a wrong sign or
    // minute field in the offset puts the date half an hour or more away.
    EXPECT_TRUE(headers["Date"].toString().endsWith(" -0330"))
        << headers["Date"].toString().toStdString();
    const QDateTime date = QDateTime::fromString(mail["date"].toString(), Qt::ISODate);
    EXPECT_GE(date, before);
    EXPECT_LE(date, QDateTime::currentDateTimeUtc().addSecs(2));

    // What went over the wire is 7-bit, in short CRLF lines that no server
    // would trim or take for the end of the data.
    const QString raw = mail["raw"].toString();
    EXPECT_EQ(raw.count(u'\n'), raw.count("\r\n"));
    // Each encoded word holds whole characters, for readers that decode
    // them one by one.
    const QRegularExpression encodedWord(QStringLiteral("=\\?UTF-8\\?B\\?([^?]*)\\?="));
    for (const QString& line : raw.split("\r\n")) {
        EXPECT_LE(line.size(), 76) << line.toStdString();
        for (const QRegularExpressionMatch& word : encodedWord.globalMatch(line)) {
            const QByteArray bytes = QByteArray::fromBase64(word.captured(1).toLatin1());
            EXPECT_EQ(QString::fromUtf8(bytes).toUtf8(), bytes) << line.toStdString();
        }
        EXPECT_FALSE(line.startsWith(u'.') || line.endsWith(u' ') || line.endsWith(u'\t'))
            << line.toStdString();
        for (QChar c : line) EXPECT_LT(c.unicode(), 128) << line.toStdString();
    }
}

TEST_F(SendToFriendForm, AFailureIsExplainedAndNothingTypedIsLost) {
    Fill("ann@home.test", "bob@nosuch.test");
    Message()->setPlainText("My own words.");
    Click("cmdSend");
    ASSERT_TRUE(testing::RunUntil([&] { return !dialogs_.boxes.isEmpty(); }));
    EXPECT_TRUE(dialogs_.boxes[0].text.startsWith("There is no domain \"nosuch.test\""))
        << dialogs_.boxes[0].text.toStdString();
    EXPECT_EQ(dialogs_.boxes[0].icon, MessageIcon::Warning);
    EXPECT_EQ(Status(), dialogs_.boxes[0].text);
    EXPECT_TRUE(form_->isVisible());
    EXPECT_TRUE(Editable());
    EXPECT_EQ(Field("txtFriendEmail")->text(), "bob@nosuch.test");
    EXPECT_EQ(Message()->toPlainText(), "My own words.");
}

TEST_F(SendToFriendForm, CancelOrCloseStopsTheAttemptAtOnce) {
    const struct {
        const char* to;
        bool connected;  // wait for the connection to the silent server
        bool close;      // close the window instead of pressing Cancel
    } cases[] = {
        {"bob@friend.test", false, false},  // while the mail server is looked up
        {"bob@silent.test", true, false},   // on a server that never greets
        {"bob@silent.test", true, true},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(std::string(c.to) + (c.close ? " closed" : ""));
        Open();
        const qsizetype delivered = world_->Delivered().size();
        Fill("ann@home.test", c.to);
        Click("cmdSend");
        if (c.connected) {
            ASSERT_TRUE(testing::RunUntil([&] { return world_->OpenSilentConnections() == 1; }));
            EXPECT_EQ(Status(), "Sending…");
        }
        QElapsedTimer clock;
        clock.start();
        if (c.close)
            form_->close();
        else
            Click("cmdCancel");
        EXPECT_LT(clock.elapsed(), 1000);
        EXPECT_EQ(form_->isVisible(), !c.close);
        if (!c.close) {
            EXPECT_EQ(Status(), "Sending was cancelled.");
            EXPECT_TRUE(Editable());
        }
        // The connection is dropped without a word, and nothing more comes.
        EXPECT_TRUE(testing::RunUntil([&] { return world_->OpenSilentConnections() == 0; }));
        testing::RunUntil([] { return false; }, 1);
        EXPECT_EQ(world_->SilentServerHeard(), QByteArray());
        EXPECT_TRUE(dialogs_.boxes.isEmpty());
        EXPECT_EQ(world_->Delivered().size(), delivered);
        if (c.close) continue;
        // With nothing under way, Cancel closes the form.
        Click("cmdCancel");
        EXPECT_FALSE(form_->isVisible());
        EXPECT_EQ(form_->result(), QDialog::Rejected);
    }
}

TEST(MailService, ShowsTheFormModalOverTheBoard) {
    RecordingDialogs dialogs;
    MailService service(dialogs, SendMailSettings{});
    QWidget board;
    board.show();
    QString shown;
    QWidget* parent = nullptr;
    // Runs inside the form's own event loop, then closes it.
    QTimer::singleShot(0, [&] {
        if (QWidget* form = QApplication::activeModalWidget()) {
            shown = form->objectName();
            parent = form->parentWidget();
            form->close();
        }
    });
    service.ShowSendToFriend(&board);
    EXPECT_EQ(shown, "frmSendEmailtoFriend");
    EXPECT_EQ(parent, &board);
}

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

}  // namespace
}  // namespace felthawk
