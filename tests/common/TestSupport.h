#pragma once
// What every test program needs, written once: text shortcuts, UTF-16 bytes, a sandbox folder
// that keeps settings and dictionaries away from the user's, the corpus and its walking, and
// tools run as child processes (real ones, or fakes written as shell scripts).

#include "Settings.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>

#include <unistd.h>

namespace TestSupport {

// Test sources are UTF-8; QString(const char *) is too, but spelling it out reads better in tables.
inline QString S(const char *utf8) { return QString::fromUtf8(utf8); }

inline QByteArray utf16(const QString &text, QSysInfo::Endian order, bool bom = true)
{
    QByteArray bytes;
    const auto put = [&](char16_t u) {
        const char hi = char(u >> 8), lo = char(u & 0xff);
        if (order == QSysInfo::BigEndian) bytes.append(hi).append(lo);
        else bytes.append(lo).append(hi);
    };
    if (bom) put(0xfeff);
    for (QChar c : text) put(c.unicode());
    return bytes;
}
inline QByteArray utf16le(const QString &text, bool bom = true) { return utf16(text, QSysInfo::LittleEndian, bom); }
inline QByteArray utf16be(const QString &text, bool bom = true) { return utf16(text, QSysInfo::BigEndian, bom); }

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

// Never touch a real user's files: test-mode standard paths and a throw-away settings file.
inline void isolate(QTemporaryDir &dir)
{
    QStandardPaths::setTestModeEnabled(true);
    Settings::useStore(dir.filePath(QStringLiteral("settings.ini")));
}

// A temporary folder that also holds the test's settings and dictionaries (XDG_DATA_HOME is
// honoured outside test mode), so test programs run side by side never share a file.
class Sandbox {
public:
    Sandbox()
    {
        isolate(m_dir);
        QStandardPaths::setTestModeEnabled(false);
        qputenv("XDG_DATA_HOME", QFile::encodeName(path(QStringLiteral("data"))));
        qputenv("XDG_CONFIG_HOME", QFile::encodeName(path(QStringLiteral("config"))));
    }
    bool isValid() const { return m_dir.isValid(); }
    QString path(const QString &relative = QString()) const
    {
        return relative.isEmpty() ? m_dir.path() : m_dir.filePath(relative);
    }
    QString write(const QString &relative, const QByteArray &bytes) const { return writeFile(path(relative), bytes); }
    QByteArray read(const QString &relative) const { return readFile(path(relative)); }

private:
    QTemporaryDir m_dir;
};

// The shared corpus, or an empty string when it is absent (tests then skip).
inline QString corpusDir()
{
    QString dir = qEnvironmentVariable("VOCABRIX_CORPUS");
    if (dir.isEmpty()) dir = QStringLiteral(VOCABRIX_SOURCE_DIR "/../shared/corpus");
    return QDir(dir).exists() ? QDir(dir).canonicalPath() : QString();
}

// Every file under the corpus folder `sub` whose name matches one of `patterns`, sorted.
inline QStringList corpusFiles(const QString &sub, const QStringList &patterns)
{
    QStringList found;
    const QString root = corpusDir();
    if (root.isEmpty()) return found;
    QDirIterator it(QDir(root).filePath(sub), patterns, QDir::Files, QDirIterator::Subdirectories);
    while (it.hasNext()) found.append(it.next());
    found.sort();
    return found;
}

// A command-line tool of the build (VOCABRIX_TOOLS_DIR), by name.
inline QString toolPath(const QString &name)
{
    return QDir(qEnvironmentVariable("VOCABRIX_TOOLS_DIR")).filePath(name);
}

struct Run {
    int exitCode = -1;  // -1: did not start or did not end in time; -2: crashed
    QByteArray out;
    QByteArray err;
};

inline Run runProgram(const QString &program, const QStringList &args, const QString &workingDirectory = QString(),
                      const QProcessEnvironment &env = QProcessEnvironment::systemEnvironment(),
                      const QByteArray &input = QByteArray())
{
    QProcess p;
    p.setProcessEnvironment(env);
    if (!workingDirectory.isEmpty()) p.setWorkingDirectory(workingDirectory);
    p.start(program, args);
    Run r;
    if (!p.waitForStarted()) return r;
    if (!input.isEmpty()) p.write(input);
    p.closeWriteChannel();
    if (!p.waitForFinished(120'000)) {
        p.kill();
        p.waitForFinished();
        return r;
    }
    r.exitCode = p.exitStatus() == QProcess::NormalExit ? p.exitCode() : -2;
    r.out = p.readAllStandardOutput();
    r.err = p.readAllStandardError();
    return r;
}

// A stand-in for an outside tool: a shell script with the given body, made executable.
inline QString writeFakeTool(const QString &path, const QByteArray &body)
{
    writeFile(path, "#!/bin/sh\n" + body + '\n');
    QFile::setPermissions(path, QFile::permissions(path) | QFile::ExeOwner | QFile::ExeUser);
    return path;
}

// True when `write` replaced the file at `path` by a new one rather than rewriting it in place:
// a hard link made to the old file beforehand must still hold the old bytes. Writers that
// rewrite in place lose the user's file when the disk fills or the power fails midway.
template <typename Write>
bool writesAtomically(const QString &path, Write &&write)
{
    const QByteArray before = readFile(path);
    const QString link = path + QStringLiteral(".old-link");
    QFile::remove(link);
    // QFile::link makes symbolic links; a hard link needs the system call.
    if (::link(QFile::encodeName(path).constData(), QFile::encodeName(link).constData()) != 0) return false;
    if (!write()) return false;
    const bool kept = readFile(link) == before && readFile(path) != before;
    QFile::remove(link);
    return kept;
}

}  // namespace TestSupport

#define SKIP_WITHOUT_CORPUS()                                                                         \
    do {                                                                                              \
        if (TestSupport::corpusDir().isEmpty())                                                       \
            QSKIP("the shared corpus (../shared/corpus or $VOCABRIX_CORPUS) is absent; skipping");    \
    } while (0)
