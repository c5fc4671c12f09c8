#include "online/desktop.h"

#include <QApplication>
#include <QDesktopServices>
#include <QUrl>
#include <cstdlib>

namespace felthawk {

bool QtDesktop::OpenUrl(const QUrl& url) {
    return QDesktopServices::openUrl(url);
}

void QtDesktop::EndProgram() {
    // Closing the windows lets the main window put the display back; the
    // exit follows at once, even when no event loop runs yet (the upgrade
    // may start from the splash, before the main window is up).
    QApplication::closeAllWindows();
    std::exit(0);
}

}  // namespace felthawk
