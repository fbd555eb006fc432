#pragma once
// Every open panel, alert and sheet the document model shows goes through this interface: the
// application implements it with Qt dialogs, tests and the command line with scripted answers.
// Texts arrive already localized; the implementation shows them as they stand.

#include <QString>
#include <QStringList>

struct OpenPanelOptions {
    QString message;                // shown above the file list
    QString prompt;                 // title of the confirm button; empty: the platform's own
    QString startFolder;            // empty: the panel's default folder
    QString presetName;             // file name selected or typed in advance; may be empty
    QStringList allowedExtensions;  // without dots; empty: every file
    // Folders whose extension is one of these are application bundles: chosen like files.
    QStringList bundleExtensions;
    bool allowsMultipleSelection = false;
    bool canChooseFiles = true;
    bool canChooseDirectories = false;
    bool canCreateDirectories = false;
    bool asSheet = false;           // attached to the document window (still waited for)
};

enum class AlertStyle { Informational, Warning, Critical };

struct Alert {
    QString title;
    QString message;      // plain text
    QStringList buttons;  // first = default button; empty: a single "OK"
    AlertStyle style = AlertStyle::Warning;
    bool copyable = false;  // a report to keep: its text can be copied whole
};

class Dialogs {
public:
    virtual ~Dialogs() = default;

    // Modal open panel: the chosen paths, or an empty list when the user cancelled.
    virtual QStringList runOpenPanel(const OpenPanelOptions &options) = 0;
    // Modal alert: the index in `buttons` of the button pressed (0 for the default button).
    virtual int runAlert(const Alert &alert) = 0;
    // An alert sheet that is not waited for: the caller goes on at once.
    virtual void showAlertSheet(const Alert &alert) = 0;
    // Shows a folder in the desktop's file manager; nothing by default (headless use).
    virtual void revealInFileManager(const QString &path) { Q_UNUSED(path); }

    // What is used while nobody has set an implementation: panels cancel, alerts take their
    // default button, nothing is shown.
    static Dialogs &silent();
};
