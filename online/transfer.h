// The transfer control: one fetch at a time of a URL, run by the event loop
// so that the window keeps answering while the server thinks, and bounded in
// time and size so that a server that never answers or never stops cannot
// hold or flood the program.
#pragma once

#include <QByteArray>
#include <QNetworkAccessManager>
#include <QObject>
#include <QPointer>
#include <QString>
#include <QTimer>
#include <functional>

class QNetworkReply;

namespace felthawk {

// No fetch waits longer than this for the server to take its request.
inline constexpr int kConnectTimeoutMs = 5000;

struct TransferLimits {
    // Past this many bytes of body the fetch fails.
    qint64 maxBytes;
    // The whole fetch, from start to the last byte; 0 for no bound.
    int totalMs;
    // The longest silence between two pieces of the answer.
    int stallMs;
};

inline constexpr TransferLimits kVersionFileLimits{64 * 1024, 10000, 10000};
inline constexpr TransferLimits kBannerListLimits{1024 * 1024, 10000, 10000};
inline constexpr TransferLimits kBannerPictureLimits{2 * 1024 * 1024, 10000, 10000};
inline constexpr TransferLimits kInstallerLimits{200LL * 1024 * 1024, 0, 30000};

struct TransferResult {
    bool ok = false;
    // Ended by Cancel rather than by the server or a bound.
    bool cancelled = false;
    // The body, unless the fetch handed it to a sink.
    QByteArray body;
    // Why it failed, for the log of a developer; never shown as markup.
    QString error;
};

class Inet : public QObject {
    Q_OBJECT
  public:
    using Done = std::function<void(TransferResult)>;
    // Takes each piece of the body as it arrives; false stops the fetch as failed.
    using Sink = std::function<bool(const QByteArray&)>;

    explicit Inet(QObject* parent = nullptr);
    // Drops a fetch under way without calling its `done`.
    ~Inet() override;

    // True from OpenURL until `done` has been called.
    bool StillExecuting() const { return executing_; }

    // Starts fetching `url` and returns at once; `done` runs from the event
    // loop, never from inside this call. A URL without a scheme is taken as
    // http. The body is gathered for `done`, or handed to `sink` piece by
    // piece when one is given. Only one fetch runs at a time: a call while
    // one is under way fails at once.
    void OpenURL(const QString& url, const TransferLimits& limits, Done done, Sink sink = {});
    // Ends the fetch under way; its `done` sees `cancelled`.
    void Cancel();

  signals:
    // Bytes so far, and the length the server announced (-1 when unknown).
    void Progress(qint64 received, qint64 total);

  private:
    void Take();
    void Fail(const QString& why, bool cancelled = false);
    void Finish();
    void Report(TransferResult result);

    QNetworkAccessManager manager_;
    QPointer<QNetworkReply> reply_;
    QTimer connectTimer_;
    QTimer totalTimer_;
    TransferLimits limits_{};
    Done done_;
    Sink sink_;
    QByteArray body_;
    qint64 received_ = 0;
    QString failure_;
    bool cancelled_ = false;
    bool executing_ = false;
};

}  // namespace felthawk
