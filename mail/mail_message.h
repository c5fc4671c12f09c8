// The message that goes to the friend, written out as Internet mail:
// headers in ASCII (words in other scripts encoded), the text in UTF-8
// carried as quoted-printable so that no line is too long for a server and
// no line starts with a lone dot.
#pragma once

#include <QByteArray>
#include <QDateTime>
#include <QString>

namespace felthawk {

struct MailMessage {
    QString fromName;     // may be empty
    QString fromAddress;  // checked, as CheckAddress gives it
    QString toAddress;    // checked, as CheckAddress gives it
    QString subject;
    QString text;  // any line endings
};

// The whole message, lines ended by CRLF. `date` goes into the Date header
// with its own offset from UTC; `messageId` is the part inside < >.
QByteArray ComposeMessage(const MailMessage& message, const QDateTime& date,
                          const QString& messageId);

// A fresh Message-ID for a message from `fromDomain`: unique@fromDomain.
QString NewMessageId(const QString& fromDomain);

// Header text: as it stands when it is plain printable ASCII, otherwise as
// UTF-8 encoded words, folded so that no header line grows too long. Line
// breaks and other control characters in `text` become spaces.
QByteArray EncodeHeaderText(const QString& text);

// Quoted-printable body: CRLF line endings, lines of at most 76 characters.
QByteArray EncodeQuotedPrintable(const QString& text);

}  // namespace felthawk
