#pragma once
// Continuous spell checking of the entry editor: misspelled words are underlined as the user
// types. Format specifiers (%@, %1$d), escapes (\n) and words with digits are never flagged.

#include <QRegularExpression>
#include <QSyntaxHighlighter>

class SpellChecker;

class SpellHighlighter : public QSyntaxHighlighter {
    Q_OBJECT
public:
    SpellHighlighter(QTextDocument *document, const SpellChecker *checker);

    void setEnabled(bool enabled);
    bool isEnabled() const { return m_enabled; }

    // The words of a text that would be flagged, for the context menu and tests: start and length.
    QList<QPair<int, int>> misspelledRanges(const QString &text) const;

protected:
    void highlightBlock(const QString &text) override;

private:
    const SpellChecker *m_checker;
    bool m_enabled = false;
};
