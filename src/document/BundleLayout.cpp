#include "BundleLayout.h"

#include <QDir>
#include <QFileInfo>

namespace BundleLayout {

namespace {

const QString kLproj = QStringLiteral(".lproj");

QString stemOf(const QString &folderName)
{
    return folderName.endsWith(kLproj) ? folderName.left(folderName.size() - kLproj.size()) : folderName;
}

QString normalized(const QString &name)
{
    return stemOf(name).toLower().replace(u'_', u'-');
}

QString languagePart(const QString &name)
{
    const QString n = normalized(name);
    const qsizetype cut = n.indexOf(u'-');
    return cut < 0 ? n : n.left(cut);
}

}  // namespace

QString resourcesFolder(const QString &bundle)
{
    const QDir dir(bundle);
    for (const char *place : {"Contents/Resources", "Resources", "Versions/Current/Resources"}) {
        const QString candidate = dir.filePath(QLatin1String(place));
        if (QFileInfo(candidate).isDir()) return candidate;
    }
    return dir.filePath(QStringLiteral("Contents/Resources"));
}

QStringList frameworks(const QString &bundle)
{
    QStringList found;
    for (const char *place : {"Contents/Frameworks", "Frameworks"}) {
        const QDir dir(QDir(bundle).filePath(QLatin1String(place)));
        for (const QString &name : dir.entryList({QStringLiteral("*.framework")}, QDir::Dirs | QDir::NoDotAndDotDot, QDir::Name))
            if (!isHiddenName(name)) found.append(dir.filePath(name));
    }
    return found;
}

QString frameworkPart(const QString &path)
{
    const qsizetype end = path.lastIndexOf(QLatin1String(".framework/"));
    if (end < 0) return QString();
    const qsizetype folder = path.lastIndexOf(QLatin1String("/Frameworks/"), end);
    if (folder < 0) return QString();
    qsizetype start = folder + 1;
    if (path.mid(folder - 9, 9) == QLatin1String("/Contents")) start = folder - 8;
    return path.mid(start, end + 10 - start);
}

bool isHiddenName(const QString &name)
{
    return name.startsWith(u'.');
}

bool isInterfaceFile(const QString &name)
{
    const QString ext = QFileInfo(name).suffix();
    return ext == QLatin1String("xib") || ext == QLatin1String("storyboard") || ext == QLatin1String("nib");
}

bool isInBaseFolder(const QString &path)
{
    return QFileInfo(path).dir().dirName() == kBaseFolder;
}

QStringList languageFolders(const QString &resources)
{
    QStringList folders;
    const QStringList names = QDir(resources).entryList(QDir::Dirs | QDir::NoDotAndDotDot, QDir::Name);
    for (const QString &name : names)
        if (name.endsWith(kLproj) && !isHiddenName(name)) folders.append(name);
    return folders;
}

QStringList candidateFolders(const QString &resources, const QString &key, const QString &abbreviation)
{
    const QStringList folders = languageFolders(resources);
    for (const QString &wanted : {key, abbreviation})
        if (!wanted.isEmpty() && folders.contains(wanted + kLproj)) return {wanted + kLproj};
    for (const QString &wanted : {key, abbreviation}) {
        if (wanted.isEmpty()) continue;
        for (const QString &folder : folders)
            if (normalized(folder) == normalized(wanted)) return {folder};
    }
    QStringList sameLanguage;
    const QString language = languagePart(abbreviation.isEmpty() ? key : abbreviation);
    if (language.isEmpty()) return sameLanguage;
    for (const QString &folder : folders)
        if (folder != kBaseFolder && languagePart(folder) == language) sameLanguage.append(folder);
    return sameLanguage;
}

QString newFolderName(const QString &resources, const QString &key, const QString &abbreviation)
{
    bool abbreviationStyle = false;
    for (const QString &folder : languageFolders(resources))
        if (folder == kBaseFolder || folder.at(0).isLower()) abbreviationStyle = true;
    if (abbreviationStyle && !abbreviation.isEmpty()) return abbreviation + kLproj;
    return (key.isEmpty() ? abbreviation : key) + kLproj;
}

}  // namespace BundleLayout
