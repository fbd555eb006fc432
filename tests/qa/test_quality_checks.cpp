// The quality checks on tables of cases (tests/qa/data/cases.tsv: base, translation, the checks
// expected), the placeholder grammar, unescaping, the places of keys in a table, the cache the
// window uses, and faults planted in copies of real tables of the corpus.
#include "FormatSpecifiers.h"
#include "QualityCache.h"
#include "QualityChecks.h"
#include "StringsTable.h"
#include "TablePlaces.h"
#include "TestSupport.h"
#include "TextFile.h"

#include <QDirIterator>

using namespace Qa;

using namespace Qt::StringLiterals;

namespace {

QString decoded(QString field)
{
    field.replace(QLatin1String("<nbsp>"), QString(QChar(0x00A0)));
    field.replace(QLatin1String("<nnbsp>"), QString(QChar(0x202F)));
    QString out;
    for (qsizetype i = 0; i < field.size(); ++i) {
        if (field[i] == u'\\' && i + 1 < field.size()) {
            const QChar e = field[++i];
            out.append(e == u'n' ? QChar(u'\n') : e == u't' ? QChar(u'\t') : e);
        } else {
            out.append(field[i]);
        }
    }
    return out;
}

QStringList firedChecks(const QList<Problem> &problems)
{
    QStringList ids;
    for (const Problem &p : problems) ids.append(p.check);
    return ids;
}

}  // namespace

class TestQualityChecks : public QObject {
    Q_OBJECT

private slots:
    void cases_data();
    void cases();
    void specifiers_data();
    void specifiers();
    void unescaping_data();
    void unescaping();
    void tablePlaces();
    void entryWords_data();
    void entryWords();
    void entriesAndCache();
    void plantedFaultsInCorpusTables();
};

void TestQualityChecks::cases_data()
{
    QTest::addColumn<bool>("checked");
    QTest::addColumn<QString>("base");
    QTest::addColumn<QString>("translation");
    QTest::addColumn<QStringList>("expected");
    QFile file(QStringLiteral(VOCABRIX_SOURCE_DIR "/tests/qa/data/cases.tsv"));
    QVERIFY(file.open(QIODevice::ReadOnly));
    int number = 0;
    for (const QByteArray &raw : file.readAll().split('\n')) {
        ++number;
        const QString line = QString::fromUtf8(raw);
        if (line.isEmpty() || line.startsWith(u'#')) continue;
        const QStringList f = line.split(u'\t');
        QVERIFY2(f.size() == 4, qPrintable(QStringLiteral("cases.tsv line %1: four fields").arg(number)));
        const QStringList expected = f[3] == QLatin1String("-") ? QStringList() : f[3].split(u',');
        QTest::addRow("line %d: %s", number, qPrintable(f[1].left(30))) << (f[0] == QLatin1String("c")) << decoded(f[1])
                                                                           << decoded(f[2]) << expected;
    }
}

void TestQualityChecks::cases()
{
    QFETCH(bool, checked);
    QFETCH(QString, base);
    QFETCH(QString, translation);
    QFETCH(QStringList, expected);
    const QList<Problem> problems = checkTranslation(base, translation, checked);
    QCOMPARE(firedChecks(problems), expected);
    for (const Problem &p : problems) {
        QVERIFY(!p.message.isEmpty());
        QCOMPARE(p.severity, p.check == QLatin1String("format-specifiers") ? Severity::Error : Severity::Warning);
        QVERIFY2(checkIdentifiers().contains(p.check), qPrintable(p.check));
    }
}

void TestQualityChecks::specifiers_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("format");
    QTest::addColumn<QStringList>("found");  // "text=type"
    QTest::addRow("every length and conversion") << QStringLiteral("%@ %hhd %hu %ld %lld %qu %zd %jd %Lf %lf %c %C %s %S %p %X")
                                                << true
                                                << QStringList{u"%@=object"_s, u"%hhd=integer"_s, u"%hu=integer"_s, u"%ld=long integer"_s,
                                                               u"%lld=long integer"_s, u"%qu=long integer"_s, u"%zd=long integer"_s,
                                                               u"%jd=long integer"_s, u"%Lf=long double"_s, u"%lf=double"_s, u"%c=char"_s,
                                                               u"%C=unichar"_s, u"%s=C string"_s, u"%S=unichar string"_s, u"%p=pointer"_s,
                                                               u"%X=integer"_s};
    QTest::addRow("flags, width, precision, positions") << QStringLiteral("%1$-5.2f %2$+d %#x %05ld %'d %*.*f") << true
                                                        << QStringList{u"%1$-5.2f=double"_s, u"%2$+d=integer"_s, u"%#x=integer"_s,
                                                                       u"%05ld=long integer"_s, u"%'d=integer"_s, u"*=integer"_s,
                                                                       u"*=integer"_s, u"%*.*f=double"_s};
    QTest::addRow("named forms") << QStringLiteral("%#@files@ in %{value1}@") << false
                                 << QStringList{u"%#@files@=object"_s, u"%{value1}@=object"_s};
    QTest::addRow("percent signs") << QStringLiteral("%% 100% %0 %$ %1$ %{} %{x}") << true << QStringList();
    QTest::addRow("space flag only in a format") << QStringLiteral("50% sure") << true << QStringList{u"% s=C string"_s};
    QTest::addRow("no space flag in text") << QStringLiteral("50% sure") << false << QStringList();
}

void TestQualityChecks::specifiers()
{
    QFETCH(QString, text);
    QFETCH(bool, format);
    QFETCH(QStringList, found);
    QStringList got;
    for (const Specifier &s : formatSpecifiers(text, format ? FormatMode::Format : FormatMode::Text))
        got.append(s.text + u'=' + s.type);
    QCOMPARE(got, found);
}

void TestQualityChecks::unescaping_data()
{
    QTest::addColumn<QString>("escaped");
    QTest::addColumn<QString>("plain");
    QTest::addRow("none") << QStringLiteral("Open %@") << QStringLiteral("Open %@");
    QTest::addRow("line break and tab") << QStringLiteral("a\\nb\\tc") << QStringLiteral("a\nb\tc");
    QTest::addRow("quote and backslash") << QStringLiteral("\\\"x\\\" \\\\") << QStringLiteral("\"x\" \\");
    QTest::addRow("unicode") << QStringLiteral("caf\\U00e9\\u00E9") << QStringLiteral("café\u00e9");
    QTest::addRow("octal and control") << QStringLiteral("\\351t\\a\\v") << QStringLiteral("ét\a\v");
    QTest::addRow("unicode without digits") << QStringLiteral("\\Uzz") << QStringLiteral("Uzz");
    QTest::addRow("trailing backslash") << QStringLiteral("end\\") << QStringLiteral("end\\");
}

void TestQualityChecks::unescaping()
{
    QFETCH(QString, escaped);
    QFETCH(QString, plain);
    QCOMPARE(unescapedWord(escaped), plain);
}

void TestQualityChecks::tablePlaces()
{
    const QString text = QStringLiteral(
        "/* Class = \"NSButton\"; title = \"Say \\\"Hi\\\"\\n\"; ObjectID = \"12\"; */\n"
        "\"12.title\" = \"Dis \\\"Salut\\\"\\n\";\n"
        "// a line comment\n"
        "Unquoted = \"x\";\n"
        "\n"
        "/* first */ \"dup\" = \"1\";\n"
        "\"multi\n"
        "line\" = \"y\";\n"
        "\"dup\" = \"2\";\n"
        "\"short\"; /* its own */\n"
        "\"broken\" = ;\n"
        "\"after\" = \"never read\";\n");
    const auto places = Qa::tablePlaces(text);
    QCOMPARE(places.value(QStringLiteral("12.title")).line, 2);
    QCOMPARE(interfaceCommentBase(places.value(QStringLiteral("12.title")).comment), QStringLiteral("Say \"Hi\"\n"));
    QCOMPARE(places.value(QStringLiteral("Unquoted")).line, 4);
    QCOMPARE(places.value(QStringLiteral("Unquoted")).comment, QString());
    QCOMPARE(places.value(QStringLiteral("multi\nline")).line, 7);
    QCOMPARE(places.value(QStringLiteral("dup")).line, 9);  // the pair whose value is kept
    QCOMPARE(places.value(QStringLiteral("short")).line, 10);
    QCOMPARE(places.value(QStringLiteral("short")).trailingComment, QStringLiteral("its own"));
    QVERIFY(isInterfaceKey(QStringLiteral("12.title")) && isInterfaceKey(QStringLiteral("FAF-cL-AAk.headerToolTip")));
    QVERIFY(!isInterfaceKey(QStringLiteral("1.5 times")) && !isInterfaceKey(QStringLiteral("alert.title")));
    for (const char *key : {"CFBundleName", "alert.title", "ok_button", "NSAppleEventsUsageDescription"})
        QVERIFY2(isIdentifierKey(QString::fromLatin1(key)), key);
    for (const char *key : {"OK", "Cancel", "Open Recent", "Quit %@", "e.g. this", "Don't save"})
        QVERIFY2(!isIdentifierKey(QString::fromLatin1(key)), key);
    QVERIFY(!places.contains(QStringLiteral("broken")) && !places.contains(QStringLiteral("after")));
    QVERIFY(!interfaceCommentBase(QStringLiteral("first")));
    QVERIFY(Qa::tablePlaces(QStringLiteral("/* open")).isEmpty());
    QVERIFY(Qa::tablePlaces(QStringLiteral("\"open")).isEmpty());
    QVERIFY(Qa::tablePlaces(QStringLiteral(" 4= ")).isEmpty());  // no value before the end
}

// The checks read an entry's words with their own, faster cuts: they must be the entry's.
void TestQualityChecks::entryWords_data()
{
    QTest::addColumn<QString>("text");
    QTest::addRow("interface") << u"/* Class = \"NSButton\"; title = \"Cancel\"; ObjectID = \"12\"; */\n\"12.title\" = \"Abbrechen\";"_s;
    QTest::addRow("property in capitals") << u"/* Class = \"NSButton\"; Title = \"X\"; ObjectID = \"1\"; */\n\"1.title\" = \"Y\";"_s;
    QTest::addRow("property after another") << u"/* Class = \"A\"; placeholderString = \"p\"; title = \"t\"; ObjectID = \"1\"; */\n\"1.title\" = \"u\";"_s;
    QTest::addRow("class named as the property") << u"/* Class = \"title\"; title = \"t\"; ObjectID = \"1\"; */\n\"1.title\" = \"u\";"_s;
    QTest::addRow("empty interface value") << u"/* Class = \"A\"; title = \"\"; ObjectID = \"1\"; */\n\"1.title\" = \"\";"_s;
    QTest::addRow("escaped quotes") << u"/* Class = \"A\"; title = \"Say \\\"Hi\\\"\"; ObjectID = \"1\"; */\n\"1.title\" = \"\\\"Salut\\\";\";"_s;
    QTest::addRow("strings file") << u"/* \"OpenKey\"=\"Open\" */\n\"Open\" = \"Ouvrir\";"_s;
    QTest::addRow("pair line") << u"\"My App\" = \"Mein Programm\";"_s;
    QTest::addRow("empty key") << u"/* \"k\"=\"\" */\n\"\" = \"x\";"_s;
    QTest::addRow("unquoted") << u"a = \"b\";"_s;
    QTest::addRow("nibtool") << u"/* NSButton (Cancel) : <title:Cancel> (oid:54) */\n\"Cancel\" = \"Annuler\";"_s;
    QTest::addRow("nothing after the line feed") << u"\"a\" = \"b\";\n"_s;
    QTest::addRow("no pair") << u"garbage"_s;
}

void TestQualityChecks::entryWords()
{
    QFETCH(QString, text);
    const LocEntry entry(text, true);
    const EntryWords words = Qa::entryWords(entry);
    QCOMPARE(words.base, StringUtility::wordOrEmpty(entry.baseWord()));
    QCOMPARE(words.translation, StringUtility::wordOrEmpty(entry.localizedWord()));
}

void TestQualityChecks::entriesAndCache()
{
    QTemporaryDir dir;
    TestSupport::isolate(dir);
    // Entries hold their words escaped; the checks see them as the user does.
    const auto entry = LocEntry::initWithEntry(
        QStringLiteral("/* Class = \"NSTextFieldCell\"; title = \"%d files\\n\"; ObjectID = \"7\"; */\n\"7.title\" = \"%d files\\n\";"));
    const auto plain = LocEntry::initWithEntry(QStringLiteral("/* \"k\"=\"Name:\" */\n\"Name:\" = \"Name:\";"));
    QualityCache cache;
    QVERIFY(cache.problems(*entry).isEmpty());
    entry->setLocalizedWord(QStringLiteral("%@ fichiers"));  // checks the entry too
    QCOMPARE(firedChecks(cache.problems(*entry)), (QStringList{u"format-specifiers"_s, u"line-breaks"_s}));
    QCOMPARE(cache.severity(*entry), Severity::Error);
    QCOMPARE(firedChecks(checkTypedWord(*entry, QStringLiteral("%d fichiers\\n"), true)), QStringList());
    QVERIFY(cache.problems(*plain).isEmpty());
    plain->setCheck(true);  // the same text, now checked: the same as its base
    QCOMPARE(firedChecks(cache.problems(*plain)), QStringList{u"same-as-base"_s});

    auto file = LocFile::initWithPath(dir.filePath(QStringLiteral("x.strings")), std::nullopt, std::nullopt);
    QVERIFY(file);
    file->setAllEntries({entry, plain, LocEntry::initWithBaseWord(QStringLiteral("Open"), QStringLiteral("Ouvrir"))});
    const FileSummary summary = cache.summary(*file);
    QCOMPARE(summary.errors, 1);
    QCOMPARE(summary.warnings, 1);
    QCOMPARE(summary.worst(), Severity::Error);
    QVERIFY(problemsText(cache.problems(*entry)).startsWith(QLatin1String("error: ")));
}

// Copies of real translated tables with one fault planted per pair: each planted fault is found,
// and a pair found clean before stays clean under a change that keeps it right.
void TestQualityChecks::plantedFaultsInCorpusTables()
{
    SKIP_WITHOUT_CORPUS();
    int planted = 0;
    QDirIterator it(TestSupport::corpusDir() + QStringLiteral("/xib-pairs"), {QStringLiteral("*.strings")}, QDir::Files,
                    QDirIterator::Subdirectories);
    while (it.hasNext()) {
        const QByteArray bytes = TestSupport::readFile(it.next());
        const auto map = StringsTable::parseData(bytes);
        if (!map) continue;
        const auto places = Qa::tablePlaces(StringUtility::wordOrEmpty(decodeTextFileData(bytes)));
        for (const auto &[key, value] : *map) {
            const auto base = interfaceCommentBase(places.value(key).comment);
            if (!base || base->isEmpty() || value.isEmpty() || !checkTranslation(*base, value, false).isEmpty()) continue;
            const QString where = it.filePath() + u' ' + key;
            const LocEntry entry(QStringLiteral("/* %1 */\n\"%2\" = \"%3\";")
                                     .arg(places.value(key).comment, key, StringUtility::escapeForStringsFile(value)), true);
            const EntryWords words = Qa::entryWords(entry);
            QVERIFY2(words.base == StringUtility::wordOrEmpty(entry.baseWord())
                         && words.translation == StringUtility::wordOrEmpty(entry.localizedWord()), qPrintable(where));
            const bool isFormat = !formatSpecifiers(*base, FormatMode::Text).isEmpty();
            const QList<Specifier> specs = formatSpecifiers(value, FormatMode::Format);
            if (isFormat && !specs.isEmpty() && specs.first().name.isEmpty()) {
                QString dropped = value;
                dropped.remove(value.indexOf(specs.first().text), specs.first().text.size());
                QVERIFY2(firedChecks(checkTranslation(*base, dropped, false)).contains(QLatin1String("format-specifiers")),
                         qPrintable(where));
                QString wrongKind = value;
                wrongKind.replace(value.indexOf(specs.first().text), specs.first().text.size(),
                                  specs.first().type == QLatin1String("object") ? QStringLiteral("%d") : QStringLiteral("%@"));
                QVERIFY2(firedChecks(checkTranslation(*base, wrongKind, false)).contains(QLatin1String("format-specifiers")),
                         qPrintable(where));
                ++planted;
            }
            const QList<Problem> extra = checkTranslation(*base, value + QStringLiteral(" %@"), false);
            QVERIFY2(firedChecks(extra).contains(QLatin1String("format-specifiers")), qPrintable(where));
            QVERIFY2(firedChecks(checkTranslation(*base, value + u'\n', false)).contains(QLatin1String("line-breaks")),
                     qPrintable(where));
            QVERIFY2(checkTranslation(*base, value, true).size() <= 1, qPrintable(where));  // at most same-as-base
            ++planted;
        }
    }
    QVERIFY2(planted > 1000, qPrintable(QString::number(planted)));
}

QTEST_GUILESS_MAIN(TestQualityChecks)
#include "test_quality_checks.moc"
