#pragma once
// Merging the pairs of an export into a language pair's dictionary file, framed by the two
// notifications that let open dictionary browsers save before and re-read after.

#include "StringMap.h"

#include <QObject>
#include <QString>

struct MergeResult {
    bool written = false;     // the dictionary file now holds the merged pairs
    qsizetype pairCount = 0;  // pairs in the file after the merge
    // An existing file that could not be read is never overwritten: it is renamed to this path
    // first, and a new dictionary is started from the export's pairs.
    QString keptAsidePath;
    // Empty when all went well; otherwise a sentence for the user (a file kept aside, a failed
    // write).
    QString message;
};

// 1. posts vXDictWillExportFile with `sender`; 2. reads the file at `path` (missing: empty);
// 3. the given pairs replace or join the stored ones, the others stay; 4. writes atomically;
// 5. posts vXDictExportFileAndAddEntries with `sender`, whatever the outcome of the write.
MergeResult mergeIntoDictionary(const QString &path, const StringMap &pairs, QObject *sender);
