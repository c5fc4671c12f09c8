// The banner strip against a real HTTP server on loopback: the list, the
// default banner, the rotation on the window's own timer, the page and the
// pictures in the view, and the click.
#include <gtest/gtest.h>
#include <QBuffer>
#include <QImage>
#include <QLabel>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTextBrowser>
#include <QTextDocument>
#include <QTimer>
#include <QWidget>

#include <optional>

#include "online/banner_service.h"
#include "online/update_service.h"
#include "online_test_support.h"

namespace felthawk {
namespace {

using testing::ConfigFor;
using testing::FakeDesktop;
using testing::ReadFile;
using testing::TestServer;

QByteArray Png(int width, int height) {
    QImage image(width, height, QImage::Format_RGB32);
    image.fill(Qt::darkGreen);
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, "PNG");
    return bytes;
}

QByteArray BannerEntry(const QString& path, const QString& small, const char* duration,
                       const QString& reference) {
    return QStringLiteral(
               "<banner><Path>%1</Path><SmallPath>%2</SmallPath><Duration>%3</Duration>"
               "<Reference>%4</Reference></banner>")
        .arg(path, small, QString::fromLatin1(duration), reference)
        .toUtf8();
}

// The main window as far as the strip is concerned: Picture1 holding the
// banner view, the compact backdrop imgSmall, and Timer1.
struct Board {
    Board() {
        picture->setObjectName(QStringLiteral("Picture1"));
        small->setObjectName(QStringLiteral("imgSmall"));
        small->hide();
        picture->hide();
        window.resize(640, 480);
        window.show();
    }
    QWidget window;
    QWidget* picture = new QWidget(&window);
    QLabel* small = new QLabel(&window);
    QTextBrowser* view = new QTextBrowser(picture);
    QTimer timer;
};

struct Strip {
    Strip(const QString& server, const QString& folder, int timeoutMs = 3000)
        : service(desktop, ConfigFor(server, folder, timeoutMs)) {
        service.LoadBanners(&board.window, board.view, &board.timer);
    }
    Board board;
    FakeDesktop desktop;
    BannerService service;
};

QString TempPage(const QTemporaryDir& folder) {
    return QString::fromUtf8(ReadFile(folder.filePath(QStringLiteral("temp.htm"))));
}

QString Page(const QString& fileName, const QString& refLink) {
    return QString::fromLatin1(kBannerTemplate)
               .replace(QStringLiteral("<<REFLINK>>"), refLink)
               .replace(QStringLiteral("<<FILENAME>>"), fileName) +
           u'\n';
}

TEST(Banners, TwoBannersRotateOnTheirOwnIntervals) {
    TestServer server;
    QTemporaryDir folder;
    const QString one = server.Base() + QStringLiteral("pics/one.png");
    const QString two = server.Base() + QStringLiteral("pics/two.png");
    server.Put(QStringLiteral("pics/one.png"), Png(60, 12));
    server.Put(QStringLiteral("pics/two.png"), Png(30, 20));
    server.Put(
        QString::fromLatin1(kBannerListPath),
        "<banners>" +
            BannerEntry(one, QStringLiteral("s1.png"), "1", QStringLiteral("http://one.example/")) +
            BannerEntry(two, QStringLiteral("s2.png"), "2", QStringLiteral("http://two.example/")) +
            "</banners>");
    Strip strip(server.Base(), folder.path());
    ASSERT_EQ(strip.service.List().Count(), 2);
    EXPECT_TRUE(strip.board.timer.isActive());
    EXPECT_EQ(strip.board.timer.interval(), kFirstBannerMs);

    const struct {
        QString picture;
        QString link;
        QSize size;
        int nextInterval;
    } expected[] = {
        {one, QStringLiteral("http://one.example/"), {60, 12}, 1000},
        {two, QStringLiteral("http://two.example/"), {30, 20}, 2000},
        {one, QStringLiteral("http://one.example/"), {60, 12}, 1000},
        {two, QStringLiteral("http://two.example/"), {30, 20}, 2000},
    };
    QSignalSpy ticks(&strip.board.timer, &QTimer::timeout);
    std::optional<double> pageMargin;
    for (const auto& step : expected) {
        ASSERT_TRUE(ticks.wait(5000));
        EXPECT_EQ(TempPage(folder), Page(step.picture, step.link));
        EXPECT_EQ(strip.board.view->source(),
                  QUrl::fromLocalFile(folder.filePath(QStringLiteral("temp.htm"))));
        EXPECT_TRUE(strip.board.picture->isVisible());
        const QImage shown = strip.board.view->document()
                                 ->resource(QTextDocument::ImageResource, QUrl(step.picture))
                                 .value<QImage>();
        EXPECT_EQ(shown.size(), step.size);
        // Laid out at its own height: the page around it adds the same
        // margin to both pictures.
        const double margin = strip.board.view->document()->size().height() - step.size.height();
        if (!pageMargin) pageMargin = margin;
        EXPECT_EQ(margin, *pageMargin);
        EXPECT_EQ(strip.board.timer.interval(), step.nextInterval);
        EXPECT_TRUE(strip.board.timer.isActive());
    }

    // The list once, and each picture once however often it shows.
    EXPECT_EQ(server.Requests().toStdString(),
              "/member/banners/banner.php /pics/one.png /pics/two.png");

    // The compact window shows the small pictures.
    strip.board.small->show();
    strip.service.Timer1();
    EXPECT_EQ(TempPage(folder),
              Page(QStringLiteral("s1.png"), QStringLiteral("http://one.example/")));

    // A click on the banner goes to the desktop's browser, not into the strip.
    emit strip.board.view->anchorClicked(QUrl(QStringLiteral("http://one.example/")));
    ASSERT_EQ(strip.desktop.opened.size(), 1u);
    EXPECT_EQ(strip.desktop.opened[0], QUrl(QStringLiteral("http://one.example/")));
}

TEST(Banners, UnreadableListGivesTheDefaultBanner) {
    TestServer server;
    server.Put(QString::fromLatin1(kBannerListPath), "");
    const struct {
        const char* name;
        QString base;
    } cases[] = {
        {"server down", testing::DownServer()},
        {"never answers", server.Base(QStringLiteral("hang/"))},
        {"empty document", server.Base()},
        {"no list", server.Base(QStringLiteral("none/"))},
    };
    for (const auto& c : cases) {
        QTemporaryDir folder;
        Strip strip(c.base, folder.path(), 500);
        ASSERT_EQ(strip.service.List().Count(), 1) << c.name;
        const Banner& banner = *strip.service.List().begin();
        EXPECT_TRUE(banner.Path.endsWith(QStringLiteral("/Default.gif"))) << c.name;
        EXPECT_TRUE(QFile::exists(banner.Path)) << c.name;
        EXPECT_TRUE(QFile::exists(banner.Reference)) << c.name;
        EXPECT_EQ(banner.SmallPath, QString()) << c.name;
        EXPECT_EQ(banner.Duration, 30) << c.name;
        EXPECT_TRUE(strip.board.timer.isActive()) << c.name;

        strip.service.Timer1();
        EXPECT_EQ(TempPage(folder), Page(banner.Path, banner.Reference)) << c.name;
        EXPECT_EQ(strip.board.timer.interval(), 30000) << c.name;
        // The local picture, 61 pixels high, is found and laid out.
        EXPECT_GE(strip.board.view->document()->size().height(), 61) << c.name;

        // The default link, a path with blanks, opens as a local file.
        emit strip.board.view->anchorClicked(QUrl(banner.Reference));
        ASSERT_EQ(strip.desktop.opened.size(), 1u) << c.name;
        EXPECT_EQ(strip.desktop.opened[0], QUrl::fromLocalFile(banner.Reference)) << c.name;
    }
}

TEST(Banners, DurationsAndListsThatStopOrNeverStartTheStrip) {
    TestServer server;
    auto one = [](const char* duration) {
        return "<b>" + BannerEntry("a.png", "s.png", duration, "http://r/") + "</b>";
    };
    const struct {
        const char* name;
        QByteArray list;
        int count;
        bool started;
        int intervalAfterFirstBanner;  // 0: the timer has stopped
    } cases[] = {
        {"duration 5", one("5"), 1, true, 5000},
        {"duration 0 stops", one("0"), 1, true, 0},
        // Beyond 65 seconds: the timer takes it.
        {"duration 70", one("70"), 1, true, 70000},
        // A negative interval is refused and the old one stays.
        {"duration -5", one("-5"), 1, true, kFirstBannerMs},
        // Parsed but empty: the timer runs and nothing is ever shown.
        {"no banners", "<banners/>", 0, true, kFirstBannerMs},
        {"bad duration", one("soon"), 1, false, 0},
        // A banner short of its link, then the default banner under "A1".
        {"short banner", "<b><x><p>a.png</p><s>s</s><d>5</d></x></b>", 2, true, 5000},
        // The default banner's key is taken by the second banner: no strip.
        {"short second banner",
         "<b>" + BannerEntry("a.png", "s.png", "5", "r") + "<x><p>b.png</p></x></b>", 2, false, 0},
    };
    for (const auto& c : cases) {
        server.Put(QString::fromLatin1(kBannerListPath), c.list);
        QTemporaryDir folder;
        Strip strip(server.Base(), folder.path());
        EXPECT_EQ(strip.service.List().Count(), c.count) << c.name;
        EXPECT_EQ(strip.board.timer.isActive(), c.started) << c.name;
        if (!c.started) continue;
        strip.service.Timer1();
        EXPECT_EQ(QFile::exists(folder.filePath(QStringLiteral("temp.htm"))), c.count > 0)
            << c.name;
        const int interval = strip.board.timer.isActive() ? strip.board.timer.interval() : 0;
        EXPECT_EQ(interval, c.intervalAfterFirstBanner) << c.name;
    }
}

TEST(Banners, LoadsOnlyOnceAndGivesUpOnADeadPictureOnce) {
    TestServer server;
    QTemporaryDir folder;
    const QString dead = server.Base(QStringLiteral("hang/")) + QStringLiteral("dead.png");
    server.Put(QString::fromLatin1(kBannerListPath),
               "<b>" + BannerEntry(dead, "s.png", "5", "r") + "</b>");
    Strip strip(server.Base(), folder.path(), 300);
    strip.service.LoadBanners(&strip.board.window, strip.board.view, &strip.board.timer);
    for (int tick = 0; tick < 3; ++tick) strip.service.Timer1();
    EXPECT_EQ(strip.service.List().Count(), 1);
    EXPECT_EQ(TempPage(folder), Page(dead, QStringLiteral("r")));
    EXPECT_EQ(server.Requests().toStdString(), "/member/banners/banner.php /hang/dead.png");
}

TEST(SampleServerTree, IsReadAsDeployed) {
    TestServer server;
    server.PutTree(QStringLiteral(FELTHAWK_SAMPLE_SERVER_TREE));
    QTemporaryDir folder;
    testing::FakeDialogs dialogs;
    FakeDesktop desktop;
    // The sample names this very build: nothing to offer.
    UpdateService update(dialogs, desktop, ConfigFor(server.Base(), folder.path()));
    EXPECT_FALSE(update.NewUpdate());

    Strip strip(server.Base(), folder.path());
    QList<int> durations;
    for (const Banner& banner : strip.service.List()) {
        durations << banner.Duration;
        EXPECT_TRUE(banner.Path.endsWith(QStringLiteral("member/banners/felthawk.gif")));
        EXPECT_TRUE(banner.Reference.startsWith(QStringLiteral("http://")));
    }
    EXPECT_EQ(durations, QList<int>({20, 10}));
    EXPECT_TRUE(strip.board.timer.isActive());
}

}  // namespace
}  // namespace felthawk
