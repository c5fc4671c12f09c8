// An Xvfb of our own on a free display, a window manager on it, and
// felthawk-table running there.
#pragma once

#include <sys/types.h>
#include <QProcess>
#include <string>

#include "capture/window_system.h"
#include "tests/capture/temp_folder.h"

namespace felthawk {

class XvfbServer {
  public:
    XvfbServer() = default;
    ~XvfbServer();
    XvfbServer(const XvfbServer&) = delete;
    XvfbServer& operator=(const XvfbServer&) = delete;

    // A 1024 by 768 screen of `depth` bits; false with a message on failure.
    bool Start(int depth, std::string& error);
    const std::string& Display() const { return display_; }

  private:
    pid_t pid_ = -1;
    std::string display_;
};

// A window manager on $DISPLAY, with a home of its own.
class WindowManager {
  public:
    WindowManager() = default;
    ~WindowManager();
    WindowManager(const WindowManager&) = delete;
    WindowManager& operator=(const WindowManager&) = delete;

    // Starts `name` (openbox or icewm; "none" starts nothing) and waits
    // until it frames new windows; false with a message on failure.
    bool Start(const std::string& name, std::string& error);

  private:
    QProcess process_;
    TempFolder home_;
};

class TableProcess {
  public:
    ~TableProcess() { Kill(); }

    // The table's window id once it shows, or 0.
    WindowId Start(const QStringList& arguments);
    // Deals new cells and waits until they show; false if refused.
    bool Deal(const std::string& cells);
    void Kill();

  private:
    QProcess process_;
};

}  // namespace felthawk
