#pragma once
// Reading whole string tables ("key" = "value"; with comments and backslash escapes) into maps.
// All-or-nothing: a table that breaks the syntax anywhere gives no map, never a partial one.

#include "StringMap.h"

#include <QByteArray>
#include <QStringView>
#include <optional>

namespace StringsTable {

struct Error {
    qsizetype line = 0;  // 1-based; 0 when the error is not tied to a place
    QString message;
};

// The grammar on decoded text. Keys repeat: the last value wins, the first place stays.
std::optional<StringMap> parse(QStringView text, Error *error = nullptr);

// Bytes as they come from a file: UTF-16 by byte-order mark, otherwise UTF-8 (a UTF-8 mark is
// skipped); the map's buffer is the decoded text itself. Property lists whose root is a
// dictionary of strings (XML, binary, or the braced text form) are read as their map too: built
// applications carry string tables in binary form.
std::optional<StringMap> parseData(const QByteArray &data, Error *error = nullptr);

// A file read once, as the command line does: a plain UTF-8 table is decoded and parsed as it
// is read, so neither its bytes nor its text are ever held whole; other forms as parseData.
// Not kept for later reads.
std::optional<StringMap> readFile(const QString &path, Error *error = nullptr);

// parseData for the bytes of the file at `path`. Large tables are kept in memory with the bytes
// they came from (a few files), so a dictionary consulted for every file of a bundle is parsed
// once; comparing the bytes makes a stale answer impossible.
std::optional<StringMap> parseFileData(const QString &path, const QByteArray &data, Error *error = nullptr);

// While one of these lives (adding a bundle, say), a large table read once is not read again:
// the map of its first reading is taken for as long as the file keeps its size and modification
// time. One dictionary consulted for each of hundreds of files is then read and compared once,
// not once per file; outside a scope every read compares the bytes as before.
class SnapshotScope {
public:
    SnapshotScope();
    ~SnapshotScope();
    SnapshotScope(const SnapshotScope &) = delete;
    SnapshotScope &operator=(const SnapshotScope &) = delete;
};

// The map kept for `path` during the current scope, if any (nothing is read).
std::optional<StringMap> snapshotOf(const QString &path);

}  // namespace StringsTable

// Nothing for a missing file, a syntax error or undecodable bytes.
std::optional<StringMap> dictionaryWithContentsOfFile(const QString &path);
// The same, with the reason when there is no map.
std::optional<StringMap> dictionaryWithContentsOfFile(const QString &path, StringsTable::Error *error);
