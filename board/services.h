// The services the main window reaches out to, one interface each. The
// program's main() wires the real ones; tests give fakes or leave them out.
// A missing service (nullptr) means the feature does nothing.
#pragma once

class QWidget;
class QTextBrowser;
class QTimer;

namespace felthawk {

class frmFelthawk;
class modresolution;

// Version check and upgrade.
class IUpdateService {
  public:
    virtual ~IUpdateService() = default;
    // The silent check the splash runs when it becomes active.
    virtual void VersionProgram1(QWidget* splash) = 0;
    // "Check for Update": also reports when there is no new version.
    virtual void VersionProgram2(QWidget* parent) = 0;
    // The check shows a question or a download: the splash stays for it.
    // Waiting for the server is not a reason to stay.
    virtual bool DialogueOpen() const { return false; }
};

// Rotating banners in the main window's banner view.
class IBannerService {
  public:
    virtual ~IBannerService() = default;
    // Called the first time the main window becomes active. The service
    // loads the banner list, shows banners in `view` and drives `timer`
    // (Timer1, owned by the window) to rotate them.
    virtual void LoadBanners(QWidget* window, QTextBrowser* view, QTimer* timer) = 0;
};

// "Send to a Friend".
class IMailService {
  public:
    virtual ~IMailService() = default;
    // Shows the send-to-a-friend form, modal.
    virtual void ShowSendToFriend(QWidget* parent) = 0;
};

// One capture pass, run by tmr_Read every 2000 ms while capture is on.
class ICaptureService {
  public:
    virtual ~ICaptureService() = default;
    virtual void CapturePass(frmFelthawk& board) = 0;
};

struct BoardServices {
    IUpdateService* update = nullptr;
    IBannerService* banners = nullptr;
    IMailService* mail = nullptr;
    ICaptureService* capture = nullptr;
    // The display mode: noted and forced at start, put back at the end.
    modresolution* display = nullptr;
};

}  // namespace felthawk
