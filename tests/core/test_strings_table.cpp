// The string-table reader: grammar, escapes, encodings, all-or-nothing, and agreement with the
// maps a peer implementation reads from the corpus's real tables.
#include "StringsTable.h"
#include "TestSupport.h"

#include <QDirIterator>
#include <QHash>
#include <QJsonDocument>
#include <QJsonObject>
#include <QStringDecoder>
#include <QStringEncoder>
#include <QTest>

Q_DECLARE_METATYPE(std::optional<StringMap>)

namespace {
QString S(const char *utf8) { return QString::fromUtf8(utf8); }

StringMap mapOf(std::initializer_list<std::pair<const char *, const char *>> pairs)
{
    StringMap m;
    for (const auto &[k, v] : pairs) m.insert(S(k), S(v));
    return m;
}

QString describe(const std::optional<StringMap> &m)
{
    if (!m) return S("nothing");
    QStringList parts;
    for (const auto &p : *m) parts << p.first + S(" => ") + p.second;
    return S("{") + parts.join(S("; ")) + S("}");
}
}  // namespace

class TestStringsTable : public QObject {
    Q_OBJECT
private slots:
    void grammar_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<std::optional<StringMap>>("expected");
        const std::optional<StringMap> nothing;
        QTest::newRow("last duplicate wins") << S("\"a\" = \"1\";\n\"a\" = \"2\";") << std::optional(mapOf({{"a", "2"}}));
        QTest::newRow("short form") << S("\"x\";") << std::optional(mapOf({{"x", "x"}}));
        QTest::newRow("escaped quotes") << S("\"k\" = \"say \\\"hi\\\"\";") << std::optional(mapOf({{"k", "say \"hi\""}}));
        QTest::newRow("missing semicolon spoils all") << S("\"a\" = \"1\";\n\"b\" = \"2\"\n\"c\" = \"3\";") << nothing;
        QTest::newRow("unquoted words") << S("CFBundleName = \"Vienna\";\nkey.with/odd:chars-1_$ = value2;")
                                        << std::optional(mapOf({{"CFBundleName", "Vienna"}, {"key.with/odd:chars-1_$", "value2"}}));
        QTest::newRow("both comment forms")
            << S("/* a \"comment\" = \"x\"; */ \"a\" /* in between */ = // line\n \"1\"; // tail")
            << std::optional(mapOf({{"a", "1"}}));
        QTest::newRow("comment markers inside quotes are text") << S("\"u\" = \"http://x/*y*/\";")
                                                              << std::optional(mapOf({{"u", "http://x/*y*/"}}));
        QTest::newRow("escapes") << S("\"e\" = \"\\n\\t\\r\\\\\\a\\b\\f\\v\\'\";")
                                 << std::optional(mapOf({{"e", "\n\t\r\\\a\b\f\v'"}}));
        QTest::newRow("unicode escapes") << S("\"u\" = \"\\U00e9\\u263A\\U1\";") << std::optional(mapOf({{"u", "é☺\x01"}}));
        QTest::newRow("octal escapes") << S("\"o\" = \"\\101\\0610\\351\";") << std::optional(mapOf({{"o", "A10é"}}));
        QTest::newRow("literal line feed in a value") << S("\"m\" = \"one\ntwo\";") << std::optional(mapOf({{"m", "one\ntwo"}}));
        QTest::newRow("empty key and value") << S("\"\" = \"\";") << std::optional(mapOf({{"", ""}}));
        QTest::newRow("empty table") << S("  /* only a comment */\n") << std::optional(StringMap());
        QTest::newRow("unclosed comment") << S("\"a\" = \"1\"; /* open") << nothing;
        QTest::newRow("unclosed quote") << S("\"a\" = \"1;") << nothing;
        QTest::newRow("trailing backslash") << S("\"a\" = \"1\\") << nothing;
        QTest::newRow("value missing") << S("\"a\" = ;") << nothing;
        QTest::newRow("two values") << S("\"a\" = \"1\" \"2\";") << nothing;
        QTest::newRow("nested value") << S("\"a\" = { b = c; };") << nothing;
        QTest::newRow("stray character") << S("\"a\" = \"1\"; #") << nothing;
        // Quoted words are scanned several bytes at a time: ends, escapes and non-ASCII bytes
        // on either side of those steps.
        QTest::newRow("quote right after eight bytes") << S("\"12345678\" = \"1234567\";")
                                                       << std::optional(mapOf({{"12345678", "1234567"}}));
        QTest::newRow("escape past the first step") << S("\"abcdefghijklmnopqrst\" = \"0123456789ab\\\"cd\";")
                                                    << std::optional(mapOf({{"abcdefghijklmnopqrst", "0123456789ab\"cd"}}));
        QTest::newRow("non-ASCII before the end of a step") << S("\"1234567é\" = \"é1234567890123\";")
                                                            << std::optional(mapOf({{"1234567é", "é1234567890123"}}));
        QTest::newRow("non-ASCII after the quote is not the word's")
            << S("\"abcdefghi\" = \"x\"; /* é */") << std::optional(mapOf({{"abcdefghi", "x"}}));
        QTest::newRow("stars inside a comment") << S("/* a * b ** / c **/ \"k\" = \"v\"; /**/")
                                                << std::optional(mapOf({{"k", "v"}}));
        QTest::newRow("comment ends in a star") << S("\"k\" = \"v\"; /* open *") << nothing;
    }
    void grammar()
    {
        QFETCH(QString, text);
        QFETCH(std::optional<StringMap>, expected);
        const auto got = StringsTable::parse(text);
        QVERIFY2(got == expected, qPrintable(S("got ") + describe(got) + S(", expected ") + describe(expected)));
        // The UTF-8 bytes go through their own scanner and must read the same.
        const auto fromBytes = StringsTable::parseData(text.toUtf8());
        QVERIFY2(fromBytes == expected, qPrintable(S("from UTF-8 got ") + describe(fromBytes)));
    }

    void keysKeepTheirFirstPlace()
    {
        const auto m = StringsTable::parse(S("\"b\" = \"1\"; \"a\" = \"2\"; \"b\" = \"3\";"));
        QVERIFY(m);
        QCOMPARE(m->pairs().size(), 2);
        QCOMPARE(m->pairs().at(0), StringMap::Pair(S("b"), S("3")));
        QCOMPARE(m->pairs().at(1).first, S("a"));
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
            QCOMPARE(map.pairs().at(i).first, order.at(i));
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
        QCOMPARE(merged.pairs().first().first, S("k0"));
        StringMap copy;
        copy.insertAll(map);
        copy.insert(S("extra"), S("x"));  // the copy shares storage until it changes
        QCOMPARE(copy.size(), map.size() + 1);
        QVERIFY(!map.contains(S("extra")));
    }

    void errorsSayWhere()
    {
        StringsTable::Error error;
        QVERIFY(!StringsTable::parse(S("\"a\" = \"1\";\n\n\"b\" = \"2\"\n"), &error));
        QCOMPARE(error.line, 4);
        QVERIFY(error.message.contains(S(";")));
    }

    void encodings()
    {
        const QString text = S("/* Ü */\n\"Open\" = \"Öffnen 開く\";\n\"Quit\" = \"Beenden\";\n");
        const auto expected = StringsTable::parse(text);
        QVERIFY(expected && expected->size() == 2);
        QStringEncoder le(QStringConverter::Utf16LE), be(QStringConverter::Utf16BE);
        QCOMPARE(StringsTable::parseData(text.toUtf8()), expected);
        QCOMPARE(StringsTable::parseData("\xEF\xBB\xBF" + text.toUtf8()), expected);
        QCOMPARE(StringsTable::parseData("\xFF\xFE" + QByteArray(le.encode(text))), expected);
        QCOMPARE(StringsTable::parseData("\xFE\xFF" + QByteArray(be.encode(text))), expected);
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
        }
    }

    void files()
    {
        QTemporaryDir dir;
        const QString path = TestSupport::writeFile(dir.filePath(S("a.strings")), "\"a\" = \"1\";");
        QCOMPARE(dictionaryWithContentsOfFile(path), std::optional(mapOf({{"a", "1"}})));
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
        QVERIFY(QFile::remove(path));
        QVERIFY(!dictionaryWithContentsOfFile(path));
    }

    // Every corpus table with a map read by the peer reads to an equal map, or to nothing where
    // the peer read nothing. Where the peer departs from our rules (the short form), we skip it.
    void agreesWithPeerOnCorpus()
    {
        SKIP_WITHOUT_CORPUS();
        const QString corpus = TestSupport::corpusDir();
        const QString mapsDir = corpus + S("/expected-maps");
        if (!QDir(mapsDir).exists()) QSKIP("the corpus has no expected-maps folder");
        int compared = 0;
        QStringList mismatches;
        QDirIterator it(mapsDir, {S("*.strings.json")}, QDir::Files, QDirIterator::Subdirectories);
        while (it.hasNext()) {
            const QString jsonPath = it.next();
            const QString rel = jsonPath.mid(mapsDir.size() + 1).chopped(5);
            const QString tablePath = corpus + u'/' + rel;
            if (!QFile::exists(tablePath)) continue;
            const QByteArray bytes = TestSupport::readFile(tablePath);
            const QJsonDocument doc = QJsonDocument::fromJson(TestSupport::readFile(jsonPath));
            std::optional<StringMap> expected;
            if (doc.isObject()) {
                StringMap m;
                const QJsonObject o = doc.object();
                for (auto i = o.begin(); i != o.end(); ++i) m.insert(i.key(), i.value().toString());
                expected = m;
            }
            const auto got = StringsTable::parseData(bytes);
            ++compared;
            if (got == expected) continue;
            // The peer gives the short form "x"; an empty value where our rule gives the key.
            if (got && expected && got->size() == expected->size()) {
                bool onlyShortForm = true;
                for (const auto &p : *got)
                    if (expected->value(p.first) != p.second && !(p.first == p.second && expected->value(p.first).isEmpty()))
                        onlyShortForm = false;
                if (onlyShortForm) continue;
            }
            mismatches << rel + S(": got ") + describe(got).left(200) + S(", peer ") + describe(expected).left(200);
        }
        qInfo("compared %d corpus tables with the peer's maps", compared);
        QVERIFY(compared > 0);
        QVERIFY2(mismatches.isEmpty(), qPrintable(mismatches.mid(0, 5).join(u'\n') + S("\n(") +
                                                  QString::number(mismatches.size()) + S(" mismatches)")));
    }
};

QTEST_GUILESS_MAIN(TestStringsTable)
#include "test_strings_table.moc"
