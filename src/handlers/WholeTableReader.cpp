#include "WholeTableReader.h"

#include "LocFile.h"
#include "StringsTable.h"
#include "TextFile.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

namespace {

QString roleName(TableRole role)
{
    return role == TableRole::Previous ? QStringLiteral("The previous version") : QStringLiteral("The dictionary");
}

}  // namespace

QString textEncodingName(TextEncoding encoding)
{
    switch (encoding) {
    case TextEncoding::Utf8: return QStringLiteral("UTF-8");
    case TextEncoding::Utf16LE: return QStringLiteral("UTF-16 little-endian");
    case TextEncoding::Utf16BE: return QStringLiteral("UTF-16 big-endian");
    case TextEncoding::MacRoman: return QStringLiteral("Mac OS Roman");
    }
    return QString();
}

namespace {

QString reason(const StringsTable::Error &error)
{
    if (error.message.isEmpty()) return QStringLiteral("it is not a string table");
    if (error.line > 0) return QStringLiteral("%1 at line %2").arg(error.message).arg(error.line);
    return error.message;
}

}  // namespace

QString displayPath(const QString &path)
{
    return QDir::toNativeSeparators(path);
}

std::optional<StringMap> readWholeTable(LocFile &file, const OptString &path, TableRole role)
{
    if (!path || path->isEmpty() || !QFileInfo(*path).isFile()) return std::nullopt;
    if (auto map = StringsTable::snapshotOf(*path)) return map;
    QFile in(*path);
    if (!in.open(QIODevice::ReadOnly)) {
        file.addWarning(QStringLiteral("%1 %2 could not be opened (%3); no words were taken from it.")
                            .arg(roleName(role), displayPath(*path), in.errorString()));
        return std::nullopt;
    }
    const QByteArray bytes = in.readAll();
    StringsTable::Error error;
    if (auto map = StringsTable::parseFileData(*path, bytes, &error)) return map;

    // The table reader knows UTF-8 and marked UTF-16 only; old tables come in other encodings too.
    const TextEncoding guessed = detectTextEncoding(bytes);
    const bool marked = bytes.startsWith("\xFE\xFF") || bytes.startsWith("\xFF\xFE");
    if (guessed != TextEncoding::Utf8 && !marked) {
        if (const OptString text = decodeTextFileData(bytes)) {
            if (auto map = StringsTable::parse(*text)) {
                file.addWarning(QStringLiteral("%1 %2 is neither UTF-8 nor UTF-16 with a byte-order mark; it was read as "
                                               "%3. Check its accented letters.")
                                    .arg(roleName(role), displayPath(*path), textEncodingName(guessed)));
                return map;
            }
        }
    }
    file.addWarning(QStringLiteral("%1 %2 could not be read as a string table (%3); no words were taken from it.")
                        .arg(roleName(role), displayPath(*path), reason(error)));
    return std::nullopt;
}
