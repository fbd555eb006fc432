#pragma once
// The string table that `ibtool --generate-strings-file` writes (interface-files.md section 1):
// one block per localizable string, in ibtool's order, UTF-16 little-endian with a byte-order
// mark, every block preceded by a line feed:
//
//   \n/* Class = "NSButtonCell"; title = "Cancel"; ObjectID = "35"; */\n"35.title" = "Cancel";\n

#include "InterfaceFile.h"

#include <QByteArray>

namespace interface {

// ibtool's order: integer object ids (-?[0-9]+) first, by value; then the others by UTF-16 code
// units; within one object, properties by code units. Stable; duplicate keys keep the first.
QList<LocalizableString> inIbtoolOrder(const QList<LocalizableString> &strings);

// A key, value or comment field escaped as ibtool does: \" \\ \n, and (not settled by evidence)
// \t \r and \Uxxxx for the other control characters.
QString escapeTableText(const QString &text);

// The table as text (already in order: call inIbtoolOrder first), without byte-order mark.
QString ibtoolTableText(const QList<LocalizableString> &ordered);
// The bytes ibtool writes: FF FE, then the text in UTF-16 little-endian.
QByteArray ibtoolTableBytes(const QList<LocalizableString> &ordered);

// A string table as ibtool's merge reads it: UTF-16 by byte-order mark or UTF-8, full .strings
// syntax, the last of repeated keys winning. None, with a reason, when it cannot be parsed.
std::optional<StringMap> readStringsTable(const QString &path, QString *error);

}  // namespace interface
