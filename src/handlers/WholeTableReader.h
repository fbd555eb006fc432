#pragma once
// The previous localized version of a file and the translation dictionary are read whole, as
// string tables. One that is there but cannot be read does not stop the reading of the base
// file, but the user is told, so that missing words are never a silent surprise.

#include "StringMap.h"
#include "StringUtility.h"
#include "TextFile.h"

class LocFile;

enum class TableRole { Previous, Dictionary };

// The table's map. None, silently, for an absent or empty path and for a path that names no
// file (a dictionary not written yet, a file new in this release). None with a warning on `file`
// when the file is there but no map comes out of it. A table that is neither UTF-8 nor marked
// UTF-16 (Mac OS Roman, UTF-16 without a byte-order mark) is read in the guessed encoding, with a
// warning that says so.
std::optional<StringMap> readWholeTable(LocFile &file, const OptString &path, TableRole role);

// A path as the user should see it in a message.
QString displayPath(const QString &path);

// "UTF-8", "Mac OS Roman"...: how a file was decoded, for messages.
QString textEncodingName(TextEncoding encoding);
