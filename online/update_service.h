// The version check the splash runs at start and the menu's "Check for
// Update": ask the server for its version, offer a newer one, download it.
#pragma once

#include "board/services.h"
#include "online/online_config.h"

namespace felthawk {

class IDesktop;
class IDialogs;

// The version file on the server.
inline constexpr char kVersionPath[] = "member/VersionCheck/Version.xml";

class UpdateService : public IUpdateService {
  public:
    UpdateService(IDialogs& dialogs, IDesktop& desktop, OnlineConfig config);

    // Silent: closes the splash unless the user chose a download.
    void VersionProgram1(QWidget* splash) override;
    // Also says "No Upgrades found, Please try later".
    void VersionProgram2(QWidget* parent) override;

    // True when the server names a build above this one.
    bool NewUpdate();
    // The user has said yes to a download (gUpdateChosen).
    bool UpdateChosen() const { return gUpdateChosen; }

  private:
    // The dialogue both entries share. `splash` is the splash form to close
    // on the silent paths, nullptr from the menu.
    void RunVersionDialogue(QWidget* form, QWidget* splash, bool manual);

    IDialogs& dialogs_;
    IDesktop& desktop_;
    OnlineConfig config_;
    bool gUpdateChosen = false;
};

}  // namespace felthawk
