// The strings-file handler (and, for bytes that look like a property list, the property-list
// handler it hands them to) on arbitrary base files, with the same bytes as previous version:
// no crash, no sanitizer report, no hang; every entry keeps the shape entries rely on, and the
// escaping of property-list words reads back what it wrote.
#include "HandlerFolder.h"
#include "LocFile.h"
#include "PlistWordEscaping.h"
#include "StringsHandler.h"
#include "StringsLayout.h"
#include "TextFile.h"

#include <QFile>
#include <QStringDecoder>
#include <cstddef>
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QByteArray bytes(reinterpret_cast<const char *>(data), qsizetype(size));
    QTemporaryDir &dir = fuzzing::handlerFolder();
    const QString base = dir.filePath(QStringLiteral("Localizable.strings"));
    const QString previous = dir.filePath(QStringLiteral("previous.strings"));
    if (!fuzzing::writeFile(base, bytes) || !fuzzing::writeFile(previous, bytes)) return 0;

    const LocFilePtr file = LocFile::initWithPath(base, OptString(), OptString(previous));
    if (!file) __builtin_trap();
    for (const LocEntryPtr &e : file->allEntries()) {
        if (!e->entry().endsWith(QLatin1String("\";")) || !e->entry().contains(QLatin1String(" = \""))) __builtin_trap();
        (void)e->keyWord();
        (void)e->baseWord();
        (void)e->entryBodyAsString();
    }
    file->makeLocalizedFileAt(dir.filePath(QStringLiteral("out")));

    // A table the grammar takes, exported untranslated, is its own text again.
    const QString out = dir.filePath(QStringLiteral("out/Localizable.strings"));
    QFile::remove(out);
    LocFile::initWithPath(base, OptString(), OptString())->makeLocalizedFileAt(dir.filePath(QStringLiteral("out")));
    const OptString decoded = decodeTextFileData(bytes);
    if (decoded) {
        const QString table = StringUtility::replaceReturnCode(*decoded);
        const bool propertyList = stringsHandle::isPropertyListTable(bytes, table.section(u'\n', 0, 0));
        // (Text with a lone surrogate cannot be written as UTF-8 as it is: left out.)
        const bool encodable = QString::fromUtf8(table.toUtf8()) == table;
        if (!propertyList && encodable && StringsLayout::read(table)) {
            QFile written(out);
            if (!written.open(QIODevice::ReadOnly) || QString::fromUtf8(written.readAll()) != table) __builtin_trap();
        }
    }

    const QString text = QString::fromUtf8(bytes);
    if (unescapePlistWord(escapePlistWord(text)) != text) __builtin_trap();
    return 0;
}
