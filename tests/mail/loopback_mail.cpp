#include "tests/mail/loopback_mail.h"

#include <memory>

#include <QApplication>
#include <QDeadlineTimer>
#include <QDir>
#include <QEventLoop>
#include <QFile>
#include <QJsonDocument>
#include <QTcpSocket>
#include <QThread>

namespace felthawk::testing {
namespace {

constexpr char kPython[] = FELTHAWK_TEST_PYTHON;
constexpr char kDnsmasq[] = FELTHAWK_TEST_DNSMASQ;
constexpr char kSinkScript[] = FELTHAWK_TEST_SMTP_SINK;
constexpr int kStartSeconds = 20;

// QDnsLookup always asks port 53, so each test process takes a loopback
// address of its own (the whole of 127/8 is loopback) and tests can run side
// by side.
QHostAddress LoopbackFor(int second) {
    const auto pid = static_cast<quint32>(QCoreApplication::applicationPid());
    return QHostAddress((127u << 24) | (static_cast<quint32>(second) << 16) |
                        ((pid >> 8) & 0xff) << 8 | (pid & 0xff));
}

// Reads `process`'s output until a line starts with `marker`; "" if the
// process ends or stays silent.
QByteArray WaitForLine(QProcess& process, QProcess::ProcessChannel channel,
                       const QByteArray& marker) {
    process.setReadChannel(channel);
    const QDeadlineTimer deadline(kStartSeconds * 1000);
    while (!deadline.hasExpired()) {
        while (process.canReadLine()) {
            const QByteArray line = process.readLine();
            if (line.startsWith(marker)) return line.trimmed();
        }
        if (process.state() == QProcess::NotRunning) break;
        process.waitForReadyRead(100);
    }
    return {};
}

void Stop(QProcess& process) {
    if (process.state() == QProcess::NotRunning) return;
    process.terminate();
    if (!process.waitForFinished(5000)) {
        process.kill();
        process.waitForFinished(5000);
    }
}

// Every mail test runs inside one QApplication, made before the first test,
// in a zone of UTC-3:30, so that a Date header shows whether it gets the
// sign and the minutes of the offset right.
class ApplicationEnvironment : public ::testing::Environment {
  public:
    void SetUp() override {
        qputenv("TZ", "XST+3:30");
        static int argc = 1;
        static char name[] = "mail_tests";
        static char* argv[] = {name, nullptr};
        application_ = std::make_unique<QApplication>(argc, argv);
    }
    void TearDown() override { application_.reset(); }

  private:
    std::unique_ptr<QApplication> application_;
};

[[maybe_unused]] ::testing::Environment* const kEnvironment =
    ::testing::AddGlobalTestEnvironment(new ApplicationEnvironment);

}  // namespace

LoopbackMail::LoopbackMail() : dnsAddress_(LoopbackFor(53)), silentAddress_(LoopbackFor(54)) {}

LoopbackMail::~LoopbackMail() {
    Stop(dns_);
    smtp_.closeWriteChannel();
    Stop(smtp_);
}

QString LoopbackMail::Start() {
    if (!folder_.isValid()) return QStringLiteral("no temporary folder");
    QString problem = StartSmtpServer();
    if (problem.isEmpty() && !silent_.listen(silentAddress_, smtpPort_))
        problem = QStringLiteral("the silent server cannot listen on %1:%2: %3")
                      .arg(silentAddress_.toString())
                      .arg(smtpPort_)
                      .arg(silent_.errorString());
    // It takes connections and keeps them, saying nothing.
    QObject::connect(&silent_, &QTcpServer::newConnection, &silent_, [this] {
        while (QTcpSocket* socket = silent_.nextPendingConnection()) {
            QObject::connect(socket, &QTcpSocket::readyRead, socket,
                             [this, socket] { silentHeard_ += socket->readAll(); });
            QObject::connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
        }
    });
    if (problem.isEmpty()) problem = StartDnsServer();
    return problem;
}

QString LoopbackMail::StartSmtpServer() {
    smtp_.setProgram(QString::fromLatin1(kPython));
    smtp_.setArguments({QString::fromLatin1(kSinkScript), folder_.path(), "--reply", "refuse.test",
                        "550", "5.1.1 No such user here", "--reply", "later.test", "451",
                        "4.3.2 Try again later"});
    smtp_.start();
    const QByteArray ready = WaitForLine(smtp_, QProcess::StandardOutput, "PORT ");
    if (ready.isEmpty())
        return QStringLiteral("the SMTP server did not start: ") +
               QString::fromLocal8Bit(smtp_.readAllStandardError());
    smtpPort_ = static_cast<quint16>(ready.mid(5).toUInt());
    return {};
}

QString LoopbackMail::StartDnsServer() {
    const QString live = QStringLiteral("127.0.0.1");
    // Nothing listens on the SMTP port at the DNS server's own address.
    const QString dead = dnsAddress_.toString();
    const QString silent = silentAddress_.toString();
    QStringList arguments{"--no-daemon", "--conf-file=/dev/null",
                          "--pid-file=" + folder_.filePath("dnsmasq.pid"), "--no-resolv",
                          "--no-hosts", "--port=53", "--listen-address=" + dnsAddress_.toString(),
                          "--bind-interfaces",
                          // Names under .test that are not listed here do not exist.
                          "--local=/test/", "--host-record=plain.test," + live,
                          "--txt-record=nomx.test,no mail here", "--mx-host=nullmx.test,.,0"};
    // The domain, its exchanger, the preference, and the exchanger's address.
    const struct {
        const char* domain;
        const char* exchanger;
        int preference;
        QString address;
    } exchangers[] = {
        {"friend.test", "mx.friend.test", 10, live},  {"order.test", "mx2.order.test", 30, live},
        {"order.test", "mx1.order.test", 10, live},   {"backup.test", "dead.backup.test", 5, dead},
        {"backup.test", "mx.backup.test", 20, live},  {"dead.test", "dead.dead.test", 10, dead},
        {"noaddr.test", "ghost.noaddr.test", 10, {}}, {"refuse.test", "mx.refuse.test", 10, live},
        {"later.test", "mx.later.test", 10, live},    {"silent.test", "mx.silent.test", 10, silent},
    };
    for (const auto& [domain, exchanger, preference, address] : exchangers) {
        arguments << QStringLiteral("--mx-host=%1,%2,%3").arg(domain, exchanger).arg(preference);
        if (!address.isEmpty())
            arguments << QStringLiteral("--host-record=%1,%2").arg(exchanger, address);
    }
    dns_.setProgram(QString::fromLatin1(kDnsmasq));
    dns_.setArguments(arguments);
    dns_.start();
    if (WaitForLine(dns_, QProcess::StandardError, "dnsmasq: started").isEmpty())
        return QStringLiteral("dnsmasq did not start on %1:53 (it needs to bind port 53): %2")
            .arg(dnsAddress_.toString(), QString::fromLocal8Bit(dns_.readAllStandardError()));
    return {};
}

SendMailSettings LoopbackMail::Settings() const {
    SendMailSettings settings;
    settings.nameServer = dnsAddress_;
    settings.smtpPort = smtpPort_;
    settings.heloName = QStringLiteral("player.test");
    settings.connectTimeout = std::chrono::seconds(5);
    settings.replyTimeout = std::chrono::seconds(10);
    return settings;
}

QList<QJsonObject> LoopbackMail::Delivered() const {
    QList<QJsonObject> messages;
    for (int n = 1;; ++n) {
        QFile file(QDir(folder_.path()).filePath(QStringLiteral("%1.json").arg(n)));
        if (!file.open(QIODevice::ReadOnly)) return messages;
        messages << QJsonDocument::fromJson(file.readAll()).object();
    }
}

int LoopbackMail::OpenSilentConnections() const {
    int open = 0;
    for (const QTcpSocket* socket : silent_.findChildren<QTcpSocket*>())
        if (socket->state() == QAbstractSocket::ConnectedState) ++open;
    return open;
}

LoopbackMail* WithLoopbackMail::world_ = nullptr;
QString WithLoopbackMail::problem_;

void WithLoopbackMail::SetUpTestSuite() {
    world_ = new LoopbackMail;
    problem_ = world_->Start();
}

void WithLoopbackMail::TearDownTestSuite() {
    delete world_;
    world_ = nullptr;
}

void WithLoopbackMail::SetUp() {
    ASSERT_TRUE(problem_.isEmpty()) << problem_.toStdString();
}

bool RunUntil(const std::function<bool()>& done, int seconds) {
    const QDeadlineTimer deadline(seconds * 1000);
    while (!done()) {
        if (deadline.hasExpired()) return false;
        QCoreApplication::processEvents(QEventLoop::AllEvents, 50);
        QThread::msleep(5);
    }
    return true;
}

}  // namespace felthawk::testing
