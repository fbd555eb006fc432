#pragma once
// The document file: a sequential archive in QDataStream form. Each archive (the document, and
// the file list nested in it as an opaque block of bytes) starts with the magic "VOCABRIX", a
// format version and its kind; objects carry their class name and class version, fields follow
// in the document's order:
//   document  = Dictionary{ "title": string, "locLangFrom": integer, "locLangTo": integer,
//                            "files": bytes(file list archive) }
//   file list = Array[ LocFile{ path, [LocEntry{ entry, check }] } ]
// Reading checks every length against the bytes left, so foreign or damaged files end in a
// message, never in a crash.

#include "LocFile.h"

#include <QByteArray>
#include <QString>

namespace DocumentArchive {

inline constexpr quint32 formatVersion = 1;

struct Contents {
    QString title;
    int locLangFrom = 0;
    int locLangTo = 0;
    QList<LocFilePtr> files;
};

QByteArray encode(const Contents &contents);
// None, with the reason in `error` (a sentence without the file's name), for anything that is
// not a whole archive of a format version up to formatVersion.
std::optional<Contents> decode(const QByteArray &data, QString *error);

QByteArray encodeFiles(const QList<LocFilePtr> &files);
std::optional<QList<LocFilePtr>> decodeFiles(const QByteArray &data, QString *error);

}  // namespace DocumentArchive
