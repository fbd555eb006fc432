#pragma once
// The document toolbar's images, drawn at any size so that they stay sharp: a page with a plus
// (AddFile), a page with an arrow (Export) and a stack of pages with an arrow (ExportAll).

#include <QIcon>

QIcon toolbarIcon(const QString &identifier);
