// languages: the language table, one JSON line per language.
#include "Command.h"
#include "Languages.h"

#include <QJsonDocument>
#include <QJsonObject>

static int runLanguages(const QStringList &args, QTextStream &out, QTextStream &err)
{
    if (!args.isEmpty()) {
        err << "Usage: vocabrix-cli languages\n";
        return 2;
    }
    for (const LanguageItem &item : languageItems()) {
        const QJsonObject o{{QStringLiteral("tag"), item.tag},
                            {QStringLiteral("name"), item.name},
                            {QStringLiteral("key"), item.key},
                            {QStringLiteral("abbreviation"), item.abbreviation}};
        out << QString::fromUtf8(QJsonDocument(o).toJson(QJsonDocument::Compact)) << "\n";
    }
    return 0;
}

static CommandRegistration reg({QStringLiteral("languages"), QStringLiteral("languages"),
                                QStringLiteral("The languages Vocabrix knows: tag, name, key (names .lproj folders and\n"
                                               "dictionary files) and abbreviation (the modern folder name tried when\n"
                                               "the key's folder is missing). Any of them names a language in doc and job."),
                                runLanguages});
