#pragma once
// The language table: the languages Vocabrix knows, read from the resource LanguageTable.plist
// (rows "01", "02", ... each with "name", "key" and "abbreviation"). A language is named
// everywhere by its tag: the row's position among the sorted row keys, from 1. Keys name .lproj
// folders and dictionary files and never hold "-"; abbreviations are the modern folder names
// (fr, zh-Hans, pt-BR) tried when the key's folder is missing. The table is read anew on every
// lookup, so nothing here is cached.

#include "StringUtility.h"

#include <QList>
#include <QMap>
#include <QString>
#include <optional>

struct LanguageRow {
    QString name;
    QString key;
    QString abbreviation;
};

// Row key ("01") to row, in ascending plain string order of the keys. Empty when the resource
// cannot be read; a row that is not a dictionary of three strings is left out.
using LanguageTable = QMap<QString, LanguageRow>;
LanguageTable languageDictionary();

// One language as a popup shows it.
struct LanguageItem {
    int tag = 0;
    QString name;
    QString key;
    QString abbreviation;
};
// Every row, in row-key order, tagged with its position from 1: what every language popup holds.
QList<LanguageItem> languageItems();

// A language popup as the model fills it; the window adapts its combo boxes to this.
class LanguagePopup {
public:
    virtual ~LanguagePopup() = default;
    virtual void removeAllItems() = 0;
    virtual void addItemWithTitle(const QString &title) = 0;
    virtual qsizetype numberOfItems() const = 0;
    virtual void setTagOfItemAtIndex(qsizetype index, int tag) = 0;
};
// Empties every popup, then adds one item per row to each (in row-key order) and tags it.
void setLanguageNameForPopupButtons(const QList<LanguagePopup *> &popups);

// The row of a tag: the tag written with at least two digits ("3" -> "03"). None for a tag
// without a row (0, beyond the last row, or a gap in the keys).
std::optional<LanguageRow> languageRowForTag(int tag);
OptString languageKeyForLanguage(int tag);
OptString languageAbbreviationForLanguage(int tag);
// The tag of the row with this key (exact), or none.
std::optional<int> tagForLanguageKey(const QString &key);
// For command lines: a tag number, a key, an abbreviation or a name (letter case ignored).
std::optional<int> tagForLanguage(const QString &text);

namespace Languages {
// Reads the table from this file instead of the built-in resource; empty restores the resource.
// Tests use it to supply tables of their own.
void setTablePath(const QString &path);
// Path of the table read by languageDictionary() (":/vocabrix/LanguageTable.plist" by default).
QString tablePath();
}  // namespace Languages
