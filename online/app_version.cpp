#include "online/app_version.h"

#include <algorithm>
#include <cmath>

namespace felthawk {

namespace {

// Val looks through these wherever they stand.
bool IsValBlank(QChar c) {
    return c == u' ' || c == u'\t' || c == u'\n';
}

// The characters of `text` that Val reads, blanks taken out, lower case.
QString WithoutBlanks(const QString& text) {
    QString out;
    for (QChar c : text) {
        if (!IsValBlank(c)) out += c.toLower();
    }
    return out;
}

// An &H or &O number: as many digits of the base as follow the prefix.
double PrefixedWhole(const QString& digits, int base) {
    double value = 0;
    for (QChar c : digits) {
        const int digit = QStringLiteral("0123456789abcdef").indexOf(c);
        if (digit < 0 || digit >= base) break;
        value = value * base + digit;
    }
    return value;
}

}  // namespace

double Val(const QString& text) {
    const QString s = WithoutBlanks(text);
    if (s.startsWith(u"&h")) return PrefixedWhole(s.mid(2), 16);
    if (s.startsWith(u"&o")) return PrefixedWhole(s.mid(2), 8);

    // The longest prefix of the form [sign] digits [. digits] [e|d [sign] digits].
    qsizetype i = 0;
    auto digitsFrom = [&](qsizetype from) {
        qsizetype end = from;
        while (end < s.size() && s[end].isDigit() && s[end].unicode() < 128) ++end;
        return end;
    };
    if (i < s.size() && (s[i] == u'+' || s[i] == u'-')) ++i;
    const qsizetype wholeEnd = digitsFrom(i);
    qsizetype end = wholeEnd;
    if (end < s.size() && s[end] == u'.') end = digitsFrom(end + 1);
    const bool hasDigits = end - i > (end > wholeEnd ? 1 : 0);
    if (!hasDigits) return 0;
    QString number = s.left(end);
    if (end < s.size() && (s[end] == u'e' || s[end] == u'd')) {
        qsizetype exponent = end + 1;
        if (exponent < s.size() && (s[exponent] == u'+' || s[exponent] == u'-')) ++exponent;
        const qsizetype exponentEnd = digitsFrom(exponent);
        if (exponentEnd > exponent)
            number += QStringLiteral("e") + s.mid(end + 1, exponentEnd - end - 1);
    }
    bool ok = false;
    const double value = number.toDouble(&ok);
    return ok && std::isfinite(value) ? value : 0;
}

bool IsNewerVersion(const QString& joined) {
    return Val(joined) > kThisBuildVersion;
}

bool cAppVersion::Load(const QByteArray& bytes) {
    return document_.LoadXml(bytes);
}

const XmlNode* cAppVersion::CurrentVersion() const {
    return document_.selectSingleNode(QStringLiteral("APPLICATION/CURRENTVERSION"));
}

QString cAppVersion::GetCurrentVersion() const {
    const XmlNode* current = CurrentVersion();
    if (!current) return {};

    // The three parts are joined with points that are taken out again, so
    // nothing but the attribute order splits them.
    QString joined;
    const std::size_t parts = std::min<std::size_t>(3, current->attributes.size());
    for (std::size_t i = 0; i < parts; ++i) {
        if (i > 0) joined += u'.';
        joined += current->attributes[i].second;
    }
    return joined.remove(u'.');
}

QByteArray cAppVersion::PublishedDigest() const {
    const XmlNode* current = CurrentVersion();
    if (!current) return {};
    for (const auto& [name, value] : current->attributes) {
        if (name != QLatin1String(kDigestAttribute)) continue;
        const QByteArray digest = value.trimmed().toLatin1().toLower();
        const bool hex =
            digest.size() == 64 && std::all_of(digest.begin(), digest.end(), [](char c) {
                return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'f');
            });
        return hex ? digest : QByteArray();
    }
    return {};
}

}  // namespace felthawk
