// Dictionary files and the browser's and lookup panel's model. The cases are tables of UTF-8
// literals.
#undef QT_NO_CAST_FROM_ASCII
#include "CaseData.h"
#include "DictController.h"
#include "DictSearch.h"
#include "DictWindowController.h"
#include "DictionaryFiles.h"
#include "DictionaryMerge.h"
#include "Glossary.h"
#include "Handlers.h"
#include "NotificationCenter.h"
#include "StringsFileWriter.h"
#include "StringsTable.h"
#include "Tmx.h"

#include <QSignalSpy>
#include <QUndoStack>

using Rows = QList<QPair<QString, QString>>;

namespace {

StringMap mapOf(const Rows &rows)
{
    StringMap m;
    for (const auto &[k, v] : rows) m.insert(k, v);
    return m;
}

Rows rowsOf(const DictRows &rows)
{
    Rows out;
    for (const DictEntryPtr &r : rows) out.append({StringUtility::wordOrEmpty(r->key()), StringUtility::wordOrEmpty(r->value())});
    return out;
}

// Pairs as the case tables spell them: key=value, "|" between.
template <typename Pairs>
QString joined(const Pairs &pairs)
{
    QStringList list;
    for (const auto &p : pairs) list.append(p.key + u'=' + p.value);
    return list.join(u'|');
}

}  // namespace

class TestDictionary : public QObject {
    Q_OBJECT

private slots:
    void initTestCase() { registerResourceHandlers(); }
    void init() { m_box = std::make_unique<TestSupport::Sandbox>(); }
    void folderAndFileNames()
    {
        const QString folder = DictionaryFiles::dictionaryFolder();
        QCOMPARE(folder, path("data/Vocabrix"));
        QVERIFY(QFileInfo(folder).isDir());
        QCOMPARE(applicationSupportPathForName("Vocabrix"), folder);
        QVERIFY(folderPathForFolderType("pref").isEmpty());
        for (const auto &[base, target] : Rows{{"English", "French"}, {"French", "French"}, {"zh_CN", "pt_BR"}}) {
            const QString name = DictionaryFiles::fileName(base, target);
            QCOMPARE(name, base + u'-' + target + QLatin1String(".strings"));
            QCOMPARE(DictionaryFiles::languageKeysFromFileName(name), std::optional(qMakePair(base, target)));
            QVERIFY(!DictionaryFiles::languageKeysFromFileName(name + QLatin1String(".unreadable-1")));
        }
        QVERIFY(!DictionaryFiles::languageKeysFromFileName("English.strings"));
    }
    void writerRoundTrip_data() { TestSupport::addTableRows("dictionary", "round-trip.tsv", {"key", "value"}); }
    void writerRoundTrip()
    {
        QFETCH(QString, key);
        QFETCH(QString, value);
        StringMap map;
        map.insert(QString("first"), QString("premier"));
        map.insert(key, value);
        map.insert(QString("last"), QString("dernier"));
        const QString file = path(QString("round.strings"));
        QString error;
        QVERIFY2(writeToStringsFile(map, file, true, &error), qPrintable(error));
        StringsTable::Error readError;
        const auto read = dictionaryWithContentsOfFile(file, &readError);
        QVERIFY2(read, qPrintable(readError.message));
        QCOMPARE(read->size(), 3);
        QCOMPARE(read->value(key), value);
        QCOMPARE(read->at(1).first, key);
    }
    void firstMergeCreatesFile()
    {
        const QString file = QDir(DictionaryFiles::dictionaryFolder()).filePath(DictionaryFiles::fileName(
            QString("English"), QString("French")));
        QFile::remove(file);
        const MergeResult r = mergeIntoDictionary(file, mapOf({{"\xC3\xA9t\xC3\xA9", "summer"}, {"Say \"hi\"", "Dis \"salut\""}, {"two\nlines", "deux\nlignes"}}), nullptr);
        QVERIFY(r.written);
        QVERIFY(r.message.isEmpty());
        QCOMPARE(r.pairCount, 3);
        // In the given order, quotes escaped, line feeds as they are, no byte-order mark.
        QCOMPARE(TestSupport::readFile(file), QByteArray("\"\xC3\xA9t\xC3\xA9\" = \"summer\";\n"
                                                         "\"Say \\\"hi\\\"\" = \"Dis \\\"salut\\\"\";\n"
                                                         "\"two\nlines\" = \"deux\nlignes\";\n"));
    }
    void mergeReplacesAndKeeps()
    {
        const QString file = path(QString("English-German.strings"));
        TestSupport::writeFile(file, "\"Open\" = \"Offen\";\n\"Quit\" = \"Beenden\";\n");
        const MergeResult r = mergeIntoDictionary(file, mapOf({{"Open", "\xC3\x96""ffnen"}, {"Save", "Sichern"}}), nullptr);
        QVERIFY(r.written);
        const auto read = dictionaryWithContentsOfFile(file);
        QVERIFY(read);
        QCOMPARE(*read, mapOf({{"Open", "\xC3\x96""ffnen"}, {"Quit", "Beenden"}, {"Save", "Sichern"}}));
        // The word replaced keeps its line; no second "Open" line.
        QCOMPARE(TestSupport::readFile(file).count("\"Open\""), 1);
    }
    void unreadableFileIsKeptAside_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::newRow("unclosed quote") << QByteArray("\"Open\" = \"Ouvrir\";\n\"Close\" = \"Fer");
        QTest::newRow("word ending in a backslash, old writer") << QByteArray("\"C:\\\" = \"D:\\\";\n");
        QTest::newRow("not UTF-8 text") << QByteArray("\"a\" = \"\xC3\x28\";\n");
        QTest::newRow("binary junk") << QByteArray("\x01\x02 = = ;;", 9);
    }
    void unreadableFileIsKeptAside()
    {
        QFETCH(QByteArray, bytes);
        QTemporaryDir dir;
        const QString file = dir.filePath(QString("English-French.strings"));
        TestSupport::writeFile(file, bytes);
        QVERIFY(!dictionaryWithContentsOfFile(file));
        const MergeResult r = mergeIntoDictionary(file, mapOf({{"Open", "Ouvrir"}}), nullptr);
        QVERIFY(r.written);
        QVERIFY(!r.keptAsidePath.isEmpty());
        QCOMPARE(TestSupport::readFile(r.keptAsidePath), bytes);
        QVERIFY2(r.message.contains(QFileInfo(r.keptAsidePath).fileName()), qPrintable(r.message));
        QVERIFY(!r.keptAsidePath.endsWith(QLatin1String(".strings")));
        QCOMPARE(*dictionaryWithContentsOfFile(file), mapOf({{"Open", "Ouvrir"}}));
    }
    void failedWriteIsReported()
    {
        // A path under a plain file can never be written.
        const QString blocker = TestSupport::writeFile(path(QString("blocker")), "x");
        const QString file = blocker + QLatin1String("/English-French.strings");
        QSignalSpy after(&NotificationCenter::instance(), &NotificationCenter::dictExportFileAndAddEntries);
        const MergeResult r = mergeIntoDictionary(file, mapOf({{"Open", "Ouvrir"}}), nullptr);
        QVERIFY(!r.written);
        QVERIFY(r.message.contains(QLatin1String("could not be written")));
        QCOMPARE(after.count(), 1);
    }
    void duplicateRules()
    {
        TestSupport::writeFile(dictPath(QString("English-French")), "\"Open\" = \"Ouvrir\";\n\"Close\" = \"Fermer\";\n");
        DictWindowController browser(dictPath(QString("English-French")));
        QVERIFY(!browser.edited());  // loading is not an edit
        QCOMPARE(browser.originalLanguageShort(), QString("en"));
        QCOMPARE(browser.localizeLanguageShort(), QString("fr"));
        // All present: nothing added, yet the list was replaced.
        QCOMPARE(browser.addDictionary(mapOf({{"Open", "Ouvrir"}})), 0);
        QVERIFY(browser.edited());
        // Same key, other value: both kept, the new one last.
        QCOMPARE(browser.addDictionary(mapOf({{"Open", "Ouvrir\u2026"}, {"Save", "Enregistrer"}})), 2);
        QCOMPARE(rowsOf(browser.entries()), (Rows{{"Open", "Ouvrir"}, {"Close", "Fermer"}, {"Open", "Ouvrir\u2026"}, {"Save", "Enregistrer"}}));
        QVERIFY(browser.sameEntry(DictEntry(QString("Save"), QString("Enregistrer")), browser.entries()));
        QVERIFY(!browser.sameEntry(DictEntry(QString("Save"), QString("enregistrer")), browser.entries()));
        QVERIFY(browser.saveDictionary());
        QCOMPARE(dictionaryWithContentsOfFile(browser.path())->value(QString("Open")), QString("Ouvrir\u2026"));
        // A row edited into a duplicate is still caught by the next addition.
        browser.setRowValue(browser.entries().at(1), QString("Clore"));
        QCOMPARE(browser.addDictionary(mapOf({{"Close", "Clore"}, {"Close", "Fermer"}})), 1);
    }
    void rowNotifiesOnlyOnChange()
    {
        QSignalSpy spy(&NotificationCenter::instance(), &NotificationCenter::dictEntryChanged);
        DictEntry row(QString("a"), QString("b"));
        QString seen;
        connect(&NotificationCenter::instance(), &NotificationCenter::dictEntryChanged, this,
                [&](QObject *r) { seen = StringUtility::wordOrEmpty(static_cast<DictEntry *>(r)->value()); });
        row.setValue(QString("b"));
        QCOMPARE(spy.count(), 0);
        row.setValue(QString("c"));
        QCOMPARE(spy.count(), 1);
        QCOMPARE(seen, QString("b"));  // posted before the store
        DictEntry empty;
        empty.setKey(std::nullopt);
        QCOMPARE(spy.count(), 1);
        empty.setKey(QString());  // a missing text differs from the empty one
        QCOMPARE(spy.count(), 2);
        disconnect(&NotificationCenter::instance(), nullptr, this, nullptr);
    }
    void editedFlagAndSaveOccasions()
    {
        const QString path = dictPath(QString("English-French"));
        TestSupport::writeFile(path, "\"Open\" = \"Ouvrir\";\n");
        {
            DictWindowController browser(path);
            DictWindowController other(dictPath(QString("English-German")));
            // Never changed: no save occasion writes anything.
            NotificationCenter::instance().postDictWillExportFile(this);
            QVERIFY(!QFileInfo::exists(other.path()));
            // Another browser's row does not concern this one.
            other.addRow();
            QVERIFY(!browser.edited());
            browser.setRowValue(browser.entries().first(), QString("Ouvrir"));
            QVERIFY(!browser.edited());
            browser.setRowValue(browser.entries().first(), QString("Ouvrir\u2026"));
            QVERIFY(browser.edited());
            // A document about to merge: every browser saves first.
            NotificationCenter::instance().postDictWillExportFile(this);
            QVERIFY(!browser.edited());
            QCOMPARE(dictionaryWithContentsOfFile(path)->value(QString("Open")), QString("Ouvrir\u2026"));
            QVERIFY(QFileInfo::exists(other.path()));
            // Undo is a change as well; destruction (application end) saves it.
            browser.undoManager()->undo();
            QVERIFY(browser.edited());
        }
        QCOMPARE(dictionaryWithContentsOfFile(path)->value(QString("Open")), QString("Ouvrir"));
    }
    void mergeReachesOpenBrowsers()
    {
        const QString frPath = dictPath(QString("English-French"));
        const QString dePath = dictPath(QString("English-German"));
        TestSupport::writeFile(frPath, "\"Open\" = \"Ouvrir\";\n");
        TestSupport::writeFile(dePath, "\"Open\" = \"\u00d6ffnen\";\n");
        DictWindowController fr(frPath);
        DictWindowController de(dePath);
        fr.addRow()->setKey(QString("Quit"));
        fr.setRowValue(fr.entries().last(), QString("Quitter"));
        // The unsaved row is in the file before the merge reads it, and the merge's pairs come back.
        const MergeResult merged = mergeIntoDictionary(frPath, mapOf({{"Open", "Ouvrir\u2026"}, {"Save", "Enregistrer"}}), this);
        QVERIFY(merged.written);
        QCOMPARE(dictionaryWithContentsOfFile(frPath)->value(QString("Quit")), QString("Quitter"));
        QCOMPARE(rowsOf(fr.entries()),
                 (Rows{{"Open", "Ouvrir"}, {"Quit", "Quitter"}, {"Open", "Ouvrir\u2026"}, {"Save", "Enregistrer"}}));
        QVERIFY(fr.edited());
        // Another pair re-reads its own file: no new row, but it counts as changed.
        QCOMPARE(rowsOf(de.entries()), (Rows{{"Open", "\u00d6ffnen"}}));
        QVERIFY(de.edited());
        QVERIFY(fr.saveDictionary());
        QCOMPARE(dictionaryWithContentsOfFile(frPath)->value(QString("Open")), QString("Ouvrir\u2026"));
    }
    void unreadableFileKeptAsideOnFirstSave()
    {
        const QString path = dictPath(QString("English-French"));
        const QByteArray broken = "\"Open\" = \"Ouvrir\"\n\"no semicolon\n";
        TestSupport::writeFile(path, broken);
        DictWindowController browser(path);
        QVERIFY(browser.entries().isEmpty());
        QVERIFY(browser.loadMessage().contains(QLatin1String("could not be read")));
        browser.addDictionary(mapOf({{"Save", "Enregistrer"}}));
        QString message;
        QVERIFY(browser.saveDictionary(&message));
        QVERIFY(message.contains(QLatin1String("kept as")));
        const QStringList aside = QDir(DictionaryFiles::dictionaryFolder()).entryList({QString("*.unreadable-*")});
        QCOMPARE(aside.size(), 1);
        QCOMPARE(TestSupport::readFile(DictionaryFiles::dictionaryFolder() + u'/' + aside.first()), broken);
        QCOMPARE(dictionaryWithContentsOfFile(path)->size(), 1);
    }
    void glossaryTextRules_data() { TestSupport::addTableRows("dictionary", "glossary.tsv", {"glossary", "rtf", "expected", "skipped"}); }
    void glossaryTextRules()
    {
        QFETCH(QString, glossary);
        QFETCH(QString, rtf);
        QFETCH(QString, expected);
        QFETCH(QString, skipped);
        const QByteArray head = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<Proj><File>";
        const Glossary::Reading reading = Glossary::pairsFromData(head + glossary.toUtf8(), "en", "fr", rtf == "rtf");
        QVERIFY(reading.error.isEmpty());
        QCOMPARE(joined(reading.pairs), expected);
        QCOMPARE(reading.skipped, skipped.toInt());
        QVERIFY(!Glossary::pairsFromData("<TranslationSet>\xff\xfe", "en", "fr", false).error.isEmpty());
    }
    // The two public AppleGlot files: every unit is either a pair or skipped, and the language
    // abbreviations are compared exactly ("fr_CH" is not "fr").
    void corpusGlossaries()
    {
        SKIP_WITHOUT_CORPUS();
        const QString folder = TestSupport::corpusDir() + QLatin1String("/glossaries/ilocalize/8b946a17/");
        const QByteArray apple = TestSupport::readFile(folder + QLatin1String("AZXMLParser/glossary/appleglot.xml"));
        const Glossary::Reading fr = Glossary::pairsFromData(apple, QString("en"), QString("fr"), false);
        QCOMPARE(fr.pairs.size() + fr.skipped, apple.count("<TranslationSet>"));
        QVERIFY2(fr.pairs.size() > fr.skipped * 4, qPrintable(QString::number(fr.pairs.size())));
        for (const Glossary::Pair &p : fr.pairs) QVERIFY2(!p.key.contains(u'<') && !p.value.contains(u'<'), qPrintable(p.key));
        const QByteArray sample = TestSupport::readFile(folder + QLatin1String("SEI/AppleGlot/sample.ad"));
        QCOMPARE(Glossary::pairsFromData(sample, QString("en"), QString("fr"), false).pairs.size(), 0);
        const Glossary::Reading swiss = Glossary::pairsFromData(sample, QString("en"), QString("fr_CH"), false);
        QCOMPARE(swiss.pairs.size(), 3);
        QCOMPARE(swiss.pairs.first().value, QString("Fenetre \"principale\""));
    }
    void tmxReading_data()
    {
        TestSupport::addTableRows("dictionary", "tmx.tsv", {"tmx", "expected", "fails"});
        QTest::newRow("too deep") << QString("<tmx>").repeated(1) + QString("<hi>").repeated(200) << QString() << QString("fails");
    }
    void tmxReading()
    {
        QFETCH(QString, tmx);
        QFETCH(QString, expected);
        QFETCH(QString, fails);
        if (tmx.startsWith("<tu>")) tmx.prepend("<?xml version=\"1.0\"?>\n<tmx version=\"1.4\"><header srclang=\"en-US\"/><body>");
        const Tmx::Reading reading = Tmx::read(tmx.toUtf8(), "en", "fr");
        QCOMPARE(joined(reading.pairs), expected);
        QCOMPARE(!reading.error.isEmpty(), fails == "fails");
    }
    void tmxRoundTripAndImport()
    {
        DictWindowController source(dictPath(QString("English-French")));
        source.addDictionary(mapOf({{"a < b & \"c\"", "a \u2264 b"}, {"Open", "Ouvrir"}, {"Bell\x07", "x"}}));
        source.addDictionary(mapOf({{"Open", "Ouvrir\u2026"}}));
        const QString tmx = path(QString("out.tmx"));
        QString note;
        QVERIFY(source.exportTmx(tmx, &note));
        QVERIFY(note.contains(QLatin1String("left out")));
        DictWindowController target(dictPath(QString("English-German")));
        // Imported into a pair of other languages, nothing matches.
        QCOMPARE(target.importDictionaryFromTmx(tmx), 0);
        DictWindowController again(dictPath(QString("English-French")));
        again.setEntriesArray({});
        QCOMPARE(again.importDictionaryFromTmx(tmx), 3);
        QCOMPARE(rowsOf(again.entries()), (Rows{{"a < b & \"c\"", "a \u2264 b"}, {"Open", "Ouvrir"}, {"Open", "Ouvrir\u2026"}}));
        QCOMPARE(again.importDictionaryFromTmx(tmx), 0);
    }
    void searchFolding_data() { TestSupport::addTableRows("dictionary", "search.tsv", {"text", "keys"}); }
    void searchFolding()
    {
        QFETCH(QString, text);
        QFETCH(QString, keys);
        const StringMap rows = mapOf({{"R\u00e9sum\u00e9", "CV"}, {"File", "Fichier"}, {"Stra\u00dfe", "Street"},
                                      {"\u0399\u03ac\u03bd\u03bd\u03b7\u03c2", "John"}, {"Open", "\u00d6ffnen"}});
        DictWindowController browser(dictPath("English-French"));
        browser.addDictionary(rows);
        browser.search(text);
        QStringList got;
        for (const auto &r : browser.shownEntries()) got.append(*r->key());
        QCOMPARE(got.join(u'|'), keys);
        QCOMPARE(browser.entries().size(), 5);  // only what is shown changes
        DictController panel;
        panel.lookup(text);
        panel.addDictionary(rows);
        QCOMPARE(panel.shownEntries().size(), keys.isEmpty() ? 0 : keys.count(u'|') + 1);  // a look-up made before the load applies
    }
    void completionOrder()
    {
        DictController panel;
        const QString table = write(QString("dict.strings"), "\"a\" = \"Ouvrir\";\n\"b\" = \"Ou\";\n\"c\" = \"ouvert\";\n"
                                                                  "\"d\" = \"Oubli\";\n\"e\" = \"Ouvrir\";\n\"f\" = \"O\u00f9\";\n");
        panel.setPath(table);
        panel.lookup(QString("zzz"));  // completion does not depend on what is shown
        QCOMPARE(panel.valuesStartFromString(QString("Ou")), (QStringList{"Ouvrir", "Oubli", "Ouvrir"}));
        QCOMPARE(panel.valuesStartFromString(QString()).size(), 6);
        panel.setPath(path(QString("missing.strings")));
        QVERIFY(panel.entries().isEmpty());
    }
    void fuzzyMatches()
    {
        DictRows rows;
        DictRowList::appendDistinct(rows, mapOf({{"Open File\u2026", "Ouvrir un fichier\u2026"}, {"Open Files", "Ouvrir des fichiers"},
                                                 {"open file", "ouvrir"}, {"Close File", "Fermer"}, {"Open", "Ouvrir"},
                                                 {"Save File", "Enregistrer"}}));
        const QList<DictSearch::FuzzyMatch> found = DictSearch::fuzzyMatches(rows, QString("Open File"), 3);
        QStringList got;
        for (const auto &m : found) got.append(QString("%1 %2").arg(*m.row->key()).arg(m.percent));
        QCOMPARE(got, (QStringList{"open file 100", "Open File\u2026 90", "Open Files 90"}));
        QCOMPARE(DictSearch::similarity(u"kitten", u"sitting"), 57);
        QCOMPARE(DictSearch::similarity(u"", u"abc"), 0);  // lengths as far apart as they can be
        QVERIFY(DictSearch::fuzzyMatches(rows, QString("Unrelated")).isEmpty());
    }
    void cleanIsOneUndoStep()
    {
        DictWindowController browser(dictPath(QString("English-French")));
        browser.addDictionary(mapOf({{"OK", "OK"}, {"Open", "Ouvrir"}, {"Cancel", "Cancel"}, {"", ""}}));
        QCOMPARE(browser.identityPairCount(), 3);
        const int steps = browser.undoManager()->count();
        QCOMPARE(browser.removeIdentityPairs(), 3);
        QCOMPARE(rowsOf(browser.entries()), (Rows{{"Open", "Ouvrir"}}));
        QCOMPARE(browser.undoManager()->count(), steps + 1);
        browser.undoManager()->undo();
        QCOMPARE(browser.entries().size(), 4);
        QCOMPARE(browser.removeIdentityPairs(), 3);
        QCOMPARE(browser.removeIdentityPairs(), 0);
    }
    void importDispatchAndUndo()
    {
        DictWindowController browser(dictPath(QString("English-French")));
        const QString strings = write(QString("a.strings"), "\"Open\" = \"Ouvrir\";\n");
        const QString glossary = write(QString("g.lg"), "<TranslationSet><base loc=\"en\">Open</base><tran loc=\"fr\">Ouvrir</tran>");
        const QString broken = write(QString("b.strings"), "\"x\" = ");
        const QString other = write(QString("notes.txt"), "x");
        const DictWindowController::ImportReport report = browser.importFiles({strings, strings, glossary, broken, other});
        QCOMPARE(report.added, 2);  // the table once, the glossary without a duplicate check
        QCOMPARE(report.problems.size(), 1);
        QVERIFY(report.problems.first().contains(QLatin1String("b.strings")));
        QCOMPARE(report.ignored, QStringList{other});
        QVERIFY(!browser.edited());  // saved at the end
        QCOMPARE(dictionaryWithContentsOfFile(browser.path())->size(), 1);
        QCOMPARE(browser.undoManager()->count(), 3);
        browser.undoManager()->undo();
        QCOMPARE(browser.entries().size(), 1);
        browser.undoManager()->undo();
        browser.undoManager()->undo();
        QVERIFY(browser.entries().isEmpty());
        browser.undoManager()->redo();
        QCOMPARE(browser.entries().size(), 1);
    }
    void applicationImport()
    {
        // Legacy layout with a backup nib beside the real one, and a modern Base.lproj next to it.
        const QString res = path(QString("App.app/Contents/Resources/"));
        TestSupport::writeFile(res + QLatin1String("English.lproj/Localizable.strings"), "\"k1\" = \"Open\";\n\"k2\" = \"Close\";\n\"k3\" = \"Lonely\";\n");
        TestSupport::writeFile(res + QLatin1String("English.lproj/Only.strings"), "\"k\" = \"Nothing\";\n");
        TestSupport::writeFile(res + QLatin1String("English.lproj/Main~.nib"), "not an interface file");
        TestSupport::writeFile(res + QLatin1String("fr.lproj/Localizable.strings"), "\"k1\" = \"Ouvrir\";\n\"k2\" = \"Close\";\n");
        const QByteArray xib = TestSupport::readFile(QString(VOCABRIX_SOURCE_DIR "/tests/data/dictionary/Panel.xib"));
        QVERIFY(!xib.isEmpty());
        TestSupport::writeFile(res + QLatin1String("Base.lproj/Panel.xib"), xib);
        TestSupport::writeFile(res + QLatin1String("fr.lproj/Panel.strings"), "\"btn-1.title\" = \"Annuler\";\n\"win-1.title\" = \"R\u00e9glages\";\n");
        DictWindowController browser(dictPath(QString("English-French")));
        QString error;
        QCOMPARE(browser.importDictionaryFromApp(path(QString("App.app")), &error), 3);
        QCOMPARE(rowsOf(browser.entries()), (Rows{{"Open", "Ouvrir"}, {"Settings", "R\u00e9glages"}, {"Cancel", "Annuler"}}));
        QCOMPARE(browser.importDictionaryFromApp(path(QString("Nothing.app")), &error), -1);
        QVERIFY(error.contains(QLatin1String("English.lproj")));
    }
    // Under the older interface tool an interface file reads in the background: its pairs arrive
    // with LocFileFinishReadingFile, after the import returned, and mark the browser edited.
    void applicationImportWithOlderTool()
    {
        const QString tool = TestSupport::writeFakeTool(path(QString("fake-nibtool")),
                                   "case \" $* \" in *\" -I \"*|*\" -d \"*)\n"
                                   "printf '/* NSButton (OK) : <title:OK> (oid:13) */\\n\"OK\" = \"D\\047accord\";\\n\\n'\n"
                                   "printf '/* NSButton (Cancel) : <title:Cancel> (oid:30) */\\n\"Cancel\" = \"Cancel\";\\n' ;;\n"
                                   "*) printf '/* NSButton (OK) : <title:OK> (oid:13) */\\n\"OK\" = \"OK\";\\n' ;;\nesac");
        qputenv("VOCABRIX_NIBTOOL", tool.toUtf8());
        qputenv("VOCABRIX_SYSTEM_VERSION", "10.4.11");
        const QString res = path(QString("Old.app/Contents/Resources/"));
        TestSupport::writeFile(res + QLatin1String("English.lproj/MainMenu.nib"), "a nib");
        TestSupport::writeFile(res + QLatin1String("English.lproj/MainMenu~.nib"), "a backup");
        TestSupport::writeFile(res + QLatin1String("French.lproj/MainMenu.nib"), "une nib");
        DictWindowController browser(dictPath(QString("English-French")));
        QSignalSpy finished(&NotificationCenter::instance(), &NotificationCenter::locFileFinishReadingFile);
        const DictWindowController::ImportReport report = browser.importFiles({path(QString("Old.app"))});
        QVERIFY(report.problems.isEmpty());
        QVERIFY(browser.entries().isEmpty() && !browser.edited());
        QVERIFY(finished.wait(20000));
        QTest::qWait(100);
        qunsetenv("VOCABRIX_SYSTEM_VERSION");
        qunsetenv("VOCABRIX_NIBTOOL");
        QCOMPARE(finished.count(), 1);  // the backup is never read
        QCOMPARE(rowsOf(browser.entries()), (Rows{{"OK", "D'accord"}}));
        QVERIFY(browser.edited());
    }

private:
    QString dictPath(const QString &pair) const { return DictionaryFiles::dictionaryFolder() + u'/' + pair + QLatin1String(".strings"); }
    QString path(const QString &name) const { return m_box->path(name); }
    QString write(const QString &name, const QByteArray &bytes) { return m_box->write(name, bytes); }
    std::unique_ptr<TestSupport::Sandbox> m_box;
};

QTEST_GUILESS_MAIN(TestDictionary)
#include "test_dictionary.moc"
