// libFuzzer harness: the binary property-list reader. The "bplist00" header is added when
// missing so that every mutation reaches the trailer and object parsing.
#include "PropertyList.h"

#include <cstddef>
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    QByteArray bytes(reinterpret_cast<const char *>(data), qsizetype(size));
    if (!bytes.startsWith("bplist00"))
        bytes.prepend("bplist00");
    const plist::ReadResult r = plist::read(bytes);
    if (r.value.has_value() != r.error.isEmpty())
        __builtin_trap();
    if (r.value) {
        // The binary writer's output must read back as the same tree.
        const plist::ReadResult again = plist::read(plist::toBinary(*r.value));
        if (!again.value || !(*again.value == *r.value))
            __builtin_trap();
    }
    return 0;
}
