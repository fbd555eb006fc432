// libFuzzer harness: the XML property-list reader, and the writer on whatever it accepted.
// Inputs get the XML prefix when they lack one, so mutations land in the parser and not in
// form detection.
#include "PropertyList.h"

#include <cstddef>
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    QByteArray bytes(reinterpret_cast<const char *>(data), qsizetype(size));
    if (!bytes.startsWith('<'))
        bytes.prepend("<plist>");
    const plist::ReadResult r = plist::read(bytes);
    if (r.value.has_value() != r.error.isEmpty())
        __builtin_trap();  // a value comes without an error, and no value without one
    if (r.value) {
        // What we write must read back as the same tree.
        const plist::ReadResult again = plist::read(plist::toXml(*r.value));
        if (!again.value || !(*again.value == *r.value))
            __builtin_trap();
    }
    return 0;
}
