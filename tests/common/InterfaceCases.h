#pragma once
// Case tables for the interface, handler and corpus tests. QTest keeps the column name pointer
// it is given, so the names here are string literals that outlive the data function.

#include "CaseData.h"
#include "LocFile.h"

#include <initializer_list>

namespace TestSupport {

// One row per line of tests/data/<table> (a path like "handlers/strings-pairs.tsv"), all columns
// QString. With `inBothEncodings` each line makes two rows, first column "utf16" false then true,
// for cases that must hold whichever encoding the file is in.
inline void addCaseRows(const QString &table, std::initializer_list<const char *> columns, bool inBothEncodings = false)
{
    if (inBothEncodings) QTest::addColumn<bool>("utf16");
    for (const char *c : columns) QTest::addColumn<QString>(c);
    const QString path = QStringLiteral(VOCABRIX_SOURCE_DIR "/tests/data/") + table;
    for (const QStringList &row : readCaseTable(path, int(columns.size()) + 1)) {
        for (bool utf16 : {false, true}) {
            if (utf16 && !inBothEncodings) break;
            const QString name = inBothEncodings ? row[0] + (utf16 ? QStringLiteral(" (UTF-16)") : QStringLiteral(" (UTF-8)")) : row[0];
            auto &r = QTest::newRow(qPrintable(name));
            if (inBothEncodings) r << utf16;
            for (qsizetype i = 1; i <= qsizetype(columns.size()); ++i) r << row[i];
        }
    }
}

// The localized words of a file's entries with their check marks, "Oui+|Non-"; with keys
// "key=Oui+|...".
inline QString entryWords(const LocFilePtr &file, bool withKeys = false)
{
    QStringList list;
    for (const LocEntryPtr &e : file->allEntries())
        list << (withKeys ? StringUtility::wordOrEmpty(e->keyWord()) + u'=' : QString())
                    + StringUtility::wordOrEmpty(e->localizedWord()) + (e->isChecked() ? u'+' : u'-');
    return list.join(u'|');
}

}  // namespace TestSupport
