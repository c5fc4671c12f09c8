// One SMTP delivery to one mail exchanger, through libcurl's SMTP client.
// libcurl's multi interface is driven by the event loop (socket notifiers
// and a timer), so the window stays responsive while the server thinks.
#pragma once

#include <chrono>
#include <map>

#include <QByteArray>
#include <QHostAddress>
#include <QList>
#include <QObject>
#include <QString>
#include <QTimer>

class QSocketNotifier;
struct curl_slist;

namespace felthawk {

struct SmtpRequest {
    QString host;                   // the exchanger's name
    QList<QHostAddress> addresses;  // where it answers, tried in order
    quint16 port = 25;
    QString heloName;  // how we introduce ourselves
    QString mailFrom;  // checked addresses
    QString rcptTo;
    QByteArray message;  // the whole message, CRLF line endings
    std::chrono::milliseconds connectTimeout{std::chrono::seconds(30)};
    std::chrono::seconds replyTimeout{60};
};

struct SmtpOutcome {
    enum class Kind {
        Delivered,  // the server took the message
        Refused,    // a 5xx reply: the server will never take it
        Deferred,   // a 4xx reply: not now; another exchanger may take it
        Failed,     // no reply to speak of: no connection, a timeout, a dropped line
    };
    Kind kind = Kind::Failed;
    QString reply;  // the refusing reply ("550 5.1.1 No such user") or ""
    QString error;  // libcurl's account of what went wrong, or ""
};

class SmtpTransfer : public QObject {
    Q_OBJECT
  public:
    explicit SmtpTransfer(QObject* parent = nullptr);
    ~SmtpTransfer() override;

    // Starts the delivery; finished() follows once, later, unless Abort()
    // comes first. A transfer is used for one delivery only.
    void Start(const SmtpRequest& request);
    // Drops the connection at once; finished() is not emitted.
    void Abort();

    // The two notifiers that watch one of libcurl's sockets.
    struct Notifiers {
        QSocketNotifier* read = nullptr;
        QSocketNotifier* write = nullptr;
    };

  signals:
    void finished(const felthawk::SmtpOutcome& outcome);

  private:
    // The functions libcurl calls back, with the exact types it wants.
    struct CurlCallbacks;

    void WatchSocket(int socket, int what);
    void Drive(int socket, int events);
    void NoteReplyLine(const QByteArray& line);
    SmtpOutcome Outcome(int curlCode) const;
    void Release();

    void* multi_ = nullptr;          // CURLM
    void* easy_ = nullptr;           // CURL
    curl_slist* resolve_ = nullptr;  // the exchanger's addresses
    curl_slist* recipients_ = nullptr;
    std::map<int, Notifiers> sockets_;
    QTimer timer_;
    QByteArray message_;
    qsizetype sent_ = 0;
    QByteArray pendingReply_;  // lines of a multi-line reply so far
    QByteArray refusal_;       // the last 4xx or 5xx reply
    char error_[256] = {};     // CURL_ERROR_SIZE
};

}  // namespace felthawk
