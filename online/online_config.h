// Where the online services look: the server, the folder the program writes
// its working files to, and the folders its read-only files come from.
#pragma once

#include <QString>
#include <QStringList>

namespace felthawk {

// The title of every message box the online services show.
inline constexpr char kMessageTitle[] = "Felthawk";

struct OnlineConfig {
    // Base URL of the update and banner server, always ending in "/".
    QString server;
    // The program's folder for the files it writes (temp.htm, FHawk.msi).
    QString programFolder;
    // Folders searched, after programFolder, for the files the program only
    // reads (the default banner and its page).
    QStringList dataFolders;

    // The deployment default, the FELTHAWK_SERVER environment variable over
    // it, the per-user application data folder and the installed data.
    static OnlineConfig FromEnvironment();

    // `path` below the server, e.g. "member/banners/banner.php".
    QString ServerUrl(const QString& path) const;
    // The first existing copy of `relativePath` in programFolder or the data
    // folders; programFolder's (missing) copy when there is none.
    QString FindFile(const QString& relativePath) const;
};

// The server base with a trailing "/" added when missing.
QString NormalizeServer(const QString& server);

}  // namespace felthawk
