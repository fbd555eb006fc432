// The strings-file handler through LocFile: which lines make entries and what they hold (in
// UTF-8 and UTF-16 alike), which source fills a word (previous version by key, else dictionary
// by base text), check marks, encodings, what the user is told, the header test and the export.
// Grammar and source cases are tables under tests/data/handlers/.
#include "InterfaceCases.h"
#include "Handlers.h"
#include "LocFile.h"
#include "NotificationCenter.h"
#include "PropertyList.h"
#include "StringsHandler.h"

#include <QSignalSpy>
#include <QTest>

using namespace TestSupport;

namespace {
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
private slots:
    void initTestCase()
    {
        QVERIFY(m_dir.isValid());
        TestSupport::isolate(m_dir);
        registerResourceHandlers();
    }

    // Every pair where the grammar puts it, words as the file writes them (escaped), with the
    // comment just above it; what is no pair (comments, commented-out pairs) makes no entry.
    void pairMakesEntry_data() { addCaseRows(u"handlers/strings-pairs.tsv"_qs, {"table", "key", "base", "comment"}, true); }
    void pairMakesEntry()
    {
        QFETCH(bool, utf16);
        QFETCH(QString, table);
        QFETCH(QString, key);
        QFETCH(QString, base);
        QFETCH(QString, comment);
        const LocFilePtr file = read(utf16 ? utf16le(table + u'\n') : (table + u'\n').toUtf8());
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
    void brokenTableIsReportedAndNeverWritten_data() { addCaseRows(u"handlers/strings-broken.tsv"_qs, {"table", "where"}, true); }
    void brokenTableIsReportedAndNeverWritten()
    {
        QFETCH(bool, utf16);
        QFETCH(QString, table);
        QFETCH(QString, where);
        const LocFilePtr file = read(utf16 ? utf16le(table) : table.toUtf8());
        QVERIFY(file->allEntries().isEmpty());
        QCOMPARE(file->warnings().size(), 1);
        QVERIFY2(file->warnings().first().contains(S("breaks the string-table syntax ") + where), qPrintable(file->warnings().first()));
        const QString folder = exportFolder();
        QVERIFY(file->makeLocalizedFileAt(folder).isEmpty());
        QVERIFY(!QFileInfo::exists(folder + S("/Localizable.strings")));
    }

    void sources_data()
    {
        addCaseRows(u"handlers/strings-sources.tsv"_qs, {"base", "previous", "dictionary", "words", "warnings"});
    }
    void sources()
    {
        QFETCH(QString, base);
        QFETCH(QString, previous);
        QFETCH(QString, dictionary);
        QFETCH(QString, words);
        QFETCH(QString, warnings);
        const auto bytes = [](const QString &f) { return f == u"-" ? QByteArray() : f.toUtf8(); };
        const LocFilePtr file = read(base.toUtf8(), bytes(previous), bytes(dictionary));
        QCOMPARE(entryWords(file), words);
        QVERIFY2(file->warnings().size() == warnings.toInt(), qPrintable(file->warnings().join(u'\n')));
    }

    // Words of empty keys and values are in the source table and the export cases; here: hiding them.
    void emptyKeysAndValues()
    {
        const LocFilePtr file = read(B("\"a\" = \"\";\n\"\" = \"x\";\n\"\" = \"\";\n"), B("\"\" = \"leer\";"));
        const LocEntryPtr emptyKey = file->allEntries().at(1);
        Settings::instance().setValue(SettingsKey::IgnoreEmptyWords, true);
        file->resetEntries();
        Settings::instance().setValue(SettingsKey::IgnoreEmptyWords, false);
        QCOMPARE(file->entries().size(), 2);
        QCOMPARE(file->entries().first(), emptyKey);
    }

    // Export: the base table (base/) read with previous.strings if there, the words of edits.tsv
    // typed, must give expected/ byte for byte (comments, blank lines, order, spacing and
    // untranslated values keep their bytes) and, with pairs.tsv, exactly those pairs: only the
    // translator's work, a word changed or confirmed by a check mark, never an empty word.
    void exports_data() { addGoldenRows(u"handlers/strings-export"_qs); }
    void exports()
    {
        QFETCH(QString, dir);
        const QDir d(dir);
        const QString name = QDir(d.filePath(u"base"_qs)).entryList(QDir::Files).value(0);
        const OptString previous = d.exists(u"previous.strings"_qs) ? OptString(d.filePath(u"previous.strings"_qs)) : OptString();
        const LocFilePtr file = LocFile::initWithPath(d.filePath(u"base/"_qs + name), OptString(), previous);
        const auto edits = d.exists(u"edits.tsv"_qs) ? readCaseTable(d.filePath(u"edits.tsv"_qs), 2) : QList<QStringList>();
        for (const QStringList &edit : edits) {
            const LocEntryPtr e = file->allEntries().at(edit[0].toInt());
            if (edit[1] == u"+") e->setCheck(true);
            else e->setLocalizedWord(edit[1]);
        }
        const QString folder = exportFolder();
        const StringMap pairs = file->makeLocalizedFileAt(folder);
        QVERIFY(compareBytes(readFile(folder + u'/' + name), d.filePath(u"expected/"_qs + name)));
        if (!d.exists(u"pairs.tsv"_qs)) return;
        StringMap expected;
        for (const QStringList &pair : readCaseTable(d.filePath(u"pairs.tsv"_qs), 2)) expected.insert(pair[0], pair[1]);
        QCOMPARE(pairs, expected);
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

    void failedWriteIsReported()
    {
        const LocFilePtr file = read(B("\"a\" = \"b\";\n"));
        QVERIFY(file->makeLocalizedFileAt(m_dir.filePath(S("no/such/folder"))).isEmpty());
        QVERIFY(file->warnings().join(u'\n').contains(S("could not be written")));
    }

    // The table in an encoding (utf8, utf8 mark, utf16le mark, utf16be mark, utf16be, latin1 for
    // raw bytes), and a piece of the expected warning (empty: none). An unquoted first key: a
    // byte-order mark taken for part of the first line would break it.
    void encodings_data() { addCaseRows(u"handlers/strings-encodings.tsv"_qs, {"encoding", "table", "warning"}); }
    void encodings()
    {
        QFETCH(QString, encoding);
        QFETCH(QString, table);
        QFETCH(QString, warning);
        QByteArray bytes = encoding == u"latin1" ? table.toLatin1() : table.toUtf8();
        if (encoding.startsWith(u"utf16"))
            bytes = utf16(table, encoding.contains(u"be") ? QSysInfo::BigEndian : QSysInfo::LittleEndian, encoding.endsWith(u"mark"));
        if (encoding == u"utf8 mark") bytes.prepend("\xEF\xBB\xBF");
        const LocFilePtr file = read(bytes);
        QCOMPARE(file->allEntries().size(), 2);
        QCOMPARE(file->allEntries().first()->keyWord(), OptString(S("Apfel")));
        QCOMPARE(file->allEntries().first()->baseWord(), OptString(S("Äpfel")));
        if (warning.isEmpty()) {
            QCOMPARE(file->warnings(), QStringList());
        } else {
            QCOMPARE(file->warnings().size(), 1);
            QVERIFY2(file->warnings().first().contains(warning), qPrintable(file->warnings().first()));
        }
    }

    // Warnings name the previous version first, then the dictionary; a path that names no file
    // is no previous version, and says nothing.
    void unreadableSourcesAreReportedAndSkipped()
    {
        const QByteArray base = "\"Open\" = \"Open\";\n";
        const LocFilePtr file = read(base, B("\"Open\" = \"Öffnen\""), B("broken = ;"));
        QVERIFY(file->warnings().at(0).startsWith(S("The previous version")));
        QVERIFY(file->warnings().at(1).startsWith(S("The dictionary")));
        const LocFilePtr quiet = LocFile::initWithPath(place(base), OptString(m_dir.filePath(S("none.strings"))),
                                                       OptString(m_dir.filePath(S("none/Localizable.strings"))));
        QCOMPARE(quiet->warnings(), QStringList());
        QCOMPARE(quiet->allEntries().size(), 1);
    }

    void previousInGuessedEncodingIsStillRead()
    {
        const QByteArray previous = utf16be(S("\"k\" = \"Äpfel\";\n"), false);
        const LocFilePtr file = read(B("\"k\" = \"Apples\";\n"), previous);
        QCOMPARE(entryWords(file), S("Äpfel+"));
        QCOMPARE(file->warnings().size(), 1);
        QVERIFY(file->warnings().first().contains(S("UTF-16 big-endian")));
    }

    // A table without pairs ("-": no file at all) is announced, and the user told.
    void fileWithoutPairsSaysSo_data() { addCaseRows(u"handlers/strings-without-pairs.tsv"_qs, {"table"}); }
    void fileWithoutPairsSaysSo()
    {
        QFETCH(QString, table);
        QSignalSpy finished(&NotificationCenter::instance(), &NotificationCenter::locFileFinishReadingFile);
        const LocFilePtr file = table == u"-" ? LocFile::initWithPath(m_dir.filePath(S("gone.strings")), OptString(), OptString())
                                              : read(table.toUtf8());
        QCOMPARE(file->status(), S("0/0"));
        QCOMPARE(file->warnings().size(), 1);
        QVERIFY(file->warnings().first().contains(file->path()));
        QCOMPARE(finished.size(), 1);
        QCOMPARE(file->initError(), QString());
    }

    // A table written as a property list (xml, xml-lower: a lower-case encoding declaration,
    // binary) under a file name.
    void propertyListTablesGoToThePropertyListHandler_data()
    {
        addCaseRows(u"handlers/strings-as-plist.tsv"_qs, {"form", "name"});
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
        QCOMPARE(entryWords(file), S("Öffnen+|Quit \\\"now\\\"-"));
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
