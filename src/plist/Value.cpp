#include "PropertyList.h"

#include <cmath>
#include <limits>

namespace plist {

Value::Value() = default;

Value Value::fromString(const QString &s)
{
    Value v;
    v.m_string = s;
    return v;
}

Value Value::fromInteger(qint64 i)
{
    Value v;
    v.m_type = Type::Integer;
    v.m_integer = i;
    return v;
}

Value Value::fromUnsigned(quint64 u)
{
    // Only values that do not fit a signed integer carry the flag, so an integer reads back
    // equal whichever way it was made.
    Value v = fromInteger(qint64(u));
    v.m_unsigned = u > quint64(std::numeric_limits<qint64>::max());
    return v;
}

Value Value::fromReal(double d)
{
    Value v;
    v.m_type = Type::Real;
    v.m_real = d;
    return v;
}

Value Value::fromBoolean(bool b)
{
    Value v;
    v.m_type = Type::Boolean;
    v.m_integer = b;
    return v;
}

Value Value::fromDate(const QDateTime &d)
{
    Value v;
    v.m_type = Type::Date;
    v.m_date = d.toUTC();
    return v;
}

Value Value::fromData(const QByteArray &d)
{
    Value v;
    v.m_type = Type::Data;
    v.m_data = d;
    return v;
}

Value Value::fromArray(const Array &a)
{
    Value v;
    v.m_type = Type::Array;
    v.m_array = a;
    return v;
}

Value Value::fromDictionary(const Dictionary &d)
{
    Value v;
    v.m_type = Type::Dictionary;
    v.m_dictionary = d;
    return v;
}

const Value *Value::find(const QString &key) const
{
    for (auto it = m_dictionary.crbegin(); it != m_dictionary.crend(); ++it)
        if (it->first == key)
            return &it->second;
    return nullptr;
}

bool Value::operator==(const Value &o) const
{
    if (m_type != o.m_type)
        return false;
    switch (m_type) {
    case Type::String: return m_string == o.m_string;
    case Type::Integer: return m_integer == o.m_integer && m_unsigned == o.m_unsigned;
    case Type::Real: return m_real == o.m_real || (std::isnan(m_real) && std::isnan(o.m_real));
    case Type::Boolean: return boolean() == o.boolean();
    case Type::Date: return m_date == o.m_date;
    case Type::Data: return m_data == o.m_data;
    case Type::Array: return m_array == o.m_array;
    case Type::Dictionary: return m_dictionary == o.m_dictionary;
    }
    return false;
}

QString formatName(Format format)
{
    switch (format) {
    case Format::Xml: return QStringLiteral("XML");
    case Format::Binary: return QStringLiteral("binary");
    case Format::OpenStep: return QStringLiteral("OpenStep");
    }
    return {};
}

}  // namespace plist
