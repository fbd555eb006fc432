// Writing: Apple's XML layout byte for byte, scalars that survive XML and binary round trips,
// key order, the binary writer's long counts and UIDs, the JSON rendering and atomic files.
#include "PlistTestSupport.h"

#include "CaseData.h"

#include "JsonWriter.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QTemporaryDir>
#include <QTest>
#include <QTimeZone>

#include <cmath>
#include <limits>

using namespace plist;

namespace {

Value str(const char *s) { return Value::fromString(QString::fromUtf8(s)); }

QDateTime utc(int y, int mo, int d, int h = 0, int mi = 0, int s = 0, int ms = 0)
{
    return QDateTime(QDate(y, mo, d), QTime(h, mi, s, ms), QTimeZone::utc());
}

quint64 trailerField(const QByteArray &bplist, int at, int size)
{
    quint64 v = 0;
    for (int i = 0; i < size; ++i)
        v = (v << 8) | uchar(bplist[bplist.size() - 32 + at + i]);
    return v;
}

}  // namespace

class WriterTest : public QObject {
    Q_OBJECT

private slots:
    void appleLayoutKeptByteForByte();
    void dataLineWidth_data();
    void dataLineWidth();
    void scalarsRoundTrip_data();
    void scalarsRoundTrip();
    void xmlDatesAreWholeSeconds();
    void orderAndRepeatedKeysKept();
    void binaryLongCountsAndWideReferences();
    void binaryWritesUidObjects();
    void jsonRendering();
    void jsonStringsAsQtWritesThem_data();
    void jsonStringsAsQtWritesThem();
    void jsonWriterChunksInOrder();
    void writeFileAtomically();
};

// The fixture is laid out as Apple's tools write: reading and writing it changes no byte.
void WriterTest::appleLayoutKeptByteForByte()
{
    const QByteArray original = TestSupport::readFile(PlistTest::dataPath(QStringLiteral("layout/apple-layout.plist")));
    QVERIFY(!original.isEmpty());
    const ReadResult r = read(original);
    QVERIFY2(r.value, qPrintable(r.error));
    QCOMPARE(QString::fromUtf8(toXml(*r.value)), QString::fromUtf8(original));
}

void WriterTest::dataLineWidth_data()
{
    QTest::addColumn<int>("level");
    QTest::addColumn<int>("tabs");
    QTest::addColumn<int>("width");
    QTest::newRow("root") << 0 << 0 << 76;
    QTest::newRow("in the root dictionary") << 1 << 1 << 68;
    QTest::newRow("three deep") << 3 << 3 << 52;
    QTest::newRow("eight deep") << 8 << 8 << 12;
    QTest::newRow("eleven deep stays at eight tabs") << 11 << 8 << 12;
}

// Apple wraps base64 at 76 columns less 8 per indentation tab, and stops indenting at 8 tabs.
void WriterTest::dataLineWidth()
{
    QFETCH(int, level);
    QFETCH(int, tabs);
    QFETCH(int, width);
    QByteArray bytes;
    for (int i = 0; i < 500; ++i)
        bytes.append(char(i * 7));
    Value v = Value::fromData(bytes);
    for (int i = 0; i < level; ++i)
        v = Value::fromArray({v});
    const QByteArray xml = toXml(v);
    const QList<QByteArray> lines = xml.split('\n');
    const qsizetype open = lines.indexOf(QByteArray(level, '\t') + "<data>");
    const qsizetype close = lines.indexOf(QByteArray(level, '\t') + "</data>");
    QVERIFY(open > 0 && close > open + 1);
    QByteArray joined;
    for (qsizetype i = open + 1; i < close; ++i) {
        const QByteArray &line = lines[i];
        QVERIFY(line.startsWith(QByteArray(tabs, '\t')) && line[tabs] != '\t');
        const qsizetype columns = line.size() - tabs;
        if (i + 1 < close)
            QCOMPARE(columns, qsizetype(width));
        else
            QVERIFY(columns > 0 && columns <= width);
        joined += line.mid(tabs);
    }
    QCOMPARE(QByteArray::fromBase64(joined), bytes);
}

// Scalars at their edges (64-bit extremes, subnormals, infinities, NaN, dates far from 2001, every
// byte, markup and control characters, characters outside the BMP), one per element of a fixture.
void WriterTest::scalarsRoundTrip_data()
{
    QTest::addColumn<Value>("value");
    const ReadResult r = readFile(PlistTest::dataPath(QStringLiteral("layout/scalars.plist")));
    QVERIFY2(r.value && r.value->isArray() && r.value->array().size() > 20, qPrintable(r.error));
    for (const Value &v : r.value->array())
        QTest::newRow(toXml(v).split('\n').value(3).trimmed().left(60).constData()) << v;
}

// Each scalar alone, in an array and in a dictionary, through XML and through binary.
void WriterTest::scalarsRoundTrip()
{
    QFETCH(Value, value);
    const Value shapes[] = {value, Value::fromArray({value, value}),
                            Value::fromDictionary({{QStringLiteral("k"), value}})};
    for (const Value &v : shapes) {
        const QByteArray xml = toXml(v);
        const ReadResult fromXml = read(xml);
        QVERIFY2(fromXml.value, qPrintable(fromXml.error));
        QVERIFY2(*fromXml.value == v, xml.constData());
        QCOMPARE(toXml(*fromXml.value), xml);
        const ReadResult fromBinary = read(toBinary(v));
        QVERIFY2(fromBinary.value, qPrintable(fromBinary.error));
        QVERIFY(*fromBinary.value == v);
    }
}

// XML keeps whole seconds, as Apple's writer does; the binary form keeps milliseconds.
void WriterTest::xmlDatesAreWholeSeconds()
{
    const Value afterward = Value::fromDate(utc(2009, 2, 13, 23, 31, 30, 750));
    QVERIFY(toXml(afterward).contains("<date>2009-02-13T23:31:30Z</date>"));
    const Value before2001 = Value::fromDate(utc(2000, 12, 31, 23, 59, 59, 500));
    QVERIFY(toXml(before2001).contains("<date>2000-12-31T23:59:59Z</date>"));
    QVERIFY(*read(toBinary(afterward)).value == afterward);
    // A fraction in XML is dropped on reading, so the value is what will be written again.
    const ReadResult fraction = read("<plist><date>2001-01-01T00:00:01.75Z</date></plist>");
    QVERIFY2(fraction.value, qPrintable(fraction.error));
    QCOMPARE(fraction.value->date(), utc(2001, 1, 1, 0, 0, 1));
}

void WriterTest::orderAndRepeatedKeysKept()
{
    const Value v = Value::fromDictionary({{QStringLiteral("zeta"), Value::fromInteger(1)},
                                           {QStringLiteral("alpha"), Value::fromInteger(2)},
                                           {QStringLiteral("Mid"), Value::fromDictionary({})},
                                           {QStringLiteral("alpha"), Value::fromInteger(3)}});
    for (const QByteArray &bytes : {toXml(v), toBinary(v)}) {
        const ReadResult r = read(bytes);
        QVERIFY2(r.value, qPrintable(r.error));
        QStringList keys;
        for (const auto &entry : r.value->dictionary())
            keys << entry.first;
        QCOMPARE(keys, QStringList({QStringLiteral("zeta"), QStringLiteral("alpha"), QStringLiteral("Mid"),
                                    QStringLiteral("alpha")}));
        QCOMPARE(r.value->find(QStringLiteral("alpha"))->integer(), 3);
    }
}

void WriterTest::binaryLongCountsAndWideReferences()
{
    Array many;
    for (int i = 0; i < 300; ++i)
        many.append(Value::fromString(QStringLiteral("item %1").arg(i)));
    Dictionary wide;
    for (int i = 0; i < 20; ++i)
        wide.append({QStringLiteral("k%1").arg(i), Value::fromInteger(i * 1000003)});
    const Value v = Value::fromDictionary({{QStringLiteral("many"), Value::fromArray(many)},
                                           {QStringLiteral("wide"), Value::fromDictionary(wide)},
                                           {QStringLiteral("long"), Value::fromString(QString(300, QChar(0x00e9)))},
                                           {QStringLiteral("blob"), Value::fromData(QByteArray(70000, 'x'))}});
    const QByteArray bplist = toBinary(v);
    QCOMPARE(trailerField(bplist, 7, 1), quint64(2));  // more than 255 objects: 2-byte references
    QCOMPARE(trailerField(bplist, 6, 1), quint64(4));  // offsets past 65535: 4-byte offsets
    const ReadResult r = read(bplist);
    QVERIFY2(r.value, qPrintable(r.error));
    QVERIFY(*r.value == v);
}

// {"CF$UID": n} is how XML spells a keyed archive's UID; binary stores it as one UID object.
void WriterTest::binaryWritesUidObjects()
{
    const Value uid = Value::fromDictionary({{QStringLiteral("CF$UID"), Value::fromInteger(5)}});
    const QByteArray bplist = toBinary(uid);
    QCOMPARE(trailerField(bplist, 8, 8), quint64(1));
    QCOMPARE(bplist.mid(8, 2), QByteArray("\x80\x05", 2));
    QVERIFY(*read(bplist).value == uid);

    const Value notUid = Value::fromDictionary({{QStringLiteral("CF$UID"), str("5")}});
    QCOMPARE(trailerField(toBinary(notUid), 8, 8), quint64(3));
    QVERIFY(*read(toBinary(notUid)).value == notUid);
}

void WriterTest::jsonRendering()
{
    const Value v = Value::fromDictionary({
        {QStringLiteral("z"), str("quote \" backslash \\ tab \t bell \x07 \xC3\xA9")},
        {QStringLiteral("a"), Value::fromArray({Value::fromInteger(-5), Value::fromUnsigned(18446744073709551615ull),
                                                Value::fromReal(0.1), Value::fromReal(-std::numeric_limits<double>::infinity()),
                                                Value::fromBoolean(false)})},
        {QStringLiteral("m"), Value::fromDictionary({{QStringLiteral("d"), Value::fromDate(utc(2001, 1, 1, 0, 0, 1))},
                                                     {QStringLiteral("b"), Value::fromData("hi")}})},
        {QStringLiteral("e"), Value::fromArray({})},
    });
    QVERIFY(TestSupport::compareBytes(toJson(v), PlistTest::dataPath(QStringLiteral("layout/rendering.json"))));
}

// The command line printed strings through QJsonDocument; the writer that replaced it must give
// the same bytes, for every kind of unit it escapes or encodes differently.
void WriterTest::jsonStringsAsQtWritesThem_data()
{
    TestSupport::addCaseRows(u"../plist/data/json-strings.tsv"_qs, {"text"});
}

void WriterTest::jsonStringsAsQtWritesThem()
{
    QFETCH(QString, text);
    const QByteArray array = QJsonDocument(QJsonArray{text}).toJson(QJsonDocument::Compact);
    QByteArray ours;
    json::appendString(ours, text);
    QCOMPARE(ours, array.mid(1, array.size() - 2));
}

void WriterTest::jsonWriterChunksInOrder()
{
    // Enough text to cross several chunks; whatever the chunking, the bytes arrive in order once.
    QByteArray received, expected;
    int chunks = 0;
    {
        json::Writer writer([&](QByteArrayView bytes) {
            received.append(bytes);
            ++chunks;
        });
        for (int i = 0; i < 20000; ++i) {
            const QString word = QStringLiteral("w\u00e9rd %1").arg(i);
            writer.raw(i ? "," : "[").string(word);
            expected.append(i ? "," : "[");
            json::appendString(expected, word);
        }
        writer.raw("]");
        expected.append("]");
    }
    QCOMPARE(received, expected);
    QVERIFY(chunks > 1);
}

// The file is replaced whole, never rewritten in place: a failure midway keeps the old one.
void WriterTest::writeFileAtomically()
{
    QTemporaryDir dir;
    QVERIFY(dir.isValid());
    const QString path = dir.filePath(QStringLiteral("Info.plist"));
    const Value first = Value::fromDictionary({{QStringLiteral("CFBundleName"), str("First")}});
    const Value second = Value::fromArray({str("Second")});
    QString error;
    QVERIFY(writeXmlFile(path, first, &error));
    QVERIFY(error.isEmpty());
    QVERIFY(TestSupport::writesAtomically(path, [&] { return writeXmlFile(path, second); }));
    QCOMPARE(TestSupport::readFile(path), toXml(second));
    QCOMPARE(QDir(dir.path()).entryList(QDir::Files | QDir::Hidden), QStringList{QStringLiteral("Info.plist")});

    const QString unwritable = dir.filePath(QStringLiteral("no/such/folder/Info.plist"));
    QVERIFY(!writeXmlFile(unwritable, first, &error));
    QVERIFY2(error.contains(unwritable), qPrintable(error));
    QVERIFY(!QFile::exists(unwritable));
}

int runWriterTests(int argc, char **argv)
{
    WriterTest t;
    return QTest::qExec(&t, argc, argv);
}

#include "test_plist_writers.moc"
