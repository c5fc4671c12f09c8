#include "mail/mail_message.h"

#include <QList>
#include <QLocale>
#include <QUuid>

namespace felthawk {
namespace {

// Encoded words of 36 bytes of text are 60 characters long ("=?UTF-8?B?",
// 48 of base64, "?="), so that even after "Subject: " a header line stays
// within the 78 characters mail likes.
constexpr qsizetype kEncodedWordBytes = 36;
// Quoted-printable lines hold 76 characters, the soft break "=" included.
constexpr qsizetype kQuotedPrintableWidth = 75;

// Plain printable ASCII goes as it is; anything else, and text that a
// reader could take for an encoded word, is encoded.
bool NeedsEncoding(const QString& text) {
    for (QChar c : text)
        if (c.unicode() < 0x20 || c.unicode() > 0x7e) return true;
    return text.contains(QLatin1String("=?"));
}

QString WithoutControls(const QString& text) {
    QString clean = text;
    for (QChar& c : clean)
        if (c.category() == QChar::Other_Control) c = u' ';
    return clean;
}

bool IsUtf8Continuation(char byte) {
    return (static_cast<unsigned char>(byte) & 0xc0) == 0x80;
}

// "Name" <address>, or the address alone when there is no name.
QByteArray Mailbox(const QString& name, const QString& address) {
    const QString clean = WithoutControls(name).simplified();
    if (clean.isEmpty()) return address.toLatin1();
    QByteArray phrase;
    if (!NeedsEncoding(clean)) {
        QString quoted = clean;
        quoted.replace(QLatin1String("\\"), QLatin1String("\\\\"))
            .replace(QLatin1String("\""), QLatin1String("\\\""));
        phrase = '"' + quoted.toLatin1() + '"';
    } else {
        phrase = EncodeHeaderText(clean);
    }
    return phrase + " <" + address.toLatin1() + '>';
}

// Date in the form mail wants, in English whatever the user's language.
QByteArray MailDate(const QDateTime& date) {
    const int offset = date.offsetFromUtc() / 60;
    const int magnitude = offset < 0 ? -offset : offset;
    return QLocale::c().toString(date, QStringLiteral("ddd, dd MMM yyyy hh:mm:ss")).toLatin1() +
           (offset < 0 ? " -" : " +") +
           QByteArray::number(magnitude / 60 * 100 + magnitude % 60).rightJustified(4, '0');
}

void AppendQuotedPrintableLine(const QByteArray& line, QByteArray& out) {
    qsizetype width = 0;
    for (qsizetype i = 0; i < line.size(); ++i) {
        const auto byte = static_cast<unsigned char>(line[i]);
        const bool lastOfLine = i + 1 == line.size();
        // Blanks are literal except at the end of a line, where servers may
        // strip them; "=" and everything outside printable ASCII is escaped.
        const bool literal = ((byte == ' ' || byte == '\t') && !lastOfLine) ||
                             (byte > ' ' && byte < 0x7f && byte != '=');
        QByteArray piece =
            literal ? QByteArray(1, static_cast<char>(byte))
                    : '=' + QByteArray::number(byte, 16).toUpper().rightJustified(2, '0');
        if (width + piece.size() > kQuotedPrintableWidth) {
            out += "=\r\n";
            width = 0;
        }
        // A dot that opens a line would be taken by SMTP as the end of data.
        if (width == 0 && piece == ".") piece = "=2E";
        out += piece;
        width += piece.size();
    }
}

}  // namespace

QByteArray EncodeHeaderText(const QString& text) {
    const QString clean = WithoutControls(text);
    if (!NeedsEncoding(clean)) return clean.toLatin1();
    const QByteArray utf8 = clean.toUtf8();
    QByteArray out;
    qsizetype start = 0;
    while (start < utf8.size()) {
        qsizetype end = std::min(start + kEncodedWordBytes, utf8.size());
        // Never cut a character in two: each word must decode on its own.
        while (end < utf8.size() && end > start + 1 && IsUtf8Continuation(utf8[end])) --end;
        if (!out.isEmpty()) out += "\r\n ";
        out += "=?UTF-8?B?" + utf8.mid(start, end - start).toBase64() + "?=";
        start = end;
    }
    return out;
}

QByteArray EncodeQuotedPrintable(const QString& text) {
    QString normalized = text;
    normalized.replace(QLatin1String("\r\n"), QLatin1String("\n")).replace(u'\r', u'\n');
    const QList<QByteArray> lines = normalized.toUtf8().split('\n');
    QByteArray out;
    for (qsizetype i = 0; i < lines.size(); ++i) {
        if (i > 0) out += "\r\n";
        AppendQuotedPrintableLine(lines[i], out);
    }
    return out;
}

QString NewMessageId(const QString& fromDomain) {
    return QUuid::createUuid().toString(QUuid::Id128) + u'@' + fromDomain;
}

QByteArray ComposeMessage(const MailMessage& message, const QDateTime& date,
                          const QString& messageId) {
    QByteArray out;
    out += "Date: " + MailDate(date) + "\r\n";
    out += "From: " + Mailbox(message.fromName, message.fromAddress) + "\r\n";
    out += "To: " + message.toAddress.toLatin1() + "\r\n";
    out += "Subject: " + EncodeHeaderText(message.subject) + "\r\n";
    out += "Message-ID: <" + messageId.toLatin1() + ">\r\n";
    out += "MIME-Version: 1.0\r\n";
    out += "Content-Type: text/plain; charset=UTF-8\r\n";
    out += "Content-Transfer-Encoding: quoted-printable\r\n";
    out += "\r\n";
    out += EncodeQuotedPrintable(message.text);
    // The text ends with a line break, one only.
    if (!out.endsWith("\r\n")) out += "\r\n";
    return out;
}

}  // namespace felthawk
