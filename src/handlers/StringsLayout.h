#pragma once
// A base string table seen as the translator's tools must see it: every pair where the table
// grammar puts it (quoted or unquoted words, the short form "key";, values over several lines,
// any spacing around "="), each with the comment its developer wrote just above it, and the
// places of its words in the text, so that export can replace values and keep everything else:
// comments, blank lines, order and spacing.
//
// The grammar is the one of the whole-table reader; a table that reader refuses is refused here
// too (all or nothing), because a table Foundation cannot load is no base for a translation.

#include "StringUtility.h"
#include "StringsTable.h"

#include <QList>
#include <QString>
#include <QStringView>
#include <optional>

namespace StringsLayout {

struct Span {
    qsizetype begin = 0;  // the word's first character, inside the quotes when quoted
    qsizetype end = 0;
    bool quoted = false;
};

struct Pair {
    Span key;
    Span value;             // for the short form, the key's span
    bool shortForm = false; // "key"; : the value is the key
    QString comment;        // the comment just above the key, without its markers; may be empty
    qsizetype line = 0;     // of the key, from 1
};

struct Layout {
    QList<Pair> pairs;
};

// Line ends are expected as line feeds.
std::optional<Layout> read(QStringView text, StringsTable::Error *error = nullptr);

// A word as it stands in the text, in the escaped form entries keep: a line feed written
// literally inside quotes becomes the two characters \n (the same character to the grammar).
QString escapedWord(QStringView text, const Span &span);

// The text with each pair's value replaced where `replacement` gives one (already in escaped
// form, without quotes; an index into layout.pairs to the new word or none). A replaced value is
// written quoted; a short-form pair gains " = "value"".
QString withValues(QStringView text, const Layout &layout, const QList<OptString> &replacement);

}  // namespace StringsLayout

// A word as the table grammar reads it between quotes (escapes resolved); none when the text
// cannot stand between quotes (an unescaped quote, a trailing backslash).
OptString unescapedTableWord(const QString &escaped);
