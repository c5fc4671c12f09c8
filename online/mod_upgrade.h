// The download of the upgrade's installer.
#pragma once

#include <QString>

class QWidget;

namespace felthawk {

class IDialogs;
class Inet;

// The file name in `url`: everything after its last "/", "" when it has none.
QString FileNameOfUrl(const QString& url);

// Fetches `url` whole and writes it to `folder` under the URL's file name.
// The file is written over, not emptied first: an older, longer file keeps
// its tail, as the installer download always did. False, without a word,
// while `inet` is busy with another transfer; false after the message
// "An error has occured in the file transfer or write.  Please try again
// later." when the fetch or the write fails; true when the file is on disk.
bool DownloadFile(Inet& inet, const QString& url, const QString& folder, IDialogs& dialogs,
                  QWidget* parent);

}  // namespace felthawk
