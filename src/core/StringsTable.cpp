#include "StringsTable.h"

#include "PropertyList.h"

#include <QDateTime>
#include <QFile>
#include <QFileInfo>
#include <QMutex>
#include <QStringDecoder>

#include <algorithm>
#include <atomic>
#include <cstring>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

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

const char16_t *findEither(const char16_t *p, const char16_t *end, char16_t a, char16_t b);

// Reads the rest of a quoted word whose first backslash is at `backslash`, resolving escapes
// into `out` as it goes, so an escaped word is scanned once. `out` has room for the rest of the
// text, or is the word's own start: the word never grows, so writing never overtakes reading.
// Returns the closing quote and the word's size in `size`, or `end` when the word is not closed.
const char16_t *unescapeQuoted(const char16_t *p, const char16_t *backslash, const char16_t *const end, char16_t *const w,
                               qsizetype *size)
{
    qsizetype n = 0;
    for (const char16_t *next = backslash;; next = findEither(p, end, u'"', u'\\')) {
        if (next >= end) return end;
        if (w + n != p) std::memmove(w + n, p, size_t(next - p) * sizeof(char16_t));
        n += next - p;
        p = next;
        if (*p == u'"') {
            *size = n;
            return p;
        }
        if (p + 1 >= end) return end;  // a backslash with nothing after it
        const char16_t c = p[1];
        p += 2;
        switch (c) {
        case u'a': w[n++] = 7; break;
        case u'b': w[n++] = 8; break;
        case u'f': w[n++] = 12; break;
        case u'n': w[n++] = 10; break;
        case u'r': w[n++] = 13; break;
        case u't': w[n++] = 9; break;
        case u'v': w[n++] = 11; break;
        case u'U':
        case u'u': {
            // Up to four hexadecimal digits give one UTF-16 code unit.
            int code = 0, digits = 0;
            while (digits < 4 && p < end && hexValue(*p) >= 0) code = code * 16 + hexValue(*p++), ++digits;
            w[n++] = digits ? char16_t(code) : c;
            break;
        }
        default:
            if (c >= u'0' && c <= u'7') {
                // Up to three octal digits give one byte, taken as a Latin-1 character.
                int code = c - u'0', digits = 1;
                while (digits < 3 && p < end && *p >= u'0' && *p <= u'7') code = code * 8 + (*p++ - u'0'), ++digits;
                w[n++] = char16_t(code & 0xFF);
            } else {
                w[n++] = c;  // \" \\ \' and any other character stand for themselves
            }
        }
    }
}

// First unit at or after p that is `a` or `b`, or end.
const char16_t *findEither(const char16_t *p, const char16_t *const end, char16_t a, char16_t b)
{
#if defined(__SSE2__)
    // Eight units at a time; the mask has two bits per unit, so the first set bit over two is
    // the first unit that matched.
    const __m128i va = _mm_set1_epi16(short(a)), vb = _mm_set1_epi16(short(b));
    while (end - p >= 8) {
        const __m128i units = _mm_loadu_si128(reinterpret_cast<const __m128i *>(p));
        const int mask = _mm_movemask_epi8(_mm_or_si128(_mm_cmpeq_epi16(units, va), _mm_cmpeq_epi16(units, vb)));
        if (mask) return p + qCountTrailingZeroBits(uint(mask)) / 2;
        p += 8;
    }
#endif
    while (p < end && *p != a && *p != b) ++p;
    return p;
}

// Bytes the units take in UTF-8 (they are well formed: a surrogate is half of a pair).
qsizetype utf8Length(const char16_t *p, const char16_t *const end)
{
    qsizetype n = 0;
    for (; p < end; ++p) n += *p < 0x80 ? 1 : *p < 0x800 ? 2 : QChar::isSurrogate(*p) ? 2 : 3;
    return n;
}

// Stateless, so a truncated character at the end is an error; a byte-order mark inside the
// text stays a character.
constexpr auto kUtf8Flags = QStringConverter::Flag::Stateless | QStringConverter::Flag::ConvertInitialBom;

// All of the bytes as UTF-16, or nothing when they are not UTF-8.
std::optional<QString> decodeUtf8(QByteArrayView bytes)
{
    // Qt's plain conversion is a good deal faster than a decoder's and puts a replacement
    // character for every malformed sequence, so a text without one came from valid UTF-8.
    // Only a text with one (malformed, or a real U+FFFD) is decoded again to tell which.
    // Unlike the decoder, it drops a byte-order mark at the start, which the grammar takes
    // for white space anyway.
    QString text = QString::fromUtf8(bytes);
    const char16_t *const begin = reinterpret_cast<const char16_t *>(text.constData());
    if (findEither(begin, begin + text.size(), 0xFFFD, 0xFFFD) == begin + text.size()) return text;
    QStringDecoder decoder(QStringConverter::Utf8, kUtf8Flags);
    text = decoder.decode(bytes);
    if (decoder.hasError()) return std::nullopt;
    return text;
}

// A file read once is decoded a block at a time as it is read, so neither its bytes nor its
// text in UTF-16 are ever held whole. Blocks end on a character boundary, so each decodes (and
// is checked) on its own.
class Utf8Blocks {
public:
    // `head`: the bytes already read from `device` (after any byte-order mark), which sits at
    // `headOffset` + head.size().
    Utf8Blocks(QIODevice *device, QByteArray head, qint64 headOffset)
        : m_device(device), m_buffer(std::move(head)), m_rest(m_buffer), m_headOffset(headOffset)
    {
        fill(kBlock + 4);
    }
    bool atEnd() const { return m_rest.isEmpty(); }
    // The line at `bytesBack` bytes before the end of what was decoded so far.
    qsizetype lineAt(qsizetype bytesBack) const
    {
        // Only when a file turns out broken: its start is read again to count the lines.
        qint64 left = m_headOffset + m_consumed - bytesBack;
        qsizetype lines = 1;
        if (!m_device->seek(0)) return 0;
        while (left > 0) {
            const QByteArray chunk = m_device->read(qMin<qint64>(left, kBlock));
            if (chunk.isEmpty()) break;
            lines += chunk.count('\n');
            left -= chunk.size();
        }
        return lines;
    }
    bool hasError() const { return m_decoder.hasError(); }
    // The device failed before its end: what was parsed is not the whole file.
    bool readFailed() const { return m_readFailed; }
    // Appends the next block to `text`. A block is at least as long as the text already there,
    // so a pair that spans many blocks (or an error that keeps asking for more) is parsed again
    // a logarithmic number of times, not once per block.
    void decodeNext(QString &text)
    {
        qsizetype n = qMax(kBlock, text.size());
        fill(n + 4);  // one more byte than a character takes, to see where it ends
        n = qMin(n, m_rest.size());
        // Back up over continuation bytes (at most three) to the start of a character. Stray
        // continuation bytes stay where they are and make the decoder report an error.
        for (int k = 0; k < 3 && n < m_rest.size() && n > 1 && (uchar(m_rest[n]) & 0xC0) == 0x80; ++k) --n;
        const QByteArrayView block = m_rest.first(n);
        m_rest = m_rest.sliced(n);
        m_consumed += n;
        const qsizetype old = text.size();
        text.resize(old + m_decoder.requiredSpace(block.size()));
        const QChar *e = m_decoder.appendToBuffer(text.data() + old, block);
        text.truncate(e - text.constData());
    }

private:
    // Tops the unread bytes up to `n` from the device (fewer at its end).
    void fill(qsizetype n)
    {
        if (m_rest.size() >= n || m_deviceAtEnd) return;
        QByteArray next(n, Qt::Uninitialized);
        std::memcpy(next.data(), m_rest.data(), size_t(m_rest.size()));
        qsizetype have = m_rest.size();
        while (have < n) {
            const qint64 got = m_device->read(next.data() + have, n - have);
            if (got <= 0) {
                m_readFailed = got < 0;
                m_deviceAtEnd = true;
                break;
            }
            have += got;
        }
        next.truncate(have);
        m_buffer = std::move(next);
        m_rest = m_buffer;
    }

    static constexpr qsizetype kBlock = 256 * 1024;
    QIODevice *m_device = nullptr;
    QByteArray m_buffer;  // read from the device: m_rest lies in it
    QByteArrayView m_rest;
    qint64 m_headOffset = 0;
    qint64 m_consumed = 0;
    bool m_deviceAtEnd = false;
    bool m_readFailed = false;
    QStringDecoder m_decoder{QStringConverter::Utf8, kUtf8Flags};
};

// The grammar over UTF-16 text, either all of it at once or fed by a Utf8Blocks.
//
// Text held whole becomes the map's own buffer: a word is kept where it stands, and an escaped
// word is unescaped in place (it never grows, and it starts where its quoted form starts, so no
// text not yet read and no word already kept is touched). Nothing is copied word by word.
//
// Fed text is parsed a pair at a time: a pair that breaks off at the end of the text read so far
// is parsed again from its start once the next block is in (so no rule needs to know about
// blocks), and the text before the pair is dropped; the map copies each pair. A real syntax
// error thus surfaces only when no block is left, which also means invalid bytes anywhere in
// the file are reported before it.
class Parser {
public:
    // `source`: the text as it came, for telling the line of an error (the copy read is
    // unescaped as it goes); or `bytes`, the UTF-8 it was decoded from.
    Parser(QString &&text, QStringView source, QByteArrayView bytes = {})
        : m_text(std::move(text)), m_source(source), m_sourceBytes(bytes), m_linesInBytes(source.isNull())
    {
    }
    Parser(Utf8Blocks *blocks, qsizetype bytes) : m_blocks(blocks), m_bytes(bytes) { refill(0); }

    std::optional<StringMap> run(Error *error)
    {
        StringMap map;
        StringMap::Appender out(map);
        // Real tables spend 40 to 100 bytes on a pair. Room for one pair in 40 bytes costs only
        // the pages written; an index for one in 80 spares it most of its rehashing (one too
        // large costs a cache miss more per key). Neither costs a pass over the text.
        qsizetype size = m_bytes;
        if (!m_blocks) {
            size = m_text.size();
            char16_t *const text = out.adopt(std::move(m_text));
            m_writable = text;
            m_begin = p = text;
            m_end = text + size;
        }
        // Fed text: every unit of a word comes from at least one byte of the file, so its size is
        // room enough for all the words; the pages never written are never used.
        map.reserve(qMin<qsizetype>(size / 40, 1 << 21), m_blocks ? size : 0, qMin<qsizetype>(size / 80, 1 << 20));
        for (;;) {
            const char16_t *const start = p;
            const Step step = pair(out);
            if (step == Step::Pair) continue;
            if (m_blocks && !m_blocks->atEnd()) {
                refill(start - m_begin);
                if (m_blocks->hasError()) return encodingError(error);
                continue;
            }
            if (step == Step::End) {
                out.finish();
                if (m_blocks) map.squeeze();
                return map;
            }
            return fail(error, m_message);
        }
    }

    static std::optional<StringMap> encodingError(Error *error)
    {
        if (error) *error = {0, QStringLiteral("the file is neither UTF-8 nor UTF-16 with a byte-order mark")};
        return std::nullopt;
    }

private:
    enum class Step { Pair, End, Error };

    static const char16_t *begin(QStringView t) { return reinterpret_cast<const char16_t *>(t.data()); }
    static const char16_t *end(QStringView t) { return begin(t) + t.size(); }

    Utf8Blocks *m_blocks = nullptr;
    qsizetype m_bytes = 0;
    QString m_text;  // fed text from the start of the pair being read, or all of it until run()
    QStringView m_source;
    QByteArrayView m_sourceBytes;
    bool m_linesInBytes = false;
    char16_t *m_writable = nullptr;  // the text held whole, in the map's buffer
    const char16_t *m_end = nullptr;
    const char16_t *p = nullptr;
    const char16_t *m_begin = nullptr;
    QString m_message;
    // A word is a view into the text; fed text unescapes into a scratch buffer instead.
    QStringView m_key, m_value;
    QString m_keyScratch, m_valueScratch;

    void refill(qsizetype keepFrom)
    {
        m_text.remove(0, keepFrom);
        m_blocks->decodeNext(m_text);
        m_begin = p = begin(m_text);
        m_end = end(m_text);
    }

    Step pair(StringMap::Appender &out)
    {
        if (!skipSpaceAndComments()) return Step::Error;
        if (p == m_end) return Step::End;
        if (!word(m_key, m_keyScratch)) return error(QStringLiteral("expected a quoted or unquoted key"));
        if (!skipSpaceAndComments()) return Step::Error;
        if (p < m_end && *p == u';') {  // the short form: the key is its own value
            ++p;
            out.add(m_key, m_key);
            return Step::Pair;
        }
        if (p == m_end || *p != u'=') return error(QStringLiteral("expected \"=\" or \";\" after a key"));
        ++p;
        if (!skipSpaceAndComments()) return Step::Error;
        if (!word(m_value, m_valueScratch)) return error(m_message.isEmpty() ? QStringLiteral("expected a value after \"=\"") : m_message);
        if (!skipSpaceAndComments()) return Step::Error;
        if (p == m_end || *p != u';') return error(QStringLiteral("expected \";\" after a value"));
        ++p;
        out.add(m_key, m_value);
        return Step::Pair;
    }

    Step error(const QString &message)
    {
        m_message = message;
        return Step::Error;
    }

    std::optional<StringMap> fail(Error *error, const QString &message)
    {
        if (error) {
            // Fed text before the pair was dropped, and text held whole was unescaped (a \\n
            // became a line feed): the line is counted in the text as it came. The text from
            // the error on is as it came, so its length in bytes tells where the error is.
            const char16_t *at = std::min(p, m_end);
            if (m_blocks) {
                error->line = m_blocks->lineAt(utf8Length(at, m_end));
            } else if (!m_linesInBytes) {
                const QStringView before = m_source.first(at - m_begin);
                error->line = 1 + std::count(before.begin(), before.end(), u'\n');
            } else {
                const QByteArrayView before = m_sourceBytes.first(m_sourceBytes.size() - utf8Length(at, m_end));
                error->line = 1 + std::count(before.begin(), before.end(), '\n');
            }
            error->message = message;
        }
        return std::nullopt;
    }

    // Besides ASCII space, the byte-order mark and the Unicode line and paragraph separators
    // count, as they do for the property-list reader.
    static bool isSpace(char16_t c)
    {
        return c == ' ' || c == '\t' || c == '\n' || c == '\r' || c == '\f' || c == '\v' || c == 0xFEFF || c == 0x2028
            || c == 0x2029;
    }

    // False on an unterminated comment.
    bool skipSpaceAndComments()
    {
        // Most calls stand on a quote, "=" or ";" already.
        if (p < m_end && *p > u' ' && *p < 0x80 && *p != u'/') return true;
        while (p < m_end) {
            if (isSpace(*p)) {
                ++p;
            } else if (*p == u'/' && p + 1 < m_end && p[1] == u'*') {
                const char16_t *q = p + 2;
                while (q + 1 < m_end && !(q[0] == u'*' && q[1] == u'/')) q = findEither(q + 1, m_end, u'*', u'*');
                if (q + 1 >= m_end) {
                    m_message = QStringLiteral("a comment is not closed");
                    return false;
                }
                p = q + 2;
            } else if (*p == u'/' && p + 1 < m_end && p[1] == u'/') {
                p = findEither(p, m_end, u'\n', u'\r');
            } else {
                break;
            }
        }
        return true;
    }

    bool word(QStringView &out, QString &scratch)
    {
        m_message.clear();
        if (p == m_end) return false;
        if (*p == u'"') return quoted(out, scratch);
        const char16_t *start = p;
        while (p < m_end && isUnquotedChar(*p)) ++p;
        if (p == start) return false;
        out = QStringView(start, p - start);
        return true;
    }

    bool quoted(QStringView &out, QString &scratch)
    {
        const char16_t *start = ++p;
        p = findEither(p, m_end, u'"', u'\\');
        if (p < m_end && *p == u'"') {
            out = QStringView(start, p - start);
        } else if (p < m_end) {
            // In place in text held whole; fed text is short (a block or two), and the word is
            // never longer than the rest of it.
            if (!m_writable && scratch.size() < m_end - start) scratch.resize(m_end - start);
            char16_t *const to = m_writable ? m_writable + (start - m_begin) : reinterpret_cast<char16_t *>(scratch.data());
            qsizetype size = 0;
            p = unescapeQuoted(start, p, m_end, to, &size);
            out = QStringView(to, size);
        }
        if (p >= m_end) {
            p = m_end;
            m_message = QStringLiteral("a quoted string is not closed");
            return false;
        }
        ++p;
        return true;
    }
};

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
    return Parser(text.toString(), text).run(error);
}

namespace {

// What a table is, by its first bytes. `Blank`: nothing but white space in what was looked at.
enum class Form { BinaryList, Utf16, Xml, Braced, Plain, Blank };

// Bytes of a UTF-8 byte-order mark at the start, if any.
qsizetype utf8Mark(QByteArrayView bytes)
{
    return bytes.startsWith("\xEF\xBB\xBF") ? 3 : 0;
}

Form formOf(QByteArrayView head)
{
    if (head.startsWith("bplist00")) return Form::BinaryList;
    if (head.startsWith("\xFE\xFF") || head.startsWith("\xFF\xFE")) return Form::Utf16;
    const QByteArrayView body = head.sliced(utf8Mark(head));
    if (looksLikeXml(body.first(qMin<qsizetype>(64, body.size())))) return Form::Xml;
    qsizetype first = 0;
    while (first < body.size() && QChar::isSpace(uchar(body[first]))) ++first;
    if (first == body.size()) return Form::Blank;
    return body[first] == '{' ? Form::Braced : Form::Plain;
}

std::optional<StringMap> parseUtf16(const QByteArray &data, Error *error)
{
    QStringDecoder decoder(data.startsWith("\xFE\xFF") ? QStringConverter::Utf16BE : QStringConverter::Utf16LE,
                           QStringConverter::Flag::Stateless);
    const QString text = decoder.decode(QByteArrayView(data).sliced(2));
    if (decoder.hasError()) {
        if (error) *error = {0, QStringLiteral("the UTF-16 text is damaged")};
        return std::nullopt;
    }
    if (looksLikeXml(text.left(64).toUtf8())) return fromPropertyList(data, error);
    // A braced table is the old-style property-list form of the same map.
    if (QStringView(text).trimmed().startsWith(u'{')) return fromPropertyList(text.toUtf8(), error);
    return Parser(QString(text), text).run(error);  // the copy is unescaped, the text kept for lines
}

}  // namespace

std::optional<StringMap> parseData(const QByteArray &data, Error *error)
{
    const Form form = formOf(data);
    if (form == Form::BinaryList || form == Form::Xml) return fromPropertyList(data, error);
    if (form == Form::Utf16) return parseUtf16(data, error);
    const QByteArrayView body = QByteArrayView(data).sliced(utf8Mark(data));
    std::optional<QString> text = decodeUtf8(body);
    if (!text) return Parser::encodingError(error);
    if (form == Form::Braced) return fromPropertyList(body.toByteArray(), error);
    return Parser(std::move(*text), QStringView(), body).run(error);
}

std::optional<StringMap> readFile(const QString &path, Error *error)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        if (error) *error = {0, file.errorString()};
        return std::nullopt;
    }
    // The start tells the form. Only a plain UTF-8 table is read as it streams in; every other
    // form goes through parseData whole, exactly as a read of all the bytes would.
    QByteArray head = file.read(64 * 1024);
    if (formOf(head) != Form::Plain) return parseData(head + file.readAll(), error);
    const qsizetype bom = utf8Mark(head);
    head.remove(0, bom);
    Utf8Blocks blocks(&file, std::move(head), bom);
    Parser parser(&blocks, qsizetype(qMax<qint64>(file.size() - bom, 0)));
    if (blocks.hasError()) return Parser::encodingError(error);
    auto map = parser.run(error);
    if (blocks.readFailed()) {
        if (error) *error = {0, file.errorString()};
        return std::nullopt;
    }
    return map;
}

}  // namespace StringsTable

namespace {

// The same dictionary is read once for every file added to a document: a large one would be
// parsed hundreds of times over. The maps of the last few files read are kept with the bytes
// they came from; reading the bytes again and comparing them is cheap beside parsing, and
// makes a stale answer impossible whatever happened to the file meanwhile. Keeping them costs a
// single read (the command line) no memory at its peak: the bytes are alive while they are
// parsed, and the map kept shares its storage with the one returned.
struct CachedRead {
    QString path;
    QByteArray bytes;
    StringMap map;
    // The file's size and time when it was read, and the scope it was read in (0: none).
    qint64 size = -1;
    QDateTime modified;
    quint64 scope = 0;
};
struct ReadCache {
    QMutex mutex;
    QList<CachedRead> tables;
};
ReadCache &readCache()
{
    // Never destroyed: freeing a few hundred thousand strings at exit is time spent for nobody.
    static ReadCache *const cache = new ReadCache;
    return *cache;
}
// The scope in force: 0 when none, else a number no earlier scope had.
std::atomic<int> scopeDepth{0};
std::atomic<quint64> scopeNumber{0};
quint64 currentScope()
{
    return scopeDepth.load() > 0 ? scopeNumber.load() : 0;
}

constexpr qsizetype kCachedFiles = 4;
constexpr qsizetype kSmallestCachedFile = 64 * 1024;  // small tables parse faster than they compare

}  // namespace

std::optional<StringMap> StringsTable::parseFileData(const QString &path, const QByteArray &bytes, Error *error)
{
    const bool cacheable = bytes.size() >= kSmallestCachedFile;
    ReadCache &cache = readCache();
    if (cacheable) {
        QMutexLocker lock(&cache.mutex);
        for (CachedRead &c : cache.tables) {
            if (c.path != path || c.bytes != bytes) continue;
            if (const quint64 scope = currentScope(); scope != c.scope) {
                const QFileInfo info(path);
                c.size = info.size();
                c.modified = info.lastModified();
                c.scope = scope;
            }
            return c.map;
        }
    }
    auto map = parseData(bytes, error);
    if (map && cacheable) {
        const QFileInfo info(path);
        CachedRead read{path, bytes, *map, info.size(), info.lastModified(), currentScope()};
        QMutexLocker lock(&cache.mutex);
        cache.tables.removeIf([&](const CachedRead &c) { return c.path == path; });
        cache.tables.prepend(std::move(read));
        while (cache.tables.size() > kCachedFiles) cache.tables.removeLast();
    }
    return map;
}

StringsTable::SnapshotScope::SnapshotScope()
{
    if (scopeDepth.fetch_add(1) == 0) scopeNumber.fetch_add(1);
}

StringsTable::SnapshotScope::~SnapshotScope()
{
    scopeDepth.fetch_sub(1);
}

std::optional<StringMap> StringsTable::snapshotOf(const QString &path)
{
    const quint64 scope = currentScope();
    if (!scope) return std::nullopt;
    ReadCache &cache = readCache();
    QMutexLocker lock(&cache.mutex);
    for (const CachedRead &c : std::as_const(cache.tables)) {
        if (c.path != path || c.scope != scope) continue;
        const QFileInfo info(path);
        if (info.size() == c.size && info.lastModified() == c.modified) return c.map;
    }
    return std::nullopt;
}

std::optional<StringMap> dictionaryWithContentsOfFile(const QString &path, StringsTable::Error *error)
{
    if (auto map = StringsTable::snapshotOf(path)) return map;
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
