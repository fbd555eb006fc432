#pragma once
// The drawer beside the document window that holds the file table, opened and closed by the
// toolbar's "Files" item. Whether it is open is remembered for the next window.

#include <QDockWidget>

class QMainWindow;

class FilesDrawer : public QDockWidget {
    Q_OBJECT
public:
    static QString openKey() { return QStringLiteral("FilesDrawerOpen"); }

    // Puts `content` in a drawer on the window's left side, open or closed as last left.
    FilesDrawer(QWidget *content, QMainWindow *window);

    bool isOpen() const { return !isHidden(); }
    // The "Files" toolbar item's action.
    void toggle();
    void setOpen(bool open);
};
