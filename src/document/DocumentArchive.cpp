#include "DocumentArchive.h"

#include "Archive.h"
#include "MyDocument.h"

#include <QFile>
#include <QFileInfo>
#include <QSaveFile>

namespace DocumentArchive {

namespace {

const QByteArray magic = QByteArrayLiteral("VOCABRIX");
// Streams are pinned to one QDataStream version so files read the same in later Qt releases.
constexpr QDataStream::Version streamVersion = QDataStream::Qt_6_0;
enum class Kind : quint8 { Document = 1, FileList = 2 };
enum class ValueType : qint8 { String = 1, Integer = 2, Bytes = 3 };

const QString notADocument = QStringLiteral("It is not a Vocabrix document.");
const QString damaged = QStringLiteral("The file is damaged: it ends too early or holds data that does not belong there.");

void writeHeader(QDataStream &out, Kind kind)
{
    out.writeRawData(magic.constData(), int(magic.size()));
    out << formatVersion << quint8(kind);
}

bool readHeader(QDataStream &in, Kind kind, QString *error)
{
    QByteArray head(magic.size(), Qt::Uninitialized);
    if (in.readRawData(head.data(), int(head.size())) != head.size() || head != magic) {
        *error = notADocument;
        return false;
    }
    quint32 version = 0;
    quint8 k = 0;
    in >> version >> k;
    if (in.status() != QDataStream::Ok) {
        *error = damaged;
        return false;
    }
    if (version == 0 || version > formatVersion) {
        *error = QStringLiteral("It was written by a newer version of Vocabrix (document format %1; this version reads "
                                "format %2 and older).").arg(version).arg(formatVersion);
        return false;
    }
    if (k != quint8(kind)) {
        *error = damaged;
        return false;
    }
    return true;
}

void writeBytes(QDataStream &out, const QByteArray &bytes)
{
    out << quint32(bytes.size());
    out.writeRawData(bytes.constData(), int(bytes.size()));
}

std::optional<QByteArray> readBytes(QDataStream &in)
{
    quint32 size = 0;
    in >> size;
    if (in.status() != QDataStream::Ok || !in.device() || qint64(size) > in.device()->bytesAvailable()) {
        Archive::fail(in);
        return std::nullopt;
    }
    QByteArray bytes(qsizetype(size), Qt::Uninitialized);
    if (in.readRawData(bytes.data(), int(size)) != int(size)) {
        Archive::fail(in);
        return std::nullopt;
    }
    return bytes;
}

// The class header of a collection and its element count; -1 when either is wrong.
qsizetype readObjectCount(QDataStream &in, const QString &className, qsizetype minBytesEach)
{
    if (!Archive::readClass(in, className, 1)) return -1;
    const auto count = Archive::readCount(in, minBytesEach);
    return count ? *count : -1;
}

bool atCleanEnd(QDataStream &in)
{
    return in.status() == QDataStream::Ok && in.atEnd();
}

}  // namespace

QByteArray encodeFiles(const QList<LocFilePtr> &files)
{
    QByteArray data;
    QDataStream out(&data, QIODevice::WriteOnly);
    out.setVersion(streamVersion);
    writeHeader(out, Kind::FileList);
    Archive::writeClass(out, QStringLiteral("Array"), 1);
    Archive::writeCount(out, files.size());
    for (const LocFilePtr &file : files) file->encodeWithCoder(out);
    return data;
}

std::optional<QList<LocFilePtr>> decodeFiles(const QByteArray &data, QString *error)
{
    QDataStream in(data);
    in.setVersion(streamVersion);
    if (!readHeader(in, Kind::FileList, error)) return std::nullopt;
    // An archived file takes at least its class header, its path length and its entry count.
    const qsizetype count = readObjectCount(in, QStringLiteral("Array"), 24);
    if (count < 0) {
        *error = damaged;
        return std::nullopt;
    }
    QList<LocFilePtr> files;
    files.reserve(count);
    for (qsizetype i = 0; i < count; ++i) {
        LocFilePtr file = LocFile::initWithCoder(in);
        if (!file) {
            *error = damaged;
            return std::nullopt;
        }
        files.append(file);
    }
    if (!atCleanEnd(in)) {
        *error = damaged;
        return std::nullopt;
    }
    return files;
}

QByteArray encode(const Contents &contents)
{
    QByteArray data;
    QDataStream out(&data, QIODevice::WriteOnly);
    out.setVersion(streamVersion);
    writeHeader(out, Kind::Document);
    Archive::writeClass(out, QStringLiteral("Dictionary"), 1);
    Archive::writeCount(out, 4);
    Archive::writeString(out, QStringLiteral("title"));
    out << qint8(ValueType::String);
    Archive::writeString(out, contents.title);
    for (const auto &[key, tag] : {std::pair{QStringLiteral("locLangFrom"), contents.locLangFrom},
                                   std::pair{QStringLiteral("locLangTo"), contents.locLangTo}}) {
        Archive::writeString(out, key);
        out << qint8(ValueType::Integer) << qint64(tag);
    }
    Archive::writeString(out, QStringLiteral("files"));
    out << qint8(ValueType::Bytes);
    writeBytes(out, encodeFiles(contents.files));
    return data;
}

std::optional<Contents> decode(const QByteArray &data, QString *error)
{
    QDataStream in(data);
    in.setVersion(streamVersion);
    if (!readHeader(in, Kind::Document, error)) return std::nullopt;
    // A map entry takes at least a key length, a type and a value length.
    const qsizetype count = readObjectCount(in, QStringLiteral("Dictionary"), 9);
    if (count < 0) {
        *error = damaged;
        return std::nullopt;
    }
    std::optional<QString> title;
    std::optional<qint64> from, to;
    std::optional<QByteArray> filesBlock;
    for (qsizetype i = 0; i < count; ++i) {
        const auto key = Archive::readString(in);
        qint8 type = 0;
        in >> type;
        if (!key || in.status() != QDataStream::Ok) break;
        if (type == qint8(ValueType::String)) {
            const auto s = Archive::readString(in);
            if (*key == QLatin1String("title")) title = s;
        } else if (type == qint8(ValueType::Integer)) {
            qint64 v = 0;
            in >> v;
            if (*key == QLatin1String("locLangFrom")) from = v;
            else if (*key == QLatin1String("locLangTo")) to = v;
        } else if (type == qint8(ValueType::Bytes)) {
            const auto b = readBytes(in);
            if (*key == QLatin1String("files")) filesBlock = b;
        } else {
            Archive::fail(in);
            break;
        }
    }
    const auto fits = [](const std::optional<qint64> &v) { return v && *v >= INT_MIN && *v <= INT_MAX; };
    if (!atCleanEnd(in) || !title || !fits(from) || !fits(to) || !filesBlock) {
        *error = damaged;
        return std::nullopt;
    }
    auto files = decodeFiles(*filesBlock, error);
    if (!files) return std::nullopt;
    return Contents{*title, int(*from), int(*to), *files};
}

}  // namespace DocumentArchive

QByteArray MyDocument::dataRepresentationOfType(const QString &typeName)
{
    Q_UNUSED(typeName);
    saveSpellCheck();
    waitUntilFilesRead();
    return DocumentArchive::encode({m_title, m_locLangFrom, m_locLangTo, m_files});
}

bool MyDocument::loadDataRepresentation(const QByteArray &data, const QString &typeName, QString *error)
{
    Q_UNUSED(typeName);
    QString reason;
    auto contents = DocumentArchive::decode(data, &reason);
    if (!contents) {
        if (error) *error = reason;
        return false;
    }
    setTitle(contents->title);
    setLocLangFrom(contents->locLangFrom);
    setLocLangTo(contents->locLangTo);
    setFiles(contents->files);
    return true;
}

bool MyDocument::writeToFile(const QString &path, QString *error)
{
    const QByteArray data = dataRepresentationOfType(documentTypeName());
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(data) != data.size() || !file.commit()) {
        if (error)
            *error = QStringLiteral("The document \u201C%1\u201D could not be saved: %2.")
                         .arg(QFileInfo(path).fileName(), file.errorString());
        return false;
    }
    if (m_filePath != path) {
        m_filePath = path;
        emit filePathChanged();
    }
    updateChangeCount(ChangeCleared);
    return true;
}

bool MyDocument::readFromFile(const QString &path, QString *error)
{
    const QString name = QFileInfo(path).fileName();
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        if (error) *error = QStringLiteral("The document \u201C%1\u201D could not be opened: %2.").arg(name, file.errorString());
        return false;
    }
    QString reason;
    if (!loadDataRepresentation(file.readAll(), documentTypeName(), &reason)) {
        if (error) *error = QStringLiteral("The document \u201C%1\u201D could not be opened. %2").arg(name, reason);
        return false;
    }
    if (m_filePath != path) {
        m_filePath = path;
        emit filePathChanged();
    }
    updateChangeCount(ChangeCleared);
    return true;
}

bool MyDocument::revertToSaved(QString *error)
{
    if (m_filePath.isEmpty()) {
        if (error) *error = QStringLiteral("The document has never been saved, so there is nothing to revert to.");
        return false;
    }
    return readFromFile(m_filePath, error);
}
