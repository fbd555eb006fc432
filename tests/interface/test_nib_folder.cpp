// Nib folders: every compiled variant is read and written consistently, designable.nib gives
// the ids when it is there (the variants' own ids differ and are paired by text), other files
// are copied, and a written folder replaces what stood at its place only once complete.

#include "CaseData.h"
#include "InterfaceFile.h"
#include "NibFixtures.h"
#include "TestSupport.h"
#include "nib/CompiledNib.h"
#include "nib/NibBundle.h"

#include <QTest>

using namespace interface;
using NibFixtures::Builder;
using NibFixtures::Ref;

namespace {

QHash<QString, QString> table(const InterfaceFile &f)
{
    QHash<QString, QString> t;
    for (const LocalizableString &s : f.strings()) t.insert(s.key(), s.value);
    return t;
}

QStringList values(const InterfaceFile &f)
{
    QStringList v;
    for (const LocalizableString &s : f.strings()) v.append(s.value);
    return v;
}

// The strings of TestSupport::readFile(TestSupport::dataDir(u"interface/xib/legacy/in.xib"_qs)) under the ids a compiler gave them: 100..104, the
// box's title and the text field showing one shared string.
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

class TestNibFolder : public QObject {
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

QTEST_GUILESS_MAIN(TestNibFolder)
#include "test_nib_folder.moc"
