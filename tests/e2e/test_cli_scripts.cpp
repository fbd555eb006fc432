// vocabrix-cli run as a user runs it: a child process with its own settings file and
// XDG_DATA_HOME, driven by scripts kept as data, tests/data/e2e/<case>/steps. One step a line,
// fields separated by tabs (CaseData escapes):
//   run STATUS ARG...        the command line with ARG...; it must end with STATUS
//   out / err TEXT           the last run's output / error stream holds TEXT; outis: is exactly TEXT
//   lines N                  the last run printed N lines
//   write / bytes PATH TEXT  a file of TEXT in UTF-8 / in Latin-1 (for bytes that are not UTF-8)
//   mkdir PATH, rm PATH, env NAME VALUE
//   file PATH TEXT           the file holds exactly TEXT (read in the encoding its byte-order
//                            mark gives); has / !has: holds TEXT / does not; utf16 PATH: has a mark
//   exists / nofile PATH, empty DIR (no entries), files DIR N (N files)
// In every field "@/" is the case's sandbox and "@src/" the source tree.
#include "CaseData.h"

#include <QStringDecoder>

class TestCliScripts : public QObject {
    Q_OBJECT

private slots:
    void scripts_data() { TestSupport::addGoldenRows(QStringLiteral("e2e")); }
    void scripts();
};

void TestCliScripts::scripts()
{
    QFETCH(QString, dir);
    TestSupport::Sandbox box;
    QVERIFY(box.isValid());
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.insert(QStringLiteral("XDG_DATA_HOME"), box.path(QStringLiteral("data")));
    const auto steps = TestSupport::readCaseTable(dir + QLatin1String("/steps"), 1);
    QVERIFY(!steps.isEmpty());
    TestSupport::Run last;
    for (QStringList f : steps) {
        for (QString &field : f)
            field.replace(QLatin1String("@/"), box.path() + u'/').replace(QLatin1String("@src/"), QStringLiteral(VOCABRIX_SOURCE_DIR "/"));
        const QString step = f.join(u' ');
        const QString op = f.takeFirst(), a = f.value(0), b = f.value(1);
        const QString out = QString::fromUtf8(last.out), err = QString::fromUtf8(last.err);
        const QByteArray bytes = TestSupport::readFile(a);
        // Files are compared as text in whatever encoding their byte-order mark says.
        const QString text = QStringDecoder(QStringConverter::encodingForData(bytes).value_or(QStringConverter::Utf8)).decode(bytes);
        bool ok = true;
        if (op == QLatin1String("run")) {
            last = TestSupport::runProgram(QStringLiteral(VOCABRIX_CLI),
                                           QStringList{QStringLiteral("--settings"), box.path(QStringLiteral("s.ini"))} + f.mid(1),
                                           box.path(), env);
            ok = last.exitCode == a.toInt();
            if (!ok) qWarning("exit status %d\n%s", last.exitCode, last.err.constData());
        } else if (op == QLatin1String("out")) ok = out.contains(a);
        else if (op == QLatin1String("outis")) ok = out == a;
        else if (op == QLatin1String("err")) ok = err.contains(a);
        else if (op == QLatin1String("lines")) ok = out.count(u'\n') == a.toInt();
        else if (op == QLatin1String("write")) ok = !TestSupport::writeFile(a, b.toUtf8()).isEmpty();
        else if (op == QLatin1String("bytes")) ok = !TestSupport::writeFile(a, b.toLatin1()).isEmpty();
        else if (op == QLatin1String("mkdir")) ok = QDir().mkpath(a);
        else if (op == QLatin1String("rm")) ok = QFile::remove(a);
        else if (op == QLatin1String("env")) env.insert(a, b);
        else if (op == QLatin1String("file")) ok = text == b;
        else if (op == QLatin1String("has")) ok = text.contains(b);
        else if (op == QLatin1String("!has")) ok = !text.contains(b);
        else if (op == QLatin1String("exists")) ok = QFileInfo::exists(a);
        else if (op == QLatin1String("utf16")) ok = bytes.startsWith("\xFF\xFE") || bytes.startsWith("\xFE\xFF");
        else if (op == QLatin1String("nofile")) ok = !QFileInfo::exists(a);
        else if (op == QLatin1String("empty")) ok = QDir(a).isEmpty();
        else if (op == QLatin1String("files")) ok = QDir(a).entryList(QDir::Files | QDir::Hidden).size() == b.toInt();
        else QFAIL(qPrintable(QStringLiteral("unknown step: ") + step));
        if (!ok && op != QLatin1String("run"))
            qWarning("the last run printed:\n%s\non its error stream:\n%s\n%s", last.out.constData(), last.err.constData(),
                     qPrintable(QFileInfo(a).isFile() ? a + QLatin1String(" holds:\n") + text : QString()));
        QVERIFY2(ok, qPrintable(step));
    }
}

QTEST_GUILESS_MAIN(TestCliScripts)
#include "test_cli_scripts.moc"
