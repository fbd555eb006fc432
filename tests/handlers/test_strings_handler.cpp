// The strings-file handler through LocFile: which lines make entries and what they hold, which
// source fills a word (previous version by key, else dictionary by base text), check marks,
// empty keys and values, encodings, what the user is told, the header test and the export.
#include "Handlers.h"
#include "LocFile.h"
#include "NotificationCenter.h"
#include "PropertyList.h"
#include "StringsHandler.h"
#include "StringsTable.h"
#include "TestSupport.h"

#include <QSignalSpy>
#include <QStringEncoder>
#include <QTest>

namespace {
QString S(const char *utf8) { return QString::fromUtf8(utf8); }
QByteArray B(const char *utf8) { return QByteArray(utf8); }
}  // namespace

class TestStringsHandler : public QObject {
    Q_OBJECT
    QTemporaryDir m_dir;
    int m_count = 0;

    // A fresh folder per file, so names like InfoPlist.strings can repeat.
    QString place(const QByteArray &bytes, const QString &name = QStringLiteral("Localizable.strings"))
    {
        return TestSupport::writeFile(m_dir.filePath(QStringLiteral("f%1/%2").arg(++m_count).arg(name)), bytes);
    }
    LocFilePtr read(const QByteArray &base, const QByteArray &previous = {}, const QByteArray &dictionary = {},
                    const QString &name = QStringLiteral("Localizable.strings"))
    {
        const QString basePath = place(base, name);
        const OptString prev = previous.isNull() ? OptString() : OptString(place(previous, name));
        const OptString dict = dictionary.isNull() ? OptString() : OptString(place(dictionary, S("en-de.strings")));
        return LocFile::initWithPath(basePath, dict, prev);
    }
    QString exportFolder()
    {
        const QString folder = m_dir.filePath(QStringLiteral("out%1").arg(++m_count));
        QDir().mkpath(folder);
        return folder;
    }
    static QString words(const LocFilePtr &file)
    {
        QStringList list;
        for (const LocEntryPtr &e : file->allEntries())
            list << StringUtility::wordOrEmpty(e->localizedWord()) + (e->isChecked() ? S("+") : S("-"));
        return list.join(u'|');
    }

private slots:
    void initTestCase()
    {
        QVERIFY(m_dir.isValid());
        TestSupport::isolate(m_dir);
        registerResourceHandlers();
    }

    // Every pair where the grammar puts it, words as the file writes them (escaped), with the
    // comment just above it; what is no pair (comments, commented-out pairs) makes no entry.
    void pairMakesEntry_data()
    {
        QTest::addColumn<QByteArray>("table");
        QTest::addColumn<QString>("key");
        QTest::addColumn<QString>("base");
        QTest::addColumn<QString>("comment");
        QTest::newRow("spaced") << B("\"a\" = \"b\";") << S("a") << S("b") << QString();
        QTest::newRow("tight") << B("\"a\"=\"b\";") << S("a") << S("b") << QString();
        QTest::newRow("tab after equals") << B("\"a\" =\t\"b\";") << S("a") << S("b") << QString();
        QTest::newRow("over two lines") << B("\"a\" =\n  \"b\"\n;") << S("a") << S("b") << QString();
        QTest::newRow("value spans lines") << B("\"a\" = \"one\ntwo\";") << S("a") << S("one\\ntwo") << QString();
        QTest::newRow("short form") << B("\"Cancel\";") << S("Cancel") << S("Cancel") << QString();
        QTest::newRow("unquoted words") << B("CFBundleName = Vienna;") << S("CFBundleName") << S("Vienna") << QString();
        QTest::newRow("escapes kept") << B("\"say \\\"hi\\\"\" = \"x\\\"=y\\n\";") << S("say \\\"hi\\\"")
                                      << S("x\\\"=y\\n") << QString();
        QTest::newRow("non-ASCII") << B("\"Öffnen\" = \"Öffnen…\";") << S("Öffnen") << S("Öffnen…") << QString();
        QTest::newRow("ibtool comment") << B("/* Class = \"NSWindow\"; title = \"Torrent Creator\"; ObjectID = \"5\"; */\n"
                                             "\"5.title\" = \"Torrent Creator\";")
                                        << S("5.title") << S("Torrent Creator")
                                        << S("Class = \"NSWindow\"; title = \"Torrent Creator\"; ObjectID = \"5\";");
        QTest::newRow("line comment") << B("// Preferences -> Transfers\n\"a\" = \"b\";") << S("a") << S("b")
                                      << S("Preferences -> Transfers");
        QTest::newRow("last of two comments") << B("/* one */\n/* two */\n\"a\" = \"b\";") << S("a") << S("b") << S("two");
        QTest::newRow("commented-out pair is a comment") << B("/* \"old\" = \"gone\"; */\n\"a\" = \"b\";") << S("a")
                                                         << S("b") << S("\"old\" = \"gone\";");
        QTest::newRow("file header apart") << B("/* Localizable.strings */\n\n\"a\" = \"b\";") << S("a") << S("b") << QString();
    }
    void pairMakesEntry()
    {
        QFETCH(QByteArray, table);
        QFETCH(QString, key);
        QFETCH(QString, base);
        QFETCH(QString, comment);
        const LocFilePtr file = read(table + B("\n"));
        QCOMPARE(file->allEntries().size(), 1);
        const LocEntryPtr e = file->allEntries().first();
        QCOMPARE(e->entry(), S("/* \"%1\"=\"%2\" */\n\"%2\" = \"%2\";").arg(key, base));
        QCOMPARE(e->keyWord(), OptString(key));
        QCOMPARE(e->baseWord(), OptString(base));
        QCOMPARE(e->developerComment(), comment);
        QVERIFY(!e->isChecked());
        QVERIFY2(file->warnings().isEmpty(), qPrintable(file->warnings().join(u'\n')));
    }

    void commentsBelongToTheirOwnPair()
    {
        const LocFilePtr file = read(B("\"a\" = \"1\"; // about a\n\"b\" = \"2\";\n/* about c */\n\"c\" = \"3\";\n"));
        QStringList comments;
        for (const LocEntryPtr &e : file->allEntries()) comments << e->developerComment();
        QCOMPARE(comments, QStringList({QString(), QString(), S("about c")}));
    }

    // A table Foundation could not load is no base for a translation: no entries, the place
    // named, and never a localized table written from it.
    void brokenTableIsReportedAndNeverWritten_data()
    {
        QTest::addColumn<QByteArray>("table");
        QTest::addColumn<QString>("where");
        QTest::newRow("missing semicolon") << B("\"a\" = \"1\";\n\"b\" = \"2\"\n\"c\" = \"3\";\n") << S("at line 3");
        QTest::newRow("open quote") << B("\"a\" = \"1\";\n\"b\" = \"2;\n") << S("at line 2");
        QTest::newRow("open comment") << B("\"a\" = \"1\";\n/* note\n") << S("at line 2");
    }
    void brokenTableIsReportedAndNeverWritten()
    {
        QFETCH(QByteArray, table);
        QFETCH(QString, where);
        const LocFilePtr file = read(table);
        QVERIFY(file->allEntries().isEmpty());
        QCOMPARE(file->warnings().size(), 1);
        QVERIFY2(file->warnings().first().contains(S("breaks the string-table syntax ") + where), qPrintable(file->warnings().first()));
        const QString folder = exportFolder();
        QVERIFY(file->makeLocalizedFileAt(folder).isEmpty());
        QVERIFY(!QFileInfo::exists(folder + S("/Localizable.strings")));
    }

    void whichSourceWins()
    {
        const QByteArray base = "\"k1\" = \"Open\";\n\"k2\" = \"Save\";\n\"k3\" = \"Quit\";\n\"k4\" = \"Open\";\n";
        const QByteArray previous = "\"k1\" = \"Öffnen\";\n\"Open\" = \"Falsch\";\n";
        const QByteArray dictionary = "\"Open\" = \"Aufmachen\";\n\"Save\" = \"Sichern\";\n\"k3\" = \"Falsch\";\n";
        const LocFilePtr file = read(base, previous, dictionary);
        // Previous by key beats the dictionary; the dictionary matches base text, never keys.
        QCOMPARE(words(file), S("Öffnen+|Sichern+|Quit-|Aufmachen+"));
        QCOMPARE(file->status(), S("3/4"));
        QVERIFY(file->warnings().isEmpty());
    }

    void sameWordFromASourceStillChecks()
    {
        const LocFilePtr file = read(B("\"k\" = \"OK\";\n\"l\" = \"Cancel\";\n"), B("\"k\" = \"OK\";"),
                                     B("\"Cancel\" = \"Cancel\";"));
        QCOMPARE(words(file), S("OK+|Cancel+"));
    }

    void singleSpaceStartsChecked()
    {
        QCOMPARE(words(read(B("\"k\" = \" \";\n"))), S(" +"));
    }

    void previousLineBreakAndQuoteComeInEscaped()
    {
        const LocFilePtr file = read(B("\"k\" = \"x\";\n"), B("\"k\" = \"eins\\nzwei \\\"drei\\\"\";"));
        QCOMPARE(file->allEntries().first()->localizedWord(), OptString(S("eins\\nzwei \\\"drei\\\"")));
    }

    void escapedKeysAndValuesInLookups()
    {
        // The previous version by the key as the grammar reads it; the dictionary by the base word
        // as it stands first, then as the grammar reads it (dictionaries hold plain words).
        const QByteArray base = "\"say \\\"hi\\\"\" = \"x\";\n\"k\" = \"say \\\"hi\\\"\";\n\"m\" = \"a\\\\b\";\n\"t\\tab\" = \"y\";\n";
        const LocFilePtr file = read(base, B("\"say \\\"hi\\\"\" = \"found\";\n\"t\\tab\" = \"tab\";"),
                                     B("\"say \\\"hi\\\"\" = \"plain\";\n\"a\\\\b\" = \"literal\";"));
        QCOMPARE(words(file), S("found+|plain+|literal+|tab+"));
    }

    void emptyKeysAndValues()
    {
        const QByteArray base = "\"a\" = \"\";\n\"\" = \"x\";\n\"\" = \"\";\n";
        const LocFilePtr file = read(base, B("\"\" = \"leer\";\n\"x\" = \"wrong\";"));
        QCOMPARE(file->allEntries().size(), 3);
        const LocEntryPtr emptyValue = file->allEntries().at(0);
        QCOMPARE(emptyValue->keyWord(), OptString(S("a")));
        QCOMPARE(emptyValue->baseWord(), OptString(QString()));
        QVERIFY(!emptyValue->localizedWord());
        QVERIFY(emptyValue->isChecked());
        // The empty key looks up its own previous word, not its value's.
        const LocEntryPtr emptyKey = file->allEntries().at(1);
        QCOMPARE(StringUtility::wordLength(emptyKey->keyWord()), 0);
        QCOMPARE(emptyKey->localizedWord(), OptString(S("leer")));

        Settings::instance().setValue(SettingsKey::IgnoreEmptyWords, true);
        file->resetEntries();
        Settings::instance().setValue(SettingsKey::IgnoreEmptyWords, false);
        QCOMPARE(file->entries().size(), 2);
        QCOMPARE(file->entries().first(), emptyKey);

        const QString folder = exportFolder();
        file->makeLocalizedFileAt(folder);
        QCOMPARE(TestSupport::readFile(folder + S("/Localizable.strings")),
                 B("\"a\" = \"\";\n\"\" = \"leer\";\n\"\" = \"leer\";\n"));
    }

    // Export is the base table with the changed values replaced: comments, blank lines, order,
    // spacing and untranslated values keep their bytes.
    void exportKeepsTheBaseLayout()
    {
        const QByteArray base = "/* Header */\n\n/* c */\n\"OpenKey\" =\t\"Open\";\n\n\"Quote\" = \"a \\\"b\\\"\";\n"
                                "\"Lines\" = \"one\ntwo\";\n\"Short\";\nunquoted = word; // trailing\n";
        const LocFilePtr file = read(base);
        QCOMPARE(file->allEntries().size(), 5);
        const QString untouched = exportFolder();
        file->makeLocalizedFileAt(untouched);
        QCOMPARE(TestSupport::readFile(untouched + S("/Localizable.strings")), base);

        file->allEntries().at(0)->setLocalizedWord(S("Öffnen"));
        file->allEntries().at(1)->setLocalizedWord(S("ein \"b\""));
        file->allEntries().at(3)->setLocalizedWord(S("Abbrechen"));
        file->allEntries().at(4)->setLocalizedWord(S("Wort"));
        const QString folder = exportFolder();
        file->makeLocalizedFileAt(folder);
        QCOMPARE(TestSupport::readFile(folder + S("/Localizable.strings")),
                 S("/* Header */\n\n/* c */\n\"OpenKey\" =\t\"Öffnen\";\n\n\"Quote\" = \"ein \\\"b\\\"\";\n"
                   "\"Lines\" = \"one\ntwo\";\n\"Short\" = \"Abbrechen\";\nunquoted = \"Wort\"; // trailing\n").toUtf8());
    }

    // The dictionary learns base word to localized word, and only the translator's work: a word
    // changed, or one confirmed by a check mark; never an empty word, never an untouched one.
    void exportReturnsOnlyTranslatorPairs()
    {
        const QByteArray base = "\"button.open\" = \"Open\";\n\"button.ok\" = \"OK\";\n\"button.cancel\" = \"Cancel\";\n"
                                "\"quote\" = \"a \\\"b\\\"\";\n\"emptied\" = \"Gone\";\n";
        const LocFilePtr file = read(base);
        file->allEntries().at(0)->setLocalizedWord(S("Öffnen"));
        file->allEntries().at(1)->setCheck(true);
        file->allEntries().at(3)->setLocalizedWord(S("ein \"b\""));
        file->allEntries().at(4)->setLocalizedWord(QString());
        StringMap expected;
        expected.insert(S("Open"), S("Öffnen"));
        expected.insert(S("OK"), S("OK"));
        expected.insert(S("a \"b\""), S("ein \"b\""));
        QCOMPARE(file->makeLocalizedFileAt(exportFolder()), expected);
    }

    void entriesFollowTheBaseTableByKey()
    {
        // The base table changed after it was added: words go to their keys, not their places.
        const LocFilePtr file = read(B("\"a\" = \"A\";\n\"b\" = \"B\";\n\"gone\" = \"G\";\n"));
        file->allEntries().at(0)->setLocalizedWord(S("1"));
        file->allEntries().at(1)->setLocalizedWord(S("2"));
        file->allEntries().at(2)->setLocalizedWord(S("3"));
        TestSupport::writeFile(file->path(), B("\"new\" = \"N\";\n\"b\" = \"B\";\n\"a\" = \"A\";\n"));
        const QString folder = exportFolder();
        file->makeLocalizedFileAt(folder);
        QCOMPARE(TestSupport::readFile(folder + S("/Localizable.strings")), B("\"new\" = \"N\";\n\"b\" = \"2\";\n\"a\" = \"1\";\n"));
        QVERIFY2(file->warnings().join(u'\n').contains(S("1 entry is")), qPrintable(file->warnings().join(u'\n')));
    }

    // An application keyed by its English texts ships a base table of comments only: its words
    // are the previous version's, and export must not write them away.
    void tableWithoutPairsTakesThePreviousPairs()
    {
        const LocFilePtr file = read(B("/* Keys are the English texts. */\n"),
                                     B("\"Open \\\"%@\\\"\" = \"Ouvrir « %@ »\";\n\"Quit\" = \"Quit\";\n"));
        QCOMPARE(words(file), S("Ouvrir « %@ »+|Quit+"));
        QVERIFY(file->warnings().isEmpty());
        file->allEntries().at(1)->setLocalizedWord(S("Quitter"));
        const QString folder = exportFolder();
        StringMap expected;
        expected.insert(S("Open \"%@\""), S("Ouvrir « %@ »"));
        expected.insert(S("Quit"), S("Quitter"));
        QCOMPARE(file->makeLocalizedFileAt(folder), expected);
        QCOMPARE(TestSupport::readFile(folder + S("/Localizable.strings")),
                 S("/* Keys are the English texts. */\n\"Open \\\"%@\\\"\" = \"Ouvrir « %@ »\";\n\"Quit\" = \"Quitter\";\n").toUtf8());
    }

    void infoPlistTableReturnsNoPairs()
    {
        const LocFilePtr file = read(B("CFBundleName = \"Vienna\";\n"), {}, {}, S("InfoPlist.strings"));
        file->allEntries().first()->setLocalizedWord(S("Wien"));
        const QString folder = exportFolder();
        QVERIFY(file->makeLocalizedFileAt(folder).isEmpty());
        QCOMPARE(TestSupport::readFile(folder + S("/InfoPlist.strings")), B("CFBundleName = \"Wien\";\n"));
    }

    void failedWriteIsReported()
    {
        const LocFilePtr file = read(B("\"a\" = \"b\";\n"));
        QVERIFY(file->makeLocalizedFileAt(m_dir.filePath(S("no/such/folder"))).isEmpty());
        QVERIFY(file->warnings().join(u'\n').contains(S("could not be written")));
    }

    void encodings_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<QString>("warning");  // a piece of the expected warning, or empty for none
        const QString table = S("/* x */\r\"Å\" = \"Äpfel\";\r\"b\" = \"c\";\r");
        QStringEncoder be(QStringConverter::Utf16BE), le(QStringConverter::Utf16LE);
        QTest::newRow("UTF-8, CR line ends") << table.toUtf8() << QString();
        QTest::newRow("UTF-8 with mark") << B("\xEF\xBB\xBF") + table.toUtf8() << QString();
        QTest::newRow("UTF-16LE with mark") << B("\xFF\xFE") + QByteArray(le.encode(table)) << QString();
        QTest::newRow("UTF-16BE with mark") << B("\xFE\xFF") + QByteArray(be.encode(table)) << QString();
        QTest::newRow("UTF-16BE without mark") << QByteArray(be(table)) << S("UTF-16 big-endian");
        QTest::newRow("Mac Roman") << B("\"\x81\" = \"\x80pfel\";\n\"b\" = \"c\";\n") << S("Mac OS Roman");
    }
    void encodings()
    {
        QFETCH(QByteArray, bytes);
        QFETCH(QString, warning);
        const LocFilePtr file = read(bytes);
        QCOMPARE(file->allEntries().size(), 2);
        QCOMPARE(file->allEntries().first()->keyWord(), OptString(S("Å")));
        QCOMPARE(file->allEntries().first()->baseWord(), OptString(S("Äpfel")));
        if (warning.isEmpty()) {
            QCOMPARE(file->warnings(), QStringList());
        } else {
            QCOMPARE(file->warnings().size(), 1);
            QVERIFY2(file->warnings().first().contains(warning), qPrintable(file->warnings().first()));
        }
    }

    void byteOrderMarkIsNoPartOfTheFirstLine_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        const QString table = S("CFBundleName = \"Wien\";\n");
        QStringEncoder be(QStringConverter::Utf16BE), le(QStringConverter::Utf16LE);
        QTest::newRow("UTF-8") << B("\xEF\xBB\xBF") + table.toUtf8();
        QTest::newRow("UTF-16LE") << B("\xFF\xFE") + QByteArray(le.encode(table));
        QTest::newRow("UTF-16BE") << B("\xFE\xFF") + QByteArray(be.encode(table));
    }
    void byteOrderMarkIsNoPartOfTheFirstLine()
    {
        QFETCH(QByteArray, bytes);
        const LocFilePtr file = read(bytes);
        QCOMPARE(file->allEntries().size(), 1);
        QCOMPARE(file->allEntries().first()->keyWord(), OptString(S("CFBundleName")));
        QCOMPARE(file->warnings(), QStringList());
    }

    void unreadableSourcesAreReportedAndSkipped()
    {
        const QByteArray base = "\"Open\" = \"Open\";\n";
        const LocFilePtr file = read(base, B("\"Open\" = \"Öffnen\""), B("broken = ;"));
        QCOMPARE(words(file), S("Open-"));
        QCOMPARE(file->warnings().size(), 2);
        QVERIFY(file->warnings().at(0).startsWith(S("The previous version")));
        QVERIFY(file->warnings().at(1).startsWith(S("The dictionary")));

        // A path that names no file is no previous version, and says nothing.
        const LocFilePtr quiet = LocFile::initWithPath(place(base), OptString(m_dir.filePath(S("none.strings"))),
                                                       OptString(m_dir.filePath(S("none/Localizable.strings"))));
        QCOMPARE(quiet->warnings(), QStringList());
        QCOMPARE(quiet->allEntries().size(), 1);
    }

    void previousInGuessedEncodingIsStillRead()
    {
        QStringEncoder be(QStringConverter::Utf16BE);
        const QByteArray previous = be.encode(S("\"k\" = \"Äpfel\";\n"));
        const LocFilePtr file = read(B("\"k\" = \"Apples\";\n"), previous);
        QCOMPARE(words(file), S("Äpfel+"));
        QCOMPARE(file->warnings().size(), 1);
        QVERIFY(file->warnings().first().contains(S("UTF-16 big-endian")));
    }

    void fileWithoutPairsSaysSo_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::newRow("empty") << QByteArray("");
        QTest::newRow("comments only") << B("/* nothing */\n// here\n");
        QTest::newRow("missing") << QByteArray();
    }
    void fileWithoutPairsSaysSo()
    {
        QFETCH(QByteArray, bytes);
        QSignalSpy finished(&NotificationCenter::instance(), &NotificationCenter::locFileFinishReadingFile);
        const LocFilePtr file = bytes.isNull() ? LocFile::initWithPath(m_dir.filePath(S("gone.strings")), OptString(), OptString())
                                               : read(bytes);
        QCOMPARE(file->status(), S("0/0"));
        QCOMPARE(file->warnings().size(), 1);
        QVERIFY(file->warnings().first().contains(file->path()));
        QCOMPARE(finished.size(), 1);
        QCOMPARE(file->initError(), QString());
    }

    void propertyListTablesGoToThePropertyListHandler_data()
    {
        QTest::addColumn<QString>("form");
        QTest::addColumn<QString>("name");
        QTest::newRow("XML") << S("xml") << S("Localizable.strings");
        QTest::newRow("lower-case declaration") << S("xml-lower") << S("Localizable.strings");
        QTest::newRow("binary") << S("binary") << S("Localizable.strings");
        QTest::newRow("binary InfoPlist") << S("binary") << S("InfoPlist.strings");
    }
    void propertyListTablesGoToThePropertyListHandler()
    {
        QFETCH(QString, form);
        QFETCH(QString, name);
        plist::Dictionary dict{{S("OpenKey"), plist::Value::fromString(S("Open"))},
                               {S("QuitKey"), plist::Value::fromString(S("Quit \"now\""))}};
        const plist::Value root = plist::Value::fromDictionary(dict);
        QByteArray bytes = form == S("binary") ? plist::toBinary(root) : plist::toXml(root);
        if (form == S("xml-lower")) bytes.replace("UTF-8", "utf-8");
        const QString previous = place(plist::toXml(plist::Value::fromDictionary(
                                           {{S("OpenKey"), plist::Value::fromString(S("Öffnen"))}})),
                                       name);
        const LocFilePtr file = LocFile::initWithPath(place(bytes, name), OptString(), OptString(previous));
        QCOMPARE(words(file), S("Öffnen+|Quit \\\"now\\\"-"));
        QCOMPARE(file->warnings(), QStringList());

        // Written back as a property list with the base keys, whatever form it came in.
        const QString folder = exportFolder();
        const StringMap pairs = file->makeLocalizedFileAt(folder);
        const plist::ReadResult out = plist::readFile(folder + u'/' + name);
        QVERIFY(out.value);
        QCOMPARE(out.format, plist::Format::Xml);
        dict[0].second = plist::Value::fromString(S("Öffnen"));
        QCOMPARE(*out.value, plist::Value::fromDictionary(dict));
        QCOMPARE(pairs.isEmpty(), name == S("InfoPlist.strings"));
    }

    void headerLine()
    {
        QCOMPARE(stringsHandle::plistHeader(), S("<?xml version=\"1.0\" encoding=\"UTF-8\"?>"));
        QVERIFY(stringsHandle::isPropertyListTable("bplist00", QString()));
        QVERIFY(!stringsHandle::isPropertyListTable("\"a\" = \"<?xml\";", S("\"a\" = \"<?xml\";")));
        QVERIFY(!stringsHandle::isPropertyListTable("{", S("{")));
    }

    void brokenPropertyListTableIsReported()
    {
        const LocFilePtr file = read(B("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plist><dict><key>a</key>"));
        QCOMPARE(file->allEntries().size(), 0);
        QCOMPARE(file->warnings().size(), 1);
        QVERIFY(file->warnings().first().contains(S("property list")));
    }

    void otherExtensionsAreNotRead()
    {
        LocFile *none = nullptr;
        const LocFilePtr file = read(B("\"a\" = \"b\";"), {}, {}, S("table.Strings"));
        QCOMPARE(file.get(), none);
    }
};

QTEST_GUILESS_MAIN(TestStringsHandler)
#include "test_strings_handler.moc"
