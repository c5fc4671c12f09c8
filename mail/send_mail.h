// clsSendMail: sends one message to a friend. It asks DNS for the mail
// exchangers of the friend's domain, tries them by preference and hands the
// message to the first that takes it. Everything runs on the event loop;
// progress() tells what it is doing and finished() how it ended.
#pragma once

#include <chrono>
#include <optional>

#include <QDnsLookup>
#include <QHostAddress>
#include <QObject>
#include <QPointer>
#include <QString>
#include <QStringList>

#include "mail/mail_message.h"

namespace felthawk {

class SmtpTransfer;
struct SmtpOutcome;

struct SendMailSettings {
    // The name server to ask; none means the system's own.
    std::optional<QHostAddress> nameServer;
    quint16 smtpPort = 25;
    // How we greet servers; empty means this machine's name.
    QString heloName;
    std::chrono::milliseconds connectTimeout{std::chrono::seconds(30)};
    std::chrono::seconds replyTimeout{60};
};

// Reads FELTHAWK_DNS_SERVER (an IP address) and FELTHAWK_SMTP_PORT from the
// environment, for running against servers of one's own. A value that does
// not parse is reported on stderr and left out.
SendMailSettings SendMailSettingsFromEnvironment();

struct SendResult {
    enum class Status {
        Sent,
        Cancelled,
        BadAddress,    // an address did not pass CheckAddress
        NoSuchDomain,  // the friend's domain does not exist
        NoMailServer,  // it exists but takes no mail
        LookupFailed,  // DNS itself failed
        NoAnswer,      // no exchanger could be reached
        Refused,       // an exchanger refused the message for good
        Deferred,      // the exchangers reached would not take it now
    };
    Status status = Status::Cancelled;
    QString message;    // for the user, one or two sentences
    QString exchanger;  // the server that took or refused the message
};

class clsSendMail : public QObject {
    Q_OBJECT
  public:
    explicit clsSendMail(SendMailSettings settings, QObject* parent = nullptr);
    ~clsSendMail() override;

    // Starts sending; progress() follows, then finished() once. A bad
    // address is reported by finished() before Send() returns, and nothing
    // goes out. Ignored while a message is under way.
    void Send(const MailMessage& message);
    // Stops the attempt under way, if any, and reports it cancelled at once.
    void Cancel();
    bool IsBusy() const { return busy_; }

    static const QString kLookingUp;  // "Looking up the mail server…"
    static const QString kSending;    // "Sending…"

  signals:
    void progress(const QString& text);
    void finished(const felthawk::SendResult& result);

  private:
    using LookupStep = void (clsSendMail::*)(const QDnsLookup&);
    void Lookup(QDnsLookup::Type type, const QString& name, LookupStep then);
    void OnMailExchangers(const QDnsLookup& lookup);
    void OnProbe(const QDnsLookup& lookup);
    void FailLookUp(const QString& reason);
    void TryNextExchanger();
    void OnIPv4Addresses(const QDnsLookup& lookup);
    void OnIPv6Addresses(const QDnsLookup& lookup);
    void OnTransferFinished(const SmtpOutcome& outcome);
    void GiveUp();
    void Finish(SendResult::Status status, const QString& message, const QString& exchanger = {});
    void StopWork();

    SendMailSettings settings_;
    bool busy_ = false;
    MailMessage message_;
    QString domain_;
    QByteArray wire_;                 // the composed message
    QStringList exchangers_;          // by preference
    bool implicitExchanger_ = false;  // no MX: the domain is its own exchanger
    qsizetype next_ = 0;              // the exchanger to try next
    QList<QHostAddress> addresses_;   // of the exchanger being tried
    QStringList notes_;               // what went wrong with each exchanger
    QString deferral_;                // the last "not now" reply, with its server
    QPointer<QDnsLookup> lookup_;
    QPointer<SmtpTransfer> transfer_;
};

}  // namespace felthawk
