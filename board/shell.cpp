#include "board/shell.h"

#include <QDesktopServices>
#include <QUrl>

namespace felthawk {

QString WebSite() {
    return QStringLiteral(FELTHAWK_WEB_SITE);
}
QString SupportMail() {
    return QStringLiteral(FELTHAWK_SUPPORT_MAIL);
}
QString SuggestionMail() {
    return QStringLiteral(FELTHAWK_SUGGESTION_MAIL);
}

void OpenAddress(const QString& address) {
    QDesktopServices::openUrl(QUrl(address));
}

void OpenMailTo(const QString& address) {
    QDesktopServices::openUrl(QUrl(QStringLiteral("mailto: ") + address));
}

}  // namespace felthawk
