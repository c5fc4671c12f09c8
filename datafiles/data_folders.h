// Where the program's files live. Files it writes go to the per-user data
// folder; files it only reads (the card templates, the default banner and its
// page) are looked up there first and then in the data folder installed with
// the program, which sits at the same place relative to the program whether
// it was installed under /usr, /usr/local or unpacked anywhere else.
#pragma once

#include <QString>
#include <QStringList>

namespace felthawk {

// The folder for the files the program writes.
QString WritableDataFolder();

// The data folder that belongs to a program in `programFolder`:
// <prefix>/share/felthawk for a program in <prefix>/bin.
QString InstalledDataFolder(const QString& programFolder);

// The per-user data folders, the user's own first, then the installed data
// folder of the running program; each folder once.
QStringList ReadOnlyDataFolders();

}  // namespace felthawk
