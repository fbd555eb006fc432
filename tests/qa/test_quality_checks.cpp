// The quality checks on tables of cases, the placeholder grammar, and faults planted in copies of
// real tables of the corpus.
#include "CaseData.h"
#include "FormatSpecifiers.h"
#include "QualityCache.h"
#include "QualityChecks.h"
#include "StringsTable.h"
#include "TablePlaces.h"
#include "TextFile.h"

#include <QDirIterator>

using namespace Qa;

using namespace Qt::StringLiterals;

namespace {

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
    void cases_data() { TestSupport::addTableRows(u"qa"_s, u"cases.tsv"_s, {u"checked"_s, u"base"_s, u"translation"_s, u"expected"_s}); }
    void cases()
    {
        QFETCH(QString, checked);
        QFETCH(QString, base);
        QFETCH(QString, translation);
        QFETCH(QString, expected);
        const QList<Problem> problems = checkTranslation(base, translation, checked == u"c"_s);
        QCOMPARE(firedChecks(problems).join(u','), expected == u"-"_s ? QString() : expected);
        for (const Problem &p : problems) {
            QVERIFY(!p.message.isEmpty());
            QCOMPARE(p.severity, p.check == QLatin1String("format-specifiers") ? Severity::Error : Severity::Warning);
            QVERIFY2(checkIdentifiers().contains(p.check), qPrintable(p.check));
        }
    }
    void specifiers_data() { TestSupport::addTableRows(u"qa"_s, u"specifiers.tsv"_s, {u"mode"_s, u"text"_s, u"found"_s}); }
    void specifiers()
    {
        QFETCH(QString, mode);
        QFETCH(QString, text);
        QFETCH(QString, found);
        QStringList got;
        for (const Specifier &s : formatSpecifiers(text, mode == u"f"_s ? FormatMode::Format : FormatMode::Text)) got.append(s.text + u'=' + s.type);
        QCOMPARE(got.join(u'|'), found);
    }
    void unescaping_data() { TestSupport::addTableRows(u"qa"_s, u"unescaping.tsv"_s, {u"escaped"_s, u"plain"_s}); }
    void unescaping()
    {
        QFETCH(QString, escaped);
        QFETCH(QString, plain);
        QCOMPARE(unescapedWord(escaped), plain);
    }
    void tablePlaces()
    {
        const QString text = QString::fromUtf8(TestSupport::readFile(TestSupport::dataDir(u"qa"_s) + u"/places.strings"_s));
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
    // The checks read an entry's words with cuts of their own: they must be the entry's.
    void entryWords_data() { TestSupport::addTableRows(u"qa"_s, u"entry-words.tsv"_s, {u"text"_s}); }
    void entryWords()
    {
        QFETCH(QString, text);
        const LocEntry entry(text, true);
        const EntryWords words = Qa::entryWords(entry);
        QCOMPARE(words.base, StringUtility::wordOrEmpty(entry.baseWord()));
        QCOMPARE(words.translation, StringUtility::wordOrEmpty(entry.localizedWord()));
    }
    void entriesAndCache()
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
    void plantedFaultsInCorpusTables()
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
            for (const StringMap::Pair pair : *map) {
                const QString key = pair.first.toString(), value = pair.second.toString();
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
};

QTEST_GUILESS_MAIN(TestQualityChecks)
#include "test_quality_checks.moc"
