#include "DocumentUndo.h"

#include "MyDocument.h"

#include <QAction>
#include <QSet>
#include <utility>
#include <QUndoCommand>
#include <QUndoStack>

namespace {

enum StepId { TitleStepId = 1 };

// Words and marks of a set of entries, before and after.
class EntryStep : public QUndoCommand {
public:
    struct State {
        LocEntryPtr entry;
        OptString word;
        bool check;
    };
    EntryStep(MyDocument *document, QList<State> before, QList<State> after, const QString &name)
        : QUndoCommand(name), m_document(document), m_before(std::move(before)), m_after(std::move(after))
    {
    }
    void undo() override { apply(m_before); }
    void redo() override
    {
        if (m_done) apply(m_after);
        m_done = true;  // pushed after the change was made
    }

private:
    void apply(const QList<State> &states)
    {
        for (const State &s : states) {
            if (s.entry->localizedWord() != s.word) s.entry->setLocalizedWord(s.word);
            s.entry->setCheck(s.check);  // after the word: a new word sets its own mark
        }
        m_document->update();
    }
    MyDocument *m_document;
    QList<State> m_before, m_after;
    bool m_done = false;
};

class TitleStep : public QUndoCommand {
public:
    TitleStep(MyDocument *document, QString before, QString after)
        : QUndoCommand(QObject::tr("Title")), m_document(document), m_before(std::move(before)), m_after(std::move(after))
    {
    }
    int id() const override { return TitleStepId; }
    // Typing a title is one step, not one per letter.
    bool mergeWith(const QUndoCommand *other) override
    {
        m_after = static_cast<const TitleStep *>(other)->m_after;
        return true;
    }
    void undo() override { set(m_before); }
    void redo() override { set(m_after); }

private:
    void set(const QString &title)
    {
        m_document->setTitle(title);
        m_document->update();
    }
    MyDocument *m_document;
    QString m_before, m_after;
};

class LanguageStep : public QUndoCommand {
public:
    LanguageStep(MyDocument *document, bool base, int before, int after)
        : QUndoCommand(base ? QObject::tr("Base Language") : QObject::tr("Target Language")), m_document(document),
          m_base(base), m_before(before), m_after(after)
    {
    }
    void undo() override { set(m_before); }
    void redo() override { set(m_after); }

private:
    // The property first, then the popup's action, as a choice in the popup does.
    void set(int tag)
    {
        if (m_base) {
            m_document->setLocLangFrom(tag);
            m_document->changeOriginalLanguage();
        } else {
            m_document->setLocLangTo(tag);
            m_document->changeTargetLanguage();
        }
        m_document->update();
    }
    MyDocument *m_document;
    bool m_base;
    int m_before, m_after;
};

// Files added since keep their places at the end; files gone are left out.
QList<LocFilePtr> inOrder(const QList<LocFilePtr> &order, const QList<LocFilePtr> &current)
{
    QList<LocFilePtr> result;
    for (const LocFilePtr &f : order)
        if (current.contains(f)) result.append(f);
    for (const LocFilePtr &f : current)
        if (!result.contains(f)) result.append(f);
    return result;
}

}  // namespace

class FileOrderStep : public QUndoCommand {
public:
    FileOrderStep(DocumentUndo *undo, QList<LocFilePtr> before, QList<LocFilePtr> after)
        : QUndoCommand(QObject::tr("Move Files")), m_undo(undo), m_before(std::move(before)), m_after(std::move(after))
    {
    }
    void undo() override { set(m_before); }
    void redo() override
    {
        if (m_done) set(m_after);
        m_done = true;
    }

private:
    void set(const QList<LocFilePtr> &order)
    {
        MyDocument *document = m_undo->m_document;
        m_undo->m_applying = true;
        document->setFiles(inOrder(order, document->files()));
        m_undo->m_files = document->files();
        m_undo->m_applying = false;
        document->update();
    }
    DocumentUndo *m_undo;
    QList<LocFilePtr> m_before, m_after;
    bool m_done = false;
};

DocumentUndo::DocumentUndo(MyDocument *document, QObject *parent)
    : QObject(parent), m_document(document), m_stack(new QUndoStack(this)), m_files(document->files())
{
    connect(document, &MyDocument::filesChanged, this, &DocumentUndo::filesChanged);
}

namespace {
QAction *stepAction(QObject *parent, const QString &name, QUndoStack *stack, bool undo)
{
    auto *action = new QAction(name, parent);
    auto follow = [action, name, stack, undo] {
        const QString step = undo ? stack->undoText() : stack->redoText();
        action->setText(step.isEmpty() ? name : QObject::tr("%1 %2").arg(name, step));
        action->setEnabled(undo ? stack->canUndo() : stack->canRedo());
    };
    QObject::connect(stack, &QUndoStack::indexChanged, action, follow);
    QObject::connect(stack, &QUndoStack::cleanChanged, action, follow);
    follow();
    return action;
}
}  // namespace

QAction *DocumentUndo::makeUndoAction(QObject *parent)
{
    QAction *action = stepAction(parent, tr("&Undo"), m_stack, true);
    connect(action, &QAction::triggered, this, &DocumentUndo::undo);
    return action;
}

QAction *DocumentUndo::makeRedoAction(QObject *parent)
{
    QAction *action = stepAction(parent, tr("&Redo"), m_stack, false);
    connect(action, &QAction::triggered, this, &DocumentUndo::redo);
    return action;
}

void DocumentUndo::undo()
{
    if (!m_stack->canUndo()) return;
    m_stack->undo();
    emit stepApplied();
}

void DocumentUndo::redo()
{
    if (!m_stack->canRedo()) return;
    m_stack->redo();
    emit stepApplied();
}

void DocumentUndo::beginEntryChange(const QList<LocEntryPtr> &entries, const QString &name)
{
    if (m_depth++ > 0) return;
    m_before.clear();
    m_pendingName = name;
    for (const LocEntryPtr &e : entries)
        if (e) m_before.append({e, e->localizedWord(), e->isChecked()});
}

void DocumentUndo::endEntryChange()
{
    if (m_depth == 0 || --m_depth > 0) return;
    QList<EntryStep::State> before, after;
    for (const EntryState &s : std::as_const(m_before)) {
        if (s.entry->localizedWord() == s.word && s.entry->isChecked() == s.check) continue;
        before.append({s.entry, s.word, s.check});
        after.append({s.entry, s.entry->localizedWord(), s.entry->isChecked()});
    }
    m_before.clear();
    if (before.isEmpty()) return;
    m_document->update();
    m_stack->push(new EntryStep(m_document, before, after, m_pendingName));
}

void DocumentUndo::setTitle(const QString &title)
{
    if (title == m_document->title()) return;
    m_stack->push(new TitleStep(m_document, m_document->title(), title));
}

void DocumentUndo::setLanguage(bool base, int tag)
{
    const int current = base ? m_document->locLangFrom() : m_document->locLangTo();
    if (tag == current) return;
    m_stack->push(new LanguageStep(m_document, base, current, tag));
}

// The same files in another order is a step of its own; files removed take every step with
// them (there is no undo for deleting), files added leave the steps as they are.
void DocumentUndo::filesChanged()
{
    const QList<LocFilePtr> now = m_document->files();
    const QList<LocFilePtr> before = std::exchange(m_files, now);
    if (m_applying) return;
    QSet<const LocFile *> kept;
    for (const LocFilePtr &f : now) kept.insert(f.get());
    for (const LocFilePtr &f : before)
        if (!kept.contains(f.get())) {
            m_stack->clear();
            return;
        }
    if (before.size() == now.size() && before != now) {
        m_document->update();
        m_stack->push(new FileOrderStep(this, before, now));
    }
}
