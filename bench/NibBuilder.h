#pragma once
// Compiled nibs made from an object model, written either as a NIBArchive or as a keyed archive
// (binary property list): the benchmark's generated nibs of any size.
//
// Model objects are numbered from 1 in both forms (the NIBArchive's object 0 is its root, the
// keyed archive's is "$null"). Strings are objects of class NSString; numbers of class NSNumber;
// arrays of class NSArray; dictionaries of class NSDictionary.

#include "PropertyList.h"
#include "nib/NibArchive.h"

#include <QHash>
#include <QList>
#include <QString>
#include <variant>

namespace NibFixtures {

struct Ref {
    int object;
};
using Val = std::variant<Ref, qint64, bool, QByteArray>;

struct Obj {
    QString cls;
    QList<QPair<QString, Val>> values;
    QString text;               // strings
    qint64 number = 0;          // numbers
    QList<int> elements;        // arrays; dictionaries: key, value, key, value...
};

class Builder {
public:
    int add(const QString &cls, const QList<QPair<QString, Val>> &values = {})
    {
        m_objects.append({cls, values, {}, 0, {}});
        return int(m_objects.size());
    }
    int string(const QString &text, const QString &cls = QStringLiteral("NSString"))
    {
        const int i = add(cls);
        m_objects.last().text = text;
        return i;
    }
    int localizable(const QString &text, const QString &key, const QString &dev)
    {
        const int k = string(key);
        const int d = string(dev);
        const int i = string(text, QStringLiteral("NSLocalizableString"));
        m_objects[i - 1].values = {{QStringLiteral("NSKey"), Ref{k}}, {QStringLiteral("NSDev"), Ref{d}}};
        return i;
    }
    int number(qint64 n)
    {
        const int i = add(QStringLiteral("NSNumber"));
        m_objects.last().number = n;
        return i;
    }
    int array(const QList<int> &elements, const QString &cls = QStringLiteral("NSArray"))
    {
        const int i = add(cls);
        m_objects.last().elements = elements;
        return i;
    }
    // Superclasses a keyed archive lists for a class (a NIBArchive knows none).
    void setSuperclasses(const QString &cls, const QStringList &chain) { m_chains.insert(cls, chain); }
    void set(int object, const QString &key, const Val &v) { m_objects[object - 1].values.append({key, v}); }
    // The NSIBObjectData the archive's top refers to.
    void setObjectData(int object) { m_objectData = object; }

    // NSIBObjectData with an id table: `oids` gives object -> oid; `parents` child -> parent.
    int objectData(int root, const QList<QPair<int, qint64>> &oids, const QList<QPair<int, int>> &parents = {},
                   std::optional<qint64> nextOid = std::nullopt)
    {
        QList<int> oidKeys, oidValues, children, parentsOf;
        for (const auto &[o, n] : oids) {
            oidKeys.append(o);
            oidValues.append(number(n));
        }
        for (const auto &[c, p] : parents) {
            children.append(c);
            parentsOf.append(p);
        }
        QList<QPair<QString, Val>> values{{QStringLiteral("NSRoot"), Ref{root}},
                                          {QStringLiteral("NSOidsKeys"), Ref{array(oidKeys)}},
                                          {QStringLiteral("NSOidsValues"), Ref{array(oidValues)}},
                                          {QStringLiteral("NSObjectsKeys"), Ref{array(children)}},
                                          {QStringLiteral("NSObjectsValues"), Ref{array(parentsOf)}}};
        if (nextOid) values.append({QStringLiteral("NSNextOid"), *nextOid});
        const int od = add(QStringLiteral("NSIBObjectData"), values);
        m_objectData = od;
        return od;
    }

    QByteArray toNibArchive() const;
    QByteArray toKeyedArchive() const;

private:
    QList<Obj> m_objects;
    QHash<QString, QStringList> m_chains;
    int m_objectData = 0;
};

inline QByteArray Builder::toNibArchive() const
{
    using interface::nib::NibValue;
    interface::nib::NibArchive a;
    QHash<QString, quint32> keys, classes;
    const auto key = [&](const QString &k) {
        if (!keys.contains(k)) {
            keys.insert(k, quint32(a.keys.size()));
            a.keys.append(k.toUtf8());
        }
        return keys.value(k);
    };
    const auto cls = [&](const QString &c) {
        if (!classes.contains(c)) {
            classes.insert(c, quint32(a.classes.size()));
            a.classes.append({c.toUtf8(), {}});
        }
        return classes.value(c);
    };
    const auto put = [&](const QString &k, const Val &v) {
        NibValue nv;
        nv.key = key(k);
        if (const Ref *r = std::get_if<Ref>(&v)) {
            nv = NibValue::objectReference(nv.key, quint32(r->object));
        } else if (const qint64 *n = std::get_if<qint64>(&v)) {
            nv.type = NibValue::Int64;
            nv.raw = quint64(*n);
        } else if (const bool *b = std::get_if<bool>(&v)) {
            nv.type = *b ? NibValue::True : NibValue::False;
        } else {
            nv = NibValue::bytes(nv.key, std::get<QByteArray>(v));
        }
        a.values.append(nv);
    };
    const auto object = [&](const QString &c, const auto &fill) {
        interface::nib::NibObject o;
        o.classIndex = cls(c);
        o.firstValue = quint32(a.values.size());
        fill();
        o.valueCount = quint32(a.values.size()) - o.firstValue;
        if (o.valueCount == 0) o.firstValue = 0;
        a.objects.append(o);
    };
    object(QStringLiteral("NSObject"), [&] { put(QStringLiteral("IB.objectdata"), Ref{m_objectData}); });
    for (const Obj &o : m_objects) {
        object(o.cls, [&] {
            if (o.cls == QLatin1String("NSString") || o.cls == QLatin1String("NSMutableString")
                || o.cls == QLatin1String("NSLocalizableString"))
                put(QStringLiteral("NS.bytes"), o.text.toUtf8());
            if (o.cls == QLatin1String("NSNumber")) put(QStringLiteral("NS.intval"), o.number);
            if (o.cls.endsWith(QLatin1String("Array")) || o.cls.endsWith(QLatin1String("Dictionary"))
                || o.cls.endsWith(QLatin1String("Set"))) {
                put(QStringLiteral("NSInlinedValue"), false);
                for (int e : o.elements) put(QStringLiteral("UINibEncoderEmptyKey"), Ref{e});
            }
            for (const auto &[k, v] : o.values) put(k, v);
        });
    }
    return a.serialize();
}

inline QByteArray Builder::toKeyedArchive() const
{
    using plist::Value;
    const auto uid = [](int i) { return Value::fromDictionary({{QStringLiteral("CF$UID"), Value::fromInteger(i)}}); };
    plist::Array objects{Value::fromString(QStringLiteral("$null"))};
    QHash<QString, int> classIndex;
    QStringList classOrder;
    const int classBase = int(m_objects.size()) + 1;
    const auto classRef = [&](const QString &c) {
        if (!classIndex.contains(c)) {
            classIndex.insert(c, classBase + int(classOrder.size()));
            classOrder.append(c);
        }
        return uid(classIndex.value(c));
    };
    for (const Obj &o : m_objects) {
        if (o.cls == QLatin1String("NSString")) {
            objects.append(Value::fromString(o.text));
            continue;
        }
        if (o.cls == QLatin1String("NSNumber")) {
            objects.append(Value::fromInteger(o.number));
            continue;
        }
        plist::Dictionary d{{QStringLiteral("$class"), classRef(o.cls)}};
        if (o.cls == QLatin1String("NSMutableString") || o.cls == QLatin1String("NSLocalizableString"))
            d.append({QStringLiteral("NS.string"), Value::fromString(o.text)});
        if (o.cls.endsWith(QLatin1String("Array")) || o.cls.endsWith(QLatin1String("Set"))) {
            plist::Array e;
            for (int i : o.elements) e.append(uid(i));
            d.append({QStringLiteral("NS.objects"), Value::fromArray(e)});
        }
        if (o.cls.endsWith(QLatin1String("Dictionary"))) {
            plist::Array k, v;
            for (qsizetype i = 0; i + 1 < o.elements.size(); i += 2) {
                k.append(uid(o.elements[i]));
                v.append(uid(o.elements[i + 1]));
            }
            d.append({QStringLiteral("NS.keys"), Value::fromArray(k)});
            d.append({QStringLiteral("NS.objects"), Value::fromArray(v)});
        }
        for (const auto &[k, v] : o.values) {
            if (const Ref *r = std::get_if<Ref>(&v)) d.append({k, uid(r->object)});
            else if (const qint64 *n = std::get_if<qint64>(&v)) d.append({k, Value::fromInteger(*n)});
            else if (const bool *b = std::get_if<bool>(&v)) d.append({k, Value::fromBoolean(*b)});
            else d.append({k, Value::fromData(std::get<QByteArray>(v))});
        }
        objects.append(Value::fromDictionary(d));
    }
    for (const QString &c : std::as_const(classOrder)) {
        plist::Array chain;
        for (const QString &s : m_chains.value(c, {c, QStringLiteral("NSObject")})) chain.append(Value::fromString(s));
        objects.append(Value::fromDictionary({{QStringLiteral("$classname"), Value::fromString(c)},
                                              {QStringLiteral("$classes"), Value::fromArray(chain)}}));
    }
    const Value root = Value::fromDictionary(
        {{QStringLiteral("$archiver"), Value::fromString(QStringLiteral("NSKeyedArchiver"))},
         {QStringLiteral("$objects"), Value::fromArray(objects)},
         {QStringLiteral("$top"), Value::fromDictionary({{QStringLiteral("IB.objectdata"), uid(m_objectData)}})},
         {QStringLiteral("$version"), Value::fromInteger(100000)}});
    return plist::toBinary(root);
}

}  // namespace NibFixtures
