// vocabrix-cli dict, run as a user runs it: a child process with its own XDG_DATA_HOME. What
// matters is what reaches the file: nothing lost when an input cannot be read, identity pairs
// counted before they are removed.
// The cases are tables of UTF-8 literals; the program itself converts every byte explicitly.
#undef QT_NO_CAST_FROM_ASCII
#include "StringsTable.h"
#include "TestSupport.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>

class TestDictCli : public QObject {
    Q_OBJECT

private slots:
    void init();
    void importShowListExport();
    void failuresChangeNothing_data();
    void failuresChangeNothing();
    void cleanCountsFirst();

private:
    struct Run {
        int status = -1;
        QString out;
        QString err;
    };
    Run cli(const QStringList &args);
    QString dict(const QString &pair) const { return m_dir->filePath(QStringLiteral("data/Vocabrix/") + pair + QLatin1String(".strings")); }
    QString file(const QString &name, const QByteArray &bytes) { return TestSupport::writeFile(m_dir->filePath(name), bytes); }
    std::unique_ptr<QTemporaryDir> m_dir;
};

TestDictCli::Run TestDictCli::cli(const QStringList &args)
{
    QProcess p;
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.insert(QStringLiteral("XDG_DATA_HOME"), m_dir->filePath(QStringLiteral("data")));
    p.setProcessEnvironment(env);
    p.start(QStringLiteral(VOCABRIX_CLI),
            QStringList{QStringLiteral("--settings"), m_dir->filePath(QStringLiteral("s.ini")), QStringLiteral("dict")} + args);
    if (!p.waitForFinished(60000)) {
        p.kill();
        return {};
    }
    return {p.exitCode(), QString::fromUtf8(p.readAllStandardOutput()), QString::fromUtf8(p.readAllStandardError())};
}

void TestDictCli::init()
{
    m_dir = std::make_unique<QTemporaryDir>();
    QVERIFY(m_dir->isValid());
}

void TestDictCli::importShowListExport()
{
    const QString table = file(QStringLiteral("a.strings"), "\"R\u00e9sum\u00e9\" = \"CV\";\n\"Open\" = \"Ouvrir\";\n");
    const QString glossary = file(QStringLiteral("g.ad"), "<TranslationSet><base loc=\"fr\">Fermer</base><tran loc=\"en\">Close</tran>");
    Run r = cli({"import", "--from", "en", "--to", "French", table, glossary});
    QCOMPARE(r.status, 0);
    QCOMPARE(QJsonDocument::fromJson(r.out.toUtf8()).object().value(QStringLiteral("added")).toInt(), 3);
    r = cli({"show", "--from", "English", "--to", "fr", "--search", "RESUME"});
    QCOMPARE(r.out, QStringLiteral("{\"key\":\"R\u00e9sum\u00e9\",\"value\":\"CV\"}\n"));
    r = cli({"list"});
    const QJsonObject listed = QJsonDocument::fromJson(r.out.toUtf8()).object();
    QCOMPARE(listed.value(QStringLiteral("pairs")).toInt(), 3);
    QCOMPARE(listed.value(QStringLiteral("target")).toString(), QStringLiteral("French"));
    // Out as TMX and into an empty pair of the same languages: the same pairs.
    const QString tmx = m_dir->filePath(QStringLiteral("out.tmx"));
    QCOMPARE(cli({"export", "--from", "en", "--to", "fr", "--tmx", tmx}).status, 0);
    QVERIFY(QFile::rename(dict(QStringLiteral("English-French")), m_dir->filePath(QStringLiteral("old.strings"))));
    QCOMPARE(cli({"import", "--from", "en", "--to", "fr", tmx}).status, 0);
    QCOMPARE(*dictionaryWithContentsOfFile(dict(QStringLiteral("English-French"))),
             *dictionaryWithContentsOfFile(m_dir->filePath(QStringLiteral("old.strings"))));
}

void TestDictCli::failuresChangeNothing_data()
{
    QTest::addColumn<QByteArray>("stored");
    QTest::addColumn<QString>("input");
    QTest::addColumn<QByteArray>("inputBytes");
    QTest::addColumn<QByteArray>("expected");  // the dictionary file afterwards
    QTest::addColumn<QString>("message");
    const QByteArray good = "\"Open\" = \"Ouvrir\";\n";
    QTest::newRow("broken input") << good << "b.strings" << QByteArray("\"x\" = ") << good << "b.strings";
    QTest::newRow("not TMX") << good << "m.tmx" << QByteArray("<html/>") << good << "not a TMX";
    QTest::newRow("glossary not UTF-8") << good << "g.lg" << QByteArray("<TranslationSet>\xff") << good << "UTF-8";
    QTest::newRow("unknown type") << good << "notes.txt" << QByteArray("x") << good << "notes.txt";
    const QByteArray unreadable = "\"Open\" = \"Ouvrir\"\n";
    QTest::newRow("unreadable dictionary kept")
        << unreadable << "ok.strings" << QByteArray("\"Save\" = \"Enregistrer\";\n") << unreadable << "could not be read";
}

void TestDictCli::failuresChangeNothing()
{
    QFETCH(QByteArray, stored);
    QFETCH(QString, input);
    QFETCH(QByteArray, inputBytes);
    QFETCH(QByteArray, expected);
    QFETCH(QString, message);
    TestSupport::writeFile(dict(QStringLiteral("English-French")), stored);
    const Run r = cli({"import", "--from", "en", "--to", "fr", file(input, inputBytes)});
    QCOMPARE(r.status, 1);
    QVERIFY2(r.err.contains(message), qPrintable(r.err));
    QCOMPARE(TestSupport::readFile(dict(QStringLiteral("English-French"))), expected);
    QCOMPARE(QDir(m_dir->filePath(QStringLiteral("data/Vocabrix"))).entryList(QDir::Files).size(), 1);
    QCOMPARE(cli({"show", "--from", "en"}).status, 2);
    QCOMPARE(cli({"show", "--from", "en", "--to", "Klingon"}).status, 2);
}

void TestDictCli::cleanCountsFirst()
{
    TestSupport::writeFile(dict(QStringLiteral("English-French")),
                           "\"OK\" = \"OK\";\n\"Open\" = \"Ouvrir\";\n\"Cancel\" = \"Cancel\";\n\"ok\" = \"OK\";\n");
    Run r = cli({"clean", "--from", "en", "--to", "fr"});
    QCOMPARE(r.status, 0);
    QVERIFY2(r.out.startsWith(QLatin1String("Removing 2 pairs")), qPrintable(r.out));
    QCOMPARE(TestSupport::readFile(dict(QStringLiteral("English-French"))), QByteArray("\"Open\" = \"Ouvrir\";\n\"ok\" = \"OK\";\n"));
    r = cli({"clean", "--from", "en", "--to", "fr"});
    QVERIFY(r.out.startsWith(QLatin1String("Removing 0 pairs")));
}

QTEST_GUILESS_MAIN(TestDictCli)
#include "test_dict_cli.moc"
