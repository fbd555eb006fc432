#include "LocalizedText.h"

#include "Resources.h"
#include "StringsTable.h"

#include <QHash>
#include <QLocale>

namespace {

QString g_language;  // empty: the system's interface languages

// The table of the first interface language that has one; English otherwise.
const StringMap &table()
{
    static QHash<QString, StringMap> cache;  // the resources never change while running
    QStringList languages;
    if (!g_language.isEmpty()) languages.append(g_language);
    else languages = QLocale::system().uiLanguages();
    languages.append(QStringLiteral("en"));
    initVocabrixResources();
    for (const QString &language : std::as_const(languages)) {
        const QString code = language.section(u'-', 0, 0).section(u'_', 0, 0).toLower();
        auto it = cache.constFind(code);
        if (it != cache.constEnd()) return *it;
        const auto map =
            dictionaryWithContentsOfFile(QStringLiteral(":/vocabrix/%1.lproj/Localizable.strings").arg(code));
        if (map) return *cache.insert(code, *map);
    }
    static const StringMap empty;
    return empty;
}

}  // namespace

QString localizedString(const QString &key)
{
    const auto text = table().find(key);
    return text ? text->toString() : key;
}

void setInterfaceLanguage(const QString &language)
{
    g_language = language;
}
