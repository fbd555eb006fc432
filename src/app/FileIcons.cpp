#include "FileIcons.h"

#include <QApplication>
#include <QFileInfo>
#include <QHash>
#include <QMimeDatabase>
#include <QStyle>

QIcon fileIcon(const QString &path)
{
    // One lookup per kind of file: the table asks again at every repaint.
    static QHash<QString, QIcon> cache;
    const QFileInfo info(path);
    const bool folder = info.isDir();
    const QString kind = folder ? QStringLiteral("/") + info.suffix() : info.suffix().toLower();
    if (auto it = cache.constFind(kind); it != cache.constEnd()) return *it;

    const QMimeType type = QMimeDatabase().mimeTypeForFile(info, QMimeDatabase::MatchExtension);
    QIcon icon = QIcon::fromTheme(type.iconName());
    if (icon.isNull()) icon = QIcon::fromTheme(type.genericIconName());
    if (icon.isNull() && qApp)
        icon = QApplication::style()->standardIcon(folder ? QStyle::SP_DirIcon : QStyle::SP_FileIcon);
    cache.insert(kind, icon);
    return icon;
}
