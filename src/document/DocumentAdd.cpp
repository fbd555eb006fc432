// MyDocument: adding files and bundles, the previous-version panel, and the interface file made
// from two string tables.
#include "MyDocument.h"

#include "Dialogs.h"
#include "LocalizedText.h"
#include "VXControllerModel.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStringDecoder>

namespace {

const QStringList resourceExtensions{QStringLiteral("nib"), QStringLiteral("xib"), QStringLiteral("strings"),
                                     QStringLiteral("plist")};

QString languageFolder(const QString &bundle, const QString &name)
{
    return QStringLiteral("%1/Contents/Resources/%2.lproj").arg(bundle, name);
}

OptString orNone(const QString &path)
{
    return path.isEmpty() ? OptString() : OptString(path);
}

// Nib files may be folders (nib bundles), and a panel must let them be chosen like files.
QStringList packageExtensions()
{
    QStringList list = VXControllerModel::instance().bundleFileTypes();
    list.append(QStringLiteral("nib"));
    return list;
}

// The whole file as UTF-8; none when it cannot be read or is not valid UTF-8.
OptString readUtf8File(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) return std::nullopt;
    QStringDecoder decoder(QStringConverter::Utf8, QStringConverter::Flag::Stateless);
    QString text = decoder.decode(file.readAll());
    if (decoder.hasError()) return std::nullopt;
    return text;
}

}  // namespace

void MyDocument::addNewFile()
{
    OpenPanelOptions options;
    options.allowsMultipleSelection = true;
    options.canChooseFiles = true;
    options.canChooseDirectories = false;
    options.allowedExtensions = acceptableFileTypes();
    options.bundleExtensions = packageExtensions();
    options.asSheet = true;
    const QStringList chosen = dialogs().runOpenPanel(options);
    if (!chosen.isEmpty()) addFiles(chosen);
}

QList<LocFilePtr> MyDocument::addFiles(const QStringList &paths)
{
    QList<QPair<QString, std::optional<OptString>>> asked;
    for (const QString &path : paths) asked.append({path, std::nullopt});
    return addPaths(asked);
}

QList<LocFilePtr> MyDocument::addFiles(const QList<QPair<QString, OptString>> &pathsWithPrevious)
{
    QList<QPair<QString, std::optional<OptString>>> given;
    for (const auto &[path, previous] : pathsWithPrevious) given.append({path, previous});
    return addPaths(given);
}

QList<LocFilePtr> MyDocument::addPaths(const QList<QPair<QString, std::optional<OptString>>> &paths)
{
    setLoadingFiles(true);
    m_stopRequested = false;
    const QList<LocFilePtr> before = m_files;
    QList<LocFilePtr> added;
    const QStringList bundles = VXControllerModel::instance().bundleFileTypes();
    int done = 0;
    for (const auto &[raw, given] : paths) {
        if (m_stopRequested) break;
        const QString path = QDir::cleanPath(raw);
        // Asked for every path, bundle or not, before anything of it is read.
        const OptString previous = given ? *given : selectPreviousVersionFile(path);
        if (isBundlePath(path, bundles)) {
            const QList<QPair<QString, QString>> list = bundleFilesWithPrevious(path, previous);
            for (qsizetype i = 0; i < list.size(); ++i) {
                emit workingOn(list.at(i).first);
                if (LocFilePtr f = addFile(list.at(i).first, orNone(list.at(i).second))) added.append(f);
                emit progress(int(i + 1), int(list.size()));
                if (m_stopRequested) break;
            }
        } else {
            emit workingOn(path);
            if (LocFilePtr f = addFile(path, previous)) added.append(f);
        }
        ++done;
        if (!isBundlePath(path, bundles)) emit progress(done, int(paths.size()));
    }
    if (m_stopRequested) {
        m_stopRequested = false;
        m_files = before;
        setFiles(m_files);
        setLoadingFiles(false);
        return {};
    }
    update();
    setFiles(m_files);
    setLoadingFiles(false);
    return added;
}

QList<QPair<QString, QString>> MyDocument::bundleFilesWithPrevious(const QString &bundlePath,
                                                                  const OptString &previous) const
{
    QList<QPair<QString, QString>> list;
    const OptString baseKey = baseLanguageKey();
    const OptString baseAbbreviation = baseLanguageAbbreviation();
    QString baseFolder;
    if (baseKey && QFileInfo::exists(languageFolder(bundlePath, *baseKey))) baseFolder = languageFolder(bundlePath, *baseKey);
    else if (baseAbbreviation) baseFolder = languageFolder(bundlePath, *baseAbbreviation);
    if (baseFolder.isEmpty()) return list;

    // Without a previous release every file gets no previous version.
    QString previousFolder;
    if (previous && !previous->isEmpty()) {
        const OptString key = targetLanguageKey();
        const OptString abbreviation = targetLanguageAbbreviation();
        if (key && QFileInfo::exists(languageFolder(*previous, *key))) previousFolder = languageFolder(*previous, *key);
        else if (abbreviation) previousFolder = languageFolder(*previous, *abbreviation);
        else if (key) previousFolder = languageFolder(*previous, *key);
    }

    // Sorted by name so that a bundle adds the same way on every file system.
    const QStringList names = QDir(baseFolder).entryList(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden,
                                                         QDir::Name | QDir::IgnoreCase);
    for (const QString &name : names) {
        if (name.contains(QLatin1String("~.nib"))) continue;  // Interface Builder's backup copies
        if (!resourceExtensions.contains(QFileInfo(name).suffix())) continue;
        list.append({baseFolder + u'/' + name, previousFolder.isEmpty() ? QString() : previousFolder + u'/' + name});
    }
    return list;
}

LocFilePtr MyDocument::addFile(const QString &path, const OptString &previousPath)
{
    const QString dictionary = dictionaryPath();
    LocFilePtr file = LocFile::initWithPath(path, orNone(dictionary), previousPath);
    if (!file) return nullptr;
    if (!file->initError().isEmpty()) {
        Alert alert;
        alert.title = localizedString(QStringLiteral("Error has occured while reading nib file"));
        alert.message = localizedString(QStringLiteral("Reason:")) + file->initError();
        alert.buttons = QStringList{localizedString(QStringLiteral("OK"))};
        dialogs().showAlertSheet(alert);
    }
    m_files.append(file);
    return file;
}

OptString MyDocument::selectPreviousVersionFile(const QString &path)
{
    const QFileInfo info(path);
    QDir grandparent = info.dir();
    grandparent.cdUp();
    OpenPanelOptions options;
    const OptString target = targetFolderName();
    options.startFolder = target && grandparent.exists(*target) ? grandparent.filePath(*target) : grandparent.path();
    options.message = info.fileName() + localizedString(QStringLiteral("Select previous version localized file if exist"));
    options.prompt = localizedString(QStringLiteral("Choose"));
    options.presetName = info.fileName();
    options.allowedExtensions = QStringList{info.suffix()};
    options.bundleExtensions = packageExtensions();
    options.allowsMultipleSelection = false;
    options.canChooseFiles = true;
    options.canChooseDirectories = false;
    const QStringList chosen = dialogs().runOpenPanel(options);
    return chosen.isEmpty() ? OptString() : OptString(chosen.first());
}

OptString MyDocument::selectPathAtPath(const OptString &startFolder, const QStringList &extensions, const QString &message)
{
    OpenPanelOptions options;
    options.message = message;
    options.startFolder = startFolder.value_or(QString());
    options.allowedExtensions = extensions;
    options.bundleExtensions = packageExtensions();
    options.allowsMultipleSelection = false;
    options.canChooseFiles = true;
    options.canChooseDirectories = false;
    const QStringList chosen = dialogs().runOpenPanel(options);
    return chosen.isEmpty() ? OptString() : OptString(chosen.first());
}

LocFilePtr MyDocument::readNibAndStringsFile()
{
    const OptString nib = selectPathAtPath(std::nullopt, {QStringLiteral("nib"), QStringLiteral("xib")},
                                           localizedString(QStringLiteral("select nib file")));
    if (!nib) return nullptr;
    const QString folder = QFileInfo(*nib).absolutePath();
    const QStringList strings{QStringLiteral("strings")};
    const OptString dictionaryFile =
        selectPathAtPath(folder, strings, localizedString(QStringLiteral("select dictitionary stirngs file")));
    if (!dictionaryFile) return nullptr;
    const OptString translations = readUtf8File(*dictionaryFile);
    if (!translations || translations->isEmpty()) return nullptr;
    const OptString originalFile =
        selectPathAtPath(folder, strings, localizedString(QStringLiteral("select original stirngs file")));
    if (!originalFile) return nullptr;
    const OptString original = readUtf8File(*originalFile);
    if (!original || original->isEmpty()) return nullptr;
    LocFilePtr file = LocFile::initWithPath(*nib, LocFile::InterfaceTables{*translations, *original});
    if (!file) return nullptr;
    m_files.append(file);
    update();
    setFiles(m_files);
    setLoadingFiles(false);
    return file;
}
