// The transfer control: a blocking fetch of a whole URL into bytes, and the
// flag that says a transfer is running. The fetch keeps the window's own
// events waiting, as a blocking call does, but never longer than the bound,
// so a server that never answers cannot freeze the program.
#pragma once

#include <QByteArray>
#include <QNetworkAccessManager>
#include <QString>
#include <stdexcept>

namespace felthawk {

class TransferError : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

class Inet {
  public:
    explicit Inet(int timeoutMs);

    // True while OpenURL is waiting for the server.
    bool StillExecuting() const { return executing_; }

    // The whole body at `url`. A URL without a scheme is taken as http, as
    // the transfer control always did. Throws TransferError when the server
    // is out of reach, answers with an HTTP error, or takes longer than the
    // bound.
    QByteArray OpenURL(const QString& url);

  private:
    QNetworkAccessManager manager_;
    int timeoutMs_;
    bool executing_ = false;
};

}  // namespace felthawk
