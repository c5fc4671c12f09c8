#include "online_support.h"

#include <gtest/gtest.h>
#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTcpServer>
#include <stdexcept>

namespace felthawk::testing {

QString FakeDialogs::InputBox(QWidget*, const QString&, const QString&, const QString&, bool*) {
    ADD_FAILURE() << "the online services never ask for input";
    return {};
}

void FakeDialogs::MessageBox(QWidget*, const QString& text, const QString&, MessageIcon icon) {
    messages << text;
    EXPECT_EQ(icon, MessageIcon::Information) << text.toStdString();
}

bool FakeDialogs::AskYesNo(QWidget*, const QString& text, const QString&) {
    questions << text;
    return answerYes;
}

QByteArray ReadFile(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

TestServer::TestServer() {
    process_.start(QStringLiteral("python3"),
                   {QStringLiteral(FELTHAWK_TEST_SERVER_SCRIPT), root_.path()});
    if (!process_.waitForStarted(10000) || !process_.waitForReadyRead(10000))
        throw std::runtime_error("the test server did not start");
    port_ = process_.readLine().trimmed().toInt();
}

TestServer::~TestServer() {
    process_.closeWriteChannel();
    if (!process_.waitForFinished(3000)) process_.kill();
    process_.waitForFinished(3000);
}

void TestServer::Put(const QString& path, const QByteArray& bytes) const {
    const QString full = root_.filePath(path);
    QDir().mkpath(QFileInfo(full).path());
    QFile file(full);
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size())
        throw std::runtime_error("cannot write " + full.toStdString());
}

void TestServer::Misbehave(const QString& path, const char* behaviour) const {
    Put(path + QStringLiteral(".behaviour"), behaviour);
}

QString TestServer::Root() const {
    return QDir(root_.path()).canonicalPath();
}

QString TestServer::Base(const QString& prefix) const {
    return QStringLiteral("http://127.0.0.1:%1/%2").arg(port_).arg(prefix);
}

QString TestServer::Requests() {
    while (process_.waitForReadyRead(200)) {
    }
    while (process_.canReadLine()) {
        const QByteArray line = process_.readLine().trimmed();
        if (!line.isEmpty()) requests_ << QString::fromUtf8(line);
    }
    return requests_.join(u' ');
}

QString DownServer() {
    QTcpServer probe;
    probe.listen(QHostAddress::LocalHost, 0);
    return QStringLiteral("http://127.0.0.1:%1/").arg(probe.serverPort());
}

OnlineConfig ConfigFor(const QString& server, const QString& programFolder) {
    qputenv("FELTHAWK_SERVER", server.toUtf8());
    OnlineConfig config = OnlineConfig::FromEnvironment();
    config.programFolder = programFolder;
    return config;
}

QByteArray VersionFile(const QByteArray& text) {
    if (text.isEmpty() || text.startsWith('<')) return text;
    return "<?xml version=\"1.0\"?>\n<APPLICATION>\n  <CURRENTVERSION " + text +
           "/>\n</APPLICATION>\n";
}

QByteArray Sha256(const QByteArray& bytes) {
    return QCryptographicHash::hash(bytes, QCryptographicHash::Sha256).toHex();
}

}  // namespace felthawk::testing
