#pragma once
// The strings-file handler: base string tables read line by line into entries that keep each
// pair's own text, pre-filled from a previous localized version (by key) or else from the
// dictionary (by base-language text), and written back as a UTF-8 table of pair lines.

#include "StringMap.h"
#include "StringUtility.h"

#include <QByteArray>

class LocFile;

namespace stringsHandle {

// The first line of a string table stored as an XML property list: the XML declaration as
// Apple's tools write it (the application's resource text "plistHeader").
QString plistHeader();

// True when a base table is a property list rather than text: a binary list (what Xcode
// compiles string tables to inside built applications), or text whose first line is an XML
// declaration, which no string table can begin with. `firstLine` is the decoded first line.
bool isPropertyListTable(const QByteArray &bytes, const QString &firstLine);

void extractStringsDataWithDictionary(LocFile &file, const OptString &dictionaryPath, const OptString &previousPath);
StringMap makeLocalizedStringsFileAt(LocFile &file, const QString &folder);

}  // namespace stringsHandle
