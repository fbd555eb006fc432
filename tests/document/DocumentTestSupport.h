#pragma once
// Shared by the document tests: a fake strings handler.

// A stand-in for the strings handler, so the document's own rules are tested apart from the real
// handlers: the base table's pairs become entries whose localized word comes from the previous
// version (by key) or the dictionary (by base word); export writes "key" = "localized"; lines and
// returns base word -> localized word. Every call is recorded.

#include "LocFile.h"
#include "ResourceHandler.h"
#include "StringsFileWriter.h"
#include "StringsTable.h"
#include "TestSupport.h"

#include <QDir>
#include <QFileInfo>

class FakeStringsHandler : public ResourceHandler {
public:
    struct Read {
        QString path;
        OptString dictionary;
        OptString previous;
    };
    QList<Read> reads;
    QStringList writes;  // output folders, in order

    void extract(LocFile &file, const OptString &dictionaryPath, const OptString &previousPath) override
    {
        reads.append({file.path(), dictionaryPath, previousPath});
        const auto base = dictionaryWithContentsOfFile(file.path());
        if (!base) {
            if (file.path().contains(QLatin1String("broken"))) file.setInitError(QStringLiteral("bad table"));
            return;
        }
        const auto previous = previousPath ? dictionaryWithContentsOfFile(*previousPath) : std::nullopt;
        const auto dictionary = dictionaryPath ? dictionaryWithContentsOfFile(*dictionaryPath) : std::nullopt;
        QList<LocEntryPtr> entries;
        for (const auto &[key, value] : *base) {
            auto entry = LocEntry::initWithEntry(
                QStringLiteral("/* \"%1\"=\"%2\" */\n\"%2\" = \"%2\";").arg(key, value));
            if (previous && previous->contains(key)) entry->setLocalizedWord(previous->value(key));
            else if (dictionary && dictionary->contains(value)) entry->setLocalizedWord(dictionary->value(value));
            entries.append(entry);
        }
        file.setAllEntries(entries);
    }

    StringMap makeLocalized(LocFile &file, const QString &folder) override
    {
        writes.append(folder);
        StringMap table, pairs;
        for (const LocEntryPtr &e : file.allEntries()) {
            table.insert(e->keyWord().value_or(QString()), e->localizedWord().value_or(QString()));
            pairs.insert(e->baseWord().value_or(QString()), e->localizedWord().value_or(QString()));
        }
        if (!writeToStringsFile(table, QDir(folder).filePath(QFileInfo(file.path()).fileName()), true)) return {};
        return pairs;
    }
};

// Registers a fresh fake for string tables (and nothing for the other kinds).
inline std::shared_ptr<FakeStringsHandler> installFakeStringsHandler()
{
    auto fake = std::make_shared<FakeStringsHandler>();
    HandlerRegistry::registerHandler(HandlerKind::Strings, fake);
    return fake;
}
