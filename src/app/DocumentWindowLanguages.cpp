// DocumentWindow: the language pair changed only on purpose, and Check and Next going on past
// the end of a file.
#include "DocumentWindow.h"

#include "Dialogs.h"
#include "DocumentUndo.h"
#include "EntryEditor.h"
#include "EntryTableModel.h"
#include "FileTableModel.h"
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
// so, and a pair of one language is no pair at all.
bool DocumentWindow::confirmLanguageChange(bool base, int tag)
{
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
    alert.message = tr("The words and check marks of this document were made for %1 to %2. They stay as they are: "
                       "check them again before you export, or add the files anew for the new pair.")
                        .arg(languageName(m_document->locLangFrom()), languageName(m_document->locLangTo()));
    alert.buttons = QStringList{tr("Change Language"), tr("Cancel")};
    return dialogs().runAlert(alert) == 0;
}

void DocumentWindow::chooseLanguage(bool base, int tag)
{
    LanguageComboBox *popup = base ? m_languageFromPp : m_languageToPp;
    if (!confirmLanguageChange(base, tag)) {
        popup->ppSelectItemWithTag(base ? m_document->locLangFrom() : m_document->locLangTo());
        m_entryEditor->focusEditor();
        return;
    }
    m_undo->setLanguage(base, tag);
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
