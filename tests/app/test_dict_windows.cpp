// The dictionary in the windows, driven headless through ScriptedDialogs: one browser per pair,
// its imports and cleaning, and the lookup panel following the entry editor.
// The cases are tables of UTF-8 literals; the program itself converts every byte explicitly.
#undef QT_NO_CAST_FROM_ASCII
#include "AppTestSupport.h"
#include "DictBrowserWindow.h"
#include "DictController.h"
#include "DictPanel.h"
#include "DictTableModel.h"
#include "DictWindowController.h"
#include "DictionaryFiles.h"
#include "DocumentWindow.h"
#include "EntryEditor.h"
#include "EntryTableModel.h"
#include "FileTableModel.h"
#include "Handlers.h"
#include "LocalizedText.h"
#include "MyDocument.h"
#include "ScriptedDialogs.h"
#include "StringsTable.h"
#include "VXController.h"

#include <QAction>
#include <QApplication>
#include <QCompleter>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QPlainTextEdit>
#include <QTableView>
#include <QTreeWidget>

class TestDictWindows : public QObject {
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();
    void oneBrowserPerPair();
    void browserImportsAndCleans();
    void panelFollowsEditor();
    void doubleClickIsOneUndoStep();
    void exportReachesPanelAndBrowser();

private:
    QString dictPath() const { return DictionaryFiles::dictionaryFolder() + QLatin1String("/English-French.strings"); }
    DocumentWindow *windowOnCancelEntry();
    QStringList shownKeys(const DictPanel *panel) const;
    std::unique_ptr<TestSupport::Sandbox> m_box;
    std::unique_ptr<VXController> m_controller;
    ScriptedDialogs m_dialogs;
    AppTest::ScriptedSavePanel m_savePanel;
};

void TestDictWindows::initTestCase()
{
    registerResourceHandlers();
    setInterfaceLanguage(QStringLiteral("en"));
}

void TestDictWindows::init()
{
    m_box = std::make_unique<TestSupport::Sandbox>();
    TestSupport::writeFile(dictPath(), "\"Cancel\" = \"Annuler\";\n\"Cancel All\" = \"Tout annuler\";\n\"Open File\" = \"Ouvrir le fichier\";\n"
                                       "\"Open\" = \"Ouvrir\";\n\"OK\" = \"OK\";\n\"Goodbye\" = \"Au revoir\";\n");
    m_dialogs = ScriptedDialogs();
    m_controller = std::make_unique<VXController>();
    m_controller->setWindowDialogs(&m_dialogs, &m_savePanel);
}

void TestDictWindows::cleanup()
{
    for (DocumentWindow *w : m_controller->windows()) {
        w->document()->updateChangeCount(MyDocument::ChangeCleared);
        delete w;
    }
    m_controller.reset();
}

void TestDictWindows::oneBrowserPerPair()
{
    DocumentWindow *window = m_controller->newDocument();
    window->showDictionaryBrowser();
    QCOMPARE(m_controller->dictBrowsers().size(), 1);
    DictBrowserWindow *browser = m_controller->dictBrowsers().value(dictPath());
    QVERIFY(browser && browser->isVisible());
    QCOMPARE(browser->tableModel()->rowCount(), 6);
    browser->controller()->setRowValue(browser->controller()->entries().first(), QStringLiteral("Annuler\u2026"));
    browser->searchField()->setText(QStringLiteral("OUVR"));
    QCOMPARE(browser->tableModel()->rowCount(), 2);
    QCOMPARE(browser->countLabel()->text(), QStringLiteral("2 of 6 pairs"));
    // Closing hides; asking again shows the same browser with its unsaved edit.
    browser->close();
    QVERIFY(!browser->isVisible());
    QCOMPARE(m_controller->showDictBrowserForBase(QStringLiteral("English"), QStringLiteral("French")), browser);
    QVERIFY(browser->isVisible());
    QCOMPARE(*browser->controller()->entries().first()->value(), QStringLiteral("Annuler\u2026"));
    QVERIFY(browser->isWindowModified());
    // The Dictionaries menu lists the pair files that exist and opens the same browser.
    TestSupport::writeFile(DictionaryFiles::dictionaryFolder() + QLatin1String("/English-German.strings"), "");
    QMenu menu;
    m_controller->fillDictionariesMenu(&menu);
    QStringList names;
    for (QAction *a : menu.actions()) names.append(a->text());
    QCOMPARE(names, (QStringList{"English-French", "English-German"}));
    menu.actions().first()->trigger();
    QCOMPARE(m_controller->dictBrowsers().size(), 1);
    menu.actions().last()->trigger();
    QCOMPARE(m_controller->dictBrowsers().size(), 2);
}

void TestDictWindows::browserImportsAndCleans()
{
    DictBrowserWindow *browser = m_controller->showDictBrowserForPath(dictPath());
    const QString table = m_box->write(QStringLiteral("more.strings"), "\"Save\" = \"Enregistrer\";\n\"Quit\" = \"Quit\";\n");
    const QString bad = m_box->write(QStringLiteral("bad.tmx"), "<tmx><body>");
    m_dialogs.queuePanelAnswer(QStringList{table, bad});
    browser->action(QStringLiteral("Import"))->trigger();
    const OpenPanelOptions panel = m_dialogs.panels().first();
    QVERIFY(panel.allowsMultipleSelection);
    for (const char *ext : {"strings", "app", "ad", "lg", "wg", "tmx"}) QVERIFY2(panel.allowedExtensions.contains(QLatin1String(ext)), ext);
    QCOMPARE(browser->tableModel()->rowCount(), 8);
    m_dialogs.queuePanelCancel();
    browser->action(QStringLiteral("ImportGlossary"))->trigger();
    QCOMPARE(m_dialogs.panels().last().allowedExtensions, (QStringList{"ad", "lg", "wg"}));
    QCOMPARE(m_dialogs.alerts().size(), 1);  // the unreadable TMX file, named
    QVERIFY(m_dialogs.alerts().first().message.contains(QLatin1String("bad.tmx")));
    QCOMPARE(dictionaryWithContentsOfFile(dictPath())->size(), 8);  // saved after the import

    // Cleaning says how many first; cancelling keeps them, confirming removes them in one step.
    m_dialogs.queueAlertButton(1);
    browser->action(QStringLiteral("Clean"))->trigger();
    QVERIFY(m_dialogs.alerts().last().message.startsWith(QLatin1String("2 pairs")));
    QCOMPARE(browser->tableModel()->rowCount(), 8);
    m_dialogs.queueAlertButton(0);
    browser->action(QStringLiteral("Clean"))->trigger();
    QCOMPARE(browser->tableModel()->rowCount(), 6);
    browser->action(QStringLiteral("Undo"))->trigger();
    QCOMPARE(browser->tableModel()->rowCount(), 8);
    browser->action(QStringLiteral("Undo"))->trigger();
    QCOMPARE(browser->tableModel()->rowCount(), 6);  // the import undone
}

DocumentWindow *TestDictWindows::windowOnCancelEntry()
{
    const auto bundles = AppTest::writeBundles(*m_box);
    DocumentWindow *window = m_controller->newDocument();
    window->document()->addFiles(QList<QPair<QString, OptString>>{{bundles.first, std::nullopt}});
    for (int row = 0; row < window->fileModel()->rowCount(); ++row)
        if (window->fileModel()->index(row, FileTableModel::NameColumn).data().toString() == QLatin1String("Localizable.strings"))
            window->selectFileRows({row});
    for (int row = 0; row < window->entryModel()->rowCount(); ++row)
        if (window->entryModel()->index(row, EntryTableModel::KeyColumn).data().toString() == QLatin1String("cancel"))
            window->selectEntryRow(row);
    QApplication::setActiveWindow(window);
    return window;
}

QStringList TestDictWindows::shownKeys(const DictPanel *panel) const
{
    QStringList keys;
    for (const DictEntryPtr &row : panel->controller()->shownEntries()) keys.append(*row->key());
    return keys;
}

void TestDictWindows::panelFollowsEditor()
{
    DocumentWindow *window = windowOnCancelEntry();
    DictPanel *panel = window->dictPanel();
    EntryEditor *editor = window->entryEditor();
    QCOMPARE(panel->dictTable()->model()->rowCount(), 6);
    // The closest keys to the base word, best first.
    QCOMPARE(panel->similarList()->topLevelItemCount(), 1);
    QCOMPARE(panel->similarList()->topLevelItem(0)->text(0), QStringLiteral("100%"));

    // A selection in the base-word field counts only while the user is in it.
    editor->basewordField()->setSelection(0, 3);
    QCOMPARE(shownKeys(panel).size(), 6);
    editor->basewordField()->setFocus();
    editor->basewordField()->setSelection(0, 4);
    QCOMPARE(shownKeys(panel), (QStringList{"Cancel", "Cancel All"}));

    // Typing filters by the field's whole text, and offers whole values that start with it.
    editor->focusEditor();
    QTest::keyClicks(editor->entryField(), QStringLiteral("Ou"));
    QCOMPARE(shownKeys(panel), (QStringList{"Cancel All", "Open File", "Open"}));  // "Tout" holds "ou"
    QCOMPARE(panel->completer()->model()->rowCount(), 2);
    QCOMPARE(panel->completer()->model()->index(0, 0).data().toString(), QStringLiteral("Ouvrir le fichier"));
    // An insertion point without a selection shows every pair again.
    QCoreApplication::processEvents();  // the keystrokes' own turn of the event loop ends
    editor->entryField()->moveCursor(QTextCursor::Start);
    QCOMPARE(shownKeys(panel).size(), 6);
    // The panel's own search field.
    panel->searchField()->setText(QStringLiteral("REVOIR"));
    QCOMPARE(shownKeys(panel), QStringList{"Goodbye"});

    // A new target language reloads from that pair's file, the search still applied.
    TestSupport::writeFile(DictionaryFiles::dictionaryFolder() + QLatin1String("/English-German.strings"), "\"Goodbye\" = \"Auf Wiedersehen\";\n");
    window->document()->setLocLangTo(3);
    window->document()->changeTargetLanguage();
    QCOMPARE(shownKeys(panel), QStringList{});
    panel->searchField()->clear();
    QCOMPARE(shownKeys(panel), QStringList{"Goodbye"});
}

void TestDictWindows::doubleClickIsOneUndoStep()
{
    DocumentWindow *window = windowOnCancelEntry();
    DictPanel *panel = window->dictPanel();
    QPlainTextEdit *field = window->entryEditor()->entryField();
    const QString before = field->toPlainText();
    panel->searchField()->setText(QStringLiteral("cancel all"));
    panel->chooseTableRow(0);
    QCOMPARE(field->toPlainText(), QStringLiteral("Tout annuler"));
    field->undo();
    QCOMPARE(field->toPlainText(), before);
    // The chosen word reaches the entry like a typed one.
    const LocEntryPtr cancel = window->currentEntry();
    panel->searchField()->clear();  // the undo moved the insertion point: every pair is shown again
    panel->searchField()->setText(QStringLiteral("cancel all"));
    panel->chooseTableRow(0);
    window->selectPrevious();
    QCOMPARE(StringUtility::wordOrEmpty(cancel->localizedWord()), QStringLiteral("Tout annuler"));
    // Without an entry to edit, nothing happens.
    window->selectEntryRow(-1);
    panel->chooseTableRow(0);
    QCOMPARE(field->toPlainText(), QString());
}

// The document's own export reloads its panel; an open browser of the pair saves its edit before
// the merge and shows the exported pairs after it.
void TestDictWindows::exportReachesPanelAndBrowser()
{
    DocumentWindow *window = windowOnCancelEntry();
    DictBrowserWindow *browser = m_controller->showDictBrowserForPath(dictPath());
    browser->controller()->setRowValue(browser->controller()->entries().at(3), QStringLiteral("Ouvrir\u2026"));
    window->entryEditor()->focusEditor();
    QTest::keyClicks(window->entryEditor()->entryField(), QStringLiteral("Abandonner"));
    window->entryEditor()->commit();
    ExportResult result = window->document()->makeLocalizedFilesInto(window->document()->files(), m_box->path(QStringLiteral("out")), true);
    QVERIFY(!result.cancelled);
    const StringMap stored = *dictionaryWithContentsOfFile(dictPath());
    QCOMPARE(stored.value(QStringLiteral("Open")), QStringLiteral("Ouvrir\u2026"));
    // Which word keys the exported pair is the handler's business; its value is what was typed.
    auto values = [](const DictRows &rows) {
        QStringList list;
        for (const DictEntryPtr &row : rows) list.append(StringUtility::wordOrEmpty(row->value()));
        return list;
    };
    QVERIFY(std::any_of(stored.begin(), stored.end(), [](const auto &p) { return p.second == QLatin1String("Abandonner"); }));
    QVERIFY(values(window->dictPanel()->controller()->entries()).contains(QStringLiteral("Abandonner")));
    // The browser keeps its rows, the edited one included, and adds the exported pairs after them.
    const QStringList browserValues = values(browser->controller()->entries());
    QCOMPARE(browserValues.mid(0, 6), (QStringList{"Annuler", "Tout annuler", "Ouvrir le fichier", "Ouvrir\u2026", "OK", "Au revoir"}));
    QVERIFY(browserValues.mid(6).contains(QStringLiteral("Abandonner")));
    QVERIFY(browser->isWindowModified());
}

QTEST_MAIN(TestDictWindows)
#include "test_dict_windows.moc"
