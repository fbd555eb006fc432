// JSON for the command line, written by hand because QJsonObject sorts its keys and the order of
// a dictionary is part of what a user wants to see. Two-space indentation; tagged scalars on one
// line; NaN and infinities, which JSON lacks, as the strings Apple's XML uses for them.
#include "JsonWriter.h"
#include "PlistInternal.h"

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace json {

namespace {
char hexDigit(unsigned v)
{
    return char(v < 10 ? '0' + v : 'a' + v - 10);
}
}  // namespace

void appendString(QByteArray &out, QStringView s)
{
    // No unit takes more than six bytes (an escape; a character is at most three bytes per
    // unit), so the room is made once and filled through a pointer.
    const qsizetype start = out.size();
    out.resize(start + 2 + 6 * s.size());
    char *w = out.data() + start;
    *w++ = '"';
    const char16_t *p = s.utf16();
    const char16_t *const end = p + s.size();
    while (p < end) {
        const char16_t *scalarEnd = end;
#if defined(__SSE2__)
        // Eight units that are all printable ASCII other than the quote and the backslash are
        // copied as eight bytes. Compared as signed numbers, units from 0x8000 up are negative,
        // so "above 0x1F and below 0x80" holds for exactly the units wanted. Eight units that
        // are not all such go one by one.
        if (end - p >= 8) {
            const __m128i units = _mm_loadu_si128(reinterpret_cast<const __m128i *>(p));
            const __m128i plain = _mm_and_si128(_mm_cmpgt_epi16(units, _mm_set1_epi16(0x1F)),
                                                _mm_cmplt_epi16(units, _mm_set1_epi16(0x80)));
            const __m128i special = _mm_or_si128(_mm_cmpeq_epi16(units, _mm_set1_epi16('"')),
                                                 _mm_cmpeq_epi16(units, _mm_set1_epi16('\\')));
            if (_mm_movemask_epi8(_mm_andnot_si128(special, plain)) == 0xFFFF) {
                _mm_storel_epi64(reinterpret_cast<__m128i *>(w), _mm_packus_epi16(units, units));
                w += 8;
                p += 8;
                continue;
            }
            scalarEnd = p + 8;
        }
#endif
        while (p < scalarEnd) {
            const char16_t u = *p++;
            if (u >= 0x20 && u < 0x80 && u != u'"' && u != u'\\') {
                *w++ = char(u);
            } else if (u < 0x80) {
                *w++ = '\\';
                switch (u) {
                case u'"': *w++ = '"'; break;
                case u'\\': *w++ = '\\'; break;
                case u'\b': *w++ = 'b'; break;
                case u'\f': *w++ = 'f'; break;
                case u'\n': *w++ = 'n'; break;
                case u'\r': *w++ = 'r'; break;
                case u'\t': *w++ = 't'; break;
                default:
                    *w++ = 'u', *w++ = '0', *w++ = '0';
                    *w++ = hexDigit(u >> 4), *w++ = hexDigit(u & 0xF);
                }
            } else if (u < 0x800) {
                *w++ = char(0xC0 | (u >> 6));
                *w++ = char(0x80 | (u & 0x3F));
            } else if (QChar::isHighSurrogate(u) && p < end && QChar::isLowSurrogate(*p)) {
                const char32_t c = QChar::surrogateToUcs4(u, *p++);
                *w++ = char(0xF0 | (c >> 18));
                *w++ = char(0x80 | ((c >> 12) & 0x3F));
                *w++ = char(0x80 | ((c >> 6) & 0x3F));
                *w++ = char(0x80 | (c & 0x3F));
            } else if (QChar::isSurrogate(u)) {
                // Half a pair has no UTF-8 form; JSON can still carry it as an escape.
                *w++ = '\\', *w++ = 'u';
                for (int shift = 12; shift >= 0; shift -= 4) *w++ = hexDigit((u >> shift) & 0xF);
            } else {
                *w++ = char(0xE0 | (u >> 12));
                *w++ = char(0x80 | ((u >> 6) & 0x3F));
                *w++ = char(0x80 | (u & 0x3F));
            }
        }
    }
    *w++ = '"';
    out.truncate(w - out.constData());
}

QString quoted(QStringView s)
{
    QByteArray bytes;
    appendString(bytes, s);
    return QString::fromUtf8(bytes);
}

void Writer::flush()
{
    if (m_buffer.isEmpty()) return;
    m_sink(m_buffer);
    m_buffer.truncate(0);  // keeps the allocation for the next chunk
}

}  // namespace json

namespace plist {

namespace {

void tagged(QByteArray &out, const char *tag, const QByteArray &json)
{
    out.append("{\"").append(tag).append("\": ").append(json).append('}');
}

void appendValue(QByteArray &out, const Value &v, int level)
{
    const QByteArray inner((level + 1) * 2, ' ');
    switch (v.type()) {
    case Type::String:
        json::appendString(out, v.string());
        return;
    case Type::Integer:
        tagged(out, "integer",
               v.isUnsigned() ? QByteArray::number(v.unsignedInteger()) : QByteArray::number(v.integer()));
        return;
    case Type::Real: {
        const QByteArray text = detail::realText(v.real(), true);
        const bool finite = text != "nan" && !text.endsWith("infinity");
        tagged(out, "real", finite ? text : '"' + text + '"');
        return;
    }
    case Type::Boolean:
        tagged(out, "bool", v.boolean() ? "true" : "false");
        return;
    case Type::Date:
        tagged(out, "date", '"' + detail::isoDate(v.date()) + '"');
        return;
    case Type::Data:
        tagged(out, "data", '"' + v.data().toBase64() + '"');
        return;
    case Type::Array:
        if (v.array().isEmpty()) {
            out.append("[]");
            return;
        }
        out.append("[\n");
        for (qsizetype i = 0; i < v.array().size(); ++i) {
            out.append(inner);
            appendValue(out, v.array()[i], level + 1);
            out.append(i + 1 < v.array().size() ? ",\n" : "\n");
        }
        out.append(QByteArray(level * 2, ' ')).append(']');
        return;
    case Type::Dictionary:
        if (v.dictionary().isEmpty()) {
            out.append("{}");
            return;
        }
        out.append("{\n");
        for (qsizetype i = 0; i < v.dictionary().size(); ++i) {
            out.append(inner);
            json::appendString(out, v.dictionary()[i].first);
            out.append(": ");
            appendValue(out, v.dictionary()[i].second, level + 1);
            out.append(i + 1 < v.dictionary().size() ? ",\n" : "\n");
        }
        out.append(QByteArray(level * 2, ' ')).append('}');
        return;
    }
}

}  // namespace

QByteArray toJson(const Value &root)
{
    QByteArray out;
    appendValue(out, root, 0);
    out.append('\n');
    return out;
}

}  // namespace plist
