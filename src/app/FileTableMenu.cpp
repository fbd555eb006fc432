#include "FileTableMenu.h"

#include "Dialogs.h"
#include "DocumentWindow.h"
#include "LocalizedText.h"

#include <QContextMenuEvent>
#include <QDesktopServices>
#include <QFileInfo>
#include <QItemSelectionModel>
#include <QKeyEvent>
#include <QMenu>
#include <QMouseEvent>
#include <QTableView>
#include <QUrl>

FileTableMenu::FileTableMenu(QTableView *table, DocumentWindow *window)
    : QObject(window), m_table(table), m_window(window), m_menu(new QMenu(table)),
      m_opener([](const QString &path) { QDesktopServices::openUrl(QUrl::fromLocalFile(path)); })
{
    const struct {
        int tag;
        QString text;
        void (FileTableMenu::*command)();
    } items[] = {
        {RevealTag, tr("Reveal in File Manager"), &FileTableMenu::showCurrentItemWithFinder},
        {OpenTag, tr("Open With Default Application"), &FileTableMenu::openCurrentItem},
    };
    for (const auto &item : items) {
        QAction *action = m_menu->addAction(item.text, this, item.command);
        action->setData(item.tag);
    }
    m_menu->addSeparator();
    QAction *remove = m_menu->addAction(localizedString(QStringLiteral("Delete")) + QStringLiteral("\u2026"), window,
                                        &DocumentWindow::deleteCurrentFile);
    remove->setData(int(DeleteTag));
    connect(m_menu, &QMenu::aboutToShow, this, &FileTableMenu::validateItems);

    table->setContextMenuPolicy(Qt::CustomContextMenu);
    connect(table, &QWidget::customContextMenuRequested, this,
            [this](const QPoint &pos) { m_menu->popup(m_table->viewport()->mapToGlobal(pos)); });
    table->installEventFilter(this);
    table->viewport()->installEventFilter(this);
    validateItems();
}

QAction *FileTableMenu::itemWithTag(int tag) const
{
    for (QAction *action : m_menu->actions())
        if (action->data().toInt() == tag) return action;
    return nullptr;
}

bool FileTableMenu::validateMenuItem(const QAction *item) const
{
    const int tag = item->data().toInt();
    if (tag >= RevealTag && tag <= DeleteTag) return m_table->selectionModel()->hasSelection();
    return true;
}

void FileTableMenu::validateItems()
{
    for (QAction *action : m_menu->actions()) action->setEnabled(validateMenuItem(action));
}

// With several files selected the first one is revealed or opened: thirty windows opened by one
// command would only be in the way.
QString FileTableMenu::currentPath() const
{
    const QList<LocFilePtr> files = m_window->selectedFiles();
    return files.isEmpty() ? QString() : files.first()->path();
}

void FileTableMenu::showCurrentItemWithFinder()
{
    const QString path = currentPath();
    if (path.isEmpty()) return;
    // The desktop's file manager opens folders; the file's own folder shows it among its siblings.
    const QFileInfo info(path);
    m_window->dialogs().revealInFileManager(info.isDir() && !info.isBundle() ? path : info.absolutePath());
}

void FileTableMenu::openCurrentItem()
{
    const QString path = currentPath();
    if (!path.isEmpty()) m_opener(path);
}

void FileTableMenu::selectRowUnderPointer(const QPoint &pos, Qt::KeyboardModifiers modifiers)
{
    const QModelIndex index = m_table->indexAt(pos);
    QItemSelectionModel *selection = m_table->selectionModel();
    if (!index.isValid() || selection->isRowSelected(index.row(), QModelIndex())) return;
    const bool extend = (modifiers & Qt::ShiftModifier) && m_table->selectionMode() == QAbstractItemView::ExtendedSelection;
    selection->setCurrentIndex(index, (extend ? QItemSelectionModel::Select : QItemSelectionModel::ClearAndSelect)
                                          | QItemSelectionModel::Rows);
}

bool FileTableMenu::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == m_table->viewport() && event->type() == QEvent::MouseButtonPress) {
        const auto *mouse = static_cast<QMouseEvent *>(event);
        if (mouse->button() == Qt::RightButton) {
            selectRowUnderPointer(mouse->position().toPoint(), mouse->modifiers());
            return true;  // the table's own handling would move the selection's anchor
        }
    }
    if (watched == m_table && event->type() == QEvent::KeyPress) {
        const int key = static_cast<QKeyEvent *>(event)->key();
        if (key == Qt::Key_Backspace || key == Qt::Key_Delete) {
            m_window->deleteCurrentFile();
            return true;
        }
    }
    return QObject::eventFilter(watched, event);
}
