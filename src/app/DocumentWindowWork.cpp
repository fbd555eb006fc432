// DocumentWindow: finding the work (how many entries a search or filter leaves, Find Next and
// Find Previous across files) and one translation for every entry of the same base word.
#include "DocumentWindow.h"

#include "DocumentUndo.h"
#include "EntryEditor.h"
#include "EntryTableModel.h"
#include "FileTableModel.h"
#include "MyDocument.h"
#include "UiText.h"

#include <QHBoxLayout>
#include <QKeySequence>
#include <QLabel>
#include <QPushButton>
#include <QStatusBar>
#include <QStyle>
#include <QTableView>
#include <QToolButton>

void DocumentWindow::findNext()
{
    findStep(1);
}

void DocumentWindow::findPrevious()
{
    findStep(-1);
}

void DocumentWindow::findStep(int step)
{
    m_entryEditor->commit();
    const int rows = m_entryModel->rowCount();
    const int row = m_entryTable->currentIndex().row();
    const int next = row < 0 ? (step > 0 ? 0 : rows - 1) : row + step;
    if (m_entryModel->file() && next >= 0 && next < rows) {
        selectEntryRow(next);
        m_entryEditor->focusEditor();
        return;
    }
    const int files = m_fileModel->rowCount();
    const QList<LocFilePtr> selected = selectedFiles();
    const int start = selected.isEmpty() ? (step > 0 ? -1 : files)
                                         : m_fileModel->rowOfFile((step > 0 ? selected.last() : selected.first()).get());
    // The file itself comes last: a single file showing entries wraps onto its own first one.
    for (int i = 1; i <= files; ++i) {
        const int fileRow = ((start + step * i) % files + files) % files;
        if (m_fileModel->fileAt(fileRow)->entries().isEmpty()) continue;
        selectFileRows({fileRow});
        if (m_entryModel->rowCount() == 0) continue;  // all of them left out by the problems filter
        selectEntryRow(step > 0 ? 0 : m_entryModel->rowCount() - 1);
        m_entryEditor->focusEditor();
        if (step > 0 ? fileRow <= start : fileRow >= start)
            statusBar()->showMessage(step > 0 ? tr("Went on from the first file.") : tr("Went on from the last file."), 3000);
        return;
    }
    QList<int> before;
    for (const LocFilePtr &f : selected) before.append(m_fileModel->rowOfFile(f.get()));
    selectFileRows(before);
    statusBar()->showMessage(tr("No entry is shown."), 3000);
}

// The found column and the total follow a search or a filter, and are gone without one.
void DocumentWindow::showSearchState()
{
    m_fileTable->setColumnHidden(FileTableModel::FoundColumn, !m_document->isSearching());
    updateSummary();
}

QWidget *DocumentWindow::buildSameTranslationOffer()
{
    m_offer = new QWidget(this);
    m_offer->setObjectName(QStringLiteral("sameTranslationOffer"));
    auto *layout = new QHBoxLayout(m_offer);
    layout->setContentsMargins(0, 0, 0, 0);
    m_offerText = new QLabel(m_offer);
    auto *use = new QPushButton(tr("Use for All"), m_offer);
    use->setObjectName(QStringLiteral("useSameTranslation"));
    use->setFocusPolicy(Qt::NoFocus);
    use->setToolTip(tr("Gives them this word, unchecked until you confirm each (%1)")
                        .arg(QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_U).toString(QKeySequence::NativeText)));
    connect(use, &QPushButton::clicked, this, &DocumentWindow::useSameTranslation);
    auto *dismiss = new QToolButton(m_offer);
    dismiss->setIcon(style()->standardIcon(QStyle::SP_TitleBarCloseButton));
    dismiss->setAutoRaise(true);
    dismiss->setToolTip(tr("Leave them as they are"));
    dismiss->setFocusPolicy(Qt::NoFocus);
    connect(dismiss, &QToolButton::clicked, this, [this] {
        m_offerEntry.reset();
        m_offer->hide();
    });
    layout->addWidget(m_offerText);
    layout->addWidget(use);
    layout->addWidget(dismiss);
    m_offer->hide();
    return m_offer;
}

// Offered, never imposed: a word typed for "File" in a menu often fits "File" in a window, but
// not always, and a question after every word would be a nag.
void DocumentWindow::offerSameTranslation(const LocEntryPtr &entry)
{
    const qsizetype others = entry ? m_document->sameBaseWordEntries(*entry).size() : 0;
    m_offerEntry = others ? entry : nullptr;
    m_offer->setVisible(others > 0);
    if (!others) return;
    const QString word = StringUtility::wordOrEmpty(entry->localizedWord());
    const QString base = StringUtility::wordOrEmpty(entry->baseWord());
    m_offerText->setText(countedText(others, tr("\u201C%2\u201D fits 1 more unchecked \u201C%3\u201D."),
                                     tr("\u201C%2\u201D fits %1 more unchecked \u201C%3\u201D."))
                             .arg(word.left(40), base.left(40)));
}

void DocumentWindow::useSameTranslation()
{
    m_entryEditor->commit();
    const LocEntryPtr source = m_offerEntry ? m_offerEntry : currentEntry();
    m_offerEntry.reset();
    m_offer->hide();
    if (!source) return;
    const QList<LocEntryPtr> others = m_document->sameBaseWordEntries(*source);
    if (others.isEmpty()) {
        statusBar()->showMessage(tr("No other unchecked entry has this base word."), 5000);
        return;
    }
    m_undo->beginEntryChange(others, tr("Same Translation"));
    m_document->useSameTranslation(*source, others);
    m_undo->endEntryChange();
    showEntriesAgain();
    statusBar()->showMessage(countedText(others.size(), tr("1 more entry took the word, unchecked."),
                                         tr("%1 more entries took the word, unchecked.")),
                             5000);
}
