#pragma once
// Cases kept as data under tests/data/<area>/, so adding one needs no C++:
//  - golden folders, tests/data/<area>/<case>/, each with its inputs and the expected outputs
//    beside them; `addGoldenRows` makes one QTest row per folder;
//  - case tables, tests/data/<area>/<name>.tsv: one case a line, fields separated by tabs, "#"
//    starting a comment line; fields may use \n \t \\ \" and \uXXXX. The first field names the
//    row; `addCaseRows` makes the rows.
// `compareText` prints the first differing line of got and expected, and with
// VOCABRIX_UPDATE_GOLDEN=1 in the environment rewrites the expected file instead (for an
// engineer who has checked the new output by eye).

#include "TestSupport.h"

#include <QDir>
#include <QStringList>
#include <QTest>

#include <initializer_list>

namespace TestSupport {

inline QString dataDir(const QString &area)
{
    return QStringLiteral(VOCABRIX_SOURCE_DIR "/tests/data/") + area;
}

// One row per case folder of the area, with the folder's path in column "dir".
inline void addGoldenRows(const QString &area)
{
    QTest::addColumn<QString>("dir");
    const QDir root(dataDir(area));
    const QStringList cases = root.entryList(QDir::Dirs | QDir::NoDotAndDotDot, QDir::Name);
    if (cases.isEmpty()) QTest::newRow("no cases") << QString();
    for (const QString &name : cases) QTest::newRow(qPrintable(name)) << root.filePath(name);
}

inline QString unescapeField(const QString &field)
{
    QString out;
    out.reserve(field.size());
    for (qsizetype i = 0; i < field.size(); ++i) {
        const QChar c = field[i];
        if (c != u'\\' || i + 1 == field.size()) {
            out.append(c);
            continue;
        }
        const QChar n = field[++i];
        if (n == u'n') out.append(u'\n');
        else if (n == u't') out.append(u'\t');
        else if (n == u'r') out.append(u'\r');
        else if (n == u'0') out.append(QChar(0));
        else if (n == u'u' && i + 4 < field.size()) {
            out.append(QChar(char16_t(field.mid(i + 1, 4).toUShort(nullptr, 16))));
            i += 4;
        } else out.append(n);
    }
    return out;
}

// The rows of a case table, each a list of unescaped fields (at least `columns` of them).
inline QList<QStringList> readCaseTable(const QString &path, int columns)
{
    QList<QStringList> rows;
    const QString text = QString::fromUtf8(readFile(path));
    if (text.isEmpty()) qWarning("case table %s is missing or empty", qPrintable(path));
    for (const QString &line : text.split(u'\n')) {
        if (line.isEmpty() || line.startsWith(u'#')) continue;
        QStringList fields;
        for (const QString &f : line.split(u'\t')) fields.append(unescapeField(f));
        while (fields.size() < columns) fields.append(QString());
        rows.append(fields);
    }
    return rows;
}

// One row per line of tests/data/<table> (a path like "handlers/strings-pairs.tsv"), all columns
// QString. With `inBothEncodings` each line makes two rows, first column "utf16" false then true,
// for cases that must hold whichever encoding the file is in.
inline void addCaseRows(const QString &table, const QStringList &columns, bool inBothEncodings = false)
{
    // QTest keeps the column names' pointers, so the names must outlive the test.
    static QList<QByteArray> kept;
    if (inBothEncodings) QTest::addColumn<bool>("utf16");
    for (const QString &c : columns) {
        kept.append(c.toUtf8());
        QTest::addColumn<QString>(kept.last().constData());
    }
    for (const QStringList &row : readCaseTable(dataDir(table), int(columns.size()) + 1)) {
        for (bool utf16 : {false, true}) {
            if (utf16 && !inBothEncodings) break;
            const QString name = inBothEncodings ? row[0] + (utf16 ? QStringLiteral(" (UTF-16)") : QStringLiteral(" (UTF-8)")) : row[0];
            auto &r = QTest::newRow(qPrintable(name));
            if (inBothEncodings) r << utf16;
            for (qsizetype i = 1; i <= columns.size(); ++i) r << row[i];
        }
    }
}
inline void addCaseRows(const QString &table, std::initializer_list<const char *> columns, bool inBothEncodings = false)
{
    QStringList names;
    for (const char *c : columns) names.append(QString::fromUtf8(c));
    addCaseRows(table, names, inBothEncodings);
}
inline void addTableRows(const QString &area, const QString &table, const QStringList &columns)
{
    addCaseRows(area + u'/' + table, columns);
}

inline QString firstDifference(const QString &got, const QString &expected)
{
    const QStringList g = got.split(u'\n'), e = expected.split(u'\n');
    for (qsizetype i = 0; i < std::max(g.size(), e.size()); ++i)
        if (g.value(i) != e.value(i) || i >= g.size() || i >= e.size())
            return QStringLiteral("line %1\n  got:      %2\n  expected: %3").arg(i + 1).arg(g.value(i), e.value(i));
    return QString();
}

// Got against the expected file; on a mismatch the first differing line is printed.
inline bool compareText(const QString &got, const QString &expectedPath)
{
    if (qEnvironmentVariableIntValue("VOCABRIX_UPDATE_GOLDEN") == 1) {
        writeFile(expectedPath, got.toUtf8());
        return true;
    }
    const QString expected = QString::fromUtf8(readFile(expectedPath));
    if (got == expected) return true;
    qWarning("%s differs from what was produced, at %s", qPrintable(expectedPath),
             qPrintable(firstDifference(got, expected)));
    return false;
}

inline bool compareBytes(const QByteArray &got, const QString &expectedPath)
{
    if (qEnvironmentVariableIntValue("VOCABRIX_UPDATE_GOLDEN") == 1) {
        writeFile(expectedPath, got);
        return true;
    }
    const QByteArray expected = readFile(expectedPath);
    if (got == expected) return true;
    qsizetype at = 0;
    while (at < got.size() && at < expected.size() && got[at] == expected[at]) ++at;
    qWarning("%s differs from what was produced at byte %lld (got %lld bytes, expected %lld)",
             qPrintable(expectedPath), qlonglong(at), qlonglong(got.size()), qlonglong(expected.size()));
    return false;
}

}  // namespace TestSupport
