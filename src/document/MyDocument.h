#pragma once
// The localization document: a title, a base and a target language (tags of the language table)
// and the ordered list of localizable files with their entries. This is the model the document
// window drives and the command line runs headless: adding files and bundles, export with the
// dictionary merge, the archive, the change count. Every panel and alert goes through Dialogs.
//
// Operations are grouped by concern in separate sources: MyDocument.cpp (fields, observations,
// change count), DocumentLanguages.cpp, DocumentArchive.cpp, DocumentAdd.cpp, DocumentExport.cpp.

#include "DictionaryMerge.h"
#include "LocFile.h"

#include <QObject>
#include <QSet>
#include <QStringList>

class Dialogs;

// What one export did, for the window's messages and the command line's report.
struct ExportResult {
    bool cancelled = false;   // the user cancelled the folder choice: nothing was written
    bool stopped = false;     // stopped on request after `written`; the dictionary learnt nothing
    QString folder;           // where the localized files went
    QStringList written;      // output paths found after writing, in export order
    QStringList failed;       // output paths that are missing after writing
    StringMap pairs;          // the pairs merged into the dictionary, in export order
    MergeResult merge;
};

class MyDocument : public QObject {
    Q_OBJECT
    Q_PROPERTY(QString title READ title WRITE setTitle NOTIFY titleChanged)
    Q_PROPERTY(int locLangFrom READ locLangFrom WRITE setLocLangFrom NOTIFY locLangFromChanged)
    Q_PROPERTY(int locLangTo READ locLangTo WRITE setLocLangTo NOTIFY locLangToChanged)
    Q_PROPERTY(bool loadingFiles READ loadingFiles NOTIFY loadingFilesChanged)
    Q_PROPERTY(bool documentEdited READ isDocumentEdited NOTIFY documentEditedChanged)
    Q_PROPERTY(QString filePath READ filePath NOTIFY filePathChanged)

public:
    // init: no files, the title "Title", the languages of the settings "BaseLanguage" and
    // "TargetLanguage". Observations start at once (registerMyNotifications).
    explicit MyDocument(QObject *parent = nullptr);
    ~MyDocument() override;

    // The document type: file extension (without dot), MIME type and its display name.
    static QString documentExtension();
    static QString documentMimeType();
    static QString documentTypeName();
    // The window description and frame-autosave name of the document window.
    static QString windowNibName() { return QStringLiteral("MainWindow"); }

    // ---- Fields
    const QString &title() const { return m_title; }
    void setTitle(const QString &title);
    int locLangFrom() const { return m_locLangFrom; }
    void setLocLangFrom(int tag);
    int locLangTo() const { return m_locLangTo; }
    void setLocLangTo(int tag);
    const QList<LocFilePtr> &files() const { return m_files; }
    // Replaces the list (rearranging in the file table, for instance); marks nothing.
    void setFiles(const QList<LocFilePtr> &files);
    // On while files are added or exported: the window's busy indicator.
    bool loadingFiles() const { return m_loadingFiles; }
    // Asked while files are added or exported (from a progress panel's Cancel): the work stops
    // after the file at hand. Adding then leaves the document as it was before; export keeps
    // the files already written. Cleared when the next such work starts.
    void stopLoadingFiles() { m_stopRequested = m_loadingFiles; }
    void setLoadingFiles(bool on);

    // ---- Languages (DocumentLanguages.cpp)
    static OptString languageKeyForLanguage(int tag);
    static OptString languageAbbreviationForLanguage(int tag);
    OptString baseLanguageKey() const;
    OptString baseLanguageAbbreviation() const;
    OptString baseFolderName() const;  // "<key>.lproj"; none when the tag has no row
    OptString targetLanguageKey() const;
    OptString targetLanguageAbbreviation() const;
    OptString targetFolderName() const;
    // Actions of the two language popups, run after the property has been set.
    void changeOriginalLanguage() { resetDictionaryPath(); }
    void changeTargetLanguage() { resetDictionaryPath(); }

    // ---- Dictionary of the language pair
    // Empty when either language has no row in the table (no usable name can be formed).
    QString dictionaryPath() const;
    // Emits dictionaryPathReset with the pair's path: the lookup panel re-points at it.
    void resetDictionaryPath();
    // Merges the pairs into the pair's dictionary file (notifications included).
    MergeResult saveDictionary(const StringMap &pairs);

    // ---- Archive and files on disk (DocumentArchive.cpp)
    QByteArray dataRepresentationOfType(const QString &typeName = QString());
    // False, with a sentence for the user in `error`, for bytes that are not a whole document
    // archive of a version this program reads. On failure the document is left as it was.
    bool loadDataRepresentation(const QByteArray &data, const QString &typeName = QString(), QString *error = nullptr);
    // Save / Save As: the archive written atomically; clears the change count, keeps the path.
    bool writeToFile(const QString &path, QString *error = nullptr);
    // Open: reads the archive; clears the change count, keeps the path.
    bool readFromFile(const QString &path, QString *error = nullptr);
    // Revert: reads the document's own file again.
    bool revertToSaved(QString *error = nullptr);
    const QString &filePath() const { return m_filePath; }
    // The file's name, or "Untitled" for a document never saved.
    QString displayName() const;

    // ---- Change count
    bool isDocumentEdited() const { return m_changeCount != 0; }
    // update: marks the document changed (the entry editor's text changes, switchButton, the end
    // of adding files, VXDocumentHasChanged).
    void update();
    enum ChangeType { ChangeDone, ChangeUndone, ChangeCleared };
    void updateChangeCount(ChangeType change);

    // ---- Observations and the pieces of editing the model owns
    void registerMyNotifications();
    // Reacts to an observed key: "IgnoreEmptyWords" / "IgnoreLocalizedWords" re-run the search,
    // "locLangFrom" / "locLangTo" reset the dictionary path; other keys are ignored.
    void observeValueForKeyPath(const QString &key);
    // Re-filters the shown entries of every file with this search text (kept for later re-runs).
    void search(const OptString &text);
    const OptString &searchText() const { return m_searchText; }
    // Shows only the entries whose base text changed since the previous release (they carry the
    // previous base word), within the search; re-runs the search.
    void setShowOnlyChangedBase(bool on);
    bool showsOnlyChangedBase() const { return m_onlyChangedBase; }
    qsizetype changedBaseCount() const;
    // Shows only the work left (isToDo), within the search and beside the filter above.
    void setShowOnlyToDo(bool on);
    bool showsOnlyToDo() const { return m_onlyToDo; }
    // Not yet confirmed, or still holding its base word where that word has letters to translate
    // (a word a dictionary or a previous release filled unchanged, checked without a look).
    static bool isToDo(const LocEntry &entry);
    // A search text or one of the two filters narrows the shown entries.
    bool isSearching() const;
    // The other unchecked entries of the document with this entry's base word and another word:
    // the ones its translation fits too.
    QList<LocEntryPtr> sameBaseWordEntries(const LocEntry &entry) const;
    // Gives them the entry's word, unchecked until the translator confirms each.
    void useSameTranslation(const LocEntry &entry, const QList<LocEntryPtr> &others);
    // Check box of an entry: stores the mark, marks the document changed.
    void switchButton(const LocEntryPtr &entry, bool check);
    // Checks every given entry; does not mark the document changed. The window then selects the
    // next entry.
    void checkLocalized(const QList<LocEntryPtr> &selected);
    // Files whose reading goes on after adding (the older interface tool lists them in the
    // background): saving or exporting them now would lose their entries, so both wait first.
    bool isReadingFiles() const { return !m_reading.isEmpty(); }
    // Runs the event loop until every such file has finished; false when one did not end in time.
    bool waitUntilFilesRead();
    // Removes files from the document (nothing on disk) and marks it changed.
    void removeFiles(const QList<LocFilePtr> &files);

    // The entry editor's continuous spell checking as the window last reported it; saveSpellCheck
    // stores it under "ContinuousSpellCheckingEnabled". Headless documents never report one, and
    // then saveSpellCheck stores nothing.
    void setContinuousSpellCheckingState(bool enabled) { m_spellCheck = enabled; }
    void saveSpellCheck();

    // ---- Dialogs (not owned; Dialogs::silent() until set)
    void setDialogs(Dialogs *dialogs) { m_dialogs = dialogs; }
    Dialogs &dialogs() const;

    // ---- Adding files (DocumentAdd.cpp)
    // The add-file panel (several files, acceptableFileTypes), then addFiles with the choice.
    void addNewFile();
    // Adds each path, asking once per path for its previous version and expanding bundles.
    // Returns the files added, in order.
    QList<LocFilePtr> addFiles(const QStringList &paths);
    // As addFiles, with the previous versions given instead of asked (none: no previous version).
    QList<LocFilePtr> addFiles(const QList<QPair<QString, OptString>> &pathsWithPrevious);
    // One LocFile appended to files; none (nothing added) for a type no handler serves. The new
    // list is announced by the caller (addFiles, once at its end).
    LocFilePtr addFile(const QString &path, const OptString &previousPath);
    // The previous-version panel for a file or bundle: the chosen path, or none.
    OptString selectPreviousVersionFile(const QString &path);
    // The resource files of a bundle: base folder entries paired with the previous folder's.
    QList<QPair<QString, QString>> bundleFilesWithPrevious(const QString &bundlePath, const OptString &previous);
    // One resource file of a bundle, its previous localized version, and the previous release's
    // own base file of it (empty when there is none), whose words show where the base changed.
    struct BundleFile {
        QString path;
        QString previous;
        QString previousBase;
    };
    // The files a bundle adds. With Base.lproj (and a base language other than "Base"): its
    // interface files and tables, then the base language's folder; otherwise that folder alone.
    QList<BundleFile> bundleFiles(const QString &bundlePath, const OptString &previous);
    QList<BundleFile> filesOfOneBundle(const QString &bundlePath, const OptString &previous);
    // The existing folder of the target (or base) language in a resources folder, asking through
    // the dialogs when several fit; none when none fits or the user cancelled.
    OptString languageFolderIn(const QString &resources, bool target, bool *cancelled = nullptr);
    // The target folder taken in a bundle with several for the language (--lproj on the command
    // line, or the answer to the question); used until the document closes.
    void setTargetFolderChoice(const QString &name) { m_targetFolderChoice = name; }
    const QString &targetFolderChoice() const { return m_targetFolderChoice; }
    // Entries whose base word differs from the previous release's base word for the same key get
    // that word as their previous base word and lose their check mark.
    static void markChangedBaseWords(LocFile &file, const QString &previousBasePath);
    // An interface file built from a localized and a base string table, each chosen in a panel.
    LocFilePtr readNibAndStringsFile();
    OptString selectPathAtPath(const OptString &startFolder, const QStringList &extensions, const QString &message);

    // ---- Reading again (DocumentReread.cpp)
    // Every file read again from its path for the document's language pair, filled from the
    // pair's dictionary (for a new pair: no word of the old target language stays checked). A
    // file that cannot be read keeps its entries, all unchecked, and is named in one sheet.
    // Runs like adding (progress, stop); stopped, the files are as before and it returns false.
    bool rereadFiles();

    // ---- Export (DocumentExport.cpp)
    // "Export": the files selected in the file table, in table order.
    ExportResult makeLocalizedFilesAction(const QList<LocFilePtr> &selected);
    // "ExportAll": every file.
    ExportResult makeAllLocalizedFilesAction() { return makeLocalizedFiles(m_files); }
    ExportResult makeLocalizedFiles(const QList<LocFilePtr> &files);
    // As above, into a destination chosen without a panel (the command line): a plain folder, or
    // a bundle whose target folder is found or created; an existing one is written into only
    // when `overwrite` is set, else the result is cancelled with a reason in `refusal`.
    ExportResult makeLocalizedFilesInto(const QList<LocFilePtr> &files, const QString &destination, bool overwrite,
                                        QString *refusal = nullptr);
    // The destination folder chosen in the export panel (bundles resolved, warning included), or
    // none when the user cancelled.
    // `chosenBundle`, when given, receives the bundle the user chose (empty for a plain folder).
    OptString selectLocalizedFolder(const OptString &startPath, QString *chosenBundle = nullptr);

signals:
    void titleChanged();
    void locLangFromChanged();
    void locLangToChanged();
    void filesChanged();
    void loadingFilesChanged(bool on);
    void documentEditedChanged(bool edited);
    void filePathChanged();
    // The lookup panel's dictionary file (resetDictionaryPath).
    void dictionaryPathReset(const QString &path);
    // An entry's check mark was set somewhere (LocEntryHasModified): the window refreshes the file
    // table and may hide the entry.
    void entryModified(LocEntry *entry);
    // The shown entries of the files were rebuilt (search, a filter setting changed).
    void searchPerformed();
    // Adding or exporting: `done` of `total` so far (files of the bundle being expanded, else
    // paths or exported files). Everything runs on the calling thread; a window that wants to
    // repaint meanwhile may process its pending paint events here.
    void progress(int done, int total);
    // The last file still being read has finished.
    void filesRead();
    // The file that adding or export takes up next.
    void workingOn(const QString &path);

private:
    // Builds the export destination for a chosen path: the path itself, or inside a bundle the
    // found or created language folder; `existing` tells whether a language folder was found.
    // Previous versions given (outer optional set) or asked for in the panel (unset).
    QList<LocFilePtr> addPaths(const QList<QPair<QString, std::optional<OptString>>> &paths);
    struct PreviousVersions {
        enum How { EachFile, OneFolder, None } how = EachFile;
        QString folder;
    };
    PreviousVersions askHowToFindPreviousVersions(const QList<QPair<QString, std::optional<OptString>>> &paths,
                                                  const QStringList &bundles);
    QString destinationInBundle(const QString &bundle, bool *existing, QString *existingName, bool *cancelled);
    static QStringList resourceNames(const QString &folder);
    // Tells each handler which of its files are about to be read (see PreparingHandler).
    static void prepareReading(const QStringList &paths);
    static QString firstExisting(const QStringList &paths);
    struct ExportJob {
        LocFilePtr file;
        QString folder;  // empty: there is nowhere to write it
    };
    static QList<ExportJob> sameFolder(const QList<LocFilePtr> &files, const QString &folder);
    QList<ExportJob> jobsIntoBundle(const QList<LocFilePtr> &files, const QString &bundle, const QString &appFolder,
                                    bool overwrite, QString *refusal);
    ExportResult writeLocalizedFiles(const QList<ExportJob> &jobs, const QString &folder);

    QString m_title;
    int m_locLangFrom = 1;
    int m_locLangTo = 2;
    QList<LocFilePtr> m_files;
    bool m_loadingFiles = false;
    bool m_stopRequested = false;
    int m_changeCount = 0;
    QString m_filePath;
    OptString m_searchText;
    std::optional<bool> m_spellCheck;
    Dialogs *m_dialogs = nullptr;
    QString m_targetFolderChoice;
    QSet<const LocFile *> m_reading;
    bool m_onlyChangedBase = false;
    bool m_onlyToDo = false;
};
