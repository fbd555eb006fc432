// libFuzzer harness: compiled nibs in the NIBArchive container. The magic is added when missing
// so that mutations reach the tables. What reads must write back exactly, its strings must be
// listed, and a copy with every string replaced must read back with the same keys.
#include "InterfaceFile.h"
#include "nib/CompiledNib.h"
#include "nib/NibArchive.h"
#include "nibtool/NibtoolListing.h"

#include <cstddef>
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    QByteArray bytes(reinterpret_cast<const char *>(data), qsizetype(size));
    if (!bytes.startsWith("NIBArchive")) bytes.prepend("NIBArchive");
    QString error;
    const auto archive = interface::nib::NibArchive::parse(bytes, &error);
    if (archive.has_value() == !error.isEmpty()) __builtin_trap();
    if (!archive) return 0;
    const QByteArray again = archive->serialize();
    const auto reread = interface::nib::NibArchive::parse(again);
    if (!reread || reread->serialize() != again) __builtin_trap();

    const auto nib = interface::nib::CompiledNib::fromData(bytes, &error);
    if (!nib) __builtin_trap();  // a readable archive is a readable nib, strings or not
    StringMap translations;
    for (const interface::LocalizableString &s : nib->strings()) translations.insert(s.key(), s.value + u'!');
    interface::nibtool::listingText(interface::nibtool::listingBlocks(*nib));
    const auto copy = interface::nib::CompiledNib::fromData(nib->localizedData(translations), &error);
    if (!copy || copy->strings().size() != nib->strings().size()) __builtin_trap();
    return 0;
}
