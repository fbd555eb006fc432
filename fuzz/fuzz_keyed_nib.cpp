// libFuzzer harness: compiled nibs that are keyed archives in a binary property list. The
// "bplist00" header is added when missing. A nib that reads must list its strings and give a
// copy with every string replaced that reads back with the same keys.
#include "InterfaceFile.h"
#include "nib/CompiledNib.h"
#include "nibtool/NibtoolListing.h"

#include <cstddef>
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    QByteArray bytes(reinterpret_cast<const char *>(data), qsizetype(size));
    if (!bytes.startsWith("bplist00")) bytes.prepend("bplist00");
    QString error;
    const auto nib = interface::nib::CompiledNib::fromData(bytes, &error);
    if (!nib) {
        if (error.isEmpty()) __builtin_trap();
        return 0;
    }
    StringMap translations;
    for (const interface::LocalizableString &s : nib->strings()) translations.insert(s.key(), s.value + u'!');
    interface::nibtool::listingText(interface::nibtool::listingBlocks(*nib));
    const auto copy = interface::nib::CompiledNib::fromData(nib->localizedData(translations), &error);
    if (!copy || copy->strings().size() != nib->strings().size()) __builtin_trap();
    return 0;
}
