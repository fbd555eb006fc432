#pragma once
// The search behind a file's shown entries. The entries' texts are case-folded once into one
// buffer, kept beside the entries and patched when a text changes, so a search is one pass over
// that buffer instead of folding every text again on every keystroke.

#include "LocEntry.h"

#include <QList>
#include <string>
#include <string_view>
#include <vector>

class EntrySearch {
public:
    struct Filters {
        bool ignoreEmpty = false;      // hide entries whose base and localized words are both empty
        bool ignoreLocalized = false;  // hide checked entries
    };

    // The entries of `all`, in order, that pass the filters and whose text contains `key`,
    // letters compared by simple case folding (as StringUtility::containsCaseInsensitive does).
    // An absent or empty key matches every entry.
    QList<LocEntryPtr> search(const QList<LocEntryPtr> &all, const OptString &key, Filters filters);

    // Called by LocEntry whenever it rewrites an entry's text (its only place that does). A search
    // that saw no rewrite since the last one knows every slot still holds its entry's text.
    static void noteTextRewritten();

private:
    void rebuild(const QList<LocEntryPtr> &all);
    // Folds changed texts into their slots; false when one no longer fits and all must be rebuilt.
    bool patchChanged(bool *anyChanged);
    bool fold(qsizetype i, const QString &text);
    std::vector<qsizetype> matchesInBuffer(std::u16string_view key) const;
    bool matchesEntry(qsizetype i, std::u16string_view key) const;
    bool passes(qsizetype i, Filters filters);

    QList<LocEntryPtr> m_all;        // the list the buffer was built from (its storage stays ours)
    std::vector<QString> m_sources;  // the text each slot holds, shared, so that it stays unchanged
    std::vector<char16_t> m_folded;  // every folded text in its slot, the rest of a slot padding
    std::vector<qsizetype> m_start;  // slot i is [m_start[i], m_start[i + 1])
    std::vector<qsizetype> m_length;
    std::vector<signed char> m_empty;  // both words empty: 1, not: 0, not yet known: -1
    quint64 m_textEdits = ~quint64(0);  // the count of rewrites when the slots were last compared

    // The previous search, to narrow the next one when its text contains this one.
    std::u16string m_lastKey;
    std::vector<qsizetype> m_lastMatches;
    bool m_lastValid = false;
};
