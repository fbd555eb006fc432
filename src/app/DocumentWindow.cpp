#include "DocumentWindow.h"

#include "DictPanel.h"
#include "DocumentUndo.h"
#include "EntryEditor.h"
#include "EntryTableModel.h"
#include "FileTableMenu.h"
#include "FileTableModel.h"
#include "FilesDrawer.h"
#include "GatheredSheets.h"
#include "LanguageComboBox.h"
#include "MyDocument.h"
#include "ProgressPanel.h"
#include "QtDialogs.h"
#include "Settings.h"
#include "UiText.h"
#include "WindowFrame.h"

#include <QDesktopServices>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QProgressBar>
#include <QSplitter>
#include <QStatusBar>
#include <QTableView>
#include <QTimer>
#include <QUrl>
#include <QVBoxLayout>

namespace {

QTableView *makeTable(QAbstractItemModel *model, const QString &name, QWidget *parent)
{
    auto *table = new QTableView(parent);
    table->setObjectName(name);
    table->setModel(model);
    table->setSelectionBehavior(QAbstractItemView::SelectRows);
    table->setSelectionMode(QAbstractItemView::ExtendedSelection);
    table->verticalHeader()->hide();
    table->verticalHeader()->setDefaultSectionSize(table->fontMetrics().height() + 8);
    table->setShowGrid(false);
    table->setAlternatingRowColors(true);
    table->setWordWrap(false);
    table->horizontalHeader()->setHighlightSections(false);
    return table;
}

}  // namespace

DocumentWindow::DocumentWindow(MyDocument *document, QWidget *parent)
    : QMainWindow(parent), m_document(document), m_qtDialogs(std::make_unique<QtDialogs>(this)),
      m_sheets(std::make_unique<GatheredSheets>())
{
    document->setParent(this);
    setObjectName(MyDocument::windowNibName());
    setAttribute(Qt::WA_DeleteOnClose);
    setDialogs(nullptr, nullptr);

    m_fileModel = new FileTableModel(document, this);
    m_entryModel = new EntryTableModel(document, this);
    m_undo = new DocumentUndo(document, this);
    m_progressPanel = new ProgressPanel(document, this);
    m_sheets->setAroundQuestions([this](bool asking) { asking ? m_progressPanel->pause() : m_progressPanel->resume(); });
    buildLayout();
    m_dictPanel = new DictPanel(document, m_entryEditor, this);
    addDockWidget(Qt::RightDockWidgetArea, m_dictPanel);
    makeMyToolBarItems();
    makeMenus();

    // The languages, the spell-checking state and the selection, as the document holds them.
    setLanguageNameForPopupButtons({m_languageFromPp, m_languageToPp});
    updateSpellLanguage();
    const bool spelling = Settings::instance().boolValue(SettingsKey::ContinuousSpellCheckingEnabled);
    m_entryEditor->setContinuousSpellCheckingEnabled(spelling);
    m_document->setContinuousSpellCheckingState(spelling);
    m_languageFromPp->ppSelectItemWithTag(document->locLangFrom());
    m_languageToPp->ppSelectItemWithTag(document->locLangTo());
    m_titleField->setText(document->title());
    wireDocument();
    wireSelection();
    restoreFileSelection();
    validateItems();
    updateWindowTitle();
    showSearchState();
    document->resetDictionaryPath();
    if (!WindowFrame::restore(this, MyDocument::windowNibName())) resize(1120, 700);
}

DocumentWindow::~DocumentWindow()
{
    // The document outlives this part of the window for a moment (it is a child): nothing it
    // announces from now on may reach the half-destroyed window.
    disconnect(m_document, nullptr, this, nullptr);
    m_document->setDialogs(nullptr);
}

void DocumentWindow::setDialogs(Dialogs *dialogs, SavePanel *savePanel)
{
    m_dialogs = dialogs ? dialogs : m_qtDialogs.get();
    m_savePanel = savePanel ? savePanel : m_qtDialogs.get();
    m_sheets->setTarget(m_dialogs);
    m_document->setDialogs(m_sheets.get());
}

Dialogs &DocumentWindow::dialogs() const
{
    return *m_sheets;
}

SavePanel &DocumentWindow::savePanel() const
{
    return *m_savePanel;
}

void DocumentWindow::buildLayout()
{
    m_titleField = new QLineEdit(this);
    m_titleField->setObjectName(QStringLiteral("titleField"));
    m_titleField->setPlaceholderText(tr("Project title"));
    auto *titleRow = new QHBoxLayout;
    titleRow->addWidget(new QLabel(tr("Title:"), this));
    titleRow->addWidget(m_titleField, 1);

    m_drawer = new FilesDrawer(buildFilePane(), this);

    auto *central = new QWidget(this);
    auto *layout = new QVBoxLayout(central);
    layout->setContentsMargins(8, 6, 8, 4);
    layout->addLayout(titleRow);
    layout->addWidget(buildEntryPane(), 1);
    setCentralWidget(central);

    m_busyIndicator = new QProgressBar(this);
    m_busyIndicator->setObjectName(QStringLiteral("busyIndicator"));
    m_busyIndicator->setMaximumWidth(160);
    m_busyIndicator->setTextVisible(false);
    m_busyIndicator->setRange(0, 0);
    m_busyIndicator->hide();
    statusBar()->addPermanentWidget(m_busyIndicator);
    statusBar()->addPermanentWidget(buildSameTranslationOffer());
    m_summary = new QLabel(this);
    m_summary->setObjectName(QStringLiteral("summary"));
    statusBar()->addPermanentWidget(m_summary);
}

QWidget *DocumentWindow::buildFilePane()
{
    m_fileTable = makeTable(m_fileModel, QStringLiteral("fileTable"), this);
    m_fileTable->horizontalHeader()->setSectionResizeMode(FileTableModel::NameColumn, QHeaderView::Stretch);
    m_fileTable->horizontalHeader()->setSectionResizeMode(FileTableModel::StatusColumn, QHeaderView::ResizeToContents);
    // A fixed width: sized to its contents, every search keystroke measured every row's status.
    const QFontMetrics metrics = m_fileTable->fontMetrics();
    const QString header = m_fileModel->headerData(FileTableModel::FoundColumn, Qt::Horizontal, Qt::DisplayRole).toString();
    m_fileTable->horizontalHeader()->setSectionResizeMode(FileTableModel::FoundColumn, QHeaderView::Fixed);
    m_fileTable->horizontalHeader()->resizeSection(
        FileTableModel::FoundColumn, std::max(metrics.horizontalAdvance(QStringLiteral("000000")), metrics.horizontalAdvance(header)) + 16);
    m_fileTable->setDragDropMode(QAbstractItemView::DragDrop);
    m_fileTable->setDefaultDropAction(Qt::MoveAction);
    m_fileTable->setDropIndicatorShown(true);
    m_fileTable->setDragDropOverwriteMode(false);
    m_fileTableMenu = new FileTableMenu(m_fileTable, this);
    connect(m_fileTable, &QTableView::doubleClicked, this, [this](const QModelIndex &index) {
        if (const LocFilePtr file = m_fileModel->fileAt(index.row()))
            QDesktopServices::openUrl(QUrl::fromLocalFile(file->path()));
    });
    return m_fileTable;
}

QWidget *DocumentWindow::buildEntryPane()
{
    m_entryTable = makeTable(m_entryModel, QStringLiteral("entryTable"), this);
    QHeaderView *header = m_entryTable->horizontalHeader();
    header->setSectionResizeMode(EntryTableModel::CheckColumn, QHeaderView::ResizeToContents);
    header->setSectionResizeMode(EntryTableModel::KeyColumn, QHeaderView::Interactive);
    header->setSectionResizeMode(EntryTableModel::BaseWordColumn, QHeaderView::Interactive);
    header->setStretchLastSection(true);
    header->resizeSection(EntryTableModel::KeyColumn, 190);
    header->resizeSection(EntryTableModel::BaseWordColumn, 250);
    m_entryTable->setEditTriggers(QAbstractItemView::DoubleClicked | QAbstractItemView::EditKeyPressed);

    m_entryEditor = new EntryEditor(m_document, this);
    connect(m_entryEditor, &EntryEditor::committed, m_entryModel, &EntryTableModel::entryChanged);
    // The editor commits before it shows another entry: the one it holds is the committed one.
    connect(m_entryEditor, &EntryEditor::committed, this, [this](const LocEntry *entry) {
        if (m_entryEditor->entry().get() == entry) offerSameTranslation(m_entryEditor->entry());
    });
    connect(m_entryModel, &EntryTableModel::wordCommitted, this, &DocumentWindow::offerSameTranslation);
    // Files read again or removed: the offered word may belong to entries no longer there.
    connect(m_document, &MyDocument::filesChanged, this, [this] { offerSameTranslation(nullptr); });
    connect(m_entryEditor, &EntryEditor::statusMessage, this, [this](const QString &text) { statusBar()->showMessage(text); });
    connect(m_entryEditor, &EntryEditor::checkAndNextRequested, this, &DocumentWindow::checkLocalized);
    connect(m_entryEditor, &EntryEditor::continuousSpellCheckingChanged, this,
            [this](bool on) { m_document->setContinuousSpellCheckingState(on); });

    auto *split = new QSplitter(Qt::Vertical, this);
    split->addWidget(m_entryTable);
    split->addWidget(m_entryEditor);
    split->setStretchFactor(0, 3);
    split->setStretchFactor(1, 1);
    split->setSizes({430, 170});
    return split;
}

void DocumentWindow::wireDocument()
{
    MyDocument *doc = m_document;
    connect(m_titleField, &QLineEdit::textEdited, m_undo, &DocumentUndo::setTitle);
    // Words and marks changed in the editor or in the table are steps of the undo stack.
    auto begin = [this](const LocEntryPtr &entry, const QString &name) { m_undo->beginEntryChange({entry}, name); };
    connect(m_entryEditor, &EntryEditor::entryAboutToChange, m_undo, begin);
    connect(m_entryEditor, &EntryEditor::entryChangeEnded, m_undo, &DocumentUndo::endEntryChange);
    connect(m_entryModel, &EntryTableModel::entryAboutToChange, m_undo, begin);
    connect(m_entryModel, &EntryTableModel::entryChangeEnded, m_undo, &DocumentUndo::endEntryChange);
    connect(m_undo, &DocumentUndo::stepApplied, this, &DocumentWindow::showEntriesAgain);
    connect(doc, &MyDocument::titleChanged, this, [this] {
        if (m_titleField->text() != m_document->title()) m_titleField->setText(m_document->title());
    });
    connect(m_languageFromPp, &LanguageComboBox::tagChosen, this, [this](int tag) { chooseLanguage(true, tag); });
    connect(m_languageToPp, &LanguageComboBox::tagChosen, this, [this](int tag) { chooseLanguage(false, tag); });
    connect(doc, &MyDocument::locLangFromChanged, this, [this] { m_languageFromPp->ppSelectItemWithTag(m_document->locLangFrom()); });
    connect(doc, &MyDocument::locLangToChanged, this, [this] {
        m_languageToPp->ppSelectItemWithTag(m_document->locLangTo());
        updateSpellLanguage();
    });
    connect(doc, &MyDocument::documentEditedChanged, this, &DocumentWindow::updateWindowTitle);
    connect(doc, &MyDocument::filePathChanged, this, &DocumentWindow::updateWindowTitle);
    connect(doc, &MyDocument::filesChanged, this, &DocumentWindow::validateItems);
    for (const LocFilePtr &file : doc->files()) m_reportedFiles.insert(file.get());
    connect(doc, &MyDocument::filesChanged, this, &DocumentWindow::reportNewFileWarnings);
    connect(doc, &MyDocument::documentEditedChanged, this, &DocumentWindow::validateItems);
    // The file table repaints its rows once per pass of the event loop; the summary with it.
    connect(m_fileModel, &QAbstractItemModel::dataChanged, this, &DocumentWindow::updateSummary);
    connect(m_fileModel, &QAbstractItemModel::modelReset, this, &DocumentWindow::showSearchState);
    connect(doc, &MyDocument::searchPerformed, this, &DocumentWindow::showSearchState);
    connect(doc, &MyDocument::loadingFilesChanged, this, [this](bool on) {
        // Adding or export, from a command of this window or a drop: what they report, and what
        // they report right after (files not added, not written), is shown as one report.
        // A command of this window holds them until it ends; a drop until this pass is over.
        if (on) m_sheets->begin();
        else if (m_sheets->depth() > 1) m_sheets->end();
        else QTimer::singleShot(0, this, [this] { m_sheets->end(); });
        m_busyIndicator->setRange(0, 0);
        m_busyIndicator->setVisible(on);
        if (on) statusBar()->clearMessage();
    });
    // The work runs in one pass of the event loop: paint the indicator as it advances.
    connect(doc, &MyDocument::progress, this, [this](int done, int total) {
        m_busyIndicator->setRange(0, total);
        m_busyIndicator->setValue(done);
        m_busyIndicator->repaint();
    });
    connect(doc, &MyDocument::entryModified, this, &DocumentWindow::updateSearchResult);
    connect(m_searchField, &QLineEdit::textChanged, doc, [this](const QString &text) {
        m_entryEditor->commit();
        m_document->search(text.isEmpty() ? OptString() : OptString(text));
    });
}

void DocumentWindow::wireSelection()
{
    connect(m_fileModel, &QAbstractItemModel::modelAboutToBeReset, this, [this] {
        m_filesBeforeReset.clear();
        for (const LocFilePtr &f : selectedFiles()) m_filesBeforeReset.append(f.get());
    });
    connect(m_fileModel, &QAbstractItemModel::modelReset, this, &DocumentWindow::restoreFileSelection);
    connect(m_fileTable->selectionModel(), &QItemSelectionModel::selectionChanged, this, &DocumentWindow::showCurrentFile);

    connect(m_entryModel, &EntryTableModel::entriesAboutToReset, this, [this] {
        m_entryFileBeforeReset = m_entryModel->file().get();
        m_entryRowBeforeReset = m_entryTable->currentIndex().row();
    });
    connect(m_entryModel, &EntryTableModel::entriesReset, this, &DocumentWindow::restoreEntrySelection);
    connect(m_entryTable->selectionModel(), &QItemSelectionModel::currentRowChanged, this,
            [this](const QModelIndex &current) { m_entryEditor->setEntry(m_entryModel->entryAt(current.row())); });
}

// After the file list was rebuilt: the files selected before, or the first file.
void DocumentWindow::restoreFileSelection()
{
    QList<int> rows;
    for (const LocFile *f : std::as_const(m_filesBeforeReset))
        if (const int row = m_fileModel->rowOfFile(f); row >= 0) rows.append(row);
    if (rows.isEmpty() && m_fileModel->rowCount() > 0) rows.append(0);
    selectFileRows(rows);
    showCurrentFile();
}

// After the shown entries were rebuilt: the entry shown in the editor when it is still listed,
// else the row that stood at its place (the next entry), else the first row of a new file.
void DocumentWindow::restoreEntrySelection()
{
    int row = 0;
    if (m_entryModel->file().get() == m_entryFileBeforeReset) {
        const LocEntryPtr current = m_entryEditor->entry();
        row = current ? m_entryModel->rowOfEntry(current.get()) : -1;
        if (row < 0) row = std::min(std::max(m_entryRowBeforeReset, 0), m_entryModel->rowCount() - 1);
    }
    selectEntryRow(row);
    m_entryEditor->setEntry(m_entryModel->entryAt(row));
}

void DocumentWindow::showCurrentFile()
{
    const QList<LocFilePtr> files = selectedFiles();
    // Several files selected show no entries, as a list bound to a multiple selection does.
    m_entryModel->setFile(files.size() == 1 ? files.first() : nullptr);
    validateItems();
}

QList<LocFilePtr> DocumentWindow::selectedFiles() const
{
    QList<int> rows;
    for (const QModelIndex &i : m_fileTable->selectionModel()->selectedRows()) rows.append(i.row());
    std::sort(rows.begin(), rows.end());
    QList<LocFilePtr> files;
    for (int row : rows)
        if (LocFilePtr f = m_fileModel->fileAt(row)) files.append(f);
    return files;
}

QList<LocEntryPtr> DocumentWindow::selectedEntries() const
{
    QList<int> rows;
    for (const QModelIndex &i : m_entryTable->selectionModel()->selectedRows()) rows.append(i.row());
    std::sort(rows.begin(), rows.end());
    QList<LocEntryPtr> entries;
    for (int row : rows)
        if (LocEntryPtr e = m_entryModel->entryAt(row)) entries.append(e);
    return entries;
}

LocEntryPtr DocumentWindow::currentEntry() const
{
    return m_entryEditor->entry();
}

void DocumentWindow::selectFileRows(const QList<int> &rows)
{
    QItemSelection selection;
    for (int row : rows) selection.select(m_fileModel->index(row, 0), m_fileModel->index(row, FileTableModel::ColumnCount - 1));
    QItemSelectionModel *model = m_fileTable->selectionModel();
    model->select(selection, QItemSelectionModel::ClearAndSelect);
    if (!rows.isEmpty()) model->setCurrentIndex(m_fileModel->index(rows.first(), 0), QItemSelectionModel::NoUpdate);
}

void DocumentWindow::selectEntryRow(int row)
{
    QItemSelectionModel *model = m_entryTable->selectionModel();
    if (row < 0 || row >= m_entryModel->rowCount()) {
        model->clear();
        m_entryEditor->setEntry(nullptr);
        return;
    }
    const QModelIndex index = m_entryModel->index(row, EntryTableModel::KeyColumn);
    model->setCurrentIndex(index, QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
    m_entryTable->scrollTo(index);
}

// An entry's check mark was set: the file table follows, and with checked entries hidden the
// entry leaves the list a moment later (so the user sees the mark first).
void DocumentWindow::updateSearchResult(LocEntry *entry)
{
    if (entry == m_entryEditor->entry().get()) m_entryEditor->refreshCheck();
    if (m_document->loadingFiles()) return;
    if (!Settings::instance().boolValue(SettingsKey::IgnoreLocalizedWords) || !entry->isChecked()) return;
    if (selectedFiles().size() != 1 || m_entryModel->rowOfEntry(entry) < 0) return;
    const LocFilePtr file = m_entryModel->file();
    QTimer::singleShot(100, this, [this, file, entry] { removeCurrentEntryFromSearchResult(file, entry); });
}

void DocumentWindow::removeCurrentEntryFromSearchResult(const LocFilePtr &file, const LocEntry *entry)
{
    if (file) file->hideEntry(entry);
    m_fileModel->refreshFound();
    m_entryEditor->focusEditor();
}

// Words changed behind the table and the editor (undo, a word given to several entries).
void DocumentWindow::showEntriesAgain()
{
    if (const int rows = m_entryModel->rowCount())
        emit m_entryModel->dataChanged(m_entryModel->index(0, 0), m_entryModel->index(rows - 1, EntryTableModel::ColumnCount - 1));
    const LocEntryPtr shown = m_entryEditor->entry();
    m_entryEditor->setEntry(nullptr);
    m_entryEditor->setEntry(shown);
}

void DocumentWindow::updateSpellLanguage()
{
    const auto row = languageRowForTag(m_document->locLangTo());
    m_entryEditor->setSpellLanguage(row ? row->abbreviation : QString(), row ? row->name : QString());
}

void DocumentWindow::updateWindowTitle()
{
    setWindowTitle(m_document->displayName() + QStringLiteral("[*] \u2014 Vocabrix"));
    setWindowModified(m_document->isDocumentEdited());
    setWindowFilePath(m_document->filePath());
}

void DocumentWindow::updateSummary()
{
    qsizetype checked = 0;
    qsizetype all = 0;
    for (const LocFilePtr &f : m_document->files()) {
        checked += f->checkedCount();
        all += f->allEntries().size();
    }
    const QString files = countedText(m_document->files().size(), tr("1 file"), tr("%1 files"));
    QString text = tr("%1, %2 of %3 entries checked").arg(files).arg(checked).arg(all);
    if (m_document->isSearching()) {
        qsizetype found = 0;
        for (const LocFilePtr &f : m_document->files()) found += f->entries().size();
        text = countedText(found, tr("1 entry found"), tr("%1 entries found")) + QStringLiteral("; ") + text;
    }
    m_summary->setText(text);
}
