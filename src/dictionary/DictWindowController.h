#pragma once
// The dictionary browser's model: every pair of one language pair's dictionary file as rows that
// the user searches, edits, fills by import and saves. One per dictionary path for the life of
// the process (the application keeps them); the window (src/app/dictionary/DictBrowserWindow)
// shows it. It saves its rows when a document is about to merge into a dictionary, when the
// application ends, after each import and when it is destroyed, and takes in the pairs a merge
// wrote to its file.
//
// Sources: DictWindowController.cpp (rows, edits, search, saving), DictImport.cpp (imports,
// TMX export, cleaning).

#include "DictEntry.h"

#include <QObject>
#include <QStringList>

class LocFile;
class QUndoStack;
class StringMap;

class DictWindowController : public QObject {
    Q_OBJECT
public:
    // initWithPath: the file's pairs become the rows before anything observes them, so a new
    // browser is not edited. A file that exists but cannot be read gives no rows and a message
    // (loadMessage); the first save keeps that file aside instead of overwriting it.
    explicit DictWindowController(const QString &path, QObject *parent = nullptr);
    // Saves unsaved rows.
    ~DictWindowController() override;

    // The pair files in the dictionary folder, sorted by name.
    static QStringList existingDictionaryPaths();

    const QString &path() const { return m_path; }
    QString name() const;               // "English-French"
    QString originalLanguage() const;   // "English"
    QString localizeLanguage() const;   // "French"
    const QString &originalLanguageShort() const { return m_originalLanguageShort; }
    const QString &localizeLanguageShort() const { return m_localizeLanguageShort; }
    const QString &loadMessage() const { return m_loadMessage; }

    const DictRows &entries() const { return m_entries; }
    bool edited() const { return m_edited; }
    void setEdited(bool edited);
    QUndoStack *undoManager() const { return m_undoManager; }

    // Reads a string table and adds its pairs (no undo step); false, with the reason, when the
    // file cannot be read.
    bool addDictionaryFromFile(const QString &path, QString *error = nullptr);
    // Adds the map's pairs that no row holds yet (same key and same value), then searches again.
    // Replaces the list even when nothing is added. Returns how many rows were added.
    qsizetype addDictionary(const StringMap &map);
    DictEntryPtr sameEntry(const DictEntry &row, const DictRows &rows) const { return DictRowList::sameEntry(row, rows); }
    // Replaces the rows (the undo action of the imports); marks the browser edited.
    void setEntriesArray(const DictRows &rows);

    // The filter of the shown rows; save, imports and duplicate checks work on all rows.
    void search(const QString &text);
    const QString &searchText() const { return m_searchText; }
    const DictRows &shownEntries() const { return m_shown; }

    // Writes every row when edited (an unreadable file kept aside first) and clears `edited`.
    // False with a message when the file could not be written; the rows stay edited then.
    bool saveDictionary(QString *message = nullptr);

    // ---- Edits of the window, each one undo step on the browser's own stack
    void setRowKey(const DictEntryPtr &row, const QString &key);
    void setRowValue(const DictEntryPtr &row, const QString &value);
    DictEntryPtr addRow();
    void removeRows(const DictRows &rows);

    // ---- Cleaning (DictImport.cpp): pairs whose value equals their key, as earlier versions
    // taught every dictionary. The count first, then the removal as one undo step.
    qsizetype identityPairCount() const;
    qsizetype removeIdentityPairs();

    // ---- Imports (DictImport.cpp)
    struct ImportReport {
        qsizetype added = 0;       // rows added by all files
        QStringList problems;      // one sentence per file that added nothing because it failed
        QStringList ignored;       // files of a type no import takes
    };
    // Each path by its extension: "strings", a bundle extension, "ad"/"lg"/"wg", "tmx"; one undo
    // step per file; then the browser is marked edited and saved.
    ImportReport importFiles(const QStringList &paths);
    // Each returns the rows added, or -1 with the reason when the file could not be read.
    qsizetype importDictionaryFromApp(const QString &bundlePath, QString *error = nullptr);
    qsizetype importDictionaryFromGlossary(const QString &path, QString *error = nullptr);
    qsizetype importDictionaryFromTmx(const QString &path, QString *error = nullptr);
    // Every row with both words as a TMX 1.4 file; false with the reason when not written.
    bool exportTmx(const QString &path, QString *error = nullptr) const;

    // The observers of the browser's State and lifecycle (called by the constructor).
    void registerMyNotifications();
    void edit(QObject *row);
    void dictionaryModified();

signals:
    void entriesChanged();
    void shownEntriesChanged();
    void rowEdited(const DictEntry *row);
    void editedChanged(bool edited);
    // A save run by a notification failed or kept a file aside: the window tells the user.
    void problem(const QString &message);

private:
    void pushReplace(const DictRows &before, const QString &text);
    void finishPendingImport(LocFile *file);
    void setAbbreviations();

    QString m_path;
    QString m_originalLanguageShort;
    QString m_localizeLanguageShort;
    QString m_loadMessage;
    bool m_fileUnreadable = false;
    DictRows m_entries;
    DictRows m_shown;
    QString m_searchText;
    bool m_shownValid = false;  // m_shown was filtered from the present rows
    bool m_edited = false;
    bool m_observing = false;
    QUndoStack *m_undoManager;
    QList<std::shared_ptr<LocFile>> m_pendingImports;
};
