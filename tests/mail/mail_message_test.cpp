#include "mail/mail_message.h"

#include <QList>
#include <QTimeZone>

#include <gtest/gtest.h>

namespace felthawk {
namespace {

// The lines of a message part, split at CRLF.
QList<QByteArray> Lines(const QByteArray& text) {
    QList<QByteArray> lines;
    qsizetype start = 0;
    for (qsizetype end; (end = text.indexOf("\r\n", start)) >= 0; start = end + 2)
        lines << text.mid(start, end - start);
    lines << text.mid(start);
    return lines;
}

TEST(EncodeQuotedPrintable, EncodesByTheRules) {
    const QString eighty(80, u'a');
    const struct {
        QString text;
        QByteArray encoded;
    } cases[] = {
        {"Hello, world!", "Hello, world!"},
        {"a=b", "a=3Db"},
        {"café", "caf=C3=A9"},
        {"€", "=E2=82=AC"},
        {"trailing space ", "trailing space=20"},
        {"trailing tab\t", "trailing tab=09"},
        {"in  between", "in  between"},
        {".starts with a dot", "=2Estarts with a dot"},
        {".", "=2E"},
        {"a.b", "a.b"},
        {"one\ntwo", "one\r\ntwo"},
        {"one\r\ntwo\rthree", "one\r\ntwo\r\nthree"},
        {"line \nnext", "line=20\r\nnext"},
        {"", ""},
        {eighty, QByteArray(75, 'a') + "=\r\n" + QByteArray(5, 'a')},
        // A dot carried to the start of a line by a soft break is escaped too.
        {QString(75, u'a') + ".b", QByteArray(75, 'a') + "=\r\n=2Eb"},
        // An escape is never split by a soft break.
        {QString(74, u'a') + "é", QByteArray(74, 'a') + "=\r\n=C3=A9"},
    };
    for (const auto& [text, encoded] : cases) {
        SCOPED_TRACE(text.toStdString());
        EXPECT_EQ(EncodeQuotedPrintable(text), encoded);
    }
}

TEST(EncodeHeaderText, PlainAsciiStandsAndTheRestIsEncodedInWholeCharacters) {
    const struct {
        QString text;
        QByteArray header;
    } cases[] = {
        {"An invitation to Felthawk", "An invitation to Felthawk"},
        {"Line\nbreak\rand\ttab", "Line break and tab"},
        {"Café", "=?UTF-8?B?Q2Fmw6k=?="},
        // Text that looks like an encoded word is encoded itself.
        {"=?x?=", "=?UTF-8?B?PT94Pz0=?="},
        {"", ""},
    };
    for (const auto& [text, header] : cases) {
        SCOPED_TRACE(text.toStdString());
        EXPECT_EQ(EncodeHeaderText(text), header);
    }
}

TEST(EncodeHeaderText, LongTextsSplitIntoWordsThatDecodeAlone) {
    // 2-, 3- and 4-byte characters, so that cuts fall inside characters.
    const QString texts[] = {QString(40, u'é'), QString(40, QChar(0x20ac)),
                             QString::fromUtf8("♠♥♦♣ 🂡🂮 Felthawk ").repeated(5)};
    for (const QString& text : texts) {
        SCOPED_TRACE(text.toStdString());
        const QList<QByteArray> lines = Lines(EncodeHeaderText(text));
        EXPECT_GT(lines.size(), 1);
        QByteArray joined;
        for (qsizetype i = 0; i < lines.size(); ++i) {
            QByteArray word = lines[i];
            if (i > 0) {
                ASSERT_TRUE(word.startsWith(' '));  // folded
                word = word.mid(1);
            }
            EXPECT_LE(word.size(), 60);
            ASSERT_TRUE(word.startsWith("=?UTF-8?B?") && word.endsWith("?="));
            const QByteArray bytes = QByteArray::fromBase64(word.mid(10, word.size() - 12));
            // Each word holds whole characters.
            const QString piece = QString::fromUtf8(bytes);
            EXPECT_EQ(piece.toUtf8(), bytes);
            EXPECT_FALSE(piece.contains(QChar::ReplacementCharacter));
            joined += bytes;
        }
        EXPECT_EQ(QString::fromUtf8(joined), text);
    }
}

TEST(ComposeMessage, HeadersDateAndBody) {
    const MailMessage message{"Ann \"Ace\" Lee", "ann@home.test", "bob@friend.test",
                              "Poker tonight?", "Hi Bob,\n.\nAnn"};
    const struct {
        QDateTime date;
        QByteArray header;
    } dates[] = {
        {QDateTime(QDate(2026, 11, 21), QTime(9, 0, 13), QTimeZone(5400)),
         "Date: Sat, 21 Nov 2026 09:00:13 +0130"},
        {QDateTime(QDate(2031, 2, 3), QTime(23, 59, 59), QTimeZone(-5 * 3600)),
         "Date: Mon, 03 Feb 2031 23:59:59 -0500"},
        {QDateTime(QDate(2026, 1, 1), QTime(0, 0, 0), QTimeZone::utc()),
         "Date: Thu, 01 Jan 2026 00:00:00 +0000"},
    };
    for (const auto& [date, header] : dates) {
        SCOPED_TRACE(header.toStdString());
        const QByteArray composed = ComposeMessage(message, date, "id-1@home.test");
        const qsizetype split = composed.indexOf("\r\n\r\n");
        ASSERT_GT(split, 0);
        const QList<QByteArray> headers = Lines(composed.left(split));
        EXPECT_EQ(headers, (QList<QByteArray>{
                               header,
                               "From: \"Ann \\\"Ace\\\" Lee\" <ann@home.test>",
                               "To: bob@friend.test",
                               "Subject: Poker tonight?",
                               "Message-ID: <id-1@home.test>",
                               "MIME-Version: 1.0",
                               "Content-Type: text/plain; charset=UTF-8",
                               "Content-Transfer-Encoding: quoted-printable",
                           }));
        EXPECT_EQ(composed.mid(split + 4), "Hi Bob,\r\n=2E\r\nAnn\r\n");
    }
}

TEST(ComposeMessage, SenderNames) {
    const QDateTime date(QDate(2026, 11, 21), QTime(9, 0, 0), QTimeZone::utc());
    const struct {
        QString name;
        QByteArray from;
    } cases[] = {
        {"", "From: ann@home.test"},
        {"  Ann   Lee ", "From: \"Ann Lee\" <ann@home.test>"},
        {"Ann\r\nBcc: x@y.test", "From: \"Ann Bcc: x@y.test\" <ann@home.test>"},
        {"Zoë", "From: =?UTF-8?B?Wm/Dqw==?= <ann@home.test>"},
        {"back\\slash", "From: \"back\\\\slash\" <ann@home.test>"},
    };
    for (const auto& [name, from] : cases) {
        SCOPED_TRACE(name.toStdString());
        const QByteArray composed = ComposeMessage(
            MailMessage{name, "ann@home.test", "bob@friend.test", "s", "t"}, date, "i@home.test");
        EXPECT_TRUE(Lines(composed).contains(from)) << composed.toStdString();
    }
}

TEST(ComposeMessage, TextEndsWithOneLineBreak) {
    const QDateTime date(QDate(2026, 11, 21), QTime(9, 0, 0), QTimeZone::utc());
    for (const QString text : {"Ann", "Ann\n", "Ann\r\n"}) {
        SCOPED_TRACE(text.toStdString());
        const QByteArray composed = ComposeMessage(
            MailMessage{"", "ann@home.test", "bob@friend.test", "s", text}, date, "i@home.test");
        EXPECT_TRUE(composed.endsWith("\r\n\r\nAnn\r\n")) << composed.toStdString();
    }
}

}  // namespace
}  // namespace felthawk
