#pragma once
// The document toolbar's images, drawn at any size so that they stay sharp: a page with a plus
// (AddFile), a page with an arrow (Export), a stack of pages with an arrow (ExportAll), a window
// with its drawer out (Files), a waste basket (Delete) and a toolbar with a pencil (Customize).

#include <QIcon>

QIcon toolbarIcon(const QString &identifier);
