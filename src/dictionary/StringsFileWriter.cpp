#include "StringsFileWriter.h"

#include <QSaveFile>

namespace StringsFileWriter {

QString escapeWord(QStringView word)
{
    QString out;
    out.reserve(word.size() + 8);
    const qsizetype n = word.size();
    for (qsizetype i = 0; i < n; ++i) {
        const QChar c = word.at(i);
        if (c == u'\\' || c == u'"') {
            out.append(u'\\');
            out.append(c);
        } else if (c.isHighSurrogate() && i + 1 < n && word.at(i + 1).isLowSurrogate()) {
            out.append(c);
            out.append(word.at(++i));
        } else if (c.isSurrogate() || c == QChar(0xFEFF)) {
            // A byte-order mark inside a word would be taken for one by some readers.
            // The reader turns \U and four hex digits back into this one UTF-16 unit.
            out.append(QStringLiteral("\\U%1").arg(c.unicode(), 4, 16, QLatin1Char('0')));
        } else {
            out.append(c);
        }
    }
    return out;
}

}  // namespace StringsFileWriter

QString stringsFileStyleString(const StringMap &map)
{
    QString text;
    for (const StringMap::Pair &pair : map) {
        text.append(u'"');
        text.append(StringsFileWriter::escapeWord(pair.first));
        text.append(QLatin1String("\" = \""));
        text.append(StringsFileWriter::escapeWord(pair.second));
        text.append(QLatin1String("\";\n"));
    }
    return text;
}

QByteArray stringsFileStyleData(const StringMap &map)
{
    return stringsFileStyleString(map).toUtf8();
}

bool writeToStringsFile(const StringMap &map, const QString &path, bool atomically, QString *error)
{
    // Every file this program writes is replaced whole, so the flag only documents the caller's
    // intent: a reader sees the old file or the new one, never a torn one.
    Q_UNUSED(atomically);
    QSaveFile file(path);
    const QByteArray data = stringsFileStyleData(map);
    if (!file.open(QIODevice::WriteOnly) || file.write(data) != data.size() || !file.commit()) {
        if (error) *error = file.errorString();
        return false;
    }
    return true;
}
