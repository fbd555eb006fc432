// DictWindowController: the imports (string tables, localized applications, glossaries, TMX),
// the TMX export and the cleaning of identity pairs.
#include "DictWindowController.h"

#include "Glossary.h"
#include "IbtoolTable.h"
#include "InterfaceFile.h"
#include "LocFile.h"
#include "SystemVersion.h"
#include "Tmx.h"
#include "VXControllerModel.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <QUndoStack>

namespace {

QString quoted(const QString &text)
{
    return QStringLiteral("\u201C%1\u201D").arg(text);
}

const QStringList glossaryExtensions{QStringLiteral("ad"), QStringLiteral("lg"), QStringLiteral("wg")};

bool readWhole(const QString &path, qsizetype limit, QByteArray *data, QString *error)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        if (error) *error = file.errorString();
        return false;
    }
    if (file.size() > limit) {
        if (error) *error = QObject::tr("the file is larger than %1 MB").arg(limit >> 20);
        return false;
    }
    *data = file.readAll();
    return true;
}

// Where a bundle keeps its language folders: Contents/Resources on the Mac, the bundle itself
// on iOS.
QString resourcesFolder(const QString &bundle)
{
    const QString mac = QDir(bundle).filePath(QStringLiteral("Contents/Resources"));
    return QFileInfo(mac).isDir() ? mac : bundle;
}

// A language's folder by its key ("French.lproj"), else by its abbreviation ("fr.lproj").
QString languageFolder(const QString &resources, const QString &key, const QString &abbreviation)
{
    for (const QString &name : {key, abbreviation}) {
        if (name.isEmpty()) continue;
        const QString folder = QDir(resources).filePath(name + QLatin1String(".lproj"));
        if (QFileInfo(folder).isDir()) return folder;
    }
    return QString();
}

}  // namespace

qsizetype DictWindowController::identityPairCount() const
{
    qsizetype n = 0;
    for (const DictEntryPtr &row : m_entries)
        if (row->key() && row->value() && *row->key() == *row->value()) ++n;
    return n;
}

qsizetype DictWindowController::removeIdentityPairs()
{
    DictRows kept;
    kept.reserve(m_entries.size());
    for (const DictEntryPtr &row : std::as_const(m_entries))
        if (!(row->key() && row->value() && *row->key() == *row->value())) kept.append(row);
    const qsizetype removed = m_entries.size() - kept.size();
    if (removed == 0) return 0;
    const DictRows before = m_entries;
    setEntriesArray(kept);
    pushReplace(before, tr("Remove Untranslated Pairs"));
    return removed;
}

DictWindowController::ImportReport DictWindowController::importFiles(const QStringList &paths)
{
    ImportReport report;
    const QStringList bundles = VXControllerModel::instance().bundleFileTypes();
    for (const QString &path : paths) {
        const QString extension = QFileInfo(path).suffix();
        const DictRows before = m_entries;
        qsizetype added = -1;
        QString error;
        if (extension == QLatin1String("strings")) {
            const qsizetype count = m_entries.size();
            added = addDictionaryFromFile(path, &error) ? m_entries.size() - count : -1;
        } else if (bundles.contains(extension)) {
            added = importDictionaryFromApp(path, &error);
        } else if (glossaryExtensions.contains(extension)) {
            added = importDictionaryFromGlossary(path, &error);
        } else if (extension == QLatin1String("tmx")) {
            added = importDictionaryFromTmx(path, &error);
        } else {
            report.ignored.append(path);
            continue;
        }
        if (added < 0) {
            report.problems.append(tr("%1 could not be read (%2); nothing was added from it.")
                                       .arg(quoted(QFileInfo(path).fileName()), error));
            continue;
        }
        report.added += added;
        pushReplace(before, tr("Import %1").arg(QFileInfo(path).fileName()));
    }
    setEdited(true);
    QString message;
    if (!saveDictionary(&message) || !message.isEmpty()) report.problems.append(message);
    return report;
}

qsizetype DictWindowController::importDictionaryFromGlossary(const QString &path, QString *error)
{
    QByteArray data;
    if (!readWhole(path, Glossary::maximumBytes, &data, error)) return -1;
    const bool rtfResources = QFileInfo(path).suffix() != QLatin1String("ad");
    const Glossary::Reading reading =
        Glossary::pairsFromData(data, m_originalLanguageShort, m_localizeLanguageShort, rtfResources);
    if (!reading.error.isEmpty()) {
        if (error) *error = reading.error;
        return -1;
    }
    // No duplicate check: a glossary's units are appended as they come.
    DictRows rows = m_entries;
    rows.reserve(rows.size() + reading.pairs.size());
    for (const Glossary::Pair &pair : reading.pairs) rows.append(std::make_shared<DictEntry>(pair.key, pair.value));
    setEntriesArray(rows);
    return reading.pairs.size();
}

qsizetype DictWindowController::importDictionaryFromTmx(const QString &path, QString *error)
{
    QByteArray data;
    if (!readWhole(path, Tmx::maximumBytes, &data, error)) return -1;
    const Tmx::Reading reading = Tmx::read(data, m_originalLanguageShort, m_localizeLanguageShort);
    if (!reading.error.isEmpty()) {
        if (error) *error = reading.error;
        return -1;
    }
    // A memory may pair one source with several translations: each distinct pair is a row.
    QList<StringMap::Pair> pairs;
    pairs.reserve(reading.pairs.size());
    for (const Tmx::Pair &pair : reading.pairs) pairs.append({pair.key, pair.value});
    DictRows rows = m_entries;
    const qsizetype added = DictRowList::appendDistinct(rows, pairs);
    setEntriesArray(rows);
    return added;
}

bool DictWindowController::exportTmx(const QString &path, QString *error) const
{
    qsizetype skipped = 0;
    const QByteArray data = Tmx::write(m_entries, m_originalLanguageShort, m_localizeLanguageShort, &skipped);
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(data) != data.size() || !file.commit()) {
        if (error) *error = file.errorString();
        return false;
    }
    if (error) error->clear();
    if (skipped > 0 && error)
        *error = tr("%1 pairs holding control characters that XML cannot carry were left out.").arg(skipped);
    return true;
}

qsizetype DictWindowController::importDictionaryFromApp(const QString &bundlePath, QString *error)
{
    const QString resources = resourcesFolder(bundlePath);
    const QString baseFolder = languageFolder(resources, originalLanguage(), m_originalLanguageShort);
    const QString targetFolder = languageFolder(resources, localizeLanguage(), m_localizeLanguageShort);
    const QString modernFolder = QDir(resources).filePath(QStringLiteral("Base.lproj"));
    const bool modern = QFileInfo(modernFolder).isDir();
    if (baseFolder.isEmpty() && !modern) {
        if (error) *error = tr("the bundle has no %1 folder").arg(quoted(originalLanguage() + QLatin1String(".lproj")));
        return -1;
    }
    const qsizetype before = m_entries.size();
    // The target folder's files by name, found or not: a base file without a counterpart is read
    // all the same, and its pairs are what the dictionary alone fills in.
    const QString target = targetFolder.isEmpty()
                               ? QDir(resources).filePath(localizeLanguage() + QLatin1String(".lproj"))
                               : targetFolder;
    if (!baseFolder.isEmpty()) {
        const QStringList names = QDir(baseFolder).entryList(QDir::Files | QDir::Dirs | QDir::NoDotAndDotDot, QDir::Name);
        for (const QString &name : names) {
            const QString extension = QFileInfo(name).suffix();
            const bool interfaceFile = extension == QLatin1String("xib")
                                       || (extension == QLatin1String("nib") && !name.contains(QLatin1String("~.nib")));
            const bool textResource = extension == QLatin1String("strings") || extension == QLatin1String("plist");
            if (!interfaceFile && !textResource) continue;
            LocFilePtr file = LocFile::initWithPath(QDir(baseFolder).filePath(name), OptString(m_path),
                                                    OptString(QDir(target).filePath(name)));
            if (!file) continue;
            if (textResource || usesIbtool()) addDictionary(file->dictionaryWithEntries());
            else m_pendingImports.append(file);  // the older tool reads in the background
        }
    }
    if (modern && !targetFolder.isEmpty()) {
        // Interface files of Base.lproj are translated by a string table of the same name in the
        // target folder, keyed "ObjectID.property".
        const QStringList names = QDir(modernFolder).entryList(QDir::Files | QDir::Dirs | QDir::NoDotAndDotDot, QDir::Name);
        for (const QString &name : names) {
            const QString extension = QFileInfo(name).suffix();
            if (extension != QLatin1String("xib") && extension != QLatin1String("storyboard")
                && extension != QLatin1String("nib"))
                continue;
            if (name.contains(QLatin1String("~.nib"))) continue;
            const QString tablePath = QDir(targetFolder).filePath(QFileInfo(name).completeBaseName() + QLatin1String(".strings"));
            if (!QFileInfo::exists(tablePath)) continue;
            QString ignored;
            const auto table = interface::readStringsTable(tablePath, &ignored);
            const auto interfaceFile = interface::openInterfaceFile(QDir(modernFolder).filePath(name), &ignored);
            if (!table || !interfaceFile) continue;
            StringMap pairs;
            for (const interface::LocalizableString &s : interfaceFile->strings()) {
                const auto translated = table->find(s.key());
                if (translated && !s.value.isEmpty() && *translated != s.value) pairs.insert(s.value, *translated);
            }
            addDictionary(pairs);
        }
    }
    return m_entries.size() - before;
}

void DictWindowController::finishPendingImport(LocFile *file)
{
    for (qsizetype i = 0; i < m_pendingImports.size(); ++i) {
        if (m_pendingImports.at(i).get() != file) continue;
        const LocFilePtr keep = m_pendingImports.takeAt(i);
        addDictionary(keep->dictionaryWithEntries());
        return;
    }
}
