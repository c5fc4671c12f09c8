// The upgrade form: shown while the installer downloads; it has no buttons
// and closes itself once the download is over.
#pragma once

#include <QDialog>

#include "online/online_config.h"
#include "online/transfer.h"

class QLabel;

namespace felthawk {

class IDesktop;
class IDialogs;

// The installer on the server and under the program's folder.
inline constexpr char kInstallerPath[] = "member/downloads/FHawk.msi";
inline constexpr char kInstallerName[] = "FHawk.msi";

class frmUpdate : public QDialog {
    Q_OBJECT
  public:
    frmUpdate(QWidget* parent, const OnlineConfig& config, IDialogs& dialogs, IDesktop& desktop);

    // Downloads the installer into the program's folder, says that the
    // program will close, and opens the installer through the desktop. True
    // when the installer was handed over; false after a failed download, or
    // after "Un expected error" when the program's folder cannot be made.
    bool Execute();

  protected:
    void showEvent(QShowEvent* event) override;

  private:
    // Runs once, when the form first shows: Execute, close, and end the
    // program when the installer is on its way.
    void Activate();

    OnlineConfig config_;
    IDialogs& dialogs_;
    IDesktop& desktop_;
    QLabel* Image1;
    QLabel* Label1;
    Inet Inet1;
    bool activated_ = false;
};

}  // namespace felthawk
