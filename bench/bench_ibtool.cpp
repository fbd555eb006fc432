// Generate (read a xib, make its ibtool table) and merge (write a localized copy with every
// string replaced) on the largest interface file of the corpus and on a generated 1 MB xib.
// One JSON line per figure, median of the runs.
//
//   ./bench/bench_ibtool [CORPUS_DIR]      (default: $VOCABRIX_CORPUS)

#include "IbtoolTable.h"
#include "XmlInterfaceFile.h"

#include <QCoreApplication>
#include <QDirIterator>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <algorithm>
#include <cstdio>

namespace {

// A Cocoa xib of about `bytes` bytes: windows full of labelled controls, menus, columns.
QByteArray syntheticXib(qsizetype bytes)
{
    QByteArray xml = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                     "<document type=\"com.apple.InterfaceBuilder3.Cocoa.XIB\" version=\"3.0\" toolsVersion=\"20037\">\n"
                     "    <objects>\n";
    int id = 1;
    while (xml.size() < bytes) {
        const QByteArray n = QByteArray::number(id);
        xml += "        <window title=\"Window " + n + "\" id=\"" + n + "\">\n"
               "            <view key=\"contentView\" id=\"v" + n + "\">\n                <subviews>\n";
        for (int i = 0; i < 20; ++i) {
            const QByteArray k = n + '-' + QByteArray::number(i);
            xml += "                    <button toolTip=\"Does " + k + "\" translatesAutoresizingMaskIntoConstraints=\"NO\" id=\"b" + k + "\">\n"
                   "                        <rect key=\"frame\" x=\"18\" y=\"" + QByteArray::number(i * 24) + "\" width=\"120\" height=\"18\"/>\n"
                   "                        <buttonCell key=\"cell\" type=\"check\" title=\"Option " + k + " &amp; more\" bezelStyle=\"regularSquare\" imagePosition=\"left\" state=\"on\" inset=\"2\" id=\"c" + k + "\">\n"
                   "                            <font key=\"font\" metaFont=\"system\"/>\n"
                   "                        </buttonCell>\n"
                   "                    </button>\n"
                   "                    <textField id=\"t" + k + "\">\n"
                   "                        <textFieldCell key=\"cell\" title=\"Label " + k + ":\" placeholderString=\"Type here\" id=\"f" + k + "\"/>\n"
                   "                    </textField>\n";
        }
        xml += "                </subviews>\n            </view>\n        </window>\n";
        ++id;
    }
    xml += "    </objects>\n</document>\n";
    return xml;
}

QString largestCorpusXib(const QString &corpus)
{
    QString best;
    qint64 bestSize = -1;
    QDirIterator it(corpus, {QStringLiteral("*.xib"), QStringLiteral("*.storyboard")}, QDir::Files, QDirIterator::Subdirectories);
    while (it.hasNext()) {
        const QString path = it.next();
        const qint64 size = QFileInfo(path).size();
        if (size > bestSize) {
            bestSize = size;
            best = path;
        }
    }
    return best;
}

template <typename F>
double medianMs(int runs, F &&work)
{
    std::vector<double> times;
    for (int i = 0; i < runs; ++i) {
        QElapsedTimer t;
        t.start();
        work();
        times.push_back(double(t.nsecsElapsed()) / 1e6);
    }
    std::sort(times.begin(), times.end());
    return times[times.size() / 2];
}

void bench(const QString &name, const QByteArray &bytes)
{
    const int runs = 21;
    qsizetype strings = 0;
    const double generate = medianMs(runs, [&] {
        QString error;
        const auto file = interface::openXmlInterfaceFile(bytes, &error);
        const QByteArray table = interface::ibtoolTableBytes(interface::inIbtoolOrder(file->strings()));
        strings = file->strings().size();
        if (table.isEmpty()) std::abort();
    });
    QString error;
    const auto file = interface::openXmlInterfaceFile(bytes, &error);
    const auto *xml = dynamic_cast<const interface::XmlInterfaceFile *>(file.get());
    StringMap translations;
    for (const auto &s : file->strings()) translations.insert(s.key(), QStringLiteral("Übersetzt: ") + s.value);
    const double merge = medianMs(runs, [&] {
        QByteArray out;
        if (!xml->merged(translations, &out, &error)) std::abort();
    });
    std::printf("{\"bench\":\"ibtool_generate\",\"file\":\"%s\",\"bytes\":%lld,\"strings\":%lld,\"ms\":%.3f,\"mb_per_s\":%.1f}\n",
                qPrintable(name), (long long)bytes.size(), (long long)strings, generate, bytes.size() / 1e3 / generate);
    std::printf("{\"bench\":\"ibtool_merge\",\"file\":\"%s\",\"bytes\":%lld,\"strings\":%lld,\"ms\":%.3f,\"mb_per_s\":%.1f}\n",
                qPrintable(name), (long long)bytes.size(), (long long)translations.size(), merge, bytes.size() / 1e3 / merge);
}

}  // namespace

int main(int argc, char *argv[])
{
    QCoreApplication app(argc, argv);
    const QString corpus = argc > 1 ? QString::fromLocal8Bit(argv[1]) : qEnvironmentVariable("VOCABRIX_CORPUS");
    if (!corpus.isEmpty()) {
        const QString largest = largestCorpusXib(corpus);
        QFile f(largest);
        if (!largest.isEmpty() && f.open(QIODevice::ReadOnly)) bench(QDir(corpus).relativeFilePath(largest), f.readAll());
    } else {
        std::fprintf(stderr, "bench_ibtool: no corpus (argument or VOCABRIX_CORPUS); generated file only\n");
    }
    bench(QStringLiteral("generated-1MB.xib"), syntheticXib(1024 * 1024));
    return 0;
}
