// The document's archive and its life on disk (save, open, revert, refusal of foreign or damaged
// files), the change count, and the observations of settings and notifications.
#include "DocumentArchive.h"
#include "DocumentTestSupport.h"
#include "MyDocument.h"
#include "NotificationCenter.h"
#include "Settings.h"
#include "TestSupport.h"

#include <QSignalSpy>

class TestDocumentArchive : public QObject {
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void newDocumentArchive();
    void saveAndReopenKeepsEverything();
    void reopenedFilesFollowCurrentSettings();
    void refusedArchives_data();
    void refusedArchives();
    void everyTruncationIsRefused();
    void fileLifecycle();
    void unwritableAndMissingFiles();
    void changeCount();
    void filterSettingsReRunTheSearch();
    void spellCheckingIsSavedWithTheDocument();

private:
    std::unique_ptr<TestSupport::Sandbox> m_box;
    std::shared_ptr<FakeStringsHandler> m_fake;
    // A document with two files of three entries, one entry translated.
    void fill(MyDocument &doc);
};

void TestDocumentArchive::init()
{
    m_box = std::make_unique<TestSupport::Sandbox>();  // a fresh tree per test
    m_fake = installFakeStringsHandler();
}

void TestDocumentArchive::cleanup()
{
    for (const auto &key : Settings::keys()) Settings::instance().remove(key.name);
}

void TestDocumentArchive::fill(MyDocument &doc)
{
    const QString a = TestSupport::writeFile(m_box->path(QStringLiteral("en.lproj/A.strings")),
                                             "\"k1\" = \"One\";\n\"k2\" = \"Two\";\n\"k3\" = \" \";\n");
    const QString b = TestSupport::writeFile(m_box->path(QStringLiteral("en.lproj/B.strings")),
                                             "\"q\" = \"Quitter \xE2\x86\x92 now\";\n");
    doc.addFiles(QList<QPair<QString, OptString>>{{a, std::nullopt}, {b, std::nullopt}});
    QCOMPARE(doc.files().size(), 2);
    doc.files().at(0)->allEntries().at(0)->setLocalizedWord(QStringLiteral("Un"));
}

void TestDocumentArchive::newDocumentArchive()
{
    MyDocument doc;
    QString error;
    const auto contents = DocumentArchive::decode(doc.dataRepresentationOfType(), &error);
    QVERIFY2(contents, qPrintable(error));
    QCOMPARE(contents->title, QStringLiteral("Title"));
    QCOMPARE(contents->locLangFrom, 1);
    QCOMPARE(contents->locLangTo, 2);
    QVERIFY(contents->files.isEmpty());
    // The file list is a nested archive of its own, an empty list here.
    const auto files = DocumentArchive::decodeFiles(DocumentArchive::encodeFiles({}), &error);
    QVERIFY(files && files->isEmpty());
}

void TestDocumentArchive::saveAndReopenKeepsEverything()
{
    MyDocument doc;
    fill(doc);
    doc.setTitle(QStringLiteral("Über \"project\""));
    doc.setLocLangFrom(3);
    doc.setLocLangTo(15);
    // An entry whose mark was never set must come back unset, not false.
    QList<LocEntryPtr> entries = doc.files().at(1)->allEntries();
    entries.append(std::make_shared<LocEntry>(QStringLiteral("\"x\" = \"y\";"), std::nullopt));
    doc.files().at(1)->setAllEntries(entries);
    const QByteArray bytes = doc.dataRepresentationOfType();

    MyDocument reopened;
    QSignalSpy posted(&NotificationCenter::instance(), &NotificationCenter::locEntryHasModified);
    QString error;
    QVERIFY2(reopened.loadDataRepresentation(bytes, QString(), &error), qPrintable(error));
    QCOMPARE(posted.count(), 0);  // reading restores marks, it does not set them
    QCOMPARE(reopened.title(), doc.title());
    QCOMPARE(reopened.locLangFrom(), 3);
    QCOMPARE(reopened.locLangTo(), 15);
    QCOMPARE(reopened.files().size(), 2);
    for (int f = 0; f < 2; ++f) {
        const LocFilePtr &was = doc.files().at(f);
        const LocFilePtr &now = reopened.files().at(f);
        QCOMPARE(now->path(), was->path());
        QCOMPARE(now->allEntries().size(), was->allEntries().size());
        for (qsizetype i = 0; i < was->allEntries().size(); ++i) {
            QCOMPARE(now->allEntries().at(i)->entry(), was->allEntries().at(i)->entry());
            QCOMPARE(now->allEntries().at(i)->check(), was->allEntries().at(i)->check());
        }
    }
    QCOMPARE(reopened.files().at(1)->allEntries().last()->check(), std::optional<bool>());
    QCOMPARE(reopened.files().at(0)->status(), doc.files().at(0)->status());
    QCOMPARE(reopened.dataRepresentationOfType(), bytes);  // the same document gives the same bytes
}

void TestDocumentArchive::reopenedFilesFollowCurrentSettings()
{
    MyDocument doc;
    fill(doc);
    const QByteArray bytes = doc.dataRepresentationOfType();
    QCOMPARE(doc.files().at(0)->entries().size(), 3);
    Settings::instance().setValue(SettingsKey::IgnoreLocalizedWords, true);
    MyDocument reopened;
    QVERIFY(reopened.loadDataRepresentation(bytes));
    // "Un" and the single space are checked, so only "Two" is shown.
    QCOMPARE(reopened.files().at(0)->entries().size(), 1);
    QCOMPARE(reopened.files().at(0)->allEntries().size(), 3);
}

void TestDocumentArchive::refusedArchives_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QString>("reason");
    MyDocument doc;
    const QByteArray good = doc.dataRepresentationOfType();
    QTest::newRow("empty") << QByteArray() << "not a Vocabrix document";
    QTest::newRow("text") << QByteArray("Hello, world\n") << "not a Vocabrix document";
    QTest::newRow("a string table") << QByteArray("\"a\" = \"b\";") << "not a Vocabrix document";
    QByteArray newer = good;
    newer[11] = char(9);  // format version 9 (big-endian quint32 after the 8-byte magic)
    QTest::newRow("newer format") << newer << "newer version";
    QByteArray kind = good;
    kind[12] = char(2);  // a file list where a document is expected
    QTest::newRow("wrong kind") << kind << "damaged";
    QTest::newRow("trailing bytes") << good + QByteArray("xx") << "damaged";
    QByteArray huge = good;
    // The outer map's entry count, after magic, version, kind and the class header.
    const qsizetype countAt = 8 + 4 + 1 + 4 + int(strlen("Dictionary")) + 4;
    huge[countAt] = char(0x7F);
    QTest::newRow("absurd count") << huge << "damaged";
    QByteArray renamed = good;
    renamed.replace("Dictionary", "Dictionarx");
    QTest::newRow("foreign class") << renamed << "damaged";
    QByteArray noTitle = good;
    noTitle.replace("title", "titlf");
    QTest::newRow("missing key") << noTitle << "damaged";
}

void TestDocumentArchive::refusedArchives()
{
    QFETCH(QByteArray, bytes);
    QFETCH(QString, reason);
    MyDocument doc;
    fill(doc);
    doc.setTitle(QStringLiteral("kept"));
    QString error;
    QVERIFY(!doc.loadDataRepresentation(bytes, QString(), &error));
    QVERIFY2(error.contains(reason), qPrintable(error));
    // A refused archive leaves the document as it was.
    QCOMPARE(doc.title(), QStringLiteral("kept"));
    QCOMPARE(doc.files().size(), 2);
}

void TestDocumentArchive::everyTruncationIsRefused()
{
    MyDocument doc;
    fill(doc);
    const QByteArray bytes = doc.dataRepresentationOfType();
    for (qsizetype n = 0; n < bytes.size(); ++n) {
        MyDocument other;
        QString error;
        QVERIFY2(!other.loadDataRepresentation(bytes.left(n), QString(), &error), qPrintable(QString::number(n)));
        QVERIFY(!error.isEmpty());
    }
}

void TestDocumentArchive::fileLifecycle()
{
    MyDocument doc;
    QCOMPARE(doc.displayName(), QStringLiteral("Untitled"));
    fill(doc);
    QVERIFY(doc.isDocumentEdited());
    const QString path = m_box->path(QStringLiteral("Project.") + MyDocument::documentExtension());
    QString error;
    QVERIFY2(doc.writeToFile(path, &error), qPrintable(error));
    QVERIFY(!doc.isDocumentEdited());
    QCOMPARE(doc.filePath(), path);
    QCOMPARE(doc.displayName(), QStringLiteral("Project.vocabrix"));

    doc.setTitle(QStringLiteral("changed"));
    doc.files().at(0)->allEntries().at(1)->setLocalizedWord(QStringLiteral("Deux"));
    doc.update();
    QVERIFY(doc.revertToSaved(&error));
    QCOMPARE(doc.title(), QStringLiteral("Title"));
    QCOMPARE(doc.files().at(0)->allEntries().at(1)->localizedWord(), OptString(QStringLiteral("Two")));
    QVERIFY(!doc.isDocumentEdited());

    MyDocument opened;
    QVERIFY(opened.readFromFile(path, &error));
    QCOMPARE(opened.files().size(), 2);
    QCOMPARE(QDir(m_box->path()).entryList({QStringLiteral("Project*")}), QStringList{QStringLiteral("Project.vocabrix")});
}

void TestDocumentArchive::unwritableAndMissingFiles()
{
    MyDocument doc;
    QString error;
    const QString blocker = TestSupport::writeFile(m_box->path(QStringLiteral("plainfile")), "x");
    QVERIFY(!doc.writeToFile(blocker + QLatin1String("/Doc.vocabrix"), &error));
    QVERIFY(error.contains(QLatin1String("could not be saved")));
    QVERIFY(!doc.readFromFile(m_box->path(QStringLiteral("Nowhere.vocabrix")), &error));
    QVERIFY(error.contains(QLatin1String("Nowhere.vocabrix")));
    TestSupport::writeFile(m_box->path(QStringLiteral("Foreign.vocabrix")), "PK\x03\x04 zip");
    QVERIFY(!doc.readFromFile(m_box->path(QStringLiteral("Foreign.vocabrix")), &error));
    QVERIFY(error.contains(QLatin1String("Foreign.vocabrix")) && error.contains(QLatin1String("not a Vocabrix document")));
    QVERIFY(!doc.revertToSaved(&error));
    QVERIFY(doc.filePath().isEmpty());
}

void TestDocumentArchive::changeCount()
{
    MyDocument doc, other;
    fill(doc);
    doc.updateChangeCount(MyDocument::ChangeCleared);
    QSignalSpy edited(&doc, &MyDocument::documentEditedChanged);
    const LocEntryPtr entry = doc.files().at(0)->allEntries().at(1);

    // Neither of these marks the document.
    doc.setTitle(QStringLiteral("New title"));
    doc.setLocLangTo(4);
    doc.checkLocalized({entry});
    doc.search(QStringLiteral("Two"));
    NotificationCenter::instance().postDocumentHasChanged(&other);
    QVERIFY(!doc.isDocumentEdited());
    QVERIFY(entry->isChecked());

    NotificationCenter::instance().postDocumentHasChanged(&doc);
    QVERIFY(doc.isDocumentEdited());
    QCOMPARE(edited.count(), 1);
    doc.updateChangeCount(MyDocument::ChangeCleared);
    doc.switchButton(entry, false);
    QVERIFY(doc.isDocumentEdited());
    QVERIFY(!entry->isChecked());
    doc.updateChangeCount(MyDocument::ChangeCleared);
    doc.removeFiles({doc.files().at(1)});
    QVERIFY(doc.isDocumentEdited());
    QCOMPARE(doc.files().size(), 1);
}

void TestDocumentArchive::filterSettingsReRunTheSearch()
{
    MyDocument doc;
    fill(doc);
    doc.search(QStringLiteral("o"));  // "One"/"Un" (its comment), "Two"; and "Quitter → now"
    QCOMPARE(doc.files().at(0)->entries().size(), 2);
    QSignalSpy searched(&doc, &MyDocument::searchPerformed);
    Settings::instance().setValue(SettingsKey::IgnoreLocalizedWords, true);
    QCOMPARE(searched.count(), 1);
    // Checked entries leave, and the search text still applies.
    QCOMPARE(doc.files().at(0)->entries().size(), 1);
    QCOMPARE(doc.files().at(0)->entries().at(0)->baseWord(), OptString(QStringLiteral("Two")));
    QCOMPARE(doc.files().at(1)->entries().size(), 1);
    Settings::instance().setValue(SettingsKey::IgnoreEmptyWords, true);
    QCOMPARE(searched.count(), 2);
}

void TestDocumentArchive::spellCheckingIsSavedWithTheDocument()
{
    Settings &settings = Settings::instance();
    MyDocument headless;
    headless.dataRepresentationOfType();
    QCOMPARE(settings.value(SettingsKey::ContinuousSpellCheckingEnabled), QVariant(false));
    MyDocument windowed;
    windowed.setContinuousSpellCheckingState(true);
    windowed.dataRepresentationOfType();
    QCOMPARE(settings.value(SettingsKey::ContinuousSpellCheckingEnabled), QVariant(true));
    QVERIFY(TestSupport::readFile(m_box->path(QStringLiteral("settings.ini"))).contains("ContinuousSpellCheckingEnabled"));
}

QTEST_GUILESS_MAIN(TestDocumentArchive)
#include "test_document_archive.moc"
