// Adding files to a document: bundle expansion (key and abbreviation folders, skipped names),
// the previous-version panel once per added path, reading errors, the add-file panel, and the
// interface file built from two string tables. Panels are answered by ScriptedDialogs.
#include "DocumentTestSupport.h"
#include "LocalizedText.h"
#include "MyDocument.h"
#include "ScriptedDialogs.h"
#include "Settings.h"
#include "TestSupport.h"
#include "VXControllerModel.h"

#include <QSignalSpy>

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

}  // namespace

class TestAddFiles : public QObject {
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void bundleUsesAbbreviationFolderAndSkipsOthers();
    void bundlePrefersKeyFolder();
    void previousReleaseByAbbreviation();
    void bundleWithoutPreviousOrBaseFolder();
    void previousPanelOncePerPathInOrder();
    void previousPanelStartFolder_data();
    void previousPanelStartFolder();
    void readingErrorsShowASheetAndStillAdd();
    void addFilePanel();
    void busyWhileAdding();
    void interfaceFileFromTwoTables_data();
    void interfaceFileFromTwoTables();

private:
    std::unique_ptr<TestSupport::Sandbox> m_box;
    std::shared_ptr<FakeStringsHandler> m_fake;
    ScriptedDialogs m_dialogs;
    QString path(const QString &relative) const { return m_box->path(relative); }
    QString file(const QString &relative, const QByteArray &bytes = "\"k\" = \"v\";\n")
    {
        return TestSupport::writeFile(path(relative), bytes);
    }
};

void TestAddFiles::init()
{
    m_box = std::make_unique<TestSupport::Sandbox>();  // a fresh tree per test
    m_fake = installFakeStringsHandler();
    HandlerRegistry::registerHandler(HandlerKind::Ibtool, nullptr);
    m_dialogs = ScriptedDialogs();
    setInterfaceLanguage(QStringLiteral("en"));
}

void TestAddFiles::cleanup()
{
    for (const auto &key : Settings::keys()) Settings::instance().remove(key.name);
}

void TestAddFiles::bundleUsesAbbreviationFolderAndSkipsOthers()
{
    for (const char *name : {"MainMenu.nib/keyedobjects.nib", "MainMenu~.nib/keyedobjects.nib", "Localizable.strings",
                             "InfoPlist.strings", "Credits.rtf", "icon.icns", "Old~.nib.strings", "Sub.lproj/x.strings"})
        file(QStringLiteral("Foo.app/Contents/Resources/en.lproj/") + QLatin1String(name));
    MyDocument doc;
    doc.setDialogs(&m_dialogs);
    m_dialogs.queuePanelCancel();  // no previous release
    const QList<LocFilePtr> added = doc.addFiles(QStringList{path(QStringLiteral("Foo.app"))});
    QCOMPARE(names(added), (QStringList{QStringLiteral("InfoPlist.strings"), QStringLiteral("Localizable.strings"),
                                        QStringLiteral("MainMenu.nib")}));
    QCOMPARE(doc.files(), added);
    QVERIFY(added.at(0)->path().endsWith(QLatin1String("Foo.app/Contents/Resources/en.lproj/InfoPlist.strings")));
    QCOMPARE(m_dialogs.panels().size(), 1);
    QCOMPARE(m_dialogs.panels().at(0).allowedExtensions, QStringList{QStringLiteral("app")});
    QVERIFY(m_dialogs.panels().at(0).bundleExtensions.contains(QStringLiteral("app")));
}

void TestAddFiles::bundlePrefersKeyFolder()
{
    file(QStringLiteral("Foo.app/Contents/Resources/English.lproj/A.strings"));
    file(QStringLiteral("Foo.app/Contents/Resources/en.lproj/B.strings"));
    MyDocument doc;
    doc.setDialogs(&m_dialogs);
    doc.addFiles(QStringList{path(QStringLiteral("Foo.app"))});
    QCOMPARE(names(doc.files()), QStringList{QStringLiteral("A.strings")});
    // Every file reads the dictionary of the document's pair.
    QCOMPARE(m_fake->reads.at(0).dictionary, OptString(doc.dictionaryPath()));
}

void TestAddFiles::previousReleaseByAbbreviation()
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

void TestAddFiles::bundleWithoutPreviousOrBaseFolder()
{
    file(QStringLiteral("Foo.app/Contents/Resources/en.lproj/A.strings"));
    file(QStringLiteral("Bar.app/Contents/Resources/de.lproj/A.strings"));
    MyDocument doc;
    doc.setDialogs(&m_dialogs);
    doc.addFiles(QStringList{path(QStringLiteral("Foo.app")), path(QStringLiteral("Bar.app"))});
    QCOMPARE(m_fake->reads.size(), 1);
    QVERIFY(!m_fake->reads.at(0).previous);
    QCOMPARE(doc.files().size(), 1);  // Bar.app has no English folder under either name
    QVERIFY(doc.isDocumentEdited());

    MyDocument empty;
    empty.setDialogs(&m_dialogs);
    empty.addFiles(QStringList{path(QStringLiteral("Bar.app"))});
    QVERIFY(empty.files().isEmpty());
    QVERIFY(empty.isDocumentEdited());  // marked changed whether or not anything was added
}

void TestAddFiles::previousPanelOncePerPathInOrder()
{
    const QString a = file(QStringLiteral("p/en.lproj/A.strings"));
    const QString b = file(QStringLiteral("p/en.lproj/B.strings"));
    const QString rtf = file(QStringLiteral("p/en.lproj/C.rtf"));
    const QString prevB = file(QStringLiteral("p/fr.lproj/B.strings"), "\"k\" = \"w\";\n");
    MyDocument doc;
    doc.setDialogs(&m_dialogs);
    m_dialogs.queuePanelCancel();
    m_dialogs.queuePanelAnswer(prevB);
    m_dialogs.queuePanelCancel();
    doc.addFiles(QStringList{a, b, rtf});
    const QList<OpenPanelOptions> panels = m_dialogs.panels();
    QCOMPARE(panels.size(), 3);
    QCOMPARE(panels.at(0).message, QStringLiteral("A.stringsSelect previous version localized file if exist"));
    QCOMPARE(panels.at(1).presetName, QStringLiteral("B.strings"));
    QCOMPARE(panels.at(1).prompt, QStringLiteral("Choose"));
    QCOMPARE(panels.at(2).allowedExtensions, QStringList{QStringLiteral("rtf")});
    QVERIFY(!panels.at(0).allowsMultipleSelection && !panels.at(0).canChooseDirectories);
    // The rtf file makes no LocFile and is skipped without a word.
    QCOMPARE(names(doc.files()), (QStringList{QStringLiteral("A.strings"), QStringLiteral("B.strings")}));
    QVERIFY(!m_fake->reads.at(0).previous);
    QCOMPARE(m_fake->reads.at(1).previous, OptString(prevB));
    QCOMPARE(doc.files().at(1)->allEntries().at(0)->localizedWord(), OptString(QStringLiteral("w")));
    QVERIFY(m_dialogs.alerts().isEmpty());
}

void TestAddFiles::previousPanelStartFolder_data()
{
    QTest::addColumn<bool>("targetFolderExists");
    QTest::newRow("target folder beside the base folder") << true;
    QTest::newRow("no target folder") << false;
}

void TestAddFiles::previousPanelStartFolder()
{
    QFETCH(bool, targetFolderExists);
    const QString a = file(QStringLiteral("r/English.lproj/A.strings"));
    if (targetFolderExists) QDir().mkpath(path(QStringLiteral("r/French.lproj")));
    MyDocument doc;
    doc.setDialogs(&m_dialogs);
    doc.addFiles(QStringList{a});
    const QString expected = path(targetFolderExists ? QStringLiteral("r/French.lproj") : QStringLiteral("r"));
    QCOMPARE(QDir(m_dialogs.panels().at(0).startFolder).canonicalPath(), QDir(expected).canonicalPath());
}

void TestAddFiles::readingErrorsShowASheetAndStillAdd()
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

void TestAddFiles::addFilePanel()
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

void TestAddFiles::busyWhileAdding()
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

void TestAddFiles::interfaceFileFromTwoTables_data()
{
    QTest::addColumn<QByteArray>("translations");
    QTest::addColumn<bool>("made");
    QTest::addColumn<int>("panels");
    QTest::newRow("both tables readable") << QByteArray("\"Cancel\" = \"Annuler\";") << true << 3;
    QTest::newRow("translations not UTF-8") << QByteArray("\"Cancel\" = \"\xFF\";") << false << 2;
    QTest::newRow("translations empty") << QByteArray() << false << 2;
}

void TestAddFiles::interfaceFileFromTwoTables()
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

QTEST_GUILESS_MAIN(TestAddFiles)
#include "test_add_files.moc"
