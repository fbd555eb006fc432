// The XML form laid out byte for byte as Apple's tools write it, so a localized copy of a file
// differs from its original only where a translation changed something:
// - one element per line, indented with tabs, the root at the left margin;
// - <dict/> and <array/> when empty, <true/> and <false/>;
// - only & < > escaped (quotes and control characters are written as they are);
// - reals with 17 significant digits, dates in whole seconds of UTC;
// - data in base64 lines of 76 columns less 8 per indentation tab; past 8 levels the lines stay
//   at 8 tabs and 12 columns, as Apple's writer clamps them.
#include "PlistInternal.h"

#include <QSaveFile>

namespace plist {

namespace {

void indent(QByteArray &out, int level) { out.append(level, '\t'); }

void appendEscaped(QByteArray &out, const QString &s)
{
    const QByteArray utf8 = s.toUtf8();
    qsizetype plain = 0;
    for (qsizetype i = 0; i < utf8.size(); ++i) {
        const char c = utf8[i];
        const char *entity = c == '&' ? "&amp;" : c == '<' ? "&lt;" : c == '>' ? "&gt;" : nullptr;
        if (!entity)
            continue;
        out.append(utf8.constData() + plain, i - plain);
        out.append(entity);
        plain = i + 1;
    }
    out.append(utf8.constData() + plain, utf8.size() - plain);
}

void element(QByteArray &out, int level, const char *tag, const QByteArray &text)
{
    indent(out, level);
    out.append('<').append(tag).append('>').append(text).append("</").append(tag).append(">\n");
}

void appendData(QByteArray &out, const QByteArray &data, int level)
{
    const int lineIndent = qMin(level, 8);
    const qsizetype width = 76 - 8 * lineIndent;
    const QByteArray base64 = data.toBase64();
    indent(out, level);
    out.append("<data>\n");
    for (qsizetype at = 0; at < base64.size(); at += width) {
        indent(out, lineIndent);
        out.append(base64.constData() + at, qMin(width, base64.size() - at)).append('\n');
    }
    indent(out, level);
    out.append("</data>\n");
}

void appendValue(QByteArray &out, const Value &v, int level)
{
    switch (v.type()) {
    case Type::String: {
        indent(out, level);
        out.append("<string>");
        appendEscaped(out, v.string());
        out.append("</string>\n");
        break;
    }
    case Type::Integer:
        element(out, level, "integer",
                v.isUnsigned() ? QByteArray::number(v.unsignedInteger()) : QByteArray::number(v.integer()));
        break;
    case Type::Real:
        element(out, level, "real", detail::realText(v.real(), false));
        break;
    case Type::Boolean:
        indent(out, level);
        out.append(v.boolean() ? "<true/>\n" : "<false/>\n");
        break;
    case Type::Date:
        element(out, level, "date", detail::isoDate(v.date()));
        break;
    case Type::Data:
        appendData(out, v.data(), level);
        break;
    case Type::Array:
        indent(out, level);
        if (v.array().isEmpty()) {
            out.append("<array/>\n");
            break;
        }
        out.append("<array>\n");
        for (const Value &item : v.array())
            appendValue(out, item, level + 1);
        indent(out, level);
        out.append("</array>\n");
        break;
    case Type::Dictionary:
        indent(out, level);
        if (v.dictionary().isEmpty()) {
            out.append("<dict/>\n");
            break;
        }
        out.append("<dict>\n");
        for (const auto &entry : v.dictionary()) {
            indent(out, level + 1);
            out.append("<key>");
            appendEscaped(out, entry.first);
            out.append("</key>\n");
            appendValue(out, entry.second, level + 1);
        }
        indent(out, level);
        out.append("</dict>\n");
        break;
    }
}

}  // namespace

QByteArray toXml(const Value &root)
{
    QByteArray out;
    out.append("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
               "<!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST 1.0//EN\" "
               "\"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">\n"
               "<plist version=\"1.0\">\n");
    appendValue(out, root, 0);
    out.append("</plist>\n");
    return out;
}

bool writeXmlFile(const QString &path, const Value &root, QString *error)
{
    QSaveFile file(path);
    const QByteArray bytes = toXml(root);
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size() || !file.commit()) {
        if (error)
            *error = QStringLiteral("Could not write \"%1\": %2").arg(path, file.errorString());
        return false;
    }
    return true;
}

}  // namespace plist
