// The dictionary on a 100,000-pair file: the browser's load, adding 100,000 pairs to 100,000
// rows, one search keystroke, one lookup-panel filter, the similar keys of one entry and one
// completion. Medians of several runs, one JSON line per figure, in the thread's CPU time: the
// machines that run it are shared, and waiting for a core is no cost of the code.
//   bench_dictionary [--pairs N]
#include "DictController.h"
#include "DictSearch.h"
#include "DictWindowController.h"
#include "StringsFileWriter.h"

#include <QCoreApplication>
#include <QRandomGenerator>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <algorithm>
#include <ctime>
#include <cstdio>
#include <functional>
#include <vector>

namespace {

// Interface-like phrases in English and their French, with accents and a share of CJK.
StringMap generatePairs(int pairs, quint32 seed)
{
    static const char *const en[] = {"Open", "Close Window", "Save As", "Preferences", "Show Toolbar", "Zoom In",
                                     "Print Document", "Résumé", "Quit", "Export Selected Files", "Check Spelling", "編集"};
    static const char *const fr[] = {"Ouvrir", "Fermer la fenêtre", "Enregistrer sous", "Préférences", "Afficher la barre",
                                     "Agrandir", "Imprimer le document", "CV", "Quitter", "Exporter les fichiers choisis",
                                     "Vérifier l’orthographe", "編集する"};
    QRandomGenerator rng(seed);
    StringMap map;
    map.reserve(pairs);
    for (int i = 0; i < pairs; ++i) {
        const int w = int(rng.bounded(12));
        const QString n = QString::number(i);
        map.insert(QString::fromUtf8(en[w]) + u' ' + n, QString::fromUtf8(fr[w]) + u' ' + n);
    }
    return map;
}

void report(const char *name, double value, const char *unit)
{
    std::printf("{\"benchmark\":\"%s\",\"value\":%.3f,\"unit\":\"%s\"}\n", name, value, unit);
    std::fflush(stdout);
}

double threadCpuMs()
{
    timespec ts{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &ts);
    return ts.tv_sec * 1e3 + ts.tv_nsec / 1e6;
}

// Median milliseconds of `runs` runs; `prepare` runs untimed before each.
double medianMs(int runs, const std::function<void()> &work, const std::function<void()> &prepare = {})
{
    std::vector<double> times;
    for (int i = 0; i < runs; ++i) {
        if (prepare) prepare();
        const double start = threadCpuMs();
        work();
        times.push_back(threadCpuMs() - start);
    }
    std::sort(times.begin(), times.end());
    return times[times.size() / 2];
}

}  // namespace

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    int pairs = 100000;
    const QStringList args = app.arguments();
    if (const qsizetype at = args.indexOf(QStringLiteral("--pairs")); at > 0 && at + 1 < args.size()) pairs = args.at(at + 1).toInt();
    QTemporaryDir dir;
    qputenv("XDG_DATA_HOME", QFile::encodeName(dir.filePath(QStringLiteral("data"))));
    const QString path = dir.filePath(QStringLiteral("English-French.strings"));
    if (!writeToStringsFile(generatePairs(pairs, 1), path, true)) return 1;
    const StringMap other = generatePairs(pairs, 2);  // another 100,000 pairs, some equal to the file's

    std::unique_ptr<DictWindowController> browser;
    report("dict_browser_load", medianMs(5, [&] { browser = std::make_unique<DictWindowController>(path); },
                                         [&] { browser.reset(); }),
           "ms");
    report("dict_browser_rows", double(browser->entries().size()), "rows");
    const DictRows loaded = browser->entries();
    report("dict_add_dictionary_100k_into_100k", medianMs(5, [&] { browser->addDictionary(other); },
                                                          [&] { browser->setEntriesArray(loaded); }),
           "ms");
    report("dict_rows_after_add", double(browser->entries().size()), "rows");
    // Half the size: the import's cost per pair should stay the same.
    StringMap half;
    for (int i = 0; i < other.size() / 2; ++i) half.insert(other.at(i).first, other.at(i).second);
    report("dict_add_dictionary_50k_into_100k", medianMs(5, [&] { browser->addDictionary(half); },
                                                         [&] { browser->setEntriesArray(loaded); }),
           "ms");
    browser->setEntriesArray(loaded);
    browser->search(QStringLiteral("x"));  // the first search folds every row once
    auto clear = [&] { browser->search(QString()); };
    // The first letter looks at every row; each further letter only at the rows still shown.
    report("dict_search_first_keystroke", medianMs(9, [&] { browser->search(QStringLiteral("f")); }, clear), "ms");
    report("dict_search_next_keystroke", medianMs(9, [&] { browser->search(QStringLiteral("ferm")); },
                                                  [&] { clear(); browser->search(QStringLiteral("fer")); }),
           "ms");
    report("dict_search_accented_whole_text", medianMs(9, [&] { browser->search(QStringLiteral("PR\u00c9F\u00c9")); }, clear),
           "ms");

    DictController panel;
    report("dict_panel_load", medianMs(5, [&] { panel.setPath(path); }), "ms");
    panel.lookup(QStringLiteral("y"));
    // A selection or the entry's whole text: a new text, every row looked at.
    report("dict_panel_filter", medianMs(9, [&] { panel.lookup(QStringLiteral("Enregistrer sous 4")); },
                                         [&] { panel.lookup(QString()); }),
           "ms");
    QList<DictSearch::FuzzyMatch> matches;
    report("dict_fuzzy_matches", medianMs(9, [&] { matches = panel.fuzzyMatches(QStringLiteral("Close Windows 4242")); }), "ms");
    report("dict_fuzzy_found", double(matches.size()), "matches");
    QStringList values;
    report("dict_completion", medianMs(9, [&] { values = panel.valuesStartFromString(QStringLiteral("Fermer la")); }), "ms");
    report("dict_completion_found", double(values.size()), "values");
    report("dict_browser_save", medianMs(3, [&] { browser->saveDictionary(); }, [&] { browser->setEdited(true); }), "ms");
    browser.reset();
    return 0;
}
