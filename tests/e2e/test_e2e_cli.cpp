// vocabrix-cli doing the whole job headless: doc new/add/files/entries/set/export, job in one
// run, the dictionary in $XDG_DATA_HOME/Vocabrix, and clear refusals of bad input.
#include "StringsTable.h"
#include "TestSupport.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>

namespace {

struct Run {
    int status = -1;
    QList<QJsonObject> lines;
    QString out, err;
};

}  // namespace

class TestE2ECli : public QObject {
    Q_OBJECT

private slots:
    void init();
    void helpDocumentsTheCommands();
    void documentStepByStep();
    void jobInOneRun();
    void bundleFolderNeedsOverwrite();
    void refusals_data();
    void refusals();

private:
    std::unique_ptr<QTemporaryDir> m_dir;
    QString path(const QString &relative) const { return m_dir->filePath(relative); }
    Run cli(const QStringList &args) const;
    static QString sample(const char *name) { return QStringLiteral(VOCABRIX_SOURCE_DIR "/samples/") + QLatin1String(name); }
    QString dictionary() const { return path(QStringLiteral("data/Vocabrix/English-French.strings")); }
};

void TestE2ECli::init()
{
    m_dir = std::make_unique<QTemporaryDir>();
    QVERIFY(m_dir->isValid());
}

Run TestE2ECli::cli(const QStringList &args) const
{
    QProcess p;
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.insert(QStringLiteral("XDG_DATA_HOME"), path(QStringLiteral("data")));
    p.setProcessEnvironment(env);
    p.start(QStringLiteral(VOCABRIX_CLI), QStringList{QStringLiteral("--settings"), path(QStringLiteral("s.ini"))} + args);
    Run r;
    if (!p.waitForFinished(120000)) return r;
    r.status = p.exitCode();
    r.out = QString::fromUtf8(p.readAllStandardOutput());
    r.err = QString::fromUtf8(p.readAllStandardError());
    for (const QString &line : r.out.split(u'\n', Qt::SkipEmptyParts))
        r.lines.append(QJsonDocument::fromJson(line.toUtf8()).object());
    return r;
}

void TestE2ECli::helpDocumentsTheCommands()
{
    const Run r = cli({QStringLiteral("--help")});
    QCOMPARE(r.status, 0);
    for (const char *text : {"doc SUBCOMMAND", "doc add DOC PATH [--previous PREV]", "doc export DOC --to", "--overwrite",
                             "job ", "--export-to", "XDG_DATA_HOME", "languages"})
        QVERIFY2(r.out.contains(QLatin1String(text)), text);
    const Run languages = cli({QStringLiteral("languages")});
    QCOMPARE(languages.lines.at(0).value(QStringLiteral("key")).toString(), QStringLiteral("English"));
    QCOMPARE(languages.lines.at(1).value(QStringLiteral("abbreviation")).toString(), QStringLiteral("fr"));
}

void TestE2ECli::documentStepByStep()
{
    const QString doc = path(QStringLiteral("N.vocabrix"));
    Run r = cli({QStringLiteral("doc"), QStringLiteral("new"), doc, QStringLiteral("--from"), QStringLiteral("en"),
                 QStringLiteral("--to"), QStringLiteral("French"), QStringLiteral("--title"), QStringLiteral("Notes")});
    QCOMPARE(r.status, 0);
    QCOMPARE(r.lines.at(0).value(QStringLiteral("dictionary")).toString(), dictionary());

    r = cli({QStringLiteral("doc"), QStringLiteral("add"), doc, sample("Notekeeper.app"), QStringLiteral("--previous"),
             sample("Notekeeper-1.0.app")});
    QCOMPARE(r.status, 0);
    QCOMPARE(r.lines.size(), 4);
    QCOMPARE(r.lines.at(1).value(QStringLiteral("name")).toString(), QStringLiteral("Localizable.strings"));

    r = cli({QStringLiteral("doc"), QStringLiteral("entries"), doc, QStringLiteral("Localizable.strings")});
    QCOMPARE(r.status, 0);
    QCOMPARE(r.lines.at(0).value(QStringLiteral("localized")).toString(), QStringLiteral("Note sans titre"));
    qsizetype share = -1;
    for (qsizetype i = 0; i < r.lines.size(); ++i)
        if (r.lines.at(i).value(QStringLiteral("key")).toString() == QLatin1String("menu.share")) share = i + 1;
    QVERIFY(share > 0);
    QCOMPARE(r.lines.at(share - 1).value(QStringLiteral("checked")).toBool(), false);

    r = cli({QStringLiteral("doc"), QStringLiteral("set"), doc, QStringLiteral("2"), QString::number(share),
             QStringLiteral("--word"), QStringLiteral("Partager \"tout\"")});
    QCOMPARE(r.status, 0);
    QCOMPARE(r.lines.at(0).value(QStringLiteral("checked")).toBool(), true);

    r = cli({QStringLiteral("doc"), QStringLiteral("status"), doc});
    QCOMPARE(r.lines.at(0).value(QStringLiteral("title")).toString(), QStringLiteral("Notes"));
    QCOMPARE(r.lines.at(0).value(QStringLiteral("files")).toInt(), 4);

    r = cli({QStringLiteral("doc"), QStringLiteral("export"), doc, QStringLiteral("--to"), path(QStringLiteral("out")),
             QStringLiteral("--file"), QStringLiteral("Localizable.strings")});
    QCOMPARE(r.status, 0);
    const auto written = dictionaryWithContentsOfFile(path(QStringLiteral("out/Localizable.strings")));
    QVERIFY(written);
    QCOMPARE(written->value(QStringLiteral("menu.share")), QStringLiteral("Partager \"tout\""));
    QVERIFY(!QFileInfo::exists(path(QStringLiteral("out/Templates.plist"))));
    const auto stored = dictionaryWithContentsOfFile(dictionary());
    QVERIFY2(stored, qPrintable(dictionary()));
    // The dictionary learns the base word, not the table's identifier.
    QCOMPARE(stored->value(QStringLiteral("Share")), QStringLiteral("Partager \"tout\""));
    QVERIFY(!stored->contains(QStringLiteral("menu.share")));
}

void TestE2ECli::jobInOneRun()
{
    const QString doc = path(QStringLiteral("Job.vocabrix"));
    Run r = cli({QStringLiteral("job"), QStringLiteral("--from"), QStringLiteral("en"), QStringLiteral("--to"),
                 QStringLiteral("fr"), QStringLiteral("--add"), sample("Notekeeper.app"), QStringLiteral("--previous"),
                 sample("Notekeeper-1.0.app"), QStringLiteral("--export-to"), path(QStringLiteral("out")),
                 QStringLiteral("--save"), doc});
    QCOMPARE(r.status, 0);
    QCOMPARE(r.lines.size(), 5);
    const QJsonObject exported = r.lines.last();
    QCOMPARE(exported.value(QStringLiteral("folder")).toString(), path(QStringLiteral("out")));
    QCOMPARE(exported.value(QStringLiteral("written")).toArray().size(), 4);
    QVERIFY(exported.value(QStringLiteral("dictionaryWritten")).toBool());
    const auto stored = dictionaryWithContentsOfFile(dictionary());
    QVERIFY(stored);
    QCOMPARE(stored->value(QStringLiteral("Open notes at login")), QStringLiteral("Ouvrir les notes \u00E0 la connexion"));
    r = cli({QStringLiteral("doc"), QStringLiteral("status"), doc});
    QCOMPARE(r.status, 0);
    QCOMPARE(r.lines.at(0).value(QStringLiteral("files")).toInt(), 4);
}

void TestE2ECli::bundleFolderNeedsOverwrite()
{
    const QString dest = path(QStringLiteral("Dest.app"));
    QDir().mkpath(dest + QLatin1String("/Contents/Resources/fr.lproj"));
    const QStringList job{QStringLiteral("job"), QStringLiteral("--add"), sample("Notekeeper.app"),
                          QStringLiteral("--export-to"), dest};
    Run r = cli(job);
    QCOMPARE(r.status, 1);
    QVERIFY2(r.err.contains(QLatin1String("fr.lproj")) && r.err.contains(QLatin1String("--overwrite")), qPrintable(r.err));
    QVERIFY(QDir(dest + QLatin1String("/Contents/Resources/fr.lproj")).isEmpty());
    QVERIFY(!QFileInfo::exists(dictionary()));
    r = cli(job + QStringList{QStringLiteral("--overwrite")});
    QCOMPARE(r.status, 0);
    QVERIFY(QFileInfo::exists(dest + QLatin1String("/Contents/Resources/fr.lproj/Localizable.strings")));
}

void TestE2ECli::refusals_data()
{
    QTest::addColumn<QStringList>("args");
    QTest::addColumn<int>("status");
    QTest::addColumn<QString>("message");
    QTest::newRow("unknown language") << QStringList{QStringLiteral("job"), QStringLiteral("--to"), QStringLiteral("xx"),
                                                     QStringLiteral("--add"), QStringLiteral("a.strings")}
                                      << 2 << "unknown language";
    QTest::newRow("not a document") << QStringList{QStringLiteral("doc"), QStringLiteral("status"), QStringLiteral("@junk")}
                                    << 1 << "not a Vocabrix document";
    QTest::newRow("missing document") << QStringList{QStringLiteral("doc"), QStringLiteral("files"), QStringLiteral("@none")}
                                      << 1 << "could not be opened";
    QTest::newRow("previous without a path") << QStringList{QStringLiteral("job"), QStringLiteral("--previous"), QStringLiteral("x")}
                                             << 2 << "--previous";
    QTest::newRow("bundle without base folder") << QStringList{QStringLiteral("job"), QStringLiteral("--from"), QStringLiteral("de"),
                                                               QStringLiteral("--add"), QStringLiteral("@sample")}
                                                << 1 << "nothing was added";
}

void TestE2ECli::refusals()
{
    QFETCH(QStringList, args);
    QFETCH(int, status);
    QFETCH(QString, message);
    TestSupport::writeFile(path(QStringLiteral("junk")), "not a document at all");
    for (QString &a : args) {
        if (a == QLatin1String("@junk")) a = path(QStringLiteral("junk"));
        else if (a == QLatin1String("@none")) a = path(QStringLiteral("none.vocabrix"));
        else if (a == QLatin1String("@sample")) a = sample("Notekeeper.app");
    }
    const Run r = cli(args);
    QCOMPARE(r.status, status);
    QVERIFY2(r.err.contains(message), qPrintable(r.err));
}

QTEST_GUILESS_MAIN(TestE2ECli)
#include "test_e2e_cli.moc"
