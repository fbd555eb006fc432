#include "RecentDocuments.h"

#include "Settings.h"

#include <QDir>
#include <QFileInfo>
#include <QMenu>

namespace {
const QString key = QStringLiteral("RecentDocuments");
}

QStringList RecentDocuments::list()
{
    return Settings::instance().value(key).toStringList();
}

void RecentDocuments::note(const QString &path)
{
    const QString absolute = QFileInfo(path).absoluteFilePath();
    QStringList paths = list();
    paths.removeAll(absolute);
    paths.prepend(absolute);
    while (paths.size() > maximum) paths.removeLast();
    Settings::instance().setValue(key, paths);
}

void RecentDocuments::clear()
{
    Settings::instance().remove(key);
}

void RecentDocuments::fillMenu(QMenu *menu, const std::function<void(const QString &)> &open)
{
    menu->clear();
    for (const QString &path : list()) {
        if (!QFileInfo::exists(path)) continue;
        QAction *action = menu->addAction(QFileInfo(path).fileName(), menu, [open, path] { open(path); });
        action->setToolTip(QDir::toNativeSeparators(path));
    }
    if (menu->isEmpty()) menu->addAction(QObject::tr("No Recent Documents"))->setEnabled(false);
    menu->addSeparator();
    menu->addAction(QObject::tr("Clear Menu"), menu, [] { RecentDocuments::clear(); });
}
