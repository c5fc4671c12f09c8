// Handing web pages and mail addresses to the desktop, and the deployment
// values they point at. A failure of the desktop is ignored: the user simply
// sees nothing open.
#pragma once

#include <QString>

namespace felthawk {

// The web site without a trailing slash, the support address (Contact Us)
// and the suggestion address (About), as the build was configured.
QString WebSite();
QString SupportMail();
QString SuggestionMail();

// Opens a web address in the default browser.
void OpenAddress(const QString& address);
// Starts a mail to `address`. The text handed on is "mailto: " and the
// address, blank included, as the program always did.
void OpenMailTo(const QString& address);

}  // namespace felthawk
