// Reading the three forms: hand-made fixtures under data/read (each input beside the JSON it must
// give; the name's first word is the form it must be detected as), binary object kinds assembled
// byte by byte, and the string-table view.
#include "PlistTestSupport.h"

#include "CaseData.h"

#include <QDirIterator>
#include <QTemporaryDir>
#include <QTest>
#include <QTimeZone>

using namespace plist;
using PlistTest::BinaryBuilder;
using TestSupport::addCaseRows;

class ReaderTest : public QObject {
    Q_OBJECT

private slots:
    void fixtures_data();
    void fixtures();
    void binaryObjects_data();
    void binaryObjects();
    void binaryDateKeepsMilliseconds();
    void stringDictionary();
    void stringDictionaryRefusals_data();
    void stringDictionaryRefusals();
    void files();
};

void ReaderTest::fixtures_data()
{
    QTest::addColumn<QString>("input");
    QTest::addColumn<QString>("expectedJson");
    QDirIterator it(PlistTest::dataPath(QStringLiteral("read")), {QStringLiteral("*.json")});
    int rows = 0;
    while (it.hasNext()) {
        const QString json = it.next();
        const QString stem = json.chopped(5);
        const QString input = QFile::exists(stem + QStringLiteral(".plist")) ? stem + QStringLiteral(".plist")
                                                                             : stem + QStringLiteral(".bplist");
        QTest::newRow(qPrintable(QFileInfo(stem).fileName())) << input << json;
        ++rows;
    }
    QVERIFY2(rows >= 15, "the fixtures under data/read are missing");
}

// File names start with the form they are in: "xml-", "binary-" or "openstep-".
void ReaderTest::fixtures()
{
    QFETCH(QString, input);
    QFETCH(QString, expectedJson);
    const ReadResult r = readFile(input);
    QVERIFY2(r.value, qPrintable(r.error));
    QVERIFY(r.error.isEmpty());
    const QString name = QFileInfo(input).fileName();
    const Format expected = name.startsWith(u"xml") ? Format::Xml
        : name.startsWith(u"binary")                ? Format::Binary
                                                    : Format::OpenStep;
    QCOMPARE(formatName(r.format), formatName(expected));
    QCOMPARE(QString::fromUtf8(toJson(*r.value)), QString::fromUtf8(TestSupport::readFile(expectedJson)));
}

void ReaderTest::binaryObjects_data()
{
    addCaseRows(u"../plist/data/binary.tsv"_qs, {"objects", "trailer", "expected"});
}

// Binary lists assembled byte by byte, each against the value an XML list spells.
void ReaderTest::binaryObjects()
{
    QFETCH(QString, objects);
    QFETCH(QString, trailer);
    QFETCH(QString, expected);
    const ReadResult r = read(BinaryBuilder::fromRow(objects, trailer).build());
    QVERIFY2(r.value, qPrintable(r.error));
    QCOMPARE(r.format, Format::Binary);
    const ReadResult e = read(u"<plist>"_qs.toUtf8() + expected.toUtf8() + "</plist>");
    QVERIFY2(e.value, qPrintable(e.error));
    QVERIFY2(*r.value == *e.value, toXml(*r.value).constData());
}

// A binary date keeps its fraction of a second (XML cannot say it).
void ReaderTest::binaryDateKeepsMilliseconds()
{
    const ReadResult r = read(BinaryBuilder().add("33 C0F5180800000000").build());
    QVERIFY2(r.value, qPrintable(r.error));
    QCOMPARE(r.value->date(), QDateTime(QDate(2000, 12, 30), QTime(23, 59, 59, 500), QTimeZone::utc()));
}

// Order and repeated keys survive: the string-table reader decides that the last one wins.
void ReaderTest::stringDictionary()
{
    const QByteArray xml("<plist><dict><key>b</key><string>2</string><key>a</key><string>1</string>"
                         "<key>b</key><string>3</string></dict></plist>");
    BinaryBuilder binary;
    binary.add("D3 01 02 01 03 04 05").add("51 62").add("51 61").add("51 32").add("51 31").add("51 33");
    const QByteArray openStep("{ b = \"2\"; a = 1; b = \"3\"; }");

    for (const QByteArray &bytes : {xml, binary.build(), openStep}) {
        const std::optional<Dictionary> d = readStringDictionary(bytes);
        QVERIFY(d);
        QCOMPARE(d->size(), 3);
        QCOMPARE(d->at(0).first, QStringLiteral("b"));
        QCOMPARE(d->at(0).second.string(), QStringLiteral("2"));
        QCOMPARE(d->at(1).first, QStringLiteral("a"));
        QCOMPARE(d->at(2).second.string(), QStringLiteral("3"));
        const Value v = Value::fromDictionary(*d);
        QCOMPARE(v.find(QStringLiteral("b"))->string(), QStringLiteral("3"));
        QVERIFY(!v.find(QStringLiteral("c")));
    }
}

void ReaderTest::stringDictionaryRefusals_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::newRow("array root") << QByteArray("<plist><array><string>a</string></array></plist>");
    QTest::newRow("integer value") << QByteArray("<plist><dict><key>a</key><integer>1</integer></dict></plist>");
    QTest::newRow("nested dictionary") << QByteArray("{ a = { b = c; }; }");
    QTest::newRow("not a list") << QByteArray("\"a\" = \"b\";");
    QTest::newRow("empty") << QByteArray();
}

void ReaderTest::stringDictionaryRefusals()
{
    QFETCH(QByteArray, bytes);
    QVERIFY(!readStringDictionary(bytes));
}

void ReaderTest::files()
{
    QTemporaryDir dir;
    QVERIFY(dir.isValid());
    const QString missing = dir.filePath(QStringLiteral("missing.plist"));
    ReadResult r = readFile(missing);
    QVERIFY(!r.value);
    QVERIFY2(r.error.contains(missing), qPrintable(r.error));

    // Another binary format (a compiled nib that is no property list) is named as such.
    QFile other(dir.filePath(QStringLiteral("other.nib")));
    QVERIFY(other.open(QIODevice::WriteOnly));
    other.write(QByteArray("NIBArchive\x01\x00\x00\x00\x09\x00", 16));
    other.close();
    r = readFile(other.fileName());
    QVERIFY(!r.value);
    QVERIFY2(r.error.contains(u"no property list"), qPrintable(r.error));

    r = read(QByteArray());
    QVERIFY(!r.value);
    QVERIFY2(r.error.contains(u"empty"), qPrintable(r.error));
}

int runReaderTests(int argc, char **argv)
{
    ReaderTest t;
    return QTest::qExec(&t, argc, argv);
}

#include "test_plist_readers.moc"
