// Compiled nibs: reading (container, object graph, strings) and merging (every string
// translated, the copy written) the largest compiled nib of the corpus, in each container, and a
// generated nib of N controls (default 5,000) to show how it grows:
//   bench_nib [--controls N] [--corpus DIR]   (default: $VOCABRIX_CORPUS, else ../shared/corpus)
// Prints one JSON line per figure; times are per operation, the median of repeated runs.
#include "NibBuilder.h"
#include "nib/CompiledNib.h"
#include "nibtool/NibtoolListing.h"

#include <QCoreApplication>
#include <QDir>
#include <QDirIterator>
#include <QElapsedTimer>
#include <QFile>
#include <QTemporaryDir>
#include <algorithm>
#include <cstdio>
#include <functional>

using namespace interface;

namespace {

void figure(const QString &name, double value, const char *unit, const QString &subject)
{
    std::printf("{\"benchmark\":\"%s\",\"value\":%.3f,\"unit\":\"%s\",\"subject\":\"%s\"}\n", qPrintable(name), value,
                unit, qPrintable(subject));
    std::fflush(stdout);
}

// Median milliseconds of `op` over enough runs to take about half a second (at least 5).
double medianMs(const std::function<void()> &op)
{
    QList<double> times;
    QElapsedTimer total;
    total.start();
    while (times.size() < 5 || (total.elapsed() < 500 && times.size() < 10000)) {
        QElapsedTimer t;
        t.start();
        op();
        times.append(double(t.nsecsElapsed()) / 1e6);
    }
    std::sort(times.begin(), times.end());
    return times[times.size() / 2];
}

void measure(const QString &label, const QString &path, const QString &outDir)
{
    QString error;
    const auto nib = nib::CompiledNib::open(path, &error);
    if (!nib) {
        std::fprintf(stderr, "%s: %s\n", qPrintable(path), qPrintable(error));
        return;
    }
    StringMap translations;
    for (const LocalizableString &s : nib->strings()) translations.insert(s.key(), s.value + QStringLiteral(" (fr)"));
    const QString subject = QStringLiteral("%1, %2 bytes, %3 objects, %4 strings")
                                .arg(QFileInfo(path).fileName())
                                .arg(QFileInfo(path).size())
                                .arg(nib->graph().objectCount())
                                .arg(nib->strings().size());
    figure(label + QStringLiteral("_read"), medianMs([&] {
               const auto again = nib::CompiledNib::open(path, nullptr);
               if (!again || again->strings().isEmpty()) std::abort();
           }), "ms", subject);
    const QString out = QDir(outDir).filePath(label + QStringLiteral(".nib"));
    figure(label + QStringLiteral("_merge"), medianMs([&] {
               if (!nib->write(out, translations, nullptr)) std::abort();
           }), "ms", subject);
    figure(label + QStringLiteral("_listing"), medianMs([&] {
               if (nibtool::listingText(nibtool::listingBlocks(*nib)).isEmpty()) std::abort();
           }), "ms", subject);
}

// The largest compiled nib file of each container under the corpus's nibs/ folder.
QHash<QString, QString> largestCorpusNibs(const QString &corpus)
{
    QHash<QString, QString> largest;
    QDirIterator it(corpus + QStringLiteral("/nibs"), {QStringLiteral("*.nib")}, QDir::Files, QDirIterator::Subdirectories);
    while (it.hasNext()) {
        const QString path = it.next();
        QFile f(path);
        if (!f.open(QIODevice::ReadOnly)) continue;
        const QByteArray head = f.read(10);
        const QString kind = head.startsWith("NIBArchive") ? QStringLiteral("nibarchive")
                             : head.startsWith("bplist00")  ? QStringLiteral("keyed")
                                                            : QString();
        if (kind.isEmpty()) continue;
        if (!largest.contains(kind) || QFileInfo(path).size() > QFileInfo(largest[kind]).size()) largest[kind] = path;
    }
    return largest;
}

// A window of `controls` buttons, every fourth title shared with another button.
NibFixtures::Builder generated(int controls)
{
    NibFixtures::Builder b;
    const int window = b.add(QStringLiteral("NSWindowTemplate"),
                             {{QStringLiteral("NSWindowTitle"), NibFixtures::Ref{b.string(QStringLiteral("Generated"))}}});
    QList<QPair<int, qint64>> oids{{window, 1}};
    QList<QPair<int, int>> parents;
    int shared = 0;
    for (int i = 0; i < controls; ++i) {
        const int text = i % 4 == 1 ? shared : b.string(QStringLiteral("Button number %1 \u2014 \u00E9t\u00E9").arg(i));
        if (i % 4 == 0) shared = text;
        const int cell = b.add(QStringLiteral("NSButtonCell"), {{QStringLiteral("NSContents"), NibFixtures::Ref{text}}});
        const int button = b.add(QStringLiteral("NSButton"), {{QStringLiteral("NSCell"), NibFixtures::Ref{cell}}});
        oids.append({button, 2 + 2 * i});
        oids.append({cell, 3 + 2 * i});
        parents.append({button, window});
    }
    b.objectData(window, oids, parents);
    return b;
}

}  // namespace

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    const QStringList args = app.arguments();
    const qsizetype c = args.indexOf(QStringLiteral("--controls"));
    const int controls = c >= 0 && c + 1 < args.size() ? args[c + 1].toInt() : 5000;
    const qsizetype d = args.indexOf(QStringLiteral("--corpus"));
    QString corpus = d >= 0 && d + 1 < args.size() ? args[d + 1] : qEnvironmentVariable("VOCABRIX_CORPUS");
    // Beside the repository, as the build folders are laid out (repository/build-x/bench).
    if (corpus.isEmpty()) corpus = QDir(app.applicationDirPath()).filePath(QStringLiteral("../../../shared/corpus"));

    QTemporaryDir dir;
    if (!dir.isValid()) return 1;
    const auto largest = largestCorpusNibs(corpus);
    if (largest.isEmpty()) std::fprintf(stderr, "no compiled nib under %s/nibs; corpus figures skipped\n", qPrintable(corpus));
    for (const QString &kind : {QStringLiteral("nibarchive"), QStringLiteral("keyed")})
        if (largest.contains(kind)) measure(QStringLiteral("corpus_largest_") + kind, largest[kind], dir.path());

    const NibFixtures::Builder big = generated(controls);
    for (const auto &[kind, bytes] : {std::pair{QStringLiteral("nibarchive"), big.toNibArchive()},
                                      std::pair{QStringLiteral("keyed"), big.toKeyedArchive()}}) {
        const QString path = dir.filePath(QStringLiteral("generated-%1.nib").arg(kind));
        QFile f(path);
        if (!f.open(QIODevice::WriteOnly) || f.write(bytes) != bytes.size()) return 1;
        f.close();
        measure(QStringLiteral("generated_%1_controls_").arg(controls) + kind, path, dir.path());
    }
    return 0;
}
