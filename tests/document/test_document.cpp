// The document itself: its archive and life on disk, the change count, and the language table
// with everything derived from a tag.
#include "CaseData.h"
#include "DocumentTestSupport.h"
#include "Languages.h"
#include "LocalizedText.h"
#include "MyDocument.h"
#include "NotificationCenter.h"
#include "Settings.h"
#include "VXControllerModel.h"

#include <QRegularExpression>
#include <QSignalSpy>

namespace {

class RecordingPopup : public LanguagePopup {
public:
    QStringList titles;
    QList<int> tags;
    void removeAllItems() override { titles.clear(), tags.clear(); }
    void addItemWithTitle(const QString &title) override { titles.append(title), tags.append(0); }
    qsizetype numberOfItems() const override { return titles.size(); }
    void setTagOfItemAtIndex(qsizetype index, int tag) override { tags[index] = tag; }
};

// Language tables of our own: rows keyed "01".."12" named L1.. with keys Key1.. and
// abbreviations k1..; the other has rows 01, 02 and 04.
QString languageTable(const char *name)
{
    return TestSupport::dataDir(QStringLiteral("document/")) + QLatin1String(name);
}

}  // namespace

class TestDocument : public QObject {
    Q_OBJECT
    std::unique_ptr<TestSupport::Sandbox> m_box;
    std::shared_ptr<FakeStringsHandler> m_fake;
    // A document with two files of three entries, one entry translated.
    void fill(MyDocument &doc)
    {
        const QString a = TestSupport::writeFile(m_box->path(QStringLiteral("en.lproj/A.strings")),
                                                 "\"k1\" = \"One\";\n\"k2\" = \"Two\";\n\"k3\" = \" \";\n");
        const QString b = TestSupport::writeFile(m_box->path(QStringLiteral("en.lproj/B.strings")),
                                                 "\"q\" = \"Quitter \xE2\x86\x92 now\";\n");
        doc.addFiles(QList<QPair<QString, OptString>>{{a, std::nullopt}, {b, std::nullopt}});
        QCOMPARE(doc.files().size(), 2);
        doc.files().at(0)->allEntries().at(0)->setLocalizedWord(QStringLiteral("Un"));
    }

private slots:
    void init()
    {
        m_box = std::make_unique<TestSupport::Sandbox>();
        m_fake = installFakeStringsHandler();
        VXControllerModel::initialize();
    }
    void cleanup()
    {
        Languages::setTablePath(QString());
        VXControllerModel::setBundleTypesPath(QString());
        setInterfaceLanguage(QString());
        for (const auto &key : Settings::keys()) Settings::instance().remove(key.name);
    }

    void saveAndReopenKeepsEverything()
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

    void reopenedFilesFollowCurrentSettings()
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

    void refusedArchives_data()
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
        QByteArray classNewer = good;
        classNewer[countAt - 1] = char(99);  // the class version, just before the count
        QTest::newRow("newer class version") << classNewer << "damaged";
        QByteArray renamed = good;
        renamed.replace("Dictionary", "Dictionarx");
        QTest::newRow("foreign class") << renamed << "damaged";
        QByteArray noTitle = good;
        noTitle.replace("title", "titlf");
        QTest::newRow("missing key") << noTitle << "damaged";
    }

    void refusedArchives()
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

    void everyTruncationIsRefused()
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

    void fileLifecycle()
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

    void unwritableAndMissingFiles()
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

    void changeCount()
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

    void filterSettingsReRunTheSearch()
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

    void spellCheckingIsSavedWithTheDocument()
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

    void builtInTableIsWellFormed()
    {
        const LanguageTable table = languageDictionary();
        QVERIFY(table.size() >= 30);
        QVERIFY(table.size() <= 99);
        QSet<QString> names, keys;
        int n = 1;
        for (auto it = table.cbegin(); it != table.cend(); ++it, ++n) {
            QCOMPARE(it.key(), QStringLiteral("%1").arg(n, 2, 10, QLatin1Char('0')));
            QVERIFY2(!it->key.contains(u'-'), qPrintable(it->key));  // would break dictionary file names
            QVERIFY(!it->key.isEmpty() && !it->abbreviation.isEmpty());
            QVERIFY2(!names.contains(it->name), qPrintable(it->name));  // popups hold one item per title
            QVERIFY2(!keys.contains(it->key), qPrintable(it->key));
            names.insert(it->name);
            keys.insert(it->key);
        }
        QCOMPARE(table.value(QStringLiteral("01")).abbreviation, QStringLiteral("en"));
        QCOMPARE(table.value(QStringLiteral("02")).abbreviation, QStringLiteral("fr"));
        QStringList abbreviations;
        for (const LanguageRow &row : table) abbreviations.append(row.abbreviation);
        for (const char *modern : {"zh-Hans", "zh-Hant", "pt-BR", "de", "ja", "es"})
            QVERIFY2(abbreviations.contains(QLatin1String(modern)), modern);
    }

    void tagLookup_data() { TestSupport::addTableRows(QStringLiteral("document"), QStringLiteral("tags.tsv"), {QStringLiteral("tagText"), QStringLiteral("key")}); }
    void tagLookup()
    {
        QFETCH(QString, tagText);
        QFETCH(QString, key);
        const int tag = tagText.toInt();
        Languages::setTablePath(languageTable("twelve-languages.plist"));
        const OptString k = languageKeyForLanguage(tag);
        const OptString a = languageAbbreviationForLanguage(tag);
        if (key.isEmpty()) {
            QVERIFY(!k);
            QVERIFY(!a);
        } else {
            QCOMPARE(k, OptString(key));
            QCOMPARE(a, OptString(QStringLiteral("k%1").arg(tag)));
        }
    }

    void popupsHoldEveryRowInKeyOrder()
    {
        Languages::setTablePath(languageTable("twelve-languages.plist"));
        RecordingPopup from, to;
        from.addItemWithTitle(QStringLiteral("stale"));
        setLanguageNameForPopupButtons({&from, &to});
        QStringList expectedTitles;
        QList<int> expectedTags;
        for (int i = 1; i <= 12; ++i) expectedTitles << QStringLiteral("L%1").arg(i), expectedTags << i;
        QCOMPARE(from.titles, expectedTitles);
        QCOMPARE(from.tags, expectedTags);
        QCOMPARE(to.titles, expectedTitles);
        QCOMPARE(to.tags, expectedTags);
        setLanguageNameForPopupButtons({&from});
        QCOMPARE(from.numberOfItems(), 12);
    }

    void gapsAndMissingTable()
    {
        Languages::setTablePath(languageTable("row-03-missing.plist"));
        QVERIFY(!languageKeyForLanguage(3));  // position 3 is row "04", but tag 3 reads row "03"
        QCOMPARE(languageKeyForLanguage(4), OptString(QStringLiteral("Key4")));

        Languages::setTablePath(m_box->path(QStringLiteral("missing.plist")));
        QVERIFY(languageDictionary().isEmpty());
        RecordingPopup popup;
        popup.addItemWithTitle(QStringLiteral("stale"));
        setLanguageNameForPopupButtons({&popup});
        QCOMPARE(popup.numberOfItems(), 0);
        MyDocument doc;
        QVERIFY(!doc.targetFolderName());
        QVERIFY(doc.dictionaryPath().isEmpty());
        const MergeResult refused = doc.saveDictionary(StringMap());
        QVERIFY(!refused.written);
        QVERIFY(!refused.message.isEmpty());
    }

    void languagesFromText_data() { TestSupport::addTableRows(QStringLiteral("document"), QStringLiteral("language-names.tsv"), {QStringLiteral("text"), QStringLiteral("tag")}); }
    void languagesFromText()
    {
        QFETCH(QString, text);
        QFETCH(QString, tag);
        QCOMPARE(tagForLanguage(text).value_or(0), tag.toInt());
        const auto zh = tagForLanguage(QStringLiteral("zh-hans"));
        QVERIFY(zh);
        QCOMPARE(languageAbbreviationForLanguage(*zh), OptString(QStringLiteral("zh-Hans")));
        QCOMPARE(tagForLanguageKey(*languageKeyForLanguage(*zh)), zh);
    }

    void documentFolderNames()
    {
        MyDocument doc;
        QCOMPARE(doc.baseFolderName(), OptString(QStringLiteral("English.lproj")));
        QCOMPARE(doc.targetFolderName(), OptString(QStringLiteral("French.lproj")));
        QCOMPARE(doc.targetLanguageAbbreviation(), OptString(QStringLiteral("fr")));
        doc.setLocLangTo(*tagForLanguage(QStringLiteral("pt-BR")));
        QVERIFY(!doc.targetFolderName()->contains(u'-'));
        QCOMPARE(doc.targetLanguageAbbreviation(), OptString(QStringLiteral("pt-BR")));
    }

    void dictionaryPathFollowsLanguages()
    {
        MyDocument doc;
        QVERIFY(doc.dictionaryPath().endsWith(QLatin1String("/Vocabrix/English-French.strings")));
        QSignalSpy reset(&doc, &MyDocument::dictionaryPathReset);
        doc.setLocLangTo(3);
        QCOMPARE(reset.count(), 1);
        QVERIFY(reset.last().first().toString().endsWith(QLatin1String("/English-German.strings")));
        doc.setLocLangFrom(3);
        QVERIFY(reset.last().first().toString().endsWith(QLatin1String("/German-German.strings")));
        QVERIFY(!doc.isDocumentEdited());  // a language change marks nothing
    }

    void settingsDefaults()
    {
        Settings &settings = Settings::instance();
        MyDocument fresh;
        for (const QString &key : {SettingsKey::IgnoreEmptyWords, SettingsKey::IgnoreLocalizedWords,
                                   SettingsKey::ContinuousSpellCheckingEnabled})
            QCOMPARE(settings.value(key), QVariant(false));

        settings.setValue(SettingsKey::TargetLanguage, 5);
        QCOMPARE(MyDocument().locLangTo(), 5);
        QCOMPARE(fresh.locLangTo(), 2);  // open documents keep their own languages
        settings.remove(SettingsKey::TargetLanguage);
        QCOMPARE(MyDocument().locLangTo(), 2);
    }

    void bundleTypesAndAcceptedTypes()
    {
        const QStringList bundles = VXControllerModel::readBundleTypes();
        for (const char *ext : {"app", "framework", "bundle", "plugin"}) QVERIFY2(bundles.contains(QLatin1String(ext)), ext);
        for (const QString &ext : bundles) QVERIFY(!ext.contains(u'.'));
        const QStringList accepted = acceptableFileTypes();
        QCOMPARE(accepted.mid(0, 4), (QStringList{QStringLiteral("nib"), QStringLiteral("xib"), QStringLiteral("strings"),
                                                 QStringLiteral("plist")}));
        QVERIFY(accepted.contains(QStringLiteral("app")));
        QVERIFY(!accepted.contains(QStringLiteral("rtf")));
        QVERIFY(isBundlePath(QStringLiteral("/x/Foo.app/"), bundles));
        QVERIFY(!isBundlePath(QStringLiteral("/x/Foo.APP"), bundles));

        VXControllerModel::setBundleTypesPath(m_box->path(QStringLiteral("none.plist")));
        QVERIFY(VXControllerModel::readBundleTypes().isEmpty());
    }

    void interfaceTexts()
    {
        setInterfaceLanguage(QStringLiteral("en"));
        QCOMPARE(localizedString(QStringLiteral("Choose")), QStringLiteral("Choose"));
        const QString key = QStringLiteral(
            "There is a -name- folder in the package you've chosen and Vocabrix may be going to overwrite resources.");
        QVERIFY(localizedString(key).contains(QLatin1String("%1")));
        setInterfaceLanguage(QStringLiteral("fr"));
        QCOMPARE(localizedString(QStringLiteral("Choose")), QStringLiteral("Choisir"));
        QVERIFY(localizedString(key).contains(QLatin1String("%1")));
        QCOMPARE(localizedString(QStringLiteral("no such text")), QStringLiteral("no such text"));
    }
};

QTEST_GUILESS_MAIN(TestDocument)
#include "test_document.moc"
