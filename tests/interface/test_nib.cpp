// Compiled nibs, built for the tests in both containers (NIBArchive and keyed archive): the
// NIBArchive container's exact round trips, varints at their byte boundaries and damaged archives
// refused; which places are listed under which key and how ids are made; a translation changing
// its own place only; nib folders, whose compiled variants are written together, paired with
// designable.nib by text, other files copied, the folder replaced only once complete.

#include "CaseData.h"
#include "IbtoolTable.h"
#include "InterfaceFile.h"
#include "NibFixtures.h"
#include "nib/CompiledNib.h"
#include "nib/KeyedArchiveGraph.h"
#include "nib/NibArchive.h"
#include "nib/NibArchiveGraph.h"
#include "nib/NibBundle.h"

#include <QTest>

using namespace interface;
using namespace interface::nib;
using NibFixtures::Builder;
using NibFixtures::Ref;

namespace {

QByteArray smallArchive(int dataLength)
{
    Builder b;
    const int text = b.string(QString(dataLength, u'x'));
    const int cell = b.add(QStringLiteral("NSButtonCell"), {{QStringLiteral("NSContents"), Ref{text}},
                                                            {QStringLiteral("NSTag"), qint64(-3)},
                                                            {QStringLiteral("NSEnabled"), true}});
    b.objectData(cell, {{cell, 7}});
    return b.toNibArchive();
}

void putLittleEndian(QByteArray &bytes, int at, quint32 v)
{
    for (int i = 0; i < 4; ++i) bytes[at + i] = char((v >> (8 * i)) & 0xff);
}

QByteArray bytesOf(const Builder &b, const QString &form)
{
    return form == QLatin1String("nibarchive") ? b.toNibArchive() : b.toKeyedArchive();
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

void addForms()
{
    QTest::addColumn<QString>("form");
    QTest::newRow("NIBArchive") << QStringLiteral("nibarchive");
    QTest::newRow("keyed archive") << QStringLiteral("keyed");
}

QStringList values(const InterfaceFile &f)
{
    QStringList v;
    for (const LocalizableString &s : f.strings()) v.append(s.value);
    return v;
}

// The strings of the legacy xib case under the ids a compiler gave them: 100..104, the box's
// title and the text field showing one shared string.
Builder compiledLegacy()
{
    Builder b;
    const int window = b.add(u"NSWindowTemplate"_qs, {{u"NSWindowTitle"_qs, Ref{b.string(u"Preferences"_qs)}}});
    const int cell = b.add(u"NSButtonCell"_qs, {{u"NSContents"_qs, Ref{b.string(u"Mark all read:\n"_qs)}}});
    const int shared = b.string(u"Shared"_qs);
    const int titleCell = b.add(u"NSTextFieldCell"_qs, {{u"NSContents"_qs, Ref{shared}}});
    const int box = b.add(u"NSBox"_qs, {{u"NSTitleCell"_qs, Ref{titleCell}}});
    const int fieldCell = b.add(u"NSTextFieldCell"_qs, {{u"NSContents"_qs, Ref{shared}}});
    const int menu = b.add(u"NSMenu"_qs, {{u"NSTitle"_qs, Ref{b.string(u"OtherViews"_qs, u"NSMutableString"_qs)}}});
    b.objectData(window, {{window, 100}, {cell, 101}, {box, 102}, {fieldCell, 103}, {menu, 104}});
    return b;
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

    void listsEveryPlaceOnce_data() { addForms(); }
    void listsEveryPlaceOnce()
    {
        QFETCH(QString, form);
        const auto nib = open(bytesOf(NibFixtures::windowModel().b, form));
        QVERIFY(nib);
        // Keys, classes and texts in ibtool's order; the box's title cell only under the box; the
        // pop-up cell, the empty alternate title and the help connector's kind are not listed.
        QVERIFY(TestSupport::compareText(ibtoolTableText(nib->strings()),
                                         TestSupport::dataDir(u"interface/tools/window-table.strings"_qs)));
    }

    // A shared string translated for one control: the other keeps its text; translated for
    // both, each gets its word.
    void sharedStringChangesOnlyWhereAsked_data() { addForms(); }
    void sharedStringChangesOnlyWhereAsked()
    {
        QFETCH(QString, form);
        const auto nib = open(bytesOf(NibFixtures::windowModel().b, form));
        StringMap t;
        t.insert(u"11.title"_qs, u"Oui"_qs);
        int replaced = 0;
        const auto copy = open(nib->localizedData(t, &replaced));
        QVERIFY(copy);
        QCOMPARE(replaced, 1);
        QCOMPARE(table(*copy).value(u"11.title"_qs), u"Oui"_qs);
        QCOMPARE(table(*copy).value(u"13.title"_qs), u"OK"_qs);
        // One new string object; every other object keeps its index, so ids stay.
        QCOMPARE(copy->graph().objectCount(), nib->graph().objectCount() + 1);
        QCOMPARE(table(*copy).keys().size(), table(*nib).keys().size());

        t.insert(u"13.title"_qs, u"D'accord"_qs);
        t.insert(u"5.title"_qs, u"Préférences « générales »\n\"deux\" lignes"_qs);
        t.insert(u"99.title"_qs, u"nobody"_qs);
        const auto both = open(nib->localizedData(t));
        QVERIFY(both);
        const auto got = table(*both);
        for (const char *key : {"11.title", "13.title", "5.title"}) QCOMPARE(got.value(QLatin1String(key)), t.value(QLatin1String(key)));
        QCOMPARE(got.value(u"21.title"_qs), u"Name:"_qs);
        QVERIFY(!got.contains(u"99.title"_qs));
    }

    // A string used once is changed where it is: nothing else in the archive moves.
    void unsharedStringChangesInPlace()
    {
        const auto w = NibFixtures::windowModel();
        const QByteArray bytes = w.b.toNibArchive();
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
        const auto nib = open(NibFixtures::windowModel().b.toKeyedArchive());
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

    // Base.lproj nibs carry each string's key: those are the keys, and they survive a write.
    void localizableStringsKeepTheirKeys_data() { addForms(); }
    void localizableStringsKeepTheirKeys()
    {
        QFETCH(QString, form);
        Builder b;
        const int title = b.localizable(u"Software Update"_qs, u"5.title"_qs, u"Software Update"_qs);
        const int window = b.add(u"NSWindowTemplate"_qs, {{u"NSWindowTitle"_qs, Ref{title}}});
        const int label = b.localizable(u"Notes:"_qs, u"170.title"_qs, u"Notes:"_qs);
        const int cell = b.add(u"NSTextFieldCell"_qs, {{u"NSContents"_qs, Ref{label}}});
        // A plain string at a listed place is not part of a Base nib's table.
        const int plain = b.add(u"NSButtonCell"_qs, {{u"NSContents"_qs, Ref{b.string(u"Plain"_qs)}}});
        b.objectData(window, {{window, 1}, {cell, 2}, {plain, 3}});
        const auto nib = open(bytesOf(b, form));
        QVERIFY(nib);
        QStringList rows;
        for (const LocalizableString &s : nib->strings()) rows.append(s.key() + u'|' + s.className + u'|' + s.value);
        QCOMPARE(rows, (QStringList{u"5.title|NSWindow|Software Update"_qs, u"170.title|NSTextFieldCell|Notes:"_qs}));

        StringMap t;
        t.insert(u"170.title"_qs, u"Notes de version :"_qs);
        const auto copy = open(nib->localizedData(t));
        QVERIFY(copy);
        QCOMPARE(table(*copy).value(u"170.title"_qs), u"Notes de version :"_qs);
        // The development text stays with the string.
        const auto holder = copy->found().last().places.first();
        const auto str = copy->graph().target(holder);
        const auto dev = copy->graph().reference(*str, u"NSDev"_qs);
        QCOMPARE(copy->graph().text(*dev), std::optional<QString>(u"Notes:"_qs));
    }

    // IB 2 nibs numbered controls only; ibtool numbered their cells after NSNextOid, in the
    // order of a walk of the object tree (children by oid), so a control in a second top-level
    // view comes after the window's even with a smaller oid.
    void ib2CellsAreNumberedAfterNextOid_data() { addForms(); }
    void ib2CellsAreNumberedAfterNextOid()
    {
        QFETCH(QString, form);
        Builder b;
        const int owner = b.add(u"NSCustomObject"_qs);
        const int window = b.add(u"NSWindowTemplate"_qs);
        const int extra = b.add(u"NSCustomView"_qs);
        const auto button = [&b](const char *title) {
            const int cell = b.add(u"NSButtonCell"_qs, {{u"NSContents"_qs, Ref{b.string(QString::fromUtf8(title))}}});
            return b.add(u"NSButton"_qs, {{u"NSCell"_qs, Ref{cell}}});
        };
        const int b1 = button("First");
        const int b2 = button("Second");
        const int b3 = button("Elsewhere");
        b.objectData(owner, {{owner, -2}, {window, 5}, {extra, 8}, {b1, 20}, {b2, 9}, {b3, 7}},
                     {{window, owner}, {extra, owner}, {b1, window}, {b2, window}, {b3, extra}}, 30);
        const auto nib = open(bytesOf(b, form));
        QVERIFY(nib);
        const auto t = table(*nib);
        QCOMPARE(t.value(u"31.title"_qs), u"Second"_qs);
        QCOMPARE(t.value(u"32.title"_qs), u"First"_qs);
        QCOMPARE(t.value(u"33.title"_qs), u"Elsewhere"_qs);
    }

    // Without an id table every string still has a key of its own, the same after a write.
    void ownIdsAreStable_data() { addForms(); }
    void ownIdsAreStable()
    {
        QFETCH(QString, form);
        Builder b;
        const int shared = b.string(u"Same"_qs);
        const int c1 = b.add(u"NSButtonCell"_qs, {{u"NSContents"_qs, Ref{shared}}});
        b.add(u"NSButtonCell"_qs, {{u"NSContents"_qs, Ref{shared}}});
        b.setObjectData(c1);
        const auto nib = open(bytesOf(b, form));
        QVERIFY(nib);
        const QStringList keys = table(*nib).keys();
        QCOMPARE(keys.size(), 2);
        for (const QString &k : keys) QVERIFY2(k.startsWith(u'o') && k.endsWith(u".title"_qs), qPrintable(k));
        StringMap t;
        t.insert(nib->strings().first().key(), u"Autre"_qs);
        const auto copy = open(nib->localizedData(t));
        QCOMPARE(table(*copy).keys().size(), 2);
        for (const LocalizableString &s : nib->strings()) QVERIFY(table(*copy).contains(s.key()));
        QCOMPARE(table(*copy).value(nib->strings().first().key()), u"Autre"_qs);
        QCOMPARE(table(*copy).value(nib->strings().last().key()), u"Same"_qs);
    }

    // Custom subclasses and class swappers are read as the framework class they stand for.
    void customClassesReadAsTheirFrameworkClass()
    {
        Builder b;
        b.setSuperclasses(u"FancyButtonCell"_qs, {u"FancyButtonCell"_qs, u"NSButtonCell"_qs, u"NSActionCell"_qs,
                                                  u"NSCell"_qs, u"NSObject"_qs});
        const int fancy = b.add(u"FancyButtonCell"_qs, {{u"NSContents"_qs, Ref{b.string(u"Fancy"_qs)}}});
        const int swapped = b.add(u"NSClassSwapper"_qs, {{u"NSOriginalClassName"_qs, Ref{b.string(u"NSTextFieldCell"_qs)}},
                                                          {u"NSClassName"_qs, Ref{b.string(u"MyCell"_qs)}},
                                                          {u"NSContents"_qs, Ref{b.string(u"Swapped"_qs)}}});
        b.objectData(fancy, {{fancy, 1}, {swapped, 2}});
        const auto nib = open(b.toKeyedArchive());
        QStringList rows;
        for (const LocalizableString &s : nib->strings()) rows.append(s.key() + u'|' + s.className + u'|' + s.value);
        QCOMPARE(rows, (QStringList{u"1.title|NSButtonCell|Fancy"_qs, u"2.title|NSTextFieldCell|Swapped"_qs}));
    }

    // Archives that are well-formed containers but odd graphs: no crash, no strings invented.
    void oddGraphsGiveWhatTheyCan()
    {
        Builder b;
        const int self = b.add(u"NSButtonCell"_qs);
        b.set(self, u"NSContents"_qs, Ref{self});         // refers to itself, not to a string
        const int loop = b.add(u"NSCustomObject"_qs);
        b.set(loop, u"NSNextResponder"_qs, Ref{loop});
        const int number = b.number(4);
        b.objectData(loop, {{self, 1}}, {{loop, loop}, {self, loop}}, 10);
        b.set(b.add(u"NSTextFieldCell"_qs), u"NSContents"_qs, Ref{number});  // a number, not text
        for (const QByteArray &bytes : {b.toNibArchive(), b.toKeyedArchive()}) {
            const auto nib = open(bytes);
            QVERIFY(nib);
            QVERIFY(nib->strings().isEmpty());
        }
        QString error;
        QVERIFY(!CompiledNib::fromData("bplist00 not really", &error));
        QVERIFY(!error.isEmpty());
        const QByteArray notArchive = plist::toBinary(plist::Value::fromArray({plist::Value::fromString(u"x"_qs)}));
        QVERIFY(!CompiledNib::fromData(notArchive, &error));
        QVERIFY(error.contains(u"keyed archive"_qs));
    }

    void variantsAreTranslatedTogether()
    {
        const auto w = NibFixtures::windowModel();
        const QString in = newFolder(u"Window.nib"_qs);
        TestSupport::writeFile(in + u"/keyedobjects.nib"_qs, w.b.toKeyedArchive());
        TestSupport::writeFile(in + u"/keyedobjects-101300.nib"_qs, w.b.toNibArchive());
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
        TestSupport::writeFile(in + u"/keyedobjects.nib"_qs, compiledLegacy().toKeyedArchive());
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
        Builder b;
        const int c1 = b.add(u"NSTextFieldCell"_qs, {{u"NSContents"_qs, Ref{b.string(u"Text Cell"_qs)}}});
        const int c2 = b.add(u"NSTextFieldCell"_qs, {{u"NSContents"_qs, Ref{b.string(u"Text Cell"_qs)}}});
        b.objectData(c1, {{c1, 7}, {c2, 9}});
        const auto part = nib::CompiledNib::fromData(b.toNibArchive(), nullptr);
        const QList<LocalizableString> primary{{u"43"_qs, u"NSTextFieldCell"_qs, u"title"_qs, u"Text Cell"_qs, {}},
                                               {u"45"_qs, u"NSTextFieldCell"_qs, u"title"_qs, u"Text Cell"_qs, {}}};
        StringMap t;
        t.insert(u"43.title"_qs, u"Schlüssel"_qs);
        t.insert(u"45.title"_qs, u"Wert"_qs);
        const StringMap mapped = nib::NibBundle::translationsFor(*part, primary, t);
        QCOMPARE(mapped.value(u"7.title"_qs), u"Schlüssel"_qs);
        QCOMPARE(mapped.value(u"9.title"_qs), u"Wert"_qs);
    }

    void unreadableFoldersSayWhy_data()
    {
        QTest::addColumn<QString>("file");
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<QString>("reason");
        QTest::newRow("no interface file") << u"objects.nib"_qs << QByteArray("\x04\x0btypedstream", 13) << u"neither"_qs;
        QTest::newRow("damaged variant") << u"keyedobjects.nib"_qs << QByteArray("NIBArchive\x01", 11) << u"keyedobjects.nib"_qs;
        QTest::newRow("damaged keyed archive") << u"keyedobjects.nib"_qs << QByteArray("bplist00\x00\x01", 10)
                                               << u"keyedobjects.nib"_qs;
    }
    void unreadableFoldersSayWhy()
    {
        QFETCH(QString, file);
        QFETCH(QByteArray, bytes);
        QFETCH(QString, reason);
        const QString in = newFolder(u"Bad.nib"_qs);
        TestSupport::writeFile(in + u'/' + file, bytes);
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
        TestSupport::writeFile(in + u"/keyedobjects.nib"_qs, NibFixtures::windowModel().b.toNibArchive());
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
        QCOMPARE(values(*openInterfaceFile(out, &error)).size(), values(*folder).size());
    }
};

QTEST_GUILESS_MAIN(TestNib)
#include "test_nib.moc"
