#include "EntryEditor.h"

#include "MyDocument.h"
#include "ProblemList.h"
#include "SpellHighlighter.h"

#include <QAction>
#include <QCheckBox>
#include <QEvent>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTextBlock>
#include <QTextCursor>
#include <QVBoxLayout>

using StringUtility::wordOrEmpty;

EntryEditor::EntryEditor(MyDocument *document, QWidget *parent) : QWidget(parent), m_document(document)
{
    m_basewordField = new QLineEdit(this);
    m_basewordField->setObjectName(QStringLiteral("basewordField"));
    m_basewordField->setReadOnly(true);
    m_previousBaseField = new QLineEdit(this);
    m_previousBaseField->setObjectName(QStringLiteral("previousBaseField"));
    m_previousBaseField->setReadOnly(true);
    m_previousBaseField->setToolTip(tr("The base text of the previous release, which the old translation was made for"));
    m_previousBaseLabel = new QLabel(tr("Previous base word:"), this);
    m_entryField = new QPlainTextEdit(this);
    m_entryField->setObjectName(QStringLiteral("entryField"));
    m_entryField->setTabChangesFocus(true);
    m_entryField->setContextMenuPolicy(Qt::CustomContextMenu);
    m_entryField->installEventFilter(this);
    m_checkBox = new QCheckBox(tr("Checked"), this);
    m_checkBox->setObjectName(QStringLiteral("checkBox"));
    m_finishButton = new QPushButton(tr("Check and Next"), this);
    m_finishButton->setObjectName(QStringLiteral("finishButton"));
    m_finishButton->setToolTip(tr("Check the entry and go to the next one (Ctrl+Return)"));
    m_problemList = new ProblemList(this);

    m_highlighter = new SpellHighlighter(m_entryField->document(), &m_spellChecker);
    m_spellingAction = new QAction(tr("Check Spelling While Typing"), this);
    m_spellingAction->setCheckable(true);
    connect(m_spellingAction, &QAction::toggled, this, [this](bool on) {
        m_highlighter->setEnabled(on);
        announceSpelling();
        emit continuousSpellCheckingChanged(on);
    });

    // What the developer wrote above the pair ("Preferences -> Transfers -> Magnet tooltip"):
    // often the only hint of where a word is shown.
    m_commentLabel = new QLabel(this);
    m_commentLabel->setObjectName(QStringLiteral("developerComment"));
    m_commentLabel->setWordWrap(true);
    m_commentLabel->setTextFormat(Qt::PlainText);
    m_commentLabel->setTextInteractionFlags(Qt::TextSelectableByMouse);
    m_commentCaption = new QLabel(tr("Note:"), this);

    auto *form = new QFormLayout;
    form->addRow(tr("Base word:"), m_basewordField);
    form->addRow(m_commentCaption, m_commentLabel);
    form->addRow(m_previousBaseLabel, m_previousBaseField);
    auto *buttons = new QHBoxLayout;
    buttons->addWidget(m_checkBox);
    buttons->addStretch();
    buttons->addWidget(m_finishButton);
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addLayout(form);
    layout->addWidget(new QLabel(tr("Localized word:"), this));
    layout->addWidget(m_entryField, 1);
    layout->addWidget(m_problemList);
    layout->addLayout(buttons);

    connect(m_entryField, &QPlainTextEdit::textChanged, this, [this] {
        if (m_loading || !m_entry) return;
        // Underlining misspelt words announces a change of the text too; it is none.
        if (!m_dirty && m_entryField->toPlainText() == wordOrEmpty(m_entry->localizedWord())) return;
        m_dirty = true;
        m_document->update();  // every edit of a localized word marks the document changed
        updateProblems();
    });
    connect(m_checkBox, &QCheckBox::clicked, this, [this](bool on) {
        if (!m_entry) return;
        commit();
        emit entryAboutToChange(m_entry, tr("Check Mark"));
        m_document->switchButton(m_entry, on);
        emit entryChangeEnded();
    });
    connect(m_finishButton, &QPushButton::clicked, this, &EntryEditor::checkAndNextRequested);
    connect(m_entryField, &QWidget::customContextMenuRequested, this, &EntryEditor::showContextMenu);
    setEntry(nullptr);
}

// Deleting the focused editor sends it a focus-out: no commit may run into a closing window.
EntryEditor::~EntryEditor()
{
    m_entryField->removeEventFilter(this);
}

void EntryEditor::setEntry(const LocEntryPtr &entry)
{
    if (entry == m_entry && entry) return;
    commit();
    m_entry = entry;
    m_loading = true;
    m_basewordField->setText(entry ? wordOrEmpty(entry->baseWord()) : QString());
    const bool changedBase = entry && entry->previousBaseWord();
    m_previousBaseField->setText(changedBase ? *entry->previousBaseWord() : QString());
    m_previousBaseField->setVisible(changedBase);
    m_previousBaseLabel->setVisible(changedBase);
    m_entryField->setPlainText(entry ? wordOrEmpty(entry->localizedWord()) : QString());
    const QString comment = entry ? entry->developerComment() : QString();
    m_commentLabel->setText(comment);
    m_commentLabel->setVisible(!comment.isEmpty());
    m_commentCaption->setVisible(!comment.isEmpty());
    m_loading = false;
    m_dirty = false;
    m_entryField->setEnabled(entry != nullptr);
    m_checkBox->setEnabled(entry != nullptr);
    m_finishButton->setEnabled(entry != nullptr);
    refreshCheck();
}

bool EntryEditor::commit(const QString &actionName)
{
    if (!m_dirty || !m_entry) return false;
    m_dirty = false;
    // Typed back to the word it was: nothing to write.
    if (m_entryField->toPlainText() == wordOrEmpty(m_entry->localizedWord())) return false;
    emit entryAboutToChange(m_entry, actionName.isEmpty() ? tr("Typing") : actionName);
    m_entry->setLocalizedWord(m_entryField->toPlainText());
    emit entryChangeEnded();
    emit committed(m_entry.get());
    return true;
}

void EntryEditor::insertWord(const QString &word, const QString &actionName)
{
    if (!m_entry || !m_entryField->isEnabled() || m_entryField->isReadOnly()) return;
    commit();  // what was typed before is a step of its own
    QTextCursor cursor(m_entryField->document());
    cursor.beginEditBlock();
    cursor.select(QTextCursor::Document);
    cursor.insertText(word);
    cursor.endEditBlock();
    commit(actionName);
}

void EntryEditor::refreshCheck()
{
    m_checkBox->setChecked(m_entry && m_entry->isChecked());
    updateProblems();
}

// The text as typed, not yet written into the entry, with the check mark the entry will have.
void EntryEditor::updateProblems()
{
    if (!m_entry) {
        m_problemList->setProblems({});
        return;
    }
    const QString typed = m_entryField->toPlainText();
    const bool checked = m_entry->isChecked() || typed != wordOrEmpty(m_entry->localizedWord());
    m_problemList->setProblems(Qa::checkTypedWord(*m_entry, typed, checked));
}

void EntryEditor::focusEditor()
{
    m_entryField->setFocus(Qt::OtherFocusReason);
    m_entryField->selectAll();
}

bool EntryEditor::setSpellLanguage(const QString &abbreviation, const QString &languageName)
{
    m_spellLanguageName = languageName;
    const bool found = m_spellChecker.setLanguage(abbreviation);
    m_highlighter->rehighlight();
    announceSpelling();
    return found;
}

void EntryEditor::setContinuousSpellCheckingEnabled(bool enabled)
{
    m_spellingAction->setChecked(enabled);
}

bool EntryEditor::isContinuousSpellCheckingEnabled() const
{
    return m_spellingAction->isChecked();
}

void EntryEditor::announceSpelling()
{
    const bool missing = isContinuousSpellCheckingEnabled() && !m_spellChecker.hasDictionary();
    if (missing)
        emit statusMessage(tr("No spelling dictionary is installed for %1: spelling is not checked.")
                               .arg(m_spellLanguageName.isEmpty() ? tr("this language") : m_spellLanguageName));
    else if (m_announcedMissing)
        emit statusMessage(QString());  // the note no longer holds
    m_announcedMissing = missing;
}

bool EntryEditor::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == m_entryField && event->type() == QEvent::FocusOut) commit();
    return QWidget::eventFilter(watched, event);
}

void EntryEditor::showContextMenu(const QPoint &pos)
{
    std::unique_ptr<QMenu> menu(m_entryField->createStandardContextMenu(pos));
    QAction *first = menu->actions().value(0);
    const QTextCursor at = m_entryField->cursorForPosition(pos);
    const QString block = at.block().text();
    const int column = at.positionInBlock();
    if (m_highlighter->isEnabled()) {
        for (const auto &[start, length] : m_highlighter->misspelledRanges(block)) {
            if (column < start || column > start + length) continue;
            const QStringList words = m_spellChecker.suggestions(block.mid(start, length));
            for (const QString &word : words) {
                QAction *replace = new QAction(word, menu.get());
                connect(replace, &QAction::triggered, this, [this, at, start, length, word] {
                    QTextCursor c(at.block());
                    c.setPosition(at.block().position() + start);
                    c.setPosition(at.block().position() + start + length, QTextCursor::KeepAnchor);
                    c.insertText(word);
                });
                menu->insertAction(first, replace);
            }
            if (words.isEmpty()) {
                QAction *none = new QAction(tr("No Guesses Found"), menu.get());
                none->setEnabled(false);
                menu->insertAction(first, none);
            }
            menu->insertSeparator(first);
            break;
        }
    }
    menu->addSeparator();
    menu->addAction(m_spellingAction);
    menu->exec(m_entryField->mapToGlobal(pos));
}
