// The .stringsdict handler on arbitrary bytes, the same bytes as previous version: no crash, no
// sanitizer report, no hang; every entry has a place and a text, and an export reads back with
// the same places in the same order.
#include "HandlerFolder.h"
#include "LocFile.h"
#include "StringsdictHandler.h"

#include <QFile>
#include <cstddef>
#include <cstdint>

namespace {

QByteArray read(const QString &path)
{
    QFile f(path);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QByteArray bytes(reinterpret_cast<const char *>(data), qsizetype(size));
    QTemporaryDir &dir = fuzzing::handlerFolder();
    const QString base = dir.filePath(QStringLiteral("Localizable.stringsdict"));
    const QString previous = dir.filePath(QStringLiteral("previous.stringsdict"));
    if (!fuzzing::writeFile(base, bytes) || !fuzzing::writeFile(previous, bytes)) return 0;

    const LocFilePtr file = LocFile::initWithPath(base, OptString(), OptString(previous));
    if (!file) __builtin_trap();
    for (const LocEntryPtr &e : file->allEntries())
        if (!e->keyWord() || !e->baseWord()) __builtin_trap();
    const QString out = dir.filePath(QStringLiteral("out"));
    QFile::remove(out + QLatin1String("/Localizable.stringsdict"));
    file->makeLocalizedFileAt(out);
    if (file->allEntries().isEmpty()) return 0;
    const auto before = stringsdictHandle::translatableTexts(bytes);
    const auto after = stringsdictHandle::translatableTexts(read(out + QLatin1String("/Localizable.stringsdict")));
    if (!before || !after) return 0;
    if (before->size() != after->size()) __builtin_trap();
    for (qsizetype i = 0; i < before->size(); ++i)
        if (before->at(i).first != after->at(i).first) __builtin_trap();
    return 0;
}
