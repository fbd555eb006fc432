#pragma once
// One dictionary row: a base word (key) and a localized word (value). Rows are shared: the
// browser's list, the lookup panel and the undo steps may hold the same row. A change of either
// word posts vXDictEntryChanged first, so an observer still sees the old text.

#include "StringUtility.h"

#include <QList>
#include <QObject>
#include <memory>

class DictEntry : public QObject {
    Q_OBJECT
public:
    DictEntry() = default;
    DictEntry(const QString &key, const QString &value) : m_key(key), m_value(value) {}

    const OptString &key() const { return m_key; }
    const OptString &value() const { return m_value; }
    // Post, then store, only when the text changes (a missing text differs from every text).
    void setKey(const OptString &key);
    void setValue(const OptString &value);

    // The words as the search compares them (case and diacritics folded), computed once per
    // text: the key, U+0001, the value, so that one scan looks at both.
    const QString &foldedText() const;
    QStringView foldedKey() const { return QStringView(foldedText()).left(m_foldedKeyLength); }

private:
    OptString m_key;
    OptString m_value;
    mutable OptString m_folded;
    mutable qsizetype m_foldedKeyLength = 0;
};

using DictEntryPtr = std::shared_ptr<DictEntry>;
using DictRows = QList<DictEntryPtr>;

#include "StringMap.h"

namespace DictRowList {
// Appends a row for every pair of `map`, in the map's order, unless a row with the same key and
// value is in `rows` already (including rows appended in this pass). Rows with the same key and
// another value are kept: the list holds every distinct pair. Returns how many were appended.
// Hashes the pairs present once, so adding n pairs to m rows costs O(n + m).
qsizetype appendDistinct(DictRows &rows, const QList<StringMap::Pair> &pairs);
qsizetype appendDistinct(DictRows &rows, const StringMap &map);
// The first row of `rows` whose key and value are both equal, as text, to `row`'s.
DictEntryPtr sameEntry(const DictEntry &row, const DictRows &rows);
}  // namespace DictRowList
