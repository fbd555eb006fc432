// The nibtool handler through LocFile (system 10.4): one run or two, the entries appearing only
// when the output has ended and announced once; localized words paired by object marker; the
// merge table and the pairs of an export; the exact command lines; a missing, failing, crashing
// or hanging tool as a tool that listed nothing, with a warning. Stand-in scripts play the tool
// where its output must be exact; the built vocabrix-nibtool runs the whole road once.

#include "Handlers.h"
#include "InterfaceCases.h"
#include "InterfaceFile.h"
#include "LocFile.h"
#include "NotificationCenter.h"

#include <QSignalSpy>
#include <QTest>

using namespace TestSupport;

namespace {

// What the older tool prints without a dictionary and a previous version (nibtool-base.txt) and
// with them (nibtool-translated.txt: a marker twice, the first counts; one empty value; one
// marker missing).
QString listing(const char *name) { return dataDir(u"handlers/nibtool-"_qs) + QLatin1String(name) + u".txt"_qs; }
QString listingText(const char *name) { return QString::fromUtf8(readFile(listing(name))); }

}  // namespace

class TestNibtoolHandler : public QObject {
    Q_OBJECT
    QTemporaryDir m_dir;
    int m_count = 0;
    QString m_case;

    QString path(const QString &name) const { return QDir(m_case).filePath(name); }
    QStringList log() const
    {
        return QString::fromUtf8(readFile(path(u"log"_qs))).split(u'\n', Qt::SkipEmptyParts);
    }
    // A stand-in tool that logs "working directory|arguments", then answers as `mode` says:
    // the base listing, or the translated one when given -I or -d; a merge copies the file.
    void fakeTool(const QByteArray &before = {})
    {
        const QByteArray dir = m_case.toUtf8();
        const QString tool = path(u"fake-nibtool"_qs);
        writeFile(tool, "#!/bin/bash\necho \"$PWD|$*\" >> '" + dir + "/log'\n" + before + "\n"
                                         "if [[ \" $* \" == *\" -w \"* ]]; then cp \"$3\" '" + dir + "/table-seen'; "
                                         "cp -R \"$6\" \"$5\"; exit 0; fi\n"
                                         "if [[ \" $* \" == *\" -I \"* || \" $* \" == *\" -d \"* ]]; then cat '"
                                         + listing("translated").toUtf8() + "'; else cat '" + listing("base").toUtf8() + "'; fi\n");
        QFile::setPermissions(tool, QFile::permissions(tool) | QFileDevice::ExeOwner);
        qputenv("VOCABRIX_NIBTOOL", tool.toUtf8());
    }
    LocFilePtr readAndWait(const OptString &dictionary, const OptString &previous, int *announced = nullptr)
    {
        QSignalSpy finished(&NotificationCenter::instance(), &NotificationCenter::locFileFinishReadingFile);
        LocFilePtr file = LocFile::initWithPath(path(u"Window.nib"_qs), dictionary, previous);
        if (!file) return nullptr;
        // Nothing is there, nor announced, before the output has ended.
        if (!file->allEntries().isEmpty() || finished.count() != 0) return nullptr;
        if (!finished.wait(20'000)) return nullptr;
        QTest::qWait(50);  // a second announcement would come now
        if (announced) *announced = int(finished.count());
        if (finished.first().first().value<LocFile *>() != file.get()) return nullptr;
        return file;
    }

private slots:
    void initTestCase()
    {
        QVERIFY(m_dir.isValid());
        isolate(m_dir);
        qputenv("VOCABRIX_SYSTEM_VERSION", "10.4.11");
        registerResourceHandlers();
    }
    void init()
    {
        m_case = m_dir.filePath(QStringLiteral("case%1").arg(++m_count));
        QDir().mkpath(m_case);
        writeFile(path(u"Window.nib"_qs), "a nib");
    }
    void cleanup()
    {
        qunsetenv("VOCABRIX_NIBTOOL");
        qunsetenv("VOCABRIX_TOOL_TIMEOUT");
        Settings::instance().setValue(SettingsKey::IgnoreLocalizedWords, false);
    }

    // One row per way of reading (tests/data/handlers/nibtool-runs.tsv): the stand-in tool's
    // shell body run before its answer ("missing": no tool at all), whether a previous version
    // and a dictionary are given, the command lines expected ("" when not checked), the words
    // and marks read, the status, and a piece of the warning ("" for none). Each is announced
    // once, after the output has ended.
    void runs_data()
    {
        addCaseRows(u"handlers/nibtool-runs.tsv"_qs, {"body", "previous", "dictionary", "commands", "words", "status", "warning"});
    }
    void runs()
    {
        QFETCH(QString, body);
        QFETCH(QString, previous);
        QFETCH(QString, dictionary);
        QFETCH(QString, commands);
        QFETCH(QString, words);
        QFETCH(QString, status);
        QFETCH(QString, warning);
        fakeTool(body == u"missing" ? QByteArray() : body.toUtf8());
        if (body == u"missing") qputenv("VOCABRIX_NIBTOOL", path(u"no-such-tool"_qs).toUtf8());
        qputenv("VOCABRIX_TOOL_TIMEOUT", "1");
        const OptString old = previous == u"yes" ? OptString(writeFile(path(u"fr/Window.nib"_qs), "old")) : std::nullopt;
        const OptString dict = dictionary == u"yes" ? OptString(writeFile(path(u"en-fr.strings"_qs), "\"Cancel\" = \"Cancel\";\n"))
                                                    : std::nullopt;
        int announced = 0;
        const LocFilePtr file = readAndWait(dict, old, &announced);
        QVERIFY(file);
        QCOMPARE(announced, 1);
        if (!commands.isEmpty())
            QCOMPARE(log().join(u'\n'), commands.replace(u"{dir}"_qs, m_case)
                                             .replace(u"{previous}"_qs, old.value_or(QString()))
                                             .replace(u"{dictionary}"_qs, dict.value_or(QString())));
        QCOMPARE(entryWords(file, true), words);
        QCOMPARE(file->status(), status);
        QCOMPARE(file->initError(), QString());
        QVERIFY2(warning.isEmpty() ? file->warnings().isEmpty() : file->warnings().join(u'\n').contains(warning),
                 qPrintable(file->warnings().join(u'\n')));
        QCOMPARE(file->readNoDict, old.has_value() || dict.has_value());  // two runs
        QVERIFY(!file->tempDictPath);
        // Every block has the same form, the last one too.
        if (!file->allEntries().isEmpty())
            QCOMPARE(file->allEntries().last()->entry(),
                     S("/* NSButton (Cancel) : <title:Cancel> (oid:30) */\n\"Cancel\" = \"Cancel\";"));
    }

    // Export: the merge table holds every entry (hidden ones too), each followed by an empty
    // line; the tool merges it into the folder, replacing what stood there; the table's pairs
    // come back, and the table is gone.
    void exportMergesTheTable()
    {
        fakeTool();
        const QString previous = writeFile(path(u"fr/Window.nib"_qs), "old");
        const LocFilePtr file = readAndWait(std::nullopt, OptString(previous));
        QVERIFY(file);
        Settings::instance().setValue(SettingsKey::IgnoreLocalizedWords, true);
        file->searchEntryWithKey(std::nullopt);
        QCOMPARE(file->entries().size(), 2);
        file->allEntries()[2]->setLocalizedWord(QString());  // emptied: no pair, whatever the check mark
        file->allEntries()[2]->setCheck(true);

        const QString out = path(u"out/fr.lproj"_qs);
        writeFile(out + u"/Window.nib/keyedobjects.nib"_qs, "stale folder");
        const StringMap pairs = file->makeLocalizedFileAt(out);
        QString expected;
        for (const LocEntryPtr &e : file->allEntries()) expected += e->entry() + u"\n\n"_qs;
        QCOMPARE(QString::fromUtf8(readFile(path(u"table-seen"_qs))), expected);
        QCOMPARE(log().last(), m_case + u"|-8 -d Window--temp-%1.strings -w "_qs.arg(QCoreApplication::applicationPid()) + QDir(out).absoluteFilePath(u".vocabrix-new-Window.nib"_qs)
                                   + u" Window.nib"_qs);
        QVERIFY(QFileInfo(out + u"/Window.nib"_qs).isFile());  // in the old folder's place
        QCOMPARE(QDir(m_case).entryList({u"*.strings"_qs}), QStringList());  // the table is gone
        QCOMPARE(pairs.value(S("Preferences")), S("Préférences"));
        QCOMPARE(pairs.value(u"OK"_qs), u"D'accord"_qs);
        QVERIFY(!pairs.contains(u"Cancel"_qs));  // untouched and unchecked: nothing to learn
        QVERIFY(!pairs.contains(u"Name:"_qs));
        QCOMPARE(pairs.size(), 2);
    }

    // Two listings the user chose (initWithPath:dictEntry:originalEntry:).
    void entriesFromTwoListings()
    {
        const LocFile::InterfaceTables listings{listingText("translated"), listingText("base")};
        const LocFilePtr file = LocFile::initWithPath(path(u"Window.nib"_qs), listings);
        QVERIFY(file);
        QCOMPARE(entryWords(file), S("Préférences+|D'accord+|Name:-|Cancel-"));
        QCOMPARE(file->entries().size(), 4);
        QVERIFY(!LocFile::initWithPath(path(u"Window.strings"_qs), listings));
    }

    // The built vocabrix-nibtool on a compiled nib: previous version and dictionary in, the
    // localized nib out, and it reads back with the words.
    void wholeRoadWithTheBuiltTool()
    {
        const QString tool = toolPath(u"vocabrix-nibtool"_qs);
        if (!QFileInfo(tool).isExecutable()) QFAIL("vocabrix-nibtool is not built (VOCABRIX_TOOLS_DIR)");
        qputenv("VOCABRIX_NIBTOOL", tool.toUtf8());
        SKIP_WITHOUT_CORPUS();
        const QString keyed = corpusDir() + u"/nibs/sparkle/e4eccce8/en.lproj/SUAutomaticUpdateAlert.nib"_qs;
        const QString base = path(u"en.lproj/Alert.nib"_qs);
        const QString previous = path(u"de.lproj/Alert.nib"_qs);
        QDir().mkpath(base);
        QDir().mkpath(previous);
        for (const QString &name : QDir(keyed).entryList(QDir::Files))
            QFile::copy(keyed + u'/' + name, base + u'/' + name);
        const QString german = QFileInfo(keyed).absolutePath() + u"/../de.lproj/SUAutomaticUpdateAlert.nib"_qs;
        for (const QString &name : QDir(german).entryList(QDir::Files))
            QFile::copy(german + u'/' + name, previous + u'/' + name);
        const QString dictionary = writeFile(path(u"en-de.strings"_qs), "\"Install on Quit\" = \"Beim Beenden\";\n");

        QSignalSpy finished(&NotificationCenter::instance(), &NotificationCenter::locFileFinishReadingFile);
        const LocFilePtr file = LocFile::initWithPath(base, OptString(dictionary), OptString(previous));
        QVERIFY(finished.wait(30'000));
        QCOMPARE(file->allEntries().size(), 4);
        StringMap words;
        for (const LocEntryPtr &e : file->allEntries()) words.insert(*e->baseWord(), *e->localizedWord());
        QCOMPARE(words.value(u"Install and Relaunch"_qs), u"Installieren und erneut starten"_qs);
        QCOMPARE(words.value(u"Install on Quit"_qs), u"Beim Beenden installieren"_qs);  // previous first
        QVERIFY(file->warnings().isEmpty());

        file->allEntries()[0]->setLocalizedWord(u"Jetzt »installieren«"_qs);
        const QString out = path(u"export/de.lproj"_qs);
        QDir().mkpath(out);
        const StringMap pairs = file->makeLocalizedFileAt(out);
        QVERIFY2(file->warnings().isEmpty(), qPrintable(file->warnings().join(u'\n')));
        QString error;
        const auto written = interface::openInterfaceFile(out + u"/Alert.nib"_qs, &error);
        QVERIFY2(written, qPrintable(error));
        QStringList got;
        for (const auto &s : written->strings()) got.append(s.value);
        QVERIFY2(got.contains(u"Jetzt »installieren«"_qs), qPrintable(got.join(u'|')));
        QVERIFY(got.contains(u"Beim Beenden installieren"_qs));
        QCOMPARE(pairs.value(*file->allEntries()[0]->baseWord()), u"Jetzt »installieren«"_qs);
    }
};

QTEST_GUILESS_MAIN(TestNibtoolHandler)
#include "test_nibtool_handler.moc"
