#pragma once
// Undo and redo for what a translator does to a document: words and check marks (one entry or
// several at once), the title, the languages and the order of files. One stack per document;
// every step done, undone or redone marks the document changed, so nothing the archive keeps is
// lost on close. Removing files cannot be undone: it empties the stack.

#include "LocFile.h"

#include <QObject>

class MyDocument;
class QAction;
class QUndoStack;

class DocumentUndo : public QObject {
    Q_OBJECT
public:
    explicit DocumentUndo(MyDocument *document, QObject *parent = nullptr);

    QUndoStack *stack() const { return m_stack; }
    // Menu items named after the step they undo or redo ("Undo Typing").
    QAction *makeUndoAction(QObject *parent);
    QAction *makeRedoAction(QObject *parent);
    void undo();
    void redo();

    // Around a change of entries: their words and marks before, then one step named `name` if
    // anything changed. Nested calls fold into the outermost.
    void beginEntryChange(const QList<LocEntryPtr> &entries, const QString &name);
    void endEntryChange();

    void setTitle(const QString &title);
    void setLanguage(bool base, int tag);

signals:
    // A step was undone or redone: what shows entries reads them again.
    void stepApplied();

private:
    void filesChanged();

    MyDocument *m_document;
    QUndoStack *m_stack;
    struct EntryState {
        LocEntryPtr entry;
        OptString word;
        bool check;
    };
    QList<EntryState> m_before;
    QString m_pendingName;
    int m_depth = 0;
    QList<LocFilePtr> m_files;  // the order last seen, to tell a reordering from the rest
    bool m_applying = false;    // the stack itself is setting the files
    friend class FileOrderStep;
};
