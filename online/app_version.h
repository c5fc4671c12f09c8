// The version check: the version file on the server, and the decision
// whether it names a newer build than this one.
#pragma once

#include <QByteArray>
#include <QString>

#include "online/xml_document.h"

namespace felthawk {

// This build's version in the joined form of the version file's digits.
// The program's version resource is not consulted; a later build raises it.
inline constexpr int kThisBuildVersion = 10;

// The number at the start of `text` as the old BASIC Val reads it: blanks,
// tabs and line feeds anywhere are skipped, then an optional sign, digits, a
// fraction and an exponent (E or D), or an &H / &O prefixed whole number.
// Whatever follows is ignored; a text that does not start with a number is 0.
double Val(const QString& text);

// True when the version text `joined` names a build above this one. "" and
// anything Val reads as 0 never do.
bool IsNewerVersion(const QString& joined);

// The attribute of CURRENTVERSION that publishes the installer's SHA-256,
// as 64 hexadecimal digits. It is found by name, so it may stand anywhere
// after the three parts of the version.
inline constexpr char kDigestAttribute[] = "SHA256";

// The version file as read from the server.
class cAppVersion {
  public:
    // Reads the version file from the bytes the server sent. False, and
    // nothing read, when they are not a well-formed document.
    bool Load(const QByteArray& bytes);

    // The first three attributes of APPLICATION/CURRENTVERSION, in document
    // order and whatever their names, joined and stripped of every ".".
    // "" when the file could not be read; a missing attribute is skipped, so
    // the join comes out short.
    QString GetCurrentVersion() const;

    // The installer's SHA-256 as the file publishes it, in lower case; ""
    // when it publishes none or something that is not 64 hexadecimal digits.
    QByteArray PublishedDigest() const;

  private:
    const XmlNode* CurrentVersion() const;

    XmlDocument document_;
};

}  // namespace felthawk
