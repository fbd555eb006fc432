// The whole job on a bundle-shaped tree, with the real handlers: add the bundle with its previous
// release, compare the pre-filled words and check marks with the previous release's files,
// translate a few entries, export into a copy of the bundle, and compare the written files and
// the dictionary with what was in the document. Runs on the shared corpus's bundles when they
// are there, and always on the project's own sample bundle.
#include "Handlers.h"
#include "Languages.h"
#include "MyDocument.h"
#include "PropertyList.h"
#include "ScriptedDialogs.h"
#include "StringsTable.h"
#include "TestSupport.h"

#include <QDirIterator>

namespace {

// A word as an entry holds it (string-table escapes) read the way a string table is read.
QString unescaped(const OptString &word)
{
    if (!word) return QString();
    const auto map = StringsTable::parse(QStringLiteral("\"w\" = \"%1\";").arg(*word));
    return map ? map->value(QStringLiteral("w")) : *word;
}

bool copyTree(const QString &from, const QString &to)
{
    QDirIterator it(from, QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden, QDirIterator::Subdirectories);
    QDir().mkpath(to);
    while (it.hasNext()) {
        const QString source = it.next();
        const QString target = to + source.mid(from.size());
        if (it.fileInfo().isDir()) QDir().mkpath(target);
        else if (!QFile::copy(source, target)) return false;
    }
    return true;
}

QString languageFolder(const QString &bundle, int tag)
{
    const QString resources = bundle + QLatin1String("/Contents/Resources/");
    const QString key = *languageKeyForLanguage(tag) + QLatin1String(".lproj");
    if (QFileInfo::exists(resources + key)) return resources + key;
    return resources + *languageAbbreviationForLanguage(tag) + QLatin1String(".lproj");
}

}  // namespace

class TestE2EBundle : public QObject {
    Q_OBJECT

private slots:
    void initTestCase();
    void wholeJob_data();
    void wholeJob();
};

void TestE2EBundle::initTestCase()
{
    registerResourceHandlers();
}

void TestE2EBundle::wholeJob_data()
{
    QTest::addColumn<QString>("bundle");
    QTest::addColumn<QString>("previous");
    QTest::addColumn<QString>("from");
    QTest::addColumn<QString>("to");
    const QString samples = QStringLiteral(VOCABRIX_SOURCE_DIR "/samples/");
    QTest::newRow("sample bundle") << samples + QLatin1String("Notekeeper.app")
                                   << samples + QLatin1String("Notekeeper-1.0.app") << "en" << "fr";
    const QString corpus = TestSupport::corpusDir();
    const QString bundles = corpus + QLatin1String("/bundles/");
    // English to a language on these bundles (Base internationalization) is test_e2e_modern's.
    QTest::newRow("corpus: Vienna, Base to German")
        << bundles + QLatin1String("vienna-rss/Vienna.app") << bundles + QLatin1String("vienna-rss/Vienna-old.app")
        << "Base" << "de";
}

void TestE2EBundle::wholeJob()
{
    QFETCH(QString, bundle);
    QFETCH(QString, previous);
    QFETCH(QString, from);
    QFETCH(QString, to);
    if (!QFileInfo(bundle).isDir())
        QSKIP(qPrintable(QStringLiteral("%1 is absent (the shared corpus is not here); skipping").arg(bundle)));

    QTemporaryDir dir;
    QVERIFY(dir.isValid());
    TestSupport::isolate(dir);
    QStandardPaths::setTestModeEnabled(false);
    qputenv("XDG_DATA_HOME", QFile::encodeName(dir.filePath(QStringLiteral("data"))));
    const QString dest = dir.filePath(QStringLiteral("Dest.app"));
    QVERIFY(copyTree(bundle, dest));

    MyDocument doc;
    ScriptedDialogs dialogs;
    doc.setDialogs(&dialogs);
    doc.setLocLangFrom(*tagForLanguage(from));
    doc.setLocLangTo(*tagForLanguage(to));
    QVERIFY(!QFileInfo::exists(doc.dictionaryPath()));

    // 1. Add the bundle; the one previous-version panel is answered with the old release.
    dialogs.queuePanelAnswer(previous);
    doc.addFiles(QStringList{bundle});
    QCOMPARE(dialogs.panels().size(), 1);
    const QString baseFolder = languageFolder(bundle, doc.locLangFrom());
    const QString previousFolder = languageFolder(previous, doc.locLangTo());
    QStringList expected;
    for (const QString &name : QDir(baseFolder).entryList(QDir::AllEntries | QDir::NoDotAndDotDot, QDir::Name | QDir::IgnoreCase))
        if (!name.contains(QLatin1String("~.nib"))
            && QStringList{QStringLiteral("nib"), QStringLiteral("xib"), QStringLiteral("strings"), QStringLiteral("plist"),
                           QStringLiteral("storyboard"), QStringLiteral("stringsdict")}
                   .contains(QFileInfo(name).suffix()))
            expected.append(name);
    QStringList added;
    for (const LocFilePtr &f : doc.files()) added.append(f->fileName());
    QCOMPARE(added, expected);
    QVERIFY(!added.isEmpty());

    // 2. Words and marks against the previous release: by key for string tables; interface files
    // without a previous interface file keep their base words.
    int compared = 0;
    QList<LocEntryPtr> toTranslate;
    for (const LocFilePtr &f : doc.files()) {
        const QString prevPath = previousFolder + u'/' + f->fileName();
        if (f->path().endsWith(QLatin1String(".strings"))) {
            const auto prev = dictionaryWithContentsOfFile(prevPath);
            for (const LocEntryPtr &e : f->allEntries()) {
                const QString key = unescaped(e->keyWord() ? e->keyWord() : e->baseWord());
                if (prev && prev->contains(key)) {
                    QCOMPARE(unescaped(e->localizedWord()), prev->value(key));
                    QVERIFY2(e->isChecked(), qPrintable(f->fileName() + u' ' + key));
                    ++compared;
                } else {
                    QCOMPARE(e->localizedWord(), e->baseWord());
                    if (StringUtility::wordLength(e->baseWord()) > 1) {
                        QVERIFY2(!e->isChecked(), qPrintable(f->fileName() + u' ' + key));
                        if (toTranslate.size() < 3 && !e->baseWord()->contains(u'\\')) toTranslate.append(e);
                    }
                }
            }
        } else if (!QFileInfo::exists(prevPath) && !f->path().endsWith(QLatin1String(".plist"))) {
            for (const LocEntryPtr &e : f->allEntries()) QCOMPARE(e->localizedWord(), e->baseWord());
        }
    }
    QVERIFY2(compared > 0, "no word came from the previous release");
    QVERIFY(!toTranslate.isEmpty());

    // 3. Translate a few entries, with quotes that must survive every step.
    QStringList words, infoPlistWords;
    for (int i = 0; i < toTranslate.size(); ++i) {
        words.append(QStringLiteral("Traduit \"%1\" \u00E9t\u00E9").arg(i));
        toTranslate.at(i)->setLocalizedWord(words.last());
        QVERIFY(toTranslate.at(i)->isChecked());
        for (const LocFilePtr &f : doc.files())
            if (f->fileName() == QLatin1String("InfoPlist.strings") && f->allEntries().contains(toTranslate.at(i)))
                infoPlistWords.append(words.last());
    }

    // 4. Export into the copy; a target folder already there is warned about and accepted.
    const bool hadTargetFolder = QFileInfo::exists(dest + QLatin1String("/Contents/Resources/") + *doc.targetFolderName())
        || QFileInfo::exists(dest + QLatin1String("/Contents/Resources/") + *doc.targetLanguageAbbreviation() + QLatin1String(".lproj"));
    dialogs.clearLog();
    dialogs.queuePanelAnswer(dest);
    dialogs.queueAlertButton(0);
    const ExportResult result = doc.makeAllLocalizedFilesAction();
    QCOMPARE(result.folder, languageFolder(dest, doc.locLangTo()));
    QCOMPARE(dialogs.alerts().size(), hadTargetFolder ? 1 : 0);
    QVERIFY2(result.failed.isEmpty(), qPrintable(result.failed.join(u' ')));
    QCOMPARE(result.written.size(), doc.files().size());

    // 5. The written files hold the document's words.
    for (const LocFilePtr &f : doc.files()) {
        const QString out = result.folder + u'/' + f->fileName();
        if (f->path().endsWith(QLatin1String(".strings"))) {
            const auto written = dictionaryWithContentsOfFile(out);
            QVERIFY2(written, qPrintable(out));
            for (const LocEntryPtr &e : f->allEntries())
                QCOMPARE(written->value(unescaped(e->keyWord() ? e->keyWord() : e->baseWord())),
                         unescaped(e->localizedWord()));
        } else if (f->path().endsWith(QLatin1String(".plist"))) {
            QVERIFY2(plist::readFile(out).value, qPrintable(out));
        } else {
            QVERIFY2(QFileInfo(out).size() > 0, qPrintable(out));
        }
    }
    for (const QString &word : std::as_const(words)) {
        bool found = false;
        for (const QString &out : result.written) found = found || QString::fromUtf8(TestSupport::readFile(out)).contains(
                                                                      QString(word).replace(u'"', QLatin1String("\\\"")));
        QVERIFY2(found, qPrintable(word));
    }

    // 6. The dictionary of the pair holds exactly the pairs of the export; the information-list
    // table gives none.
    const auto dictionary = dictionaryWithContentsOfFile(doc.dictionaryPath());
    QVERIFY(dictionary);
    QCOMPARE(*dictionary, result.pairs);
    QCOMPARE(result.merge.pairCount, result.pairs.size());
    for (const QString &word : std::as_const(words)) {
        bool found = false;
        for (const auto &pair : *dictionary) found = found || pair.second == word;
        QVERIFY2(found != infoPlistWords.contains(word), qPrintable(word));
    }

    // 7. Saved and reopened, the document is the same.
    const QString docPath = dir.filePath(QStringLiteral("Job.vocabrix"));
    QVERIFY(doc.writeToFile(docPath));
    MyDocument reopened;
    QVERIFY(reopened.readFromFile(docPath));
    QCOMPARE(reopened.files().size(), doc.files().size());
    for (qsizetype i = 0; i < doc.files().size(); ++i) {
        QCOMPARE(reopened.files().at(i)->status(), doc.files().at(i)->status());
        QCOMPARE(reopened.files().at(i)->allEntries().size(), doc.files().at(i)->allEntries().size());
    }
}

QTEST_GUILESS_MAIN(TestE2EBundle)
#include "test_e2e_bundle.moc"
