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
    if ((!key.isEmpty() && holds(key)) || (!value.isEmpty() && holds(value))) {
        insert(key.toString(), value.toString());
        return;
    }
    m_spans.append(place(key, value));
    index(m_spans.size() - 1, hashOf(key));
}

void StringMap::Appender::add(QStringView key, QStringView value)
{
    if (m_waiting == kWindow) settleOldest();
    const quint32 hash = hashOf(key);
#if defined(__GNUC__)
    if (!m_map.m_slots.isEmpty()) __builtin_prefetch(m_map.m_slots.constData() + (hash & (m_map.m_slots.size() - 1)));
#endif
    m_map.m_spans.append(m_map.place(key, value));
    m_hashes[(m_first + m_waiting++) % kWindow] = hash;
}

char16_t *StringMap::Appender::adopt(QString &&text)
{
    m_map.m_text = std::move(text);
    return reinterpret_cast<char16_t *>(m_map.m_text.data());
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
        // The old value's units stay behind, unused: pairs are replaced far less than added.
        m_spans[f.index].value = span.value;
        m_spans[f.index].valueSize = span.valueSize;
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

void StringMap::reserve(qsizetype pairs, qsizetype units, qsizetype keys)
{
    m_spans.reserve(pairs);
    if (units > m_text.capacity()) m_text.reserve(units);
    if (keys < 0) keys = pairs;
    if (keys * 2 > m_slots.size()) rehash(keys);
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

StringMap::Span StringMap::place(QStringView key, QStringView value)
{
    if (holds(key) && holds(value)) {
        const QChar *base = m_text.constData();
        return {key.data() - base, value.data() - base, quint32(key.size()), quint32(value.size())};
    }
    const Span span{m_text.size(), m_text.size() + key.size(), quint32(key.size()), quint32(value.size())};
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
