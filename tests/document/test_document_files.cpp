// A document's files on disk: adding and exporting them. String tables go through a fake handler,
// so these are the document's own rules; panels and alerts are answered by ScriptedDialogs.
#include "BundleLayout.h"
#include "CaseData.h"
#include "DocumentTestSupport.h"
#include "Languages.h"
#include "LocalizedText.h"
#include "MyDocument.h"
#include "NotificationCenter.h"
#include "ScriptedDialogs.h"
#include "Settings.h"
#include "VXControllerModel.h"

#include <QSignalSpy>
#include <QTimer>

using namespace Qt::StringLiterals;

namespace {

// Records the two tables an interface file is built from.
class FakeNibtoolHandler : public ResourceHandler {
public:
    QStringList localized, original;
    void extract(LocFile &, const OptString &, const OptString &) override {}
    StringMap makeLocalized(LocFile &, const QString &) override { return {}; }
    void parseEntries(LocFile &file, const QString &l, const QString &o) override
    {
        localized.append(l);
        original.append(o);
        file.setAllEntries({LocEntry::initWithEntry(QStringLiteral("\"a\" = \"b\";"))});
    }
};

QStringList names(const QList<LocFilePtr> &files)
{
    QStringList list;
    for (const LocFilePtr &f : files) list.append(f->fileName());
    return list;
}

// Reads like the older interface tool: the entries arrive a moment after the file was made.
class LateHandler : public ResourceHandler {
public:
    void extract(LocFile &file, const OptString &, const OptString &) override
    {
        LocFile *f = &file;
        QTimer::singleShot(50, f, [f] {
            f->setAllEntries({LocEntry::initWithEntry(QStringLiteral("/* \"k\"=\"Open\" */\n\"Open\" = \"Ouvrir\";"))});
            f->finishReadingFile();
        });
    }
    StringMap makeLocalized(LocFile &file, const QString &folder) override
    {
        TestSupport::writeFile(QDir(folder).filePath(file.fileName()), file.allEntries().isEmpty() ? "" : "read");
        StringMap pairs;
        for (const LocEntryPtr &e : file.allEntries()) pairs.insert(*e->baseWord(), *e->localizedWord());
        return pairs;
    }
};

QStringList strings(std::initializer_list<const char *> list)
{
    QStringList out;
    for (const char *s : list) out.append(QString::fromUtf8(s));
    return out;
}

QStringList split(const QString &list)
{
    return list.split(u',', Qt::SkipEmptyParts);
}

}  // namespace

class TestDocumentFiles : public QObject {
    Q_OBJECT
    std::unique_ptr<TestSupport::Sandbox> m_box;
    std::shared_ptr<FakeStringsHandler> m_fake;
    ScriptedDialogs m_dialogs;
    std::unique_ptr<MyDocument> m_doc;
    QString path(const QString &relative) const { return m_box->path(relative); }
    QString file(const QString &relative, const QByteArray &bytes = "\"k\" = \"v\";\n") { return m_box->write(relative, bytes); }
    void files(const QString &under, std::initializer_list<const char *> names, const QByteArray &bytes = "\"k\" = \"v\";\n")
    {
        for (const QString &name : strings(names)) file(under + u'/' + name, bytes);
    }
    QString dictionary() const { return m_doc->dictionaryPath(); }
    // Two files in r/English.lproj; "Open" is translated in A, and otherwise in B.
    void fill()
    {
        const QString a = TestSupport::writeFile(path(QStringLiteral("r/English.lproj/A.strings")),
                                                 "\"open\" = \"Open\";\n\"quit\" = \"Quit\";\n");
        const QString b = TestSupport::writeFile(path(QStringLiteral("r/English.lproj/B.strings")), "\"o\" = \"Open\";\n");
        m_doc->addFiles(QList<QPair<QString, OptString>>{{a, std::nullopt}, {b, std::nullopt}});
        m_doc->files().at(0)->allEntries().at(0)->setLocalizedWord(QStringLiteral("Ouvrir"));
        m_doc->files().at(1)->allEntries().at(0)->setLocalizedWord(QStringLiteral("Ouvre"));
        m_doc->updateChangeCount(MyDocument::ChangeCleared);
    }

private slots:
    void init()
    {
        m_box = std::make_unique<TestSupport::Sandbox>();  // a fresh tree per test
        m_fake = installFakeStringsHandler();
        HandlerRegistry::registerHandler(HandlerKind::Ibtool, nullptr);
        m_dialogs = ScriptedDialogs();
        setInterfaceLanguage(QStringLiteral("en"));
        qunsetenv("VOCABRIX_SYSTEM_VERSION");
        m_doc = std::make_unique<MyDocument>();
        m_doc->setDialogs(&m_dialogs);
    }
    void cleanup()
    {
        m_doc.reset();
        for (const auto &key : Settings::keys()) Settings::instance().remove(key.name);
        qunsetenv("VOCABRIX_SYSTEM_VERSION");
    }

    void addingBundles_data() { TestSupport::addTableRows(u"document"_s, u"adding-bundles.tsv"_s, {u"tree"_s, u"added"_s, u"expected"_s}); }
    void addingBundles()
    {
        QFETCH(QString, tree);
        QFETCH(QString, added);
        QFETCH(QString, expected);
        for (const QString &f : split(tree)) file(f);
        QStringList bundles;
        for (const QString &b : split(added)) bundles.append(path(b));
        m_doc->addFiles(bundles);  // every previous-release panel cancelled
        QStringList got;
        for (const LocFilePtr &f : m_doc->files()) got.append(QDir(path(QString())).relativeFilePath(f->path()));
        QCOMPARE(got, split(expected));
        QVERIFY(m_doc->isDocumentEdited());  // whether or not anything was added
        for (const FakeStringsHandler::Read &read : m_fake->reads) {
            QVERIFY(!read.previous);
            QCOMPARE(read.dictionary, OptString(m_doc->dictionaryPath()));  // the document's pair
        }
        for (const OpenPanelOptions &panel : m_dialogs.panels()) {
            QCOMPARE(panel.allowedExtensions, QStringList{u"app"_s});
            QVERIFY(panel.bundleExtensions.contains(u"app"_s));
        }
    }

    void previousReleaseByAbbreviation()
    {
        file(QStringLiteral("Foo.app/Contents/Resources/en.lproj/A.strings"), "\"greet\" = \"Hello\";\n\"bye\" = \"Bye\";\n");
        file(QStringLiteral("Foo.app/Contents/Resources/en.lproj/New.strings"));
        file(QStringLiteral("Foo-old.app/Contents/Resources/fr.lproj/A.strings"), "\"greet\" = \"Bonjour\";\n");
        MyDocument doc;
        doc.setDialogs(&m_dialogs);
        m_dialogs.queuePanelAnswer(path(QStringLiteral("Foo-old.app")));
        doc.addFiles(QStringList{path(QStringLiteral("Foo.app"))});
        QCOMPARE(m_fake->reads.size(), 2);
        const QString previousFolder = path(QStringLiteral("Foo-old.app/Contents/Resources/fr.lproj/"));
        QCOMPARE(m_fake->reads.at(0).previous, OptString(previousFolder + QLatin1String("A.strings")));
        // A file without a counterpart still gets the path; the handler finds nothing there.
        QCOMPARE(m_fake->reads.at(1).previous, OptString(previousFolder + QLatin1String("New.strings")));
        const LocFilePtr a = doc.files().at(0);
        QCOMPARE(a->allEntries().at(0)->localizedWord(), OptString(QStringLiteral("Bonjour")));
        QVERIFY(a->allEntries().at(0)->isChecked());
        QVERIFY(!a->allEntries().at(1)->isChecked());
        QCOMPARE(a->status(), QStringLiteral("1/2"));
    }

    void previousPanelOncePerPathInOrder()
    {
        const QString a = file(QStringLiteral("p/en.lproj/A.strings"));
        const QString b = file(QStringLiteral("p/en.lproj/B.strings"));
        const QString rtf = file(QStringLiteral("p/en.lproj/C.rtf"));
        const QString prevB = file(QStringLiteral("p/fr.lproj/B.strings"), "\"k\" = \"w\";\n");
        MyDocument doc;
        doc.setDialogs(&m_dialogs);
        m_dialogs.queueAlertButton(0);  // several files: choose each one's previous version
        m_dialogs.queuePanelCancel();
        m_dialogs.queuePanelAnswer(prevB);
        doc.addFiles(QStringList{a, b, rtf, a});
        const QList<OpenPanelOptions> panels = m_dialogs.panels();
        QCOMPARE(panels.size(), 2);
        QCOMPARE(panels.at(0).message, QStringLiteral("A.strings: Select previous version localized file if exist"));
        QCOMPARE(panels.at(1).presetName, QStringLiteral("B.strings"));
        QCOMPARE(panels.at(1).prompt, QStringLiteral("Choose"));
        QVERIFY(!panels.at(0).allowsMultipleSelection && !panels.at(0).canChooseDirectories);
        // The rtf file is of no kind Vocabrix translates and A is there already: neither is
        // added, and one report names both.
        QCOMPARE(names(doc.files()), (QStringList{QStringLiteral("A.strings"), QStringLiteral("B.strings")}));
        QVERIFY(!m_fake->reads.at(0).previous);
        QCOMPARE(m_fake->reads.at(1).previous, OptString(prevB));
        QCOMPARE(doc.files().at(1)->allEntries().at(0)->localizedWord(), OptString(QStringLiteral("w")));
        const QList<Alert> alerts = m_dialogs.alerts();
        QCOMPARE(alerts.size(), 2);
        QCOMPARE(alerts.at(0).buttons.size(), 3);
        QVERIFY(alerts.at(1).message.contains(rtf) && alerts.at(1).message.contains(QStringLiteral("already")));

        // Taken by name from one folder, without a panel per file.
        MyDocument byFolder;
        byFolder.setDialogs(&m_dialogs);
        m_dialogs.clearLog();
        m_dialogs.queueAlertButton(1);
        m_dialogs.queuePanelAnswer(QFileInfo(prevB).absolutePath());
        byFolder.addFiles(QStringList{a, b});
        QCOMPARE(m_dialogs.panels().size(), 1);
        QCOMPARE(byFolder.files().at(1)->allEntries().at(0)->localizedWord(), OptString(QStringLiteral("w")));
    }

    void readingErrorsShowASheetAndStillAdd()
    {
        const QString broken = file(QStringLiteral("en.lproj/broken.strings"), "\"unclosed");
        const QString nib = file(QStringLiteral("en.lproj/Main.xib"), "<document/>");
        MyDocument doc;
        doc.setDialogs(&m_dialogs);
        doc.addFiles(QList<QPair<QString, OptString>>{{broken, std::nullopt}, {nib, std::nullopt}});
        QCOMPARE(doc.files().size(), 2);
        QCOMPARE(m_dialogs.shown().size(), 2);
        for (const ScriptedDialogs::Shown &s : m_dialogs.shown()) {
            QCOMPARE(s.kind, ScriptedDialogs::Shown::Sheet);  // not waited for
            QCOMPARE(s.alert.title, QStringLiteral("Error has occured while reading nib file"));
            QCOMPARE(s.alert.buttons, QStringList{QStringLiteral("OK")});
        }
        QCOMPARE(m_dialogs.alerts().at(0).message, QStringLiteral("Reason:bad table"));
        QVERIFY(m_dialogs.alerts().at(1).message.startsWith(QLatin1String("Reason:")));
    }

    void addFilePanel()
    {
        const QString a = file(QStringLiteral("en.lproj/A.strings"));
        MyDocument doc;
        doc.setDialogs(&m_dialogs);
        m_dialogs.queuePanelCancel();
        doc.addNewFile();
        QVERIFY(doc.files().isEmpty());
        QVERIFY(!doc.isDocumentEdited());  // a cancelled panel adds nothing and marks nothing
        const OpenPanelOptions panel = m_dialogs.panels().at(0);
        QVERIFY(panel.allowsMultipleSelection && panel.asSheet && !panel.canChooseDirectories);
        QCOMPARE(panel.allowedExtensions, acceptableFileTypes());
        QVERIFY(panel.bundleExtensions.contains(QStringLiteral("nib")));

        m_dialogs.queuePanelAnswer(QStringList{a});
        m_dialogs.queuePanelCancel();  // its previous version
        doc.addNewFile();
        QCOMPARE(names(doc.files()), QStringList{QStringLiteral("A.strings")});
        QVERIFY(doc.isDocumentEdited());
    }

    void busyWhileAdding()
    {
        const QString a = file(QStringLiteral("en.lproj/A.strings"));
        MyDocument doc;
        QList<bool> busy;
        QList<int> filesSeen;
        connect(&doc, &MyDocument::loadingFilesChanged, this, [&](bool on) { busy.append(on); });
        connect(&doc, &MyDocument::filesChanged, this, [&] { filesSeen.append(int(doc.files().size())); });
        doc.addFiles(QStringList{a});
        QCOMPARE(busy, (QList<bool>{true, false}));
        QCOMPARE(filesSeen, QList<int>{1});  // the list is announced once, complete
    }

    void interfaceFileFromTwoTables_data()
    {
        QTest::addColumn<QByteArray>("translations");
        QTest::addColumn<bool>("made");
        QTest::addColumn<int>("panels");
        QTest::newRow("both tables readable") << QByteArray("\"Cancel\" = \"Annuler\";") << true << 3;
        QTest::newRow("translations not UTF-8") << QByteArray("\"Cancel\" = \"\xFF\";") << false << 2;
        QTest::newRow("translations empty") << QByteArray() << false << 2;
    }

    void interfaceFileFromTwoTables()
    {
        QFETCH(QByteArray, translations);
        QFETCH(bool, made);
        QFETCH(int, panels);
        auto nibtool = std::make_shared<FakeNibtoolHandler>();
        HandlerRegistry::registerHandler(HandlerKind::Nibtool, nibtool);
        const QString nib = file(QStringLiteral("ui/Main.nib"), "nib");
        const QString loc = file(QStringLiteral("ui/fr.strings"), translations);
        const QString orig = file(QStringLiteral("ui/en.strings"), "\"Cancel\" = \"Cancel\";");
        MyDocument doc;
        doc.setDialogs(&m_dialogs);
        m_dialogs.queuePanelAnswer(nib);
        m_dialogs.queuePanelAnswer(loc);
        m_dialogs.queuePanelAnswer(orig);
        const LocFilePtr f = doc.readNibAndStringsFile();
        const QList<OpenPanelOptions> shown = m_dialogs.panels();
        QCOMPARE(shown.size(), panels);
        QCOMPARE(shown.at(0).message, QStringLiteral("select nib file"));
        QCOMPARE(shown.at(0).allowedExtensions, (QStringList{QStringLiteral("nib"), QStringLiteral("xib")}));
        QVERIFY(shown.at(0).startFolder.isEmpty());
        QCOMPARE(shown.at(1).message, QStringLiteral("select dictitionary stirngs file"));
        QCOMPARE(shown.at(1).startFolder, QFileInfo(nib).absolutePath());
        QCOMPARE(bool(f), made);
        QCOMPARE(doc.isDocumentEdited(), made);
        if (!made) {
            QVERIFY(doc.files().isEmpty());
            QVERIFY(m_dialogs.alerts().isEmpty());  // stops without a message
            return;
        }
        QCOMPARE(shown.at(2).message, QStringLiteral("select original stirngs file"));
        QCOMPARE(nibtool->localized, QStringList{QString::fromUtf8(translations)});
        QCOMPARE(nibtool->original, QStringList{QStringLiteral("\"Cancel\" = \"Cancel\";")});
        QCOMPARE(doc.files(), QList<LocFilePtr>{f});
        QCOMPARE(f->allEntries().size(), 1);
        QVERIFY(!doc.loadingFiles());
    }

    void nothingToExport()
    {
        const ExportResult r = m_doc->makeLocalizedFilesAction({});
        QVERIFY(r.cancelled);
        QVERIFY(m_dialogs.shown().isEmpty());
        QVERIFY(!QFileInfo::exists(dictionary()));
    }

    void plainFolderWithoutWarning()
    {
        fill();
        const QString out = path(QStringLiteral("out"));
        TestSupport::writeFile(out + QLatin1String("/A.strings"), "old");
        TestSupport::writeFile(dictionary(), "\"Keep\" = \"Garder\";\n\"Open\" = \"old\";\n");
        m_dialogs.queuePanelAnswer(out);
        QSignalSpy will(&NotificationCenter::instance(), &NotificationCenter::dictWillExportFile);
        const ExportResult r = m_doc->makeAllLocalizedFilesAction();
        QVERIFY(!r.cancelled);
        QCOMPARE(r.folder, out);
        QCOMPARE(r.written, (QStringList{out + QLatin1String("/A.strings"), out + QLatin1String("/B.strings")}));
        QVERIFY(m_dialogs.alerts().isEmpty());
        QCOMPARE(TestSupport::readFile(out + QLatin1String("/A.strings")), QByteArray("\"open\" = \"Ouvrir\";\n\"quit\" = \"Quit\";\n"));
        QCOMPARE(will.count(), 1);
        QCOMPARE(will.at(0).at(0).value<QObject *>(), m_doc.get());
        QCOMPARE(m_dialogs.shown().last().kind, ScriptedDialogs::Shown::Reveal);
        QCOMPARE(m_dialogs.shown().last().path, out);
        // The later file's word wins, over the dictionary's too; an untouched, unchecked word
        // teaches nothing.
        QVERIFY(r.merge.written);
        QCOMPARE(r.pairs.value(QStringLiteral("Open")), QStringLiteral("Ouvre"));
        QCOMPARE(TestSupport::readFile(dictionary()), QByteArray("\"Keep\" = \"Garder\";\n\"Open\" = \"Ouvre\";\n"));
    }

    // Both the previous-version panel and the export panel open in the target folder beside the
    // base folder when there is one.
    void panelsStartInTargetFolder_data()
    {
        QTest::addColumn<bool>("targetFolderExists");
        QTest::newRow("target folder beside the base folder") << true;
        QTest::newRow("no target folder") << false;
    }
    void panelsStartInTargetFolder()
    {
        QFETCH(bool, targetFolderExists);
        if (targetFolderExists) QDir().mkpath(path(QStringLiteral("r/French.lproj")));
        m_doc->addFiles(QStringList{file(QStringLiteral("r/English.lproj/A.strings"))});  // both panels cancelled
        m_doc->makeAllLocalizedFilesAction();
        QCOMPARE(m_dialogs.panels().size(), 2);
        const QString target = path(QStringLiteral("r/French.lproj"));
        const QString previousStart = targetFolderExists ? target : path(QStringLiteral("r"));
        QCOMPARE(QDir(m_dialogs.panels().at(0).startFolder).canonicalPath(), QDir(previousStart).canonicalPath());
        const OpenPanelOptions p = m_dialogs.panels().at(1);
        QCOMPARE(p.message, QStringLiteral("Select folder to save localized files"));
        QCOMPARE(p.prompt, QStringLiteral("Export"));
        QVERIFY(p.canChooseDirectories && p.canCreateDirectories && !p.allowsMultipleSelection);
        QVERIFY(p.allowedExtensions.contains(QStringLiteral("app")));
        QCOMPARE(p.startFolder, targetFolderExists ? target : QString());  // else the panel's default
        QVERIFY(!QFileInfo::exists(dictionary()));  // cancelled: nothing written, nothing merged
    }

    // After the overwrite warning's Cancel the panel comes again, and its new answer is taken.
    void panelAgainAfterWarning()
    {
        fill();
        QDir().mkpath(path(QStringLiteral("T.app/Contents/Resources/French.lproj")));
        m_dialogs.queuePanelAnswer(path(QStringLiteral("T.app")));
        m_dialogs.queueAlertButton(1);
        m_dialogs.queuePanelAnswer(path(QStringLiteral("plain")));
        QDir().mkpath(path(QStringLiteral("plain")));
        QCOMPARE(m_doc->makeAllLocalizedFilesAction().folder, path(QStringLiteral("plain")));
        QVERIFY(QDir(path(QStringLiteral("T.app/Contents/Resources/French.lproj"))).isEmpty());
    }

    void selectedFilesOnlyInTheirOrder()
    {
        fill();
        QDir().mkpath(path(QStringLiteral("out")));
        m_dialogs.queuePanelAnswer(path(QStringLiteral("out")));
        const ExportResult r = m_doc->makeLocalizedFilesAction({m_doc->files().at(1)});
        QCOMPARE(r.written, QStringList{path(QStringLiteral("out/B.strings"))});
        QVERIFY(!QFileInfo::exists(path(QStringLiteral("out/A.strings"))));
        // The panel starts from the first selected file's language folders.
        QCOMPARE(m_fake->writes, QStringList{path(QStringLiteral("out"))});
    }

    void changeMarkBusyAndSpellCheck()
    {
        fill();
        QDir().mkpath(path(QStringLiteral("out")));
        m_doc->setContinuousSpellCheckingState(true);
        QList<bool> busy;
        connect(m_doc.get(), &MyDocument::loadingFilesChanged, this, [&](bool on) { busy.append(on); });
        m_dialogs.queuePanelAnswer(path(QStringLiteral("out")));
        m_doc->makeAllLocalizedFilesAction();
        QVERIFY(!m_doc->isDocumentEdited());
        QCOMPARE(busy, (QList<bool>{true, false}));
        QCOMPARE(Settings::instance().value(SettingsKey::ContinuousSpellCheckingEnabled), QVariant(true));
        m_doc->update();
        m_dialogs.queuePanelAnswer(path(QStringLiteral("out")));
        m_doc->makeAllLocalizedFilesAction();
        QVERIFY(m_doc->isDocumentEdited());
    }

    void unwritableDestinationIsReported()
    {
        fill();
        QDir().mkpath(path(QStringLiteral("Empty.app")));  // no Contents/Resources: the folder cannot be made
        m_dialogs.queuePanelAnswer(path(QStringLiteral("Empty.app")));
        const ExportResult r = m_doc->makeAllLocalizedFilesAction();
        QCOMPARE(r.failed.size(), 2);
        QVERIFY(r.written.isEmpty());
        QCOMPARE(m_dialogs.alerts().size(), 1);
        QVERIFY(m_dialogs.alerts().at(0).message.contains(QLatin1String("A.strings")));
        QVERIFY(r.merge.written);  // the pairs still reach the dictionary
    }

    void unreadableDictionaryIsKeptAside()
    {
        fill();
        TestSupport::writeFile(dictionary(), "\"Open\" = \"Ouv");
        QDir().mkpath(path(QStringLiteral("out")));
        m_dialogs.queuePanelAnswer(path(QStringLiteral("out")));
        const ExportResult r = m_doc->makeAllLocalizedFilesAction();
        QVERIFY(!r.merge.keptAsidePath.isEmpty());
        QCOMPARE(TestSupport::readFile(r.merge.keptAsidePath), QByteArray("\"Open\" = \"Ouv"));
        QCOMPARE(m_dialogs.alerts().size(), 1);
        QVERIFY(m_dialogs.alerts().at(0).message.contains(QFileInfo(r.merge.keptAsidePath).fileName()));
    }

    void languageFolders_data() { TestSupport::addTableRows(u"document"_s, u"language-folders.tsv"_s, {u"folders"_s, u"language"_s, u"candidates"_s, u"newFolder"_s}); }
    void languageFolders()
    {
        QFETCH(QString, folders);
        QFETCH(QString, language);
        QFETCH(QString, candidates);
        QFETCH(QString, newFolder);
        const QString resources = path(QStringLiteral("R"));
        QDir().mkpath(resources);
        for (const QString &f : split(folders)) QDir(resources).mkdir(f + QLatin1String(".lproj"));
        const int tag = *tagForLanguage(language);
        const QString key = *languageKeyForLanguage(tag), abbreviation = *languageAbbreviationForLanguage(tag);
        QCOMPARE(BundleLayout::candidateFolders(resources, key, abbreviation), split(candidates));
        QCOMPARE(BundleLayout::newFolderName(resources, key, abbreviation), newFolder);
    }

    void bundleFiles_data() { TestSupport::addTableRows(u"document"_s, u"bundle-files.tsv"_s, {u"resources"_s, u"from"_s, u"expected"_s}); }
    void bundleFiles()
    {
        QFETCH(QString, resources);
        QFETCH(QString, from);
        QFETCH(QString, expected);
        files(resources + QLatin1String("/Base.lproj"),
              {"Main.xib", "Sheet.storyboard", "Window.xib", "Local.strings", "Plural.stringsdict", ".DS_Store",
               "._Main.xib", "Main~.nib", "Notes.rtf"});
        files(resources + QLatin1String("/en.lproj"),
              {"Localizable.strings", "InfoPlist.strings", "Main.strings", "._Localizable.strings", ".hidden.strings"});
        const QString old = QString(resources).replace(QLatin1String("Foo."), QLatin1String("Old."));
        files(old + QLatin1String("/Base.lproj"), {"Main.xib"});
        files(old + QLatin1String("/en.lproj"), {"Localizable.strings", "Sheet.strings"});
        files(old + QLatin1String("/fr.lproj"), {"Main.strings", "Localizable.strings", "Window.xib"});

        MyDocument doc;
        doc.setDialogs(&m_dialogs);
        doc.setLocLangFrom(*tagForLanguage(from));
        doc.setLocLangTo(*tagForLanguage(QStringLiteral("fr")));
        const QString bundle = path(resources.section(u'/', 0, 0));
        const QString previous = path(old.section(u'/', 0, 0));
        QStringList listed;
        const auto relative = [&](const QString &p, const QString &root) {
            return p.isEmpty() ? QString() : QDir(path(root)).relativeFilePath(p);
        };
        for (const MyDocument::BundleFile &f : doc.bundleFiles(bundle, previous))
            listed.append(relative(f.path, resources) + u'|' + relative(f.previous, old) + u'|' + relative(f.previousBase, old));
        QCOMPARE(listed.join(u';'), expected);
        QVERIFY(m_dialogs.alerts().isEmpty());
    }

    void changedBaseWords()
    {
        const QString r = QStringLiteral("Foo.app/Contents/Resources/"), o = QStringLiteral("Old.app/Contents/Resources/");
        QDir().mkpath(path(r + QLatin1String("Base.lproj")));
        files(r + QLatin1String("en.lproj"), {"Localizable.strings"}, "\"a\" = \"Open\";\n\"b\" = \"Close file\";\n\"c\" = \"New\";\n");
        files(o + QLatin1String("en.lproj"), {"Localizable.strings"}, "\"a\" = \"Open\";\n\"b\" = \"Close\";\n");
        files(o + QLatin1String("fr.lproj"), {"Localizable.strings"}, "\"a\" = \"Ouvrir\";\n\"b\" = \"Fermer\";\n");
        MyDocument doc;
        doc.setDialogs(&m_dialogs);
        doc.setLocLangFrom(*tagForLanguage(QStringLiteral("en")));
        doc.setLocLangTo(*tagForLanguage(QStringLiteral("fr")));
        doc.addFiles(QList<QPair<QString, OptString>>{{path(QStringLiteral("Foo.app")), path(QStringLiteral("Old.app"))}});
        QCOMPARE(doc.files().size(), 1);
        QStringList seen;
        for (const LocEntryPtr &e : doc.files().first()->allEntries())
            seen << *e->keyWord() + u'=' + *e->localizedWord() + (e->isChecked() ? u'+' : u'-')
                        + e->previousBaseWord().value_or(QString());
        // Unchanged: the old word, checked; changed: the old word kept, unchecked, the old base
        // beside it; new: nothing from the previous release.
        QCOMPARE(seen, strings({"a=Ouvrir+", "b=Fermer-Close", "c=New-"}));
        QCOMPARE(doc.changedBaseCount(), 1);
        doc.setShowOnlyChangedBase(true);
        QCOMPARE(doc.files().first()->entries().size(), 1);
        QCOMPARE(*doc.files().first()->entries().first()->keyWord(), QStringLiteral("b"));
        // The work to do: unchecked, or checked while still the base word (with letters).
        doc.setShowOnlyToDo(true);
        QCOMPARE(doc.files().first()->entries().size(), 1);
        doc.setShowOnlyChangedBase(false);
        QCOMPARE(doc.files().first()->entries().size(), 2);
        QVERIFY(doc.isSearching());
        using Row = std::tuple<const char *, const char *, bool, bool>;  // base, word, checked, to do
        for (const auto &[base, word, checked, toDo] : {Row{"Open", "Open", true, true}, Row{"Open", "Ouvrir", true, false},
                                                       Row{"Open", "Ouvrir", false, true}, Row{" ", " ", true, false}, Row{"12", "12", true, false}}) {
            const LocEntryPtr e = LocEntry::initWithBaseWord(QString::fromUtf8(base), QString::fromUtf8(word));
            e->setCheck(checked);
            QCOMPARE(MyDocument::isToDo(*e), toDo);
        }
        doc.setShowOnlyToDo(false);
        QCOMPARE(doc.files().first()->entries().size(), 3);
        QVERIFY(!doc.isSearching());
        // A search in force filters a file added afterwards too.
        doc.search(u"close"_s);
        files(u"more"_s, {"More.strings"}, "\"q\" = \"Quit\";\n\"ca\" = \"Close all\";\n");
        doc.addFiles(QList<QPair<QString, OptString>>{{path(u"more/More.strings"_s), std::nullopt}});
        QCOMPARE(doc.files().last()->entries().size(), 1);
    }

    void exportFolder_data()
    {
        TestSupport::addTableRows(u"document"_s, u"export-folders.tsv"_s, {u"resources"_s, u"folders"_s, u"choice"_s, u"answers"_s, u"expected"_s, u"panelExpected"_s});
    }
    void exportFolder()
    {
        QFETCH(QString, resources);
        QFETCH(QString, folders);
        QFETCH(QString, choice);
        QFETCH(QString, answers);
        QFETCH(QString, expected);
        QFETCH(QString, panelExpected);
        files(QStringLiteral("In/en.lproj"), {"A.strings"});
        for (const QString &f : split(folders)) QDir().mkpath(path(resources + u'/' + f + QLatin1String(".lproj")));
        const QString bundle = path(resources.section(u'/', 0, 0));

        for (const bool panel : {false, true}) {
            MyDocument doc;
            doc.setDialogs(&m_dialogs);
            doc.setLocLangTo(*tagForLanguage(QStringLiteral("ja")));
            if (!choice.isEmpty()) doc.setTargetFolderChoice(choice);
            doc.addFiles(QList<QPair<QString, OptString>>{{path(QStringLiteral("In/en.lproj/A.strings")), std::nullopt}});
            ExportResult result;
            if (panel) {
                m_dialogs.queuePanelAnswer(bundle);
                m_dialogs.queuePanelCancel();  // after a cancelled question the panel comes again
                for (const QString &a : split(answers)) m_dialogs.queueAlertButton(a.toInt());
                result = doc.makeAllLocalizedFilesAction();
            } else {
                QString refusal;
                // Without a panel, a folder already there is written only when overwriting is allowed.
                if (!expected.isEmpty() && split(folders).contains(expected.chopped(6))) {
                    QVERIFY(doc.makeLocalizedFilesInto(doc.files(), bundle, false, &refusal).cancelled);
                    QVERIFY2(refusal.contains(expected) && QDir(path(resources + u'/' + expected)).isEmpty(), qPrintable(refusal));
                }
                result = doc.makeLocalizedFilesInto(doc.files(), bundle, true, &refusal);
                if (expected.isEmpty()) QVERIFY2(refusal.contains(QLatin1String("several folders")), qPrintable(refusal));
            }
            const QString want = panel ? panelExpected : expected;
            // Into a language folder already there, the panel's way warns first; a cancelled answer
            // shows the panel again, and nothing is written or merged.
            bool warned = false;
            for (const Alert &a : m_dialogs.alerts()) {
                if (a.title != QLatin1String("Vocabrix may overrite resources")) continue;
                warned = true;
                QCOMPARE(a.message, u"There is a "_s + (want.isEmpty() ? expected : want)
                                        + u" folder in the package you've chosen and Vocabrix may be going to overwrite resources."_s);
                QCOMPARE(a.buttons, strings({"OK", "Cancel"}));
            }
            if (panel && !want.isEmpty() && split(folders).contains(want.chopped(6))) QVERIFY(warned);
            QCOMPARE(m_dialogs.panels().size(), !panel ? 0 : want.isEmpty() ? 2 : 1);
            if (want.isEmpty()) QVERIFY(!QFileInfo::exists(doc.dictionaryPath()));
            QFile::remove(doc.dictionaryPath());
            m_dialogs.clearLog();
            QCOMPARE(result.cancelled, want.isEmpty());
            if (!want.isEmpty()) {
                QCOMPARE(result.folder, path(resources + u'/' + want));
                QVERIFY(QFileInfo::exists(result.folder + QLatin1String("/A.strings")));
            }
            for (const QString &f : QDir(path(resources)).entryList(QDir::Dirs | QDir::NoDotAndDotDot))
                QVERIFY2(split(folders).contains(f.chopped(6)) || f == want, qPrintable(f));
        }
    }

    void savingAndExportWaitForLateReading()
    {
        HandlerRegistry::registerHandler(HandlerKind::Nibtool, std::make_shared<LateHandler>());
        qputenv("VOCABRIX_SYSTEM_VERSION", "10.4.11");
        for (const bool exportFirst : {false, true}) {
            files(QStringLiteral("W/en.lproj"), {"Prefs.xib"}, "<xib/>");
            MyDocument doc;
            doc.setDialogs(&m_dialogs);
            doc.addFiles(QList<QPair<QString, OptString>>{{path(QStringLiteral("W/en.lproj/Prefs.xib")), std::nullopt}});
            QVERIFY(doc.isReadingFiles());
            QVERIFY(doc.files().first()->allEntries().isEmpty());
            if (exportFirst) {
                const ExportResult result = doc.makeLocalizedFilesInto(doc.files(), path(QStringLiteral("W/out")), true);
                QCOMPARE(TestSupport::readFile(path(QStringLiteral("W/out/Prefs.xib"))), QByteArray("read"));
                QCOMPARE(result.pairs.value(QStringLiteral("Open")), QStringLiteral("Ouvrir"));
            }
            const QString saved = path(QStringLiteral("W/doc.vocabrix"));
            QVERIFY(doc.writeToFile(saved));
            QVERIFY(!doc.isReadingFiles());
            MyDocument reopened;
            QVERIFY(reopened.readFromFile(saved));
            QCOMPARE(reopened.files().first()->allEntries().size(), 1);
        }
    }
};

QTEST_GUILESS_MAIN(TestDocumentFiles)
#include "test_document_files.moc"
