// One Felthawk per user and display. The first start holds a lock file in
// the data folder and listens on a local socket; a second start finds the
// lock taken, asks the first one over the socket to come to the front, and
// ends.
#pragma once

#include <functional>
#include <memory>

#include <QString>

class QLocalServer;
class QLockFile;

namespace felthawk {

class SingleInstance {
  public:
    // `dataFolder` is the user's, `display` the X display (":0").
    SingleInstance(const QString& dataFolder, const QString& display);
    ~SingleInstance();
    SingleInstance(const SingleInstance&) = delete;
    SingleInstance& operator=(const SingleInstance&) = delete;

    // Takes the lock; false only when a running Felthawk holds it. A lock
    // left by a program that is gone is taken over.
    bool Acquire();
    // From a second start: asks the running one to come to the front; false
    // when it did not answer.
    bool RaiseRunning() const;
    // From the first: listens for second starts and calls `raise` for each.
    // Needs the application object.
    void Listen(std::function<void()> raise);

  private:
    QString socketName_;
    std::unique_ptr<QLockFile> lock_;
    QLocalServer* server_ = nullptr;
};

}  // namespace felthawk
