#pragma once
// A map of text to text that remembers the order in which keys were first inserted, so that
// everything written from it (string tables, dictionaries, JSON) comes out in a stable order.
//
// All the texts live in one buffer, and a pair is four numbers into it: a table of a hundred
// thousand pairs costs one growing allocation, not two hundred thousand small ones (which were
// a quarter of reading a table, and as much again to free it). Reading gives views; a caller
// that keeps a text makes its own QString.
//
// A view stays good while the map lives and nothing is inserted into it: an insert may move the
// buffer. Copies share the buffer until one of them changes.

#include <QList>
#include <QString>
#include <QStringView>

#include <iterator>
#include <optional>

class StringMap {
public:
    struct Pair {
        QStringView first;   // the key
        QStringView second;  // the value
        bool operator==(const Pair &o) const { return first == o.first && second == o.second; }
    };

    // Sets the value; a key already present keeps its place.
    void insert(QStringView key, QStringView value);

    // Fills a map the way a reader does, a pair after another, faster than insert: a large map's
    // index is far bigger than the cache, so looking a key up there waits on memory. An Appender
    // asks for the key's slot as soon as it has the pair and looks it up only a few pairs later,
    // when the slot has arrived. The pairs waiting are settled (a repeated key keeps its first
    // place and takes the last value, as with insert) by finish(), which must come before the
    // map is read.
    class Appender {
    public:
        explicit Appender(StringMap &map) : m_map(map) {}
        // For a reader that unescapes words where they stand: the map takes `text` as its
        // buffer and gives it back writable. A pair added whose texts lie in it is kept where it
        // stands, not copied; the reader must not change text it has added since.
        char16_t *adopt(QString &&text);
        void add(QStringView key, QStringView value);
        void finish();

    private:
        static constexpr int kWindow = 8;
        void settleOldest();
        StringMap &m_map;
        quint32 m_hashes[kWindow] = {};
        int m_first = 0, m_waiting = 0;
    };

    bool contains(QStringView key) const { return lookUp(key, hashOf(key)).index >= 0; }
    // The value, or a null QString when the key is missing.
    QString value(QStringView key) const
    {
        const auto v = find(key);
        return v ? v->toString() : QString();
    }
    // The value as a view (see above for how long it stays good), or nothing.
    std::optional<QStringView> find(QStringView key) const;

    // Every pair of `other` inserted in its order; its values win.
    void insertAll(const StringMap &other);
    // Room for `pairs` pairs whose texts take `units` UTF-16 units in all, and an index for
    // `keys` keys (as many as pairs when not given).
    void reserve(qsizetype pairs, qsizetype units = 0, qsizetype keys = -1);
    // Gives back the room reserved and not used.
    void squeeze()
    {
        m_text.squeeze();
        m_spans.squeeze();
    }

    qsizetype size() const { return m_spans.size(); }
    bool isEmpty() const { return m_spans.isEmpty(); }
    Pair at(qsizetype i) const
    {
        const Span &s = m_spans.at(i);
        return {text(s.key, s.keySize), text(s.value, s.valueSize)};
    }

    class const_iterator {
    public:
        using iterator_category = std::forward_iterator_tag;
        using value_type = Pair;
        using difference_type = qsizetype;
        using pointer = void;
        using reference = Pair;
        const_iterator(const StringMap *map, qsizetype i) : m_map(map), m_i(i) {}
        Pair operator*() const { return m_map->at(m_i); }
        const_iterator &operator++()
        {
            ++m_i;
            return *this;
        }
        bool operator==(const const_iterator &o) const { return m_i == o.m_i; }
        bool operator!=(const const_iterator &o) const { return m_i != o.m_i; }

    private:
        const StringMap *m_map;
        qsizetype m_i;
    };
    const_iterator begin() const { return {this, 0}; }
    const_iterator end() const { return {this, size()}; }

    // Equal as maps: the same keys with the same values, whatever the order.
    bool operator==(const StringMap &o) const;
    bool operator!=(const StringMap &o) const { return !(*this == o); }
    // The same pairs in the same order.
    bool sameOrderAs(const StringMap &o) const;

private:
    static quint32 hashOf(QStringView key);
    // Where a pair's texts lie in m_text.
    struct Span {
        qsizetype key, value;
        quint32 keySize, valueSize;  // a word of 4 G units would take 8 GB
    };
    // The index is open addressing over one flat array: no node per key, and a slot keeps the
    // key's hash so that a probe compares texts only when the hashes agree. Slots never empty
    // out again (pairs are never removed), so a probe ends at the first free slot.
    struct Slot {
        quint32 hash = 0;
        qint32 index = -1;  // into m_spans; -1: free
    };
    struct Found {
        qsizetype slot;   // where the key is, or the free slot where it would go
        qsizetype index;  // into m_spans, or -1
    };

    QStringView text(qsizetype at, qsizetype size) const { return QStringView(m_text.constData() + at, size); }
    QStringView keyAt(qsizetype i) const { return text(m_spans.at(i).key, m_spans.at(i).keySize); }
    Found lookUp(QStringView key, quint32 hash) const
    {
        if (m_slots.isEmpty()) return {-1, -1};
        const qsizetype mask = m_slots.size() - 1;
        for (qsizetype s = hash & mask;; s = (s + 1) & mask) {
            const Slot &slot = m_slots.at(s);
            if (slot.index < 0) return {s, -1};
            if (slot.hash == hash && keyAt(slot.index) == key) return {s, slot.index};
        }
    }
    bool holds(QStringView s) const
    {
        return s.data() >= m_text.constData() && s.data() + s.size() <= m_text.constData() + m_text.size();
    }
    // The pair's place: where it stands when both texts lie in m_text, else copied to its end.
    Span place(QStringView key, QStringView value);
    // Gives the pair at `i`, not yet in the index, its slot, or its value to the pair of the
    // same key before it (and removes it).
    void index(qsizetype i, quint32 hash);
    void rehash(qsizetype n);

    QString m_text;
    QList<Span> m_spans;
    QList<Slot> m_slots;
};
