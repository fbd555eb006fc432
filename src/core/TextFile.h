#pragma once
// Reading a base string table whose encoding is not known in advance.

#include "StringUtility.h"

#include <QByteArray>

// UTF-8 first (a UTF-8 byte-order mark is dropped, so a header line compares equal whether or
// not the file starts with one). Only bytes that are not valid UTF-8 are read again: UTF-16 in
// the order of a byte-order mark when there is one, otherwise Mac OS Roman, the 8-bit encoding
// old Mac files were written in. UTF-16 without a mark is recognised by its NUL bytes before
// anything else (see unmarkedUtf16 in the source). Absent when the file cannot be read.
OptString readTextFileAtPath(const QString &path);
// The same decision on bytes already in memory.
OptString decodeTextFileData(const QByteArray &bytes);

// The decoding outcome named, for messages that tell the user how a file was read.
enum class TextEncoding { Utf8, Utf16LE, Utf16BE, MacRoman };
TextEncoding detectTextEncoding(const QByteArray &bytes);
