#pragma once
// One document window: the title field, the two language popups, the file table, the entry table
// of the selected file, the base word and the entry editor, the search field and the busy
// indicator. The window lays out and wires; the commands themselves are the document's.
//
// Sources: DocumentWindow.cpp (layout, wiring, selection), DocumentWindowCommands.cpp (toolbar,
// menus, commands), DocumentWindowFile.cpp (save, save as, revert, the close question),
// DocumentWindowLanguages.cpp (the language pair), DocumentWindowWork.cpp (finding the work,
// one translation for the same base words).

#include "LocFile.h"

#include <QHash>
#include <QSet>
#include <QMainWindow>
#include <memory>

class Dialogs;
struct ExportResult;
class DictPanel;
class DocumentUndo;
class EntryEditor;
class EntryTableModel;
class FileTableMenu;
class FileTableModel;
class FilesDrawer;
class GatheredSheets;
class LanguageComboBox;
class MyDocument;
class QLabel;
class QLineEdit;
class QMenu;
class QProgressBar;
class QTableView;
class QToolBar;
class ProgressPanel;
class QtDialogs;
class SavePanel;
class ToolbarController;

class DocumentWindow : public QMainWindow {
    Q_OBJECT
public:
    // The window owns the document.
    explicit DocumentWindow(MyDocument *document, QWidget *parent = nullptr);
    ~DocumentWindow() override;

    MyDocument *document() const { return m_document; }
    // Panels and alerts of this window and its document are answered here (not owned); the
    // window's own Qt dialogs until then.
    void setDialogs(Dialogs *dialogs, SavePanel *savePanel);

    // ---- Controls, by the names the document knows them
    QLineEdit *titleField() const { return m_titleField; }
    LanguageComboBox *languageFromPp() const { return m_languageFromPp; }
    LanguageComboBox *languageToPp() const { return m_languageToPp; }
    QTableView *fileTable() const { return m_fileTable; }
    QTableView *entryTable() const { return m_entryTable; }
    QLineEdit *searchField() const { return m_searchField; }
    EntryEditor *entryEditor() const { return m_entryEditor; }
    QProgressBar *busyIndicator() const { return m_busyIndicator; }
    FileTableModel *fileModel() const { return m_fileModel; }
    EntryTableModel *entryModel() const { return m_entryModel; }
    QToolBar *toolbar() const { return m_toolbar; }
    // The lookup panel (a dock) of the document's dictionary.
    DictPanel *dictPanel() const { return m_dictPanel; }
    // The toolbar's items by identifier ("AddFile", "Export", "ExportAll", "LanguageFrom", ...).
    QAction *toolbarItem(const QString &identifier) const { return m_toolbarItems.value(identifier); }
    ToolbarController *toolbarController() const { return m_toolbarController; }
    FilesDrawer *drawer() const { return m_drawer; }
    FileTableMenu *fileTableMenu() const { return m_fileTableMenu; }
    QAction *menuAction(const QString &name) const { return m_menuActions.value(name); }
    DocumentUndo *undo() const { return m_undo; }
    ProgressPanel *progressPanel() const { return m_progressPanel; }

    // ---- Selection
    QList<LocFilePtr> selectedFiles() const;  // in table order
    QList<LocEntryPtr> selectedEntries() const;
    LocEntryPtr currentEntry() const;
    void selectFileRows(const QList<int> &rows);
    void selectEntryRow(int row);

    // ---- Commands (DocumentWindowCommands.cpp)
    void addNewFile();
    void exportSelectedFiles();
    void exportAllFiles();
    void deleteCurrentFile();
    void selectNext();
    void selectPrevious();
    void checkLocalized();
    // The browser of the document's language pair (through the application).
    void showDictionaryBrowser();
    void readNibAndStringsFile();

    // ---- Finding the work (DocumentWindowWork.cpp)
    // The shown entry after / before the current one; past a file's end, the first / last shown
    // entry of the next / previous file that shows any, in table order, wrapping.
    void findNext();
    void findPrevious();
    // The word last committed (else the current entry's) for the other unchecked entries of the
    // document with its base word: they take it unchecked, as one undo step.
    void useSameTranslation();
    // Shown in the status bar while a committed word fits other entries: the offer to use it.
    QWidget *sameTranslationOffer() const { return m_offer; }

    // ---- The document framework (DocumentWindowFile.cpp)
    bool save();
    bool saveAs();
    bool revertDocument();
    // Asks the unsaved-changes question when the document is modified: true when the window
    // may close (saved, or changes discarded).
    bool canClose();

signals:
    void newDocumentRequested();
    void openDocumentRequested();
    void preferencesRequested();
    void quitRequested();
    void recentMenuAboutToShow(QMenu *menu);
    void documentSaved(const QString &path);
    void dictionaryBrowserRequested(const QString &baseKey, const QString &targetKey);
    void dictionariesMenuAboutToShow(QMenu *menu);

protected:
    void closeEvent(QCloseEvent *event) override;

private:
    friend class FileTableMenu;  // reveals through this window's dialogs
    void buildLayout();
    QWidget *buildFilePane();
    QWidget *buildEntryPane();
    void wireDocument();
    void wireSelection();
    void makeMyToolBarItems();
    void makeMenus();
    void validateItems();
    // What reading or writing files could not take, shown once (a sheet that does not block).
    void reportNewFileWarnings();
    void reportWarnings(const QString &title, const QStringList &warnings);
    void reportExportWarnings(const QHash<const LocFile *, qsizetype> &before);
    void updateWindowTitle();
    void updateSummary();
    void updateSpellLanguage();
    void showEntriesAgain();
    void showCurrentFile();
    void restoreFileSelection();
    void restoreEntrySelection();
    // DocumentWindowLanguages.cpp
    bool confirmLanguageChange(bool base, int tag, bool *reread);
    void chooseLanguage(bool base, int tag);
    bool selectNextUncheckedFile();
    // DocumentWindowWork.cpp
    void findStep(int step);
    QWidget *buildSameTranslationOffer();
    void offerSameTranslation(const LocEntryPtr &entry);
    void showSearchState();
    void updateSearchResult(LocEntry *entry);
    void removeCurrentEntryFromSearchResult(const LocFilePtr &file, const LocEntry *entry);
    bool writeTo(const QString &path);
    Dialogs &dialogs() const;
    SavePanel &savePanel() const;

    MyDocument *m_document;
    std::unique_ptr<QtDialogs> m_qtDialogs;
    std::unique_ptr<GatheredSheets> m_sheets;  // what the document and the commands show
    Dialogs *m_dialogs = nullptr;
    SavePanel *m_savePanel = nullptr;

    FileTableModel *m_fileModel = nullptr;
    EntryTableModel *m_entryModel = nullptr;
    QLineEdit *m_titleField = nullptr;
    LanguageComboBox *m_languageFromPp = nullptr;
    LanguageComboBox *m_languageToPp = nullptr;
    QTableView *m_fileTable = nullptr;
    QTableView *m_entryTable = nullptr;
    QLineEdit *m_searchField = nullptr;
    EntryEditor *m_entryEditor = nullptr;
    QProgressBar *m_busyIndicator = nullptr;
    QLabel *m_summary = nullptr;
    QToolBar *m_toolbar = nullptr;
    DictPanel *m_dictPanel = nullptr;
    QHash<QString, QAction *> m_toolbarItems;
    ToolbarController *m_toolbarController = nullptr;
    FilesDrawer *m_drawer = nullptr;
    FileTableMenu *m_fileTableMenu = nullptr;
    DocumentUndo *m_undo = nullptr;
    ProgressPanel *m_progressPanel = nullptr;
    QHash<QString, QAction *> m_menuActions;
    QSet<const LocFile *> m_reportedFiles;
    QWidget *m_offer = nullptr;
    QLabel *m_offerText = nullptr;
    LocEntryPtr m_offerEntry;  // whose word the offer would give

    // Kept across a rebuild of a list, to select the same objects again.
    QList<const LocFile *> m_filesBeforeReset;
    const LocFile *m_entryFileBeforeReset = nullptr;
    int m_entryRowBeforeReset = -1;
};
