#include "StringMap.h"

#include <QHash>

// The process's random seed, as QHash uses: a table made to collide cannot slow every reader
// down, and a seed also picks Qt's fastest string hash where the processor has one.
quint32 StringMap::hashOf(QStringView key)
{
    return quint32(qHash(key, QHashSeed::globalSeed()));
}

void StringMap::insert(QStringView key, QStringView value)
{
    // A text taken from this very map would move with the buffer while it is copied.
    const auto inside = [this](QStringView s) {
        return !s.isEmpty() && s.data() >= m_text.constData() && s.data() < m_text.constData() + m_text.size();
    };
    if (inside(key) || inside(value)) {
        insert(key.toString(), value.toString());
        return;
    }
    m_spans.append(append(key, value));
    index(m_spans.size() - 1, hashOf(key));
}

void StringMap::Appender::add(QStringView key, QStringView value)
{
    if (m_waiting == kWindow) settleOldest();
    const quint32 hash = hashOf(key);
#if defined(__GNUC__)
    if (!m_map.m_slots.isEmpty()) __builtin_prefetch(m_map.m_slots.constData() + (hash & (m_map.m_slots.size() - 1)));
#endif
    m_map.m_spans.append(m_map.append(key, value));
    m_hashes[(m_first + m_waiting++) % kWindow] = hash;
}

void StringMap::Appender::finish()
{
    while (m_waiting) settleOldest();
}

void StringMap::Appender::settleOldest()
{
    const quint32 hash = m_hashes[m_first];
    m_first = (m_first + 1) % kWindow;
    --m_waiting;
    // The waiting pairs are the last ones; the oldest stands just before the others.
    m_map.index(m_map.m_spans.size() - m_waiting - 1, hash);
}

void StringMap::index(qsizetype i, quint32 hash)
{
    const Span span = m_spans.at(i);
    Found f = lookUp(text(span.key, span.keySize), hash);
    if (f.index >= 0) {
        // The key's texts are equal, so the new run stands for the old pair whole. The old run
        // stays behind, unused: pairs are replaced far less than added.
        m_spans[f.index] = span;
        m_spans.remove(i);
        return;
    }
    // At most half full, so probes stay short and a free slot always ends them.
    if (f.slot < 0 || (i + 1) * 2 > m_slots.size()) {
        rehash(i + 1);
        f = lookUp(text(span.key, span.keySize), hash);
    }
    m_slots[f.slot] = {hash, qint32(i)};
}

std::optional<QStringView> StringMap::find(QStringView key) const
{
    const qsizetype i = lookUp(key, hashOf(key)).index;
    if (i < 0) return std::nullopt;
    const Span &s = m_spans.at(i);
    return text(s.key + s.keySize, s.valueSize);
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

StringMap::Span StringMap::append(QStringView key, QStringView value)
{
    const Span span{m_text.size(), key.size(), value.size()};
    m_text.append(key);
    m_text.append(value);
    return span;
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
