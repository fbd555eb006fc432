#include "InterfaceTool.h"
#include "LocFile.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QProcess>
#include <QRegularExpression>
#include <QSaveFile>

#include <cerrno>
#include <cstdio>
#include <cstring>

namespace InterfaceTool {

namespace {

constexpr int kDefaultTimeoutSeconds = 120;

bool isExecutableFile(const QString &path)
{
    const QFileInfo info(path);
    return info.isFile() && info.isExecutable();
}

// The tool's own explanation: the description of an ibtool-style error list, else the last
// non-empty line of its standard error.
QString toolMessage(const Result &result)
{
    static const QRegularExpression description(QStringLiteral("<key>description</key>\\s*<string>([^<]*)</string>"));
    const QString out = QString::fromUtf8(result.standardOutput);
    const auto match = description.match(out);
    if (match.hasMatch()) {
        QString text = match.captured(1);
        text.replace(QLatin1String("&lt;"), QLatin1String("<"));
        text.replace(QLatin1String("&gt;"), QLatin1String(">"));
        text.replace(QLatin1String("&amp;"), QLatin1String("&"));
        return text.trimmed();
    }
    const QStringList lines = QString::fromUtf8(result.standardError).split(u'\n', Qt::SkipEmptyParts);
    for (auto it = lines.crbegin(); it != lines.crend(); ++it)
        if (!it->trimmed().isEmpty()) return it->trimmed();
    return QString();
}

}  // namespace

QString displayName(Kind kind)
{
    return kind == Kind::Ibtool ? QStringLiteral("ibtool") : QStringLiteral("nibtool");
}

QString find(Kind kind)
{
    const QString name = displayName(kind);
    const QByteArray variable = kind == Kind::Ibtool ? "VOCABRIX_IBTOOL" : "VOCABRIX_NIBTOOL";
    const QString fromEnvironment = qEnvironmentVariable(variable.constData());
    if (!fromEnvironment.isEmpty()) return fromEnvironment;

    const QString apple = QStringLiteral("/usr/bin/") + name;
    if (isExecutableFile(apple)) return apple;

    const QString ours = QStringLiteral("vocabrix-") + name;
    if (QCoreApplication::instance()) {
        const QString beside = QDir(QCoreApplication::applicationDirPath()).filePath(ours);
        if (isExecutableFile(beside)) return beside;
    }
    const QString toolsDir = qEnvironmentVariable("VOCABRIX_TOOLS_DIR");
    if (!toolsDir.isEmpty()) {
        const QString inTools = QDir(toolsDir).filePath(ours);
        if (isExecutableFile(inTools)) return inTools;
    }
    return QString();
}

int timeoutSeconds()
{
    bool ok = false;
    const int fromEnvironment = qEnvironmentVariableIntValue("VOCABRIX_TOOL_TIMEOUT", &ok);
    // A day at most, so the milliseconds stay within range.
    return ok && fromEnvironment > 0 ? std::min(fromEnvironment, 86'400) : kDefaultTimeoutSeconds;
}

Result run(const QString &program, const QStringList &arguments, const QString &workingDirectory, int seconds)
{
    Result result;
    result.timeoutSeconds = seconds;
    QProcess process;
    process.setProgram(program);
    process.setArguments(arguments);
    process.setWorkingDirectory(workingDirectory);
    process.start(QIODevice::ReadWrite);
    if (!process.waitForStarted(30'000)) {
        result.startError = process.errorString();
        process.kill();
        process.waitForFinished(5'000);
        return result;
    }
    result.started = true;
    process.closeWriteChannel();
    if (!process.waitForFinished(seconds * 1000)) {
        result.timedOut = process.state() != QProcess::NotRunning;
        if (result.timedOut) {
            process.kill();
            process.waitForFinished(5'000);
        }
    }
    result.standardOutput = process.readAllStandardOutput();
    result.standardError = process.readAllStandardError();
    if (!result.timedOut) {
        result.crashed = process.exitStatus() == QProcess::CrashExit;
        result.exitCode = process.exitCode();
    }
    return result;
}

QString describeFailure(Kind kind, const QString &program, const Result &result)
{
    const QString name = displayName(kind);
    if (program.isEmpty())
        return QStringLiteral("The interface tool %1 was not found. Install it beside Vocabrix, or name it in the "
                              "environment variable VOCABRIX_%2.")
            .arg(name, name.toUpper());
    if (!result.started)
        return QStringLiteral("The interface tool \"%1\" could not be started: %2").arg(program, result.startError);
    if (result.timedOut)
        return QStringLiteral("The interface tool \"%1\" did not finish within %2 seconds and was stopped.")
            .arg(program)
            .arg(result.timeoutSeconds);
    if (result.crashed) return QStringLiteral("The interface tool \"%1\" crashed.").arg(program);
    if (result.exitCode != 0) {
        const QString message = toolMessage(result);
        if (!message.isEmpty()) return message;
        return QStringLiteral("The interface tool \"%1\" failed (exit status %2).").arg(program).arg(result.exitCode);
    }
    return QString();
}

QString scratchTableName(const QString &interfacePath, const QString &tag)
{
    return QStringLiteral("%1%2-%3.strings").arg(QFileInfo(interfacePath).completeBaseName(), tag).arg(QCoreApplication::applicationPid());
}

std::optional<QString> writeMergeTable(LocFile &file)
{
    QString text;
    for (const LocEntryPtr &entry : file.allEntries()) {
        text += entry->entry();
        text += QLatin1String("\n\n");
    }
    const QFileInfo base(file.path());
    const QString path = QDir(base.absolutePath()).filePath(scratchTableName(file.path(), QStringLiteral("--temp")));
    QSaveFile out(path);
    const QByteArray bytes = text.toUtf8();
    if (!out.open(QIODevice::WriteOnly) || out.write(bytes) != bytes.size() || !out.commit()) {
        file.addWarning(QStringLiteral("The table of translations could not be written beside \"%1\": %2")
                            .arg(file.path(), out.errorString()));
        return std::nullopt;
    }
    return path;
}

void removeAnything(const QString &path)
{
    const QFileInfo info(path);
    if (info.isDir() && !info.isSymLink()) QDir(path).removeRecursively();
    else if (info.exists() || info.isSymLink()) QFile::remove(path);
}

QString pendingOutputPath(const QString &output)
{
    const QFileInfo info(output);
    return info.absoluteDir().filePath(QStringLiteral(".vocabrix-new-") + info.fileName());
}

bool replaceWithPending(const QString &pending, const QString &output, QString *failure)
{
    const QFileInfo old(output);
    int why = 0;  // the first failed rename's errno, before cleaning up overwrites it
    const auto renamed = [&why](const QString &from, const QString &to) {
        if (std::rename(QFile::encodeName(from).constData(), QFile::encodeName(to).constData()) == 0) return true;
        if (why == 0) why = errno;
        return false;
    };
    bool ok = false;
    if (!QFileInfo(pending).isDir() && !(old.isDir() && !old.isSymLink())) {
        ok = renamed(pending, output);  // replaces a file atomically
    } else {
        // rename() cannot put a folder over a non-empty one: the old one waits aside.
        const QString aside = old.absoluteDir().filePath(QStringLiteral(".vocabrix-old-") + old.fileName());
        removeAnything(aside);
        const bool hadOld = old.exists() || old.isSymLink();
        if (!hadOld || renamed(output, aside)) {
            ok = renamed(pending, output);
            if (!ok && hadOld) renamed(aside, output);
            else removeAnything(aside);
        }
    }
    if (!ok) {
        removeAnything(pending);
        if (failure) *failure = QStringLiteral("It could not take the place of the old file: %1.").arg(QString::fromLocal8Bit(std::strerror(why)));
    }
    return ok;
}

}  // namespace InterfaceTool
