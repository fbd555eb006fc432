// The pieces under the document window: moving rows, file drops, spelling with hunspell, the
// preference window, the application controller, and the Qt dialogs' answers.
#include "AppTestSupport.h"
#include "DocumentWindow.h"
#include "EntryEditor.h"
#include "FileTableModel.h"
#include "Handlers.h"
#include "LanguageComboBox.h"
#include "ListUtility.h"
#include "LocalizedText.h"
#include "MyDocument.h"
#include "PrefWinController.h"
#include "QtDialogs.h"
#include "ScriptedDialogs.h"
#include "Settings.h"
#include "SpellChecker.h"
#include "SpellHighlighter.h"
#include "VXController.h"

#include <QApplication>
#include <QCheckBox>
#include <QFileDialog>
#include <QLineEdit>
#include <QMessageBox>
#include <QMimeData>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QSignalSpy>
#include <QTextBlock>
#include <QTextLayout>
#include <QTimer>
#include <QUrl>

namespace {

QMimeData *fileDrag(const QStringList &paths)
{
    auto *data = new QMimeData;
    QList<QUrl> urls;
    for (const QString &p : paths) urls.append(QUrl::fromLocalFile(p));
    data->setUrls(urls);
    return data;
}

// Runs `act` on the next modal dialog of type T once it is shown.
template <typename T>
void whenShown(std::function<void(T *)> act)
{
    QTimer::singleShot(0, qApp, [act] {
        QTRY_VERIFY(qobject_cast<T *>(QApplication::activeModalWidget()));
        act(qobject_cast<T *>(QApplication::activeModalWidget()));
    });
}

}  // namespace

class TestAppParts : public QObject {
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();
    void movedRows_data();
    void movedRows();
    void dictionaryNames_data();
    void dictionaryNames();
    void spellingWithOwnDictionary();
    void editorUnderlinesMisspelledWords();
    void missingDictionaryOnlyDisablesChecking();
    void editorShowsPreviousBaseWord();
    void fileDropsAreFilteredAndDeferred();
    void rowDragsReorderFiles();
    void preferenceWindow();
    void controllerDocuments();
    void alertButtonsAnswerByIndex_data();
    void alertButtonsAnswerByIndex();
    void openPanelChoosesBundles();

private:
    std::unique_ptr<TestSupport::Sandbox> m_box;
    QString writeDictionary();
};

void TestAppParts::initTestCase()
{
    registerResourceHandlers();
    setInterfaceLanguage(QStringLiteral("en"));
}

void TestAppParts::init()
{
    m_box = std::make_unique<TestSupport::Sandbox>();
    VXController::initialize();
}

void TestAppParts::cleanup()
{
    for (const auto &key : Settings::keys()) Settings::instance().remove(key.name);
    qunsetenv("VOCABRIX_HUNSPELL_DIR");
}

void TestAppParts::movedRows_data()
{
    QTest::addColumn<QList<int>>("rows");
    QTest::addColumn<int>("to");
    QTest::addColumn<QString>("expected");
    QTest::newRow("first down before last") << QList<int>{0} << 3 << QStringLiteral("BCAD");
    QTest::newRow("last to top") << QList<int>{3} << 0 << QStringLiteral("DABC");
    QTest::newRow("below last row") << QList<int>{1} << 4 << QStringLiteral("ACDB");
    QTest::newRow("two rows down keep order") << QList<int>{1, 0} << 4 << QStringLiteral("CDABE");
    QTest::newRow("two rows up") << QList<int>{3, 4} << 0 << QStringLiteral("DEABC");
    QTest::newRow("onto itself") << QList<int>{2} << 2 << QStringLiteral("ABCD");
    QTest::newRow("index outside ignored") << QList<int>{9, 0} << 2 << QStringLiteral("BACD");
}

void TestAppParts::movedRows()
{
    QFETCH(QList<int>, rows);
    QFETCH(int, to);
    QFETCH(QString, expected);
    QList<QChar> list;
    for (QChar c : QStringView(u"ABCDE").left(expected.size())) list.append(c);
    const QList<QChar> moved = ::movedRows(list, rows, to);
    QCOMPARE(QString(moved.constData(), moved.size()), expected);
}

void TestAppParts::dictionaryNames_data()
{
    QTest::addColumn<QString>("abbreviation");
    QTest::addColumn<QStringList>("available");
    QTest::addColumn<QString>("expected");
    const QStringList installed{QStringLiteral("de_AT"), QStringLiteral("de_DE"), QStringLiteral("en_GB"), QStringLiteral("en_US"),
                                QStringLiteral("fr"), QStringLiteral("fr_CA"), QStringLiteral("fr_FR"), QStringLiteral("pt_BR"),
                                QStringLiteral("pt_PT"), QStringLiteral("sv_FI"), QStringLiteral("sv_SE"), QStringLiteral("zh_CN")};
    QTest::newRow("fr") << "fr" << installed << "fr_FR";
    QTest::newRow("de") << "de" << installed << "de_DE";
    QTest::newRow("en is US") << "en" << installed << "en_US";
    QTest::newRow("sv is SE") << "sv" << installed << "sv_SE";
    QTest::newRow("region given") << "pt-BR" << installed << "pt_BR";
    QTest::newRow("script, then any region") << "zh-Hans" << installed << "zh_CN";
    QTest::newRow("bare name only") << "fr" << QStringList{QStringLiteral("fr")} << "fr";
    QTest::newRow("other region only") << "de" << QStringList{QStringLiteral("de_CH")} << "de_CH";
    QTest::newRow("none for language") << "ja" << installed << "";
    QTest::newRow("no abbreviation") << "" << installed << "";
    QTest::newRow("prefix is not a language") << "f" << installed << "";
}

void TestAppParts::dictionaryNames()
{
    QFETCH(QString, abbreviation);
    QFETCH(QStringList, available);
    QFETCH(QString, expected);
    QCOMPARE(SpellChecker::dictionaryNameFor(abbreviation, available), expected);
}

// A tiny dictionary of our own: three words, one with accents.
QString TestAppParts::writeDictionary()
{
    const QString folder = m_box->path(QStringLiteral("hunspell"));
    TestSupport::writeFile(folder + QLatin1String("/xx_XX.aff"), "SET UTF-8\nTRY esianrtolcdugmphbyfvkwz\n");
    TestSupport::writeFile(folder + QLatin1String("/xx_XX.dic"), "3\nbonjour\nmonde\n\xC3\xA9t\xC3\xA9\n");
    qputenv("VOCABRIX_HUNSPELL_DIR", QFile::encodeName(folder));
    return folder;
}

void TestAppParts::spellingWithOwnDictionary()
{
    writeDictionary();
    SpellChecker checker;
    QVERIFY(checker.setLanguage(QStringLiteral("xx")));
    QCOMPARE(checker.dictionaryName(), QStringLiteral("xx_XX"));
    QVERIFY(checker.isCorrect(QStringLiteral("bonjour")));
    QVERIFY(checker.isCorrect(QStringLiteral("\u00E9t\u00E9")));
    QVERIFY(!checker.isCorrect(QStringLiteral("mondee")));
    QVERIFY(checker.suggestions(QStringLiteral("mondee")).contains(QStringLiteral("monde")));

    SpellHighlighter highlighter(nullptr, &checker);
    // Format specifiers, escapes and words with digits are left alone.
    const QString text = QStringLiteral("bonjour mondee \u00E9t\u00E9 %@ %1$ld x2 \\nbonjour zut");
    const auto ranges = highlighter.misspelledRanges(text);
    QCOMPARE(ranges.size(), 2);
    QCOMPARE(text.mid(ranges.at(0).first, ranges.at(0).second), QStringLiteral("mondee"));
    QCOMPARE(text.mid(ranges.at(1).first, ranges.at(1).second), QStringLiteral("zut"));
}

void TestAppParts::editorUnderlinesMisspelledWords()
{
    writeDictionary();
    MyDocument document;
    EntryEditor editor(&document);
    QVERIFY(editor.setSpellLanguage(QStringLiteral("xx"), QStringLiteral("Test")));
    editor.setEntry(LocEntry::initWithEntry(QStringLiteral("\"hello world\" = \"bonjour mondee\";")));
    auto underlined = [&editor] {
        QStringList words;
        const QTextBlock block = editor.entryField()->document()->firstBlock();
        for (const QTextLayout::FormatRange &r : block.layout()->formats())
            if (r.format.underlineStyle() == QTextCharFormat::SpellCheckUnderline) words.append(block.text().mid(r.start, r.length));
        return words;
    };
    QVERIFY(underlined().isEmpty());  // off until switched on
    editor.setContinuousSpellCheckingEnabled(true);
    QCOMPARE(underlined(), QStringList{QStringLiteral("mondee")});
    editor.setContinuousSpellCheckingEnabled(false);
    QVERIFY(underlined().isEmpty());
}

void TestAppParts::editorShowsPreviousBaseWord()
{
    MyDocument document;
    EntryEditor editor(&document);
    editor.show();
    const LocEntryPtr changed = LocEntry::initWithEntry(QStringLiteral("\"Close file\" = \"Fermer\";"));
    changed->setPreviousBaseWord(QStringLiteral("Close"));
    editor.setEntry(changed);
    QVERIFY(editor.previousBaseField()->isVisible());
    QCOMPARE(editor.previousBaseField()->text(), QStringLiteral("Close"));
    editor.setEntry(LocEntry::initWithEntry(QStringLiteral("\"Open\" = \"Ouvrir\";")));
    QVERIFY(!editor.previousBaseField()->isVisible());
    QVERIFY(editor.previousBaseField()->text().isEmpty());
}

void TestAppParts::missingDictionaryOnlyDisablesChecking()
{
    qputenv("VOCABRIX_HUNSPELL_DIR", QFile::encodeName(m_box->path(QStringLiteral("empty"))));
    MyDocument document;
    EntryEditor editor(&document);
    QSignalSpy notes(&editor, &EntryEditor::statusMessage);
    QVERIFY(!editor.setSpellLanguage(QStringLiteral("qq"), QStringLiteral("Nowhere")));
    editor.setContinuousSpellCheckingEnabled(true);
    QVERIFY(!notes.isEmpty());
    QVERIFY(notes.last().first().toString().contains(QStringLiteral("Nowhere")));
    editor.setEntry(LocEntry::initWithEntry(QStringLiteral("\"a\" = \"zzzq qqqz\";")));
    QTest::keyClicks(editor.entryField(), QStringLiteral(" xyzzy"));
    QVERIFY(editor.entryField()->document()->firstBlock().layout()->formats().isEmpty());
}

void TestAppParts::fileDropsAreFilteredAndDeferred()
{
    MyDocument document;
    FileTableModel model(&document);
    const QString strings = m_box->write(QStringLiteral("A.strings"), "\"k\" = \"v\";\n");
    const QString text = m_box->write(QStringLiteral("notes.txt"), "x");
    QDir(m_box->path()).mkpath(QStringLiteral("Plain/Contents"));
    QDir(m_box->path()).mkpath(QStringLiteral("Foo.app/Contents/Resources"));

    std::unique_ptr<QMimeData> onlyText(fileDrag({text, m_box->path(QStringLiteral("Plain"))}));
    QVERIFY(!model.canDropMimeData(onlyText.get(), Qt::CopyAction, -1, -1, QModelIndex()));
    std::unique_ptr<QMimeData> bundle(fileDrag({m_box->path(QStringLiteral("Foo.app")) + u'/'}));
    QCOMPARE(FileTableModel::acceptedPaths(bundle.get()), QStringList{m_box->path(QStringLiteral("Foo.app"))});

    std::unique_ptr<QMimeData> mixed(fileDrag({strings, text}));
    QVERIFY(model.canDropMimeData(mixed.get(), Qt::CopyAction, 0, 0, QModelIndex()));
    QVERIFY(model.dropMimeData(mixed.get(), Qt::CopyAction, -1, -1, QModelIndex()));
    // Answered at once, added a moment later: only the string table.
    QCOMPARE(document.files().size(), 0);
    QTRY_COMPARE(document.files().size(), 1);
    QCOMPARE(document.files().first()->path(), strings);
    QCOMPARE(model.rowCount(), 1);
    // Onto a row (not between rows) is refused.
    QVERIFY(!model.canDropMimeData(mixed.get(), Qt::CopyAction, -1, -1, model.index(0, 0)));
}

void TestAppParts::rowDragsReorderFiles()
{
    MyDocument document;
    QList<QPair<QString, OptString>> paths;
    for (const char *name : {"A.strings", "B.strings", "C.strings"})
        paths.append({m_box->write(QLatin1String(name), "\"k\" = \"v\";\n"), std::nullopt});
    document.addFiles(paths);
    FileTableModel model(&document);
    FileTableModel other(&document);
    auto names = [&document] {
        QString s;
        for (const LocFilePtr &f : document.files()) s += f->fileName().at(0);
        return s;
    };
    std::unique_ptr<QMimeData> drag(model.mimeData({model.index(0, 0), model.index(0, 1)}));
    // Another table's rows are not this table's to move.
    QVERIFY(!other.canDropMimeData(drag.get(), Qt::MoveAction, 3, 0, QModelIndex()));
    QVERIFY(model.dropMimeData(drag.get(), Qt::MoveAction, -1, -1, QModelIndex()));
    QCOMPARE(names(), QStringLiteral("BCA"));
    QCOMPARE(model.index(2, 0).data().toString(), QStringLiteral("A.strings"));
}

void TestAppParts::preferenceWindow()
{
    PrefWinController prefs;
    QCOMPARE(prefs.languageFromPp()->selectedTag(), 1);
    QCOMPARE(prefs.languageToPp()->selectedTag(), 2);
    QCOMPARE(prefs.languageFromPp()->currentText(), languageItems().at(0).name);
    QVERIFY(!prefs.ignoreEmptyWordsSwitch()->isChecked());
    QVERIFY(!prefs.ignoreLocalizedWordsSwitch()->isChecked());

    const int index = prefs.languageToPp()->findData(4);
    prefs.languageToPp()->setCurrentIndex(index);
    emit prefs.languageToPp()->activated(index);
    QCOMPARE(Settings::instance().intValue(SettingsKey::TargetLanguage), 4);
    QCOMPARE(MyDocument().locLangTo(), 4);  // new documents take it

    prefs.ignoreLocalizedWordsSwitch()->click();
    QVERIFY(Settings::instance().boolValue(SettingsKey::IgnoreLocalizedWords));
    Settings::instance().setValue(SettingsKey::IgnoreEmptyWords, true);  // from elsewhere
    QVERIFY(prefs.ignoreEmptyWordsSwitch()->isChecked());

    // A stored tag that no item carries leaves the popup without a selection.
    Settings::instance().setValue(SettingsKey::BaseLanguage, 999);
    prefs.windowDidLoad();
    QCOMPARE(prefs.languageFromPp()->currentIndex(), -1);
}

void TestAppParts::controllerDocuments()
{
    ScriptedDialogs dialogs;
    AppTest::ScriptedSavePanel savePanel;
    VXController controller;
    controller.setDialogs(&dialogs);
    controller.setWindowDialogs(&dialogs, &savePanel);
    QVERIFY(controller.bundleFileTypes().contains(QStringLiteral("app")));

    DocumentWindow *blank = controller.newDocument();
    QCOMPARE(controller.windows().size(), 1);

    const QString corrupt = m_box->write(QStringLiteral("bad.vocabrix"), "VOCABRIX\x00\x00");
    QVERIFY(!controller.openDocument(corrupt));
    QCOMPARE(dialogs.alerts().size(), 1);
    QVERIFY(dialogs.alerts().first().message.contains(QStringLiteral("bad.vocabrix")));
    QCOMPARE(controller.windows().size(), 1);

    MyDocument saved;
    saved.setTitle(QStringLiteral("Saved"));
    const QString path = m_box->path(QStringLiteral("good.vocabrix"));
    QVERIFY(saved.writeToFile(path));
    QPointer<DocumentWindow> blankWindow(blank);
    DocumentWindow *opened = controller.openDocument(path);
    QVERIFY(opened);
    QCOMPARE(opened->document()->title(), QStringLiteral("Saved"));
    QCOMPARE(opened->titleField()->text(), QStringLiteral("Saved"));
    QVERIFY(opened->windowTitle().startsWith(QStringLiteral("good.vocabrix")));
    QTRY_VERIFY(blankWindow.isNull());  // the untouched untitled document gave its place
    QCOMPARE(controller.openDocument(path), opened);
    dialogs.queuePanelAnswer(path);  // File > Open with the same document
    controller.openDocumentWithPanel();
    QCOMPARE(dialogs.panels().last().allowedExtensions, QStringList{MyDocument::documentExtension()});
    QCOMPARE(controller.windows().size(), 1);

    controller.showPreferenceWindow();
    PrefWinController *prefs = controller.prefWinController();
    QVERIFY(prefs && prefs->isVisible());
    prefs->close();
    controller.showPreferenceWindow();
    QCOMPARE(controller.prefWinController(), prefs);

    QVERIFY(controller.closeAll());
}

void TestAppParts::alertButtonsAnswerByIndex_data()
{
    QTest::addColumn<QString>("press");
    QTest::addColumn<int>("expected");
    QTest::newRow("default") << "Save" << 0;
    QTest::newRow("middle") << "Don't Save" << 1;
    QTest::newRow("last") << "Cancel" << 2;
    QTest::newRow("escape") << "" << 2;
}

void TestAppParts::alertButtonsAnswerByIndex()
{
    QFETCH(QString, press);
    QFETCH(int, expected);
    QtDialogs dialogs;
    Alert alert;
    alert.title = QStringLiteral("Save?");
    alert.buttons = QStringList{QStringLiteral("Save"), QStringLiteral("Don't Save"), QStringLiteral("Cancel")};
    whenShown<QMessageBox>([press](QMessageBox *box) {
        if (press.isEmpty()) {
            QTest::keyClick(box, Qt::Key_Escape);
            return;
        }
        for (QAbstractButton *b : box->buttons())
            if (b->text() == press) b->click();
    });
    QCOMPARE(dialogs.runAlert(alert), expected);
}

void TestAppParts::openPanelChoosesBundles()
{
    const QString bundle = m_box->path(QStringLiteral("Foo.app"));
    QDir().mkpath(bundle + QLatin1String("/Contents/Resources"));
    const QString table = m_box->write(QStringLiteral("A.strings"), "\"k\" = \"v\";\n");
    OpenPanelOptions options;
    options.allowsMultipleSelection = true;
    options.allowedExtensions = QStringList{QStringLiteral("strings"), QStringLiteral("app")};
    options.bundleExtensions = QStringList{QStringLiteral("app")};
    options.startFolder = m_box->path();
    QtDialogs dialogs;
    for (const QString &choice : {bundle, table}) {
        whenShown<QFileDialog>([choice](QFileDialog *panel) {
            panel->selectFile(choice);
            QMetaObject::invokeMethod(panel, "accept");
        });
        QCOMPARE(dialogs.runOpenPanel(options), QStringList{choice});
    }
    // A plain folder is entered, not chosen: the panel stays open until cancelled.
    QDir().mkpath(m_box->path(QStringLiteral("Plain")));
    whenShown<QFileDialog>([this](QFileDialog *panel) {
        panel->selectFile(m_box->path(QStringLiteral("Plain")));
        QMetaObject::invokeMethod(panel, "accept");
        QVERIFY(panel->isVisible());
        panel->reject();
    });
    QCOMPARE(dialogs.runOpenPanel(options), QStringList());
}

QTEST_MAIN(TestAppParts)
#include "test_app_parts.moc"
