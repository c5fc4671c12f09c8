// The send-to-a-friend form, offscreen, sending through the loopback world.
#include "mail/send_to_friend_form.h"

#include <QJsonArray>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTest>

#include <gtest/gtest.h>

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
        if (HasFatalFailure()) return;
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

TEST(InvitationText, SignsWithTheNameWhenThereIsOne) {
    EXPECT_TRUE(InvitationText("").endsWith("See you at the tables!\n"));
    EXPECT_TRUE(InvitationText("  Ann  Lee ").endsWith("See you at the tables,\nAnn Lee\n"));
    EXPECT_TRUE(InvitationText("").contains(FELTHAWK_MAIL_WEB_SITE));
}

TEST_F(SendToFriendForm, StartsReadyToSendAndSignsUntilTheUserWritesTheirOwn) {
    EXPECT_EQ(form_->windowTitle(), "Send to a Friend");
    EXPECT_EQ(Field("txtSubject")->text(), "An invitation to Felthawk");
    EXPECT_EQ(Message()->toPlainText(), InvitationText(""));
    EXPECT_TRUE(Status().isEmpty());
    EXPECT_TRUE(Editable());

    QTest::keyClicks(Field("txtYourName"), "Ann");
    EXPECT_EQ(Message()->toPlainText(), InvitationText("Ann"));

    Message()->moveCursor(QTextCursor::End);
    QTest::keyClicks(Message(), "PS: bring chips.");
    const QString own = Message()->toPlainText();
    QTest::keyClicks(Field("txtYourName"), " Lee");
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
        EXPECT_EQ(Field("txtFriendEmail")->text(), c.friendEmail);
    }
    EXPECT_EQ(world_->Delivered().size(), delivered);
}

TEST_F(SendToFriendForm, WhatIsTypedArrivesAndTheFormCloses) {
    Fill("ann@home.test", "bob@friend.test");
    Field("txtSubject")->setText(QString::fromUtf8("Poker ♠ tonight"));
    Message()->setPlainText(QString::fromUtf8("Bob,\ncome and play.\n— Ann"));
    Click("cmdSend");
    EXPECT_FALSE(Editable());
    ASSERT_TRUE(testing::RunUntil([&] { return !form_->isVisible(); }));
    EXPECT_EQ(form_->result(), QDialog::Accepted);
    ASSERT_EQ(dialogs_.boxes.size(), 1);
    EXPECT_EQ(dialogs_.boxes[0].text, "Your message has been sent to bob@friend.test.");
    EXPECT_EQ(dialogs_.boxes[0].icon, MessageIcon::Information);

    const QJsonObject mail = world_->Delivered().back();
    EXPECT_EQ(mail["rcpt_tos"].toArray(), QJsonArray{"bob@friend.test"});
    EXPECT_EQ(mail["from_name"].toString(), "Ann");
    EXPECT_EQ(mail["headers"].toObject()["Subject"].toString(),
              QString::fromUtf8("Poker ♠ tonight"));
    EXPECT_EQ(mail["text"].toString(), QString::fromUtf8("Bob,\ncome and play.\n— Ann\n"));
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

TEST_F(SendToFriendForm, CancelStopsSendingThenCloses) {
    Fill("ann@home.test", "bob@silent.test");
    Click("cmdSend");
    ASSERT_TRUE(testing::RunUntil([&] { return world_->OpenSilentConnections() == 1; }));
    EXPECT_EQ(Status(), "Sending…");
    Click("cmdCancel");
    EXPECT_EQ(Status(), "Sending was cancelled.");
    EXPECT_TRUE(form_->isVisible());
    EXPECT_TRUE(Editable());
    EXPECT_TRUE(dialogs_.boxes.isEmpty());
    EXPECT_TRUE(testing::RunUntil([&] { return world_->OpenSilentConnections() == 0; }));
    EXPECT_EQ(world_->SilentServerHeard(), QByteArray());
    // With nothing under way, Cancel closes the form.
    Click("cmdCancel");
    EXPECT_FALSE(form_->isVisible());
    EXPECT_EQ(form_->result(), QDialog::Rejected);
}

TEST_F(SendToFriendForm, ClosingTheWindowWhileSendingStopsIt) {
    Fill("ann@home.test", "bob@silent.test");
    Click("cmdSend");
    ASSERT_TRUE(testing::RunUntil([&] { return world_->OpenSilentConnections() == 1; }));
    form_->close();
    EXPECT_FALSE(form_->isVisible());
    EXPECT_TRUE(testing::RunUntil([&] { return world_->OpenSilentConnections() == 0; }));
    EXPECT_TRUE(dialogs_.boxes.isEmpty());
}

}  // namespace
}  // namespace felthawk
