// The whole job on the corpus's applications with the real handlers, compared with the previous
// release's own files (copied, never written in place; skipped without the corpus), and every
// writer of a file replacing it whole. The sample bundle's whole job is a command-line script
// (tests/data/e2e/job-in-one-run, document-step-by-step). Plain ASCII names are spelt as literals.
#undef QT_NO_CAST_FROM_ASCII
#include "BundleLayout.h"
#include "DictWindowController.h"
#include "DictionaryMerge.h"
#include "Handlers.h"
#include "Languages.h"
#include "MyDocument.h"
#include "ScriptedDialogs.h"
#include "StringsTable.h"
#include "TestSupport.h"

namespace {

// A word as an entry holds it (string-table escapes), read the way a string table is read.
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
        const QString source = it.next(), rel = source.mid(from.size());
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

// key word -> base word of a file as the handlers read it (no previous version, no dictionary).
QHash<QString, QString> baseWords(const QString &path)
{
    QHash<QString, QString> map;
    if (!QFileInfo::exists(path)) return map;
    if (const LocFilePtr f = LocFile::initWithPath(path, std::nullopt, std::nullopt))
        for (const LocEntryPtr &e : f->allEntries())
            if (e->keyWord()) map.insert(*e->keyWord(), e->baseWord().value_or(QString()));
    return map;
}

MyDocument *newDocument(ScriptedDialogs &dialogs, const QString &from, const QString &to)
{
    auto *doc = new MyDocument;
    doc->setDialogs(&dialogs);
    doc->setLocLangFrom(*tagForLanguage(from));
    doc->setLocLangTo(*tagForLanguage(to));
    return doc;
}

}  // namespace

class TestE2EBundle : public QObject {
    Q_OBJECT
    std::unique_ptr<TestSupport::Sandbox> m_box;

private slots:
    void initTestCase() { registerResourceHandlers(); }
    void init() { m_box = std::make_unique<TestSupport::Sandbox>(); }
    // Applications laid out for Base internationalization, English to a language: every Base.lproj
    // interface file is added; every key whose translation and base text are the same in both
    // releases comes out with the previous translation, checked; entries whose base text changed
    // start unchecked with their previous base word; the export writes <target>.lproj/X.strings in the
    // bundle's style.
    void baseInternationalization_data()
    {
        QTest::addColumn<QString>("project");
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("to");
        QTest::newRow("Transmission, English to French") << "transmission" << "Transmission" << "fr";
        QTest::newRow("Vienna, English to German") << "vienna-rss" << "Vienna" << "de";
    }
    void baseInternationalization()
    {
        QFETCH(QString, project);
        QFETCH(QString, name);
        QFETCH(QString, to);
        SKIP_WITHOUT_CORPUS();
        const QString source = TestSupport::corpusDir() + QLatin1String("/bundles/") + project + u'/';
        const QString work = m_box->path(project) + u'/';
        const QString bundle = work + name + QLatin1String(".app"), old = work + name + QLatin1String("-old.app");
        const QString out = work + QLatin1String("Out.app"), targetFolder = to + QLatin1String(".lproj");
        QVERIFY(copyTree(source + name + QLatin1String(".app"), bundle));
        QVERIFY(copyTree(source + name + QLatin1String("-old.app"), old));
        QVERIFY(copyTree(bundle, out, u'/' + targetFolder));
        TestSupport::writeFile(bundle + QLatin1String("/Contents/Resources/Base.lproj/._MainMenu.xib"), QByteArray("\0\5\26\7", 4));
        TestSupport::writeFile(bundle + QLatin1String("/Contents/Resources/Base.lproj/.DS_Store"), "Bud1");

        ScriptedDialogs dialogs;
        std::unique_ptr<MyDocument> doc(newDocument(dialogs, QStringLiteral("en"), to));
        doc->addFiles(QList<QPair<QString, OptString>>{{bundle, old}});
        QVERIFY(dialogs.alerts().isEmpty());
        const QString resources = bundle + QLatin1String("/Contents/Resources/"), oldResources = old + QLatin1String("/Contents/Resources/");
        QStringList interfaceFiles, added;
        for (const QString &n : QDir(resources + BundleLayout::kBaseFolder).entryList(QDir::Files, QDir::Name))
            if (BundleLayout::isInterfaceFile(n) && !n.startsWith(u'.')) interfaceFiles.append(n);
        for (const LocFilePtr &f : doc->files()) {
            QVERIFY2(!f->fileName().startsWith(u'.'), qPrintable(f->path()));
            if (BundleLayout::isInBaseFolder(f->path()) && BundleLayout::isInterfaceFile(f->fileName())) added.append(f->fileName());
        }
        added.sort();
        QCOMPARE(added, interfaceFiles);

        // Words and marks against both releases' own files.
        int carried = 0;
        QStringList misses;
        for (const LocFilePtr &f : doc->files()) {
            if (f->fileName().endsWith(QLatin1String(".stringsdict"))) continue;
            const bool interface = BundleLayout::isInterfaceFile(f->fileName());
            const QString tableName = interface ? QFileInfo(f->fileName()).completeBaseName() + QLatin1String(".strings") : f->fileName();
            const auto oldTable = table(oldResources + targetFolder + u'/' + tableName);
            const auto newTable = table(resources + targetFolder + u'/' + tableName);
            QHash<QString, QString> oldBase = baseWords(oldResources + QFileInfo(f->path()).dir().dirName() + u'/' + f->fileName());
            if (oldBase.isEmpty() && interface) oldBase = baseWords(oldResources + QLatin1String("en.lproj/") + tableName);
            for (const LocEntryPtr &e : f->allEntries()) {
                const QString key = *e->keyWord(), where = f->fileName() + u' ' + key;
                if (oldBase.contains(key) && oldBase.value(key) != e->baseWord().value_or(QString())) {
                    QVERIFY2(!e->isChecked(), qPrintable(where));
                    QCOMPARE(e->previousBaseWord(), OptString(oldBase.value(key)));
                    continue;
                }
                QVERIFY2(!e->previousBaseWord(), qPrintable(where));
                const QString plainKey = unescaped(key);
                if (!oldTable || !newTable || oldTable->value(plainKey).isEmpty() || newTable->value(plainKey) != oldTable->value(plainKey)
                    || !oldBase.contains(key))
                    continue;
                ++carried;
                if (unescaped(e->localizedWord()) != oldTable->value(plainKey) || !e->isChecked()) misses.append(where);
            }
        }
        QVERIFY(carried > 100);
        QVERIFY2(misses.isEmpty(), qPrintable(misses.mid(0, 10).join(QLatin1String("; "))));

        // Export into a copy without the target folder: made in the bundle's style (abbreviation).
        QString refusal;
        const ExportResult result = doc->makeLocalizedFilesInto(doc->files(), out, false, &refusal);
        QVERIFY2(!result.cancelled, qPrintable(refusal));
        QCOMPARE(result.folder, out + QLatin1String("/Contents/Resources/") + targetFolder);
        QVERIFY2(result.failed.isEmpty(), qPrintable(result.failed.join(u' ')));
        for (const LocFilePtr &f : doc->files()) {
            if (!BundleLayout::isInterfaceFile(f->fileName())) continue;
            const QString written = result.folder + u'/' + QFileInfo(f->fileName()).completeBaseName() + QLatin1String(".strings");
            QVERIFY2(!QFileInfo::exists(result.folder + u'/' + f->fileName()), qPrintable(f->fileName()));
            const auto map = table(written);
            QVERIFY2(map, qPrintable(written));
            QCOMPARE(map->size(), f->allEntries().size());
            for (const LocEntryPtr &e : f->allEntries()) QCOMPARE(map->value(unescaped(e->keyWord())), unescaped(e->localizedWord()));
        }
    }
    // A writer that rewrites a file in place loses the user's file when the disk fills or the power
    // fails midway; every writer must put a whole new file in the old one's place.
    void everyWriterReplacesTheFileWhole_data()
    {
        QTest::addColumn<QString>("file");  // what is written, and how
        for (const char *row : {"document", "dictionary merge", "dictionary browser", "Localizable.strings", "Templates.plist", "Preferences.xib", "vocabrix-ibtool --write"})
            QTest::newRow(row) << row;
    }
    void everyWriterReplacesTheFileWhole()
    {
        QFETCH(QString, file);
        ScriptedDialogs dialogs;
        MyDocument doc;
        doc.setDialogs(&dialogs);
        std::function<bool()> write;
        QString path;
        StringMap pairs;
        pairs.insert(QStringLiteral("Open"), QStringLiteral("Ouvrir"));
        QList<LocFilePtr> one;
        if (file == QLatin1String("document")) {
            path = m_box->path(QStringLiteral("Doc.vocabrix"));
            write = [&] { return doc.writeToFile(path); };
        } else if (file.startsWith(QLatin1String("dictionary"))) {
            path = doc.dictionaryPath();
            if (file.endsWith(QLatin1String("merge"))) write = [&] { return mergeIntoDictionary(path, pairs, nullptr).written; };
            else write = [&] { DictWindowController browser(path); browser.addDictionary(pairs); return browser.saveDictionary(); };
        } else if (file.startsWith(QLatin1String("vocabrix-ibtool"))) {
            // The export removes its old interface file before the tool writes; here the tool's own writer.
            path = m_box->path(QStringLiteral("tool/Out.xib"));
            const QStringList args{QStringLiteral(VOCABRIX_SOURCE_DIR "/samples/Notekeeper.app/Contents/Resources/en.lproj/Preferences.xib"),
                                   "--strings-file", m_box->write("tool/t.strings", "\"Kp2-9d-Lx1.title\" = \"Ouvrir\";\n"), "--write", path};
            write = [&, args] { return TestSupport::runProgram(TestSupport::toolPath("vocabrix-ibtool"), args).exitCode == 0; };
        } else {
            const QString samples = QStringLiteral(VOCABRIX_SOURCE_DIR "/samples/");
            doc.addFiles(QList<QPair<QString, OptString>>{{samples + QLatin1String("Notekeeper.app"), samples + QLatin1String("Notekeeper-1.0.app")}});
            for (const LocFilePtr &f : doc.files())
                if (f->fileName() == file) one.append(f);
            QCOMPARE(one.size(), 1);
            path = m_box->path(QStringLiteral("out/")) + file;
            write = [&] { return doc.makeLocalizedFilesInto(one, m_box->path(QStringLiteral("out")), true).written.size() == 1; };
        }
        TestSupport::writeFile(path, "\"Old\" = \"Vieux\";\n");  // readable, so nothing is kept aside
        QVERIFY2(TestSupport::writesAtomically(path, write), qPrintable(path));
    }
};

QTEST_GUILESS_MAIN(TestE2EBundle)
#include "test_e2e_bundle.moc"
