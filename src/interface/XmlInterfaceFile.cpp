#include "XmlInterfaceFile.h"

#include "XibFile.h"

#include <QSaveFile>
#include <QStringDecoder>
#include <QStringEncoder>

namespace interface {

namespace {

// Xcode writes a value as an attribute up to this length (longest attribute seen: 122
// characters; shortest child seen without a line feed: 128).
constexpr qsizetype kMaxAttributeLength = 122;

bool hasControlOtherThanLineFeed(const QString &v)
{
    for (QChar c : v)
        if (c.unicode() < 0x20 && c != u'\n') return true;
    return false;
}

bool isWhitespaceOnly(const QString &v)
{
    if (v.isEmpty()) return false;
    for (QChar c : v)
        if (!c.isSpace()) return false;
    return true;
}

bool needsBase64(const QString &v) { return hasControlOtherThanLineFeed(v) || isWhitespaceOnly(v); }

QByteArray attributeText(const QString &v, char quote)
{
    QByteArray escaped = XmlDocument::escapeAttribute(v);
    if (quote == '\'') escaped.replace('\'', "&apos;");
    return escaped;
}

}  // namespace

void XmlInterfaceFile::add(const LocalizableString &s, const ValueLocation &where)
{
    const QString key = s.key();
    if (m_byKey.contains(key)) return;  // keys are unique; the first place wins
    // One place, one key: two keys on one value (an archive object listed by two records)
    // could not both be merged.
    const QString place = QStringLiteral("%1/%2/%3/%4").arg(int(where.kind)).arg(where.holder).arg(where.element)
                              .arg(QString::fromUtf8(where.name));
    if (m_places.contains(place)) return;
    m_places.insert(place);
    m_byKey.insert(key, m_strings.size());
    m_strings.append(s);
    m_locations.append(where);
}

bool XmlInterfaceFile::readValue(int holder, const char *name, QString *value, ValueLocation *where) const
{
    const XmlElement &el = m_xml.element(holder);
    if (const XmlAttribute *a = el.attribute(name)) {
        if (a->value.isEmpty()) return false;
        *value = a->value;
        *where = {ValueLocation::Attribute, holder, -1, QByteArray(name)};
        return true;
    }
    for (int c : el.children) {
        const XmlElement &ch = m_xml.element(c);
        if (ch.name != "string" && ch.name != "mutableString") continue;
        const XmlAttribute *k = ch.attribute("key");
        if (!k || k->value != QLatin1String(name)) continue;
        QString text = m_xml.text(c);
        if (ch.attributeValue("base64-UTF8") == QLatin1String("YES")) text = decodeLenientBase64Utf8(text);
        if (text.isEmpty()) return false;
        *value = text;
        *where = {ValueLocation::StringChild, holder, c, QByteArray(name)};
        return true;
    }
    return false;
}

void XmlInterfaceFile::applyValue(TextEdits &edits, QHash<int, QList<QByteArray>> &newChildren,
                                  const ValueLocation &where, const QString &value) const
{
    const QByteArray &bytes = m_xml.bytes();
    const bool base64 = needsBase64(value);
    switch (where.kind) {
    case ValueLocation::Attribute: {
        const XmlElement &holder = m_xml.element(where.holder);
        const XmlAttribute *a = holder.attribute(where.name.constData());
        if (!a) return;
        const char quote = bytes[a->valueEnd];
        const bool child = base64 || value.contains(u'\n') || value.size() > kMaxAttributeLength;
        if (!value.isEmpty() && !child) {
            edits.replace(a->valueStart, a->valueEnd, attributeText(value, quote));
            return;
        }
        // Removed with the white space before it.
        qsizetype from = a->start;
        while (from > 0 && (bytes[from - 1] == ' ' || bytes[from - 1] == '\t' || bytes[from - 1] == '\n'
                            || bytes[from - 1] == '\r'))
            --from;
        edits.remove(from, a->valueEnd + 1);
        if (value.isEmpty()) return;
        QByteArray line = "<string key=\"" + where.name + '"';
        if (base64) line += " base64-UTF8=\"YES\">" + encodeBase64Utf8Unpadded(value).toLatin1();
        else line += '>' + XmlDocument::escapeText(value);
        line += "</string>";
        newChildren[where.holder].append(line);
        return;
    }
    case ValueLocation::StringChild: {
        const XmlElement &ch = m_xml.element(where.element);
        if (value.isEmpty()) {
            qsizetype from = ch.start, to = ch.end;
            widenToLines(bytes, &from, &to);
            edits.remove(from, to);
            return;
        }
        const XmlAttribute *b64 = ch.attribute("base64-UTF8");
        const bool wasBase64 = b64 && b64->value == QLatin1String("YES");
        if (base64 && !b64) edits.insert(ch.attributesEnd, " base64-UTF8=\"YES\"");
        if (base64 && b64 && !wasBase64) edits.replace(b64->valueStart, b64->valueEnd, "YES");
        if (!base64 && b64) {
            qsizetype from = b64->start;
            while (from > 0 && (bytes[from - 1] == ' ' || bytes[from - 1] == '\t')) --from;
            edits.remove(from, b64->valueEnd + 1);
        }
        const QByteArray content = base64 ? encodeBase64Utf8Unpadded(value).toLatin1() : XmlDocument::escapeText(value);
        if (ch.selfClosing) {
            edits.replace(ch.startTagEnd - 2, ch.startTagEnd, '>' + content + "</" + ch.name + '>');
        } else {
            edits.replace(ch.contentStart, ch.contentEnd, content);
        }
        return;
    }
    case ValueLocation::ArchiveReference: {
        const XmlElement &ref = m_xml.element(where.element);
        QByteArray replacement = "<string";
        if (base64) replacement += " type=\"base64-UTF8\"";
        replacement += " key=\"" + XmlDocument::escapeAttribute(QString::fromUtf8(where.name)) + '"';
        if (value.isEmpty()) replacement += "/>";
        else
            replacement += '>' + (base64 ? encodeBase64Utf8Unpadded(value).toLatin1() : XmlDocument::escapeText(value))
                           + "</string>";
        edits.replace(ref.start, ref.end, replacement);
        return;
    }
    case ValueLocation::ArchiveText: {
        const XmlElement &ch = m_xml.element(where.element);
        // The key stays in the archive; an empty value is an empty element.
        const XmlAttribute *type = ch.attribute("type");
        const bool wasBase64 = type && type->value == QLatin1String("base64-UTF8");
        if (base64 && !type) {
            // Legacy archives write the type before the key.
            const XmlAttribute *key = ch.attribute("key");
            if (key) edits.insert(key->start, "type=\"base64-UTF8\" ");
            else edits.insert(ch.attributesEnd, " type=\"base64-UTF8\"");
        } else if (base64 && !wasBase64) {
            edits.replace(type->valueStart, type->valueEnd, "base64-UTF8");
        } else if (!base64 && wasBase64) {
            qsizetype to = type->valueEnd + 1;
            while (to < bytes.size() && bytes[to] == ' ') ++to;
            edits.remove(type->start, to);
        }
        const QByteArray content = base64 ? encodeBase64Utf8Unpadded(value).toLatin1() : XmlDocument::escapeText(value);
        if (ch.selfClosing) {
            if (!content.isEmpty())
                edits.replace(ch.startTagEnd - 2, ch.startTagEnd, '>' + content + "</" + ch.name + '>');
        } else {
            edits.replace(ch.contentStart, ch.contentEnd, content);
        }
        return;
    }
    }
}

bool XmlInterfaceFile::merged(const StringMap &translations, QByteArray *out, QString *error) const
{
    m_warnings.clear();
    TextEdits edits;
    QHash<int, QList<QByteArray>> newChildren;
    for (const auto &pair : translations) {
        const auto it = m_byKey.constFind(pair.first.toString());
        if (it == m_byKey.constEnd()) {
            m_warnings.append(QStringLiteral("key \"%1\" names no localizable string of the file; ignored").arg(pair.first));
            continue;
        }
        if (m_strings[*it].value == pair.second) continue;
        applyValue(edits, newChildren, m_locations[*it], pair.second.toString());
    }
    const QByteArray &bytes = m_xml.bytes();
    for (auto it = newChildren.cbegin(); it != newChildren.cend(); ++it) {
        const XmlElement &holder = m_xml.element(it.key());
        const QByteArray indent = lineIndent(bytes, holder.start);
        const QByteArray childIndent = indent + "    ";
        QByteArray lines;
        for (const QByteArray &line : it.value()) lines += '\n' + childIndent + line;
        if (holder.selfClosing)
            edits.replace(holder.startTagEnd - 2, holder.startTagEnd, '>' + lines + '\n' + indent + "</" + holder.name + '>');
        else
            edits.insert(holder.startTagEnd, lines);
    }
    QByteArray utf8;
    if (!edits.apply(bytes, &utf8)) {
        if (error) *error = QStringLiteral("internal error: overlapping edits");
        return false;
    }
    switch (m_encoding) {
    case Encoding::Utf8: *out = utf8; break;
    case Encoding::Utf16LE:
    case Encoding::Utf16BE: {
        QStringEncoder enc(m_encoding == Encoding::Utf16LE ? QStringEncoder::Utf16LE : QStringEncoder::Utf16BE);
        const QString text = QString::fromUtf8(utf8);
        QByteArray b = m_encoding == Encoding::Utf16LE ? QByteArray("\xFF\xFE", 2) : QByteArray("\xFE\xFF", 2);
        b += QByteArray(enc.encode(text));
        *out = b;
        break;
    }
    }
    return true;
}

bool XmlInterfaceFile::write(const QString &outPath, const StringMap &translations, QString *error) const
{
    QByteArray bytes;
    if (!merged(translations, &bytes, error)) return false;
    QSaveFile file(outPath);
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size() || !file.commit()) {
        if (error) *error = QStringLiteral("The file \"%1\" could not be written: %2").arg(outPath, file.errorString());
        return false;
    }
    return true;
}

std::unique_ptr<InterfaceFile> openXmlInterfaceFile(const QByteArray &raw, QString *error)
{
    QByteArray utf8 = raw;
    int enc = 0;
    if (raw.startsWith("\xFF\xFE") || raw.startsWith("\xFE\xFF")) {
        const bool le = raw.startsWith("\xFF\xFE");
        QStringDecoder dec(le ? QStringDecoder::Utf16LE : QStringDecoder::Utf16BE, QStringConverter::Flag::Stateless);
        const QString text = dec.decode(QByteArrayView(raw).sliced(2));
        if (dec.hasError()) {
            if (error) *error = QStringLiteral("the file is not valid UTF-16 text");
            return nullptr;
        }
        utf8 = text.toUtf8();
        enc = le ? 1 : 2;
    }
    return openXibBytes(utf8, enc, error);
}

}  // namespace interface
