// The property-list handler. Decisions taken here:
//  - Dictionaries are walked in the file's key order (the reader keeps it), so entry order and
//    which of two equal strings comes first follow the file.
//  - Strings are stored in entries escaped and written back unescaped (PlistWordEscaping.h).
//  - A previous value that is not a string where the base has a string is ignored: numbers or
//    dates there say nothing about a translation.
//  - A base or previous file that is a string table rather than a property list is read as the
//    dictionary of its pairs, so a text table can stand as the previous version of a table that
//    is stored as a property list.
//  - What could not be read, and a file that yields no entries, is reported on the file.
#include "PlistHandler.h"

#include "Handlers.h"
#include "LocFile.h"
#include "PlistWordEscaping.h"
#include "PropertyList.h"
#include "StringsTable.h"
#include "WholeTableReader.h"

#include <QDir>
#include <QFileInfo>
#include <QHash>

namespace plistHandle {
namespace {

struct ReadList {
    std::optional<plist::Value> root;
    QString error;
};

ReadList readPropertyList(const QString &path)
{
    plist::ReadResult result = plist::readFile(path);
    if (result.value) return {std::move(result.value), QString()};
    if (const auto table = dictionaryWithContentsOfFile(path)) {
        plist::Dictionary dictionary;
        dictionary.reserve(table->size());
        for (const auto &[key, value] : *table) dictionary.append({key.toString(), plist::Value::fromString(value.toString())});
        return {plist::Value::fromDictionary(dictionary), QString()};
    }
    return {std::nullopt, result.error.isEmpty() ? QStringLiteral("not a property list") : result.error};
}

bool hasContent(const plist::Value &v)
{
    return (v.isArray() && !v.array().isEmpty()) || (v.isDictionary() && !v.dictionary().isEmpty());
}

class Extractor {
public:
    explicit Extractor(const StringMap *dictionary) : m_dictionary(dictionary) {}

    void extractBaseDict(const plist::Dictionary &base, const plist::Value *previous)
    {
        if (previous && !previous->isDictionary()) previous = nullptr;
        for (const auto &[key, value] : base) take(value, previous ? previous->find(key) : nullptr);
    }

    void extractBaseArray(const plist::Array &base, const plist::Value *previous)
    {
        if (previous && !previous->isArray()) previous = nullptr;
        for (qsizetype i = 0; i < base.size(); ++i)
            take(base.at(i), previous && previous->array().size() > i ? &previous->array().at(i) : nullptr);
    }

    QList<LocEntryPtr> entries;

private:
    void take(const plist::Value &value, const plist::Value *previous)
    {
        if (value.isArray()) return extractBaseArray(value.array(), previous);
        if (value.isDictionary()) return extractBaseDict(value.dictionary(), previous);
        if (!value.isString()) return;
        OptString word;
        if (const auto found = m_dictionary ? m_dictionary->find(value.string()) : std::nullopt)
            word = found->toString();
        else if (previous && previous->isString())
            word = previous->string();
        LocEntryPtr entry =
            LocEntry::initWithBaseWord(escapePlistWord(value.string()), word ? OptString(escapePlistWord(*word)) : std::nullopt);
        if (word) entry->checkNeedToLocalize();
        entries.append(entry);
    }

    const StringMap *m_dictionary;
};

class Localizer {
public:
    explicit Localizer(const LocFile &file)
    {
        // The first entry of a base word gives every place of that string its word.
        for (const LocEntryPtr &entry : file.allEntries()) {
            const OptString base = entry->baseWord();
            if (!base || base->isEmpty() || m_words.contains(*base)) continue;
            m_words.insert(*base, writtenWord(*entry));
        }
    }

    void localizeArray(plist::Array &array)
    {
        for (plist::Value &item : array) localize(item);
    }

    void localizeDictionary(plist::Dictionary &dictionary)
    {
        for (auto &pair : dictionary) localize(pair.second);
    }

private:
    void localize(plist::Value &value)
    {
        if (value.isArray()) return localizeArray(value.array());
        if (value.isDictionary()) return localizeDictionary(value.dictionary());
        if (!value.isString() || value.string().isEmpty()) return;
        const auto it = m_words.constFind(escapePlistWord(value.string()));
        if (it != m_words.constEnd() && !it->isEmpty()) value.setString(*it);
    }

    QHash<QString, QString> m_words;
};

}  // namespace

QString writtenWord(const LocEntry &entry)
{
    const QString &text = entry.entry();
    const QString open = QStringLiteral(" = \"");
    const qsizetype at = text.indexOf(open);
    const qsizetype from = at + open.size();
    // The base word holds no unescaped quote, so the first " = \"" opens the value, and the
    // text ends with the value's closing "\";".
    if (at < 0 || !text.endsWith(QLatin1String("\";")) || text.size() - 2 < from)
        return unescapePlistWord(StringUtility::wordOrEmpty(entry.localizedWord()));
    return unescapePlistWord(text.mid(from, text.size() - 2 - from));
}

void extractPlistDataWithDictionary(LocFile &file, const OptString &dictionaryPath, const OptString &previousPath)
{
    const auto dictionary = readWholeTable(file, dictionaryPath, TableRole::Dictionary);
    const ReadList base = readPropertyList(file.path());
    std::optional<plist::Value> previous;
    if (previousPath && !previousPath->isEmpty() && QFileInfo(*previousPath).isFile()) {
        ReadList read = readPropertyList(*previousPath);
        if (!read.root)
            file.addWarning(QStringLiteral("The previous version %1 could not be read as a property list (%2); no words "
                                           "were taken from it.")
                                .arg(displayPath(*previousPath), read.error));
        previous = std::move(read.root);
    }

    Extractor extractor(dictionary ? &*dictionary : nullptr);
    if (!base.root) {
        file.addWarning(QStringLiteral("%1 could not be read as a property list (%2); it has no entries.")
                            .arg(displayPath(file.path()), base.error));
    } else if (!hasContent(*base.root)) {
        file.addWarning(QStringLiteral("%1 holds no array or dictionary with content; it has no entries.")
                            .arg(displayPath(file.path())));
    } else {
        if (previous && hasContent(*previous) && previous->isArray() != base.root->isArray())
            file.addWarning(QStringLiteral("The previous version %1 is not laid out like %2 (an array where the other has "
                                           "a dictionary); no words were taken from it.")
                                .arg(displayPath(*previousPath), displayPath(file.path())));
        const plist::Value *prev = previous ? &*previous : nullptr;
        if (base.root->isArray())
            extractor.extractBaseArray(base.root->array(), prev);
        else
            extractor.extractBaseDict(base.root->dictionary(), prev);
        if (extractor.entries.isEmpty())
            file.addWarning(QStringLiteral("%1 holds no strings to translate.").arg(displayPath(file.path())));
    }
    file.setAllEntries(file.allEntries() + extractor.entries);
    file.finishReadingFile();
}

StringMap makeLocalizedPlistFileAt(LocFile &file, const QString &folder)
{
    const QString target = QDir(folder).filePath(QFileInfo(file.path()).fileName());
    ReadList base = readPropertyList(file.path());
    if (!base.root) {
        file.addWarning(QStringLiteral("%1 could not be read again (%2); %3 was not written.")
                            .arg(displayPath(file.path()), base.error, displayPath(target)));
    } else {
        Localizer localizer(file);
        if (base.root->isArray())
            localizer.localizeArray(base.root->array());
        else if (base.root->isDictionary())
            localizer.localizeDictionary(base.root->dictionary());
        QString error;
        if (!plist::writeXmlFile(target, *base.root, &error))
            file.addWarning(QStringLiteral("The localized property list %1 could not be written (%2).")
                                .arg(displayPath(target), error));
    }

    // The pairs for the dictionary, unescaped as the dictionary keeps its words.
    StringMap pairs;
    for (const LocEntryPtr &entry : file.allEntries()) {
        const QString base = unescapePlistWord(StringUtility::wordOrEmpty(entry->baseWord()));
        const QString word = writtenWord(*entry);
        if (!base.isEmpty() && !word.isEmpty() && base != word) pairs.insert(base, word);
    }
    return pairs;
}

}  // namespace plistHandle

namespace {

class PlistHandler final : public ResourceHandler {
public:
    void extract(LocFile &file, const OptString &dictionaryPath, const OptString &previousPath) override
    {
        plistHandle::extractPlistDataWithDictionary(file, dictionaryPath, previousPath);
    }
    StringMap makeLocalized(LocFile &file, const QString &folder) override
    {
        return plistHandle::makeLocalizedPlistFileAt(file, folder);
    }
};

}  // namespace

std::shared_ptr<ResourceHandler> makePlistHandler()
{
    return std::make_shared<PlistHandler>();
}
