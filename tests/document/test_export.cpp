// Export: the destination choice (plain folder, bundle language folder found or created, the
// overwrite warning and its "Cancel"), the order of writing and merging, and what the user is told
// when files or the dictionary could not be written.
#include "DocumentTestSupport.h"
#include "LocalizedText.h"
#include "MyDocument.h"
#include "NotificationCenter.h"
#include "ScriptedDialogs.h"
#include "Settings.h"
#include "TestSupport.h"

#include <QSignalSpy>

class TestExport : public QObject {
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void nothingToExport();
    void plainFolderWithoutWarning();
    void panelOptions_data();
    void panelOptions();
    void bundleWithoutLanguageFolderGetsKeyFolder();
    void bundleWithAbbreviationFolderWarns();
    void cancelInWarningShowsPanelAgain();
    void laterFileWinsInDictionary();
    void selectedFilesOnlyInTheirOrder();
    void changeMarkBusyAndSpellCheck();
    void unwritableDestinationIsReported();
    void unreadableDictionaryIsKeptAside();
    void destinationWithoutPanel();

private:
    std::unique_ptr<TestSupport::Sandbox> m_box;
    std::shared_ptr<FakeStringsHandler> m_fake;
    ScriptedDialogs m_dialogs;
    std::unique_ptr<MyDocument> m_doc;
    QString path(const QString &relative) const { return m_box->path(relative); }
    // Two files in r/English.lproj; A's "Open" is translated, B holds "Open" too.
    void fill();
    QString dictionary() const { return m_doc->dictionaryPath(); }
};

void TestExport::init()
{
    m_box = std::make_unique<TestSupport::Sandbox>();  // a fresh tree per test
    setInterfaceLanguage(QStringLiteral("en"));
    m_fake = installFakeStringsHandler();
    m_dialogs = ScriptedDialogs();
    m_doc = std::make_unique<MyDocument>();
    m_doc->setDialogs(&m_dialogs);
}

void TestExport::cleanup()
{
    m_doc.reset();
    for (const auto &key : Settings::keys()) Settings::instance().remove(key.name);
}

void TestExport::fill()
{
    const QString a = TestSupport::writeFile(path(QStringLiteral("r/English.lproj/A.strings")),
                                             "\"open\" = \"Open\";\n\"quit\" = \"Quit\";\n");
    const QString b = TestSupport::writeFile(path(QStringLiteral("r/English.lproj/B.strings")), "\"o\" = \"Open\";\n");
    m_doc->addFiles(QList<QPair<QString, OptString>>{{a, std::nullopt}, {b, std::nullopt}});
    m_doc->files().at(0)->allEntries().at(0)->setLocalizedWord(QStringLiteral("Ouvrir"));
    m_doc->updateChangeCount(MyDocument::ChangeCleared);
}

void TestExport::nothingToExport()
{
    const ExportResult r = m_doc->makeLocalizedFilesAction({});
    QVERIFY(r.cancelled);
    QVERIFY(m_dialogs.shown().isEmpty());
    QVERIFY(!QFileInfo::exists(dictionary()));
}

void TestExport::plainFolderWithoutWarning()
{
    fill();
    const QString out = path(QStringLiteral("out"));
    TestSupport::writeFile(out + QLatin1String("/A.strings"), "old");
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
    QVERIFY(r.merge.written);
    QVERIFY(QFileInfo::exists(dictionary()));
}

void TestExport::panelOptions_data()
{
    QTest::addColumn<bool>("targetFolderExists");
    QTest::newRow("target folder beside the base folder") << true;
    QTest::newRow("no target folder: the panel's default") << false;
}

void TestExport::panelOptions()
{
    QFETCH(bool, targetFolderExists);
    fill();
    if (targetFolderExists) QDir().mkpath(path(QStringLiteral("r/French.lproj")));
    m_doc->makeAllLocalizedFilesAction();  // cancelled by the script
    QCOMPARE(m_dialogs.panels().size(), 1);
    const OpenPanelOptions p = m_dialogs.panels().at(0);
    QCOMPARE(p.message, QStringLiteral("Select folder to save localized files"));
    QCOMPARE(p.prompt, QStringLiteral("Export"));
    QVERIFY(p.canChooseDirectories && p.canCreateDirectories && !p.allowsMultipleSelection);
    QVERIFY(p.allowedExtensions.contains(QStringLiteral("app")));
    QCOMPARE(p.startFolder, targetFolderExists ? path(QStringLiteral("r/French.lproj")) : QString());
    QVERIFY(!QFileInfo::exists(dictionary()));  // cancelled: nothing written, nothing merged
}

void TestExport::bundleWithoutLanguageFolderGetsKeyFolder()
{
    fill();
    // Folders named by keys: the new one is too (abbreviation-named ones: see test_bundle_layout).
    QDir().mkpath(path(QStringLiteral("T.app/Contents/Resources/German.lproj")));
    m_dialogs.queuePanelAnswer(path(QStringLiteral("T.app")));
    const ExportResult r = m_doc->makeAllLocalizedFilesAction();
    QCOMPARE(r.folder, path(QStringLiteral("T.app/Contents/Resources/French.lproj")));
    QVERIFY(QFileInfo::exists(r.folder + QLatin1String("/B.strings")));
    QVERIFY(m_dialogs.alerts().isEmpty());
}

void TestExport::bundleWithAbbreviationFolderWarns()
{
    fill();
    QDir().mkpath(path(QStringLiteral("T.app/Contents/Resources/fr.lproj")));
    m_dialogs.queuePanelAnswer(path(QStringLiteral("T.app")));
    m_dialogs.queueAlertButton(0);
    const ExportResult r = m_doc->makeAllLocalizedFilesAction();
    QCOMPARE(m_dialogs.alerts().size(), 1);
    const Alert a = m_dialogs.alerts().at(0);
    QCOMPARE(a.title, QStringLiteral("Vocabrix may overrite resources"));
    QCOMPARE(a.message, QStringLiteral("There is a fr.lproj folder in the package you've chosen and Vocabrix may be "
                                       "going to overwrite resources."));
    QCOMPARE(a.buttons, (QStringList{QStringLiteral("OK"), QStringLiteral("Cancel")}));
    QCOMPARE(r.folder, path(QStringLiteral("T.app/Contents/Resources/fr.lproj")));
    QVERIFY(QFileInfo::exists(r.folder + QLatin1String("/A.strings")));
    QVERIFY(!QFileInfo::exists(path(QStringLiteral("T.app/Contents/Resources/French.lproj"))));
}

void TestExport::cancelInWarningShowsPanelAgain()
{
    fill();
    QDir().mkpath(path(QStringLiteral("T.app/Contents/Resources/French.lproj")));
    m_dialogs.queuePanelAnswer(path(QStringLiteral("T.app")));
    m_dialogs.queueAlertButton(1);
    m_dialogs.queuePanelCancel();
    QSignalSpy will(&NotificationCenter::instance(), &NotificationCenter::dictWillExportFile);
    const ExportResult r = m_doc->makeAllLocalizedFilesAction();
    QVERIFY(r.cancelled);
    QCOMPARE(m_dialogs.panels().size(), 2);
    QCOMPARE(m_dialogs.panels().at(1).message, m_dialogs.panels().at(0).message);
    QVERIFY(m_dialogs.alerts().at(0).message.contains(QLatin1String("French.lproj")));
    QVERIFY(QDir(path(QStringLiteral("T.app/Contents/Resources/French.lproj"))).isEmpty());
    QCOMPARE(will.count(), 0);
    QVERIFY(!QFileInfo::exists(dictionary()));

    // Cancel, then a plain folder: the second answer is taken.
    m_dialogs.clearLog();
    m_dialogs.queuePanelAnswer(path(QStringLiteral("T.app")));
    m_dialogs.queueAlertButton(1);
    m_dialogs.queuePanelAnswer(path(QStringLiteral("plain")));
    QDir().mkpath(path(QStringLiteral("plain")));
    QCOMPARE(m_doc->makeAllLocalizedFilesAction().folder, path(QStringLiteral("plain")));
}

void TestExport::laterFileWinsInDictionary()
{
    fill();
    m_doc->files().at(1)->allEntries().at(0)->setLocalizedWord(QStringLiteral("Ouvre"));
    TestSupport::writeFile(dictionary(), "\"Keep\" = \"Garder\";\n\"Open\" = \"old\";\n");
    m_dialogs.queuePanelAnswer(path(QStringLiteral("out")));
    QDir().mkpath(path(QStringLiteral("out")));
    const ExportResult r = m_doc->makeAllLocalizedFilesAction();
    QCOMPARE(r.pairs.value(QStringLiteral("Open")), QStringLiteral("Ouvre"));
    const auto stored = dictionaryWithContentsOfFile(dictionary());
    QVERIFY(stored);
    QCOMPARE(stored->value(QStringLiteral("Open")), QStringLiteral("Ouvre"));
    QCOMPARE(stored->value(QStringLiteral("Keep")), QStringLiteral("Garder"));
    QVERIFY(!stored->contains(QStringLiteral("Quit")));  // an untouched, unchecked word teaches nothing
}

void TestExport::selectedFilesOnlyInTheirOrder()
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

void TestExport::changeMarkBusyAndSpellCheck()
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

void TestExport::unwritableDestinationIsReported()
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

void TestExport::unreadableDictionaryIsKeptAside()
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

void TestExport::destinationWithoutPanel()
{
    fill();
    QDir().mkpath(path(QStringLiteral("T.app/Contents/Resources/fr.lproj")));
    QString refusal;
    ExportResult r = m_doc->makeLocalizedFilesInto(m_doc->files(), path(QStringLiteral("T.app")), false, &refusal);
    QVERIFY(r.cancelled);
    QVERIFY(refusal.contains(QLatin1String("fr.lproj")));
    QVERIFY(QDir(path(QStringLiteral("T.app/Contents/Resources/fr.lproj"))).isEmpty());
    r = m_doc->makeLocalizedFilesInto(m_doc->files(), path(QStringLiteral("T.app")), true, &refusal);
    QCOMPARE(r.written.size(), 2);
    r = m_doc->makeLocalizedFilesInto(m_doc->files(), path(QStringLiteral("new/folder")), false, &refusal);
    QCOMPARE(r.folder, path(QStringLiteral("new/folder")));
    QCOMPARE(r.written.size(), 2);
    QVERIFY(m_dialogs.panels().isEmpty());
}

QTEST_GUILESS_MAIN(TestExport)
#include "test_export.moc"
