#include "DictionaryMerge.h"

#include "NotificationCenter.h"
#include "StringsFileWriter.h"
#include "StringsTable.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>

namespace {

QString quoted(const QString &name)
{
    return QStringLiteral("\u201C%1\u201D").arg(name);
}

// A free name beside the unreadable file that no dictionary reader will take for a pair's file.
QString asideName(const QString &path)
{
    const QString stamp = QDateTime::currentDateTime().toString(QStringLiteral("yyyyMMdd-HHmmss"));
    QString candidate = QStringLiteral("%1.unreadable-%2").arg(path, stamp);
    for (int n = 2; QFileInfo::exists(candidate); ++n)
        candidate = QStringLiteral("%1.unreadable-%2-%3").arg(path, stamp).arg(n);
    return candidate;
}

QString readFailure(const StringsTable::Error &error)
{
    if (error.message.isEmpty()) return QString();
    if (error.line > 0) return QStringLiteral(" (line %1: %2)").arg(error.line).arg(error.message);
    return QStringLiteral(" (%1)").arg(error.message);
}

}  // namespace

MergeResult mergeIntoDictionary(const QString &path, const StringMap &pairs, QObject *sender)
{
    NotificationCenter &center = NotificationCenter::instance();
    center.postDictWillExportFile(sender);

    MergeResult result;
    const QString name = QFileInfo(path).fileName();
    StringMap merged;
    bool mayWrite = true;
    if (QFileInfo::exists(path)) {
        StringsTable::Error error;
        if (auto stored = dictionaryWithContentsOfFile(path, &error)) {
            merged = std::move(*stored);
        } else {
            // Writing the export's pairs alone over it would lose every pair the file held.
            const QString aside = asideName(path);
            if (QFile::rename(path, aside)) {
                result.keptAsidePath = aside;
                result.message = QStringLiteral("The dictionary %1 could not be read%2. It was kept as %3, and a new "
                                                "dictionary was started with the pairs of this export.")
                                     .arg(quoted(name), readFailure(error), quoted(QFileInfo(aside).fileName()));
            } else {
                mayWrite = false;
                result.message = QStringLiteral("The dictionary %1 could not be read%2, and it could not be kept aside "
                                                "either, so the pairs of this export were not added to it.")
                                     .arg(quoted(name), readFailure(error));
            }
        }
    }

    if (mayWrite) {
        merged.reserve(merged.size() + pairs.size());
        merged.insertAll(pairs);
        QString error;
        if (writeToStringsFile(merged, path, true, &error)) {
            result.written = true;
            result.pairCount = merged.size();
        } else {
            const QString sentence = QStringLiteral("The dictionary %1 could not be written in %2 (%3).")
                                         .arg(quoted(name), QDir::toNativeSeparators(QFileInfo(path).absolutePath()), error);
            result.message = result.message.isEmpty() ? sentence : result.message + u' ' + sentence;
        }
    }

    center.postDictExportFileAndAddEntries(sender);
    return result;
}
