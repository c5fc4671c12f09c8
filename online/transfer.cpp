#include "online/transfer.h"

#include <QEventLoop>
#include <QNetworkReply>
#include <QNetworkRequest>
#include <QTimer>
#include <QUrl>
#include <memory>

namespace felthawk {

Inet::Inet(int timeoutMs) : timeoutMs_(timeoutMs) {}

QByteArray Inet::OpenURL(const QString& url) {
    const QUrl target = QUrl::fromUserInput(url);
    if (!target.isValid() || target.host().isEmpty())
        throw TransferError("not a URL: " + url.toStdString());

    executing_ = true;
    QNetworkRequest request(target);
    request.setTransferTimeout(timeoutMs_);
    std::unique_ptr<QNetworkReply> reply(manager_.get(request));

    // The transfer timeout only counts silence; this bound counts the whole
    // call, so a server that trickles bytes cannot hold the window either.
    QEventLoop loop;
    QTimer bound;
    bound.setSingleShot(true);
    QObject::connect(&bound, &QTimer::timeout, reply.get(), &QNetworkReply::abort);
    QObject::connect(reply.get(), &QNetworkReply::finished, &loop, &QEventLoop::quit);
    bound.start(timeoutMs_);
    if (!reply->isFinished()) loop.exec(QEventLoop::ExcludeUserInputEvents);
    executing_ = false;

    if (reply->error() != QNetworkReply::NoError)
        throw TransferError(reply->errorString().toStdString());
    return reply->readAll();
}

}  // namespace felthawk
