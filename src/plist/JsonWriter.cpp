// JSON for the command line, written by hand because QJsonObject sorts its keys and the order of
// a dictionary is part of what a user wants to see. Two-space indentation; tagged scalars on one
// line; NaN and infinities, which JSON lacks, as the strings Apple's XML uses for them.
#include "PlistInternal.h"

namespace plist {

namespace {

void appendString(QByteArray &out, const QString &s)
{
    out.append('"');
    const QByteArray utf8 = s.toUtf8();
    for (char c : utf8) {
        switch (c) {
        case '"': out.append("\\\""); break;
        case '\\': out.append("\\\\"); break;
        case '\n': out.append("\\n"); break;
        case '\r': out.append("\\r"); break;
        case '\t': out.append("\\t"); break;
        case '\b': out.append("\\b"); break;
        case '\f': out.append("\\f"); break;
        default:
            if (uchar(c) < 0x20)
                out.append("\\u00").append(QByteArray::number(uchar(c), 16).rightJustified(2, '0'));
            else
                out.append(c);
        }
    }
    out.append('"');
}

void tagged(QByteArray &out, const char *tag, const QByteArray &json)
{
    out.append("{\"").append(tag).append("\": ").append(json).append('}');
}

void appendValue(QByteArray &out, const Value &v, int level)
{
    const QByteArray inner((level + 1) * 2, ' ');
    switch (v.type()) {
    case Type::String:
        appendString(out, v.string());
        return;
    case Type::Integer:
        tagged(out, "integer",
               v.isUnsigned() ? QByteArray::number(v.unsignedInteger()) : QByteArray::number(v.integer()));
        return;
    case Type::Real: {
        const QByteArray text = detail::realText(v.real(), true);
        const bool finite = text != "nan" && !text.endsWith("infinity");
        tagged(out, "real", finite ? text : '"' + text + '"');
        return;
    }
    case Type::Boolean:
        tagged(out, "bool", v.boolean() ? "true" : "false");
        return;
    case Type::Date:
        tagged(out, "date", '"' + detail::isoDate(v.date()) + '"');
        return;
    case Type::Data:
        tagged(out, "data", '"' + v.data().toBase64() + '"');
        return;
    case Type::Array:
        if (v.array().isEmpty()) {
            out.append("[]");
            return;
        }
        out.append("[\n");
        for (qsizetype i = 0; i < v.array().size(); ++i) {
            out.append(inner);
            appendValue(out, v.array()[i], level + 1);
            out.append(i + 1 < v.array().size() ? ",\n" : "\n");
        }
        out.append(QByteArray(level * 2, ' ')).append(']');
        return;
    case Type::Dictionary:
        if (v.dictionary().isEmpty()) {
            out.append("{}");
            return;
        }
        out.append("{\n");
        for (qsizetype i = 0; i < v.dictionary().size(); ++i) {
            out.append(inner);
            appendString(out, v.dictionary()[i].first);
            out.append(": ");
            appendValue(out, v.dictionary()[i].second, level + 1);
            out.append(i + 1 < v.dictionary().size() ? ",\n" : "\n");
        }
        out.append(QByteArray(level * 2, ' ')).append('}');
        return;
    }
}

}  // namespace

QByteArray toJson(const Value &root)
{
    QByteArray out;
    appendValue(out, root, 0);
    out.append('\n');
    return out;
}

}  // namespace plist
