// Real X11 parts for tests and benchmarks: an Xvfb server of our own on a
// free display, and felthawk-table running against it.
#pragma once

#include <sys/types.h>
#include <QProcess>
#include <string>

#include "capture/window_system.h"

namespace felthawk {

// Starts Xvfb on the first free display (Xvfb picks it and tells us) and
// stops it at the end.
class XvfbServer {
  public:
    XvfbServer() = default;
    ~XvfbServer();
    XvfbServer(const XvfbServer&) = delete;
    XvfbServer& operator=(const XvfbServer&) = delete;

    // A 1024 by 768 screen at 24 bits; false with a message on failure.
    bool Start(std::string& error);
    // ":N", once started.
    const std::string& Display() const { return display_; }

  private:
    pid_t pid_ = -1;
    std::string display_;
};

// felthawk-table under --commands: it deals anew on request and says when
// the table is on the screen.
class TableProcess {
  public:
    TableProcess() = default;
    ~TableProcess();
    TableProcess(const TableProcess&) = delete;
    TableProcess& operator=(const TableProcess&) = delete;

    // Starts the table of this build with extra arguments and
    // waits until it shows; its window id, or 0.
    WindowId Start(const QStringList& arguments);
    // Deals new cells and waits until they show; false if refused.
    bool Deal(const std::string& cells);
    void Kill();

  private:
    QProcess process_;
};

}  // namespace felthawk
