#pragma once
// The sequential archive: QDataStream with class names and class versions around each object's
// fields, in the nesting and field order of the objects. Reading never trusts a length or count
// beyond the bytes that are left, so corrupt or foreign bytes end in a failed stream, never in a
// crash or a huge allocation.

#include <QDataStream>
#include <QString>
#include <optional>

namespace Archive {

void writeClass(QDataStream &out, const QString &className, qint32 version);
// False (and the stream marked corrupt) unless the next object is of this class, with a version
// from 1 up to `maxVersion`; the version read is stored in `version` when given.
bool readClass(QDataStream &in, const QString &className, qint32 maxVersion, qint32 *version = nullptr);

void writeString(QDataStream &out, const QString &s);
std::optional<QString> readString(QDataStream &in);

// A boxed boolean that may be unset.
void writeBoxedBool(QDataStream &out, std::optional<bool> b);
std::optional<std::optional<bool>> readBoxedBool(QDataStream &in);

void writeCount(QDataStream &out, qsizetype count);
// A count of objects each at least `minBytesEach` long: refused when the rest of the stream
// could not hold that many.
std::optional<qsizetype> readCount(QDataStream &in, qsizetype minBytesEach);

bool fail(QDataStream &in);

}  // namespace Archive
