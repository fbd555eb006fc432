// vocabrix-cli check as a build runs it: a child process over small tables and a document, its
// JSON lines, its compiler-style lines and its exit status (1 on an error only, 2 for wrong
// arguments).
#include "TestSupport.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>

using namespace Qt::StringLiterals;

namespace {

struct Run {
    int status = -1;
    QStringList out;
    QString err;
};

QString fixture(const QString &name)
{
    return QStringLiteral(VOCABRIX_SOURCE_DIR "/tests/qa/data/cli/") + name;
}

}  // namespace

class TestCheckCommand : public QObject {
    Q_OBJECT

private slots:
    void init();
    void tables_data();
    void tables();
    void compilerStyleLines();
    void document();

private:
    std::unique_ptr<QTemporaryDir> m_dir;
    Run cli(const QStringList &args) const;
};

void TestCheckCommand::init()
{
    m_dir = std::make_unique<QTemporaryDir>();
    QVERIFY(m_dir->isValid());
}

Run TestCheckCommand::cli(const QStringList &args) const
{
    QProcess p;
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.insert(QStringLiteral("XDG_DATA_HOME"), m_dir->filePath(QStringLiteral("data")));
    p.setProcessEnvironment(env);
    p.start(QStringLiteral(VOCABRIX_CLI), QStringList{QStringLiteral("--settings"), m_dir->filePath(QStringLiteral("s.ini"))} + args);
    Run r;
    if (!p.waitForFinished(60000)) return r;
    r.status = p.exitCode();
    r.out = QString::fromUtf8(p.readAllStandardOutput()).split(u'\n', Qt::SkipEmptyParts);
    r.err = QString::fromUtf8(p.readAllStandardError());
    return r;
}

void TestCheckCommand::tables_data()
{
    QTest::addColumn<QStringList>("args");
    QTest::addColumn<int>("status");
    QTest::addColumn<QStringList>("found");  // "line key check severity" per JSON line
    QTest::addColumn<QString>("stderr");     // a piece of the error stream
    const QString base = fixture(QStringLiteral("base.strings"));
    QTest::addRow("against a base table") << QStringList{u"--base"_s, base, fixture(QStringLiteral("fr.strings"))} << 1
                                          << QStringList{u"1 files format-specifiers error"_s, u"4 ok same-as-base warning"_s}
                                          << QStringLiteral("1 error, 1 warning");
    QTest::addRow("warnings alone pass") << QStringList{fixture(QStringLiteral("fr-warnings.strings")), u"--base"_s, base} << 0
                                         << QStringList{u"1 open ending-punctuation warning"_s} << QString();
    QTest::addRow("interface tool comments give the base")
        << QStringList{fixture(QStringLiteral("interface.strings"))} << 0
        << QStringList{u"2 12.title ending-punctuation warning"_s, u"6 AE4-BD-wZi.toolTip ending-punctuation warning"_s}
        << QStringLiteral("1 pair has no base text (an identifier or object id for key, no interface tool comment) and was not "
                          "checked; give the base table with --base\nvocabrix-cli: 0 errors, 2 warnings");
    QTest::addRow("keyed by English text") << QStringList{fixture(QStringLiteral("english-keyed.strings"))} << 1
                                           << QStringList{u"2 Cancel same-as-base warning"_s, u"4 Delete %@? format-specifiers error"_s}
                                           << QString();
    QTest::addRow("keyed by identifiers, without its base") << QStringList{fixture(QStringLiteral("identifiers.strings"))} << 0
                                                            << QStringList() << QStringLiteral("1 pair has no base text");
    QTest::addRow("unreadable table") << QStringList{fixture(QStringLiteral("broken.strings"))} << 1 << QStringList()
                                      << QStringLiteral("not a readable string table (expected a value after \"=\", line 2)");
    QTest::addRow("no file") << QStringList() << 2 << QStringList() << QStringLiteral("Usage:");
    QTest::addRow("unknown format") << QStringList{u"--format"_s, u"xml"_s, base} << 2 << QStringList() << QStringLiteral("json or gcc");
    QTest::addRow("base with two tables") << QStringList{u"--base"_s, base, base, base} << 2 << QStringList() << QStringLiteral("Usage:");
    QTest::addRow("missing file") << QStringList{fixture(QStringLiteral("none.strings"))} << 2 << QStringList()
                                  << QStringLiteral("no such file");
    QTest::addRow("unknown option") << QStringList{u"--strict"_s, base} << 2 << QStringList() << QStringLiteral("unknown option");
}

void TestCheckCommand::tables()
{
    QFETCH(QStringList, args);
    QFETCH(int, status);
    QFETCH(QStringList, found);
    QFETCH(QString, stderr);
    const Run r = cli(QStringList{QStringLiteral("check")} + args);
    QCOMPARE(r.status, status);
    QStringList got;
    for (const QString &line : r.out) {
        const QJsonObject o = QJsonDocument::fromJson(line.toUtf8()).object();
        QVERIFY2(!o.value(QStringLiteral("message")).toString().isEmpty(), qPrintable(line));
        QVERIFY2(o.value(QStringLiteral("file")).toString().endsWith(QLatin1String(".strings")), qPrintable(line));
        got.append(QStringLiteral("%1 %2 %3 %4").arg(o.value(QStringLiteral("line")).toInt()).arg(o.value(QStringLiteral("key")).toString(),
                                                                                            o.value(QStringLiteral("check")).toString(),
                                                                                            o.value(QStringLiteral("severity")).toString()));
    }
    QCOMPARE(got, found);
    QVERIFY2(r.err.contains(stderr), qPrintable(r.err));
}

void TestCheckCommand::compilerStyleLines()
{
    const QString table = fixture(QStringLiteral("fr.strings"));
    const Run r = cli({QStringLiteral("check"), QStringLiteral("--format"), QStringLiteral("gcc"), QStringLiteral("--base"),
                       fixture(QStringLiteral("base.strings")), table});
    QCOMPARE(r.status, 1);
    QCOMPARE(r.out.size(), 2);
    QVERIFY2(r.out.at(0).startsWith(table + QLatin1String(":1: error: \"files\": Placeholder 1 is %d (integer) in the base but %@ (object)")), qPrintable(r.out.at(0)));
    QVERIFY2(r.out.at(0).endsWith(QLatin1String(" [format-specifiers]")), qPrintable(r.out.at(0)));
    QVERIFY2(r.out.at(1).startsWith(table + QLatin1String(":4: warning: \"ok\": ")), qPrintable(r.out.at(1)));
}

// A document's entries: the base file's lines, the translations as the document holds them, and
// an entry left unchecked (its base word standing in) not reported.
void TestCheckCommand::document()
{
    const QString doc = m_dir->filePath(QStringLiteral("D.vocabrix"));
    QCOMPARE(cli({u"doc"_s, u"new"_s, doc, u"--from"_s, u"en"_s, u"--to"_s, u"fr"_s}).status, 0);
    QCOMPARE(cli({u"doc"_s, u"add"_s, doc, fixture(QStringLiteral("base.strings")), u"--previous"_s, fixture(QStringLiteral("fr.strings"))}).status, 0);
    const Run r = cli({QStringLiteral("check"), doc});
    QCOMPARE(r.status, 1);
    QCOMPARE(r.out.size(), 2);
    const QJsonObject first = QJsonDocument::fromJson(r.out.at(0).toUtf8()).object();
    QCOMPARE(first.value(QStringLiteral("file")).toString(), fixture(QStringLiteral("base.strings")));
    QCOMPARE(first.value(QStringLiteral("key")).toString(), QStringLiteral("files"));
    QCOMPARE(first.value(QStringLiteral("line")).toInt(), 2);
    QCOMPARE(first.value(QStringLiteral("translation")).toString(), QStringLiteral("%@ fichiers"));
    QCOMPARE(QJsonDocument::fromJson(r.out.at(1).toUtf8()).object().value(QStringLiteral("check")).toString(),
             QStringLiteral("same-as-base"));
}

QTEST_GUILESS_MAIN(TestCheckCommand)
#include "test_check_command.moc"
