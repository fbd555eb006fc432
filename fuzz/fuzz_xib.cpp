// The xib reader and merge on arbitrary bytes: no crash, no sanitizer report, no hang; a file
// that reads must give a table, and its merged copy must read again with the new values.
#include "IbtoolTable.h"
#include "XmlInterfaceFile.h"

#include <cstddef>
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QByteArray bytes(reinterpret_cast<const char *>(data), qsizetype(size));
    QString error;
    const auto file = interface::openXmlInterfaceFile(bytes, &error);
    if (!file) {
        if (error.isEmpty()) __builtin_trap();  // every refusal says why
        return 0;
    }
    const auto strings = file->strings();
    (void)interface::ibtoolTableBytes(interface::inIbtoolOrder(strings));

    // Values of every form the writer knows: attribute, child element, base64, removal.
    static const QString forms[] = {QStringLiteral("x & <y> \"z\""), QStringLiteral("two\nlines"), QStringLiteral(" "),
                                    QStringLiteral("tab\there"), QString(), QString(200, u'w')};
    StringMap translations;
    for (qsizetype i = 0; i < strings.size(); ++i) translations.insert(strings[i].key(), forms[i % 6]);
    auto *xml = dynamic_cast<interface::XmlInterfaceFile *>(file.get());
    if (!xml) return 0;
    QByteArray merged;
    if (!xml->merged(translations, &merged, &error)) __builtin_trap();
    const auto again = interface::openXmlInterfaceFile(merged, &error);
    if (!again) __builtin_trap();
    QHash<QString, QString> after;
    for (const auto &s : again->strings()) after.insert(s.key(), s.value);
    for (const auto &p : translations)
        if (!p.second.isEmpty() && after.value(p.first.toString()) != p.second) __builtin_trap();
    return 0;
}
