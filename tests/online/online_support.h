// What the online tests share: dialogs and a desktop that record what they
// are asked, the loopback server, and the program's configuration for it.
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
    QString InputBox(QWidget*, const QString&, const QString&, const QString&, bool*) override;
    void MessageBox(QWidget*, const QString& text, const QString&, MessageIcon icon) override;
    bool AskYesNo(QWidget*, const QString& text, const QString&) override;

    bool answerYes = false;  // to every Yes/No question
    QStringList questions;
    QStringList messages;
};

class FakeDesktop : public IDesktop {
  public:
    bool OpenUrl(const QUrl& url) override {
        opened.push_back(url);
        return true;
    }
    void EndProgram() override { ++ended; }

    std::vector<QUrl> opened;
    int ended = 0;
};

QByteArray ReadFile(const QString& path);

// test_server.py on a free loopback port, serving a temporary folder; it
// stops with the object.
class TestServer {
  public:
    TestServer();
    ~TestServer();

    // Writes `bytes` at `path` below the served folder.
    void Put(const QString& path, const QByteArray& bytes) const;
    // Makes the server misbehave at `path`: "hang", "endless" or "huge".
    void Misbehave(const QString& path, const char* behaviour) const;
    // The served folder, without symbolic links.
    QString Root() const;
    // "http://127.0.0.1:<port>/" followed by `prefix` ("", "hang/", "slow/").
    QString Base(const QString& prefix = {}) const;
    // The paths asked for so far, in order, joined by blanks. Each path is
    // written before its answer: a short wait collects all.
    QString Requests();

  private:
    QTemporaryDir root_;
    QProcess process_;
    int port_ = 0;
    QStringList requests_;
};

// A loopback port that nothing listens on.
QString DownServer();

// The program's configuration with FELTHAWK_SERVER set to `server`, writing
// to `programFolder`.
OnlineConfig ConfigFor(const QString& server, const QString& programFolder);

// A version file: `text` when it is "" or a whole document, else the
// attributes of CURRENTVERSION.
QByteArray VersionFile(const QByteArray& text);

// The lower-case hexadecimal SHA-256 of `bytes`.
QByteArray Sha256(const QByteArray& bytes);

}  // namespace felthawk::testing
