#include "online/transfer.h"

#include <QNetworkReply>
#include <QNetworkRequest>
#include <QUrl>
#include <utility>

namespace felthawk {

namespace {

// A server may move a file, not send the program round in circles.
constexpr int kMaxRedirects = 5;
// The network reads no further ahead of us than this, so a server that sends
// faster than the program keeps up fills no memory.
constexpr qint64 kReadAheadBytes = 256 * 1024;

}  // namespace

Inet::Inet(QObject* parent) : QObject(parent) {
    for (QTimer* timer : {&connectTimer_, &totalTimer_}) timer->setSingleShot(true);
    connect(&connectTimer_, &QTimer::timeout, this,
            [this] { Fail(QStringLiteral("the server did not take the request")); });
    connect(&totalTimer_, &QTimer::timeout, this,
            [this] { Fail(QStringLiteral("the server took too long")); });
}

Inet::~Inet() {
    if (!reply_) return;
    reply_->disconnect(this);
    reply_->abort();
}

void Inet::OpenURL(const QString& url, const TransferLimits& limits, Done done, Sink sink) {
    const QUrl target = QUrl::fromUserInput(url);
    if (executing_ || !target.isValid() || target.host().isEmpty()) {
        TransferResult refused;
        refused.error = executing_ ? QStringLiteral("another transfer is under way")
                                   : QStringLiteral("not a URL: ") + url;
        // Asynchronous like every other answer, so callers have one path.
        QMetaObject::invokeMethod(
            this, [done = std::move(done), refused] { done(refused); }, Qt::QueuedConnection);
        return;
    }
    executing_ = true;
    limits_ = limits;
    done_ = std::move(done);
    sink_ = std::move(sink);
    body_.clear();
    received_ = 0;
    failure_.clear();
    cancelled_ = false;

    QNetworkRequest request(target);
    request.setTransferTimeout(limits.stallMs);
    request.setMaximumRedirectsAllowed(kMaxRedirects);
    reply_ = manager_.get(request);
    reply_->setReadBufferSize(kReadAheadBytes);
    connect(reply_, &QNetworkReply::requestSent, &connectTimer_, &QTimer::stop);
    connect(reply_, &QNetworkReply::metaDataChanged, this, [this] {
        // A server that announces too much is not waited for.
        const QVariant length = reply_->header(QNetworkRequest::ContentLengthHeader);
        if (length.isValid() && length.toLongLong() > limits_.maxBytes)
            Fail(QStringLiteral("the answer is too large"));
    });
    connect(reply_, &QNetworkReply::readyRead, this, &Inet::Take);
    connect(reply_, &QNetworkReply::finished, this, &Inet::Finish);
    connectTimer_.start(kConnectTimeoutMs);
    if (limits.totalMs > 0) totalTimer_.start(limits.totalMs);
}

void Inet::Cancel() {
    Fail(QStringLiteral("cancelled"), true);
}

void Inet::Take() {
    if (!reply_ || !failure_.isEmpty() || !reply_->isOpen()) return;
    const QByteArray piece = reply_->readAll();
    received_ += piece.size();
    if (received_ > limits_.maxBytes) return Fail(QStringLiteral("the answer is too large"));
    if (sink_) {
        if (!sink_(piece)) return Fail(QStringLiteral("the answer could not be kept"));
    } else {
        body_ += piece;
    }
    const QVariant length = reply_->header(QNetworkRequest::ContentLengthHeader);
    emit Progress(received_, length.isValid() ? length.toLongLong() : -1);
}

void Inet::Fail(const QString& why, bool cancelled) {
    if (!reply_ || !failure_.isEmpty()) return;
    failure_ = why;
    cancelled_ = cancelled;
    // Ends in Finish, now or from the event loop.
    if (reply_->isFinished())
        Finish();
    else
        reply_->abort();
}

void Inet::Finish() {
    if (!reply_) return;
    Take();
    // Take may have found the answer too large and finished already.
    if (!reply_) return;
    TransferResult result;
    if (!failure_.isEmpty()) {
        result.error = failure_;
        result.cancelled = cancelled_;
    } else if (reply_->error() != QNetworkReply::NoError) {
        result.error = reply_->errorString();
    } else {
        result.ok = true;
        result.body = std::move(body_);
    }
    reply_->disconnect(this);
    reply_->deleteLater();
    reply_ = nullptr;
    Report(std::move(result));
}

void Inet::Report(TransferResult result) {
    connectTimer_.stop();
    totalTimer_.stop();
    body_.clear();
    sink_ = {};
    executing_ = false;
    // Cleared before the call: the receiver may start the next fetch.
    const Done done = std::exchange(done_, {});
    if (done) done(std::move(result));
}

}  // namespace felthawk
