#include "VXController.h"

#include "DictBrowserWindow.h"
#include "DictWindowController.h"
#include "LocalizedText.h"
#include "MyDocument.h"
#include "PrefWinController.h"
#include "QtDialogs.h"
#include "RecentDocuments.h"
#include "VXControllerModel.h"

#include <QApplication>
#include <QDir>
#include <QFileInfo>
#include <QMenu>

void VXController::initialize()
{
    VXControllerModel::initialize();
}

VXController::VXController(QObject *parent) : QObject(parent)
{
    initialize();
    awakeFromNib();
}

VXController::~VXController()
{
    delete m_prefWinController;
    // Each browser saves its unsaved rows as it goes.
    qDeleteAll(m_dictBrowsers);
}

void VXController::awakeFromNib()
{
    VXControllerModel::instance().awakeFromNib();
}

const QStringList &VXController::bundleFileTypes() const
{
    return VXControllerModel::instance().bundleFileTypes();
}

QString VXController::dictionaryPathrForBase(const QString &baseKey, const QString &targetKey) const
{
    return VXControllerModel::instance().dictionaryPathrForBase(baseKey, targetKey);
}

Dialogs &VXController::dialogs() const
{
    static QtDialogs qtDialogs;
    return m_dialogs ? *m_dialogs : qtDialogs;
}

void VXController::setWindowDialogs(Dialogs *dialogs, SavePanel *savePanel)
{
    m_windowDialogs = dialogs;
    m_windowSavePanel = savePanel;
}

QList<DocumentWindow *> VXController::windows() const
{
    QList<DocumentWindow *> list;
    for (const QPointer<DocumentWindow> &w : m_windows)
        if (w) list.append(w);
    return list;
}

DocumentWindow *VXController::makeWindow(MyDocument *document)
{
    auto *window = new DocumentWindow(document);
    if (m_windowDialogs || m_windowSavePanel) window->setDialogs(m_windowDialogs, m_windowSavePanel);
    connect(window, &DocumentWindow::newDocumentRequested, this, &VXController::newDocument);
    connect(window, &DocumentWindow::openDocumentRequested, this, &VXController::openDocumentWithPanel);
    connect(window, &DocumentWindow::preferencesRequested, this, &VXController::showPreferenceWindow);
    connect(window, &DocumentWindow::quitRequested, this, &VXController::quitRequested);
    connect(window, &DocumentWindow::documentSaved, this, [](const QString &path) { RecentDocuments::note(path); });
    connect(window, &DocumentWindow::dictionaryBrowserRequested, this, &VXController::showDictBrowserForBase);
    connect(window, &DocumentWindow::dictionariesMenuAboutToShow, this, &VXController::fillDictionariesMenu);
    connect(window, &DocumentWindow::recentMenuAboutToShow, this, [this](QMenu *menu) {
        RecentDocuments::fillMenu(menu, [this](const QString &path) { openDocument(path); });
    });
    m_windows.removeAll(nullptr);
    // Cascade new windows a little, as document windows do.
    if (!m_windows.isEmpty() && m_windows.last()) window->move(m_windows.last()->pos() + QPoint(24, 24));
    m_windows.append(window);
    return window;
}

DocumentWindow *VXController::newDocument()
{
    DocumentWindow *window = makeWindow(new MyDocument);
    window->show();
    return window;
}

DocumentWindow *VXController::openDocument(const QString &path)
{
    const QString absolute = QFileInfo(path).absoluteFilePath();
    for (DocumentWindow *w : windows()) {
        if (QFileInfo(w->document()->filePath()).absoluteFilePath() == absolute && !w->document()->filePath().isEmpty()) {
            w->show();
            w->raise();
            w->activateWindow();
            return w;
        }
    }
    auto document = std::make_unique<MyDocument>();
    QString error;
    if (!document->readFromFile(absolute, &error)) {
        Alert alert;
        alert.title = localizedString(QStringLiteral("The document could not be opened."));
        alert.message = error;
        alert.style = AlertStyle::Critical;
        dialogs().runAlert(alert);
        return nullptr;
    }
    RecentDocuments::note(absolute);
    // The untouched untitled document made at start gives its place to the one opened.
    const QList<DocumentWindow *> open = windows();
    DocumentWindow *blank = nullptr;
    if (open.size() == 1 && open.first()->document()->filePath().isEmpty() && !open.first()->document()->isDocumentEdited()
        && open.first()->document()->files().isEmpty())
        blank = open.first();
    DocumentWindow *window = makeWindow(document.release());
    if (blank) {
        window->setGeometry(blank->geometry());
        blank->close();
    }
    window->show();
    return window;
}

void VXController::openDocumentWithPanel()
{
    OpenPanelOptions options;
    options.allowsMultipleSelection = true;
    options.allowedExtensions = QStringList{MyDocument::documentExtension()};
    options.startFolder = QDir::homePath();
    for (const QString &path : dialogs().runOpenPanel(options)) openDocument(path);
}

bool VXController::closeAll()
{
    for (DocumentWindow *w : windows())
        if (!w->close()) return false;
    return true;
}

PrefWinController *VXController::prefWinController() const
{
    return m_prefWinController;
}

void VXController::showPreferenceWindow()
{
    if (!m_prefWinController) m_prefWinController = new PrefWinController;
    m_prefWinController->show();
    m_prefWinController->raise();
    m_prefWinController->activateWindow();
}

DictBrowserWindow *VXController::showDictBrowserForBase(const QString &baseKey, const QString &targetKey)
{
    return showDictBrowserForPath(dictionaryPathrForBase(baseKey, targetKey));
}

DictBrowserWindow *VXController::showDictBrowserForPath(const QString &path)
{
    DictBrowserWindow *browser = m_dictBrowsers.value(path);
    if (!browser) {
        browser = new DictBrowserWindow(path);
        if (m_windowDialogs || m_windowSavePanel) browser->setDialogs(m_windowDialogs, m_windowSavePanel);
        m_dictBrowsers.insert(path, browser);
    }
    browser->show();
    browser->raise();
    browser->activateWindow();
    return browser;
}

void VXController::fillDictionariesMenu(QMenu *menu)
{
    menu->clear();
    const QStringList paths = DictWindowController::existingDictionaryPaths();
    for (const QString &path : paths)
        menu->addAction(QFileInfo(path).completeBaseName(), this, [this, path] { showDictBrowserForPath(path); });
    if (paths.isEmpty()) menu->addAction(tr("No dictionary yet"))->setEnabled(false);
}
