#pragma once
// A file's icon by its type, as the desktop shows it: the icon theme's icon for the file's MIME
// type, or the style's file and folder icons where the theme has none.

#include <QIcon>

QIcon fileIcon(const QString &path);
