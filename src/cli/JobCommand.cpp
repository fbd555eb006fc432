// job: the whole piece of work in one invocation, for scripts and CI: a document with a language
// pair, files or bundles added with their previous releases, export with the dictionary merge,
// and the document saved.
#include "Command.h"
#include "DocumentCli.h"

#include <QFileInfo>

using namespace DocumentCli;

namespace {

struct JobOptions {
    std::optional<QString> doc, from, to, title, exportTo, save, lproj;
    QList<QPair<QString, OptString>> add;
    QStringList files;
    bool overwrite = false;
};

std::optional<JobOptions> parse(const QStringList &args, QTextStream &err)
{
    JobOptions o;
    const auto value = [&](qsizetype &i) -> std::optional<QString> {
        if (i + 1 >= args.size()) {
            err << "vocabrix-cli: " << args.at(i) << " needs a value\n";
            return std::nullopt;
        }
        return args.at(++i);
    };
    for (qsizetype i = 0; i < args.size(); ++i) {
        const QString a = args.at(i);
        std::optional<QString> v;
        if (a == QLatin1String("--overwrite")) {
            o.overwrite = true;
            continue;
        }
        if (!(v = value(i))) return std::nullopt;
        const QString absolute = QFileInfo(*v).absoluteFilePath();
        if (a == QLatin1String("--doc")) o.doc = absolute;
        else if (a == QLatin1String("--from")) o.from = v;
        else if (a == QLatin1String("--to")) o.to = v;
        else if (a == QLatin1String("--title")) o.title = v;
        else if (a == QLatin1String("--export-to")) o.exportTo = absolute;
        else if (a == QLatin1String("--save")) o.save = absolute;
        else if (a == QLatin1String("--lproj")) o.lproj = v;
        else if (a == QLatin1String("--file")) o.files.append(*v);
        else if (a == QLatin1String("--add")) o.add.append({absolute, std::nullopt});
        else if (a == QLatin1String("--previous") && !o.add.isEmpty() && !o.add.last().second) o.add.last().second = absolute;
        else {
            err << "vocabrix-cli: job: unexpected " << a << " (--previous follows the --add it belongs to)\n";
            return std::nullopt;
        }
    }
    if (o.add.isEmpty() && !o.doc) {
        err << "vocabrix-cli: job needs --add PATH or --doc DOC\n";
        return std::nullopt;
    }
    return o;
}

int runJob(const QStringList &args, QTextStream &out, QTextStream &err)
{
    const auto o = parse(args, err);
    if (!o) return 2;
    std::unique_ptr<MyDocument> doc = o->doc ? open(*o->doc, err) : std::make_unique<MyDocument>();
    if (!doc) return 1;
    PrintingDialogs dialogs(err);
    doc->setDialogs(&dialogs);
    for (const auto &[option, text] : {std::pair{QStringLiteral("--from"), o->from}, std::pair{QStringLiteral("--to"), o->to}}) {
        if (!text) continue;
        const auto tag = language(*text, option, err);
        if (!tag) return 2;
        option == QLatin1String("--from") ? doc->setLocLangFrom(*tag) : doc->setLocLangTo(*tag);
    }
    if (o->title) doc->setTitle(*o->title);
    if (o->lproj) doc->setTargetFolderChoice(*o->lproj);

    int status = 0;
    if (!o->add.isEmpty()) {
        const QList<LocFilePtr> added = doc->addFiles(o->add);
        // The older interface tool lists in the background: its entries first, then the rest.
        if (!doc->waitUntilFilesRead()) err << "vocabrix-cli: the interface tool did not finish reading every file\n";
        const qsizetype first = doc->files().size() - added.size();
        for (qsizetype i = 0; i < added.size(); ++i) printLine(out, fileJson(added.at(i), first + i + 1));
        if (added.isEmpty()) {
            err << "vocabrix-cli: nothing was added (for a bundle: no "
                << doc->baseFolderName().value_or(QStringLiteral("base language")) << " or "
                << doc->baseLanguageAbbreviation().value_or(QString()) << ".lproj or Base.lproj folder among its resources)\n";
            status = 1;
        }
    }
    if (o->exportTo && status == 0) {
        const auto chosen = o->files.isEmpty() ? std::optional(doc->files()) : files(*doc, o->files, err);
        if (!chosen) return 1;
        QString refusal;
        const ExportResult result = doc->makeLocalizedFilesInto(*chosen, *o->exportTo, o->overwrite, &refusal);
        if (result.cancelled) {
            err << "vocabrix-cli: nothing exported: " << refusal;
            if (refusal.contains(QLatin1String("overwrite"))) err << " Add --overwrite to write into it.";
            if (refusal.contains(QLatin1String("several folders"))) err << " Add --lproj NAME to choose.";
            err << "\n";
            status = 1;
        } else {
            printLine(out, exportJson(result, *doc));
            if (!result.failed.isEmpty() || !result.merge.written) status = 1;
        }
    }
    const std::optional<QString> savePath = o->save ? o->save : o->doc;
    if (savePath && !save(*doc, *savePath, err)) return 1;
    return status;
}

CommandRegistration reg({QStringLiteral("job"),
    QStringLiteral("job [--doc DOC] [--from LANG] [--to LANG] --add PATH [--previous PREV]... --export-to DEST ..."),
    QStringLiteral(
        "Add and export in one run. Options:\n"
        "  --doc DOC            start from this document (saved back unless --save says otherwise);\n"
        "                       without it a new document is made\n"
        "  --from LANG --to LANG  the language pair (tag, key, abbreviation or name; default: the\n"
        "                       settings BaseLanguage and TargetLanguage)\n"
        "  --title TEXT         the document's title\n"
        "  --add PATH [--previous PREV]  a file or bundle to add, and its previous localized\n"
        "                       release (repeatable; each --previous belongs to the --add before it)\n"
        "  --export-to DEST     a folder, or a bundle whose <target>.lproj folder receives the files\n"
        "  --file FILE          export only this file (repeatable; position, name or path)\n"
        "  --overwrite          write into a bundle's existing target-language folder\n"
        "  --lproj NAME         the target-language folder to use (previous release and export)\n"
        "                       where a bundle has several for the language (pt_BR.lproj, pt_PT.lproj)\n"
        "  --save DOC           save the document there\n"
        "Prints one JSON line per added file, then one for the export (folder, files written and\n"
        "failed, dictionary path and pair counts). The pairs go into the language pair's dictionary\n"
        "in $XDG_DATA_HOME/Vocabrix, the folder the application uses.\n"
        "Example: vocabrix-cli job --from en --to fr --add Foo.app --previous Foo-1.0.app \\\n"
        "             --export-to Foo.app --overwrite --save Foo.vocabrix"),
    runJob});

}  // namespace
