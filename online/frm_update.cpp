#include "online/frm_update.h"

#include <QDir>
#include <QHBoxLayout>
#include <QLabel>
#include <QStyle>
#include <QTimer>
#include <QUrl>
#include <stdexcept>

#include "online/desktop.h"
#include "online/mod_upgrade.h"
#include "settings/dialogs.h"

namespace felthawk {

frmUpdate::frmUpdate(QWidget* parent, const OnlineConfig& config, IDialogs& dialogs,
                     IDesktop& desktop)
    : QDialog(parent),
      config_(config),
      dialogs_(dialogs),
      desktop_(desktop),
      Image1(new QLabel(this)),
      Label1(new QLabel(QStringLiteral("Downloading Files. Please wait"), this)),
      Inet1(config.fetchTimeoutMs) {
    setObjectName(QStringLiteral("frmUpdate"));
    setWindowTitle(QString::fromLatin1(kMessageTitle));
    Image1->setObjectName(QStringLiteral("Image1"));
    Label1->setObjectName(QStringLiteral("Label1"));
    Image1->setPixmap(style()->standardIcon(QStyle::SP_ArrowDown).pixmap(32, 32));
    auto* layout = new QHBoxLayout(this);
    layout->addWidget(Image1);
    layout->addWidget(Label1);
}

void frmUpdate::showEvent(QShowEvent* event) {
    QDialog::showEvent(event);
    // Queued, so the form is on the screen before the download blocks it.
    if (!activated_) QTimer::singleShot(0, this, &frmUpdate::Activate);
}

void frmUpdate::Activate() {
    if (activated_) return;
    activated_ = true;
    const bool installing = Execute();
    done(installing ? QDialog::Accepted : QDialog::Rejected);
    if (installing) desktop_.EndProgram();
}

bool frmUpdate::Execute() {
    const QString title = QString::fromLatin1(kMessageTitle);
    try {
        if (!QDir().mkpath(config_.programFolder)) throw std::runtime_error("no program folder");
        if (!DownloadFile(Inet1, config_.ServerUrl(QString::fromLatin1(kInstallerPath)),
                          config_.programFolder, dialogs_, this))
            return false;
        dialogs_.MessageBox(this,
                            QStringLiteral("The Program will be closed for installing the Upgrade"),
                            title, MessageIcon::Information);
        // The installer is always opened under its own name, whatever the
        // server called it.
        desktop_.OpenUrl(QUrl::fromLocalFile(
            QDir(config_.programFolder).filePath(QString::fromLatin1(kInstallerName))));
        return true;
    } catch (const std::exception&) {
        dialogs_.MessageBox(this, QStringLiteral("Un expected error"), title,
                            MessageIcon::Information);
        return false;
    }
}

}  // namespace felthawk
