// A small mail world on loopback for the tests: a real DNS server (dnsmasq)
// that knows the test domains below, and a real SMTP server (smtp_sink.py)
// that takes their mail and files each message as JSON.
//
//   friend.test   MX 10 mx.friend.test                      delivers
//   order.test    MX 30 mx2.order.test, MX 10 mx1.order.test  both deliver
//   backup.test   MX 5 dead.backup.test (nothing listens),
//                 MX 20 mx.backup.test                       delivers
//   plain.test    no MX, an address that delivers
//   nomx.test     exists, with neither MX nor address
//   nosuch.test   does not exist
//   nullmx.test   MX 0 "." : takes no mail
//   dead.test     MX 10 dead.dead.test (nothing listens)
//   noaddr.test   MX 10 ghost.noaddr.test, which has no address
//   refuse.test   MX 10 mx.refuse.test: RCPT TO gets "550 5.1.1 No such user here"
//   later.test    MX 10 mx.later.test: RCPT TO gets "451 4.3.2 Try again later"
//   silent.test   MX 10 mx.silent.test: accepts the connection, never speaks
#pragma once

#include <functional>

#include <QHostAddress>
#include <QJsonObject>
#include <QList>
#include <QProcess>
#include <QString>
#include <QTcpServer>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include "mail/send_mail.h"

namespace felthawk::testing {

class LoopbackMail {
  public:
    LoopbackMail();
    ~LoopbackMail();

    // Starts the servers; "" when all is up, otherwise what failed.
    QString Start();

    // Settings that reach this world's servers, with short time limits.
    SendMailSettings Settings() const;
    // The messages the SMTP server took, oldest first.
    QList<QJsonObject> Delivered() const;
    // Connections the silent server has accepted and still holds open.
    int OpenSilentConnections() const;
    // Everything the silent server was sent; it never greets, so a client
    // that plays by the rules sends it nothing.
    QByteArray SilentServerHeard() const { return silentHeard_; }

  private:
    QString StartSmtpServer();
    QString StartDnsServer();

    QTemporaryDir folder_;
    QProcess smtp_;
    QProcess dns_;
    QTcpServer silent_;
    QByteArray silentHeard_;
    QHostAddress dnsAddress_;
    QHostAddress silentAddress_;
    quint16 smtpPort_ = 0;
};

// Tests that need the world: it starts before the suite's first test and a
// test fails at once, saying why, when it could not start.
class WithLoopbackMail : public ::testing::Test {
  protected:
    static void SetUpTestSuite();
    static void TearDownTestSuite();
    void SetUp() override;

    static LoopbackMail* world_;
    static QString problem_;
};

// Runs the event loop until `done` holds or `seconds` pass; true if it held.
bool RunUntil(const std::function<bool()>& done, int seconds = 30);

}  // namespace felthawk::testing
