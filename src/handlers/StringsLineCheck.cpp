#include "StringsLineCheck.h"

#include "LocFile.h"
#include "StringsTable.h"
#include "WholeTableReader.h"

#include <QHash>
#include <QSet>

namespace {

QString shownKeys(const QStringList &keys)
{
    QStringList shown;
    shown.reserve(keys.size());
    for (QString key : keys) {
        key.replace(u'\\', QLatin1String("\\\\")).replace(u'"', QLatin1String("\\\"")).replace(u'\n', QLatin1String("\\n"));
        shown.append(u'"' + key + u'"');
    }
    return shown.join(QLatin1String(", "));
}

QString counted(qsizetype n, const char *one, const char *many)
{
    return QStringLiteral("%1 %2").arg(n).arg(QLatin1String(n == 1 ? one : many));
}

std::optional<StringMap> wholeTable(const QString &text, StringsTable::Error *error)
{
    // The braced form is the old-style property list of the same map.
    if (QStringView(text).trimmed().startsWith(u'{')) return StringsTable::parseData(text.toUtf8(), error);
    return StringsTable::parse(text, error);
}

}  // namespace

OptString unescapedTableWord(const QString &escaped)
{
    // Most words hold nothing to resolve.
    if (!escaped.contains(u'\\') && !escaped.contains(u'"')) return escaped;
    const auto map = StringsTable::parse(QString(u'"' + escaped + QLatin1String("\";")));
    if (!map || map->size() != 1) return std::nullopt;
    return map->pairs().constFirst().first;
}

void reportPairsNotTaken(LocFile &file, const QString &text, const QList<TakenPair> &taken)
{
    const QString name = displayPath(file.path());
    StringsTable::Error error;
    const auto whole = wholeTable(text, &error);
    if (!whole) {
        const QString where = error.line > 0 ? QStringLiteral(" at line %1").arg(error.line) : QString();
        file.addWarning(QStringLiteral("%1 breaks the string-table syntax%2 (%3), so only its lines that hold a whole "
                                       "pair were taken. Check the file for pairs that are missing.")
                            .arg(name, where, error.message));
        return;
    }

    // Unescaped key to unescaped value, the last line winning as in the grammar.
    QHash<QString, OptString> byKey;  // none: a value the grammar cannot read, so surely different
    QStringList outside;  // line numbers: the key cut from a comment line says little
    for (const TakenPair &pair : taken) {
        const OptString key = unescapedTableWord(pair.key);
        const OptString value = unescapedTableWord(StringUtility::wordOrEmpty(pair.value));
        if (!key || !whole->contains(*key)) {
            outside.append(QString::number(pair.line));
            continue;
        }
        byKey.insert(*key, value);
    }
    QStringList missing, different;
    for (const auto &[key, value] : *whole) {
        const auto it = byKey.constFind(key);
        if (it == byKey.constEnd())
            missing.append(key);
        else if (*it != value)  // none never equals a value
            different.append(key);
    }

    if (!missing.isEmpty())
        file.addWarning(QStringLiteral("%1: %2 not taken, because they do not stand whole on one line (a value that "
                                       "spans lines, an unquoted value, or the short form \"key\";): %3.")
                            .arg(name, counted(missing.size(), "pair was", "pairs were"), shownKeys(missing)));
    if (!different.isEmpty())
        file.addWarning(QStringLiteral("%1: %2 taken with a value that differs from the file's own (an escaped quote "
                                       "before a semicolon, or an equals sign beside a quote): %3.")
                            .arg(name, counted(different.size(), "pair was", "pairs were"), shownKeys(different)));
    if (!outside.isEmpty())
        file.addWarning(QStringLiteral("%1: %2 outside the file's pairs (commented out, or not well formed) taken as "
                                       "entries: %3 %4.")
                            .arg(name, counted(outside.size(), "line was", "lines were"),
                                 QLatin1String(outside.size() == 1 ? "line" : "lines"), outside.join(QLatin1String(", "))));
}
