// The version check: the version file on the server, and the decision
// whether it names a newer build than this one.
#pragma once

#include <QString>

namespace felthawk {

class Inet;

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

class cAppVersion {
  public:
    explicit cAppVersion(Inet& inet) : inet_(inet) {}

    // The URL or path of the version file.
    QString XMLSource;

    // The first three attributes of APPLICATION/CURRENTVERSION, in document
    // order and whatever their names, joined and stripped of every ".".
    // "" when the file cannot be read; a missing attribute is skipped, so
    // the join comes out short.
    QString GetCurrentVersion() const;

  private:
    Inet& inet_;
};

}  // namespace felthawk
