// doc SUBCOMMAND DOC ...: a Vocabrix document made, filled, inspected, edited and exported from
// the command line, on the same model as the application's document window.
#include "Command.h"
#include "DocumentCli.h"
#include "Settings.h"

#include <QFileInfo>
#include <QJsonArray>

using namespace DocumentCli;

namespace {

int usage(QTextStream &err)
{
    err << "Usage: vocabrix-cli doc new|status|files|entries|add|set|remove|export DOC ...; see vocabrix-cli doc --help\n";
    return 2;
}

int runNew(const QString &path, QStringList args, QTextStream &out, QTextStream &err)
{
    bool bad = false;
    const auto from = takeOption(args, QStringLiteral("--from"), err, &bad);
    const auto to = takeOption(args, QStringLiteral("--to"), err, &bad);
    const auto title = takeOption(args, QStringLiteral("--title"), err, &bad);
    const bool force = takeFlag(args, QStringLiteral("--force"));
    if (bad || !args.isEmpty()) return usage(err);
    if (QFileInfo::exists(path) && !force) {
        err << "vocabrix-cli: " << path << " exists; add --force to replace it\n";
        return 1;
    }
    MyDocument doc;
    if (from) {
        const auto tag = language(*from, QStringLiteral("--from"), err);
        if (!tag) return 2;
        doc.setLocLangFrom(*tag);
    }
    if (to) {
        const auto tag = language(*to, QStringLiteral("--to"), err);
        if (!tag) return 2;
        doc.setLocLangTo(*tag);
    }
    if (title) doc.setTitle(*title);
    if (!save(doc, path, err)) return 1;
    printLine(out, {{QStringLiteral("document"), path},
                    {QStringLiteral("title"), doc.title()},
                    {QStringLiteral("from"), languageJson(doc.locLangFrom())},
                    {QStringLiteral("to"), languageJson(doc.locLangTo())},
                    {QStringLiteral("dictionary"), doc.dictionaryPath()}});
    return 0;
}

int runStatus(const MyDocument &doc, const QString &path, QTextStream &out)
{
    qsizetype entries = 0, checked = 0;
    for (const LocFilePtr &f : doc.files()) entries += f->allEntries().size(), checked += f->checkedCount();
    printLine(out, {{QStringLiteral("document"), path},
                    {QStringLiteral("title"), doc.title()},
                    {QStringLiteral("from"), languageJson(doc.locLangFrom())},
                    {QStringLiteral("to"), languageJson(doc.locLangTo())},
                    {QStringLiteral("dictionary"), doc.dictionaryPath()},
                    {QStringLiteral("files"), int(doc.files().size())},
                    {QStringLiteral("entries"), int(entries)},
                    {QStringLiteral("checked"), int(checked)},
                    {QStringLiteral("status"), QStringLiteral("%1/%2").arg(checked).arg(entries)}});
    return 0;
}

int runFiles(const MyDocument &doc, QTextStream &out)
{
    for (qsizetype i = 0; i < doc.files().size(); ++i) printLine(out, fileJson(doc.files().at(i), i + 1));
    return 0;
}

int runEntries(const MyDocument &doc, const QStringList &args, QTextStream &out, QTextStream &err)
{
    const auto chosen = args.isEmpty() ? std::optional(doc.files()) : files(doc, args, err);
    if (!chosen) return 1;
    for (const LocFilePtr &f : *chosen)
        for (qsizetype i = 0; i < f->allEntries().size(); ++i) printLine(out, entryJson(f, f->allEntries().at(i), i + 1));
    return 0;
}

int runAdd(MyDocument &doc, const QString &path, QStringList args, QTextStream &out, QTextStream &err)
{
    bool bad = false;
    if (const auto lproj = takeOption(args, QStringLiteral("--lproj"), err, &bad)) doc.setTargetFolderChoice(*lproj);
    if (bad) return usage(err);
    const auto paths = pathsWithPrevious(args, err);
    if (!paths || paths->isEmpty()) return usage(err);
    const QList<LocFilePtr> added = doc.addFiles(*paths);
    if (!doc.waitUntilFilesRead()) err << "vocabrix-cli: the interface tool did not finish reading every file\n";
    if (!save(doc, path, err)) return 1;
    const qsizetype first = doc.files().size() - added.size();
    for (qsizetype i = 0; i < added.size(); ++i) printLine(out, fileJson(added.at(i), first + i + 1));
    if (added.isEmpty()) {
        err << "vocabrix-cli: nothing was added: no resource file of a known type (for a bundle: no "
            << doc.baseFolderName().value_or(QStringLiteral("base language")) << " or "
            << doc.baseLanguageAbbreviation().value_or(QString()) << ".lproj folder in Contents/Resources)\n";
        return 1;
    }
    return 0;
}

int runSet(MyDocument &doc, const QString &path, QStringList args, QTextStream &out, QTextStream &err)
{
    bool bad = false;
    const auto word = takeOption(args, QStringLiteral("--word"), err, &bad);
    const bool check = takeFlag(args, QStringLiteral("--check"));
    const bool uncheck = takeFlag(args, QStringLiteral("--uncheck"));
    if (bad || args.size() != 2 || (check && uncheck) || (!word && !check && !uncheck)) return usage(err);
    const auto chosen = files(doc, {args.at(0)}, err);
    if (!chosen) return 1;
    const LocFilePtr file = chosen->first();
    bool isNumber = false;
    const int index = args.at(1).toInt(&isNumber);
    if (!isNumber || index < 1 || index > file->allEntries().size()) {
        err << "vocabrix-cli: " << file->fileName() << " has no entry " << args.at(1) << " (1 to "
            << file->allEntries().size() << ")\n";
        return 1;
    }
    const LocEntryPtr entry = file->allEntries().at(index - 1);
    if (word) entry->setLocalizedWord(*word);
    if (check || uncheck) entry->setCheck(check);
    doc.update();
    if (!save(doc, path, err)) return 1;
    printLine(out, entryJson(file, entry, index));
    return 0;
}

int runRemove(MyDocument &doc, const QString &path, const QStringList &args, QTextStream &out, QTextStream &err)
{
    if (args.isEmpty()) return usage(err);
    const auto chosen = files(doc, args, err);
    if (!chosen) return 1;
    doc.removeFiles(*chosen);
    if (!save(doc, path, err)) return 1;
    return runFiles(doc, out);
}

int runExport(MyDocument &doc, QStringList args, QTextStream &out, QTextStream &err)
{
    bool bad = false;
    const auto destination = takeOption(args, QStringLiteral("--to"), err, &bad);
    const bool overwrite = takeFlag(args, QStringLiteral("--overwrite"));
    if (const auto lproj = takeOption(args, QStringLiteral("--lproj"), err, &bad)) doc.setTargetFolderChoice(*lproj);
    QStringList names;
    while (auto f = takeOption(args, QStringLiteral("--file"), err, &bad)) names.append(*f);
    if (bad || !destination || !args.isEmpty()) return usage(err);
    const auto chosen = names.isEmpty() ? std::optional(doc.files()) : files(doc, names, err);
    if (!chosen) return 1;
    QString refusal;
    const ExportResult result =
        doc.makeLocalizedFilesInto(*chosen, QFileInfo(*destination).absoluteFilePath(), overwrite, &refusal);
    if (result.cancelled) {
        err << "vocabrix-cli: nothing exported: " << refusal;
        if (refusal.contains(QLatin1String("overwrite"))) err << " Add --overwrite to write into it.";
        if (refusal.contains(QLatin1String("several folders"))) err << " Add --lproj NAME to choose.";
        err << "\n";
        return 1;
    }
    printLine(out, exportJson(result, doc));
    return result.failed.isEmpty() && result.merge.written ? 0 : 1;
}

int runDoc(const QStringList &allArgs, QTextStream &out, QTextStream &err)
{
    if (allArgs.size() < 2) return usage(err);
    const QString sub = allArgs.at(0);
    const QString path = QFileInfo(allArgs.at(1)).absoluteFilePath();
    const QStringList args = allArgs.mid(2);
    if (sub == QLatin1String("new")) return runNew(path, args, out, err);

    std::unique_ptr<MyDocument> doc = open(path, err);
    if (!doc) return 1;
    PrintingDialogs dialogs(err);
    doc->setDialogs(&dialogs);
    if (sub == QLatin1String("status") && args.isEmpty()) return runStatus(*doc, path, out);
    if (sub == QLatin1String("files") && args.isEmpty()) return runFiles(*doc, out);
    if (sub == QLatin1String("entries")) return runEntries(*doc, args, out, err);
    if (sub == QLatin1String("add")) return runAdd(*doc, path, args, out, err);
    if (sub == QLatin1String("set")) return runSet(*doc, path, args, out, err);
    if (sub == QLatin1String("remove")) return runRemove(*doc, path, args, out, err);
    if (sub == QLatin1String("export")) return runExport(*doc, args, out, err);
    return usage(err);
}

CommandRegistration reg({QStringLiteral("doc"), QStringLiteral("doc SUBCOMMAND DOC [ARGUMENTS]"),
    QStringLiteral(
        "A Vocabrix document (extension .vocabrix), made and used without the window. Each\n"
        "subcommand prints one JSON object per line; FILE is a file's position from 1, its name or\n"
        "its path; a language is a tag, key, abbreviation or name (see: vocabrix-cli languages).\n"
        "  doc new DOC [--from LANG] [--to LANG] [--title TEXT] [--force]\n"
        "      make an empty document; languages default to the settings BaseLanguage and\n"
        "      TargetLanguage (English and French unless changed)\n"
        "  doc status DOC          title, languages, dictionary path, counts of files and entries\n"
        "  doc files DOC           one line per file: path, status checked/all, colour\n"
        "  doc entries DOC [FILE...]  one line per entry: key, base and localized word, check mark\n"
        "  doc add DOC PATH [--previous PREV] [PATH [--previous PREV]]... [--lproj NAME]\n"
        "      add string tables, property lists, interface files or whole bundles (.app and other\n"
        "      bundle types: the files of <base>.lproj, and of Base.lproj where there is one).\n"
        "      PREV is the previous localized release of the PATH before it (a file, or for a\n"
        "      bundle the old bundle, whose <target>.lproj files are paired by name; a Base.lproj\n"
        "      interface file X pairs with <target>.lproj/X.strings); its words and the\n"
        "      dictionary of the language pair pre-fill the entries. The document is saved.\n"
        "  doc set DOC FILE N [--word TEXT] [--check|--uncheck]\n"
        "      set entry N (from 1) of FILE: its localized word and/or its check mark; saved\n"
        "  doc remove DOC FILE...  take files out of the document (nothing on disk changes)\n"
        "  doc export DOC --to FOLDER|BUNDLE [--file FILE]... [--overwrite] [--lproj NAME]\n"
        "      write the localized files (all, or the --file ones in that order) into FOLDER\n"
        "      (made when missing), or into the bundle's <target>.lproj (found by key,\n"
        "      abbreviation or language part, or named by --lproj; made in the bundle's style when\n"
        "      missing; an existing one is written into only with --overwrite); Base.lproj\n"
        "      interface files are written as <target>.lproj/X.strings. Then merge the pairs\n"
        "      into the language pair's dictionary, in\n"
        "      $XDG_DATA_HOME/Vocabrix (default ~/.local/share/Vocabrix), as the application does.\n"
        "Exit status: 0 done, 1 failed (reason on standard error), 2 wrong arguments."),
    runDoc});

}  // namespace
