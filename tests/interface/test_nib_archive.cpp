// The NIBArchive container: exact round trips, the variable-length integers at their byte
// boundaries, and damaged archives refused with a reason instead of read out of bounds.

#include "NibFixtures.h"
#include "TestSupport.h"
#include "nib/NibArchive.h"

#include <QTest>

using interface::nib::NibArchive;
using interface::nib::NibValue;

namespace {

QByteArray smallArchive(int dataLength)
{
    NibFixtures::Builder b;
    const int text = b.string(QString(dataLength, u'x'));
    const int cell = b.add(QStringLiteral("NSButtonCell"), {{QStringLiteral("NSContents"), NibFixtures::Ref{text}},
                                                            {QStringLiteral("NSTag"), qint64(-3)},
                                                            {QStringLiteral("NSEnabled"), true}});
    b.objectData(cell, {{cell, 7}});
    return b.toNibArchive();
}

void putLittleEndian(QByteArray &bytes, int at, quint32 v)
{
    for (int i = 0; i < 4; ++i) bytes[at + i] = char((v >> (8 * i)) & 0xff);
}

}  // namespace

class TestNibArchive : public QObject {
    Q_OBJECT

private slots:
    // Lengths whose varints take one, two and three bytes.
    void roundTripIsExact_data()
    {
        QTest::addColumn<int>("length");
        QTest::newRow("one-byte length") << 127;
        QTest::newRow("two-byte length") << 128;
        QTest::newRow("largest two-byte") << 16383;
        QTest::newRow("three-byte length") << 16384;
    }
    void roundTripIsExact()
    {
        QFETCH(int, length);
        const QByteArray bytes = smallArchive(length);
        QString error;
        const auto a = NibArchive::parse(bytes, &error);
        QVERIFY2(a, qPrintable(error));
        QCOMPARE(a->serialize(), bytes);
        bool found = false;
        for (const NibValue &v : a->values)
            if (v.type == NibValue::Data && v.data.size() == length) found = true;
        QVERIFY(found);
    }

    void valuesKeepTheirTypes()
    {
        const auto a = NibArchive::parse(smallArchive(3));
        QVERIFY(a);
        QHash<QByteArray, NibValue> byKey;
        for (const NibValue &v : a->values) byKey.insert(a->keys[v.key], v);
        QCOMPARE(byKey.value("NSTag").integer(), std::optional<qint64>(-3));
        QCOMPARE(byKey.value("NSEnabled").boolean(), std::optional<bool>(true));
        QVERIFY(byKey.value("NSContents").isObject());
        QCOMPARE(a->classes[a->objects[0].classIndex].name, QByteArray("NSObject"));
    }

    void trailingBytesAreKept()
    {
        QByteArray bytes = smallArchive(5);
        bytes.append("\x01\x02\x03", 3);
        const auto a = NibArchive::parse(bytes);
        QVERIFY(a);
        QCOMPARE(a->trailing, QByteArray("\x01\x02\x03", 3));
        QCOMPARE(a->serialize(), bytes);
    }

    // Every prefix of an archive without trailing bytes is refused cleanly: some table then
    // promises more than the bytes hold.
    void truncatedArchivesAreRefused()
    {
        const QByteArray bytes = smallArchive(40);
        for (qsizetype n = 0; n < bytes.size(); ++n) {
            QString error;
            const auto a = NibArchive::parse(bytes.left(n), &error);
            QVERIFY2(!a, qPrintable(QString::number(n)));
            QVERIFY(!error.isEmpty());
        }
    }

    void damagedArchivesAreRefused_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        const QByteArray good = smallArchive(4);
        QByteArray hugeCount = good;
        putLittleEndian(hugeCount, 18, 0x7fffffff);
        QTest::newRow("object count beyond the file") << hugeCount;
        QByteArray badOffset = good;
        putLittleEndian(badOffset, 30, quint32(good.size() + 100));
        QTest::newRow("key table past the end") << badOffset;
        QTest::newRow("not an archive") << QByteArray("NIBArchivX") + good.mid(10);

        auto a = *NibArchive::parse(good);
        auto badClass = a;
        badClass.objects[1].classIndex = 99;
        QTest::newRow("class index out of range") << badClass.serialize();
        auto badRef = a;
        for (NibValue &v : badRef.values)
            if (v.isObject()) v.raw = 1000;
        QTest::newRow("object reference out of range") << badRef.serialize();
        auto badKey = a;
        badKey.values[0].key = 500;
        QTest::newRow("key index out of range") << badKey.serialize();
        auto badRange = a;
        badRange.objects[1].valueCount = 1000;
        QTest::newRow("values past the value table") << badRange.serialize();
        auto overlapping = a;
        overlapping.objects[2].firstValue = overlapping.objects[1].firstValue;
        overlapping.objects[2].valueCount = 1;
        QTest::newRow("two objects sharing values") << overlapping.serialize();
        QByteArray longVarint = good;
        // Five continuation bytes: a count no 32-bit field can hold.
        longVarint.insert(50, QByteArray(6, '\x7f'));
        QTest::newRow("overlong varint") << longVarint;
    }
    void damagedArchivesAreRefused()
    {
        QFETCH(QByteArray, bytes);
        QString error;
        QVERIFY(!NibArchive::parse(bytes, &error));
        QVERIFY(!error.isEmpty());
    }
};

QTEST_GUILESS_MAIN(TestNibArchive)
#include "test_nib_archive.moc"
