// A localizable file: dispatch by extension, the shown list under the two settings and a search
// text, look-ups, pairs, status and colour, list replacement signals, and the archive.
#include "LocFile.h"
#include "NotificationCenter.h"
#include "CaseData.h"

#include <QSignalSpy>
#include <QTest>

using TestSupport::S;

namespace {

// A handler that makes entries from a fixed list of texts and records what it was given.
class FakeHandler : public ResourceHandler {
public:
    QStringList texts;
    OptString lastDictionary, lastPrevious;
    QString lastFolder;
    void extract(LocFile &file, const OptString &dictionary, const OptString &previous) override
    {
        lastDictionary = dictionary;
        lastPrevious = previous;
        QList<LocEntryPtr> entries;
        for (const QString &t : texts) entries.append(LocEntry::initWithEntry(t));
        file.setAllEntries(entries);
        file.finishReadingFile();
    }
    StringMap makeLocalized(LocFile &file, const QString &folder) override
    {
        lastFolder = folder;
        return file.dictionaryWithEntries();
    }
};
}  // namespace

class TestLocFile : public QObject {
    Q_OBJECT
    QTemporaryDir m_dir;
    std::shared_ptr<FakeHandler> m_handler = std::make_shared<FakeHandler>();

    LocFilePtr make(const QStringList &texts, const QString &name = QStringLiteral("Localizable.strings"))
    {
        m_handler->texts = texts;
        return LocFile::initWithPath(m_dir.filePath(name), S("/dict.strings"), std::nullopt);
    }

private slots:
    void initTestCase()
    {
        TestSupport::isolate(m_dir);
        for (HandlerKind k : {HandlerKind::Strings, HandlerKind::Plist, HandlerKind::Ibtool, HandlerKind::Nibtool})
            HandlerRegistry::registerHandler(k, m_handler);
    }
    void init()
    {
        Settings::instance().setValue(SettingsKey::IgnoreEmptyWords, false);
        Settings::instance().setValue(SettingsKey::IgnoreLocalizedWords, false);
    }

    void dispatchByExactExtension_data() { TestSupport::addCaseRows(S("core/extensions.tsv"), {"name", "made"}); }
    void dispatchByExactExtension()
    {
        QFETCH(QString, name);
        QFETCH(QString, made);
        QSignalSpy finished(&NotificationCenter::instance(), &NotificationCenter::locFileFinishReadingFile);
        LocFilePtr file = make({S("\"a\" = \"b\";")}, name);
        QCOMPARE(bool(file), made == QLatin1String("yes"));
        if (!file) return;
        QCOMPARE(file->allEntries().size(), 1);
        QCOMPARE(file->entries().size(), 1);
        QCOMPARE(m_handler->lastDictionary, OptString(S("/dict.strings")));
        QCOMPARE(m_handler->lastPrevious, OptString());
        QCOMPARE(finished.count(), 1);
        QVERIFY(file->initError().isEmpty());
    }

    void interfaceToolChosenBySystemVersion()
    {
        auto older = std::make_shared<FakeHandler>();
        older->texts = {S("\"old\" = \"old\";")};
        HandlerRegistry::registerHandler(HandlerKind::Nibtool, older);
        m_handler->texts = {S("\"new\" = \"new\";")};
        qputenv("VOCABRIX_SYSTEM_VERSION", "10.4.11");
        LocFilePtr viaNibtool = LocFile::initWithPath(m_dir.filePath(S("M.xib")), std::nullopt, std::nullopt);
        qputenv("VOCABRIX_SYSTEM_VERSION", "10.5");
        LocFilePtr viaIbtool = LocFile::initWithPath(m_dir.filePath(S("M.xib")), std::nullopt, std::nullopt);
        qunsetenv("VOCABRIX_SYSTEM_VERSION");
        HandlerRegistry::registerHandler(HandlerKind::Nibtool, m_handler);
        QCOMPARE(viaNibtool->allEntries().first()->baseWord(), OptString(S("old")));
        QCOMPARE(viaIbtool->allEntries().first()->baseWord(), OptString(S("new")));
    }

    void missingHandlerIsReported()
    {
        HandlerRegistry::registerHandler(HandlerKind::Plist, nullptr);
        LocFilePtr file = LocFile::initWithPath(m_dir.filePath(S("Info.plist")), std::nullopt, std::nullopt);
        HandlerRegistry::registerHandler(HandlerKind::Plist, m_handler);
        QVERIFY(file);
        QVERIFY(file->allEntries().isEmpty());
        QVERIFY(!file->initError().isEmpty());
    }

    void filtersAndSearch()
    {
        LocFilePtr file = make({S("/* Class = \"NSButton\"; title = \"OK\"; ObjectID = \"1\"; */\n\"1.title\" = \"OK\";"),
                                S("\"\" = \"\";"), S("\"Open\" = \"Öffnen\";"), S("\"Quit\" = \"Quit\";")});
        // The empty entry is checked by being empty; "Open" as a handler checks a filled word.
        file->allEntries().at(2)->setCheck(true);
        QCOMPARE(file->entries().size(), 4);
        QCOMPARE(file->status(), S("2/4"));

        Settings::instance().setValue(SettingsKey::IgnoreEmptyWords, true);
        file->resetEntries();
        QCOMPARE(file->entries().size(), 3);

        Settings::instance().setValue(SettingsKey::IgnoreLocalizedWords, true);
        file->resetEntries();
        QCOMPARE(file->entries().size(), 2);
        file->allEntries().last()->setCheck(true);
        file->searchEntryWithKey(std::nullopt);
        QCOMPARE(file->entries().size(), 1);
        QCOMPARE(file->status(), S("3/4"));  // hidden entries still count

        Settings::instance().setValue(SettingsKey::IgnoreLocalizedWords, false);
        Settings::instance().setValue(SettingsKey::IgnoreEmptyWords, false);
        file->searchEntryWithKey(S("CLASS"));  // comments are searched, in any case
        QCOMPARE(file->entries().size(), 1);
        QVERIFY(file->entries().first()->isLeopardNibEntry());
        file->searchEntryWithKey(S("öffnen"));
        QCOMPARE(file->entries().size(), 1);
        file->searchEntryWithKey(S(""));
        QCOMPARE(file->entries().size(), 4);
        // The shown list holds the same objects as the full list.
        QCOMPARE(file->entries().at(2).get(), file->allEntries().at(2).get());
    }

    void listsAreReplacedWithSignals()
    {
        LocFilePtr file = make({S("\"a\" = \"a\";"), S("\"b\" = \"b\";")});
        QSignalSpy shown(file.get(), &LocFile::entriesChanged);
        const QList<LocEntryPtr> before = file->entries();
        file->searchEntryWithKey(S("b"));
        QVERIFY(shown.count() >= 1);
        QCOMPARE(before.size(), 2);  // the old list was replaced, not changed
        file->hideEntry(file->entries().first().get());
        QVERIFY(file->entries().isEmpty());
        QCOMPARE(file->allEntries().size(), 2);
    }

    // Searches run over folded copies of the texts, patched as texts change and narrowed when a
    // search text extends the previous one; whatever the history, a search must show exactly
    // what a plain case-insensitive scan of the current texts shows, with one signal.
    // Steps, one field each: a search text, or "edit N WORD", "check N", "filters".
    void searchAgreesWithAPlainScan_data() { TestSupport::addCaseRows(S("core/search-steps.tsv"), {"steps"}); }
    void searchAgreesWithAPlainScan()
    {
        QFETCH(QString, steps);
        LocFilePtr file = make({S("\"Open\" = \"Öffnen\";"), S("\"Close\" = \"Schließen\";"),
                                S("/* Σίγμα */\n\"Sigma\" = \"ΣΊΓΜΑ\";"), S("\"Street\" = \"Straße\";"),
                                S("\"\" = \"\";"), QStringLiteral("\"NUL\" = \"a\0b\";"), S("\"Smile\" = \"x😀x\";"),
                                S("\"Zero\" = \"\";")});
        for (const QString &step : steps.split(u'|')) {
            const QStringList words = step.split(u' ');
            if (words.first() == S("edit")) {
                file->allEntries().at(words.at(1).toInt())->setLocalizedWord(words.mid(2).join(u' '));
                continue;
            }
            if (words.first() == S("check")) {
                file->allEntries().at(words.at(1).toInt())->setCheck(true);
                continue;
            }
            if (step == S("filters")) {
                Settings::instance().setValue(SettingsKey::IgnoreEmptyWords, true);
                Settings::instance().setValue(SettingsKey::IgnoreLocalizedWords, true);
                continue;
            }
            QSignalSpy shown(file.get(), &LocFile::entriesChanged);
            file->searchEntryWithKey(step);
            QCOMPARE(shown.count(), 1);
            const bool ignoreEmpty = Settings::instance().boolValue(SettingsKey::IgnoreEmptyWords);
            const bool ignoreLocalized = Settings::instance().boolValue(SettingsKey::IgnoreLocalizedWords);
            QList<const LocEntry *> expected, got;
            for (const LocEntryPtr &e : file->allEntries()) {
                if (ignoreEmpty && StringUtility::wordLength(e->baseWord()) == 0 && StringUtility::wordLength(e->localizedWord()) == 0)
                    continue;
                if (ignoreLocalized && e->isChecked()) continue;
                if (StringUtility::containsCaseInsensitive(e->entry(), step)) expected.append(e.get());
            }
            for (const LocEntryPtr &e : file->entries()) got.append(e.get());
            QVERIFY2(got == expected, qPrintable(S("after \"%1\": %2 shown, %3 expected").arg(step).arg(got.size()).arg(expected.size())));
        }
    }

    void lookupsAndPairs()
    {
        LocFilePtr file = make({S("\"Open\" = \"Öffnen\";"), S("\"Open\" = \"Aufmachen\";"), S("\"Same\" = \"Same\";"),
                                S("\"Empty\" = \"\";")});
        QCOMPARE(file->entryForKey(S("Open"))->localizedWord(), OptString(S("Öffnen")));
        QVERIFY(!file->entryForKey(S("open")));
        QVERIFY(!file->entryForKey(S("")));
        QVERIFY(!file->entryForKey(std::nullopt));
        const StringMap pairs = file->dictionaryWithEntries();
        QCOMPARE(pairs.size(), 1);
        QCOMPARE(pairs.value(S("Open")), S("Aufmachen"));
        QCOMPARE(file->makeLocalizedFileAt(S("/out")), pairs);
        QCOMPARE(m_handler->lastFolder, S("/out"));
    }

    void statusAndColour()
    {
        LocFilePtr empty = make({});
        QCOMPARE(empty->status(), S("0/0"));
        QCOMPARE(empty->color(), EntryColor::Black);
        LocFilePtr file = make({S("\"a\" = \"a\";"), S("\"b\" = \"c\";")});
        QCOMPARE(file->color(), EntryColor::Red);
        file->allEntries().first()->setCheck(true);
        file->allEntries().last()->setCheck(true);
        QCOMPARE(file->color(), EntryColor::Black);
        QCOMPARE(file->status(), S("2/2"));
    }

    void archiveUsesTheSettingsInForceWhenRead()
    {
        LocFilePtr file = make({S("\"a\" = \"a\";"), S("\"b\" = \"c\";")});
        file->allEntries().last()->setCheck(true);
        file->setPreviousVersionForm(3);
        QByteArray bytes;
        {
            QDataStream out(&bytes, QIODevice::WriteOnly);
            file->encodeWithCoder(out);
        }
        Settings::instance().setValue(SettingsKey::IgnoreLocalizedWords, true);
        QDataStream in(bytes);
        LocFilePtr copy = LocFile::initWithCoder(in);
        QVERIFY(copy);
        QCOMPARE(copy->path(), file->path());
        QCOMPARE(copy->previousVersionForm(), 3);  // export after reopening writes the same form
        QCOMPARE(copy->allEntries().size(), 2);
        QCOMPARE(copy->entries().size(), 1);
        QCOMPARE(copy->allEntries().last()->entry(), S("\"b\" = \"c\";"));
        QCOMPARE(copy->status(), S("1/2"));

        for (qsizetype cut = 0; cut < bytes.size(); cut += 3) {
            QDataStream truncated(bytes.left(cut));
            QVERIFY(!LocFile::initWithCoder(truncated));
        }
        QByteArray manyEntries = bytes;
        // The count field follows class header and path: claim four billion entries.
        const qsizetype countAt = bytes.indexOf(QByteArray("\0\0\0\x02", 4));
        QVERIFY(countAt > 0);
        manyEntries.replace(countAt, 4, QByteArray("\xFF\xFF\xFF\xFF", 4));
        QDataStream hostile(manyEntries);
        QVERIFY(!LocFile::initWithCoder(hostile));
    }
};

QTEST_GUILESS_MAIN(TestLocFile)
#include "test_loc_file.moc"
