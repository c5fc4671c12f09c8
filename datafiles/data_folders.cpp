#include "datafiles/data_folders.h"

#include <QCoreApplication>
#include <QDir>
#include <QStandardPaths>

namespace felthawk {

QString WritableDataFolder() {
    return QStandardPaths::writableLocation(QStandardPaths::AppDataLocation);
}

QString InstalledDataFolder(const QString& programFolder) {
    return QDir::cleanPath(
        QDir(programFolder).filePath(QStringLiteral(FELTHAWK_DATA_FROM_PROGRAM)));
}

QStringList ReadOnlyDataFolders() {
    QStringList folders = QStandardPaths::standardLocations(QStandardPaths::AppDataLocation);
    folders.append(InstalledDataFolder(QCoreApplication::applicationDirPath()));
    folders.removeDuplicates();
    return folders;
}

}  // namespace felthawk
