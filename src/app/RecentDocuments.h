#pragma once
// The documents opened or saved lately, newest first, kept in the settings store.

#include <QStringList>

class QMenu;

namespace RecentDocuments {
constexpr int maximum = 10;
QStringList list();
void note(const QString &path);
void clear();
// Fills a menu with the recent documents that still exist; `open` is called with the chosen path.
void fillMenu(QMenu *menu, const std::function<void(const QString &)> &open);
}  // namespace RecentDocuments
