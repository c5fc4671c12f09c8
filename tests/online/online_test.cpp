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
#include <QImage>
#include <QLabel>
#include <QProcess>
#include <QSignalSpy>
#include <QTcpServer>
#include <QTemporaryDir>
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
#include "online/mod_upgrade.h"
#include "online/transfer.h"
#include "online/update_service.h"
#include "settings/dialogs.h"

namespace felthawk {
namespace {

class FakeDialogs : public IDialogs {
  public:
    QString InputBox(QWidget*, const QString&, const QString&, const QString&, bool*) override {
        ADD_FAILURE() << "the online services never ask for input";
        return {};
    }
    void MessageBox(QWidget*, const QString& text, const QString&, MessageIcon icon) override {
        messages << text;
        EXPECT_EQ(icon, MessageIcon::Information) << text.toStdString();
    }
    bool AskYesNo(QWidget*, const QString& text, const QString&) override {
        questions << text;
        return answerYes;
    }

    bool answerYes = false;  // to every Yes/No question
    QStringList questions;
    QStringList messages;
};

class FakeDesktop : public IDesktop {
  public:
    bool OpenUrl(const QUrl& url) override {
        opened.push_back(url);
        return true;
    }
    void EndProgram() override { ++ended; }

    std::vector<QUrl> opened;
    int ended = 0;
};

QByteArray ReadFile(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

// test_server.py on a free loopback port; it stops with the object.
class TestServer {
  public:
    TestServer() {
        process_.start(QStringLiteral("python3"),
                       {QStringLiteral(FELTHAWK_TEST_SERVER_SCRIPT), root_.path()});
        if (!process_.waitForStarted(10000) || !process_.waitForReadyRead(10000))
            throw std::runtime_error("the test server did not start");
        port_ = process_.readLine().trimmed().toInt();
    }
    ~TestServer() {
        process_.closeWriteChannel();
        if (!process_.waitForFinished(3000)) process_.kill();
        process_.waitForFinished(3000);
    }

    // Writes `bytes` at `path` below the served folder.
    void Put(const QString& path, const QByteArray& bytes) const {
        const QString full = root_.filePath(path);
        QDir().mkpath(QFileInfo(full).path());
        QFile file(full);
        if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size())
            throw std::runtime_error("cannot write " + full.toStdString());
    }
    // "http://127.0.0.1:<port>/" followed by `prefix` ("", "hang/", "slow/").
    QString Base(const QString& prefix = {}) const {
        return QStringLiteral("http://127.0.0.1:%1/%2").arg(port_).arg(prefix);
    }
    // The paths asked for so far, in order, joined by blanks. Each path is
    // written before its answer: a short wait collects all.
    QString Requests() {
        while (process_.waitForReadyRead(200)) {
        }
        while (process_.canReadLine()) {
            const QByteArray line = process_.readLine().trimmed();
            if (!line.isEmpty()) requests_ << QString::fromUtf8(line);
        }
        return requests_.join(u' ');
    }

  private:
    QTemporaryDir root_;
    QProcess process_;
    int port_ = 0;
    QStringList requests_;
};

// A loopback port that nothing listens on.
QString DownServer() {
    QTcpServer probe;
    probe.listen(QHostAddress::LocalHost, 0);
    return QStringLiteral("http://127.0.0.1:%1/").arg(probe.serverPort());
}

// The program's configuration with FELTHAWK_SERVER set to `server`, writing
// to `programFolder`, with a short bound.
OnlineConfig ConfigFor(const QString& server, const QString& programFolder, int timeoutMs = 3000) {
    qputenv("FELTHAWK_SERVER", server.toUtf8());
    OnlineConfig config = OnlineConfig::FromEnvironment();
    config.programFolder = programFolder;
    config.fetchTimeoutMs = timeoutMs;
    return config;
}

const QString kTransferFailed =
    QStringLiteral("An error has occured in the file transfer or write.  Please try again later.");

// `text` when it is "" or a whole document, else CURRENTVERSION's attributes.
QByteArray VersionFile(const char* text) {
    if (!*text || *text == '<') return text;
    return QByteArray("<?xml version=\"1.0\"?>\n<APPLICATION>\n  <CURRENTVERSION ") + text +
           "/>\n</APPLICATION>\n";
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
        {"points taken out", "", R"(a="1.2" b="." c="3")", true, true},
        {"first of two", "",
         R"(<APPLICATION><CURRENTVERSION a="0" b="1" c="0"/><CURRENTVERSION a="9"/></APPLICATION>)",
         true, false},
        {"too deep", "", R"(<APPLICATION><X><CURRENTVERSION a="1" b="1" c="1"/></X></APPLICATION>)",
         true, false},
        {"down at start", nullptr, nullptr, false, false},
        {"down on demand", nullptr, nullptr, true, false},
        {"never answers at start", "hang/", nullptr, false, false},
        {"never answers on demand", "hang/", nullptr, true, false},
    };
    TestServer server;
    QTemporaryDir folder;
    for (const auto& c : cases) {
        if (c.versionFile)
            server.Put(QString::fromLatin1(kVersionPath), VersionFile(c.versionFile));
        const QString base = c.prefix ? server.Base(c.prefix) : DownServer();
        FakeDialogs dialogs;
        FakeDesktop desktop;
        UpdateService service(dialogs, desktop, ConfigFor(base, folder.path(), 500));
        QDialog splash;
        splash.show();
        if (c.fromMenu)
            service.VersionProgram2(&splash);
        else
            service.VersionProgram1(&splash);
        EXPECT_EQ(dialogs.questions.size(), c.offered ? 1 : 0) << c.name;
        EXPECT_EQ(dialogs.messages, c.fromMenu && !c.offered
                                        ? QStringList{"No Upgrades found, Please try later"}
                                        : QStringList{})
            << c.name;
        EXPECT_EQ(splash.isVisible(), c.fromMenu) << c.name;
        EXPECT_FALSE(service.UpdateChosen()) << c.name;
        EXPECT_TRUE(desktop.opened.empty()) << c.name;
    }
}

TEST(VersionCheck, YesDownloadsLaunchesAndEnds) {
    const QByteArray installer("MSI\0installer bytes", 19);
    const QString kClosing =
        QStringLiteral("The Program will be closed for installing the Upgrade");
    const struct {
        const char* name;
        bool fromSplash;
        bool installerOnServer;
        bool folderBlocked;  // the program's folder cannot be made
        QString message;
    } cases[] = {
        {"from the splash", true, true, false, kClosing},
        {"from the menu", false, true, false, kClosing},
        // A failed download leaves the splash standing: nothing closes it.
        {"no installer", true, false, false, kTransferFailed},
        {"no program folder", false, true, true, QStringLiteral("Un expected error")},
    };
    for (const auto& c : cases) {
        TestServer server;
        QTemporaryDir folder;
        server.Put(QString::fromLatin1(kVersionPath), VersionFile(R"(a="0" b="1" c="1")"));
        if (c.installerOnServer) server.Put(QString::fromLatin1(kInstallerPath), installer);
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
        const QString saved = folder.filePath(QStringLiteral("FHawk.msi"));
        const bool installed = c.message == kClosing;
        EXPECT_EQ(dialogs.questions,
                  QStringList{"There is a new version of FeltHawk, Do you want to download ?"});
        EXPECT_TRUE(service.UpdateChosen()) << c.name;
        EXPECT_TRUE(splash.isVisible()) << c.name;
        EXPECT_EQ(dialogs.messages, QStringList{c.message}) << c.name;
        EXPECT_EQ(ReadFile(saved), installed ? installer : QByteArray()) << c.name;
        EXPECT_EQ(desktop.opened,
                  installed ? std::vector{QUrl::fromLocalFile(saved)} : std::vector<QUrl>{})
            << c.name;
        EXPECT_EQ(desktop.ended, installed ? 1 : 0) << c.name;
    }
}

TEST(DownloadFile, WritesOverNamesByTheLastSlashAndRefusesWhileBusy) {
    TestServer server;
    server.Put(QStringLiteral("FHawk.msi"), "abc");
    QTemporaryDir folder, other;
    const QString saved = folder.filePath(QStringLiteral("FHawk.msi"));
    FakeDialogs dialogs;
    Inet inet(5000);
    // Over an older, longer file: its tail stays.
    QFile old(saved);
    ASSERT_TRUE(old.open(QIODevice::WriteOnly) && old.write("XXXXXXXXXX") == 10);
    old.close();
    EXPECT_TRUE(DownloadFile(inet, server.Base() + "FHawk.msi", folder.path(), dialogs, nullptr));
    EXPECT_EQ(ReadFile(saved), QByteArray("abcXXXXXXX"));
    EXPECT_EQ(dialogs.messages, QStringList{});

    // Without "/": fetched as http (the server's root) but saved under an empty name.
    const QString noSlash = QUrl(server.Base()).authority();
    EXPECT_FALSE(DownloadFile(inet, noSlash, other.path(), dialogs, nullptr));
    EXPECT_EQ(dialogs.messages, QStringList{kTransferFailed});
    EXPECT_TRUE(QDir(other.path()).isEmpty());

    // A second call while the slow transfer waits for its answer: refused, silently.
    std::optional<bool> nested;
    QTimer::singleShot(200, [&] {
        nested = DownloadFile(inet, server.Base() + "FHawk.msi", other.path(), dialogs, nullptr);
    });
    EXPECT_TRUE(
        DownloadFile(inet, server.Base("slow/") + "FHawk.msi", other.path(), dialogs, nullptr));
    ASSERT_TRUE(nested.has_value());
    EXPECT_FALSE(*nested);
    EXPECT_EQ(dialogs.messages.size(), 1);
    EXPECT_FALSE(inet.StillExecuting());
    EXPECT_EQ(ReadFile(other.filePath(QStringLiteral("FHawk.msi"))), QByteArray("abc"));
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
    Strip(const QString& server, const QString& folder, int timeoutMs = 3000)
        : folder(folder), service(desktop, ConfigFor(server, folder, timeoutMs)) {
        picture->setObjectName(QStringLiteral("Picture1"));
        small->setObjectName(QStringLiteral("imgSmall"));
        small->hide();
        picture->hide();
        window.show();
        service.LoadBanners(&window, view, &timer);
    }
    // temp.htm as written, and as it should be for `fileName` and `refLink`.
    QString Page() const { return QString::fromUtf8(ReadFile(folder + "/temp.htm")); }
    static QString Page(const QString& fileName, const QString& refLink) {
        return QString::fromLatin1(kBannerTemplate)
                   .replace(QStringLiteral("<<REFLINK>>"), refLink)
                   .replace(QStringLiteral("<<FILENAME>>"), fileName) +
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
    server.Put(QStringLiteral("pics/one.png"), Png(60, 12));
    server.Put(QStringLiteral("pics/two.png"), Png(30, 20));
    server.Put(QString::fromLatin1(kBannerListPath),
               "<banners>" + Entry(one, "s1.png", "1", "http://one.example/") +
                   Entry(two, "s2.png", "2", "http://two.example/") + "</banners>");
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
        ASSERT_TRUE(ticks.wait(5000));
        EXPECT_EQ(strip.Page(), Strip::Page(step.picture, step.link));
        EXPECT_EQ(strip.view->source(), QUrl::fromLocalFile(folder.filePath("temp.htm")));
        EXPECT_TRUE(strip.picture->isVisible());
        QTextDocument* page = strip.view->document();
        EXPECT_EQ(
            page->resource(QTextDocument::ImageResource, QUrl(step.picture)).value<QImage>().size(),
            step.size);
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
    EXPECT_EQ(strip.Page(), Strip::Page("s1.png", "http://one.example/"));

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
        {"never answers", server.Base("hang/")},
        {"empty document", server.Base()},
        {"no list", server.Base("none/")},
    };
    for (const auto& c : cases) {
        QTemporaryDir folder;
        Strip strip(c.base, folder.path(), 500);
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
    server.Put(QString::fromLatin1(kBannerListPath), "<b>" + Entry(dead, "s", "5", "r") + "</b>");
    Strip strip(server.Base(), folder.path(), 300);
    strip.service.LoadBanners(&strip.window, strip.view, &strip.timer);
    for (int tick = 0; tick < 3; ++tick) strip.service.Timer1();
    EXPECT_EQ(strip.service.List().Count(), 1);
    EXPECT_EQ(strip.Page(), Strip::Page(dead, "r"));
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
    // The sample names this very build: nothing to offer.
    FakeDialogs dialogs;
    EXPECT_FALSE(UpdateService(dialogs, strip.desktop, ConfigFor(base, folder.path())).NewUpdate());
}

}  // namespace
}  // namespace felthawk

int main(int argc, char** argv) {
    // Test discovery runs without the test environment; there is no display.
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
