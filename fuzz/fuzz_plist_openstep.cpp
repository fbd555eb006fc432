// libFuzzer harness: the OpenStep text reader. Inputs that form detection would send elsewhere
// (zero bytes of binary data, a leading "<" or "bplist") are bent back into OpenStep text so
// that mutations reach the OpenStep parser.
#include "PropertyList.h"

#include <cstddef>
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    QByteArray bytes(reinterpret_cast<const char *>(data), qsizetype(size));
    if (!bytes.startsWith("\xFE\xFF") && !bytes.startsWith("\xFF\xFE"))
        bytes.replace('\0', ' ');
    const QByteArray start = bytes.trimmed();
    if (start.isEmpty() || start[0] == '<' || start.startsWith("bplist") || start.startsWith("\xEF\xBB\xBF<"))
        bytes.prepend("(");
    const plist::ReadResult r = plist::read(bytes);
    if (r.value.has_value() != r.error.isEmpty())
        __builtin_trap();
    if (r.value) {
        // Whatever the text held, its XML form must read back as the same tree.
        const plist::ReadResult again = plist::read(plist::toXml(*r.value));
        if (!again.value || !(*again.value == *r.value))
            __builtin_trap();
    }
    return 0;
}
