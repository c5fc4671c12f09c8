// The window as a whole: transparency keys and the held press, the settings
// menu, the capture layout, the help pages, saved hands and the services the
// window calls.
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

// F3 (button 0 here) makes the window see-through by the setting, F4 opaque
// but still layered; a held press of the logical right button does it only
// in the top band. Releasing the menu button anywhere ends both.
TEST_F(BoardTest, F3AndTheHeldPressApplyTheSetting) {
    struct Case {
        const char* setting;
        const char* mouse;
        int button;
        int y;
        bool acts;
        double opacity;
    };
    const Case cases[] = {
        {"100", "LEFT", 0, 0, true, 255 / 255.0},
        {"80", "LEFT", 0, 0, true, 204 / 255.0},
        {"30", "LEFT", 0, 0, true, 76 / 255.0},
        {"80", "LEFT", kRightButton, 1139, true, 80 / 255.0},
        {"80", "LEFT", kRightButton, 1140, false, 1.0},
        {"30", "LEFT", kRightButton, 0, true, 76 / 255.0},
        {"80", "LEFT", kLeftButton, 100, false, 1.0},
        {"80", "RIGHT", kLeftButton, 100, true, 80 / 255.0},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(std::string(c.setting) + " " + c.mouse + " button " +
                     std::to_string(c.button) + " y " + std::to_string(c.y));
        StoreSettings(QString::fromLatin1(c.setting), QString::fromLatin1(c.mouse));
        Start();
        EXPECT_FALSE(Layered(*form));
        if (c.button == 0) {
            form->KeyDown(114);
        } else {
            form->FormMouseDown(c.button, 600, c.y);
        }
        EXPECT_EQ(Layered(*form), c.acts);
        EXPECT_NEAR(form->windowOpacity(), c.opacity, 0.002);
        if (c.button == 0) {
            form->KeyDown(115);
            EXPECT_TRUE(Layered(*form));
            EXPECT_NEAR(form->windowOpacity(), 1.0, 0.002);
            form->FormMouseUp(kRightButton, 0, 5000);
        } else {
            form->FormMouseUp(c.button, 600, c.y);
        }
        EXPECT_FALSE(Layered(*form));
    }
}

TEST_F(BoardTest, TheSettingsMenuStoresAtOnceAndTheNextStartReadsIt) {
    Start();
    QAction* left = Action(*form, "mnuLeftMouse");
    QAction* right = Action(*form, "mnuRightMouse");
    EXPECT_TRUE(left->isChecked());
    EXPECT_FALSE(right->isChecked());
    right->trigger();
    EXPECT_TRUE(left->isChecked()) << "the tick stays until the next start";
    EXPECT_FALSE(right->isChecked());
    EXPECT_FALSE(GetFelthawkSettings().leftMouse) << "stored at once";
    form->DeckMouseDown(kSpadesRow, 5, kLeftButton, 0, 0);
    EXPECT_EQ(Cells()[0], "5S") << "the left button now toggles";

    dialogs.answers.push_back(QStringLiteral("50"));
    Action(*form, "mnuTransparency")->trigger();
    EXPECT_EQ(GetFelthawkSettings().transparency, 50);
    form->KeyDown(114);
    EXPECT_NEAR(form->windowOpacity(), 128 / 255.0, 0.002);  // 127.5 to the even 128

    Start();
    EXPECT_FALSE(Action(*form, "mnuLeftMouse")->isChecked());
    EXPECT_TRUE(Action(*form, "mnuRightMouse")->isChecked());
    EXPECT_EQ(form->Settings().transparency, 50);
}

// Records the addresses handed to the desktop instead of opening them.
class UrlRecorder : public QObject {
    Q_OBJECT
  public:
    std::vector<QString> opened;
  public slots:
    void Open(const QUrl& url) { opened.push_back(url.toString()); }
};

TEST_F(BoardTest, HelpItemsOpenTheSiteAndTheMailAddresses) {
    UrlRecorder recorder;
    const char* schemes[] = {"http", "https", "mailto"};
    for (const char* scheme : schemes) {
        QDesktopServices::setUrlHandler(QString::fromLatin1(scheme), &recorder, "Open");
    }
    Start();
    frmAbout about(form.get());
    struct Case {
        const char* item;  // a menu item, or null for the address in About
        QString head, tail;
    };
    const QString site = QUrl(WebSite()).toString();
    const Case cases[] = {
        {"mnuInstr", site + "/manual.html", "manual.html"},
        {"mnuFAQ", site + "/faq.html", "faq.html"},
        {"mnuVisit", site, site},
        {"mnuContactUs", "mailto:", SupportMail()},
        {nullptr, "mailto:", SuggestionMail()},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.item != nullptr ? c.item : "About");
        recorder.opened.clear();
        if (c.item != nullptr) {
            Action(*form, c.item)->trigger();
        } else {
            QTest::mouseClick(about.Label1(), Qt::LeftButton);
        }
        ASSERT_EQ(recorder.opened.size(), 1u);
        EXPECT_TRUE(recorder.opened[0].startsWith(c.head)) << recorder.opened[0].toStdString();
        EXPECT_TRUE(recorder.opened[0].endsWith(c.tail)) << recorder.opened[0].toStdString();
    }
    for (const char* scheme : schemes)
        QDesktopServices::unsetUrlHandler(QString::fromLatin1(scheme));
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

struct FakeServices : IUpdateService, IBannerService, IMailService, ICaptureService {
    int checks = 0, silentChecks = 0, banners = 0, mails = 0, passes = 0;
    void VersionProgram1(QWidget* splash) override {
        ++silentChecks;
        splash->close();
    }
    void VersionProgram2(QWidget*) override { ++checks; }
    void LoadBanners(QWidget*, QTextBrowser* view, QTimer* timer) override {
        banners += view != nullptr && timer != nullptr ? 1 : 100;
    }
    void ShowSendToFriend(QWidget*) override { ++mails; }
    void CapturePass(frmFelthawk& board) override {
        ++passes;
        board.mCards[0] = "AS";  // a pass fills cells and recalculates
        board.RecalculateHand();
    }
};

TEST_F(BoardTest, TheWindowCallsItsServicesAndCaptureSwitchesTheLayout) {
    FakeServices fake;
    services = BoardServices{&fake, &fake, &fake, &fake, nullptr};
    Start();
    Action(*form, "mnuCheck")->trigger();
    Action(*form, "mnuSendFriend")->trigger();
    EXPECT_EQ(fake.checks, 1);
    EXPECT_EQ(fake.mails, 1);

    form->move(40, 120);
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

    const int boardTop = form->y();
    const int fullHeight = form->height();
    PictureBox* imSp = form->findChild<PictureBox*>(QStringLiteral("imSp"));
    QWidget* banner = form->findChild<QWidget*>(QStringLiteral("Picture1"));
    const QRect fullBanner = banner->geometry();
    QTest::mouseClick(imSp, Qt::LeftButton);
    EXPECT_TRUE(form->mCaptureOn);
    EXPECT_EQ(form->height(), fullHeight) << "armed: the window waits for the client";
    form->ReadTimer()->setInterval(10);
    QTest::qWait(100);
    EXPECT_GT(fake.passes, 0);
    EXPECT_EQ(Cells()[0], "AS");

    form->ApplyCaptureMode();  // what a pass does when it finds the client
    EXPECT_EQ(form->windowTitle(), "");
    EXPECT_FALSE(form->menuBar()->isVisible());
    EXPECT_EQ(form->height(), Px(990 + 80));
    EXPECT_TRUE(form->SmallImage()->isVisible());
    for (int i = 0; i < kCellCount; ++i) EXPECT_TRUE(form->TempImage(i)->isVisible());
    EXPECT_TRUE(form->findChild<QLabel*>(QStringLiteral("LBLSUG"))->isVisible());
    EXPECT_NE(banner->geometry(), fullBanner);
    form->move(40, 400);

    QTest::mouseClick(imSp, Qt::LeftButton);
    EXPECT_FALSE(form->mCaptureOn);
    EXPECT_FALSE(form->ReadTimer()->isActive());
    EXPECT_EQ(form->y(), boardTop) << "back where the board stood";
    EXPECT_EQ(form->windowTitle(), "Felthawk");
    EXPECT_EQ(form->height(), fullHeight);
    EXPECT_FALSE(form->SmallImage()->isVisible());
    EXPECT_FALSE(form->TempImage(0)->isVisible());
    EXPECT_EQ(banner->geometry(), fullBanner);
    form->hide();
}

// Without a service the splash closes by its timer; with one, the silent
// check runs once when it is activated and holds the timer off.
TEST(Splash, ClosesByItsTimerOrRunsTheSilentCheckOnce) {
    frmSplash alone(nullptr);
    QElapsedTimer clock;
    clock.start();
    QTimer::singleShot(5000, &alone, &QDialog::reject);  // a guard, never reached
    alone.exec();
    EXPECT_GE(clock.elapsed(), 1900);
    EXPECT_LT(clock.elapsed(), 4500);

    FakeServices fake;
    frmSplash checked(&fake);
    QTimer::singleShot(5000, &checked, &QDialog::reject);
    checked.exec();
    EXPECT_EQ(fake.silentChecks, 1);
    EXPECT_TRUE(checked.Busy());
}

}  // namespace
}  // namespace felthawk::testing

#include "board_window_test.moc"
