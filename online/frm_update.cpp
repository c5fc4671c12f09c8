#include "online/frm_update.h"

#include <QDir>
#include <QGridLayout>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QStyle>
#include <QTimer>
#include <QUrl>
#include <utility>

#include "online/desktop.h"
#include "settings/dialogs.h"

namespace felthawk {

frmUpdate::frmUpdate(QWidget* parent, const OnlineConfig& config, IDialogs& dialogs,
                     IDesktop& desktop, QByteArray digest)
    : QDialog(parent),
      config_(config),
      dialogs_(dialogs),
      desktop_(desktop),
      digest_(std::move(digest)),
      Image1(new QLabel(this)),
      Label1(new QLabel(QStringLiteral("Downloading Files. Please wait"), this)),
      ProgressBar1(new QProgressBar(this)),
      cmdCancel(new QPushButton(QStringLiteral("Cancel"), this)) {
    setObjectName(QStringLiteral("frmUpdate"));
    setWindowTitle(QString::fromLatin1(kMessageTitle));
    Image1->setObjectName(QStringLiteral("Image1"));
    Label1->setObjectName(QStringLiteral("Label1"));
    ProgressBar1->setObjectName(QStringLiteral("ProgressBar1"));
    cmdCancel->setObjectName(QStringLiteral("cmdCancel"));
    Image1->setPixmap(style()->standardIcon(QStyle::SP_ArrowDown).pixmap(32, 32));
    // Busy until the server says how long the installer is.
    ProgressBar1->setRange(0, 0);
    auto* layout = new QGridLayout(this);
    layout->addWidget(Image1, 0, 0, 2, 1);
    layout->addWidget(Label1, 0, 1);
    layout->addWidget(ProgressBar1, 1, 1);
    layout->addWidget(cmdCancel, 2, 1, Qt::AlignRight);
    connect(cmdCancel, &QPushButton::clicked, &Inet1, &Inet::Cancel);
    connect(&Inet1, &Inet::Progress, this, &frmUpdate::ShowProgress);
}

void frmUpdate::showEvent(QShowEvent* event) {
    QDialog::showEvent(event);
    if (!activated_) QTimer::singleShot(0, this, &frmUpdate::Activate);
}

void frmUpdate::Activate() {
    if (activated_) return;
    activated_ = true;
    Execute();
}

void frmUpdate::Execute() {
    // Without a published digest no download could be trusted: none is made.
    if (digest_.isEmpty()) {
        Tell(kNotVerified);
        return Finish(false);
    }
    file_ = std::make_unique<QSaveFile>(
        QDir(config_.programFolder).filePath(QString::fromLatin1(kInstallerName)));
    if (!QDir().mkpath(config_.programFolder) || !file_->open(QIODevice::WriteOnly)) {
        file_.reset();
        Tell(kUnexpected);
        return Finish(false);
    }
    hash_.reset();
    Inet1.OpenURL(
        config_.ServerUrl(QString::fromLatin1(kInstallerPath)), kInstallerLimits,
        [this](const TransferResult& answer) { Downloaded(answer); },
        [this](const QByteArray& piece) {
            hash_.addData(piece);
            return file_->write(piece) == piece.size();
        });
}

void frmUpdate::ShowProgress(qint64 received, qint64 total) {
    if (total <= 0) return;
    // In kilobytes, so that 200 MB fits the bar's range.
    ProgressBar1->setRange(0, static_cast<int>(total / 1024));
    ProgressBar1->setValue(static_cast<int>(received / 1024));
}

void frmUpdate::Downloaded(const TransferResult& answer) {
    cmdCancel->setEnabled(false);
    if (!answer.ok) {
        file_.reset();
        // A Cancel is the user's own doing: nothing to say.
        if (!answer.cancelled) Tell(kTransferFailed);
        return Finish(false);
    }
    if (!Keep()) return Finish(false);
    Tell(kClosing);
    desktop_.OpenUrl(QUrl::fromLocalFile(
        QDir(config_.programFolder).filePath(QString::fromLatin1(kInstallerName))));
    Finish(true);
}

bool frmUpdate::Keep() {
    const bool verified = hash_.result().toHex() == digest_;
    // Until commit the bytes are in a temporary file; without it they vanish.
    std::unique_ptr<QSaveFile> file = std::move(file_);
    if (!verified) {
        file->cancelWriting();
        Tell(kNotVerified);
        return false;
    }
    if (!file->commit()) {
        Tell(kTransferFailed);
        return false;
    }
    return true;
}

void frmUpdate::Tell(const char* message) {
    dialogs_.MessageBox(this, QString::fromLatin1(message), QString::fromLatin1(kMessageTitle),
                        MessageIcon::Information);
}

void frmUpdate::Finish(bool installing) {
    done(installing ? QDialog::Accepted : QDialog::Rejected);
    if (installing) desktop_.EndProgram();
}

}  // namespace felthawk
