#pragma once
// Interface files of Base.lproj (Base internationalization): a language localizes them not with
// a copy of the interface file but with a string table of the same stem, <lang>.lproj/X.strings,
// keyed "ObjectID.property" exactly like the tool's table. So the previous version of such a file
// may be that table, and export writes the table: the tool's table of the base file, each value
// replaced by the entry's localized word. Its form follows the previous release's table (UTF-8
// without a byte-order mark when there was none, UTF-16 or a binary property list when the
// previous release shipped one). A file whose previous version was given as a localized interface
// file (the older layout, or a previous release that shipped one) keeps the interface-file export.

#include "StringMap.h"
#include "StringUtility.h"

class LocFile;

namespace ibtoolHandle {

enum class TableForm { Utf8, Utf16, BinaryPropertyList, InterfaceFile };

// True for a path whose extension is one the interface tool reads.
bool isInterfaceExtension(const QString &path);
// An interface file inside a Base.lproj folder.
bool isBaseInterfaceFile(const QString &path);
// A previous version that is a string table rather than an interface file.
bool isTablePath(const OptString &previousPath);

// The form of a previous version's file, kept on the file until export.
TableForm tableFormOfFile(const QString &path);
void rememberPreviousForm(LocFile &file, TableForm form);
TableForm previousForm(const LocFile &file);
// Whether export writes <stem>.strings rather than an interface file.
bool exportsAsTable(const LocFile &file);

// The table text of the entries, each value the localized word (the base word where it is
// empty), laid out as the tool writes it.
QString localizedTableText(const LocFile &file);
// Writes <folder>/<stem>.strings in the remembered form; false with a warning on the file.
bool writeLocalizedTable(LocFile &file, const QString &folder);

}  // namespace ibtoolHandle
