#include "TablePlaces.h"

#include "LocEntry.h"
#include "QualityChecks.h"

#include <QRegularExpression>

namespace Qa {
namespace {

bool isUnquotedChar(QChar c)
{
    const char16_t u = c.unicode();
    return (u >= u'a' && u <= u'z') || (u >= u'A' && u <= u'Z') || (u >= u'0' && u <= u'9') || u == u'_' || u == u'$'
        || u == u'/' || u == u':' || u == u'.' || u == u'-';
}

class Scanner {
public:
    explicit Scanner(QStringView text) : t(text) {}

    QHash<QString, TablePlace> run()
    {
        QHash<QString, TablePlace> places;
        while (skipSpaceAndComments() && i < t.size()) {
            const int keyLine = line;
            const QString comment = lastComment;
            QString key;
            if (!word(&key) || !skipSpaceAndComments() || i >= t.size()) break;
            if (t[i] == u'=') {
                ++i;
                QString value;
                if (!skipSpaceAndComments() || !word(&value) || !skipSpaceAndComments() || i >= t.size()) break;
            }
            if (t[i] != u';') break;
            ++i;
            places.insert(key, {keyLine, comment, trailingComment()});
            lastComment.clear();
        }
        return places;
    }

private:
    QStringView t;
    qsizetype i = 0;
    int line = 1;
    QString lastComment;

    // A comment on the rest of the pair's line is the pair's, not the next one's.
    QString trailingComment()
    {
        qsizetype j = i;
        while (j < t.size() && (t[j] == u' ' || t[j] == u'\t')) ++j;
        if (j + 1 >= t.size() || t[j] != u'/' || t[j + 1] != u'*') return {};
        const qsizetype close = t.indexOf(QLatin1String("*/"), j + 2);
        if (close < 0) return {};
        const QString text = t.mid(j + 2, close - j - 2).trimmed().toString();
        while (i < close + 2) advance();
        return text;
    }

    void advance()
    {
        if (t[i] == u'\n') ++line;
        ++i;
    }

    bool skipSpaceAndComments()
    {
        while (i < t.size()) {
            if (t[i].isSpace() || t[i] == QChar(0xFEFF)) {
                advance();
            } else if (t[i] == u'/' && i + 1 < t.size() && t[i + 1] == u'*') {
                const qsizetype close = t.indexOf(QLatin1String("*/"), i + 2);
                if (close < 0) return false;
                lastComment = t.mid(i + 2, close - i - 2).trimmed().toString();
                while (i < close + 2) advance();
            } else if (t[i] == u'/' && i + 1 < t.size() && t[i + 1] == u'/') {
                while (i < t.size() && t[i] != u'\n' && t[i] != u'\r') ++i;
            } else {
                return true;
            }
        }
        return true;
    }

    bool word(QString *out)
    {
        if (i >= t.size()) return false;
        if (t[i] == u'"') {
            const qsizetype start = ++i;
            while (i < t.size() && t[i] != u'"') {
                if (t[i] == u'\\' && i + 1 < t.size()) advance();
                advance();
            }
            if (i >= t.size()) return false;
            *out = unescapedWord(t.mid(start, i - start).toString());
            ++i;
            return true;
        }
        const qsizetype start = i;
        while (i < t.size() && isUnquotedChar(t[i])) ++i;
        *out = t.mid(start, i - start).toString();
        return i > start;
    }
};

}  // namespace

QHash<QString, TablePlace> tablePlaces(QStringView text)
{
    return Scanner(text).run();
}

std::optional<QString> interfaceCommentBase(const QString &comment)
{
    if (!comment.contains(QLatin1String("; ObjectID = \""))) return std::nullopt;
    // The entry's own rules read the property's value out of such a comment.
    const LocEntry entry(QLatin1String("/* ") + comment + QLatin1String(" */\n\"k\" = \"v\";"), true);
    return unescapedWord(StringUtility::wordOrEmpty(entry.baseWord()));
}

bool isInterfaceKey(const QString &key)
{
    // Object ids are numbers (older files) or three groups of letters and digits ("FAF-cL-AAk").
    static const QRegularExpression form(QStringLiteral("^([0-9]+|[A-Za-z0-9]{3}-[A-Za-z0-9]{2}-[A-Za-z0-9]{3})\\.[A-Za-z]"));
    return form.match(key).hasMatch();
}

bool isIdentifierKey(const QString &key)
{
    bool named = false;
    for (qsizetype i = 0; i < key.size(); ++i) {
        const QChar c = key[i];
        if (c.isSpace()) return false;
        named |= c == u'.' || c == u'_' || (i > 0 && c.isUpper() && key[i - 1].isLower());
    }
    return named;
}

}  // namespace Qa
