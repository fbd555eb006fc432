// The strings of a compiled nib and the copy written with translations, in both containers:
// which places are listed and under which key, how ids are made where the nib has no xib ids,
// and that a translation changes its own place only (a string shared by two controls).

#include "NibFixtures.h"
#include "TestSupport.h"
#include "nib/CompiledNib.h"
#include "nib/KeyedArchiveGraph.h"
#include "nib/NibArchiveGraph.h"

#include <QTest>

using namespace interface;
using namespace interface::nib;
using NibFixtures::Builder;
using NibFixtures::Ref;

namespace {

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

}  // namespace

class TestNibStrings : public QObject {
    Q_OBJECT

private slots:
    void listsEveryPlaceOnce_data() { addForms(); }
    void listsEveryPlaceOnce()
    {
        QFETCH(QString, form);
        const auto nib = open(bytesOf(NibFixtures::windowModel().b, form));
        QVERIFY(nib);
        QStringList rows;
        for (const LocalizableString &s : nib->strings())
            rows.append(s.key() + u'|' + s.className + u'|' + s.value);
        // ibtool's order; the box's title cell only under the box; the pop-up cell, the empty
        // alternate title and the help connector's kind are not listed.
        const QStringList expected{
            u"5.title|NSWindow|Preferences"_qs,
            u"10.ibShadowedToolTip|NSButton|Press me"_qs,
            u"11.title|NSButtonCell|OK"_qs,
            u"13.title|NSButtonCell|OK"_qs,
            u"21.placeholderString|NSTextFieldCell|Your name"_qs,
            u"21.title|NSTextFieldCell|Name:"_qs,
            u"30.title|NSBox|Options"_qs,
            u"40.headerCell.title|NSTableColumn|Name"_qs,
            u"40.headerToolTip|NSTableColumn|The name"_qs,
            u"50.ibShadowedLabels[0]|NSSegmentedCell|Left"_qs,
            u"50.ibShadowedLabels[1]|NSSegmentedCell|Right"_qs,
            u"60.ibShadowedIsNilPlaceholder|CocoaBindingsConnection|None"_qs,
        };
        QCOMPARE(rows, expected);
    }

    // A shared string translated for one control: the other keeps its text.
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
    }

    void bothUsersTranslatedGetTheirWords_data() { addForms(); }
    void bothUsersTranslatedGetTheirWords()
    {
        QFETCH(QString, form);
        const auto nib = open(bytesOf(NibFixtures::windowModel().b, form));
        StringMap t;
        t.insert(u"11.title"_qs, u"Oui"_qs);
        t.insert(u"13.title"_qs, u"D'accord"_qs);
        t.insert(u"5.title"_qs, u"Préférences « générales »\n\"deux\" lignes"_qs);
        t.insert(u"99.title"_qs, u"nobody"_qs);
        const auto copy = open(nib->localizedData(t));
        QVERIFY(copy);
        const auto got = table(*copy);
        QCOMPARE(got.value(u"11.title"_qs), u"Oui"_qs);
        QCOMPARE(got.value(u"13.title"_qs), u"D'accord"_qs);
        QCOMPARE(got.value(u"5.title"_qs), u"Préférences « générales »\n\"deux\" lignes"_qs);
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
        QVERIFY(nib->write(dir.filePath(u"W.nib"_qs), t, &error));
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
};

QTEST_GUILESS_MAIN(TestNibStrings)
#include "test_nib_strings.moc"
