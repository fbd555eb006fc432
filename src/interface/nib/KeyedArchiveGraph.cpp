#include "KeyedArchiveGraph.h"

namespace interface::nib {
namespace {

using plist::Type;
using plist::Value;

const QString UidKey = QStringLiteral("CF$UID");

std::optional<int> uidOf(const Value &v)
{
    if (!v.isDictionary() || v.dictionary().size() != 1) return std::nullopt;
    const auto &entry = v.dictionary().first();
    if (entry.first != UidKey || entry.second.type() != Type::Integer) return std::nullopt;
    const qint64 n = entry.second.integer();
    if (n < 0 || n > std::numeric_limits<int>::max() || entry.second.isUnsigned()) return std::nullopt;
    return int(n);
}

Value uidValue(int index)
{
    return Value::fromDictionary({{UidKey, Value::fromUnsigned(quint64(index))}});
}

Value *findMutable(Value &dict, const QString &key)
{
    if (!dict.isDictionary()) return nullptr;
    auto &d = dict.dictionary();
    for (auto it = d.rbegin(); it != d.rend(); ++it)
        if (it->first == key) return &it->second;
    return nullptr;
}

// Every UID under a value (a dictionary's values, an array's elements, nested).
template <typename F>
void forEachUid(const Value &v, F &&f, int depth = 0)
{
    if (depth > plist::MaxDepth) return;
    if (const auto uid = uidOf(v)) {
        f(*uid);
        return;
    }
    if (v.isDictionary())
        for (const auto &entry : v.dictionary()) forEachUid(entry.second, f, depth + 1);
    else if (v.isArray())
        for (const Value &e : v.array()) forEachUid(e, f, depth + 1);
}

void nullDanglingReferences(Value &v, int limit, int depth = 0)
{
    if (depth > plist::MaxDepth) return;
    if (const auto uid = uidOf(v)) {
        if (*uid >= limit) v = uidValue(0);
        return;
    }
    if (v.isDictionary())
        for (auto &entry : v.dictionary()) nullDanglingReferences(entry.second, limit, depth + 1);
    else if (v.isArray())
        for (Value &e : v.array()) nullDanglingReferences(e, limit, depth + 1);
}

}  // namespace

std::optional<KeyedArchiveGraph> KeyedArchiveGraph::fromValue(const plist::Value &root, QString *error)
{
    const Value *archiver = root.isDictionary() ? root.find(QStringLiteral("$archiver")) : nullptr;
    const Value *top = root.isDictionary() ? root.find(QStringLiteral("$top")) : nullptr;
    if (!archiver || !archiver->isString() || archiver->string() != QLatin1String("NSKeyedArchiver") || !top
        || !top->isDictionary()) {
        if (error) *error = QStringLiteral("It is a property list, but not a keyed archive.");
        return std::nullopt;
    }
    KeyedArchiveGraph g;
    g.m_root = root;
    const auto &d = g.m_root.dictionary();
    g.m_objectsAt = -1;
    for (qsizetype i = d.size() - 1; i >= 0 && g.m_objectsAt < 0; --i)
        if (d[i].first == QLatin1String("$objects") && d[i].second.isArray()) g.m_objectsAt = i;
    if (g.m_objectsAt < 0) {
        if (error) *error = QStringLiteral("The keyed archive has no object table.");
        return std::nullopt;
    }
    return g;
}

const plist::Value *KeyedArchiveGraph::object(int index) const
{
    // Index 0 is the "$null" marker: a reference to it is a reference to nothing.
    if (index <= 0 || index >= objectCount()) return nullptr;
    return &objects()[index];
}

std::optional<int> KeyedArchiveGraph::objectData() const
{
    const Value *top = m_root.find(QStringLiteral("$top"));
    const Value *od = top ? top->find(QStringLiteral("IB.objectdata")) : nullptr;
    if (!od) return std::nullopt;
    const auto uid = uidOf(*od);
    if (!uid || !object(*uid)) return std::nullopt;
    return uid;
}

QStringList KeyedArchiveGraph::classChain(int index) const
{
    const Value *o = object(index);
    const Value *classRef = o ? o->find(QStringLiteral("$class")) : nullptr;
    const auto uid = classRef ? uidOf(*classRef) : std::nullopt;
    const Value *cls = uid ? object(*uid) : nullptr;
    if (!cls || !cls->isDictionary()) return {};
    QStringList chain;
    if (const Value *classes = cls->find(QStringLiteral("$classes")); classes && classes->isArray())
        for (const Value &c : classes->array())
            if (c.isString()) chain.append(c.string());
    const Value *name = cls->find(QStringLiteral("$classname"));
    if (name && name->isString() && chain.value(0) != name->string()) chain.prepend(name->string());
    return chain;
}

const plist::Value *KeyedArchiveGraph::slotValue(const Slot &slot) const
{
    const Value *holder = object(slot.holder);
    const Value *v = holder && holder->isDictionary() ? holder->find(slot.key) : nullptr;
    if (!v || slot.occurrence < 0) return v;
    if (!v->isArray() || slot.occurrence >= v->array().size()) return nullptr;
    return &v->array()[slot.occurrence];
}

plist::Value *KeyedArchiveGraph::slotValue(const Slot &slot)
{
    if (slot.holder <= 0 || slot.holder >= objectCount()) return nullptr;
    Value *v = findMutable(objects()[slot.holder], slot.key);
    if (!v || slot.occurrence < 0) return v;
    if (!v->isArray() || slot.occurrence >= v->array().size()) return nullptr;
    return &v->array()[slot.occurrence];
}

std::optional<int> KeyedArchiveGraph::target(const Slot &slot) const
{
    const Value *v = slotValue(slot);
    const auto uid = v ? uidOf(*v) : std::nullopt;
    if (!uid || !object(*uid)) return std::nullopt;
    return uid;
}

bool KeyedArchiveGraph::isStringObject(const plist::Value &v) const
{
    if (v.isString()) return true;
    if (!v.isDictionary()) return false;
    const Value *classRef = v.find(QStringLiteral("$class"));
    const auto uid = classRef ? uidOf(*classRef) : std::nullopt;
    const Value *cls = uid ? object(*uid) : nullptr;
    const Value *name = cls ? cls->find(QStringLiteral("$classname")) : nullptr;
    if (!name || !name->isString()) return false;
    const QString &n = name->string();
    return n == QLatin1String("NSString") || n == QLatin1String("NSMutableString")
           || n == QLatin1String("NSLocalizableString");
}

std::optional<QString> KeyedArchiveGraph::text(int index) const
{
    const Value *o = object(index);
    if (!o || !isStringObject(*o)) return std::nullopt;
    if (o->isString()) return o->string();
    if (const Value *s = o->find(QStringLiteral("NS.string")); s && s->isString()) return s->string();
    if (const Value *b = o->find(QStringLiteral("NS.bytes")); b && b->type() == Type::Data)
        return QString::fromUtf8(b->data());
    return std::nullopt;
}

std::optional<qint64> KeyedArchiveGraph::number(int index) const
{
    const Value *o = object(index);
    if (!o || o->type() != Type::Integer) return std::nullopt;
    return o->integer();
}

std::optional<qint64> KeyedArchiveGraph::inlineInteger(int index, const QString &key) const
{
    const Value *o = object(index);
    const Value *v = o && o->isDictionary() ? o->find(key) : nullptr;
    if (!v || v->type() != Type::Integer) return std::nullopt;
    return v->integer();
}

QList<Slot> KeyedArchiveGraph::elementSlots(int index) const
{
    QList<Slot> places;
    const Value *o = object(index);
    const Value *elements = o && o->isDictionary() ? o->find(QStringLiteral("NS.objects")) : nullptr;
    if (!elements || !elements->isArray()) return places;
    for (int i = 0; i < elements->array().size(); ++i) places.append({index, QStringLiteral("NS.objects"), i});
    return places;
}

QList<QPair<Slot, Slot>> KeyedArchiveGraph::dictionarySlots(int index) const
{
    QList<QPair<Slot, Slot>> pairs;
    const Value *o = object(index);
    const Value *keys = o && o->isDictionary() ? o->find(QStringLiteral("NS.keys")) : nullptr;
    const Value *values = o && o->isDictionary() ? o->find(QStringLiteral("NS.objects")) : nullptr;
    if (!keys || !values || !keys->isArray() || !values->isArray()) return pairs;
    const qsizetype n = std::min(keys->array().size(), values->array().size());
    for (int i = 0; i < n; ++i)
        pairs.append({{index, QStringLiteral("NS.keys"), i}, {index, QStringLiteral("NS.objects"), i}});
    return pairs;
}

QList<Slot> KeyedArchiveGraph::slotsOf(int index) const
{
    QList<Slot> places;
    const Value *o = object(index);
    if (!o || !o->isDictionary()) return places;
    for (const auto &entry : o->dictionary()) {
        if (entry.first == QLatin1String("$class")) continue;
        if (uidOf(entry.second)) {
            places.append({index, entry.first, -1});
        } else if (entry.second.isArray()) {
            for (int i = 0; i < entry.second.array().size(); ++i)
                if (uidOf(entry.second.array()[i])) places.append({index, entry.first, i});
        }
    }
    return places;
}

void KeyedArchiveGraph::countReferences() const
{
    if (!m_referenceCounts.isEmpty()) return;
    m_referenceCounts.fill(0, objectCount());
    m_highestReference = 0;
    const auto count = [this](int uid) {
        m_highestReference = std::max(m_highestReference, uid);
        if (uid < m_referenceCounts.size()) ++m_referenceCounts[uid];
    };
    for (const Value &o : objects()) forEachUid(o, count);
    if (const Value *top = m_root.find(QStringLiteral("$top"))) forEachUid(*top, count);
}

int KeyedArchiveGraph::referenceCount(int index) const
{
    countReferences();
    return index >= 0 && index < m_referenceCounts.size() ? m_referenceCounts[index] : 0;
}

bool KeyedArchiveGraph::setText(const Slot &slot, const QString &newText)
{
    const auto old = target(slot);
    const auto current = old ? text(*old) : std::nullopt;
    if (!current) return false;
    if (*current == newText) return true;
    Value replacement = objects()[*old];
    if (replacement.isString()) {
        replacement = Value::fromString(newText);
    } else if (Value *s = findMutable(replacement, QStringLiteral("NS.string")); s && s->isString()) {
        *s = Value::fromString(newText);
    } else if (Value *b = findMutable(replacement, QStringLiteral("NS.bytes"))) {
        *b = Value::fromData(newText.toUtf8());
    }
    countReferences();
    if (m_referenceCounts[*old] == 1) {
        objects()[*old] = replacement;
        return true;
    }
    // Shared: the new string goes to the end of the table and only this slot points to it. A
    // damaged archive may refer past its table, to nothing; those references would come to
    // name the new string, so they are made to name nothing the usual way first.
    if (m_highestReference >= objectCount()) {
        nullDanglingReferences(m_root, objectCount());
        m_highestReference = 0;
    }
    const int added = objectCount();
    forEachUid(replacement, [this](int uid) {
        if (uid < m_referenceCounts.size()) ++m_referenceCounts[uid];
    });
    objects().append(replacement);
    m_referenceCounts.append(1);
    --m_referenceCounts[*old];
    *slotValue(slot) = uidValue(added);
    return true;
}

}  // namespace interface::nib
