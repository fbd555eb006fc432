#pragma once
// vocabrix-cli subcommands. Each lives in its own source file and registers itself with a
// static CommandRegistration, so adding one touches nothing else.

#include "JsonWriter.h"

#include <QStringList>
#include <QTextStream>
#include <functional>

struct Command {
    QString name;
    QString synopsis;     // "strings FILE"
    QString description;  // a few lines for --help
    // Arguments after the subcommand's name; returns the process exit status.
    std::function<int(const QStringList &args, QTextStream &out, QTextStream &err)> run;
};

QList<Command> &commands();

struct CommandRegistration {
    explicit CommandRegistration(Command c) { commands().append(std::move(c)); }
};

// JSON text of a string, quotes included.
QString jsonString(const QString &s);
// JSON for the command's output: what `out` holds is flushed first, then the writer's bytes go
// straight to its device (no text stream between), in order with anything written after it is gone.
json::Writer jsonOutput(QTextStream &out);
