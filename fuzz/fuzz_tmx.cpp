// The TMX reader on arbitrary bytes: no crash, no sanitizer report, no hang; a reading either
// fails with a reason and no pairs, or gives pairs that a written memory gives back.
#include "Tmx.h"

#include <cstddef>
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QByteArray bytes(reinterpret_cast<const char *>(data), qsizetype(size));
    const Tmx::Reading reading = Tmx::read(bytes, QStringLiteral("en"), QStringLiteral("fr-CA"));
    if (!reading.error.isEmpty() && !reading.pairs.isEmpty()) __builtin_trap();
    if (reading.pairs.size() > reading.units) __builtin_trap();
    DictRows rows;
    for (const Tmx::Pair &p : reading.pairs) rows.append(std::make_shared<DictEntry>(p.key, p.value));
    qsizetype skipped = 0;
    const Tmx::Reading again = Tmx::read(Tmx::write(rows, QStringLiteral("en"), QStringLiteral("fr-CA"), &skipped),
                                         QStringLiteral("en"), QStringLiteral("fr-CA"));
    if (!again.error.isEmpty() || again.pairs.size() + skipped != reading.pairs.size()) __builtin_trap();
    return 0;
}
