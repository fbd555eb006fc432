// Malformed and malicious input: every case gives no value and an error that says what is wrong;
// none crashes, recurses without bound or allocates what the bytes cannot hold.
#include "PlistTestSupport.h"

#include "CaseData.h"

#include <QTest>

using namespace plist;
using PlistTest::BinaryBuilder;
using TestSupport::addCaseRows;

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
    void tableRefused_data();
    void tableRefused();
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
    QByteArray chopped = one("51 61").build();
    chopped.chop(1);
    addRow("trailer cut short", chopped, "invalid sizes");
    addRow("only a header", QByteArray("bplist00\x51\x61", 10), "too short to hold a trailer");
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

// The table's cases, each in the form its row names.
void HostileTest::tableRefused_data()
{
    addCaseRows(u"../plist/data/refused.tsv"_qs, {"form", "input", "error", "trailer"});
}

void HostileTest::tableRefused()
{
    QFETCH(QString, form);
    QFETCH(QString, input);
    QFETCH(QString, error);
    QFETCH(QString, trailer);
    if (form == u"binary")
        return refused(BinaryBuilder::fromRow(input, trailer).build(), Format::Binary, error);
    refused(input.toUtf8(), form == u"xml" ? Format::Xml : Format::OpenStep, error);
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
