#pragma once
// The lookup panel of a document window (a dock the user shows and hides): the pairs of the
// document's dictionary narrowed to what the translator selects or types, a search field of its
// own, the keys most similar to the current entry's base word, and completion in the entry
// editor. A double click puts a pair's localized word into the editor as one undo step.

#include <QDockWidget>

class DictController;
class DictTableModel;
class EntryEditor;
class MyDocument;
class QCompleter;
class QLineEdit;
class QStringListModel;
class QTableView;
class QTreeWidget;

class DictPanel : public QDockWidget {
    Q_OBJECT
public:
    DictPanel(MyDocument *document, EntryEditor *editor, QWidget *parent = nullptr);

    DictController *controller() const { return m_controller; }
    QLineEdit *searchField() const { return m_searchField; }
    QTableView *dictTable() const { return m_table; }
    DictTableModel *tableModel() const { return m_model; }
    QTreeWidget *similarList() const { return m_similar; }
    QCompleter *completer() const { return m_completer; }

    // Reloads from the pair's file (language change, window set-up, an export of the document).
    void setPath(const QString &path);
    // Double click on a pair: its localized word replaces the editor's text, one undo step.
    // Nothing when no entry is being edited.
    void chooseValue(const QString &value);
    void chooseTableRow(int row);

private:
    void lookupDictionaryWithSelection(QWidget *sender);
    void lookupDictionaryWithText();
    void showSimilar(const QString &baseWord);
    void offerCompletions();
    void showRows();

    MyDocument *m_document;
    EntryEditor *m_editor;
    DictController *m_controller;
    DictTableModel *m_model;
    QLineEdit *m_searchField;
    QTableView *m_table;
    QTreeWidget *m_similar;
    QCompleter *m_completer;
    QStringListModel *m_completions;
    bool m_textJustChanged = false;
    bool m_choosing = false;
};
