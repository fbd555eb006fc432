// The quality checks and the places of a table's keys on arbitrary text: no crash, no sanitizer
// report, no hang. The bytes are a base and a translation split at the first NUL, and a table.
#include "FormatSpecifiers.h"
#include "QualityChecks.h"
#include "StringsTable.h"
#include "TablePlaces.h"

#include <cstddef>
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QByteArray bytes(reinterpret_cast<const char *>(data), qsizetype(size));
    const QString text = QString::fromUtf8(bytes);
    const qsizetype split = text.indexOf(QChar(0));
    const QString base = split < 0 ? text : text.left(split);
    const QString translation = split < 0 ? text : text.mid(split + 1);
    for (bool checked : {false, true}) {
        Qa::checkTranslation(base, translation, checked);
        Qa::checkTranslation(translation, base, checked);
    }
    // A text agrees with itself, unless it numbers some placeholders and not others, or gives one
    // argument two kinds: faults of any translation.
    const QString self = Qa::compareFormatSpecifiers(base, base);
    if (!self.isEmpty() && !self.startsWith(QLatin1String("The translation mixes"))
        && !self.startsWith(QLatin1String("The translation uses argument")))
        __builtin_trap();
    Qa::unescapedWord(text);

    // Every key the table reader finds in a table read whole has its place.
    const auto places = Qa::tablePlaces(text);
    if (const auto map = StringsTable::parse(text)) {
        for (const auto &p : *map)
            if (!places.contains(p.first.toString())) __builtin_trap();
    }
    for (const auto &place : places) Qa::interfaceCommentBase(place.comment);
    return 0;
}
