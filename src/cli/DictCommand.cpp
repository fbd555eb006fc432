// dict list | show | import | export | clean: a pair's dictionary through the browser's model,
// for scripts. Every change is written atomically, and a file that cannot be read changes
// nothing.
#include "Command.h"
#include "DictWindowController.h"
#include "DictionaryFiles.h"
#include "DocumentCli.h"
#include "Languages.h"
#include "StringsTable.h"
#include "VXControllerModel.h"

#include <QFileInfo>
#include <QJsonObject>

using namespace DocumentCli;
using StringUtility::wordOrEmpty;

namespace {

const char *const usage =
    "Usage: vocabrix-cli dict list\n"
    "       vocabrix-cli dict show --from LANG --to LANG [--search TEXT]\n"
    "       vocabrix-cli dict import --from LANG --to LANG FILE...\n"
    "       vocabrix-cli dict export --from LANG --to LANG --tmx OUT.tmx\n"
    "       vocabrix-cli dict clean --from LANG --to LANG\n";

// The pair's dictionary path from --from and --to; empty with a message when either is wrong.
QString pairPath(QStringList &args, QTextStream &err)
{
    bool bad = false;
    const auto from = takeOption(args, QStringLiteral("--from"), err, &bad);
    const auto to = takeOption(args, QStringLiteral("--to"), err, &bad);
    if (bad) return QString();
    if (!from || !to) {
        err << "vocabrix-cli dict: --from and --to name the language pair\n";
        return QString();
    }
    const auto fromTag = language(*from, QStringLiteral("--from"), err);
    const auto toTag = fromTag ? language(*to, QStringLiteral("--to"), err) : std::nullopt;
    if (!fromTag || !toTag) return QString();
    return VXControllerModel::instance().dictionaryPathrForBase(wordOrEmpty(languageKeyForLanguage(*fromTag)),
                                                                wordOrEmpty(languageKeyForLanguage(*toTag)));
}

// The browser for a command that changes the file: none when the file exists but cannot be read,
// since writing the browser's rows would replace it.
std::unique_ptr<DictWindowController> openForChange(const QString &path, QTextStream &err)
{
    auto browser = std::make_unique<DictWindowController>(path);
    if (!browser->loadMessage().isEmpty()) {
        err << "vocabrix-cli dict: " << browser->loadMessage() << "\n"
            << "Nothing was changed; repair or move the file first.\n";
        browser->setEdited(false);
        return nullptr;
    }
    return browser;
}

bool save(DictWindowController &browser, QTextStream &err)
{
    QString message;
    const bool saved = browser.saveDictionary(&message);
    if (!message.isEmpty()) err << "vocabrix-cli dict: " << message << "\n";
    return saved;
}

int list(QStringList &args, QTextStream &out, QTextStream &err)
{
    if (!args.isEmpty()) {
        err << usage;
        return 2;
    }
    for (const QString &path : DictWindowController::existingDictionaryPaths()) {
        const auto keys = DictionaryFiles::languageKeysFromFileName(QFileInfo(path).fileName());
        QJsonObject line{{QStringLiteral("path"), path},
                         {QStringLiteral("base"), keys->first},
                         {QStringLiteral("target"), keys->second}};
        StringsTable::Error error;
        if (const auto map = dictionaryWithContentsOfFile(path, &error)) line.insert(QStringLiteral("pairs"), map->size());
        else line.insert(QStringLiteral("error"), error.message.isEmpty() ? QStringLiteral("unreadable") : error.message);
        printLine(out, line);
    }
    return 0;
}

int show(QStringList &args, QTextStream &out, QTextStream &err)
{
    bool bad = false;
    const auto search = takeOption(args, QStringLiteral("--search"), err, &bad);
    const QString path = pairPath(args, err);
    if (bad || path.isEmpty()) return 2;
    if (!args.isEmpty()) {
        err << usage;
        return 2;
    }
    DictWindowController browser(path);
    if (!browser.loadMessage().isEmpty()) {
        err << "vocabrix-cli dict: " << browser.loadMessage() << "\n";
        return 1;
    }
    browser.search(search.value_or(QString()));
    for (const DictEntryPtr &row : browser.shownEntries())
        printLine(out, QJsonObject{{QStringLiteral("key"), wordOrEmpty(row->key())}, {QStringLiteral("value"), wordOrEmpty(row->value())}});
    return 0;
}

int import(QStringList &args, QTextStream &out, QTextStream &err)
{
    const QString path = pairPath(args, err);
    if (path.isEmpty()) return 2;
    if (args.isEmpty()) {
        err << usage;
        return 2;
    }
    auto browser = openForChange(path, err);
    if (!browser) return 1;
    const qsizetype before = browser->entries().size();
    const DictWindowController::ImportReport report = browser->importFiles(args);
    for (const QString &ignored : report.ignored)
        err << "vocabrix-cli dict: " << ignored << ": not a string table, bundle, glossary (ad, lg, wg) or TMX file\n";
    for (const QString &problem : report.problems) err << "vocabrix-cli dict: " << problem << "\n";
    printLine(out, QJsonObject{{QStringLiteral("path"), path},
                               {QStringLiteral("added"), report.added},
                               {QStringLiteral("rows"), browser->entries().size()},
                               {QStringLiteral("before"), before}});
    return report.problems.isEmpty() && report.ignored.isEmpty() ? 0 : 1;
}

int exportTmx(QStringList &args, QTextStream &out, QTextStream &err)
{
    bool bad = false;
    const auto tmx = takeOption(args, QStringLiteral("--tmx"), err, &bad);
    const QString path = pairPath(args, err);
    if (bad || path.isEmpty()) return 2;
    if (!tmx || !args.isEmpty()) {
        err << usage;
        return 2;
    }
    DictWindowController browser(path);
    if (!browser.loadMessage().isEmpty()) {
        err << "vocabrix-cli dict: " << browser.loadMessage() << "\n";
        return 1;
    }
    QString note;
    if (!browser.exportTmx(*tmx, &note)) {
        err << "vocabrix-cli dict: " << *tmx << " could not be written (" << note << ")\n";
        return 1;
    }
    if (!note.isEmpty()) err << "vocabrix-cli dict: " << note << "\n";
    printLine(out, QJsonObject{{QStringLiteral("tmx"), *tmx}, {QStringLiteral("pairs"), browser.entries().size()}});
    return 0;
}

int clean(QStringList &args, QTextStream &out, QTextStream &err)
{
    const QString path = pairPath(args, err);
    if (path.isEmpty()) return 2;
    if (!args.isEmpty()) {
        err << usage;
        return 2;
    }
    auto browser = openForChange(path, err);
    if (!browser) return 1;
    const qsizetype count = browser->identityPairCount();
    out << "Removing " << count << (count == 1 ? " pair" : " pairs") << " whose value equals its key from "
        << QFileInfo(path).fileName() << ".\n";
    out.flush();
    browser->removeIdentityPairs();
    if (!save(*browser, err)) return 1;
    printLine(out, QJsonObject{{QStringLiteral("path"), path}, {QStringLiteral("removed"), count},
                               {QStringLiteral("rows"), browser->entries().size()}});
    return 0;
}

int runDict(const QStringList &arguments, QTextStream &out, QTextStream &err)
{
    QStringList args = arguments;
    const QString sub = args.isEmpty() ? QString() : args.takeFirst();
    if (sub == QLatin1String("list")) return list(args, out, err);
    if (sub == QLatin1String("show")) return show(args, out, err);
    if (sub == QLatin1String("import")) return import(args, out, err);
    if (sub == QLatin1String("export")) return exportTmx(args, out, err);
    if (sub == QLatin1String("clean")) return clean(args, out, err);
    err << usage;
    return 2;
}

}  // namespace

static CommandRegistration reg(
    {QStringLiteral("dict"), QStringLiteral("dict list | show | import | export | clean"),
     QStringLiteral("The translation dictionaries, one per language pair (LANG: tag, key, abbreviation or name).\n"
                    "list: each pair file as a JSON line (path, base, target, pairs).\n"
                    "show --from LANG --to LANG [--search TEXT]: the pairs, one JSON line each; --search keeps\n"
                    "  those whose key or value contains TEXT, case and accents ignored.\n"
                    "import --from LANG --to LANG FILE...: string tables, localized bundles, glossaries (ad, lg,\n"
                    "  wg) and TMX files by extension, then saves. Exit status 1 when a file could not be read.\n"
                    "export --from LANG --to LANG --tmx OUT.tmx: the pairs as a TMX 1.4 memory.\n"
                    "clean --from LANG --to LANG: removes the pairs whose value equals their key, saying how\n"
                    "  many first."),
     runDict});
