#include "mail/send_mail.h"

#include <cstdio>
#include <utility>

#include <QDateTime>
#include <QSysInfo>
#include <QUuid>

#include "mail/mail_address.h"
#include "mail/smtp_transfer.h"

namespace felthawk {
namespace {

QString Quoted(const QString& text) {
    return u'"' + text + u'"';
}

// The name to greet servers with must be a plain host name.
QString DefaultHeloName() {
    const QString name = QSysInfo::machineHostName();
    for (QChar c : name)
        if (!(c.isLetterOrNumber() && c.unicode() < 128) && c != u'-' && c != u'.')
            return QStringLiteral("localhost");
    return name.isEmpty() ? QStringLiteral("localhost") : name;
}

void ReportBadVariable(const char* name, const QByteArray& value) {
    std::fprintf(stderr, "felthawk: ignoring %s=\"%s\": not a valid value\n", name,
                 value.constData());
}

}  // namespace

const QString clsSendMail::kLookingUp = QStringLiteral("Looking up the mail server…");
const QString clsSendMail::kSending = QStringLiteral("Sending…");

SendMailSettings SendMailSettingsFromEnvironment() {
    SendMailSettings settings;
    const QByteArray server = qgetenv("FELTHAWK_DNS_SERVER");
    if (!server.isEmpty()) {
        const QHostAddress address(QString::fromLatin1(server));
        if (address.isNull())
            ReportBadVariable("FELTHAWK_DNS_SERVER", server);
        else
            settings.nameServer = address;
    }
    const QByteArray port = qgetenv("FELTHAWK_SMTP_PORT");
    if (!port.isEmpty()) {
        bool ok = false;
        const uint value = port.toUInt(&ok);
        if (ok && value > 0 && value <= 65535)
            settings.smtpPort = static_cast<quint16>(value);
        else
            ReportBadVariable("FELTHAWK_SMTP_PORT", port);
    }
    return settings;
}

clsSendMail::clsSendMail(SendMailSettings settings, QObject* parent)
    : QObject(parent), settings_(std::move(settings)) {
    if (settings_.heloName.isEmpty()) settings_.heloName = DefaultHeloName();
}

clsSendMail::~clsSendMail() {
    StopWork();
}

void clsSendMail::Send(const MailMessage& message) {
    if (busy_) return;
    busy_ = true;
    notes_.clear();
    deferral_.clear();
    const AddressCheck from = CheckAddress(message.fromAddress);
    const AddressCheck to = CheckAddress(message.toAddress);
    if (!from.ok || !to.ok) {
        Finish(SendResult::Status::BadAddress, from.ok ? to.problem : from.problem);
        return;
    }
    message_ = message;
    message_.fromAddress = from.address;
    message_.toAddress = to.address;
    domain_ = to.domain;
    wire_ = ComposeMessage(message_, QDateTime::currentDateTime(), NewMessageId(from.domain));
    emit progress(kLookingUp);
    Lookup(QDnsLookup::MX, domain_, &clsSendMail::OnMailExchangers);
}

void clsSendMail::Cancel() {
    if (!busy_) return;
    StopWork();
    Finish(SendResult::Status::Cancelled, QStringLiteral("Sending was cancelled."));
}

void clsSendMail::Lookup(QDnsLookup::Type type, const QString& name, LookupStep then) {
    lookup_ = new QDnsLookup(type, name, this);
    if (settings_.nameServer) lookup_->setNameserver(*settings_.nameServer);
    connect(lookup_, &QDnsLookup::finished, this, [this, then] {
        QDnsLookup* done = lookup_;
        lookup_ = nullptr;
        done->deleteLater();
        (this->*then)(*done);
    });
    lookup_->lookup();
}

void clsSendMail::OnMailExchangers(const QDnsLookup& lookup) {
    const QList<QDnsMailExchangeRecord> records = lookup.mailExchangeRecords();
    exchangers_.clear();
    next_ = 0;
    implicitExchanger_ = false;
    if (lookup.error() == QDnsLookup::NotFoundError) {
        Finish(SendResult::Status::NoSuchDomain,
               QStringLiteral("There is no domain %1, so %2 cannot receive mail. Please check "
                              "the address.")
                   .arg(Quoted(domain_), message_.toAddress));
        return;
    }
    if (records.isEmpty()) {
        if (lookup.error() == QDnsLookup::NoError ||
            lookup.error() == QDnsLookup::InvalidReplyError)
            // An answer without records, which QDnsLookup reports as an
            // invalid reply, but so it reports no answer at all. A name that
            // cannot exist tells them apart: a working name server denies it.
            Lookup(QDnsLookup::A, QUuid::createUuid().toString(QUuid::Id128) + u'.' + domain_,
                   &clsSendMail::OnProbe);
        else
            FailLookUp(lookup.errorString());
        return;
    }
    // QDnsLookup gives the records by preference, ties in random order.
    for (const QDnsMailExchangeRecord& record : records) exchangers_ << record.exchange();
    // A lone exchanger named "." says the domain takes no mail at all.
    if (exchangers_.size() == 1 &&
        (exchangers_[0].isEmpty() || exchangers_[0] == QLatin1String("."))) {
        Finish(SendResult::Status::NoMailServer,
               QStringLiteral("The domain %1 takes no mail, so %2 cannot receive mail.")
                   .arg(Quoted(domain_), message_.toAddress));
        return;
    }
    TryNextExchanger();
}

void clsSendMail::OnProbe(const QDnsLookup& lookup) {
    if (lookup.error() == QDnsLookup::InvalidReplyError) {
        FailLookUp(QStringLiteral("the name server does not answer"));
        return;
    }
    // The domain has no MX record: it is its own exchanger.
    exchangers_ << domain_;
    implicitExchanger_ = true;
    TryNextExchanger();
}

void clsSendMail::FailLookUp(const QString& reason) {
    Finish(SendResult::Status::LookupFailed,
           QStringLiteral("The mail server for %1 could not be looked up (%2). Please check "
                          "your connection to the internet.")
               .arg(Quoted(domain_), reason));
}

void clsSendMail::TryNextExchanger() {
    if (next_ >= exchangers_.size()) {
        GiveUp();
        return;
    }
    addresses_.clear();
    Lookup(QDnsLookup::A, exchangers_[next_], &clsSendMail::OnIPv4Addresses);
}

void clsSendMail::OnIPv4Addresses(const QDnsLookup& lookup) {
    for (const QDnsHostAddressRecord& record : lookup.hostAddressRecords())
        addresses_ << record.value();
    Lookup(QDnsLookup::AAAA, exchangers_[next_], &clsSendMail::OnIPv6Addresses);
}

void clsSendMail::OnIPv6Addresses(const QDnsLookup& lookup) {
    for (const QDnsHostAddressRecord& record : lookup.hostAddressRecords())
        addresses_ << record.value();
    const QString exchanger = exchangers_[next_];
    if (addresses_.isEmpty()) {
        notes_ << exchanger + QStringLiteral(": no address");
        ++next_;
        TryNextExchanger();
        return;
    }
    emit progress(kSending);
    transfer_ = new SmtpTransfer(this);
    connect(transfer_, &SmtpTransfer::finished, this, &clsSendMail::OnTransferFinished);
    SmtpRequest request;
    request.host = exchanger;
    request.addresses = addresses_;
    request.port = settings_.smtpPort;
    request.heloName = settings_.heloName;
    request.mailFrom = message_.fromAddress;
    request.rcptTo = message_.toAddress;
    request.message = wire_;
    request.connectTimeout = settings_.connectTimeout;
    request.replyTimeout = settings_.replyTimeout;
    transfer_->Start(request);
}

void clsSendMail::OnTransferFinished(const SmtpOutcome& outcome) {
    transfer_->deleteLater();
    transfer_ = nullptr;
    const QString exchanger = exchangers_[next_];
    switch (outcome.kind) {
        case SmtpOutcome::Kind::Delivered:
            Finish(SendResult::Status::Sent,
                   QStringLiteral("Your message has been sent to %1.").arg(message_.toAddress),
                   exchanger);
            return;
        case SmtpOutcome::Kind::Refused:
            Finish(SendResult::Status::Refused,
                   QStringLiteral("The mail server %1 refused the message: %2")
                       .arg(exchanger, outcome.reply),
                   exchanger);
            return;
        case SmtpOutcome::Kind::Deferred:
            // "Not now": another exchanger may take it, as mail servers do.
            deferral_ = exchanger;
            notes_ << exchanger + QStringLiteral(": ") + outcome.reply;
            break;
        case SmtpOutcome::Kind::Failed:
            notes_ << exchanger + QStringLiteral(": ") + outcome.error;
            break;
    }
    ++next_;
    TryNextExchanger();
}

void clsSendMail::GiveUp() {
    const QString tried = notes_.join(QStringLiteral("; "));
    if (!deferral_.isEmpty()) {
        Finish(SendResult::Status::Deferred,
               QStringLiteral("The mail servers for %1 would not take the message now (%2). "
                              "Please try again later.")
                   .arg(Quoted(domain_), tried),
               deferral_);
    } else if (implicitExchanger_ && addresses_.isEmpty()) {
        Finish(SendResult::Status::NoMailServer,
               QStringLiteral("The domain %1 has no mail server, so %2 cannot receive mail.")
                   .arg(Quoted(domain_), message_.toAddress));
    } else {
        Finish(SendResult::Status::NoAnswer,
               QStringLiteral("No mail server for %1 answered (%2). Please try again later.")
                   .arg(Quoted(domain_), tried));
    }
}

void clsSendMail::Finish(SendResult::Status status, const QString& message,
                         const QString& exchanger) {
    busy_ = false;
    emit finished(SendResult{status, message, exchanger});
}

void clsSendMail::StopWork() {
    if (lookup_) {
        // Its answer, if it still comes, goes nowhere.
        lookup_->disconnect(this);
        lookup_->abort();
        lookup_->deleteLater();
    }
    if (transfer_) {
        transfer_->Abort();
        transfer_->deleteLater();
    }
    lookup_ = nullptr;
    transfer_ = nullptr;
}

}  // namespace felthawk
