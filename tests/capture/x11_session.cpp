#include "tests/capture/x11_session.h"

#include <poll.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>
#include <xcb/xcb.h>

#include <QDeadlineTimer>
#include <QThread>
#include <cstdlib>

#include "tools/table/table_process.h"

namespace felthawk {
namespace {

constexpr int kStartTimeoutMs = 20000;
constexpr int kPollMs = 50;

// Whether a window manager frames new windows yet: a window of our own is
// mapped, and has a parent other than the screen's root once it is framed.
class FramingProbe {
  public:
    FramingProbe() : c_(xcb_connect(nullptr, nullptr)) {
        if (xcb_connection_has_error(c_)) return;
        const xcb_screen_t* screen = xcb_setup_roots_iterator(xcb_get_setup(c_)).data;
        root_ = screen->root;
        window_ = xcb_generate_id(c_);
        xcb_create_window(c_, XCB_COPY_FROM_PARENT, window_, root_, 0, 0, 10, 10, 0,
                          XCB_WINDOW_CLASS_INPUT_OUTPUT, screen->root_visual, 0, nullptr);
        xcb_map_window(c_, window_);
        xcb_flush(c_);
    }
    ~FramingProbe() { xcb_disconnect(c_); }
    FramingProbe(const FramingProbe&) = delete;
    FramingProbe& operator=(const FramingProbe&) = delete;

    bool Framed() {
        if (window_ == 0) return false;
        auto* tree = xcb_query_tree_reply(c_, xcb_query_tree(c_, window_), nullptr);
        const bool framed = tree != nullptr && tree->parent != root_;
        std::free(tree);
        return framed;
    }

  private:
    xcb_connection_t* c_;
    xcb_window_t root_ = 0;
    xcb_window_t window_ = 0;
};

}  // namespace

XvfbServer::~XvfbServer() {
    if (pid_ > 0) {
        ::kill(pid_, SIGTERM);
        ::waitpid(pid_, nullptr, 0);
    }
}

bool XvfbServer::Start(int depth, std::string& error) {
    int fds[2];
    if (::pipe(fds) != 0 || (pid_ = ::fork()) < 0) {
        error = "cannot start Xvfb";
        return false;
    }
    if (pid_ == 0) {
        ::close(fds[0]);
        const std::string fd = std::to_string(fds[1]);
        const std::string screen = "1024x768x" + std::to_string(depth);
        ::execlp("Xvfb", "Xvfb", "-displayfd", fd.c_str(), "-screen", "0", screen.c_str(),
                 "-nolisten", "tcp", "-noreset", static_cast<char*>(nullptr));
        ::_exit(127);
    }
    ::close(fds[1]);
    std::string number;
    pollfd wait{fds[0], POLLIN, 0};
    char c = 0;
    while (::poll(&wait, 1, kStartTimeoutMs) > 0 && ::read(fds[0], &c, 1) == 1 && c != '\n') {
        number.push_back(c);
    }
    ::close(fds[0]);
    if (number.empty()) error = "Xvfb did not start (is the xvfb package installed?)";
    display_ = ":" + number;
    return !number.empty();
}

WindowManager::~WindowManager() {
    if (process_.state() == QProcess::NotRunning) return;
    process_.terminate();
    if (!process_.waitForFinished(kStartTimeoutMs)) {
        process_.kill();
        process_.waitForFinished(kStartTimeoutMs);
    }
}

bool WindowManager::Start(const std::string& name, std::string& error) {
    if (name == "none") return true;
    if (name != "openbox" && name != "icewm") {
        error = "unknown window manager " + name;
        return false;
    }
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    const QString home = QString::fromStdString(home_.path().string());
    environment.insert("HOME", home);
    environment.insert("XDG_CONFIG_HOME", home);
    environment.insert("XDG_CACHE_HOME", home);
    process_.setProcessEnvironment(environment);
    process_.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    process_.setStandardOutputFile(QProcess::nullDevice());
    process_.start(QString::fromStdString(name), {});
    if (!process_.waitForStarted(kStartTimeoutMs)) {
        error = name + " did not start (is its package installed?)";
        return false;
    }
    FramingProbe probe;
    for (QDeadlineTimer deadline(kStartTimeoutMs); !deadline.hasExpired();) {
        if (probe.Framed()) return true;
        if (process_.state() == QProcess::NotRunning) break;
        QThread::msleep(kPollMs);
    }
    error = name + " did not take the screen";
    return false;
}

WindowId TableProcess::Start(const QStringList& arguments) {
    process_.start(FELTHAWK_TABLE_PROGRAM, QStringList{"--commands"} + arguments);
    if (!process_.waitForStarted(kStartTimeoutMs)) return 0;
    return WaitForTableReady(process_, kStartTimeoutMs);
}

bool TableProcess::Deal(const std::string& cells) {
    process_.write(("cells " + cells + "\n").c_str());
    return WaitForTableReady(process_, kStartTimeoutMs) != 0;
}

void TableProcess::Kill() {
    if (process_.state() == QProcess::NotRunning) return;
    process_.kill();
    process_.waitForFinished(kStartTimeoutMs);
}

}  // namespace felthawk
