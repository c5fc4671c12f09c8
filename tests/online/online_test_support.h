// What the online tests share: a scripted stand-in for the dialogs and the
// desktop, and a real HTTP server on loopback serving a temporary folder.
#pragma once

#include <QByteArray>
#include <QProcess>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>
#include <QUrl>
#include <vector>

#include "online/desktop.h"
#include "online/online_config.h"
#include "settings/dialogs.h"

namespace felthawk::testing {

class FakeDialogs : public IDialogs {
  public:
    QString InputBox(QWidget*, const QString&, const QString&, const QString&,
                     bool* accepted) override;
    void MessageBox(QWidget*, const QString& text, const QString&, MessageIcon icon) override;
    bool AskYesNo(QWidget*, const QString& text, const QString&) override;

    // The answer to every Yes/No question.
    bool answerYes = false;
    QStringList questions;
    QStringList messages;
    std::vector<MessageIcon> icons;
};

class FakeDesktop : public IDesktop {
  public:
    bool OpenUrl(const QUrl& url) override;
    void EndProgram() override { ++ended; }

    std::vector<QUrl> opened;
    int ended = 0;
};

// tests/online/test_server.py on a free loopback port, serving a folder of
// its own. Stops with the object.
class TestServer {
  public:
    TestServer();
    ~TestServer();
    TestServer(const TestServer&) = delete;
    TestServer& operator=(const TestServer&) = delete;

    // Writes `bytes` at `path` below the served folder.
    void Put(const QString& path, const QByteArray& bytes) const;
    // Copies the files below `folder` into the served folder.
    void PutTree(const QString& folder) const;
    // "http://127.0.0.1:<port>/" followed by `prefix` ("", "hang/", "slow/").
    QString Base(const QString& prefix = {}) const;
    int Port() const { return port_; }
    // The paths asked for so far, in order, joined by blanks.
    QString Requests();

  private:
    QTemporaryDir root_;
    QProcess process_;
    int port_ = 0;
    QStringList requests_;
};

// A loopback port that nothing listens on.
QString DownServer();

// The program's configuration as the program makes it, with FELTHAWK_SERVER
// set to `server`, writing to `programFolder` and with a short bound.
OnlineConfig ConfigFor(const QString& server, const QString& programFolder, int timeoutMs = 3000);

QByteArray ReadFile(const QString& path);

}  // namespace felthawk::testing
