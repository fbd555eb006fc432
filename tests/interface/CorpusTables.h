#pragma once
// Reading the corpus's interface files and the string tables made from them, for the tests
// that compare the engine with what ibtool wrote.

#include "StringsTable.h"
#include "TextFile.h"

#include <QDir>
#include <QDirIterator>
#include <QFileInfo>
#include <QHash>
#include <QList>

namespace CorpusTables {

// One block of a table: the comment line before a pair (empty when there is none) and the pair.
struct Block {
    QString comment;
    QString key;
    QString value;
};

// The pairs of a table with the comment line that precedes each, in file order. Keys and
// values stay escaped as written: they are compared with the generated text.
inline QList<Block> readBlocks(const QString &text)
{
    QList<Block> blocks;
    const QStringList lines = text.split(u'\n');
    QString lastComment;
    for (const QString &rawLine : lines) {
        const QString line = rawLine.trimmed();
        if (line.startsWith(QLatin1String("/*")) && line.endsWith(QLatin1String("*/"))) {
            lastComment = line;
            continue;
        }
        if (!line.startsWith(u'"')) {
            if (!line.isEmpty()) lastComment.clear();
            continue;
        }
        qsizetype i = 1;
        while (i < line.size() && line[i] != u'"') i += line[i] == u'\\' ? 2 : 1;
        Block b;
        b.comment = lastComment;
        b.key = line.mid(1, i - 1);
        const qsizetype open = line.indexOf(QLatin1String("= \""), i);
        if (open >= 0 && line.endsWith(QLatin1String("\";"))) b.value = line.mid(open + 3, line.size() - open - 5);
        blocks.append(b);
        lastComment.clear();
    }
    return blocks;
}

// The decoded text of a table file (UTF-8, UTF-16 by byte-order mark, ...).
inline QString readTableText(const QString &path)
{
    QFile f(path);
    if (!f.open(QIODevice::ReadOnly)) return QString();
    return decodeTextFileData(f.readAll()).value_or(QString());
}

struct Pair {
    QString project;  // "iina/3e7e879c"
    QString base;     // interface file (xib, storyboard, or a nib folder's designable.nib)
    QString table;    // translated string table
};

// Every (base file, table) pair under `root`: <project>/<commit>/<lang>.lproj/X.strings with
// Base.lproj/X.xib or X.storyboard, or a legacy <lang>.lproj/X.nib/designable.nib, beside it.
inline QList<Pair> findPairs(const QString &root)
{
    QList<Pair> pairs;
    if (!QDir(root).exists()) return pairs;
    QDirIterator it(root, {QStringLiteral("*.strings")}, QDir::Files, QDirIterator::Subdirectories);
    QStringList tables;
    while (it.hasNext()) tables.append(it.next());
    tables.sort();
    for (const QString &table : tables) {
        const QFileInfo info(table);
        const QDir commitDir(QDir::cleanPath(info.absolutePath() + QStringLiteral("/..")));
        const QString stem = info.completeBaseName();
        QString base;
        for (const QString &candidate : {QStringLiteral("Base.lproj/%1.xib"), QStringLiteral("Base.lproj/%1.storyboard")}) {
            const QString p = commitDir.absoluteFilePath(candidate.arg(stem));
            if (QFileInfo::exists(p)) base = p;
        }
        if (base.isEmpty()) {
            for (const QString &lang : commitDir.entryList({QStringLiteral("*.lproj")}, QDir::Dirs)) {
                const QString p = commitDir.absoluteFilePath(lang + QStringLiteral("/%1.nib/designable.nib").arg(stem));
                if (QFileInfo::exists(p)) base = p;
            }
        }
        if (base.isEmpty()) continue;
        const QString relative = QDir(root).relativeFilePath(commitDir.absolutePath());
        const QStringList parts = relative.split(u'/');
        pairs.append({parts.mid(0, 2).join(u'/'), QDir::cleanPath(base), table});
    }
    return pairs;
}

}  // namespace CorpusTables
