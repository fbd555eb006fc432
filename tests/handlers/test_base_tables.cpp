// Base internationalization in the handlers: a Base.lproj interface file takes its previous words
// from the previous release's table of the same stem (text in any encoding or a binary property
// list) and exports such a table in the same form; .stringsdict files give entries for their
// texts only and export whole. Runs the built vocabrix-ibtool (through VOCABRIX_TOOLS_DIR).

#include "Handlers.h"
#include "InterfaceCases.h"
#include "LocFile.h"
#include "PropertyList.h"
#include "StringsTable.h"

#include <QTest>

using TestSupport::S;

namespace {

QByteArray data(const char *name) { return TestSupport::readFile(TestSupport::dataDir(u"handlers/"_qs) + QLatin1String(name)); }

QByteArray encoded(const QString &form, const QString &text)
{
    if (form == QLatin1String("utf16")) return TestSupport::utf16le(text);
    if (form == QLatin1String("binary")) {
        plist::Dictionary dict;
        const std::optional<StringMap> pairs = StringsTable::parse(text);
        for (const auto &[k, v] : *pairs) dict.append({k.toString(), plist::Value::fromString(v.toString())});
        return plist::toBinary(plist::Value::fromDictionary(dict));
    }
    return text.toUtf8();
}

}  // namespace

class TestBaseTables : public QObject {
    Q_OBJECT
    QTemporaryDir m_dir;
    int m_count = 0;
    QString folder()
    {
        const QString f = m_dir.filePath(QStringLiteral("case%1").arg(++m_count));
        QDir().mkpath(f);
        return f;
    }

private slots:
    void initTestCase()
    {
        TestSupport::isolate(m_dir);
        registerResourceHandlers();
        if (qEnvironmentVariableIsEmpty("VOCABRIX_TOOLS_DIR")) QSKIP("VOCABRIX_TOOLS_DIR is not set");
    }

    // The previous release's French table (base-previous.strings: one key translated, one the
    // same as the base, one stale; the name field and the quoted text missing) in the form of
    // the row (utf8, utf16, binary, none), maybe a dictionary: the entries, then the export in
    // the same form, byte for byte.
    void interfaceFileWithPreviousTable_data()
    {
        TestSupport::addCaseRows(u"handlers/base-tables.tsv"_qs, {"form", "dictionary", "expected", "golden"});
    }
    void interfaceFileWithPreviousTable()
    {
        QFETCH(QString, form);
        QFETCH(QString, dictionary);
        QFETCH(QString, expected);
        QFETCH(QString, golden);
        const QString dir = folder();
        const QString base = TestSupport::writeFile(dir + QLatin1String("/New.app/Base.lproj/Prefs.xib"), data("base-prefs.xib"));
        const QString previous = dir + QLatin1String("/Old.app/fr.lproj/Prefs.strings");
        if (form != QLatin1String("none")) TestSupport::writeFile(previous, encoded(form, QString::fromUtf8(data("base-previous.strings"))));
        OptString dictPath;
        if (!dictionary.isEmpty()) dictPath = TestSupport::writeFile(dir + QLatin1String("/dict.strings"), dictionary.toUtf8());

        const LocFilePtr file = LocFile::initWithPath(base, dictPath, previous);
        QVERIFY(file);
        QVERIFY2(file->initError().isEmpty(), qPrintable(file->initError()));
        QCOMPARE(TestSupport::entryWords(file, true), expected);

        file->allEntries().at(3)->setLocalizedWord(S("Dites « salut »"));
        const QString out = dir + QLatin1String("/Out.app/fr.lproj");
        QDir().mkpath(out);
        const StringMap pairs = file->makeLocalizedFileAt(out);
        QVERIFY(!QFileInfo::exists(out + QLatin1String("/Prefs.xib")));
        QVERIFY(TestSupport::compareBytes(TestSupport::readFile(out + QLatin1String("/Prefs.strings")),
                                          TestSupport::dataDir(u"handlers/base-tables/"_qs) + golden));
        QCOMPARE(pairs.value(S("Say \\\"hi\\\"")), S("Dites « salut »"));
    }

    void unreadableInterfaceFileWritesNoTable()
    {
        const QString dir = folder();
        const QString base = TestSupport::writeFile(dir + QLatin1String("/Base.lproj/Broken.xib"), "<document version=\"3.0\"><objects>");
        const QString out = TestSupport::writeFile(dir + QLatin1String("/fr.lproj/Broken.strings"), "\"1.title\" = \"Garde\";\n");
        const LocFilePtr file = LocFile::initWithPath(base, std::nullopt, out);
        QVERIFY(!file->initError().isEmpty());
        file->makeLocalizedFileAt(dir + QLatin1String("/fr.lproj"));
        QCOMPARE(TestSupport::readFile(out), QByteArray("\"1.title\" = \"Garde\";\n"));
        QVERIFY(file->warnings().last().contains(QLatin1String("not written")));
    }

    void stringsdictEntriesAndExport_data()
    {
        QTest::addColumn<QByteArray>("previous");
        QTest::addColumn<QString>("expected");
        QTest::newRow("no previous release")
            << QByteArray()
            << S("%d articles/NSStringLocalizedFormatKey=%#@articles@ in \\\"%@\\\"-|%d articles/articles/one=%d article-|"
                 "%d articles/articles/other=%d articles-|unread/NSStringLocalizedFormatKey=%#@n@-|"
                 "unread/n/zero=No unread-|unread/n/other=%ld unread-");
        QByteArray german = data("articles.stringsdict");
        german.replace("<string>%d article</string>", "<string>%d Artikel</string>")
            .replace("<string>No unread</string>", "<string>Nichts Ungelesenes</string>");
        german.replace("<key>other</key><string>%ld unread</string>", "");
        QTest::newRow("previous release by place, checked")
            << german
            << S("%d articles/NSStringLocalizedFormatKey=%#@articles@ in \\\"%@\\\"+|%d articles/articles/one=%d Artikel+|"
                 "%d articles/articles/other=%d articles+|unread/NSStringLocalizedFormatKey=%#@n@+|"
                 "unread/n/zero=Nichts Ungelesenes+|unread/n/other=%ld unread-");
    }
    void stringsdictEntriesAndExport()
    {
        QFETCH(QByteArray, previous);
        QFETCH(QString, expected);
        const QString dir = folder();
        const QString base = TestSupport::writeFile(dir + QLatin1String("/Base.lproj/Localizable.stringsdict"), data("articles.stringsdict"));
        OptString prevPath;
        if (!previous.isEmpty()) prevPath = TestSupport::writeFile(dir + QLatin1String("/de.lproj/Localizable.stringsdict"), previous);
        const LocFilePtr file = LocFile::initWithPath(base, std::nullopt, prevPath);
        QVERIFY(file);
        QCOMPARE(TestSupport::entryWords(file, true), expected);

        file->allEntries().at(2)->setLocalizedWord(S("%d \"Artikel\""));
        const QString out = dir + QLatin1String("/out");
        QDir().mkpath(out);
        const StringMap pairs = file->makeLocalizedFileAt(out);
        QCOMPARE(pairs.value(S("%d articles")), S("%d \"Artikel\""));
        const plist::ReadResult written = plist::readFile(out + QLatin1String("/Localizable.stringsdict"));
        QVERIFY(written.value);
        QCOMPARE(written.format, plist::Format::Xml);
        // Complete: the keys that describe the format are all there, unchanged.
        const plist::Value *articles = written.value->find(S("%d articles"))->find(S("articles"));
        QCOMPARE(articles->find(S("NSStringFormatSpecTypeKey"))->string(), S("NSStringPluralRuleType"));
        QCOMPARE(articles->find(S("NSStringFormatValueTypeKey"))->string(), S("d"));
        QCOMPARE(articles->find(S("other"))->string(), S("%d \"Artikel\""));
        QCOMPARE(written.value->find(S("%d articles"))->find(S("NSStringLocalizedFormatKey"))->string(),
                 S("%#@articles@ in \"%@\""));
        QCOMPARE(written.value->find(S("unread"))->find(S("n"))->dictionary().size(), 4);
    }

    void stringsdictThatCannotBeRead_data() { TestSupport::addCaseRows(u"handlers/stringsdict-unreadable.tsv"_qs, {"text"}); }
    void stringsdictThatCannotBeRead()
    {
        QFETCH(QString, text);
        const QString path = TestSupport::writeFile(folder() + QLatin1String("/X.stringsdict"), text.toUtf8());
        const LocFilePtr file = LocFile::initWithPath(path, std::nullopt, std::nullopt);
        QVERIFY(file);
        QVERIFY(file->allEntries().isEmpty());
        QCOMPARE(file->warnings().size(), 1);
        QVERIFY(file->warnings().first().contains(QLatin1String("X.stringsdict")));
    }
};

QTEST_GUILESS_MAIN(TestBaseTables)
#include "test_base_tables.moc"
