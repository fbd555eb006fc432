// MyDocument: every file read again for a new language pair.
#include "MyDocument.h"

#include "Dialogs.h"
#include "LocalizedText.h"

#include <QFileInfo>

// The previous versions the files were added with belong to the old target language: the files
// are read without them, and the new pair's dictionary fills what it knows.
bool MyDocument::rereadFiles()
{
    setLoadingFiles(true);
    m_stopRequested = false;
    const QList<LocFilePtr> before = m_files;
    QStringList toRead;
    for (const LocFilePtr &file : before) toRead.append(file->path());
    prepareReading(toRead);  // as when they were added
    m_files.clear();
    QList<LocFilePtr> kept;
    int done = 0;
    for (const LocFilePtr &old : before) {
        if (m_stopRequested) break;
        emit workingOn(old->path());
        LocFilePtr file = QFileInfo::exists(old->path()) ? addFile(old->path(), std::nullopt) : nullptr;
        // A file that no longer reads (gone, or built from two tables no tool reads) keeps its
        // words, none of them confirmed for the new pair.
        const bool empty = file && file->allEntries().isEmpty() && !m_reading.contains(file.get());
        if (!file || (empty && !old->allEntries().isEmpty())) {
            if (file) m_files.removeLast();
            m_files.append(old);
            kept.append(old);
        } else {
            file->setPreviousVersionForm(old->previousVersionForm());
            m_reading.remove(old.get());
        }
        emit progress(++done, int(before.size()));
    }
    if (std::exchange(m_stopRequested, false)) {
        for (const LocFilePtr &f : std::as_const(m_files))
            if (!before.contains(f)) m_reading.remove(f.get());
        m_files = before;
        setFiles(m_files);
        setLoadingFiles(false);
        return false;
    }
    QStringList names;
    for (const LocFilePtr &old : std::as_const(kept)) {
        for (const LocEntryPtr &e : old->allEntries()) e->setCheck(false);
        names.append(old->path());
    }
    update();
    setFiles(m_files);
    setLoadingFiles(false);
    if (!names.isEmpty()) {
        Alert alert;
        alert.title = localizedString(QStringLiteral("Some files give no entries when read alone"));
        alert.message = localizedString(QStringLiteral("They keep the entries they had, all unchecked: check their words "
                                                       "for the new pair.")) + u'\n' + names.join(u'\n');
        alert.style = AlertStyle::Informational;
        dialogs().showAlertSheet(alert);
    }
    return true;
}
