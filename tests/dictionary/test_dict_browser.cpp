// The dictionary browser's and the lookup panel's model: duplicate rules, the edited flag and
// the occasions that save, merges seen by open browsers, the imports' text rules, TMX, search
// folding, completion, similar keys and cleaning.
// The cases are tables of UTF-8 literals; the program itself converts every byte explicitly.
#undef QT_NO_CAST_FROM_ASCII
#include "DictController.h"
#include "DictSearch.h"
#include "DictWindowController.h"
#include "DictionaryFiles.h"
#include "DictionaryMerge.h"
#include "Glossary.h"
#include "Handlers.h"
#include "NotificationCenter.h"
#include "StringsTable.h"
#include "TestSupport.h"
#include "Tmx.h"

#include <QSignalSpy>
#include <QUndoStack>

using Rows = QList<QPair<QString, QString>>;
Q_DECLARE_METATYPE(Rows)

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

}  // namespace

class TestDictBrowser : public QObject {
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void duplicateRules();
    void rowNotifiesOnlyOnChange();
    void editedFlagAndSaveOccasions();
    void mergeReachesOpenBrowsers();
    void unreadableFileKeptAsideOnFirstSave();
    void glossaryTextRules_data();
    void glossaryTextRules();
    void corpusGlossaries();
    void tmxReading_data();
    void tmxReading();
    void tmxRoundTripAndImport();
    void searchFolding_data();
    void searchFolding();
    void completionOrder();
    void fuzzyMatches();
    void cleanIsOneUndoStep();
    void importDispatchAndUndo();
    void applicationImport();
    void applicationImportWithOlderTool();

private:
    QString dictPath(const QString &pair) const { return DictionaryFiles::dictionaryFolder() + u'/' + pair + QLatin1String(".strings"); }
    QString write(const QString &name, const QByteArray &bytes) { return TestSupport::writeFile(m_dir->filePath(name), bytes); }
    std::unique_ptr<QTemporaryDir> m_dir;
};

void TestDictBrowser::initTestCase()
{
    registerResourceHandlers();
}

void TestDictBrowser::init()
{
    m_dir = std::make_unique<QTemporaryDir>();
    TestSupport::isolate(*m_dir);
    QStandardPaths::setTestModeEnabled(false);
    qputenv("XDG_DATA_HOME", QFile::encodeName(m_dir->filePath(QStringLiteral("data"))));
}

void TestDictBrowser::duplicateRules()
{
    TestSupport::writeFile(dictPath(QStringLiteral("English-French")), "\"Open\" = \"Ouvrir\";\n\"Close\" = \"Fermer\";\n");
    DictWindowController browser(dictPath(QStringLiteral("English-French")));
    QVERIFY(!browser.edited());  // loading is not an edit
    QCOMPARE(browser.originalLanguageShort(), QStringLiteral("en"));
    QCOMPARE(browser.localizeLanguageShort(), QStringLiteral("fr"));
    // All present: nothing added, yet the list was replaced.
    QCOMPARE(browser.addDictionary(mapOf({{"Open", "Ouvrir"}})), 0);
    QVERIFY(browser.edited());
    // Same key, other value: both kept, the new one last.
    QCOMPARE(browser.addDictionary(mapOf({{"Open", "Ouvrir\u2026"}, {"Save", "Enregistrer"}})), 2);
    QCOMPARE(rowsOf(browser.entries()), (Rows{{"Open", "Ouvrir"}, {"Close", "Fermer"}, {"Open", "Ouvrir\u2026"}, {"Save", "Enregistrer"}}));
    QVERIFY(browser.sameEntry(DictEntry(QStringLiteral("Save"), QStringLiteral("Enregistrer")), browser.entries()));
    QVERIFY(!browser.sameEntry(DictEntry(QStringLiteral("Save"), QStringLiteral("enregistrer")), browser.entries()));
    QVERIFY(browser.saveDictionary());
    QCOMPARE(dictionaryWithContentsOfFile(browser.path())->value(QStringLiteral("Open")), QStringLiteral("Ouvrir\u2026"));
    // A row edited into a duplicate is still caught by the next addition.
    browser.setRowValue(browser.entries().at(1), QStringLiteral("Clore"));
    QCOMPARE(browser.addDictionary(mapOf({{"Close", "Clore"}, {"Close", "Fermer"}})), 1);
}

void TestDictBrowser::rowNotifiesOnlyOnChange()
{
    QSignalSpy spy(&NotificationCenter::instance(), &NotificationCenter::dictEntryChanged);
    DictEntry row(QStringLiteral("a"), QStringLiteral("b"));
    QString seen;
    connect(&NotificationCenter::instance(), &NotificationCenter::dictEntryChanged, this,
            [&](QObject *r) { seen = StringUtility::wordOrEmpty(static_cast<DictEntry *>(r)->value()); });
    row.setValue(QStringLiteral("b"));
    QCOMPARE(spy.count(), 0);
    row.setValue(QStringLiteral("c"));
    QCOMPARE(spy.count(), 1);
    QCOMPARE(seen, QStringLiteral("b"));  // posted before the store
    DictEntry empty;
    empty.setKey(std::nullopt);
    QCOMPARE(spy.count(), 1);
    empty.setKey(QString());  // a missing text differs from the empty one
    QCOMPARE(spy.count(), 2);
    disconnect(&NotificationCenter::instance(), nullptr, this, nullptr);
}

void TestDictBrowser::editedFlagAndSaveOccasions()
{
    const QString path = dictPath(QStringLiteral("English-French"));
    TestSupport::writeFile(path, "\"Open\" = \"Ouvrir\";\n");
    {
        DictWindowController browser(path);
        DictWindowController other(dictPath(QStringLiteral("English-German")));
        // Never changed: no save occasion writes anything.
        NotificationCenter::instance().postDictWillExportFile(this);
        QVERIFY(!QFileInfo::exists(other.path()));
        // Another browser's row does not concern this one.
        other.addRow();
        QVERIFY(!browser.edited());
        browser.setRowValue(browser.entries().first(), QStringLiteral("Ouvrir"));
        QVERIFY(!browser.edited());
        browser.setRowValue(browser.entries().first(), QStringLiteral("Ouvrir\u2026"));
        QVERIFY(browser.edited());
        // A document about to merge: every browser saves first.
        NotificationCenter::instance().postDictWillExportFile(this);
        QVERIFY(!browser.edited());
        QCOMPARE(dictionaryWithContentsOfFile(path)->value(QStringLiteral("Open")), QStringLiteral("Ouvrir\u2026"));
        QVERIFY(QFileInfo::exists(other.path()));
        // Undo is a change as well; destruction (application end) saves it.
        browser.undoManager()->undo();
        QVERIFY(browser.edited());
    }
    QCOMPARE(dictionaryWithContentsOfFile(path)->value(QStringLiteral("Open")), QStringLiteral("Ouvrir"));
}

void TestDictBrowser::mergeReachesOpenBrowsers()
{
    const QString frPath = dictPath(QStringLiteral("English-French"));
    const QString dePath = dictPath(QStringLiteral("English-German"));
    TestSupport::writeFile(frPath, "\"Open\" = \"Ouvrir\";\n");
    TestSupport::writeFile(dePath, "\"Open\" = \"\u00d6ffnen\";\n");
    DictWindowController fr(frPath);
    DictWindowController de(dePath);
    fr.addRow()->setKey(QStringLiteral("Quit"));
    fr.setRowValue(fr.entries().last(), QStringLiteral("Quitter"));
    // The unsaved row is in the file before the merge reads it, and the merge's pairs come back.
    const MergeResult merged = mergeIntoDictionary(frPath, mapOf({{"Open", "Ouvrir\u2026"}, {"Save", "Enregistrer"}}), this);
    QVERIFY(merged.written);
    QCOMPARE(dictionaryWithContentsOfFile(frPath)->value(QStringLiteral("Quit")), QStringLiteral("Quitter"));
    QCOMPARE(rowsOf(fr.entries()),
             (Rows{{"Open", "Ouvrir"}, {"Quit", "Quitter"}, {"Open", "Ouvrir\u2026"}, {"Save", "Enregistrer"}}));
    QVERIFY(fr.edited());
    // Another pair re-reads its own file: no new row, but it counts as changed.
    QCOMPARE(rowsOf(de.entries()), (Rows{{"Open", "\u00d6ffnen"}}));
    QVERIFY(de.edited());
    QVERIFY(fr.saveDictionary());
    QCOMPARE(dictionaryWithContentsOfFile(frPath)->value(QStringLiteral("Open")), QStringLiteral("Ouvrir\u2026"));
}

void TestDictBrowser::unreadableFileKeptAsideOnFirstSave()
{
    const QString path = dictPath(QStringLiteral("English-French"));
    const QByteArray broken = "\"Open\" = \"Ouvrir\"\n\"no semicolon\n";
    TestSupport::writeFile(path, broken);
    DictWindowController browser(path);
    QVERIFY(browser.entries().isEmpty());
    QVERIFY(browser.loadMessage().contains(QLatin1String("could not be read")));
    browser.addDictionary(mapOf({{"Save", "Enregistrer"}}));
    QString message;
    QVERIFY(browser.saveDictionary(&message));
    QVERIFY(message.contains(QLatin1String("kept as")));
    const QStringList aside = QDir(DictionaryFiles::dictionaryFolder()).entryList({QStringLiteral("*.unreadable-*")});
    QCOMPARE(aside.size(), 1);
    QCOMPARE(TestSupport::readFile(DictionaryFiles::dictionaryFolder() + u'/' + aside.first()), broken);
    QCOMPARE(dictionaryWithContentsOfFile(path)->size(), 1);
}

void TestDictBrowser::glossaryTextRules_data()
{
    QTest::addColumn<QByteArray>("glossary");
    QTest::addColumn<bool>("skipRtf");
    QTest::addColumn<Rows>("expected");
    QTest::addColumn<int>("skipped");
    const QByteArray head = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<Proj><File>";
    QTest::newRow("pair, entities kept, blanks kept")
        << head + "<TranslationSet>\n<base loc=\"en\" origin=\"x\">Save &amp; Quit</base>\n<tran loc=\"fr\"> Enregistrer </tran>"
        << false << Rows{{"Save &amp; Quit", " Enregistrer "}} << 0;
    QTest::newRow("reverse pair exchanged")
        << head + "<TranslationSet><base loc=\"fr\">Ouvrir</base><tran loc=\"en\">Open</tran>" << false
        << Rows{{"Open", "Ouvrir"}} << 0;
    QTest::newRow("third language skipped")
        << head + "<TranslationSet><base loc=\"en\">Open</base><tran loc=\"de\">\u00d6ffnen</tran>" << false << Rows{} << 1;
    QTest::newRow("base text holding the letters base")
        << head + "<TranslationSet><base loc=\"en\">Database</base><tran loc=\"fr\">Base</tran>"
           "<TranslationSet><base loc=\"en\">Plain</base><tran loc=\"fr\">Simple</tran>"
        << false << Rows{{"Plain", "Simple"}} << 1;
    QTest::newRow("upper-case tags found, abbreviations exact")
        << head + "<TranslationSet><BASE loc=\"en\">Open</BASE><TRAN loc=\"fr\">Ouvrir</TRAN>"
           "<TranslationSet><base loc=\"EN\">Close</base><tran loc=\"fr\">Fermer</tran>"
        << false << Rows{{"Open", "Ouvrir"}} << 1;
    QTest::newRow("duplicates all kept")
        << head + "<TranslationSet><base loc=\"en\">A</base><tran loc=\"fr\">B</tran>"
           "<TranslationSet><base loc=\"en\">A</base><tran loc=\"fr\">B</tran>"
        << false << Rows{{"A", "B"}, {"A", "B"}} << 0;
    QTest::newRow("RTF units of lg skipped")
        << head + "<TranslationSet><base loc=\"en\">{\\rtf1 x}</base><tran loc=\"fr\">{\\rtf1 y}</tran>" << true << Rows{} << 1;
    QTest::newRow("missing translated text")
        << head + "<TranslationSet><base loc=\"en\">Open</base><tran loc=\"fr\"></tran>" << false << Rows{} << 1;
}

void TestDictBrowser::glossaryTextRules()
{
    QFETCH(QByteArray, glossary);
    QFETCH(bool, skipRtf);
    QFETCH(Rows, expected);
    QFETCH(int, skipped);
    const Glossary::Reading reading = Glossary::pairsFromData(glossary, QStringLiteral("en"), QStringLiteral("fr"), skipRtf);
    QVERIFY(reading.error.isEmpty());
    Rows got;
    for (const Glossary::Pair &p : reading.pairs) got.append({p.key, p.value});
    QCOMPARE(got, expected);
    QCOMPARE(reading.skipped, skipped);
    QVERIFY(!Glossary::pairsFromData("<TranslationSet>\xff\xfe", QStringLiteral("en"), QStringLiteral("fr"), false).error.isEmpty());
}

// The two public AppleGlot files: every unit is either a pair or skipped, and the language
// abbreviations are compared exactly ("fr_CH" is not "fr").
void TestDictBrowser::corpusGlossaries()
{
    SKIP_WITHOUT_CORPUS();
    const QString folder = TestSupport::corpusDir() + QLatin1String("/glossaries/ilocalize/8b946a17/");
    const QByteArray apple = TestSupport::readFile(folder + QLatin1String("AZXMLParser/glossary/appleglot.xml"));
    const Glossary::Reading fr = Glossary::pairsFromData(apple, QStringLiteral("en"), QStringLiteral("fr"), false);
    QCOMPARE(fr.pairs.size() + fr.skipped, apple.count("<TranslationSet>"));
    QVERIFY2(fr.pairs.size() > fr.skipped * 4, qPrintable(QString::number(fr.pairs.size())));
    for (const Glossary::Pair &p : fr.pairs) QVERIFY2(!p.key.contains(u'<') && !p.value.contains(u'<'), qPrintable(p.key));
    const QByteArray sample = TestSupport::readFile(folder + QLatin1String("SEI/AppleGlot/sample.ad"));
    QCOMPARE(Glossary::pairsFromData(sample, QStringLiteral("en"), QStringLiteral("fr"), false).pairs.size(), 0);
    const Glossary::Reading swiss = Glossary::pairsFromData(sample, QStringLiteral("en"), QStringLiteral("fr_CH"), false);
    QCOMPARE(swiss.pairs.size(), 3);
    QCOMPARE(swiss.pairs.first().value, QStringLiteral("Fenetre \"principale\""));
}

void TestDictBrowser::tmxReading_data()
{
    QTest::addColumn<QByteArray>("tmx");
    QTest::addColumn<Rows>("expected");
    QTest::addColumn<bool>("fails");
    const QByteArray head = "<?xml version=\"1.0\"?>\n<tmx version=\"1.4\"><header srclang=\"en-US\"/><body>";
    QTest::newRow("regions and case of codes")
        << head + "<tu><tuv xml:lang=\"EN-us\"><seg>Open</seg></tuv><tuv xml:lang=\"fr_FR\"><seg>Ouvrir</seg></tuv></tu></body></tmx>"
        << Rows{{"Open", "Ouvrir"}} << false;
    QTest::newRow("entities decoded, inline codes left out")
        << head + "<tu><tuv xml:lang=\"en\"><seg>Save &amp; <bpt i=\"1\">&lt;b&gt;</bpt>quit<ept i=\"1\">&lt;/b&gt;</ept> &#233;</seg></tuv>"
                  "<tuv xml:lang=\"fr\"><seg>Enregistrer <hi>et</hi> quitter</seg></tuv></tu></body></tmx>"
        << Rows{{"Save & quit \u00e9", "Enregistrer et quitter"}} << false;
    QTest::newRow("TMX 1.1 lang, other languages, half units")
        << head + "<tu><tuv lang=\"en\"><seg>A</seg></tuv><tuv lang=\"de\"><seg>B</seg></tuv></tu>"
                  "<tu><tuv lang=\"en\"><seg>C</seg></tuv><tuv lang=\"de\"><seg>D</seg></tuv><tuv lang=\"fr\"><seg>E</seg></tuv></tu>"
                  "</body></tmx>"
        << Rows{{"C", "E"}} << false;
    QTest::newRow("undefined entity") << head + "<tu><tuv xml:lang=\"en\"><seg>&nbsp;</seg></tuv></tu></body></tmx>" << Rows{} << true;
    QTest::newRow("external entity not fetched")
        << QByteArray("<?xml version=\"1.0\"?><!DOCTYPE tmx [<!ENTITY x SYSTEM \"file:///etc/passwd\">]>"
                      "<tmx><body><tu><tuv xml:lang=\"en\"><seg>&x;</seg></tuv><tuv xml:lang=\"fr\"><seg>y</seg></tuv></tu></body></tmx>")
        << Rows{} << true;
    QTest::newRow("not TMX") << QByteArray("<html><body/></html>") << Rows{} << true;
    QTest::newRow("truncated") << head + "<tu><tuv xml:lang=\"en\"><seg>A" << Rows{} << true;
    QByteArray deep = "<tmx>";
    for (int i = 0; i < 200; ++i) deep += "<hi>";
    QTest::newRow("too deep") << deep << Rows{} << true;
}

void TestDictBrowser::tmxReading()
{
    QFETCH(QByteArray, tmx);
    QFETCH(Rows, expected);
    QFETCH(bool, fails);
    const Tmx::Reading reading = Tmx::read(tmx, QStringLiteral("en"), QStringLiteral("fr"));
    Rows got;
    for (const Tmx::Pair &p : reading.pairs) got.append({p.key, p.value});
    QCOMPARE(got, expected);
    QCOMPARE(!reading.error.isEmpty(), fails);
}

void TestDictBrowser::tmxRoundTripAndImport()
{
    DictWindowController source(dictPath(QStringLiteral("English-French")));
    source.addDictionary(mapOf({{"a < b & \"c\"", "a \u2264 b"}, {"Open", "Ouvrir"}, {"Bell\x07", "x"}}));
    source.addDictionary(mapOf({{"Open", "Ouvrir\u2026"}}));
    const QString tmx = m_dir->filePath(QStringLiteral("out.tmx"));
    QString note;
    QVERIFY(source.exportTmx(tmx, &note));
    QVERIFY(note.contains(QLatin1String("left out")));
    DictWindowController target(dictPath(QStringLiteral("English-German")));
    // Imported into a pair of other languages, nothing matches.
    QCOMPARE(target.importDictionaryFromTmx(tmx), 0);
    DictWindowController again(dictPath(QStringLiteral("English-French")));
    again.setEntriesArray({});
    QCOMPARE(again.importDictionaryFromTmx(tmx), 3);
    QCOMPARE(rowsOf(again.entries()), (Rows{{"a < b & \"c\"", "a \u2264 b"}, {"Open", "Ouvrir"}, {"Open", "Ouvrir\u2026"}}));
    QCOMPARE(again.importDictionaryFromTmx(tmx), 0);
}

void TestDictBrowser::searchFolding_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QStringList>("keys");
    const Rows rows{{"R\u00e9sum\u00e9", "CV"}, {"File", "Fichier"}, {"Stra\u00dfe", "Street"}, {"\u0399\u03ac\u03bd\u03bd\u03b7\u03c2", "John"}, {"Open", "\u00d6ffnen"}};
    QTest::newRow("no accents finds accents") << "resume" << QStringList{"R\u00e9sum\u00e9"};
    QTest::newRow("accents find plain") << "F\u00cdLE" << QStringList{"File"};
    QTest::newRow("values searched too") << "offn" << QStringList{"Open"};
    QTest::newRow("sharp s folds to ss") << "strasse" << QStringList{"Stra\u00dfe"};
    QTest::newRow("Greek tonos and case") << "\u03b9\u03b1\u03bd" << QStringList{"\u0399\u03ac\u03bd\u03bd\u03b7\u03c2"};
    QTest::newRow("empty shows all") << "" << QStringList{"R\u00e9sum\u00e9", "File", "Stra\u00dfe", "\u0399\u03ac\u03bd\u03bd\u03b7\u03c2", "Open"};
    QTest::newRow("nothing") << "zzz" << QStringList{};
}

void TestDictBrowser::searchFolding()
{
    QFETCH(QString, text);
    QFETCH(QStringList, keys);
    DictWindowController browser(dictPath(QStringLiteral("English-French")));
    browser.addDictionary(mapOf({{"R\u00e9sum\u00e9", "CV"}, {"File", "Fichier"}, {"Stra\u00dfe", "Street"},
                                 {"\u0399\u03ac\u03bd\u03bd\u03b7\u03c2", "John"}, {"Open", "\u00d6ffnen"}}));
    browser.search(text);
    QStringList got;
    for (const auto &r : browser.shownEntries()) got.append(*r->key());
    QCOMPARE(got, keys);
    // Only what is shown changes.
    QCOMPARE(browser.entries().size(), 5);
    DictController panel;
    panel.lookup(text);
    panel.addDictionary(mapOf({{"R\u00e9sum\u00e9", "CV"}, {"File", "Fichier"}, {"Stra\u00dfe", "Street"},
                               {"\u0399\u03ac\u03bd\u03bd\u03b7\u03c2", "John"}, {"Open", "\u00d6ffnen"}}));
    QCOMPARE(panel.shownEntries().size(), keys.size());  // a look-up made before the load applies
}

void TestDictBrowser::completionOrder()
{
    DictController panel;
    const QString path = write(QStringLiteral("dict.strings"), "\"a\" = \"Ouvrir\";\n\"b\" = \"Ou\";\n\"c\" = \"ouvert\";\n"
                                                             "\"d\" = \"Oubli\";\n\"e\" = \"Ouvrir\";\n\"f\" = \"O\u00f9\";\n");
    panel.setPath(path);
    panel.lookup(QStringLiteral("zzz"));  // completion does not depend on what is shown
    QCOMPARE(panel.valuesStartFromString(QStringLiteral("Ou")), (QStringList{"Ouvrir", "Oubli", "Ouvrir"}));
    QCOMPARE(panel.valuesStartFromString(QString()).size(), 6);
    panel.setPath(m_dir->filePath(QStringLiteral("missing.strings")));
    QVERIFY(panel.entries().isEmpty());
}

void TestDictBrowser::fuzzyMatches()
{
    DictRows rows;
    DictRowList::appendDistinct(rows, mapOf({{"Open File\u2026", "Ouvrir un fichier\u2026"}, {"Open Files", "Ouvrir des fichiers"},
                                             {"open file", "ouvrir"}, {"Close File", "Fermer"}, {"Open", "Ouvrir"},
                                             {"Save File", "Enregistrer"}}));
    const QList<DictSearch::FuzzyMatch> found = DictSearch::fuzzyMatches(rows, QStringLiteral("Open File"), 3);
    QStringList got;
    for (const auto &m : found) got.append(QStringLiteral("%1 %2").arg(*m.row->key()).arg(m.percent));
    QCOMPARE(got, (QStringList{"open file 100", "Open File\u2026 90", "Open Files 90"}));
    QCOMPARE(DictSearch::similarity(u"kitten", u"sitting"), 57);
    QVERIFY(DictSearch::fuzzyMatches(rows, QStringLiteral("Unrelated")).isEmpty());
}

void TestDictBrowser::cleanIsOneUndoStep()
{
    DictWindowController browser(dictPath(QStringLiteral("English-French")));
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

void TestDictBrowser::importDispatchAndUndo()
{
    DictWindowController browser(dictPath(QStringLiteral("English-French")));
    const QString strings = write(QStringLiteral("a.strings"), "\"Open\" = \"Ouvrir\";\n");
    const QString glossary = write(QStringLiteral("g.lg"), "<TranslationSet><base loc=\"en\">Open</base><tran loc=\"fr\">Ouvrir</tran>");
    const QString broken = write(QStringLiteral("b.strings"), "\"x\" = ");
    const QString other = write(QStringLiteral("notes.txt"), "x");
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

void TestDictBrowser::applicationImport()
{
    // Legacy layout with a backup nib beside the real one, and a modern Base.lproj next to it.
    const QString res = m_dir->filePath(QStringLiteral("App.app/Contents/Resources/"));
    TestSupport::writeFile(res + QLatin1String("English.lproj/Localizable.strings"), "\"k1\" = \"Open\";\n\"k2\" = \"Close\";\n\"k3\" = \"Lonely\";\n");
    TestSupport::writeFile(res + QLatin1String("English.lproj/Only.strings"), "\"k\" = \"Nothing\";\n");
    TestSupport::writeFile(res + QLatin1String("English.lproj/Main~.nib"), "not an interface file");
    TestSupport::writeFile(res + QLatin1String("fr.lproj/Localizable.strings"), "\"k1\" = \"Ouvrir\";\n\"k2\" = \"Close\";\n");
    const QByteArray xib = TestSupport::readFile(QStringLiteral(VOCABRIX_SOURCE_DIR "/tests/dictionary/data/Panel.xib"));
    QVERIFY(!xib.isEmpty());
    TestSupport::writeFile(res + QLatin1String("Base.lproj/Panel.xib"), xib);
    TestSupport::writeFile(res + QLatin1String("fr.lproj/Panel.strings"), "\"btn-1.title\" = \"Annuler\";\n\"win-1.title\" = \"R\u00e9glages\";\n");
    DictWindowController browser(dictPath(QStringLiteral("English-French")));
    QString error;
    QCOMPARE(browser.importDictionaryFromApp(m_dir->filePath(QStringLiteral("App.app")), &error), 3);
    QCOMPARE(rowsOf(browser.entries()), (Rows{{"Open", "Ouvrir"}, {"Settings", "R\u00e9glages"}, {"Cancel", "Annuler"}}));
    QCOMPARE(browser.importDictionaryFromApp(m_dir->filePath(QStringLiteral("Nothing.app")), &error), -1);
    QVERIFY(error.contains(QLatin1String("English.lproj")));
}

// Under the older interface tool an interface file reads in the background: its pairs arrive
// with LocFileFinishReadingFile, after the import returned, and mark the browser edited.
void TestDictBrowser::applicationImportWithOlderTool()
{
    const QString tool = write(QStringLiteral("fake-nibtool"),
                               "#!/bin/bash\nif [[ \" $* \" == *\" -I \"* || \" $* \" == *\" -d \"* ]]; then\n"
                               "printf '/* NSButton (OK) : <title:OK> (oid:13) */\\n\"OK\" = \"D\\x27accord\";\\n\\n'\n"
                               "printf '/* NSButton (Cancel) : <title:Cancel> (oid:30) */\\n\"Cancel\" = \"Cancel\";\\n'\n"
                               "else\nprintf '/* NSButton (OK) : <title:OK> (oid:13) */\\n\"OK\" = \"OK\";\\n'\nfi\n");
    QFile::setPermissions(tool, QFile::permissions(tool) | QFileDevice::ExeOwner);
    qputenv("VOCABRIX_NIBTOOL", tool.toUtf8());
    qputenv("VOCABRIX_SYSTEM_VERSION", "10.4.11");
    const QString res = m_dir->filePath(QStringLiteral("Old.app/Contents/Resources/"));
    TestSupport::writeFile(res + QLatin1String("English.lproj/MainMenu.nib"), "a nib");
    TestSupport::writeFile(res + QLatin1String("English.lproj/MainMenu~.nib"), "a backup");
    TestSupport::writeFile(res + QLatin1String("French.lproj/MainMenu.nib"), "une nib");
    DictWindowController browser(dictPath(QStringLiteral("English-French")));
    QSignalSpy finished(&NotificationCenter::instance(), &NotificationCenter::locFileFinishReadingFile);
    const DictWindowController::ImportReport report = browser.importFiles({m_dir->filePath(QStringLiteral("Old.app"))});
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

QTEST_GUILESS_MAIN(TestDictBrowser)
#include "test_dict_browser.moc"
