// MyDocument: adding files and bundles, the previous-version panel, and the interface file made
// from two string tables.
#include "MyDocument.h"

#include "BundleLayout.h"
#include "Dialogs.h"
#include "LocalizedText.h"
#include "NotificationCenter.h"
#include "PreparingHandler.h"
#include "StringsTable.h"
#include "VXControllerModel.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QHash>
#include <QSet>
#include <QStringDecoder>

namespace {

QString languageFolder(const QString &bundle, const QString &name)
{
    return QStringLiteral("%1/Contents/Resources/%2.lproj").arg(bundle, name);
}

// Every kind of resource file a handler serves.
const QStringList &acceptedResourceExtensions()
{
    static const QStringList list{QStringLiteral("nib"),   QStringLiteral("xib"),        QStringLiteral("strings"),
                                  QStringLiteral("plist"), QStringLiteral("storyboard"), QStringLiteral("stringsdict")};
    return list;
}

// A file in a folder; empty when there is no folder.
QString inFolder(const QString &folder, const QString &name)
{
    return folder.isEmpty() ? QString() : folder + u'/' + name;
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

void MyDocument::prepareReading(const QStringList &paths)
{
    QHash<HandlerKind, QStringList> byKind;
    for (const QString &p : paths)
        if (const auto kind = p.isEmpty() ? std::nullopt : HandlerRegistry::kindForPath(p)) byKind[*kind].append(p);
    for (auto it = byKind.cbegin(); it != byKind.cend(); ++it)
        if (auto *handler = dynamic_cast<PreparingHandler *>(HandlerRegistry::handler(it.key()))) handler->prepare(it.value());
}

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
    // The dictionary is consulted for every file added: read it once for the whole addition.
    const StringsTable::SnapshotScope oneReading;
    setLoadingFiles(true);
    m_stopRequested = false;
    const QList<LocFilePtr> before = m_files;
    QList<LocFilePtr> added;
    const QStringList bundles = VXControllerModel::instance().bundleFileTypes();
    const PreviousVersions previousVersions = askHowToFindPreviousVersions(paths, bundles);
    QStringList notAdded;
    QSet<QString> present;
    for (const LocFilePtr &f : std::as_const(m_files)) present.insert(f->path());
    int done = 0;
    for (const auto &[raw, given] : paths) {
        if (m_stopRequested) break;
        const QString path = QDir::cleanPath(raw);
        const bool bundle = isBundlePath(path, bundles);
        if (!bundle && present.contains(path)) {
            notAdded.append(localizedString(QStringLiteral("%1: it is in the document already.")).arg(path));
            continue;
        }
        if (!bundle && !HandlerRegistry::kindForPath(path)) {
            notAdded.append(localizedString(QStringLiteral("%1: Vocabrix does not translate files of this kind.")).arg(path));
            continue;
        }
        // Asked for every path, bundle or not, before anything of it is read.
        OptString previous;
        if (given) previous = *given;
        else if (bundle || previousVersions.how == PreviousVersions::EachFile) previous = selectPreviousVersionFile(path);
        else if (previousVersions.how == PreviousVersions::OneFolder)
            previous = orNone(firstExisting({inFolder(previousVersions.folder, QFileInfo(path).fileName())}));
        if (bundle) {
            const QList<BundleFile> list = bundleFiles(path, previous);
            QStringList toRead;
            for (const BundleFile &item : list) toRead << item.path << item.previousBase;
            prepareReading(toRead);
            for (qsizetype i = 0; i < list.size(); ++i) {
                const BundleFile &item = list.at(i);
                if (present.contains(item.path)) continue;
                emit workingOn(item.path);
                if (LocFilePtr f = addFile(item.path, orNone(item.previous))) {
                    if (!item.previousBase.isEmpty()) markChangedBaseWords(*f, item.previousBase);
                    added.append(f);
                    present.insert(item.path);
                }
                emit progress(int(i + 1), int(list.size()));
                if (m_stopRequested) break;
            }
        } else {
            emit workingOn(path);
            if (LocFilePtr f = addFile(path, previous)) {
                added.append(f);
                present.insert(path);
            }
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
    if (!notAdded.isEmpty()) {
        Alert alert;
        alert.title = localizedString(QStringLiteral("Some files were not added"));
        alert.message = notAdded.join(u'\n');
        alert.buttons = QStringList{localizedString(QStringLiteral("OK"))};
        alert.style = AlertStyle::Informational;
        dialogs().showAlertSheet(alert);
    }
    return added;
}

// Thirty loose files are not thirty panels: when several files are added without their previous
// versions, the user says once whether to choose each, take them by name from one folder, or
// go without. Bundles are always asked for, one old bundle each.
MyDocument::PreviousVersions MyDocument::askHowToFindPreviousVersions(
    const QList<QPair<QString, std::optional<OptString>>> &paths, const QStringList &bundles)
{
    PreviousVersions answer;
    int loose = 0;
    for (const auto &[path, given] : paths)
        if (!given && !isBundlePath(QDir::cleanPath(path), bundles)) ++loose;
    if (loose < 2) return answer;
    Alert alert;
    alert.title = localizedString(QStringLiteral("Previous versions"));
    alert.message = localizedString(QStringLiteral("%1 files are being added. Their previous localized versions can be "
                                                   "chosen one by one, taken by name from one folder, or left out."))
                        .arg(loose);
    alert.buttons = QStringList{localizedString(QStringLiteral("Choose for Each File")),
                                localizedString(QStringLiteral("Use One Folder")), localizedString(QStringLiteral("Skip All"))};
    alert.style = AlertStyle::Informational;
    const int button = dialogs().runAlert(alert);
    if (button == 2) answer.how = PreviousVersions::None;
    if (button != 1) return answer;
    OpenPanelOptions options;
    options.message = localizedString(QStringLiteral("Select the folder of the previous localized versions"));
    options.prompt = localizedString(QStringLiteral("Choose"));
    options.allowsMultipleSelection = false;
    options.canChooseFiles = false;
    options.canChooseDirectories = true;
    const QStringList chosen = dialogs().runOpenPanel(options);
    answer.how = chosen.isEmpty() ? PreviousVersions::None : PreviousVersions::OneFolder;
    answer.folder = chosen.value(0);
    return answer;
}

QList<QPair<QString, QString>> MyDocument::bundleFilesWithPrevious(const QString &bundlePath, const OptString &previous)
{
    QList<QPair<QString, QString>> list;
    for (const BundleFile &item : bundleFiles(bundlePath, previous)) list.append({item.path, item.previous});
    return list;
}

OptString MyDocument::languageFolderIn(const QString &resources, bool target, bool *cancelled)
{
    if (cancelled) *cancelled = false;
    const QString key = (target ? targetLanguageKey() : baseLanguageKey()).value_or(QString());
    const QString abbreviation = (target ? targetLanguageAbbreviation() : baseLanguageAbbreviation()).value_or(QString());
    if (target && !m_targetFolderChoice.isEmpty() && QFileInfo(resources + u'/' + m_targetFolderChoice).isDir())
        return m_targetFolderChoice;
    const QStringList candidates = BundleLayout::candidateFolders(resources, key, abbreviation);
    if (candidates.isEmpty()) return std::nullopt;
    if (candidates.size() == 1) return candidates.first();
    // Several regional folders of one language (pt_BR and pt_PT for "pt"): only the user knows.
    Alert alert;
    alert.title = localizedString(QStringLiteral("Which language folder?"));
    alert.message = localizedString(QStringLiteral("%1 has several folders for this language. Choose the one to use."))
                        .arg(QDir::toNativeSeparators(resources));
    alert.buttons = candidates;
    alert.buttons.append(localizedString(QStringLiteral("Cancel")));
    alert.style = AlertStyle::Informational;
    const int answer = dialogs().runAlert(alert);
    if (answer < 0 || answer >= candidates.size()) {
        if (cancelled) *cancelled = true;
        return std::nullopt;
    }
    if (target) m_targetFolderChoice = candidates.at(answer);
    return candidates.at(answer);
}

QList<MyDocument::BundleFile> MyDocument::bundleFiles(const QString &bundlePath, const OptString &previous)
{
    QList<BundleFile> list = filesOfOneBundle(bundlePath, previous);
    // The localized frameworks an application carries (Sparkle and the like) ship in its
    // languages too: their files come after the application's, each paired with the same
    // framework of the previous release.
    for (const QString &framework : BundleLayout::frameworks(bundlePath)) {
        OptString previousFramework;
        if (previous && !previous->isEmpty()) {
            const QString candidate = QDir(*previous).filePath(BundleLayout::frameworkPart(framework + u'/'));
            if (QFileInfo(candidate).isDir()) previousFramework = candidate;
        }
        list += filesOfOneBundle(framework, previousFramework);
    }
    return list;
}

QList<MyDocument::BundleFile> MyDocument::filesOfOneBundle(const QString &bundlePath, const OptString &previous)
{
    const QString resources = BundleLayout::resourcesFolder(bundlePath);
    const bool modern = QFileInfo(resources + u'/' + BundleLayout::kBaseFolder).isDir()
                        && baseLanguageKey() != OptString(QStringLiteral("Base"));
    QString baseFolder;
    if (const OptString found = languageFolderIn(resources, false)) baseFolder = resources + u'/' + *found;
    else if (!modern) {
        const OptString abbreviation = baseLanguageAbbreviation();
        if (!abbreviation) return {};
        baseFolder = languageFolder(bundlePath, *abbreviation);  // not checked: an empty listing
    }

    // Without a previous release every file gets no previous version.
    QString previousResources, previousFolder, previousBaseFolder;
    if (previous && !previous->isEmpty()) {
        previousResources = BundleLayout::resourcesFolder(*previous);
        if (const OptString found = languageFolderIn(previousResources, true)) {
            previousFolder = previousResources + u'/' + *found;
        } else {
            const OptString name = targetFolderName();
            if (name) previousFolder = previousResources + u'/' + *name;
        }
        if (const OptString found = languageFolderIn(previousResources, false))
            previousBaseFolder = previousResources + u'/' + *found;
    }
    const auto previousOf = [&](const QString &name) { return inFolder(previousFolder, name); };

    QList<BundleFile> list;
    if (!modern) {
        for (const QString &name : resourceNames(baseFolder)) list.append({baseFolder + u'/' + name, previousOf(name), {}});
        return list;
    }

    // Base internationalization: the interface files (and any table) of Base.lproj, then the base
    // language's own folder. A Base.lproj interface file's previous version is the previous
    // release's table of the same stem; a localized interface file there is taken as before.
    const QString base = resources + u'/' + BundleLayout::kBaseFolder;
    const QString previousBase = inFolder(previousResources, BundleLayout::kBaseFolder);
    const QStringList ownNames = baseFolder.isEmpty() ? QStringList() : resourceNames(baseFolder);
    QSet<QString> interfaceStems;
    for (const QString &name : resourceNames(base)) {
        const QString stem = QFileInfo(name).completeBaseName();
        const QString table = stem + QStringLiteral(".strings");
        if (BundleLayout::isInterfaceFile(name)) {
            interfaceStems.insert(stem);
            QString prev = previousOf(table);
            if (!prev.isEmpty() && !QFileInfo::exists(prev)) {
                for (const QString &ext : {QFileInfo(name).suffix(), QStringLiteral("xib"), QStringLiteral("nib")})
                    if (QFileInfo::exists(previousOf(stem + u'.' + ext))) {
                        prev = previousOf(stem + u'.' + ext);
                        break;
                    }
            }
            // The previous release's own base: its Base.lproj file, its English table, or (before it
            // moved to Base.lproj) its English interface file.
            const QString previousBaseFile = firstExisting(
                {inFolder(previousBase, name), inFolder(previousBaseFolder, table), inFolder(previousBaseFolder, name)});
            list.append({base + u'/' + name, prev, previousBaseFile});
        } else if (!ownNames.contains(name)) {
            // The base language's own copy of a table wins over the one in Base.lproj.
            list.append({base + u'/' + name, previousOf(name),
                         firstExisting({inFolder(previousBase, name), inFolder(previousBaseFolder, name)})});
        }
    }
    for (const QString &name : ownNames) {
        // The base language's table of a Base.lproj interface file is that file's English text,
        // not a resource of its own.
        if (QFileInfo(name).suffix() == QLatin1String("strings") && interfaceStems.contains(QFileInfo(name).completeBaseName()))
            continue;
        list.append({baseFolder + u'/' + name, previousOf(name),
                     firstExisting({inFolder(previousBaseFolder, name), inFolder(previousBase, name)})});
    }
    return list;
}

QStringList MyDocument::resourceNames(const QString &folder)
{
    QStringList taken;
    if (folder.isEmpty()) return taken;
    // Sorted by name so that a bundle adds the same way on every file system.
    const QStringList names = QDir(folder).entryList(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden,
                                                     QDir::Name | QDir::IgnoreCase);
    for (const QString &name : names) {
        if (BundleLayout::isHiddenName(name)) continue;        // .DS_Store, AppleDouble "._X" copies
        if (name.contains(QLatin1String("~.nib"))) continue;  // Interface Builder's backup copies
        if (!acceptedResourceExtensions().contains(QFileInfo(name).suffix())) continue;
        taken.append(name);
    }
    return taken;
}

QString MyDocument::firstExisting(const QStringList &paths)
{
    for (const QString &path : paths)
        if (!path.isEmpty() && QFileInfo::exists(path)) return path;
    return QString();
}

void MyDocument::markChangedBaseWords(LocFile &file, const QString &previousBasePath)
{
    // The older tool reads later; its entries are not there yet to compare.
    if (HandlerRegistry::kindForPath(previousBasePath) == HandlerKind::Nibtool) return;
    const LocFilePtr old = LocFile::initWithPath(previousBasePath, std::nullopt, std::nullopt);
    if (!old) return;
    QHash<QString, QString> before;
    for (const LocEntryPtr &e : old->allEntries())
        if (const OptString key = e->keyWord(); key && !key->isEmpty()) before.insert(*key, e->baseWord().value_or(QString()));
    for (const LocEntryPtr &e : file.allEntries()) {
        const OptString key = e->keyWord();
        if (!key) continue;
        const auto it = before.constFind(*key);
        if (it == before.cend() || *it == e->baseWord().value_or(QString())) continue;
        // The old translation stays as a starting point, but someone must look at it again.
        e->setPreviousBaseWord(*it);
        e->setCheck(false);
    }
    file.searchEntryWithKey(std::nullopt);
}

LocFilePtr MyDocument::addFile(const QString &path, const OptString &previousPath)
{
    const QString dictionary = dictionaryPath();
    // The older tool's entries arrive later, announced when its listing has ended; a reading that
    // ended before the file was handed back is not waited for.
    const auto kind = HandlerRegistry::kindForPath(path);
    const bool late = kind == HandlerKind::Nibtool && HandlerRegistry::handler(*kind);
    QSet<const LocFile *> endedAtOnce;
    const QMetaObject::Connection watch = connect(&NotificationCenter::instance(), &NotificationCenter::locFileFinishReadingFile,
                                                  this, [&endedAtOnce](LocFile *f) { endedAtOnce.insert(f); });
    LocFilePtr file = LocFile::initWithPath(path, orNone(dictionary), previousPath);
    disconnect(watch);
    if (!file) return nullptr;
    if (late && !endedAtOnce.contains(file.get())) m_reading.insert(file.get());
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
    options.message = QStringLiteral("%1: %2").arg(info.fileName(), localizedString(QStringLiteral("Select previous version localized file if exist")));
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
