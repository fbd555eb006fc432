// The binary form, written children first so every reference is known when its container is
// written; the root comes last and the trailer names it. Equal strings are stored once, as
// Apple's writer does, which keeps keys of repeated dictionaries small.
#include "PlistInternal.h"

#include <QHash>

#include <cstring>
#include <limits>

namespace plist {

namespace {

int bytesFor(quint64 v)
{
    return v <= 0xFF ? 1 : v <= 0xFFFF ? 2 : v <= 0xFFFFFFFFu ? 4 : 8;
}

int log2Of(int size) { return size == 1 ? 0 : size == 2 ? 1 : size == 4 ? 2 : 3; }

// Objects written for a value at most: itself, its children, and one string per key.
quint64 objectCount(const Value &v)
{
    quint64 n = 1;
    if (v.isArray())
        for (const Value &item : v.array())
            n += objectCount(item);
    else if (v.isDictionary())
        for (const auto &entry : v.dictionary())
            n += 1 + objectCount(entry.second);
    return n;
}

const Value *uidOf(const Value &v)
{
    if (!v.isDictionary() || v.dictionary().size() != 1)
        return nullptr;
    const auto &entry = v.dictionary().first();
    const bool isUid = entry.first == QLatin1StringView("CF$UID") && entry.second.type() == Type::Integer
        && (entry.second.isUnsigned() || entry.second.integer() >= 0);
    return isUid ? &entry.second : nullptr;
}

class BinaryWriter {
public:
    explicit BinaryWriter(const Value &root) : m_refSize(bytesFor(objectCount(root) - 1)) {}

    QByteArray run(const Value &root);

private:
    void big(quint64 v, int size);
    void marker(quint8 type, quint64 count);
    quint64 begin();
    quint64 string(const QString &s);
    quint64 write(const Value &v);

    QByteArray m_out = QByteArrayLiteral("bplist00");
    QList<quint64> m_offsets;
    QHash<QString, quint64> m_strings;
    int m_refSize;
};

void BinaryWriter::big(quint64 v, int size)
{
    for (int shift = 8 * (size - 1); shift >= 0; shift -= 8)
        m_out.append(char((v >> shift) & 0xFF));
}

void BinaryWriter::marker(quint8 type, quint64 count)
{
    if (count < 15) {
        m_out.append(char(type | count));
        return;
    }
    m_out.append(char(type | 0x0F));
    const int size = bytesFor(count);
    m_out.append(char(0x10 | log2Of(size)));
    big(count, size);
}

quint64 BinaryWriter::begin()
{
    m_offsets.append(quint64(m_out.size()));
    return quint64(m_offsets.size() - 1);
}

quint64 BinaryWriter::string(const QString &s)
{
    const auto known = m_strings.constFind(s);
    if (known != m_strings.cend())
        return *known;
    const quint64 index = begin();
    bool ascii = true;
    for (QChar c : s)
        ascii = ascii && c.unicode() < 0x80;
    if (ascii) {
        marker(0x50, quint64(s.size()));
        m_out.append(s.toLatin1());
    } else {
        marker(0x60, quint64(s.size()));
        for (QChar c : s)
            big(c.unicode(), 2);
    }
    m_strings.insert(s, index);
    return index;
}

quint64 BinaryWriter::write(const Value &v)
{
    if (v.isString())
        return string(v.string());
    if (const Value *uid = uidOf(v)) {
        const quint64 index = begin();
        const int size = bytesFor(uid->unsignedInteger());
        m_out.append(char(0x80 | (size - 1)));
        big(uid->unsignedInteger(), size);
        return index;
    }
    QList<quint64> refs;
    if (v.isArray()) {
        for (const Value &item : v.array())
            refs.append(write(item));
    } else if (v.isDictionary()) {
        for (const auto &entry : v.dictionary())
            refs.append(string(entry.first));
        for (const auto &entry : v.dictionary())
            refs.append(write(entry.second));
    }
    const quint64 index = begin();
    switch (v.type()) {
    case Type::Integer:
        if (v.isUnsigned()) {  // 16 bytes, the upper half zero
            m_out.append(char(0x14));
            big(0, 8);
            big(v.unsignedInteger(), 8);
        } else {
            // 1, 2 and 4-byte integers are unsigned; negative ones take 8 bytes.
            const int size = v.integer() < 0 ? 8 : bytesFor(quint64(v.integer()));
            m_out.append(char(0x10 | log2Of(size)));
            big(quint64(v.integer()), size);
        }
        break;
    case Type::Real:
    case Type::Date: {
        const double d = v.type() == Type::Real
            ? v.real()
            : double(detail::referenceDate().msecsTo(v.date())) / 1000.0;
        quint64 bits;
        std::memcpy(&bits, &d, 8);
        m_out.append(char(v.type() == Type::Real ? 0x23 : 0x33));
        big(bits, 8);
        break;
    }
    case Type::Boolean:
        m_out.append(char(v.boolean() ? 0x09 : 0x08));
        break;
    case Type::Data:
        marker(0x40, quint64(v.data().size()));
        m_out.append(v.data());
        break;
    case Type::Array:
        marker(0xA0, quint64(refs.size()));
        break;
    case Type::Dictionary:
        marker(0xD0, quint64(refs.size() / 2));
        break;
    case Type::String:
        break;  // handled above
    }
    for (quint64 ref : refs)
        big(ref, m_refSize);
    return index;
}

QByteArray BinaryWriter::run(const Value &root)
{
    const quint64 top = write(root);
    const quint64 table = quint64(m_out.size());
    const int offsetSize = bytesFor(table);
    for (quint64 offset : m_offsets)
        big(offset, offsetSize);
    m_out.append(6, '\0');  // unused, then the sort version
    m_out.append(char(offsetSize));
    m_out.append(char(m_refSize));
    big(quint64(m_offsets.size()), 8);
    big(top, 8);
    big(table, 8);
    return m_out;
}

}  // namespace

QByteArray toBinary(const Value &root)
{
    return BinaryWriter(root).run(root);
}

}  // namespace plist
