#include "WindowFrame.h"

#include "Settings.h"

#include <QWidget>

namespace {
QString keyFor(const QString &name)
{
    return QStringLiteral("Window Frame %1").arg(name);
}
}  // namespace

bool WindowFrame::restore(QWidget *window, const QString &name)
{
    const QByteArray geometry = Settings::instance().value(keyFor(name)).toByteArray();
    return !geometry.isEmpty() && window->restoreGeometry(geometry);
}

void WindowFrame::save(const QWidget *window, const QString &name)
{
    Settings::instance().setValue(keyFor(name), window->saveGeometry());
}
