#include "tests/capture/x11_session.h"

#include <poll.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include "tools/table/table_process.h"

namespace felthawk {

constexpr int kStartTimeoutMs = 20000;

XvfbServer::~XvfbServer() {
    if (pid_ > 0) {
        ::kill(pid_, SIGTERM);
        ::waitpid(pid_, nullptr, 0);
    }
}

bool XvfbServer::Start(std::string& error) {
    int fds[2];
    if (::pipe(fds) != 0 || (pid_ = ::fork()) < 0) {
        error = "cannot start Xvfb";
        return false;
    }
    if (pid_ == 0) {
        ::close(fds[0]);
        const std::string fd = std::to_string(fds[1]);
        ::execlp("Xvfb", "Xvfb", "-displayfd", fd.c_str(), "-screen", "0", "1024x768x24",
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
