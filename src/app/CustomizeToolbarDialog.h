#pragma once
// Arranging the toolbar: the items it may show on the left, the items it shows on the right in
// their order. Items are added, removed and reordered with the buttons or by dragging, and
// "Restore Default" puts back the arrangement a new window has.

#include <QDialog>
#include <QStringList>

class QListWidget;
class QListWidgetItem;
class QPushButton;

class CustomizeToolbarDialog : public QDialog {
    Q_OBJECT
public:
    CustomizeToolbarDialog(const QStringList &allowed, const QStringList &defaults, const QStringList &current,
                           QWidget *parent = nullptr);

    QStringList itemIdentifiers() const;
    QListWidget *palette() const { return m_palette; }
    QListWidget *toolbarList() const { return m_toolbarList; }

    // The palette's selected items go after the toolbar list's current item (or at its end).
    void addSelected();
    void removeSelected();
    void moveSelected(int by);
    void restoreDefault();

private:
    QListWidgetItem *makeItem(const QString &identifier) const;
    void setItems(QListWidget *list, const QStringList &identifiers);
    void validateButtons();

    QStringList m_defaults;
    QListWidget *m_palette;
    QListWidget *m_toolbarList;
    QPushButton *m_add;
    QPushButton *m_remove;
    QPushButton *m_up;
    QPushButton *m_down;
};
