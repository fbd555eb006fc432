// Vocabrix: translating the interface resources of Mac applications.
//
//   vocabrix [DOCUMENT | RESOURCE...]
//
// Documents open in their own windows. Resource files and bundles (what the desktop hands over
// when the user opens a .strings, .plist, .xib, .nib or .app with Vocabrix) are added to one new
// document, as if dropped on its file table.
//
// Hidden options for demonstrations and screenshots:
//   --add PATH          add a file or bundle to the first window's document (repeatable)
//   --previous PATH     the previous localized release of the --add of the same position
//   --document-title T  the first window's document title (-title belongs to X11)
//   --select-file N     select the Nth file (from 0) of the first window
//   --select-entry N    select the Nth entry (from 0) of the selected file
//   --screenshot FILE   save a picture of the first window as FILE (PNG) and quit
#include "DocumentWindow.h"
#include "EntryEditor.h"
#include "Handlers.h"
#include "MyDocument.h"
#include "VXController.h"
#include "VXControllerModel.h"
#include "VocabrixVersion.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QFileInfo>
#include <QIcon>
#include <QTimer>

namespace {

QCommandLineOption hidden(const QString &name, const QString &description, const QString &value)
{
    QCommandLineOption option(name, description, value);
    option.setFlags(QCommandLineOption::HiddenFromHelp);
    return option;
}

void addPaths(DocumentWindow *window, const QStringList &paths, const QStringList &previous)
{
    QList<QPair<QString, OptString>> list;
    for (qsizetype i = 0; i < paths.size(); ++i) {
        const QString prev = previous.value(i);
        list.append({paths.at(i), prev.isEmpty() ? OptString() : OptString(prev)});
    }
    window->document()->addFiles(list);
}

bool isResourcePath(const QString &path)
{
    return acceptableFileTypes().contains(QFileInfo(path).suffix());
}

}  // namespace

int main(int argc, char *argv[])
{
    QApplication app(argc, argv);
    QApplication::setOrganizationName(QStringLiteral("Vocabrix"));
    QApplication::setApplicationName(QStringLiteral("Vocabrix"));
    QApplication::setApplicationVersion(QStringLiteral(VOCABRIX_VERSION));
    // Ties the windows to the installed desktop entry and its icon (task bars, Wayland).
    QApplication::setDesktopFileName(QStringLiteral("org.vocabrix.Vocabrix"));
    QApplication::setWindowIcon(QIcon::fromTheme(QStringLiteral("org.vocabrix.Vocabrix")));
    registerResourceHandlers();

    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral("Translates the interface resources of Mac applications."));
    parser.addHelpOption();
    parser.addVersionOption();
    parser.addPositionalArgument(QStringLiteral("paths"),
                                 QStringLiteral("Vocabrix documents to open, or resource files and bundles to add to a new document."),
                                 QStringLiteral("[document | resource...]"));
    const QCommandLineOption add = hidden(QStringLiteral("add"), QStringLiteral("Add a file or bundle."), QStringLiteral("path"));
    const QCommandLineOption previous = hidden(QStringLiteral("previous"), QStringLiteral("Previous release."), QStringLiteral("path"));
    const QCommandLineOption title = hidden(QStringLiteral("document-title"), QStringLiteral("Document title."), QStringLiteral("text"));
    const QCommandLineOption selectFile = hidden(QStringLiteral("select-file"), QStringLiteral("File row."), QStringLiteral("row"));
    const QCommandLineOption selectEntry = hidden(QStringLiteral("select-entry"), QStringLiteral("Entry row."), QStringLiteral("row"));
    const QCommandLineOption screenshot = hidden(QStringLiteral("screenshot"), QStringLiteral("Picture file."), QStringLiteral("file"));
    parser.addOptions({add, previous, title, selectFile, selectEntry, screenshot});
    parser.process(app);

    VXController controller;
    QObject::connect(&controller, &VXController::quitRequested, &app, [&controller] {
        if (controller.closeAll()) QApplication::quit();
    });

    DocumentWindow *first = nullptr;
    QStringList resources;
    for (const QString &path : parser.positionalArguments()) {
        if (isResourcePath(path)) resources.append(path);
        else if (DocumentWindow *w = controller.openDocument(path); w && !first) first = w;
    }
    if (!resources.isEmpty()) {
        DocumentWindow *window = controller.newDocument();
        if (!first) first = window;
        // Once the window is up, so the question about previous versions has a parent.
        QTimer::singleShot(0, window, [window, resources] { window->document()->addFiles(resources); });
    }
    if (!first && VXController::applicationShouldOpenUntitledFile()) first = controller.newDocument();
    if (!first) return 1;

    if (parser.isSet(title)) first->document()->setTitle(parser.value(title));
    if (parser.isSet(add)) addPaths(first, parser.values(add), parser.values(previous));
    if (parser.isSet(selectFile)) first->selectFileRows({parser.value(selectFile).toInt()});
    if (parser.isSet(selectEntry)) first->selectEntryRow(parser.value(selectEntry).toInt());

    if (parser.isSet(screenshot)) {
        const QString file = parser.value(screenshot);
        // Give the window time to be mapped, laid out and painted once.
        QTimer::singleShot(1500, &app, [first, file] {
            const bool saved = first->grab().save(file, "PNG");
            QApplication::exit(saved ? 0 : 2);
        });
        const int status = QApplication::exec();
        // A screenshot run leaves no question behind about unsaved changes.
        for (DocumentWindow *w : controller.windows()) w->document()->updateChangeCount(MyDocument::ChangeCleared);
        return status;
    }
    return QApplication::exec();
}
