#include "IbtoolTable.h"

#include "StringsTable.h"

#include <QFile>
#include <QSet>
#include <algorithm>

namespace interface {

namespace {

bool isIntegerId(const QString &id)
{
    if (id.isEmpty()) return false;
    qsizetype i = id.startsWith(u'-') ? 1 : 0;
    if (i >= id.size()) return false;
    for (; i < id.size(); ++i)
        if (id[i] < u'0' || id[i] > u'9') return false;
    return true;
}

// Compares two integer ids by value, whatever their length.
int compareIntegers(const QString &a, const QString &b)
{
    const bool negA = a.startsWith(u'-'), negB = b.startsWith(u'-');
    auto digits = [](const QString &s, bool neg) {
        QStringView v = QStringView(s).sliced(neg ? 1 : 0);
        while (v.size() > 1 && v.front() == u'0') v = v.sliced(1);
        return v;
    };
    QStringView da = digits(a, negA), db = digits(b, negB);
    const bool zeroA = da == u"0", zeroB = db == u"0";
    const int signA = zeroA ? 0 : (negA ? -1 : 1), signB = zeroB ? 0 : (negB ? -1 : 1);
    if (signA != signB) return signA < signB ? -1 : 1;
    int magnitude = 0;
    if (da.size() != db.size()) magnitude = da.size() < db.size() ? -1 : 1;
    else magnitude = da.compare(db) < 0 ? -1 : (da.compare(db) > 0 ? 1 : 0);
    return signA < 0 ? -magnitude : magnitude;
}

int compareObjectIds(const QString &a, const QString &b)
{
    const bool ia = isIntegerId(a), ib = isIntegerId(b);
    if (ia != ib) return ia ? -1 : 1;
    if (ia) {
        const int c = compareIntegers(a, b);
        if (c != 0) return c;
    }
    // QString::compare is by UTF-16 code units.
    const int c = QString::compare(a, b, Qt::CaseSensitive);
    return c < 0 ? -1 : (c > 0 ? 1 : 0);
}

QString commentField(const QString &text)
{
    QString escaped = escapeTableText(text);
    // A "*/" would end the comment early and make the table unreadable; ibtool's own
    // behaviour here is unknown (interface-files.md 1.3), this keeps the table parseable.
    escaped.replace(QLatin1String("*/"), QLatin1String("*\\/"));
    return escaped;
}

}  // namespace

QList<LocalizableString> inIbtoolOrder(const QList<LocalizableString> &strings)
{
    QList<LocalizableString> ordered;
    ordered.reserve(strings.size());
    QSet<QString> seen;
    seen.reserve(strings.size());
    for (const LocalizableString &s : strings) {
        const QString key = s.key();
        if (seen.contains(key)) continue;
        seen.insert(key);
        ordered.append(s);
    }
    std::stable_sort(ordered.begin(), ordered.end(), [](const LocalizableString &a, const LocalizableString &b) {
        const int c = compareObjectIds(a.objectId, b.objectId);
        if (c != 0) return c < 0;
        return QString::compare(a.property, b.property, Qt::CaseSensitive) < 0;
    });
    return ordered;
}

QString escapeTableText(const QString &text)
{
    QString out;
    out.reserve(text.size() + 4);
    for (QChar c : text) {
        const char16_t u = c.unicode();
        switch (u) {
        case u'"': out += QLatin1String("\\\""); break;
        case u'\\': out += QLatin1String("\\\\"); break;
        case u'\n': out += QLatin1String("\\n"); break;
        case u'\t': out += QLatin1String("\\t"); break;
        case u'\r': out += QLatin1String("\\r"); break;
        default:
            if (u < 0x20) out += QStringLiteral("\\U%1").arg(uint(u), 4, 16, QLatin1Char('0'));
            else out += c;
        }
    }
    return out;
}

QString ibtoolTableText(const QList<LocalizableString> &ordered)
{
    QString out;
    out.reserve(ordered.size() * 120);
    for (const LocalizableString &s : ordered) {
        out += QLatin1String("\n/* Class = \"");
        out += commentField(s.className);
        out += QLatin1String("\"; ");
        out += commentField(s.commentProperty());
        out += QLatin1String(" = \"");
        out += commentField(s.value);
        out += QLatin1String("\"; ObjectID = \"");
        out += commentField(s.objectId);
        out += QLatin1String("\"; ");
        if (!s.note.isEmpty()) {
            out += QLatin1String("Note = \"");
            out += commentField(s.note);
            out += QLatin1String("\"; ");
        }
        out += QLatin1String("*/\n\"");
        out += escapeTableText(s.key());
        out += QLatin1String("\" = \"");
        out += escapeTableText(s.value);
        out += QLatin1String("\";\n");
    }
    return out;
}

QByteArray ibtoolTableBytes(const QList<LocalizableString> &ordered)
{
    const QString text = ibtoolTableText(ordered);
    QByteArray bytes;
    bytes.reserve(2 + text.size() * 2);
    bytes.append("\xFF\xFE", 2);
    for (QChar c : text) {
        const char16_t u = c.unicode();
        bytes.append(char(u & 0xFF));
        bytes.append(char(u >> 8));
    }
    return bytes;
}

std::optional<StringMap> readStringsTable(const QString &path, QString *error)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        if (error) *error = QStringLiteral("The strings file \"%1\" could not be read: %2").arg(path, file.errorString());
        return std::nullopt;
    }
    StringsTable::Error parseError;
    auto map = StringsTable::parseData(file.readAll(), &parseError);
    if (!map && error) {
        *error = QStringLiteral("The stringsfile %1 could not be parsed.").arg(path);
        if (!parseError.message.isEmpty()) {
            *error += QStringLiteral(" (%1").arg(parseError.message);
            if (parseError.line > 0) *error += QStringLiteral(", line %1").arg(parseError.line);
            *error += u')';
        }
    }
    return map;
}

}  // namespace interface
