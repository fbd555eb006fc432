// Placeholder until the readers land: every read gives nothing.
#include "PropertyList.h"

namespace plist {

Value::Value() = default;
Value Value::fromString(const QString &s) { Value v; v.m_string = s; return v; }
Value Value::fromInteger(qint64 i) { Value v; v.m_type = Type::Integer; v.m_integer = i; return v; }
Value Value::fromUnsigned(quint64 u) { Value v; v.m_type = Type::Integer; v.m_integer = qint64(u); v.m_unsigned = true; return v; }
Value Value::fromReal(double d) { Value v; v.m_type = Type::Real; v.m_real = d; return v; }
Value Value::fromBoolean(bool b) { Value v; v.m_type = Type::Boolean; v.m_integer = b; return v; }
Value Value::fromDate(const QDateTime &d) { Value v; v.m_type = Type::Date; v.m_date = d; return v; }
Value Value::fromData(const QByteArray &d) { Value v; v.m_type = Type::Data; v.m_data = d; return v; }
Value Value::fromArray(const Array &a) { Value v; v.m_type = Type::Array; v.m_array = a; return v; }
Value Value::fromDictionary(const Dictionary &d) { Value v; v.m_type = Type::Dictionary; v.m_dictionary = d; return v; }

const Value *Value::find(const QString &key) const
{
    for (auto it = m_dictionary.crbegin(); it != m_dictionary.crend(); ++it)
        if (it->first == key) return &it->second;
    return nullptr;
}

bool Value::operator==(const Value &o) const
{
    return m_type == o.m_type && m_unsigned == o.m_unsigned && m_string == o.m_string && m_integer == o.m_integer
        && m_real == o.m_real && m_date == o.m_date && m_data == o.m_data && m_array == o.m_array
        && m_dictionary == o.m_dictionary;
}

ReadResult read(const QByteArray &) { return {std::nullopt, Format::Xml, QStringLiteral("not implemented")}; }
ReadResult readFile(const QString &) { return {std::nullopt, Format::Xml, QStringLiteral("not implemented")}; }
QByteArray toXml(const Value &) { return {}; }
bool writeXmlFile(const QString &, const Value &, QString *) { return false; }
std::optional<Dictionary> readStringDictionary(const QByteArray &) { return std::nullopt; }

}  // namespace plist
