#include "NibArchive.h"

#include <QPair>
#include <QtEndian>

#include <algorithm>

namespace interface::nib {
namespace {

constexpr qsizetype HeaderSize = 50;

// Reads one table; every read checks the bounds and a failure sticks, so callers test once.
class Cursor {
public:
    Cursor(const QByteArray &bytes, qsizetype pos) : m_bytes(bytes), m_pos(pos) {}
    bool ok() const { return m_ok; }
    qsizetype pos() const { return m_pos; }
    qsizetype remaining() const { return m_bytes.size() - m_pos; }

    // 7-bit groups, least significant first; a set high bit marks the last byte.
    quint32 varint()
    {
        quint64 result = 0;
        for (int shift = 0; shift < 35; shift += 7) {
            const quint8 b = byte();
            if (!m_ok) return 0;
            result |= quint64(b & 0x7f) << shift;
            if (b & 0x80) {
                if (result > 0xffffffffu) break;
                return quint32(result);
            }
        }
        m_ok = false;
        return 0;
    }
    quint8 byte()
    {
        if (!take(1)) return 0;
        return quint8(m_bytes[m_pos - 1]);
    }
    quint64 fixed(int size)
    {
        if (!take(size)) return 0;
        quint64 v = 0;
        for (int i = size - 1; i >= 0; --i) v = (v << 8) | quint8(m_bytes[m_pos - size + i]);
        return v;
    }
    QByteArray bytes(quint32 size)
    {
        if (!take(size)) return {};
        return m_bytes.mid(m_pos - size, size);
    }

private:
    bool take(qint64 n)
    {
        if (!m_ok || n > remaining()) {
            m_ok = false;
            return false;
        }
        m_pos += n;
        return true;
    }
    const QByteArray &m_bytes;
    qsizetype m_pos;
    bool m_ok = true;
};

int payloadSize(NibValue::Type type)
{
    switch (type) {
    case NibValue::Int8: return 1;
    case NibValue::Int16: return 2;
    case NibValue::Int32: case NibValue::Float: case NibValue::Object: return 4;
    case NibValue::Int64: case NibValue::Double: return 8;
    default: return 0;
    }
}

void putVarint(QByteArray &out, quint32 v)
{
    while (v >= 0x80) {
        out.append(char(v & 0x7f));
        v >>= 7;
    }
    out.append(char(v | 0x80));
}

void putFixed(QByteArray &out, quint64 v, int size)
{
    for (int i = 0; i < size; ++i) out.append(char((v >> (8 * i)) & 0xff));
}

bool fail(QString *error, const QString &why)
{
    if (error) *error = why;
    return false;
}

struct Header {
    quint32 format, coder, objectCount, objectOffset, keyCount, keyOffset, valueCount, valueOffset,
        classCount, classOffset;
};

// A count larger than the bytes after its table's offset could hold, at `minSize` bytes a row,
// is refused before anything is allocated for it.
bool plausible(quint32 count, quint32 offset, int minSize, qsizetype size)
{
    return offset >= HeaderSize && offset <= size && qint64(count) * minSize <= size - qint64(offset);
}

bool readObjects(const QByteArray &bytes, const Header &h, NibArchive &a, qsizetype &end)
{
    Cursor c(bytes, h.objectOffset);
    a.objects.reserve(h.objectCount);
    for (quint32 i = 0; i < h.objectCount && c.ok(); ++i) {
        NibObject o;
        o.classIndex = c.varint();
        o.firstValue = c.varint();
        o.valueCount = c.varint();
        a.objects.append(o);
    }
    end = c.pos();
    return c.ok();
}

bool readKeys(const QByteArray &bytes, const Header &h, NibArchive &a, qsizetype &end)
{
    Cursor c(bytes, h.keyOffset);
    a.keys.reserve(h.keyCount);
    for (quint32 i = 0; i < h.keyCount && c.ok(); ++i) a.keys.append(c.bytes(c.varint()));
    end = c.pos();
    return c.ok();
}

bool readValues(const QByteArray &bytes, const Header &h, NibArchive &a, qsizetype &end)
{
    Cursor c(bytes, h.valueOffset);
    a.values.reserve(h.valueCount);
    for (quint32 i = 0; i < h.valueCount && c.ok(); ++i) {
        NibValue v;
        v.key = c.varint();
        const quint8 type = c.byte();
        if (type > NibValue::Object) return false;
        v.type = NibValue::Type(type);
        if (v.type == NibValue::Data)
            v.data = c.bytes(c.varint());
        else
            v.raw = c.fixed(payloadSize(v.type));
        a.values.append(v);
    }
    end = c.pos();
    return c.ok();
}

bool readClasses(const QByteArray &bytes, const Header &h, NibArchive &a, qsizetype &end)
{
    Cursor c(bytes, h.classOffset);
    a.classes.reserve(h.classCount);
    for (quint32 i = 0; i < h.classCount && c.ok(); ++i) {
        NibClass k;
        const quint32 length = c.varint();
        const quint32 fallbackCount = c.varint();
        if (!c.ok() || qint64(fallbackCount) * 4 > c.remaining()) return false;
        for (quint32 f = 0; f < fallbackCount; ++f) k.fallbacks.append(qint32(c.fixed(4)));
        k.name = c.bytes(length);
        // The stored length counts the closing NUL; the name is kept without it.
        if (!c.ok() || length == 0 || k.name.back() != '\0') return false;
        k.name.chop(1);
        a.classes.append(k);
    }
    end = c.pos();
    return c.ok();
}

bool checkIndices(const NibArchive &a, QString *error)
{
    const quint32 objectCount = quint32(a.objects.size());
    for (const NibObject &o : a.objects) {
        if (o.classIndex >= quint32(a.classes.size()))
            return fail(error, QStringLiteral("The compiled nib is damaged: an object names a class that it does not list."));
        if (quint64(o.firstValue) + o.valueCount > quint64(a.values.size()))
            return fail(error, QStringLiteral("The compiled nib is damaged: an object's values run past the end of its value table."));
    }
    // Each value belongs to one object: an edit of one object must not show in another.
    QList<QPair<quint32, quint32>> ranges;
    for (const NibObject &o : a.objects)
        if (o.valueCount > 0) ranges.append({o.firstValue, o.valueCount});
    std::sort(ranges.begin(), ranges.end());
    for (qsizetype i = 1; i < ranges.size(); ++i)
        if (quint64(ranges[i - 1].first) + ranges[i - 1].second > ranges[i].first)
            return fail(error, QStringLiteral("The compiled nib is damaged: two objects share values."));
    for (const NibValue &v : a.values) {
        if (v.key >= quint32(a.keys.size()))
            return fail(error, QStringLiteral("The compiled nib is damaged: a value names a key that it does not list."));
        if (v.isObject() && v.objectIndex() >= objectCount)
            return fail(error, QStringLiteral("The compiled nib is damaged: a value refers to an object that it does not hold."));
    }
    for (const NibClass &k : a.classes)
        for (qint32 f : k.fallbacks)
            if (f < 0 || f >= a.classes.size())
                return fail(error, QStringLiteral("The compiled nib is damaged: a class names a fallback class that it does not list."));
    return true;
}

}  // namespace

std::optional<qint64> NibValue::integer() const
{
    switch (type) {
    case Int8: return qint8(raw);
    case Int16: return qint16(raw);
    case Int32: return qint32(raw);
    case Int64: return qint64(raw);
    default: return std::nullopt;
    }
}

std::optional<bool> NibValue::boolean() const
{
    if (type == True) return true;
    if (type == False) return false;
    return std::nullopt;
}

NibValue NibValue::objectReference(quint32 key, quint32 index)
{
    NibValue v;
    v.key = key;
    v.type = Object;
    v.raw = index;
    return v;
}

NibValue NibValue::bytes(quint32 key, const QByteArray &data)
{
    NibValue v;
    v.key = key;
    v.type = Data;
    v.data = data;
    return v;
}

std::optional<NibArchive> NibArchive::parse(const QByteArray &bytes, QString *error)
{
    if (bytes.size() < HeaderSize || !looksLike(bytes)) {
        fail(error, QStringLiteral("It is not a compiled nib (it has no NIBArchive header)."));
        return std::nullopt;
    }
    quint32 f[10];
    for (int i = 0; i < 10; ++i) f[i] = qFromLittleEndian<quint32>(bytes.constData() + 10 + 4 * i);
    const Header h{f[0], f[1], f[2], f[3], f[4], f[5], f[6], f[7], f[8], f[9]};
    const qsizetype size = bytes.size();
    if (!plausible(h.objectCount, h.objectOffset, 3, size) || !plausible(h.keyCount, h.keyOffset, 1, size)
        || !plausible(h.valueCount, h.valueOffset, 2, size) || !plausible(h.classCount, h.classOffset, 3, size)) {
        fail(error, QStringLiteral("The compiled nib is truncated, or its header is damaged."));
        return std::nullopt;
    }
    NibArchive a;
    a.formatVersion = h.format;
    a.coderVersion = h.coder;
    qsizetype ends[4] = {};
    if (!readObjects(bytes, h, a, ends[0]) || !readKeys(bytes, h, a, ends[1]) || !readValues(bytes, h, a, ends[2])
        || !readClasses(bytes, h, a, ends[3])) {
        fail(error, QStringLiteral("The compiled nib is truncated, or one of its tables is damaged."));
        return std::nullopt;
    }
    if (!checkIndices(a, error)) return std::nullopt;
    a.trailing = bytes.mid(*std::max_element(std::begin(ends), std::end(ends)));
    return a;
}

QByteArray NibArchive::serialize() const
{
    QByteArray objectTable, keyTable, valueTable, classTable;
    for (const NibObject &o : objects) {
        putVarint(objectTable, o.classIndex);
        putVarint(objectTable, o.firstValue);
        putVarint(objectTable, o.valueCount);
    }
    for (const QByteArray &k : keys) {
        putVarint(keyTable, quint32(k.size()));
        keyTable.append(k);
    }
    for (const NibValue &v : values) {
        putVarint(valueTable, v.key);
        valueTable.append(char(v.type));
        if (v.type == NibValue::Data) {
            putVarint(valueTable, quint32(v.data.size()));
            valueTable.append(v.data);
        } else {
            putFixed(valueTable, v.raw, payloadSize(v.type));
        }
    }
    for (const NibClass &k : classes) {
        putVarint(classTable, quint32(k.name.size() + 1));
        putVarint(classTable, quint32(k.fallbacks.size()));
        for (qint32 fb : k.fallbacks) putFixed(classTable, quint32(fb), 4);
        classTable.append(k.name);
        classTable.append('\0');
    }
    QByteArray out(Magic, 10);
    const quint32 objectOffset = HeaderSize;
    const quint32 keyOffset = objectOffset + quint32(objectTable.size());
    const quint32 valueOffset = keyOffset + quint32(keyTable.size());
    const quint32 classOffset = valueOffset + quint32(valueTable.size());
    const quint32 header[10] = {formatVersion, coderVersion, quint32(objects.size()), objectOffset,
                                quint32(keys.size()), keyOffset, quint32(values.size()), valueOffset,
                                quint32(classes.size()), classOffset};
    for (quint32 v : header) putFixed(out, v, 4);
    out.append(objectTable).append(keyTable).append(valueTable).append(classTable).append(trailing);
    return out;
}

}  // namespace interface::nib
