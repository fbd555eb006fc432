#include "StringsdictHandler.h"

#include "Handlers.h"
#include "LocFile.h"
#include "PropertyList.h"
#include "StringsTable.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QHash>

using namespace StringUtility;

namespace stringsdictHandle {

namespace {

const QString kFormatKey = QStringLiteral("NSStringLocalizedFormatKey");
const QStringList kCategories{QStringLiteral("zero"), QStringLiteral("one"), QStringLiteral("two"),
                              QStringLiteral("few"),  QStringLiteral("many"), QStringLiteral("other")};

// Calls `visit(place, value)` for every translatable string of the root, in file order; the value
// may be replaced in place.
template <typename Visit>
void walk(plist::Value &root, Visit visit)
{
    for (auto &[formatKey, format] : root.dictionary()) {
        if (!format.isDictionary()) continue;
        for (auto &[name, value] : format.dictionary()) {
            if (name == kFormatKey && value.isString()) {
                visit(formatKey + u'/' + name, value);
            } else if (value.isDictionary()) {
                for (auto &[category, text] : value.dictionary())
                    if (kCategories.contains(category) && text.isString())
                        visit(formatKey + u'/' + name + u'/' + category, text);
            }
        }
    }
}

std::optional<plist::Value> readRoot(const QByteArray &data, QString *error)
{
    plist::ReadResult read = plist::read(data);
    if (!read.value) {
        if (error) *error = read.error;
        return std::nullopt;
    }
    if (!read.value->isDictionary()) {
        if (error) *error = QStringLiteral("its root is not a dictionary");
        return std::nullopt;
    }
    return read.value;
}

std::optional<plist::Value> readRootFile(const QString &path, QString *error)
{
    QFile in(path);
    if (!in.open(QIODevice::ReadOnly)) {
        if (error) *error = in.errorString();
        return std::nullopt;
    }
    return readRoot(in.readAll(), error);
}

QHash<QString, QString> textsByPlace(const QString &path)
{
    QHash<QString, QString> map;
    std::optional<plist::Value> root = readRootFile(path, nullptr);
    if (root) walk(*root, [&map](const QString &place, const plist::Value &v) { map.insert(place, v.string()); });
    return map;
}

// A word as it stands in an entry (escaped like a table's value) back to its characters.
QString unescaped(const QString &word)
{
    const std::optional<StringMap> map = StringsTable::parse(QStringLiteral("\"k\" = \"%1\";").arg(word));
    return map && map->contains(QStringLiteral("k")) ? map->value(QStringLiteral("k")) : word;
}

}  // namespace

std::optional<QList<QPair<QString, QString>>> translatableTexts(const QByteArray &data, QString *error)
{
    std::optional<plist::Value> root = readRoot(data, error);
    if (!root) return std::nullopt;
    QList<QPair<QString, QString>> texts;
    walk(*root, [&texts](const QString &place, const plist::Value &v) { texts.append({place, v.string()}); });
    return texts;
}

void extractStringsdictWithDictionary(LocFile &file, const OptString &dictionaryPath, const OptString &previousPath)
{
    QFile in(file.path());
    QString error;
    std::optional<QList<QPair<QString, QString>>> texts;
    if (in.open(QIODevice::ReadOnly)) texts = translatableTexts(in.readAll(), &error);
    else error = in.errorString();
    if (!texts) {
        file.addWarning(QStringLiteral("\"%1\" could not be read as plural rules (%2); it has no entries.")
                            .arg(file.fileName(), error));
        return;
    }
    const QHash<QString, QString> previous =
        previousPath && QFileInfo(*previousPath).isFile() ? textsByPlace(*previousPath) : QHash<QString, QString>();
    std::optional<StringMap> dictionary;
    if (dictionaryPath && !dictionaryPath->isEmpty()) dictionary = dictionaryWithContentsOfFile(*dictionaryPath);

    QList<LocEntryPtr> entries = file.allEntries();
    for (const auto &[place, text] : std::as_const(*texts)) {
        const QString key = escapeForStringsFile(place);
        const QString base = escapeForStringsFile(text);
        // One pass of arg(): words holding "%1" go in as they are.
        const LocEntryPtr entry =
            LocEntry::initWithEntry(QStringLiteral("/* \"%1\"=\"%2\" */\n\"%2\" = \"%2\";").arg(key, base));
        const auto old = previous.constFind(place);
        if (old != previous.cend() && !old->isEmpty()) {
            entry->setLocalizedWord(*old);
            entry->setCheck(true);
        } else if (dictionary) {
            if (const auto word = dictionary->find(text)) entry->setLocalizedWord(word->toString());
            entry->checkNeedToLocalizeWithDictionary(&*dictionary);
        }
        entries.append(entry);
    }
    file.setAllEntries(entries);
    file.finishReadingFile();
}

StringMap makeLocalizedStringsdictAt(LocFile &file, const QString &folder)
{
    StringMap pairs;
    QString error;
    std::optional<plist::Value> root = readRootFile(file.path(), &error);
    const QString output = QDir(folder).absoluteFilePath(file.fileName());
    if (!root) {
        file.addWarning(QStringLiteral("\"%1\" could not be written: its base file could not be read again (%2).")
                            .arg(output, error));
        return pairs;
    }
    QHash<QString, QString> localized;
    for (const LocEntryPtr &entry : file.allEntries()) {
        const OptString key = entry->keyWord();
        const OptString word = entry->localizedWord();
        if (!key || wordLength(word) == 0) continue;
        localized.insert(unescaped(*key), unescaped(*word));
    }
    walk(*root, [&](const QString &place, plist::Value &value) {
        const auto it = localized.constFind(place);
        if (it == localized.cend()) return;
        if (!value.string().isEmpty()) pairs.insert(value.string(), *it);
        value.setString(*it);
    });
    if (!plist::writeXmlFile(output, *root, &error))
        file.addWarning(QStringLiteral("\"%1\" could not be written: %2").arg(output, error));
    return pairs;
}

}  // namespace stringsdictHandle

namespace {

class StringsdictHandler : public ResourceHandler {
public:
    void extract(LocFile &file, const OptString &dictionaryPath, const OptString &previousPath) override
    {
        stringsdictHandle::extractStringsdictWithDictionary(file, dictionaryPath, previousPath);
    }
    StringMap makeLocalized(LocFile &file, const QString &folder) override
    {
        return stringsdictHandle::makeLocalizedStringsdictAt(file, folder);
    }
};

}  // namespace

std::shared_ptr<ResourceHandler> makeStringsdictHandler()
{
    return std::make_shared<StringsdictHandler>();
}
