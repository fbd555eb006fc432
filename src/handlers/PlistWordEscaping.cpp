#include "PlistWordEscaping.h"

QString escapePlistWord(const QString &word)
{
    QString out;
    out.reserve(word.size() + 8);
    for (qsizetype i = 0; i < word.size(); ++i) {
        const QChar c = word.at(i);
        switch (c.unicode()) {
        case u'\\': out += QLatin1String("\\\\"); break;
        case u'\n': out += QLatin1String("\\n"); break;
        case u'\r': out += QLatin1String("\\r"); break;
        case u'"':
            out += QLatin1String("\\\"");
            // "\";" would end the value, "\" = " the key.
            if (i + 1 < word.size() && word.at(i + 1) == u';') {
                out += QLatin1String("\\;");
                ++i;
            } else if (QStringView(word).mid(i + 1).startsWith(QLatin1String(" = "))) {
                out += QLatin1String("\\ ");
                ++i;
            }
            break;
        default: out += c;
        }
    }
    return out;
}

QString unescapePlistWord(const QString &stored)
{
    if (!stored.contains(u'\\')) return stored;
    QString out;
    out.reserve(stored.size());
    for (qsizetype i = 0; i < stored.size(); ++i) {
        const QChar c = stored.at(i);
        if (c != u'\\' || i + 1 == stored.size()) {
            out += c;
            continue;
        }
        const QChar next = stored.at(i + 1);
        switch (next.unicode()) {
        case u'\\':
        case u'"':
        case u';':
        case u' ': out += next; break;
        case u'n': out += u'\n'; break;
        case u'r': out += u'\r'; break;
        case u't': out += u'\t'; break;
        default:
            // Not an escape: a translator's "C:\Folder" stays as typed.
            out += c;
            out += next;
        }
        ++i;
    }
    return out;
}
