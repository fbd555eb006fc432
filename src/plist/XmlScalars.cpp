// Element texts of the XML form turned into values: <integer>, <real>, <date> and <data>.
// Each gives none when the text is not a value of its kind.
#include "PlistInternal.h"

#include <QTimeZone>

#include <charconv>
#include <cmath>
#include <limits>

namespace plist::detail {

namespace {

bool isXmlSpace(QChar c) { return c == u' ' || c == u'\t' || c == u'\n' || c == u'\r'; }

}  // namespace

std::optional<Value> parseXmlInteger(QStringView text)
{
    QByteArray s = text.trimmed().toLatin1();
    bool negative = false;
    if (s.startsWith('-') || s.startsWith('+')) {
        negative = s[0] == '-';
        s.remove(0, 1);
    }
    int base = 10;
    if (s.startsWith("0x") || s.startsWith("0X")) {
        base = 16;
        s.remove(0, 2);
    }
    quint64 magnitude = 0;
    const auto r = std::from_chars(s.constData(), s.constData() + s.size(), magnitude, base);
    if (s.isEmpty() || r.ec != std::errc() || r.ptr != s.constData() + s.size())
        return std::nullopt;
    constexpr quint64 signedMax = quint64(std::numeric_limits<qint64>::max());
    if (negative) {
        if (magnitude > signedMax + 1)
            return std::nullopt;
        return Value::fromInteger(magnitude == signedMax + 1 ? std::numeric_limits<qint64>::min()
                                                             : -qint64(magnitude));
    }
    return magnitude > signedMax ? Value::fromUnsigned(magnitude) : Value::fromInteger(qint64(magnitude));
}

std::optional<Value> parseXmlReal(QStringView text)
{
    QByteArray s = text.trimmed().toLatin1().toLower();
    constexpr double inf = std::numeric_limits<double>::infinity();
    if (s == "nan" || s == "+nan" || s == "-nan")
        return Value::fromReal(std::numeric_limits<double>::quiet_NaN());
    if (s == "inf" || s == "+inf" || s == "infinity" || s == "+infinity")
        return Value::fromReal(inf);
    if (s == "-inf" || s == "-infinity")
        return Value::fromReal(-inf);
    if (s.startsWith('+'))
        s.remove(0, 1);
    double d = 0;
    const auto r = std::from_chars(s.constData(), s.constData() + s.size(), d);
    if (s.isEmpty() || r.ec != std::errc() || r.ptr != s.constData() + s.size())
        return std::nullopt;
    return Value::fromReal(d);
}

std::optional<Value> parseXmlDate(QStringView text)
{
    QDateTime d = QDateTime::fromString(text.trimmed().toString(), Qt::ISODate);
    if (!d.isValid())
        return std::nullopt;
    if (d.timeSpec() == Qt::LocalTime)  // no zone written: Apple's dates are always UTC
        d = QDateTime(d.date(), d.time(), QTimeZone::utc());
    d = d.toUTC();
    // Whole seconds, as they will be written again.
    return Value::fromDate(d.addMSecs(-d.time().msec()));
}

std::optional<Value> parseXmlData(QStringView text)
{
    QByteArray compact;
    compact.reserve(text.size());
    for (QChar c : text) {
        if (isXmlSpace(c))
            continue;
        if (c.unicode() > 0x7f)
            return std::nullopt;
        compact.append(char(c.unicode()));
    }
    auto decoded = QByteArray::fromBase64Encoding(compact, QByteArray::AbortOnBase64DecodingErrors);
    if (!decoded)
        return std::nullopt;
    return Value::fromData(decoded.decoded);
}

}  // namespace plist::detail
