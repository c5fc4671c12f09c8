#include "mail/mail_address.h"

#include <cstring>

#include <QStringList>
#include <QUrl>

namespace felthawk {
namespace {

// Limits of RFC 5321: the whole path, the part before the @, a domain, a label.
constexpr qsizetype kMaxAddressLength = 254;
constexpr qsizetype kMaxLocalLength = 64;
constexpr qsizetype kMaxDomainLength = 253;
constexpr qsizetype kMaxLabelLength = 63;

// The characters a dot-atom may hold besides letters and digits.
constexpr char kAtomSpecials[] = "!#$%&'*+-/=?^_`{|}~";

bool IsAsciiAlnum(QChar c) {
    return (c >= u'a' && c <= u'z') || (c >= u'A' && c <= u'Z') || (c >= u'0' && c <= u'9');
}

bool IsAtomChar(QChar c) {
    return IsAsciiAlnum(c) || (c.unicode() < 128 && std::strchr(kAtomSpecials, c.toLatin1()));
}

// A dot-atom: atoms joined by single dots, no dot at either end.
bool IsDotAtom(const QString& local) {
    for (const QString& atom : local.split(u'.')) {
        if (atom.isEmpty()) return false;
        for (QChar c : atom)
            if (!IsAtomChar(c)) return false;
    }
    return true;
}

bool IsHostLabel(const QString& label) {
    if (label.isEmpty() || label.size() > kMaxLabelLength) return false;
    if (label.front() == u'-' || label.back() == u'-') return false;
    for (QChar c : label)
        if (!IsAsciiAlnum(c) && c != u'-') return false;
    return true;
}

// A domain that mail can go to: at least two labels, and a last label that
// is not a number, so that "1.2.3.4" is not taken for a domain.
bool IsMailDomain(const QString& ace) {
    if (ace.isEmpty() || ace.size() > kMaxDomainLength) return false;
    const QStringList labels = ace.split(u'.');
    if (labels.size() < 2) return false;
    for (const QString& label : labels)
        if (!IsHostLabel(label)) return false;
    bool numeric = false;
    labels.back().toLongLong(&numeric);
    return !numeric;
}

AddressCheck Problem(const QString& text) {
    return AddressCheck{false, {}, {}, text};
}

}  // namespace

AddressCheck CheckAddress(const QString& text) {
    const QString address = text.trimmed();
    const QString quoted = u'"' + address + u'"';
    const qsizetype at = address.indexOf(u'@');
    if (at < 0)
        return Problem(quoted + " has no @. An e-mail address looks like name@example.com.");
    if (address.indexOf(u'@', at + 1) >= 0) return Problem(quoted + " has more than one @.");
    const QString local = address.left(at);
    QString domain = address.mid(at + 1);
    if (local.isEmpty()) return Problem(quoted + " has nothing before the @.");
    if (domain.isEmpty()) return Problem(quoted + " has nothing after the @.");
    if (local.size() > kMaxLocalLength || !IsDotAtom(local))
        return Problem("The part before the @ in " + quoted +
                       " may hold only letters a to z, digits, single dots between them and "
                       "the signs " +
                       QString::fromLatin1(kAtomSpecials) + ".");
    // A trailing dot names the root and is not written in mail addresses.
    if (domain.endsWith(u'.')) domain.chop(1);
    const QString ace = QString::fromLatin1(QUrl::toAce(domain)).toLower();
    if (!IsMailDomain(ace))
        return Problem("The part after the @ in " + quoted + " is not a domain name.");
    const QString wire = local + u'@' + ace;
    if (wire.size() > kMaxAddressLength) return Problem(quoted + " is too long.");
    return AddressCheck{true, wire, ace, {}};
}

}  // namespace felthawk
