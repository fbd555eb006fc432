#pragma once
// The model's panels and alerts as Qt dialogs: QFileDialog for open panels (bundle folders such
// as Foo.app are chosen like files), QMessageBox for alerts and sheets, the desktop's file
// manager for revealing a folder.

#include "Dialogs.h"
#include "SavePanel.h"

#include <QPointer>
#include <QWidget>

class QtDialogs : public Dialogs, public SavePanel {
public:
    // `window`: the window the dialogs belong to (may be null for application-wide ones).
    explicit QtDialogs(QWidget *window = nullptr) : m_window(window) {}

    QStringList runOpenPanel(const OpenPanelOptions &options) override;
    int runAlert(const Alert &alert) override;
    void showAlertSheet(const Alert &alert) override;
    void revealInFileManager(const QString &path) override;
    QString runSavePanel(const QString &title, const QString &suggestedPath) override;

private:
    QPointer<QWidget> m_window;
};
