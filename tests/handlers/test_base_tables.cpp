// Base internationalization in the handlers: a Base.lproj interface file takes its previous words
// from the previous release's table of the same stem (text in any encoding or a binary property
// list) and exports such a table in the same form; .stringsdict files give entries for their
// texts only and export whole. Runs the built vocabrix-ibtool (through VOCABRIX_TOOLS_DIR).

#include "InterfaceCases.h"
#include "Handlers.h"
#include "LocFile.h"
#include "PropertyList.h"
#include "StringsTable.h"
#include "TestSupport.h"

#include <QTest>

using TestSupport::S;

namespace {

QByteArray data(const char *name) { return TestSupport::readFile(TestSupport::dataDir(u"handlers/"_qs) + QLatin1String(name)); }

// The previous release's French table: one key translated, one the same as the base, one stale;
// the name field and the quoted text are missing.
const char *kPreviousTable = "/* Class = \"NSWindow\"; title = \"Preferences\"; ObjectID = \"1\"; */\n"
                             "\"1.title\" = \"Préférences\";\n"
                             "\"11.title\" = \"OK\";\n"
                             "\"99.title\" = \"Gone\";\n";

QByteArray encoded(const QString &form, const QString &text)
{
    if (form == QLatin1String("utf16")) return TestSupport::utf16le(text);
    if (form == QLatin1String("binary")) {
        plist::Dictionary dict;
        const std::optional<StringMap> pairs = StringsTable::parse(text);
        for (const auto &[k, v] : *pairs) dict.append({k, plist::Value::fromString(v)});
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

    void interfaceFileWithPreviousTable_data()
    {
        QTest::addColumn<QString>("form");        // the previous release's table: utf8, utf16, binary, none
        QTest::addColumn<QString>("dictionary");  // a dictionary table, or empty
        QTest::addColumn<QString>("expected");
        QTest::addColumn<QByteArray>("exportedStart");
        const QString fromTable = S("1.title=Préférences+|11.title=OK+|Ab1-cd-EF2.title=Name:-|Qz9-xx-001.title=Say \\\"hi\\\"-");
        QTest::newRow("UTF-8 table") << "utf8" << QString() << fromTable << QByteArray("\n/* Class = \"NSWindow\";");
        QTest::newRow("UTF-16 table") << "utf16" << QString() << fromTable << QByteArray("\xFF\xFE\n\0/\0", 6);
        QTest::newRow("binary table") << "binary" << QString() << fromTable << QByteArray("bplist00");
        QTest::newRow("table first, dictionary for the rest")
            << "utf8" << S("\"Name:\" = \"Nom :\";\n\"OK\" = \"D'accord\";\n")
            << S("1.title=Préférences+|11.title=OK+|Ab1-cd-EF2.title=Nom :+|Qz9-xx-001.title=Say \\\"hi\\\"-")
            << QByteArray("\n/*");
        QTest::newRow("no previous release: still a table")
            << "none" << QString()
            << S("1.title=Preferences-|11.title=OK-|Ab1-cd-EF2.title=Name:-|Qz9-xx-001.title=Say \\\"hi\\\"-")
            << QByteArray("\n/*");
    }
    void interfaceFileWithPreviousTable()
    {
        QFETCH(QString, form);
        QFETCH(QString, dictionary);
        QFETCH(QString, expected);
        QFETCH(QByteArray, exportedStart);
        const QString dir = folder();
        const QString base = TestSupport::writeFile(dir + QLatin1String("/New.app/Base.lproj/Prefs.xib"), data("base-prefs.xib"));
        const QString previous = dir + QLatin1String("/Old.app/fr.lproj/Prefs.strings");
        if (form != QLatin1String("none")) TestSupport::writeFile(previous, encoded(form, S(kPreviousTable)));
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
        const QByteArray bytes = TestSupport::readFile(out + QLatin1String("/Prefs.strings"));
        QVERIFY2(bytes.startsWith(exportedStart), bytes.left(40).toHex().constData());
        const auto table = dictionaryWithContentsOfFile(out + QLatin1String("/Prefs.strings"));
        QVERIFY(table);
        QCOMPARE(table->size(), file->allEntries().size());
        for (const LocEntryPtr &e : file->allEntries()) {
            const QString expectedWord = *StringsTable::parse(QStringLiteral("\"k\" = \"%1\";").arg(*e->localizedWord()))
                                              ->find(QStringLiteral("k"));
            QCOMPARE(table->value(*e->keyWord()), expectedWord);
        }
        QCOMPARE(pairs.value(S("Say \\\"hi\\\"")), S("Dites « salut »"));
        if (form != QLatin1String("binary")) {
            const QString written = bytes.startsWith("\xFF\xFE") ? QString::fromUtf16(
                                        reinterpret_cast<const char16_t *>(bytes.constData() + 2), (bytes.size() - 2) / 2)
                                                                 : QString::fromUtf8(bytes);
            // ibtool's layout: the comment of every entry, one blank line apart, one line feed at the end.
            QVERIFY(written.contains(S("/* Class = \"NSButtonCell\"; title = \"OK\"; ObjectID = \"11\"; */\n\"11.title\" = \"OK\";\n\n/*")));
            QVERIFY(written.endsWith(S("\"Qz9-xx-001.title\" = \"Dites « salut »\";\n")));
        }
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

    void stringsdictThatCannotBeRead_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::newRow("not a property list") << QByteArray("\"a\" = \"b\";");
        QTest::newRow("an array") << QByteArray("<plist><array><string>x</string></array></plist>");
        QTest::newRow("empty") << QByteArray();
    }
    void stringsdictThatCannotBeRead()
    {
        QFETCH(QByteArray, bytes);
        const QString path = TestSupport::writeFile(folder() + QLatin1String("/X.stringsdict"), bytes);
        const LocFilePtr file = LocFile::initWithPath(path, std::nullopt, std::nullopt);
        QVERIFY(file);
        QVERIFY(file->allEntries().isEmpty());
        QCOMPARE(file->warnings().size(), 1);
        QVERIFY(file->warnings().first().contains(QLatin1String("X.stringsdict")));
    }
};

QTEST_GUILESS_MAIN(TestBaseTables)
#include "test_base_tables.moc"
