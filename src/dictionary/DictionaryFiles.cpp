#include "DictionaryFiles.h"

#include <QDir>
#include <QFileInfo>
#include <QStandardPaths>

QString folderPathForFolderType(const QString &folderType)
{
    // The application-support folder of the Mac is the XDG data home here.
    if (folderType == QLatin1String("asup"))
        return QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation);
    return QString();
}

QString applicationSupportPathForName(const QString &name)
{
    const QString base = folderPathForFolderType(QStringLiteral("asup"));
    const QString path = base.isEmpty() ? name : QDir(base).filePath(name);
    // The data folder itself may not exist yet on a fresh account (or a new XDG_DATA_HOME), so the
    // whole path is made; a failure shows at the first write.
    if (!QFileInfo::exists(path)) QDir().mkpath(path);
    return path;
}

namespace DictionaryFiles {

QString dictionaryFolder()
{
    return applicationSupportPathForName(QStringLiteral("Vocabrix"));
}

QString fileName(const QString &baseKey, const QString &targetKey)
{
    return QStringLiteral("%1-%2.strings").arg(baseKey, targetKey);
}

std::optional<std::pair<QString, QString>> languageKeysFromFileName(const QString &name)
{
    const QString suffix = QStringLiteral(".strings");
    if (!name.endsWith(suffix)) return std::nullopt;
    const QString stem = name.chopped(suffix.size());
    const qsizetype dash = stem.indexOf(u'-');
    if (dash <= 0 || dash == stem.size() - 1) return std::nullopt;
    return std::make_pair(stem.left(dash), stem.mid(dash + 1));
}

}  // namespace DictionaryFiles
