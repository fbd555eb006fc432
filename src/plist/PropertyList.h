#pragma once
// Property-list values and the readers/writers behind one small API.
// XML, binary ("bplist00") and OpenStep text lists are read; XML is written (binary too, for
// tools and benchmarks that need a compiled list). Every reader bounds nesting (MaxDepth), never
// trusts a count beyond what the bytes can hold, and reports malformed input as an error text.

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

// Deeper nesting than this is refused by every reader: real lists stay far below it.
inline constexpr int MaxDepth = 512;

class Value {
public:
    Value();  // the empty string
    static Value fromString(const QString &s);
    static Value fromInteger(qint64 i);
    static Value fromUnsigned(quint64 u);  // flagged unsigned only above INT64_MAX
    static Value fromReal(double d);
    static Value fromBoolean(bool b);
    static Value fromDate(const QDateTime &d);  // kept in UTC
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
    quint64 unsignedInteger() const { return quint64(m_integer); }
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

    // Same type and same content; reals compare by value, except that NaN equals NaN.
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

// The binary "bplist00" form. Dictionaries of the single key "CF$UID" holding an integer are
// written as UID objects, the way the reader maps them, so keyed archives survive a round trip.
QByteArray toBinary(const Value &root);

// A JSON rendering for the command line: strings and containers as JSON strings, arrays and
// objects (keys in the list's order), every other scalar tagged, e.g. {"integer": 5},
// {"real": 1.5}, {"bool": true}, {"date": "2001-01-01T00:00:00Z"}, {"data": "<base64>"}.
QByteArray toJson(const Value &root);

// "XML", "binary" or "OpenStep", for messages.
QString formatName(Format format);

// A property list whose root is a dictionary of strings, as a string table would read it.
// None when the bytes are no property list, the root is no dictionary, or a value is no string.
std::optional<Dictionary> readStringDictionary(const QByteArray &data);

}  // namespace plist
