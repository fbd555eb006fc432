// vocabrix-nibtool as the nibtool handler runs it: the listing (-L -8, with -I and -d), the merge
// by text (-8 -d TABLE -w OUT), over compiled nibs and xibs alike; its failures as exit statuses.
// And vocabrix-ibtool's two operations on a compiled nib.

#include "Fixtures.h"
#include "NibFixtures.h"
#include "StringUtility.h"
#include "IbtoolTable.h"
#include "TestSupport.h"
#include "nib/CompiledNib.h"
#include "nibtool/NibtoolListing.h"

#include <QProcess>
#include <QRegularExpression>
#include <QStringDecoder>
#include <QTest>

using namespace interface;

namespace {

struct Run {
    int exitCode = -1;
    QByteArray out;
    QByteArray err;
};

QString toolPath(const char *name = "vocabrix-nibtool")
{
    return QDir(qEnvironmentVariable("VOCABRIX_TOOLS_DIR")).filePath(QString::fromLatin1(name));
}

Run runTool(const QStringList &args, const QString &workingDirectory, const char *tool = "vocabrix-nibtool")
{
    QProcess p;
    p.setWorkingDirectory(workingDirectory);
    p.start(toolPath(tool), args);
    Run r;
    if (!p.waitForStarted() || !p.waitForFinished(60'000)) return r;
    r.exitCode = p.exitStatus() == QProcess::NormalExit ? p.exitCode() : -2;
    r.out = p.readAllStandardOutput();
    r.err = p.readAllStandardError();
    return r;
}

// Key line per marker: "(oid:N)" -> the pair line that follows the comment.
QHash<QString, QString> pairsByMarker(const QString &listing)
{
    QHash<QString, QString> pairs;
    static const QRegularExpression block(QStringLiteral("> \\(([^)]*)\\) \\*/\\n(\"[^\\n]*\";)\\n"));
    auto it = block.globalMatch(listing);
    while (it.hasNext()) {
        const auto m = it.next();
        pairs.insert(m.captured(1), m.captured(2));
    }
    return pairs;
}

}  // namespace

class TestNibtoolTool : public QObject {
    Q_OBJECT

    QTemporaryDir m_dir;

    QString path(const QString &name) const { return m_dir.filePath(name); }

private slots:
    void initTestCase()
    {
        if (!QFileInfo(toolPath()).isExecutable())
            QFAIL(qPrintable(QStringLiteral("vocabrix-nibtool not found at %1 (VOCABRIX_TOOLS_DIR)").arg(toolPath())));
        TestSupport::writeFile(path(u"Window.nib"_qs), NibFixtures::windowModel().b.toNibArchive());
        TestSupport::writeFile(path(u"Prefs.xib"_qs), Fixtures::cocoaXib());
        // The same window, localized: what a previous release would hold.
        const auto base = nib::CompiledNib::fromData(NibFixtures::windowModel().b.toNibArchive(), nullptr);
        StringMap fr;
        fr.insert(u"5.title"_qs, u"Préférences"_qs);
        fr.insert(u"13.title"_qs, u"D'accord"_qs);
        fr.insert(u"21.title"_qs, u"Nom :"_qs);
        TestSupport::writeFile(path(u"fr/Window.nib"_qs), base->localizedData(fr));
        TestSupport::writeFile(path(u"dict.strings"_qs),
                               "\"Name:\" = \"Nom (dictionnaire)\";\n\"Options\" = \"Réglages\";\n\"Left\" = \"Gauche\";\n");
    }

    void listsOneBlockPerText()
    {
        const Run r = runTool({u"-L"_qs, u"-8"_qs, u"Window.nib"_qs}, m_dir.path());
        QCOMPARE(r.exitCode, 0);
        const QString listing = QString::fromUtf8(r.out);
        QVERIFY(listing.startsWith(u"/*"_qs));
        QVERIFY(listing.endsWith(u"\";\n\n"_qs));
        // Texts in code-unit order; each block one comment line, one pair line, one empty line.
        const QStringList blocks = listing.split(u"\n\n"_qs, Qt::SkipEmptyParts);
        QStringList keys;
        for (const QString &b : blocks) {
            const QStringList lines = b.split(u'\n');
            QCOMPARE(lines.size(), 2);
            keys.append(lines[1].section(u"\" = \""_qs, 0, 0).mid(1));
        }
        QStringList sortedKeys = keys;
        sortedKeys.sort();
        QCOMPARE(keys, sortedKeys);
        QCOMPARE(keys.count(u"OK"_qs), 1);
        QVERIFY(blocks.contains(u"/* NSButton (OK) : <title:OK> (oid:13) */\n\"OK\" = \"OK\";"_qs));
        QVERIFY(blocks.contains(u"/* NSWindow (Preferences) : <title:Preferences> (oid:5) */\n\"Preferences\" = \"Preferences\";"_qs));
        QVERIFY(blocks.contains(u"/* NSTableColumn : <headerCell.title:Name> (oid:40.headerCell.title) */\n\"Name\" = \"Name\";"_qs));
    }

    void utf16WithoutTheUtf8Option()
    {
        const Run r = runTool({u"-L"_qs, u"Window.nib"_qs}, m_dir.path());
        QCOMPARE(r.exitCode, 0);
        QVERIFY(r.out.startsWith("\xFE\xFF"));
        QStringDecoder utf16(QStringDecoder::Utf16BE);
        QCOMPARE(QString(utf16(r.out.mid(2))), QString::fromUtf8(runTool({u"-L"_qs, u"-8"_qs, u"Window.nib"_qs}, m_dir.path()).out));
    }

    // -I takes each object's word from the previous version, -d the rest by text; -I first.
    void valuesFromPreviousVersionThenDictionary()
    {
        const Run r = runTool({u"-L"_qs, u"-8"_qs, u"-I"_qs, path(u"fr/Window.nib"_qs), u"-d"_qs, path(u"dict.strings"_qs),
                               u"Window.nib"_qs},
                              m_dir.path());
        QCOMPARE(r.exitCode, 0);
        const auto pairs = pairsByMarker(QString::fromUtf8(r.out));
        QCOMPARE(pairs.value(u"oid:5"_qs), u"\"Preferences\" = \"Préférences\";"_qs);
        QCOMPARE(pairs.value(u"oid:13"_qs), u"\"OK\" = \"D'accord\";"_qs);
        QCOMPARE(pairs.value(u"oid:21"_qs), u"\"Name:\" = \"Nom :\";"_qs);           // both: -I wins
        QCOMPARE(pairs.value(u"oid:30"_qs), u"\"Options\" = \"Réglages\";"_qs);      // -d only
        QCOMPARE(pairs.value(u"oid:50.ibShadowedLabels[0]"_qs), u"\"Left\" = \"Gauche\";"_qs);
        QCOMPARE(pairs.value(u"oid:40.headerCell.title"_qs), u"\"Name\" = \"Name\";"_qs);  // neither
        // One object, two strings: two markers.
        QCOMPARE(pairs.value(u"oid:21.placeholderString"_qs), u"\"Your name\" = \"Your name\";"_qs);
    }

    void unreadablePreviousVersionIsLeftOut()
    {
        const Run r = runTool({u"-L"_qs, u"-8"_qs, u"-I"_qs, u"nowhere/Window.nib"_qs, u"Window.nib"_qs}, m_dir.path());
        QCOMPARE(r.exitCode, 0);
        QVERIFY(r.err.contains("warning"));
        QCOMPARE(pairsByMarker(QString::fromUtf8(r.out)).value(u"oid:5"_qs), u"\"Preferences\" = \"Preferences\";"_qs);
    }

    // Merge by text: every string with a table key's text takes its value, shared or not.
    void mergesByText_data()
    {
        QTest::addColumn<QString>("file");
        QTest::addColumn<QString>("text");
        QTest::newRow("compiled nib") << u"Window.nib"_qs << u"OK"_qs;
        QTest::newRow("xib") << u"Prefs.xib"_qs << u"OK"_qs;
    }
    void mergesByText()
    {
        QFETCH(QString, file);
        QFETCH(QString, text);
        TestSupport::writeFile(path(u"merge--temp.strings"_qs),
                               "/* NSButton (OK) : <title:OK> (oid:13) */\n\"OK\" = \"Oui\";\n\n\"Unknown\" = \"X\";\n\n");
        const QString out = path(u"out/"_qs + file);
        QDir().mkpath(path(u"out"_qs));
        const Run r = runTool({u"-8"_qs, u"-d"_qs, u"merge--temp.strings"_qs, u"-w"_qs, out, file}, m_dir.path());
        QVERIFY2(r.exitCode == 0, r.err.constData());
        QString error;
        const auto written = openInterfaceFile(out, &error);
        QVERIFY2(written, qPrintable(error));
        int translated = 0;
        for (const LocalizableString &s : written->strings()) {
            QVERIFY(s.value != text);
            if (s.value == QLatin1String("Oui")) ++translated;
        }
        QVERIFY(translated >= 1);
        if (file == QLatin1String("Window.nib")) QCOMPARE(translated, 2);
    }

    void failuresHaveStatusesAndReasons_data()
    {
        QTest::addColumn<QStringList>("args");
        QTest::addColumn<int>("status");
        QTest::newRow("missing file") << QStringList{u"-L"_qs, u"-8"_qs, u"Nothing.nib"_qs} << 1;
        QTest::newRow("not an interface file") << QStringList{u"-L"_qs, u"-8"_qs, u"dict.strings"_qs} << 1;
        QTest::newRow("no file") << QStringList{u"-L"_qs} << 2;
        QTest::newRow("nothing to do") << QStringList{u"-8"_qs, u"Window.nib"_qs} << 2;
        QTest::newRow("write without table") << QStringList{u"-w"_qs, u"x.nib"_qs, u"Window.nib"_qs} << 2;
        QTest::newRow("unknown option") << QStringList{u"--frobnicate"_qs, u"Window.nib"_qs} << 2;
        QTest::newRow("unreadable table") << QStringList{u"-d"_qs, u"none.strings"_qs, u"-w"_qs, u"never.nib"_qs, u"Window.nib"_qs}
                                          << 1;
    }
    void failuresHaveStatusesAndReasons()
    {
        QFETCH(QStringList, args);
        QFETCH(int, status);
        const Run r = runTool(args, m_dir.path());
        QCOMPARE(r.exitCode, status);
        QVERIFY(!r.err.isEmpty());
        QVERIFY(r.out.isEmpty());
        QVERIFY(!QFileInfo::exists(path(u"never.nib"_qs)));
    }

    // The newer tool's table and merge work on compiled nibs too, keyed by object id.
    void ibtoolTakesCompiledNibs()
    {
        const Run listed = runTool({u"--generate-strings-file"_qs, u"ib.strings"_qs, u"Window.nib"_qs}, m_dir.path(),
                                   "vocabrix-ibtool");
        QCOMPARE(listed.exitCode, 0);
        QString error;
        const auto table = readStringsTable(path(u"ib.strings"_qs), &error);
        QVERIFY2(table, qPrintable(error));
        QCOMPARE(table->value(u"13.title"_qs), u"OK"_qs);
        QCOMPARE(table->size(), 12);
        TestSupport::writeFile(path(u"ib-fr.strings"_qs), "\"13.title\" = \"Valider\";\n");
        const Run merged = runTool({u"Window.nib"_qs, u"--strings-file"_qs, u"ib-fr.strings"_qs, u"--write"_qs,
                                    path(u"ib-out.nib"_qs)},
                                   m_dir.path(), "vocabrix-ibtool");
        QVERIFY2(merged.exitCode == 0, merged.err.constData());
        const auto written = openInterfaceFile(path(u"ib-out.nib"_qs), &error);
        QVERIFY2(written, qPrintable(error));
        QHash<QString, QString> got;
        for (const LocalizableString &s : written->strings()) got.insert(s.key(), s.value);
        QCOMPARE(got.value(u"13.title"_qs), u"Valider"_qs);
        QCOMPARE(got.value(u"11.title"_qs), u"OK"_qs);  // the other user of the shared text
    }

    // Titles holding "> (" or "*/" would mislead whoever reads the comment: the comment shows
    // them defused, and the marker found the way the handler looks for it is the object's.
    void commentsKeepTheMarkerFindable()
    {
        NibFixtures::Builder b;
        const int cell = b.add(u"NSButtonCell"_qs, {{u"NSContents"_qs, NibFixtures::Ref{b.string(u"a > (b) */ c"_qs)}}});
        b.objectData(cell, {{cell, 77}});
        const auto nib = nib::CompiledNib::fromData(b.toKeyedArchive(), nullptr);
        const auto blocks = nibtool::listingBlocks(*nib);
        QCOMPARE(blocks.size(), 1);
        QCOMPARE(StringUtility::substringFrom(blocks[0].comment, u"> ("_qs, u")"_qs), OptString(u"oid:77"_qs));
        QVERIFY(!blocks[0].comment.mid(2, blocks[0].comment.size() - 4).contains(u"*/"_qs));
        QCOMPARE(blocks[0].text, u"a > (b) */ c"_qs);
    }
};

QTEST_GUILESS_MAIN(TestNibtoolTool)
#include "test_nibtool_tool.moc"
