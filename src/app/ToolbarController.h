#pragma once
// The document window's toolbar "MyToolbar": which items it shows, in which order, as the user
// arranged them. Items are made once by the window and handed out themselves, never copied; the
// platform-like items (spaces, separator, customize) are made here. The arrangement is saved in
// the settings under the toolbar's name whenever it changes, and read back by every new window.

#include <QHash>
#include <QObject>
#include <QPointer>
#include <QStringList>

class QAction;
class QMainWindow;
class QToolBar;
class QWidget;
class CustomizeToolbarDialog;

class ToolbarController : public QObject {
    Q_OBJECT
public:
    // Identifiers of the items the toolbar makes itself.
    static const QString SpaceItem;
    static const QString FlexibleSpaceItem;
    static const QString SeparatorItem;
    static const QString CustomizeItem;

    static QString toolbarName() { return QStringLiteral("MyToolbar"); }
    static QStringList defaultItemIdentifiers();
    static QStringList allowedItemIdentifiers();
    // The label shown in the toolbar and in the customize dialog's palette.
    static QString paletteLabel(const QString &identifier);

    // `items` maps each identifier to its item; `trailing` (the search field) always closes the
    // toolbar, whatever the arrangement.
    ToolbarController(QMainWindow *window, const QHash<QString, QAction *> &items, QWidget *trailing);

    QToolBar *toolbar() const { return m_toolbar; }
    QAction *itemForItemIdentifier(const QString &identifier) const { return m_items.value(identifier); }
    QStringList itemIdentifiers() const { return m_identifiers; }
    // Shows these items (unknown identifiers and repeats of a unique item dropped) and saves them.
    void setItemIdentifiers(const QStringList &identifiers);
    // The saved arrangement, or the default one.
    static QStringList savedItemIdentifiers();

    // Opens the customize dialog over the window; the arrangement changes when it is accepted.
    CustomizeToolbarDialog *runCustomizePalette();

private:
    void rebuild();
    QAction *makeStandardItem(const QString &identifier);

    QMainWindow *m_window;
    QToolBar *m_toolbar;
    QHash<QString, QAction *> m_items;
    QAction *m_trailing = nullptr;
    QStringList m_identifiers;
    QList<QAction *> m_standardItems;
    QPointer<CustomizeToolbarDialog> m_palette;  // made for the current arrangement, replaced on rebuild
};
