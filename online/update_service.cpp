#include "online/update_service.h"

#include <QGuiApplication>
#include <QProgressDialog>
#include <utility>

#include "online/app_version.h"
#include "online/frm_update.h"
#include "settings/dialogs.h"

namespace felthawk {

UpdateService::UpdateService(IDialogs& dialogs, IDesktop& desktop, OnlineConfig config)
    : dialogs_(dialogs), desktop_(desktop), config_(std::move(config)) {}

UpdateService::~UpdateService() {
    CloseWaiting();
}

void UpdateService::VersionProgram1(QWidget* splash) {
    splash_ = splash;
    form_ = splash ? splash->parentWidget() : nullptr;
    manual_ = false;
    StartCheck();
}

void UpdateService::VersionProgram2(QWidget* parent) {
    // A check still under way from the start now answers aloud.
    form_ = parent;
    manual_ = true;
    StartCheck();
    if (Checking()) ShowWaiting();
}

void UpdateService::StartCheck() {
    if (Checking() || dialogueOpen_) return;
    inet_.OpenURL(config_.ServerUrl(QString::fromLatin1(kVersionPath)), kVersionFileLimits,
                  [this](const TransferResult& answer) { Answered(answer); });
}

void UpdateService::ShowWaiting() {
    if (waiting_) return;
    waiting_ = new QProgressDialog(QStringLiteral("Checking for Update"), QStringLiteral("Cancel"),
                                   0, 0, form_);
    waiting_->setObjectName(QStringLiteral("frmChecking"));
    waiting_->setWindowTitle(QString::fromLatin1(kMessageTitle));
    waiting_->setWindowModality(Qt::WindowModal);
    waiting_->setAttribute(Qt::WA_DeleteOnClose);
    waiting_->setAutoClose(false);
    waiting_->setAutoReset(false);
    waiting_->setMinimumDuration(0);
    connect(waiting_, &QProgressDialog::canceled, &inet_, &Inet::Cancel);
    connect(waiting_, &QDialog::rejected, &inet_, &Inet::Cancel);
    QGuiApplication::setOverrideCursor(Qt::BusyCursor);
    waiting_->show();
}

void UpdateService::CloseWaiting() {
    if (!waiting_) return;
    // Closing the window would count as a Cancel.
    waiting_->disconnect(&inet_);
    waiting_->close();
    waiting_ = nullptr;
    QGuiApplication::restoreOverrideCursor();
}

void UpdateService::Answered(const TransferResult& answer) {
    CloseWaiting();
    if (answer.cancelled) {
        // The user stopped asking: nothing to say, and the start goes on.
        if (!gUpdateChosen) CloseSplash();
        return;
    }
    // A server out of reach or a file that cannot be read offers nothing.
    cAppVersion version;
    if (answer.ok) version.Load(answer.body);
    const bool newer = IsNewerVersion(version.GetCurrentVersion());
    // The dialogue starts afresh from the event loop, not inside the
    // network's own call.
    QMetaObject::invokeMethod(
        this,
        [this, newer, digest = version.PublishedDigest()] { RunVersionDialogue(newer, digest); },
        Qt::QueuedConnection);
}

void UpdateService::RunVersionDialogue(bool newer, const QByteArray& digest) {
    const QString title = QString::fromLatin1(kMessageTitle);
    if (newer) {
        dialogueOpen_ = true;
        if (dialogs_.AskYesNo(
                Form(),
                QStringLiteral("There is a new version of FeltHawk, Do you want to download ?"),
                title)) {
            gUpdateChosen = true;
            frmUpdate update(Form(), config_, dialogs_, desktop_, digest);
            update.exec();
        }
        dialogueOpen_ = false;
        // Declined, or a download that did not come to an installer: the
        // splash closes and the program goes on.
        CloseSplash();
    } else if (manual_) {
        dialogs_.MessageBox(Form(), QStringLiteral("No Upgrades found, Please try later"), title,
                            MessageIcon::Information);
    } else if (!gUpdateChosen) {
        CloseSplash();
    }
}

QWidget* UpdateService::Form() const {
    return splash_ ? splash_.data() : form_.data();
}

void UpdateService::CloseSplash() {
    if (splash_) splash_->close();
}

}  // namespace felthawk
