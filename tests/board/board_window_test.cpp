// The window as a whole: transparency keys and the held press, the mouse
// menu's tick, the capture layout, the menus' pages, saved hands and the
// services the window calls.
#include <QAction>
#include <QDesktopServices>
#include <QElapsedTimer>
#include <QLabel>
#include <QMenuBar>
#include <QTest>
#include <QTimer>
#include <QUrl>

#include "board/frm_splash.h"
#include "board/info_forms.h"
#include "board/shell.h"
#include "settings/settings_store.h"
#include "settings/transparency.h"
#include "tests/board/board_fixture.h"

namespace felthawk::testing {
namespace {

bool Layered(frmFelthawk& form) {
    return QtWindowLayer().IsLayered(&form);
}

TEST_F(BoardTest, F3AppliesTheSettingAndF4MakesOpaque) {
    struct Case {
        const char* setting;
        double opacity;
    };
    for (const Case& c :
         {Case{"100", 255 / 255.0}, Case{"80", 204 / 255.0}, Case{"30", 76 / 255.0}}) {
        SCOPED_TRACE(c.setting);
        StoreSettings(QString::fromLatin1(c.setting), QStringLiteral("LEFT"));
        Start();
        EXPECT_FALSE(Layered(*form));
        form->KeyDown(114);
        EXPECT_TRUE(Layered(*form));
        EXPECT_NEAR(form->windowOpacity(), c.opacity, 0.002);
        form->KeyDown(115);
        EXPECT_TRUE(Layered(*form));
        EXPECT_NEAR(form->windowOpacity(), 1.0, 0.002);
    }
}

TEST_F(BoardTest, TheHeldPressActsOnlyInTheTopBand) {
    struct Case {
        const char* setting;
        const char* mouse;
        int button;
        int y;
        bool acts;
        double opacity;
    };
    const Case cases[] = {
        {"80", "LEFT", kRightButton, 1139, true, 80 / 255.0},
        {"80", "LEFT", kRightButton, 1140, false, 1.0},
        {"30", "LEFT", kRightButton, 0, true, 76 / 255.0},
        {"80", "LEFT", kLeftButton, 100, false, 1.0},
        {"80", "RIGHT", kLeftButton, 100, true, 80 / 255.0},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(std::string(c.setting) + " " + c.mouse + " y " + std::to_string(c.y));
        StoreSettings(QString::fromLatin1(c.setting), QString::fromLatin1(c.mouse));
        Start();
        form->FormMouseDown(c.button, 600, c.y);
        EXPECT_EQ(Layered(*form), c.acts);
        if (c.acts) {
            EXPECT_NEAR(form->windowOpacity(), c.opacity, 0.002);
        }
        form->FormMouseUp(c.button, 600, c.y);
        EXPECT_FALSE(Layered(*form));
    }
}

TEST_F(BoardTest, ReleasingTheMenuButtonEndsF3Too) {
    Start();
    form->KeyDown(114);
    ASSERT_TRUE(Layered(*form));
    form->FormMouseUp(kRightButton, 0, 5000);
    EXPECT_FALSE(Layered(*form));
    EXPECT_NEAR(form->windowOpacity(), 1.0, 0.002);
}

TEST_F(BoardTest, ChoosingTheOtherMouseItemSwapsAtOnceButKeepsTheTick) {
    Start();
    QAction* left = Action(*form, "mnuLeftMouse");
    QAction* right = Action(*form, "mnuRightMouse");
    EXPECT_TRUE(left->isChecked());
    EXPECT_FALSE(right->isChecked());
    right->trigger();
    EXPECT_TRUE(left->isChecked());
    EXPECT_FALSE(right->isChecked());
    EXPECT_FALSE(GetFelthawkSettings().leftMouse) << "stored at once";
    form->DeckMouseDown(kSpadesRow, 5, kLeftButton, 0, 0);
    EXPECT_EQ(Cells()[0], "5S") << "the left button now toggles";

    Start();  // the next start ticks the right item
    EXPECT_FALSE(Action(*form, "mnuLeftMouse")->isChecked());
    EXPECT_TRUE(Action(*form, "mnuRightMouse")->isChecked());
}

TEST_F(BoardTest, TheCaptureSwitchArmsAndTheLayoutFollowsCaptureMode) {
    Start();
    form->move(40, 120);
    form->show();
    ASSERT_TRUE(QTest::qWaitForWindowActive(form.get()));
    const int boardTop = form->y();
    const int fullHeight = form->height();
    PictureBox* imSp = form->findChild<PictureBox*>(QStringLiteral("imSp"));

    QTest::mouseClick(imSp, Qt::LeftButton);
    EXPECT_TRUE(form->mCaptureOn);
    EXPECT_TRUE(form->ReadTimer()->isActive());
    EXPECT_EQ(form->height(), fullHeight) << "armed: the window waits for the client";

    form->ApplyCaptureMode();  // what a pass does when it finds the client
    EXPECT_EQ(form->windowTitle(), "");
    EXPECT_FALSE(form->menuBar()->isVisible());
    EXPECT_EQ(form->height(), Px(990 + 80));
    EXPECT_EQ(imSp->toolTip(), "Cancel Capture");
    EXPECT_EQ(imSp->GetPicture().name, "sp2");
    EXPECT_TRUE(form->SmallImage()->isVisible());
    EXPECT_EQ(form->SmallImage()->size(), QSize(672, 66));
    for (int i = 0; i < kCellCount; ++i) EXPECT_TRUE(form->TempImage(i)->isVisible());
    EXPECT_TRUE(form->findChild<QLabel*>(QStringLiteral("LBLSUG"))->isVisible());
    EXPECT_EQ(form->findChild<QWidget*>(QStringLiteral("Picture1"))->geometry(),
              TwipRect(7065, 165, 2400, 600));
    form->move(40, 400);

    QTest::mouseClick(imSp, Qt::LeftButton);
    EXPECT_FALSE(form->mCaptureOn);
    EXPECT_FALSE(form->ReadTimer()->isActive());
    EXPECT_EQ(form->y(), boardTop) << "back where the board stood";
    EXPECT_EQ(form->windowTitle(), "Felthawk");
    EXPECT_EQ(imSp->toolTip(), "Capture Palisade Poker");
    EXPECT_FALSE(form->SmallImage()->isVisible());
    EXPECT_FALSE(form->TempImage(0)->isVisible());
    EXPECT_EQ(form->findChild<QWidget*>(QStringLiteral("Picture1"))->geometry(),
              TwipRect(1530, 90, 7035, 915));
    form->hide();
}

// Records the addresses handed to the desktop instead of opening them.
class UrlRecorder : public QObject {
    Q_OBJECT
  public:
    std::vector<QString> opened;
  public slots:
    void Open(const QUrl& url) { opened.push_back(url.toString()); }
};

TEST_F(BoardTest, HelpItemsOpenTheSiteAndTheSupportAddress) {
    UrlRecorder recorder;
    for (const char* scheme : {"http", "https", "mailto"}) {
        QDesktopServices::setUrlHandler(QString::fromLatin1(scheme), &recorder, "Open");
    }
    Start();
    struct Case {
        const char* item;
        QString address;
    };
    const Case cases[] = {
        {"mnuInstr", WebSite() + "/manual.html"},
        {"mnuFAQ", WebSite() + "/faq.html"},
        {"mnuVisit", WebSite()},
    };
    for (const Case& c : cases) {
        recorder.opened.clear();
        Action(*form, c.item)->trigger();
        EXPECT_EQ(recorder.opened, std::vector<QString>{QUrl(c.address).toString()}) << c.item;
    }
    recorder.opened.clear();
    Action(*form, "mnuContactUs")->trigger();
    ASSERT_EQ(recorder.opened.size(), 1u);
    EXPECT_TRUE(recorder.opened[0].startsWith("mailto:"));
    EXPECT_TRUE(recorder.opened[0].endsWith(SupportMail()));
    // The address in About starts a mail to the suggestion address.
    recorder.opened.clear();
    frmAbout about(form.get());
    QTest::mouseClick(about.Label1(), Qt::LeftButton);
    ASSERT_EQ(recorder.opened.size(), 1u);
    EXPECT_TRUE(recorder.opened[0].startsWith("mailto:"));
    EXPECT_TRUE(recorder.opened[0].endsWith(SuggestionMail()));
    for (const char* scheme : {"http", "https", "mailto"}) {
        QDesktopServices::unsetUrlHandler(QString::fromLatin1(scheme));
    }
}

TEST_F(BoardTest, TheMenuBarHoldsTheItemsWithTheirShortcuts) {
    Start();
    struct Case {
        const char* item;
        const char* caption;
        QKeySequence shortcut;
    };
    const Case cases[] = {
        {"mnuNew", "&New hand", QKeySequence(QStringLiteral("Ctrl+N"))},
        {"mnuSave", "&Save Data", QKeySequence(QStringLiteral("Ctrl+S"))},
        {"mnuOpen", "&Open Data", QKeySequence(QStringLiteral("Ctrl+O"))},
        {"mnuExit", "&Exit", QKeySequence(QStringLiteral("Ctrl+X"))},
        {"mnuSendFriend", "Send to a Friend", {}},
        {"mnuTransparency", "Transparency", {}},
        {"mnuAbout", "About Us", {}},
        {"mnuCheck", "Check for Update", {}},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(Action(*form, c.item)->text(), QString::fromLatin1(c.caption));
        EXPECT_EQ(Action(*form, c.item)->shortcut(), c.shortcut) << c.item;
    }
    EXPECT_FALSE(Action(*form, "mnuReq")->isVisible()) << "Requirements is never reached";
}

TEST_F(BoardTest, SaveDataStoresTheJoinedCellsUnderTheTypedName) {
    Start();
    Action(*form, "mnuSave")->trigger();
    EXPECT_TRUE(dialogs.prompts.empty()) << "an empty table asks nothing";

    Type("ASAH");
    dialogs.answers.push_back(QStringLiteral("pair"));
    Action(*form, "mnuSave")->trigger();
    EXPECT_EQ(dialogs.prompts,
              std::vector<QString>{QStringLiteral("Enter an appropriate Handname")});
    EXPECT_EQ(GetSavedHand(1), QStringLiteral("pair:AS,AH,,,,,"));
}

TEST_F(BoardTest, TheTransparencyItemChangesTheSettingForTheNextF3) {
    Start();
    dialogs.answers.push_back(QStringLiteral("50"));
    Action(*form, "mnuTransparency")->trigger();
    EXPECT_EQ(GetFelthawkSettings().transparency, 50);
    form->KeyDown(114);
    EXPECT_NEAR(form->windowOpacity(), 128 / 255.0, 0.002);  // 127.5 to the even 128
}

struct FakeServices : IUpdateService, IBannerService, IMailService, ICaptureService {
    int checks = 0, silentChecks = 0, banners = 0, mails = 0, passes = 0;
    void VersionProgram1(QWidget* splash) override {
        ++silentChecks;
        splash->close();
    }
    void VersionProgram2(QWidget*) override { ++checks; }
    void LoadBanners(QWidget*, QTextBrowser* view, QTimer* timer) override {
        ++banners;
        EXPECT_NE(view, nullptr);
        EXPECT_NE(timer, nullptr);
    }
    void ShowSendToFriend(QWidget*) override { ++mails; }
    void CapturePass(frmFelthawk& board) override {
        ++passes;
        board.mCards[0] = "AS";  // a pass fills cells and recalculates
        board.RecalculateHand();
    }
};

TEST_F(BoardTest, TheWindowCallsItsServices) {
    FakeServices fake;
    services = BoardServices{&fake, &fake, &fake, &fake, nullptr};
    Start();
    Action(*form, "mnuCheck")->trigger();
    Action(*form, "mnuSendFriend")->trigger();
    EXPECT_EQ(fake.checks, 1);
    EXPECT_EQ(fake.mails, 1);

    form->show();
    ASSERT_TRUE(QTest::qWaitForWindowActive(form.get()));
    EXPECT_EQ(fake.banners, 1);
    // A second activation loads nothing again.
    QWidget other;
    other.show();
    other.activateWindow();
    QTest::qWait(50);
    form->activateWindow();
    QTest::qWait(50);
    EXPECT_EQ(fake.banners, 1);

    form->ReadTimer()->setInterval(10);
    form->ReadTimer()->start();
    QTest::qWait(100);
    form->ReadTimer()->stop();
    EXPECT_GT(fake.passes, 0);
    EXPECT_EQ(Cells()[0], "AS");
    form->hide();
}

TEST(Splash, ClosesByItsTimerWithoutACheck) {
    frmSplash splash(nullptr);
    QElapsedTimer clock;
    clock.start();
    QTimer::singleShot(5000, &splash, &QDialog::reject);  // a guard, never reached
    splash.exec();
    EXPECT_GE(clock.elapsed(), 1900);
    EXPECT_LT(clock.elapsed(), 4500);
}

TEST(Splash, RunsTheSilentCheckOnceWhenActivated) {
    FakeServices fake;
    frmSplash splash(&fake);
    QTimer::singleShot(5000, &splash, &QDialog::reject);
    splash.exec();
    EXPECT_EQ(fake.silentChecks, 1);
    EXPECT_TRUE(splash.Busy());
}

TEST(InfoForms, CarryTheirTexts) {
    frmAbout about;
    EXPECT_EQ(about.windowTitle(), "About FeltHawk");
    EXPECT_EQ(about.lblVersion()->text(), "Version 10");
    EXPECT_TRUE(about.lblDescription()->text().contains(
        "probability,  Felthawk will allow you to focus on those other factors, improving your "
        "all-around game.\n\nFelthawk is FREE software"));
    EXPECT_TRUE(about.lblDescription()->text().endsWith("If you have a suggestion, please email"));
    EXPECT_EQ(about.Label1()->text(), SuggestionMail());
    EXPECT_EQ(RequirementsText(),
              "Processor \t:Intel Celeron 1.7 GHz or more\nMemory    \t:128 MB RAM\nDisk "
              "Space\t:6 MB Space\n");
}

}  // namespace
}  // namespace felthawk::testing

#include "board_window_test.moc"
