// An Xvfb of our own on a free display, and felthawk-table running on it.
#pragma once

#include <sys/types.h>
#include <QProcess>
#include <string>

#include "capture/window_system.h"

namespace felthawk {

class XvfbServer {
  public:
    XvfbServer() = default;
    ~XvfbServer();
    XvfbServer(const XvfbServer&) = delete;
    XvfbServer& operator=(const XvfbServer&) = delete;

    // A 1024 by 768 screen at 24 bits; false with a message on failure.
    bool Start(std::string& error);
    const std::string& Display() const { return display_; }

  private:
    pid_t pid_ = -1;
    std::string display_;
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
