// The document window's toolbar, its customization and the Files drawer, and the file table's
// context menu, right click and delete keys; every panel and alert answered by ScriptedDialogs.
#include "AppTestSupport.h"
#include "CustomizeToolbarDialog.h"
#include "DocumentWindow.h"
#include "FileTableMenu.h"
#include "FileTableModel.h"
#include "FilesDrawer.h"
#include "Handlers.h"
#include "EntryTableModel.h"
#include "LanguageComboBox.h"
#include "LocalizedText.h"
#include "MyDocument.h"
#include "ScriptedDialogs.h"
#include "Settings.h"
#include "ProgressPanel.h"
#include "ToolbarController.h"

#include "DocumentUndo.h"
#include "EntryEditor.h"

#include <QAction>
#include <QCheckBox>
#include <QDir>
#include <QFileInfo>
#include <QLineEdit>
#include <QMimeData>
#include <QPlainTextEdit>
#include <QProgressDialog>
#include <QPushButton>
#include <QUndoStack>
#include <functional>
#include <QListWidget>
#include <QMenu>
#include <QPointer>
#include <QTableView>
#include <QToolBar>

using StringUtility::wordOrEmpty;

namespace {
QStringList names(std::initializer_list<const char *> items)
{
    QStringList list;
    for (const char *item : items) list.append(QString::fromUtf8(item));
    return list;
}
}  // namespace

class TestWindowCommands : public QObject {
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();
    void newWindowShowsDefaultToolbar();
    void savedArrangementIsRestored_data();
    void savedArrangementIsRestored();
    void customizePalette();
    void filesItemTogglesDrawer();
    void contextMenuFollowsSelection_data();
    void contextMenuFollowsSelection();
    void rightClickSelects_data();
    void rightClickSelects();
    void deleteKeysAsk_data();
    void deleteKeysAsk();
    void fileTableShowsIconsAndTitleItsDash();
    void nibWithTablesHasMenuCommand();
    void languageChangesOnlyOnPurpose_data();
    void languageChangesOnlyOnPurpose();
    void checkAndNextGoesOnToNextFile();
    void undoRedoEachKind_data();
    void undoRedoEachKind();
    void cancelStopsAfterCurrentFile_data();
    void cancelStopsAfterCurrentFile();

private:
    std::unique_ptr<QTemporaryDir> m_dir;
    ScriptedDialogs m_dialogs;
    AppTest::ScriptedSavePanel m_savePanel;
    QPointer<DocumentWindow> m_window;

    DocumentWindow *newWindow();
    void addThreeFiles();
    // The identifiers the toolbar shows, left to right, without the search field that closes it.
    static QStringList shownIdentifiers(const DocumentWindow *window);
    QList<int> selectedRows() const;
};

void TestWindowCommands::initTestCase()
{
    registerResourceHandlers();
    setInterfaceLanguage(QStringLiteral("en"));
}

void TestWindowCommands::init()
{
    m_dir = std::make_unique<QTemporaryDir>();
    QVERIFY(m_dir->isValid());
    AppTest::isolate(*m_dir);
    m_dialogs = ScriptedDialogs();
    m_window = newWindow();
}

void TestWindowCommands::cleanup()
{
    if (m_window) {
        m_window->document()->updateChangeCount(MyDocument::ChangeCleared);
        delete m_window;
    }
    for (const auto &key : Settings::keys()) Settings::instance().remove(key.name);
    Settings::instance().remove(ToolbarController::toolbarName());
    Settings::instance().remove(FilesDrawer::openKey());
}

DocumentWindow *TestWindowCommands::newWindow()
{
    auto *window = new DocumentWindow(new MyDocument);
    window->setDialogs(&m_dialogs, &m_savePanel);
    window->show();
    return window;
}

void TestWindowCommands::addThreeFiles()
{
    QList<QPair<QString, OptString>> paths;
    for (const char *name : {"A.strings", "B.strings", "C.strings"})
        paths.append({TestSupport::writeFile(m_dir->filePath(QString::fromLatin1(name)), "\"k\" = \"v\";\n\"m\" = \"w\";\n"), std::nullopt});
    m_window->document()->addFiles(paths);
    QCOMPARE(m_window->fileModel()->rowCount(), 3);
}

QStringList TestWindowCommands::shownIdentifiers(const DocumentWindow *window)
{
    QStringList ids;
    for (const QAction *action : window->toolbar()->actions()) ids.append(action->objectName());
    if (!ids.isEmpty()) ids.removeLast();
    return ids;
}

QList<int> TestWindowCommands::selectedRows() const
{
    QList<int> rows;
    for (const QModelIndex &index : m_window->fileTable()->selectionModel()->selectedRows()) rows.append(index.row());
    std::sort(rows.begin(), rows.end());
    return rows;
}

void TestWindowCommands::newWindowShowsDefaultToolbar()
{
    const QStringList expected = names({"LanguageFrom", "LanguageTo", "Space", "AddFile", "Export", "FlexibleSpace",
                                        "Customize", "Separator", "Files"});
    QCOMPARE(shownIdentifiers(m_window), expected);
    QCOMPARE(m_window->toolbar()->objectName(), QStringLiteral("MyToolbar"));
    QCOMPARE(m_window->toolbar()->actions().last()->objectName(), QString());  // the search field closes it
    // Labels and tool tips by identifier; every item with an image has one.
    const struct {
        const char *id, *label, *tip;
    } items[] = {
        {"Files", "Files", "Show or hide the list of files"},
        {"AddFile", "Add File", "Add resource files or an application bundle"},
        {"Export", "Export", "Export the selected files"},
        {"ExportAll", "Export All", "Export every file of the document"},
        {"Delete", "Delete", "Remove the selected files from the document"},
        {"LanguageFrom", "From", "Base language"},
    };
    for (const auto &item : items) {
        const QAction *action = m_window->toolbarItem(QString::fromLatin1(item.id));
        QVERIFY2(action, item.id);
        QCOMPARE(action->text(), QString::fromLatin1(item.label));
        QCOMPARE(action->toolTip(), QString::fromLatin1(item.tip));
        if (!action->isCheckable() && QByteArray(item.id) != "LanguageFrom") QVERIFY2(!action->icon().isNull(), item.id);
    }
    // The toolbar hands out the stored item itself.
    QCOMPARE(m_window->toolbarController()->itemForItemIdentifier(QStringLiteral("Export")),
             m_window->toolbarItem(QStringLiteral("Export")));
    QVERIFY(!m_window->toolbarController()->itemForItemIdentifier(QStringLiteral("Nonsense")));
}

void TestWindowCommands::savedArrangementIsRestored_data()
{
    QTest::addColumn<QStringList>("chosen");
    QTest::addColumn<QStringList>("shown");
    QTest::newRow("allowed items only") << names({"Delete", "ExportAll", "Files"})
                                        << names({"Delete", "ExportAll", "Files"});
    QTest::newRow("spaces repeat, items do not")
        << names({"Files", "Space", "Files", "Space", "Separator"}) << names({"Files", "Space", "Space", "Separator"});
    QTest::newRow("unknown identifiers dropped") << names({"Bogus", "AddFile", ""}) << names({"AddFile"});
    QTest::newRow("empty toolbar") << QStringList{} << QStringList{};
}

void TestWindowCommands::savedArrangementIsRestored()
{
    QFETCH(QStringList, chosen);
    QFETCH(QStringList, shown);
    m_window->toolbarController()->setItemIdentifiers(chosen);
    QCOMPARE(shownIdentifiers(m_window), shown);
    QCOMPARE(Settings::instance().value(QStringLiteral("MyToolbar")).toStringList(), shown);
    // A window opened later has the same toolbar; the search field stays at its end.
    std::unique_ptr<DocumentWindow> later(newWindow());
    QCOMPARE(shownIdentifiers(later.get()), shown);
    QVERIFY(later->searchField()->isVisibleTo(later.get()));
    later->document()->updateChangeCount(MyDocument::ChangeCleared);
}

void TestWindowCommands::customizePalette()
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

void TestWindowCommands::filesItemTogglesDrawer()
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

void TestWindowCommands::contextMenuFollowsSelection_data()
{
    QTest::addColumn<QList<int>>("selection");
    QTest::newRow("nothing selected") << QList<int>{};
    QTest::newRow("one file") << QList<int>{1};
    QTest::newRow("two files: the first is the one") << QList<int>{1, 2};
}

void TestWindowCommands::contextMenuFollowsSelection()
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

void TestWindowCommands::rightClickSelects_data()
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

void TestWindowCommands::rightClickSelects()
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

void TestWindowCommands::deleteKeysAsk_data()
{
    QTest::addColumn<int>("key");
    QTest::addColumn<bool>("asks");
    QTest::newRow("Backspace") << int(Qt::Key_Backspace) << true;
    QTest::newRow("Delete") << int(Qt::Key_Delete) << true;
    QTest::newRow("a letter") << int(Qt::Key_B) << false;
}

void TestWindowCommands::deleteKeysAsk()
{
    QFETCH(int, key);
    QFETCH(bool, asks);
    addThreeFiles();
    m_window->selectFileRows({0});
    m_dialogs.clearLog();
    m_dialogs.queueAlertButton(1);  // Cancel
    m_window->fileTable()->setFocus();
    QTest::keyClick(m_window->fileTable(), Qt::Key(key));
    QCOMPARE(m_dialogs.alerts().size(), asks ? 1 : 0);
    QCOMPARE(m_window->fileModel()->rowCount(), 3);
}

void TestWindowCommands::fileTableShowsIconsAndTitleItsDash()
{
    addThreeFiles();
    const QVariant icon = m_window->fileModel()->index(0, FileTableModel::NameColumn).data(Qt::DecorationRole);
    QVERIFY(!icon.value<QIcon>().isNull());
    QVERIFY(!m_window->fileModel()->index(0, FileTableModel::StatusColumn).data(Qt::DecorationRole).isValid());
    QVERIFY2(m_window->windowTitle().endsWith(QStringLiteral(" \u2014 Vocabrix")), qPrintable(m_window->windowTitle()));
}

void TestWindowCommands::nibWithTablesHasMenuCommand()
{
    QAction *command = m_window->menuAction(QStringLiteral("ReadNibAndStrings"));
    QVERIFY(command);
    m_dialogs.queuePanelCancel();
    command->trigger();
    QCOMPARE(m_dialogs.panels().size(), 1);
    QVERIFY(m_dialogs.panels().first().allowedExtensions.contains(QStringLiteral("nib")));
    QCOMPARE(m_window->fileModel()->rowCount(), 0);
    QVERIFY(!m_window->document()->isDocumentEdited());
}

void TestWindowCommands::languageChangesOnlyOnPurpose_data()
{
    QTest::addColumn<bool>("base");
    QTest::addColumn<int>("tag");  // 0: the other side's language
    QTest::addColumn<bool>("withEntries");
    QTest::addColumn<int>("answer");
    QTest::addColumn<bool>("changed");
    QTest::addColumn<int>("alerts");
    QTest::newRow("no entries: no question") << false << 3 << false << 0 << true << 0;
    QTest::newRow("entries, confirmed") << false << 3 << true << 0 << true << 1;
    QTest::newRow("entries, cancelled") << false << 3 << true << 1 << false << 1;
    QTest::newRow("base cancelled") << true << 3 << true << 1 << false << 1;
    QTest::newRow("same language as the target") << true << 0 << false << 0 << false << 1;
    QTest::newRow("same language as the base") << false << 0 << true << 0 << false << 1;
}

void TestWindowCommands::languageChangesOnlyOnPurpose()
{
    QFETCH(bool, base);
    QFETCH(int, tag);
    QFETCH(bool, withEntries);
    QFETCH(int, answer);
    QFETCH(bool, changed);
    QFETCH(int, alerts);
    if (withEntries) addThreeFiles();
    MyDocument *doc = m_window->document();
    const int before = base ? doc->locLangFrom() : doc->locLangTo();
    if (tag == 0) tag = base ? doc->locLangTo() : doc->locLangFrom();
    QVERIFY(tag != before);
    LanguageComboBox *popup = base ? m_window->languageFromPp() : m_window->languageToPp();
    m_dialogs.clearLog();
    m_dialogs.queueAlertButton(answer);
    const int index = popup->findData(tag);
    popup->setCurrentIndex(index);
    emit popup->activated(index);
    QCOMPARE(m_dialogs.alerts().size(), alerts);
    const int now = base ? doc->locLangFrom() : doc->locLangTo();
    QCOMPARE(now, changed ? tag : before);
    QCOMPARE(popup->selectedTag(), now);
    QCOMPARE(doc->locLangFrom() == doc->locLangTo(), false);
    QCOMPARE(popup->focusPolicy(), Qt::ClickFocus);
}

void TestWindowCommands::checkAndNextGoesOnToNextFile()
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

void TestWindowCommands::undoRedoEachKind_data()
{
    QTest::addColumn<QString>("kind");
    QTest::addColumn<QString>("step");
    QTest::newRow("typing a word") << QStringLiteral("typing") << QStringLiteral("Typing");
    QTest::newRow("the check box") << QStringLiteral("check box") << QStringLiteral("Check Mark");
    QTest::newRow("a mark in the table") << QStringLiteral("table mark") << QStringLiteral("Check Mark");
    QTest::newRow("Check and Next, two entries") << QStringLiteral("check several") << QStringLiteral("Check and Next");
    QTest::newRow("the title, typed") << QStringLiteral("title") << QStringLiteral("Title");
    QTest::newRow("the base language") << QStringLiteral("language") << QStringLiteral("Base Language");
    QTest::newRow("files reordered by dragging") << QStringLiteral("order") << QStringLiteral("Move Files");
}

void TestWindowCommands::undoRedoEachKind()
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
        if (kind == QLatin1String("typing")) return wordOrEmpty(first->localizedWord()) + (first->isChecked() ? QLatin1String("+") : QLatin1String("-"));
        if (kind == QLatin1String("title")) return doc->title();
        if (kind == QLatin1String("language")) return QString::number(doc->locLangFrom());
        if (kind == QLatin1String("order")) {
            QStringList names;
            for (const LocFilePtr &f : doc->files()) names.append(f->fileName());
            return names.join(u',');
        }
        return QStringLiteral("%1%2").arg(first->isChecked()).arg(second->isChecked());
    };
    const QString before = state();
    doc->updateChangeCount(MyDocument::ChangeCleared);

    if (kind == QLatin1String("typing")) {
        m_window->entryEditor()->entryField()->setPlainText(QStringLiteral("Wort"));
        QVERIFY(m_window->entryEditor()->commit());
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
        m_dialogs.queueAlertButton(0);
        const int index = m_window->languageFromPp()->findData(doc->locLangTo() == 3 ? 4 : 3);
        emit m_window->languageFromPp()->activated(index);
    } else {
        QMimeData *dragged = m_window->fileModel()->mimeData({m_window->fileModel()->index(0, 0)});
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

void TestWindowCommands::cancelStopsAfterCurrentFile_data()
{
    QTest::addColumn<bool>("exporting");
    QTest::newRow("adding three files") << false;
    QTest::newRow("exporting three files") << true;
}

void TestWindowCommands::cancelStopsAfterCurrentFile()
{
    QFETCH(bool, exporting);
    MyDocument *doc = m_window->document();
    if (exporting) addThreeFiles();
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
    if (exporting) {
        const QString out = m_dir->filePath(QStringLiteral("out"));
        QVERIFY(QDir().mkpath(out));
        const ExportResult result = doc->makeLocalizedFilesInto(doc->files(), out, true);
        QVERIFY(result.stopped);
        QCOMPARE(result.written.size(), 1);
        QVERIFY(result.pairs.isEmpty());
        QCOMPARE(QDir(out).entryList(QDir::Files).size(), 1);
    } else {
        QList<QPair<QString, OptString>> paths;
        for (const char *name : {"A.strings", "B.strings", "C.strings"})
            paths.append({TestSupport::writeFile(m_dir->filePath(QString::fromLatin1(name)), "\"k\" = \"v\";\n"), std::nullopt});
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
    if (!exporting) addThreeFiles();
}

QTEST_MAIN(TestWindowCommands)
#include "test_window_commands.moc"
