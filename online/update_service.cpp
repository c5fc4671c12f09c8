#include "online/update_service.h"

#include <QWidget>
#include <utility>

#include "online/app_version.h"
#include "online/frm_update.h"
#include "online/transfer.h"
#include "settings/dialogs.h"

namespace felthawk {

UpdateService::UpdateService(IDialogs& dialogs, IDesktop& desktop, OnlineConfig config)
    : dialogs_(dialogs), desktop_(desktop), config_(std::move(config)) {}

bool UpdateService::NewUpdate() {
    Inet inet(config_.fetchTimeoutMs);
    cAppVersion version(inet);
    version.XMLSource = config_.ServerUrl(QString::fromLatin1(kVersionPath));
    return IsNewerVersion(version.GetCurrentVersion());
}

void UpdateService::VersionProgram1(QWidget* splash) {
    RunVersionDialogue(splash, splash, false);
}

void UpdateService::VersionProgram2(QWidget* parent) {
    RunVersionDialogue(parent, nullptr, true);
}

void UpdateService::RunVersionDialogue(QWidget* form, QWidget* splash, bool manual) {
    const QString title = QString::fromLatin1(kMessageTitle);
    if (NewUpdate()) {
        if (dialogs_.AskYesNo(
                form,
                QStringLiteral("There is a new version of FeltHawk, Do you want to download ?"),
                title)) {
            gUpdateChosen = true;
            // A failed download leaves the splash standing: nothing closes it.
            frmUpdate update(form, config_, dialogs_, desktop_);
            update.exec();
        } else if (splash) {
            splash->close();
        }
    } else if (manual) {
        dialogs_.MessageBox(form, QStringLiteral("No Upgrades found, Please try later"), title,
                            MessageIcon::Information);
    } else if (splash && !gUpdateChosen) {
        splash->close();
    }
}

}  // namespace felthawk
