// The version check the splash runs at start and the menu's "Check for
// Update": ask the server for its version, offer a newer one, download it.
// The question waits for the server without holding the window.
#pragma once

#include <QByteArray>
#include <QObject>
#include <QPointer>
#include <QWidget>

#include "board/services.h"
#include "online/online_config.h"
#include "online/transfer.h"

class QProgressDialog;

namespace felthawk {

class IDesktop;
class IDialogs;

// The version file on the server.
inline constexpr char kVersionPath[] = "member/VersionCheck/Version.xml";

class UpdateService : public QObject, public IUpdateService {
    Q_OBJECT
  public:
    UpdateService(IDialogs& dialogs, IDesktop& desktop, OnlineConfig config);
    ~UpdateService() override;

    // Silent: asks the server and returns at once. When the answer comes the
    // dialogue runs, and closes the splash unless the user chose a download.
    void VersionProgram1(QWidget* splash) override;
    // Also says "No Upgrades found, Please try later". While the server is
    // asked a small window with a busy cursor offers Cancel.
    void VersionProgram2(QWidget* parent) override;
    // A question or the download is on the screen.
    bool DialogueOpen() const override { return dialogueOpen_; }

    // The server has been asked and has not answered yet.
    bool Checking() const { return inet_.StillExecuting(); }
    // The user has said yes to a download (gUpdateChosen).
    bool UpdateChosen() const { return gUpdateChosen; }

  private:
    void StartCheck();
    void ShowWaiting();
    void CloseWaiting();
    void Answered(const TransferResult& answer);
    // The dialogue both entries share, once the server's version is known.
    void RunVersionDialogue(bool newer, const QByteArray& digest);
    // The form the dialogue belongs to: the splash while it stands.
    QWidget* Form() const;
    void CloseSplash();

    IDialogs& dialogs_;
    IDesktop& desktop_;
    OnlineConfig config_;
    Inet inet_;
    // The splash of the silent check, and the window it stands over.
    QPointer<QWidget> splash_;
    QPointer<QWidget> form_;
    bool manual_ = false;
    QPointer<QProgressDialog> waiting_;
    bool dialogueOpen_ = false;
    bool gUpdateChosen = false;
};

}  // namespace felthawk
