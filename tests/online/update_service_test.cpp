// The version check, the upgrade form and the download, against a real
// HTTP server on loopback.
#include <gtest/gtest.h>
#include <QDialog>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTimer>

#include <optional>

#include "online/frm_update.h"
#include "online/mod_upgrade.h"
#include "online/transfer.h"
#include "online/update_service.h"
#include "online_test_support.h"

namespace felthawk {
namespace {

using testing::ConfigFor;
using testing::FakeDesktop;
using testing::FakeDialogs;
using testing::ReadFile;
using testing::TestServer;

const QString kNoUpgrades = QStringLiteral("No Upgrades found, Please try later");
const QString kQuestion =
    QStringLiteral("There is a new version of FeltHawk, Do you want to download ?");
const QString kTransferFailed =
    QStringLiteral("An error has occured in the file transfer or write.  Please try again later.");
const QString kClosing = QStringLiteral("The Program will be closed for installing the Upgrade");

QByteArray VersionFile(const char* attributes) {
    return QByteArray("<?xml version=\"1.0\"?>\n<APPLICATION>\n  <CURRENTVERSION ") + attributes +
           "/>\n</APPLICATION>\n";
}

enum class Server { Serving, Down, NeverAnswers };

TEST(VersionCheck, SplashAndMenuAgainstARealServer) {
    const struct {
        const char* name;
        Server server;
        QByteArray versionFile;  // empty: the file is not on the server
        bool fromMenu;
        bool offered;
        bool splashClosed;
        QStringList messages;
    } cases[] = {
        {"010 at start",
         Server::Serving,
         VersionFile(R"(a="0" b="1" c="0")"),
         false,
         false,
         true,
         {}},
        {"010 on demand",
         Server::Serving,
         VersionFile(R"(a="0" b="1" c="0")"),
         true,
         false,
         false,
         {kNoUpgrades}},
        {"011 at start, no",
         Server::Serving,
         VersionFile(R"(a="0" b="1" c="1")"),
         false,
         true,
         true,
         {}},
        {"011 on demand, no",
         Server::Serving,
         VersionFile(R"(a="0" b="1" c="1")"),
         true,
         true,
         false,
         {}},
        {"empty document on demand",
         Server::Serving,
         QByteArray(" "),
         true,
         false,
         false,
         {kNoUpgrades}},
        {"missing file on demand",
         Server::Serving,
         QByteArray(),
         true,
         false,
         false,
         {kNoUpgrades}},
        // Short joins: "12" is above this build, "09" is not.
        {"missing attribute, 12",
         Server::Serving,
         VersionFile(R"(a="1" b="2")"),
         true,
         true,
         false,
         {}},
        {"missing attribute, 09",
         Server::Serving,
         VersionFile(R"(a="0" b="9")"),
         true,
         false,
         false,
         {kNoUpgrades}},
        {"server down at start", Server::Down, {}, false, false, true, {}},
        {"server down on demand", Server::Down, {}, true, false, false, {kNoUpgrades}},
        {"never answers at start", Server::NeverAnswers, {}, false, false, true, {}},
        {"never answers on demand", Server::NeverAnswers, {}, true, false, false, {kNoUpgrades}},
    };
    TestServer server;
    QTemporaryDir folder;
    for (const auto& c : cases) {
        if (!c.versionFile.isEmpty()) server.Put(QString::fromLatin1(kVersionPath), c.versionFile);
        const QString base = c.server == Server::Down ? testing::DownServer()
                             : c.server == Server::NeverAnswers
                                 ? server.Base(QStringLiteral("hang/"))
                             : c.versionFile.isEmpty() ? server.Base(QStringLiteral("none/"))
                                                       : server.Base();
        FakeDialogs dialogs;
        FakeDesktop desktop;
        UpdateService service(dialogs, desktop, ConfigFor(base, folder.path(), 500));
        QDialog splash;
        splash.show();
        if (c.fromMenu)
            service.VersionProgram2(&splash);
        else
            service.VersionProgram1(&splash);
        EXPECT_EQ(dialogs.questions, c.offered ? QStringList{kQuestion} : QStringList{}) << c.name;
        EXPECT_EQ(dialogs.messages, c.messages) << c.name;
        for (MessageIcon icon : dialogs.icons) EXPECT_EQ(icon, MessageIcon::Information) << c.name;
        EXPECT_EQ(splash.isVisible(), !c.splashClosed) << c.name;
        EXPECT_FALSE(service.UpdateChosen()) << c.name;
        EXPECT_TRUE(desktop.opened.empty()) << c.name;
    }
}

TEST(VersionCheck, YesDownloadsLaunchesAndEnds) {
    const QByteArray installer("MSI\0installer bytes", 19);
    const struct {
        const char* name;
        bool fromSplash;
        bool installerOnServer;
    } cases[] = {
        {"from the splash", true, true},
        {"from the menu", false, true},
        // A failed download leaves the splash standing: nothing closes it.
        {"no installer, from the splash", true, false},
    };
    for (const auto& c : cases) {
        TestServer server;
        QTemporaryDir folder;
        server.Put(QString::fromLatin1(kVersionPath), VersionFile(R"(a="0" b="1" c="1")"));
        if (c.installerOnServer) server.Put(QString::fromLatin1(kInstallerPath), installer);
        FakeDialogs dialogs;
        dialogs.answerYes = true;
        FakeDesktop desktop;
        UpdateService service(dialogs, desktop, ConfigFor(server.Base(), folder.path()));
        QDialog splash;
        splash.show();
        if (c.fromSplash)
            service.VersionProgram1(&splash);
        else
            service.VersionProgram2(&splash);
        const QString saved = folder.filePath(QStringLiteral("FHawk.msi"));
        EXPECT_TRUE(service.UpdateChosen()) << c.name;
        EXPECT_TRUE(splash.isVisible()) << c.name;
        EXPECT_EQ(dialogs.messages, QStringList{c.installerOnServer ? kClosing : kTransferFailed})
            << c.name;
        EXPECT_EQ(ReadFile(saved), c.installerOnServer ? installer : QByteArray()) << c.name;
        EXPECT_EQ(desktop.opened, c.installerOnServer ? std::vector{QUrl::fromLocalFile(saved)}
                                                      : std::vector<QUrl>{})
            << c.name;
        EXPECT_EQ(desktop.ended, c.installerOnServer ? 1 : 0) << c.name;
    }
}

TEST(Execute, ProgramFolderThatCannotBeMadeIsUnexpected) {
    TestServer server;
    QTemporaryDir folder;
    server.Put(QString::fromLatin1(kInstallerPath), "bytes");
    const QString blocker = folder.filePath(QStringLiteral("file"));
    QFile(blocker).open(QIODevice::WriteOnly);
    FakeDialogs dialogs;
    FakeDesktop desktop;
    frmUpdate form(nullptr, ConfigFor(server.Base(), blocker + QStringLiteral("/sub")), dialogs,
                   desktop);
    EXPECT_FALSE(form.Execute());
    EXPECT_EQ(dialogs.messages, QStringList{QStringLiteral("Un expected error")});
    EXPECT_TRUE(desktop.opened.empty());
}

TEST(DownloadFile, WritesOverWithoutEmptyingAndNamesByTheLastSlash) {
    TestServer server;
    server.Put(QStringLiteral("member/downloads/FHawk.msi"), "abc");
    server.Put(QStringLiteral("index.html"), "root page");
    const struct {
        const char* name;
        QString url;
        QByteArray before;  // the file there already, under the URL's name
        QString savedAs;    // "" when the download must fail
        QByteArray after;
    } cases[] = {
        {"fresh",
         server.Base() + QStringLiteral("member/downloads/FHawk.msi"),
         {},
         "FHawk.msi",
         "abc"},
        {"over an older longer file", server.Base() + QStringLiteral("member/downloads/FHawk.msi"),
         "XXXXXXXXXX", "FHawk.msi", "abcXXXXXXX"},
        {"not on the server",
         server.Base() + QStringLiteral("member/downloads/Other.msi"),
         {},
         {},
         {}},
        // Fetched, as http with no path, but saved under an empty name.
        {"no slash", QStringLiteral("127.0.0.1:%1").arg(server.Port()), {}, {}, {}},
        {"server down", testing::DownServer() + QStringLiteral("FHawk.msi"), {}, {}, {}},
    };
    for (const auto& c : cases) {
        QTemporaryDir folder;
        if (!c.before.isEmpty()) {
            QFile old(folder.filePath(c.savedAs));
            ASSERT_TRUE(old.open(QIODevice::WriteOnly));
            old.write(c.before);
        }
        FakeDialogs dialogs;
        Inet inet(3000);
        const bool ok = DownloadFile(inet, c.url, folder.path(), dialogs, nullptr);
        EXPECT_EQ(ok, !c.savedAs.isEmpty()) << c.name;
        if (ok) {
            EXPECT_TRUE(dialogs.messages.isEmpty()) << c.name;
            EXPECT_EQ(ReadFile(folder.filePath(c.savedAs)), c.after) << c.name;
        } else {
            EXPECT_EQ(dialogs.messages, QStringList{kTransferFailed}) << c.name;
            EXPECT_TRUE(QDir(folder.path()).isEmpty()) << c.name;
        }
    }
}

TEST(DownloadFile, RefusesWhileATransferIsRunning) {
    TestServer server;
    server.Put(QStringLiteral("FHawk.msi"), "late");
    QTemporaryDir folder;
    FakeDialogs dialogs;
    Inet inet(5000);
    std::optional<bool> nested;
    // Fires while the slow transfer below is waiting for its answer.
    QTimer::singleShot(200, [&] {
        nested = DownloadFile(inet, server.Base() + QStringLiteral("FHawk.msi"), folder.path(),
                              dialogs, nullptr);
    });
    EXPECT_TRUE(DownloadFile(inet,
                             server.Base(QStringLiteral("slow/")) + QStringLiteral("FHawk.msi"),
                             folder.path(), dialogs, nullptr));
    ASSERT_TRUE(nested.has_value());
    EXPECT_FALSE(*nested);
    EXPECT_TRUE(dialogs.messages.isEmpty());
    EXPECT_FALSE(inet.StillExecuting());
    EXPECT_EQ(ReadFile(folder.filePath(QStringLiteral("FHawk.msi"))), QByteArray("late"));
}

}  // namespace
}  // namespace felthawk
