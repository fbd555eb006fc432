// The property-list handler through LocFile: the walk and its order, which source fills a word
// (dictionary, else previous version by place), check marks, escaping both ways, the export of
// the tree with keys and scalars untouched, the returned pairs and what the user is told.
#include "Handlers.h"
#include "LocFile.h"
#include "NotificationCenter.h"
#include "PlistHandler.h"
#include "PlistWordEscaping.h"
#include "PropertyList.h"
#include "InterfaceCases.h"

#include <QSignalSpy>
#include <QTest>

using plist::Value;
Q_DECLARE_METATYPE(plist::Value)

using TestSupport::S;

namespace {
Value str(const char *utf8) { return Value::fromString(S(utf8)); }
Value dict(const plist::Dictionary &d) { return Value::fromDictionary(d); }
Value arr(const plist::Array &a) { return Value::fromArray(a); }

// Base words with their marks, as the table would show them.
QString words(const LocFilePtr &file)
{
    QStringList list;
    for (const LocEntryPtr &e : file->allEntries())
        list << plistHandle::writtenWord(*e) + (e->isChecked() ? S("+") : S("-"));
    return list.join(u'|');
}

// A list with strings at every depth, scalars among them.
Value sampleList()
{
    return dict({{S("CFBundleName"), str("Mail")},
                 {S("CFBundleVersion"), Value::fromInteger(42)},
                 {S("Items"), arr({str("Open"), Value::fromBoolean(true), dict({{S("Title"), str("Save")}}),
                                   arr({str("Quit")})})},
                 {S("Ratio"), Value::fromReal(0.5)},
                 {S("Stamp"), Value::fromDate(QDateTime(QDate(2009, 3, 1), QTime(12, 0), Qt::UTC))},
                 {S("Blob"), Value::fromData(QByteArray("\x00\x01\xFF", 3))},
                 {S("Again"), str("Open")},
                 {S("Empty"), str("")}});
}
}  // namespace

class TestPlistHandler : public QObject {
    Q_OBJECT
    QTemporaryDir m_dir;
    int m_count = 0;

    QString place(const QByteArray &bytes, const QString &name = QStringLiteral("Info.plist"))
    {
        return TestSupport::writeFile(m_dir.filePath(QStringLiteral("f%1/%2").arg(++m_count).arg(name)), bytes);
    }
    LocFilePtr read(const Value &base, const std::optional<Value> &previous = {}, const QByteArray &dictionary = {})
    {
        const QString basePath = place(plist::toXml(base));
        OptString prev, dict;
        if (previous) prev = place(plist::toXml(*previous));
        if (!dictionary.isNull()) dict = place(dictionary, S("en-de.strings"));
        return LocFile::initWithPath(basePath, dict, prev);
    }
    // Exports and reads the result back.
    Value exported(const LocFilePtr &file, StringMap *pairs = nullptr)
    {
        const QString folder = m_dir.filePath(QStringLiteral("out%1").arg(++m_count));
        QDir().mkpath(folder);
        const StringMap got = file->makeLocalizedFileAt(folder);
        if (pairs) *pairs = got;
        const plist::ReadResult result = plist::readFile(folder + u'/' + QFileInfo(file->path()).fileName());
        return result.value.value_or(Value::fromInteger(-1));
    }

private slots:
    void initTestCase()
    {
        QVERIFY(m_dir.isValid());
        TestSupport::isolate(m_dir);
        registerResourceHandlers();
    }

    void everyStringInFileOrder()
    {
        QSignalSpy finished(&NotificationCenter::instance(), &NotificationCenter::locFileFinishReadingFile);
        const LocFilePtr file = read(sampleList());
        QCOMPARE(words(file), S("Mail-|Open-|Save-|Quit-|Open-|+"));
        QCOMPARE(file->allEntries().first()->entry(), S("\"Mail\" = \"Mail\";"));
        QVERIFY(!file->allEntries().first()->keyWord());
        QCOMPARE(finished.size(), 1);
        QCOMPARE(file->warnings(), QStringList());
    }

    void sources_data()
    {
        TestSupport::addCaseRows(u"handlers/plist-sources.tsv"_qs, {"base", "previous", "dictionary", "words", "warnings"});
    }
    void sources()
    {
        QFETCH(QString, base);
        QFETCH(QString, previous);
        QFETCH(QString, dictionary);
        QFETCH(QString, words);
        QFETCH(QString, warnings);
        const LocFilePtr file = LocFile::initWithPath(place(base.toUtf8()), dictionary == u"-" ? OptString()
                                                      : OptString(place(dictionary.toUtf8(), S("en-de.strings"))),
                                                      OptString(place(previous.toUtf8())));
        QCOMPARE(::words(file), words);
        const QString told = file->warnings().join(u'\n');
        QVERIFY2(file->warnings().size() == warnings.toInt(), qPrintable(told));
        if (warnings.toInt()) QVERIFY(told.contains(S("previous version")));
        // An unreadable dictionary is named as well.
        if (warnings.toInt() == 2) QVERIFY2(told.contains(S("en-de.strings")), qPrintable(told));
    }

    void exportReplacesStringsOnly()
    {
        const LocFilePtr file = read(sampleList(), std::nullopt, "\"Open\" = \"Öffnen\";\n\"Mail\" = \"Post\";\n");
        // Both places of "Open" take the first entry's word, even after the second is edited.
        file->allEntries().at(4)->setLocalizedWord(S("Anders"));
        file->allEntries().at(3)->setLocalizedWord(S("Beenden"));
        file->allEntries().at(5)->setLocalizedWord(S("nicht leer"));
        StringMap pairs;
        const Value out = exported(file, &pairs);
        Value expected = sampleList();
        expected.dictionary()[0].second = str("Post");
        expected.dictionary()[2].second.array()[0] = str("Öffnen");
        expected.dictionary()[2].second.array()[3].array()[0] = str("Beenden");
        expected.dictionary()[6].second = str("Öffnen");
        QCOMPARE(out, expected);
        StringMap want;
        want.insert(S("Mail"), S("Post"));
        want.insert(S("Open"), S("Anders"));  // the later entry's word, as the dictionary keeps it
        want.insert(S("Quit"), S("Beenden"));
        QCOMPARE(pairs, want);
    }

    void untranslatedStringsComeBackExactly_data() { TestSupport::addCaseRows(u"handlers/plist-untouched.tsv"_qs, {"text"}); }
    void untranslatedStringsComeBackExactly()
    {
        QFETCH(QString, text);
        const Value base = dict({{S("k"), Value::fromString(text)}, {S("l"), arr({Value::fromString(text)})}});
        const LocFilePtr file = read(base);
        QCOMPARE(file->allEntries().size(), 2);
        const LocEntryPtr e = file->allEntries().first();
        // The entry reads back whole: base and localized word agree and nothing is checked.
        QCOMPARE(e->localizedWord(), e->baseWord());
        QVERIFY(!e->isChecked());
        QVERIFY2(!e->entry().contains(u'\n'), qPrintable(e->entry()));  // line breaks escaped: one line
        QCOMPARE(file->entryForKey(e->baseWord()), e);
        QCOMPARE(exported(file), base);
        QCOMPARE(unescapePlistWord(escapePlistWord(text)), text);
    }

    void typedWordsAreWrittenAsTyped_data() { TestSupport::addCaseRows(u"handlers/plist-typed.tsv"_qs, {"typed", "written"}); }
    void typedWordsAreWrittenAsTyped()
    {
        QFETCH(QString, typed);
        QFETCH(QString, written);
        const LocFilePtr file = read(dict({{S("k"), str("Say \"hi\"")}}));
        file->allEntries().first()->setLocalizedWord(typed);
        StringMap pairs;
        QCOMPARE(exported(file, &pairs), dict({{S("k"), Value::fromString(written)}}));
        StringMap want;
        want.insert(S("Say \"hi\""), written);
        QCOMPARE(pairs, want);
    }

    void dictionaryWordsAreStoredEscaped()
    {
        const LocFilePtr file = read(dict({{S("k"), str("a \"b\"")}}), std::nullopt,
                                     "\"a \\\"b\\\"\" = \"ein \\\"b\\\"; c\";");
        QCOMPARE(file->allEntries().first()->localizedWord(), OptString(S("ein \\\"b\\\"\\; c")));
        QCOMPARE(exported(file), dict({{S("k"), str("ein \"b\"; c")}}));
    }

    void otherForms_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<Value>("tree");
        const Value binary = dict({{S("a"), str("x")}, {S("n"), Value::fromInteger(1)}});
        QTest::newRow("binary") << plist::toBinary(binary) << binary;
        QTest::newRow("OpenStep") << QByteArray("{ a = x; n = (\"y\", <0fbd77>); }")
                                  << dict({{S("a"), str("x")},
                                           {S("n"), arr({str("y"), Value::fromData(QByteArray("\x0f\xbd\x77"))})}});
        QTest::newRow("string table") << QByteArray("\"a\" = \"x\";\n") << dict({{S("a"), str("x")}});
    }
    void otherForms()
    {
        QFETCH(QByteArray, bytes);
        QFETCH(Value, tree);
        const LocFilePtr file = LocFile::initWithPath(place(bytes), OptString(), OptString());
        QCOMPARE(file->allEntries().first()->baseWord(), OptString(S("x")));
        QCOMPARE(file->warnings(), QStringList());
        // Written as XML, the tree unchanged.
        QCOMPARE(exported(file), tree);
    }

    void fileWithoutEntriesSaysWhy_data() { TestSupport::addCaseRows(u"handlers/plist-no-entries.tsv"_qs, {"list", "why"}); }
    void fileWithoutEntriesSaysWhy()
    {
        QFETCH(QString, list);
        QFETCH(QString, why);
        QSignalSpy finished(&NotificationCenter::instance(), &NotificationCenter::locFileFinishReadingFile);
        const LocFilePtr file = LocFile::initWithPath(place(list.toUtf8()), OptString(), OptString());
        QCOMPARE(file->status(), S("0/0"));
        QCOMPARE(file->initError(), QString());
        QCOMPARE(file->warnings().size(), 1);
        QVERIFY2(file->warnings().first().contains(why), qPrintable(file->warnings().first()));
        QCOMPARE(finished.size(), 1);
    }

    void baseGoneAtExportIsReported()
    {
        const LocFilePtr file = read(dict({{S("a"), str("x")}}), std::nullopt, "\"x\" = \"y\";");
        QFile::remove(file->path());
        StringMap pairs;
        QCOMPARE(exported(file, &pairs), Value::fromInteger(-1));
        QCOMPARE(pairs.value(S("x")), S("y"));
        QVERIFY(file->warnings().join(u'\n').contains(S("was not written")));
    }
};

QTEST_GUILESS_MAIN(TestPlistHandler)
#include "test_plist_handler.moc"
