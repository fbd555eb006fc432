// The string-table reader on arbitrary bytes: no crash, no sanitizer report, no hang.
#include "StringsTable.h"

#include <QStringDecoder>

#include <cstddef>
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QByteArray bytes(reinterpret_cast<const char *>(data), qsizetype(size));
    const auto map = StringsTable::parseData(bytes);
    // A plain table read must have been valid UTF-8 to the letter of a strict decoder (the
    // reader takes a faster way to know).
    const QByteArrayView body = QByteArrayView(bytes).sliced(bytes.startsWith("\xEF\xBB\xBF") ? 3 : 0);
    const QByteArrayView start = body.trimmed();
    if (map && !bytes.startsWith("bplist") && !bytes.startsWith("\xFE\xFF") && !bytes.startsWith("\xFF\xFE")
        && !start.startsWith('<') && !start.startsWith('{')) {
        QStringDecoder strict(QStringConverter::Utf8, QStringConverter::Flag::Stateless);
        strict.decode(body);
        if (strict.hasError()) __builtin_trap();
    }
    if (map) {
        // What was read must read again the same when written as plain pairs.
        QString text;
        for (const auto &p : *map) {
            auto quote = [](QString s) {
                s.replace(QLatin1String("\\"), QLatin1String("\\\\")).replace(QLatin1String("\""), QLatin1String("\\\""));
                return QLatin1Char('"') + s + QLatin1Char('"');
            };
            text += quote(p.first.toString()) + QLatin1String(" = ") + quote(p.second.toString()) + QLatin1String(";\n");
        }
        const auto again = StringsTable::parse(text);
        if (!again || !(*again == *map)) __builtin_trap();
    }
    return 0;
}
