#pragma once
// Problems of entries remembered between repaints. A table asks for an entry's problems each time
// it paints a row and the file table for every entry of a file, so each entry is checked once per
// text and check mark: a changed text is noticed by itself (entries replace their text, never
// edit it in place), so nobody has to announce changes.

#include "LocFile.h"
#include "QualityChecks.h"

#include <QHash>

namespace Qa {

struct FileSummary {
    qsizetype errors = 0;    // entries with an error
    qsizetype warnings = 0;  // entries with warnings only
    Severity worst() const { return errors ? Severity::Error : warnings ? Severity::Warning : Severity::None; }
};

class QualityCache {
public:
    const QList<Problem> &problems(const LocEntry &entry);
    Severity severity(const LocEntry &entry) { return worstSeverity(problems(entry)); }
    FileSummary summary(const LocFile &file);
    // Forgets every entry (files were removed: their entries may be gone).
    void clear() { m_rows.clear(); }

private:
    struct Row {
        QString text;  // shares the entry's text while it is unchanged
        bool checked = false;
        QList<Problem> problems;
    };
    QHash<const LocEntry *, Row> m_rows;
};

// The one-line text of an entry's problems, for tool tips and the command line.
QString problemsText(const QList<Problem> &problems);

}  // namespace Qa
