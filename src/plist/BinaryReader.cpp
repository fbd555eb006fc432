// The binary form, "bplist00": a header, objects, a table of object offsets and a 32-byte trailer
// (offset size, reference size, object count, top object, table offset).
//
// Nothing from the file is trusted: every count is checked against the bytes that can hold it
// before anything is allocated, every reference against the object count, every offset against
// the object area. Objects may be shared (the writer stores equal values once), so parsed
// objects are cached by offset and a list whose shared objects would expand beyond
// MaxExpandedValues is refused instead of exhausting memory in whoever walks it. A reference
// back to an object still being parsed is a cycle and an error.
#include "PlistInternal.h"

#include <QHash>
#include <QStringDecoder>

#include <cmath>
#include <cstring>
#include <limits>

namespace plist::detail {

namespace {

constexpr qsizetype HeaderSize = 8;
constexpr qsizetype TrailerSize = 32;
constexpr quint64 MaxExpandedValues = quint64(1) << 22;

class BinaryReader {
public:
    explicit BinaryReader(const QByteArray &data)
        : m_p(reinterpret_cast<const uchar *>(data.constData())), m_size(quint64(data.size()))
    {
    }

    std::optional<Value> run();
    QString error() const { return m_error; }

private:
    struct Parsed {
        Value value;
        quint64 expanded;  // values in the tree below and including this one, shared ones counted each time
    };

    std::nullopt_t fail(const QString &why);
    bool readTrailer();
    quint64 uint(quint64 pos, int size) const;
    bool count(quint64 &pos, quint8 marker, quint64 &n);
    bool need(quint64 pos, quint64 bytes, quint64 offset);
    std::optional<Parsed> object(quint64 ref, int depth);
    std::optional<Parsed> parse(quint64 offset, int depth);
    std::optional<Parsed> parseInteger(quint64 offset, int sizeLog2);
    std::optional<Parsed> parseContainer(quint64 offset, quint8 marker, int depth);
    std::optional<Parsed> parseDictionary(quint64 offset, quint64 pos, quint64 n, int depth);

    const uchar *m_p;
    quint64 m_size;
    int m_offsetSize = 0;
    int m_refSize = 0;
    quint64 m_objects = 0;
    quint64 m_top = 0;
    quint64 m_table = 0;
    // Parsed objects by offset. A container being parsed has an entry whose expanded count is
    // 0, so meeting it again means a cycle.
    QHash<quint64, Parsed> m_cache;
    QString m_error;
};

std::nullopt_t BinaryReader::fail(const QString &why)
{
    if (m_error.isEmpty())
        m_error = QStringLiteral("binary property list: ") + why;
    return std::nullopt;
}

quint64 BinaryReader::uint(quint64 pos, int size) const
{
    quint64 v = 0;
    for (int i = 0; i < size; ++i)
        v = (v << 8) | m_p[pos + i];
    return v;
}

bool BinaryReader::readTrailer()
{
    if (m_size < quint64(HeaderSize + TrailerSize + 1)) {
        fail(QStringLiteral("the file is too short to hold a trailer (%1 bytes)").arg(m_size));
        return false;
    }
    const quint64 t = m_size - TrailerSize;
    m_offsetSize = m_p[t + 6];
    m_refSize = m_p[t + 7];
    m_objects = uint(t + 8, 8);
    m_top = uint(t + 16, 8);
    m_table = uint(t + 24, 8);
    if (m_offsetSize < 1 || m_offsetSize > 8 || m_refSize < 1 || m_refSize > 8) {
        fail(QStringLiteral("the trailer gives invalid sizes (offsets %1 bytes, references %2 bytes)")
                 .arg(m_offsetSize).arg(m_refSize));
        return false;
    }
    if (m_objects == 0) {
        fail(QStringLiteral("the trailer counts no objects"));
        return false;
    }
    if (m_top >= m_objects) {
        fail(QStringLiteral("top object %1 out of range (%2 objects)").arg(m_top).arg(m_objects));
        return false;
    }
    // The offset table lies between the objects and the trailer; dividing avoids overflow.
    if (m_table <= quint64(HeaderSize) || m_table >= t || m_objects > (t - m_table) / quint64(m_offsetSize)) {
        fail(QStringLiteral("the offset table (at %1, %2 entries) does not fit the file").arg(m_table).arg(m_objects));
        return false;
    }
    if (m_refSize < 8 && m_objects - 1 > (quint64(1) << (8 * m_refSize)) - 1) {
        fail(QStringLiteral("%1 objects cannot be referred to with %2-byte references").arg(m_objects).arg(m_refSize));
        return false;
    }
    return true;
}

// Whether bytes starting at pos lie inside the object area; the offset names the object in errors.
bool BinaryReader::need(quint64 pos, quint64 bytes, quint64 offset)
{
    if (pos > m_table || bytes > m_table - pos) {
        fail(QStringLiteral("object at offset %1 runs past the object area").arg(offset));
        return false;
    }
    return true;
}

// Element count of a marker: the low nibble, or 0xF and an integer object that follows.
bool BinaryReader::count(quint64 &pos, quint8 marker, quint64 &n)
{
    const quint64 offset = pos - 1;
    if ((marker & 0x0F) != 0x0F) {
        n = marker & 0x0F;
        return true;
    }
    if (!need(pos, 1, offset))
        return false;
    const quint8 intMarker = m_p[pos];
    if ((intMarker & 0xF0) != 0x10 || (intMarker & 0x0F) > 3) {
        fail(QStringLiteral("object at offset %1 has a malformed length").arg(offset));
        return false;
    }
    const int size = 1 << (intMarker & 0x0F);
    if (!need(pos + 1, quint64(size), offset))
        return false;
    n = uint(pos + 1, size);
    pos += 1 + size;
    return true;
}

std::optional<BinaryReader::Parsed> BinaryReader::object(quint64 ref, int depth)
{
    if (ref >= m_objects)
        return fail(QStringLiteral("object reference %1 out of range (%2 objects)").arg(ref).arg(m_objects));
    const quint64 offset = uint(m_table + ref * quint64(m_offsetSize), m_offsetSize);
    if (offset < quint64(HeaderSize) || offset >= m_table)
        return fail(QStringLiteral("object %1 has offset %2 outside the object area").arg(ref).arg(offset));
    if (depth > MaxDepth)
        return fail(QStringLiteral("objects nested more than %1 levels deep").arg(MaxDepth));
    const auto cached = m_cache.constFind(offset);
    if (cached != m_cache.cend()) {
        if (cached->expanded == 0)
            return fail(QStringLiteral("object %1 contains itself (a cycle of references)").arg(ref));
        return *cached;
    }
    // Containers must be cached, or a shared one would be parsed again for every reference;
    // strings are worth it as keys repeat. Numbers are quicker to read again than to look up.
    const quint8 kind = m_p[offset] >> 4;
    const bool container = kind >= 0xA && kind <= 0xD;
    if (container)
        m_cache.insert(offset, Parsed{Value(), 0});
    std::optional<Parsed> parsed = parse(offset, depth);
    if (parsed && (container || kind == 0x4 || kind == 0x5 || kind == 0x6))
        m_cache.insert(offset, *parsed);
    return parsed;
}

std::optional<BinaryReader::Parsed> BinaryReader::parseInteger(quint64 offset, int sizeLog2)
{
    if (sizeLog2 > 4)
        return fail(QStringLiteral("integer at offset %1 has an invalid size").arg(offset));
    const int size = 1 << sizeLog2;
    if (!need(offset + 1, quint64(size), offset))
        return std::nullopt;
    // 1, 2 and 4 bytes are unsigned, 8 bytes signed; 16 bytes hold what exceeds 64 bits signed.
    if (size < 8)
        return Parsed{Value::fromInteger(qint64(uint(offset + 1, size))), 1};
    if (size == 8)
        return Parsed{Value::fromInteger(qint64(uint(offset + 1, 8))), 1};
    const quint64 high = uint(offset + 1, 8);
    const quint64 low = uint(offset + 9, 8);
    if (high == 0)
        return Parsed{Value::fromUnsigned(low), 1};
    if (high == ~quint64(0) && qint64(low) < 0)
        return Parsed{Value::fromInteger(qint64(low)), 1};
    return fail(QStringLiteral("integer at offset %1 does not fit 64 bits").arg(offset));
}

std::optional<BinaryReader::Parsed> BinaryReader::parse(quint64 offset, int depth)
{
    const quint8 marker = m_p[offset];
    const int low = marker & 0x0F;
    quint64 pos = offset + 1;
    quint64 n = 0;
    switch (marker >> 4) {
    case 0x0:
        if (marker == 0x08 || marker == 0x09)
            return Parsed{Value::fromBoolean(marker == 0x09), 1};
        return fail(QStringLiteral("object at offset %1 has the unsupported type 0x%2")
                        .arg(offset).arg(marker, 2, 16, QLatin1Char('0')));
    case 0x1:
        return parseInteger(offset, low);
    case 0x2:
    case 0x3: {
        const bool isDate = (marker >> 4) == 0x3;
        if ((isDate && low != 3) || (!isDate && low != 2 && low != 3))
            return fail(QStringLiteral("number at offset %1 has an invalid size").arg(offset));
        const int size = 1 << low;
        if (!need(pos, quint64(size), offset))
            return std::nullopt;
        double d = 0;
        if (size == 4) {
            const quint32 bits = quint32(uint(pos, 4));
            float f;
            std::memcpy(&f, &bits, 4);
            d = f;
        } else {
            const quint64 bits = uint(pos, 8);
            std::memcpy(&d, &bits, 8);
        }
        if (!isDate)
            return Parsed{Value::fromReal(d), 1};
        // Dates are written in XML with four-digit years; Apple's distant past and future
        // (years 1 and 4001) lie well inside, so nothing real is refused.
        const QDateTime date = std::isfinite(d) && std::fabs(d) < 1e12
            ? referenceDate().addMSecs(qint64(std::llround(d * 1000.0)))
            : QDateTime();
        if (!date.isValid() || date.date().year() < 1 || date.date().year() > 9999)
            return fail(QStringLiteral("date at offset %1 is out of range").arg(offset));
        return Parsed{Value::fromDate(date), 1};
    }
    case 0x4:
        if (!count(pos, marker, n) || !need(pos, n, offset))
            return std::nullopt;
        return Parsed{Value::fromData(QByteArray(reinterpret_cast<const char *>(m_p + pos), qsizetype(n))), 1};
    case 0x5:
        if (!count(pos, marker, n) || !need(pos, n, offset))
            return std::nullopt;
        // Apple stores only 7-bit text this way; Latin-1 keeps stray 8-bit bytes readable.
        return Parsed{Value::fromString(QString::fromLatin1(reinterpret_cast<const char *>(m_p + pos), qsizetype(n))), 1};
    case 0x6: {
        if (!count(pos, marker, n))
            return std::nullopt;
        if (n > (std::numeric_limits<quint64>::max() / 2) || !need(pos, n * 2, offset))
            return fail(QStringLiteral("string at offset %1 runs past the object area").arg(offset));
        QStringDecoder utf16(QStringDecoder::Utf16BE, QStringDecoder::Flag::Stateless);
        const QString text = utf16.decode(QByteArrayView(m_p + pos, qsizetype(n * 2)));
        return Parsed{Value::fromString(pairedSurrogates(text)), 1};
    }
    case 0x8: {
        // Keyed archives refer to their objects by UID; a {"CF$UID": n} dictionary is how the
        // XML form spells the same thing, so walkers need only one shape.
        const int size = low + 1;
        if (size > 8)
            return fail(QStringLiteral("UID at offset %1 is longer than 8 bytes").arg(offset));
        if (!need(pos, quint64(size), offset))
            return std::nullopt;
        return Parsed{Value::fromDictionary({{QStringLiteral("CF$UID"), Value::fromUnsigned(uint(pos, size))}}), 2};
    }
    case 0xA:
    case 0xB:
    case 0xC:
    case 0xD:
        return parseContainer(offset, marker, depth);
    default:
        return fail(QStringLiteral("object at offset %1 has the unknown type 0x%2")
                        .arg(offset).arg(marker, 2, 16, QLatin1Char('0')));
    }
}

std::optional<BinaryReader::Parsed> BinaryReader::parseContainer(quint64 offset, quint8 marker, int depth)
{
    quint64 pos = offset + 1;
    quint64 n = 0;
    if (!count(pos, marker, n))
        return std::nullopt;
    const bool isDictionary = (marker >> 4) == 0xD;
    const quint64 refs = isDictionary ? 2 : 1;
    // Checked before anything is reserved: the references must be in the file.
    if (n > (m_table - qMin(pos, m_table)) / (quint64(m_refSize) * refs))
        return fail(QStringLiteral("container at offset %1 claims %2 entries, more than the file holds")
                        .arg(offset).arg(n));
    if (isDictionary)
        return parseDictionary(offset, pos, n, depth);
    // Arrays, and sets and ordered sets, which a property list reads as arrays.
    Array items;
    items.reserve(qsizetype(n));
    quint64 expanded = 1;
    for (quint64 i = 0; i < n; ++i) {
        std::optional<Parsed> item = object(uint(pos + i * quint64(m_refSize), m_refSize), depth + 1);
        if (!item)
            return std::nullopt;
        expanded += item->expanded;
        if (expanded > MaxExpandedValues)
            return fail(QStringLiteral("the list expands to more than %1 values").arg(MaxExpandedValues));
        items.append(std::move(item->value));
    }
    return Parsed{Value::fromArray(items), expanded};
}

std::optional<BinaryReader::Parsed> BinaryReader::parseDictionary(quint64 offset, quint64 pos, quint64 n, int depth)
{
    Dictionary entries;
    entries.reserve(qsizetype(n));
    quint64 expanded = 1;
    const quint64 values = pos + n * quint64(m_refSize);
    for (quint64 i = 0; i < n; ++i) {
        std::optional<Parsed> key = object(uint(pos + i * quint64(m_refSize), m_refSize), depth + 1);
        if (!key)
            return std::nullopt;
        if (!key->value.isString())
            return fail(QStringLiteral("dictionary at offset %1 has a key that is not a string").arg(offset));
        std::optional<Parsed> value = object(uint(values + i * quint64(m_refSize), m_refSize), depth + 1);
        if (!value)
            return std::nullopt;
        expanded += 1 + value->expanded;
        if (expanded > MaxExpandedValues)
            return fail(QStringLiteral("the list expands to more than %1 values").arg(MaxExpandedValues));
        entries.append({key->value.string(), std::move(value->value)});
    }
    return Parsed{Value::fromDictionary(entries), expanded};
}

std::optional<Value> BinaryReader::run()
{
    if (!readTrailer())
        return std::nullopt;
    std::optional<Parsed> root = object(m_top, 0);
    if (!root)
        return std::nullopt;
    return std::move(root->value);
}

}  // namespace

ReadResult readBinary(const QByteArray &data)
{
    BinaryReader reader(data);
    std::optional<Value> root = reader.run();
    if (!root)
        return {std::nullopt, Format::Binary, reader.error()};
    return {std::move(root), Format::Binary, {}};
}

}  // namespace plist::detail
