#include "StringsTable.h"

#include "PropertyList.h"

#include <QFile>
#include <QMutex>
#include <QStringDecoder>

#include <cstring>
#include <type_traits>

namespace StringsTable {
namespace {

// The characters the old-style property-list format allows in an unquoted word.
bool isUnquotedChar(char16_t c)
{
    return (c >= u'a' && c <= u'z') || (c >= u'A' && c <= u'Z') || (c >= u'0' && c <= u'9') || c == u'_'
        || c == u'$' || c == u'/' || c == u':' || c == u'.' || c == u'-';
}

int hexValue(char16_t c)
{
    if (c >= u'0' && c <= u'9') return c - u'0';
    if (c >= u'a' && c <= u'f') return c - u'a' + 10;
    if (c >= u'A' && c <= u'F') return c - u'A' + 10;
    return -1;
}

// Unescapes the inside of a quoted word (which holds at least one backslash).
QString unescape(const char16_t *p, const char16_t *const end)
{
    // The unescaped word is never longer than the quoted one: write straight into a buffer.
    QString out(end - p, Qt::Uninitialized);
    char16_t *w = reinterpret_cast<char16_t *>(out.data());
    char16_t *const first = w;
    while (p < end) {
        if (*p != u'\\') {
            *w++ = *p++;
            continue;
        }
        const char16_t c = *++p;
        ++p;
        switch (c) {
        case u'a': *w++ = 7; break;
        case u'b': *w++ = 8; break;
        case u'f': *w++ = 12; break;
        case u'n': *w++ = 10; break;
        case u'r': *w++ = 13; break;
        case u't': *w++ = 9; break;
        case u'v': *w++ = 11; break;
        case u'U':
        case u'u': {
            // Up to four hexadecimal digits give one UTF-16 code unit.
            int code = 0, digits = 0;
            while (digits < 4 && p < end && hexValue(*p) >= 0) code = code * 16 + hexValue(*p++), ++digits;
            *w++ = digits ? char16_t(code) : c;
            break;
        }
        default:
            if (c >= u'0' && c <= u'7') {
                // Up to three octal digits give one byte, taken as a Latin-1 character.
                int code = c - u'0', digits = 1;
                while (digits < 3 && p < end && *p >= u'0' && *p <= u'7') code = code * 8 + (*p++ - u'0'), ++digits;
                *w++ = char16_t(code & 0xFF);
            } else {
                *w++ = c;  // \" \\ \' and any other character stand for themselves
            }
        }
    }
    out.truncate(w - first);
    return out;
}

// Text of a span of the input: UTF-16 units are copied, UTF-8 bytes decoded (already validated).
QString spanText(const char16_t *b, const char16_t *e) { return QString(reinterpret_cast<const QChar *>(b), e - b); }
QString spanText(const char *b, const char *e) { return QString::fromUtf8(b, e - b); }
QString unescapeSpan(const char16_t *b, const char16_t *e) { return unescape(b, e); }
QString unescapeSpan(const char *b, const char *e)
{
    // Escapes are ASCII, so decoding first and unescaping after gives the same words.
    const QString decoded = spanText(b, e);
    const auto *units = reinterpret_cast<const char16_t *>(decoded.constData());
    return unescape(units, units + decoded.size());
}

// Runs over UTF-16 units or over UTF-8 bytes: every character of the syntax is ASCII, so the
// bytes need no decoding except inside the words themselves, which saves a pass over the text.
template <typename Ch>
class Parser {
public:
    Parser(const Ch *text, qsizetype size) : p(text), begin(text), end(text + size) {}

    std::optional<StringMap> run(Error *error)
    {
        StringMap map;
        // Real tables spend 40 bytes or more on a pair: reserving that many spares the index
        // most of its rehashing, and costs no pass over the text.
        map.reserve(qMin<qsizetype>((end - begin) / 40, 1 << 20));
        QString key, value;
        while (skipSpaceAndComments()) {
            if (p == end) return map;
            if (!word(key)) return fail(error, QStringLiteral("expected a quoted or unquoted key"));
            if (!skipSpaceAndComments()) return fail(error, m_message);
            if (p < end && *p == Ch(';')) {  // the short form: the key is its own value
                ++p;
                map.insert(key, key);
                continue;
            }
            if (p == end || *p != Ch('=')) return fail(error, QStringLiteral("expected \"=\" or \";\" after a key"));
            ++p;
            if (!skipSpaceAndComments()) return fail(error, m_message);
            if (!word(value)) return fail(error, m_message.isEmpty() ? QStringLiteral("expected a value after \"=\"") : m_message);
            if (!skipSpaceAndComments()) return fail(error, m_message);
            if (p == end || *p != Ch(';')) return fail(error, QStringLiteral("expected \";\" after a value"));
            ++p;
            map.insert(key, value);
        }
        return fail(error, m_message);
    }

private:
    const Ch *p;
    const Ch *const begin;
    const Ch *const end;
    QString m_message;

    std::optional<StringMap> fail(Error *error, const QString &message)
    {
        if (error) {
            error->line = 1 + std::count(begin, std::min(p, end), Ch('\n'));
            error->message = message;
        }
        return std::nullopt;
    }

    // Length of a white-space character at p, or 0. Besides ASCII space, the byte-order mark and
    // the Unicode line and paragraph separators count, as they do for the property-list reader.
    qsizetype space() const
    {
        const auto c = static_cast<std::make_unsigned_t<Ch>>(*p);
        if (c == ' ' || c == '\t' || c == '\n' || c == '\r' || c == '\f' || c == '\v') return 1;
        if constexpr (sizeof(Ch) == 2) {
            return (c == 0xFEFF || c == 0x2028 || c == 0x2029) ? 1 : 0;
        } else {
            if (c != 0xEF && c != 0xE2) return 0;
            if (end - p < 3) return 0;
            const auto c1 = static_cast<unsigned char>(p[1]), c2 = static_cast<unsigned char>(p[2]);
            if (c == 0xEF && c1 == 0xBB && c2 == 0xBF) return 3;
            if (c == 0xE2 && c1 == 0x80 && (c2 == 0xA8 || c2 == 0xA9)) return 3;
            return 0;
        }
    }

    // False on an unterminated comment.
    bool skipSpaceAndComments()
    {
        while (p < end) {
            if (const qsizetype n = space()) {
                p += n;
            } else if (*p == Ch('/') && p + 1 < end && p[1] == Ch('*')) {
                const Ch *q = p + 2;
                while (q + 1 < end && !(q[0] == Ch('*') && q[1] == Ch('/'))) ++q;
                if (q + 1 >= end) {
                    m_message = QStringLiteral("a comment is not closed");
                    return false;
                }
                p = q + 2;
            } else if (*p == Ch('/') && p + 1 < end && p[1] == Ch('/')) {
                while (p < end && *p != Ch('\n') && *p != Ch('\r')) ++p;
            } else {
                break;
            }
        }
        return true;
    }

    bool word(QString &out)
    {
        m_message.clear();
        if (p == end) return false;
        if (*p == Ch('"')) return quoted(out);
        const Ch *start = p;
        while (p < end && isUnquotedChar(char16_t(static_cast<std::make_unsigned_t<Ch>>(*p)))) ++p;
        if (p == start) return false;
        out = spanText(start, p);
        return true;
    }

    bool quoted(QString &out)
    {
        const Ch *start = ++p;
        bool escaped = false;
        if constexpr (sizeof(Ch) == 1) {
            // Most words hold no backslash: two memchr calls find their end at vector speed.
            const auto *close = static_cast<const Ch *>(std::memchr(p, '"', size_t(end - p)));
            if (close && !std::memchr(p, '\\', size_t(close - p))) {
                out = spanText(start, close);
                p = close + 1;
                return true;
            }
        }
        while (p < end && *p != Ch('"')) {
            if (*p == Ch('\\')) {
                escaped = true;
                ++p;
            }
            ++p;
        }
        if (p >= end) {
            p = end;
            m_message = QStringLiteral("a quoted string is not closed");
            return false;
        }
        out = escaped ? unescapeSpan(start, p) : spanText(start, p);
        ++p;
        return true;
    }
};

// Whether bytes are well-formed UTF-8 (no overlong forms, no surrogates, nothing past U+10FFFF).
bool isValidUtf8(const char *s, qsizetype size)
{
    const auto *p = reinterpret_cast<const unsigned char *>(s);
    const auto *const end = p + size;
    while (p < end) {
        // Runs of ASCII go eight bytes at a time.
        while (end - p >= 8) {
            quint64 word;
            std::memcpy(&word, p, 8);
            if (word & 0x8080808080808080ULL) break;
            p += 8;
        }
        if (p == end) break;
        const unsigned char c = *p;
        if (c < 0x80) {
            ++p;
            continue;
        }
        int n;
        char32_t min, cp;
        if ((c & 0xE0) == 0xC0) n = 1, min = 0x80, cp = c & 0x1F;
        else if ((c & 0xF0) == 0xE0) n = 2, min = 0x800, cp = c & 0x0F;
        else if ((c & 0xF8) == 0xF0) n = 3, min = 0x10000, cp = c & 0x07;
        else return false;
        if (end - p <= n) return false;
        for (int i = 1; i <= n; ++i) {
            if ((p[i] & 0xC0) != 0x80) return false;
            cp = (cp << 6) | (p[i] & 0x3F);
        }
        if (cp < min || cp > 0x10FFFF || (cp >= 0xD800 && cp <= 0xDFFF)) return false;
        p += n + 1;
    }
    return true;
}

bool looksLikeXml(QByteArrayView head)
{
    while (!head.isEmpty() && (head.front() == ' ' || head.front() == '\n' || head.front() == '\r' || head.front() == '\t'))
        head = head.sliced(1);
    return head.startsWith("<?xml") || head.startsWith("<!DOCTYPE") || head.startsWith("<plist");
}

std::optional<StringMap> fromPropertyList(const QByteArray &data, Error *error)
{
    auto dict = plist::readStringDictionary(data);
    if (!dict) {
        if (error) *error = {0, QStringLiteral("a property list that is not a dictionary of strings")};
        return std::nullopt;
    }
    StringMap map;
    map.reserve(dict->size());
    for (const auto &pair : *dict) map.insert(pair.first, pair.second.string());
    return map;
}

}  // namespace

std::optional<StringMap> parse(QStringView text, Error *error)
{
    return Parser<char16_t>(reinterpret_cast<const char16_t *>(text.data()), text.size()).run(error);
}

std::optional<StringMap> parseData(const QByteArray &data, Error *error)
{
    if (data.startsWith("bplist00")) return fromPropertyList(data, error);
    QString text;
    if (data.startsWith("\xFE\xFF") || data.startsWith("\xFF\xFE")) {
        QStringDecoder decoder(data.startsWith("\xFE\xFF") ? QStringConverter::Utf16BE : QStringConverter::Utf16LE,
                               QStringConverter::Flag::Stateless);
        text = decoder.decode(QByteArrayView(data).sliced(2));
        if (decoder.hasError()) {
            if (error) *error = {0, QStringLiteral("the UTF-16 text is damaged")};
            return std::nullopt;
        }
        if (looksLikeXml(text.left(64).toUtf8())) return fromPropertyList(data, error);
    } else {
        const QByteArrayView body = QByteArrayView(data).sliced(data.startsWith("\xEF\xBB\xBF") ? 3 : 0);
        if (looksLikeXml(body.first(qMin<qsizetype>(64, body.size())))) return fromPropertyList(data, error);
        if (!isValidUtf8(body.data(), body.size())) {
            if (error) *error = {0, QStringLiteral("the file is neither UTF-8 nor UTF-16 with a byte-order mark")};
            return std::nullopt;
        }
        qsizetype first = 0;
        while (first < body.size() && QChar::isSpace(uchar(body[first]))) ++first;
        if (first < body.size() && body[first] == '{') return fromPropertyList(body.toByteArray(), error);
        return Parser<char>(body.data(), body.size()).run(error);
    }
    // A braced table is the old-style property-list form of the same map.
    const QStringView trimmed = QStringView(text).trimmed();
    if (trimmed.startsWith(u'{')) return fromPropertyList(text.toUtf8(), error);
    return parse(text, error);
}

}  // namespace StringsTable

namespace {

// The same dictionary is read once for every file added to a document: a large one would be
// parsed hundreds of times over. The maps of the last few files read are kept with the bytes
// they came from; reading the bytes again and comparing them is cheap beside parsing, and
// makes a stale answer impossible whatever happened to the file meanwhile.
struct CachedRead {
    QString path;
    QByteArray bytes;
    StringMap map;
};

QMutex cacheMutex;
QList<CachedRead> &readCache()
{
    static QList<CachedRead> cache;
    return cache;
}
constexpr qsizetype kCachedFiles = 4;
constexpr qsizetype kSmallestCachedFile = 64 * 1024;  // small tables parse faster than they compare

}  // namespace

std::optional<StringMap> StringsTable::parseFileData(const QString &path, const QByteArray &bytes, Error *error)
{
    const bool cacheable = bytes.size() >= kSmallestCachedFile;
    if (cacheable) {
        QMutexLocker lock(&cacheMutex);
        for (const CachedRead &c : std::as_const(readCache()))
            if (c.path == path && c.bytes == bytes) return c.map;
    }
    auto map = parseData(bytes, error);
    if (map && cacheable) {
        QMutexLocker lock(&cacheMutex);
        QList<CachedRead> &cache = readCache();
        cache.removeIf([&](const CachedRead &c) { return c.path == path; });
        cache.prepend({path, bytes, *map});
        while (cache.size() > kCachedFiles) cache.removeLast();
    }
    return map;
}

std::optional<StringMap> dictionaryWithContentsOfFile(const QString &path, StringsTable::Error *error)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        if (error) *error = {0, file.errorString()};
        return std::nullopt;
    }
    return StringsTable::parseFileData(path, file.readAll(), error);
}

std::optional<StringMap> dictionaryWithContentsOfFile(const QString &path)
{
    return dictionaryWithContentsOfFile(path, nullptr);
}
