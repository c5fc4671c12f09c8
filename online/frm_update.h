// The upgrade form: shown while the installer downloads, with a progress bar
// and a Cancel; it closes itself once the download is over.
#pragma once

#include <QByteArray>
#include <QCryptographicHash>
#include <QDialog>
#include <QSaveFile>
#include <memory>

#include "online/online_config.h"
#include "online/transfer.h"

class QLabel;
class QProgressBar;
class QPushButton;

namespace felthawk {

class IDesktop;
class IDialogs;

// The installer on the server and under the program's folder.
inline constexpr char kInstallerPath[] = "member/downloads/FHawk.msi";
inline constexpr char kInstallerName[] = "FHawk.msi";

class frmUpdate : public QDialog {
    Q_OBJECT
  public:
    // `digest`: the installer's SHA-256 that the version file published, in
    // lower-case hexadecimal; "" when it published none.
    frmUpdate(QWidget* parent, const OnlineConfig& config, IDialogs& dialogs, IDesktop& desktop,
              QByteArray digest);

    // Starts the download of the installer into a new temporary file in the
    // program's folder; Downloaded ends it.
    void Execute();

    // The messages, in the form's own words.
    static constexpr char kClosing[] = "The Program will be closed for installing the Upgrade";
    static constexpr char kTransferFailed[] =
        "An error has occured in the file transfer or write.  Please try again later.";
    static constexpr char kNotVerified[] = "The upgrade could not be verified";
    static constexpr char kUnexpected[] = "Un expected error";

  protected:
    void showEvent(QShowEvent* event) override;

  private:
    // Runs once, when the form first shows.
    void Activate();
    void Downloaded(const TransferResult& answer);
    // Keeps the installer as FHawk.msi when it is whole and its digest is
    // the published one; says what went wrong otherwise.
    bool Keep();
    void ShowProgress(qint64 received, qint64 total);
    void Tell(const char* message);
    // Closes the form; an installer on its way ends the program.
    void Finish(bool installing);

    OnlineConfig config_;
    IDialogs& dialogs_;
    IDesktop& desktop_;
    QByteArray digest_;
    QLabel* Image1;
    QLabel* Label1;
    QProgressBar* ProgressBar1;
    QPushButton* cmdCancel;
    // Until it is kept, the installer is a temporary file that goes with
    // the form, however the download ends.
    std::unique_ptr<QSaveFile> file_;
    QCryptographicHash hash_{QCryptographicHash::Sha256};
    Inet Inet1;
    bool activated_ = false;
};

}  // namespace felthawk
