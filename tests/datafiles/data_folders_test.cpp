// The folders the program reads its data from: the user's own first, the
// system's per-application folders next, the data beside the program last,
// and that last one really holds the data in a build folder.
#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QTemporaryDir>

#include "datafiles/data_folders.h"

namespace {

using felthawk::InstalledDataFolder;
using felthawk::ReadOnlyDataFolders;
using felthawk::WritableDataFolder;

TEST(InstalledDataFolder, SitsBesideTheProgramsFolder) {
    const struct {
        const char* program;
        const char* data;
    } cases[] = {
        {"/usr/bin", "/usr/share/felthawk"},
        {"/usr/local/bin/", "/usr/local/share/felthawk"},
        {"/tmp/root/usr/bin", "/tmp/root/usr/share/felthawk"},
        {"/opt/a b/./bin", "/opt/a b/share/felthawk"},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(InstalledDataFolder(QString::fromUtf8(c.program)), QString::fromUtf8(c.data))
            << c.program;
    }
}

TEST(ReadOnlyDataFolders, UserFirstThenSystemThenBesideTheProgram) {
    QTemporaryDir root;
    const QString home = root.filePath("home");
    const QString system = root.filePath("system");
    const QString other = root.filePath("other");
    const QString app = "/FELTHAWK/FELTHAWK";
    const QString beside = InstalledDataFolder(QCoreApplication::applicationDirPath());
    const struct {
        const char* name;
        QString dataDirs;
        QStringList expected;
    } cases[] = {
        {"two system folders",
         system + ':' + other,
         {home + app, system + app, other + app, beside}},
        {"the user's folder named twice", home + ':' + system, {home + app, system + app, beside}},
    };
    for (const auto& c : cases) {
        qputenv("XDG_DATA_HOME", home.toUtf8());
        qputenv("XDG_DATA_DIRS", c.dataDirs.toUtf8());
        const QStringList folders = ReadOnlyDataFolders();
        EXPECT_EQ(folders, c.expected) << c.name;
        EXPECT_EQ(WritableDataFolder(), home + app) << c.name;
    }
}

TEST(ReadOnlyDataFolders, TheLastHoldsTheTemplatesAndTheDefaultBanner) {
    const QDir data(ReadOnlyDataFolders().constLast());
    EXPECT_EQ(QDir(data.filePath("Icons")).entryList({"*.ico"}, QDir::Files).size(), 52);
    for (const char* file :
         {"Default.gif", "DefaultLink/Online Poker Games - PalisadePoker_com Poker Room.htm"}) {
        EXPECT_TRUE(QFileInfo(data.filePath(file)).isReadable()) << file;
    }
}

}  // namespace

int main(int argc, char* argv[]) {
    QCoreApplication app(argc, argv);
    QCoreApplication::setOrganizationName("FELTHAWK");
    QCoreApplication::setApplicationName("FELTHAWK");
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
