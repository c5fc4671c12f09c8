#include "settings/display_guard.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/prctl.h>
#include <unistd.h>

#include <cerrno>

#include <QCryptographicHash>
#include <QFile>
#include <QSaveFile>
#include <QStringList>

namespace felthawk {

namespace {

// The longest note we read: four numbers and their blanks.
constexpr qint64 kMaxNoteSize = 64;

}  // namespace

QString DisplayModeNote::PathFor(const QString& dataFolder, const QString& display) {
    // The display name may hold a host and a ":"; a hash keeps the file name
    // plain and still one per display.
    const QByteArray hash =
        QCryptographicHash::hash(display.toUtf8(), QCryptographicHash::Sha1).toHex().left(12);
    return dataFolder + QStringLiteral("/display-mode-") + QString::fromLatin1(hash) +
           QStringLiteral(".note");
}

bool DisplayModeNote::Write(const DisplayMode& mode) const {
    QSaveFile file(path_);
    if (!file.open(QIODevice::WriteOnly)) return false;
    const QByteArray text = QByteArray::number(mode.width) + ' ' + QByteArray::number(mode.height) +
                            ' ' + QByteArray::number(mode.depth) + ' ' +
                            QByteArray::number(mode.frequency) + '\n';
    return file.write(text) == text.size() && file.commit();
}

std::optional<DisplayMode> DisplayModeNote::Read() const {
    QFile file(path_);
    if (!file.open(QIODevice::ReadOnly)) return std::nullopt;
    const QStringList fields =
        QString::fromLatin1(file.read(kMaxNoteSize)).simplified().split(QLatin1Char(' '));
    if (fields.size() != 4) return std::nullopt;
    int16_t values[4] = {};
    for (int i = 0; i < 4; ++i) {
        bool ok = false;
        const int value = fields[i].toInt(&ok);
        if (!ok || value <= 0 || value > INT16_MAX) return std::nullopt;
        values[i] = static_cast<int16_t>(value);
    }
    return DisplayMode{values[0], values[1], values[2], values[3]};
}

void DisplayModeNote::Remove() const {
    QFile::remove(path_);
}

bool RestoreNotedMode(const DisplayModeNote& note, IDisplayModes& modes) {
    if (!QFile::exists(note.Path())) return false;
    // A note that is no mode cannot be acted on, and is dropped all the same.
    if (const std::optional<DisplayMode> mode = note.Read()) modes.Apply(*mode);
    note.Remove();
    return true;
}

bool StartDisplayGuard(const std::string& notePath, const std::string& display) {
    int fds[2];
    if (::pipe2(fds, O_CLOEXEC) != 0) return false;
    const pid_t pid = ::fork();
    if (pid < 0) {
        ::close(fds[0]);
        ::close(fds[1]);
        return false;
    }
    if (pid > 0) {
        // The program keeps the writing end, open until it ends.
        ::close(fds[0]);
        return true;
    }

    // The guard. Keep the reading end and the error output, nothing else:
    // a lock or a socket of the program must die with the program.
    ::prctl(PR_SET_NAME, "felthawk-guard");
    ::signal(SIGINT, SIG_IGN);
    ::signal(SIGHUP, SIG_IGN);
    ::signal(SIGTERM, SIG_IGN);
    ::setpgid(0, 0);
    const int devNull = ::open("/dev/null", O_RDWR);
    ::dup2(devNull, STDIN_FILENO);
    ::dup2(devNull, STDOUT_FILENO);
    ::dup2(fds[0], 3);
    ::closefrom(4);

    char byte = 0;
    ssize_t got = 0;
    do {
        got = ::read(3, &byte, 1);
    } while (got > 0 || (got < 0 && errno == EINTR));

    XRandrDisplayModes modes(display.c_str());
    RestoreNotedMode(DisplayModeNote(QString::fromStdString(notePath)), modes);
    ::_exit(0);
}

}  // namespace felthawk
