#include "board/single_instance.h"

#include <unistd.h>

#include <QCryptographicHash>
#include <QDir>
#include <QFileInfo>
#include <QLocalServer>
#include <QLocalSocket>
#include <QLockFile>

namespace felthawk {

namespace {

constexpr int kAnswerMs = 3000;

// One name per user and display: the user's data folder tells the user.
QString Key(const QString& dataFolder, const QString& display) {
    return QString::fromLatin1(
        QCryptographicHash::hash((dataFolder + QLatin1Char('\n') + display).toUtf8(),
                                 QCryptographicHash::Sha1)
            .toHex()
            .left(16));
}

}  // namespace

SingleInstance::SingleInstance(const QString& dataFolder, const QString& display)
    : socketName_(QStringLiteral("felthawk-%1-%2").arg(::getuid()).arg(Key(dataFolder, display))),
      lock_(std::make_unique<QLockFile>(dataFolder + QStringLiteral("/felthawk-") +
                                        Key(dataFolder, display) + QStringLiteral(".lock"))) {
    // The lock is held for the whole run, however long: only a lock whose
    // program is gone counts as stale.
    lock_->setStaleLockTime(0);
}

SingleInstance::~SingleInstance() {
    delete server_;
}

bool SingleInstance::Acquire() {
    QDir().mkpath(QFileInfo(lock_->fileName()).absolutePath());
    // A folder where no lock can be made does not keep the program from
    // running; only a lock held by a running Felthawk does.
    return lock_->tryLock(0) || lock_->error() != QLockFile::LockFailedError;
}

bool SingleInstance::RaiseRunning() const {
    QLocalSocket socket;
    socket.connectToServer(socketName_);
    if (!socket.waitForConnected(kAnswerMs)) return false;
    socket.disconnectFromServer();
    return true;
}

void SingleInstance::Listen(std::function<void()> raise) {
    server_ = new QLocalServer();
    // A socket file left by a program that was killed is ours to replace:
    // we hold the lock.
    QLocalServer::removeServer(socketName_);
    server_->setSocketOptions(QLocalServer::UserAccessOption);
    if (!server_->listen(socketName_)) return;
    // A second start says nothing but that it is there: every connection
    // raises the window, once.
    QObject::connect(server_, &QLocalServer::newConnection, server_, [this, raise] {
        while (QLocalSocket* socket = server_->nextPendingConnection()) {
            socket->abort();
            socket->deleteLater();
            raise();
        }
    });
}

}  // namespace felthawk
