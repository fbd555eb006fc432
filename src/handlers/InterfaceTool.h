#pragma once

#include <optional>
// Finding and running the interface tools (ibtool, nibtool) as child processes: argument lists,
// never a shell; a run that hangs is stopped after a generous timeout and counts as a failure.

#include <QByteArray>
#include <QString>
#include <QStringList>

class LocFile;

namespace InterfaceTool {

enum class Kind { Ibtool, Nibtool };

// The tool's name as people know it ("ibtool") and the file names looked for.
QString displayName(Kind kind);

// Where the tool is, in this order: the environment variable VOCABRIX_IBTOOL / VOCABRIX_NIBTOOL
// (taken as it stands, so a wrong setting shows up as a failing tool, not as another tool);
// Apple's /usr/bin/ibtool or /usr/bin/nibtool where it exists; our vocabrix-ibtool or
// vocabrix-nibtool beside the application binary; the same in the folder named by
// VOCABRIX_TOOLS_DIR (the build's tools folder, for tests). Empty when none is found.
QString find(Kind kind);

struct Result {
    bool started = false;
    bool timedOut = false;
    bool crashed = false;
    int exitCode = -1;
    QByteArray standardOutput;
    QByteArray standardError;
    QString startError;  // why the process could not be started
    int timeoutSeconds = 0;

    bool succeeded() const { return started && !timedOut && !crashed && exitCode == 0; }
};

// Seconds before a run is stopped: VOCABRIX_TOOL_TIMEOUT when set to a positive number, else
// two minutes, far beyond what the largest interface file takes.
int timeoutSeconds();

// Runs `program` with `arguments` in `workingDirectory` and waits for it to end (or stops it
// at the timeout). Standard input is closed; standard output and error are captured.
Result run(const QString &program, const QStringList &arguments, const QString &workingDirectory,
           int seconds = timeoutSeconds());

// Why a run failed, in words for the user: not found, not started, stopped, crashed, or the
// tool's own message (its standard error, or the description in an ibtool-style property list
// on standard output). Empty for a run that succeeded.
QString describeFailure(Kind kind, const QString &program, const Result &result);

// The name of a scratch table beside an interface file, "<stem><tag>-<process id>.strings": with
// the process id, two programs reading one file at once (two windows, a build running the command
// line) never write or remove each other's tables.
QString scratchTableName(const QString &interfacePath, const QString &tag);

// Writes every entry's raw text, one blank line apart, as the merge table "<stem>--temp-<pid>.strings"
// beside the interface file, atomically. Its path, or none (with a warning on the file) when
// it could not be written.
std::optional<QString> writeMergeTable(LocFile &file);

// Whatever stands at `path`, a file or a whole nib folder, removed.
void removeAnything(const QString &path);

// A tool writes a localized interface file here first, beside `output` and hidden, with the
// same extension (the tools choose the form by it). Only a finished file takes the old one's
// place, so a tool that fails, crashes or is stopped leaves the user's previous file as it was.
QString pendingOutputPath(const QString &output);

// Puts the file or nib folder at `pending` in the place of `output`: a file by one rename (the
// old one is never rewritten in place); a folder by moving the old one aside until the new one
// stands. False, with the reason and `pending` removed, when it cannot.
bool replaceWithPending(const QString &pending, const QString &output, QString *failure);

}  // namespace InterfaceTool
