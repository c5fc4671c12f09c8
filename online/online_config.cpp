#include "online/online_config.h"

#include <QDir>
#include <QFileInfo>

#include "datafiles/data_folders.h"

namespace felthawk {

QString NormalizeServer(const QString& server) {
    return server.endsWith(u'/') ? server : server + u'/';
}

OnlineConfig OnlineConfig::FromEnvironment() {
    OnlineConfig config;
    const QString fromEnvironment = qEnvironmentVariable("FELTHAWK_SERVER");
    config.server = NormalizeServer(
        fromEnvironment.isEmpty() ? QStringLiteral(FELTHAWK_SERVER_DEFAULT) : fromEnvironment);
    config.programFolder = WritableDataFolder();
    config.dataFolders = ReadOnlyDataFolders();
    return config;
}

QString OnlineConfig::ServerUrl(const QString& path) const {
    return server + path;
}

QString OnlineConfig::FindFile(const QString& relativePath) const {
    const QString own = QDir(programFolder).filePath(relativePath);
    if (QFileInfo::exists(own)) return own;
    for (const QString& folder : dataFolders) {
        const QString candidate = QDir(folder).filePath(relativePath);
        if (QFileInfo::exists(candidate)) return candidate;
    }
    return own;
}

}  // namespace felthawk
