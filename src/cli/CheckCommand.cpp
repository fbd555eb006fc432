// check: the quality checks over a document's entries or a translated string table, as a gate
// for builds. One JSON line per problem (or compiler-style lines); exit status 1 when any problem
// is an error, so warnings alone never fail a build.
#include "Command.h"
#include "DocumentCli.h"
#include "QualityChecks.h"
#include "StringsTable.h"
#include "TablePlaces.h"
#include "TextFile.h"

#include <QFile>
#include <QFileInfo>

using namespace Qa;

namespace {

struct Found {
    QString file;
    int line = 0;  // 0: not known (an entry of an interface file)
    QString key;
    QString base;
    QString translation;
    Problem problem;
};

class Report {
public:
    Report(QTextStream &out, bool gcc) : m_out(out), m_gcc(gcc) {}

    void add(const Found &f)
    {
        (f.problem.severity == Severity::Error ? m_errors : m_warnings) += 1;
        const QString severity = severityName(f.problem.severity);
        if (m_gcc) {
            m_out << f.file << ":";
            if (f.line > 0) m_out << f.line << ":";
            m_out << " " << severity << ": " << jsonString(f.key) << ": " << f.problem.message << " [" << f.problem.check
                  << "]\n";
            return;
        }
        QJsonObject o{{QStringLiteral("file"), f.file},
                      {QStringLiteral("key"), f.key},
                      {QStringLiteral("check"), f.problem.check},
                      {QStringLiteral("severity"), severity},
                      {QStringLiteral("message"), f.problem.message},
                      {QStringLiteral("base"), f.base},
                      {QStringLiteral("translation"), f.translation}};
        if (f.line > 0) o.insert(QStringLiteral("line"), f.line);
        DocumentCli::printLine(m_out, o);
    }
    int errors() const { return m_errors; }
    int warnings() const { return m_warnings; }

private:
    QTextStream &m_out;
    bool m_gcc;
    int m_errors = 0;
    int m_warnings = 0;
};

struct Table {
    StringMap map;
    QHash<QString, TablePlace> places;
};

std::optional<Table> readTable(const QString &path, QTextStream &err)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        err << "vocabrix-cli: " << path << ": cannot be read\n";
        return std::nullopt;
    }
    const QByteArray bytes = file.readAll();
    StringsTable::Error error;
    auto map = StringsTable::parseData(bytes, &error);
    const QString text = StringUtility::wordOrEmpty(decodeTextFileData(bytes));
    // Older tables: UTF-16 without a byte-order mark, Mac OS Roman.
    if (!map && !text.isEmpty()) map = StringsTable::parse(text);
    if (!map) {
        err << "vocabrix-cli: " << path << ": not a readable string table";
        if (!error.message.isEmpty()) err << " (" << error.message << (error.line > 0 ? QStringLiteral(", line %1").arg(error.line) : QString()) << ")";
        err << "\n";
        return std::nullopt;
    }
    return Table{std::move(*map), tablePlaces(text)};
}

// Each pair of a translated table against its base: the base table's value for its key, else
// the interface tool's comment before it, else the key itself (tables keyed by English text).
bool checkTable(const QString &path, const OptString &basePath, Report &report, QTextStream &err)
{
    const auto table = readTable(path, err);
    if (!table) return false;
    std::optional<Table> base;
    if (basePath && !(base = readTable(*basePath, err))) return false;
    bool interfaceTable = false;
    for (const TablePlace &place : std::as_const(table->places)) interfaceTable |= bool(interfaceCommentBase(place.comment));
    qsizetype unchecked = 0;
    for (const StringMap::Pair pair : table->map) {
        const QString key = pair.first.toString(), value = pair.second.toString();
        const TablePlace place = table->places.value(key);
        QString baseText = key;
        if (base) {
            const auto found = base->map.find(key);
            if (!found) continue;  // a key of no base text has nothing to be checked against
            baseText = found->toString();
        } else if (const auto fromComment = interfaceCommentBase(place.comment)) {
            baseText = *fromComment;
        } else if ((interfaceTable && isInterfaceKey(key)) || isIdentifierKey(key)) {
            // A key that is no text: a pair added to an interface table by hand (some projects
            // note its base text after it, on its line), or a table keyed by identifiers.
            if (place.trailingComment.isEmpty()) {
                ++unchecked;
                continue;
            }
            baseText = place.trailingComment;
        }
        for (const Problem &p : checkTranslation(baseText, value, true))
            report.add({path, place.line, key, baseText, value, p});
    }
    if (unchecked)
        err << "vocabrix-cli: " << path << ": " << unchecked << (unchecked == 1 ? " pair has" : " pairs have")
            << " no base text (an identifier or object id for key, no interface tool comment) and "
            << (unchecked == 1 ? "was" : "were") << " not checked; give the base table with --base\n";
    return true;
}

// Every entry of every file of a document; lines where the base file is a string table.
bool checkDocument(const QString &path, Report &report, QTextStream &err)
{
    const auto doc = DocumentCli::open(path, err);
    if (!doc) return false;
    for (const LocFilePtr &file : doc->files()) {
        QHash<QString, TablePlace> places;
        if (file->path().endsWith(QLatin1String(".strings")))
            places = tablePlaces(StringUtility::wordOrEmpty(readTextFileAtPath(file->path())));
        for (const LocEntryPtr &entry : file->allEntries()) {
            const QList<Problem> problems = checkEntry(*entry);
            if (problems.isEmpty()) continue;
            const QString key = StringUtility::wordOrEmpty(entry->keyWord() ? entry->keyWord() : entry->baseWord());
            const QString base = unescapedWord(StringUtility::wordOrEmpty(entry->baseWord()));
            const QString translation = unescapedWord(StringUtility::wordOrEmpty(entry->localizedWord()));
            for (const Problem &p : problems)
                report.add({file->path(), places.value(unescapedWord(key)).line, key, base, translation, p});
        }
    }
    return true;
}

int usage(QTextStream &err)
{
    err << "Usage: vocabrix-cli check [--format json|gcc] DOC|TABLE.strings ...\n"
           "       vocabrix-cli check [--format json|gcc] --base BASE.strings TABLE.strings\n";
    return 2;
}

int runCheck(const QStringList &arguments, QTextStream &out, QTextStream &err)
{
    QStringList args = arguments;
    bool bad = false;
    const auto format = DocumentCli::takeOption(args, QStringLiteral("--format"), err, &bad);
    const auto basePath = DocumentCli::takeOption(args, QStringLiteral("--base"), err, &bad);
    if (bad || args.isEmpty() || (basePath && args.size() != 1)) return usage(err);
    if (format && *format != QLatin1String("json") && *format != QLatin1String("gcc")) {
        err << "vocabrix-cli: --format is json or gcc, not \"" << *format << "\"\n";
        return 2;
    }
    QStringList missing = basePath ? QStringList{*basePath} : QStringList();
    for (const QString &a : std::as_const(args)) {
        if (a.startsWith(QLatin1String("--"))) {
            err << "vocabrix-cli: unknown option " << a << "\n";
            return usage(err);
        }
        missing.append(a);
    }
    for (const QString &p : std::as_const(missing)) {
        if (!QFileInfo(p).isFile()) {
            err << "vocabrix-cli: " << p << ": no such file\n";
            return 2;
        }
    }

    Report report(out, format && *format == QLatin1String("gcc"));
    bool allRead = true;
    for (const QString &path : std::as_const(args)) {
        const bool isTable = basePath || path.endsWith(QLatin1String(".strings"));
        allRead &= isTable ? checkTable(path, basePath, report, err) : checkDocument(path, report, err);
    }
    out.flush();
    err << "vocabrix-cli: " << report.errors() << (report.errors() == 1 ? " error, " : " errors, ") << report.warnings()
        << (report.warnings() == 1 ? " warning" : " warnings") << "\n";
    return report.errors() > 0 || !allRead ? 1 : 0;
}

CommandRegistration reg(
    {QStringLiteral("check"), QStringLiteral("check [--format json|gcc] [--base BASE.strings] DOC|TABLE.strings ..."),
     QStringLiteral("Check translations: placeholders (%@, %d, %1$@, ...) that disagree with the base are errors;\n"
                    "a different number of line breaks, different leading or trailing white space, a\n"
                    "different ending mark (: . ... ? !), and checked entries left empty or the same as\n"
                    "the base are warnings. DOC: every entry of a Vocabrix document. TABLE.strings: a\n"
                    "translated string table, each value against the value of its key in BASE.strings,\n"
                    "or without --base against the base text in the interface tool's comment before it,\n"
                    "or else against its key (tables keyed by English text).\n"
                    "Prints one JSON line per problem (file, line where known, key, check, severity,\n"
                    "message, base, translation); --format gcc prints FILE:LINE: error: ... lines.\n"
                    "Exit status 1 when there is an error or a file cannot be read, 0 otherwise (warnings\n"
                    "alone never fail), 2 for wrong arguments."),
     runCheck});

}  // namespace
