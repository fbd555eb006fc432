// The two table handlers at scale:
//   bench_handlers [--lines N] [--dictionary P] [--runs R]
// A base string table of N pair lines (default 10,000, with comments and blank lines between
// them) read into a LocFile with a dictionary file of P pairs (default 100,000, a tenth of the
// base words among them) and a previous version translating every third key; then its export.
// The same words as a property list (a dictionary of N strings) through the property-list
// handler. Each figure is the best of R runs (default 3). Prints one JSON line per figure.
#include "Handlers.h"
#include "LocFile.h"
#include "PropertyList.h"
#include "Settings.h"

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QSaveFile>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <cstdio>
#include <functional>

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

bool writeFile(const QString &path, const QByteArray &bytes)
{
    QSaveFile f(path);
    return f.open(QIODevice::WriteOnly) && f.write(bytes) >= 0 && f.commit();
}

QString word(int i)
{
    return QStringLiteral("Open the file number %1 \u2014 \u00E9t\u00E9").arg(i);
}

double bestOf(int runs, const std::function<void()> &work)
{
    double best = 1e300;
    for (int r = 0; r < runs; ++r) {
        QElapsedTimer timer;
        timer.start();
        work();
        best = std::min(best, timer.nsecsElapsed() / 1e6);
    }
    return best;
}

}  // namespace

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    const QStringList args = app.arguments();
    const int lines = option(args, "--lines", 10000);
    const int pairs = option(args, "--dictionary", 100000);
    const int runs = std::max(1, option(args, "--runs", 3));

    QTemporaryDir dir;
    if (!dir.isValid()) return 1;
    QStandardPaths::setTestModeEnabled(true);
    Settings::useStore(dir.filePath(QStringLiteral("settings.ini")));
    registerResourceHandlers();

    QString base, previous, dictionary;
    plist::Dictionary list;
    for (int i = 0; i < lines; ++i) {
        base += QStringLiteral("/* Comment of key %1 */\n\"Key%1\" = \"%2\";\n\n").arg(i).arg(word(i));
        if (i % 3 == 0) previous += QStringLiteral("\"Key%1\" = \"Vorher %1\";\n").arg(i);
        list.append({QStringLiteral("Key%1").arg(i), plist::Value::fromString(word(i))});
    }
    for (int i = 0; i < pairs; ++i) {
        // Every tenth pair names a base word; the rest only make the dictionary big.
        const QString key = i % 10 == 0 && i / 10 < lines ? word(i / 10) : QStringLiteral("Unrelated word %1").arg(i);
        dictionary += QStringLiteral("\"%1\" = \"W\u00F6rterbuch %2\";\n").arg(key).arg(i);
    }
    const QString basePath = dir.filePath(QStringLiteral("en.lproj/Localizable.strings"));
    const QString prevPath = dir.filePath(QStringLiteral("de-old.lproj/Localizable.strings"));
    const QString dictPath = dir.filePath(QStringLiteral("English-German.strings"));
    const QString plistPath = dir.filePath(QStringLiteral("en.lproj/Strings.plist"));
    const QString outFolder = dir.filePath(QStringLiteral("de.lproj"));
    QDir().mkpath(dir.filePath(QStringLiteral("en.lproj")));
    QDir().mkpath(dir.filePath(QStringLiteral("de-old.lproj")));
    QDir().mkpath(outFolder);
    if (!writeFile(basePath, base.toUtf8()) || !writeFile(prevPath, previous.toUtf8())
        || !writeFile(dictPath, dictionary.toUtf8())
        || !plist::writeXmlFile(plistPath, plist::Value::fromDictionary(list)))
        return 1;

    LocFilePtr file;
    const double read = bestOf(runs, [&] { file = LocFile::initWithPath(basePath, OptString(dictPath), OptString(prevPath)); });
    if (!file || file->allEntries().size() != lines) {
        std::fprintf(stderr, "bench_handlers: %lld entries of %d lines\n", file ? (long long)file->allEntries().size() : -1LL, lines);
        return 2;
    }
    figure("strings_read_with_dictionary_and_previous", read, "ms");
    figure("strings_entries_checked", double(file->checkedCount()), "entries");
    StringMap returned;
    figure("strings_export", bestOf(runs, [&] { returned = file->makeLocalizedFileAt(outFolder); }), "ms");
    if (returned.size() != lines) return 3;

    const double plainRead = bestOf(runs, [&] { file = LocFile::initWithPath(basePath, OptString(), OptString()); });
    figure("strings_read_alone", plainRead, "ms");

    const double plistRead = bestOf(runs, [&] { file = LocFile::initWithPath(plistPath, OptString(dictPath), OptString()); });
    if (!file || file->allEntries().size() != lines) return 4;
    figure("plist_read_with_dictionary", plistRead, "ms");
    figure("plist_export", bestOf(runs, [&] { file->makeLocalizedFileAt(outFolder); }), "ms");
    return 0;
}
