#pragma once
// Shared by the test programs: the corpus folder, an isolated settings store, temporary files.

#include "Settings.h"

#include <QDir>
#include <QFile>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>

namespace TestSupport {

// The shared corpus, or an empty string when it is absent (tests then skip).
inline QString corpusDir()
{
    QString dir = qEnvironmentVariable("VOCABRIX_CORPUS");
    if (dir.isEmpty()) dir = QStringLiteral(VOCABRIX_SOURCE_DIR "/../shared/corpus");
    return QDir(dir).exists() ? QDir(dir).canonicalPath() : QString();
}

// Never touch a real user's files: test-mode standard paths and a throw-away settings file.
inline void isolate(QTemporaryDir &dir)
{
    QStandardPaths::setTestModeEnabled(true);
    Settings::useStore(dir.filePath(QStringLiteral("settings.ini")));
}

inline QString writeFile(const QString &path, const QByteArray &bytes)
{
    QDir().mkpath(QFileInfo(path).absolutePath());
    QFile f(path);
    if (!f.open(QIODevice::WriteOnly)) return QString();
    f.write(bytes);
    return path;
}

inline QByteArray readFile(const QString &path)
{
    QFile f(path);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
}

}  // namespace TestSupport

#define SKIP_WITHOUT_CORPUS()                                                                         \
    do {                                                                                              \
        if (TestSupport::corpusDir().isEmpty())                                                       \
            QSKIP("the shared corpus (../shared/corpus or $VOCABRIX_CORPUS) is absent; skipping");    \
    } while (0)
