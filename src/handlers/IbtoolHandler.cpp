#include "IbtoolHandler.h"

#include "Handlers.h"
#include "IbtoolBaseTables.h"
#include "InterfaceTool.h"
#include "LocFile.h"
#include "PreparingHandler.h"
#include "StringsTable.h"
#include "WholeTableReader.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QLoggingCategory>
#include <QDateTime>
#include <QHash>
#include <QProcess>
#include <QSaveFile>
#include <QThread>
#include <deque>

Q_LOGGING_CATEGORY(lcIbtool, "vocabrix.ibtool", QtWarningMsg)

using namespace StringUtility;

namespace ibtoolHandle {

namespace {

const QString kBlockSeparator = QStringLiteral("\";\n\n/*");

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

// Tables made ahead by ibtoolPrepareTables, taken once by the reading of their file. An entry
// counts only while the interface file is unchanged since its table was made.
struct PreparedTable {
    QDateTime modified;
    qint64 size = 0;
    QString text;
};
QHash<QString, PreparedTable> &preparedTables()
{
    static QHash<QString, PreparedTable> tables;
    return tables;
}

OptString takePreparedTable(const QString &path)
{
    const auto it = preparedTables().constFind(path);
    if (it == preparedTables().cend()) return std::nullopt;
    const PreparedTable table = *it;
    preparedTables().erase(it);
    const QFileInfo info(path);
    if (info.lastModified() != table.modified || info.size() != table.size) return std::nullopt;
    return table.text;
}

// Waits for a preparing run, stopping it at the timeout; true when it ended well.
bool endedWell(QProcess &run)
{
    const bool ended = run.waitForFinished(InterfaceTool::timeoutSeconds() * 1000);
    if (!ended) {
        run.kill();
        run.waitForFinished(5'000);
    }
    return ended && run.exitStatus() == QProcess::NormalExit && run.exitCode() == 0;
}

// Keeps the table a preparing run left beside `path` (when the run went well) and removes it.
void keepPreparedTable(const QString &path, const QString &table, bool keep)
{
    if (keep)
        if (const OptString text = stringFromUTF16DataFilePath(table)) {
            const QFileInfo info(path);
            preparedTables().insert(path, {info.lastModified(), info.size(), *text});
        }
    removeFile(table);
}

// Our own tool takes many files in one run (--generate-strings-files-beside), so the files go
// to one run per core instead of one run each: a run is mostly the tool's start-up. A file the
// tool skips (a warning, a refusal) gets no table and is read again the usual way, as is every
// file of a run that fails or hangs.
void prepareInBatches(const QString &program, const QStringList &paths)
{
    const QString tag = InterfaceTool::scratchTableName(QString(), QStringLiteral("__prepared"));
    const int count = qBound(1, QThread::idealThreadCount(), 8);
    std::vector<QStringList> batches(static_cast<std::size_t>(count));
    qsizetype next = 0;
    for (const QString &path : paths)
        if (QFileInfo::exists(path)) batches[size_t(next++ % count)].append(path);
    std::vector<std::unique_ptr<QProcess>> runs;
    for (const QStringList &batch : batches) {
        if (batch.isEmpty()) continue;
        auto run = std::make_unique<QProcess>();
        run->setProgram(program);
        QStringList arguments{QStringLiteral("--generate-strings-files-beside"), tag};
        for (const QString &path : batch) arguments.append(QFileInfo(path).absoluteFilePath());
        run->setArguments(arguments);
        run->setStandardInputFile(QProcess::nullDevice());
        run->setStandardOutputFile(QProcess::nullDevice());
        run->setStandardErrorFile(QProcess::nullDevice());
        run->start(QIODevice::ReadOnly);
        runs.push_back(std::move(run));
    }
    for (size_t i = 0, r = 0; i < batches.size(); ++i) {
        if (batches[i].isEmpty()) continue;
        const bool clean = endedWell(*runs[r++]);
        for (const QString &path : std::as_const(batches[i])) keepPreparedTable(path, QDir(folderOf(path)).filePath(stemOf(path) + tag), clean);
    }
}

}  // namespace

QString ibtoolMakePListFromNib(const QString &path, QString *failure, QStringList *toolWarnings)
{
    const QString fileName = QFileInfo(path).fileName();
    const QString table = InterfaceTool::scratchTableName(path, QStringLiteral("__temp"));
    runTool(path, {QStringLiteral("--generate-stringsfile"), table, fileName}, failure, toolWarnings);
    return QDir(folderOf(path)).filePath(table);
}

void ibtoolPrepareTables(const QStringList &paths)
{
    preparedTables().clear();
    const QString program = InterfaceTool::find(InterfaceTool::Kind::Ibtool);
    if (program.isEmpty() || paths.size() < 2) return;
    if (QFileInfo(program).fileName() == QLatin1String("vocabrix-ibtool")) return prepareInBatches(program, paths);
    struct Run {
        QString path, table;
        std::unique_ptr<QProcess> process;
    };
    // A few runs side by side: each run is mostly the tool's start-up, which one core at a time
    // would wait for in turn. Twice as many as there are cores: a run also waits (to be started,
    // for its table to be written, to be collected in turn), time another run can use.
    const int width = qBound(4, 2 * QThread::idealThreadCount(), 16);
    std::deque<Run> running;
    const auto finishOldest = [&running] {
        Run run = std::move(running.front());
        running.pop_front();
        // Tool warnings are not kept: a file whose run says anything is read again the usual way.
        const bool clean = endedWell(*run.process) && run.process->readAllStandardError().trimmed().isEmpty();
        keepPreparedTable(run.path, run.table, clean);
    };
    for (const QString &path : paths) {
        if (!QFileInfo::exists(path)) continue;
        if (qsizetype(running.size()) >= width) finishOldest();
        Run run;
        run.path = path;
        const QString tableName = InterfaceTool::scratchTableName(path, QStringLiteral("__prepared"));
        run.table = QDir(folderOf(path)).filePath(tableName);
        run.process = std::make_unique<QProcess>();
        run.process->setProgram(program);
        run.process->setArguments({QStringLiteral("--generate-stringsfile"), tableName, QFileInfo(path).fileName()});
        run.process->setWorkingDirectory(folderOf(path));
        run.process->setStandardInputFile(QProcess::nullDevice());
        run.process->setStandardOutputFile(QProcess::nullDevice());
        run.process->start(QIODevice::ReadOnly);
        running.push_back(std::move(run));
    }
    while (!running.empty()) finishOldest();
}

void ibtoolExtractNibDataWithDictionary(LocFile &file, const OptString &dictionaryPath, const OptString &previousPath)
{
    QString failure;
    QStringList toolWarnings;
    const OptString prepared = takePreparedTable(file.path());
    const QString baseTable = prepared ? QString() : ibtoolMakePListFromNib(file.path(), &failure, &toolWarnings);

    QString previousTable;
    OptString previousText;
    std::optional<StringMap> previousPairs;
    if (isTablePath(previousPath)) {
        // Base internationalization: the previous release localized this file by its table.
        previousPairs = readWholeTable(file, previousPath, TableRole::Previous);
        if (QFileInfo::exists(*previousPath)) rememberPreviousForm(file, tableFormOfFile(*previousPath));
    } else if (previousPath && !previousPath->isEmpty()) {
        // Asked to pair with a localized interface file (found or not): the older layout, whose
        // export writes one too.
        rememberPreviousForm(file, TableForm::InterfaceFile);
        QString previousFailure;
        previousTable = ibtoolMakePListFromNib(*previousPath, &previousFailure);
        previousText = stringFromUTF16DataFilePath(previousTable);
        if (!previousText && QFileInfo::exists(*previousPath))
            file.addWarning(QStringLiteral("The previous localized version \"%1\" could not be read, so no words were "
                                           "taken from it. %2")
                                .arg(*previousPath, previousFailure)
                                .trimmed());
    }

    const OptString baseText = prepared ? prepared : stringFromUTF16DataFilePath(baseTable);
    if (baseText) {
        if (previousPairs) ibtoolParseEntries(file, *baseText, *previousPairs, dictionaryPath);
        else ibtoolParseEntries(file, *baseText, previousText, dictionaryPath);
        for (const QString &w : std::as_const(toolWarnings)) file.addWarning(w);
    } else {
        if (failure.isEmpty()) failure = QStringLiteral("The interface tool wrote no string table.");
        file.setInitError(QStringLiteral("The interface file \"%1\" could not be read. %2").arg(file.fileName(), failure));
    }
    removeFile(baseTable);
    removeFile(previousTable);
}

namespace {

// The entries of the tool's table, each given its previous word by `previousWord` (which tells
// whether a word found there counts as the translator's decision) or else the dictionary's.
template <typename Lookup>
void parseBlocks(LocFile &file, const QString &entries, Lookup previousWord, const OptString &dictionaryPath)
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
        bool decided = false;
        const OptString previous = previousWord(*entry, &decided);
        if (previous) {
            entry->setLocalizedWord(previous);
            if (decided) entry->setCheck(true);
        } else if (map) {
            const OptString base = entry->baseWord();
            if (const auto word = base ? map->find(*base) : std::nullopt) entry->setLocalizedWord(word->toString());
        }
        entry->checkNeedToLocalizeWithDictionary(map);
        all.append(entry);
    }
    file.setAllEntries(all);
    file.searchEntryWithKey(std::nullopt);
}

}  // namespace

void ibtoolParseEntries(LocFile &file, const QString &entries, const OptString &previousEntries,
                        const OptString &dictionaryPath)
{
    parseBlocks(
        file, entries,
        [&previousEntries](const LocEntry &entry, bool *) {
            return stringForObjectID(entry.objectID(), entry.wordType(), previousEntries);
        },
        dictionaryPath);
}

void ibtoolParseEntries(LocFile &file, const QString &entries, const StringMap &previousTable,
                        const OptString &dictionaryPath)
{
    parseBlocks(
        file, entries,
        [&previousTable](const LocEntry &entry, bool *decided) -> OptString {
            const OptString key = entry.keyWord();
            const auto word = key ? previousTable.find(*key) : std::nullopt;
            if (!word || word->isEmpty()) return std::nullopt;
            // The previous release's table names this key: its word, even where it equals the
            // base word, is what that release shipped, so the entry starts checked.
            *decided = true;
            return word->toString();
        },
        dictionaryPath);
}

OptString stringForObjectID(const OptString &objectID, const OptString &wordType, const OptString &previousEntries)
{
    if (!previousEntries || !objectID || !wordType) return std::nullopt;
    const QString key = QStringLiteral("\n\"") + *objectID + u'.' + *wordType + QStringLiteral("\" = \"");
    return substringFrom(*previousEntries, key, QStringLiteral("\";\n"));
}

void collectPairs(const LocFile &file, StringMap &pairs)
{
    for (const LocEntryPtr &entry : file.allEntries()) {
        const OptString base = entry->baseWord();
        const OptString localized = entry->localizedWord();
        if (wordLength(base) > 0 && wordLength(localized) > 0) pairs.insert(*base, *localized);
    }
}

OptString ibtoolMakeStringsFile(LocFile &file, StringMap &pairs)
{
    collectPairs(file, pairs);
    return InterfaceTool::writeMergeTable(file);
}

StringMap ibtoolMakeLocalizedNibFileAt(LocFile &file, const QString &folder)
{
    const QFileInfo base(file.path());
    if (!isInterfaceExtension(file.path())) return StringMap();

    StringMap pairs;
    if (exportsAsTable(file)) {
        collectPairs(file, pairs);
        writeLocalizedTable(file, folder);
        return pairs;
    }
    const OptString table = ibtoolMakeStringsFile(file, pairs);
    // Absolute, because the tool runs in the interface file's folder, not in ours.
    const QString output = QDir(folder).absoluteFilePath(base.fileName());
    if (table) {
        const QString pending = InterfaceTool::pendingOutputPath(output);
        InterfaceTool::removeAnything(pending);
        QString failure;
        bool ok = runTool(file.path(),
                          {base.fileName(), QStringLiteral("--strings-file"), QFileInfo(*table).fileName(),
                           QStringLiteral("--write"), pending},
                          &failure, nullptr);
        if (ok && !QFileInfo::exists(pending)) {
            ok = false;
            failure = QStringLiteral("The interface tool wrote no file.");
        }
        if (!ok) InterfaceTool::removeAnything(pending);  // a tool that failed may have left half a file
        if (!ok || !InterfaceTool::replaceWithPending(pending, output, &failure))
            file.addWarning(QStringLiteral("The localized interface file \"%1\" could not be written. %2").arg(output, failure));
        removeFile(*table);
    }
    return pairs;
}

}  // namespace ibtoolHandle

namespace {

class IbtoolHandler : public ResourceHandler, public PreparingHandler {
public:
    void extract(LocFile &file, const OptString &dictionaryPath, const OptString &previousPath) override
    {
        ibtoolHandle::ibtoolExtractNibDataWithDictionary(file, dictionaryPath, previousPath);
    }
    StringMap makeLocalized(LocFile &file, const QString &folder) override
    {
        return ibtoolHandle::ibtoolMakeLocalizedNibFileAt(file, folder);
    }
    void prepare(const QStringList &paths) override { ibtoolHandle::ibtoolPrepareTables(paths); }
};

}  // namespace

std::shared_ptr<ResourceHandler> makeIbtoolHandler()
{
    return std::make_shared<IbtoolHandler>();
}
