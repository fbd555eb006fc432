// DocumentWindow: the toolbar, the menus and the commands they run.
#include "DocumentWindow.h"

#include "DictPanel.h"
#include "Dialogs.h"
#include "DocumentUndo.h"
#include "EntryEditor.h"
#include "EntryTableModel.h"
#include "LanguageComboBox.h"
#include "LocalizedText.h"
#include "MyDocument.h"
#include "Settings.h"
#include "ToolbarController.h"
#include "ToolbarIcons.h"
#include "FilesDrawer.h"
#include "GatheredSheets.h"
#include "UiText.h"

#include <QApplication>
#include <QDir>
#include <QLabel>
#include <QLineEdit>
#include <QMenuBar>
#include <QStatusBar>
#include <QStyle>
#include <QUndoStack>
#include <QTableView>
#include <QToolBar>
#include <QVBoxLayout>
#include <QWidgetAction>

namespace {

// A toolbar item showing a popup: the popup above its label, as the icon items show theirs.
QWidget *labelledItem(QWidget *control, const QString &identifier, QWidget *parent)
{
    auto *box = new QWidget(parent);
    auto *layout = new QVBoxLayout(box);
    layout->setContentsMargins(4, 0, 4, 0);
    layout->setSpacing(1);
    auto *label = new QLabel(uiText(identifier), box);
    label->setAlignment(Qt::AlignHCenter);
    layout->addWidget(control);
    layout->addWidget(label);
    box->setToolTip(uiText(identifier + QLatin1String("Tooltip")));
    return box;
}

// A setting switched on and off from a menu, following the setting when it changes elsewhere.
QAction *settingAction(const QString &text, const QString &key, QObject *parent)
{
    auto *action = new QAction(text, parent);
    action->setCheckable(true);
    action->setChecked(Settings::instance().boolValue(key));
    QObject::connect(action, &QAction::toggled, action, [key](bool on) { Settings::instance().setValue(key, on); });
    QObject::connect(&Settings::instance(), &Settings::valueChanged, action, [action, key](const QString &changed) {
        if (changed == key) action->setChecked(Settings::instance().boolValue(key));
    });
    return action;
}

}  // namespace

void DocumentWindow::makeMyToolBarItems()
{
    const struct {
        const char *identifier;
        void (DocumentWindow::*command)();
    } items[] = {
        {"Files", nullptr},
        {"AddFile", &DocumentWindow::addNewFile},
        {"Export", &DocumentWindow::exportSelectedFiles},
        {"ExportAll", &DocumentWindow::exportAllFiles},
        {"Delete", &DocumentWindow::deleteCurrentFile},
    };
    for (const auto &item : items) {
        const QString id = QString::fromLatin1(item.identifier);
        auto *action = new QAction(toolbarIcon(id), uiText(id), this);
        action->setObjectName(id);
        action->setToolTip(uiText(id + QLatin1String("Tooltip")));
        if (item.command) connect(action, &QAction::triggered, this, item.command);
        m_toolbarItems.insert(id, action);
    }
    QAction *files = m_toolbarItems.value(QStringLiteral("Files"));
    files->setCheckable(true);
    files->setChecked(m_drawer->isOpen());
    connect(files, &QAction::triggered, this, [this, files] {
        m_drawer->toggle();
        files->setChecked(m_drawer->isOpen());
    });

    m_languageFromPp = new LanguageComboBox(this);
    m_languageFromPp->setObjectName(QStringLiteral("languageFromPp"));
    m_languageToPp = new LanguageComboBox(this);
    m_languageToPp->setObjectName(QStringLiteral("languageToPp"));
    for (auto [id, popup] : {std::pair{QStringLiteral("LanguageFrom"), m_languageFromPp},
                             std::pair{QStringLiteral("LanguageTo"), m_languageToPp}}) {
        auto *item = new QWidgetAction(this);
        item->setObjectName(id);
        item->setText(uiText(id));
        item->setToolTip(uiText(id + QLatin1String("Tooltip")));
        item->setDefaultWidget(labelledItem(popup, id, this));
        m_toolbarItems.insert(id, item);
    }

    m_searchField = new QLineEdit(this);
    m_searchField->setObjectName(QStringLiteral("searchField"));
    m_searchField->setPlaceholderText(tr("Search"));
    m_searchField->setClearButtonEnabled(true);
    m_searchField->setMinimumWidth(180);
    m_searchField->setMaximumWidth(260);
    m_toolbarController = new ToolbarController(this, m_toolbarItems, labelledItem(m_searchField, tr("Search"), this));
    m_toolbar = m_toolbarController->toolbar();
}

void DocumentWindow::makeMenus()
{
    auto add = [this](QMenu *menu, const QString &name, const QString &text, const QKeySequence &keys, auto slot) {
        QAction *action = menu->addAction(text, this, slot);
        action->setShortcut(keys);
        m_menuActions.insert(name, action);
        return action;
    };
    QMenu *file = menuBar()->addMenu(tr("&File"));
    add(file, QStringLiteral("New"), tr("&New"), QKeySequence::New, &DocumentWindow::newDocumentRequested);
    add(file, QStringLiteral("Open"), tr("&Open\u2026"), QKeySequence::Open, &DocumentWindow::openDocumentRequested);
    QMenu *recent = file->addMenu(tr("Open &Recent"));
    connect(recent, &QMenu::aboutToShow, this, [this, recent] { emit recentMenuAboutToShow(recent); });
    file->addSeparator();
    add(file, QStringLiteral("Close"), tr("&Close"), QKeySequence::Close, &QWidget::close);
    add(file, QStringLiteral("Save"), tr("&Save"), QKeySequence::Save, &DocumentWindow::save);
    add(file, QStringLiteral("SaveAs"), tr("Save &As\u2026"), QKeySequence::SaveAs, &DocumentWindow::saveAs);
    add(file, QStringLiteral("Revert"), tr("Re&vert to Saved"), QKeySequence(), &DocumentWindow::revertDocument);
    file->addSeparator();
    file->addAction(m_toolbarItems.value(QStringLiteral("AddFile")));
    file->addAction(m_toolbarItems.value(QStringLiteral("Export")));
    file->addAction(m_toolbarItems.value(QStringLiteral("ExportAll")));
    add(file, QStringLiteral("ReadNibAndStrings"), tr("Add Interface File with &Translations\u2026"), QKeySequence(),
        &DocumentWindow::readNibAndStringsFile);
    file->addSeparator();
    add(file, QStringLiteral("Preferences"), tr("&Preferences\u2026"), QKeySequence::Preferences,
        &DocumentWindow::preferencesRequested);
    add(file, QStringLiteral("Quit"), tr("&Quit"), QKeySequence::Quit, &DocumentWindow::quitRequested);

    QMenu *edit = menuBar()->addMenu(tr("&Edit"));
    // The entry editor keeps its own text undo while it has the focus.
    QAction *undo = m_undo->makeUndoAction(this);
    undo->setShortcut(QKeySequence::Undo);
    QAction *redo = m_undo->makeRedoAction(this);
    redo->setShortcut(QKeySequence::Redo);
    edit->addAction(undo);
    edit->addAction(redo);
    m_menuActions.insert(QStringLiteral("Undo"), undo);
    m_menuActions.insert(QStringLiteral("Redo"), redo);
    edit->addSeparator();
    add(edit, QStringLiteral("CheckLocalized"), tr("Check and &Next"), QKeySequence(Qt::CTRL | Qt::Key_Return),
        &DocumentWindow::checkLocalized);
    add(edit, QStringLiteral("NextEntry"), tr("Ne&xt Entry"), QKeySequence(Qt::CTRL | Qt::Key_Down), &DocumentWindow::selectNext);
    add(edit, QStringLiteral("PreviousEntry"), tr("&Previous Entry"), QKeySequence(Qt::CTRL | Qt::Key_Up),
        &DocumentWindow::selectPrevious);
    edit->addSeparator();
    add(edit, QStringLiteral("Find"), tr("&Find"), QKeySequence::Find, [this] {
        m_searchField->setFocus(Qt::ShortcutFocusReason);
        m_searchField->selectAll();
    });
    add(edit, QStringLiteral("FindNext"), tr("Find Nex&t"), QKeySequence(Qt::CTRL | Qt::Key_G), &DocumentWindow::findNext)
        ->setShortcuts({QKeySequence(Qt::CTRL | Qt::Key_G), QKeySequence(Qt::Key_F3)});
    add(edit, QStringLiteral("FindPrevious"), tr("Find Pre&vious"), QKeySequence(), &DocumentWindow::findPrevious)
        ->setShortcuts({QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_G), QKeySequence(Qt::SHIFT | Qt::Key_F3)});
    add(edit, QStringLiteral("SameTranslation"), tr("&Use Word for Same Base Words"), QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_U),
        &DocumentWindow::useSameTranslation);
    edit->addAction(m_entryEditor->spellingAction());
    edit->addSeparator();
    edit->addAction(m_toolbarItems.value(QStringLiteral("Delete")));

    QMenu *view = menuBar()->addMenu(tr("&View"));
    view->addAction(m_toolbarItems.value(QStringLiteral("Files")));
    add(view, QStringLiteral("CustomizeToolbar"), tr("Customize &Toolbar\u2026"), QKeySequence(),
        [this] { m_toolbarController->runCustomizePalette(); });
    view->addSeparator();
    view->addAction(settingAction(tr("Hide &Empty Entries"), SettingsKey::IgnoreEmptyWords, this));
    view->addAction(settingAction(tr("Hide &Checked Entries"), SettingsKey::IgnoreLocalizedWords, this));
    QAction *problems = view->addAction(tr("Show Only Entries with &Problems"));
    problems->setObjectName(QStringLiteral("ProblemsOnly"));
    problems->setCheckable(true);
    problems->setShortcut(QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_P));
    connect(problems, &QAction::toggled, m_entryModel, &EntryTableModel::setProblemsOnly);
    m_menuActions.insert(QStringLiteral("ProblemsOnly"), problems);
    // Entries whose base text changed since the previous release: the ones to look at again.
    QAction *changed = view->addAction(tr("Only Entries Whose &Base Changed"));
    changed->setObjectName(QStringLiteral("onlyChangedBaseAction"));
    changed->setCheckable(true);
    connect(changed, &QAction::toggled, this, [this](bool on) { m_document->setShowOnlyChangedBase(on); });
    m_menuActions.insert(QStringLiteral("OnlyChangedBase"), changed);
    // What is left to do across all files: unchecked, or checked while still the base word.
    QAction *toDo = view->addAction(tr("Only Entries &to Do"));
    toDo->setObjectName(QStringLiteral("onlyToDoAction"));
    toDo->setCheckable(true);
    toDo->setShortcut(QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_T));
    connect(toDo, &QAction::toggled, this, [this](bool on) {
        m_entryEditor->commit();
        m_document->setShowOnlyToDo(on);
    });
    m_menuActions.insert(QStringLiteral("OnlyToDo"), toDo);

    QMenu *dictionary = menuBar()->addMenu(tr("&Dictionary"));
    add(dictionary, QStringLiteral("ShowDictionaryBrowser"), tr("Show Dictionary &Browser"),
        QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_D), &DocumentWindow::showDictionaryBrowser);
    QAction *panel = m_dictPanel->toggleViewAction();
    panel->setText(tr("Lookup &Panel"));
    panel->setShortcut(QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_L));
    dictionary->addAction(panel);
    m_menuActions.insert(QStringLiteral("LookupPanel"), panel);
    QMenu *dictionaries = dictionary->addMenu(tr("&Dictionaries"));
    connect(dictionaries, &QMenu::aboutToShow, this, [this, dictionaries] { emit dictionariesMenuAboutToShow(dictionaries); });
}

// Export, export all and delete need a file; reverting needs a saved, changed document.
void DocumentWindow::validateItems()
{
    const bool hasFiles = !m_document->files().isEmpty();
    for (const char *id : {"Export", "ExportAll", "Delete"})
        if (QAction *a = m_toolbarItems.value(QString::fromLatin1(id))) a->setEnabled(hasFiles);
    if (QAction *revert = m_menuActions.value(QStringLiteral("Revert")))
        revert->setEnabled(!m_document->filePath().isEmpty() && m_document->isDocumentEdited());
}

void DocumentWindow::addNewFile()
{
    GatheredSheets::Scope gather(*m_sheets);
    m_entryEditor->commit();
    const qsizetype before = m_document->files().size();
    m_document->addNewFile();
    const qsizetype added = m_document->files().size() - before;
    if (added > 0) statusBar()->showMessage(countedText(added, tr("1 file added."), tr("%1 files added.")), 5000);
}

void DocumentWindow::reportNewFileWarnings()
{
    QStringList warnings;
    for (const LocFilePtr &file : m_document->files())
        if (!m_reportedFiles.contains(file.get())) {
            m_reportedFiles.insert(file.get());
            warnings.append(file->warnings());
        }
    reportWarnings(localizedString(QStringLiteral("Some files were not read as they are.")), warnings);
}

void DocumentWindow::reportWarnings(const QString &title, const QStringList &warnings)
{
    if (warnings.isEmpty()) return;
    Alert alert;
    alert.title = title;
    alert.message = warnings.join(QLatin1String("\n\n"));
    alert.style = AlertStyle::Warning;
    alert.copyable = true;
    dialogs().showAlertSheet(alert);
}

namespace {
QString exportedText(const ExportResult &result)
{
    const QString folder = QDir::toNativeSeparators(result.folder);
    if (result.stopped)
        return QObject::tr("Export stopped: %1 files written to %2; the dictionary learnt nothing.")
            .arg(result.written.size())
            .arg(folder);
    if (result.written.size() == 1) return QObject::tr("1 file exported to %1.").arg(folder);
    return QObject::tr("%1 files exported to %2.").arg(result.written.size()).arg(folder);
}
}  // namespace

namespace {
// Warnings each file carries before an export, so that only the export's own are reported.
QHash<const LocFile *, qsizetype> warningCounts(const QList<LocFilePtr> &files)
{
    QHash<const LocFile *, qsizetype> counts;
    for (const LocFilePtr &file : files) counts.insert(file.get(), file->warnings().size());
    return counts;
}
}  // namespace

void DocumentWindow::exportSelectedFiles()
{
    GatheredSheets::Scope gather(*m_sheets);
    m_entryEditor->commit();
    const auto before = warningCounts(m_document->files());
    const ExportResult result = m_document->makeLocalizedFilesAction(selectedFiles());
    if (!result.cancelled) {
        statusBar()->showMessage(exportedText(result), 8000);
        reportExportWarnings(before);
    }
}

void DocumentWindow::exportAllFiles()
{
    GatheredSheets::Scope gather(*m_sheets);
    m_entryEditor->commit();
    const auto before = warningCounts(m_document->files());
    const ExportResult result = m_document->makeAllLocalizedFilesAction();
    if (!result.cancelled) {
        statusBar()->showMessage(exportedText(result), 8000);
        reportExportWarnings(before);
    }
}

void DocumentWindow::reportExportWarnings(const QHash<const LocFile *, qsizetype> &before)
{
    QStringList warnings;
    for (const LocFilePtr &file : m_document->files())
        warnings.append(file->warnings().mid(before.value(file.get(), file->warnings().size())));
    reportWarnings(localizedString(QStringLiteral("Some files were not exported as they should be.")), warnings);
}

void DocumentWindow::deleteCurrentFile()
{
    Alert alert;
    alert.title = localizedString(QStringLiteral("Delete File"));
    QStringList names;
    for (const LocFilePtr &file : selectedFiles()) names.append(file->fileName());
    if (names.isEmpty()) return;
    alert.message = localizedString(QStringLiteral("Can not undo deleting.")) + QStringLiteral("\n\n")
                    + localizedString(QStringLiteral("These files leave the document: %1. Nothing on disk is removed."))
                          .arg(names.join(QLatin1String(", ")));
    alert.buttons = QStringList{localizedString(QStringLiteral("OK")), localizedString(QStringLiteral("Cancel"))};
    if (dialogs().runAlert(alert) != 0) return;
    m_entryEditor->commit();
    m_document->removeFiles(selectedFiles());
}

void DocumentWindow::selectNext()
{
    const int row = m_entryTable->currentIndex().row();
    if (row + 1 < m_entryModel->rowCount()) selectEntryRow(row + 1);
    m_entryEditor->focusEditor();
}

void DocumentWindow::selectPrevious()
{
    const int row = m_entryTable->currentIndex().row();
    if (row > 0) selectEntryRow(row - 1);
    m_entryEditor->focusEditor();
}

void DocumentWindow::showDictionaryBrowser()
{
    emit dictionaryBrowserRequested(StringUtility::wordOrEmpty(m_document->baseLanguageKey()),
                                    StringUtility::wordOrEmpty(m_document->targetLanguageKey()));
}

void DocumentWindow::checkLocalized()
{
    m_entryEditor->commit();
    QList<LocEntryPtr> entries = selectedEntries();
    if (entries.isEmpty() && currentEntry()) entries.append(currentEntry());
    m_undo->beginEntryChange(entries, tr("Check and Next"));
    m_document->checkLocalized(entries);
    m_undo->endEntryChange();
    const bool atEnd = m_entryTable->currentIndex().row() + 1 >= m_entryModel->rowCount();
    if (atEnd && selectNextUncheckedFile()) return;
    selectNext();
}

// An interface file whose texts come from two string tables the user picks (translations and
// originals), for a nib no tool can read.
void DocumentWindow::readNibAndStringsFile()
{
    GatheredSheets::Scope gather(*m_sheets);
    m_entryEditor->commit();
    if (m_document->readNibAndStringsFile()) statusBar()->showMessage(tr("1 file added."), 5000);
}
