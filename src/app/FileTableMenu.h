#pragma once
// What the file table does beyond showing rows: its context menu (reveal the file in the file
// manager, open it with its default application, delete it from the document), a right click
// that first selects the row under the pointer, and Backspace or Delete asking to delete.

#include <QObject>
#include <functional>

class DocumentWindow;
class QAction;
class QMenu;
class QTableView;

class FileTableMenu : public QObject {
    Q_OBJECT
public:
    // The menu items' tags: enabled only while a file is selected.
    enum Tag { RevealTag = 11, OpenTag = 12, DeleteTag = 13 };

    FileTableMenu(QTableView *table, DocumentWindow *window);

    QMenu *menu() const { return m_menu; }
    QAction *itemWithTag(int tag) const;
    bool validateMenuItem(const QAction *item) const;

    void showCurrentItemWithFinder();
    void openCurrentItem();
    // How a file is opened with its default application (the desktop's, unless replaced).
    void setOpener(std::function<void(const QString &path)> opener) { m_opener = std::move(opener); }

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void selectRowUnderPointer(const QPoint &pos, Qt::KeyboardModifiers modifiers);
    void validateItems();
    QString currentPath() const;

    QTableView *m_table;
    DocumentWindow *m_window;
    QMenu *m_menu;
    std::function<void(const QString &)> m_opener;
};
