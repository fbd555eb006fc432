#pragma once
// Window frames kept in the settings store under an autosave name, so that a window comes back
// where the user left it.

#include <QString>

class QWidget;

namespace WindowFrame {
// Restores the frame saved under `name`; true when there was one.
bool restore(QWidget *window, const QString &name);
void save(const QWidget *window, const QString &name);
}  // namespace WindowFrame
