#pragma once
// A small, strict XML reader for interface files that keeps the byte position of everything it
// reads, so that a writer can change one attribute value or one element's text and leave every
// other byte of the file as it was.
//
// Safety: no DTD is ever used. A document type declaration is skipped; only the five predefined
// entities and character references are expanded, any other entity reference is an error, so
// nothing external is ever fetched and expansion cannot grow. Nesting depth, element count and
// attribute count are bounded.

#include <QByteArray>
#include <QList>
#include <QString>
#include <vector>

namespace interface {

struct XmlAttribute {
    QByteArray name;
    QString value;        // decoded and normalised as XML says (entities, whitespace)
    qsizetype start = 0;  // first byte of the name
    qsizetype valueStart = 0;  // first byte after the opening quote
    qsizetype valueEnd = 0;    // the closing quote
};

struct XmlElement {
    QByteArray name;
    int parent = -1;
    int depth = 0;
    std::vector<XmlAttribute> attributes;
    std::vector<int> children;  // element children, in document order
    qsizetype start = 0;        // '<' of the start tag
    qsizetype startTagEnd = 0;  // one past the '>' of the start tag
    qsizetype nameEnd = 0;      // one past the element name in the start tag
    qsizetype attributesEnd = 0;  // one past the last attribute value's quote (or nameEnd)
    qsizetype contentStart = 0;   // = startTagEnd (empty element: its '/')
    qsizetype contentEnd = 0;     // '<' of the end tag (empty element: same as contentStart)
    qsizetype end = 0;            // one past the '>' of the end tag (or of the empty tag)
    bool selfClosing = false;

    const XmlAttribute *attribute(const char *attrName) const;
    // Value of an attribute, or a null QString.
    QString attributeValue(const char *attrName) const;
    bool hasAttribute(const char *attrName) const { return attribute(attrName) != nullptr; }
};

class XmlDocument {
public:
    struct Limits {
        int maxDepth = 1000;
        qsizetype maxElements = 4'000'000;
        int maxAttributesPerElement = 1000;
    };

    // Parses UTF-8 bytes (a UTF-8 byte-order mark is allowed). False, with a reason and the
    // line, when the bytes are not well-formed XML or break a limit.
    bool parse(const QByteArray &utf8, QString *error = nullptr);
    bool parse(const QByteArray &utf8, const Limits &limits, QString *error = nullptr);

    const QByteArray &bytes() const { return m_bytes; }
    const std::vector<XmlElement> &elements() const { return m_elements; }
    const XmlElement &element(int index) const { return m_elements[size_t(index)]; }
    int root() const { return m_elements.empty() ? -1 : 0; }

    // The element's character data: text and CDATA of the element itself and of its
    // descendants, entities decoded, line ends normalised. Comments are left out.
    QString text(int index) const;
    // The first child element with this name (and, if given, this "key" attribute), or -1.
    int child(int index, const char *childName, const char *key = nullptr) const;
    // Line number (1-based) of a byte position, for messages.
    int lineOf(qsizetype position) const;

    // Escaping for writing values back.
    static QByteArray escapeAttribute(const QString &value);  // & < > " and controls as references
    static QByteArray escapeText(const QString &value);       // & < >

private:
    QByteArray m_bytes;
    std::vector<XmlElement> m_elements;
};

// Base64 as Interface Builder writes it: '=' padding left out, sometimes one stray character
// at the end, whitespace anywhere. Decoded as UTF-8; a null QString when it cannot be decoded.
QString decodeLenientBase64Utf8(const QString &text);
// Base64 of the UTF-8 bytes, without padding, as Interface Builder writes it.
QString encodeBase64Utf8Unpadded(const QString &text);

}  // namespace interface
