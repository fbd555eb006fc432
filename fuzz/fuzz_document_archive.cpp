// The document archive reader on arbitrary bytes: it must refuse with a message or give a
// document that writes back to bytes it reads the same way.
#include "DocumentArchive.h"

#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QByteArray bytes = QByteArray::fromRawData(reinterpret_cast<const char *>(data), qsizetype(size));
    QString error;
    const auto contents = DocumentArchive::decode(bytes, &error);
    if (!contents) {
        if (error.isEmpty()) __builtin_trap();  // every refusal carries a reason
        return 0;
    }
    const QByteArray again = DocumentArchive::encode(*contents);
    const auto reread = DocumentArchive::decode(again, &error);
    if (!reread || DocumentArchive::encode(*reread) != again) __builtin_trap();
    return 0;
}
