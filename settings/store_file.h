// The file behind the settings store: the INI text that QSettings reads and
// writes, "[SETTINGS]" and one "KEY=value" line per key.
//
// We write it ourselves rather than through QSettings: its buffered writer
// does not notice a write that fails at the end (a full disk) and renames a
// cut-off file over the good one. Here every change of one user action is
// one new file, written unbuffered and checked, flushed to disk and renamed
// over the old one; lines that are not ours are copied as they stand. Reads
// parse the file once and keep the result until the file changes.
#pragma once

#include <optional>
#include <vector>

#include <QByteArray>
#include <QByteArrayView>
#include <QString>

namespace felthawk {

// One key of a section set to a text, or removed (no text).
struct StoreChange {
    QString key;
    std::optional<QString> text;
};

// The text of `key` in `section` of the file at `path`; nothing when the key
// or the file is absent. A value QSettings stored as a list of several texts
// reads as those texts joined with commas.
std::optional<QString> ReadStoreText(const QString& path, const QString& section,
                                     const QString& key);

// Applies `changes` in order and puts the new file in place of the old one.
// Returns "" when written; otherwise the file is as it was and the result
// says, for the user, what could not be written and why.
QString WriteStoreFile(const QString& path, const QString& section,
                       const std::vector<StoreChange>& changes);

// A value as it stands after "=" in the file, and back. EscapeStoreValue
// writes what QSettings reads as the same text.
QString UnescapeStoreValue(QByteArrayView raw);
QByteArray EscapeStoreValue(const QString& text);

}  // namespace felthawk
