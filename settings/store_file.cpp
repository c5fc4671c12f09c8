#include "settings/store_file.h"

#include <sys/stat.h>

#include <cctype>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QHash>
#include <QSaveFile>
#include <QStringList>

namespace felthawk {

namespace {

QByteArray SectionLine(const QString& section) {
    return '[' + section.toUtf8() + ']';
}

bool IsSectionLine(QByteArrayView line) {
    return line.trimmed().startsWith('[');
}

// The key of a "KEY=value" line, "" for any other line.
QByteArrayView KeyOfLine(QByteArrayView line) {
    const QByteArrayView trimmed = line.trimmed();
    if (trimmed.isEmpty() || trimmed.startsWith(';') || trimmed.startsWith('#')) return {};
    const qsizetype equals = line.indexOf('=');
    return equals < 0 ? QByteArrayView() : line.first(equals).trimmed();
}

// The lines of `text`, as views into it: a large file is not copied line
// by line.
QList<QByteArrayView> SplitLines(const QByteArray& text) {
    QList<QByteArrayView> lines;
    qsizetype start = 0;
    while (start < text.size()) {
        qsizetype end = text.indexOf('\n', start);
        if (end < 0) end = text.size();
        QByteArrayView line(text.constData() + start, end - start);
        if (line.endsWith('\r')) line.chop(1);
        lines << line;
        start = end + 1;
    }
    return lines;
}

// The lines of a section: from after its header up to the next header.
struct SectionRange {
    qsizetype header = -1;  // -1: the section is missing
    qsizetype end = 0;
};

SectionRange FindSection(const QList<QByteArrayView>& lines, const QString& section) {
    const QByteArray header = SectionLine(section);
    SectionRange range;
    for (qsizetype i = 0; i < lines.size(); ++i) {
        if (range.header < 0) {
            if (lines[i].trimmed() == header) range.header = i;
        } else if (IsSectionLine(lines[i])) {
            range.end = i;
            return range;
        }
    }
    range.end = lines.size();
    return range;
}

// What a write could not do, for the user.
QString WriteFailure(const QString& path) {
    const QFileInfo info(path);
    const QFileInfo folder(info.absolutePath());
    QString reason;
    if (info.exists() && !info.isWritable()) {
        reason = QStringLiteral("the file is read-only");
    } else if (!folder.exists() || !folder.isWritable()) {
        reason = QStringLiteral("its folder cannot be written");
    } else {
        reason = QStringLiteral("the disk may be full");
    }
    return QStringLiteral(
               "Felthawk could not save to %1: %2. Nothing was changed; what was saved before "
               "is kept.")
        .arg(QDir::toNativeSeparators(info.absoluteFilePath()), reason);
}

// The parsed file of the last read, kept while the file is the same one:
// same inode (a replacement is a new file), size and change time.
struct ReadCache {
    QString path, section;
    struct stat identity {};
    bool present = false;
    QHash<QString, QString> values;
};

bool SameFile(const struct stat& a, const struct stat& b) {
    return a.st_dev == b.st_dev && a.st_ino == b.st_ino && a.st_size == b.st_size &&
           a.st_mtim.tv_sec == b.st_mtim.tv_sec && a.st_mtim.tv_nsec == b.st_mtim.tv_nsec &&
           a.st_ctim.tv_sec == b.st_ctim.tv_sec && a.st_ctim.tv_nsec == b.st_ctim.tv_nsec;
}

}  // namespace

QString UnescapeStoreValue(QByteArrayView raw) {
    // Items are split at commas outside quotes, with blanks outside quotes
    // trimmed at both ends; a backslash escapes in and out of quotes.
    QStringList items;
    QString item;
    QByteArray pending;  // UTF-8 bytes of one run, quoted or not
    qsizetype kept = 0;  // item's length up to its last quoted or escaped char
    bool quoted = false;
    auto flush = [&] {
        item += QString::fromUtf8(pending);
        pending.clear();
        if (quoted) kept = item.size();
    };
    auto endItem = [&] {
        flush();
        qsizetype end = item.size();
        while (end > kept && item[end - 1].isSpace()) --end;
        items << item.left(end);
        item.clear();
        kept = 0;
    };
    for (qsizetype i = 0; i < raw.size(); ++i) {
        const char c = raw[i];
        if (c == '"') {
            flush();
            quoted = !quoted;
            kept = item.size();
        } else if (c == '\\' && i + 1 < raw.size()) {
            flush();
            const char e = raw[++i];
            switch (e) {
                case 'n':
                    item += QLatin1Char('\n');
                    break;
                case 'r':
                    item += QLatin1Char('\r');
                    break;
                case 't':
                    item += QLatin1Char('\t');
                    break;
                case 'a':
                    item += QLatin1Char('\a');
                    break;
                case 'b':
                    item += QLatin1Char('\b');
                    break;
                case 'f':
                    item += QLatin1Char('\f');
                    break;
                case 'v':
                    item += QLatin1Char('\v');
                    break;
                case 'x': {
                    char16_t code = 0;
                    for (int digits = 0; digits < 4 && i + 1 < raw.size() &&
                                         std::isxdigit(static_cast<unsigned char>(raw[i + 1]));
                         ++digits) {
                        code = static_cast<char16_t>(code * 16 +
                                                     QByteArray(1, raw[++i]).toUInt(nullptr, 16));
                    }
                    item += QChar(code);
                    break;
                }
                default:
                    item += QLatin1Char(e);
                    break;
            }
            kept = item.size();
        } else if (!quoted && c == ',') {
            endItem();
        } else if (!quoted && c == ';') {
            break;  // a comment runs to the end of the line
        } else if (!quoted && item.size() == kept && pending.isEmpty() && kept == 0 &&
                   (c == ' ' || c == '\t')) {
            // blanks before an item
        } else {
            pending += c;
        }
    }
    endItem();
    QString text = items.join(QLatin1Char(','));
    // QSettings marks its own types with "@" and writes a leading "@" twice.
    if (text.startsWith(QLatin1String("@@"))) text.remove(0, 1);
    return text;
}

QByteArray EscapeStoreValue(const QString& text) {
    QString value = text;
    if (value.startsWith(QLatin1Char('@'))) value.prepend(QLatin1Char('@'));
    QByteArray out = "\"";
    for (qsizetype i = 0; i < value.size(); ++i) {
        const QChar c = value[i];
        switch (c.unicode()) {
            case '"':
                out += "\\\"";
                break;
            case '\\':
                out += "\\\\";
                break;
            case '\n':
                out += "\\n";
                break;
            case '\r':
                out += "\\r";
                break;
            case '\t':
                out += "\\t";
                break;
            default:
                if (c.unicode() < 0x20) {
                    // Closing the quote keeps a following hex digit out of
                    // the escape.
                    out += "\\x" + QByteArray::number(c.unicode(), 16) + "\"\"";
                } else if (c.isHighSurrogate() && i + 1 < value.size()) {
                    out += QString(value.mid(i, 2)).toUtf8();
                    ++i;
                } else {
                    out += QString(c).toUtf8();
                }
                break;
        }
    }
    return out + '"';
}

std::optional<QString> ReadStoreText(const QString& path, const QString& section,
                                     const QString& key) {
    static ReadCache cache;
    struct stat identity {};
    const QByteArray local = QFile::encodeName(path);
    const bool present = ::stat(local.constData(), &identity) == 0;
    if (cache.path != path || cache.section != section || cache.present != present ||
        (present && !SameFile(cache.identity, identity))) {
        cache = ReadCache{path, section, identity, present, {}};
        QFile file(path);
        if (present && file.open(QIODevice::ReadOnly)) {
            const QByteArray content = file.readAll();
            const QList<QByteArrayView> lines = SplitLines(content);
            const SectionRange range = FindSection(lines, section);
            for (qsizetype i = range.header + 1; range.header >= 0 && i < range.end; ++i) {
                const QString name = QString::fromUtf8(KeyOfLine(lines[i]));
                if (name.isEmpty() || cache.values.contains(name)) continue;
                cache.values.insert(name,
                                    UnescapeStoreValue(lines[i].sliced(lines[i].indexOf('=') + 1)));
            }
        }
    }
    const auto found = cache.values.constFind(key);
    if (found == cache.values.constEnd()) return std::nullopt;
    return *found;
}

QString WriteStoreFile(const QString& path, const QString& section,
                       const std::vector<StoreChange>& changes) {
    QByteArray content;
    QFile old(path);
    if (old.exists()) {
        if (!old.open(QIODevice::ReadOnly)) return WriteFailure(path);
        content = old.readAll();
    }
    QList<QByteArrayView> lines = SplitLines(content);
    const QByteArray header = SectionLine(section);
    SectionRange range = FindSection(lines, section);
    if (range.header < 0) {
        if (!lines.isEmpty() && !lines.back().trimmed().isEmpty()) lines << QByteArray();
        range.header = lines.size();
        lines << header;
        range.end = lines.size();
    }

    // Where each key stands in the section, looked up once.
    QHash<QByteArrayView, QList<qsizetype>> where;
    for (qsizetype i = range.header + 1; i < range.end; ++i) {
        const QByteArrayView name = KeyOfLine(lines[i]);
        if (!name.isEmpty()) where[name] << i;
    }
    std::vector<bool> dropped(static_cast<size_t>(lines.size()), false);
    QList<QByteArray> added;
    QHash<QByteArray, qsizetype> addedAt;
    for (const StoreChange& change : changes) {
        const QByteArray name = change.key.toUtf8();
        const QByteArray line =
            change.text ? name + '=' + EscapeStoreValue(*change.text) : QByteArray();
        for (qsizetype i : where.value(QByteArrayView(name)))
            dropped[static_cast<size_t>(i)] = true;
        if (const auto at = addedAt.constFind(name); at != addedAt.constEnd()) {
            added[*at] = line;  // "" drops a line added by an earlier change
        } else if (change.text) {
            addedAt.insert(name, added.size());
            added << line;
        }
    }

    QByteArray text;
    text.reserve(content.size() + 1024);
    auto append = [&text](QByteArrayView line) {
        text += line;
        text += '\n';
    };
    auto appendAdded = [&] {
        for (const QByteArray& line : added) {
            if (!line.isEmpty()) append(line);
        }
    };
    for (qsizetype i = 0; i < lines.size(); ++i) {
        if (i == range.end) appendAdded();
        if (!dropped[static_cast<size_t>(i)]) append(lines[i]);
    }
    if (range.end == lines.size()) appendAdded();

    QDir().mkpath(QFileInfo(path).absolutePath());
    // Unbuffered, so that a failing write is seen here and not lost in a
    // flush; commit() flushes the new file to disk before it is renamed.
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Unbuffered) ||
        file.write(text) != text.size()) {
        file.cancelWriting();
        file.commit();
        return WriteFailure(path);
    }
    return file.commit() ? QString() : WriteFailure(path);
}

}  // namespace felthawk
