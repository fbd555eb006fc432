// vocabrix-ibtool and vocabrix-nibtool as the handlers run them: separate programs with the old
// tools' command lines, answers on standard output, reasons on standard error, exit statuses.
// Listings are golden files under tests/data/interface/tools/, refusals a case table.

#include "InterfaceCases.h"
#include "IbtoolTable.h"
#include "NibFixtures.h"
#include "StringUtility.h"
#include "nib/CompiledNib.h"
#include "nibtool/NibtoolListing.h"

#include <QStringDecoder>
#include <QTest>

using namespace interface;
using namespace TestSupport;

namespace {

QString xibData(const char *name) { return dataDir(u"interface/xib/"_qs) + QLatin1String(name); }
QString toolData(const QString &name) { return dataDir(u"interface/tools/"_qs) + name; }

QString utf16Text(const QByteArray &bytes)
{
    if (!bytes.startsWith("\xFF\xFE")) return QString();
    return QString::fromUtf16(reinterpret_cast<const char16_t *>(bytes.constData() + 2), (bytes.size() - 2) / 2);
}

QHash<QString, QString> valuesOf(const InterfaceFile &file)
{
    QHash<QString, QString> values;
    for (const LocalizableString &s : file.strings()) values.insert(s.key(), s.value);
    return values;
}

}  // namespace

class TestInterfaceTools : public QObject {
    Q_OBJECT
    Sandbox m_box;

    Run run(const QStringList &args, const char *tool = "vocabrix-nibtool")
    {
        return runProgram(toolPath(QLatin1String(tool)), args, m_box.path());
    }
    QString path(const QString &name) const { return m_box.path(name); }

private slots:
    void initTestCase()
    {
        for (const char *tool : {"vocabrix-ibtool", "vocabrix-nibtool"})
            if (!QFileInfo(toolPath(QLatin1String(tool))).isExecutable())
                QFAIL(qPrintable(toolPath(QLatin1String(tool)) + u" is not built (VOCABRIX_TOOLS_DIR)"_qs));
        m_box.write(u"Prefs.xib"_qs, readFile(xibData("cocoa/in.xib")));
        m_box.write(u"Broken.xib"_qs, "<?xml version=\"1.0\"?>\n<document>\n<objects></document>\n");
        m_box.write(u"bad.strings"_qs, "\"1.title\" = \"unterminated;\n");
        m_box.write(u"Window.nib"_qs, NibFixtures::windowModel().b.toNibArchive());
        // The same window, localized: what a previous release would hold.
        const auto base = nib::CompiledNib::fromData(NibFixtures::windowModel().b.toNibArchive(), nullptr);
        StringMap fr;
        fr.insert(u"5.title"_qs, u"Préférences"_qs);
        fr.insert(u"13.title"_qs, u"D'accord"_qs);
        fr.insert(u"21.title"_qs, u"Nom :"_qs);
        m_box.write(u"fr/Window.nib"_qs, base->localizedData(fr));
        m_box.write(u"dict.strings"_qs, "\"Name:\" = \"Nom (dictionnaire)\";\n\"Options\" = \"Réglages\";\n\"Left\" = \"Gauche\";\n");
    }

    void ibtoolGeneratesTheTable_data()
    {
        QTest::addColumn<QStringList>("args");
        QTest::newRow("ibtool's spelling") << QStringList{u"--generate-strings-file"_qs, u"out.strings"_qs, u"Prefs.xib"_qs};
        QTest::newRow("older spelling") << QStringList{u"--generate-stringsfile"_qs, u"out.strings"_qs, u"Prefs.xib"_qs};
        QTest::newRow("document first") << QStringList{u"Prefs.xib"_qs, u"--generate-strings-file"_qs, u"out.strings"_qs};
    }
    void ibtoolGeneratesTheTable()
    {
        QFETCH(QStringList, args);
        QFile::remove(path(u"out.strings"_qs));
        const Run r = run(args, "vocabrix-ibtool");
        QCOMPARE(r.exitCode, 0);
        QVERIFY2(r.out.contains("<dict/>"), r.out.constData());
        QCOMPARE(utf16Text(m_box.read(u"out.strings"_qs)), QString::fromUtf8(readFile(xibData("cocoa/table.strings"))));
    }

    // A UTF-16 table as ibtool writes it, and a UTF-8 one as projects keep them; a key the file
    // lacks is reported, not a failure.
    void ibtoolMergesATable()
    {
        m_box.write(u"fr.strings"_qs, utf16le(u"\n/* c */\n\"1.title\" = \"Préférences\";\n\"404.title\" = \"gone\";\n"_qs));
        m_box.write(u"de.strings"_qs, "\"1.title\" = \"Einstellungen\";\n\"11.title\" = \"Gut\";\n");
        QDir().mkpath(path(u"out"_qs));
        Run r = run({u"Prefs.xib"_qs, u"--strings-file"_qs, u"fr.strings"_qs, u"--write"_qs, path(u"out/Prefs.xib"_qs)},
                    "vocabrix-ibtool");
        QCOMPARE(r.exitCode, 0);
        QVERIFY2(r.err.contains("404.title"), r.err.constData());
        QByteArray expected = readFile(xibData("cocoa/in.xib"));
        expected.replace("Prefs &amp; More", "Pr\xC3\xA9" "f\xC3\xA9rences");
        QCOMPARE(m_box.read(u"out/Prefs.xib"_qs), expected);

        r = run({u"--strings-file"_qs, u"de.strings"_qs, u"--write"_qs, u"de.xib"_qs, u"--generate-strings-file"_qs,
                 u"base.strings"_qs, u"Prefs.xib"_qs},
                "vocabrix-ibtool");
        QCOMPARE(r.exitCode, 0);
        const QByteArray de = m_box.read(u"de.xib"_qs);
        QVERIFY(de.contains("title=\"Einstellungen\"") && de.contains("title=\"Gut\""));
        QCOMPARE(utf16Text(m_box.read(u"base.strings"_qs)), QString::fromUtf8(readFile(xibData("cocoa/table.strings"))));
    }

    void ibtoolReadsNibFolderDesignable()
    {
        m_box.write(u"Old.nib/designable.nib"_qs, readFile(xibData("legacy/in.xib")));
        m_box.write(u"old.strings"_qs, "\"5.title\" = \"Réglages\";");
        Run r = run({u"--generate-strings-file"_qs, u"o.strings"_qs, u"Old.nib"_qs}, "vocabrix-ibtool");
        QCOMPARE(r.exitCode, 0);
        QVERIFY(utf16Text(m_box.read(u"o.strings"_qs)).contains(u"\"5.title\" = \"Preferences\";"_qs));
        QDir().mkpath(path(u"fr"_qs));
        r = run({u"Old.nib"_qs, u"--strings-file"_qs, u"old.strings"_qs, u"--write"_qs, u"fr/Old.nib"_qs}, "vocabrix-ibtool");
        QCOMPARE(r.exitCode, 0);
        QVERIFY(m_box.read(u"fr/Old.nib/designable.nib"_qs).contains("R\xC3\xA9glages"));
    }

    // The newer tool's table and merge on a compiled nib, keyed by object id: a shared text
    // translated for one of its users only.
    void ibtoolTakesCompiledNibs()
    {
        QCOMPARE(run({u"--generate-strings-file"_qs, u"ib.strings"_qs, u"Window.nib"_qs}, "vocabrix-ibtool").exitCode, 0);
        QString error;
        const auto table = readStringsTable(path(u"ib.strings"_qs), &error);
        QVERIFY2(table, qPrintable(error));
        QCOMPARE(table->value(u"13.title"_qs), u"OK"_qs);
        QCOMPARE(table->size(), 12);
        m_box.write(u"ib-fr.strings"_qs, "\"13.title\" = \"Valider\";\n");
        const Run merged = run({u"Window.nib"_qs, u"--strings-file"_qs, u"ib-fr.strings"_qs, u"--write"_qs, path(u"ib-out.nib"_qs)},
                               "vocabrix-ibtool");
        QVERIFY2(merged.exitCode == 0, merged.err.constData());
        const auto written = openInterfaceFile(path(u"ib-out.nib"_qs), &error);
        QVERIFY2(written, qPrintable(error));
        QCOMPARE(valuesOf(*written).value(u"13.title"_qs), u"Valider"_qs);
        QCOMPARE(valuesOf(*written).value(u"11.title"_qs), u"OK"_qs);
    }

    // The older tool's listing: one block per text in code-unit order; with -I each object's
    // word from the previous version, with -d the rest by text (-I first). UTF-16 unless -8.
    void nibtoolListings_data()
    {
        QTest::addColumn<QStringList>("args");
        QTest::addColumn<QString>("golden");
        QTest::newRow("plain") << QStringList{u"-L"_qs, u"-8"_qs, u"Window.nib"_qs} << u"listing.strings"_qs;
        QTest::newRow("previous version and dictionary")
            << QStringList{u"-L"_qs, u"-8"_qs, u"-I"_qs, u"fr/Window.nib"_qs, u"-d"_qs, u"dict.strings"_qs, u"Window.nib"_qs}
            << u"listing-previous-dictionary.strings"_qs;
        QTest::newRow("unreadable previous version left out")
            << QStringList{u"-L"_qs, u"-8"_qs, u"-I"_qs, u"nowhere/Window.nib"_qs, u"Window.nib"_qs} << u"listing.strings"_qs;
    }
    void nibtoolListings()
    {
        QFETCH(QStringList, args);
        QFETCH(QString, golden);
        const Run r = run(args);
        QCOMPARE(r.exitCode, 0);
        QCOMPARE(r.err.contains("warning"), args.contains(u"nowhere/Window.nib"_qs));
        QVERIFY(compareText(QString::fromUtf8(r.out), toolData(golden)));
        if (args.size() > 3) return;
        const Run utf16 = run({u"-L"_qs, u"Window.nib"_qs});
        QVERIFY(utf16.out.startsWith("\xFE\xFF"));
        QCOMPARE(QString(QStringDecoder(QStringDecoder::Utf16BE)(utf16.out.mid(2))), QString::fromUtf8(r.out));
    }

    // Merge by text: every string with a table key's text takes its value, shared or not.
    void nibtoolMergesByText_data()
    {
        QTest::addColumn<QString>("file");
        QTest::addColumn<int>("translated");
        QTest::newRow("compiled nib") << u"Window.nib"_qs << 2;
        QTest::newRow("xib") << u"Prefs.xib"_qs << 1;
    }
    void nibtoolMergesByText()
    {
        QFETCH(QString, file);
        QFETCH(int, translated);
        m_box.write(u"merge--temp.strings"_qs, "/* NSButton (OK) : <title:OK> (oid:13) */\n\"OK\" = \"Oui\";\n\n\"Unknown\" = \"X\";\n\n");
        const QString out = path(u"out/"_qs + file);
        QDir().mkpath(path(u"out"_qs));
        const Run r = run({u"-8"_qs, u"-d"_qs, u"merge--temp.strings"_qs, u"-w"_qs, out, file});
        QVERIFY2(r.exitCode == 0, r.err.constData());
        QString error;
        const auto written = openInterfaceFile(out, &error);
        QVERIFY2(written, qPrintable(error));
        const QStringList values = valuesOf(*written).values();
        QVERIFY(!values.contains(u"OK"_qs));
        QCOMPARE(values.count(u"Oui"_qs), translated);
    }

    void refusals_data()
    {
        addCaseRows(u"interface/tools/failures.tsv"_qs, {"tool", "args", "status", "message"});
    }
    void refusals()
    {
        QFETCH(QString, tool);
        QFETCH(QString, args);
        QFETCH(QString, status);
        QFETCH(QString, message);
        const Run r = run(args.split(u' '), qPrintable(tool));
        QCOMPARE(r.exitCode, status.toInt());
        QVERIFY(!r.err.isEmpty());
        QVERIFY2(QString::fromUtf8(r.err).contains(message), r.err.constData());
        // ibtool answers a failure with its errors list; nibtool prints nothing.
        if (tool == u"vocabrix-nibtool") QVERIFY(r.out.isEmpty());
        else if (r.exitCode == 1) QVERIFY2(r.out.contains("com.apple.ibtool.errors"), r.out.constData());
        QVERIFY(!QFileInfo::exists(path(u"never.xib"_qs)) && !QFileInfo::exists(path(u"never.nib"_qs)));
    }

    // Titles holding "> (" or "*/" would mislead whoever reads the comment: the comment shows
    // them defused, and the marker found the way the handler looks for it is the object's.
    void commentsKeepTheMarkerFindable()
    {
        NibFixtures::Builder b;
        const int cell = b.add(u"NSButtonCell"_qs, {{u"NSContents"_qs, NibFixtures::Ref{b.string(u"a > (b) */ c"_qs)}}});
        b.objectData(cell, {{cell, 77}});
        const auto blocks = nibtool::listingBlocks(*nib::CompiledNib::fromData(b.toKeyedArchive(), nullptr));
        QCOMPARE(blocks.size(), 1);
        QCOMPARE(StringUtility::substringFrom(blocks[0].comment, u"> ("_qs, u")"_qs), OptString(u"oid:77"_qs));
        QVERIFY(!blocks[0].comment.mid(2, blocks[0].comment.size() - 4).contains(u"*/"_qs));
        QCOMPARE(blocks[0].text, u"a > (b) */ c"_qs);
    }
};

QTEST_GUILESS_MAIN(TestInterfaceTools)
#include "test_interface_tools.moc"
