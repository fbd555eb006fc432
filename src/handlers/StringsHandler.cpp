// The strings-file handler. Base tables are read line by line on purpose: an entry keeps the
// pair's key and value exactly as the file writes them (escapes included), and export writes them
// back the same way. What that reading cannot take is reported, never dropped silently (see
// StringsLineCheck). Decisions taken here beyond the line rules:
//  - A line with an empty value becomes "/* \"key\"=\"\" */\n\"\" = \"\";": its key word is the
//    key, its base word is empty (so "IgnoreEmptyWords" hides it and it starts checked) and it
//    is written back as "key" = "". A line with an empty key keeps the usual entry shape; the
//    key word is then empty and export writes the key back empty ("" = "value";), where the
//    usual rebuild would have put the value in the key's place. Its previous word is looked up
//    under the empty key, not under its value.
//  - A key that the previous version does not hold in the lookup form (only \n and \" resolved)
//    is looked up once more as the table grammar reads it, so that keys with \t, \\ or \U
//    escapes find their previous word too; the first form is tried first and wins.
//  - An unquoted key (CFBundleName = "..."; in InfoPlist.strings) loses its indentation.
//  - A table that is a property list (binary, or XML by its first line) is read by the
//    property-list handler and written back as an XML property list with the base file's keys
//    and the localized values (see PlistHandler); "InfoPlist.strings" still returns no pairs.
#include "StringsHandler.h"

#include "Handlers.h"
#include "LocFile.h"
#include "PlistHandler.h"
#include "StringsLineCheck.h"
#include "StringsTable.h"
#include "TextFile.h"
#include "WholeTableReader.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>

using namespace StringUtility;

namespace stringsHandle {
namespace {

const QString kInfoPlistStrings = QStringLiteral("InfoPlist.strings");
const QString kPairOpen = QStringLiteral(" = \"");
const QString kPairClose = QStringLiteral("\";");

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

bool qualifies(const QString &line)
{
    return line.contains(u'"') && line.contains(u'=') && line.contains(kPairClose);
}

// The key of a normalised pair line, by the base-word rules of an entry without a comment.
QString lineKey(const QString &line)
{
    if (OptString key = substringFrom(line, QStringLiteral("\""), QStringLiteral("\" = "))) return *key;
    if (QStringView(line).trimmed().startsWith(QLatin1String("\"\" = "))) return QString();
    // Only an unquoted key is cut this way; its indentation is no part of it.
    if (OptString key = substringTo(line, QStringLiteral(" = "))) return key->trimmed();
    return QString();
}

QString lookupKey(const LocEntry &entry, const QString &lineKey)
{
    QString key = lineKey.isEmpty() ? QString() : wordOrEmpty(entry.keyWord() ? entry.keyWord() : entry.baseWord());
    key = replaceStringFrom(key, QStringLiteral("\\n"), QStringLiteral("\n"));
    return replaceStringFrom(key, QStringLiteral("\\\""), QStringLiteral("\""));
}

// The value of the pair line after the comment, as the rebuilt pair line of export takes it.
QString pairLineValue(const LocEntry &entry)
{
    const QString &text = entry.entry();
    const QString commentEnd = QStringLiteral("\" */\n");
    const qsizetype at = text.indexOf(commentEnd);
    const qsizetype start = at < 0 ? 0 : at + commentEnd.size();
    OptString value = substringFrom(text, kPairOpen, kPairClose, start, text.size() - start);
    if (!value) value = entry.localizedWord();
    return wordOrEmpty(value);
}

QString exportLine(const LocEntry &entry)
{
    if (entry.entry().startsWith(QLatin1String("/* \"\"=\"")))
        return QStringLiteral("\"\" = \"%1\";").arg(pairLineValue(entry));
    return entry.entryBodyAsString();
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
    const QString entryFormat = QStringLiteral("/* \"%1\"=\"%2\" */\n\"%2\" = \"%2\";");

    QList<LocEntryPtr> entries = file.allEntries();
    QList<TakenPair> taken;
    const QString text = wordOrEmpty(base.text);
    qsizetype lineNumber = 0;
    for (const QStringView view : QStringView(text).split(u'\n')) {
        ++lineNumber;
        QString line = view.toString();
        if (!qualifies(line)) continue;
        line = replaceStringFrom(line, QStringLiteral("\"="), QStringLiteral("\" ="));
        line = replaceStringFrom(line, QStringLiteral("=\""), QStringLiteral("= \""));
        const QString key = lineKey(line);
        const OptString value = substringFrom(line, kPairOpen, kPairClose);
        taken.append({key, value, lineNumber});
        // One pass of arg(): words holding "%1" go in as they are.
        LocEntryPtr entry = LocEntry::initWithEntry(entryFormat.arg(key, wordOrEmpty(value)));
        entries.append(entry);

        if (previous) {
            const QString *word = previous->find(lookupKey(*entry, key));
            // Keys with other escapes (\t, \\, \U) are found by their grammar reading too.
            if (!word)
                if (const OptString plain = unescapedTableWord(key)) word = previous->find(*plain);
            if (word) {
                entry->setLocalizedWord(replaceStringFrom(*word, QStringLiteral("\n"), QStringLiteral("\\n")));
                entry->checkNeedToLocalize();
                continue;
            }
        }
        const OptString baseWord = entry->baseWord();
        if (dictionary && wordLength(baseWord) > 0) {
            if (const QString *word = dictionary->find(*baseWord)) {
                entry->setLocalizedWord(*word);
                entry->checkNeedToLocalize();
            }
        }
    }
    file.setAllEntries(entries);
    if (base.text) reportPairsNotTaken(file, text, taken);
    if (taken.isEmpty() && file.warnings().size() == warningsBefore)
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
    QString text;
    for (const LocEntryPtr &entry : file.allEntries()) {
        text += exportLine(*entry);
        text += u'\n';
    }
    QSaveFile out(target);
    if (!out.open(QIODevice::WriteOnly) || out.write(text.toUtf8()) < 0 || !out.commit())
        file.addWarning(QStringLiteral("The localized table %1 could not be written (%2).")
                            .arg(displayPath(target), out.errorString()));
    if (infoPlist) return StringMap();
    return dictionaryWithContentsOfFile(target).value_or(StringMap());
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
