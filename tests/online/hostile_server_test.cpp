// A broken or hostile update server against the real board: the start with
// its splash and version check, the banner strip, the upgrade. The board
// runs on an Xvfb of the test's own and takes real key presses through the
// X test extension, so a fetch that held the window's input back shows as a
// slow key. Every case runs in its own process; for each the process lives,
// its memory stays under the bound, the board answers a key within a
// second while the server misbehaves, nothing is written outside the data
// folder and nothing reaches the desktop unless it is a web address or the
// installer as published.
#include <fcntl.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>
#include <xcb/xcb.h>
#include <xcb/xtest.h>

#include <gtest/gtest.h>
#include <QApplication>
#include <QDir>
#include <QDirIterator>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QProgressDialog>
#include <QPushButton>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>
#include <QTextBrowser>
#include <QTimer>

#include <chrono>
#include <iostream>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "board/frm_felthawk.h"
#include "board/services.h"
#include "online/app_version.h"
#include "online/banner_service.h"
#include "online/frm_update.h"
#include "online/update_service.h"
#include "online_support.h"

namespace felthawk::testing {
namespace {

using namespace std::chrono_literals;

// The highest the process's resident memory may ever have reached.
constexpr long kMemoryBoundKb = 300 * 1024;
// The longest the board may take to show a typed card.
constexpr qint64 kKeyAnswerMs = 1000;

// Set up by main() before the application starts.
std::string gDisplay;
QString gSandbox;

// The process's peak resident memory (VmHWM) in kilobytes.
long PeakMemoryKb() {
    QFile status(QStringLiteral("/proc/self/status"));
    if (!status.open(QIODevice::ReadOnly)) return -1;
    for (const QByteArray& line : status.readAll().split('\n')) {
        if (line.startsWith("VmHWM:")) return line.mid(6).trimmed().split(' ').front().toLong();
    }
    return -1;
}

QByteArray Nested(const char* tag, int depth) {
    const QByteArray open = QByteArray("<") + tag + ">", close = QByteArray("</") + tag + ">";
    return open.repeated(depth) + close.repeated(depth);
}

// `count` banners, the first 1000 with a link of their own, the rest as short
// as a banner can be.
QByteArray ManyBanners(int count) {
    QByteArray list = "<b>";
    for (int i = 0; i < count; ++i) {
        list += i < kMaxBanners
                    ? "<b><p/><p/><p>1</p><p>http://b" + QByteArray::number(i) + ".example/</p></b>"
                    : QByteArray("<b><p/><p/><p>1</p><p/></b>");
    }
    return list + "</b>";
}

QByteArray Banner(const QByteArray& path, const QByteArray& link) {
    const auto escaped = [](const QByteArray& text) {
        return QString::fromUtf8(text).toHtmlEscaped().toUtf8();
    };
    return "<b><p>" + escaped(path) + "</p><p/><p>5</p><p>" + escaped(link) + "</p></b>";
}

// Links and pictures that are not the server's to give.
const char* const kNotWeb[] = {
    "<b>bold</b>",       "javascript:alert(1)", "file:///usr/bin/xterm",
    "smb://share/x.gif", "banner.gif",
};

QByteArray HostileValues() {
    QByteArray list = "<b>";
    for (const char* value : kNotWeb) list += Banner("SERVER/pics/a.gif", value);
    for (const char* value : kNotWeb) list += Banner(value, "http://link.example/");
    // A web address that tries to close the attribute it stands in.
    list += Banner(R"(SERVER/pics/"><img src="file:///etc/passwd)",
                   R"(http://link.example/"><a href="file:///usr/bin/xterm">)");
    return list + "</b>";
}

const QByteArray kInstaller("MSI\0installer bytes", 19);
const QByteArray kNewer = R"(a="0" b="1" c="1" SHA256=")" + Sha256(kInstaller) + '"';

struct Case {
    const char* name;
    QByteArray versionFile;
    QByteArray bannerList;
    // Below the server, the misbehaving path and how it misbehaves.
    const char* path;
    const char* behaviour;
    const char* prefix;  // of the server's base: "" or "hang/"
    bool answerYes;
    // What must come of it.
    QStringList messages;
    int banners;  // kept in the strip
    bool defaultBanner;
    bool installed;
};

std::ostream& operator<<(std::ostream& out, const Case& c) {
    return out << c.name;
}

const QString kVersion = QString::fromLatin1(kVersionPath);
const QString kList = QString::fromLatin1(kBannerListPath);
const QString kInstallerAt = QString::fromLatin1(kInstallerPath);
const QByteArray kTwoBanners = Banner("SERVER/pics/a.gif", "http://a.example/") +
                               Banner("SERVER/pics/b.gif", "http://b.example/");

const Case kCases[] = {
    {"VersionFile400000Deep",
     Nested("APPLICATION", 400000),
     "<b>" + kTwoBanners + "</b>",
     nullptr,
     nullptr,
     "",
     true,
     {},
     2,
     false,
     false},
    {"VersionFileDeepWithinItsBound",
     Nested("APPLICATION", 9000),
     "<b>" + kTwoBanners + "</b>",
     nullptr,
     nullptr,
     "",
     true,
     {},
     2,
     false,
     false},
    {"BannerList400000Deep",
     VersionFile(kNewer),
     Nested("b", 400000),
     nullptr,
     nullptr,
     "",
     false,
     {},
     1,
     true,
     false},
    {"BannerListDeepWithinItsBound",
     VersionFile(kNewer),
     Nested("b", 140000),
     nullptr,
     nullptr,
     "",
     false,
     {},
     1,
     true,
     false},
    {"EndlessVersionFile",
     "",
     "<b>" + kTwoBanners + "</b>",
     "member/VersionCheck/Version.xml",
     "endless",
     "",
     true,
     {},
     2,
     false,
     false},
    {"EndlessBannerList",
     VersionFile(kNewer),
     "",
     "member/banners/banner.php",
     "endless",
     "",
     false,
     {},
     1,
     true,
     false},
    {"EndlessInstaller",
     VersionFile(kNewer),
     "<b/>",
     "member/downloads/FHawk.msi",
     "endless",
     "",
     true,
     {frmUpdate::kTransferFailed},
     0,
     false,
     false},
    {"InstallerOf4GiB",
     VersionFile(kNewer),
     "<b/>",
     "member/downloads/FHawk.msi",
     "huge",
     "",
     true,
     {frmUpdate::kTransferFailed},
     0,
     false,
     false},
    {"OtherBytesAtTheInstallersPath",
     VersionFile(R"(a="0" b="1" c="1" SHA256=")" + Sha256("other bytes") + '"'),
     "<b/>",
     nullptr,
     nullptr,
     "",
     true,
     {frmUpdate::kNotVerified},
     0,
     false,
     false},
    {"InstallerAsPublished",
     VersionFile(kNewer),
     "<b/>",
     nullptr,
     nullptr,
     "",
     true,
     {frmUpdate::kClosing},
     0,
     false,
     true},
    {"FailedInstallerDownload",
     VersionFile(kNewer),
     "<b/>",
     nullptr,
     "gone",
     "",
     true,
     {frmUpdate::kTransferFailed},
     0,
     false,
     false},
    {"BannerValuesThatAreNotWebAddresses",
     "",
     HostileValues(),
     nullptr,
     nullptr,
     "",
     false,
     {},
     11,
     false,
     false},
    {"Banners40000OverTheListsBound",
     "",
     ManyBanners(40000),
     nullptr,
     nullptr,
     "",
     false,
     {},
     1,
     true,
     false},
    {"Banners33000WithinTheListsBound",
     "",
     ManyBanners(33000),
     nullptr,
     nullptr,
     "",
     false,
     {},
     kMaxBanners,
     false,
     false},
    {"ServerThatNeverAnswers", "", "", nullptr, nullptr, "hang/", true, {}, 1, true, false},
    {"BannerPictureThatNeverArrives",
     "",
     "<b>" + Banner("SERVER/hang/x.gif", "http://a.example/") + "</b>",
     nullptr,
     nullptr,
     "",
     false,
     {},
     1,
     false,
     false},
};

// One real key press and release through the X test extension.
void PressKey(xcb_connection_t* x, xcb_keysym_t keysym) {
    const xcb_setup_t* setup = xcb_get_setup(x);
    const int count = setup->max_keycode - setup->min_keycode + 1;
    auto* map = xcb_get_keyboard_mapping_reply(
        x, xcb_get_keyboard_mapping(x, setup->min_keycode, count), nullptr);
    ASSERT_NE(map, nullptr);
    const xcb_keysym_t* syms = xcb_get_keyboard_mapping_keysyms(map);
    xcb_keycode_t code = 0;
    for (int i = 0; i < count * map->keysyms_per_keycode && code == 0; ++i) {
        if (syms[i] == keysym)
            code = static_cast<xcb_keycode_t>(setup->min_keycode + i / map->keysyms_per_keycode);
    }
    free(map);
    ASSERT_NE(code, 0);
    xcb_test_fake_input(x, XCB_KEY_PRESS, code, XCB_CURRENT_TIME, XCB_NONE, 0, 0, 0);
    xcb_test_fake_input(x, XCB_KEY_RELEASE, code, XCB_CURRENT_TIME, XCB_NONE, 0, 0, 0);
    xcb_flush(x);
}

// Gives the board the focus, types the ace of spades and times the answer.
// Focus and keys go out together, so whatever the focus sets off (the first
// activation loads the banners) must not hold the keys back either.
qint64 KeyAnswerMs(frmFelthawk& form, xcb_connection_t* x) {
    form.ClearCards();
    QElapsedTimer clock;
    clock.start();
    xcb_set_input_focus(x, XCB_INPUT_FOCUS_POINTER_ROOT, static_cast<xcb_window_t>(form.winId()),
                        XCB_CURRENT_TIME);
    PressKey(x, 'a');
    PressKey(x, 's');
    if (!QTest::qWaitFor([&] { return form.mCards[0] == "AS"; }, 15000)) return -1;
    return clock.elapsed();
}

// Every file below the sandbox that is neither in `dataFolder` nor the
// test server's.
QStringList WrittenOutside(const QString& dataFolder, const TestServer& server) {
    QStringList outside;
    for (QDirIterator it(gSandbox, QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
         it.hasNext();) {
        const QString path = it.next();
        if (!path.startsWith(dataFolder + u'/') && !path.startsWith(server.Root() + u'/'))
            outside << path;
    }
    return outside;
}

class HostileServer : public ::testing::TestWithParam<Case> {};

TEST_P(HostileServer, TheBoardLivesAnswersAndKeepsToItsFolder) {
    const Case& c = GetParam();
    TestServer server;
    if (!c.versionFile.isEmpty()) server.Put(kVersion, c.versionFile);
    if (!c.bannerList.isEmpty())
        server.Put(kList, QByteArray(c.bannerList).replace("SERVER/", server.Base().toUtf8()));
    if (QByteArray(c.behaviour) != "gone") server.Put(kInstallerAt, kInstaller);
    if (c.path) server.Misbehave(QString::fromLatin1(c.path), c.behaviour);

    xcb_connection_t* x = xcb_connect(gDisplay.c_str(), nullptr);
    ASSERT_EQ(xcb_connection_has_error(x), 0);
    qputenv("FELTHAWK_SERVER", server.Base(QString::fromLatin1(c.prefix)).toUtf8());
    const OnlineConfig config = OnlineConfig::FromEnvironment();
    // Each case starts with an empty data folder, even when run in one process.
    QDir(config.programFolder).removeRecursively();
    FakeDialogs dialogs;
    dialogs.answerYes = c.answerYes;
    FakeDesktop desktop;
    UpdateService update(dialogs, desktop, config);
    BannerService banners(desktop, config);
    BoardServices services;
    services.update = &update;
    services.banners = &banners;
    frmFelthawk form(services, dialogs);

    // The start: the splash runs the check and goes on its timer unless the
    // check shows a dialogue.
    QElapsedTimer clock;
    clock.start();
    form.FormLoad(true);
    if (dialogs.questions.isEmpty()) {
        EXPECT_LT(clock.elapsed(), 4000) << "the splash stayed";
    }
    form.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&form));

    // While the list is on its way the board answers, and once more after.
    const qint64 during = KeyAnswerMs(form, x);
    EXPECT_GE(during, 0) << "the key never reached the board";
    EXPECT_LT(during, kKeyAnswerMs);
    EXPECT_TRUE(QTest::qWaitFor([&] { return !banners.Loading() && !update.Checking(); }, 15000));
    QTest::qWait(200);
    EXPECT_GE(KeyAnswerMs(form, x), 0);

    // The strip: what was kept and what a turn through it shows.
    EXPECT_EQ(banners.List().Count(), c.banners);
    if (c.defaultBanner && c.banners == 1) {
        EXPECT_TRUE((*banners.List().begin()).Path.endsWith("/Default.gif"));
    }
    // Every picture and link kept is a web address or the default banner's.
    const QString defaultFolder =
        QFileInfo(config.FindFile(QStringLiteral("Default.gif"))).path() + u'/';
    for (const felthawk::Banner& banner : banners.List()) {
        for (const QString& value : {banner.Path, banner.SmallPath, banner.Reference}) {
            EXPECT_TRUE(value.isEmpty() || IsWebAddress(value) || value.startsWith(defaultFolder))
                << value.toStdString();
        }
    }
    auto* view = form.findChild<QTextBrowser*>(QStringLiteral("wb"));
    ASSERT_NE(view, nullptr);
    const QString page = config.programFolder + QStringLiteral("/temp.htm");
    // Once round the strip and on to the first again; an empty list shows nothing.
    const int turns = banners.List().Count() == 0 ? 0 : banners.List().Count() + 1;
    for (int turn = 0; turn < turns; ++turn) {
        banners.Timer1();
        const QString shown = QString::fromUtf8(ReadFile(page));
        // One link and one picture, whatever the values held.
        EXPECT_EQ(shown.count(QStringLiteral("<a ")), 1) << shown.toStdString();
        EXPECT_EQ(shown.count(QStringLiteral("<img ")), 1) << shown.toStdString();
    }
    EXPECT_EQ(QFile::exists(page), turns > 0);
    if (c.banners == kMaxBanners) {
        // After the last banner the first comes again.
        EXPECT_TRUE(ReadFile(page).contains("http://b0.example/"));
    }
    // A click follows only a web address.
    for (const char* value : kNotWeb) emit view->anchorClicked(QUrl(QString::fromUtf8(value)));
    emit view->anchorClicked(QUrl(QStringLiteral("http://link.example/")));

    if (QByteArray(c.prefix) == "hang/") {
        // "Check for Update" waits for the server with a Cancel, and
        // returns to the window at once.
        QElapsedTimer asked;
        asked.start();
        update.VersionProgram2(&form);
        EXPECT_LT(asked.elapsed(), kKeyAnswerMs);
        auto* waiting = form.findChild<QProgressDialog*>(QStringLiteral("frmChecking"));
        ASSERT_NE(waiting, nullptr);
        QTest::qWait(300);
        QTest::mouseClick(waiting->findChild<QPushButton*>(), Qt::LeftButton);
        EXPECT_FALSE(update.Checking());
    }

    EXPECT_EQ(dialogs.messages, c.messages);
    EXPECT_TRUE(form.isVisible());
    const QString installer = config.programFolder + QStringLiteral("/FHawk.msi");
    for (const QUrl& opened : desktop.opened) {
        const bool web = IsWebUrl(opened);
        const bool verified =
            opened == QUrl::fromLocalFile(installer) && ReadFile(installer) == kInstaller;
        EXPECT_TRUE(web || verified) << opened.toString().toStdString();
    }
    EXPECT_EQ(desktop.ended, c.installed ? 1 : 0);
    EXPECT_EQ(QFile::exists(installer), c.installed);
    EXPECT_EQ(WrittenOutside(config.programFolder, server), QStringList{});
    const long peak = PeakMemoryKb();
    EXPECT_GT(peak, 0);
    EXPECT_LT(peak, kMemoryBoundKb);
    std::cout << c.name << ": key " << during << " ms, peak " << peak / 1024 << " MB\n";
    xcb_disconnect(x);
}

INSTANTIATE_TEST_SUITE_P(Server, HostileServer, ::testing::ValuesIn(kCases),
                         [](const auto& info) { return std::string(info.param.name); });

// The viewable top-level windows of the screen with their titles.
std::vector<std::pair<xcb_window_t, std::string>> Windows(xcb_connection_t* x) {
    std::vector<std::pair<xcb_window_t, std::string>> found;
    const xcb_window_t root = xcb_setup_roots_iterator(xcb_get_setup(x)).data->root;
    auto* tree = xcb_query_tree_reply(x, xcb_query_tree(x, root), nullptr);
    if (tree == nullptr) return found;
    const xcb_window_t* children = xcb_query_tree_children(tree);
    for (int i = 0; i < xcb_query_tree_children_length(tree); ++i) {
        auto* attributes =
            xcb_get_window_attributes_reply(x, xcb_get_window_attributes(x, children[i]), nullptr);
        const bool viewable =
            attributes != nullptr && attributes->map_state == XCB_MAP_STATE_VIEWABLE;
        free(attributes);
        if (!viewable) continue;
        auto* name = xcb_get_property_reply(
            x,
            xcb_get_property(x, 0, children[i], XCB_ATOM_WM_NAME, XCB_GET_PROPERTY_TYPE_ANY, 0, 64),
            nullptr);
        std::string title;
        if (name != nullptr)
            title.assign(static_cast<const char*>(xcb_get_property_value(name)),
                         xcb_get_property_value_length(name));
        free(name);
        found.emplace_back(children[i], title);
    }
    free(tree);
    return found;
}

// The window titled "Felthawk" while the board is not up yet: the question
// or the download.
xcb_window_t DialogueWindow(xcb_connection_t* x) {
    for (const auto& [window, title] : Windows(x)) {
        if (title == "Felthawk") return window;
    }
    return 0;
}

// The real program ends on SIGTERM, with a clean exit, from the splash that
// waits for the server, from the question, and from a download under way;
// the half-downloaded installer goes with it.
TEST(Program, EndsOnSigtermFromTheSplashTheQuestionAndTheDownload) {
    enum class State { Splash, Question, Download };
    for (const State state : {State::Splash, State::Question, State::Download}) {
        TestServer server;
        server.Put(kVersion, VersionFile(kNewer));
        server.Put(kInstallerAt, kInstaller);
        server.Misbehave(kInstallerAt, "hang");
        QTemporaryDir home;
        xcb_connection_t* x = xcb_connect(gDisplay.c_str(), nullptr);
        ASSERT_EQ(xcb_connection_has_error(x), 0);

        QProcess program;
        QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
        env.insert(QStringLiteral("DISPLAY"), QString::fromStdString(gDisplay));
        env.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("xcb"));
        for (const char* name : {"HOME", "XDG_DATA_HOME", "XDG_CONFIG_HOME"})
            env.insert(QString::fromLatin1(name), home.filePath(QString::fromLatin1(name)));
        env.insert(QStringLiteral("FELTHAWK_SERVER"),
                   server.Base(state == State::Splash ? QStringLiteral("hang/") : QString()));
        program.setProcessEnvironment(env);
        program.setProcessChannelMode(QProcess::ForwardedChannels);
        program.start(QStringLiteral(FELTHAWK_PROGRAM), {});
        ASSERT_TRUE(program.waitForStarted(10000));

        const auto waitFor = [](auto test) {
            const auto end = std::chrono::steady_clock::now() + 20s;
            while (!test() && std::chrono::steady_clock::now() < end)
                std::this_thread::sleep_for(50ms);
            return test();
        };
        if (state == State::Splash) {
            ASSERT_TRUE(waitFor([&] { return !Windows(x).empty(); })) << "no splash";
        } else {
            ASSERT_TRUE(waitFor([&] { return DialogueWindow(x) != 0; })) << "no question";
        }
        if (state == State::Download) {
            // Yes, the default answer.
            xcb_set_input_focus(x, XCB_INPUT_FOCUS_POINTER_ROOT, DialogueWindow(x),
                                XCB_CURRENT_TIME);
            xcb_flush(x);
            std::this_thread::sleep_for(300ms);
            PressKey(x, 0xff0d);
            ASSERT_TRUE(waitFor([&] { return server.Requests().contains(kInstallerAt); }))
                << "the download never started";
        }
        const QString data = home.filePath(QStringLiteral("XDG_DATA_HOME"));
        program.terminate();
        EXPECT_TRUE(program.waitForFinished(5000)) << static_cast<int>(state);
        EXPECT_EQ(program.exitStatus(), QProcess::NormalExit) << static_cast<int>(state);
        EXPECT_EQ(program.exitCode(), 0) << static_cast<int>(state);
        QStringList left;
        for (QDirIterator it(data, QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
             it.hasNext();) {
            const QString name = QFileInfo(it.next()).fileName();
            if (name.startsWith(QStringLiteral("FHawk"))) left << name;
        }
        EXPECT_EQ(left, QStringList{}) << static_cast<int>(state);
        if (program.state() != QProcess::NotRunning) program.kill();
        program.waitForFinished(3000);
        xcb_disconnect(x);
    }
}

}  // namespace
}  // namespace felthawk::testing

namespace {

// Xvfb on a display it picks itself; it ends with the test process.
std::string StartXvfb() {
    int fds[2];
    if (pipe(fds) != 0) return {};
    const pid_t pid = fork();
    if (pid == 0) {
        close(fds[0]);
        const std::string fd = std::to_string(fds[1]);
        execlp("Xvfb", "Xvfb", "-displayfd", fd.c_str(), "-screen", "0", "1024x768x24", "-nolisten",
               "tcp", static_cast<char*>(nullptr));
        _exit(127);
    }
    close(fds[1]);
    std::string number;
    char c = 0;
    while (read(fds[0], &c, 1) == 1 && c != '\n') number += c;
    close(fds[0]);
    if (number.empty()) return {};
    // Killed when this process ends, however it ends.
    static const pid_t xvfb = pid;
    std::atexit([] {
        kill(xvfb, SIGTERM);
        waitpid(xvfb, nullptr, 0);
    });
    return ":" + number;
}

}  // namespace

int main(int argc, char** argv) {
    ::testing::InitGoogleTest(&argc, argv);
    if (GTEST_FLAG_GET(list_tests)) return RUN_ALL_TESTS();
    felthawk::testing::gDisplay = StartXvfb();
    if (felthawk::testing::gDisplay.empty()) {
        std::cerr << "Xvfb did not start\n";
        return 1;
    }
    // Everything the program could write goes below one folder of its own.
    QTemporaryDir sandbox;
    felthawk::testing::gSandbox = QDir(sandbox.path()).canonicalPath();
    const QString root = felthawk::testing::gSandbox;
    for (const char* name : {"HOME", "XDG_DATA_HOME", "XDG_CONFIG_HOME", "XDG_CACHE_HOME",
                             "XDG_RUNTIME_DIR", "TMPDIR"}) {
        const QString folder = root + u'/' + QString::fromLatin1(name).toLower();
        QDir().mkpath(folder);
        QFile::setPermissions(
            folder, QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ExeOwner);
        qputenv(name, folder.toUtf8());
    }
    QDir().mkpath(root + "/work");
    QDir::setCurrent(root + "/work");
    qputenv("DISPLAY", felthawk::testing::gDisplay.c_str());
    qputenv("QT_QPA_PLATFORM", "xcb");
    QApplication app(argc, argv);
    QApplication::setOrganizationName(QStringLiteral("FELTHAWK"));
    QApplication::setApplicationName(QStringLiteral("FELTHAWK"));
    return RUN_ALL_TESTS();
}
