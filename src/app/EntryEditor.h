#pragma once
// The lower half of the document window: the selected entry's base word, the entry editor where
// the localized word is typed, its check box and the button that checks it and moves on.
// Typing marks the document changed at once; the word is written into the entry
// (setLocalizedWord) when the editor loses the focus, another entry is selected, or the document
// is saved or exported.

#include "LocEntry.h"
#include "SpellChecker.h"

#include <QWidget>

class MyDocument;
class QAction;
class QCheckBox;
class QLabel;
class QLineEdit;
class QPlainTextEdit;
class ProblemList;
class QPushButton;
class SpellHighlighter;

class EntryEditor : public QWidget {
    Q_OBJECT
public:
    EntryEditor(MyDocument *document, QWidget *parent = nullptr);
    ~EntryEditor() override;

    // Shows an entry (none: an empty, disabled editor), after committing the one shown before.
    void setEntry(const LocEntryPtr &entry);
    const LocEntryPtr &entry() const { return m_entry; }
    // Writes the edited text into the entry; true when there was an edit to write. The undo step
    // is named `actionName` ("Typing" when empty).
    bool commit(const QString &actionName = QString());
    // Replaces the word by `word` and writes it into the entry at once, an undo step of its own
    // (a pair taken from the dictionary); the editor's own undo brings back the text before.
    // Nothing when no entry is being edited.
    void insertWord(const QString &word, const QString &actionName);
    // Reads the check mark again (it may have been set elsewhere).
    void refreshCheck();
    // Gives the editor the focus with its whole text selected.
    void focusEditor();

    // Spelling in the target language; false when no dictionary is installed for it.
    bool setSpellLanguage(const QString &abbreviation, const QString &languageName);
    void setContinuousSpellCheckingEnabled(bool enabled);
    bool isContinuousSpellCheckingEnabled() const;
    QAction *spellingAction() const { return m_spellingAction; }
    const SpellHighlighter *highlighter() const { return m_highlighter; }

    QLineEdit *basewordField() const { return m_basewordField; }
    QLabel *commentLabel() const { return m_commentLabel; }
    // The previous release's base word, shown only for entries whose base text changed.
    QLineEdit *previousBaseField() const { return m_previousBaseField; }
    QPlainTextEdit *entryField() const { return m_entryField; }
    QCheckBox *checkBox() const { return m_checkBox; }
    QPushButton *finishButton() const { return m_finishButton; }
    ProblemList *problemList() const { return m_problemList; }

signals:
    void committed(const LocEntry *entry);
    // Around every change this editor makes to an entry (its word, its mark), for undo.
    void entryAboutToChange(const LocEntryPtr &entry, const QString &actionName);
    void entryChangeEnded();
    void checkAndNextRequested();
    void statusMessage(const QString &text);
    void continuousSpellCheckingChanged(bool enabled);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void showContextMenu(const QPoint &pos);
    void announceSpelling();
    void updateProblems();
    MyDocument *m_document;
    LocEntryPtr m_entry;
    bool m_dirty = false;
    bool m_loading = false;
    bool m_announcedMissing = false;
    SpellChecker m_spellChecker;
    QString m_spellLanguageName;
    QLineEdit *m_basewordField;
    QLabel *m_commentLabel;
    QLabel *m_commentCaption;
    QLineEdit *m_previousBaseField;
    class QLabel *m_previousBaseLabel;
    QPlainTextEdit *m_entryField;
    QCheckBox *m_checkBox;
    QPushButton *m_finishButton;
    QAction *m_spellingAction;
    SpellHighlighter *m_highlighter;
    ProblemList *m_problemList;
};
