// Bundles laid out for Base internationalization, and language folders in every form: which
// folder stands for a language (key, abbreviation, a single regional folder, or a question), the
// style of a folder that must be made, the files a bundle adds in each of Apple's layouts with
// their previous versions and previous base files, hidden files, changed base words, and the
// wait for files whose reading ends later. String tables go through a fake handler.
#include "BundleLayout.h"
#include "DocumentTestSupport.h"
#include "Languages.h"
#include "LocalizedText.h"
#include "MyDocument.h"
#include "ScriptedDialogs.h"
#include "Settings.h"
#include "CaseData.h"

#include <QTimer>

using namespace Qt::StringLiterals;

namespace {

// Reads like the older interface tool: the entries arrive a moment after the file was made.
class LateHandler : public ResourceHandler {
public:
    void extract(LocFile &file, const OptString &, const OptString &) override
    {
        LocFile *f = &file;
        QTimer::singleShot(50, f, [f] {
            f->setAllEntries({LocEntry::initWithEntry(QStringLiteral("/* \"k\"=\"Open\" */\n\"Open\" = \"Ouvrir\";"))});
            f->finishReadingFile();
        });
    }
    StringMap makeLocalized(LocFile &file, const QString &folder) override
    {
        TestSupport::writeFile(QDir(folder).filePath(file.fileName()), file.allEntries().isEmpty() ? "" : "read");
        StringMap pairs;
        for (const LocEntryPtr &e : file.allEntries()) pairs.insert(*e->baseWord(), *e->localizedWord());
        return pairs;
    }
};

QStringList strings(std::initializer_list<const char *> list)
{
    QStringList out;
    for (const char *s : list) out.append(QString::fromUtf8(s));
    return out;
}

QStringList split(const QString &list)
{
    return list.split(u',', Qt::SkipEmptyParts);
}

}  // namespace

class TestBundleLayout : public QObject {
    Q_OBJECT
    std::unique_ptr<TestSupport::Sandbox> m_box;
    std::shared_ptr<FakeStringsHandler> m_fake;
    ScriptedDialogs m_dialogs;
    QString path(const QString &relative) const { return m_box->path(relative); }
    void files(const QString &under, std::initializer_list<const char *> names, const QByteArray &bytes = "\"k\" = \"v\";\n")
    {
        for (const QString &name : strings(names)) TestSupport::writeFile(path(under + u'/' + name), bytes);
    }

private slots:
    void init()
    {
        m_box = std::make_unique<TestSupport::Sandbox>();  // a fresh tree per test
        m_fake = installFakeStringsHandler();
        m_dialogs = ScriptedDialogs();
        setInterfaceLanguage(QStringLiteral("en"));
        qunsetenv("VOCABRIX_SYSTEM_VERSION");
    }
    void cleanup()
    {
        for (const auto &key : Settings::keys()) Settings::instance().remove(key.name);
        qunsetenv("VOCABRIX_SYSTEM_VERSION");
    }

    void languageFolders_data() { TestSupport::addTableRows(u"document"_s, u"language-folders.tsv"_s, {u"folders"_s, u"language"_s, u"candidates"_s, u"newFolder"_s}); }
    void languageFolders()
    {
        QFETCH(QString, folders);
        QFETCH(QString, language);
        QFETCH(QString, candidates);
        QFETCH(QString, newFolder);
        const QString resources = path(QStringLiteral("R"));
        QDir().mkpath(resources);
        for (const QString &f : split(folders)) QDir(resources).mkdir(f + QLatin1String(".lproj"));
        const int tag = *tagForLanguage(language);
        const QString key = *languageKeyForLanguage(tag), abbreviation = *languageAbbreviationForLanguage(tag);
        QCOMPARE(BundleLayout::candidateFolders(resources, key, abbreviation), split(candidates));
        QCOMPARE(BundleLayout::newFolderName(resources, key, abbreviation), newFolder);
    }

    void bundleFiles_data()
    {
        QTest::addColumn<QString>("resources");  // where the layout keeps its language folders
        QTest::addColumn<QString>("from");
        QTest::addColumn<QStringList>("expected");  // path | previous | previous base, under the resources
        const QStringList modern = strings({
            "Base.lproj/Local.strings|fr.lproj/Local.strings|",
            "Base.lproj/Main.xib|fr.lproj/Main.strings|Base.lproj/Main.xib",
            "Base.lproj/Plural.stringsdict|fr.lproj/Plural.stringsdict|",
            "Base.lproj/Sheet.storyboard|fr.lproj/Sheet.strings|en.lproj/Sheet.strings",
            "Base.lproj/Window.xib|fr.lproj/Window.xib|",
            "en.lproj/InfoPlist.strings|fr.lproj/InfoPlist.strings|",
            "en.lproj/Localizable.strings|fr.lproj/Localizable.strings|en.lproj/Localizable.strings"});
        QTest::newRow("application") << "Foo.app/Contents/Resources" << "en" << modern;
        QTest::newRow("framework") << "Foo.framework/Resources" << "en" << modern;
        QTest::newRow("framework, versioned") << "Foo.framework/Versions/Current/Resources" << "en" << modern;
        QTest::newRow("Base as the base language, as before")
            << "Foo.app/Contents/Resources" << "Base"
            << strings({"Base.lproj/Local.strings|fr.lproj/Local.strings|",
                           "Base.lproj/Main.xib|fr.lproj/Main.xib|",
                           "Base.lproj/Plural.stringsdict|fr.lproj/Plural.stringsdict|",
                           "Base.lproj/Sheet.storyboard|fr.lproj/Sheet.storyboard|",
                           "Base.lproj/Window.xib|fr.lproj/Window.xib|"});
    }
    void bundleFiles()
    {
        QFETCH(QString, resources);
        QFETCH(QString, from);
        QFETCH(QStringList, expected);
        files(resources + QLatin1String("/Base.lproj"),
              {"Main.xib", "Sheet.storyboard", "Window.xib", "Local.strings", "Plural.stringsdict", ".DS_Store",
               "._Main.xib", "Main~.nib", "Notes.rtf"});
        files(resources + QLatin1String("/en.lproj"),
              {"Localizable.strings", "InfoPlist.strings", "Main.strings", "._Localizable.strings", ".hidden.strings"});
        const QString old = QString(resources).replace(QLatin1String("Foo."), QLatin1String("Old."));
        files(old + QLatin1String("/Base.lproj"), {"Main.xib"});
        files(old + QLatin1String("/en.lproj"), {"Localizable.strings", "Sheet.strings"});
        files(old + QLatin1String("/fr.lproj"), {"Main.strings", "Localizable.strings", "Window.xib"});

        MyDocument doc;
        doc.setDialogs(&m_dialogs);
        doc.setLocLangFrom(*tagForLanguage(from));
        doc.setLocLangTo(*tagForLanguage(QStringLiteral("fr")));
        const QString bundle = path(resources.section(u'/', 0, 0));
        const QString previous = path(old.section(u'/', 0, 0));
        QStringList listed;
        const auto relative = [&](const QString &p, const QString &root) {
            return p.isEmpty() ? QString() : QDir(path(root)).relativeFilePath(p);
        };
        for (const MyDocument::BundleFile &f : doc.bundleFiles(bundle, previous))
            listed.append(relative(f.path, resources) + u'|' + relative(f.previous, old) + u'|' + relative(f.previousBase, old));
        QCOMPARE(listed, expected);
        QVERIFY(m_dialogs.alerts().isEmpty());
    }

    void changedBaseWords()
    {
        const QString r = QStringLiteral("Foo.app/Contents/Resources/"), o = QStringLiteral("Old.app/Contents/Resources/");
        QDir().mkpath(path(r + QLatin1String("Base.lproj")));
        files(r + QLatin1String("en.lproj"), {"Localizable.strings"}, "\"a\" = \"Open\";\n\"b\" = \"Close file\";\n\"c\" = \"New\";\n");
        files(o + QLatin1String("en.lproj"), {"Localizable.strings"}, "\"a\" = \"Open\";\n\"b\" = \"Close\";\n");
        files(o + QLatin1String("fr.lproj"), {"Localizable.strings"}, "\"a\" = \"Ouvrir\";\n\"b\" = \"Fermer\";\n");
        MyDocument doc;
        doc.setDialogs(&m_dialogs);
        doc.setLocLangFrom(*tagForLanguage(QStringLiteral("en")));
        doc.setLocLangTo(*tagForLanguage(QStringLiteral("fr")));
        doc.addFiles(QList<QPair<QString, OptString>>{{path(QStringLiteral("Foo.app")), path(QStringLiteral("Old.app"))}});
        QCOMPARE(doc.files().size(), 1);
        QStringList seen;
        for (const LocEntryPtr &e : doc.files().first()->allEntries())
            seen << *e->keyWord() + u'=' + *e->localizedWord() + (e->isChecked() ? u'+' : u'-')
                        + e->previousBaseWord().value_or(QString());
        // Unchanged: the old word, checked; changed: the old word kept, unchecked, the old base
        // beside it; new: nothing from the previous release.
        QCOMPARE(seen, strings({"a=Ouvrir+", "b=Fermer-Close", "c=New-"}));
        QCOMPARE(doc.changedBaseCount(), 1);
        doc.setShowOnlyChangedBase(true);
        QCOMPARE(doc.files().first()->entries().size(), 1);
        QCOMPARE(*doc.files().first()->entries().first()->keyWord(), QStringLiteral("b"));
        doc.setShowOnlyChangedBase(false);
        QCOMPARE(doc.files().first()->entries().size(), 3);
    }

    void exportFolder_data()
    {
        TestSupport::addTableRows(u"document"_s, u"export-folders.tsv"_s, {u"resources"_s, u"folders"_s, u"choice"_s, u"answers"_s, u"expected"_s, u"panelExpected"_s});
    }
    void exportFolder()
    {
        QFETCH(QString, resources);
        QFETCH(QString, folders);
        QFETCH(QString, choice);
        QFETCH(QString, answers);
        QFETCH(QString, expected);
        QFETCH(QString, panelExpected);
        files(QStringLiteral("In/en.lproj"), {"A.strings"});
        for (const QString &f : split(folders)) QDir().mkpath(path(resources + u'/' + f + QLatin1String(".lproj")));
        const QString bundle = path(resources.section(u'/', 0, 0));

        for (const bool panel : {false, true}) {
            MyDocument doc;
            doc.setDialogs(&m_dialogs);
            doc.setLocLangTo(*tagForLanguage(QStringLiteral("ja")));
            if (!choice.isEmpty()) doc.setTargetFolderChoice(choice);
            doc.addFiles(QList<QPair<QString, OptString>>{{path(QStringLiteral("In/en.lproj/A.strings")), std::nullopt}});
            ExportResult result;
            if (panel) {
                m_dialogs.queuePanelAnswer(bundle);
                m_dialogs.queuePanelCancel();  // after a cancelled question the panel comes again
                for (const QString &a : split(answers)) m_dialogs.queueAlertButton(a.toInt());
                result = doc.makeAllLocalizedFilesAction();
            } else {
                QString refusal;
                result = doc.makeLocalizedFilesInto(doc.files(), bundle, true, &refusal);
                if (expected.isEmpty()) QVERIFY2(refusal.contains(QLatin1String("several folders")), qPrintable(refusal));
            }
            const QString want = panel ? panelExpected : expected;
            QCOMPARE(result.cancelled, want.isEmpty());
            if (!want.isEmpty()) {
                QCOMPARE(result.folder, path(resources + u'/' + want));
                QVERIFY(QFileInfo::exists(result.folder + QLatin1String("/A.strings")));
            }
            for (const QString &f : QDir(path(resources)).entryList(QDir::Dirs | QDir::NoDotAndDotDot))
                QVERIFY2(split(folders).contains(f.chopped(6)) || f == want, qPrintable(f));
        }
    }

    void savingAndExportWaitForLateReading()
    {
        HandlerRegistry::registerHandler(HandlerKind::Nibtool, std::make_shared<LateHandler>());
        qputenv("VOCABRIX_SYSTEM_VERSION", "10.4.11");
        for (const bool exportFirst : {false, true}) {
            files(QStringLiteral("W/en.lproj"), {"Prefs.xib"}, "<xib/>");
            MyDocument doc;
            doc.setDialogs(&m_dialogs);
            doc.addFiles(QList<QPair<QString, OptString>>{{path(QStringLiteral("W/en.lproj/Prefs.xib")), std::nullopt}});
            QVERIFY(doc.isReadingFiles());
            QVERIFY(doc.files().first()->allEntries().isEmpty());
            if (exportFirst) {
                const ExportResult result = doc.makeLocalizedFilesInto(doc.files(), path(QStringLiteral("W/out")), true);
                QCOMPARE(TestSupport::readFile(path(QStringLiteral("W/out/Prefs.xib"))), QByteArray("read"));
                QCOMPARE(result.pairs.value(QStringLiteral("Open")), QStringLiteral("Ouvrir"));
            }
            const QString saved = path(QStringLiteral("W/doc.vocabrix"));
            QVERIFY(doc.writeToFile(saved));
            QVERIFY(!doc.isReadingFiles());
            MyDocument reopened;
            QVERIFY(reopened.readFromFile(saved));
            QCOMPARE(reopened.files().first()->allEntries().size(), 1);
        }
    }
};

QTEST_GUILESS_MAIN(TestBundleLayout)
#include "test_bundle_layout.moc"
