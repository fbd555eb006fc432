#pragma once
// The "NIBArchive" container of compiled nibs (single-file X.nib from Xcode, and the
// keyedobjects-101300.nib style variants in nib folders): four tables (objects, keys, values,
// class names) behind a 50-byte header. Read into plain tables and written back in the same
// order, so an archive that is not changed comes out byte for byte as it came in.

#include <QByteArray>
#include <QList>
#include <QString>
#include <optional>

namespace interface::nib {

struct NibValue {
    enum Type : quint8 {
        Int8 = 0, Int16 = 1, Int32 = 2, Int64 = 3, True = 4, False = 5,
        Float = 6, Double = 7, Data = 8, Nil = 9, Object = 10,
    };
    quint32 key = 0;
    Type type = Nil;
    // The fixed-size payload as stored (integers, float bits, object index); unused for Data.
    quint64 raw = 0;
    QByteArray data;

    bool isObject() const { return type == Object; }
    quint32 objectIndex() const { return quint32(raw); }
    std::optional<qint64> integer() const;
    std::optional<bool> boolean() const;

    static NibValue objectReference(quint32 key, quint32 index);
    static NibValue bytes(quint32 key, const QByteArray &data);
};

struct NibObject {
    quint32 classIndex = 0;
    quint32 firstValue = 0;
    quint32 valueCount = 0;
};

struct NibClass {
    QByteArray name;
    QList<qint32> fallbacks;  // indices of classes to use when this one is unknown at run time
};

class NibArchive {
public:
    static constexpr char Magic[] = "NIBArchive";
    static bool looksLike(const QByteArray &bytes) { return bytes.startsWith(Magic); }

    // None, with a reason, when the bytes are no well-formed archive: every count, offset,
    // length and index is checked against what the bytes can hold.
    static std::optional<NibArchive> parse(const QByteArray &bytes, QString *error = nullptr);
    QByteArray serialize() const;

    quint32 formatVersion = 1;
    quint32 coderVersion = 10;
    QList<NibObject> objects;
    QList<QByteArray> keys;
    QList<NibValue> values;
    QList<NibClass> classes;
    // Bytes after the last table; meaning unknown, kept as they are.
    QByteArray trailing;
};

}  // namespace interface::nib
