#include "tests/capture/x11_session.h"

#include <poll.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>
#include <xcb/xcb.h>

#include <QDeadlineTimer>
#include <QThread>
#include <cstdlib>
#include <cstring>

#include "tools/table/table_process.h"

namespace felthawk {
namespace {

constexpr int kStartTimeoutMs = 20000;
constexpr int kPollMs = 50;

// Whether a window manager has announced itself on the screen.
bool WindowManagerRunning() {
    xcb_connection_t* c = xcb_connect(nullptr, nullptr);
    bool running = false;
    if (!xcb_connection_has_error(c)) {
        const xcb_window_t root = xcb_setup_roots_iterator(xcb_get_setup(c)).data->root;
        constexpr const char* kCheck = "_NET_SUPPORTING_WM_CHECK";
        auto* atom = xcb_intern_atom_reply(
            c, xcb_intern_atom(c, 0, static_cast<uint16_t>(std::strlen(kCheck)), kCheck), nullptr);
        if (atom != nullptr) {
            auto* property = xcb_get_property_reply(
                c, xcb_get_property(c, 0, root, atom->atom, XCB_ATOM_WINDOW, 0, 1), nullptr);
            running = property != nullptr && xcb_get_property_value_length(property) == 4;
            std::free(property);
        }
        std::free(atom);
    }
    xcb_disconnect(c);
    return running;
}

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
    for (QDeadlineTimer deadline(kStartTimeoutMs); !deadline.hasExpired();) {
        if (WindowManagerRunning()) return true;
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
