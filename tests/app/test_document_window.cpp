// The document window, driven headless on the real handlers: panels and alerts answered by
// ScriptedDialogs, Save As by a scripted save panel. Only what the window adds to the model.
#include "AppTestSupport.h"
#include "CaseData.h"
#include "CustomizeToolbarDialog.h"
#include "DictionaryFiles.h"
#include "DictPanel.h"
#include "DocumentUndo.h"
#include "DocumentWindow.h"
#include "EntryEditor.h"
#include "EntryTableModel.h"
#include "FileTableMenu.h"
#include "FileTableModel.h"
#include "FilesDrawer.h"
#include "Handlers.h"
#include "LanguageComboBox.h"
#include "Languages.h"
#include "LocalizedText.h"
#include "MyDocument.h"
#include "ProblemList.h"
#include "ProgressPanel.h"
#include "ScriptedDialogs.h"
#include "Settings.h"
#include "StringsTable.h"
#include "ToolbarController.h"

#include <QAction>
#include <QApplication>
#include <QBrush>
#include <QCheckBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMenu>
#include <QMimeData>
#include <QPlainTextEdit>
#include <QPointer>
#include <QProgressBar>
#include <QProgressDialog>
#include <QPushButton>
#include <QTableView>
#include <QToolBar>
#include <QUndoStack>

using StringUtility::wordOrEmpty;
using TestSupport::S;

namespace {
QStringList names(std::initializer_list<const char *> items)
{
    QStringList list;
    for (const char *item : items) list.append(S(item));
    return list;
}
}  // namespace

class TestDocumentWindow : public QObject {
    Q_OBJECT

private slots:
    void initTestCase()
    {
        registerResourceHandlers();
        setInterfaceLanguage(QStringLiteral("en"));
    }
    void init()
    {
        m_box = std::make_unique<TestSupport::Sandbox>();
        std::tie(m_bundle, m_previous) = AppTest::bundles();
        m_dialogs = ScriptedDialogs();
        m_savePanel = AppTest::ScriptedSavePanel();
        m_window = newWindow();
    }
    void cleanup()
    {
        if (m_window) {
            doc()->updateChangeCount(MyDocument::ChangeCleared);  // close without the question
            delete m_window;
        }
        for (const auto &key : Settings::keys()) Settings::instance().remove(key.name);
        Settings::instance().remove(ToolbarController::toolbarName());
        Settings::instance().remove(FilesDrawer::openKey());
    }
    void addingBundleFillsFileTable()
    {
        const QStringList fileCommands{QStringLiteral("Export"), QStringLiteral("ExportAll"), QStringLiteral("Delete")};
        QVERIFY(m_window->toolbarItem(QStringLiteral("AddFile"))->isEnabled());
        for (const QString &id : fileCommands) QVERIFY2(!m_window->toolbarItem(id)->isEnabled(), qPrintable(id));
        // The progress panel, window-modal, must not cover the previous-version panel: it would block it.
        bool covered = true;
        m_dialogs.panelFallback = [&](const OpenPanelOptions &) {
            covered = m_window->progressPanel()->dialog() != nullptr;
            return QStringList{m_previous};
        };
        m_dialogs.queuePanelAnswer(m_bundle);
        m_window->toolbarItem(QStringLiteral("AddFile"))->trigger();
        QVERIFY(!covered);
        for (const QString &id : fileCommands) QVERIFY2(m_window->toolbarItem(id)->isEnabled(), qPrintable(id));
        QCOMPARE(m_dialogs.panels().size(), 2);  // the files, then the bundle's previous release
        // Credits.rtf is not a resource; the table lists the two string tables.
        QCOMPARE(files()->rowCount(), 2);
        const int localizable = fileRow(QStringLiteral("Localizable.strings"));
        const int info = fileRow(QStringLiteral("InfoPlist.strings"));
        QVERIFY(localizable >= 0 && info >= 0);
        // "hello" comes from the previous release; "bye" and "cancel" are still to translate.
        QCOMPARE(files()->index(localizable, FileTableModel::StatusColumn).data().toString(), QStringLiteral("1/3"));
        QCOMPARE(files()->index(localizable, 0).data(Qt::ForegroundRole).value<QBrush>().color(), QColor(Qt::red));
        QCOMPARE(files()->index(info, FileTableModel::StatusColumn).data().toString(), QStringLiteral("1/1"));
        QVERIFY(!files()->index(info, 0).data(Qt::ForegroundRole).isValid());

        QVERIFY(doc()->isDocumentEdited());
        QVERIFY(m_window->isWindowModified());
        QCOMPARE(m_window->findChild<QLabel *>(QStringLiteral("summary"))->text(), QStringLiteral("2 files, 2 of 4 entries checked"));
        // The first file is selected and shown, its first entry in the editor.
        QCOMPARE(m_window->selectedFiles().size(), 1);
        QCOMPARE(entries()->file(), m_window->selectedFiles().first());
        QVERIFY(m_window->currentEntry());
        QCOMPARE(m_window->entryEditor()->basewordField()->text(), wordOrEmpty(entries()->entryAt(0)->baseWord()));
    }
    void entryTableFollowsSelectedFile()
    {
        addFixture();
        m_window->selectFileRows({fileRow(QStringLiteral("Localizable.strings"))});
        QCOMPARE(entries()->rowCount(), 3);
        const int hello = rowOfKey(QStringLiteral("hello"));
        QVERIFY(hello >= 0);
        QCOMPARE(entries()->index(hello, EntryTableModel::BaseWordColumn).data().toString(), QStringLiteral("Hello"));
        QCOMPARE(entries()->index(hello, EntryTableModel::LocalizedWordColumn).data().toString(), QStringLiteral("Bonjour"));
        QCOMPARE(entries()->index(hello, EntryTableModel::CheckColumn).data(Qt::CheckStateRole).value<Qt::CheckState>(), Qt::Checked);
        const int bye = rowOfKey(QStringLiteral("bye"));
        QCOMPARE(entries()->index(bye, EntryTableModel::CheckColumn).data(Qt::CheckStateRole).value<Qt::CheckState>(), Qt::Unchecked);

        m_window->selectEntryRow(bye);
        QCOMPARE(m_window->entryEditor()->basewordField()->text(), QStringLiteral("Goodbye"));
        QCOMPARE(m_window->entryEditor()->entryField()->toPlainText(), QStringLiteral("Goodbye"));
        QVERIFY(!m_window->entryEditor()->checkBox()->isChecked());

        // The search field filters the table (the search itself is the document's).
        m_window->searchField()->setText(QStringLiteral("GOODBYE"));
        QCOMPARE(entries()->rowCount(), 1);
        QCOMPARE(rowOfKey(QStringLiteral("bye")), 0);
        m_window->searchField()->clear();
        QCOMPARE(entries()->rowCount(), 3);

        // Another file starts at its first entry, not at the row the last one was on.
        const QString other = m_box->write(QStringLiteral("Other.strings"),
                                                     "\"a\" = \"A\";\n\"b\" = \"B\";\n\"c\" = \"C\";\n");
        doc()->addFiles(QList<QPair<QString, OptString>>{{other, std::nullopt}});
        m_window->selectFileRows({fileRow(QStringLiteral("Localizable.strings"))});
        m_window->selectEntryRow(2);
        m_window->selectFileRows({fileRow(QStringLiteral("Other.strings"))});
        QCOMPARE(m_window->entryTable()->currentIndex().row(), 0);
        QCOMPARE(m_window->currentEntry(), entries()->entryAt(0));

        // Two files selected: no entries shown.
        m_window->selectFileRows({0, 1});
        QCOMPARE(entries()->rowCount(), 0);
        QVERIFY(!m_window->currentEntry());
    }
    void editingLocalizedWordInTable()
    {
        addFixture();
        const int localizable = fileRow(QStringLiteral("Localizable.strings"));
        m_window->selectFileRows({localizable});
        doc()->updateChangeCount(MyDocument::ChangeCleared);
        const int bye = rowOfKey(QStringLiteral("bye"));
        const LocEntryPtr entry = entries()->entryAt(bye);

        QVERIFY(entries()->setData(entries()->index(bye, EntryTableModel::LocalizedWordColumn), QStringLiteral("Au \"revoir\""),
                                   Qt::EditRole));
        // The entry's text is rewritten in string-table form, and the entry checked.
        QCOMPARE(wordOrEmpty(entry->localizedWord()), QStringLiteral("Au \\\"revoir\\\""));
        QVERIFY(entry->entry().endsWith(QStringLiteral("\n\"Goodbye\" = \"Au \\\"revoir\\\"\";")));
        QVERIFY(entry->isChecked());
        QVERIFY(doc()->isDocumentEdited());
        QCOMPARE(entries()->index(bye, EntryTableModel::LocalizedWordColumn).data().toString(), QStringLiteral("Au \\\"revoir\\\""));
        QTRY_COMPARE(files()->index(localizable, FileTableModel::StatusColumn).data().toString(), QStringLiteral("2/3"));

        // The same word again is no edit.
        doc()->updateChangeCount(MyDocument::ChangeCleared);
        entries()->setData(entries()->index(bye, EntryTableModel::LocalizedWordColumn), entry->localizedWord().value(), Qt::EditRole);
        QVERIFY(!doc()->isDocumentEdited());
    }
    void typingInEntryEditor()
    {
        addFixture();
        m_window->selectFileRows({fileRow(QStringLiteral("Localizable.strings"))});
        const int cancel = rowOfKey(QStringLiteral("cancel"));
        m_window->selectEntryRow(cancel);
        const LocEntryPtr entry = m_window->currentEntry();
        QCOMPARE(wordOrEmpty(entry->baseWord()), QStringLiteral("Cancel"));
        doc()->updateChangeCount(MyDocument::ChangeCleared);

        m_window->entryEditor()->focusEditor();
        QTest::keyClicks(m_window->entryEditor()->entryField(), QStringLiteral("Annuler"));
        // Typing marks the document at once; the word is written when the user moves on.
        QVERIFY(doc()->isDocumentEdited());
        QCOMPARE(wordOrEmpty(entry->localizedWord()), QStringLiteral("Cancel"));
        m_window->selectPrevious();
        QCOMPARE(wordOrEmpty(entry->localizedWord()), QStringLiteral("Annuler"));
        QVERIFY(entry->isChecked());
        QCOMPARE(entries()->index(cancel, EntryTableModel::LocalizedWordColumn).data().toString(), QStringLiteral("Annuler"));

        // Saving writes a pending edit too.
        m_window->selectEntryRow(cancel);
        m_window->entryEditor()->focusEditor();
        QTest::keyClicks(m_window->entryEditor()->entryField(), QStringLiteral("Fermer"));
        m_savePanel.answers = {m_box->path(QStringLiteral("saved.vocabrix"))};
        QVERIFY(m_window->save());
        QCOMPARE(wordOrEmpty(entry->localizedWord()), QStringLiteral("Fermer"));
        QVERIFY(!doc()->isDocumentEdited());
        // The text changed back to the word (or only highlighted again) is no step: nothing to write.
        const int steps = m_window->undo()->stack()->count();
        QTest::keyClick(m_window->entryEditor()->entryField(), Qt::Key_X);
        QTest::keyClick(m_window->entryEditor()->entryField(), Qt::Key_Backspace);
        QVERIFY(!m_window->entryEditor()->commit());
        QCOMPARE(m_window->undo()->stack()->count(), steps);
    }
    void checkAndNextMovesOn()
    {
        addFixture();
        m_window->selectFileRows({fileRow(QStringLiteral("Localizable.strings"))});
        m_window->selectEntryRow(0);
        const LocEntryPtr first = m_window->currentEntry();
        first->setCheck(false);
        m_window->entryEditor()->finishButton()->click();
        QVERIFY(first->isChecked());
        QCOMPARE(m_window->currentEntry(), entries()->entryAt(1));
        // Ctrl+Return in the editor does the same.
        QApplication::setActiveWindow(m_window);
        QVERIFY(QTest::qWaitForWindowActive(m_window));
        m_window->entryEditor()->focusEditor();
        QTest::keyClick(m_window->entryEditor()->entryField(), Qt::Key_Return, Qt::ControlModifier);
        QCOMPARE(m_window->currentEntry(), entries()->entryAt(2));
        QVERIFY(entries()->entryAt(1)->isChecked());
        QVERIFY(!m_window->entryEditor()->entryField()->toPlainText().contains(u'\n'));
        // At the end the selection stays on the last entry.
        m_window->selectEntryRow(2);
        m_window->checkLocalized();
        QCOMPARE(m_window->currentEntry(), entries()->entryAt(2));
    }
    void checkAndNextGoesOnToNextFile()
    {
        addThreeFiles();
        FileTableModel *files = m_window->fileModel();
        m_window->selectFileRows({0});
        m_window->selectEntryRow(1);
        m_window->checkLocalized();
        QCOMPARE(m_window->selectedFiles(), QList<LocFilePtr>{files->fileAt(1)});
        QCOMPARE(m_window->currentEntry(), files->fileAt(1)->entries().first());
        QVERIFY(files->fileAt(0)->entries().last()->isChecked());
        // The third file done, the first too (the search wraps): nowhere to go, the selection stays.
        for (const LocEntryPtr &e : files->fileAt(2)->entries()) e->setCheck(true);
        files->fileAt(0)->entries().first()->setCheck(true);
        m_window->selectEntryRow(1);
        m_window->checkLocalized();
        QCOMPARE(m_window->selectedFiles(), QList<LocFilePtr>{files->fileAt(1)});
        QCOMPARE(m_window->currentEntry(), files->fileAt(1)->entries().last());
    }
    void hidingCheckedEntries()
    {
        addFixture();
        const LocFilePtr file = m_window->fileModel()->fileAt(fileRow(QStringLiteral("Localizable.strings")));
        m_window->selectFileRows({fileRow(QStringLiteral("Localizable.strings"))});
        QCOMPARE(entries()->rowCount(), 3);

        Settings::instance().setValue(SettingsKey::IgnoreLocalizedWords, true);
        QCOMPARE(entries()->rowCount(), 2);  // "hello" is checked
        QCOMPARE(rowOfKey(QStringLiteral("hello")), -1);

        // Checking an entry takes it out of the list a moment later; it stays in the file.
        const int bye = rowOfKey(QStringLiteral("bye"));
        m_window->selectEntryRow(bye);
        entries()->setData(entries()->index(bye, EntryTableModel::CheckColumn), Qt::Checked, Qt::CheckStateRole);
        QCOMPARE(entries()->rowCount(), 2);
        QTRY_COMPARE(entries()->rowCount(), 1);
        QCOMPARE(file->allEntries().size(), 3);
        // The entry that took its place is the one shown, with the editor ready for typing.
        QCOMPARE(m_window->currentEntry(), entries()->entryAt(0));
        QCOMPARE(wordOrEmpty(m_window->currentEntry()->keyWord()), QStringLiteral("cancel"));

        Settings::instance().setValue(SettingsKey::IgnoreLocalizedWords, false);
        QCOMPARE(entries()->rowCount(), 3);
    }
    // The work left, across files: counted per file and in total, walked with Find Next and
    // Find Previous from file to file and round.
    void findingTheWork()
    {
        addThreeFiles();
        doc()->files().at(0)->allEntries().first()->setLocalizedWord(S("Vau"));  // done: left out
        QVERIFY(m_window->fileTable()->isColumnHidden(FileTableModel::FoundColumn));
        m_window->menuAction(S("OnlyToDo"))->trigger();
        QVERIFY(!m_window->fileTable()->isColumnHidden(FileTableModel::FoundColumn));
        QStringList found;
        for (int row = 0; row < 3; ++row) found.append(files()->index(row, FileTableModel::FoundColumn).data().toString());
        QCOMPARE(found, names({"1", "2", "2"}));
        QVERIFY(m_window->findChild<QLabel *>(S("summary"))->text().startsWith(S("5 entries found; ")));

        m_window->selectFileRows({0});
        const QList<std::pair<int, int>> walk{{1, 0}, {1, 1}, {2, 0}, {2, 1}, {0, 0}, {1, 0}};  // file, row
        for (const auto &[file, row] : walk) {
            m_window->findNext();
            QCOMPARE(m_window->currentEntry(), files()->fileAt(file)->entries().at(row));
        }
        m_window->findPrevious();
        QCOMPARE(m_window->currentEntry(), files()->fileAt(0)->entries().at(0));
        m_window->findPrevious();
        QCOMPARE(m_window->currentEntry(), files()->fileAt(2)->entries().at(1));
        QCOMPARE(m_window->menuAction(S("FindNext"))->shortcut(), QKeySequence(Qt::CTRL | Qt::Key_G));
        QCOMPARE(m_window->menuAction(S("FindPrevious"))->shortcut(), QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_G));

        m_window->menuAction(S("OnlyToDo"))->trigger();
        QVERIFY(m_window->fileTable()->isColumnHidden(FileTableModel::FoundColumn));
        QVERIFY(!m_window->findChild<QLabel *>(S("summary"))->text().contains(S("found")));
    }
    void busyIndicatorFollowsLoading()
    {
        QVERIFY(!m_window->busyIndicator()->isVisible());
        bool shownWhileAdding = false;
        connect(doc(), &MyDocument::progress, this, [&] { shownWhileAdding = m_window->busyIndicator()->isVisible(); });
        addFixture();
        QVERIFY(shownWhileAdding);
        QVERIFY(!m_window->busyIndicator()->isVisible());
    }
    void closeAsksAboutUnsavedChanges_data()
    {
        QTest::addColumn<int>("button");
        QTest::addColumn<QString>("savedAs");
        QTest::addColumn<bool>("closes");
        QTest::addColumn<bool>("written");
        QTest::newRow("save") << 0 << QStringLiteral("doc.vocabrix") << true << true;
        QTest::newRow("save, panel cancelled") << 0 << QString() << false << false;
        QTest::newRow("don't save") << 1 << QString() << true << false;
        QTest::newRow("cancel") << 2 << QString() << false << false;
    }
    void closeAsksAboutUnsavedChanges()
    {
        QFETCH(int, button);
        QFETCH(QString, savedAs);
        QFETCH(bool, closes);
        QFETCH(bool, written);

        // Unchanged: closes without a question.
        QVERIFY(m_window->canClose());
        QVERIFY(m_dialogs.alerts().isEmpty());

        addFixture();
        m_dialogs.clearLog();
        m_dialogs.queueAlertButton(button);
        const QString path = savedAs.isEmpty() ? QString() : m_box->path(savedAs);
        m_savePanel.answers = {path};
        const bool closed = m_window->close();
        QCOMPARE(closed, closes);
        QCOMPARE(m_dialogs.alerts().size(), 1);
        const Alert question = m_dialogs.alerts().first();
        QVERIFY(question.title.contains(QStringLiteral("Untitled")));
        QCOMPARE(question.buttons, (QStringList{QStringLiteral("Save"), QStringLiteral("Don't Save"), QStringLiteral("Cancel")}));
        QCOMPARE(m_savePanel.asked, button == 0 ? 1 : 0);
        QCOMPARE(!path.isEmpty() && QFileInfo::exists(path), written);
        if (closes) QTRY_VERIFY(m_window.isNull());  // deleted on close
        else QVERIFY(m_window->isVisible());

    }
    void revertGoesBackToSavedFile()
    {
        addFixture();
        const QString path = m_box->path(QStringLiteral("r.vocabrix"));
        QVERIFY(doc()->writeToFile(path));
        QVERIFY(!m_window->revertDocument());  // nothing changed: nothing to revert
        m_window->selectFileRows({0});
        m_dialogs.queueAlertButton(0);
        m_window->deleteCurrentFile();
        QCOMPARE(files()->rowCount(), 1);

        m_dialogs.queueAlertButton(1);  // "Cancel"
        QVERIFY(!m_window->revertDocument());
        QCOMPARE(files()->rowCount(), 1);
        m_dialogs.queueAlertButton(0);
        QVERIFY(m_window->revertDocument());
        QCOMPARE(files()->rowCount(), 2);
        QVERIFY(!doc()->isDocumentEdited());
        QVERIFY(m_window->currentEntry());
    }
    void exportTakesSelectionAndPendingEdit()
    {
        addFixture();
        const QString out = m_box->path(QStringLiteral("out"));
        QDir().mkpath(out);
        m_window->selectFileRows({fileRow(QStringLiteral("Localizable.strings"))});
        m_window->selectEntryRow(rowOfKey(QStringLiteral("bye")));
        m_window->entryEditor()->focusEditor();
        QTest::keyClicks(m_window->entryEditor()->entryField(), QStringLiteral("Au revoir"));
        doc()->updateChangeCount(MyDocument::ChangeCleared);

        m_dialogs.clearLog();
        m_dialogs.queuePanelAnswer(out);
        m_window->toolbarItem(QStringLiteral("Export"))->trigger();
        // Only the selected file, with the word still being typed.
        QCOMPARE(QDir(out).entryList(QDir::Files), QStringList{QStringLiteral("Localizable.strings")});
        const auto table = dictionaryWithContentsOfFile(QDir(out).filePath(QStringLiteral("Localizable.strings")));
        QVERIFY(table);
        QCOMPARE(table->value(QStringLiteral("bye")), QStringLiteral("Au revoir"));
        QCOMPARE(m_dialogs.panels().first().prompt, QStringLiteral("Export"));

        m_dialogs.queuePanelAnswer(out);
        m_window->toolbarItem(QStringLiteral("ExportAll"))->trigger();
        QCOMPARE(QDir(out).entryList(QDir::Files).size(), 2);
    }
    // What the command line prints about a file, the window shows: a table that breaks the grammar
    // is named in a sheet; the developer's comment of a pair is shown beside its base word.
    void tableProblemsAndNotesAreShown()
    {
        const QString broken = m_box->write(QStringLiteral("a/Broken.strings"), "\"a\" = \"1\"\n\"b\" = \"2\";\n");
        const QString good = m_box->write(QStringLiteral("b/Good.strings"),
                                                    "/* Preferences -> Transfers -> Magnet tooltip */\n\"magnet\" = \"Open magnets\";\n");
        const QString broken2 = m_box->write(QStringLiteral("c/Broken2.strings"), "\"a\" = \"1\"\n\"b\" = \"2\";\n");
        const QString credits = m_box->write(QStringLiteral("c/Credits.rtf"), "{\\rtf1}");
        // Two tables that break the grammar and a file of another kind: one report, which names all three.
        m_dialogs.queuePanelAnswer(QStringList{broken, broken2, credits});
        m_dialogs.queueAlertButton(2);  // no previous versions
        m_window->toolbarItem(QStringLiteral("AddFile"))->trigger();
        QCOMPARE(m_dialogs.alerts().size(), 2);
        const Alert report = m_dialogs.alerts().last();
        QVERIFY(report.copyable);
        for (const char *name : {"Broken.strings", "Broken2.strings", "Credits.rtf"}) QVERIFY2(report.message.contains(S(name)), name);
        QVERIFY2(report.message.contains(QStringLiteral("breaks the string-table syntax at line 2")), qPrintable(report.message));

        const qsizetype alertsBefore = m_dialogs.alerts().size();
        m_dialogs.queuePanelAnswer(good);
        m_window->toolbarItem(QStringLiteral("AddFile"))->trigger();
        QCOMPARE(m_dialogs.alerts().size(), alertsBefore);  // nothing to tell about a sound table
        m_window->selectFileRows({fileRow(QStringLiteral("Good.strings"))});
        m_window->selectEntryRow(0);
        QCOMPARE(m_window->entryEditor()->commentLabel()->text(), QStringLiteral("Preferences -> Transfers -> Magnet tooltip"));

        // Added without a command of the window (a drop): one report too, once the adding is over.
        const QString broken3 = m_box->write(QStringLiteral("d/Broken3.strings"), "\"a\" = \"1\"\n");
        doc()->addFiles(QList<QPair<QString, OptString>>{{broken3, std::nullopt}, {credits, std::nullopt}});
        QCOMPARE(m_dialogs.alerts().size(), alertsBefore);
        QTRY_COMPARE(m_dialogs.alerts().size(), alertsBefore + 1);
        QVERIFY(m_dialogs.alerts().last().message.contains(S("Broken3.strings")) && m_dialogs.alerts().last().message.contains(S("Credits.rtf")));
    }
    void newWindowShowsDefaultToolbar()
    {
        const QStringList expected = names({"LanguageFrom", "LanguageTo", "Space", "AddFile", "Export", "FlexibleSpace",
                                            "Customize", "Separator", "Files"});
        QCOMPARE(shownIdentifiers(m_window), expected);
        QCOMPARE(m_window->toolbar()->objectName(), QStringLiteral("MyToolbar"));
        QCOMPARE(m_window->toolbar()->actions().last()->objectName(), QString());  // the search field closes it
        // Labels and tool tips by identifier; every item with an image has one.
        for (const QStringList &item : TestSupport::readCaseTable(TestSupport::dataDir(S("app")) + S("/toolbar-items.tsv"), 3)) {
            const QAction *action = m_window->toolbarItem(item[0]);
            QVERIFY2(action, qPrintable(item[0]));
            QCOMPARE(action->text(), item[1]);
            QCOMPARE(action->toolTip(), item[2]);
            if (!action->isCheckable() && item[0] != S("LanguageFrom")) QVERIFY2(!action->icon().isNull(), qPrintable(item[0]));
        }
        // The toolbar hands out the stored item itself.
        QCOMPARE(m_window->toolbarController()->itemForItemIdentifier(QStringLiteral("Export")),
                 m_window->toolbarItem(QStringLiteral("Export")));
        QVERIFY(!m_window->toolbarController()->itemForItemIdentifier(QStringLiteral("Nonsense")));
    }
    void savedArrangementIsRestored_data() { TestSupport::addTableRows(S("app"), S("toolbar-arrangements.tsv"), {S("chosenItems"), S("shownItems")}); }
    void savedArrangementIsRestored()
    {
        QFETCH(QString, chosenItems);
        QFETCH(QString, shownItems);
        const QStringList chosen = chosenItems.split(u','), shown = shownItems.split(u',', Qt::SkipEmptyParts);
        m_window->toolbarController()->setItemIdentifiers(chosen);
        QCOMPARE(shownIdentifiers(m_window), shown);
        QCOMPARE(Settings::instance().value(QStringLiteral("MyToolbar")).toStringList(), shown);
        // A window opened later has the same toolbar; the search field stays at its end.
        std::unique_ptr<DocumentWindow> later(newWindow());
        QCOMPARE(shownIdentifiers(later.get()), shown);
        QVERIFY(later->searchField()->isVisibleTo(later.get()));
        later->document()->updateChangeCount(MyDocument::ChangeCleared);
    }
    void customizePalette()
    {
        // The customize item is the toolbar's own, not one of the window's items.
        QAction *customize = nullptr;
        for (QAction *a : m_window->toolbar()->actions())
            if (a->objectName() == QLatin1String("Customize")) customize = a;
        QVERIFY(customize);
        customize->trigger();
        auto *dialog = m_window->findChild<CustomizeToolbarDialog *>();
        QVERIFY(dialog);
        QStringList offered;
        for (int i = 0; i < dialog->palette()->count(); ++i) offered.append(dialog->palette()->item(i)->text());
        QCOMPARE(offered, (names({"From", "To", "Add File", "Delete", "Files", "Export", "Export All", "Customize",
                                       "Separator", "Space", "Flexible Space"})));
        QCOMPARE(dialog->itemIdentifiers(), ToolbarController::defaultItemIdentifiers());

        // Delete after Add File, Export out, a second Files refused; the window follows on OK.
        dialog->toolbarList()->setCurrentRow(3, QItemSelectionModel::ClearAndSelect);
        dialog->palette()->item(3)->setSelected(true);
        dialog->palette()->item(4)->setSelected(true);
        dialog->addSelected();
        dialog->toolbarList()->setCurrentRow(5, QItemSelectionModel::ClearAndSelect);
        dialog->removeSelected();
        dialog->toolbarList()->setCurrentRow(0, QItemSelectionModel::ClearAndSelect);
        dialog->moveSelected(1);
        const QStringList arranged = names({"LanguageTo", "LanguageFrom", "Space", "AddFile", "Delete", "FlexibleSpace",
                                            "Customize", "Separator", "Files"});
        QCOMPARE(dialog->itemIdentifiers(), arranged);
        dialog->accept();
        QCOMPARE(shownIdentifiers(m_window), arranged);
        QCOMPARE(Settings::instance().value(QStringLiteral("MyToolbar")).toStringList(), arranged);
        QVERIFY(m_window->toolbar()->actions().contains(m_window->toolbarItem(QStringLiteral("Delete"))));
        QTRY_VERIFY(!m_window->findChild<CustomizeToolbarDialog *>());

        // Restore Default, then Cancel: nothing changes; then OK: the default arrangement.
        m_window->menuAction(QStringLiteral("CustomizeToolbar"))->trigger();
        dialog = m_window->findChild<CustomizeToolbarDialog *>();
        QVERIFY(dialog);
        dialog->restoreDefault();
        QCOMPARE(dialog->itemIdentifiers(), ToolbarController::defaultItemIdentifiers());
        dialog->reject();
        QCOMPARE(shownIdentifiers(m_window), arranged);
        QTRY_VERIFY(!m_window->findChild<CustomizeToolbarDialog *>());
        m_window->menuAction(QStringLiteral("CustomizeToolbar"))->trigger();
        dialog = m_window->findChild<CustomizeToolbarDialog *>();
        QVERIFY(dialog);
        dialog->restoreDefault();
        dialog->accept();
        QCOMPARE(shownIdentifiers(m_window), ToolbarController::defaultItemIdentifiers());
    }
    void filesItemTogglesDrawer()
    {
        QAction *files = m_window->toolbarItem(QStringLiteral("Files"));
        FilesDrawer *drawer = m_window->drawer();
        QVERIFY(drawer->isAncestorOf(m_window->fileTable()));
        QVERIFY(drawer->isOpen());
        QVERIFY(files->isChecked());
        for (bool open : {false, true, false}) {
            files->trigger();
            QCOMPARE(drawer->isOpen(), open);
            QCOMPARE(files->isChecked(), open);
            QCOMPARE(drawer->isVisible(), open);
        }
        // Closed when this window was left: closed in the next one, and opened by its item.
        std::unique_ptr<DocumentWindow> later(newWindow());
        QVERIFY(!later->drawer()->isOpen());
        QVERIFY(!later->toolbarItem(QStringLiteral("Files"))->isChecked());
        later->toolbarItem(QStringLiteral("Files"))->trigger();
        QVERIFY(later->drawer()->isVisible());
        later->document()->updateChangeCount(MyDocument::ChangeCleared);
    }
    void contextMenuFollowsSelection_data()
    {
        QTest::addColumn<QList<int>>("selection");
        QTest::newRow("nothing selected") << QList<int>{};
        QTest::newRow("one file") << QList<int>{1};
        QTest::newRow("two files: the first is the one") << QList<int>{1, 2};
    }
    void contextMenuFollowsSelection()
    {
        QFETCH(QList<int>, selection);
        addThreeFiles();
        m_window->selectFileRows(selection);
        FileTableMenu *menu = m_window->fileTableMenu();
        QStringList opened;
        menu->setOpener([&opened](const QString &path) { opened.append(path); });

        const bool any = !selection.isEmpty();
        for (int tag : {11, 12, 13}) {
            QAction *item = menu->itemWithTag(tag);
            QVERIFY(item);
            QCOMPARE(menu->validateMenuItem(item), any);
        }
        QAction *untagged = new QAction(menu);
        untagged->setData(14);
        QVERIFY(menu->validateMenuItem(untagged));
        emit menu->menu()->aboutToShow();
        QCOMPARE(menu->itemWithTag(12)->isEnabled(), any);

        m_dialogs.clearLog();
        menu->itemWithTag(FileTableMenu::RevealTag)->trigger();
        menu->itemWithTag(FileTableMenu::OpenTag)->trigger();
        if (!any) {
            QVERIFY(m_dialogs.shown().isEmpty());
            QVERIFY(opened.isEmpty());
            return;
        }
        const QString first = m_window->fileModel()->fileAt(selection.first())->path();
        QCOMPARE(m_dialogs.shown().size(), 1);
        QCOMPARE(m_dialogs.shown().first().kind, ScriptedDialogs::Shown::Reveal);
        QCOMPARE(m_dialogs.shown().first().path, QFileInfo(first).absolutePath());
        QCOMPARE(opened, QStringList{first});

        // Delete asks, then removes every selected file.
        m_dialogs.queueAlertButton(0);
        menu->itemWithTag(FileTableMenu::DeleteTag)->trigger();
        QCOMPARE(m_dialogs.alerts().last().title, QStringLiteral("Delete File"));
        QCOMPARE(m_window->fileModel()->rowCount(), 3 - int(selection.size()));
    }
    void rightClickSelects_data()
    {
        QTest::addColumn<QList<int>>("before");
        QTest::addColumn<int>("clicked");
        QTest::addColumn<bool>("shift");
        QTest::addColumn<QList<int>>("after");
        QTest::newRow("unselected row replaces") << QList<int>{0, 1} << 2 << false << QList<int>{2};
        QTest::newRow("shift extends") << QList<int>{0} << 2 << true << QList<int>{0, 2};
        QTest::newRow("selected row keeps all") << QList<int>{0, 2} << 2 << false << QList<int>{0, 2};
        QTest::newRow("outside the rows keeps all") << QList<int>{1} << -1 << false << QList<int>{1};
    }
    void rightClickSelects()
    {
        QFETCH(QList<int>, before);
        QFETCH(int, clicked);
        QFETCH(bool, shift);
        QFETCH(QList<int>, after);
        addThreeFiles();
        m_window->selectFileRows(before);
        QTableView *table = m_window->fileTable();
        const QPoint pos = clicked >= 0 ? table->visualRect(m_window->fileModel()->index(clicked, 0)).center()
                                        : QPoint(5, table->viewport()->height() - 3);
        QTest::mousePress(table->viewport(), Qt::RightButton, shift ? Qt::ShiftModifier : Qt::NoModifier, pos);
        QCOMPARE(selectedRows(), after);
    }
    void deleteKeysAsk_data()
    {
        QTest::addColumn<int>("key");
        QTest::addColumn<bool>("asks");
        QTest::newRow("Backspace") << int(Qt::Key_Backspace) << true;
        QTest::newRow("Delete") << int(Qt::Key_Delete) << true;
        QTest::newRow("a letter") << int(Qt::Key_B) << false;
    }
    void deleteKeysAsk()
    {
        QFETCH(int, key);
        QFETCH(bool, asks);
        addThreeFiles();
        m_window->selectFileRows({0});
        doc()->updateChangeCount(MyDocument::ChangeCleared);
        m_dialogs.clearLog();
        m_dialogs.queueAlertButton(1);  // Cancel
        m_window->fileTable()->setFocus();
        QTest::keyClick(m_window->fileTable(), Qt::Key(key));
        QCOMPARE(m_dialogs.alerts().size(), asks ? 1 : 0);
        if (asks) QCOMPARE(m_dialogs.alerts().first().title, QStringLiteral("Delete File"));
        QCOMPARE(m_window->fileModel()->rowCount(), 3);  // cancelled: nothing removed, nothing marked
        QVERIFY(!doc()->isDocumentEdited());
    }
    // The quality checks in the window: error and warning icons apart, the filter to entries with
    // problems, checking asks nothing, and the editor's list follows the text as typed.
    void problemsAreShown()
    {
        const QString cases = TestSupport::dataDir(S("qa/cli/"));
        doc()->addFiles(QList<QPair<QString, OptString>>{{cases + S("base.strings"), cases + S("fr.strings")}});
        QCOMPARE(entries()->rowCount(), 5);
        const auto icon = [&](const QString &key) {
            return entries()->index(rowOfKey(key), EntryTableModel::CheckColumn).data(Qt::DecorationRole).value<QIcon>().cacheKey();
        };
        const qint64 error = problemIcon(Qa::Severity::Error).cacheKey(), warning = problemIcon(Qa::Severity::Warning).cacheKey();
        QVERIFY(error != warning);
        QCOMPARE(icon(S("files")), error);
        QCOMPARE(icon(S("ok")), warning);
        QCOMPARE(icon(S("name")), QIcon().cacheKey());
        QVERIFY(entries()->index(rowOfKey(S("files")), 0).data(Qt::ToolTipRole).toString().startsWith(S("error: ")));
        QCOMPARE(files()->index(0, FileTableModel::NameColumn).data(Qt::DecorationRole).value<QIcon>().cacheKey(), error);
        QVERIFY(files()->index(0, 0).data(Qt::ToolTipRole).toString().contains(S("1 entry with an error")));

        QAction *problemsOnly = m_window->findChild<QAction *>(S("ProblemsOnly"));
        QVERIFY(problemsOnly);
        problemsOnly->trigger();
        QCOMPARE(entries()->rowCount(), 2);
        QVERIFY(rowOfKey(S("files")) >= 0 && rowOfKey(S("ok")) >= 0);
        problemsOnly->trigger();
        QCOMPARE(entries()->rowCount(), 5);

        const int row = rowOfKey(S("files"));
        QVERIFY(entries()->setData(entries()->index(row, EntryTableModel::CheckColumn), Qt::Checked, Qt::CheckStateRole));
        QVERIFY(m_dialogs.shown().isEmpty());
        QCOMPARE(icon(S("files")), error);

        m_window->selectEntryRow(row);
        EntryEditor *editor = m_window->entryEditor();
        QCOMPARE(editor->problemList()->problems().size(), 1);
        editor->entryField()->setPlainText(S("%d fichiers:"));
        QCOMPARE(editor->problemList()->problems().size(), 1);
        QCOMPARE(editor->problemList()->problems().first().check, S("ending-punctuation"));
        editor->entryField()->setPlainText(S("%d fichiers"));
        QVERIFY(editor->problemList()->problems().isEmpty());
        QVERIFY(editor->commit());
        QCOMPARE(icon(S("files")), QIcon().cacheKey());
        QTRY_COMPARE(files()->index(0, FileTableModel::NameColumn).data(Qt::DecorationRole).value<QIcon>().cacheKey(), warning);
        QVERIFY(!files()->index(0, 0).data(Qt::ToolTipRole).toString().contains(S("error")));
        // The file's count follows the one entry both ways, without its other entries read again.
        editor->entryField()->setPlainText(S("fichiers"));
        QVERIFY(editor->commit());
        QTRY_COMPARE(files()->index(0, FileTableModel::NameColumn).data(Qt::DecorationRole).value<QIcon>().cacheKey(), error);
        QVERIFY(files()->index(0, 0).data(Qt::ToolTipRole).toString().contains(S("1 entry with an error")));
    }
    void languageChangesOnlyOnPurpose_data()
    {
        TestSupport::addTableRows(S("app"), S("language-changes.tsv"),
                                  {S("side"), S("chosen"), S("entries"), S("answer"), S("changed"), S("alerts"), S("words")});
    }
    void languageChangesOnlyOnPurpose()
    {
        QFETCH(QString, side);
        QFETCH(QString, chosen);
        QFETCH(QString, entries);
        QFETCH(QString, answer);
        QFETCH(QString, changed);
        QFETCH(QString, alerts);
        QFETCH(QString, words);
        const bool base = side == S("b"), withEntries = entries == S("y");
        int tag = chosen.toInt();
        MyDocument *doc = m_window->document();
        doc->setLocLangFrom(*tagForLanguage(S("en")));
        TestSupport::writeFile(DictionaryFiles::dictionaryFolder() + S("/English-German.strings"), "\"v\" = \"Wert\";\n");
        if (withEntries) {
            addThreeFiles();
            for (const LocEntryPtr &e : doc->files().first()->allEntries()) e->setCheck(true);
            doc->files().first()->allEntries().first()->setLocalizedWord(S("Typed"));
        }
        const int before = base ? doc->locLangFrom() : doc->locLangTo();
        if (tag == 0) tag = base ? doc->locLangTo() : doc->locLangFrom();
        QVERIFY(tag != before);
        LanguageComboBox *popup = base ? m_window->languageFromPp() : m_window->languageToPp();
        m_dialogs.clearLog();
        m_dialogs.queueAlertButton(answer.toInt());
        const int index = popup->findData(tag);
        popup->setCurrentIndex(index);
        emit popup->activated(index);
        QCOMPARE(m_dialogs.alerts().size(), alerts.toInt());
        const int now = base ? doc->locLangFrom() : doc->locLangTo();
        QCOMPARE(now, changed == S("y") ? tag : before);
        QCOMPARE(popup->selectedTag(), now);
        QCOMPARE(doc->locLangFrom() == doc->locLangTo(), false);
        QCOMPARE(popup->focusPolicy(), Qt::ClickFocus);
        QCOMPARE(popup->count(), int(languageItems().size()));
        QStringList shown;
        for (const LocEntryPtr &e : doc->files().isEmpty() ? QList<LocEntryPtr>() : doc->files().first()->allEntries())
            shown.append(wordOrEmpty(e->localizedWord()) + (e->isChecked() ? u'+' : u'-'));
        QCOMPARE(shown.join(u','), words);
        // The popups follow the document (an opened or reverted archive).
        doc->setLocLangFrom(doc->locLangTo() == 4 ? 5 : 4);
        QCOMPARE(m_window->languageFromPp()->selectedTag(), doc->locLangFrom());
    }
    void undoRedoEachKind_data() { TestSupport::addTableRows(S("app"), S("undo-steps.tsv"), {S("kind"), S("step")}); }
    void undoRedoEachKind()
    {
        QFETCH(QString, kind);
        QFETCH(QString, step);
        addThreeFiles();
        MyDocument *doc = m_window->document();
        m_window->selectFileRows({0});
        m_window->selectEntryRow(0);
        const LocFilePtr a = m_window->fileModel()->fileAt(0);
        const LocEntryPtr first = a->entries().at(0), second = a->entries().at(1);
        const std::function<QString()> state = [&]() -> QString {
            const auto word = [](const LocEntryPtr &e) { return wordOrEmpty(e->localizedWord()) + (e->isChecked() ? u'+' : u'-'); };
            if (kind.startsWith(QLatin1String("typing")) || kind == QLatin1String("dictionary pair")) return word(first);
            if (kind == QLatin1String("same translation"))
                return word(doc->files().at(1)->allEntries().first()) + word(doc->files().at(2)->allEntries().first());
            if (kind == QLatin1String("title")) return doc->title();
            if (kind == QLatin1String("language")) return QString::number(doc->locLangFrom());
            if (kind == QLatin1String("order")) {
                QStringList names;
                for (const LocFilePtr &f : doc->files()) names.append(f->fileName());
                return names.join(u',');
            }
            return QStringLiteral("%1%2").arg(first->isChecked()).arg(second->isChecked());
        };
        if (kind == QLatin1String("same translation")) {
            // A committed word is offered to the entries of the same base word, not given.
            m_window->entryEditor()->entryField()->setPlainText(QStringLiteral("Wort"));
            QVERIFY(m_window->entryEditor()->commit());
            QVERIFY(m_window->sameTranslationOffer()->isVisibleTo(m_window));
            QVERIFY(m_window->sameTranslationOffer()->findChild<QLabel *>()->text().contains(S("2 more")));
            m_window->undo()->stack()->clear();
            m_window->selectFileRows({1});  // the offer stays; the editor shows one of the entries it names
        }
        const QString before = state();
        doc->updateChangeCount(MyDocument::ChangeCleared);

        if (kind == QLatin1String("same translation")) {
            m_window->menuAction(S("SameTranslation"))->trigger();
            QVERIFY(!m_window->sameTranslationOffer()->isVisibleTo(m_window));
            QCOMPARE(m_window->entryEditor()->entryField()->toPlainText(), S("Wort"));
        } else if (kind == QLatin1String("dictionary pair")) {
            m_window->dictPanel()->chooseValue(S("Wort"));
        } else if (kind == QLatin1String("typing")) {
            m_window->entryEditor()->entryField()->setPlainText(QStringLiteral("Wort"));
            QVERIFY(m_window->entryEditor()->commit());
        } else if (kind == QLatin1String("typing in the table")) {
            QVERIFY(m_window->entryModel()->setData(m_window->entryModel()->index(0, EntryTableModel::LocalizedWordColumn),
                                                     QStringLiteral("Wort"), Qt::EditRole));
        } else if (kind == QLatin1String("check box")) {
            m_window->entryEditor()->checkBox()->click();
        } else if (kind == QLatin1String("table mark")) {
            QVERIFY(m_window->entryModel()->setData(m_window->entryModel()->index(1, EntryTableModel::CheckColumn),
                                                     Qt::Checked, Qt::CheckStateRole));
        } else if (kind == QLatin1String("check several")) {
            m_window->entryTable()->selectAll();
            m_window->checkLocalized();
        } else if (kind == QLatin1String("title")) {
            QTest::keyClicks(m_window->titleField(), QStringLiteral("Notes"));
        } else if (kind == QLatin1String("language")) {
            m_dialogs.queueAlertButton(1);  // change only: reading the files again cannot be undone
            const int index = m_window->languageFromPp()->findData(doc->locLangTo() == 3 ? 4 : 3);
            emit m_window->languageFromPp()->activated(index);
        } else {
            QMimeData *dragged = m_window->fileModel()->mimeData({m_window->fileModel()->index(0, 0)});
            QVERIFY(!FileTableModel(doc).canDropMimeData(dragged, Qt::MoveAction, 3, 0, QModelIndex()));  // not another table's rows
            QVERIFY(m_window->fileModel()->dropMimeData(dragged, Qt::MoveAction, 3, 0, QModelIndex()));
            delete dragged;
        }
        const QString after = state();
        QVERIFY2(after != before, qPrintable(after));
        // Every change the archive keeps marks the document changed, check marks included.
        QVERIFY(doc->isDocumentEdited());
        QUndoStack *stack = m_window->undo()->stack();
        QCOMPARE(stack->count(), 1);  // one step, however many letters or entries
        QAction *undo = m_window->menuAction(QStringLiteral("Undo"));
        QCOMPARE(undo->text(), QStringLiteral("&Undo ") + step);
        QVERIFY(undo->isEnabled());

        doc->updateChangeCount(MyDocument::ChangeCleared);
        undo->trigger();
        QCOMPARE(state(), before);
        QVERIFY(doc->isDocumentEdited());
        QCOMPARE(m_window->menuAction(QStringLiteral("Redo"))->text(), QStringLiteral("&Redo ") + step);
        m_window->menuAction(QStringLiteral("Redo"))->trigger();
        QCOMPARE(state(), after);
        if (kind == QLatin1String("typing"))
            QCOMPARE(m_window->entryEditor()->entryField()->toPlainText(), QStringLiteral("Wort"));

        // Deleting files cannot be undone, and takes the steps before it along.
        doc->removeFiles({doc->files().last()});
        QVERIFY(!stack->canUndo());
        QVERIFY(!undo->isEnabled());
    }
    void cancelStopsAfterCurrentFile_data()
    {
        QTest::addColumn<bool>("exporting");
        QTest::addColumn<bool>("rereading");
        QTest::newRow("adding three files") << false << false;
        QTest::newRow("exporting three files") << true << false;
        QTest::newRow("reading three files again") << false << true;
    }
    void cancelStopsAfterCurrentFile()
    {
        QFETCH(bool, exporting);
        QFETCH(bool, rereading);
        MyDocument *doc = m_window->document();
        if (exporting || rereading) addThreeFiles();
        const QList<LocFilePtr> before = doc->files();
        doc->updateChangeCount(MyDocument::ChangeCleared);
        // Cancel pressed in the panel while the first file is done.
        int reported = 0;
        connect(doc, &MyDocument::progress, this, [&](int done, int total) {
            ++reported;
            QCOMPARE(total, 3);
            QProgressDialog *panel = m_window->progressPanel()->dialog();
            QVERIFY(panel);
            QVERIFY(panel->isModal() || panel->windowModality() == Qt::WindowModal);
            QCOMPARE(panel->labelText(), QStringLiteral("File %1 of 3: A.strings").arg(done));
            if (done == 1) panel->findChild<QPushButton *>()->click();
        });
        if (rereading) {
            QVERIFY(!doc->rereadFiles());
            QCOMPARE(doc->files(), before);  // the same files, not half of them read again
            QVERIFY(!doc->isDocumentEdited());
        } else if (exporting) {
            const QString out = m_box->path(QStringLiteral("out"));
            QVERIFY(QDir().mkpath(out));
            doc->files().first()->allEntries().first()->setLocalizedWord(QStringLiteral("learnt"));
            const ExportResult result = doc->makeLocalizedFilesInto(doc->files(), out, true);
            QVERIFY(result.stopped);
            QCOMPARE(result.written.size(), 1);
            QVERIFY(result.pairs.isEmpty());
            QVERIFY(!QFileInfo::exists(doc->dictionaryPath()));  // a stopped export teaches nothing
            QCOMPARE(QDir(out).entryList(QDir::Files).size(), 1);
        } else {
            QList<QPair<QString, OptString>> paths;
            for (const char *name : {"A.strings", "B.strings", "C.strings"})
                paths.append({m_box->write(QString::fromLatin1(name), "\"k\" = \"v\";\n"), std::nullopt});
            QVERIFY(doc->addFiles(paths).isEmpty());
            // As before the command: no file, not changed.
            QCOMPARE(doc->files().size(), 0);
            QCOMPARE(m_window->fileModel()->rowCount(), 0);
            QVERIFY(!doc->isDocumentEdited());
        }
        QCOMPARE(reported, 1);
        QVERIFY(!doc->loadingFiles());
        QVERIFY(!m_window->progressPanel()->dialog());
        // The next run is not stopped by the last one's Cancel.
        disconnect(doc, &MyDocument::progress, this, nullptr);
        if (rereading) QVERIFY(doc->rereadFiles() && doc->files().first() != before.first());
        else if (!exporting) addThreeFiles();
    }

private:
    std::unique_ptr<TestSupport::Sandbox> m_box;
    ScriptedDialogs m_dialogs;
    AppTest::ScriptedSavePanel m_savePanel;
    QPointer<DocumentWindow> m_window;
    QString m_bundle, m_previous;

    MyDocument *doc() const { return m_window->document(); }
    FileTableModel *files() const { return m_window->fileModel(); }
    EntryTableModel *entries() const { return m_window->entryModel(); }
    DocumentWindow *newWindow();
    void addFixture();
    void addThreeFiles();
    int rowOfKey(const QString &key) const;
    int fileRow(const QString &name) const;
    // The identifiers the toolbar shows, left to right, without the search field that closes it.
    static QStringList shownIdentifiers(const DocumentWindow *window);
    QList<int> selectedRows() const;
};

DocumentWindow *TestDocumentWindow::newWindow()
{
    auto *window = new DocumentWindow(new MyDocument);
    window->setDialogs(&m_dialogs, &m_savePanel);
    window->show();
    return window;
}

// The bundle through the add-file panel, its previous release through the previous-version panel.
void TestDocumentWindow::addFixture()
{
    m_dialogs.queuePanelAnswer(m_bundle);
    m_dialogs.queuePanelAnswer(m_previous);
    m_window->toolbarItem(QStringLiteral("AddFile"))->trigger();
}

void TestDocumentWindow::addThreeFiles()
{
    QList<QPair<QString, OptString>> paths;
    for (const char *name : {"A.strings", "B.strings", "C.strings"})
        paths.append({m_box->write(S(name), "\"k\" = \"v\";\n\"m\" = \"w\";\n"), std::nullopt});
    doc()->addFiles(paths);
    QCOMPARE(files()->rowCount(), 3);
}

int TestDocumentWindow::rowOfKey(const QString &key) const
{
    for (int row = 0; row < entries()->rowCount(); ++row)
        if (entries()->index(row, EntryTableModel::KeyColumn).data().toString() == key) return row;
    return -1;
}

int TestDocumentWindow::fileRow(const QString &name) const
{
    for (int row = 0; row < files()->rowCount(); ++row)
        if (files()->index(row, FileTableModel::NameColumn).data().toString() == name) return row;
    return -1;
}

QStringList TestDocumentWindow::shownIdentifiers(const DocumentWindow *window)
{
    QStringList ids;
    for (const QAction *action : window->toolbar()->actions()) ids.append(action->objectName());
    if (!ids.isEmpty()) ids.removeLast();
    return ids;
}

QList<int> TestDocumentWindow::selectedRows() const
{
    QList<int> rows;
    for (const QModelIndex &index : m_window->fileTable()->selectionModel()->selectedRows()) rows.append(index.row());
    std::sort(rows.begin(), rows.end());
    return rows;
}

QTEST_MAIN(TestDocumentWindow)
#include "test_document_window.moc"
