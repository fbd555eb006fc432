#include "DictWindowController.h"

#include "DictSearch.h"
#include "DictionaryFiles.h"
#include "Languages.h"
#include "LocFile.h"
#include "NotificationCenter.h"
#include "StringsFileWriter.h"
#include "StringsTable.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <QUndoStack>

namespace {

QString quoted(const QString &text)
{
    return QStringLiteral("\u201C%1\u201D").arg(text);
}

// The list before and after one change of the window or one import; the rows themselves are
// shared, so undoing gives back the very rows, with the words they hold now.
class ReplaceRows : public QUndoCommand {
public:
    ReplaceRows(DictWindowController *browser, DictRows before, DictRows after, const QString &text)
        : QUndoCommand(text), m_browser(browser), m_before(std::move(before)), m_after(std::move(after))
    {
    }
    void undo() override { m_browser->setEntriesArray(m_before); }
    void redo() override
    {
        // The change is made when the command is pushed; only a redo makes it again.
        if (m_done) m_browser->setEntriesArray(m_after);
        m_done = true;
    }

private:
    DictWindowController *m_browser;
    DictRows m_before;
    DictRows m_after;
    bool m_done = false;
};

class EditRow : public QUndoCommand {
public:
    EditRow(DictWindowController *browser, DictEntryPtr row, bool isKey, OptString after)
        : QUndoCommand(isKey ? QObject::tr("Edit Key") : QObject::tr("Edit Value")), m_browser(browser),
          m_row(std::move(row)), m_isKey(isKey), m_before(isKey ? m_row->key() : m_row->value()), m_after(std::move(after))
    {
    }
    void undo() override { set(m_before); }
    void redo() override { set(m_after); }

private:
    void set(const OptString &text)
    {
        if (m_isKey) {
            m_row->setKey(text);
        } else {
            m_row->setValue(text);
        }
        emit m_browser->rowEdited(m_row.get());
    }
    DictWindowController *m_browser;
    DictEntryPtr m_row;
    bool m_isKey;
    OptString m_before;
    OptString m_after;
};

QString asideName(const QString &path)
{
    const QString stamp = QDateTime::currentDateTime().toString(QStringLiteral("yyyyMMdd-HHmmss"));
    QString candidate = QStringLiteral("%1.unreadable-%2").arg(path, stamp);
    for (int n = 2; QFileInfo::exists(candidate); ++n) candidate = QStringLiteral("%1.unreadable-%2-%3").arg(path, stamp).arg(n);
    return candidate;
}

}  // namespace

DictWindowController::DictWindowController(const QString &path, QObject *parent)
    : QObject(parent), m_path(path), m_undoManager(new QUndoStack(this))
{
    QString error;
    if (!addDictionaryFromFile(path, &error) && QFileInfo::exists(path)) {
        m_fileUnreadable = true;
        m_loadMessage = tr("The dictionary %1 could not be read (%2). The browser starts empty; when it is saved, "
                           "the unreadable file is kept aside under another name.")
                            .arg(quoted(QFileInfo(path).fileName()), error);
    }
    setAbbreviations();
    registerMyNotifications();
}

DictWindowController::~DictWindowController()
{
    saveDictionary();
}

QStringList DictWindowController::existingDictionaryPaths()
{
    QDir folder(DictionaryFiles::dictionaryFolder());
    QStringList paths;
    for (const QString &name : folder.entryList({QStringLiteral("*.strings")}, QDir::Files, QDir::Name))
        if (DictionaryFiles::languageKeysFromFileName(name)) paths.append(folder.filePath(name));
    return paths;
}

QString DictWindowController::name() const
{
    return QFileInfo(m_path).completeBaseName();
}

QString DictWindowController::originalLanguage() const
{
    const QString n = name();
    const qsizetype dash = n.indexOf(u'-');
    return dash < 0 ? n : n.left(dash);
}

QString DictWindowController::localizeLanguage() const
{
    const QString n = name();
    const qsizetype dash = n.indexOf(u'-');
    return dash < 0 ? QString() : n.mid(dash + 1);
}

// The first record with the base key gives the base abbreviation; only another record can give
// the target's, so a pair of one language to itself has the base abbreviation only.
void DictWindowController::setAbbreviations()
{
    const QString original = originalLanguage();
    const QString localize = localizeLanguage();
    for (const LanguageRow &row : languageDictionary()) {
        if (row.key == original) m_originalLanguageShort = row.abbreviation;
        else if (row.key == localize) m_localizeLanguageShort = row.abbreviation;
    }
}

void DictWindowController::registerMyNotifications()
{
    if (m_observing) return;
    m_observing = true;
    NotificationCenter &center = NotificationCenter::instance();
    connect(&center, &NotificationCenter::dictEntryChanged, this, &DictWindowController::edit);
    connect(&center, &NotificationCenter::dictExportFileAndAddEntries, this, &DictWindowController::dictionaryModified);
    connect(&center, &NotificationCenter::dictWillExportFile, this, [this] {
        QString message;
        if (!saveDictionary(&message) || !message.isEmpty()) emit problem(message);
    });
    connect(&center, &NotificationCenter::locFileFinishReadingFile, this, &DictWindowController::finishPendingImport);
    if (QCoreApplication *app = QCoreApplication::instance())
        connect(app, &QCoreApplication::aboutToQuit, this, [this] { saveDictionary(); });
}

void DictWindowController::setEdited(bool edited)
{
    if (m_edited == edited) return;
    m_edited = edited;
    emit editedChanged(edited);
}

void DictWindowController::edit(QObject *row)
{
    // A linear look: edits come one at a time from the user, never in bulk.
    for (const DictEntryPtr &own : std::as_const(m_entries)) {
        if (own.get() == row) {
            m_shownValid = false;  // the row may match another search now
            setEdited(true);
            return;
        }
    }
}

void DictWindowController::dictionaryModified()
{
    addDictionaryFromFile(m_path);
}

bool DictWindowController::addDictionaryFromFile(const QString &path, QString *error)
{
    StringsTable::Error readError;
    const std::optional<StringMap> map = dictionaryWithContentsOfFile(path, &readError);
    if (!map) {
        if (error) {
            *error = !QFileInfo::exists(path) ? tr("no such file")
                     : readError.line > 0    ? tr("line %1: %2").arg(readError.line).arg(readError.message)
                                             : readError.message;
        }
        return false;
    }
    addDictionary(*map);
    return true;
}

qsizetype DictWindowController::addDictionary(const StringMap &map)
{
    DictRows rows = m_entries;
    const qsizetype added = DictRowList::appendDistinct(rows, map);
    setEntriesArray(rows);
    return added;
}

void DictWindowController::setEntriesArray(const DictRows &rows)
{
    m_entries = rows;
    m_shownValid = false;
    if (m_observing) setEdited(true);
    emit entriesChanged();
    search(m_searchText);
}

void DictWindowController::search(const QString &text)
{
    m_shown = m_shownValid ? DictSearch::narrow(m_entries, m_shown, m_searchText, text) : DictSearch::filter(m_entries, text);
    m_shownValid = true;
    m_searchText = text;
    emit shownEntriesChanged();
}

bool DictWindowController::saveDictionary(QString *message)
{
    if (!m_edited) return true;
    const QString fileName = QFileInfo(m_path).fileName();
    QString note;
    if (m_fileUnreadable && QFileInfo::exists(m_path) && !dictionaryWithContentsOfFile(m_path)) {
        const QString aside = asideName(m_path);
        if (!QFile::rename(m_path, aside)) {
            if (message) *message = tr("The unreadable dictionary %1 could not be kept aside, so the browser's rows "
                                       "were not written over it.").arg(quoted(fileName));
            return false;
        }
        note = tr("The unreadable dictionary %1 was kept as %2.").arg(quoted(fileName), quoted(QFileInfo(aside).fileName()));
    }
    m_fileUnreadable = false;
    QByteArray data;
    for (const DictEntryPtr &row : std::as_const(m_entries)) {
        // A row without a key means nothing to any reader: it stays in the browser only.
        if (!row->key() || row->key()->isEmpty()) continue;
        data += '"' + StringsFileWriter::escapeWord(*row->key()).toUtf8() + "\" = \"" +
                StringsFileWriter::escapeWord(StringUtility::wordOrEmpty(row->value())).toUtf8() + "\";\n";
    }
    QDir().mkpath(QFileInfo(m_path).absolutePath());
    QSaveFile file(m_path);
    if (!file.open(QIODevice::WriteOnly) || file.write(data) != data.size() || !file.commit()) {
        if (message)
            *message = (note.isEmpty() ? QString() : note + u' ') +
                       tr("The dictionary %1 could not be written (%2).").arg(quoted(fileName), file.errorString());
        return false;
    }
    if (message) *message = note;
    setEdited(false);
    return true;
}

void DictWindowController::pushReplace(const DictRows &before, const QString &text)
{
    m_undoManager->push(new ReplaceRows(this, before, m_entries, text));
}

void DictWindowController::setRowKey(const DictEntryPtr &row, const QString &key)
{
    if (row->key() && *row->key() == key) return;
    m_undoManager->push(new EditRow(this, row, true, key));
}

void DictWindowController::setRowValue(const DictEntryPtr &row, const QString &value)
{
    if (row->value() && *row->value() == value) return;
    m_undoManager->push(new EditRow(this, row, false, value));
}

DictEntryPtr DictWindowController::addRow()
{
    const DictRows before = m_entries;
    auto row = std::make_shared<DictEntry>();
    DictRows rows = m_entries;
    rows.append(row);
    setEntriesArray(rows);
    pushReplace(before, tr("Add Row"));
    return row;
}

void DictWindowController::removeRows(const DictRows &remove)
{
    if (remove.isEmpty()) return;
    QSet<const DictEntry *> gone;
    for (const DictEntryPtr &row : remove) gone.insert(row.get());
    const DictRows before = m_entries;
    DictRows rows;
    rows.reserve(m_entries.size());
    for (const DictEntryPtr &row : std::as_const(m_entries))
        if (!gone.contains(row.get())) rows.append(row);
    setEntriesArray(rows);
    pushReplace(before, remove.size() == 1 ? tr("Remove Row") : tr("Remove Rows"));
}
