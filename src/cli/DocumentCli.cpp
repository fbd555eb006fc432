#include "DocumentCli.h"

#include "Command.h"
#include "Languages.h"

#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>

namespace DocumentCli {

int PrintingDialogs::runAlert(const Alert &alert)
{
    showAlertSheet(alert);
    return 0;
}

void PrintingDialogs::showAlertSheet(const Alert &alert)
{
    ++m_count;
    m_err << "vocabrix-cli: " << alert.title << ": " << alert.message << "\n";
    m_err.flush();
}

std::unique_ptr<MyDocument> open(const QString &path, QTextStream &err)
{
    auto doc = std::make_unique<MyDocument>();
    QString error;
    if (!doc->readFromFile(path, &error)) {
        err << "vocabrix-cli: " << error << "\n";
        return nullptr;
    }
    return doc;
}

bool save(MyDocument &doc, const QString &path, QTextStream &err)
{
    QString error;
    if (doc.writeToFile(path, &error)) return true;
    err << "vocabrix-cli: " << error << "\n";
    return false;
}

std::optional<int> language(const QString &text, const QString &option, QTextStream &err)
{
    const auto tag = tagForLanguage(text);
    if (!tag) err << "vocabrix-cli: " << option << ": unknown language \"" << text << "\"; see vocabrix-cli languages\n";
    return tag;
}

QJsonObject languageJson(int tag)
{
    QJsonObject o{{QStringLiteral("tag"), tag}};
    if (const auto row = languageRowForTag(tag)) {
        o.insert(QStringLiteral("name"), row->name);
        o.insert(QStringLiteral("key"), row->key);
        o.insert(QStringLiteral("abbreviation"), row->abbreviation);
    }
    return o;
}

std::optional<QList<LocFilePtr>> files(const MyDocument &doc, const QStringList &names, QTextStream &err)
{
    QList<LocFilePtr> found;
    for (const QString &name : names) {
        bool isNumber = false;
        const int index = name.toInt(&isNumber);
        bool matched = false;
        if (isNumber && index >= 1 && index <= doc.files().size()) {
            found.append(doc.files().at(index - 1));
            matched = true;
        } else {
            const QString absolute = QFileInfo(name).absoluteFilePath();
            for (const LocFilePtr &f : doc.files()) {
                if (f->fileName() == name || f->path() == name || f->path() == absolute) {
                    found.append(f);
                    matched = true;
                }
            }
        }
        if (!matched) {
            err << "vocabrix-cli: no file \"" << name << "\" in the document; see vocabrix-cli doc files\n";
            return std::nullopt;
        }
    }
    return found;
}

QJsonObject fileJson(const LocFilePtr &file, qsizetype index)
{
    return {{QStringLiteral("index"), int(index)},
            {QStringLiteral("name"), file->fileName()},
            {QStringLiteral("path"), file->path()},
            {QStringLiteral("status"), file->status()},
            {QStringLiteral("color"), file->color() == EntryColor::Red ? QStringLiteral("red") : QStringLiteral("black")},
            {QStringLiteral("entries"), int(file->allEntries().size())},
            {QStringLiteral("checked"), int(file->checkedCount())}};
}

static QJsonValue word(const OptString &w)
{
    return w ? QJsonValue(*w) : QJsonValue(QJsonValue::Null);
}

QJsonObject entryJson(const LocFilePtr &file, const LocEntryPtr &entry, qsizetype index)
{
    QJsonObject o{{QStringLiteral("file"), file->fileName()},
                  {QStringLiteral("index"), int(index)},
                  {QStringLiteral("key"), word(entry->keyWord())},
                  {QStringLiteral("base"), word(entry->baseWord())},
                  {QStringLiteral("localized"), word(entry->localizedWord())},
                  {QStringLiteral("checked"), entry->check() ? QJsonValue(*entry->check()) : QJsonValue(QJsonValue::Null)}};
    if (entry->isLeopardNibEntry()) o.insert(QStringLiteral("objectID"), word(entry->objectID()));
    // The base text changed since the previous release: what the old translation was made for.
    if (entry->previousBaseWord()) o.insert(QStringLiteral("previousBase"), *entry->previousBaseWord());
    return o;
}

QJsonObject exportJson(const ExportResult &result, const MyDocument &doc)
{
    return {{QStringLiteral("folder"), result.folder},
            {QStringLiteral("written"), QJsonArray::fromStringList(result.written)},
            {QStringLiteral("failed"), QJsonArray::fromStringList(result.failed)},
            {QStringLiteral("dictionary"), doc.dictionaryPath()},
            {QStringLiteral("pairs"), int(result.pairs.size())},
            {QStringLiteral("dictionaryPairs"), int(result.merge.pairCount)},
            {QStringLiteral("dictionaryWritten"), result.merge.written},
            {QStringLiteral("keptAside"), result.merge.keptAsidePath}};
}

void printLine(QTextStream &out, const QJsonObject &object)
{
    out << QString::fromUtf8(QJsonDocument(object).toJson(QJsonDocument::Compact)) << "\n";
}

std::optional<QString> takeOption(QStringList &args, const QString &name, QTextStream &err, bool *bad)
{
    const qsizetype at = args.indexOf(name);
    if (at < 0) return std::nullopt;
    if (at + 1 >= args.size()) {
        err << "vocabrix-cli: " << name << " needs a value\n";
        *bad = true;
        return std::nullopt;
    }
    const QString value = args.at(at + 1);
    args.remove(at, 2);
    return value;
}

bool takeFlag(QStringList &args, const QString &name)
{
    return args.removeAll(name) > 0;
}

std::optional<QList<QPair<QString, OptString>>> pathsWithPrevious(const QStringList &args, QTextStream &err)
{
    QList<QPair<QString, OptString>> list;
    for (qsizetype i = 0; i < args.size(); ++i) {
        if (args.at(i) == QLatin1String("--previous")) {
            if (list.isEmpty() || list.last().second || i + 1 >= args.size()) {
                err << "vocabrix-cli: --previous needs a path and follows the path it belongs to\n";
                return std::nullopt;
            }
            list.last().second = QFileInfo(args.at(++i)).absoluteFilePath();
        } else if (args.at(i).startsWith(QLatin1String("--"))) {
            err << "vocabrix-cli: unknown option " << args.at(i) << "\n";
            return std::nullopt;
        } else {
            list.append({QFileInfo(args.at(i)).absoluteFilePath(), std::nullopt});
        }
    }
    return list;
}

}  // namespace DocumentCli
