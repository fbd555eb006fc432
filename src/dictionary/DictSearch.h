#pragma once
// The three ways a dictionary's rows are looked up: the filter of the browser and of the lookup
// panel (a text contained in the key or the value, case and diacritics ignored), completion (whole
// values that start with the whole text), and similar keys for a base word (fuzzy matches).

#include "DictEntry.h"

#include <QString>

namespace DictSearch {

// Canonical decomposition, combining marks dropped, case folded: "Résumé" and "RESUME" both give
// "resume". Latin-1 text takes a table instead of the normaliser (most dictionary words).
QString fold(QStringView text);

// The rows whose key or value contains `text` once both are folded; every row for an empty text.
DictRows filter(const DictRows &rows, const QString &text);

// The same filter after another: when the new text contains the text `shown` was filtered by,
// only those rows are looked at again. `shown` must come from `all` as it is now.
DictRows narrow(const DictRows &all, const DictRows &shown, const QString &shownText, const QString &text);

// Values of all rows, in row order, that are longer than `prefix` and start with it exactly (case
// and diacritics count). Equal values of different rows are each returned.
QStringList valuesStartFromString(const DictRows &rows, const QString &prefix);

struct FuzzyMatch {
    DictEntryPtr row;
    int percent = 0;  // 100: equal once case and diacritics are folded
};
// Similarity of two folded words: 100 * (1 - edit distance / length of the longer), rounded down.
int similarity(QStringView foldedA, QStringView foldedB);
// The rows (up to `limit`) whose key is at least `minimumPercent` similar to `baseWord`, best
// first, then in row order. Rows with the same key and value count once.
QList<FuzzyMatch> fuzzyMatches(const DictRows &rows, const QString &baseWord, int limit = 5, int minimumPercent = 70);

}  // namespace DictSearch
