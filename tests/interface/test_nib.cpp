// Compiled nibs, the fixtures of tests/data/interface/nib/ in both containers: the
// NIBArchive container's exact round trips, varints at their byte boundaries and damaged archives
// refused; which places are listed under which key and how ids are made; a translation changing
// its own place only; nib folders, whose compiled variants are written together, paired with
// designable.nib by text, other files copied, the folder replaced only once complete.

#include "CaseData.h"
#include "IbtoolTable.h"
#include "InterfaceFile.h"
#include "StringsTable.h"
#include "nib/CompiledNib.h"
#include "nib/KeyedArchiveGraph.h"
#include "nib/NibArchive.h"
#include "nib/NibArchiveGraph.h"
#include "nib/NibBundle.h"

#include <QTest>

using namespace interface;
using namespace interface::nib;

namespace {

// A compiled nib of tests/data/interface/nib/ (README there), as "<name>-nibarchive.nib" or
// "<name>-keyed.nib".
QByteArray fixture(const QString &name, const QString &form = u"nibarchive"_qs)
{
    return TestSupport::readFile(TestSupport::dataDir(u"interface/nib/"_qs) + name + u'-' + form + u".nib"_qs);
}

std::unique_ptr<CompiledNib> open(const QByteArray &bytes)
{
    QString error;
    auto nib = CompiledNib::fromData(bytes, &error);
    if (!nib) qWarning("%s", qPrintable(error));
    return nib;
}

QHash<QString, QString> table(const InterfaceFile &f)
{
    QHash<QString, QString> t;
    for (const LocalizableString &s : f.strings()) t.insert(s.key(), s.value);
    return t;
}

void putLittleEndian(QByteArray &bytes, int at, quint32 v)
{
    for (int i = 0; i < 4; ++i) bytes[at + i] = char((v >> (8 * i)) & 0xff);
}

}  // namespace

class TestNib : public QObject {
    Q_OBJECT

    QTemporaryDir m_dir;
    int m_count = 0;

    QString newFolder(const QString &name)
    {
        const QString path = m_dir.filePath(QString::number(++m_count) + u'/' + name);
        QDir().mkpath(path);
        return path;
    }

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
        auto small = *NibArchive::parse(fixture(u"small"_qs));
        for (NibValue &v : small.values)
            if (v.type == NibValue::Data && v.data == "xxxx") v.data = QByteArray(length, 'x');
        const QByteArray bytes = small.serialize();
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
        const auto a = NibArchive::parse(fixture(u"small"_qs));
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
        QByteArray bytes = fixture(u"small"_qs);
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
        const QByteArray bytes = fixture(u"small"_qs);
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
        const QByteArray good = fixture(u"small"_qs);
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
            if (v.isObject()) v.raw = quint64(a.objects.size());
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

    // Which places are listed, under which key and class, and how ids are made (the id table's
    // oids, cells numbered after NSNextOid, keys of Base nibs, ids of our own without a table):
    // each fixture's ibtool table against <name>.strings beside it, whatever the container.
    void listing_data()
    {
        QTest::addColumn<QString>("file");
        const QDir dir(TestSupport::dataDir(u"interface/nib"_qs));
        for (const QString &f : dir.entryList({u"*.nib"_qs}, QDir::Files)) QTest::newRow(qPrintable(f)) << dir.filePath(f);
    }
    void listing()
    {
        QFETCH(QString, file);
        const auto nib = open(TestSupport::readFile(file));
        QVERIFY(nib);
        const QString expected = file.left(file.lastIndexOf(u'-')) + u".strings"_qs;
        QVERIFY(TestSupport::compareText(ibtoolTableText(nib->strings()), expected));
    }

    // A translation changes its own place only: a shared string translated for one of its users
    // is copied to one new object (every other object keeps its index, so ids stay); keys of
    // Base nibs and ids of our own survive; keys the nib lacks change nothing. Each row: a
    // fixture, a string table of translations, the table its copy must list, and how many
    // objects the copy may add (empty: not checked).
    void translations_data() { TestSupport::addCaseRows(u"interface/nib/translations.tsv"_qs, {"nib", "table", "expected", "added"}); }
    void translations()
    {
        QFETCH(QString, nib);
        QFETCH(QString, table);
        QFETCH(QString, expected);
        QFETCH(QString, added);
        const QString dir = TestSupport::dataDir(u"interface/nib/"_qs);
        const auto original = open(TestSupport::readFile(dir + nib + u".nib"_qs));
        const auto translations = StringsTable::parse(table);
        QVERIFY(original && translations);
        const auto copy = open(original->localizedData(*translations));
        QVERIFY(copy);
        if (!added.isEmpty()) QCOMPARE(copy->graph().objectCount() - original->graph().objectCount(), added.toInt());
        QVERIFY(TestSupport::compareText(ibtoolTableText(copy->strings()), dir + expected));
    }

    // A string used once is changed where it is: nothing else in the archive moves.
    void unsharedStringChangesInPlace()
    {
        const QByteArray bytes = fixture(u"window"_qs);
        const auto nib = open(bytes);
        StringMap t;
        t.insert(u"5.title"_qs, u"Réglages"_qs);
        const QByteArray out = nib->localizedData(t);
        const auto before = *NibArchive::parse(bytes);
        const auto after = *NibArchive::parse(out);
        QCOMPARE(after.objects.size(), before.objects.size());
        QCOMPARE(after.keys, before.keys);
        QCOMPARE(after.values.size(), before.values.size());
        int differing = 0;
        for (qsizetype i = 0; i < before.values.size(); ++i)
            if (before.values[i].data != after.values[i].data || before.values[i].raw != after.values[i].raw) ++differing;
        QCOMPARE(differing, 1);
        QVERIFY(out.contains("Réglages"_qba));
    }

    void writeIsAtomicAndWarnsOfUnknownKeys()
    {
        QTemporaryDir dir;
        const auto nib = open(fixture(u"window"_qs, u"keyed"_qs));
        StringMap t;
        t.insert(u"5.title"_qs, u"Réglages"_qs);
        t.insert(u"77.title"_qs, u"?"_qs);
        QString error;
        TestSupport::writeFile(dir.filePath(u"W.nib"_qs), "an older copy");
        QVERIFY(TestSupport::writesAtomically(dir.filePath(u"W.nib"_qs), [&] { return nib->write(dir.filePath(u"W.nib"_qs), t, &error); }));
        QCOMPARE(nib->warnings().size(), 1);
        QVERIFY(nib->warnings().first().contains(u"77.title"_qs));
        const auto back = CompiledNib::open(dir.filePath(u"W.nib"_qs), &error);
        QVERIFY(back);
        QCOMPARE(table(*back).value(u"5.title"_qs), u"Réglages"_qs);
        QVERIFY(!nib->write(dir.filePath(u"missing/W.nib"_qs), t, &error));
        QVERIFY(!error.isEmpty());
    }

    // A property list that is no keyed archive says so.
    void otherPropertyListsAreRefused()
    {
        QString error;
        QVERIFY(!CompiledNib::fromData("bplist00 not really", &error));
        QVERIFY(!error.isEmpty());
        const QByteArray notArchive = plist::toBinary(plist::Value::fromArray({plist::Value::fromString(u"x"_qs)}));
        QVERIFY(!CompiledNib::fromData(notArchive, &error));
        QVERIFY(error.contains(u"keyed archive"_qs));
    }

    void variantsAreTranslatedTogether()
    {
        const QString in = newFolder(u"Window.nib"_qs);
        TestSupport::writeFile(in + u"/keyedobjects.nib"_qs, fixture(u"window"_qs, u"keyed"_qs));
        TestSupport::writeFile(in + u"/keyedobjects-101300.nib"_qs, fixture(u"window"_qs));
        TestSupport::writeFile(in + u"/info.nib"_qs, "<plist>kept as it is</plist>");
        QString error;
        const auto folder = openInterfaceFile(in, &error);
        QVERIFY2(folder, qPrintable(error));
        QCOMPARE(table(*folder).value(u"5.title"_qs), u"Preferences"_qs);

        // An older folder at the output place, with a file the new one does not have.
        const QString out = QFileInfo(in).absolutePath() + u"/out/Window.nib"_qs;
        TestSupport::writeFile(out + u"/stale.nib"_qs, "old");
        StringMap t;
        t.insert(u"5.title"_qs, u"Réglages"_qs);
        t.insert(u"11.title"_qs, u"Oui"_qs);
        QVERIFY2(folder->write(out, t, &error), qPrintable(error));
        QCOMPARE(QDir(out).entryList(QDir::Files, QDir::Name),
                 (QStringList{u"info.nib"_qs, u"keyedobjects-101300.nib"_qs, u"keyedobjects.nib"_qs}));
        QCOMPARE(TestSupport::readFile(out + u"/info.nib"_qs), QByteArray("<plist>kept as it is</plist>"));
        QVERIFY(QFileInfo(out).permissions() & QFileDevice::ReadOther);
        for (const char *variant : {"/keyedobjects.nib", "/keyedobjects-101300.nib"}) {
            const auto nib = nib::CompiledNib::open(out + QString::fromLatin1(variant), &error);
            QVERIFY2(nib, qPrintable(error));
            QCOMPARE(table(*nib).value(u"5.title"_qs), u"Réglages"_qs);
            QCOMPARE(table(*nib).value(u"11.title"_qs), u"Oui"_qs);
            QCOMPARE(table(*nib).value(u"13.title"_qs), u"OK"_qs);
        }
        // No staging folder is left behind.
        QCOMPARE(QDir(QFileInfo(out).absolutePath()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot),
                 QStringList{u"Window.nib"_qs});
    }

    // designable.nib (ids 5, 12, 20, 31, 40) beside a compiled variant with its own ids: the
    // folder lists designable's keys, and the variant gets the same words, shared string split.
    void designableGivesTheIds()
    {
        const QString in = newFolder(u"Prefs.nib"_qs);
        TestSupport::writeFile(in + u"/designable.nib"_qs, TestSupport::readFile(TestSupport::dataDir(u"interface/xib/legacy/in.xib"_qs)));
        TestSupport::writeFile(in + u"/keyedobjects.nib"_qs, fixture(u"legacy"_qs, u"keyed"_qs));
        QString error;
        const auto folder = openInterfaceFile(in, &error);
        QVERIFY2(folder, qPrintable(error));
        QCOMPARE(table(*folder).value(u"31.title"_qs), u"Shared"_qs);
        QVERIFY(!table(*folder).contains(u"103.title"_qs));

        StringMap t;
        t.insert(u"20.title"_qs, u"Partagé (boîte)"_qs);
        t.insert(u"31.title"_qs, u"Partagé (champ)"_qs);
        t.insert(u"12.title"_qs, u"Tout marquer :\n"_qs);
        const QString out = newFolder(u"x"_qs) + u"/Prefs.nib"_qs;
        QVERIFY2(folder->write(out, t, &error), qPrintable(error));
        const auto compiled = nib::CompiledNib::open(out + u"/keyedobjects.nib"_qs, &error);
        QVERIFY2(compiled, qPrintable(error));
        const auto got = table(*compiled);
        QCOMPARE(got.value(u"102.title"_qs), u"Partagé (boîte)"_qs);
        QCOMPARE(got.value(u"103.title"_qs), u"Partagé (champ)"_qs);
        QCOMPARE(got.value(u"101.title"_qs), u"Tout marquer :\n"_qs);
        QCOMPARE(got.value(u"100.title"_qs), u"Preferences"_qs);
        const auto designable = openInterfaceFile(out + u"/designable.nib"_qs, &error);
        QVERIFY2(designable, qPrintable(error));
        QCOMPARE(table(*designable).value(u"31.title"_qs), u"Partagé (champ)"_qs);
    }

    // Equal texts are paired in order: the n-th with the n-th.
    void equalTextsPairInOrder()
    {
        const auto part = nib::CompiledNib::fromData(fixture(u"equal-texts"_qs), nullptr);
        const QList<LocalizableString> primary{{u"43"_qs, u"NSTextFieldCell"_qs, u"title"_qs, u"Text Cell"_qs, {}},
                                               {u"45"_qs, u"NSTextFieldCell"_qs, u"title"_qs, u"Text Cell"_qs, {}}};
        StringMap t;
        t.insert(u"43.title"_qs, u"Schlüssel"_qs);
        t.insert(u"45.title"_qs, u"Wert"_qs);
        const StringMap mapped = nib::NibBundle::translationsFor(*part, primary, t);
        QCOMPARE(mapped.value(u"7.title"_qs), u"Schlüssel"_qs);
        QCOMPARE(mapped.value(u"9.title"_qs), u"Wert"_qs);
    }

    // A nib folder holding one file (its bytes as Latin-1 text) that is no readable nib, and a
    // piece of the reason.
    void unreadableFoldersSayWhy_data() { TestSupport::addCaseRows(u"interface/nib-folder-refusals.tsv"_qs, {"file", "bytes", "reason"}); }
    void unreadableFoldersSayWhy()
    {
        QFETCH(QString, file);
        QFETCH(QString, bytes);
        QFETCH(QString, reason);
        const QString in = newFolder(u"Bad.nib"_qs);
        TestSupport::writeFile(in + u'/' + file, bytes.toLatin1());
        QString error;
        QVERIFY(!openInterfaceFile(in, &error));
        QVERIFY2(error.contains(reason), qPrintable(error));
    }

    // A designable.nib that cannot be read does not keep the compiled variants from being
    // localized; it is copied, with a warning.
    void unreadableDesignableIsCopied()
    {
        const QString in = newFolder(u"Half.nib"_qs);
        TestSupport::writeFile(in + u"/designable.nib"_qs, "<?xml version=\"1.0\"?><archive><broken");
        TestSupport::writeFile(in + u"/keyedobjects.nib"_qs, fixture(u"window"_qs));
        QString error;
        const auto folder = openInterfaceFile(in, &error);
        QVERIFY2(folder, qPrintable(error));
        StringMap t;
        t.insert(u"5.title"_qs, u"Réglages"_qs);
        const QString out = QFileInfo(in).absolutePath() + u"/out.nib"_qs;
        QVERIFY2(folder->write(out, t, &error), qPrintable(error));
        QCOMPARE(TestSupport::readFile(out + u"/designable.nib"_qs), TestSupport::readFile(in + u"/designable.nib"_qs));
        QVERIFY(folder->warnings().join(u'\n').contains(u"designable.nib"_qs));
        QCOMPARE(table(*openInterfaceFile(out, &error)).value(u"5.title"_qs), u"Réglages"_qs);
        QCOMPARE(openInterfaceFile(out, &error)->strings().size(), folder->strings().size());
    }
};

QTEST_GUILESS_MAIN(TestNib)
#include "test_nib.moc"
