#include "Archive.h"

#include <QIODevice>

namespace Archive {

namespace {

qint64 bytesLeft(QDataStream &in)
{
    return in.device() ? in.device()->bytesAvailable() : 0;
}

}  // namespace

bool fail(QDataStream &in)
{
    in.setStatus(QDataStream::ReadCorruptData);
    return false;
}

void writeClass(QDataStream &out, const QString &className, qint32 version)
{
    writeString(out, className);
    out << version;
}

bool readClass(QDataStream &in, const QString &className, qint32 maxVersion, qint32 *version)
{
    const auto name = readString(in);
    if (!name || *name != className) return fail(in);
    qint32 v = 0;
    in >> v;
    if (in.status() != QDataStream::Ok || v < 1 || v > maxVersion) return fail(in);
    if (version) *version = v;
    return true;
}

void writeString(QDataStream &out, const QString &s)
{
    const QByteArray utf8 = s.toUtf8();
    out << quint32(utf8.size());
    out.writeRawData(utf8.constData(), int(utf8.size()));
}

std::optional<QString> readString(QDataStream &in)
{
    quint32 size = 0;
    in >> size;
    if (in.status() != QDataStream::Ok || qint64(size) > bytesLeft(in)) {
        fail(in);
        return std::nullopt;
    }
    QByteArray bytes(qsizetype(size), Qt::Uninitialized);
    if (in.readRawData(bytes.data(), int(size)) != int(size)) {
        fail(in);
        return std::nullopt;
    }
    return QString::fromUtf8(bytes);
}

void writeBoxedBool(QDataStream &out, std::optional<bool> b)
{
    out << qint8(b ? (*b ? 1 : 0) : -1);
}

std::optional<std::optional<bool>> readBoxedBool(QDataStream &in)
{
    qint8 v = 0;
    in >> v;
    if (in.status() != QDataStream::Ok || v < -1 || v > 1) {
        fail(in);
        return std::nullopt;
    }
    return v < 0 ? std::optional<bool>() : std::optional<bool>(v == 1);
}

void writeCount(QDataStream &out, qsizetype count)
{
    out << quint32(count);
}

std::optional<qsizetype> readCount(QDataStream &in, qsizetype minBytesEach)
{
    quint32 count = 0;
    in >> count;
    if (in.status() != QDataStream::Ok || qint64(count) * qMax<qsizetype>(minBytesEach, 1) > bytesLeft(in)) {
        fail(in);
        return std::nullopt;
    }
    return qsizetype(count);
}

}  // namespace Archive
