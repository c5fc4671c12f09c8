// E-mail addresses as the send-to-a-friend form accepts them: a plain
// name@domain with an ASCII name part and a domain that may be written in
// any script (it is carried in its ASCII "xn--" form, so no server needs to
// understand international mail).
#pragma once

#include <QString>

namespace felthawk {

struct AddressCheck {
    bool ok = false;
    // When ok: the address as it goes on the wire, trimmed, domain in ASCII.
    QString address;
    QString domain;
    // When not ok: one sentence saying what is wrong, naming the address.
    QString problem;
};

// Checks one address typed by the user. Nothing is looked up.
AddressCheck CheckAddress(const QString& text);

}  // namespace felthawk
