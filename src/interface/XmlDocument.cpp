#include "XmlDocument.h"

#include <QStringDecoder>
#include <cstring>

namespace interface {

namespace {

bool isSpace(char c) { return c == ' ' || c == '\t' || c == '\n' || c == '\r'; }

bool isNameChar(char c)
{
    return !isSpace(c) && c != '/' && c != '>' && c != '<' && c != '=' && c != '"' && c != '\'' && c != '&'
           && c != '\0';
}

bool isNameStart(char c)
{
    return isNameChar(c) && c != '-' && c != '.' && !(c >= '0' && c <= '9');
}

// Appends a code point; false for one XML cannot hold.
bool appendCodePoint(QString &out, uint cp)
{
    if (cp == 0 || cp > 0x10FFFF || (cp >= 0xD800 && cp <= 0xDFFF)) return false;
    if (cp >= 0x10000) {
        const char32_t c = cp;
        out.append(QString::fromUcs4(&c, 1));
    } else {
        out.append(QChar(char16_t(cp)));
    }
    return true;
}

// Decodes the reference starting at data[pos] == '&'. Returns the position after ';', or -1.
qsizetype decodeReference(const char *data, qsizetype pos, qsizetype end, QString &out)
{
    qsizetype semi = pos + 1;
    while (semi < end && semi - pos <= 12 && data[semi] != ';') ++semi;
    if (semi >= end || data[semi] != ';') return -1;
    const QByteArrayView ref(data + pos + 1, semi - pos - 1);
    if (ref.isEmpty()) return -1;
    if (ref[0] == '#') {
        bool ok = false;
        uint cp = 0;
        if (ref.size() > 1 && (ref[1] == 'x' || ref[1] == 'X'))
            cp = ref.sliced(2).toUInt(&ok, 16);
        else
            cp = ref.sliced(1).toUInt(&ok, 10);
        // toUInt accepts signs and spaces; the grammar does not.
        for (char c : ref.sliced(ref.size() > 1 && (ref[1] == 'x' || ref[1] == 'X') ? 2 : 1))
            if (!((c >= '0' && c <= '9') || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F'))) ok = false;
        if (!ok || !appendCodePoint(out, cp)) return -1;
        return semi + 1;
    }
    if (ref == "amp") out.append(u'&');
    else if (ref == "lt") out.append(u'<');
    else if (ref == "gt") out.append(u'>');
    else if (ref == "quot") out.append(u'"');
    else if (ref == "apos") out.append(u'\'');
    else return -1;
    return semi + 1;
}

// Decodes character data between [from, to): references, line ends. No markup inside.
bool decodeChars(const char *data, qsizetype from, qsizetype to, QString &out, bool attribute)
{
    qsizetype run = from;
    auto flush = [&](qsizetype upTo) {
        if (upTo > run) out.append(QString::fromUtf8(data + run, upTo - run));
    };
    for (qsizetype i = from; i < to; ++i) {
        const char c = data[i];
        if (c == '&') {
            flush(i);
            const qsizetype next = decodeReference(data, i, to, out);
            if (next < 0) return false;
            i = next - 1;
            run = next;
        } else if (c == '\r') {
            flush(i);
            out.append(attribute ? u' ' : u'\n');
            if (i + 1 < to && data[i + 1] == '\n') ++i;
            run = i + 1;
        } else if (attribute && (c == '\n' || c == '\t')) {
            flush(i);
            out.append(u' ');
            run = i + 1;
        }
    }
    flush(to);
    return true;
}

qsizetype find(const QByteArray &bytes, const char *what, qsizetype from)
{
    return bytes.indexOf(what, from);
}

}  // namespace

const XmlAttribute *XmlElement::attribute(const char *attrName) const
{
    for (const XmlAttribute &a : attributes)
        if (a.name == attrName) return &a;
    return nullptr;
}

QString XmlElement::attributeValue(const char *attrName) const
{
    const XmlAttribute *a = attribute(attrName);
    return a ? a->value : QString();
}

bool XmlDocument::parse(const QByteArray &utf8, QString *error)
{
    return parse(utf8, Limits(), error);
}

bool XmlDocument::parse(const QByteArray &utf8, const Limits &limits, QString *error)
{
    m_bytes = utf8;
    m_elements.clear();
    const char *data = m_bytes.constData();
    const qsizetype size = m_bytes.size();
    qsizetype pos = 0;

    auto fail = [&](const QString &why, qsizetype at) {
        if (error) *error = QStringLiteral("line %1: %2").arg(lineOf(at)).arg(why);
        m_elements.clear();
        return false;
    };

    {
        QStringDecoder check(QStringDecoder::Utf8, QStringConverter::Flag::Stateless);
        const QString decoded = check.decode(m_bytes);  // decoding is lazy until assigned
        if (check.hasError()) return fail(QStringLiteral("the file is not valid UTF-8 text"), 0);
    }
    if (size >= 3 && std::memcmp(data, "\xEF\xBB\xBF", 3) == 0) pos = 3;

    auto skipSpace = [&]() {
        while (pos < size && isSpace(data[pos])) ++pos;
    };
    auto startsWith = [&](const char *s) {
        const qsizetype n = qsizetype(std::strlen(s));
        return pos + n <= size && std::memcmp(data + pos, s, size_t(n)) == 0;
    };
    // Comments, processing instructions; false at anything else.
    auto skipMisc = [&](QString *why) -> int {
        if (startsWith("<!--")) {
            const qsizetype e = find(m_bytes, "-->", pos + 4);
            if (e < 0) { *why = QStringLiteral("unterminated comment"); return -1; }
            pos = e + 3;
            return 1;
        }
        if (startsWith("<?")) {
            const qsizetype e = find(m_bytes, "?>", pos + 2);
            if (e < 0) { *why = QStringLiteral("unterminated processing instruction"); return -1; }
            pos = e + 2;
            return 1;
        }
        return 0;
    };

    QString why;
    // Prolog.
    for (;;) {
        skipSpace();
        if (pos >= size) return fail(QStringLiteral("no root element"), pos);
        const int m = skipMisc(&why);
        if (m < 0) return fail(why, pos);
        if (m > 0) continue;
        if (startsWith("<!DOCTYPE")) {
            // Skipped whole, internal subset included; nothing in it is ever used.
            qsizetype i = pos + 9;
            int bracket = 0;
            char quote = 0;
            for (; i < size; ++i) {
                const char c = data[i];
                if (quote) { if (c == quote) quote = 0; continue; }
                if (c == '"' || c == '\'') quote = c;
                else if (c == '[') ++bracket;
                else if (c == ']') --bracket;
                else if (c == '>' && bracket <= 0) break;
            }
            if (i >= size) return fail(QStringLiteral("unterminated document type declaration"), pos);
            pos = i + 1;
            continue;
        }
        if (data[pos] == '<') break;
        return fail(QStringLiteral("text before the root element"), pos);
    }

    std::vector<int> stack;
    bool rootDone = false;
    while (pos < size) {
        if (rootDone) {
            skipSpace();
            if (pos >= size) break;
            const int m = skipMisc(&why);
            if (m < 0) return fail(why, pos);
            if (m == 0) return fail(QStringLiteral("content after the root element"), pos);
            continue;
        }
        if (data[pos] != '<') {
            // Character data: check its references; it is decoded only when asked for.
            const qsizetype lt = m_bytes.indexOf('<', pos);
            const qsizetype e = lt < 0 ? size : lt;
            if (stack.empty()) return fail(QStringLiteral("text outside the root element"), pos);
            const QByteArrayView chars(data + pos, e - pos);
            for (qsizetype j = chars.indexOf('&'); j >= 0; j = chars.indexOf('&', j + 1)) {
                QString scratch;
                if (decodeReference(data, pos + j, e, scratch) < 0)
                    return fail(QStringLiteral("unknown or malformed entity reference"), pos + j);
            }
            pos = e;
            continue;
        }
        if (startsWith("<!--") || startsWith("<?")) {
            if (skipMisc(&why) < 0) return fail(why, pos);
            continue;
        }
        if (startsWith("<![CDATA[")) {
            if (stack.empty()) return fail(QStringLiteral("CDATA outside the root element"), pos);
            const qsizetype e = find(m_bytes, "]]>", pos + 9);
            if (e < 0) return fail(QStringLiteral("unterminated CDATA section"), pos);
            pos = e + 3;
            continue;
        }
        if (startsWith("<!")) return fail(QStringLiteral("unexpected declaration"), pos);
        if (startsWith("</")) {
            const qsizetype nameStart = pos + 2;
            qsizetype i = nameStart;
            while (i < size && isNameChar(data[i])) ++i;
            const QByteArrayView name(data + nameStart, i - nameStart);
            if (stack.empty()) return fail(QStringLiteral("end tag without start tag"), pos);
            XmlElement &open = m_elements[size_t(stack.back())];
            if (name != open.name)
                return fail(QStringLiteral("end tag </%1> does not match <%2>")
                                .arg(QString::fromUtf8(name), QString::fromUtf8(open.name)),
                            pos);
            while (i < size && isSpace(data[i])) ++i;
            if (i >= size || data[i] != '>') return fail(QStringLiteral("malformed end tag"), pos);
            open.contentEnd = pos;
            open.end = i + 1;
            pos = i + 1;
            stack.pop_back();
            if (stack.empty()) rootDone = true;
            continue;
        }
        // Start tag.
        if (qsizetype(m_elements.size()) >= limits.maxElements)
            return fail(QStringLiteral("too many elements"), pos);
        if (int(stack.size()) >= limits.maxDepth) return fail(QStringLiteral("elements nested too deeply"), pos);
        if (stack.empty() && !m_elements.empty()) return fail(QStringLiteral("second root element"), pos);
        XmlElement el;
        el.start = pos;
        qsizetype i = pos + 1;
        if (i >= size || !isNameStart(data[i])) return fail(QStringLiteral("malformed start tag"), pos);
        while (i < size && isNameChar(data[i])) ++i;
        el.name = QByteArray(data + pos + 1, i - pos - 1);
        el.nameEnd = i;
        el.attributesEnd = i;
        for (;;) {
            const qsizetype beforeSpace = i;
            while (i < size && isSpace(data[i])) ++i;
            if (i >= size) return fail(QStringLiteral("unterminated start tag"), pos);
            if (data[i] == '>') { ++i; break; }
            if (data[i] == '/') {
                if (i + 1 >= size || data[i + 1] != '>') return fail(QStringLiteral("malformed start tag"), pos);
                el.selfClosing = true;
                i += 2;
                break;
            }
            if (i == beforeSpace) return fail(QStringLiteral("attributes must be separated by spaces"), i);
            if (!isNameStart(data[i])) return fail(QStringLiteral("malformed attribute"), i);
            XmlAttribute a;
            a.start = i;
            while (i < size && isNameChar(data[i])) ++i;
            a.name = QByteArray(data + a.start, i - a.start);
            while (i < size && isSpace(data[i])) ++i;
            if (i >= size || data[i] != '=') return fail(QStringLiteral("attribute without value"), i);
            ++i;
            while (i < size && isSpace(data[i])) ++i;
            if (i >= size || (data[i] != '"' && data[i] != '\'')) return fail(QStringLiteral("attribute value without quotes"), i);
            const char quote = data[i];
            a.valueStart = i + 1;
            const qsizetype close = m_bytes.indexOf(quote, a.valueStart);
            if (close < 0) return fail(QStringLiteral("unterminated attribute value"), i);
            const qsizetype lt = m_bytes.indexOf('<', a.valueStart);
            if (lt >= 0 && lt < close) return fail(QStringLiteral("'<' in an attribute value"), lt);
            a.valueEnd = close;
            if (!decodeChars(data, a.valueStart, a.valueEnd, a.value, true))
                return fail(QStringLiteral("unknown or malformed entity reference"), a.valueStart);
            for (const XmlAttribute &other : el.attributes)
                if (other.name == a.name)
                    return fail(QStringLiteral("attribute %1 repeated").arg(QString::fromUtf8(a.name)), a.start);
            if (int(el.attributes.size()) >= limits.maxAttributesPerElement)
                return fail(QStringLiteral("too many attributes"), a.start);
            el.attributes.push_back(std::move(a));
            i = close + 1;
            el.attributesEnd = i;
        }
        el.startTagEnd = i;
        el.parent = stack.empty() ? -1 : stack.back();
        el.depth = int(stack.size());
        const int index = int(m_elements.size());
        if (el.parent >= 0) m_elements[size_t(el.parent)].children.push_back(index);
        if (el.selfClosing) {
            el.contentStart = el.contentEnd = el.startTagEnd - 2;
            el.end = el.startTagEnd;
        } else {
            el.contentStart = el.startTagEnd;
        }
        const bool closed = el.selfClosing;
        m_elements.push_back(std::move(el));
        pos = i;
        if (!closed) stack.push_back(index);
        else if (stack.empty()) rootDone = true;
    }
    if (!stack.empty()) return fail(QStringLiteral("the document ends inside <%1>").arg(QString::fromUtf8(m_elements[size_t(stack.back())].name)), size);
    if (m_elements.empty()) return fail(QStringLiteral("no root element"), size);
    return true;
}

QString XmlDocument::text(int index) const
{
    QString out;
    const XmlElement &el = element(index);
    if (el.selfClosing) return out;
    const char *data = m_bytes.constData();
    auto segment = [&](qsizetype from, qsizetype to) {
        qsizetype i = from;
        while (i < to) {
            const qsizetype lt = m_bytes.indexOf('<', i);
            const qsizetype e = (lt < 0 || lt > to) ? to : lt;
            decodeChars(data, i, e, out, false);
            if (e >= to) break;
            if (m_bytes.mid(e, 9) == "<![CDATA[") {
                const qsizetype close = m_bytes.indexOf("]]>", e + 9);
                QString raw = QString::fromUtf8(data + e + 9, close - e - 9);
                raw.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
                raw.replace(u'\r', u'\n');
                out.append(raw);
                i = close + 3;
            } else if (m_bytes.mid(e, 4) == "<!--") {
                i = m_bytes.indexOf("-->", e + 4) + 3;
            } else if (m_bytes.mid(e, 2) == "<?") {
                i = m_bytes.indexOf("?>", e + 2) + 2;
            } else {
                i = e + 1;  // cannot happen: child elements are cut out by the caller
            }
        }
    };
    qsizetype at = el.contentStart;
    for (int c : el.children) {
        const XmlElement &ch = element(c);
        segment(at, ch.start);
        out.append(text(c));
        at = ch.end;
    }
    segment(at, el.contentEnd);
    return out;
}

int XmlDocument::child(int index, const char *childName, const char *key) const
{
    for (int c : element(index).children) {
        const XmlElement &ch = element(c);
        if (ch.name != childName) continue;
        if (key) {
            const XmlAttribute *k = ch.attribute("key");
            if (!k || k->value != QLatin1String(key)) continue;
        }
        return c;
    }
    return -1;
}

int XmlDocument::lineOf(qsizetype position) const
{
    position = std::min(position, m_bytes.size());
    return int(QByteArrayView(m_bytes.constData(), position).count('\n')) + 1;
}

QByteArray XmlDocument::escapeAttribute(const QString &value)
{
    QString out;
    out.reserve(value.size() + 8);
    for (QChar c : value) {
        switch (c.unicode()) {
        case '&': out += QLatin1String("&amp;"); break;
        case '<': out += QLatin1String("&lt;"); break;
        case '>': out += QLatin1String("&gt;"); break;
        case '"': out += QLatin1String("&quot;"); break;
        case '\n': out += QLatin1String("&#10;"); break;
        case '\r': out += QLatin1String("&#13;"); break;
        case '\t': out += QLatin1String("&#9;"); break;
        default: out += c;
        }
    }
    return out.toUtf8();
}

QByteArray XmlDocument::escapeText(const QString &value)
{
    QString out;
    out.reserve(value.size() + 8);
    for (QChar c : value) {
        switch (c.unicode()) {
        case '&': out += QLatin1String("&amp;"); break;
        case '<': out += QLatin1String("&lt;"); break;
        case '>': out += QLatin1String("&gt;"); break;
        case '\r': out += QLatin1String("&#13;"); break;
        default: out += c;
        }
    }
    return out.toUtf8();
}

QString decodeLenientBase64Utf8(const QString &text)
{
    QByteArray b64;
    b64.reserve(text.size() + 3);
    for (QChar c : text) {
        if (c.isSpace()) continue;
        if (c.unicode() > 0x7F) return QString();
        b64.append(char(c.unicode()));
    }
    while (b64.endsWith('=')) b64.chop(1);
    if (b64.size() % 4 == 1) b64.chop(1);
    while (b64.size() % 4 != 0) b64.append('=');
    const auto decoded = QByteArray::fromBase64Encoding(b64, QByteArray::AbortOnBase64DecodingErrors);
    if (!decoded) return QString();
    QStringDecoder utf8(QStringDecoder::Utf8, QStringConverter::Flag::Stateless);
    QString out = utf8.decode(*decoded);
    if (utf8.hasError()) return QString();
    if (out.isNull()) out = QLatin1String("");
    return out;
}

QString encodeBase64Utf8Unpadded(const QString &text)
{
    QByteArray b = text.toUtf8().toBase64(QByteArray::OmitTrailingEquals);
    return QString::fromLatin1(b);
}

}  // namespace interface
