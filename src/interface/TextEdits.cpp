#include "TextEdits.h"

#include <algorithm>

namespace interface {

void TextEdits::replace(qsizetype start, qsizetype end, const QByteArray &text)
{
    m_edits.push_back({start, end, text, m_edits.size()});
}

bool TextEdits::apply(const QByteArray &original, QByteArray *out) const
{
    std::vector<const Edit *> sorted;
    sorted.reserve(m_edits.size());
    for (const Edit &e : m_edits) sorted.push_back(&e);
    std::sort(sorted.begin(), sorted.end(), [](const Edit *a, const Edit *b) {
        if (a->start != b->start) return a->start < b->start;
        // An insertion before a replacement that starts at the same place.
        if ((a->start == a->end) != (b->start == b->end)) return a->start == a->end;
        return a->order < b->order;
    });
    QByteArray result;
    qsizetype grow = 0;
    for (const Edit *e : sorted) grow += e->text.size() - (e->end - e->start);
    result.reserve(original.size() + std::max<qsizetype>(grow, 0));
    qsizetype at = 0;
    for (const Edit *e : sorted) {
        if (e->start < at || e->end < e->start || e->end > original.size()) return false;
        result.append(original.constData() + at, e->start - at);
        result.append(e->text);
        at = e->end;
    }
    result.append(original.constData() + at, original.size() - at);
    *out = std::move(result);
    return true;
}

QByteArray lineIndent(const QByteArray &bytes, qsizetype position)
{
    qsizetype i = position;
    while (i > 0 && (bytes[i - 1] == ' ' || bytes[i - 1] == '\t')) --i;
    if (i > 0 && bytes[i - 1] != '\n' && bytes[i - 1] != '\r') return QByteArray();
    return bytes.mid(i, position - i);
}

void widenToLines(const QByteArray &bytes, qsizetype *start, qsizetype *end)
{
    qsizetype s = *start, e = *end;
    while (s > 0 && (bytes[s - 1] == ' ' || bytes[s - 1] == '\t')) --s;
    const bool atLineStart = s == 0 || bytes[s - 1] == '\n';
    qsizetype t = e;
    while (t < bytes.size() && (bytes[t] == ' ' || bytes[t] == '\t')) ++t;
    if (t < bytes.size() && bytes[t] == '\r') ++t;
    const bool atLineEnd = t >= bytes.size() || bytes[t] == '\n';
    if (atLineStart && atLineEnd) {
        *start = s;
        *end = t < bytes.size() ? t + 1 : t;
    }
}

}  // namespace interface
