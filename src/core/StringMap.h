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
        auto it = m_index.constFind(key);
        if (it != m_index.constEnd()) {
            m_pairs[*it].second = value;
        } else {
            m_index.insert(key, m_pairs.size());
            m_pairs.append({key, value});
        }
    }
    bool contains(const QString &key) const { return m_index.contains(key); }
    // The value, or a null QString when the key is missing.
    QString value(const QString &key) const
    {
        auto it = m_index.constFind(key);
        return it == m_index.constEnd() ? QString() : m_pairs[*it].second;
    }
    const QString *find(const QString &key) const
    {
        auto it = m_index.constFind(key);
        return it == m_index.constEnd() ? nullptr : &m_pairs[*it].second;
    }
    // Every pair of `other` inserted in its order; its values win.
    void insertAll(const StringMap &other)
    {
        for (const Pair &p : other.m_pairs) insert(p.first, p.second);
    }
    void reserve(qsizetype n)
    {
        m_pairs.reserve(n);
        m_index.reserve(n);
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
    QList<Pair> m_pairs;
    QHash<QString, qsizetype> m_index;
};
