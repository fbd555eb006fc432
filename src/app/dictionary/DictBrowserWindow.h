#pragma once
// The dictionary browser window: a search field, the rows of one pair's dictionary with both
// words editable in place, adding and removing rows, Save, Undo and Redo of the browser's own
// stack, the imports (several files in one open panel), TMX export, cleaning, and a row count.
// Closing only hides it: the application keeps one per dictionary path for the life of the
// process, with its rows as they were.

#include <QMainWindow>

class DictTableModel;
class DictWindowController;
class Dialogs;
class QLabel;
class QLineEdit;
class QTableView;
class QtDialogs;
class SavePanel;

class DictBrowserWindow : public QMainWindow {
    Q_OBJECT
public:
    explicit DictBrowserWindow(const QString &path, QWidget *parent = nullptr);
    ~DictBrowserWindow() override;

    DictWindowController *controller() const { return m_controller; }
    QLineEdit *searchField() const { return m_searchField; }
    QTableView *table() const { return m_table; }
    DictTableModel *tableModel() const { return m_model; }
    QLabel *countLabel() const { return m_count; }
    QAction *action(const QString &name) const;
    // Panels and alerts (not owned); the window's own Qt dialogs while none is set.
    void setDialogs(Dialogs *dialogs, SavePanel *savePanel);

    // ---- Commands
    // The import panel, several files, offering these extensions (all importable ones when empty);
    // what each chosen file is, its extension says, whichever command opened the panel.
    void importFiles(const QStringList &extensions = {});
    void exportTmx();
    void cleanDictionary();
    void addRow();
    void removeSelectedRows();
    void save();

protected:
    void closeEvent(QCloseEvent *event) override;

private:
    void buildActions();
    void showRows();
    void updateCount();
    void updateTitle();
    void tell(const QString &title, const QString &message);
    Dialogs &dialogs() const;

    DictWindowController *m_controller;
    DictTableModel *m_model;
    QLineEdit *m_searchField;
    QTableView *m_table;
    QLabel *m_count;
    QtDialogs *m_qtDialogs;
    Dialogs *m_dialogs = nullptr;
    SavePanel *m_savePanel = nullptr;
    QHash<QString, QAction *> m_actions;
};
