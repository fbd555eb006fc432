#include "StringMap.h"

#include <QHash>

// The process's random seed, as QHash uses: a table made to collide cannot slow every reader
// down, and a seed also picks Qt's fastest string hash where the processor has one.
quint32 StringMap::hashOf(QStringView key)
{
    return quint32(qHash(key, QHashSeed::globalSeed()));
}

void StringMap::insertHashed(quint32 hash, QStringView key, QStringView value)
{
    // A text taken from this very map would move with the buffer while it is copied.
    const auto inside = [this](QStringView s) {
        return !s.isEmpty() && s.data() >= m_text.constData() && s.data() < m_text.constData() + m_text.size();
    };
    if (inside(key) || inside(value)) {
        const QString k = key.toString(), v = value.toString();
        insertHashed(hash, k, v);
        return;
    }
    Found f = lookUp(key, hash);
    if (f.index >= 0) {
        // The old value's units stay behind, unused: pairs are replaced far less than added.
        Span &span = m_spans[f.index];
        span.value = append(value);
        span.valueSize = value.size();
        return;
    }
    // At most half full, so probes stay short and a free slot always ends them.
    if (f.slot < 0 || (m_spans.size() + 1) * 2 > m_slots.size()) {
        rehash(m_spans.size() + 1);
        f = lookUp(key, hash);
    }
    const qsizetype k = append(key);
    m_slots[f.slot] = {hash, qint32(m_spans.size())};
    m_spans.append({k, append(value), key.size(), value.size()});
}

std::optional<QStringView> StringMap::find(QStringView key) const
{
    const qsizetype i = lookUp(key, hashOf(key)).index;
    if (i < 0) return std::nullopt;
    const Span &s = m_spans.at(i);
    return text(s.value, s.valueSize);
}

void StringMap::insertAll(const StringMap &other)
{
    if (isEmpty()) {
        *this = other;  // shares the other map's storage until one of them changes
        return;
    }
    reserve(size() + other.size(), m_text.size() + other.m_text.size());
    for (const Pair p : other) insert(p.first, p.second);
}

void StringMap::reserve(qsizetype pairs, qsizetype units)
{
    m_spans.reserve(pairs);
    if (units > m_text.capacity()) m_text.reserve(units);
    if (pairs * 2 > m_slots.size()) rehash(pairs);
}

bool StringMap::operator==(const StringMap &o) const
{
    if (size() != o.size()) return false;
    for (const Pair p : *this) {
        const auto v = o.find(p.first);
        if (!v || *v != p.second) return false;
    }
    return true;
}

bool StringMap::sameOrderAs(const StringMap &o) const
{
    if (size() != o.size()) return false;
    for (qsizetype i = 0; i < size(); ++i)
        if (!(at(i) == o.at(i))) return false;
    return true;
}

qsizetype StringMap::append(QStringView s)
{
    const qsizetype at = m_text.size();
    m_text.append(s);
    return at;
}

void StringMap::rehash(qsizetype n)
{
    qsizetype capacity = 16;
    while (capacity < n * 2) capacity *= 2;
    if (capacity <= m_slots.size()) return;
    QList<Slot> table(capacity);
    const qsizetype mask = capacity - 1;
    for (const Slot &old : std::as_const(m_slots)) {
        if (old.index < 0) continue;
        qsizetype s = old.hash & mask;
        while (table.at(s).index >= 0) s = (s + 1) & mask;
        table[s] = old;
    }
    m_slots = std::move(table);
}
