// vocabrix-ibtool and vocabrix-nibtool as the handlers run them: separate programs with the old
// tools' command lines, answers on standard output, reasons on standard error, exit statuses.
// Listings are golden files under tests/data/interface/tools/, refusals a case table.

#include "InterfaceCases.h"
#include "IbtoolTable.h"
#include "StringUtility.h"
#include "nib/CompiledNib.h"
#include "nibtool/NibtoolListing.h"

#include <QStringDecoder>
#include <QTest>

using namespace interface;
using namespace TestSupport;

namespace {

QString xibData(const char *name) { return dataDir(u"interface/xib/"_qs) + QLatin1String(name); }

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
        const QByteArray window = readFile(dataDir(u"interface/nib/window-nibarchive.nib"_qs));
        m_box.write(u"Window.nib"_qs, window);
        // The same window, localized: what a previous release would hold.
        const auto base = nib::CompiledNib::fromData(window, nullptr);
        StringMap fr;
        fr.insert(u"5.title"_qs, u"Préférences"_qs);
        fr.insert(u"13.title"_qs, u"D'accord"_qs);
        fr.insert(u"21.title"_qs, u"Nom :"_qs);
        fr.insert(u"30.title"_qs, QString());  // emptied there: the dictionary's word, not nothing
        m_box.write(u"fr/Window.nib"_qs, base->localizedData(fr));
        m_box.write(u"fr.strings"_qs, utf16le(u"\n/* c */\n\"1.title\" = \"Préférences\";\n\"404.title\" = \"gone\";\n"_qs));
        m_box.write(u"de.strings"_qs, "\"1.title\" = \"Einstellungen\";\n\"11.title\" = \"Gut\";\n");
        m_box.write(u"Old.nib/designable.nib"_qs, readFile(xibData("legacy/in.xib")));
        m_box.write(u"old.strings"_qs, "\"5.title\" = \"Réglages\";");
        QDir().mkpath(path(u"out"_qs));
        m_box.write(u"dict.strings"_qs, "\"Name:\" = \"Nom (dictionnaire)\";\n\"Options\" = \"Réglages\";\n\"Left\" = \"Gauche\";\n");
    }

    // Each run's output against its expected file; UTF-16 output (tables) is compared as text.
    void runs_data() { addCaseRows(u"interface/tools/runs.tsv"_qs, {"tool", "args", "written", "golden", "warning"}); }
    void runs()
    {
        QFETCH(QString, tool);
        QFETCH(QString, args);
        QFETCH(QString, written);
        QFETCH(QString, golden);
        QFETCH(QString, warning);
        if (written != u"-") QFile::remove(path(written));
        const Run r = run(args.split(u' '), qPrintable(tool));
        QVERIFY2(r.exitCode == 0, r.err.constData());
        if (warning.isEmpty()) QVERIFY2(r.err.isEmpty(), r.err.constData());
        else QVERIFY2(QString::fromUtf8(r.err).contains(warning), r.err.constData());
        if (tool == u"vocabrix-ibtool") QVERIFY2(r.out.contains("<dict/>"), r.out.constData());
        const QByteArray out = written == u"-" ? r.out : m_box.read(written);
        const QString text = out.startsWith("\xFF\xFE") ? utf16Text(out) : QString::fromUtf8(out);
        QVERIFY(compareText(text, dataDir(u"interface/"_qs) + golden));
    }

    // Without -8 the older tool writes UTF-16 big-endian with a mark.
    void nibtoolWritesUtf16Unless8()
    {
        const Run utf16 = run({u"-L"_qs, u"Window.nib"_qs}), utf8 = run({u"-L"_qs, u"-8"_qs, u"Window.nib"_qs});
        QVERIFY(utf16.out.startsWith("\xFE\xFF"));
        QCOMPARE(QString(QStringDecoder(QStringDecoder::Utf16BE)(utf16.out.mid(2))), QString::fromUtf8(utf8.out));
    }

    // The newer tool's table and merge on a compiled nib, keyed by object id: a shared text
    // translated for one of its users only.
    void ibtoolTakesCompiledNibs()
    {
        QString error;
        m_box.write(u"ib-fr.strings"_qs, "\"13.title\" = \"Valider\";\n");
        const Run merged = run({u"Window.nib"_qs, u"--strings-file"_qs, u"ib-fr.strings"_qs, u"--write"_qs, path(u"ib-out.nib"_qs)},
                               "vocabrix-ibtool");
        QVERIFY2(merged.exitCode == 0, merged.err.constData());
        const auto written = openInterfaceFile(path(u"ib-out.nib"_qs), &error);
        QVERIFY2(written, qPrintable(error));
        QCOMPARE(valuesOf(*written).value(u"13.title"_qs), u"Valider"_qs);
        QCOMPARE(valuesOf(*written).value(u"11.title"_qs), u"OK"_qs);
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
        const QByteArray bytes = readFile(dataDir(u"interface/nib/marker-in-title-keyed.nib"_qs));
        const auto blocks = nibtool::listingBlocks(*nib::CompiledNib::fromData(bytes, nullptr));
        QCOMPARE(blocks.size(), 1);
        QCOMPARE(StringUtility::substringFrom(blocks[0].comment, u"> ("_qs, u")"_qs), OptString(u"oid:77"_qs));
        QVERIFY(!blocks[0].comment.mid(2, blocks[0].comment.size() - 4).contains(u"*/"_qs));
        QCOMPARE(blocks[0].text, u"a > (b) */ c"_qs);
    }
};

QTEST_GUILESS_MAIN(TestInterfaceTools)
#include "test_interface_tools.moc"
