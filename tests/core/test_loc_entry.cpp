// Both kinds of entry text (a table of cases: the words read, the first mark, a word set), the
// check-mark rules and their notifications, and the archive.
#include "CaseData.h"
#include "LocEntry.h"
#include "NotificationCenter.h"

#include <QBuffer>
#include <QSignalSpy>
#include <QTest>

using TestSupport::S;

namespace {
const QString kNibEntry = S("/* Class = \"NSButton\"; title = \"Cancel\"; ObjectID = \"12\"; */\n\"12.title\" = \"Cancel\";");

OptString word(const QString &field)
{
    return field == QLatin1String("!absent") ? OptString() : OptString(field);
}
}  // namespace

class TestLocEntry : public QObject {
    Q_OBJECT
private slots:
    void entries_data()
    {
        TestSupport::addCaseRows(S("core/entries.tsv"), {"text", "nib", "objectId", "key", "base", "localized", "checked",
                                                          "setTo", "after", "checkedAfter"});
    }
    void entries()
    {
        QFETCH(QString, text);
        QFETCH(QString, nib);
        QFETCH(QString, objectId);
        QFETCH(QString, key);
        QFETCH(QString, base);
        QFETCH(QString, localized);
        QFETCH(QString, checked);
        QFETCH(QString, setTo);
        QFETCH(QString, after);
        QFETCH(QString, checkedAfter);
        QSignalSpy spy(&NotificationCenter::instance(), &NotificationCenter::locEntryHasModified);
        auto e = LocEntry::initWithEntry(text);
        QVERIFY(spy.count() >= 1);  // every new entry announces its first mark
        QCOMPARE(spy.last().first().value<LocEntry *>(), e.get());
        QCOMPARE(e->isLeopardNibEntry(), nib == QLatin1String("yes"));
        if (e->isLeopardNibEntry()) QCOMPARE(e->objectID(), word(objectId));
        QCOMPARE(e->keyWord(), word(key));
        QCOMPARE(e->baseWord(), word(base));
        QCOMPARE(e->localizedWord(), word(localized));
        QCOMPARE(e->isChecked(), checked == QLatin1String("yes"));
        QVERIFY(e->check().has_value());
        if (setTo.isEmpty()) return;
        spy.clear();
        e->setLocalizedWord(setTo);
        QCOMPARE(e->entry(), after);
        QCOMPARE(e->isChecked(), checkedAfter == QLatin1String("yes"));
        QCOMPARE(spy.count(), e->isChecked() != (checked == QLatin1String("yes")) ? 1 : 0);
        // The base word still comes from where it came from; the key too.
        QCOMPARE(e->baseWord(), word(base));
        QCOMPARE(e->keyWord(), word(key));
    }

    void bodiesAndAbsentWords()
    {
        auto e = LocEntry::initWithEntry(S("/* \"OpenKey\"=\"Open\" */\n\"Open\" = \"Open\";"));
        e->setLocalizedWord(S("Öffnen"));
        QCOMPARE(e->entryBodyAsString(), S("\"OpenKey\" = \"Öffnen\";"));
        QCOMPARE(e->entryBody(), S("\"OpenKey\" = \"Öffnen\";"));
        auto bare = LocEntry::initWithEntry(S("\"My App\" = \"Mein Programm\";"));
        QCOMPARE(bare->entryBodyAsString(), S("\"My App\" = \"Mein Programm\";"));
        // Setting nothing changes nothing and says nothing.
        QSignalSpy spy(&NotificationCenter::instance(), &NotificationCenter::locEntryHasModified);
        bare->setLocalizedWord(std::nullopt);
        QCOMPARE(spy.count(), 0);
        QCOMPARE(bare->entry(), S("\"My App\" = \"Mein Programm\";"));
    }

    void observersReadTheNewWord()
    {
        auto e = LocEntry::initWithEntry(S("\"Open\" = \"Open\";"));
        OptString seen;
        auto connection = connect(&NotificationCenter::instance(), &NotificationCenter::locEntryHasModified, this,
                                  [&](LocEntry *entry) { seen = entry->localizedWord(); });
        e->setLocalizedWord(S("Öffnen"));
        disconnect(connection);
        QCOMPARE(seen, OptString(S("Öffnen")));
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
        auto e = LocEntry::initWithEntry(S("\"Open\" = \"Open\";"));
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
