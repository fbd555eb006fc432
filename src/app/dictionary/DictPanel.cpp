#include "DictPanel.h"

#include "DictController.h"
#include "DictTableModel.h"
#include "EntryEditor.h"
#include "MyDocument.h"
#include "NotificationCenter.h"

#include <QAbstractItemView>
#include <QCompleter>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QScrollBar>
#include <QSplitter>
#include <QStringListModel>
#include <QTableView>
#include <QTimer>
#include <QTreeWidget>
#include <QVBoxLayout>

DictPanel::DictPanel(MyDocument *document, EntryEditor *editor, QWidget *parent)
    : QDockWidget(tr("Dictionary"), parent), m_document(document), m_editor(editor), m_controller(new DictController(this)),
      m_model(new DictTableModel(this))
{
    setObjectName(QStringLiteral("DictPanel"));
    setFeatures(QDockWidget::DockWidgetClosable | QDockWidget::DockWidgetMovable | QDockWidget::DockWidgetFloatable);

    m_searchField = new QLineEdit(this);
    m_searchField->setObjectName(QStringLiteral("dictSearchField"));
    m_searchField->setPlaceholderText(tr("Look up"));
    m_searchField->setClearButtonEnabled(true);
    m_table = new QTableView(this);
    m_table->setObjectName(QStringLiteral("dictTable"));
    m_table->setModel(m_model);
    m_table->setSelectionBehavior(QAbstractItemView::SelectRows);
    m_table->setSelectionMode(QAbstractItemView::SingleSelection);
    m_table->setEditTriggers(QAbstractItemView::NoEditTriggers);
    m_table->verticalHeader()->hide();
    m_table->verticalHeader()->setDefaultSectionSize(m_table->fontMetrics().height() + 6);
    m_table->horizontalHeader()->setSectionResizeMode(QHeaderView::Stretch);
    m_table->setAlternatingRowColors(true);
    m_table->setShowGrid(false);
    m_table->setWordWrap(false);

    m_similar = new QTreeWidget(this);
    m_similar->setObjectName(QStringLiteral("similarList"));
    m_similar->setColumnCount(3);
    m_similar->setHeaderLabels({tr("Match"), tr("Similar Base Word"), tr("Localized Word")});
    m_similar->setRootIsDecorated(false);
    m_similar->header()->setSectionResizeMode(0, QHeaderView::ResizeToContents);
    m_similar->header()->setStretchLastSection(true);
    m_similar->setToolTip(tr("Pairs whose base word is at least 70% like the current entry's; double-click to use one"));

    auto *split = new QSplitter(Qt::Vertical, this);
    split->addWidget(m_table);
    split->addWidget(m_similar);
    split->setStretchFactor(0, 3);
    split->setStretchFactor(1, 1);
    auto *body = new QWidget(this);
    auto *layout = new QVBoxLayout(body);
    layout->setContentsMargins(4, 4, 4, 4);
    layout->addWidget(m_searchField);
    layout->addWidget(split, 1);
    setWidget(body);

    connect(m_controller, &DictController::shownEntriesChanged, this, &DictPanel::showRows);
    connect(m_searchField, &QLineEdit::textChanged, m_controller, &DictController::lookup);
    connect(m_table, &QTableView::doubleClicked, this, [this](const QModelIndex &index) { chooseTableRow(index.row()); });
    connect(m_similar, &QTreeWidget::itemDoubleClicked, this,
            [this](QTreeWidgetItem *item) { chooseValue(item->data(2, Qt::UserRole).toString()); });

    // The three look-up triggers: a selection in either word field, typing in the entry field,
    // and the panel's own search field. The latest wins.
    QLineEdit *baseword = editor->basewordField();
    QPlainTextEdit *entry = editor->entryField();
    connect(baseword, &QLineEdit::selectionChanged, this, [this, baseword] { lookupDictionaryWithSelection(baseword); });
    connect(entry, &QPlainTextEdit::selectionChanged, this, [this, entry] { lookupDictionaryWithSelection(entry); });
    connect(entry, &QPlainTextEdit::cursorPositionChanged, this, [this, entry] { lookupDictionaryWithSelection(entry); });
    connect(entry, &QPlainTextEdit::textChanged, this, &DictPanel::lookupDictionaryWithText);
    connect(baseword, &QLineEdit::textChanged, this, &DictPanel::showSimilar);

    m_completions = new QStringListModel(this);
    m_completer = new QCompleter(m_completions, this);
    m_completer->setWidget(entry);
    m_completer->setCompletionMode(QCompleter::UnfilteredPopupCompletion);
    m_completer->setMaxVisibleItems(8);
    connect(m_completer, qOverload<const QString &>(&QCompleter::activated), this, &DictPanel::chooseValue);

    connect(document, &MyDocument::dictionaryPathReset, this, &DictPanel::setPath);
    // Pairs this document just exported are in its file now.
    connect(&NotificationCenter::instance(), &NotificationCenter::dictExportFileAndAddEntries, this, [this](QObject *sender) {
        if (sender == m_document) setPath(m_controller->path());
    });
}

void DictPanel::setPath(const QString &path)
{
    m_controller->setPath(path);
    showSimilar(m_editor->basewordField()->text());
}

void DictPanel::showRows()
{
    m_model->setRows(m_controller->shownEntries());
}

// Only the field the user is in looks up its selection; an empty selection shows every pair.
// The move of the insertion point that comes with typing leaves the typed text's look-up alone.
void DictPanel::lookupDictionaryWithSelection(QWidget *sender)
{
    if (!sender->hasFocus() || m_choosing) return;
    if (auto *line = qobject_cast<QLineEdit *>(sender)) {
        m_controller->lookup(line->selectedText());
        return;
    }
    auto *text = static_cast<QPlainTextEdit *>(sender);
    const QString selected = text->textCursor().selectedText().replace(QChar::ParagraphSeparator, u'\n');
    if (selected.isEmpty() && m_textJustChanged) return;
    m_controller->lookup(selected);
}

void DictPanel::lookupDictionaryWithText()
{
    QPlainTextEdit *entry = m_editor->entryField();
    // A new entry shown in the editor is no typing: only the user's own changes look up.
    if (!entry->hasFocus() || m_choosing) return;
    m_textJustChanged = true;
    QTimer::singleShot(0, this, [this] { m_textJustChanged = false; });
    m_controller->lookup(entry->toPlainText());
    offerCompletions();
}

void DictPanel::offerCompletions()
{
    QPlainTextEdit *entry = m_editor->entryField();
    const QString text = entry->toPlainText();
    const QStringList values = text.isEmpty() ? QStringList() : m_controller->valuesStartFromString(text);
    if (values.isEmpty()) {
        m_completer->popup()->hide();
        return;
    }
    m_completions->setStringList(values);
    QRect rect = entry->cursorRect();
    rect.setWidth(std::max(entry->width() / 2, 240));
    m_completer->complete(rect);
}

void DictPanel::showSimilar(const QString &baseWord)
{
    m_similar->clear();
    for (const DictSearch::FuzzyMatch &match : m_controller->fuzzyMatches(baseWord)) {
        auto *item = new QTreeWidgetItem(m_similar);
        item->setText(0, QStringLiteral("%1%").arg(match.percent));
        item->setText(1, StringUtility::wordOrEmpty(match.row->key()));
        item->setText(2, StringUtility::wordOrEmpty(match.row->value()));
        item->setData(2, Qt::UserRole, StringUtility::wordOrEmpty(match.row->value()));
    }
}

void DictPanel::chooseTableRow(int row)
{
    if (const DictEntryPtr entry = m_model->rowAt(row)) chooseValue(StringUtility::wordOrEmpty(entry->value()));
}

void DictPanel::chooseValue(const QString &value)
{
    QPlainTextEdit *entry = m_editor->entryField();
    if (!m_editor->entry() || !entry->isEnabled() || entry->isReadOnly()) return;
    m_choosing = true;
    // A step of the document's undo, like a word typed and committed.
    m_editor->insertWord(value, tr("Dictionary Pair"));
    // Back in the editor after the word; the panel keeps showing what the user chose from.
    entry->setFocus(Qt::OtherFocusReason);
    entry->moveCursor(QTextCursor::End);
    m_choosing = false;
}
