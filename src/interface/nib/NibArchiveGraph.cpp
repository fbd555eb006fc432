#include "NibArchiveGraph.h"

namespace interface::nib {
namespace {
const QString ElementKey = QStringLiteral("UINibEncoderEmptyKey");
const QString BytesKey = QStringLiteral("NS.bytes");
}  // namespace

NibArchiveGraph::NibArchiveGraph(NibArchive archive) : m_archive(std::move(archive))
{
    for (qsizetype i = 0; i < m_archive.keys.size(); ++i) {
        const QString key = QString::fromUtf8(m_archive.keys[i]);
        m_keyNames.append(key);
        if (!m_keyIndex.contains(key)) m_keyIndex.insert(key, quint32(i));
    }
    for (const NibClass &k : m_archive.classes) {
        QStringList chain{QString::fromUtf8(k.name)};
        for (qint32 f : k.fallbacks) chain.append(QString::fromUtf8(m_archive.classes[f].name));
        m_classChains.append(chain);
    }
}

qsizetype NibArchiveGraph::firstValue(int object, const QString &key) const
{
    if (object < 0 || object >= objectCount()) return -1;
    const auto k = m_keyIndex.constFind(key);
    if (k == m_keyIndex.constEnd()) return -1;
    const NibObject &o = m_archive.objects[object];
    for (quint32 i = 0; i < o.valueCount; ++i)
        if (m_archive.values[o.firstValue + i].key == *k) return o.firstValue + i;
    return -1;
}

const QList<quint32> &NibArchiveGraph::positions(int object, quint32 key) const
{
    const quint64 id = (quint64(quint32(object)) << 32) | key;
    auto it = m_positions.constFind(id);
    if (it != m_positions.constEnd()) return *it;
    QList<quint32> list;
    const NibObject &o = m_archive.objects[object];
    for (quint32 i = 0; i < o.valueCount; ++i)
        if (m_archive.values[o.firstValue + i].key == key) list.append(o.firstValue + i);
    return *m_positions.insert(id, list);
}

qsizetype NibArchiveGraph::valueIndex(const Slot &slot) const
{
    if (slot.occurrence < 0) return firstValue(slot.holder, slot.key);
    if (slot.holder < 0 || slot.holder >= objectCount()) return -1;
    const auto k = m_keyIndex.constFind(slot.key);
    if (k == m_keyIndex.constEnd()) return -1;
    const QList<quint32> &at = positions(slot.holder, *k);
    return slot.occurrence < at.size() ? qsizetype(at[slot.occurrence]) : -1;
}

std::optional<int> NibArchiveGraph::objectData() const
{
    // The root object (index 0) refers to NSIBObjectData; look further only for odd archives.
    if (const auto od = reference(0, QStringLiteral("IB.objectdata"))) return od;
    for (int i = 0; i < objectCount(); ++i)
        if (m_archive.classes[m_archive.objects[i].classIndex].name == "NSIBObjectData") return i;
    return std::nullopt;
}

QStringList NibArchiveGraph::classChain(int object) const
{
    if (object < 0 || object >= objectCount()) return {};
    return m_classChains[m_archive.objects[object].classIndex];
}

std::optional<int> NibArchiveGraph::target(const Slot &slot) const
{
    const qsizetype i = valueIndex(slot);
    if (i < 0 || !m_archive.values[i].isObject()) return std::nullopt;
    return int(m_archive.values[i].objectIndex());
}

bool NibArchiveGraph::isStringClass(int object) const
{
    if (object < 0 || object >= objectCount()) return false;
    const QByteArray &name = m_archive.classes[m_archive.objects[object].classIndex].name;
    return name == "NSString" || name == "NSMutableString" || name == "NSLocalizableString";
}

std::optional<QString> NibArchiveGraph::text(int object) const
{
    if (!isStringClass(object)) return std::nullopt;
    const qsizetype i = firstValue(object, BytesKey);
    if (i < 0 || m_archive.values[i].type != NibValue::Data) return std::nullopt;
    return QString::fromUtf8(m_archive.values[i].data);
}

std::optional<qint64> NibArchiveGraph::number(int object) const
{
    if (classChain(object).value(0) != QLatin1String("NSNumber")) return std::nullopt;
    return inlineInteger(object, QStringLiteral("NS.intval"));
}

std::optional<qint64> NibArchiveGraph::inlineInteger(int object, const QString &key) const
{
    const qsizetype i = firstValue(object, key);
    if (i < 0) return std::nullopt;
    return m_archive.values[i].integer();
}

QList<Slot> NibArchiveGraph::elementSlots(int object) const
{
    QList<Slot> places;
    if (object < 0 || object >= objectCount()) return places;
    const auto k = m_keyIndex.constFind(ElementKey);
    if (k == m_keyIndex.constEnd()) return places;
    const qsizetype n = positions(object, *k).size();
    places.reserve(n);
    for (int i = 0; i < n; ++i) places.append({object, ElementKey, i});
    return places;
}

QList<QPair<Slot, Slot>> NibArchiveGraph::dictionarySlots(int object) const
{
    const QList<Slot> all = elementSlots(object);
    QList<QPair<Slot, Slot>> pairs;
    for (qsizetype i = 0; i + 1 < all.size(); i += 2) pairs.append({all[i], all[i + 1]});
    return pairs;
}

QList<Slot> NibArchiveGraph::slotsOf(int object) const
{
    QList<Slot> places;
    if (object < 0 || object >= objectCount()) return places;
    const NibObject &o = m_archive.objects[object];
    QHash<quint32, int> seen;
    for (quint32 i = 0; i < o.valueCount; ++i) {
        const NibValue &v = m_archive.values[o.firstValue + i];
        const int occurrence = seen[v.key]++;
        if (!v.isObject()) continue;
        const QString &key = m_keyNames[v.key];
        // Same spelling as valueIndex/elementSlots use, so places compare equal.
        places.append({object, key, occurrence == 0 && key != ElementKey ? -1 : occurrence});
    }
    return places;
}

void NibArchiveGraph::countReferences() const
{
    if (!m_referenceCounts.isEmpty() || objectCount() == 0) return;
    m_referenceCounts.fill(0, objectCount());
    for (const NibValue &v : m_archive.values)
        if (v.isObject()) ++m_referenceCounts[v.objectIndex()];
}

int NibArchiveGraph::referenceCount(int object) const
{
    countReferences();
    return object >= 0 && object < m_referenceCounts.size() ? m_referenceCounts[object] : 0;
}

bool NibArchiveGraph::setText(const Slot &slot, const QString &text)
{
    const qsizetype vi = valueIndex(slot);
    if (vi < 0 || !m_archive.values[vi].isObject()) return false;
    const int old = int(m_archive.values[vi].objectIndex());
    const qsizetype bytesAt = isStringClass(old) ? firstValue(old, BytesKey) : -1;
    if (bytesAt < 0 || m_archive.values[bytesAt].type != NibValue::Data) return false;
    const QByteArray utf8 = text.toUtf8();
    if (m_archive.values[bytesAt].data == utf8) return true;
    countReferences();
    if (m_referenceCounts[old] == 1) {
        m_archive.values[bytesAt].data = utf8;
        return true;
    }
    // Shared: a copy of the string object (values appended, so every range stays contiguous).
    const NibObject original = m_archive.objects[old];
    NibObject copy = original;
    copy.firstValue = quint32(m_archive.values.size());
    for (quint32 i = 0; i < original.valueCount; ++i) {
        NibValue v = m_archive.values[original.firstValue + i];
        if (original.firstValue + i == quint32(bytesAt)) v.data = utf8;
        if (v.isObject()) ++m_referenceCounts[v.objectIndex()];
        m_archive.values.append(v);
    }
    const int added = int(m_archive.objects.size());
    m_archive.objects.append(copy);
    m_referenceCounts.append(1);
    --m_referenceCounts[old];
    m_archive.values[vi].raw = quint32(added);
    return true;
}

}  // namespace interface::nib
