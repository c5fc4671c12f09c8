#include "mail/smtp_transfer.h"

#include <curl/curl.h>

#include <algorithm>
#include <cstring>

#include <QSocketNotifier>

#include <sys/socket.h>

namespace felthawk {
namespace {

// libcurl wants one global set-up before the first handle; the program has
// one thread, so the first transfer does it.
bool CurlReady() {
    static const bool ready = curl_global_init(CURL_GLOBAL_DEFAULT) == CURLE_OK;
    return ready;
}

// "mx.example.com:25:192.0.2.1,[2001:db8::1]": libcurl connects to these
// addresses instead of asking the system resolver, which does not know the
// name server we asked.
QByteArray ResolveEntry(const SmtpRequest& request) {
    QByteArray entry = request.host.toLatin1() + ':' + QByteArray::number(request.port) + ':';
    for (qsizetype i = 0; i < request.addresses.size(); ++i) {
        const QHostAddress& address = request.addresses[i];
        if (i > 0) entry += ',';
        const QByteArray text = address.toString().toLatin1();
        entry += address.protocol() == QAbstractSocket::IPv6Protocol ? '[' + text + ']' : text;
    }
    return entry;
}

// The notifier may be the one whose signal is running right now, so it goes
// later, and says nothing more meanwhile.
void Forget(const SmtpTransfer::Notifiers& notifiers) {
    for (QSocketNotifier* notifier : {notifiers.read, notifiers.write}) {
        notifier->setEnabled(false);
        notifier->deleteLater();
    }
}

int ReplyCode(const QByteArray& line) {
    bool ok = false;
    const int code = line.left(3).toInt(&ok);
    return ok ? code : 0;
}

}  // namespace

struct SmtpTransfer::CurlCallbacks {
    static int Socket(CURL*, curl_socket_t socket, int what, void* self, void*) {
        static_cast<SmtpTransfer*>(self)->WatchSocket(socket, what);
        return 0;
    }
    static int Timer(CURLM*, long timeoutMs, void* self) {
        QTimer& timer = static_cast<SmtpTransfer*>(self)->timer_;
        if (timeoutMs < 0)
            timer.stop();
        else
            timer.start(static_cast<int>(std::min<long>(timeoutMs, 24L * 3600 * 1000)));
        return 0;
    }
    static size_t Read(char* buffer, size_t size, size_t count, void* self) {
        auto* transfer = static_cast<SmtpTransfer*>(self);
        const qsizetype left = transfer->message_.size() - transfer->sent_;
        const auto chunk = std::min<qsizetype>(left, static_cast<qsizetype>(size * count));
        std::memcpy(buffer, transfer->message_.constData() + transfer->sent_,
                    static_cast<size_t>(chunk));
        transfer->sent_ += chunk;
        return static_cast<size_t>(chunk);
    }
    // The server's replies reach us through the debug channel; only they
    // say why a server refused.
    static int Debug(CURL*, curl_infotype type, char* data, size_t size, void* self) {
        if (type != CURLINFO_HEADER_IN) return 0;
        auto* transfer = static_cast<SmtpTransfer*>(self);
        for (const QByteArray& line : QByteArray(data, static_cast<qsizetype>(size)).split('\n'))
            if (!line.trimmed().isEmpty()) transfer->NoteReplyLine(line.trimmed());
        return 0;
    }
};

SmtpTransfer::SmtpTransfer(QObject* parent) : QObject(parent) {
    timer_.setSingleShot(true);
    connect(&timer_, &QTimer::timeout, this, [this] { Drive(CURL_SOCKET_TIMEOUT, 0); });
}

SmtpTransfer::~SmtpTransfer() {
    Release();
}

void SmtpTransfer::Start(const SmtpRequest& request) {
    message_ = request.message;
    if (CurlReady()) {
        easy_ = curl_easy_init();
        multi_ = curl_multi_init();
    }
    if (easy_ == nullptr || multi_ == nullptr) {
        Release();
        QTimer::singleShot(0, this, [this] {
            SmtpOutcome outcome;
            outcome.error = QStringLiteral("the mail library could not start");
            emit finished(outcome);
        });
        return;
    }
    resolve_ = curl_slist_append(nullptr, ResolveEntry(request).constData());
    recipients_ = curl_slist_append(nullptr, ('<' + request.rcptTo.toLatin1() + '>').constData());

    // The path of an smtp:// address is the name we greet the server with.
    const QByteArray url = "smtp://" + request.host.toLatin1() + ':' +
                           QByteArray::number(request.port) + '/' + request.heloName.toLatin1();
    const QByteArray from = '<' + request.mailFrom.toLatin1() + '>';
    curl_easy_setopt(easy_, CURLOPT_URL, url.constData());
    curl_easy_setopt(easy_, CURLOPT_PROTOCOLS_STR, "smtp");
    curl_easy_setopt(easy_, CURLOPT_RESOLVE, resolve_);
    curl_easy_setopt(easy_, CURLOPT_MAIL_FROM, from.constData());
    curl_easy_setopt(easy_, CURLOPT_MAIL_RCPT, recipients_);
    curl_easy_setopt(easy_, CURLOPT_UPLOAD, 1L);
    curl_easy_setopt(easy_, CURLOPT_READFUNCTION, &CurlCallbacks::Read);
    curl_easy_setopt(easy_, CURLOPT_READDATA, this);
    curl_easy_setopt(easy_, CURLOPT_CONNECTTIMEOUT_MS,
                     static_cast<long>(request.connectTimeout.count()));
    curl_easy_setopt(easy_, CURLOPT_SERVER_RESPONSE_TIMEOUT,
                     static_cast<long>(request.replyTimeout.count()));
    // Encrypt when the exchanger offers it. Exchangers rarely hold a
    // certificate for the name the MX record gives, so, as between mail
    // servers, an unverified encryption beats none and does not stop the
    // delivery.
    curl_easy_setopt(easy_, CURLOPT_USE_SSL, static_cast<long>(CURLUSESSL_TRY));
    curl_easy_setopt(easy_, CURLOPT_SSL_VERIFYPEER, 0L);
    curl_easy_setopt(easy_, CURLOPT_SSL_VERIFYHOST, 0L);
    curl_easy_setopt(easy_, CURLOPT_NOSIGNAL, 1L);
    curl_easy_setopt(easy_, CURLOPT_ERRORBUFFER, error_);
    curl_easy_setopt(easy_, CURLOPT_VERBOSE, 1L);
    curl_easy_setopt(easy_, CURLOPT_DEBUGFUNCTION, &CurlCallbacks::Debug);
    curl_easy_setopt(easy_, CURLOPT_DEBUGDATA, this);

    curl_multi_setopt(multi_, CURLMOPT_SOCKETFUNCTION, &CurlCallbacks::Socket);
    curl_multi_setopt(multi_, CURLMOPT_SOCKETDATA, this);
    curl_multi_setopt(multi_, CURLMOPT_TIMERFUNCTION, &CurlCallbacks::Timer);
    curl_multi_setopt(multi_, CURLMOPT_TIMERDATA, this);
    // Adding the handle asks for a timer, and the timer starts the work.
    curl_multi_add_handle(multi_, easy_);
}

void SmtpTransfer::Abort() {
    // Left to itself, libcurl would finish an upload it is told to drop by
    // sending the end-of-data mark and waiting for the server's reply: a
    // wait that blocks the window and, in the middle of the text, a message
    // cut short that the server might deliver. Shutting the sockets first
    // makes that last word fail at once.
    for (const auto& [socket, notifiers] : sockets_) ::shutdown(socket, SHUT_RDWR);
    Release();
}

void SmtpTransfer::WatchSocket(int socket, int what) {
    if (what == CURL_POLL_REMOVE) {
        const auto found = sockets_.find(socket);
        if (found == sockets_.end()) return;
        Forget(found->second);
        sockets_.erase(found);
        return;
    }
    auto [entry, added] = sockets_.try_emplace(socket);
    if (added) {
        entry->second.read = new QSocketNotifier(socket, QSocketNotifier::Read, this);
        entry->second.write = new QSocketNotifier(socket, QSocketNotifier::Write, this);
        connect(entry->second.read, &QSocketNotifier::activated, this,
                [this, socket] { Drive(socket, CURL_CSELECT_IN); });
        connect(entry->second.write, &QSocketNotifier::activated, this,
                [this, socket] { Drive(socket, CURL_CSELECT_OUT); });
    }
    entry->second.read->setEnabled(what == CURL_POLL_IN || what == CURL_POLL_INOUT);
    entry->second.write->setEnabled(what == CURL_POLL_OUT || what == CURL_POLL_INOUT);
}

void SmtpTransfer::Drive(int socket, int events) {
    if (multi_ == nullptr) return;
    int running = 0;
    curl_multi_socket_action(multi_, socket, events, &running);
    int queued = 0;
    while (CURLMsg* message = curl_multi_info_read(multi_, &queued)) {
        if (message->msg != CURLMSG_DONE) continue;
        const SmtpOutcome outcome = Outcome(message->data.result);
        Release();
        // Last: whoever listens may delete this transfer.
        emit finished(outcome);
        return;
    }
}

void SmtpTransfer::NoteReplyLine(const QByteArray& line) {
    // "550-first line" goes on; "550 last line" ends the reply.
    const bool continued = line.size() > 3 && line[3] == '-';
    pendingReply_ += (pendingReply_.isEmpty() ? "" : " ") + line;
    if (continued) return;
    if (ReplyCode(line) >= 400) refusal_ = pendingReply_;
    pendingReply_.clear();
}

SmtpOutcome SmtpTransfer::Outcome(int curlCode) const {
    SmtpOutcome outcome;
    if (curlCode == CURLE_OK) {
        outcome.kind = SmtpOutcome::Kind::Delivered;
        return outcome;
    }
    outcome.error = error_[0] != '\0'
                        ? QString::fromLocal8Bit(error_)
                        : QString::fromLatin1(curl_easy_strerror(static_cast<CURLcode>(curlCode)));
    const int code = ReplyCode(refusal_);
    if (code >= 400) {
        outcome.kind = code >= 500 ? SmtpOutcome::Kind::Refused : SmtpOutcome::Kind::Deferred;
        outcome.reply = QString::fromUtf8(refusal_);
    }
    return outcome;
}

void SmtpTransfer::Release() {
    timer_.stop();
    if (multi_ != nullptr) curl_multi_remove_handle(multi_, easy_);
    curl_easy_cleanup(easy_);
    // Closes what is left, which may say goodbye to the server.
    curl_multi_cleanup(multi_);
    multi_ = nullptr;
    easy_ = nullptr;
    curl_slist_free_all(resolve_);
    curl_slist_free_all(recipients_);
    resolve_ = nullptr;
    recipients_ = nullptr;
    for (auto& [socket, notifiers] : sockets_) Forget(notifiers);
    sockets_.clear();
}

}  // namespace felthawk
