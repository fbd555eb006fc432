// The dictionary writer against the string-table reader: any map of words, written and read
// back, must give the same map in the same order. The input bytes are split into words at NUL
// pairs and taken as UTF-16, so lone surrogates, quotes and backslashes all occur.
#include "StringsFileWriter.h"
#include "StringsTable.h"

#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QString text = QString::fromUtf16(reinterpret_cast<const char16_t *>(data), qsizetype(size / 2));
    const QStringList words = text.split(QChar(0));
    StringMap map;
    for (qsizetype i = 0; i + 1 < words.size(); i += 2) map.insert(words.at(i), words.at(i + 1));
    StringsTable::Error error;
    const auto read = StringsTable::parseData(stringsFileStyleData(map), &error);
    if (!read || !read->sameOrderAs(map)) __builtin_trap();
    return 0;
}
