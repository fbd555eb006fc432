#include "DictBrowserWindow.h"

#include "DictTableModel.h"
#include "DictWindowController.h"
#include "QtDialogs.h"
#include "UiText.h"
#include "VXControllerModel.h"
#include "WindowFrame.h"

#include <QAction>
#include <QCloseEvent>
#include <QDir>
#include <QFileInfo>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QStatusBar>
#include <QTableView>
#include <QTimer>
#include <QToolBar>
#include <QUndoStack>
#include <QVBoxLayout>

namespace {
const QString frameName = QStringLiteral("DictBrowserWindow");
}

DictBrowserWindow::DictBrowserWindow(const QString &path, QWidget *parent)
    : QMainWindow(parent), m_controller(new DictWindowController(path, this)), m_model(new DictTableModel(this)),
      m_qtDialogs(new QtDialogs(this))
{
    setObjectName(frameName);
    m_dialogs = m_qtDialogs;
    m_savePanel = m_qtDialogs;

    m_searchField = new QLineEdit(this);
    m_searchField->setObjectName(QStringLiteral("searchField"));
    m_searchField->setPlaceholderText(tr("Search keys and values"));
    m_searchField->setClearButtonEnabled(true);
    connect(m_searchField, &QLineEdit::textChanged, m_controller, &DictWindowController::search);

    m_table = new QTableView(this);
    m_table->setObjectName(QStringLiteral("dictTable"));
    m_table->setModel(m_model);
    m_table->setSelectionBehavior(QAbstractItemView::SelectRows);
    m_table->verticalHeader()->hide();
    m_table->verticalHeader()->setDefaultSectionSize(m_table->fontMetrics().height() + 8);
    m_table->horizontalHeader()->setSectionResizeMode(QHeaderView::Stretch);
    m_table->setAlternatingRowColors(true);
    m_table->setShowGrid(false);
    m_table->setWordWrap(false);
    m_model->setEditor([this](const DictEntryPtr &row, int column, const QString &text) {
        if (column == DictTableModel::KeyColumn) m_controller->setRowKey(row, text);
        else m_controller->setRowValue(row, text);
    });

    auto *central = new QWidget(this);
    auto *layout = new QVBoxLayout(central);
    layout->setContentsMargins(8, 6, 8, 4);
    layout->addWidget(m_searchField);
    layout->addWidget(m_table, 1);
    setCentralWidget(central);
    m_count = new QLabel(this);
    m_count->setObjectName(QStringLiteral("rowCount"));
    statusBar()->addPermanentWidget(m_count);

    buildActions();
    connect(m_controller, &DictWindowController::shownEntriesChanged, this, &DictBrowserWindow::showRows);
    connect(m_controller, &DictWindowController::rowEdited, m_model, &DictTableModel::rowChanged);
    connect(m_controller, &DictWindowController::editedChanged, this, &DictBrowserWindow::updateTitle);
    connect(m_controller, &DictWindowController::problem, this,
            [this](const QString &message) { tell(tr("The dictionary could not be saved as it should."), message); });
    showRows();
    updateTitle();
    if (!WindowFrame::restore(this, frameName)) resize(640, 560);
    // Said once the window is up, so the user sees which dictionary it is about.
    if (!m_controller->loadMessage().isEmpty())
        QTimer::singleShot(0, this, [this] { tell(tr("The dictionary could not be read."), m_controller->loadMessage()); });
}

DictBrowserWindow::~DictBrowserWindow()
{
    if (isVisible()) WindowFrame::save(this, frameName);
    m_controller->saveDictionary();
}

QAction *DictBrowserWindow::action(const QString &name) const
{
    return m_actions.value(name);
}

void DictBrowserWindow::setDialogs(Dialogs *dialogs, SavePanel *savePanel)
{
    m_dialogs = dialogs ? dialogs : m_qtDialogs;
    m_savePanel = savePanel ? savePanel : m_qtDialogs;
}

Dialogs &DictBrowserWindow::dialogs() const
{
    return *m_dialogs;
}

void DictBrowserWindow::buildActions()
{
    auto make = [this](const QString &name, const QString &text, const QKeySequence &keys, auto slot) {
        auto *a = new QAction(text, this);
        a->setObjectName(name);
        a->setShortcut(keys);
        connect(a, &QAction::triggered, this, slot);
        m_actions.insert(name, a);
        return a;
    };
    QAction *importAction = make(QStringLiteral("Import"), tr("&Import\u2026"), QKeySequence(Qt::CTRL | Qt::Key_I), [this] { importFiles(); });
    // importStringsFile:, importApplication:, importAdFile:, and translation memories.
    make(QStringLiteral("ImportStrings"), tr("String Tables\u2026"), QKeySequence(), [this] { importFiles({QStringLiteral("strings")}); });
    make(QStringLiteral("ImportApplication"), tr("Localized Applications\u2026"), QKeySequence(),
         [this] { importFiles(VXControllerModel::instance().bundleFileTypes()); });
    make(QStringLiteral("ImportGlossary"), tr("Glossaries (.ad, .lg, .wg)\u2026"), QKeySequence(),
         [this] { importFiles({QStringLiteral("ad"), QStringLiteral("lg"), QStringLiteral("wg")}); });
    make(QStringLiteral("ImportTmx"), tr("Translation Memories (.tmx)\u2026"), QKeySequence(),
         [this] { importFiles({QStringLiteral("tmx")}); });
    importAction->setToolTip(tr("Add the pairs of string tables, localized applications, glossaries (.ad, .lg, .wg) or TMX files"));
    make(QStringLiteral("ExportTmx"), tr("&Export as TMX\u2026"), QKeySequence(), &DictBrowserWindow::exportTmx);
    make(QStringLiteral("Save"), tr("&Save"), QKeySequence::Save, &DictBrowserWindow::save);
    make(QStringLiteral("AddRow"), tr("&Add Pair"), QKeySequence(Qt::CTRL | Qt::Key_N), &DictBrowserWindow::addRow);
    make(QStringLiteral("RemoveRows"), tr("&Remove Pairs"), QKeySequence::Delete, &DictBrowserWindow::removeSelectedRows);
    make(QStringLiteral("Clean"), tr("Remove &Untranslated Pairs\u2026"), QKeySequence(), &DictBrowserWindow::cleanDictionary);
    make(QStringLiteral("Find"), tr("&Find"), QKeySequence::Find, [this] {
        m_searchField->setFocus(Qt::ShortcutFocusReason);
        m_searchField->selectAll();
    });
    make(QStringLiteral("Close"), tr("&Close"), QKeySequence::Close, &QWidget::close);
    QAction *undo = m_controller->undoManager()->createUndoAction(this, tr("&Undo"));
    undo->setShortcut(QKeySequence::Undo);
    QAction *redo = m_controller->undoManager()->createRedoAction(this, tr("&Redo"));
    redo->setShortcut(QKeySequence::Redo);
    m_actions.insert(QStringLiteral("Undo"), undo);
    m_actions.insert(QStringLiteral("Redo"), redo);
    // The table's own undo of an edit in place would bypass the browser's stack.
    undo->setShortcutContext(Qt::WindowShortcut);

    // An empty name is a separator.
    auto fill = [this](QWidget *target, std::initializer_list<const char *> names) {
        for (const char *name : names) {
            if (*name) target->addAction(action(QString::fromLatin1(name)));
            else if (auto *menu = qobject_cast<QMenu *>(target)) menu->addSeparator();
            else static_cast<QToolBar *>(target)->addSeparator();
        }
    };
    QMenu *dictionary = menuBar()->addMenu(tr("&Dictionary"));
    fill(dictionary, {"Import"});
    fill(dictionary->addMenu(tr("Import &From")), {"ImportStrings", "ImportApplication", "ImportGlossary", "ImportTmx"});
    fill(dictionary, {"ExportTmx", "", "Save", "", "Close"});
    fill(menuBar()->addMenu(tr("&Edit")), {"Undo", "Redo", "", "AddRow", "RemoveRows", "", "Clean", "", "Find"});
    QToolBar *bar = addToolBar(tr("Dictionary"));
    bar->setObjectName(QStringLiteral("DictToolbar"));
    bar->setMovable(false);
    fill(bar, {"AddRow", "RemoveRows", "", "Undo", "Redo", "", "Import", "Save"});
}

void DictBrowserWindow::showRows()
{
    m_model->setRows(m_controller->shownEntries());
    updateCount();
}

void DictBrowserWindow::updateCount()
{
    const qsizetype all = m_controller->entries().size();
    const qsizetype shown = m_controller->shownEntries().size();
    m_count->setText(shown == all ? countedText(all, tr("1 pair"), tr("%1 pairs")) : tr("%1 of %2 pairs").arg(shown).arg(all));
}

void DictBrowserWindow::updateTitle()
{
    setWindowTitle(m_controller->name() + QLatin1String("[*] \u2014 ") + tr("Dictionary"));
    setWindowModified(m_controller->edited());
}

void DictBrowserWindow::tell(const QString &title, const QString &message)
{
    Alert alert;
    alert.title = title;
    alert.message = message;
    dialogs().showAlertSheet(alert);
}

void DictBrowserWindow::importFiles(const QStringList &extensions)
{
    OpenPanelOptions options;
    options.message = tr("Choose string tables, localized applications, glossaries or TMX files to add to %1.")
                          .arg(m_controller->name());
    options.prompt = tr("Import");
    options.allowsMultipleSelection = true;
    options.bundleExtensions = VXControllerModel::instance().bundleFileTypes();
    options.allowedExtensions = !extensions.isEmpty() ? extensions
                                                      : QStringList{QStringLiteral("strings"), QStringLiteral("ad"), QStringLiteral("lg"),
                                                                    QStringLiteral("wg"), QStringLiteral("tmx")}
                                                            + options.bundleExtensions;
    options.asSheet = true;
    const QStringList paths = dialogs().runOpenPanel(options);
    if (paths.isEmpty()) return;
    const DictWindowController::ImportReport report = m_controller->importFiles(paths);
    statusBar()->showMessage(countedText(report.added, tr("1 pair added."), tr("%1 pairs added.")), 8000);
    QStringList problems = report.problems;
    for (const QString &path : report.ignored)
        problems.append(tr("%1 is not a file this browser can import.").arg(QFileInfo(path).fileName()));
    if (!problems.isEmpty()) tell(tr("Some files could not be imported."), problems.join(u'\n'));
}

void DictBrowserWindow::exportTmx()
{
    const QString suggested = QDir::home().filePath(m_controller->name() + QLatin1String(".tmx"));
    const QString path = m_savePanel->runSavePanel(tr("Export as TMX"), suggested);
    if (path.isEmpty()) return;
    QString note;
    if (!m_controller->exportTmx(path, &note)) {
        tell(tr("The translation memory could not be written."), note);
        return;
    }
    statusBar()->showMessage(tr("Exported to %1.").arg(QDir::toNativeSeparators(path)), 8000);
    if (!note.isEmpty()) tell(tr("Some pairs were left out."), note);
}

void DictBrowserWindow::cleanDictionary()
{
    const qsizetype count = m_controller->identityPairCount();
    Alert alert;
    alert.title = tr("Remove Untranslated Pairs");
    if (count == 0) {
        alert.message = tr("No pair of this dictionary has a localized word equal to its base word.");
        dialogs().runAlert(alert);
        return;
    }
    alert.message = countedText(count, tr("1 pair of %2 has a localized word equal to its base word."),
                                tr("%1 pairs of %2 have a localized word equal to their base word."))
                        .arg(m_controller->name())
                    + u' ' + tr("Remove them? You can undo this.");
    alert.buttons = QStringList{tr("Remove"), tr("Cancel")};
    if (dialogs().runAlert(alert) != 0) return;
    m_controller->removeIdentityPairs();
    statusBar()->showMessage(countedText(count, tr("1 pair removed."), tr("%1 pairs removed.")), 8000);
}

void DictBrowserWindow::addRow()
{
    // A new pair must be visible to be typed in: the search no longer applies.
    m_searchField->clear();
    const DictEntryPtr row = m_controller->addRow();
    const int at = int(m_model->rows().indexOf(row));
    if (at < 0) return;
    const QModelIndex index = m_model->index(at, DictTableModel::KeyColumn);
    m_table->setCurrentIndex(index);
    m_table->scrollTo(index);
    m_table->edit(index);
}

void DictBrowserWindow::removeSelectedRows()
{
    DictRows rows;
    for (const QModelIndex &index : m_table->selectionModel()->selectedRows())
        if (DictEntryPtr row = m_model->rowAt(index.row())) rows.append(row);
    m_controller->removeRows(rows);
}

void DictBrowserWindow::save()
{
    QString message;
    const bool saved = m_controller->saveDictionary(&message);
    if (!saved || !message.isEmpty()) tell(tr("The dictionary could not be saved as it should."), message);
    else statusBar()->showMessage(tr("Saved."), 4000);
}

void DictBrowserWindow::closeEvent(QCloseEvent *event)
{
    WindowFrame::save(this, frameName);
    hide();
    event->ignore();
}
