#include "Languages.h"

#include "PropertyList.h"
#include "Resources.h"

#include <QDateTime>
#include <QFileInfo>

namespace {

QString g_tablePath;  // empty: the built-in resource

QString stringField(const plist::Value &row, const char *name)
{
    const plist::Value *v = row.find(QLatin1String(name));
    return v && v->isString() ? v->string() : QString();
}

}  // namespace

namespace Languages {

void setTablePath(const QString &path)
{
    g_tablePath = path;
}

QString tablePath()
{
    return g_tablePath.isEmpty() ? QStringLiteral(":/vocabrix/LanguageTable.plist") : g_tablePath;
}

}  // namespace Languages

LanguageTable languageDictionary()
{
    // Asked for once per file of a bundle being added: read once, again only when the table's
    // path or its file changed.
    static QString cachedPath;
    static QDateTime cachedTime;
    static LanguageTable cached;
    const QString path = Languages::tablePath();
    const QDateTime time = QFileInfo(path).lastModified();
    if (!cached.isEmpty() && path == cachedPath && time == cachedTime) return cached;
    initVocabrixResources();
    LanguageTable table;
    const plist::ReadResult read = plist::readFile(path);
    if (!read.value || !read.value->isDictionary()) return table;
    for (const auto &[rowKey, row] : read.value->dictionary()) {
        if (!row.isDictionary()) continue;
        const plist::Value *name = row.find(QStringLiteral("name"));
        const plist::Value *key = row.find(QStringLiteral("key"));
        if (!name || !name->isString() || !key || !key->isString()) continue;
        table.insert(rowKey, {name->string(), key->string(), stringField(row, "abbreviation")});
    }
    cachedPath = path;
    cachedTime = time;
    cached = table;
    return table;
}

QList<LanguageItem> languageItems()
{
    QList<LanguageItem> items;
    const LanguageTable table = languageDictionary();
    int tag = 1;
    // QMap walks its keys in ascending plain string order, which is what defines a tag.
    for (auto it = table.cbegin(); it != table.cend(); ++it, ++tag)
        items.append({tag, it->name, it->key, it->abbreviation});
    return items;
}

void setLanguageNameForPopupButtons(const QList<LanguagePopup *> &popups)
{
    for (LanguagePopup *popup : popups) popup->removeAllItems();
    const QList<LanguageItem> items = languageItems();
    for (qsizetype i = 0; i < items.size(); ++i) {
        for (LanguagePopup *popup : popups) {
            popup->addItemWithTitle(items.at(i).name);
            popup->setTagOfItemAtIndex(i, int(i + 1));
        }
    }
}

std::optional<LanguageRow> languageRowForTag(int tag)
{
    QString rowKey = QString::number(tag);
    if (rowKey.size() == 1) rowKey.prepend(u'0');
    const LanguageTable table = languageDictionary();
    const auto it = table.constFind(rowKey);
    if (it == table.cend()) return std::nullopt;
    return *it;
}

OptString languageKeyForLanguage(int tag)
{
    const auto row = languageRowForTag(tag);
    return row ? OptString(row->key) : std::nullopt;
}

OptString languageAbbreviationForLanguage(int tag)
{
    const auto row = languageRowForTag(tag);
    if (!row || row->abbreviation.isEmpty()) return std::nullopt;
    return row->abbreviation;
}

std::optional<int> tagForLanguageKey(const QString &key)
{
    for (const LanguageItem &item : languageItems())
        if (item.key == key) return item.tag;
    return std::nullopt;
}

std::optional<int> tagForLanguage(const QString &text)
{
    const QList<LanguageItem> items = languageItems();
    bool isNumber = false;
    const int number = text.toInt(&isNumber);
    if (isNumber) {
        for (const LanguageItem &item : items)
            if (item.tag == number) return number;
        return std::nullopt;
    }
    // Keys first, then abbreviations, then names: "Base" or "fr" must not match a name first.
    for (auto field : {&LanguageItem::key, &LanguageItem::abbreviation, &LanguageItem::name})
        for (const LanguageItem &item : items)
            if (QString::compare(item.*field, text, Qt::CaseInsensitive) == 0) return item.tag;
    return std::nullopt;
}
