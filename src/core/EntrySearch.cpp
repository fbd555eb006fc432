#include "EntrySearch.h"

#include "TextSearch.h"

#include <algorithm>
#include <atomic>
#include <cstring>
#include <string_view>

namespace {

// The same unit-by-unit folding as StringUtility's CaseInsensitiveMatcher: a text contains a key
// there exactly when the folded text contains the folded key here.
inline char16_t foldUnit(char16_t c)
{
    if (c < 128) return (c >= u'A' && c <= u'Z') ? char16_t(c + 32) : c;
    return char16_t(QChar::toCaseFolded(char32_t(c)));
}

// Slots are padded with this unit. A key without it cannot match across the end of a text, so a
// match found anywhere in the buffer lies inside one text.
constexpr char16_t kPad = 0;
// Room left after each text, so that an edited word of about the same length is patched in place.
constexpr qsizetype kSlack = 8;

std::atomic<quint64> textRewrites{0};

bool bothWordsEmpty(const LocEntry &e)
{
    return StringUtility::wordLength(e.baseWord()) == 0 && StringUtility::wordLength(e.localizedWord()) == 0;
}

}  // namespace

void EntrySearch::noteTextRewritten()
{
    textRewrites.fetch_add(1, std::memory_order_relaxed);
}

QList<LocEntryPtr> EntrySearch::search(const QList<LocEntryPtr> &all, const OptString &key, Filters filters)
{
    // Holding the list's storage means a replaced list can never reuse its address.
    if (all.constData() != m_all.constData() || all.size() != m_all.size()) {
        m_all = all;
        m_textEdits = ~quint64(0);
        m_sources.clear();
        m_folded.clear();
        m_lastValid = false;
    }
    if (m_sources.empty() && !m_all.isEmpty()) {
        m_sources.reserve(size_t(m_all.size()));
        for (const LocEntryPtr &e : std::as_const(m_all)) m_sources.push_back(e->entry());
        m_empty.assign(size_t(m_all.size()), -1);
    }

    std::u16string folded;
    if (key) {
        folded.reserve(size_t(key->size()));
        for (QChar c : *key) folded.push_back(foldUnit(c.unicode()));
    }

    // No entry's text rewritten since the last look: every slot still holds its entry's text,
    // and the pass over all entries (one cache miss each) is skipped.
    const quint64 edits = textRewrites.load(std::memory_order_relaxed);
    if (edits != m_textEdits) {
        m_textEdits = edits;
        bool anyChanged = false;
        if (!patchChanged(&anyChanged)) rebuild(m_all);
        if (anyChanged) m_lastValid = false;
    }

    std::vector<qsizetype> matches;
    const bool everything = folded.empty();
    if (!everything) {
        if (m_folded.empty() && !m_all.isEmpty()) rebuild(m_all);
        // Every text that contains the new key also contains a key it extends: only the
        // previous matches need looking at.
        const bool narrowing = m_lastValid && !m_lastKey.empty() && folded.find(m_lastKey) != std::u16string::npos;
        if (narrowing || folded.find(kPad) != std::u16string::npos) {
            if (narrowing) {
                for (qsizetype i : m_lastMatches)
                    if (matchesEntry(i, folded)) matches.push_back(i);
            } else {
                for (qsizetype i = 0; i < m_all.size(); ++i)
                    if (matchesEntry(i, folded)) matches.push_back(i);
            }
        } else {
            matches = matchesInBuffer(folded);
        }
        m_lastKey = folded;
        m_lastMatches = matches;
        m_lastValid = true;
    }

    std::vector<qsizetype> passing;
    passing.reserve(everything ? size_t(m_all.size()) : matches.size());
    if (everything) {
        for (qsizetype i = 0; i < m_all.size(); ++i)
            if (passes(i, filters)) passing.push_back(i);
    } else {
        for (qsizetype i : matches)
            if (passes(i, filters)) passing.push_back(i);
    }
    // Every entry shown: the full list itself, shared, saves copying (and later releasing) a
    // pointer per entry.
    if (qsizetype(passing.size()) == m_all.size()) return m_all;
    QList<LocEntryPtr> shown;
    shown.reserve(qsizetype(passing.size()));
    for (qsizetype i : passing) shown.append(m_all.at(i));
    return shown;
}

void EntrySearch::rebuild(const QList<LocEntryPtr> &all)
{
    const auto n = size_t(all.size());
    m_start.assign(n + 1, 0);
    m_length.assign(n, 0);
    qsizetype total = 0;
    for (size_t i = 0; i < n; ++i) {
        m_start[i] = total;
        total += m_sources[i].size() + kSlack + 1;
    }
    m_start[n] = total;
    m_folded.assign(size_t(total), kPad);
    for (size_t i = 0; i < n; ++i) fold(qsizetype(i), m_sources[i]);
    m_lastValid = false;
}

bool EntrySearch::patchChanged(bool *anyChanged)
{
    bool fits = true;
    for (qsizetype i = 0; i < m_all.size(); ++i) {
        const QString &text = m_all.at(i)->entry();
        QString &source = m_sources[size_t(i)];
        // The slot shares the text it was folded from, so that text cannot have been changed in
        // place or freed: the same storage means the same text.
        if (text.constData() == source.constData() && text.size() == source.size()) continue;
        source = text;
        m_empty[size_t(i)] = -1;
        *anyChanged = true;
        if (!m_folded.empty() && fits) fits = fold(i, text);
    }
    return fits || m_folded.empty();
}

bool EntrySearch::fold(qsizetype i, const QString &text)
{
    const qsizetype start = m_start[size_t(i)];
    // One unit of every slot stays padding, so that texts never touch.
    if (text.size() >= m_start[size_t(i) + 1] - start) return false;
    char16_t *out = m_folded.data() + start;
    const auto *in = reinterpret_cast<const char16_t *>(text.constData());
    for (qsizetype k = 0; k < text.size(); ++k) out[k] = foldUnit(in[k]);
    std::fill(out + text.size(), m_folded.data() + m_start[size_t(i) + 1], kPad);
    m_length[size_t(i)] = text.size();
    return true;
}

std::vector<qsizetype> EntrySearch::matchesInBuffer(std::u16string_view key) const
{
    std::vector<qsizetype> out;
    const auto size = qsizetype(m_folded.size());
    qsizetype at = TextSearch::find(m_folded.data(), size, key, 0);
    size_t slot = 0;
    while (at >= 0) {
        // Slots only move forward: over a whole search this walks each slot once at most.
        while (m_start[slot + 1] <= at) ++slot;
        out.push_back(qsizetype(slot));
        at = TextSearch::find(m_folded.data(), size, key, m_start[slot + 1]);  // one match is enough for a text
    }
    return out;
}

bool EntrySearch::matchesEntry(qsizetype i, std::u16string_view key) const
{
    return TextSearch::find(m_folded.data() + m_start[size_t(i)], m_length[size_t(i)], key, 0) >= 0;
}

bool EntrySearch::passes(qsizetype i, Filters filters)
{
    const LocEntry &e = *m_all.at(i);
    if (filters.ignoreLocalized && e.isChecked()) return false;
    if (!filters.ignoreEmpty) return true;
    signed char &empty = m_empty[size_t(i)];
    if (empty < 0) empty = bothWordsEmpty(e) ? 1 : 0;
    return empty == 0;
}
