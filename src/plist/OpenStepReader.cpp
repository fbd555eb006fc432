// The old text form of NeXTSTEP and OpenStep, as in IB 2 classes.nib files:
//   { key = value; "quoted key" = ( a, "b", <0fbd 77> ); }
// with // and /* */ comments. The root must be a dictionary or an array: a brace-less table of
// key = value pairs is a string table, read by the string-table reader, not here.
#include "PlistInternal.h"

namespace plist::detail {

namespace {

bool isSpace(QChar c)
{
    return c == u' ' || c == u'\t' || c == u'\n' || c == u'\r' || c == u'\f' || c == u'\v'
        || c == QChar(0x2028) || c == QChar(0x2029);
}

// The characters a string may hold without quotes.
bool isUnquoted(QChar c)
{
    const char16_t u = c.unicode();
    return (u >= u'a' && u <= u'z') || (u >= u'A' && u <= u'Z') || (u >= u'0' && u <= u'9')
        || u == u'_' || u == u'$' || u == u'/' || u == u':' || u == u'.' || u == u'-';
}

int hexValue(QChar c)
{
    const char16_t u = c.unicode();
    if (u >= u'0' && u <= u'9')
        return u - u'0';
    if (u >= u'a' && u <= u'f')
        return u - u'a' + 10;
    if (u >= u'A' && u <= u'F')
        return u - u'A' + 10;
    return -1;
}

class OpenStepReader {
public:
    explicit OpenStepReader(QString text) : m_text(std::move(text)), m_s(m_text) {}

    std::optional<Value> run();
    QString error() const { return m_error; }

private:
    std::nullopt_t fail(const QString &why);
    bool atEnd() const { return m_i >= m_s.size(); }
    QChar peek() const { return atEnd() ? QChar() : m_s[m_i]; }
    bool skipSpace();
    std::optional<Value> value(int depth);
    std::optional<QString> string();
    std::optional<QString> quoted();
    bool escape(QString &out);
    std::optional<Value> data();
    std::optional<Value> array(int depth);
    std::optional<Value> dictionary(int depth);

    QString m_text;
    QStringView m_s;
    qsizetype m_i = 0;
    QString m_error;
};

std::nullopt_t OpenStepReader::fail(const QString &why)
{
    if (m_error.isEmpty())
        m_error = QStringLiteral("OpenStep property list: line %1: %2").arg(lineAt(m_s, m_i)).arg(why);
    return std::nullopt;
}

bool OpenStepReader::skipSpace()
{
    while (!atEnd()) {
        if (isSpace(m_s[m_i])) {
            ++m_i;
        } else if (m_s.mid(m_i).startsWith(u"//")) {
            while (!atEnd() && m_s[m_i] != u'\n' && m_s[m_i] != u'\r')
                ++m_i;
        } else if (m_s.mid(m_i).startsWith(u"/*")) {
            const qsizetype end = m_s.indexOf(u"*/", m_i + 2);
            if (end < 0) {
                fail(QStringLiteral("unterminated comment"));
                return false;
            }
            m_i = end + 2;
        } else {
            return true;
        }
    }
    return true;
}

std::optional<Value> OpenStepReader::value(int depth)
{
    if (depth > MaxDepth)
        return fail(QStringLiteral("nested more than %1 levels deep").arg(MaxDepth));
    const QChar c = peek();
    if (c == u'{')
        return dictionary(depth);
    if (c == u'(')
        return array(depth);
    if (c == u'<')
        return data();
    std::optional<QString> s = string();
    if (!s)
        return std::nullopt;
    return Value::fromString(*s);
}

std::optional<QString> OpenStepReader::string()
{
    const QChar c = peek();
    if (c == u'"' || c == u'\'')
        return quoted();
    const qsizetype start = m_i;
    while (!atEnd() && isUnquoted(m_s[m_i]))
        ++m_i;
    if (m_i == start) {
        if (atEnd())
            return fail(QStringLiteral("unexpected end of text"));
        return fail(QStringLiteral("unexpected character \"%1\"").arg(c));
    }
    return m_s.mid(start, m_i - start).toString();
}

std::optional<QString> OpenStepReader::quoted()
{
    const QChar quote = m_s[m_i];
    const qsizetype start = m_i++;
    QString out;
    for (;;) {
        qsizetype j = m_i;
        while (j < m_s.size() && m_s[j] != quote && m_s[j] != u'\\')
            ++j;
        out += m_s.mid(m_i, j - m_i);
        m_i = j;
        if (atEnd()) {
            m_i = start;
            return fail(QStringLiteral("unterminated quoted string"));
        }
        if (m_s[m_i] == quote) {
            ++m_i;
            return pairedSurrogates(std::move(out));
        }
        ++m_i;  // the backslash
        if (!escape(out))
            return std::nullopt;
    }
}

// The escapes of string tables: \" \\ \n \t \r \a \b \f \v, \U and up to four hex digits (a UTF-16
// unit; two in a row make a surrogate pair), \ and up to three octal digits. Any other escaped
// character stands for itself.
bool OpenStepReader::escape(QString &out)
{
    if (atEnd()) {
        fail(QStringLiteral("unterminated quoted string"));
        return false;
    }
    const QChar c = m_s[m_i++];
    switch (c.unicode()) {
    case u'a': out += u'\a'; return true;
    case u'b': out += u'\b'; return true;
    case u'f': out += u'\f'; return true;
    case u'n': out += u'\n'; return true;
    case u'r': out += u'\r'; return true;
    case u't': out += u'\t'; return true;
    case u'v': out += u'\v'; return true;
    case u'U':
    case u'u': {
        char16_t unit = 0;
        int digits = 0;
        for (; digits < 4 && !atEnd() && hexValue(m_s[m_i]) >= 0; ++digits)
            unit = char16_t(unit * 16 + hexValue(m_s[m_i++]));
        out += digits ? QChar(unit) : c;
        return true;
    }
    default:
        break;
    }
    if (c >= u'0' && c <= u'7') {
        int code = c.unicode() - u'0';
        for (int digits = 1; digits < 3 && !atEnd() && m_s[m_i] >= u'0' && m_s[m_i] <= u'7'; ++digits)
            code = code * 8 + (m_s[m_i++].unicode() - u'0');
        out += QChar(char16_t(code));
        return true;
    }
    out += c;
    return true;
}

std::optional<Value> OpenStepReader::data()
{
    const qsizetype start = m_i++;
    QByteArray bytes;
    int high = -1;
    for (;;) {
        if (!skipSpace())
            return std::nullopt;
        if (atEnd()) {
            m_i = start;
            return fail(QStringLiteral("unterminated <data>"));
        }
        const QChar c = m_s[m_i++];
        if (c == u'>')
            break;
        const int nibble = hexValue(c);
        if (nibble < 0)
            return fail(QStringLiteral("\"%1\" is no hexadecimal digit in <data>").arg(c));
        if (high < 0) {
            high = nibble;
        } else {
            bytes.append(char(high * 16 + nibble));
            high = -1;
        }
    }
    if (high >= 0)
        return fail(QStringLiteral("odd number of hexadecimal digits in <data>"));
    return Value::fromData(bytes);
}

std::optional<Value> OpenStepReader::array(int depth)
{
    ++m_i;  // '('
    Array items;
    for (;;) {
        if (!skipSpace())
            return std::nullopt;
        if (peek() == u')')
            break;
        std::optional<Value> item = value(depth + 1);
        if (!item || !skipSpace())
            return std::nullopt;
        items.append(std::move(*item));
        // A comma after the last element is allowed, as Apple's reader allows it.
        if (peek() == u',')
            ++m_i;
        else if (peek() != u')')
            return fail(QStringLiteral("expected \",\" or \")\" in an array"));
    }
    ++m_i;
    return Value::fromArray(items);
}

std::optional<Value> OpenStepReader::dictionary(int depth)
{
    ++m_i;  // '{'
    Dictionary entries;
    for (;;) {
        if (!skipSpace())
            return std::nullopt;
        if (peek() == u'}')
            break;
        if (atEnd())
            return fail(QStringLiteral("unterminated dictionary"));
        std::optional<QString> key = string();
        if (!key || !skipSpace())
            return std::nullopt;
        // "key"; is short for "key" = "key"; as in string tables.
        if (peek() == u';') {
            ++m_i;
            entries.append({*key, Value::fromString(*key)});
            continue;
        }
        if (peek() != u'=')
            return fail(QStringLiteral("expected \"=\" after the key \"%1\"").arg(*key));
        ++m_i;
        if (!skipSpace())
            return std::nullopt;
        std::optional<Value> v = value(depth + 1);
        if (!v || !skipSpace())
            return std::nullopt;
        if (peek() != u';')
            return fail(QStringLiteral("missing \";\" after the value of the key \"%1\"").arg(*key));
        ++m_i;
        entries.append({*key, std::move(*v)});
    }
    ++m_i;
    return Value::fromDictionary(entries);
}

std::optional<Value> OpenStepReader::run()
{
    if (!skipSpace())
        return std::nullopt;
    if (peek() != u'{' && peek() != u'(')
        return fail(QStringLiteral("expected \"{\" or \"(\" at the start"));
    std::optional<Value> root = value(0);
    if (!root || !skipSpace())
        return std::nullopt;
    if (!atEnd())
        return fail(QStringLiteral("unexpected text after the end of the list"));
    return root;
}

}  // namespace

ReadResult readOpenStep(const QByteArray &data)
{
    OpenStepReader reader(decodeText(data));
    std::optional<Value> root = reader.run();
    if (!root)
        return {std::nullopt, Format::OpenStep, reader.error()};
    return {std::move(root), Format::OpenStep, {}};
}

}  // namespace plist::detail
