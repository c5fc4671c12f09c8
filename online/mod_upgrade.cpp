#include "online/mod_upgrade.h"

#include <QFile>

#include "online/online_config.h"
#include "online/transfer.h"
#include "settings/dialogs.h"

namespace felthawk {

QString FileNameOfUrl(const QString& url) {
    const qsizetype slash = url.lastIndexOf(u'/');
    return slash < 0 ? QString() : url.mid(slash + 1);
}

bool DownloadFile(Inet& inet, const QString& url, const QString& folder, IDialogs& dialogs,
                  QWidget* parent) {
    if (inet.StillExecuting()) return false;
    try {
        const QByteArray bytes = inet.OpenURL(url);
        // An empty name leaves the folder itself, which no file can open.
        QFile file(folder + u'/' + FileNameOfUrl(url));
        // ReadWrite rather than WriteOnly: Qt would empty the file first.
        if (!file.open(QIODevice::ReadWrite) || file.write(bytes) != bytes.size() || !file.flush())
            throw TransferError("cannot write " + file.fileName().toStdString());
        return true;
    } catch (const TransferError&) {
        dialogs.MessageBox(
            parent,
            QStringLiteral(
                "An error has occured in the file transfer or write.  Please try again later."),
            QString::fromLatin1(kMessageTitle), MessageIcon::Information);
        return false;
    }
}

}  // namespace felthawk
