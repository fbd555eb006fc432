#pragma once
// The save panel of Save As. The model's Dialogs interface covers open panels and alerts only;
// saving a document under a new name is the window's business, so its panel is asked here, and
// tests answer it like the others.

#include <QString>

class SavePanel {
public:
    virtual ~SavePanel() = default;
    // The path chosen to save under, or an empty string when the user cancelled.
    virtual QString runSavePanel(const QString &title, const QString &suggestedPath) = 0;
};
