#pragma once
// For harnesses that run a handler on files: one temporary folder for the whole run, with its
// own settings store and the handlers registered, and a writer for the input's files.
#include "Handlers.h"
#include "Settings.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

namespace fuzzing {

inline QTemporaryDir &handlerFolder()
{
    static QTemporaryDir dir;
    static const bool ready = [] {
        Settings::useStore(dir.filePath(QStringLiteral("settings.ini")));
        registerResourceHandlers();
        return QDir().mkpath(dir.filePath(QStringLiteral("out")));
    }();
    (void)ready;
    return dir;
}

inline bool writeFile(const QString &path, const QByteArray &bytes)
{
    QFile f(path);
    return f.open(QIODevice::WriteOnly | QIODevice::Truncate) && f.write(bytes) == bytes.size();
}

}  // namespace fuzzing
