#pragma once
// Writing a map as a string table, one "key" = "value"; line per pair in the map's order, UTF-8
// without a byte-order mark. The escaping is the inverse of the string-table reader, so every
// word survives write-then-read unchanged: backslashes, quotes, line breaks, lone surrogates.

#include "StringMap.h"

#include <QByteArray>
#include <QString>

namespace StringsFileWriter {

// A word as it stands between the quotes: backslash and quote escaped, a line feed kept as it
// is, an unpaired UTF-16 surrogate (UTF-8 cannot carry it) and U+FEFF (readers drop it as a
// byte-order mark) written as \UXXXX.
QString escapeWord(QStringView word);

}  // namespace StringsFileWriter

QString stringsFileStyleString(const StringMap &map);
QByteArray stringsFileStyleData(const StringMap &map);
// Always written atomically: the bytes go through a temporary file in the same folder that then
// replaces the target (QSaveFile). False, with a reason in `error`, when it could not be written.
bool writeToStringsFile(const StringMap &map, const QString &path, bool atomically, QString *error = nullptr);
