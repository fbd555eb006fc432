#include "DictEntry.h"

#include "DictSearch.h"
#include "NotificationCenter.h"
#include "StringMap.h"

#include <QHash>
#include <QSet>

void DictEntry::setKey(const OptString &key)
{
    if (StringUtility::wordsEqual(key, m_key) || (!key && !m_key)) return;
    NotificationCenter::instance().postDictEntryChanged(this);
    m_key = key;
    m_folded.reset();
}

void DictEntry::setValue(const OptString &value)
{
    if (StringUtility::wordsEqual(value, m_value) || (!value && !m_value)) return;
    NotificationCenter::instance().postDictEntryChanged(this);
    m_value = value;
    m_folded.reset();
}

const QString &DictEntry::foldedText() const
{
    if (!m_folded) {
        const QString key = DictSearch::fold(StringUtility::wordOrEmpty(m_key));
        m_foldedKeyLength = key.size();
        m_folded = key + QChar(1) + DictSearch::fold(StringUtility::wordOrEmpty(m_value));
    }
    return *m_folded;
}

namespace {
struct PairKey {
    QString key;
    QString value;
    bool operator==(const PairKey &o) const { return key == o.key && value == o.value; }
};
size_t qHash(const PairKey &p, size_t seed = 0)
{
    return qHashMulti(seed, p.key, p.value);
}
}  // namespace

namespace DictRowList {

qsizetype appendDistinct(DictRows &rows, const QList<StringMap::Pair> &pairs)
{
    QSet<PairKey> present;
    present.reserve(rows.size() + pairs.size());
    for (const DictEntryPtr &row : std::as_const(rows))
        if (row->key() && row->value()) present.insert({*row->key(), *row->value()});
    const qsizetype before = rows.size();
    rows.reserve(before + pairs.size());
    for (const StringMap::Pair &pair : pairs) {
        PairKey k{pair.first.toString(), pair.second.toString()};
        if (present.contains(k)) continue;
        rows.append(std::make_shared<DictEntry>(k.key, k.value));
        present.insert(std::move(k));
    }
    return rows.size() - before;
}

qsizetype appendDistinct(DictRows &rows, const StringMap &map)
{
    return appendDistinct(rows, QList<StringMap::Pair>(map.begin(), map.end()));
}

DictEntryPtr sameEntry(const DictEntry &row, const DictRows &rows)
{
    for (const DictEntryPtr &other : rows)
        if (StringUtility::wordsEqual(other->key(), row.key()) && StringUtility::wordsEqual(other->value(), row.value()))
            return other;
    return nullptr;
}

}  // namespace DictRowList
