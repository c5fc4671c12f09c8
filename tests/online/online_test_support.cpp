#include "online_test_support.h"

#include <gtest/gtest.h>
#include <QApplication>
#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>
#include <QTcpServer>

namespace felthawk::testing {

QString FakeDialogs::InputBox(QWidget*, const QString&, const QString&, const QString&,
                              bool* accepted) {
    ADD_FAILURE() << "the online services never ask for input";
    if (accepted) *accepted = false;
    return {};
}

void FakeDialogs::MessageBox(QWidget*, const QString& text, const QString&, MessageIcon icon) {
    messages << text;
    icons.push_back(icon);
}

bool FakeDialogs::AskYesNo(QWidget*, const QString& text, const QString&) {
    questions << text;
    return answerYes;
}

bool FakeDesktop::OpenUrl(const QUrl& url) {
    opened.push_back(url);
    return true;
}

TestServer::TestServer() {
    if (!root_.isValid()) throw std::runtime_error("no temporary folder");
    process_.setProgram(QStringLiteral("python3"));
    process_.setArguments({QStringLiteral(FELTHAWK_TEST_SERVER_SCRIPT), root_.path()});
    process_.start();
    if (!process_.waitForStarted(10000) || !process_.waitForReadyRead(10000))
        throw std::runtime_error("the test server did not start");
    port_ = process_.readLine().trimmed().toInt();
    if (port_ <= 0) throw std::runtime_error("the test server gave no port");
}

TestServer::~TestServer() {
    process_.closeWriteChannel();
    if (!process_.waitForFinished(3000)) {
        process_.kill();
        process_.waitForFinished(3000);
    }
}

void TestServer::Put(const QString& path, const QByteArray& bytes) const {
    const QString full = QDir(root_.path()).filePath(path);
    QDir().mkpath(QFileInfo(full).path());
    QFile file(full);
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size())
        throw std::runtime_error("cannot write " + full.toStdString());
}

void TestServer::PutTree(const QString& folder) const {
    QDirIterator files(folder, QDir::Files, QDirIterator::Subdirectories);
    while (files.hasNext()) {
        const QString path = files.next();
        Put(QDir(folder).relativeFilePath(path), ReadFile(path));
    }
}

QString TestServer::Requests() {
    // The server writes each path before it answers, so a short wait
    // collects everything that was asked for by now.
    while (process_.waitForReadyRead(200)) {
    }
    while (process_.canReadLine()) {
        const QString line = QString::fromUtf8(process_.readLine().trimmed());
        if (!line.isEmpty()) requests_ << line;
    }
    return requests_.join(u' ');
}

QString TestServer::Base(const QString& prefix) const {
    return QStringLiteral("http://127.0.0.1:%1/%2").arg(port_).arg(prefix);
}

QString DownServer() {
    // Take a free port and give it back: nobody listens there afterwards.
    QTcpServer probe;
    probe.listen(QHostAddress::LocalHost, 0);
    const quint16 port = probe.serverPort();
    probe.close();
    return QStringLiteral("http://127.0.0.1:%1/").arg(port);
}

OnlineConfig ConfigFor(const QString& server, const QString& programFolder, int timeoutMs) {
    qputenv("FELTHAWK_SERVER", server.toUtf8());
    OnlineConfig config = OnlineConfig::FromEnvironment();
    config.programFolder = programFolder;
    config.fetchTimeoutMs = timeoutMs;
    return config;
}

QByteArray ReadFile(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

}  // namespace felthawk::testing

int main(int argc, char** argv) {
    // Test discovery runs without the test environment, and there is no
    // display in either case.
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
