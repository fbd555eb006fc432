#include "SpellHighlighter.h"

#include "SpellChecker.h"

namespace {

// Letters with inner apostrophes ("l'application", "don't"), optionally glued to digits or an
// underscore, which then mark an identifier rather than a word.
const QRegularExpression &wordPattern()
{
    static const QRegularExpression pattern(QStringLiteral("[\\p{L}\\p{M}\\d_]+(?:['\u2019][\\p{L}\\p{M}]+)*"));
    return pattern;
}

bool isIgnored(const QString &text, qsizetype start, const QString &word)
{
    if (start > 0) {
        const QChar before = text.at(start - 1);
        if (before == u'%' || before == u'\\' || before == u'$') return true;  // %@, %d, \n, $ld
    }
    for (QChar c : word)
        if (c.isDigit() || c == u'_') return true;
    return false;
}

}  // namespace

SpellHighlighter::SpellHighlighter(QTextDocument *document, const SpellChecker *checker)
    : QSyntaxHighlighter(document), m_checker(checker)
{
}

void SpellHighlighter::setEnabled(bool enabled)
{
    if (enabled == m_enabled) return;
    m_enabled = enabled;
    rehighlight();
}

QList<QPair<int, int>> SpellHighlighter::misspelledRanges(const QString &text) const
{
    QList<QPair<int, int>> ranges;
    if (!m_checker || !m_checker->hasDictionary()) return ranges;
    auto it = wordPattern().globalMatch(text);
    while (it.hasNext()) {
        const QRegularExpressionMatch m = it.next();
        const QString word = m.captured();
        if (isIgnored(text, m.capturedStart(), word)) continue;
        if (!m_checker->isCorrect(word)) ranges.append({int(m.capturedStart()), int(m.capturedLength())});
    }
    return ranges;
}

void SpellHighlighter::highlightBlock(const QString &text)
{
    if (!m_enabled) return;
    QTextCharFormat format;
    format.setUnderlineStyle(QTextCharFormat::SpellCheckUnderline);
    format.setUnderlineColor(Qt::red);
    for (const auto &[start, length] : misspelledRanges(text)) setFormat(start, length, format);
}
