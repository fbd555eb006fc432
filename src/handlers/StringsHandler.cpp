// The strings-file handler. Base tables are read by the table grammar (StringsLayout): one entry
// per pair in file order, each keeping the comment written above it for the translator, and the
// localized table is the base table with its values replaced, so comments, blank lines, order
// and spacing stay as the developer wrote them. Decisions taken here:
//  - An entry keeps the usual text "/* \"key\"=\"value\" */\n\"value\" = \"value\";" with both
//    words in their escaped form; a line break written literally inside a word stands as \n
//    there, so every entry is one comment line and one pair line. A short-form pair ("key";)
//    has its key as value; an unquoted word is taken as it is.
//  - A pair with an empty value is "/* \"key\"=\"\" */\n\"\" = \"\";": its base word is empty
//    (so "IgnoreEmptyWords" hides it and it starts checked). A pair with an empty key keeps the
//    usual shape; its previous word is looked up under the empty key.
//  - The previous version is looked up by the key as the grammar reads it (all escapes
//    resolved); the dictionary by the base word, escaped form first, then as the grammar reads it.
//  - Export replaces only the values that the translator changed; an untranslated value keeps
//    its bytes. Entries are matched to the base table's pairs by key (the n-th entry of a key to
//    the n-th pair of that key), so a base table edited since it was added still exports right.
//  - A base table without pairs (an application whose English texts are its keys) takes its
//    entries from the previous version's pairs, and export writes them after the base text.
//  - A table the grammar refuses has no entries and is never written back: the user is told
//    where it breaks.
//  - The pairs returned for the dictionary are base word to localized word, as every handler's
//    are, so that tables keyed by identifiers teach words that other files can use.
//  - A table that is a property list (binary, or XML by its first line) is read by the
//    property-list handler and written back as an XML property list with the base file's keys
//    and the localized values (see PlistHandler); "InfoPlist.strings" still returns no pairs.
#include "StringsHandler.h"

#include "Handlers.h"
#include "LocFile.h"
#include "PlistHandler.h"
#include "StringsLayout.h"
#include "StringsTable.h"
#include "TextFile.h"
#include "WholeTableReader.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QHash>
#include <QSaveFile>

using namespace StringUtility;

namespace stringsHandle {
namespace {

const QString kInfoPlistStrings = QStringLiteral("InfoPlist.strings");

struct BaseTable {
    QByteArray bytes;
    OptString text;  // line ends made line feeds; none when unreadable
    bool isPropertyList = false;
};

QString firstLine(const QString &text)
{
    return wordOrEmpty(substringTo(text, QStringLiteral("\n")));
}

// Reads and decodes the base file, telling the user when its encoding had to be guessed.
BaseTable readBaseTable(LocFile &file, bool warn)
{
    BaseTable base;
    QFile in(file.path());
    if (!in.open(QIODevice::ReadOnly)) {
        if (warn)
            file.addWarning(QStringLiteral("%1 could not be read (%2); it has no entries.")
                                .arg(displayPath(file.path()), in.errorString()));
        return base;
    }
    base.bytes = in.readAll();
    if (const OptString text = decodeTextFileData(base.bytes)) base.text = replaceReturnCode(*text);
    base.isPropertyList = isPropertyListTable(base.bytes, base.text ? firstLine(*base.text) : QString());
    if (!warn || base.isPropertyList) return base;
    if (!base.text) {
        file.addWarning(QStringLiteral("%1 could not be decoded as text; it has no entries.").arg(displayPath(file.path())));
        return base;
    }
    const TextEncoding encoding = detectTextEncoding(base.bytes);
    const bool marked = base.bytes.startsWith("\xFE\xFF") || base.bytes.startsWith("\xFF\xFE");
    if (encoding == TextEncoding::MacRoman)
        file.addWarning(QStringLiteral("%1 is neither UTF-8 nor UTF-16; it was read as Mac OS Roman. Check its accented "
                                       "letters: the localized table is written as UTF-8.")
                            .arg(displayPath(file.path())));
    else if (encoding != TextEncoding::Utf8 && !marked)
        file.addWarning(QStringLiteral("%1 has no byte-order mark; it was read as %2, judged from its bytes.")
                            .arg(displayPath(file.path()), textEncodingName(encoding)));
    return base;
}

QString syntaxWarning(const LocFile &file, const StringsTable::Error &error, const char *consequence)
{
    const QString where = error.line > 0 ? QStringLiteral(" at line %1").arg(error.line) : QString();
    return QStringLiteral("%1 breaks the string-table syntax%2 (%3). %4")
        .arg(displayPath(file.path()), where, error.message, QLatin1String(consequence));
}

// A plain word (a key of the previous version) in the escaped form of a table's quoted word.
QString escapedTableWord(QStringView plain)
{
    QString word = plain.toString();
    word.replace(u'\\', QLatin1String("\\\\")).replace(u'"', QLatin1String("\\\""));
    return word.replace(u'\n', QLatin1String("\\n"));
}

// The word of a table in the escaped form entries keep: line feeds as \n.
QString entryWord(QStringView plain)
{
    return replaceStringFrom(plain.toString(), QStringLiteral("\n"), QStringLiteral("\\n"));
}

// The localized word of an entry made here. The pair line is "base" = "localized"; and its base
// word is known, so the value is what stands between them and the closing quote: cutting at the
// first quote-semicolon instead would stop inside a word holding an escaped quote before a
// semicolon (x\";y).
QString pairLineValue(const LocEntry &entry, const QString &baseWord)
{
    const QString &text = entry.entry();
    const qsizetype lineStart = text.indexOf(u'\n') + 1;
    const QString prefix = u'"' + baseWord + QLatin1String("\" = \"");
    if (lineStart > 0 && QStringView(text).mid(lineStart).startsWith(prefix) && text.endsWith(QLatin1String("\";"))) {
        const qsizetype from = lineStart + prefix.size();
        if (from <= text.size() - 2) return text.mid(from, text.size() - 2 - from);
    }
    return wordOrEmpty(entry.localizedWord());
}

std::optional<QStringView> findPrevious(const StringMap &previous, const QString &key)
{
    if (const OptString plain = unescapedTableWord(key))
        if (const auto word = previous.find(*plain)) return word;
    // The lookup form of older versions: only \n and \" resolved.
    QString lookup = replaceStringFrom(key, QStringLiteral("\\n"), QStringLiteral("\n"));
    lookup = replaceStringFrom(lookup, QStringLiteral("\\\""), QStringLiteral("\""));
    return previous.find(lookup);
}

std::optional<QStringView> findInDictionary(const StringMap &dictionary, const QString &baseWord)
{
    if (const auto word = dictionary.find(baseWord)) return word;
    const OptString plain = unescapedTableWord(baseWord);
    return plain && *plain != baseWord ? dictionary.find(*plain) : std::nullopt;
}

}  // namespace

QString plistHeader()
{
    return QStringLiteral("<?xml version=\"1.0\" encoding=\"UTF-8\"?>");
}

bool isPropertyListTable(const QByteArray &bytes, const QString &firstLine)
{
    if (bytes.startsWith("bplist")) return true;
    if (firstLine == plistHeader()) return true;
    // Other tools write the declaration in lower case or with single quotes; a string table's
    // first token is a quote, a word or a comment, never "<".
    const QStringView line = QStringView(firstLine).trimmed();
    return line.startsWith(QLatin1String("<?xml "), Qt::CaseInsensitive)
        || line.startsWith(QLatin1String("<!DOCTYPE plist"), Qt::CaseInsensitive)
        || line.startsWith(QLatin1String("<plist"), Qt::CaseInsensitive);
}

void extractStringsDataWithDictionary(LocFile &file, const OptString &dictionaryPath, const OptString &previousPath)
{
    if (QFileInfo(file.path()).suffix() != QLatin1String("strings")) return;
    const qsizetype warningsBefore = file.warnings().size();
    const BaseTable base = readBaseTable(file, true);
    if (base.isPropertyList) {
        plistHandle::extractPlistDataWithDictionary(file, dictionaryPath, previousPath);
        return;
    }
    const auto previous = readWholeTable(file, previousPath, TableRole::Previous);
    const auto dictionary = readWholeTable(file, dictionaryPath, TableRole::Dictionary);
    const QString text = wordOrEmpty(base.text);
    StringsTable::Error error;
    const auto layout = base.text ? StringsLayout::read(text, &error) : std::nullopt;
    if (base.text && !layout) {
        file.addWarning(syntaxWarning(file, error, "It has no entries: correct the file and add it again."));
        file.finishReadingFile();
        return;
    }
    const QString entryFormat = QStringLiteral("/* \"%1\"=\"%2\" */\n\"%2\" = \"%2\";");
    QList<LocEntryPtr> entries = file.allEntries();
    const qsizetype pairCount = layout ? layout->pairs.size() : 0;
    entries.reserve(entries.size() + pairCount);
    for (qsizetype i = 0; i < pairCount; ++i) {
        const StringsLayout::Pair &pair = layout->pairs[i];
        const QString key = StringsLayout::escapedWord(text, pair.key);
        const QString value = pair.shortForm ? key : StringsLayout::escapedWord(text, pair.value);
        // One pass of arg(): words holding "%1" go in as they are.
        LocEntryPtr entry = LocEntry::initWithEntry(entryFormat.arg(key, value));
        entry->setDeveloperComment(pair.comment);
        entries.append(entry);

        if (previous) {
            if (const auto word = findPrevious(*previous, key)) {
                entry->setLocalizedWord(entryWord(*word));
                entry->checkNeedToLocalize();
                continue;
            }
        }
        const OptString baseWord = entry->baseWord();
        if (dictionary && wordLength(baseWord) > 0) {
            if (const auto word = findInDictionary(*dictionary, *baseWord)) {
                entry->setLocalizedWord(entryWord(*word));
                entry->checkNeedToLocalize();
            }
        }
    }
    // Applications that use their English texts as keys ship a base table without pairs; their
    // words live only in the localized tables. Exporting such a table as it is would replace
    // the translations with nothing, so its entries are the previous version's pairs: key as
    // base word, the previous word as translation (written after the base text on export).
    if (pairCount == 0 && previous) {
        for (const auto &[plainKey, plainValue] : *previous) {
            const QString key = escapedTableWord(plainKey);
            LocEntryPtr entry = LocEntry::initWithEntry(entryFormat.arg(key, key));
            entry->setLocalizedWord(entryWord(plainValue));
            entry->checkNeedToLocalize();
            entries.append(entry);
        }
    }
    file.setAllEntries(entries);
    if (entries.isEmpty() && file.warnings().size() == warningsBefore)
        file.addWarning(QStringLiteral("%1 holds no pairs to translate.").arg(displayPath(file.path())));
    file.finishReadingFile();
}

StringMap makeLocalizedStringsFileAt(LocFile &file, const QString &folder)
{
    const QString name = QFileInfo(file.path()).fileName();
    const bool infoPlist = name == kInfoPlistStrings;
    if (readBaseTable(file, false).isPropertyList) {
        const StringMap pairs = plistHandle::makeLocalizedPlistFileAt(file, folder);
        return infoPlist ? StringMap() : pairs;
    }

    const QString target = QDir(folder).filePath(name);
    const BaseTable base = readBaseTable(file, false);
    const QString text = wordOrEmpty(base.text);
    StringsTable::Error error;
    const auto layout = base.text ? StringsLayout::read(text, &error) : std::nullopt;
    if (!layout) {
        if (!base.text) error.message = QStringLiteral("the base table could not be read");
        file.addWarning(syntaxWarning(file, error, "Its localized table was not written."));
        return StringMap();
    }

    // The n-th entry of a key goes to the n-th pair of that key.
    QHash<QString, QList<const LocEntry *>> byKey;
    for (const LocEntryPtr &entry : file.allEntries()) byKey[wordOrEmpty(entry->keyWord())].append(entry.get());
    QList<OptString> values(layout->pairs.size());
    StringMap pairs;
    for (qsizetype i = 0; i < layout->pairs.size(); ++i) {
        const StringsLayout::Pair &pair = layout->pairs[i];
        const QString key = StringsLayout::escapedWord(text, pair.key);
        QList<const LocEntry *> &queue = byKey[key];
        if (queue.isEmpty()) continue;
        const LocEntry *entry = queue.takeFirst();
        // The base word as the table writes it now; the entry's own cut of it only when the
        // table's value changed since the entry was made.
        QString baseWord = pair.shortForm ? key : StringsLayout::escapedWord(text, pair.value);
        if (!entry->entry().contains(u'"' + baseWord + QLatin1String("\" = \""))) baseWord = wordOrEmpty(entry->baseWord());
        const QString localized = pairLineValue(*entry, baseWord);
        if (localized != baseWord) values[i] = localized;
        const OptString plainBase = unescapedTableWord(baseWord);
        const OptString plainLocalized = unescapedTableWord(localized);
        if (plainBase && plainLocalized && !plainBase->isEmpty()) pairs.insert(*plainBase, *plainLocalized);
    }
    // A base table without pairs: its entries came from the previous version and follow its text.
    QString appended;
    if (layout->pairs.isEmpty()) {
        for (const LocEntryPtr &entry : file.allEntries()) {
            const QString key = wordOrEmpty(entry->keyWord());
            const QString localized = pairLineValue(*entry, key);
            appended += QStringLiteral("\"%1\" = \"%2\";\n").arg(key, localized);
            const OptString plainKey = unescapedTableWord(key);
            const OptString plainLocalized = unescapedTableWord(localized);
            if (plainKey && plainLocalized && !plainKey->isEmpty()) pairs.insert(*plainKey, *plainLocalized);
        }
        byKey.clear();
        if (!appended.isEmpty() && !text.isEmpty() && !text.endsWith(u'\n')) appended.prepend(u'\n');
    }
    qsizetype unmatched = 0;
    for (const auto &queue : std::as_const(byKey)) unmatched += queue.size();
    if (unmatched > 0)
        file.addWarning(QStringLiteral("%1: %2 of the document no longer in the base table, so not written. Add the "
                                       "file again to translate the table as it is now.")
                            .arg(displayPath(file.path()))
                            .arg(unmatched == 1 ? QStringLiteral("1 entry is") : QStringLiteral("%1 entries are").arg(unmatched)));

    QSaveFile out(target);
    if (!out.open(QIODevice::WriteOnly) || out.write((StringsLayout::withValues(text, *layout, values) + appended).toUtf8()) < 0
        || !out.commit()) {
        file.addWarning(QStringLiteral("The localized table %1 could not be written (%2).")
                            .arg(displayPath(target), out.errorString()));
        return StringMap();
    }
    return infoPlist ? StringMap() : pairs;
}

}  // namespace stringsHandle

namespace {

class StringsHandler final : public ResourceHandler {
public:
    void extract(LocFile &file, const OptString &dictionaryPath, const OptString &previousPath) override
    {
        stringsHandle::extractStringsDataWithDictionary(file, dictionaryPath, previousPath);
    }
    StringMap makeLocalized(LocFile &file, const QString &folder) override
    {
        return stringsHandle::makeLocalizedStringsFileAt(file, folder);
    }
};

}  // namespace

std::shared_ptr<ResourceHandler> makeStringsHandler()
{
    return std::make_shared<StringsHandler>();
}
