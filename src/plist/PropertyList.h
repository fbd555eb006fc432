#pragma once
// Property-list values and the readers/writer behind one small API.
// XML, binary ("bplist00") and OpenStep text lists are read; XML is written.

#include <QByteArray>
#include <QDateTime>
#include <QList>
#include <QPair>
#include <QString>
#include <optional>

namespace plist {

class Value;
using Array = QList<Value>;
// Dictionaries keep the file's key order: entry order and output stay stable.
using Dictionary = QList<QPair<QString, Value>>;

enum class Type { String, Integer, Real, Boolean, Date, Data, Array, Dictionary };
enum class Format { Xml, Binary, OpenStep };

class Value {
public:
    Value();  // the empty string
    static Value fromString(const QString &s);
    static Value fromInteger(qint64 i);
    static Value fromUnsigned(quint64 u);
    static Value fromReal(double d);
    static Value fromBoolean(bool b);
    static Value fromDate(const QDateTime &d);
    static Value fromData(const QByteArray &d);
    static Value fromArray(const Array &a);
    static Value fromDictionary(const Dictionary &d);

    Type type() const { return m_type; }
    bool isString() const { return m_type == Type::String; }
    bool isDictionary() const { return m_type == Type::Dictionary; }
    bool isArray() const { return m_type == Type::Array; }

    const QString &string() const { return m_string; }
    qint64 integer() const { return m_integer; }
    bool isUnsigned() const { return m_unsigned; }  // integers above INT64_MAX
    double real() const { return m_real; }
    bool boolean() const { return m_integer != 0; }
    const QDateTime &date() const { return m_date; }
    const QByteArray &data() const { return m_data; }
    const Array &array() const { return m_array; }
    Array &array() { return m_array; }
    const Dictionary &dictionary() const { return m_dictionary; }
    Dictionary &dictionary() { return m_dictionary; }
    void setString(const QString &s) { m_string = s; }

    // Value for a key of a dictionary (the last one when a key repeats), or nullptr.
    const Value *find(const QString &key) const;

    bool operator==(const Value &o) const;
    bool operator!=(const Value &o) const { return !(*this == o); }

private:
    Type m_type = Type::String;
    bool m_unsigned = false;
    QString m_string;
    qint64 m_integer = 0;
    double m_real = 0;
    QDateTime m_date;
    QByteArray m_data;
    Array m_array;
    Dictionary m_dictionary;
};

struct ReadResult {
    std::optional<Value> value;  // none when the bytes are not a property list
    Format format = Format::Xml;
    QString error;               // why, in words a user understands
};

// Reads any of the three forms, detected from the bytes.
ReadResult read(const QByteArray &data);
ReadResult readFile(const QString &path);

// The XML form as Apple's tools lay it out: declaration, PLIST 1.0 doctype, tab indentation.
QByteArray toXml(const Value &root);
// Written atomically; false (with a reason) when it could not be written.
bool writeXmlFile(const QString &path, const Value &root, QString *error = nullptr);

// A property list whose root is a dictionary of strings, as a string table would read it.
// None when the bytes are no property list, the root is no dictionary, or a value is no string.
std::optional<Dictionary> readStringDictionary(const QByteArray &data);

}  // namespace plist
