#pragma once
// The ibtool handler of interface files (xib, nib) on systems from 10.5 on: the interface tool
// turns the file into a string table, each block of which becomes one entry; localized words
// come from a previous localized version (matched by object id and property) or else from the
// dictionary (by base word). Export writes the entries as a table and has the tool merge it
// into a localized copy. Reading is synchronous and posts no end-of-reading notification.
//
// Temporary tables sit beside the interface file they belong to, named after its stem:
// "<stem>__temp-<pid>.strings" for the tool's table, "<stem>--temp-<pid>.strings" for the merge table;
// both are always removed again.
//
// Interface files of Base.lproj take a previous string table and export one (IbtoolBaseTables.h).

#include "StringMap.h"
#include "StringUtility.h"

class LocFile;

namespace ibtoolHandle {

void ibtoolExtractNibDataWithDictionary(LocFile &file, const OptString &dictionaryPath, const OptString &previousPath);
StringMap ibtoolMakeLocalizedNibFileAt(LocFile &file, const QString &folder);

// Runs the tool on one interface file and returns the path of the table it was asked to write
// (which may not exist when the tool failed). `failure` gets the reason of a failed run.
QString ibtoolMakePListFromNib(const QString &path, QString *failure = nullptr, QStringList *toolWarnings = nullptr);
// Runs the tool on several interface files side by side and keeps their tables in memory, each
// taken by the next reading of its file (as long as the file is unchanged); a run that fails or
// warns keeps nothing, and that file is read the usual way.
void ibtoolPrepareTables(const QStringList &paths);
// Fills the file's entries from the tool's table text, the previous version's table text (if
// any) and the dictionary file (if any).
void ibtoolParseEntries(LocFile &file, const QString &entries, const OptString &previousEntries,
                        const OptString &dictionaryPath);
// The same with the previous version given as a table keyed "ObjectID.property" (Base.lproj files).
void ibtoolParseEntries(LocFile &file, const QString &entries, const StringMap &previousTable,
                        const OptString &dictionaryPath);
// The previous localized value of one object's property in the previous version's table.
OptString stringForObjectID(const OptString &objectID, const OptString &wordType, const OptString &previousEntries);
// Writes the merge table from the entries, filling `pairs` with base word → localized word;
// none when it could not be written.
OptString ibtoolMakeStringsFile(LocFile &file, StringMap &pairs);
// The pairs export returns: base word → localized word of every entry with both.
void collectPairs(const LocFile &file, StringMap &pairs);

}  // namespace ibtoolHandle
