// Delimiter rules, absent against empty, replacement and escaping, and the two text-file readers.
#include "StringUtility.h"
#include "TestSupport.h"
#include "TextFile.h"

#include <QStringEncoder>
#include <QTest>

using namespace StringUtility;
Q_DECLARE_METATYPE(OptString)

namespace {
const OptString kAbsent = std::nullopt;
QString S(const char *utf8) { return QString::fromUtf8(utf8); }
}  // namespace

class TestStringUtility : public QObject {
    Q_OBJECT
private slots:
    void cutBetweenDelimiters_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("open");
        QTest::addColumn<QString>("close");
        QTest::addColumn<OptString>("expected");
        QTest::newRow("empty quotes are absent, not empty") << S("\"\" = \"x\";") << S("\"") << S("\"") << kAbsent;
        QTest::newRow("value of a pair line") << S("\"\" = \"x\";") << S(" = \"") << S("\";") << OptString(S("x"));
        QTest::newRow("open found regardless of case")
            << S("/* ObjectID = \"12\"; */") << S("objectid = \"") << S("\"") << OptString(S("12"));
        QTest::newRow("close found regardless of case") << S("<A>x<B>") << S("<a>") << S("<b>") << OptString(S("x"));
        QTest::newRow("open ends the text though close occurs earlier") << S("b]xx[") << S("[") << S("]") << kAbsent;
        QTest::newRow("close only looked for after open") << S("]a[b]") << S("[") << S("]") << OptString(S("b"));
        QTest::newRow("first close after open wins") << S("[a]b]") << S("[") << S("]") << OptString(S("a"));
        QTest::newRow("missing open") << S("abc") << S("[") << S("]") << kAbsent;
        QTest::newRow("missing close") << S("[abc") << S("[") << S("]") << kAbsent;
        QTest::newRow("same delimiter both sides") << S("say \"hi\" now") << S("\"") << S("\"") << OptString(S("hi"));
    }
    void cutBetweenDelimiters()
    {
        QFETCH(QString, text);
        QFETCH(QString, open);
        QFETCH(QString, close);
        QFETCH(OptString, expected);
        QCOMPARE(substringFrom(text, open, close), expected);
        // The ranged form over the whole text is the same operation.
        QCOMPARE(substringFrom(text, open, close, 0, text.size()), expected);
    }

    void rangedCutSkipsLeadingText()
    {
        const QString t = S("/* \"k\"=\"v\" */\n\"a\" = \"b\";");
        QCOMPARE(substringFrom(t, S("\""), S("\""), 0, t.size()), OptString(S("k")));
        const qsizetype start = t.indexOf(u'\n');
        QCOMPARE(substringFrom(t, S(" = \""), S("\";"), start, t.size() - start), OptString(S("b")));
        // Open must lie inside the range; close is looked for in the rest of the text.
        QCOMPARE(substringFrom(S("ab[cd]"), S("["), S("]"), 0, 3), OptString(S("cd")));
        QCOMPARE(substringFrom(S("ab[cd]"), S("["), S("]"), 3, 3), kAbsent);
        // A range reaching beyond the text gives absent without searching.
        QCOMPARE(substringFrom(S("[a]"), S("["), S("]"), 0, 4), kAbsent);
        QCOMPARE(substringFrom(S("[a]"), S("["), S("]"), 2, 2), kAbsent);
    }

    void cutBeforeAndAfter()
    {
        QCOMPARE(substringTo(S("\"key\""), S("\"")), kAbsent);  // nothing precedes
        QCOMPARE(substringTo(S("a = b = c"), S(" = ")), OptString(S("a")));
        QCOMPARE(substringTo(S("abc"), S("x")), kAbsent);
        QCOMPARE(substringTo(S("KeyXvalue"), S("x")), OptString(S("Key")));  // case-insensitive
        QCOMPARE(substringFrom(S("abc\n"), S("\n")), kAbsent);  // nothing follows
        QCOMPARE(substringFrom(S("a\nb\nc"), S("\n")), OptString(S("b\nc")));
        QCOMPARE(substringFrom(S("abc"), S("x")), kAbsent);
    }

    void absentEqualsNothing()
    {
        QVERIFY(!wordsEqual(kAbsent, kAbsent));
        QVERIFY(!wordsEqual(kAbsent, S("")));
        QVERIFY(wordsEqual(S(""), S("")));
        QCOMPARE(wordLength(kAbsent), 0);
    }

    void replacing_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("target");
        QTest::addColumn<QString>("replacement");
        QTest::addColumn<QString>("expected");
        QTest::newRow("non-overlapping from the left") << S("aaa") << S("aa") << S("b") << S("ba");
        QTest::newRow("empty target changes nothing") << S("abc") << S("") << S("x") << S("abc");
        QTest::newRow("absent target") << S("abc") << S("z") << S("x") << S("abc");
        QTest::newRow("exact case") << S("aAa") << S("a") << S("-") << S("-A-");
        QTest::newRow("replacement holding the target") << S("ab") << S("a") << S("aa") << S("aab");
    }
    void replacing()
    {
        QFETCH(QString, text);
        QFETCH(QString, target);
        QFETCH(QString, replacement);
        QFETCH(QString, expected);
        QCOMPARE(replaceStringFrom(text, target, replacement), expected);
        if (replacement.isEmpty()) QCOMPARE(removeString(text, target), expected);
    }

    void caseInsensitiveContains()
    {
        const QStringList texts = {S("Öffnen"), S("/* Class = \"NSButton\" */"), S("ÉCOLE école"), S("ab"), S("")};
        const QStringList keys = {S("öFF"), S("class"), S("CLASS ="), S("école"), S("b"), S("abc"), S(""), S("ß")};
        for (const QString &t : texts)
            for (const QString &k : keys)
                QVERIFY2(containsCaseInsensitive(t, k) == t.contains(k, Qt::CaseInsensitive), qPrintable(t + S(" / ") + k));
    }

    void lineEnds()
    {
        QCOMPARE(replaceReturnCode(S("a\r\nb\rc\n")), S("a\nb\nc\n"));
        QCOMPARE(replaceReturnCode(S("\r\r\n")), S("\n\n"));
    }

    void escaping_data()
    {
        QTest::addColumn<QString>("word");
        QTest::addColumn<QString>("expected");
        QTest::newRow("plain quotes escaped once") << S("say \"hi\"") << S("say \\\"hi\\\"");
        QTest::newRow("escaped quotes kept once") << S("say \\\"hi\\\"") << S("say \\\"hi\\\"");
        QTest::newRow("doubled backslash collapses") << S("a\\\\b") << S("a\\b");
        QTest::newRow("escaped semicolon") << S("a\\;b") << S("a;b");
        QTest::newRow("four backslashes before n") << S("x\\\\\\\\ny") << S("x\ny");
        QTest::newRow("line feed stays a line feed") << S("a\nb") << S("a\nb");
        QTest::newRow("escaped n stays") << S("a\\nb") << S("a\\nb");
    }
    void escaping()
    {
        QFETCH(QString, word);
        QFETCH(QString, expected);
        const QString once = escapeForStringsFile(word);
        QCOMPARE(once, expected);
        if (!once.contains(S("\\\\"))) QCOMPARE(escapeForStringsFile(once), once);
    }

    void textFileEncodings()
    {
        QTemporaryDir dir;
        const QString word = S("Öffnen – 開く");
        const QByteArray utf8 = (S("\"Open\" = \"") + word + S("\";\n")).toUtf8();
        auto read = [&](const QByteArray &bytes) {
            return readTextFileAtPath(TestSupport::writeFile(dir.filePath(S("t.strings")), bytes));
        };
        const QString expected = QString::fromUtf8(utf8);
        QCOMPARE(read(utf8), OptString(expected));
        QCOMPARE(read("\xEF\xBB\xBF" + utf8), OptString(expected));  // the mark is dropped
        auto utf16 = [&](QStringConverter::Encoding e) {
            QStringEncoder enc(e);
            return QByteArray(enc.encode(expected));
        };
        QCOMPARE(read("\xFF\xFE" + utf16(QStringConverter::Utf16LE)), OptString(expected));
        QCOMPARE(read("\xFE\xFF" + utf16(QStringConverter::Utf16BE)), OptString(expected));
        // Unmarked UTF-16 is told apart from UTF-8 by its NUL bytes, in either order.
        const QString ascii = S("\"CFBundleName\" = \"Transmission\";\n");
        QStringEncoder be(QStringConverter::Utf16BE), le(QStringConverter::Utf16LE);
        QCOMPARE(read(be.encode(ascii)), OptString(ascii));
        QCOMPARE(read(le.encode(ascii)), OptString(ascii));
        // Bytes that are not UTF-8 fall back to Mac OS Roman: 0x8A is ä, 0xE9 is È there.
        QCOMPARE(read("\"a\" = \"\x8a\xe9\";"), OptString(S("\"a\" = \"äÈ\";")));
        QCOMPARE(read(""), OptString(S("")));
        QCOMPARE(readTextFileAtPath(dir.filePath(S("missing"))), kAbsent);
    }

    void utf16TableFromTheTool()
    {
        QTemporaryDir dir;
        const QString text = S("\n/* x */\n\"1.title\" = \"Ü\";\n");
        QStringEncoder be(QStringConverter::Utf16BE), le(QStringConverter::Utf16LE);
        QCOMPARE(stringFromUTF16DataFilePath(TestSupport::writeFile(dir.filePath(S("be")), "\xFE\xFF" + QByteArray(be.encode(text)))),
                 OptString(text));
        QCOMPARE(stringFromUTF16DataFilePath(TestSupport::writeFile(dir.filePath(S("le")), "\xFF\xFE" + QByteArray(le.encode(text)))),
                 OptString(text));
        QCOMPARE(stringFromUTF16DataFilePath(TestSupport::writeFile(dir.filePath(S("nomark")), le.encode(text))), OptString(text));
        QCOMPARE(stringFromUTF16DataFilePath(TestSupport::writeFile(dir.filePath(S("odd")), "\xFF\xFE\x41")), kAbsent);
        QCOMPARE(stringFromUTF16DataFilePath(dir.filePath(S("missing"))), kAbsent);
    }
};

QTEST_GUILESS_MAIN(TestStringUtility)
#include "test_string_utility.moc"
