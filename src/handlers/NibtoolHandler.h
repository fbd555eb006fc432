#pragma once
// The nibtool handler of interface files (xib, nib) on systems before 10.5. The older tool
// lists an interface file's strings on its standard output; it is given the dictionary and the
// previous localized version, so its listing already carries the localized words, and a second
// run without them gives the base words, paired with the first object by object (the marker
// after "> (" in each comment). Reading is asynchronous: the output is collected through the
// process's signals on the main thread, and the entries appear, announced by
// "LocFileFinishReadingFile", only when the output has ended.
//
// A tool that is missing, fails, crashes or hangs (stopped after the tools' timeout) counts as
// a tool that listed nothing; the file gets a warning that says why. Its standard error is read
// and kept only for that message, so the tool never blocks on it.
//
// Export writes the entries as the merge table "<stem>--temp-<pid>.strings" beside the interface
// file, has the tool merge it into a localized copy, and returns the table's pairs.

#include "StringMap.h"
#include "StringUtility.h"

class LocFile;

namespace nibHandle {

void extractNibDataWithDictionary(LocFile &file, const OptString &dictionaryPath, const OptString &previousPath);
// Starts one run of the tool on `path`; its output arrives later through standardOutput.
void nibtool(LocFile &file, const QString &path, const OptString &dictionaryPath, const OptString &previousPath);
// One completed read of the current run's output; an empty chunk is the end of the output.
void standardOutput(LocFile &file, const QByteArray &chunk);

// A listing cut into entry texts, one per block, each from its "/*" to its closing "\";".
QStringList entryTexts(const QString &listing);
void parseEntries(LocFile &file, const QString &listing);
void parseEntries(LocFile &file, const QString &translated, const QString &original);
// The localized word for an entry text: the value in the translated listing of the block with
// the same object marker; none without a marker, a match or a value.
OptString localizedWordForEntry(const QString &entry, const QString &translated);

// Writes the merge table and returns its path; none (with a warning on the file) when it could
// not be written.
OptString makeStringsFile(LocFile &file);
StringMap makeLocalizedNibFileAt(LocFile &file, const QString &folder);

}  // namespace nibHandle
