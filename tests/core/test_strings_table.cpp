// The string-table reader: grammar (from text, UTF-8 and UTF-16 bytes alike), the map's order,
// errors, encodings, all-or-nothing, tables cut at any block end, and files read again.
#include "CaseData.h"
#include "StringsTable.h"

#include <QHash>
#include <QStringDecoder>
#include <QTest>

using TestSupport::S;

namespace {
QString describe(const std::optional<StringMap> &m)
{
    if (!m) return S("nothing");
    QStringList parts;
    for (const auto &p : *m) parts << p.first.toString() + S(" => ") + p.second.toString();
    return S("{") + parts.join(S("; ")) + S("}");
}
}  // namespace

class TestStringsTable : public QObject {
    Q_OBJECT
private slots:
    void grammar_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QStringList>("pairs");  // key, value, ...; "!nothing": refused
        for (const QStringList &row : TestSupport::readCaseTable(TestSupport::dataDir(S("core/strings-grammar.tsv")), 2))
            QTest::newRow(qPrintable(row[0])) << row[1] << row.mid(2);
    }
    void grammar()
    {
        QFETCH(QString, text);
        QFETCH(QStringList, pairs);
        std::optional<StringMap> expected;
        if (pairs.value(0) != QLatin1String("!nothing")) {
            expected = StringMap();
            for (qsizetype i = 0; i + 1 < pairs.size(); i += 2) expected->insert(pairs[i], pairs[i + 1]);
        }
        const auto got = StringsTable::parse(text);
        QVERIFY2(got == expected, qPrintable(S("got ") + describe(got) + S(", expected ") + describe(expected)));
        // UTF-8 bytes go through their own scanner, UTF-16 through the decoder: both read the same.
        const auto fromUtf8 = StringsTable::parseData(text.toUtf8());
        QVERIFY2(fromUtf8 == expected, qPrintable(S("from UTF-8 got ") + describe(fromUtf8)));
        const auto fromUtf16 = StringsTable::parseData(TestSupport::utf16be(text));
        QVERIFY2(fromUtf16 == expected, qPrintable(S("from UTF-16 got ") + describe(fromUtf16)));
    }

    void keysKeepTheirFirstPlace()
    {
        const auto m = StringsTable::parse(S("\"b\" = \"1\"; \"a\" = \"2\"; \"b\" = \"3\";"));
        QVERIFY(m);
        QCOMPARE(m->size(), 2);
        QVERIFY(m->at(0) == StringMap::Pair({u"b", u"3"}));
        QCOMPARE(m->at(1).first, S("a"));
    }

    // The map's own index grows while keys arrive; against a plain hash and list, every key is
    // found with its last value, in the order of first insertion, across many growths.
    void mapAgreesWithAHashAndAList()
    {
        StringMap map;
        QHash<QString, QString> values;
        QStringList order;
        for (int i = 0; i < 20000; ++i) {
            const QString key = S("k") + QString::number((i * 7919) % 13001);  // repeats, out of order
            const QString value = QString::number(i);
            if (!values.contains(key)) order.append(key);
            values.insert(key, value);
            if (i % 2) map.insert(key, value);
            else map.insert(QString(key), QString(value));
        }
        QCOMPARE(map.size(), order.size());
        for (qsizetype i = 0; i < order.size(); ++i) {
            QCOMPARE(map.at(i).first, order.at(i));
            QCOMPARE(map.value(order.at(i)), values.value(order.at(i)));
        }
        QVERIFY(!map.contains(S("k13001")));
        QVERIFY(map.value(S("missing")).isNull());
        StringMap merged;
        merged.insert(S("k0"), S("mine"));
        merged.insert(S("own"), S("1"));
        merged.insertAll(map);
        QCOMPARE(merged.size(), map.size() + 1);
        QCOMPARE(merged.value(S("k0")), map.value(S("k0")));
        QCOMPARE(merged.at(0).first, S("k0"));
        StringMap copy;
        copy.insertAll(map);
        copy.insert(S("extra"), S("x"));  // the copy shares storage until it changes
        QCOMPARE(copy.size(), map.size() + 1);
        QVERIFY(!map.contains(S("extra")));
        // Texts taken from the map itself, while inserting moves its buffer.
        for (int i = 0; i < 1000; ++i) copy.insert(copy.at(i).second, copy.at(0).first);
        QCOMPARE(copy.value(map.at(999).second), map.at(0).first);
        QVERIFY(copy.at(999) == map.at(999));
    }

    void errorsSayWhere()
    {
        // Lines are those of the table as written, not of its words unescaped (\n is no line).
        const QString text = S("\"a\" = \"1\\n2\";\n\n\"b\" = \"2\"\n");
        StringsTable::Error fromText, fromUtf8, fromUtf16;
        StringsTable::parse(text, &fromText);
        StringsTable::parseData(text.toUtf8(), &fromUtf8);
        StringsTable::parseData(TestSupport::utf16le(text), &fromUtf16);
        for (const StringsTable::Error &error : {fromText, fromUtf8, fromUtf16}) {
            QCOMPARE(error.line, 4);
            QVERIFY(error.message.contains(S(";")));
        }
    }

    void encodings()
    {
        const QString text = S("/* Ü */\n\"Open\" = \"Öffnen 開く\";\n");
        const auto expected = StringsTable::parse(text);
        QVERIFY(expected && expected->size() == 1);
        QCOMPARE(StringsTable::parseData("\xEF\xBB\xBF" + text.toUtf8()), expected);
        QCOMPARE(StringsTable::parseData(TestSupport::utf16le(text)), expected);
        // Neither valid UTF-8 nor marked UTF-16: nothing, with a reason.
        StringsTable::Error error;
        QVERIFY(!StringsTable::parseData("\"a\" = \"\x8a\";", &error));
        QVERIFY(!error.message.isEmpty());
    }

    // UTF-8 tables are decoded and parsed a block at a time; a pair cut by the end of a block is
    // read again once the next block is in. Every construct is moved across the first block's
    // end (256 KiB in) one byte at a time, and must read as the decoded text reads, errors and
    // their lines included.
    void blockEndsFallAnywhere_data()
    {
        QTest::addColumn<QByteArray>("tail");
        QTest::newRow("pairs of every kind")
            << QByteArray("/* a * comment **/ \"key\" = \"va\\\"lue\\n\"; // line\r\nunquoted = w0rd.x;\n"
                          "\"short\";\n\"\xC3\xA9\xE9\x96\x8B\xF0\x9F\x98\x80\" = \"\xE2\x80\xA8\";\n\"last\" = \"1\";\n");
        QTest::newRow("a syntax error after the block end") << QByteArray("\"a\" = \"1\";\n\"b\" = \"2\"\n\"c\" = \"3\";\n");
        QTest::newRow("an unclosed comment") << QByteArray("\"a\" = \"1\";\n/* open * /\n");
        QTest::newRow("a broken character") << QByteArray("\"a\" = \"\xE9\x96\";\n");
    }
    void blockEndsFallAnywhere()
    {
        QFETCH(QByteArray, tail);
        constexpr qsizetype block = 256 * 1024;
        QTemporaryDir dir;
        for (qsizetype shift = 0; shift <= tail.size() + 4; ++shift) {
            // A pair, space up to just before the block end, then the tail across it.
            const QByteArray head = "\"k\" = \"v\";\n";
            const QByteArray data = head + QByteArray(block - shift - head.size(), ' ') + tail;
            StringsTable::Error fromBytes, fromText;
            const auto got = StringsTable::parseData(data, &fromBytes);
            QStringDecoder decoder(QStringConverter::Utf8, QStringConverter::Flag::Stateless);
            const QString text = decoder.decode(data);
            const auto expected = decoder.hasError() ? std::nullopt : StringsTable::parse(text, &fromText);
            QVERIFY2(got == expected, qPrintable(S("shift %1: got %2 pairs").arg(shift).arg(got ? got->size() : -1)));
            if (!expected && !decoder.hasError()) {
                QCOMPARE(fromBytes.line, fromText.line);
                QCOMPARE(fromBytes.message, fromText.message);
            }
            if (decoder.hasError()) QCOMPARE(fromBytes.message, S("the file is neither UTF-8 nor UTF-16 with a byte-order mark"));
            // Read from a file as it streams in, the blocks fall elsewhere: the same answer.
            StringsTable::Error fromFile;
            QVERIFY(StringsTable::readFile(TestSupport::writeFile(dir.filePath(S("t.strings")), data), &fromFile) == got);
            QCOMPARE(fromFile.line, fromBytes.line);
            QCOMPARE(fromFile.message, fromBytes.message);
        }
    }

    void files()
    {
        QTemporaryDir dir;
        const QString path = TestSupport::writeFile(dir.filePath(S("a.strings")), "\"a\" = \"1\";");
        QCOMPARE(dictionaryWithContentsOfFile(path)->value(S("a")), S("1"));
        StringsTable::Error error;
        QVERIFY(!dictionaryWithContentsOfFile(dir.filePath(S("missing.strings")), &error));
        QVERIFY(!error.message.isEmpty());

        // Large tables are reused from memory only while their bytes are unchanged: a rewrite of
        // the same size, however soon after, is seen.
        QByteArray big;
        for (int i = 0; i < 5000; ++i) big += "\"key" + QByteArray::number(i) + "\" = \"value\";\n";
        TestSupport::writeFile(path, big + "\"last\" = \"1\";");
        QCOMPARE(dictionaryWithContentsOfFile(path)->value(S("last")), S("1"));
        TestSupport::writeFile(path, big + "\"last\" = \"2\";");
        QCOMPARE(dictionaryWithContentsOfFile(path)->value(S("last")), S("2"));
        QCOMPARE(dictionaryWithContentsOfFile(path)->size(), 5001);
        {
            // While a snapshot scope lives the file is not read again, unless its size or time changed.
            StringsTable::SnapshotScope scope;
            QCOMPARE(dictionaryWithContentsOfFile(path)->value(S("last")), S("2"));
            TestSupport::writeFile(path, big + "\"last\" = \"33\";");
            QCOMPARE(dictionaryWithContentsOfFile(path)->value(S("last")), S("33"));
        }
        QVERIFY(QFile::remove(path));
        QVERIFY(!dictionaryWithContentsOfFile(path));
    }
};

QTEST_GUILESS_MAIN(TestStringsTable)
#include "test_strings_table.moc"
