// The document's whole job at scale, with the real handlers:
//   bench_document [--files N] [--entries-per-file M] [--dictionary P] [--modern-files K]
// Generates a bundle of N string tables (default 200) of M entries each (default 250: 50,000
// entries), a previous release translating half of every table, and a dictionary of P pairs
// (default 100,000) of which a tenth match base words. Then measures: adding the bundle (the
// previous release and the dictionary pre-fill the entries), saving the document and opening it
// again, and exporting every file with the merge into the dictionary.
// Then the same for a bundle laid out for Base internationalization: K files (default 200), half
// of them Base.lproj interface files of 100 texts whose previous release is a French table of
// the same stem, half English string tables of M entries, the same dictionary; adding, and
// exporting into a copy of the bundle (French tables written, dictionary merged).
// Prints one JSON line per figure. Everything lives in a temporary folder (XDG_DATA_HOME included).
#include "Handlers.h"
#include "MyDocument.h"
#include "ScriptedDialogs.h"
#include "Settings.h"
#include "StringsFileWriter.h"

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QSaveFile>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <cstdio>
#include <sys/resource.h>

namespace {

void figure(const char *name, double value, const char *unit)
{
    std::printf("{\"benchmark\":\"%s\",\"value\":%.3f,\"unit\":\"%s\"}\n", name, value, unit);
    std::fflush(stdout);
}

int option(const QStringList &args, const char *name, int fallback)
{
    const qsizetype at = args.indexOf(QLatin1String(name));
    return at >= 0 && at + 1 < args.size() ? args.at(at + 1).toInt() : fallback;
}

QString baseWord(int file, int entry)
{
    return QStringLiteral("Base word %1 of table %2 \u2014 \u00E9t\u00E9").arg(entry).arg(file);
}

bool writeTable(const QString &path, const QString &text)
{
    QSaveFile f(path);
    return f.open(QIODevice::WriteOnly) && f.write(text.toUtf8()) >= 0 && f.commit();
}

// Processor time of this process and of the interface tools it ran, in ms: the wall-clock
// figures depend on what else the machine is doing, these much less.
double cpuMs()
{
    double ms = 0;
    for (int who : {RUSAGE_SELF, RUSAGE_CHILDREN}) {
        rusage usage{};
        getrusage(who, &usage);
        ms += (usage.ru_utime.tv_sec + usage.ru_stime.tv_sec) * 1e3 + (usage.ru_utime.tv_usec + usage.ru_stime.tv_usec) / 1e3;
    }
    return ms;
}

QString xib(int file, int texts)
{
    QString text = QStringLiteral("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                                  "<document type=\"com.apple.InterfaceBuilder3.Cocoa.XIB\" version=\"3.0\">\n"
                                  "<objects>\n<window title=\"Window %1\" id=\"w%1\">\n"
                                  "<view key=\"contentView\" id=\"v%1\">\n<subviews>\n").arg(file);
    for (int t = 0; t < texts; ++t)
        text += QStringLiteral("<textField id=\"f%1-%2\"><textFieldCell key=\"cell\" title=\"%3\" id=\"c%1-%2\"/>"
                               "</textField>\n")
                    .arg(file).arg(t).arg(baseWord(file, t));
    return text + QStringLiteral("</subviews>\n</view>\n</window>\n</objects>\n</document>\n");
}

// The modern layout: returns non-zero when something went wrong.
int modernBundle(const QTemporaryDir &dir, int files, int perFile, ScriptedDialogs &dialogs)
{
    const int texts = 100;
    const QString resources = dir.filePath(QStringLiteral("Modern.app/Contents/Resources"));
    const QString old = dir.filePath(QStringLiteral("Modern-old.app/Contents/Resources/fr.lproj"));
    for (const QString &f : {resources + QLatin1String("/Base.lproj"), resources + QLatin1String("/en.lproj"), old})
        QDir().mkpath(f);
    const int interfaces = files / 2;
    for (int f = 0; f < files; ++f) {
        QString base, previous;
        QString name;
        if (f < interfaces) {
            base = xib(f, texts);
            name = QStringLiteral("Base.lproj/Window%1.xib").arg(f, 3, 10, QLatin1Char('0'));
            for (int t = 0; t < texts; t += 2)
                previous += QStringLiteral("\"c%1-%2.title\" = \"Mot %2 de la fen\u00EAtre %1\";\n").arg(f).arg(t);
            if (!writeTable(old + QStringLiteral("/Window%1.strings").arg(f, 3, 10, QLatin1Char('0')), previous)) return 1;
        } else {
            for (int e = 0; e < perFile; ++e) {
                const QString key = QStringLiteral("key.%1.%2").arg(f).arg(e);
                base += QStringLiteral("\"%1\" = \"%2\";\n").arg(key, baseWord(f, e));
                if (e % 2 == 0) previous += QStringLiteral("\"%1\" = \"Mot %2 de la table %3\";\n").arg(key).arg(e).arg(f);
            }
            name = QStringLiteral("en.lproj/Table%1.strings").arg(f, 3, 10, QLatin1Char('0'));
            if (!writeTable(old + u'/' + QFileInfo(name).fileName(), previous)) return 1;
        }
        if (!writeTable(resources + u'/' + name, base)) return 1;
    }

    MyDocument doc;
    doc.setDialogs(&dialogs);
    doc.setLocLangFrom(1);  // English
    doc.setLocLangTo(2);    // French
    QElapsedTimer timer;
    timer.start();
    double cpu = cpuMs();
    doc.addFiles(QList<QPair<QString, OptString>>{
        {dir.filePath(QStringLiteral("Modern.app")), dir.filePath(QStringLiteral("Modern-old.app"))}});
    const double addMs = timer.nsecsElapsed() / 1e6;
    const double addCpu = cpuMs() - cpu;
    qsizetype entries = 0, checked = 0;
    for (const LocFilePtr &f : doc.files()) entries += f->allEntries().size(), checked += f->checkedCount();
    if (doc.files().size() != files || entries != qsizetype(interfaces) * (texts + 1) + qsizetype(files - interfaces) * perFile) {
        std::fprintf(stderr, "modern: added %lld files, %lld entries\n", qlonglong(doc.files().size()), qlonglong(entries));
        return 1;
    }
    figure("document_modern_add_bundle", addMs, "ms");
    figure("document_modern_add_bundle_cpu", addCpu, "ms");
    figure("document_modern_add_bundle_entries", double(entries), "entries");
    figure("document_modern_add_bundle_checked_entries", double(checked), "entries");

    const QString out = dir.filePath(QStringLiteral("ModernOut.app/Contents/Resources/Base.lproj"));
    QDir().mkpath(out);
    QString refusal;
    timer.restart();
    cpu = cpuMs();
    const ExportResult result = doc.makeLocalizedFilesInto(doc.files(), dir.filePath(QStringLiteral("ModernOut.app")), false, &refusal);
    const double exportMs = timer.nsecsElapsed() / 1e6;
    const double exportCpu = cpuMs() - cpu;
    if (result.cancelled || result.written.size() != files || !result.merge.written) {
        std::fprintf(stderr, "modern export: %s %lld written\n", qPrintable(refusal), qlonglong(result.written.size()));
        return 1;
    }
    figure("document_modern_export_with_merge", exportMs, "ms");
    figure("document_modern_export_with_merge_cpu", exportCpu, "ms");
    return 0;
}

}  // namespace

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    const QStringList args = app.arguments();
    const int files = option(args, "--files", 200);
    const int perFile = option(args, "--entries-per-file", 250);
    const int dictionaryPairs = option(args, "--dictionary", 100000);

    QTemporaryDir dir;
    if (!dir.isValid()) return 1;
    qputenv("XDG_DATA_HOME", QFile::encodeName(dir.filePath(QStringLiteral("data"))));
    Settings::useStore(dir.filePath(QStringLiteral("settings.ini")));
    registerResourceHandlers();

    const QString base = dir.filePath(QStringLiteral("Big.app/Contents/Resources/English.lproj"));
    const QString previous = dir.filePath(QStringLiteral("Big-old.app/Contents/Resources/French.lproj"));
    QDir().mkpath(base);
    QDir().mkpath(previous);
    for (int f = 0; f < files; ++f) {
        QString table, old;
        for (int e = 0; e < perFile; ++e) {
            const QString key = QStringLiteral("key.%1.%2").arg(f).arg(e);
            table += QStringLiteral("/* comment %1 */\n\"%2\" = \"%3\";\n").arg(e).arg(key, baseWord(f, e));
            if (e % 2 == 0) old += QStringLiteral("\"%1\" = \"Mot %2 de la table %3\";\n").arg(key).arg(e).arg(f);
        }
        const QString name = QStringLiteral("Table%1.strings").arg(f, 3, 10, QLatin1Char('0'));
        if (!writeTable(base + u'/' + name, table) || !writeTable(previous + u'/' + name, old)) return 1;
    }

    MyDocument doc;
    StringMap dictionary;
    dictionary.reserve(dictionaryPairs);
    for (int i = 0; i < dictionaryPairs; ++i) {
        // Every tenth pair translates a base word of the bundle (an odd entry, which the previous
        // release leaves untranslated).
        const QString key = i % 10 == 0 ? baseWord((i / 10) % files, ((i / 10) / files * 2 + 1) % perFile)
                                        : QStringLiteral("Dictionary word %1").arg(i);
        dictionary.insert(key, QStringLiteral("Mot du dictionnaire %1").arg(i));
    }
    QDir().mkpath(QFileInfo(doc.dictionaryPath()).absolutePath());
    if (!writeToStringsFile(dictionary, doc.dictionaryPath(), true)) return 1;

    ScriptedDialogs dialogs;
    doc.setDialogs(&dialogs);
    dialogs.queuePanelAnswer(dir.filePath(QStringLiteral("Big-old.app")));
    QElapsedTimer timer;
    timer.start();
    doc.addFiles(QStringList{dir.filePath(QStringLiteral("Big.app"))});
    const double addMs = timer.nsecsElapsed() / 1e6;
    qsizetype entries = 0, checked = 0;
    for (const LocFilePtr &f : doc.files()) entries += f->allEntries().size(), checked += f->checkedCount();
    if (doc.files().size() != files || entries != qsizetype(files) * perFile) {
        std::fprintf(stderr, "added %lld files, %lld entries\n", qlonglong(doc.files().size()), qlonglong(entries));
        return 1;
    }
    figure("document_add_bundle", addMs, "ms");
    figure("document_add_bundle_entries_per_s", entries / (addMs / 1000), "entries/s");
    figure("document_add_bundle_checked_entries", double(checked), "entries");

    const QString docPath = dir.filePath(QStringLiteral("Big.vocabrix"));
    timer.restart();
    if (!doc.writeToFile(docPath)) return 1;
    figure("document_save", timer.nsecsElapsed() / 1e6, "ms");
    figure("document_file_size", QFileInfo(docPath).size() / 1024.0 / 1024.0, "MiB");
    timer.restart();
    MyDocument reopened;
    if (!reopened.readFromFile(docPath) || reopened.files().size() != files) return 1;
    figure("document_open", timer.nsecsElapsed() / 1e6, "ms");

    const QString out = dir.filePath(QStringLiteral("out"));
    QDir().mkpath(out);
    dialogs.queuePanelAnswer(out);
    timer.restart();
    const ExportResult result = doc.makeAllLocalizedFilesAction();
    const double exportMs = timer.nsecsElapsed() / 1e6;
    if (result.written.size() != files || !result.merge.written) return 1;
    figure("document_export_with_merge", exportMs, "ms");
    figure("document_export_dictionary_pairs_after", double(result.merge.pairCount), "pairs");

    // The dictionary back to its first size, so the modern case merges into the same 100,000 pairs.
    if (!writeToStringsFile(dictionary, doc.dictionaryPath(), true)) return 1;
    return modernBundle(dir, option(args, "--modern-files", 200), perFile, dialogs);
}
