#pragma once
// The application controller: registers the default settings, reads the bundle extensions, keeps
// the document windows and the preference window, and runs the document framework's
// application-wide commands (New, Open, Open Recent, Quit).

#include "DocumentWindow.h"

#include <QHash>
#include <QList>
#include <QObject>
#include <QPointer>

class DictBrowserWindow;
class Dialogs;
class PrefWinController;

class VXController : public QObject {
    Q_OBJECT
public:
    // Registers the defaults "BaseLanguage" = 1 and "TargetLanguage" = 2 before anything reads them.
    static void initialize();

    explicit VXController(QObject *parent = nullptr);
    ~VXController() override;

    void awakeFromNib();
    static bool applicationShouldOpenUntitledFile() { return true; }
    const QStringList &bundleFileTypes() const;
    QString dictionaryPathrForBase(const QString &baseKey, const QString &targetKey) const;

    // Application-wide alerts (a document that cannot be opened); Qt dialogs by default.
    void setDialogs(Dialogs *dialogs) { m_dialogs = dialogs; }
    // Panels and alerts of every window made from now on (tests); null: each window's own.
    void setWindowDialogs(Dialogs *dialogs, SavePanel *savePanel);

    // ---- The document framework
    DocumentWindow *newDocument();
    // Opens a document, or brings its window forward when it is open already. An untitled,
    // untouched, empty document is replaced by it. Null when the file could not be read.
    DocumentWindow *openDocument(const QString &path);
    void openDocumentWithPanel();
    // Closes every window (each asks about unsaved changes); true when all closed.
    bool closeAll();
    QList<DocumentWindow *> windows() const;

    // ---- Dictionary browsers: one per dictionary path, kept for the life of the process
    DictBrowserWindow *showDictBrowserForBase(const QString &baseKey, const QString &targetKey);
    DictBrowserWindow *showDictBrowserForPath(const QString &path);
    const QHash<QString, DictBrowserWindow *> &dictBrowsers() const { return m_dictBrowsers; }
    // The pair files that exist, one item each, opening their browsers.
    void fillDictionariesMenu(QMenu *menu);

    void showPreferenceWindow();
    PrefWinController *prefWinController() const;

signals:
    void quitRequested();

private:
    DocumentWindow *makeWindow(MyDocument *document);
    Dialogs &dialogs() const;

    QList<QPointer<DocumentWindow>> m_windows;
    QPointer<PrefWinController> m_prefWinController;
    QHash<QString, DictBrowserWindow *> m_dictBrowsers;
    Dialogs *m_dialogs = nullptr;
    Dialogs *m_windowDialogs = nullptr;
    SavePanel *m_windowSavePanel = nullptr;
};
