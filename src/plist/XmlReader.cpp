// The XML form. A small parser of our own rather than QXmlStreamReader, for two reasons:
// - Apple's writer puts control characters (key equivalents such as Escape) into strings as they
//   are, which a conforming XML parser refuses; Apple's reader takes them, so must we.
// - Entities stay under our control: a DOCTYPE with entity declarations is refused and only the
//   five predefined entities and character references are expanded, so nothing external is
//   fetched and nothing can expand beyond the size of the input.
#include "PlistInternal.h"

#include <QStringDecoder>

namespace plist::detail {

namespace {

bool isSpace(QChar c) { return c == u' ' || c == u'\t' || c == u'\n' || c == u'\r'; }

bool isNameChar(QChar c)
{
    return c.isLetterOrNumber() || c == u'_' || c == u':' || c == u'.' || c == u'-';
}

// The encoding named in the XML declaration, lower case; empty when there is none.
QByteArray declaredEncoding(const QByteArray &data)
{
    if (!data.startsWith("<?xml"))
        return {};
    const qsizetype end = data.indexOf("?>");
    if (end < 0)
        return {};
    const QByteArray decl = data.left(end);
    qsizetype at = decl.indexOf("encoding");
    if (at < 0)
        return {};
    at = decl.indexOf('=', at);
    while (at >= 0 && ++at < decl.size() && isSpace(QLatin1Char(decl[at]))) {
    }
    if (at < 0 || at >= decl.size() || (decl[at] != '"' && decl[at] != '\''))
        return {};
    const qsizetype close = decl.indexOf(decl[at], at + 1);
    return close < 0 ? QByteArray() : decl.mid(at + 1, close - at - 1).toLower();
}

std::optional<QString> decodeXml(const QByteArray &data, QString *error)
{
    using D = QStringDecoder;
    if (data.startsWith("\xFE\xFF"))
        return D(D::Utf16BE, D::Flag::Stateless).decode(data.mid(2));
    if (data.startsWith("\xFF\xFE"))
        return D(D::Utf16LE, D::Flag::Stateless).decode(data.mid(2));
    if (data.size() >= 2 && data[0] == 0 && data[1] == '<')
        return D(D::Utf16BE, D::Flag::Stateless).decode(data);
    if (data.size() >= 2 && data[0] == '<' && data[1] == 0)
        return D(D::Utf16LE, D::Flag::Stateless).decode(data);
    QByteArray body = data.startsWith("\xEF\xBB\xBF") ? data.mid(3) : data;
    qsizetype lead = 0;
    while (lead < body.size() && isSpace(QLatin1Char(body[lead])))
        ++lead;
    body = body.mid(lead);
    const QByteArray name = declaredEncoding(body);
    // A declaration saying UTF-16 over 8-bit bytes is a mislabelled UTF-8 file.
    if (name.isEmpty() || name == "utf-8" || name == "utf8" || name.startsWith("utf-16"))
        return D(D::Utf8, D::Flag::Stateless).decode(body);
    D other(name.constData(), D::Flag::Stateless);
    if (!other.isValid()) {
        *error = QStringLiteral("unsupported text encoding \"%1\"").arg(QString::fromLatin1(name));
        return std::nullopt;
    }
    return other.decode(body);
}

class XmlReader {
public:
    explicit XmlReader(QString text) : m_text(std::move(text)), m_s(m_text) {}

    std::optional<Value> run();
    QString error() const { return m_error; }

private:
    std::nullopt_t fail(const QString &why);
    bool atEnd() const { return m_i >= m_s.size(); }
    bool at(QLatin1StringView s) const { return m_s.mid(m_i).startsWith(s); }
    void skipSpace();
    bool skipPast(QLatin1StringView terminator, const QString &what);
    bool skipMisc();
    bool skipDoctype();
    bool readName(QStringView &name);
    bool readStartTag(QStringView &name, bool &empty);
    bool readEndTag(QStringView name);
    bool nextChild(QStringView parent, bool &isEnd);
    bool readEntity(QString &out);
    bool readText(QStringView element, QString &out);
    std::optional<Value> readValue(int depth);
    std::optional<Value> readScalar(QStringView name, bool empty);
    std::optional<Value> readArray(int depth);
    std::optional<Value> readDict(int depth);

    QString m_text;
    QStringView m_s;
    qsizetype m_i = 0;
    QString m_error;
};

std::nullopt_t XmlReader::fail(const QString &why)
{
    if (m_error.isEmpty())
        m_error = QStringLiteral("XML property list: line %1: %2").arg(lineAt(m_s, m_i)).arg(why);
    m_i = m_s.size();  // stop every loop above us
    return std::nullopt;
}

void XmlReader::skipSpace()
{
    while (!atEnd() && isSpace(m_s[m_i]))
        ++m_i;
}

bool XmlReader::skipPast(QLatin1StringView terminator, const QString &what)
{
    const qsizetype end = m_s.indexOf(terminator, m_i);
    if (end < 0) {
        fail(QStringLiteral("unterminated %1").arg(what));
        return false;
    }
    m_i = end + terminator.size();
    return true;
}

// Blank space, comments and processing instructions, which may stand between elements.
bool XmlReader::skipMisc()
{
    for (;;) {
        skipSpace();
        if (at(QLatin1StringView("<!--"))) {
            if (!skipPast(QLatin1StringView("-->"), QStringLiteral("comment")))
                return false;
        } else if (at(QLatin1StringView("<?"))) {
            if (!skipPast(QLatin1StringView("?>"), QStringLiteral("processing instruction")))
                return false;
        } else {
            return true;
        }
    }
}

// The doctype names Apple's DTD, which is never fetched. An internal subset may only hold
// declarations that do not define entities.
bool XmlReader::skipDoctype()
{
    m_i += 9;
    bool inSubset = false;
    while (!atEnd()) {
        const QChar c = m_s[m_i];
        if (c == u'"' || c == u'\'') {
            const qsizetype close = m_s.indexOf(c, m_i + 1);
            if (close < 0)
                break;
            m_i = close + 1;
        } else if (inSubset && at(QLatin1StringView("<!ENTITY"))) {
            fail(QStringLiteral("entity declarations are not allowed in a property list"));
            return false;
        } else if (inSubset && at(QLatin1StringView("<!--"))) {
            if (!skipPast(QLatin1StringView("-->"), QStringLiteral("comment")))
                return false;
        } else {
            ++m_i;
            if (c == u'[')
                inSubset = true;
            else if (c == u']')
                inSubset = false;
            else if (c == u'>' && !inSubset)
                return true;
        }
    }
    fail(QStringLiteral("unterminated DOCTYPE"));
    return false;
}

bool XmlReader::readName(QStringView &name)
{
    const qsizetype start = m_i;
    while (!atEnd() && isNameChar(m_s[m_i]))
        ++m_i;
    name = m_s.mid(start, m_i - start);
    if (name.isEmpty()) {
        fail(QStringLiteral("expected an element name"));
        return false;
    }
    return true;
}

bool XmlReader::readStartTag(QStringView &name, bool &empty)
{
    ++m_i;  // '<'
    if (!readName(name))
        return false;
    for (;;) {
        skipSpace();
        if (at(QLatin1StringView("/>"))) {
            m_i += 2;
            empty = true;
            return true;
        }
        if (!atEnd() && m_s[m_i] == u'>') {
            ++m_i;
            empty = false;
            return true;
        }
        // An attribute: name = "value". Only <plist version="1.0"> has one, and it tells nothing.
        QStringView attribute;
        if (!readName(attribute))
            return false;
        skipSpace();
        if (atEnd() || m_s[m_i] != u'=') {
            fail(QStringLiteral("malformed attribute in <%1>").arg(name));
            return false;
        }
        ++m_i;
        skipSpace();
        if (atEnd() || (m_s[m_i] != u'"' && m_s[m_i] != u'\'')) {
            fail(QStringLiteral("malformed attribute in <%1>").arg(name));
            return false;
        }
        const qsizetype close = m_s.indexOf(m_s[m_i], m_i + 1);
        if (close < 0) {
            fail(QStringLiteral("unterminated attribute in <%1>").arg(name));
            return false;
        }
        m_i = close + 1;
    }
}

bool XmlReader::readEndTag(QStringView name)
{
    m_i += 2;  // "</"
    QStringView found;
    if (!readName(found))
        return false;
    skipSpace();
    if (found != name || atEnd() || m_s[m_i] != u'>') {
        fail(QStringLiteral("expected </%1> but found </%2>").arg(name, found));
        return false;
    }
    ++m_i;
    return true;
}

// Moves to the next child element of a container, or past its end tag (isEnd).
bool XmlReader::nextChild(QStringView parent, bool &isEnd)
{
    if (!skipMisc())
        return false;
    if (atEnd()) {
        fail(QStringLiteral("unterminated <%1> element").arg(parent));
        return false;
    }
    if (at(QLatin1StringView("</"))) {
        isEnd = true;
        return readEndTag(parent);
    }
    if (m_s[m_i] != u'<') {
        fail(QStringLiteral("unexpected text inside <%1>").arg(parent));
        return false;
    }
    isEnd = false;
    return true;
}

bool XmlReader::readEntity(QString &out)
{
    const qsizetype semicolon = m_s.indexOf(u';', m_i);
    if (semicolon < 0 || semicolon - m_i > 12) {
        fail(QStringLiteral("a bare \"&\" must be written &amp;"));
        return false;
    }
    const QStringView name = m_s.mid(m_i + 1, semicolon - m_i - 1);
    m_i = semicolon + 1;
    if (name == u"amp")
        out += u'&';
    else if (name == u"lt")
        out += u'<';
    else if (name == u"gt")
        out += u'>';
    else if (name == u"quot")
        out += u'"';
    else if (name == u"apos")
        out += u'\'';
    else if (name.startsWith(u'#')) {
        const bool hex = name.size() > 1 && (name[1] == u'x' || name[1] == u'X');
        bool ok = false;
        const uint code = name.mid(hex ? 2 : 1).toUInt(&ok, hex ? 16 : 10);
        if (!ok || code > 0x10FFFF || (code >= 0xD800 && code <= 0xDFFF)) {
            fail(QStringLiteral("invalid character reference &%1;").arg(name));
            return false;
        }
        const char32_t c = code;
        out += QString::fromUcs4(&c, 1);
    } else {
        fail(QStringLiteral("entity reference &%1; is not allowed (only &amp; &lt; &gt; &quot; "
                            "&apos; and character references are)").arg(name));
        return false;
    }
    return true;
}

// Character content up to </element>. Line ends stay as written, as Apple's reader keeps them.
bool XmlReader::readText(QStringView element, QString &out)
{
    for (;;) {
        qsizetype j = m_i;
        while (j < m_s.size() && m_s[j] != u'<' && m_s[j] != u'&')
            ++j;
        out += m_s.mid(m_i, j - m_i);
        m_i = j;
        if (atEnd()) {
            fail(QStringLiteral("unterminated <%1> element").arg(element));
            return false;
        }
        if (m_s[m_i] == u'&') {
            if (!readEntity(out))
                return false;
        } else if (at(QLatin1StringView("</"))) {
            return readEndTag(element);
        } else if (at(QLatin1StringView("<![CDATA["))) {
            const qsizetype end = m_s.indexOf(QLatin1StringView("]]>"), m_i + 9);
            if (end < 0) {
                fail(QStringLiteral("unterminated CDATA section"));
                return false;
            }
            out += m_s.mid(m_i + 9, end - m_i - 9);
            m_i = end + 3;
        } else if (at(QLatin1StringView("<!--"))) {
            if (!skipPast(QLatin1StringView("-->"), QStringLiteral("comment")))
                return false;
        } else if (at(QLatin1StringView("<?"))) {
            if (!skipPast(QLatin1StringView("?>"), QStringLiteral("processing instruction")))
                return false;
        } else {
            fail(QStringLiteral("unexpected element inside <%1>").arg(element));
            return false;
        }
    }
}

std::optional<Value> XmlReader::readValue(int depth)
{
    if (depth > MaxDepth)
        return fail(QStringLiteral("nested more than %1 levels deep").arg(MaxDepth));
    QStringView name;
    bool empty = false;
    if (!readStartTag(name, empty))
        return std::nullopt;
    if (name == u"dict")
        return empty ? Value::fromDictionary({}) : readDict(depth);
    if (name == u"array")
        return empty ? Value::fromArray({}) : readArray(depth);
    return readScalar(name, empty);
}

std::optional<Value> XmlReader::readScalar(QStringView name, bool empty)
{
    const qsizetype start = m_i;
    QString text;
    if (!empty && !readText(name, text))
        return std::nullopt;
    std::optional<Value> v;
    if (name == u"string")
        return Value::fromString(text);
    if (name == u"integer")
        v = parseXmlInteger(text);
    else if (name == u"real")
        v = parseXmlReal(text);
    else if (name == u"date")
        v = parseXmlDate(text);
    else if (name == u"data")
        v = parseXmlData(text);
    else if ((name == u"true" || name == u"false") && text.trimmed().isEmpty())
        return Value::fromBoolean(name == u"true");
    else if (name == u"key")
        return fail(QStringLiteral("<key> outside a <dict>"));
    else if (name == u"true" || name == u"false")
        return fail(QStringLiteral("<%1> must be empty").arg(name));
    else
        return fail(QStringLiteral("unknown element <%1>").arg(name));
    if (!v) {
        m_i = start;
        return fail(QStringLiteral("invalid <%1> value \"%2\"").arg(name, text.left(40).trimmed()));
    }
    return v;
}

std::optional<Value> XmlReader::readArray(int depth)
{
    Array items;
    for (bool isEnd = false;;) {
        if (!nextChild(u"array", isEnd))
            return std::nullopt;
        if (isEnd)
            return Value::fromArray(items);
        std::optional<Value> item = readValue(depth + 1);
        if (!item)
            return std::nullopt;
        items.append(std::move(*item));
    }
}

std::optional<Value> XmlReader::readDict(int depth)
{
    Dictionary entries;
    for (bool isEnd = false;;) {
        if (!nextChild(u"dict", isEnd))
            return std::nullopt;
        if (isEnd)
            return Value::fromDictionary(entries);
        QStringView name;
        bool empty = false;
        if (!readStartTag(name, empty))
            return std::nullopt;
        if (name != u"key")
            return fail(QStringLiteral("expected <key> in <dict> but found <%1>").arg(name));
        QString key;
        if (!empty && !readText(u"key", key))
            return std::nullopt;
        if (!nextChild(u"dict", isEnd))
            return std::nullopt;
        if (isEnd)
            return fail(QStringLiteral("key \"%1\" has no value").arg(key));
        std::optional<Value> value = readValue(depth + 1);
        if (!value)
            return std::nullopt;
        entries.append({key, std::move(*value)});
    }
}

std::optional<Value> XmlReader::run()
{
    if (at(QLatin1StringView("<?xml")) && !skipPast(QLatin1StringView("?>"), QStringLiteral("XML declaration")))
        return std::nullopt;
    for (;;) {
        if (!skipMisc())
            return std::nullopt;
        if (!at(QLatin1StringView("<!DOCTYPE")))
            break;
        if (!skipDoctype())
            return std::nullopt;
    }
    if (atEnd() || m_s[m_i] != u'<')
        return fail(QStringLiteral("no root element"));

    std::optional<Value> root;
    const qsizetype rootStart = m_i;
    QStringView name;
    bool empty = false;
    if (!readStartTag(name, empty))
        return std::nullopt;
    if (name == u"plist") {
        bool isEnd = false;
        if (empty || !nextChild(u"plist", isEnd) || isEnd)
            return fail(QStringLiteral("the <plist> element holds no value"));
        root = readValue(1);
        if (!root || !nextChild(u"plist", isEnd))
            return std::nullopt;
        if (!isEnd)
            return fail(QStringLiteral("the <plist> element holds more than one value"));
    } else {
        // Apple's reader also takes a bare value without the <plist> wrapper.
        m_i = rootStart;
        root = readValue(0);
        if (!root)
            return std::nullopt;
    }
    if (!skipMisc())
        return std::nullopt;
    if (!atEnd())
        return fail(QStringLiteral("unexpected content after the property list"));
    return root;
}

}  // namespace

ReadResult readXml(const QByteArray &data)
{
    QString encodingError;
    std::optional<QString> text = decodeXml(data, &encodingError);
    if (!text)
        return {std::nullopt, Format::Xml, QStringLiteral("XML property list: ") + encodingError};
    XmlReader reader(std::move(*text));
    std::optional<Value> root = reader.run();
    if (!root)
        return {std::nullopt, Format::Xml, reader.error()};
    return {std::move(root), Format::Xml, {}};
}

}  // namespace plist::detail
