// The language table and everything derived from a tag: keys, abbreviations, folder names,
// popups, the dictionary path of a document's pair; the bundle types, the registered settings and
// the interface texts that ship beside them.
#include "DocumentTestSupport.h"
#include "Languages.h"
#include "LocalizedText.h"
#include "MyDocument.h"
#include "PropertyList.h"
#include "Settings.h"
#include "TestSupport.h"
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

// A table of `rows` rows keyed from "01", named L1, L2, ... (keys skipped are left out).
QString writeTable(const QString &path, int rows, const QList<int> &skip = {})
{
    plist::Dictionary table;
    for (int i = 1; i <= rows; ++i) {
        if (skip.contains(i)) continue;
        plist::Dictionary row{{QStringLiteral("name"), plist::Value::fromString(QStringLiteral("L%1").arg(i))},
                              {QStringLiteral("key"), plist::Value::fromString(QStringLiteral("Key%1").arg(i))},
                              {QStringLiteral("abbreviation"), plist::Value::fromString(QStringLiteral("k%1").arg(i))}};
        table.append({QStringLiteral("%1").arg(i, 2, 10, QLatin1Char('0')), plist::Value::fromDictionary(row)});
    }
    plist::writeXmlFile(path, plist::Value::fromDictionary(table));
    return path;
}

}  // namespace

class TestLanguages : public QObject {
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void builtInTableIsWellFormed();
    void tagLookup_data();
    void tagLookup();
    void popupsHoldEveryRowInKeyOrder();
    void gapsAndMissingTable();
    void languagesFromText_data();
    void languagesFromText();
    void documentFolderNames();
    void dictionaryPathFollowsLanguages();
    void settingsDefaults();
    void bundleTypesAndAcceptedTypes();
    void interfaceTexts();

private:
    std::unique_ptr<TestSupport::Sandbox> m_box;
};

void TestLanguages::init()
{
    m_box = std::make_unique<TestSupport::Sandbox>();  // a fresh tree per test
    VXControllerModel::initialize();
}

void TestLanguages::cleanup()
{
    Languages::setTablePath(QString());
    VXControllerModel::setBundleTypesPath(QString());
    setInterfaceLanguage(QString());
    for (const auto &key : Settings::keys()) Settings::instance().remove(key.name);
}

void TestLanguages::builtInTableIsWellFormed()
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

void TestLanguages::tagLookup_data()
{
    QTest::addColumn<int>("tag");
    QTest::addColumn<QString>("key");  // empty: no row
    QTest::newRow("1 reads 01") << 1 << "Key1";
    QTest::newRow("9 reads 09") << 9 << "Key9";
    QTest::newRow("10 reads 10") << 10 << "Key10";
    QTest::newRow("12, the last") << 12 << "Key12";
    QTest::newRow("0 reads 00") << 0 << "";
    QTest::newRow("beyond the last") << 13 << "";
    QTest::newRow("negative") << -1 << "";
}

void TestLanguages::tagLookup()
{
    QFETCH(int, tag);
    QFETCH(QString, key);
    Languages::setTablePath(writeTable(m_box->path(QStringLiteral("t.plist")), 12));
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

void TestLanguages::popupsHoldEveryRowInKeyOrder()
{
    Languages::setTablePath(writeTable(m_box->path(QStringLiteral("t.plist")), 12));
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

void TestLanguages::gapsAndMissingTable()
{
    Languages::setTablePath(writeTable(m_box->path(QStringLiteral("gap.plist")), 4, {3}));
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

void TestLanguages::languagesFromText_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("tag");
    QTest::newRow("tag") << "2" << 2;
    QTest::newRow("key") << "French" << 2;
    QTest::newRow("abbreviation") << "fr" << 2;
    QTest::newRow("letter case ignored") << "ENGLISH" << 1;
    QTest::newRow("unknown") << "Klingon" << 0;
    QTest::newRow("tag without row") << "0" << 0;
}

void TestLanguages::languagesFromText()
{
    QFETCH(QString, text);
    QFETCH(int, tag);
    QCOMPARE(tagForLanguage(text).value_or(0), tag);
    const auto zh = tagForLanguage(QStringLiteral("zh-hans"));
    QVERIFY(zh);
    QCOMPARE(languageAbbreviationForLanguage(*zh), OptString(QStringLiteral("zh-Hans")));
    QCOMPARE(tagForLanguageKey(*languageKeyForLanguage(*zh)), zh);
}

void TestLanguages::documentFolderNames()
{
    MyDocument doc;
    QCOMPARE(doc.baseFolderName(), OptString(QStringLiteral("English.lproj")));
    QCOMPARE(doc.targetFolderName(), OptString(QStringLiteral("French.lproj")));
    QCOMPARE(doc.targetLanguageAbbreviation(), OptString(QStringLiteral("fr")));
    doc.setLocLangTo(*tagForLanguage(QStringLiteral("pt-BR")));
    QVERIFY(!doc.targetFolderName()->contains(u'-'));
    QCOMPARE(doc.targetLanguageAbbreviation(), OptString(QStringLiteral("pt-BR")));
}

void TestLanguages::dictionaryPathFollowsLanguages()
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

void TestLanguages::settingsDefaults()
{
    Settings &settings = Settings::instance();
    MyDocument fresh;
    QCOMPARE(fresh.title(), QStringLiteral("Title"));
    QCOMPARE(fresh.locLangFrom(), 1);
    QCOMPARE(fresh.locLangTo(), 2);
    QVERIFY(fresh.files().isEmpty());
    for (const QString &key : {SettingsKey::IgnoreEmptyWords, SettingsKey::IgnoreLocalizedWords,
                               SettingsKey::ContinuousSpellCheckingEnabled})
        QCOMPARE(settings.value(key), QVariant(false));

    settings.setValue(SettingsKey::TargetLanguage, 5);
    QCOMPARE(MyDocument().locLangTo(), 5);
    QCOMPARE(fresh.locLangTo(), 2);  // open documents keep their own languages
    settings.remove(SettingsKey::TargetLanguage);
    QCOMPARE(MyDocument().locLangTo(), 2);
}

void TestLanguages::bundleTypesAndAcceptedTypes()
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

void TestLanguages::interfaceTexts()
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

QTEST_GUILESS_MAIN(TestLanguages)
#include "test_languages.moc"
