// The ibtool handler through LocFile: the tool's table split into entries, previous version
// before dictionary, check marks, the export and its pairs, the exact command lines, and what
// happens when the tool is missing, fails or hangs. Runs the built vocabrix-ibtool (found
// through VOCABRIX_TOOLS_DIR) and, for the failures, small stand-in scripts.

#include "Handlers.h"
#include "InterfaceCases.h"
#include "IbtoolHandler.h"
#include "LocFile.h"
#include "NotificationCenter.h"

#include <QSignalSpy>
#include <QTest>

using namespace TestSupport;

namespace {

QByteArray xib(const char *name) { return readFile(dataDir(u"handlers/"_qs) + QLatin1String(name)); }

}  // namespace

class TestIbtoolHandler : public QObject {
    Q_OBJECT
    QTemporaryDir m_dir;
    int m_count = 0;

    // A fresh folder per case.
    QString folder()
    {
        const QString f = m_dir.filePath(QStringLiteral("case%1").arg(++m_count));
        QDir().mkpath(f);
        return f;
    }
    // A stand-in tool: logs "working directory|arguments" to a file, then runs `body`.
    QString fakeTool(const QString &in, const QByteArray &body)
    {
        const QString path = writeFakeTool(QDir(in).filePath(u"fake-ibtool"_qs),
                                           "echo \"$PWD|$*\" >> \"" + QDir(in).filePath(u"log"_qs).toUtf8() + "\"\n" + body);
        qputenv("VOCABRIX_IBTOOL", path.toUtf8());
        return path;
    }
    static QStringList filesIn(const QString &dir)
    {
        return QDir(dir).entryList(QDir::Files | QDir::Dirs | QDir::NoDotAndDotDot, QDir::Name);
    }

private slots:
    void initTestCase()
    {
        QVERIFY(m_dir.isValid());
        isolate(m_dir);
        qunsetenv("VOCABRIX_SYSTEM_VERSION");
        registerResourceHandlers();
        if (!QFileInfo(toolPath(u"vocabrix-ibtool"_qs)).isExecutable()) QFAIL("vocabrix-ibtool is not built (VOCABRIX_TOOLS_DIR)");
    }

    void cleanup()
    {
        qunsetenv("VOCABRIX_IBTOOL");
        qunsetenv("VOCABRIX_TOOL_TIMEOUT");
    }

    void readsOneEntryPerBlock()
    {
        const QString dir = folder();
        const QString path = writeFile(dir + QStringLiteral("/Prefs.xib"), xib("prefs.xib"));
        QSignalSpy finished(&NotificationCenter::instance(), &NotificationCenter::locFileFinishReadingFile);
        const LocFilePtr file = LocFile::initWithPath(path, std::nullopt, std::nullopt);
        QVERIFY(file);
        QCOMPARE(file->initError(), QString());
        QCOMPARE(file->allEntries().size(), 3);
        QCOMPARE(file->allEntries()[0]->entry(),
                 S("/* Class = \"NSWindow\"; title = \"Prefs\"; ObjectID = \"1\"; */\n\"1.title\" = \"Prefs\";"));
        // The last block has the same form as the others.
        const LocEntryPtr last = file->allEntries()[2];
        QCOMPARE(last->entry(), S("/* Class = \"NSTextFieldCell\"; title = \"Name:\"; ObjectID = \"Ab1-cd-EF2\"; */\n"
                                  "\"Ab1-cd-EF2.title\" = \"Name:\";"));
        QCOMPARE(last->objectID(), OptString(S("Ab1-cd-EF2")));
        QCOMPARE(last->wordType(), OptString(S("title")));
        QCOMPARE(last->baseWord(), OptString(S("Name:")));
        QCOMPARE(file->entries().size(), 3);
        QCOMPARE(finished.count(), 0);  // this reading is synchronous and announces nothing
        QCOMPARE(filesIn(dir), QStringList{S("Prefs.xib")});  // the tool's table is gone
    }

    void previousVersionBeforeDictionary()
    {
        const QString dir = folder();
        const QString path = writeFile(dir + QStringLiteral("/Base.lproj/Prefs.xib"), xib("prefs.xib"));
        // The previous version translates the window and leaves the field's title empty.
        const QString previous = writeFile(dir + QStringLiteral("/fr.lproj/Prefs.xib"), xib("prefs-fr.xib"));
        const QString dictionary = writeFile(
            dir + QStringLiteral("/en-fr.strings"),
            "\"Prefs\" = \"Réglages\";\n\"OK\" = \"Valider\";\n\"Name:\" = \"Nom :\";\n");
        const LocFilePtr file = LocFile::initWithPath(path, OptString(dictionary), OptString(previous));
        QCOMPARE(file->initError(), QString());
        QCOMPARE(entryWords(file), S("Préférences+|D'accord+|Nom :+"));
        QCOMPARE(filesIn(dir + QStringLiteral("/fr.lproj")), QStringList{S("Prefs.xib")});
        QCOMPARE(filesIn(dir + QStringLiteral("/Base.lproj")), QStringList{S("Prefs.xib")});

        // A dictionary that keeps a word as it is marks the entry done; others stay unchecked.
        const QString same = writeFile(dir + QStringLiteral("/same.strings"), "\"OK\" = \"OK\";\n");
        const LocFilePtr plain = LocFile::initWithPath(path, OptString(same), std::nullopt);
        QCOMPARE(entryWords(plain), S("Prefs-|OK+|Name:-"));
        QCOMPARE(LocFile::initWithPath(path, OptString(S("")), OptString(S("")))->allEntries().size(), 3);
    }

    void exportWritesTheLocalizedFile()
    {
        const QString dir = folder();
        const QString path = writeFile(dir + QStringLiteral("/Prefs.xib"), xib("prefs.xib"));
        const LocFilePtr file = LocFile::initWithPath(path, std::nullopt, std::nullopt);
        file->allEntries()[0]->setLocalizedWord(S("Einstellungen \"neu\""));
        file->allEntries()[1]->setLocalizedWord(QString());  // emptied: no pair, whatever the check mark
        file->allEntries()[1]->setCheck(true);
        file->allEntries()[2]->setLocalizedWord(S("Name\nzweizeilig"));
        const QString out = dir + QStringLiteral("/de.lproj");
        // Whatever stood at the output path goes, a folder included.
        writeFile(out + QStringLiteral("/Prefs.xib/stale.txt"), "old");

        const StringMap pairs = file->makeLocalizedFileAt(out);
        // Words as entries hold them: escaped for a string table.
        QCOMPARE(pairs.value(S("Prefs")), S("Einstellungen \\\"neu\\\""));
        QVERIFY(!pairs.contains(S("OK")));
        QCOMPARE(pairs.value(S("Name:")), S("Name\nzweizeilig"));
        QCOMPARE(pairs.size(), 2);
        const QByteArray written = readFile(out + QStringLiteral("/Prefs.xib"));
        QVERIFY2(written.contains("<window title=\"Einstellungen &quot;neu&quot;\" id=\"1\">"), written.constData());
        QVERIFY(written.contains("<string key=\"title\">Name\nzweizeilig</string>"));
        QCOMPARE(filesIn(dir), (QStringList{S("Prefs.xib"), S("de.lproj")}));  // merge table removed

        // Reading the localized copy gives the translations as base words.
        const LocFilePtr back = LocFile::initWithPath(out + QStringLiteral("/Prefs.xib"), std::nullopt, std::nullopt);
        QCOMPARE(back->allEntries().size(), 2);  // the emptied title is gone
        QCOMPARE(back->allEntries().last()->baseWord(), OptString(S("Name\\nzweizeilig")));
    }

    void exportOfOtherFilesDoesNothing()
    {
        const QString dir = folder();
        const QString path = writeFile(dir + QStringLiteral("/Localizable.strings"), "\"a\" = \"b\";\n");
        const LocFilePtr file = LocFile::initWithPath(path, std::nullopt, std::nullopt);
        QVERIFY(file);
        QVERIFY(ibtoolHandle::ibtoolMakeLocalizedNibFileAt(*file, dir + QStringLiteral("/out")).isEmpty());
        QVERIFY(!QFileInfo::exists(dir + QStringLiteral("/out")));
        QCOMPARE(filesIn(dir), QStringList{S("Localizable.strings")});
    }

    void commandLines()
    {
        const QString dir = folder();
        const QString base = writeFile(dir + QStringLiteral("/Base.lproj/Main Menu.xib"), xib("prefs.xib"));
        const QString previous = writeFile(dir + QStringLiteral("/fr.lproj/Main Menu.xib"), xib("prefs.xib"));
        writeFile(dir + QStringLiteral("/table"),
                               utf16le(S("\n/* Class = \"NSMenu\"; title = \"Go\"; ObjectID = \"7\"; */\n\"7.title\" = \"Go\";\n")));
        fakeTool(dir, "[ \"$1\" = --generate-stringsfile ] && cp \"" + dir.toUtf8() + "/table\" \"$2\"; exit 0");
        const qint64 pid = QCoreApplication::applicationPid();
        const LocFilePtr file = LocFile::initWithPath(base, std::nullopt, OptString(previous));
        QCOMPARE(file->allEntries().size(), 1);
        const QString out = dir + QStringLiteral("/de.lproj");
        file->makeLocalizedFileAt(out);
        const QStringList log = S(readFile(dir + QStringLiteral("/log"))).split(u'\n', Qt::SkipEmptyParts);
        QCOMPARE(log, (QStringList{
                          dir + S("/Base.lproj|--generate-stringsfile Main Menu__temp-%1.strings Main Menu.xib").arg(pid),
                          dir + S("/fr.lproj|--generate-stringsfile Main Menu__temp-%1.strings Main Menu.xib").arg(pid),
                          dir + S("/Base.lproj|Main Menu.xib --strings-file Main Menu--temp-%1.strings --write ").arg(pid) + out
                              + S("/.vocabrix-new-Main Menu.xib"),
                      }));
        QCOMPARE(filesIn(dir + QStringLiteral("/Base.lproj")), QStringList{S("Main Menu.xib")});
        QCOMPARE(filesIn(dir + QStringLiteral("/fr.lproj")), QStringList{S("Main Menu.xib")});
    }

    // A stand-in tool's shell body ("-": no tool at all) and a piece of the reason given.
    void failingTools_data() { addCaseRows(u"handlers/ibtool-failures.tsv"_qs, {"body", "reason"}); }

    void failingTools()
    {
        QFETCH(QString, body);
        QFETCH(QString, reason);
        const QString dir = folder();
        const QString path = writeFile(dir + QStringLiteral("/Prefs.xib"), xib("prefs.xib"));
        if (body == u"-") qputenv("VOCABRIX_IBTOOL", (dir + QStringLiteral("/no-such-tool")).toUtf8());
        else fakeTool(dir, body.toUtf8());
        qputenv("VOCABRIX_TOOL_TIMEOUT", "1");
        const LocFilePtr file = LocFile::initWithPath(path, std::nullopt, std::nullopt);
        QVERIFY(file);
        QCOMPARE(file->allEntries().size(), 0);
        QVERIFY2(file->initError().contains(reason), qPrintable(file->initError()));
        QVERIFY(file->initError().contains(S("Prefs.xib")));

        // Export: the previous localized file kept as it was, and a warning that says why.
        const QString out = dir + QStringLiteral("/de");
        writeFile(out + QStringLiteral("/Prefs.xib"), "old");
        file->makeLocalizedFileAt(out);
        QCOMPARE(readFile(out + QStringLiteral("/Prefs.xib")), QByteArray("old"));
        QVERIFY(!file->warnings().isEmpty());
        QVERIFY2(file->warnings().last().contains(reason) || reason == S("wrote no string table"),
                 qPrintable(file->warnings().join(u'\n')));
        const QStringList left = filesIn(dir);
        QVERIFY2(!left.join(u' ').contains(S("temp.strings")), qPrintable(left.join(u' ')));
    }

    void partialOutputOfAFailedMergeIsRemoved()
    {
        const QString dir = folder();
        const QString path = writeFile(dir + QStringLiteral("/Prefs.xib"), xib("prefs.xib"));
        const LocFilePtr file = LocFile::initWithPath(path, std::nullopt, std::nullopt);
        QCOMPARE(file->allEntries().size(), 3);
        fakeTool(dir, "echo half > \"$5\"; exit 1");
        writeFile(dir + QStringLiteral("/de/Prefs.xib"), "old");
        file->makeLocalizedFileAt(dir + QStringLiteral("/de"));
        QCOMPARE(QDir(dir + QStringLiteral("/de")).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot),
                 QStringList{S("Prefs.xib")});
        QCOMPARE(readFile(dir + QStringLiteral("/de/Prefs.xib")), QByteArray("old"));  // the user's file is not lost
        QCOMPARE(QDir(dir).entryList({S("*.strings")}), QStringList());  // no table left
    }

    // The previous release's word for object 5's title, found in its table ("-": no table, or
    // no word).
    void stringForObjectID_data() { addCaseRows(u"handlers/ibtool-previous-word.tsv"_qs, {"previous", "expected"}); }

    void stringForObjectID()
    {
        QFETCH(QString, previous);
        QFETCH(QString, expected);
        const auto optional = [](const QString &s) { return s == u"-" ? OptString() : OptString(s); };
        QCOMPARE(ibtoolHandle::stringForObjectID(S("5"), S("title"), optional(previous)), optional(expected));
    }
};

QTEST_GUILESS_MAIN(TestIbtoolHandler)
#include "test_ibtool_handler.moc"
