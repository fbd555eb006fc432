#pragma once
// A map of text to text that remembers the order in which keys were first inserted, so that
// everything written from it (string tables, dictionaries, JSON) comes out in a stable order.

#include <QHash>
#include <QList>
#include <QPair>
#include <QString>

class StringMap {
public:
    using Pair = QPair<QString, QString>;

    // Sets the value; a key already present keeps its place.
    void insert(const QString &key, const QString &value)
    {
        const Found f = lookUp(key);
        if (f.index >= 0) m_pairs[f.index].second = value;
        else add(f.slot, f.hash, Pair(key, value));
    }
    void insert(QString &&key, QString &&value)
    {
        const Found f = lookUp(key);
        if (f.index >= 0) m_pairs[f.index].second = std::move(value);
        else add(f.slot, f.hash, Pair(std::move(key), std::move(value)));
    }
    // For a reader that meets a key before its value: the key's hash, a hint that brings the
    // index slot it starts at into the cache while the value is read, and the insert that
    // reuses the hash. On a large map that slot is a cache miss, which the value's reading hides.
    static quint32 hashOf(QStringView key) { return quint32(qHash(key, QHashSeed::globalSeed())); }
    void prefetch(quint32 hash) const
    {
#if defined(__GNUC__)
        if (!m_slots.isEmpty()) __builtin_prefetch(m_slots.constData() + (hash & (m_slots.size() - 1)));
#else
        Q_UNUSED(hash);
#endif
    }
    void insertHashed(quint32 hash, QString &&key, QString &&value)
    {
        const Found f = lookUp(key, hash);
        if (f.index >= 0) m_pairs[f.index].second = std::move(value);
        else add(f.slot, f.hash, Pair(std::move(key), std::move(value)));
    }
    bool contains(QStringView key) const { return lookUp(key).index >= 0; }
    bool contains(const QString &key) const { return contains(QStringView(key)); }
    // The value, or a null QString when the key is missing.
    QString value(QStringView key) const
    {
        const QString *v = find(key);
        return v ? *v : QString();
    }
    QString value(const QString &key) const { return value(QStringView(key)); }
    const QString *find(QStringView key) const
    {
        const qsizetype i = lookUp(key).index;
        return i >= 0 ? &m_pairs[i].second : nullptr;
    }
    const QString *find(const QString &key) const { return find(QStringView(key)); }
    // Every pair of `other` inserted in its order; its values win.
    void insertAll(const StringMap &other)
    {
        if (isEmpty()) {
            *this = other;  // shares the other map's storage until one of them changes
            return;
        }
        reserve(size() + other.size());
        for (const Pair &p : other.m_pairs) insert(p.first, p.second);
    }
    void reserve(qsizetype n)
    {
        m_pairs.reserve(n);
        if (n * 2 > m_slots.size()) rehash(n);
    }

    qsizetype size() const { return m_pairs.size(); }
    bool isEmpty() const { return m_pairs.isEmpty(); }
    const QList<Pair> &pairs() const { return m_pairs; }
    auto begin() const { return m_pairs.cbegin(); }
    auto end() const { return m_pairs.cend(); }

    // Equal as maps: the same keys with the same values, whatever the order.
    bool operator==(const StringMap &o) const
    {
        if (size() != o.size()) return false;
        for (const Pair &p : m_pairs) {
            const QString *v = o.find(p.first);
            if (!v || *v != p.second) return false;
        }
        return true;
    }
    bool operator!=(const StringMap &o) const { return !(*this == o); }

private:
    // The index is open addressing over one flat array: no node per key, and a slot keeps the
    // key's hash so that a probe compares texts only when the hashes agree. Slots never empty
    // out again (pairs are never removed), so a probe ends at the first free slot.
    struct Slot {
        quint32 hash = 0;
        qint32 index = -1;  // into m_pairs; -1: free
    };
    struct Found {
        qsizetype slot;   // where the key is, or the free slot where it would go
        qsizetype index;  // into m_pairs, or -1
        quint32 hash;
    };

    // The process's random seed, as QHash uses (hashOf): a table made to collide cannot slow
    // every reader down, and a seed also picks Qt's fastest string hash where the processor has one.
    Found lookUp(QStringView key) const { return lookUp(key, hashOf(key)); }
    Found lookUp(QStringView key, quint32 hash) const
    {
        if (m_slots.isEmpty()) return {-1, -1, hash};
        const qsizetype mask = m_slots.size() - 1;
        for (qsizetype s = hash & mask;; s = (s + 1) & mask) {
            const Slot &slot = m_slots.at(s);
            if (slot.index < 0) return {s, -1, hash};
            if (slot.hash == hash && m_pairs.at(slot.index).first == key) return {s, slot.index, hash};
        }
    }
    void add(qsizetype slot, quint32 hash, Pair &&pair)
    {
        // At most half full, so probes stay short and a free slot always ends them.
        if (slot < 0 || (m_pairs.size() + 1) * 2 > m_slots.size()) {
            rehash(m_pairs.size() + 1);
            slot = lookUp(pair.first).slot;
        }
        m_slots[slot] = {hash, qint32(m_pairs.size())};
        m_pairs.append(std::move(pair));
    }
    void rehash(qsizetype n)
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

    QList<Pair> m_pairs;
    QList<Slot> m_slots;
};
