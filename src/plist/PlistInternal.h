#pragma once
// Pieces shared by the readers and writers of src/plist; not part of the public API.

#include "PropertyList.h"

#include <QStringView>

namespace plist::detail {

// Each reader gets the whole input and returns a value or an error prefixed with its form.
ReadResult readXml(const QByteArray &data);
ReadResult readBinary(const QByteArray &data);
ReadResult readOpenStep(const QByteArray &data);

// Texts of XML scalar elements; none when the text is no such value. Integers above INT64_MAX
// become unsigned; dates lose any fraction of a second, as XML keeps whole seconds.
std::optional<Value> parseXmlInteger(QStringView text);
std::optional<Value> parseXmlReal(QStringView text);
std::optional<Value> parseXmlDate(QStringView text);
std::optional<Value> parseXmlData(QStringView text);

// Binary lists count dates in seconds from this instant.
QDateTime referenceDate();

// Text of a date as Apple writes it, whole seconds in UTC: "2001-01-01T00:00:00Z".
QByteArray isoDate(const QDateTime &d);

// Shortest text that reads back as the same double; what Apple writes for infinities and NaN.
QByteArray realText(double d, bool shortest);

// Unpaired UTF-16 surrogates (from \U escapes or UTF-16 data) replaced by U+FFFD, so that every
// string read can be written as UTF-8 and read back the same.
QString pairedSurrogates(QString s);

// Line number (1-based) of a position in text, counting LF, CR LF and lone CR as line ends.
int lineAt(QStringView text, qsizetype pos);

// Text of a byte stream: UTF-16 when it starts with a byte-order mark, UTF-8 when valid (BOM
// skipped), else Mac OS Roman, the encoding old Mac text files were written in.
QString decodeText(const QByteArray &data);

}  // namespace plist::detail
