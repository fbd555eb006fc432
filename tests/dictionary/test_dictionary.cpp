// Dictionary files: where they live, how they are named, the writer's round trip through the
// string-table reader, and the merge of an export (notifications, replacement, unreadable files).
#include "DictionaryFiles.h"
#include "DictionaryMerge.h"
#include "NotificationCenter.h"
#include "StringsFileWriter.h"
#include "StringsTable.h"
#include "TestSupport.h"

#include <QSignalSpy>

class TestDictionary : public QObject {
    Q_OBJECT

private slots:
    void init();
    void folderHonoursXdgDataHome();
    void fileNamesRoundTrip_data();
    void fileNamesRoundTrip();
    void writerLineFormat();
    void writerRoundTrip_data();
    void writerRoundTrip();
    void writerIsDeterministic();
    void firstMergeCreatesFile();
    void mergeReplacesAndKeeps();
    void mergeNotifiesAroundTheWrite();
    void unreadableFileIsKeptAside_data();
    void unreadableFileIsKeptAside();
    void failedWriteIsReported();

private:
    QTemporaryDir m_dir;
    QString path(const QString &name) const { return m_dir.filePath(name); }
};

static StringMap mapOf(std::initializer_list<std::pair<const char *, const char *>> pairs)
{
    StringMap m;
    for (const auto &[k, v] : pairs) m.insert(QString::fromUtf8(k), QString::fromUtf8(v));
    return m;
}

void TestDictionary::init()
{
    QVERIFY(m_dir.isValid());
    TestSupport::isolate(m_dir);
    // Outside test mode, so that the data location follows XDG_DATA_HOME as it does for users.
    QStandardPaths::setTestModeEnabled(false);
    qputenv("XDG_DATA_HOME", QFile::encodeName(m_dir.filePath(QStringLiteral("data"))));
}

void TestDictionary::folderHonoursXdgDataHome()
{
    const QString folder = DictionaryFiles::dictionaryFolder();
    QCOMPARE(folder, m_dir.filePath(QStringLiteral("data/Vocabrix")));
    QVERIFY(QFileInfo(folder).isDir());
    QCOMPARE(applicationSupportPathForName(QStringLiteral("Vocabrix")), folder);
    QVERIFY(folderPathForFolderType(QStringLiteral("pref")).isEmpty());
}

void TestDictionary::fileNamesRoundTrip_data()
{
    QTest::addColumn<QString>("base");
    QTest::addColumn<QString>("target");
    QTest::newRow("legacy names") << "English" << "French";
    QTest::newRow("same language") << "French" << "French";
    QTest::newRow("underscore codes") << "zh_CN" << "pt_BR";
}

void TestDictionary::fileNamesRoundTrip()
{
    QFETCH(QString, base);
    QFETCH(QString, target);
    const QString name = DictionaryFiles::fileName(base, target);
    QCOMPARE(name, base + u'-' + target + QLatin1String(".strings"));
    const auto keys = DictionaryFiles::languageKeysFromFileName(name);
    QVERIFY(keys);
    QCOMPARE(keys->first, base);
    QCOMPARE(keys->second, target);
    QVERIFY(!DictionaryFiles::languageKeysFromFileName(QStringLiteral("English.strings")));
    QVERIFY(!DictionaryFiles::languageKeysFromFileName(base + u'-' + target + QLatin1String(".strings.unreadable-1")));
}

void TestDictionary::writerLineFormat()
{
    const StringMap map = mapOf({{"Open", "Ouvrir"}, {"Say \"hi\"", "Dis \"salut\""}, {"two\nlines", "deux\nlignes"}});
    const QByteArray expected = "\"Open\" = \"Ouvrir\";\n"
                                "\"Say \\\"hi\\\"\" = \"Dis \\\"salut\\\"\";\n"
                                "\"two\nlines\" = \"deux\nlignes\";\n";
    QCOMPARE(stringsFileStyleData(map), expected);
    QVERIFY(!stringsFileStyleData(mapOf({{"\xC3\xA9t\xC3\xA9", "summer"}})).startsWith("\xEF\xBB\xBF"));
}

void TestDictionary::writerRoundTrip_data()
{
    QTest::addColumn<QString>("key");
    QTest::addColumn<QString>("value");
    QTest::newRow("plain") << "Open" << "Ouvrir";
    QTest::newRow("bare quote") << "a\"b" << "c\"d";
    QTest::newRow("escaped quote kept as typed") << "a\\\"b" << "c\\\"d";
    QTest::newRow("trailing backslash") << "C:\\" << "D:\\";
    QTest::newRow("doubled backslash") << "a\\\\b" << "\\\\";
    QTest::newRow("backslash n as two characters") << "line\\nbreak" << "ligne\\nsaut";
    QTest::newRow("real line feed") << "line\nbreak" << "ligne\nsaut";
    QTest::newRow("carriage return and tab") << "a\r\tb" << "c\r\td";
    QTest::newRow("semicolon and equals") << "a = b;" << "\"; \"x\" = \"y";
    QTest::newRow("comment markers") << "/* not a comment */" << "// nor this";
    QTest::newRow("empty value") << "Empty" << "";
    QTest::newRow("non-ASCII") << QString::fromUtf8("\xC3\xA9t\xC3\xA9 \xE2\x80\x94 \xF0\x9F\x98\x80") << "summer";
    QTest::newRow("lone surrogate") << QString(QChar(0xD800)) + u'x' << QString(QChar(0xDC00));
    QTest::newRow("byte-order mark inside") << QString(QChar(0xFEFF)) + u'a' << "b";
}

void TestDictionary::writerRoundTrip()
{
    QFETCH(QString, key);
    QFETCH(QString, value);
    StringMap map;
    map.insert(QStringLiteral("first"), QStringLiteral("premier"));
    map.insert(key, value);
    map.insert(QStringLiteral("last"), QStringLiteral("dernier"));
    const QString file = path(QStringLiteral("round.strings"));
    QString error;
    QVERIFY2(writeToStringsFile(map, file, true, &error), qPrintable(error));
    StringsTable::Error readError;
    const auto read = dictionaryWithContentsOfFile(file, &readError);
    QVERIFY2(read, qPrintable(readError.message));
    QCOMPARE(read->size(), 3);
    QCOMPARE(read->value(key), value);
    QCOMPARE(read->pairs().at(1).first, key);
}

void TestDictionary::writerIsDeterministic()
{
    StringMap a = mapOf({{"x", "1"}, {"y", "2"}});
    StringMap b = mapOf({{"y", "2"}, {"x", "1"}});
    // Same pairs, another order: same set of lines, in each map's own order.
    QStringList la = stringsFileStyleString(a).split(u'\n');
    QStringList lb = stringsFileStyleString(b).split(u'\n');
    QCOMPARE(la.first(), QStringLiteral("\"x\" = \"1\";"));
    QCOMPARE(lb.first(), QStringLiteral("\"y\" = \"2\";"));
    la.sort();
    lb.sort();
    QCOMPARE(la, lb);
    QCOMPARE(stringsFileStyleData(a), stringsFileStyleData(a));
}

void TestDictionary::firstMergeCreatesFile()
{
    const QString file = QDir(DictionaryFiles::dictionaryFolder()).filePath(DictionaryFiles::fileName(
        QStringLiteral("English"), QStringLiteral("French")));
    QFile::remove(file);
    const MergeResult r = mergeIntoDictionary(file, mapOf({{"Open", "Ouvrir"}, {"Close", "Fermer"}}), nullptr);
    QVERIFY(r.written);
    QVERIFY(r.message.isEmpty());
    QCOMPARE(r.pairCount, 2);
    QCOMPARE(TestSupport::readFile(file), QByteArray("\"Open\" = \"Ouvrir\";\n\"Close\" = \"Fermer\";\n"));
}

void TestDictionary::mergeReplacesAndKeeps()
{
    const QString file = path(QStringLiteral("English-German.strings"));
    TestSupport::writeFile(file, "\"Open\" = \"Offen\";\n\"Quit\" = \"Beenden\";\n");
    const MergeResult r = mergeIntoDictionary(file, mapOf({{"Open", "\xC3\x96""ffnen"}, {"Save", "Sichern"}}), nullptr);
    QVERIFY(r.written);
    const auto read = dictionaryWithContentsOfFile(file);
    QVERIFY(read);
    QCOMPARE(*read, mapOf({{"Open", "\xC3\x96""ffnen"}, {"Quit", "Beenden"}, {"Save", "Sichern"}}));
    // The word replaced keeps its line; no second "Open" line.
    QCOMPARE(TestSupport::readFile(file).count("\"Open\""), 1);
}

void TestDictionary::mergeNotifiesAroundTheWrite()
{
    const QString file = path(QStringLiteral("English-Dutch.strings"));
    QObject sender;
    QStringList order;
    NotificationCenter &center = NotificationCenter::instance();
    QObject context;
    connect(&center, &NotificationCenter::dictWillExportFile, &context, [&](QObject *o) {
        QCOMPARE(o, &sender);
        // A browser saves its unsaved rows here; the merge must read them.
        TestSupport::writeFile(file, "\"Browser\" = \"Bladeren\";\n");
        order << QStringLiteral("will");
    });
    connect(&center, &NotificationCenter::dictExportFileAndAddEntries, &context, [&](QObject *o) {
        QCOMPARE(o, &sender);
        order << (QFileInfo::exists(file) ? QStringLiteral("after-write") : QStringLiteral("after-nothing"));
    });
    const MergeResult r = mergeIntoDictionary(file, mapOf({{"Open", "Openen"}}), &sender);
    QVERIFY(r.written);
    QCOMPARE(order, (QStringList{QStringLiteral("will"), QStringLiteral("after-write")}));
    QCOMPARE(dictionaryWithContentsOfFile(file)->value(QStringLiteral("Browser")), QStringLiteral("Bladeren"));
}

void TestDictionary::unreadableFileIsKeptAside_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::newRow("unclosed quote") << QByteArray("\"Open\" = \"Ouvrir\";\n\"Close\" = \"Fer");
    QTest::newRow("word ending in a backslash, old writer") << QByteArray("\"C:\\\" = \"D:\\\";\n");
    QTest::newRow("not UTF-8 text") << QByteArray("\"a\" = \"\xC3\x28\";\n");
    QTest::newRow("binary junk") << QByteArray("\x01\x02 = = ;;", 9);
}

void TestDictionary::unreadableFileIsKeptAside()
{
    QFETCH(QByteArray, bytes);
    QTemporaryDir dir;
    const QString file = dir.filePath(QStringLiteral("English-French.strings"));
    TestSupport::writeFile(file, bytes);
    QVERIFY(!dictionaryWithContentsOfFile(file));
    const MergeResult r = mergeIntoDictionary(file, mapOf({{"Open", "Ouvrir"}}), nullptr);
    QVERIFY(r.written);
    QVERIFY(!r.keptAsidePath.isEmpty());
    QCOMPARE(TestSupport::readFile(r.keptAsidePath), bytes);
    QVERIFY2(r.message.contains(QFileInfo(r.keptAsidePath).fileName()), qPrintable(r.message));
    QVERIFY(!r.keptAsidePath.endsWith(QLatin1String(".strings")));
    QCOMPARE(*dictionaryWithContentsOfFile(file), mapOf({{"Open", "Ouvrir"}}));
}

void TestDictionary::failedWriteIsReported()
{
    // A path under a plain file can never be written.
    const QString blocker = TestSupport::writeFile(path(QStringLiteral("blocker")), "x");
    const QString file = blocker + QLatin1String("/English-French.strings");
    QSignalSpy after(&NotificationCenter::instance(), &NotificationCenter::dictExportFileAndAddEntries);
    const MergeResult r = mergeIntoDictionary(file, mapOf({{"Open", "Ouvrir"}}), nullptr);
    QVERIFY(!r.written);
    QVERIFY(r.message.contains(QLatin1String("could not be written")));
    QCOMPARE(after.count(), 1);
}

QTEST_GUILESS_MAIN(TestDictionary)
#include "test_dictionary.moc"
