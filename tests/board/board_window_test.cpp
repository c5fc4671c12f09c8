// The window as a whole: transparency, the settings menu, help, saved hands,
// the services it calls and the capture layout.
#include <QDesktopServices>
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

// F3 (button 0) applies the setting, F4 makes it opaque but layered; a held
// press of the logical right button acts only above Y 1140. Releasing the
// menu button anywhere ends both.
TEST_F(BoardTest, F3AndTheHeldPressApplyTheSetting) {
    struct Case {
        const char *setting, *mouse;
        int button, y;
        bool acts;
        double opacity;
    };
    const Case cases[] = {
        {"100", "LEFT", 0, 0, true, 255 / 255.0},
        {"80", "LEFT", 0, 0, true, 204 / 255.0},
        {"80", "LEFT", kRightButton, 1139, true, 80 / 255.0},
        {"80", "LEFT", kRightButton, 1140, false, 1.0},
        {"80", "LEFT", kLeftButton, 100, false, 1.0},
        {"80", "RIGHT", kLeftButton, 100, true, 80 / 255.0},
    };
    QtWindowLayer layer;
    for (const Case& c : cases) {
        SCOPED_TRACE(std::string(c.setting) + " " + c.mouse + " button " +
                     std::to_string(c.button) + " y " + std::to_string(c.y));
        StoreSettings(QString::fromLatin1(c.setting), QString::fromLatin1(c.mouse));
        Start();
        EXPECT_FALSE(layer.IsLayered(form.get()));
        if (c.button == 0) {
            form->KeyDown(114);
        } else {
            form->FormMouseDown(c.button, 600, c.y);
        }
        EXPECT_EQ(layer.IsLayered(form.get()), c.acts);
        EXPECT_NEAR(form->windowOpacity(), c.opacity, 0.002);
        if (c.button == 0) {
            form->KeyDown(115);
            EXPECT_TRUE(layer.IsLayered(form.get()));
            EXPECT_NEAR(form->windowOpacity(), 1.0, 0.002);
            form->FormMouseUp(kRightButton, 0, 5000);
        } else {
            form->FormMouseUp(c.button, 600, c.y);
        }
        EXPECT_FALSE(layer.IsLayered(form.get()));
    }
}

TEST_F(BoardTest, TheSettingsMenuStoresAtOnceAndTheNextStartReadsIt) {
    Start();
    Action(*form, "mnuRightMouse")->trigger();
    EXPECT_TRUE(Action(*form, "mnuLeftMouse")->isChecked()) << "the tick waits for a restart";
    EXPECT_FALSE(GetFelthawkSettings().leftMouse) << "stored at once";
    form->DeckMouseDown(kSpadesRow, 5, kLeftButton, 0, 0);
    EXPECT_EQ(Cells()[0], "5S") << "the left button now toggles";
    dialogs.answers.push_back(QStringLiteral("50"));
    Action(*form, "mnuTransparency")->trigger();
    form->KeyDown(114);
    EXPECT_NEAR(form->windowOpacity(), 128 / 255.0, 0.002);

    Start();
    EXPECT_TRUE(Action(*form, "mnuRightMouse")->isChecked());
    EXPECT_EQ(form->Settings().transparency, 50);
}

class UrlRecorder : public QObject {
    Q_OBJECT
  public:
    std::vector<QString> opened;
  public slots:
    void Open(const QUrl& url) { opened.push_back(url.toString()); }
};

TEST_F(BoardTest, HelpOpensTheManualAndAboutTheMailAddressAndSaveStoresTheHand) {
    UrlRecorder recorder;
    for (const char* scheme : {"http", "https", "mailto"}) {
        QDesktopServices::setUrlHandler(QString::fromLatin1(scheme), &recorder, "Open");
    }
    Start();
    Action(*form, "mnuInstr")->trigger();
    frmAbout about(form.get());
    QTest::mouseClick(about.Label1(), Qt::LeftButton);
    for (const char* scheme : {"http", "https", "mailto"}) {
        QDesktopServices::unsetUrlHandler(QString::fromLatin1(scheme));
    }
    ASSERT_EQ(recorder.opened.size(), 2u);
    EXPECT_EQ(recorder.opened[0], QUrl(WebSite()).toString() + "/manual.html");
    EXPECT_TRUE(recorder.opened[1].startsWith("mailto:"));
    EXPECT_TRUE(recorder.opened[1].endsWith(SuggestionMail()));

    Action(*form, "mnuSave")->trigger();
    EXPECT_TRUE(dialogs.prompts.empty()) << "an empty table asks nothing";
    Type("ASAH");
    dialogs.answers.push_back(QStringLiteral("pair"));
    Action(*form, "mnuSave")->trigger();
    EXPECT_EQ(GetSavedHand(1), QStringLiteral("pair:AS,AH,,,,,"));
}

struct FakeServices : IUpdateService, IBannerService, IMailService, ICaptureService {
    int checks = 0, silentChecks = 0, banners = 0, mails = 0, passes = 0;
    void VersionProgram1(QWidget* splash) override {
        ++silentChecks;
        splash->close();
    }
    void VersionProgram2(QWidget*) override { ++checks; }
    void LoadBanners(QWidget*, QTextBrowser*, QTimer*) override { ++banners; }
    void ShowSendToFriend(QWidget*) override { ++mails; }
    void CapturePass(frmFelthawk&) override { ++passes; }
};

TEST_F(BoardTest, TheWindowCallsItsServicesAndCaptureSwitchesTheLayoutBack) {
    FakeServices fake;
    frmSplash splash(&fake);
    QTimer::singleShot(5000, &splash, &QDialog::reject);
    splash.exec();
    EXPECT_EQ(fake.silentChecks, 1);
    EXPECT_TRUE(splash.Busy());

    services = BoardServices{&fake, &fake, &fake, &fake, nullptr};
    Start();
    Action(*form, "mnuCheck")->trigger();
    Action(*form, "mnuSendFriend")->trigger();
    form->move(40, 120);
    form->show();
    ASSERT_TRUE(QTest::qWaitForWindowActive(form.get()));
    EXPECT_EQ(std::vector<int>({fake.checks, fake.mails, fake.banners}),
              std::vector<int>({1, 1, 1}));

    const QRect board = form->geometry();
    PictureBox* imSp = form->findChild<PictureBox*>(QStringLiteral("imSp"));
    QTest::mouseClick(imSp, Qt::LeftButton);
    form->ReadTimer()->setInterval(10);
    QTest::qWait(100);
    EXPECT_GT(fake.passes, 0);
    form->ApplyCaptureMode();
    EXPECT_EQ(form->height(), Px(990 + 80));
    EXPECT_FALSE(form->menuBar()->isVisible());
    QTest::qWait(50);
    EXPECT_EQ(form->centralWidget()->mapTo(form.get(), QPoint(0, 0)), QPoint(0, 0))
        << "the strip starts at the window's top";
    form->move(40, 400);

    QTest::mouseClick(imSp, Qt::LeftButton);
    EXPECT_FALSE(form->mCaptureOn);
    EXPECT_FALSE(form->ReadTimer()->isActive());
    EXPECT_EQ(form->geometry(), board) << "back where and as large as the board stood";
    EXPECT_EQ(form->windowTitle(), "Felthawk");
    EXPECT_FALSE(form->SmallImage()->isVisible());
    EXPECT_FALSE(form->TempImage(0)->isVisible());
    form->hide();
}

}  // namespace
}  // namespace felthawk::testing

#include "board_window_test.moc"
