// vocabrix-ibtool as the handlers run it: a separate program with ibtool's command lines, its
// answers on standard output, its reasons on standard error and its exit status.

#include "Fixtures.h"
#include "TestSupport.h"

#include <QProcess>
#include <QTest>

namespace {

struct Run {
    int exitCode = -1;
    QByteArray out;
    QByteArray err;
};

QString toolPath()
{
    return QDir(qEnvironmentVariable("VOCABRIX_TOOLS_DIR")).filePath(QStringLiteral("vocabrix-ibtool"));
}

Run runTool(const QStringList &args, const QString &workingDirectory)
{
    QProcess p;
    p.setWorkingDirectory(workingDirectory);
    p.start(toolPath(), args);
    Run r;
    if (!p.waitForStarted() || !p.waitForFinished(60'000)) return r;
    r.exitCode = p.exitStatus() == QProcess::NormalExit ? p.exitCode() : -2;
    r.out = p.readAllStandardOutput();
    r.err = p.readAllStandardError();
    return r;
}

QString utf16Text(const QByteArray &bytes)
{
    if (!bytes.startsWith("\xFF\xFE")) return QString();
    return QString::fromUtf16(reinterpret_cast<const char16_t *>(bytes.constData() + 2), (bytes.size() - 2) / 2);
}

}  // namespace

class TestIbtoolTool : public QObject {
    Q_OBJECT

    QTemporaryDir m_dir;

    QString path(const QString &name) const { return m_dir.filePath(name); }

private slots:
    void initTestCase()
    {
        if (!QFileInfo(toolPath()).isExecutable())
            QFAIL(qPrintable(QStringLiteral("vocabrix-ibtool not found at %1 (VOCABRIX_TOOLS_DIR)").arg(toolPath())));
        QVERIFY(m_dir.isValid());
        TestSupport::writeFile(path(u"Prefs.xib"_qs), Fixtures::cocoaXib());
    }

    void generatesTheTable_data()
    {
        QTest::addColumn<QStringList>("args");
        QTest::newRow("ibtool's spelling") << QStringList{u"--generate-strings-file"_qs, u"out.strings"_qs, u"Prefs.xib"_qs};
        QTest::newRow("older spelling") << QStringList{u"--generate-stringsfile"_qs, u"out.strings"_qs, u"Prefs.xib"_qs};
        QTest::newRow("document first") << QStringList{u"Prefs.xib"_qs, u"--generate-strings-file"_qs, u"out.strings"_qs};
    }

    void generatesTheTable()
    {
        QFETCH(QStringList, args);
        QFile::remove(path(u"out.strings"_qs));
        const Run r = runTool(args, m_dir.path());
        QCOMPARE(r.exitCode, 0);
        QVERIFY2(r.out.contains("<dict/>"), r.out.constData());
        QCOMPARE(utf16Text(TestSupport::readFile(path(u"out.strings"_qs))), Fixtures::cocoaTable());
    }

    void mergesATable()
    {
        // A UTF-16 table as ibtool writes it, and a UTF-8 one as projects keep them.
        QByteArray utf16("\xFF\xFE", 2);
        for (QChar c : u"\n/* c */\n\"1.title\" = \"Préférences\";\n\"404.title\" = \"gone\";\n"_qs)
            utf16.append(char(c.unicode() & 0xFF)).append(char(c.unicode() >> 8));
        TestSupport::writeFile(path(u"fr.strings"_qs), utf16);
        TestSupport::writeFile(path(u"de.strings"_qs), "\"1.title\" = \"Einstellungen\";\n\"11.title\" = \"Gut\";\n");
        QDir().mkpath(path(u"out"_qs));
        Run r = runTool({u"Prefs.xib"_qs, u"--strings-file"_qs, u"fr.strings"_qs, u"--write"_qs, path(u"out/Prefs.xib"_qs)},
                        m_dir.path());
        QCOMPARE(r.exitCode, 0);
        QVERIFY2(r.err.contains("404.title"), r.err.constData());  // reported, not a failure
        QByteArray expected = Fixtures::cocoaXib();
        expected.replace("Prefs &amp; More", "Pr\xC3\xA9" "f\xC3\xA9rences");
        QCOMPARE(TestSupport::readFile(path(u"out/Prefs.xib"_qs)), expected);

        r = runTool({u"--strings-file"_qs, u"de.strings"_qs, u"--write"_qs, u"de.xib"_qs, u"--generate-strings-file"_qs,
                     u"base.strings"_qs, u"Prefs.xib"_qs},
                    m_dir.path());
        QCOMPARE(r.exitCode, 0);
        const QByteArray de = TestSupport::readFile(path(u"de.xib"_qs));
        QVERIFY(de.contains("title=\"Einstellungen\"") && de.contains("title=\"Gut\""));
        QCOMPARE(utf16Text(TestSupport::readFile(path(u"base.strings"_qs))), Fixtures::cocoaTable());
    }

    void failures_data()
    {
        QTest::addColumn<QStringList>("args");
        QTest::addColumn<int>("status");
        QTest::addColumn<QString>("message");
        QTest::newRow("missing file") << QStringList{u"--generate-strings-file"_qs, u"x.strings"_qs, u"Nope.xib"_qs} << 1
                                      << u"could not be opened"_qs;
        QTest::newRow("malformed xml") << QStringList{u"--generate-strings-file"_qs, u"x.strings"_qs, u"Broken.xib"_qs} << 1
                                       << u"line 3"_qs;
        QTest::newRow("broken table") << QStringList{u"Prefs.xib"_qs, u"--strings-file"_qs, u"bad.strings"_qs, u"--write"_qs, u"o.xib"_qs}
                                      << 1 << u"could not be parsed"_qs;
        QTest::newRow("unwritable output") << QStringList{u"--generate-strings-file"_qs, u"no/such/dir/x.strings"_qs, u"Prefs.xib"_qs}
                                           << 1 << u"could not be written"_qs;
        QTest::newRow("no document") << QStringList{u"--generate-strings-file"_qs, u"x.strings"_qs} << 2 << u"no document"_qs;
        QTest::newRow("write without table") << QStringList{u"Prefs.xib"_qs, u"--write"_qs, u"o.xib"_qs} << 2 << u"go together"_qs;
        QTest::newRow("unknown option") << QStringList{u"--compile"_qs, u"o.nib"_qs, u"Prefs.xib"_qs} << 2 << u"unknown option"_qs;
    }

    void failures()
    {
        QFETCH(QStringList, args);
        QFETCH(int, status);
        QFETCH(QString, message);
        TestSupport::writeFile(path(u"Broken.xib"_qs), "<?xml version=\"1.0\"?>\n<document>\n<objects></document>\n");
        TestSupport::writeFile(path(u"bad.strings"_qs), "\"1.title\" = \"unterminated;\n");
        const Run r = runTool(args, m_dir.path());
        QCOMPARE(r.exitCode, status);
        QVERIFY2(QString::fromUtf8(r.err).contains(message), r.err.constData());
        if (status == 1) QVERIFY2(r.out.contains("com.apple.ibtool.errors"), r.out.constData());
        QVERIFY(!QFileInfo::exists(path(u"o.xib"_qs)));
    }

    void nibFolderWithDesignableNib()
    {
        TestSupport::writeFile(path(u"Old.nib/designable.nib"_qs), Fixtures::legacyArchive());
        TestSupport::writeFile(path(u"old.strings"_qs), "\"5.title\" = \"Réglages\";");
        Run r = runTool({u"--generate-strings-file"_qs, u"o.strings"_qs, u"Old.nib"_qs}, m_dir.path());
        QCOMPARE(r.exitCode, 0);
        QVERIFY(utf16Text(TestSupport::readFile(path(u"o.strings"_qs))).contains(u"\"5.title\" = \"Preferences\";"_qs));
        QDir().mkpath(path(u"fr"_qs));
        r = runTool({u"Old.nib"_qs, u"--strings-file"_qs, u"old.strings"_qs, u"--write"_qs, u"fr/Old.nib"_qs}, m_dir.path());
        QCOMPARE(r.exitCode, 0);
        QVERIFY(TestSupport::readFile(path(u"fr/Old.nib/designable.nib"_qs)).contains("R\xC3\xA9glages"));
    }
};

QTEST_GUILESS_MAIN(TestIbtoolTool)
#include "test_ibtool_tool.moc"
