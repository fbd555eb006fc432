#include "Tmx.h"

#include <QXmlStreamReader>
#include <QXmlStreamWriter>

namespace Tmx {

namespace {

QString primary(const QString &code)
{
    for (qsizetype i = 0; i < code.size(); ++i)
        if (code.at(i) == u'-' || code.at(i) == u'_') return code.left(i);
    return code;
}

QString languageOf(const QXmlStreamAttributes &attributes)
{
    const QStringView xmlLang = attributes.value(QStringLiteral("http://www.w3.org/XML/1998/namespace"), QStringLiteral("lang"));
    if (!xmlLang.isEmpty()) return xmlLang.toString();
    return attributes.value(QStringLiteral("lang")).toString();
}

bool isInlineCode(QStringView name)
{
    return name == u"bpt" || name == u"ept" || name == u"it" || name == u"ph" || name == u"ut";
}

struct Variant {
    QString language;
    QString text;
};

// The segment in the language of `abbreviation`: an exact code first, else one of its family.
const Variant *variantFor(const QList<Variant> &variants, const QString &abbreviation)
{
    for (const Variant &v : variants)
        if (v.language.compare(abbreviation, Qt::CaseInsensitive) == 0) return &v;
    for (const Variant &v : variants)
        if (languageMatches(v.language, abbreviation)) return &v;
    return nullptr;
}

}  // namespace

bool languageMatches(const QString &code, const QString &abbreviation)
{
    if (code.isEmpty() || abbreviation.isEmpty()) return false;
    if (code.compare(abbreviation, Qt::CaseInsensitive) == 0) return true;
    return primary(code).compare(primary(abbreviation), Qt::CaseInsensitive) == 0;
}

Reading read(const QByteArray &data, const QString &baseShort, const QString &targetShort)
{
    Reading reading;
    if (data.size() > maximumBytes) {
        reading.error = QStringLiteral("the file is larger than %1 MB").arg(maximumBytes >> 20);
        return reading;
    }
    QXmlStreamReader xml(data);
    xml.setNamespaceProcessing(true);
    int depth = 0;
    bool sawRoot = false;
    QList<Variant> variants;  // of the unit being read
    QString language;         // of the variant being read
    QString segment;
    int inSegment = 0;        // nesting inside <seg>
    int inCode = 0;           // nesting inside an inline code, whose text is not the segment's
    while (!xml.atEnd()) {
        switch (xml.readNext()) {
        case QXmlStreamReader::StartElement: {
            if (++depth > maximumDepth) {
                reading.error = QStringLiteral("elements are nested more than %1 deep").arg(maximumDepth);
                reading.pairs.clear();
                return reading;
            }
            const QStringView name = xml.name();
            if (depth == 1) {
                if (name != u"tmx") {
                    reading.error = QStringLiteral("the file is XML but not a TMX translation memory (its root is <%1>)")
                                        .arg(name.toString());
                    return reading;
                }
                sawRoot = true;
            } else if (name == u"tu") {
                variants.clear();
                ++reading.units;
            } else if (name == u"tuv") {
                language = languageOf(xml.attributes());
            } else if (name == u"seg") {
                ++inSegment;
                if (inSegment == 1) segment.clear();
            } else if (inSegment > 0 && isInlineCode(name)) {
                ++inCode;
            } else if (inSegment > 0 && inCode > 0) {
                ++inCode;  // <sub> and anything else inside a code
            }
            break;
        }
        case QXmlStreamReader::EndElement: {
            --depth;
            const QStringView name = xml.name();
            if (name == u"seg" && inSegment > 0) {
                if (--inSegment == 0) variants.append({language, segment});
            } else if (inCode > 0) {
                --inCode;
            } else if (name == u"tu") {
                const Variant *base = variantFor(variants, baseShort);
                const Variant *target = variantFor(variants, targetShort);
                if (base && target && base != target && !base->text.isEmpty() && !target->text.isEmpty())
                    reading.pairs.append({base->text, target->text});
            }
            break;
        }
        case QXmlStreamReader::Characters:
            if (inSegment > 0 && inCode == 0) segment.append(xml.text());
            break;
        case QXmlStreamReader::DTD:
            for (const QXmlStreamEntityDeclaration &entity : xml.entityDeclarations()) {
                if (!entity.systemId().isEmpty() || !entity.publicId().isEmpty()) {
                    reading.error = QStringLiteral("the file declares the external entity \u201C%1\u201D, which is never read")
                                        .arg(entity.name().toString());
                    return reading;
                }
            }
            break;
        case QXmlStreamReader::EntityReference:
            reading.error = QStringLiteral("line %1: the entity \u201C%2\u201D is not defined in the file")
                                .arg(xml.lineNumber())
                                .arg(xml.name().toString());
            reading.pairs.clear();
            return reading;
        default:
            break;
        }
    }
    if (xml.hasError()) {
        reading.error = QStringLiteral("line %1: %2").arg(xml.lineNumber()).arg(xml.errorString());
        reading.pairs.clear();
    } else if (!sawRoot) {
        reading.error = QStringLiteral("the file holds no XML element");
    }
    return reading;
}

// XML 1.0 cannot carry most control characters, not even as references.
bool fitsXml(const QString &text)
{
    for (QChar c : text)
        if (c.unicode() < 0x20 && c != u'\t' && c != u'\n' && c != u'\r') return false;
    return true;
}

QByteArray write(const DictRows &rows, const QString &baseShort, const QString &targetShort, qsizetype *skipped)
{
    if (skipped) *skipped = 0;
    QByteArray out;
    QXmlStreamWriter xml(&out);
    xml.setAutoFormatting(true);
    xml.setAutoFormattingIndent(2);
    xml.writeStartDocument();
    xml.writeDTD(QStringLiteral("<!DOCTYPE tmx SYSTEM \"tmx14.dtd\">"));
    xml.writeStartElement(QStringLiteral("tmx"));
    xml.writeAttribute(QStringLiteral("version"), QStringLiteral("1.4"));
    xml.writeEmptyElement(QStringLiteral("header"));
    xml.writeAttribute(QStringLiteral("creationtool"), QStringLiteral("Vocabrix"));
    xml.writeAttribute(QStringLiteral("creationtoolversion"), QStringLiteral("1"));
    xml.writeAttribute(QStringLiteral("datatype"), QStringLiteral("plaintext"));
    xml.writeAttribute(QStringLiteral("segtype"), QStringLiteral("phrase"));
    xml.writeAttribute(QStringLiteral("adminlang"), QStringLiteral("en"));
    xml.writeAttribute(QStringLiteral("srclang"), baseShort);
    xml.writeAttribute(QStringLiteral("o-tmf"), QStringLiteral("Vocabrix"));
    xml.writeStartElement(QStringLiteral("body"));
    const QString xmlNs = QStringLiteral("http://www.w3.org/XML/1998/namespace");
    for (const DictEntryPtr &row : rows) {
        if (!row->key() || !row->value() || row->key()->isEmpty()) continue;
        if (!fitsXml(*row->key()) || !fitsXml(*row->value())) {
            if (skipped) ++*skipped;
            continue;
        }
        xml.writeStartElement(QStringLiteral("tu"));
        for (const auto &[language, text] : {std::pair{baseShort, *row->key()}, std::pair{targetShort, *row->value()}}) {
            xml.writeStartElement(QStringLiteral("tuv"));
            xml.writeAttribute(xmlNs, QStringLiteral("lang"), language);
            xml.writeTextElement(QStringLiteral("seg"), text);
            xml.writeEndElement();
        }
        xml.writeEndElement();
    }
    xml.writeEndElement();
    xml.writeEndElement();
    xml.writeEndDocument();
    return out;
}

}  // namespace Tmx
