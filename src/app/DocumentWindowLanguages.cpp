// DocumentWindow: the language pair changed only on purpose, and Check and Next going on past
// the end of a file.
#include "DocumentWindow.h"

#include "Dialogs.h"
#include "DocumentUndo.h"
#include "EntryEditor.h"
#include "EntryTableModel.h"
#include "FileTableModel.h"
#include "GatheredSheets.h"
#include "LanguageComboBox.h"
#include "Languages.h"
#include "MyDocument.h"

#include <QTableView>

namespace {
QString languageName(int tag)
{
    const auto row = languageRowForTag(tag);
    return row ? row->name : QString::number(tag);
}
}  // namespace

// A document's entries were filled for its pair: another pair is taken only when the user says
// so, and a pair of one language is no pair at all. `reread` tells whether the files are to be
// read again for the new pair.
bool DocumentWindow::confirmLanguageChange(bool base, int tag, bool *reread)
{
    *reread = false;
    const int current = base ? m_document->locLangFrom() : m_document->locLangTo();
    const int other = base ? m_document->locLangTo() : m_document->locLangFrom();
    if (tag == current) return false;
    Alert alert;
    if (tag == other) {
        alert.title = tr("%1 is already the %2 language.").arg(languageName(tag), base ? tr("target") : tr("base"));
        alert.message = tr("A document translates from one language into another: choose two different languages.");
        dialogs().runAlert(alert);
        return false;
    }
    bool holdsEntries = false;
    for (const LocFilePtr &file : m_document->files()) holdsEntries = holdsEntries || !file->allEntries().isEmpty();
    if (!holdsEntries) return true;
    alert.title = base ? tr("Change the base language from %1 to %2?") : tr("Change the target language from %1 to %2?");
    alert.title = alert.title.arg(languageName(current), languageName(tag));
    alert.message = tr("The words and check marks of this document were made for %1 to %2.\n\n"
                       "Re-read Files reads every file again for the new pair and fills in what its dictionary "
                       "knows; the words typed for %2 leave the document (this cannot be undone).\n\n"
                       "Change Only keeps the words and check marks as they are: check them again before you export.")
                        .arg(languageName(m_document->locLangFrom()), languageName(m_document->locLangTo()));
    alert.buttons = QStringList{tr("Re-read Files"), tr("Change Only"), tr("Cancel")};
    const int answer = dialogs().runAlert(alert);
    *reread = answer == 0;
    return answer == 0 || answer == 1;
}

void DocumentWindow::chooseLanguage(bool base, int tag)
{
    LanguageComboBox *popup = base ? m_languageFromPp : m_languageToPp;
    bool reread = false;
    if (!confirmLanguageChange(base, tag, &reread)) {
        popup->ppSelectItemWithTag(base ? m_document->locLangFrom() : m_document->locLangTo());
        m_entryEditor->focusEditor();
        return;
    }
    GatheredSheets::Scope gather(*m_sheets);
    m_entryEditor->commit();
    m_undo->setLanguage(base, tag);
    // Stopped half-way, the files are as they were: so is the pair they were made for.
    if (reread && !m_document->rereadFiles()) m_undo->undo();
    m_entryEditor->focusEditor();
}

// At the last entry of a file, the next file (in table order, wrapping) that still has an
// unchecked entry shown, at that entry. False when there is none.
bool DocumentWindow::selectNextUncheckedFile()
{
    const QList<LocFilePtr> selected = selectedFiles();
    if (selected.size() != 1) return false;
    const int start = m_fileModel->rowOfFile(selected.first().get());
    const int count = m_fileModel->rowCount();
    for (int step = 1; step < count; ++step) {
        const LocFilePtr file = m_fileModel->fileAt((start + step) % count);
        const QList<LocEntryPtr> &shown = file->entries();
        for (int row = 0; row < shown.size(); ++row) {
            if (shown.at(row)->isChecked()) continue;
            selectFileRows({(start + step) % count});
            selectEntryRow(row);
            m_entryEditor->focusEditor();
            return true;
        }
    }
    return false;
}
