// The .ad/.lg/.wg glossary reader on arbitrary bytes: no crash, no sanitizer report, no hang,
// and every pair it gives comes from a unit of the asked languages.
#include "Glossary.h"

#include <cstddef>
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QByteArray bytes(reinterpret_cast<const char *>(data), qsizetype(size));
    const Glossary::Reading reading = Glossary::pairsFromData(bytes, QStringLiteral("en"), QStringLiteral("fr"), size % 2 == 0);
    if (!reading.error.isEmpty() && !reading.pairs.isEmpty()) __builtin_trap();
    // Each unit gives at most one pair, and the text holds at least one marker per unit after
    // the first piece.
    const qsizetype markers = bytes.count("<TranslationSet>");
    if (reading.pairs.size() + reading.skipped > markers + 1) __builtin_trap();
    return 0;
}
