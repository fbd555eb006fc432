// One keystroke in a document window's search field over a file of many entries: the search,
// the entry table's reset and the repaint, as the user waits for them; then a typed word committed
// and Check and Next with checked entries hidden.
//   bench_window [--entries N]
// Writes a string table of N pairs (default 100,000), adds it to a document shown offscreen, and
// types a word into the search field a letter at a time. Prints one JSON line per figure.
#include "DocumentWindow.h"
#include "EntryEditor.h"
#include "Handlers.h"
#include "MyDocument.h"
#include "ScriptedDialogs.h"
#include "Settings.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QTemporaryDir>
#include <algorithm>
#include <cstdio>
#include <vector>

namespace {

void report(const char *name, double value, const char *unit)
{
    std::printf("{\"benchmark\":\"%s\",\"value\":%.3f,\"unit\":\"%s\"}\n", name, value, unit);
    std::fflush(stdout);
}

}  // namespace

int main(int argc, char **argv)
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    const QStringList args = app.arguments();
    const qsizetype at = args.indexOf(QStringLiteral("--entries"));
    const int entries = at >= 0 && at + 1 < args.size() ? args.at(at + 1).toInt() : 100000;

    QTemporaryDir dir;
    if (!dir.isValid()) return 1;
    qputenv("XDG_DATA_HOME", QFile::encodeName(dir.filePath(QStringLiteral("data"))));
    Settings::useStore(dir.filePath(QStringLiteral("settings.ini")));
    registerResourceHandlers();

    const QString path = dir.filePath(QStringLiteral("Big.strings"));
    {
        QByteArray table;
        static const char *const words[] = {"Open", "Öffnen", "Fenster schließen", "開く", "Préférences…", "Quit %@"};
        for (int i = 0; i < entries; ++i)
            table += "/* Item " + QByteArray::number(i) + " */\n\"" + words[i % 6] + " " + QByteArray::number(i) + "\" = \"" +
                     words[(i / 6) % 6] + " " + QByteArray::number(i) + "\";\n";
        QFile f(path);
        if (!f.open(QIODevice::WriteOnly) || f.write(table) < 0) return 1;
    }

    auto *window = new DocumentWindow(new MyDocument);
    ScriptedDialogs dialogs;
    window->setDialogs(&dialogs, nullptr);
    window->resize(1000, 700);
    window->show();
    window->document()->addFiles(QList<QPair<QString, OptString>>{{path, std::nullopt}});
    app.processEvents();
    auto *field = window->findChild<QLineEdit *>(QStringLiteral("searchField"));
    if (!field || window->document()->files().size() != 1) {
        std::fprintf(stderr, "the table was not added\n");
        return 1;
    }

    // The first search folds every text once; it is reported on its own.
    QElapsedTimer t;
    t.start();
    field->setText(QStringLiteral("x"));
    app.processEvents();
    report("window_first_search", t.nsecsElapsed() / 1e6, "ms");

    std::vector<double> keystrokes;
    const QString typed = QStringLiteral("fenster 12");
    for (int run = 0; run < 5; ++run) {
        field->clear();
        app.processEvents();
        for (qsizetype n = 1; n <= typed.size(); ++n) {
            t.restart();
            field->setText(typed.left(n));
            app.processEvents();
            keystrokes.push_back(t.nsecsElapsed() / 1e6);
        }
    }
    std::sort(keystrokes.begin(), keystrokes.end());
    report("window_search_keystroke", keystrokes[keystrokes.size() / 2], "ms");
    report("window_search_keystroke_max", keystrokes.back(), "ms");
    // A word typed and committed: written into its entry, and the other entries of its base word
    // looked up for the offer of the same translation.
    field->clear();
    app.processEvents();
    std::vector<double> commits;
    for (int run = 0; run < 7; ++run) {
        window->selectEntryRow(run);
        window->entryEditor()->entryField()->setPlainText(QStringLiteral("Wort %1").arg(run));
        t.restart();
        window->entryEditor()->commit();
        app.processEvents();
        commits.push_back(t.nsecsElapsed() / 1e6);
    }
    std::sort(commits.begin(), commits.end());
    report("window_commit_word", commits[commits.size() / 2], "ms");
    // Of which: the entries of the same base word, for the offer.
    t.restart();
    for (int run = 0; run < 7; ++run) window->document()->sameBaseWordEntries(*window->document()->files().first()->allEntries().at(run));
    report("document_same_base_word", t.nsecsElapsed() / 7e6, "ms");
    // Check and Next with checked entries hidden: the mark, the file table and the next entry (the
    // entry leaves the list a tenth of a second later, from the event loop, not measured here).
    Settings::instance().setValue(SettingsKey::IgnoreLocalizedWords, true);
    app.processEvents();
    std::vector<double> checks;
    for (int run = 0; run < 9; ++run) {
        window->selectEntryRow(run);
        t.restart();
        window->checkLocalized();
        app.processEvents();
        checks.push_back(t.nsecsElapsed() / 1e6);
    }
    std::sort(checks.begin(), checks.end());
    report("window_check_and_next", checks[checks.size() / 2], "ms");
    window->document()->updateChangeCount(MyDocument::ChangeCleared);
    delete window;
    return 0;
}
