#include "IbtoolHandler.h"

#include "Handlers.h"
#include "InterfaceTool.h"
#include "LocFile.h"
#include "StringsTable.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QLoggingCategory>
#include <QSaveFile>

Q_LOGGING_CATEGORY(lcIbtool, "vocabrix.ibtool", QtWarningMsg)

using namespace StringUtility;

namespace ibtoolHandle {

namespace {

const QString kBlockSeparator = QStringLiteral("\";\n\n/*");
const QString kToolTableSuffix = QStringLiteral("__temp.strings");

QString stemOf(const QString &path) { return QFileInfo(path).completeBaseName(); }
QString folderOf(const QString &path) { return QFileInfo(path).absolutePath(); }

// Runs the tool in the folder of `interfacePath`; the reason of a failure goes to `failure`.
bool runTool(const QString &interfacePath, const QStringList &arguments, QString *failure, QStringList *toolWarnings)
{
    const QString program = InterfaceTool::find(InterfaceTool::Kind::Ibtool);
    InterfaceTool::Result result;
    if (!program.isEmpty()) {
        qCDebug(lcIbtool) << "running" << program << arguments << "in" << folderOf(interfacePath);
        result = InterfaceTool::run(program, arguments, folderOf(interfacePath));
    }
    if (result.succeeded()) {
        if (toolWarnings)
            for (const QString &line : QString::fromUtf8(result.standardError).split(u'\n', Qt::SkipEmptyParts))
                toolWarnings->append(line.trimmed());
        return true;
    }
    const QString why = InterfaceTool::describeFailure(InterfaceTool::Kind::Ibtool, program, result);
    qCDebug(lcIbtool) << "failed:" << why;
    if (failure) *failure = why;
    return false;
}

void removeFile(const QString &path)
{
    if (!path.isEmpty()) QFile::remove(path);
}

// Whatever stands at `path`, a file or a whole nib folder.
void removeAnything(const QString &path)
{
    const QFileInfo info(path);
    if (info.isDir() && !info.isSymLink()) QDir(path).removeRecursively();
    else if (info.exists() || info.isSymLink()) QFile::remove(path);
}

}  // namespace

QString ibtoolMakePListFromNib(const QString &path, QString *failure, QStringList *toolWarnings)
{
    const QString fileName = QFileInfo(path).fileName();
    const QString table = stemOf(path) + kToolTableSuffix;
    runTool(path, {QStringLiteral("--generate-stringsfile"), table, fileName}, failure, toolWarnings);
    return QDir(folderOf(path)).filePath(table);
}

void ibtoolExtractNibDataWithDictionary(LocFile &file, const OptString &dictionaryPath, const OptString &previousPath)
{
    QString failure;
    QStringList toolWarnings;
    const QString baseTable = ibtoolMakePListFromNib(file.path(), &failure, &toolWarnings);

    QString previousTable;
    OptString previousText;
    if (previousPath && !previousPath->isEmpty()) {
        QString previousFailure;
        previousTable = ibtoolMakePListFromNib(*previousPath, &previousFailure);
        previousText = stringFromUTF16DataFilePath(previousTable);
        if (!previousText && QFileInfo::exists(*previousPath))
            file.addWarning(QStringLiteral("The previous localized version \"%1\" could not be read, so no words were "
                                           "taken from it. %2")
                                .arg(*previousPath, previousFailure)
                                .trimmed());
    }

    const OptString baseText = stringFromUTF16DataFilePath(baseTable);
    if (baseText) {
        ibtoolParseEntries(file, *baseText, previousText, dictionaryPath);
        for (const QString &w : std::as_const(toolWarnings)) file.addWarning(w);
    } else {
        if (failure.isEmpty()) failure = QStringLiteral("The interface tool wrote no string table.");
        file.setInitError(QStringLiteral("The interface file \"%1\" could not be read. %2").arg(file.fileName(), failure));
    }
    removeFile(baseTable);
    removeFile(previousTable);
}

void ibtoolParseEntries(LocFile &file, const QString &entries, const OptString &previousEntries,
                        const OptString &dictionaryPath)
{
    std::optional<StringMap> dictionary;
    if (dictionaryPath && !dictionaryPath->isEmpty()) dictionary = dictionaryWithContentsOfFile(*dictionaryPath);
    const StringMap *map = dictionary ? &*dictionary : nullptr;

    QList<LocEntryPtr> all = file.allEntries();
    const QStringList pieces = entries.split(kBlockSeparator);
    for (qsizetype i = 0; i < pieces.size(); ++i) {
        QString piece = pieces[i];
        if (piece.isEmpty()) continue;
        if (piece.startsWith(u'\n')) piece.remove(0, 1);
        if (i == pieces.size() - 1) {
            while (piece.endsWith(u'\n')) piece.chop(1);
            if (piece.endsWith(QLatin1String("\";"))) piece.chop(2);
        }
        if (piece.startsWith(QLatin1String("/*"))) piece.remove(0, 2);
        if (piece.isEmpty()) continue;

        const LocEntryPtr entry = LocEntry::initWithEntry(QStringLiteral("/*") + piece + QStringLiteral("\";"));
        const OptString previous = stringForObjectID(entry->objectID(), entry->wordType(), previousEntries);
        if (previous) {
            entry->setLocalizedWord(previous);
        } else if (map) {
            const OptString base = entry->baseWord();
            if (const QString *word = base ? map->find(*base) : nullptr) entry->setLocalizedWord(*word);
        }
        entry->checkNeedToLocalizeWithDictionary(map);
        all.append(entry);
    }
    file.setAllEntries(all);
    file.searchEntryWithKey(std::nullopt);
}

OptString stringForObjectID(const OptString &objectID, const OptString &wordType, const OptString &previousEntries)
{
    if (!previousEntries || !objectID || !wordType) return std::nullopt;
    const QString key = QStringLiteral("\n\"") + *objectID + u'.' + *wordType + QStringLiteral("\" = \"");
    return substringFrom(*previousEntries, key, QStringLiteral("\";\n"));
}

OptString ibtoolMakeStringsFile(LocFile &file, StringMap &pairs)
{
    for (const LocEntryPtr &entry : file.allEntries()) {
        const OptString base = entry->baseWord();
        const OptString localized = entry->localizedWord();
        if (wordLength(base) > 0 && wordLength(localized) > 0) pairs.insert(*base, *localized);
    }
    return InterfaceTool::writeMergeTable(file);
}

StringMap ibtoolMakeLocalizedNibFileAt(LocFile &file, const QString &folder)
{
    const QFileInfo base(file.path());
    const QString ext = base.suffix();
    if (ext != QLatin1String("nib") && ext != QLatin1String("xib")) return StringMap();

    StringMap pairs;
    const OptString table = ibtoolMakeStringsFile(file, pairs);
    // Absolute, because the tool runs in the interface file's folder, not in ours.
    const QString output = QDir(folder).absoluteFilePath(base.fileName());
    removeAnything(output);
    if (table) {
        QString failure;
        bool ok = runTool(file.path(),
                                {base.fileName(), QStringLiteral("--strings-file"), QFileInfo(*table).fileName(),
                                 QStringLiteral("--write"), output},
                                &failure, nullptr);
        if (ok && !QFileInfo::exists(output)) {
            ok = false;
            failure = QStringLiteral("The interface tool wrote no file.");
        }
        if (!ok) {
            // A tool that failed or was stopped may have left half a file.
            removeAnything(output);
            file.addWarning(QStringLiteral("The localized interface file \"%1\" could not be written. %2").arg(output, failure));
        }
        removeFile(*table);
    }
    return pairs;
}

}  // namespace ibtoolHandle

namespace {

class IbtoolHandler : public ResourceHandler {
public:
    void extract(LocFile &file, const OptString &dictionaryPath, const OptString &previousPath) override
    {
        ibtoolHandle::ibtoolExtractNibDataWithDictionary(file, dictionaryPath, previousPath);
    }
    StringMap makeLocalized(LocFile &file, const QString &folder) override
    {
        return ibtoolHandle::ibtoolMakeLocalizedNibFileAt(file, folder);
    }
};

}  // namespace

std::shared_ptr<ResourceHandler> makeIbtoolHandler()
{
    return std::make_shared<IbtoolHandler>();
}
