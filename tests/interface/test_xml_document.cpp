// The XML reader under the interface files: positions kept for the merge, XML's value rules,
// and hostile or broken input, which must give a reason and never a crash, a hang or a read
// of anything outside the file.

#include "CaseData.h"
#include "XmlDocument.h"

#include <QTest>

using namespace interface;

class TestXmlDocument : public QObject {
    Q_OBJECT

private slots:
    void positionsPointAtTheBytes()
    {
        const QByteArray bytes = "<?xml version=\"1.0\"?>\n<a x=\"1\" y='&amp;2'><b>t&lt;u</b><c/></a>\n";
        XmlDocument xml;
        QVERIFY(xml.parse(bytes));
        QCOMPARE(xml.elements().size(), size_t(3));
        const XmlElement &a = xml.element(0);
        const XmlAttribute *y = a.attribute("y");
        QVERIFY(y);
        QCOMPARE(y->value, u"&2"_qs);
        QCOMPARE(bytes.mid(y->valueStart, y->valueEnd - y->valueStart), QByteArray("&amp;2"));
        const XmlElement &b = xml.element(1);
        QCOMPARE(bytes.mid(b.contentStart, b.contentEnd - b.contentStart), QByteArray("t&lt;u"));
        QCOMPARE(xml.text(1), u"t<u"_qs);
        QVERIFY(xml.element(2).selfClosing);
        QCOMPARE(bytes.mid(a.start, a.end - a.start), bytes.mid(22, bytes.size() - 23));
    }

    void valueRules_data()
    {
        QTest::addColumn<QByteArray>("xml");
        QTest::addColumn<QString>("attribute");
        QTest::addColumn<QString>("text");
        QTest::newRow("character references") << QByteArray("<a v=\"&#65;&#x1F600;\">&#10;</a>") << u"A😀"_qs << u"\n"_qs;
        QTest::newRow("white space in attributes becomes spaces")
            << QByteArray("<a v=\"x\ty\r\nz\">x\r\ny\rz</a>") << u"x y z"_qs << u"x\ny\nz"_qs;
        QTest::newRow("CDATA and comments") << QByteArray("<a v=\"\"><![CDATA[<&>]]><!-- no -->!</a>") << QString()
                                            << u"<&>!"_qs;
        QTest::newRow("byte-order mark") << QByteArray("\xEF\xBB\xBF<a v=\"\xC3\xA9\">\xE2\x80\xA6</a>") << u"é"_qs << u"…"_qs;
    }

    void valueRules()
    {
        QFETCH(QByteArray, xml);
        QFETCH(QString, attribute);
        QFETCH(QString, text);
        XmlDocument doc;
        QString error;
        QVERIFY2(doc.parse(xml, &error), qPrintable(error));
        QCOMPARE(doc.element(0).attributeValue("v"), attribute.isNull() ? u""_qs : attribute);
        QCOMPARE(doc.text(0), text);
    }

    void rejected_data()
    {
        QTest::addColumn<QByteArray>("xml");
        QTest::addColumn<QString>("reason");
        QTest::newRow("external entity") << QByteArray("<!DOCTYPE a [<!ENTITY e SYSTEM \"file:///etc/passwd\">]><a>&e;</a>")
                                         << u"entity"_qs;
        QByteArray laughs = "<!DOCTYPE a [<!ENTITY l0 \"ha\">";
        for (int i = 1; i < 10; ++i)
            laughs += QStringLiteral("<!ENTITY l%1 \"&l%2;&l%2;&l%2;&l%2;&l%2;&l%2;&l%2;&l%2;&l%2;&l%2;\">").arg(i).arg(i - 1).toUtf8();
        laughs += "]><a v=\"&l9;\"/>";
        QTest::newRow("entity expansion") << laughs << u"entity"_qs;
        QTest::newRow("too deep") << QByteArray(5000, '<').replace('<', "<a>") << u"deeply"_qs;
        QTest::newRow("mismatched end tag") << QByteArray("<a><b></a></b>") << u"does not match"_qs;
        QTest::newRow("unterminated attribute") << QByteArray("<a v=\"x></a>") << u"attribute"_qs;
        QTest::newRow("repeated attribute") << QByteArray("<a v=\"1\" v=\"2\"/>") << u"repeated"_qs;
        QTest::newRow("less-than in attribute") << QByteArray("<a v=\"<\"/>") << u"'<'"_qs;
        QTest::newRow("not UTF-8") << QByteArray("<a v=\"\xE9\"/>") << u"UTF-8"_qs;
        QTest::newRow("two roots") << QByteArray("<a/><b/>") << u"after the root"_qs;
        QTest::newRow("truncated") << QByteArray("<a><b>text") << u"ends inside"_qs;
        QTest::newRow("empty") << QByteArray() << u"no root"_qs;
        QTest::newRow("bad reference") << QByteArray("<a>&#0;</a>") << u"entity"_qs;
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
            const QByteArray full = TestSupport::readFile(TestSupport::dataDir(u"interface/xib/"_qs) + QLatin1String(name));
            QVERIFY(!full.isEmpty());
            for (qsizetype n = 0; n < full.size(); n += 7) {
                XmlDocument doc;
                QString error;
                if (!doc.parse(full.left(n), &error)) QVERIFY(!error.isEmpty());
            }
        }
    }

    void lenientBase64_data()
    {
        QTest::addColumn<QString>("encoded");
        QTest::addColumn<QString>("decoded");
        QTest::newRow("no padding") << u"IA"_qs << u" "_qs;
        QTest::newRow("stray last character") << u"TWFyayBjdXJyZW50IGFydGljbGUgcmVhZDoKA"_qs << u"Mark current article read:\n"_qs;
        QTest::newRow("white space") << u"SGVs\n bG8"_qs << u"Hello"_qs;
        QTest::newRow("padding kept") << u"SGk="_qs << u"Hi"_qs;
        QTest::newRow("not base64") << u"!!!!"_qs << QString();
    }

    void lenientBase64()
    {
        QFETCH(QString, encoded);
        QFETCH(QString, decoded);
        QCOMPARE(decodeLenientBase64Utf8(encoded), decoded);
        if (!decoded.isNull()) QCOMPARE(decodeLenientBase64Utf8(encodeBase64Utf8Unpadded(decoded)), decoded);
    }
};

QTEST_GUILESS_MAIN(TestXmlDocument)
#include "test_xml_document.moc"
