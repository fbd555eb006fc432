#include "QualityCache.h"

namespace Qa {

const QList<Problem> &QualityCache::problems(const LocEntry &entry)
{
    Row &row = m_rows[&entry];
    const QString &text = entry.entry();
    // Same storage: the very text checked before (a row new to the cache has none).
    const bool same = !row.text.isNull() && (row.text.constData() == text.constData() || row.text == text);
    if (!same || row.checked != entry.isChecked()) {
        row.text = text;
        row.checked = entry.isChecked();
        row.problems = checkEntry(entry);
    }
    return row.problems;
}

FileSummary QualityCache::summary(const LocFile &file)
{
    FileSummary s;
    m_rows.reserve(m_rows.size() + file.allEntries().size());
    for (const LocEntryPtr &e : file.allEntries()) {
        const Severity worst = severity(*e);
        if (worst == Severity::Error) ++s.errors;
        else if (worst == Severity::Warning) ++s.warnings;
    }
    return s;
}

QString problemsText(const QList<Problem> &problems)
{
    QStringList lines;
    for (const Problem &p : problems) lines.append(severityName(p.severity) + QLatin1String(": ") + p.message);
    return lines.join(u'\n');
}

}  // namespace Qa
