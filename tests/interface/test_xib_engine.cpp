// The XML reader under the interface files: XML's value rules, and hostile or broken input
// giving a reason, never a crash, a hang or a read outside the file. The xib engine on files
// written for the tests (tests/data/interface/xib/<case>/): the table it generates from in.xib
// or in.storyboard must be table.strings; each merge*.strings merged into it must give
// merge*.xib (or .storyboard) byte for byte, read back with the merged values, and name every
// key the file does not hold. Table order and escaping are case tables.

#include "InterfaceCases.h"
#include "IbtoolTable.h"
#include "StringsTable.h"
#include "XibFile.h"
#include "XmlDocument.h"

#include <QTest>

using namespace interface;
using namespace TestSupport;

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
    void golden_data() { addGoldenRows(QStringLiteral("interface/xib")); }
    void golden()
    {
        QFETCH(QString, dir);
        const QDir d(dir);
        const QString input = d.entryList({QStringLiteral("in.*")}).value(0);
        const auto file = open(readFile(d.filePath(input)));
        QVERIFY(file);
        QVERIFY(compareText(ibtoolTableText(inIbtoolOrder(file->strings())), d.filePath(QStringLiteral("table.strings"))));
        const QHash<QString, QString> before = valuesOf(*file);

        // Every key translated at once reads back.
        StringMap all;
        for (const LocalizableString &s : file->strings()) all.insert(s.key(), u'«' + s.value + u'»');
        const auto marked = open(merge(*file, all));
        QVERIFY2(marked, "merging every key broke the file");
        QCOMPARE(valuesOf(*marked).size(), before.size());
        for (const auto &[k, v] : all) QCOMPARE(valuesOf(*marked).value(k.toString()), v);

        for (const QString &name : d.entryList({QStringLiteral("merge*.strings")})) {
            const auto t = StringsTable::parseData(readFile(d.filePath(name)));
            QVERIFY2(t, qPrintable(name));
            const QByteArray out = merge(*file, *t);
            QVERIFY(compareBytes(out, d.filePath(QFileInfo(name).completeBaseName() + u'.' + QFileInfo(input).suffix())));
            const auto again = open(out);
            QVERIFY2(again, "the merged file must stay well-formed");
            const auto after = valuesOf(*again);
            for (auto it = before.cbegin(); it != before.cend(); ++it) {
                const auto translated = t->find(it.key());
                const QString expected = translated ? translated->toString() : it.value();
                if (expected.isEmpty()) QVERIFY2(!after.contains(it.key()), qPrintable(it.key()));
                else QCOMPARE(after.value(it.key()), expected);
            }
            for (const auto &[k, v] : *t)
                if (!before.contains(k.toString())) QVERIFY2(file->warnings().join(u'\n').contains(k), qPrintable(k.toString()));
        }
    }

    void order_data() { addCaseRows(u"interface/table-order.tsv"_qs, {"ids", "expected"}); }
    void order()
    {
        QFETCH(QString, ids);
        QFETCH(QString, expected);
        QList<LocalizableString> strings;
        for (const QString &id : ids.split(u','))
            strings.append({id.section(u'.', 0, 0), u"NSMenu"_qs, id.contains(u'.') ? id.section(u'.', 1) : u"title"_qs, id, {}});
        QStringList got;
        for (const LocalizableString &s : inIbtoolOrder(strings))
            got.append(expected.contains(u'.') ? s.key() : s.objectId);
        QCOMPARE(got.join(u','), expected);
    }

    void escaping_data() { addCaseRows(u"interface/table-escaping.tsv"_qs, {"raw", "escaped"}); }
    void escaping()
    {
        QFETCH(QString, raw);
        QFETCH(QString, escaped);
        QCOMPARE(escapeTableText(raw), escaped);
    }

    void tableBytesAreUtf16WithMarkAndLeadingLineFeed()
    {
        const QByteArray bytes = ibtoolTableBytes({{u"5"_qs, u"NSMenu"_qs, u"title"_qs, u"é"_qs, QString()}});
        QVERIFY(bytes.startsWith(QByteArray("\xFF\xFE\x0A\x00", 4)));
        QVERIFY(bytes.endsWith(QByteArray(";\0\n\0", 4)));
        QVERIFY(bytes.contains(QByteArray("\xE9\x00", 2)));
        QCOMPARE(ibtoolTableBytes({}), QByteArray("\xFF\xFE", 2));
    }

    void utf16FileIsWrittenBackAsUtf16()
    {
        const QByteArray utf16 = utf16le(QString::fromUtf8(readFile(dataDir(u"interface/xib/cocoa/in.xib"_qs))));
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

    // An element <a v="..."> and what the reader makes of its attribute and its text.
    void valueRules_data() { addCaseRows(u"interface/xml-values.tsv"_qs, {"xml", "attribute", "text"}); }

    void valueRules()
    {
        QFETCH(QString, xml);
        QFETCH(QString, attribute);
        QFETCH(QString, text);
        XmlDocument doc;
        QString error;
        QVERIFY2(doc.parse(xml.toUtf8(), &error), qPrintable(error));
        QCOMPARE(doc.element(0).attributeValue("v"), attribute);
        QCOMPARE(doc.text(0), text);
    }

    void rejected_data()
    {
        QTest::addColumn<QByteArray>("xml");
        QTest::addColumn<QString>("reason");
        QByteArray laughs = "<!DOCTYPE a [<!ENTITY l0 \"ha\">";
        for (int i = 1; i < 10; ++i)
            laughs += QStringLiteral("<!ENTITY l%1 \"&l%2;&l%2;&l%2;&l%2;&l%2;&l%2;&l%2;&l%2;&l%2;&l%2;\">").arg(i).arg(i - 1).toUtf8();
        laughs += "]><a v=\"&l9;\"/>";
        QTest::newRow("entity expansion") << laughs << u"entity"_qs;
        QTest::newRow("too deep") << QByteArray(5000, '<').replace('<', "<a>") << u"deeply"_qs;
        QTest::newRow("not UTF-8") << QByteArray("<a v=\"\xE9\"/>") << u"UTF-8"_qs;
        for (const QStringList &row : readCaseTable(dataDir(u"interface/xml-refusals.tsv"_qs), 2))
            QTest::newRow(qPrintable(row[0])) << row[1].toUtf8() << row[2];
    }

    void rejected()
    {
        QFETCH(QByteArray, xml);
        QFETCH(QString, reason);
        XmlDocument doc;
        QString error;
        QVERIFY(!doc.parse(xml, &error));
        QVERIFY2(error.contains(reason), qPrintable(error));
        QVERIFY2(error.startsWith(u"line "_qs), qPrintable(error));
    }

    void everyTruncationIsHandled()
    {
        // Cut anywhere, a real file either parses or gives a reason.
        for (const char *name : {"cocoa/in.xib", "legacy/in.xib"}) {
            const QByteArray full = readFile(dataDir(u"interface/xib/"_qs) + QLatin1String(name));
            QVERIFY(!full.isEmpty());
            for (qsizetype n = 0; n < full.size(); n += 7) {
                XmlDocument doc;
                QString error;
                if (!doc.parse(full.left(n), &error)) QVERIFY(!error.isEmpty());
            }
        }
    }

    // Encoded text and what it decodes to ("-": nothing, it is no base64).
    void lenientBase64_data() { addCaseRows(u"interface/base64.tsv"_qs, {"encoded", "decoded"}); }

    void lenientBase64()
    {
        QFETCH(QString, encoded);
        QFETCH(QString, decoded);
        if (decoded == u"-") decoded = QString();
        QCOMPARE(decodeLenientBase64Utf8(encoded), decoded);
        if (!decoded.isNull()) QCOMPARE(decodeLenientBase64Utf8(encodeBase64Utf8Unpadded(decoded)), decoded);
    }
};

QTEST_GUILESS_MAIN(TestXibEngine)
#include "test_xib_engine.moc"
