#include "StringsTable.h"

#include "PropertyList.h"

#include <QFile>
#include <QStringDecoder>

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

class Parser {
public:
    explicit Parser(QStringView text) : p(text.utf16()), begin(text.utf16()), end(text.utf16() + text.size()) {}

    std::optional<StringMap> run(Error *error)
    {
        StringMap map;
        QString key, value;
        while (skipSpaceAndComments()) {
            if (p == end) return map;
            if (!word(key)) return fail(error, QStringLiteral("expected a quoted or unquoted key"));
            if (!skipSpaceAndComments()) return fail(error, m_message);
            if (p < end && *p == u';') {  // the short form: the key is its own value
                ++p;
                map.insert(key, key);
                continue;
            }
            if (p == end || *p != u'=') return fail(error, QStringLiteral("expected \"=\" or \";\" after a key"));
            ++p;
            if (!skipSpaceAndComments()) return fail(error, m_message);
            if (!word(value)) return fail(error, m_message.isEmpty() ? QStringLiteral("expected a value after \"=\"") : m_message);
            if (!skipSpaceAndComments()) return fail(error, m_message);
            if (p == end || *p != u';') return fail(error, QStringLiteral("expected \";\" after a value"));
            ++p;
            map.insert(key, value);
        }
        return fail(error, m_message);
    }

private:
    const char16_t *p;
    const char16_t *const begin;
    const char16_t *const end;
    QString m_message;

    std::optional<StringMap> fail(Error *error, const QString &message)
    {
        if (error) {
            error->line = 1 + std::count(begin, std::min(p, end), u'\n');
            error->message = message;
        }
        return std::nullopt;
    }

    // False on an unterminated comment.
    bool skipSpaceAndComments()
    {
        while (p < end) {
            const char16_t c = *p;
            if (c == u' ' || c == u'\t' || c == u'\n' || c == u'\r' || c == u'\f' || c == u'\v' || c == 0xFEFF
                || c == 0x2028 || c == 0x2029) {
                ++p;
            } else if (c == u'/' && p + 1 < end && p[1] == u'*') {
                const char16_t *q = p + 2;
                while (q + 1 < end && !(q[0] == u'*' && q[1] == u'/')) ++q;
                if (q + 1 >= end) {
                    m_message = QStringLiteral("a comment is not closed");
                    return false;
                }
                p = q + 2;
            } else if (c == u'/' && p + 1 < end && p[1] == u'/') {
                while (p < end && *p != u'\n' && *p != u'\r') ++p;
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
        if (*p == u'"') return quoted(out);
        const char16_t *start = p;
        while (p < end && isUnquotedChar(*p)) ++p;
        if (p == start) return false;
        out = QString(reinterpret_cast<const QChar *>(start), p - start);
        return true;
    }

    bool quoted(QString &out)
    {
        const char16_t *start = ++p;
        while (p < end && *p != u'"' && *p != u'\\') ++p;
        if (p < end && *p == u'"') {  // the common case: nothing to unescape
            out = QString(reinterpret_cast<const QChar *>(start), p - start);
            ++p;
            return true;
        }
        // Find the closing quote first: the unescaped word is never longer than the quoted one,
        // so it is written straight into a buffer of that size.
        const char16_t *close = p;
        while (close < end && *close != u'"') close += (*close == u'\\') ? 2 : 1;
        if (close >= end) {
            p = end;
            m_message = QStringLiteral("a quoted string is not closed");
            return false;
        }
        out.resize(close - start);
        char16_t *w = reinterpret_cast<char16_t *>(out.data());
        char16_t *const first = w;
        for (const char16_t *q = start; q < p;) *w++ = *q++;
        while (p < close) {
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
                while (digits < 4 && p < close && hexValue(*p) >= 0) code = code * 16 + hexValue(*p++), ++digits;
                *w++ = digits ? char16_t(code) : c;
                break;
            }
            default:
                if (c >= u'0' && c <= u'7') {
                    // Up to three octal digits give one byte, taken as a Latin-1 character.
                    int code = c - u'0', digits = 1;
                    while (digits < 3 && p < close && *p >= u'0' && *p <= u'7') code = code * 8 + (*p++ - u'0'), ++digits;
                    *w++ = char16_t(code & 0xFF);
                } else {
                    *w++ = c;  // \" \\ \' and any other character stand for themselves
                }
            }
        }
        out.truncate(w - first);
        p = close + 1;
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
    return Parser(text).run(error);
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
        QStringDecoder decoder(QStringConverter::Utf8, QStringConverter::Flag::Stateless);
        text = decoder.decode(body);
        if (decoder.hasError()) {
            if (error) *error = {0, QStringLiteral("the file is neither UTF-8 nor UTF-16 with a byte-order mark")};
            return std::nullopt;
        }
    }
    // A braced table is the old-style property-list form of the same map.
    const QStringView trimmed = QStringView(text).trimmed();
    if (trimmed.startsWith(u'{')) return fromPropertyList(text.toUtf8(), error);
    return parse(text, error);
}

}  // namespace StringsTable

std::optional<StringMap> dictionaryWithContentsOfFile(const QString &path, StringsTable::Error *error)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        if (error) *error = {0, file.errorString()};
        return std::nullopt;
    }
    return StringsTable::parseData(file.readAll(), error);
}

std::optional<StringMap> dictionaryWithContentsOfFile(const QString &path)
{
    return dictionaryWithContentsOfFile(path, nullptr);
}
