#include "NibtoolHandler.h"

#include "Handlers.h"
#include "InterfaceTool.h"
#include "LocFile.h"
#include "StringsTable.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QLoggingCategory>
#include <QProcess>
#include <QSaveFile>
#include <QTimer>

Q_LOGGING_CATEGORY(lcNibtool, "vocabrix.nibtool", QtWarningMsg)

using namespace StringUtility;

namespace nibHandle {

namespace {

const QString kBlockSeparator = QStringLiteral("\";\n\n/*");
// Enough of the tool's standard error to say why it failed; the rest is dropped as it comes.
constexpr qsizetype kErrorTail = 4096;

QString folderOf(const QString &path) { return QFileInfo(path).absolutePath(); }

bool existingFile(const OptString &path)
{
    return path && !path->isEmpty() && QFileInfo::exists(*path);
}

// What one run has seen; shared by the process's signal handlers.
struct Run {
    bool ended = false;
    bool timedOut = false;
    QByteArray errorTail;
};

// The end of a run that listed nothing usable: the user learns why, reading goes on as for an
// empty listing.
void endFailedRun(LocFile &file, const QString &why)
{
    qCDebug(lcNibtool) << "run failed:" << why;
    const bool translatedRun = file.readNoDict && !file.nibResult;
    file.addWarning(translatedRun
                        ? QStringLiteral("No localized words could be taken from the previous version or the dictionary "
                                         "for \"%1\": the interface tool failed. %2").arg(file.fileName(), why)
                        : QStringLiteral("The interface file \"%1\" could not be read: the interface tool listed "
                                         "nothing. %2").arg(file.fileName(), why));
    file.nibData.clear();
    standardOutput(file, QByteArray());
}

void watch(LocFile &file, QProcess *process, const QString &program)
{
    LocFile *f = &file;
    auto run = std::make_shared<Run>();
    QObject::connect(process, &QProcess::readyReadStandardOutput, f, [f, process, run] {
        const QByteArray chunk = process->readAllStandardOutput();
        if (!run->ended && !chunk.isEmpty()) standardOutput(*f, chunk);
    });
    QObject::connect(process, &QProcess::readyReadStandardError, process, [process, run] {
        run->errorTail += process->readAllStandardError();
        if (run->errorTail.size() > kErrorTail) run->errorTail = run->errorTail.right(kErrorTail);
    });
    QObject::connect(process, &QProcess::finished, f, [f, process, run, program](int code, QProcess::ExitStatus status) {
        if (run->ended) return;
        run->ended = true;
        process->deleteLater();
        const QByteArray rest = process->readAllStandardOutput();
        InterfaceTool::Result result;
        result.started = true;
        result.timedOut = run->timedOut;
        result.crashed = !run->timedOut && status == QProcess::CrashExit;
        result.exitCode = code;
        result.standardError = run->errorTail + process->readAllStandardError();
        result.timeoutSeconds = InterfaceTool::timeoutSeconds();
        if (!result.succeeded()) {
            endFailedRun(*f, InterfaceTool::describeFailure(InterfaceTool::Kind::Nibtool, program, result));
            return;
        }
        if (!rest.isEmpty()) standardOutput(*f, rest);
        standardOutput(*f, QByteArray());
    });
    QObject::connect(process, &QProcess::errorOccurred, f, [f, process, run, program](QProcess::ProcessError error) {
        if (error != QProcess::FailedToStart || run->ended) return;
        run->ended = true;
        process->deleteLater();
        InterfaceTool::Result result;
        result.startError = process->errorString();
        endFailedRun(*f, InterfaceTool::describeFailure(InterfaceTool::Kind::Nibtool, program, result));
    });
    auto *timer = new QTimer(process);
    timer->setSingleShot(true);
    QObject::connect(timer, &QTimer::timeout, process, [process, run] {
        run->timedOut = true;
        process->kill();
    });
    timer->start(InterfaceTool::timeoutSeconds() * 1000);
}

}  // namespace

void nibtool(LocFile &file, const QString &path, const OptString &dictionaryPath, const OptString &previousPath)
{
    if (dictionaryPath && !dictionaryPath->isEmpty()) file.tempDictPath = dictionaryPath;
    QStringList arguments{QStringLiteral("-L"), QStringLiteral("-8")};
    if (existingFile(previousPath)) arguments << QStringLiteral("-I") << *previousPath;
    if (existingFile(dictionaryPath)) arguments << QStringLiteral("-d") << *dictionaryPath;
    arguments << QFileInfo(path).fileName();
    file.nibData.clear();

    const QString program = InterfaceTool::find(InterfaceTool::Kind::Nibtool);
    if (program.isEmpty()) {
        // Still after the caller has returned: whoever waits for the end can connect first.
        const QString why = InterfaceTool::describeFailure(InterfaceTool::Kind::Nibtool, program, {});
        LocFile *f = &file;
        QTimer::singleShot(0, f, [f, why] { endFailedRun(*f, why); });
        return;
    }
    qCDebug(lcNibtool) << "running" << program << arguments << "in" << folderOf(path);
    auto *process = new QProcess(&file);
    process->setProgram(program);
    process->setArguments(arguments);
    process->setWorkingDirectory(folderOf(path));
    process->setStandardInputFile(QProcess::nullDevice());
    watch(file, process, program);
    process->start(QIODevice::ReadOnly);
}

void extractNibDataWithDictionary(LocFile &file, const OptString &dictionaryPath, const OptString &previousPath)
{
    nibtool(file, file.path(), dictionaryPath, previousPath);
    file.readNoDict = existingFile(dictionaryPath) || existingFile(previousPath);
}

void standardOutput(LocFile &file, const QByteArray &chunk)
{
    if (!chunk.isEmpty()) {
        file.nibData.append(chunk);
        return;
    }
    const QString listing = QString::fromUtf8(file.nibData);
    if (!file.readNoDict) {
        parseEntries(file, listing);
        file.finishReadingFile();
    } else if (!file.nibResult) {
        file.nibResult = listing;
        nibtool(file, file.path(), std::nullopt, std::nullopt);
    } else {
        parseEntries(file, *file.nibResult, listing);
        file.finishReadingFile();
    }
}

QStringList entryTexts(const QString &listing)
{
    QStringList pieces = listing.split(kBlockSeparator);
    QString &last = pieces.last();
    while (last.endsWith(u'\n')) last.chop(1);
    if (last.endsWith(QLatin1String("\";"))) last.chop(2);
    QStringList texts;
    for (qsizetype i = 0; i < pieces.size(); ++i) {
        if (pieces[i].isEmpty()) continue;
        const QString text = (i == 0 ? pieces[i] : QStringLiteral("/*") + pieces[i]) + QStringLiteral("\";");
        // Whatever is not a block (a tool's stray message) would make an entry without a pair.
        if (text.contains(QLatin1String(" = \""))) texts.append(text);
    }
    return texts;
}

void parseEntries(LocFile &file, const QString &listing)
{
    QList<LocEntryPtr> all = file.allEntries();
    for (const QString &text : entryTexts(listing)) all.append(LocEntry::initWithEntry(text));
    file.setAllEntries(all);
    file.searchEntryWithKey(std::nullopt);
}

void parseEntries(LocFile &file, const QString &translated, const QString &original)
{
    std::optional<StringMap> dictionary;
    if (file.tempDictPath) dictionary = dictionaryWithContentsOfFile(*file.tempDictPath);
    file.tempDictPath.reset();
    const StringMap *map = dictionary ? &*dictionary : nullptr;

    QList<LocEntryPtr> all = file.allEntries();
    for (const QString &text : entryTexts(original)) {
        const LocEntryPtr entry = LocEntry::initWithEntry(text);
        if (const OptString word = localizedWordForEntry(text, translated)) entry->setLocalizedWord(word);
        entry->checkNeedToLocalizeWithDictionary(map);
        all.append(entry);
    }
    file.setAllEntries(all);
    file.searchEntryWithKey(std::nullopt);
    file.setColor();
}

OptString localizedWordForEntry(const QString &entry, const QString &translated)
{
    const OptString marker = substringFrom(entry, QStringLiteral("> ("), QStringLiteral(")"));
    if (!marker) return std::nullopt;
    const qsizetype at = translated.indexOf(QStringLiteral("(%1)").arg(*marker));
    if (at < 0) return std::nullopt;
    return substringFrom(translated, QStringLiteral("\" = \""), QStringLiteral("\";\n"), at, translated.size() - at);
}

OptString makeStringsFile(LocFile &file)
{
    return InterfaceTool::writeMergeTable(file);
}

StringMap makeLocalizedNibFileAt(LocFile &file, const QString &folder)
{
    const QFileInfo base(file.path());
    if (base.suffix() != QLatin1String("nib") && base.suffix() != QLatin1String("xib")) return StringMap();
    const OptString table = makeStringsFile(file);
    // Absolute, because the tool runs in the interface file's folder, not in ours.
    const QString output = QDir(folder).absoluteFilePath(base.fileName());
    if (!table) return StringMap();

    const QString program = InterfaceTool::find(InterfaceTool::Kind::Nibtool);
    const QString pending = InterfaceTool::pendingOutputPath(output);
    InterfaceTool::removeAnything(pending);
    InterfaceTool::Result result;
    if (!program.isEmpty())
        result = InterfaceTool::run(program,
                                    {QStringLiteral("-8"), QStringLiteral("-d"), QFileInfo(*table).fileName(),
                                     QStringLiteral("-w"), pending, base.fileName()},
                                    base.absolutePath());
    QString failure = InterfaceTool::describeFailure(InterfaceTool::Kind::Nibtool, program, result);
    if (!result.succeeded()) InterfaceTool::removeAnything(pending);  // a tool that failed may have left half a file
    if (!result.succeeded() || !InterfaceTool::replaceWithPending(pending, output, &failure))
        file.addWarning(QStringLiteral("The localized interface file \"%1\" could not be written. %2").arg(output, failure));
    StringsTable::Error error;
    const std::optional<StringMap> pairs = dictionaryWithContentsOfFile(*table, &error);
    QFile::remove(*table);
    if (!pairs) {
        file.addWarning(QStringLiteral("The translations of \"%1\" could not be read back for the dictionary: %2")
                            .arg(file.fileName(), error.message));
        return StringMap();
    }
    return *pairs;
}

}  // namespace nibHandle

namespace {

class NibtoolHandler : public ResourceHandler {
public:
    void extract(LocFile &file, const OptString &dictionaryPath, const OptString &previousPath) override
    {
        nibHandle::extractNibDataWithDictionary(file, dictionaryPath, previousPath);
    }
    StringMap makeLocalized(LocFile &file, const QString &folder) override
    {
        return nibHandle::makeLocalizedNibFileAt(file, folder);
    }
    void parseEntries(LocFile &file, const QString &localized, const QString &original) override
    {
        nibHandle::parseEntries(file, localized, original);
    }
};

}  // namespace

std::shared_ptr<ResourceHandler> makeNibtoolHandler()
{
    return std::make_shared<NibtoolHandler>();
}
