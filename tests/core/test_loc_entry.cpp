// Both kinds of entry text, the check-mark rules and their notifications, and the archive.
#include "LocEntry.h"
#include "NotificationCenter.h"

#include <QBuffer>
#include <QSignalSpy>
#include <QTest>

namespace {
QString S(const char *utf8) { return QString::fromUtf8(utf8); }
const OptString kAbsent = std::nullopt;
const QString kNibEntry = S("/* Class = \"NSButton\"; title = \"Cancel\"; ObjectID = \"12\"; */\n\"12.title\" = \"Cancel\";");
const QString kStringsEntry = S("/* \"OpenKey\"=\"Open\" */\n\"Open\" = \"Open\";");
}  // namespace

class TestLocEntry : public QObject {
    Q_OBJECT
private slots:
    void interfaceFileEntry()
    {
        auto e = LocEntry::initWithEntry(kNibEntry);
        QVERIFY(e->isLeopardNibEntry());
        QCOMPARE(e->objectID(), OptString(S("12")));
        QCOMPARE(e->wordType(), OptString(S("title")));
        QCOMPARE(e->baseWord(), OptString(S("Cancel")));
        QCOMPARE(e->keyWord(), OptString(S("12.title")));
        QCOMPARE(e->localizedWord(), OptString(S("Cancel")));
        QVERIFY(!e->isChecked());

        e->setLocalizedWord(S("Abbrechen"));
        QCOMPARE(e->entry(), S("/* Class = \"NSButton\"; title = \"Cancel\"; ObjectID = \"12\"; */\n\"12.title\" = \"Abbrechen\";"));
        QVERIFY(e->isChecked());
        // The base word still comes from the comment, the key from the pair line.
        QCOMPARE(e->baseWord(), OptString(S("Cancel")));
        QCOMPARE(e->keyWord(), OptString(S("12.title")));
    }

    void localizerNoteAfterTheObjectId()
    {
        auto e = LocEntry::initWithEntry(
            S("/* Class = \"NSMenuItem\"; title = \"Open\"; ObjectID = \"a1-b2\"; Note = \"verb\"; */\n\"a1-b2.title\" = \"Open\";"));
        QCOMPARE(e->objectID(), OptString(S("a1-b2")));
        QCOMPARE(e->keyWord(), OptString(S("a1-b2.title")));
        QCOMPARE(e->baseWord(), OptString(S("Open")));
    }

    void observersReadTheNewWord()
    {
        auto e = LocEntry::initWithEntry(kStringsEntry);
        OptString seen;
        auto connection = connect(&NotificationCenter::instance(), &NotificationCenter::locEntryHasModified, this,
                                  [&](LocEntry *entry) { seen = entry->localizedWord(); });
        e->setLocalizedWord(S("Öffnen"));
        disconnect(connection);
        QCOMPARE(seen, OptString(S("Öffnen")));
    }

    void interfaceFileEntryWithEmptyValues()
    {
        auto e = LocEntry::initWithEntry(S("/* Class = \"NSTextFieldCell\"; title = \"\"; ObjectID = \"7\"; */\n\"7.title\" = \"\";"));
        QCOMPARE(e->baseWord(), kAbsent);
        QCOMPARE(e->localizedWord(), kAbsent);
        QVERIFY(e->isChecked());  // nothing to translate
    }

    void stringTableEntry()
    {
        auto e = LocEntry::initWithEntry(kStringsEntry);
        QVERIFY(!e->isLeopardNibEntry());
        QCOMPARE(e->keyWord(), OptString(S("OpenKey")));
        QCOMPARE(e->baseWord(), OptString(S("Open")));
        QCOMPARE(e->localizedWord(), OptString(S("Open")));
        QCOMPARE(e->entryBodyAsString(), S("\"OpenKey\" = \"Open\";"));
        e->setLocalizedWord(S("Öffnen"));
        QCOMPARE(e->entryBodyAsString(), S("\"OpenKey\" = \"Öffnen\";"));
        QCOMPARE(e->entryBody(), S("\"OpenKey\" = \"Öffnen\";"));
        QCOMPARE(e->baseWord(), OptString(S("Open")));
    }

    void pairLineAlone()
    {
        auto e = LocEntry::initWithEntry(S("\"My App\" = \"Mein Programm\";"));
        QCOMPARE(e->keyWord(), kAbsent);
        QCOMPARE(e->baseWord(), OptString(S("My App")));
        QCOMPARE(e->localizedWord(), OptString(S("Mein Programm")));
        QCOMPARE(e->entryBodyAsString(), S("\"My App\" = \"Mein Programm\";"));
        QCOMPARE(e->entryBody(), S("\"My App\" = \"Mein Programm\";"));
    }

    void emptyKeyHasEmptyBaseWord()
    {
        auto bare = LocEntry::initWithEntry(S("\"\" = \"\";"));
        QCOMPARE(bare->baseWord(), OptString(S("")));
        QVERIFY(bare->isChecked());
        auto commented = LocEntry::initWithEntry(S("/* \"\"=\"\" */\n\"\" = \"x\";"));
        QCOMPARE(commented->baseWord(), OptString(S("")));
    }

    void fromBaseAndLocalizedWords()
    {
        auto same = LocEntry::initWithBaseWord(S("Open"), std::nullopt);
        QCOMPARE(same->entry(), S("\"Open\" = \"Open\";"));
        QVERIFY(!same->isChecked());
        auto translated = LocEntry::initWithBaseWord(S("Open"), S("Öffnen"));
        QCOMPARE(translated->entry(), S("\"Open\" = \"Öffnen\";"));
        QVERIFY(translated->isChecked());
        // Words go in unescaped, placeholders and all.
        auto raw = LocEntry::initWithBaseWord(S("%1 of %2"), S("%2 von %1"));
        QCOMPARE(raw->entry(), S("\"%1 of %2\" = \"%2 von %1\";"));
    }

    void initialCheckRules_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<bool>("checked");
        QTest::newRow("single spaces") << S("\" \" = \" \";") << true;
        QTest::newRow("empty value, base word a") << S("\"a\" = \"\";") << false;
        QTest::newRow("untranslated") << S("\"a\" = \"a\";") << false;
        QTest::newRow("translated text alone does not check") << S("\"a\" = \"b\";") << false;
        QTest::newRow("space against empty") << S("\" \" = \"\";") << false;
    }
    void initialCheckRules()
    {
        QFETCH(QString, text);
        QFETCH(bool, checked);
        QSignalSpy spy(&NotificationCenter::instance(), &NotificationCenter::locEntryHasModified);
        auto e = LocEntry::initWithEntry(text);
        QCOMPARE(e->isChecked(), checked);
        QVERIFY(e->check().has_value());
        QVERIFY(spy.count() >= 1);  // every new entry announces its first mark
        QCOMPARE(spy.last().first().value<LocEntry *>(), e.get());
    }

    void settingWords()
    {
        auto e = LocEntry::initWithEntry(S("\"a\" = \"a\";"));
        QSignalSpy spy(&NotificationCenter::instance(), &NotificationCenter::locEntryHasModified);
        e->setLocalizedWord(std::nullopt);
        QCOMPARE(spy.count(), 0);
        QCOMPARE(e->entry(), S("\"a\" = \"a\";"));

        e->setLocalizedWord(S("a"));  // same word: text rewritten, mark untouched
        QVERIFY(!e->isChecked());
        QCOMPARE(spy.count(), 0);

        e->setLocalizedWord(S("say \"hi\""));
        QCOMPARE(e->entry(), S("\"a\" = \"say \\\"hi\\\"\";"));
        QVERIFY(e->isChecked());
        QCOMPARE(spy.count(), 1);
        e->setLocalizedWord(S("say \\\"hi\\\""));  // typed with backslashes: written the same way
        QCOMPARE(e->entry(), S("\"a\" = \"say \\\"hi\\\"\";"));

        // Whatever followed the old value is dropped.
        auto trailing = LocEntry::initWithEntry(S("\"k\" = \"v\"; // note"));
        trailing->setLocalizedWord(S("w"));
        QCOMPARE(trailing->entry(), S("\"k\" = \"w\";"));
    }

    void escapedQuoteBeforeSemicolonCutsTheWord()
    {
        auto e = LocEntry::initWithEntry(S("\"k\" = \"a\\\";b\";"));
        QCOMPARE(e->localizedWord(), OptString(S("a\\")));
    }

    void needToLocalize()
    {
        auto e = LocEntry::initWithEntry(S("\"Open\" = \"Open\";"));
        StringMap dictionary;
        dictionary.insert(S("Open"), S("Öffnen"));
        e->checkNeedToLocalizeWithDictionary(&dictionary);
        QVERIFY(!e->isChecked());
        e->checkNeedToLocalizeWithDictionary(nullptr);
        QVERIFY(!e->isChecked());
        dictionary.insert(S("Open"), S("Open"));
        e->checkNeedToLocalizeWithDictionary(&dictionary);
        QVERIFY(e->isChecked());

        auto different = LocEntry::initWithEntry(S("\"a\" = \"b\";"));
        different->checkNeedToLocalize();
        QVERIFY(!different->isChecked());
        different->setCheck(false);
        auto same = LocEntry::initWithEntry(S("\"a\" = \"a\";"));
        same->checkNeedToLocalize();
        QVERIFY(same->isChecked());
        same->checkNeedToLocalize();  // never clears
        QVERIFY(same->isChecked());
    }

    void everySetCheckPosts()
    {
        auto e = LocEntry::initWithEntry(kStringsEntry);
        QSignalSpy spy(&NotificationCenter::instance(), &NotificationCenter::locEntryHasModified);
        e->setCheck(false);
        e->setCheck(false);
        e->setCheck(true);
        QCOMPARE(spy.count(), 3);
        QCOMPARE(e->color(), EntryColor::Black);
        e->setCheck(false);
        QCOMPARE(e->color(), EntryColor::Red);
    }

    void archiveRestoresExactlyAndSilently()
    {
        const QList<std::optional<bool>> marks = {std::nullopt, false, true};
        for (const auto &mark : marks) {
            LocEntry original(S("\"\" = \"\";"), mark);  // would be checked by the construction rules
            QByteArray bytes;
            {
                QDataStream out(&bytes, QIODevice::WriteOnly);
                original.encodeWithCoder(out);
            }
            QSignalSpy spy(&NotificationCenter::instance(), &NotificationCenter::locEntryHasModified);
            QDataStream in(bytes);
            auto copy = LocEntry::initWithCoder(in);
            QVERIFY(copy);
            QCOMPARE(copy->entry(), original.entry());
            QCOMPARE(copy->check(), mark);
            QCOMPARE(spy.count(), 0);
        }
    }

    void archiveRefusesDamage()
    {
        QByteArray bytes;
        {
            QDataStream out(&bytes, QIODevice::WriteOnly);
            LocEntry(kNibEntry, true).encodeWithCoder(out);
        }
        for (qsizetype cut = 0; cut < bytes.size(); ++cut) {
            QDataStream in(bytes.left(cut));
            QVERIFY2(!LocEntry::initWithCoder(in), qPrintable(QString::number(cut)));
        }
        QByteArray foreign = bytes;
        foreign[6] = 'X';  // class name changed
        QDataStream in(foreign);
        QVERIFY(!LocEntry::initWithCoder(in));
        QByteArray hugeLength("\xFF\xFF\xFF\xF0", 4);
        QDataStream in2(hugeLength);
        QVERIFY(!LocEntry::initWithCoder(in2));
    }
};

QTEST_GUILESS_MAIN(TestLocEntry)
#include "test_loc_entry.moc"
