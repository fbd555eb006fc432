#include "FilesDrawer.h"

#include "Settings.h"

#include <QMainWindow>

FilesDrawer::FilesDrawer(QWidget *content, QMainWindow *window) : QDockWidget(tr("Files"), window)
{
    setObjectName(QStringLiteral("drawer"));
    // Opened and closed by the toolbar item only, so its state is always the item's.
    setFeatures(QDockWidget::NoDockWidgetFeatures);
    setTitleBarWidget(new QWidget(this));
    setWidget(content);
    window->addDockWidget(Qt::LeftDockWidgetArea, this);
    window->resizeDocks({this}, {280}, Qt::Horizontal);
    const QVariant open = Settings::instance().value(openKey());
    setVisible(!open.isValid() || open.toBool());
}

void FilesDrawer::toggle()
{
    setOpen(!isOpen());
}

void FilesDrawer::setOpen(bool open)
{
    setVisible(open);
    Settings::instance().setValue(openKey(), open);
}
