// The online services against a real HTTP server on loopback (test_server.py
// serving a temporary folder): the version check, the upgrade download, and
// the banner strip with its list, default banner, rotation, page and click.
#include <gtest/gtest.h>
#include <QApplication>
#include <QBuffer>
#include <QDialog>
#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>
#include <QGuiApplication>
#include <QImage>
#include <QLabel>
#include <QProgressBar>
#include <QProgressDialog>
#include <QPushButton>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <QTextBrowser>
#include <QTextDocument>
#include <QTimer>
#include <QUrl>

#include <optional>
#include <stdexcept>
#include <vector>

#include "online/app_version.h"
#include "online/banner_service.h"
#include "online/desktop.h"
#include "online/frm_update.h"
#include "online/transfer.h"
#include "online/update_service.h"
#include "online_support.h"

namespace felthawk::testing {
namespace {

// Runs the event loop until `done` holds; false after `ms`.
template <class Done>
bool WaitFor(Done done, int ms = 15000) {
    return QTest::qWaitFor(done, ms);
}

// Until the version check has had its answer and run its dialogue.
void Settle(const UpdateService& service) {
    EXPECT_TRUE(WaitFor([&] { return !service.Checking(); }));
    // The dialogue runs from the event loop once the answer is in.
    QCoreApplication::processEvents();
}

// The files in `folder`, by name.
QStringList FilesIn(const QString& folder) {
    return QDir(folder).entryList(QDir::Files | QDir::Hidden, QDir::Name);
}

TEST(Val, ReadsTheLeadingNumberOnly) {
    const struct {
        const char* text;
        double value;
    } cases[] = {
        {"010", 10},    {"011", 11},  {"", 0},        {"abc", 0},    {"12abc", 12}, {" 1 1", 11},
        {"\t2\n3", 23}, {"-5", -5},   {"+7", 7},      {"3.5x", 3.5}, {".", 0},      {"-", 0},
        {"5.", 5},      {"1e2", 100}, {"1D2", 100},   {"2e", 2},     {"2e-1", 0.2}, {"&H1F", 31},
        {"&o17", 15},   {"&H", 0},    {"1.2.3", 1.2}, {"x11", 0},
    };
    for (const auto& c : cases) EXPECT_DOUBLE_EQ(Val(QString::fromUtf8(c.text)), c.value) << c.text;
}

TEST(OnlineConfig, DefaultServerWhenTheEnvironmentNamesNone) {
    qputenv("FELTHAWK_SERVER", "");
    EXPECT_EQ(OnlineConfig::FromEnvironment().server, NormalizeServer(FELTHAWK_SERVER_DEFAULT));
}

// Answered No: the splash closes, the menu says so when nothing is offered.
TEST(VersionCheck, SplashAndMenuAgainstARealServer) {
    const struct {
        const char* name;
        const char* prefix;       // below the server; nullptr: the server is down
        const char* versionFile;  // nullptr: as before
        bool fromMenu;
        bool offered;
    } cases[] = {
        {"010 at start", "", R"(a="0" b="1" c="0")", false, false},
        {"010 on demand", "", R"(a="0" b="1" c="0")", true, false},
        {"011 at start", "", R"(a="0" b="1" c="1")", false, true},
        {"011 on demand", "", R"(a="0" b="1" c="1")", true, true},
        {"empty document", "", "", true, false},
        {"missing file", "none/", nullptr, true, false},
        // Short joins: "12" is above this build, "09" is not.
        {"missing attribute, 12", "", R"(a="1" b="2")", true, true},
        {"missing attribute, 09", "", R"(a="0" b="9")", true, false},
        // Attributes by position: alphabetical order would give "001".
        {"order, not names", "", R"(z="1" a="0" m="0")", true, true},
        {"fourth ignored", "", R"(a="0" b="1" c="0" d="9")", true, false},
        {"digest after the parts", "", R"(a="0" b="1" c="0" SHA256="11")", true, false},
        {"points taken out", "", R"(a="1.2" b="." c="3")", true, true},
        {"first of two", "",
         R"(<APPLICATION><CURRENTVERSION a="0" b="1" c="0"/><CURRENTVERSION a="9"/></APPLICATION>)",
         true, false},
        {"too deep", "", R"(<APPLICATION><X><CURRENTVERSION a="1" b="1" c="1"/></X></APPLICATION>)",
         true, false},
        {"down at start", nullptr, nullptr, false, false},
        {"down on demand", nullptr, nullptr, true, false},
    };
    TestServer server;
    QTemporaryDir folder;
    for (const auto& c : cases) {
        if (c.versionFile)
            server.Put(QString::fromLatin1(kVersionPath), VersionFile(c.versionFile));
        const QString base = c.prefix ? server.Base(c.prefix) : DownServer();
        FakeDialogs dialogs;
        FakeDesktop desktop;
        UpdateService service(dialogs, desktop, ConfigFor(base, folder.path()));
        QDialog splash;
        splash.show();
        if (c.fromMenu)
            service.VersionProgram2(&splash);
        else
            service.VersionProgram1(&splash);
        Settle(service);
        EXPECT_EQ(dialogs.questions.size(), c.offered ? 1 : 0) << c.name;
        EXPECT_EQ(dialogs.messages, c.fromMenu && !c.offered
                                        ? QStringList{"No Upgrades found, Please try later"}
                                        : QStringList{})
            << c.name;
        // The splash closes; on demand there is none to close.
        EXPECT_EQ(splash.isVisible(), c.fromMenu) << c.name;
        EXPECT_FALSE(service.UpdateChosen()) << c.name;
        EXPECT_TRUE(desktop.opened.empty()) << c.name;
    }
}

// The installer is kept and opened only when whole and as published; the
// program's folder then holds FHawk.msi and nothing half-written.
TEST(VersionCheck, YesDownloadsVerifiesLaunchesAndEnds) {
    const QByteArray installer("MSI\0installer bytes", 19);
    const QByteArray older("an older and longer installer");
    const struct {
        const char* name;
        bool fromSplash;
        const char* installerBehaviour;  // nullptr: served as it is; "": not on the server
        QByteArray published;            // the SHA256 attribute; "" for none
        bool folderBlocked;              // the program's folder cannot be made
        QString message;
        bool asked;  // the installer was asked for
    } cases[] = {
        {"from the splash", true, nullptr, Sha256(installer), false, frmUpdate::kClosing, true},
        {"from the menu, digest in capitals", false, nullptr, Sha256(installer).toUpper(), false,
         frmUpdate::kClosing, true},
        {"no installer", true, "", Sha256(installer), false, frmUpdate::kTransferFailed, true},
        {"other bytes", true, nullptr, Sha256("other bytes"), false, frmUpdate::kNotVerified, true},
        {"no digest", false, nullptr, "", false, frmUpdate::kNotVerified, false},
        {"digest not hexadecimal", false, nullptr, QByteArray(64, 'g'), false,
         frmUpdate::kNotVerified, false},
        {"endless body", true, "endless", Sha256(installer), false, frmUpdate::kTransferFailed,
         true},
        {"4 GiB announced", true, "huge", Sha256(installer), false, frmUpdate::kTransferFailed,
         true},
        {"no program folder", false, nullptr, Sha256(installer), true, frmUpdate::kUnexpected,
         false},
    };
    for (const auto& c : cases) {
        TestServer server;
        QTemporaryDir folder;
        server.Put(QString::fromLatin1(kVersionPath),
                   VersionFile(R"(a="0" b="1" c="1" SHA256=")" + c.published + '"'));
        if (!c.installerBehaviour || *c.installerBehaviour)
            server.Put(QString::fromLatin1(kInstallerPath), installer);
        if (c.installerBehaviour && *c.installerBehaviour)
            server.Misbehave(QString::fromLatin1(kInstallerPath), c.installerBehaviour);
        const QString saved = folder.filePath(QStringLiteral("FHawk.msi"));
        QFile old(saved);
        ASSERT_TRUE(old.open(QIODevice::WriteOnly) && old.write(older) == older.size());
        old.close();
        // Below a file: the folder cannot be made.
        const QString programFolder = c.folderBlocked ? "/dev/null/sub" : folder.path();
        FakeDialogs dialogs;
        dialogs.answerYes = true;
        FakeDesktop desktop;
        UpdateService service(dialogs, desktop, ConfigFor(server.Base(), programFolder));
        QDialog splash;
        splash.show();
        if (c.fromSplash)
            service.VersionProgram1(&splash);
        else
            service.VersionProgram2(&splash);
        Settle(service);
        const bool installed = c.message == frmUpdate::kClosing;
        EXPECT_EQ(dialogs.questions,
                  QStringList{"There is a new version of FeltHawk, Do you want to download ?"});
        EXPECT_TRUE(service.UpdateChosen()) << c.name;
        // However the download ends, the splash does not stay.
        EXPECT_EQ(splash.isVisible(), !c.fromSplash) << c.name;
        EXPECT_EQ(dialogs.messages, QStringList{c.message}) << c.name;
        EXPECT_EQ(ReadFile(saved), installed ? installer : older) << c.name;
        EXPECT_EQ(FilesIn(folder.path()), QStringList{"FHawk.msi"}) << c.name;
        EXPECT_EQ(desktop.opened,
                  installed ? std::vector{QUrl::fromLocalFile(saved)} : std::vector<QUrl>{})
            << c.name;
        EXPECT_EQ(desktop.ended, installed ? 1 : 0) << c.name;
        EXPECT_EQ(server.Requests().contains(QString::fromLatin1(kInstallerPath)), c.asked)
            << c.name;
    }
}

// Cancel ends the wait at once, says nothing, and leaves nothing behind.
TEST(VersionCheck, CancelStopsTheWaitAndTheDownload) {
    TestServer server;
    QTemporaryDir folder;
    const QByteArray installer("never whole");
    server.Put(QString::fromLatin1(kVersionPath),
               VersionFile(R"(a="0" b="1" c="1" SHA256=")" + Sha256(installer) + '"'));
    server.Put(QString::fromLatin1(kInstallerPath), installer);
    server.Misbehave(QString::fromLatin1(kInstallerPath), "hang");
    QWidget board;
    board.show();

    // The question itself hangs: the menu's check waits with a Cancel.
    {
        FakeDialogs dialogs;
        FakeDesktop desktop;
        UpdateService service(dialogs, desktop, ConfigFor(server.Base("hang/"), folder.path()));
        service.VersionProgram2(&board);
        auto* waiting = board.findChild<QProgressDialog*>(QStringLiteral("frmChecking"));
        ASSERT_NE(waiting, nullptr);
        EXPECT_TRUE(waiting->isVisible());
        EXPECT_EQ(QGuiApplication::overrideCursor() ? QGuiApplication::overrideCursor()->shape()
                                                    : Qt::ArrowCursor,
                  Qt::BusyCursor);
        QTest::qWait(300);
        EXPECT_TRUE(service.Checking());
        QTest::mouseClick(waiting->findChild<QPushButton*>(), Qt::LeftButton);
        Settle(service);
        EXPECT_EQ(QGuiApplication::overrideCursor(), nullptr);
        EXPECT_TRUE(dialogs.messages.isEmpty());
        EXPECT_TRUE(dialogs.questions.isEmpty());
    }
    // The installer hangs: frmUpdate's Cancel.
    FakeDialogs dialogs;
    dialogs.answerYes = true;
    FakeDesktop desktop;
    UpdateService service(dialogs, desktop, ConfigFor(server.Base(), folder.path()));
    bool cancelled = false;
    QTimer poll;
    QObject::connect(&poll, &QTimer::timeout, [&] {
        auto* update = board.findChild<QDialog*>(QStringLiteral("frmUpdate"));
        if (!update || cancelled || !server.Requests().contains(kInstallerPath)) return;
        EXPECT_EQ(update->findChild<QProgressBar*>(QStringLiteral("ProgressBar1"))->maximum(), 0);
        update->findChild<QPushButton*>(QStringLiteral("cmdCancel"))->click();
        cancelled = true;
    });
    poll.start(100);
    service.VersionProgram2(&board);
    Settle(service);
    EXPECT_TRUE(cancelled);
    EXPECT_TRUE(WaitFor([&] { return !board.findChild<QDialog*>(QStringLiteral("frmUpdate")); }));
    EXPECT_TRUE(dialogs.messages.isEmpty());
    EXPECT_TRUE(FilesIn(folder.path()).isEmpty());
    EXPECT_TRUE(desktop.opened.empty());
}

QByteArray Png(int width, int height) {
    QImage image(width, height, QImage::Format_RGB32);
    image.fill(Qt::darkGreen);
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, "PNG");
    return bytes;
}

QByteArray Entry(const QString& path, const QString& small, const char* duration,
                 const QString& reference) {
    return QStringLiteral(
               "<banner><Path>%1</Path><SmallPath>%2</SmallPath><Duration>%3</Duration>"
               "<Reference>%4</Reference></banner>")
        .arg(path, small, QString::fromLatin1(duration), reference)
        .toUtf8();
}

// The main window as far as the strip is concerned (Picture1 holding the
// banner view, the compact backdrop imgSmall, Timer1) with its strip loaded.
struct Strip {
    Strip(const QString& server, const QString& folder)
        : folder(folder), service(desktop, ConfigFor(server, folder)) {
        picture->setObjectName(QStringLiteral("Picture1"));
        small->setObjectName(QStringLiteral("imgSmall"));
        small->hide();
        picture->hide();
        window.show();
        service.LoadBanners(&window, view, &timer);
        EXPECT_TRUE(WaitFor([&] { return !service.Loading(); }));
    }
    // temp.htm as written, and as it should be for `fileName` and `refLink`.
    QString Page() const { return QString::fromUtf8(ReadFile(folder + "/temp.htm")); }
    static QString Page(const QString& fileName, const QString& refLink) {
        return QString::fromLatin1(kBannerTemplate)
                   .replace(QStringLiteral("<<REFLINK>>"), refLink.toHtmlEscaped())
                   .replace(QStringLiteral("<<FILENAME>>"), fileName.toHtmlEscaped()) +
               u'\n';
    }

    QString folder;
    QWidget window;
    QWidget* picture = new QWidget(&window);
    QLabel* small = new QLabel(&window);
    QTextBrowser* view = new QTextBrowser(picture);
    QTimer timer;
    FakeDesktop desktop;
    BannerService service;
};

TEST(Banners, TwoBannersRotateOnTheirOwnIntervals) {
    TestServer server;
    QTemporaryDir folder;
    const QString one = server.Base() + "pics/one.png", two = server.Base() + "pics/two.png";
    const QString small = server.Base() + "pics/s1.png";
    server.Put(QStringLiteral("pics/one.png"), Png(60, 12));
    server.Put(QStringLiteral("pics/two.png"), Png(30, 20));
    server.Put(QString::fromLatin1(kBannerListPath),
               "<banners>" + Entry(one, small, "1", "http://one.example/") +
                   Entry(two, small, "2", "http://two.example/") + "</banners>");
    Strip strip(server.Base(), folder.path());
    ASSERT_EQ(strip.service.List().Count(), 2);
    EXPECT_TRUE(strip.timer.isActive());
    EXPECT_EQ(strip.timer.interval(), kFirstBannerMs);

    const struct {
        QString picture, link;
        QSize size;
        int interval;
    } banners[] = {{one, "http://one.example/", {60, 12}, 1000},
                   {two, "http://two.example/", {30, 20}, 2000}};
    QSignalSpy ticks(&strip.timer, &QTimer::timeout);
    std::optional<double> pageMargin;
    for (int tick = 0; tick < 4; ++tick) {  // 1, 2, 1, 2
        const auto& step = banners[tick % 2];
        ASSERT_TRUE(WaitFor([&] { return ticks.size() > tick; }, 5000));
        EXPECT_EQ(strip.Page(), Strip::Page(step.picture, step.link));
        EXPECT_EQ(strip.view->source(), QUrl::fromLocalFile(folder.filePath("temp.htm")));
        EXPECT_TRUE(strip.picture->isVisible());
        // The picture comes in its own time, the first time from the server.
        QTextDocument* page = strip.view->document();
        EXPECT_TRUE(WaitFor([&] {
            return page->resource(QTextDocument::ImageResource, QUrl(step.picture))
                       .value<QImage>()
                       .size() == step.size;
        }));
        // Laid out at its own height: the page adds the same margin to both.
        if (!pageMargin) pageMargin = page->size().height() - step.size.height();
        EXPECT_EQ(page->size().height() - step.size.height(), *pageMargin);
        EXPECT_EQ(strip.timer.interval(), step.interval);
        EXPECT_TRUE(strip.timer.isActive());
    }
    // The list once, and each picture once however often it shows.
    EXPECT_EQ(server.Requests().toStdString(),
              "/member/banners/banner.php /pics/one.png /pics/two.png");

    // The compact window shows the small pictures.
    strip.small->show();
    strip.service.Timer1();
    EXPECT_EQ(strip.Page(), Strip::Page(small, "http://one.example/"));

    // A click on the banner goes to the desktop's browser, not into the strip.
    emit strip.view->anchorClicked(QUrl(QStringLiteral("http://one.example/")));
    EXPECT_EQ(strip.desktop.opened, std::vector{QUrl(QStringLiteral("http://one.example/"))});
}

TEST(Banners, UnreadableListGivesTheDefaultBanner) {
    TestServer server;
    server.Put(QString::fromLatin1(kBannerListPath), "");
    const struct {
        const char* name;
        QString base;
    } cases[] = {
        {"server down", DownServer()},
        {"empty document", server.Base()},
        {"no list", server.Base("none/")},
    };
    for (const auto& c : cases) {
        QTemporaryDir folder;
        Strip strip(c.base, folder.path());
        ASSERT_EQ(strip.service.List().Count(), 1) << c.name;
        const Banner& banner = *strip.service.List().begin();
        EXPECT_TRUE(banner.Path.endsWith(QStringLiteral("/Default.gif"))) << c.name;
        EXPECT_TRUE(QFile::exists(banner.Reference)) << c.name;
        EXPECT_TRUE(strip.timer.isActive()) << c.name;

        strip.service.Timer1();
        EXPECT_EQ(strip.Page(), Strip::Page(banner.Path, banner.Reference)) << c.name;
        EXPECT_EQ(strip.timer.interval(), 30000) << c.name;
        // The local picture, 61 pixels high, is found and laid out.
        EXPECT_GE(strip.view->document()->size().height(), 61) << c.name;

        // The default link, a path with blanks, opens as a local file.
        emit strip.view->anchorClicked(QUrl(banner.Reference));
        EXPECT_EQ(strip.desktop.opened, std::vector{QUrl::fromLocalFile(banner.Reference)})
            << c.name;
    }
}

// The list's banners are read by position: the first node's children, each
// with Path, SmallPath, Duration and Reference as its first four children.
TEST(Banners, ListsAndDurationsThatRunStopOrNeverStartTheStrip) {
    TestServer server;
    auto one = [](const char* duration) {
        return "<b>" + Entry("a.png", "s.png", duration, "http://r/") + "</b>";
    };
    const struct {
        const char* name;
        QByteArray list;
        int count;
        bool started;
        int intervalAfterFirstBanner;  // 0: the timer has stopped
    } cases[] = {
        {"duration 0 stops", one("0"), 1, true, 0},
        {"duration 70", one("70"), 1, true, 70000},
        // A negative interval is refused and the old one stays.
        {"duration -5", one("-5"), 1, true, kFirstBannerMs},
        // Whole seconds, rounded half to even, within 16 bits.
        {"duration 2.5", one(" 2.5 "), 1, true, 2000},
        {"duration 3.5", one("3.5"), 1, true, 4000},
        {"duration 32768", one("32768"), 1, false, 0},
        {"duration soon", one("soon"), 1, false, 0},
        {"names not read", "<x><y><R>a.gif</R><P>b</P><q> 7 </q><w>c</w><e>more</e></y></x>", 1,
         true, 7000},
        // Parsed but empty: the timer runs and nothing is ever shown.
        {"no banners", "<banners/>", 0, true, kFirstBannerMs},
        {"first node a comment", "<!-- c --><b>" + Entry("a", "s", "5", "r") + "</b>", 0, true,
         kFirstBannerMs},
        // A banner short of its link, then the default banner under "A1".
        {"short banner", "<b><x><p>a.png</p><s>s</s><d>5</d></x></b>", 2, true, 5000},
        // The default banner's key is taken by the second banner: no strip.
        {"short second banner", one("5").chopped(4) + "<x><p>b.png</p></x></b>", 2, false, 0},
    };
    for (const auto& c : cases) {
        server.Put(QString::fromLatin1(kBannerListPath), c.list);
        QTemporaryDir folder;
        Strip strip(server.Base(), folder.path());
        EXPECT_EQ(strip.service.List().Count(), c.count) << c.name;
        EXPECT_EQ(strip.timer.isActive(), c.started) << c.name;
        if (!c.started) continue;
        strip.service.Timer1();
        EXPECT_EQ(QFile::exists(folder.filePath("temp.htm")), c.count > 0) << c.name;
        const int interval = strip.timer.isActive() ? strip.timer.interval() : 0;
        EXPECT_EQ(interval, c.intervalAfterFirstBanner) << c.name;
    }
}

TEST(Banners, LoadsOnlyOnceAndGivesUpOnADeadPictureOnce) {
    TestServer server;
    QTemporaryDir folder;
    const QString dead = server.Base("hang/") + "dead.png";
    server.Put(QString::fromLatin1(kBannerListPath),
               "<b>" + Entry(dead, "", "5", "http://r.example/") + "</b>");
    Strip strip(server.Base(), folder.path());
    strip.service.LoadBanners(&strip.window, strip.view, &strip.timer);
    for (int tick = 0; tick < 3; ++tick) strip.service.Timer1();
    EXPECT_EQ(strip.service.List().Count(), 1);
    EXPECT_EQ(strip.Page(), Strip::Page(dead, "http://r.example/"));
    EXPECT_EQ(server.Requests().toStdString(), "/member/banners/banner.php /hang/dead.png");
}

TEST(SampleServerTree, IsReadAsDeployed) {
    TestServer server;
    const QDir tree(QStringLiteral(FELTHAWK_SAMPLE_SERVER_TREE));
    for (QDirIterator it(tree.path(), QDir::Files, QDirIterator::Subdirectories); it.hasNext();) {
        const QString path = it.next();
        server.Put(tree.relativeFilePath(path), ReadFile(path));
    }
    QTemporaryDir folder;
    // As a deployer may write the server: without its trailing "/".
    const QString base = server.Base().chopped(1);
    Strip strip(base, folder.path());
    QStringList read;
    for (const Banner& banner : strip.service.List())
        read << QStringLiteral("%1 %2").arg(QFileInfo(banner.Path).fileName()).arg(banner.Duration);
    EXPECT_EQ(read, QStringList({"felthawk.gif 20", "felthawk.gif 10"}));
    EXPECT_TRUE(strip.timer.isActive());
    // Its pictures are on the deployed host, which the tests never ask.
    strip.timer.stop();
    // The sample names this very build: nothing to offer.
    FakeDialogs dialogs;
    UpdateService service(dialogs, strip.desktop, ConfigFor(base, folder.path()));
    service.VersionProgram2(nullptr);
    Settle(service);
    EXPECT_EQ(dialogs.messages, QStringList{"No Upgrades found, Please try later"});
}

}  // namespace
}  // namespace felthawk::testing

int main(int argc, char** argv) {
    // Test discovery runs without the test environment; there is no display.
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
