// MyDocument: export of localized files into a folder or a bundle's language folder, and the
// merge of their pairs into the dictionary of the language pair.
#include "MyDocument.h"

#include "BundleLayout.h"
#include "Dialogs.h"
#include "LocalizedText.h"
#include "VXControllerModel.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <sys/stat.h>
#include <utility>

namespace {

const QString overwriteKey = QStringLiteral(
    "There is a -name- folder in the package you've chosen and Vocabrix may be going to overwrite resources.");

// The key has no placeholder; its translations carry %1 where the key says -name-.
QString overwriteMessage(const QString &folderName)
{
    const QString text = localizedString(overwriteKey);
    if (text.contains(QLatin1String("%1"))) return text.arg(folderName);
    return QString(text).replace(QLatin1String("-name-"), folderName);
}

// The file (or nib folder) standing at a path, 0 for none. Every writer puts a new file in the
// old one's place and never rewrites it, so a new identity tells a file written now from an
// older one that a failed write left standing.
ino_t fileIdentity(const QString &path)
{
    struct stat info {};
    return ::stat(QFile::encodeName(path).constData(), &info) == 0 ? info.st_ino : 0;
}

QString quoted(const QString &s)
{
    return QStringLiteral("\u201C%1\u201D").arg(s);
}

// Where a file's localized counterpart lands: under the base file's own name, except that an
// interface file of Base.lproj is localized by its string table, "<stem>.strings", unless the
// handler wrote a localized interface file after all (the previous release held one).
QString localizedOutputPath(const LocFile &file, const QString &folder)
{
    const QDir dir(folder);
    const QString own = dir.filePath(file.fileName());
    if (!BundleLayout::isInBaseFolder(file.path()) || !BundleLayout::isInterfaceFile(file.fileName())) return own;
    if (QFileInfo::exists(own)) return own;
    return dir.filePath(QFileInfo(file.path()).completeBaseName() + QStringLiteral(".strings"));
}

}  // namespace

ExportResult MyDocument::makeLocalizedFilesAction(const QList<LocFilePtr> &selected)
{
    // The file table's selection, in table order: nothing selected exports nothing.
    return makeLocalizedFiles(selected);
}

ExportResult MyDocument::makeLocalizedFiles(const QList<LocFilePtr> &files)
{
    ExportResult nothing;
    nothing.cancelled = true;
    if (files.isEmpty()) return nothing;
    // From a file in a base-language folder, two levels up is the folder of the language folders.
    QDir start = QFileInfo(files.first()->path()).dir();
    start.cdUp();
    QString bundle;
    const OptString folder = selectLocalizedFolder(start.path(), &bundle);
    if (!folder || folder->isEmpty()) return nothing;
    if (bundle.isEmpty()) return writeLocalizedFiles(sameFolder(files, *folder), *folder);
    // The user agreed to write into the bundle: its frameworks' folders are written too.
    return writeLocalizedFiles(jobsIntoBundle(files, bundle, *folder, true, nullptr), *folder);
}

QList<MyDocument::ExportJob> MyDocument::sameFolder(const QList<LocFilePtr> &files, const QString &folder)
{
    QList<ExportJob> jobs;
    for (const LocFilePtr &file : files) jobs.append({file, folder});
    return jobs;
}

// Into a bundle, a file of one of the application's frameworks goes to that framework's own
// language folder in the destination, found or made as the application's is; a framework the
// destination does not carry gets no folder, and its files are reported as not written.
QList<MyDocument::ExportJob> MyDocument::jobsIntoBundle(const QList<LocFilePtr> &files, const QString &bundle,
                                                        const QString &appFolder, bool overwrite, QString *refusal)
{
    QHash<QString, QString> folders{{QString(), appFolder}};
    QList<ExportJob> jobs;
    for (const LocFilePtr &file : files) {
        const QString part = BundleLayout::frameworkPart(file->path());
        if (!folders.contains(part)) {
            const QString framework = QDir(bundle).filePath(part);
            QString folder;
            if (QFileInfo(framework).isDir()) {
                bool existing = false, cancelled = false;
                QString existingName;
                folder = destinationInBundle(framework, &existing, &existingName, &cancelled);
                if (existing && !overwrite) {
                    if (refusal) *refusal = overwriteMessage(part + u'/' + existingName);
                    return {};
                }
            }
            folders.insert(part, folder);
        }
        jobs.append({file, folders.value(part)});
    }
    return jobs;
}

ExportResult MyDocument::makeLocalizedFilesInto(const QList<LocFilePtr> &files, const QString &destination,
                                                bool overwrite, QString *refusal)
{
    ExportResult nothing;
    nothing.cancelled = true;
    if (files.isEmpty()) {
        if (refusal) *refusal = QStringLiteral("There is no file to export.");
        return nothing;
    }
    QString folder = QDir::cleanPath(destination);
    if (isBundlePath(folder, VXControllerModel::readBundleTypes())) {
        bool existing = false, cancelled = false;
        QString existingName;
        const QString resources = BundleLayout::resourcesFolder(folder);
        const QStringList candidates = BundleLayout::candidateFolders(resources, targetLanguageKey().value_or(QString()),
                                                                      targetLanguageAbbreviation().value_or(QString()));
        const bool chosen = !m_targetFolderChoice.isEmpty() && QFileInfo(resources + u'/' + m_targetFolderChoice).isDir();
        if (candidates.size() > 1 && !chosen) {
            if (refusal)
                *refusal = QStringLiteral("%1 has several folders for the target language (%2); say which one to use.")
                               .arg(quoted(QDir::toNativeSeparators(folder)), candidates.join(QLatin1String(", ")));
            return nothing;
        }
        folder = destinationInBundle(folder, &existing, &existingName, &cancelled);
        if (folder.isEmpty()) {
            if (refusal) *refusal = QStringLiteral("The target language of the document is not in the language table.");
            return nothing;
        }
        if (existing && !overwrite) {
            if (refusal) *refusal = overwriteMessage(existingName);
            return nothing;
        }
        const QList<ExportJob> jobs = jobsIntoBundle(files, QDir::cleanPath(destination), folder, overwrite, refusal);
        if (jobs.isEmpty()) return nothing;
        return writeLocalizedFiles(jobs, folder);
    } else if (!QFileInfo(folder).isDir() && !QDir().mkpath(folder)) {
        if (refusal) *refusal = QStringLiteral("The folder %1 could not be created.").arg(quoted(folder));
        return nothing;
    }
    return writeLocalizedFiles(sameFolder(files, folder), folder);
}

QString MyDocument::destinationInBundle(const QString &bundle, bool *existing, QString *existingName, bool *cancelled)
{
    const QString resources = BundleLayout::resourcesFolder(bundle);
    *existing = false;
    *cancelled = false;
    if (const OptString found = languageFolderIn(resources, true, cancelled)) {
        *existing = true;
        *existingName = *found;
        return resources + u'/' + *found;
    }
    if (*cancelled) return QString();
    const OptString key = targetLanguageKey();
    if (!key) return QString();
    const QString name = BundleLayout::newFolderName(resources, *key, targetLanguageAbbreviation().value_or(QString()));
    // Not checked: a bundle without a resources folder shows as files that could not be written.
    QDir(resources).mkdir(name);
    return resources + u'/' + name;
}

OptString MyDocument::selectLocalizedFolder(const OptString &startPath, QString *chosenBundle)
{
    QString startFolder = QDir::homePath();
    if (startPath) {
        const OptString target = targetFolderName();
        const QString candidate = target ? QDir(*startPath).filePath(*target) : QString();
        startFolder = !candidate.isEmpty() && QFileInfo(candidate).isDir() ? candidate : QString();
    }
    const QStringList bundles = VXControllerModel::readBundleTypes();
    OpenPanelOptions options;
    options.message = localizedString(QStringLiteral("Select folder to save localized files"));
    options.prompt = localizedString(QStringLiteral("Export"));
    options.startFolder = startFolder;
    options.allowsMultipleSelection = false;
    options.canChooseDirectories = true;
    options.canChooseFiles = true;
    options.allowedExtensions = bundles;
    options.bundleExtensions = bundles;
    options.canCreateDirectories = true;

    // "Cancel" in the warning shows the panel again, until a folder is taken or the panel cancelled.
    for (;;) {
        const QStringList chosen = dialogs().runOpenPanel(options);
        if (chosen.isEmpty()) return std::nullopt;
        const QString path = QDir::cleanPath(chosen.first());
        if (!isBundlePath(path, bundles)) return path;
        if (chosenBundle) *chosenBundle = path;
        bool existing = false, cancelled = false;
        QString existingName;
        const QString folder = destinationInBundle(path, &existing, &existingName, &cancelled);
        if (cancelled) continue;
        if (folder.isEmpty()) return std::nullopt;
        if (!existing) return folder;
        Alert alert;
        alert.title = localizedString(QStringLiteral("Vocabrix may overrite resources"));
        alert.message = overwriteMessage(existingName);
        alert.buttons = QStringList{localizedString(QStringLiteral("OK")), localizedString(QStringLiteral("Cancel"))};
        alert.style = AlertStyle::Warning;
        if (dialogs().runAlert(alert) == 0) return folder;
    }
}

ExportResult MyDocument::writeLocalizedFiles(const QList<ExportJob> &jobs, const QString &folder)
{
    ExportResult result;
    result.folder = folder;
    setLoadingFiles(true);
    waitUntilFilesRead();
    m_stopRequested = false;
    int done = 0;
    for (const auto &[file, into] : jobs) {
        if (m_stopRequested) break;
        emit workingOn(file->path());
        if (into.isEmpty()) {
            result.failed.append(file->path());
        } else {
            const QString output = localizedOutputPath(*file, into);
            const ino_t before = fileIdentity(output);
            // A later file's word replaces an earlier one's for the same base word.
            result.pairs.insertAll(file->makeLocalizedFileAt(into));
            const ino_t after = fileIdentity(output);
            (after != 0 && after != before ? result.written : result.failed).append(output);
        }
        emit progress(++done, int(jobs.size()));
    }
    result.stopped = std::exchange(m_stopRequested, false);
    if (result.stopped) result.pairs = StringMap();
    else result.merge = saveDictionary(result.pairs);
    dialogs().revealInFileManager(folder);
    setLoadingFiles(false);
    saveSpellCheck();

    // Beyond the fixed alerts, nothing may go wrong unseen: files not written, a dictionary that
    // could not be read or written.
    QStringList problems;
    if (!result.failed.isEmpty()) {
        QStringList names;
        for (const QString &path : std::as_const(result.failed)) names.append(quoted(QFileInfo(path).fileName()));
        problems.append(QStringLiteral("These files could not be written into %1: %2.")
                            .arg(quoted(QDir::toNativeSeparators(folder)), names.join(QLatin1String(", "))));
    }
    if (!result.merge.message.isEmpty()) problems.append(result.merge.message);
    if (!problems.isEmpty()) {
        Alert alert;
        alert.title = localizedString(QStringLiteral("Export finished with problems"));
        alert.message = problems.join(u'\n');
        alert.buttons = QStringList{localizedString(QStringLiteral("OK"))};
        dialogs().showAlertSheet(alert);
    }
    return result;
}
