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

    void oneRunWithoutDictionaryOrPrevious()
    {
        fakeTool();
        int announced = 0;
        const LocFilePtr file = readAndWait(std::nullopt, OptString(path(u"missing.nib"_qs)), &announced);
        QVERIFY(file);
        QCOMPARE(announced, 1);
        QCOMPARE(log(), QStringList{m_case + u"|-L -8 Window.nib"_qs});
        QVERIFY(!file->readNoDict);
        QCOMPARE(entryWords(file), S("Preferences-|OK-|Name:-|Cancel-"));
        // The last block has the form of every other.
        QCOMPARE(file->allEntries().last()->entry(), S("/* NSButton (Cancel) : <title:Cancel> (oid:30) */\n\"Cancel\" = \"Cancel\";"));
        QCOMPARE(file->allEntries().first()->entry(),
                 S("/* NSWindow (Preferences) : <title:Preferences> (oid:5) */\n\"Preferences\" = \"Preferences\";"));
        QCOMPARE(file->entries().size(), 4);
    }

    // Previous version only: two runs; base words from the second, words from the first by
    // marker (first occurrence; a missing marker or an empty value keeps the base word).
    void twoRunsPairedByMarker()
    {
        fakeTool();
        const QString previous = writeFile(path(u"fr/Window.nib"_qs), "old");
        const LocFilePtr file = readAndWait(std::nullopt, OptString(previous));
        QVERIFY(file);
        QCOMPARE(log(), (QStringList{m_case + u"|-L -8 -I "_qs + previous + u" Window.nib"_qs,
                                     m_case + u"|-L -8 Window.nib"_qs}));
        QVERIFY(file->readNoDict);
        QCOMPARE(file->nibResult, OptString(listingText("translated")));
        QCOMPARE(entryWords(file), S("Préférences+|D'accord+|Name:-|Cancel-"));
        QCOMPARE(file->allEntries()[1]->baseWord(), OptString(u"OK"_qs));
        QCOMPARE(file->status(), u"2/4"_qs);
    }

    // Dictionary only: also two runs; the dictionary checks an entry that it maps to itself.
    void dictionaryChecksWordsThatStay()
    {
        fakeTool();
        const QString dictionary = writeFile(path(u"en-fr.strings"_qs), "\"Cancel\" = \"Cancel\";\n");
        const LocFilePtr file = readAndWait(OptString(dictionary), std::nullopt);
        QVERIFY(file);
        QCOMPARE(log().first(), m_case + u"|-L -8 -d "_qs + dictionary + u" Window.nib"_qs);
        QCOMPARE(log().size(), 2);
        QCOMPARE(entryWords(file), S("Préférences+|D'accord+|Name:-|Cancel+"));
        QVERIFY(!file->tempDictPath);
    }

    // A stand-in tool's shell body run before its answer, whether a previous version is given,
    // and a piece of the warning.
    void failingToolsListNothing_data() { addCaseRows(u"handlers/nibtool-failures.tsv"_qs, {"body", "withPrevious", "reason"}); }
    void failingToolsListNothing()
    {
        QFETCH(QString, body);
        QFETCH(QString, withPrevious);
        QFETCH(QString, reason);
        fakeTool(body.toUtf8());
        qputenv("VOCABRIX_TOOL_TIMEOUT", "1");
        const OptString previous = withPrevious == u"yes" ? OptString(writeFile(path(u"fr/Window.nib"_qs), "old"))
                                                : std::nullopt;
        int announced = 0;
        const LocFilePtr file = readAndWait(std::nullopt, previous, &announced);
        QVERIFY(file);
        QCOMPARE(announced, 1);
        QVERIFY2(file->warnings().join(u'\n').contains(reason), qPrintable(file->warnings().join(u'\n')));
        QCOMPARE(file->initError(), QString());
        // A failed translated run leaves the base words; a failed base run, no entries.
        if (withPrevious == u"yes") QCOMPARE(entryWords(file), S("Preferences-|OK-|Name:-|Cancel-"));
        else QVERIFY(file->allEntries().isEmpty());
    }

    void missingToolIsReportedAfterReturning()
    {
        qputenv("VOCABRIX_NIBTOOL", path(u"no-such-tool"_qs).toUtf8());
        const LocFilePtr file = readAndWait(std::nullopt, std::nullopt);
        QVERIFY(file);
        QVERIFY(file->allEntries().isEmpty());
        QCOMPARE(file->warnings().size(), 1);
    }

    // A tool that writes much to standard error still finishes: the handler drains it.
    void chattyStandardErrorDoesNotBlock()
    {
        fakeTool("head -c 3000000 /dev/zero | tr '\\0' e >&2");
        const LocFilePtr file = readAndWait(std::nullopt, std::nullopt);
        QVERIFY(file);
        QCOMPARE(file->allEntries().size(), 4);
        QVERIFY(file->warnings().isEmpty());
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
        QCOMPARE(log().last(), m_case + u"|-8 -d Window--temp.strings -w "_qs + QDir(out).absoluteFilePath(u"Window.nib"_qs)
                                   + u" Window.nib"_qs);
        QVERIFY(QFileInfo(out + u"/Window.nib"_qs).isFile());  // the old folder was removed first
        QVERIFY(!QFileInfo::exists(path(u"Window--temp.strings"_qs)));
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
