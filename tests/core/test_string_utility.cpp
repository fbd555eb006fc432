// Cutting, replacing and escaping entry text (a table of cases), absent against empty, and the
// two text-file readers with their encodings.
#include "CaseData.h"
#include "StringUtility.h"
#include "TextFile.h"

#include <QTest>

using namespace StringUtility;
using TestSupport::S;

namespace {
const OptString kAbsent = std::nullopt;
}  // namespace

class TestStringUtility : public QObject {
    Q_OBJECT
private slots:
    void textOperations_data()
    {
        TestSupport::addCaseRows(S("core/text-ops.tsv"), {"op", "text", "first", "second", "expectedText"});
    }
    void textOperations()
    {
        QFETCH(QString, op);
        QFETCH(QString, text);
        QFETCH(QString, first);
        QFETCH(QString, second);
        QFETCH(QString, expectedText);
        const OptString expected = expectedText == QLatin1String("!absent") ? kAbsent : OptString(expectedText);
        if (op == QLatin1String("between")) {
            QCOMPARE(substringFrom(text, first, second), expected);
            // The ranged form over the whole text is the same operation.
            QCOMPARE(substringFrom(text, first, second, 0, text.size()), expected);
        } else if (op == QLatin1String("before")) {
            QCOMPARE(substringTo(text, first), expected);
        } else if (op == QLatin1String("after")) {
            QCOMPARE(substringFrom(text, first), expected);
        } else if (op == QLatin1String("replace")) {
            QCOMPARE(OptString(replaceStringFrom(text, first, second)), expected);
            if (second.isEmpty()) QCOMPARE(OptString(removeString(text, first)), expected);
        } else if (op == QLatin1String("escape")) {
            const QString once = escapeForStringsFile(text);
            QCOMPARE(OptString(once), expected);
            if (!once.contains(S("\\\\"))) QCOMPARE(escapeForStringsFile(once), once);
        } else if (op == QLatin1String("lineends")) {
            QCOMPARE(OptString(replaceReturnCode(text)), expected);
        } else {
            QFAIL(qPrintable(S("unknown operation ") + op));
        }
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

    void absentEqualsNothing()
    {
        QVERIFY(!wordsEqual(kAbsent, kAbsent));
        QVERIFY(!wordsEqual(kAbsent, S("")));
        QVERIFY(wordsEqual(S(""), S("")));
        QCOMPARE(wordLength(kAbsent), 0);
    }

    void caseInsensitiveContains()
    {
        const QStringList texts = {S("Öffnen"), S("/* Class = \"NSButton\" */"), S("ÉCOLE école"), S("ab"), S("")};
        const QStringList keys = {S("öFF"), S("class"), S("CLASS ="), S("école"), S("b"), S("abc"), S(""), S("ß")};
        for (const QString &t : texts)
            for (const QString &k : keys)
                QVERIFY2(containsCaseInsensitive(t, k) == t.contains(k, Qt::CaseInsensitive), qPrintable(t + S(" / ") + k));
    }

    void textFileEncodings()
    {
        QTemporaryDir dir;
        const auto read = [&](const QByteArray &bytes) {
            return readTextFileAtPath(TestSupport::writeFile(dir.filePath(S("t.strings")), bytes));
        };
        const QString text = S("\"Open\" = \"Öffnen – 開く\";\n");
        QCOMPARE(read(text.toUtf8()), OptString(text));
        QCOMPARE(read("\xEF\xBB\xBF" + text.toUtf8()), OptString(text));  // the mark is dropped
        QCOMPARE(read(TestSupport::utf16le(text)), OptString(text));
        QCOMPARE(read(TestSupport::utf16be(text)), OptString(text));
        // Unmarked UTF-16 is told apart from UTF-8 by its NUL bytes, in either order.
        const QString ascii = S("\"CFBundleName\" = \"Transmission\";\n");
        QCOMPARE(read(TestSupport::utf16be(ascii, false)), OptString(ascii));
        QCOMPARE(read(TestSupport::utf16le(ascii, false)), OptString(ascii));
        // Bytes that are not UTF-8 fall back to Mac OS Roman: 0x8A is ä, 0xE9 is È there.
        QCOMPARE(read("\"a\" = \"\x8a\xe9\";"), OptString(S("\"a\" = \"äÈ\";")));
        QCOMPARE(read(""), OptString(S("")));
        QCOMPARE(readTextFileAtPath(dir.filePath(S("missing"))), kAbsent);

        // The interface tool's tables are UTF-16, marked either way or not at all.
        const QString table = S("\n/* x */\n\"1.title\" = \"Ü\";\n");
        const auto utf16File = [&](const QByteArray &bytes) {
            return stringFromUTF16DataFilePath(TestSupport::writeFile(dir.filePath(S("t")), bytes));
        };
        QCOMPARE(utf16File(TestSupport::utf16be(table)), OptString(table));
        QCOMPARE(utf16File(TestSupport::utf16le(table)), OptString(table));
        QCOMPARE(utf16File(TestSupport::utf16le(table, false)), OptString(table));
        QCOMPARE(utf16File("\xFF\xFE\x41"), kAbsent);
        QCOMPARE(stringFromUTF16DataFilePath(dir.filePath(S("missing"))), kAbsent);
    }
};

QTEST_GUILESS_MAIN(TestStringUtility)
#include "test_string_utility.moc"
