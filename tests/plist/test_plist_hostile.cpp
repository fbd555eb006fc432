// Malformed and malicious input: every case gives no value and an error that says what is wrong;
// none crashes, recurses without bound or allocates what the bytes cannot hold.
#include "PlistTestSupport.h"

#include <QTest>

using namespace plist;
using PlistTest::BinaryBuilder;

namespace {

// A list nested `depth` containers deep in each form.
QByteArray nestedXml(int depth)
{
    return "<plist>" + QByteArray("<array>").repeated(depth) + QByteArray("</array>").repeated(depth) + "</plist>";
}

QByteArray nestedOpenStep(int depth) { return QByteArray("(").repeated(depth) + QByteArray(")").repeated(depth); }

QByteArray nestedBinary(int depth)
{
    BinaryBuilder b;
    b.refSize = 2;
    b.offsetSize = depth * 3 > 0xFFFF ? 4 : 2;
    for (int i = 0; i + 1 < depth; ++i)
        b.objects.append(QByteArray("\xA1", 1) + QByteArray(1, char((i + 1) >> 8)) + QByteArray(1, char((i + 1) & 0xFF)));
    b.add("A0");
    return b.build();
}

}  // namespace

class HostileTest : public QObject {
    Q_OBJECT

private slots:
    void binaryRefused_data();
    void binaryRefused();
    void xmlRefused_data();
    void xmlRefused();
    void openStepRefused_data();
    void openStepRefused();
    void nestingBounded_data();
    void nestingBounded();
    void binaryExpansionBounded();
    void damagedBytesNeverCrash_data();
    void damagedBytesNeverCrash();

private:
    void addRow(const char *name, const QByteArray &bytes, const char *error)
    {
        QTest::newRow(name) << bytes << QString::fromUtf8(error);
    }
    static void refused(const QByteArray &bytes, Format form, const QString &error);
};

// Refused with an error that names the form first and then says what is wrong.
void HostileTest::refused(const QByteArray &bytes, Format form, const QString &error)
{
    const ReadResult r = read(bytes);
    QVERIFY2(!r.value, "hostile input was accepted");
    QCOMPARE(r.format, form);
    const QString prefix = form == Format::Xml ? QStringLiteral("XML property list: ")
        : form == Format::Binary               ? QStringLiteral("binary property list: ")
                                               : QStringLiteral("OpenStep property list: ");
    QVERIFY2(r.error.startsWith(prefix) && r.error.contains(error),
             qPrintable(QStringLiteral("error \"%1\" lacks \"%2\"").arg(r.error, error)));
}

void HostileTest::binaryRefused_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QString>("error");
    const auto one = [](const char *hex) { return BinaryBuilder().add(hex); };

    addRow("array holding itself", one("A1 00").build(), "cycle");
    addRow("indirect cycle", BinaryBuilder().add("A1 01").add("D1 02 00").add("51 6B").build(), "cycle");
    addRow("reference out of range", one("A1 39").build(), "object reference 57 out of range");
    BinaryBuilder badOffset = one("A1 00");
    badOffset.offsetOverrides = {200};
    addRow("offset past the objects", badOffset.build(), "offset 200 outside the object area");
    BinaryBuilder headerOffset = one("51 61");
    headerOffset.offsetOverrides = {3};
    addRow("offset inside the header", headerOffset.build(), "outside the object area");
    QByteArray chopped = one("51 61").build();
    chopped.chop(1);
    addRow("trailer cut short", chopped, "invalid sizes");
    addRow("only a header", QByteArray("bplist00\x51\x61", 10), "too short to hold a trailer");
    BinaryBuilder top = one("51 61");
    top.topObject = 5;
    addRow("top object out of range", top.build(), "top object 5 out of range");
    BinaryBuilder count = one("51 61");
    count.objectCount = qint64(1) << 62;
    addRow("huge object count", count.build(), "does not fit the file");
    BinaryBuilder noObjects = one("51 61");
    noObjects.objectCount = 0;
    addRow("no objects", noObjects.build(), "counts no objects");
    BinaryBuilder table = one("51 61");
    table.tableOffset = 1000000;
    addRow("table offset past the end", table.build(), "does not fit the file");
    BinaryBuilder zeroSize = one("51 61");
    zeroSize.offsetSize = 0;
    addRow("offset size 0", zeroSize.build(), "invalid sizes");
    BinaryBuilder wideRefs = one("51 61");
    wideRefs.refSize = 9;
    addRow("reference size 9", wideRefs.build(), "invalid sizes");
    addRow("array claiming 2^60 entries", one("AF 13 1000000000000000 00").build(), "more than the file holds");
    addRow("dictionary claiming 2^62 entries", one("DF 13 4000000000000000").build(), "more than the file holds");
    addRow("string claiming 2^63 bytes", one("5F 13 8000000000000000 61").build(), "runs past the object area");
    addRow("utf-16 claiming 2^64-1 units", one("6F 13 FFFFFFFFFFFFFFFF").build(), "runs past the object area");
    addRow("data claiming 2^32 bytes", one("4F 12 FFFFFFFF").build(), "runs past the object area");
    addRow("length that is no integer", one("5F 23 0000000000000000").build(), "malformed length");
    addRow("key that is no string", BinaryBuilder().add("D1 01 01").add("10 05").build(), "not a string");
    addRow("null object", one("00").build(), "unsupported type 0x00");
    addRow("unknown object type", one("90").build(), "unknown type 0x90");
    addRow("32-byte integer", one("15 00").build(), "invalid size");
    addRow("2-byte real", one("21 0000").build(), "invalid size");
    addRow("date that is NaN", one("33 7FF8000000000000").build(), "date at offset 8 is out of range");
    addRow("date in the year 17845", one("33 425D1A94A2000000").build(), "date at offset 8 is out of range");
    addRow("integer beyond 64 bits", one("14 0000000000000001 0000000000000000").build(), "does not fit 64 bits");
    addRow("integer cut short", one("13 0102").build(), "runs past the object area");
    BinaryBuilder narrowRefs = one("51 61");
    for (int i = 0; i < 299; ++i)
        narrowRefs.add("51 61");
    narrowRefs.offsetSize = 2;
    addRow("300 objects, 1-byte references", narrowRefs.build(), "cannot be referred to");
    addRow("other version", QByteArray("bplist01") + QByteArray(40, '\0'), "unsupported version");
}

void HostileTest::binaryRefused()
{
    QFETCH(QByteArray, bytes);
    QFETCH(QString, error);
    refused(bytes, Format::Binary, error);
}

void HostileTest::xmlRefused_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QString>("error");
    addRow("external entity",
           "<?xml version=\"1.0\"?>\n<!DOCTYPE plist [ <!ENTITY x SYSTEM \"file:///etc/passwd\"> ]>\n"
           "<plist><string>&x;</string></plist>",
           "line 2: entity declarations are not allowed");
    addRow("billion laughs",
           "<!DOCTYPE plist [\n <!ENTITY a \"ha\">\n <!ENTITY b \"&a;&a;&a;&a;&a;&a;&a;&a;&a;&a;\">\n"
           " <!ENTITY c \"&b;&b;&b;&b;&b;&b;&b;&b;&b;&b;\">\n]>\n<plist><string>&c;</string></plist>",
           "entity declarations are not allowed");
    addRow("undeclared entity", "<plist><string>a &nbsp; b</string></plist>", "entity reference &nbsp; is not allowed");
    addRow("bare ampersand", "<plist><string>a & b</string></plist>", "must be written &amp;");
    addRow("surrogate character reference", "<plist><string>&#xD800;</string></plist>", "invalid character reference");
    addRow("mismatched tags", "<plist><dict></array></plist>", "expected </dict> but found </array>");
    addRow("unterminated", "<plist><array><string>a</string>", "unterminated <array> element");
    addRow("text between elements", "<plist><dict>stray<key>a</key><true/></dict></plist>", "unexpected text inside <dict>");
    addRow("key without value", "<plist><dict><key>a</key></dict></plist>", "key \"a\" has no value");
    addRow("value without key", "<plist><dict><string>a</string></dict></plist>", "expected <key> in <dict>");
    addRow("key outside a dictionary", "<plist><key>a</key></plist>", "<key> outside a <dict>");
    addRow("unknown element", "<plist><number>1</number></plist>", "unknown element <number>");
    addRow("element inside a string", "<plist><string>a<b/></string></plist>", "unexpected element inside <string>");
    addRow("two values in <plist>", "<plist><true/><false/></plist>", "more than one value");
    addRow("empty <plist>", "<plist/>", "holds no value");
    addRow("content after the list", "<plist><true/></plist><plist/>", "unexpected content after");
    addRow("integer with letters", "<plist><integer>12abc</integer></plist>", "invalid <integer> value \"12abc\"");
    addRow("integer above 64 bits", "<plist><integer>18446744073709551616</integer></plist>", "invalid <integer>");
    addRow("integer below int64", "<plist><integer>-9223372036854775809</integer></plist>", "invalid <integer>");
    addRow("real with text", "<plist><real>1.5x</real></plist>", "invalid <real>");
    addRow("date that is no date", "<plist><date>yesterday</date></plist>", "invalid <date>");
    addRow("data that is no base64", "<plist><data>@@@@</data></plist>", "invalid <data>");
    addRow("text in <true/>", "<plist><true>yes</true></plist>", "<true> must be empty");
    addRow("unterminated comment", "<plist><!-- open", "unterminated comment");
    addRow("unknown encoding", "<?xml version=\"1.0\" encoding=\"x-no-such\"?><plist/>", "unsupported text encoding");
    addRow("error names its line", "<plist>\n<dict>\n<key>a</key>\n<strin>b</strin>\n</dict>\n</plist>",
           "line 4: unknown element <strin>");
}

void HostileTest::xmlRefused()
{
    QFETCH(QByteArray, bytes);
    QFETCH(QString, error);
    refused(bytes, Format::Xml, error);
}

void HostileTest::openStepRefused_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QString>("error");
    addRow("string table without braces", "\"a\" = \"b\";", "expected \"{\" or \"(\" at the start");
    addRow("unterminated string", "{ a = \"open; }", "line 1: unterminated quoted string");
    addRow("backslash at the end", "{ a = \"x\\", "unterminated quoted string");
    addRow("unterminated comment", "{ a = b; /* open", "unterminated comment");
    addRow("missing semicolon", "{\n a = b;\n c = d\n}", "line 4: missing \";\" after the value of the key \"c\"");
    addRow("missing equals", "{ a b; }", "expected \"=\" after the key \"a\"");
    addRow("missing comma", "( a b )", "expected \",\" or \")\"");
    addRow("unclosed dictionary", "{ a = b;", "unterminated dictionary");
    addRow("unclosed array", "( a,", "unexpected end of text");
    addRow("odd hex digits", "( <abc> )", "odd number of hexadecimal digits");
    addRow("no hex digit", "( <zz> )", "\"z\" is no hexadecimal digit");
    addRow("text after the root", "( a ) b", "unexpected text after the end");
    addRow("stray character", "{ a = ?; }", "unexpected character \"?\"");
}

void HostileTest::openStepRefused()
{
    QFETCH(QByteArray, bytes);
    QFETCH(QString, error);
    refused(bytes, Format::OpenStep, error);
}

void HostileTest::nestingBounded_data()
{
    QTest::addColumn<QByteArray>("fine");
    QTest::addColumn<QByteArray>("tooDeep");
    QTest::addColumn<QByteArray>("absurd");
    QTest::addColumn<Format>("form");
    QTest::newRow("xml") << nestedXml(MaxDepth) << nestedXml(MaxDepth + 1) << nestedXml(200000) << Format::Xml;
    QTest::newRow("openstep") << nestedOpenStep(MaxDepth + 1) << nestedOpenStep(MaxDepth + 2)
                              << nestedOpenStep(200000) << Format::OpenStep;
    QTest::newRow("binary") << nestedBinary(MaxDepth + 1) << nestedBinary(MaxDepth + 2) << nestedBinary(60000)
                            << Format::Binary;
}

// Real lists stay far below MaxDepth levels; deeper ones are refused before the stack runs out.
void HostileTest::nestingBounded()
{
    QFETCH(QByteArray, fine);
    QFETCH(QByteArray, tooDeep);
    QFETCH(QByteArray, absurd);
    QFETCH(Format, form);
    const ReadResult ok = read(fine);
    QVERIFY2(ok.value, qPrintable(ok.error));
    refused(tooDeep, form, QStringLiteral("nested more than 512 levels deep"));
    refused(absurd, form, QStringLiteral("nested more than 512 levels deep"));
}

// Sixty arrays each holding the next one twice: 2^60 values once expanded, in 200 bytes.
void HostileTest::binaryExpansionBounded()
{
    BinaryBuilder b;
    for (int i = 0; i < 60; ++i)
        b.objects.append(QByteArray("\xA2", 1) + QByteArray(2, char(i + 1)));
    b.add("51 78");
    refused(b.build(), Format::Binary, QStringLiteral("the list expands to more than"));
}

void HostileTest::damagedBytesNeverCrash_data()
{
    QTest::addColumn<QByteArray>("bytes");
    const Value sample = Value::fromDictionary(
        {{QStringLiteral("name"), Value::fromString(QStringLiteral("Gr\u00fc\u00dfe"))},
         {QStringLiteral("list"), Value::fromArray({Value::fromInteger(-7), Value::fromReal(2.5),
                                                    Value::fromData("\x01\x02"), Value::fromBoolean(true)})},
         {QStringLiteral("uid"), Value::fromDictionary({{QStringLiteral("CF$UID"), Value::fromInteger(3)}})}});
    QTest::newRow("binary") << toBinary(sample);
    QTest::newRow("xml") << toXml(sample);
    QTest::newRow("openstep") << QByteArray("{ name = \"Gr\\U00fc\"; list = (a, <0102>, {b = c;}); /* c */ }");
}

// Every prefix and every single-byte change reads as a value or as an error, never both or none.
void HostileTest::damagedBytesNeverCrash()
{
    QFETCH(QByteArray, bytes);
    int refusedCount = 0;
    const auto consistent = [](const ReadResult &r) { return r.value.has_value() == r.error.isEmpty(); };
    for (qsizetype n = 0; n < bytes.size(); ++n) {
        const ReadResult prefix = read(bytes.left(n));
        QVERIFY2(consistent(prefix), qPrintable(QStringLiteral("first %1 bytes").arg(n)));
        refusedCount += !prefix.value;
        for (char replacement : {'\0', '\xFF', '<', '"'}) {
            QByteArray damaged = bytes;
            damaged[n] = replacement;
            QVERIFY2(consistent(read(damaged)), qPrintable(QStringLiteral("byte %1 changed").arg(n)));
        }
    }
    QVERIFY(refusedCount > bytes.size() / 2);  // most prefixes are no list at all
}

int runHostileTests(int argc, char **argv)
{
    HostileTest t;
    return QTest::qExec(&t, argc, argv);
}

#include "test_plist_hostile.moc"
