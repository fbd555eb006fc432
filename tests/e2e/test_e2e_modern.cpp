// Applications laid out for Base internationalization, English to a language, with their
// previous release (the shared corpus's Transmission and Vienna, copied; never written in
// place): every Base.lproj interface file gives <target>.lproj/X.strings with every key the file
// generates; every key whose translation and base text are the same in both releases comes out
// with the previous release's translation and checked; entries whose base text changed start
// unchecked with their previous base word; the target folder takes the bundle's style. The share
// of carried-over translations reproduced is printed. Then the command line on the older tool's
// path: the job waits for the background reading before it saves or exports.
#include "BundleLayout.h"
#include "Handlers.h"
#include "Languages.h"
#include "MyDocument.h"
#include "ScriptedDialogs.h"
#include "StringsTable.h"
#include "TestSupport.h"

#include <QDirIterator>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>

namespace {

QString unescaped(const OptString &word)
{
    if (!word) return QString();
    const auto map = StringsTable::parse(QStringLiteral("\"w\" = \"%1\";").arg(*word));
    return map ? map->value(QStringLiteral("w")) : *word;
}

bool copyTree(const QString &from, const QString &to, const QString &leaveOut = QString())
{
    QDirIterator it(from, QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden, QDirIterator::Subdirectories);
    QDir().mkpath(to);
    while (it.hasNext()) {
        const QString source = it.next();
        const QString rel = source.mid(from.size());
        if (!leaveOut.isEmpty() && rel.contains(leaveOut)) continue;
        if (it.fileInfo().isDir()) QDir().mkpath(to + rel);
        else if (!QFile::copy(source, to + rel)) return false;
    }
    return true;
}

std::optional<StringMap> table(const QString &path)
{
    return QFileInfo::exists(path) ? dictionaryWithContentsOfFile(path) : std::nullopt;
}

// key word → base word of a file as the handlers read it (no previous version, no dictionary).
QHash<QString, QString> baseWords(const QString &path)
{
    QHash<QString, QString> map;
    if (!QFileInfo::exists(path)) return map;
    if (const LocFilePtr f = LocFile::initWithPath(path, std::nullopt, std::nullopt))
        for (const LocEntryPtr &e : f->allEntries())
            if (e->keyWord()) map.insert(*e->keyWord(), e->baseWord().value_or(QString()));
    return map;
}

}  // namespace

class TestE2EModern : public QObject {
    Q_OBJECT
    QTemporaryDir m_dir;

private slots:
    void initTestCase()
    {
        TestSupport::isolate(m_dir);
        QStandardPaths::setTestModeEnabled(false);
        qputenv("XDG_DATA_HOME", QFile::encodeName(m_dir.filePath(QStringLiteral("data"))));
        registerResourceHandlers();
    }

    void englishToTarget_data()
    {
        QTest::addColumn<QString>("project");
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("to");
        QTest::newRow("Transmission, English to French") << "transmission" << "Transmission" << "fr";
        QTest::newRow("Vienna, English to German") << "vienna-rss" << "Vienna" << "de";
    }
    void englishToTarget()
    {
        QFETCH(QString, project);
        QFETCH(QString, name);
        QFETCH(QString, to);
        SKIP_WITHOUT_CORPUS();
        const QString source = TestSupport::corpusDir() + QLatin1String("/bundles/") + project + u'/';
        const QString work = m_dir.filePath(project) + u'/';
        const QString bundle = work + name + QLatin1String(".app"), old = work + name + QLatin1String("-old.app");
        const QString out = work + QLatin1String("Out.app");
        const QString targetFolder = to + QLatin1String(".lproj");
        QVERIFY(copyTree(source + name + QLatin1String(".app"), bundle));
        QVERIFY(copyTree(source + name + QLatin1String("-old.app"), old));
        QVERIFY(copyTree(bundle, out, u'/' + targetFolder));
        TestSupport::writeFile(bundle + QLatin1String("/Contents/Resources/Base.lproj/._MainMenu.xib"), "\0\5\26\7");
        TestSupport::writeFile(bundle + QLatin1String("/Contents/Resources/Base.lproj/.DS_Store"), "Bud1");

        MyDocument doc;
        ScriptedDialogs dialogs;
        doc.setDialogs(&dialogs);
        doc.setLocLangFrom(*tagForLanguage(QStringLiteral("en")));
        doc.setLocLangTo(*tagForLanguage(to));
        doc.addFiles(QList<QPair<QString, OptString>>{{bundle, old}});
        QVERIFY(dialogs.alerts().isEmpty());

        const QString resources = bundle + QLatin1String("/Contents/Resources/");
        const QString oldResources = old + QLatin1String("/Contents/Resources/");
        QStringList interfaceFiles, added;
        for (const QString &n : QDir(resources + BundleLayout::kBaseFolder).entryList(QDir::Files, QDir::Name))
            if (BundleLayout::isInterfaceFile(n) && !n.startsWith(u'.')) interfaceFiles.append(n);
        for (const LocFilePtr &f : doc.files()) {
            QVERIFY2(!f->fileName().startsWith(u'.'), qPrintable(f->path()));
            if (BundleLayout::isInBaseFolder(f->path()) && BundleLayout::isInterfaceFile(f->fileName())) added.append(f->fileName());
        }
        added.sort();
        QCOMPARE(added, interfaceFiles);

        // Words and marks against both releases' own files.
        int carried = 0, reproduced = 0, changed = 0;
        QStringList misses;
        for (const LocFilePtr &f : doc.files()) {
            if (f->fileName().endsWith(QLatin1String(".stringsdict"))) continue;
            const bool interface = BundleLayout::isInterfaceFile(f->fileName());
            const QString tableName = interface ? QFileInfo(f->fileName()).completeBaseName() + QLatin1String(".strings")
                                                : f->fileName();
            const auto oldTable = table(oldResources + targetFolder + u'/' + tableName);
            const auto newTable = table(resources + targetFolder + u'/' + tableName);
            const QString folder = QFileInfo(f->path()).dir().dirName();
            QHash<QString, QString> oldBase = baseWords(oldResources + folder + u'/' + f->fileName());
            if (oldBase.isEmpty() && interface) oldBase = baseWords(oldResources + QLatin1String("en.lproj/") + tableName);
            for (const LocEntryPtr &e : f->allEntries()) {
                const QString key = *e->keyWord();
                const QString where = f->fileName() + u' ' + key;
                if (oldBase.contains(key) && oldBase.value(key) != e->baseWord().value_or(QString())) {
                    ++changed;
                    QVERIFY2(!e->isChecked(), qPrintable(where));
                    QCOMPARE(e->previousBaseWord(), OptString(oldBase.value(key)));
                    continue;
                }
                QVERIFY2(!e->previousBaseWord(), qPrintable(where));
                const QString plainKey = unescaped(key);
                if (!oldTable || !newTable || !oldTable->contains(plainKey) || oldTable->value(plainKey).isEmpty()
                    || newTable->value(plainKey) != oldTable->value(plainKey) || !oldBase.contains(key))
                    continue;
                ++carried;
                if (unescaped(e->localizedWord()) == oldTable->value(plainKey) && e->isChecked()) ++reproduced;
                else misses.append(where);
            }
        }
        qInfo("%s: %d of %d carried-over translations reproduced (%.1f%%); %d entries with changed base text",
              qPrintable(name), reproduced, carried, carried ? 100.0 * reproduced / carried : 0.0, changed);
        QVERIFY(carried > 100);
        QVERIFY2(misses.isEmpty(), qPrintable(misses.mid(0, 10).join(QLatin1String("; "))));

        // Export into a copy without the target folder: made in the bundle's style (abbreviation).
        QString refusal;
        const ExportResult result = doc.makeLocalizedFilesInto(doc.files(), out, false, &refusal);
        QVERIFY2(!result.cancelled, qPrintable(refusal));
        QCOMPARE(result.folder, out + QLatin1String("/Contents/Resources/") + targetFolder);
        QVERIFY2(result.failed.isEmpty(), qPrintable(result.failed.join(u' ')));
        for (const LocFilePtr &f : doc.files()) {
            if (!BundleLayout::isInterfaceFile(f->fileName())) continue;
            const QString written = result.folder + u'/' + QFileInfo(f->fileName()).completeBaseName() + QLatin1String(".strings");
            QVERIFY2(!QFileInfo::exists(result.folder + u'/' + f->fileName()), qPrintable(f->fileName()));
            const auto map = table(written);
            QVERIFY2(map, qPrintable(written));
            QCOMPARE(map->size(), f->allEntries().size());
            for (const LocEntryPtr &e : f->allEntries())
                QCOMPARE(map->value(unescaped(e->keyWord())), unescaped(e->localizedWord()));
        }

        // The command line does the same job and prints the changed base words.
        const QString cliOut = work + QLatin1String("CliOut.app"), saved = work + QLatin1String("Job.vocabrix");
        QVERIFY(copyTree(bundle, cliOut, u'/' + targetFolder));
        const auto cli = [&](const QStringList &args) {
            QProcess p;
            QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
            env.insert(QStringLiteral("XDG_DATA_HOME"), work + QLatin1String("cli-data"));
            p.setProcessEnvironment(env);
            p.start(QStringLiteral(VOCABRIX_CLI), QStringList{QStringLiteral("--settings"), work + QLatin1String("s.ini")} + args);
            return p.waitForFinished(300000) && p.exitCode() == 0 ? p.readAllStandardOutput() : QByteArray();
        };
        QVERIFY(!cli({QStringLiteral("job"), QStringLiteral("--from"), QStringLiteral("en"), QStringLiteral("--to"), to,
                      QStringLiteral("--add"), bundle, QStringLiteral("--previous"), old, QStringLiteral("--export-to"),
                      cliOut, QStringLiteral("--save"), saved})
                     .isEmpty());
        int printed = 0;
        for (const QByteArray &line : cli({QStringLiteral("doc"), QStringLiteral("entries"), saved}).split('\n'))
            if (QJsonDocument::fromJson(line).object().contains(QStringLiteral("previousBase"))) ++printed;
        QCOMPARE(printed, changed);
        QVERIFY(QFileInfo::exists(cliOut + QLatin1String("/Contents/Resources/") + targetFolder + QLatin1String("/MainMenu.strings")));
    }

    void commandLineWaitsForTheOlderTool()
    {
        const QString samples = QStringLiteral(VOCABRIX_SOURCE_DIR "/samples/");
        const QString work = m_dir.filePath(QStringLiteral("nibtool"));
        QDir().mkpath(work + QLatin1String("/Out"));
        QProcess p;
        QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
        env.insert(QStringLiteral("VOCABRIX_SYSTEM_VERSION"), QStringLiteral("10.4.11"));
        env.insert(QStringLiteral("XDG_DATA_HOME"), work + QLatin1String("/data"));
        p.setProcessEnvironment(env);
        const QString doc = work + QLatin1String("/Job.vocabrix");
        p.start(QStringLiteral(VOCABRIX_CLI),
                {QStringLiteral("--settings"), work + QLatin1String("/s.ini"), QStringLiteral("job"), QStringLiteral("--from"),
                 QStringLiteral("en"), QStringLiteral("--to"), QStringLiteral("fr"), QStringLiteral("--add"),
                 samples + QLatin1String("Notekeeper.app/Contents/Resources/en.lproj/Preferences.xib"),
                 QStringLiteral("--previous"), samples + QLatin1String("Notekeeper-1.0.app/Contents/Resources/fr.lproj/Preferences.xib"),
                 QStringLiteral("--export-to"), work + QLatin1String("/Out"), QStringLiteral("--save"), doc});
        QVERIFY(p.waitForFinished(120000));
        const QString err = QString::fromUtf8(p.readAllStandardError());
        QVERIFY2(p.exitCode() == 0, qPrintable(err));
        const QList<QByteArray> lines = p.readAllStandardOutput().split('\n');
        const QJsonObject file = QJsonDocument::fromJson(lines.first()).object();
        QVERIFY2(file.value(QStringLiteral("entries")).toInt() > 0, lines.first().constData());
        QVERIFY(file.value(QStringLiteral("checked")).toInt() > 0);
        // The saved document holds the entries, and the exported copy the previous words.
        MyDocument reopened;
        QVERIFY(reopened.readFromFile(doc));
        QCOMPARE(reopened.files().first()->allEntries().size(), file.value(QStringLiteral("entries")).toInt());
        const QByteArray exported = TestSupport::readFile(work + QLatin1String("/Out/Preferences.xib"));
        const QByteArray original = TestSupport::readFile(samples + QLatin1String("Notekeeper.app/Contents/Resources/en.lproj/Preferences.xib"));
        QVERIFY(!exported.isEmpty());
        QVERIFY(exported != original);
    }
};

QTEST_GUILESS_MAIN(TestE2EModern)
#include "test_e2e_modern.moc"
