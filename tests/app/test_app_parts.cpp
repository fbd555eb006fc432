// The pieces around the document window, and the dictionary in the windows. Panels and alerts are
// answered by ScriptedDialogs. The cases are tables of UTF-8 literals.
#undef QT_NO_CAST_FROM_ASCII
#include "AppTestSupport.h"
#include "CaseData.h"
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
#include "StringsTable.h"
#include "VXController.h"

#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QClipboard>
#include <QCompleter>
#include <QFileDialog>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMessageBox>
#include <QMimeData>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QSignalSpy>
#include <QTableView>
#include <QTextBlock>
#include <QTextLayout>
#include <QTimer>
#include <QTreeWidget>
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
    std::unique_ptr<TestSupport::Sandbox> m_box;
    std::unique_ptr<VXController> m_controller;
    ScriptedDialogs m_dialogs;
    AppTest::ScriptedSavePanel m_savePanel;
    QString dictPath() const { return DictionaryFiles::dictionaryFolder() + QLatin1String("/English-French.strings"); }
    VXController *controller()
    {
        if (!m_controller) {
            m_controller = std::make_unique<VXController>();
            m_controller->setWindowDialogs(&m_dialogs, &m_savePanel);
        }
        return m_controller.get();
    }
    DocumentWindow *windowOnCancelEntry()
    {
            const auto bundles = AppTest::bundles();
            DocumentWindow *window = controller()->newDocument();
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
    QStringList shownKeys(const DictPanel *panel) const
    {
            QStringList keys;
            for (const DictEntryPtr &row : panel->controller()->shownEntries()) keys.append(*row->key());
            return keys;
    }

private slots:
    void initTestCase()
    {
        registerResourceHandlers();
        setInterfaceLanguage("en");
    }
    void init()
    {
        m_box = std::make_unique<TestSupport::Sandbox>();
        VXController::initialize();
        m_dialogs = ScriptedDialogs();
        m_box->write("data/Vocabrix/English-French.strings",
                     "\"Cancel\" = \"Annuler\";\n\"Cancel All\" = \"Tout annuler\";\n\"Open File\" = \"Ouvrir le fichier\";\n"
                     "\"Open\" = \"Ouvrir\";\n\"OK\" = \"OK\";\n\"Goodbye\" = \"Au revoir\";\n");
    }
    void cleanup()
    {
        if (m_controller)
            for (DocumentWindow *w : m_controller->windows()) {
                w->document()->updateChangeCount(MyDocument::ChangeCleared);
                delete w;
            }
        m_controller.reset();
        for (const auto &key : Settings::keys()) Settings::instance().remove(key.name);
        qunsetenv("VOCABRIX_HUNSPELL_DIR");
    }

    void movedRows_data() { TestSupport::addTableRows("app", "moved-rows.tsv", {"rows", "to", "expected"}); }
    void movedRows()
    {
        QFETCH(QString, rows);
        QFETCH(QString, to);
        QFETCH(QString, expected);
        QList<int> moving;
        for (const QString &r : rows.split(u',')) moving.append(r.toInt());
        QList<QChar> list;
        for (QChar c : QStringView(u"ABCDE").left(expected.size())) list.append(c);
        const QList<QChar> moved = ::movedRows(list, moving, to.toInt());
        QCOMPARE(QString(moved.constData(), moved.size()), expected);
    }

    void shownNames_data() { TestSupport::addTableRows("app", "shown-names.tsv", {"paths", "expected"}); }
    void shownNames()
    {
        QFETCH(QString, paths);
        QFETCH(QString, expected);
        QList<LocFilePtr> files;
        for (const QString &p : paths.split(u','))
            files.append(LocFile::initWithPath(m_box->write(p, "\"k\" = \"v\";\n"), std::nullopt, std::nullopt));
        QCOMPARE(FileTableModel::shownNames(files).join(u','), expected);
    }

    void dictionaryNames_data() { TestSupport::addTableRows("app", "spelling-dictionaries.tsv", {"abbreviation", "available", "expected"}); }
    void dictionaryNames()
    {
        QFETCH(QString, abbreviation);
        QFETCH(QString, available);
        QFETCH(QString, expected);
        const QStringList installed = available == "*" ? QString("de_AT de_DE en_GB en_US fr fr_CA fr_FR pt_BR pt_PT sv_FI sv_SE zh_CN").split(u' ')
                                                       : QStringList{available};
        QCOMPARE(SpellChecker::dictionaryNameFor(abbreviation, installed), expected);
    }

    void spellingWithOwnDictionary()
    {
        // A tiny dictionary of our own: three words, one with accents.
        const QString folder = m_box->path(QStringLiteral("hunspell"));
        TestSupport::writeFile(folder + QLatin1String("/xx_XX.aff"), "SET UTF-8\nTRY esianrtolcdugmphbyfvkwz\n");
        TestSupport::writeFile(folder + QLatin1String("/xx_XX.dic"), "3\nbonjour\nmonde\n\xC3\xA9t\xC3\xA9\n");
        qputenv("VOCABRIX_HUNSPELL_DIR", QFile::encodeName(folder));
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

        // The editor underlines only while checking is switched on.
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
        QVERIFY(underlined().isEmpty());
        editor.setContinuousSpellCheckingEnabled(true);
        QCOMPARE(underlined(), QStringList{QStringLiteral("mondee")});
        editor.setContinuousSpellCheckingEnabled(false);
        QVERIFY(underlined().isEmpty());
        // Underlining is no edit: nothing to write, the document unchanged.
        QVERIFY(!editor.commit());
        QVERIFY(!document.isDocumentEdited());
    }

    void editorShowsPreviousBaseWord()
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

    void missingDictionaryOnlyDisablesChecking()
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

    void fileDropsAreFilteredAndDeferred()
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

    void preferenceWindow()
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

        prefs.ignoreLocalizedWordsSwitch()->click();
        QVERIFY(Settings::instance().boolValue(SettingsKey::IgnoreLocalizedWords));
        Settings::instance().setValue(SettingsKey::IgnoreEmptyWords, true);  // from elsewhere
        QVERIFY(prefs.ignoreEmptyWordsSwitch()->isChecked());

        // A stored tag that no item carries leaves the popup without a selection.
        Settings::instance().setValue(SettingsKey::BaseLanguage, 999);
        prefs.windowDidLoad();
        QCOMPARE(prefs.languageFromPp()->currentIndex(), -1);
    }

    void controllerDocuments()
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

    void alertButtonsAnswerByIndex_data()
    {
        QTest::addColumn<QString>("press");
        QTest::addColumn<int>("expected");
        QTest::newRow("default") << "Save" << 0;
        QTest::newRow("middle") << "Don't Save" << 1;
        QTest::newRow("last") << "Cancel" << 2;
        QTest::newRow("escape") << "" << 2;
    }

    void alertButtonsAnswerByIndex()
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

    // A report is kept: its Copy button copies it whole and leaves it open.
    void reportsCanBeCopied()
    {
        QtDialogs dialogs;
        Alert report;
        report.title = QStringLiteral("Some files need a look");
        report.message = QStringLiteral("a.strings: line 2\nb.strings: line 7");
        report.copyable = true;
        dialogs.showAlertSheet(report);
        QMessageBox *box = nullptr;
        for (QWidget *w : QApplication::topLevelWidgets())
            if (auto *b = qobject_cast<QMessageBox *>(w); b && b->isVisible() && b->text() == report.title) box = b;
        QVERIFY(box);
        box->findChild<QPushButton *>(QStringLiteral("copyReport"))->click();
        QCOMPARE(QGuiApplication::clipboard()->text(), report.title + QLatin1String("\n\n") + report.message);
        QVERIFY(box->isVisible());
        box->close();
    }

    void openPanelChoosesBundles()
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

    void oneBrowserPerPair()
    {
        DocumentWindow *window = controller()->newDocument();
        window->showDictionaryBrowser();
        QCOMPARE(controller()->dictBrowsers().size(), 1);
        DictBrowserWindow *browser = controller()->dictBrowsers().value(dictPath());
        QVERIFY(browser && browser->isVisible());
        QCOMPARE(browser->tableModel()->rowCount(), 6);
        browser->controller()->setRowValue(browser->controller()->entries().first(), QStringLiteral("Annuler\u2026"));
        browser->searchField()->setText(QStringLiteral("OUVR"));
        QCOMPARE(browser->tableModel()->rowCount(), 2);
        QCOMPARE(browser->countLabel()->text(), QStringLiteral("2 of 6 pairs"));
        // Closing hides; asking again shows the same browser with its unsaved edit.
        browser->close();
        QVERIFY(!browser->isVisible());
        QCOMPARE(controller()->showDictBrowserForBase(QStringLiteral("English"), QStringLiteral("French")), browser);
        QVERIFY(browser->isVisible());
        QCOMPARE(*browser->controller()->entries().first()->value(), QStringLiteral("Annuler\u2026"));
        QVERIFY(browser->isWindowModified());
        // The Dictionaries menu lists the pair files that exist and opens the same browser.
        TestSupport::writeFile(DictionaryFiles::dictionaryFolder() + QLatin1String("/English-German.strings"), "");
        QMenu menu;
        controller()->fillDictionariesMenu(&menu);
        QStringList names;
        for (QAction *a : menu.actions()) names.append(a->text());
        QCOMPARE(names, (QStringList{"English-French", "English-German"}));
        menu.actions().first()->trigger();
        QCOMPARE(controller()->dictBrowsers().size(), 1);
        menu.actions().last()->trigger();
        QCOMPARE(controller()->dictBrowsers().size(), 2);
    }

    void browserImportsAndCleans()
    {
        DictBrowserWindow *browser = controller()->showDictBrowserForPath(dictPath());
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
    }

    void panelFollowsEditor()
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

    void doubleClickIsOneUndoStep()
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

    // The document's own export reloads its panel (open browsers: the dictionary's own tests).
    void exportReachesPanel()
    {
        DocumentWindow *window = windowOnCancelEntry();
        window->entryEditor()->focusEditor();
        QTest::keyClicks(window->entryEditor()->entryField(), QStringLiteral("Abandonner"));
        window->entryEditor()->commit();
        const ExportResult result = window->document()->makeLocalizedFilesInto(window->document()->files(), m_box->path(QStringLiteral("out")), true);
        QVERIFY(!result.cancelled);
        // Which word keys the exported pair is the handler's business; its value is what was typed.
        QStringList values;
        for (const DictEntryPtr &row : window->dictPanel()->controller()->entries()) values.append(StringUtility::wordOrEmpty(row->value()));
        QVERIFY(values.contains(QStringLiteral("Abandonner")));
    }
};

QTEST_MAIN(TestAppParts)
#include "test_app_parts.moc"
