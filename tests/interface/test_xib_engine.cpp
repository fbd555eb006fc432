// The xib engine on files written for the tests: which strings are found under which keys and
// classes, the table's order and escaping, and the merge, which must change the values asked
// for and nothing else.

#include "Fixtures.h"
#include "IbtoolTable.h"
#include "XibFile.h"

#include <QTest>

using namespace interface;

namespace {

std::unique_ptr<XmlInterfaceFile> open(const QByteArray &bytes)
{
    QString error;
    auto file = openXmlInterfaceFile(bytes, &error);
    if (!file) qWarning("%s", qPrintable(error));
    return std::unique_ptr<XmlInterfaceFile>(dynamic_cast<XmlInterfaceFile *>(file.release()));
}

QHash<QString, QString> valuesOf(const InterfaceFile &file)
{
    QHash<QString, QString> values;
    for (const LocalizableString &s : file.strings()) values.insert(s.key(), s.value);
    return values;
}

StringMap mapOf(std::initializer_list<std::pair<QString, QString>> pairs)
{
    StringMap map;
    for (const auto &[k, v] : pairs) map.insert(k, v);
    return map;
}

QByteArray merge(const XmlInterfaceFile &file, const StringMap &translations)
{
    QByteArray out;
    QString error;
    if (!file.merged(translations, &out, &error)) qWarning("%s", qPrintable(error));
    return out;
}

}  // namespace

class TestXibEngine : public QObject {
    Q_OBJECT

private slots:
    void cocoaTableIsIbtools()
    {
        const auto file = open(Fixtures::cocoaXib());
        QVERIFY(file);
        const QString table = ibtoolTableText(inIbtoolOrder(file->strings()));
        const QStringList got = table.split(u'\n'), want = Fixtures::cocoaTable().split(u'\n');
        for (qsizetype i = 0; i < std::min(got.size(), want.size()); ++i)
            QCOMPARE(got[i], want[i]);
        QCOMPARE(got.size(), want.size());
    }

    void tableBytesAreUtf16WithMarkAndLeadingLineFeed()
    {
        const QByteArray bytes = ibtoolTableBytes({{QStringLiteral("5"), QStringLiteral("NSMenu"), QStringLiteral("title"),
                                                    QStringLiteral("é"), QString()}});
        QVERIFY(bytes.startsWith(QByteArray("\xFF\xFE\x0A\x00", 4)));
        QVERIFY(bytes.endsWith(QByteArray(";\0\n\0", 4)));
        QVERIFY(bytes.contains(QByteArray("\xE9\x00", 2)));
        QCOMPARE(ibtoolTableBytes({}), QByteArray("\xFF\xFE", 2));
    }

    void order_data()
    {
        QTest::addColumn<QStringList>("ids");
        QTest::addColumn<QStringList>("expected");
        QTest::newRow("integers by value") << QStringList{u"170"_qs, u"19"_qs, u"5"_qs, u"1963"_qs}
                                           << QStringList{u"5"_qs, u"19"_qs, u"170"_qs, u"1963"_qs};
        QTest::newRow("negative first") << QStringList{u"3"_qs, u"-2"_qs, u"-10"_qs, u"0"_qs}
                                        << QStringList{u"-10"_qs, u"-2"_qs, u"0"_qs, u"3"_qs};
        QTest::newRow("integers before others") << QStringList{u"1TS-br-qqV"_qs, u"1963"_qs}
                                                << QStringList{u"1963"_qs, u"1TS-br-qqV"_qs};
        QTest::newRow("others by code unit") << QStringList{u"lvU-Va-GzM"_qs, u"Z4N-bp-c3F"_qs, u"8t6-wh-5UW"_qs, u"Cay-iU-bH4"_qs}
                                             << QStringList{u"8t6-wh-5UW"_qs, u"Cay-iU-bH4"_qs, u"Z4N-bp-c3F"_qs, u"lvU-Va-GzM"_qs};
        QTest::newRow("longer than 64 bits") << QStringList{u"99999999999999999999999"_qs, u"100000000000000000000000"_qs}
                                             << QStringList{u"99999999999999999999999"_qs, u"100000000000000000000000"_qs};
    }

    void order()
    {
        QFETCH(QStringList, ids);
        QFETCH(QStringList, expected);
        QList<LocalizableString> strings;
        for (const QString &id : ids) strings.append({id, QStringLiteral("NSMenu"), QStringLiteral("title"), id, QString()});
        QStringList got;
        for (const LocalizableString &s : inIbtoolOrder(strings)) got.append(s.objectId);
        QCOMPARE(got, expected);
    }

    void propertiesOfOneObjectByCodeUnitAndKeysOnce()
    {
        auto s = [](const char *prop) {
            return LocalizableString{QStringLiteral("7"), QStringLiteral("NSToolbarItem"), QLatin1String(prop), QStringLiteral("v"), QString()};
        };
        const auto ordered = inIbtoolOrder({s("toolTip"), s("paletteLabel"), s("label"), s("label")});
        QCOMPARE(ordered.size(), 3);
        QCOMPARE(ordered[0].property, QStringLiteral("label"));
        QCOMPARE(ordered[1].property, QStringLiteral("paletteLabel"));
        QCOMPARE(ordered[2].property, QStringLiteral("toolTip"));
    }

    void escaping_data()
    {
        QTest::addColumn<QString>("raw");
        QTest::addColumn<QString>("escaped");
        QTest::newRow("quote and backslash") << u"a\"b\\c"_qs << u"a\\\"b\\\\c"_qs;
        QTest::newRow("line feed") << u"a\nb"_qs << u"a\\nb"_qs;
        QTest::newRow("tab and return") << u"a\tb\rc"_qs << u"a\\tb\\rc"_qs;
        QTest::newRow("other control") << QString(QChar(0x1B)) << u"\\U001b"_qs;
        QTest::newRow("non-ASCII kept") << u"…ü\u2028"_qs << u"…ü\u2028"_qs;
    }

    void escaping()
    {
        QFETCH(QString, raw);
        QFETCH(QString, escaped);
        QCOMPARE(escapeTableText(raw), escaped);
    }

    void touchRules()
    {
        const auto file = open(Fixtures::touchStoryboard());
        QVERIFY(file);
        QHash<QString, QString> classes;
        for (const LocalizableString &s : file->strings()) classes.insert(s.key(), s.className);
        const QHash<QString, QString> values = valuesOf(*file);
        QCOMPARE(values.value(u"lbl-aa-bbb.text"_qs), u"Clear data"_qs);
        QCOMPARE(classes.value(u"lbl-aa-bbb.text"_qs), u"UILabel"_qs);
        QCOMPARE(values.value(u"btn-aa-bbb.normalTitle"_qs), u"Clear"_qs);
        QCOMPARE(values.value(u"btn-aa-bbb.accessibilityLabel"_qs), u"Clear all"_qs);
        QCOMPARE(values.value(u"btn-aa-bbb.accessibilityHint"_qs), u"Removes everything"_qs);
        QCOMPARE(values.value(u"txt-aa-bbb.placeholder"_qs), u"Search"_qs);
        QCOMPARE(values.value(u"sec-aa-bbb.headerTitle"_qs), u"Privacy"_qs);
        QCOMPARE(values.value(u"sec-aa-bbb.footerTitle"_qs), u"Kept on device"_qs);
        QCOMPARE(values.value(u"nav-aa-bbb.title"_qs), u"Settings"_qs);
        QCOMPARE(classes.value(u"nav-aa-bbb.title"_qs), u"UINavigationItem"_qs);
        QCOMPARE(values.value(u"bbi-aa-bbb.title"_qs), u"Done"_qs);
        QCOMPARE(classes.value(u"tv1-aa-bbb.title"_qs), u"UITableViewController"_qs);
        QCOMPARE(values.size(), 10);
    }

    void legacyArchiveRules()
    {
        const auto file = open(Fixtures::legacyArchive());
        QVERIFY(file);
        QHash<QString, QString> classes;
        for (const LocalizableString &s : file->strings()) classes.insert(s.key(), s.className);
        const QHash<QString, QString> values = valuesOf(*file);
        QCOMPARE(values.value(u"5.title"_qs), u"Preferences"_qs);
        QCOMPARE(classes.value(u"5.title"_qs), u"NSWindow"_qs);
        QCOMPARE(values.value(u"12.title"_qs), u"Mark all read:\n"_qs);
        QCOMPARE(values.value(u"20.title"_qs), u"Shared"_qs);
        QCOMPARE(values.value(u"31.title"_qs), u"Shared"_qs);
        QCOMPARE(values.value(u"40.title"_qs), u"OtherViews"_qs);
        QCOMPARE(values.size(), 5);  // the empty alternate title is not listed
    }

    void mergeChangesOnlyTheValue()
    {
        const QByteArray base = Fixtures::cocoaXib();
        const auto file = open(base);
        QByteArray expected = base;
        expected.replace("title=\"Prefs &amp; More\"", "title=\"A &lt; B &amp; &quot;C&quot; 'd'\"");
        QCOMPARE(merge(*file, mapOf({{u"1.title"_qs, u"A < B & \"C\" 'd'"_qs}})), expected);
        // Values equal to the base, and keys the file does not hold, change nothing.
        QCOMPARE(merge(*file, mapOf({{u"11.title"_qs, u"OK"_qs}, {u"999.title"_qs, u"x"_qs}})), base);
        QCOMPARE(file->warnings().size(), 1);
        QVERIFY(file->warnings().first().contains(u"999.title"_qs));
    }

    void mergeValueForms_data()
    {
        QTest::addColumn<QString>("key");
        QTest::addColumn<QString>("value");
        QTest::addColumn<QByteArray>("mustContain");
        QTest::newRow("attribute to child for a line feed") << u"21.title"_qs << u"Nom\u00a0:\nici"_qs
                                                             << QByteArray("<string key=\"title\">Nom\xC2\xA0:\nici</string>");
        QTest::newRow("whitespace only as base64") << u"11.title"_qs << u" "_qs
                                                   << QByteArray("<string key=\"title\" base64-UTF8=\"YES\">IA</string>");
        QTest::newRow("control character as base64") << u"11.title"_qs << u"a\tb"_qs
                                                      << QByteArray("base64-UTF8=\"YES\">YQli</string>");
        QTest::newRow("long value as child") << u"70.title"_qs << QString(130, u'x') << QByteArray("<string key=\"title\">xxx");
        QTest::newRow("child keeps child") << u"31.title"_qs << u"Eins & zwei"_qs
                                           << QByteArray("<string key=\"title\">Eins &amp; zwei</string>");
        QTest::newRow("base64 child back to text") << u"81.title"_qs << u"Hi"_qs << QByteArray("<string key=\"title\">Hi</string>");
        QTest::newRow("empty element gets a child") << u"43.title"_qs << u"Erste\nZeile"_qs
                                                    << QByteArray("<menuItem state=\"on\" id=\"43\">\n");
        QTest::newRow("segment label") << u"aB1-cD-eF2.ibShadowedLabels[2]"_qs << u"Drei"_qs
                                       << QByteArray("<segment label=\"Drei\" toolTip=\"third\"/>");
        QTest::newRow("header cell") << u"61.headerCell.title"_qs << u"Spalte"_qs
                                     << QByteArray("<tableHeaderCell key=\"headerCell\" title=\"Spalte\"/>");
        QTest::newRow("binding option") << u"82.ibShadowedIsNilPlaceholder"_qs << u"Keine"_qs
                                        << QByteArray("<string key=\"NSNullPlaceholder\">Keine</string>");
    }

    void mergeValueForms()
    {
        QFETCH(QString, key);
        QFETCH(QString, value);
        QFETCH(QByteArray, mustContain);
        const auto file = open(Fixtures::cocoaXib());
        const QByteArray out = merge(*file, mapOf({{key, value}}));
        QVERIFY2(out.contains(mustContain), out.constData());
        const auto again = open(out);
        QVERIFY2(again, "the merged file must stay well-formed");
        const auto before = valuesOf(*file), after = valuesOf(*again);
        QCOMPARE(after.value(key), value);
        for (auto it = before.cbegin(); it != before.cend(); ++it)
            if (it.key() != key) QCOMPARE(after.value(it.key()), it.value());
    }

    void mergeEmptyValueRemovesTheString()
    {
        const auto file = open(Fixtures::cocoaXib());
        const QByteArray out = merge(*file, mapOf({{u"10.ibShadowedToolTip"_qs, QString()}, {u"31.title"_qs, QString()}}));
        QVERIFY(out.contains("<button id=\"10\">"));
        QVERIFY(!out.contains("Line one"));
        const auto again = open(out);
        QVERIFY(again);
        QVERIFY(!valuesOf(*again).contains(u"10.ibShadowedToolTip"_qs));
        QVERIFY(!valuesOf(*again).contains(u"31.title"_qs));
        QCOMPARE(valuesOf(*again).size(), valuesOf(*file).size() - 2);
    }

    void mergeEveryKeyRoundTrips()
    {
        for (const QByteArray &fixture : {Fixtures::cocoaXib(), Fixtures::touchStoryboard(), Fixtures::legacyArchive()}) {
            const auto file = open(fixture);
            StringMap translations;
            for (const LocalizableString &s : file->strings()) translations.insert(s.key(), QStringLiteral("«") + s.value + u'»');
            const auto again = open(merge(*file, translations));
            QVERIFY(again);
            const auto after = valuesOf(*again);
            QCOMPARE(after.size(), translations.size());
            for (const auto &p : translations) QCOMPARE(after.value(p.first), p.second);
        }
    }

    void legacyMerge()
    {
        const auto file = open(Fixtures::legacyArchive());
        const QByteArray out = merge(*file, mapOf({{u"12.title"_qs, u"Alles gelesen"_qs},
                                                   {u"31.title"_qs, u"Eigenes"_qs},
                                                   {u"40.title"_qs, u" "_qs},
                                                   {u"5.title"_qs, QString()}}));
        // The base64 string becomes plain text; the shared string stays for the box; the
        // empty title keeps its key.
        QVERIFY2(out.contains("<string key=\"NSContents\">Alles gelesen</string>"), out.constData());
        QVERIFY(out.contains("<string key=\"NSContents\" id=\"5000\">Shared</string>"));
        QVERIFY(out.contains("<string key=\"NSContents\">Eigenes</string>"));
        QVERIFY(out.contains("<string key=\"NSWindowTitle\"></string>"));
        const auto again = open(out);
        QVERIFY(again);
        const auto after = valuesOf(*again);
        QCOMPARE(after.value(u"20.title"_qs), u"Shared"_qs);
        QCOMPARE(after.value(u"31.title"_qs), u"Eigenes"_qs);
        QCOMPARE(after.value(u"40.title"_qs), u" "_qs);
        QVERIFY(!after.contains(u"5.title"_qs));
    }

    void utf16FileIsWrittenBackAsUtf16()
    {
        QByteArray utf16("\xFF\xFE", 2);
        const QString text = QString::fromUtf8(Fixtures::cocoaXib());
        for (QChar c : text) utf16.append(char(c.unicode() & 0xFF)).append(char(c.unicode() >> 8));
        const auto file = open(utf16);
        QVERIFY(file);
        QCOMPARE(valuesOf(*file).value(u"1.title"_qs), u"Prefs & More"_qs);
        QCOMPARE(merge(*file, StringMap()), utf16);
    }

    void notAnInterfaceFile()
    {
        QString error;
        QVERIFY(!openXmlInterfaceFile("<plist version=\"1.0\"><dict/></plist>", &error));
        QVERIFY(error.contains(u"<plist>"_qs));
        QVERIFY(!openXmlInterfaceFile("<document><objects></document>", &error));
        QVERIFY2(error.contains(u"line 1"_qs), qPrintable(error));
    }
};

QTEST_GUILESS_MAIN(TestXibEngine)
#include "test_xib_engine.moc"
