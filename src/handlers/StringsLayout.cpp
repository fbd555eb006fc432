#include "StringsLayout.h"

namespace StringsLayout {
namespace {

bool isWordChar(QChar c)
{
    const char16_t u = c.unicode();
    return (u >= u'a' && u <= u'z') || (u >= u'A' && u <= u'Z') || (u >= u'0' && u <= u'9') || u == u'_' || u == u'$'
        || u == u'/' || u == u':' || u == u'.' || u == u'-';
}

bool isSpace(QChar c)
{
    const char16_t u = c.unicode();
    return u == u' ' || u == u'\t' || u == u'\n' || u == u'\r' || u == u'\f' || u == u'\v' || u == 0xFEFF
        || u == 0x2028 || u == 0x2029;
}

class Scanner {
public:
    explicit Scanner(QStringView text) : t(text) {}

    std::optional<Layout> run(StringsTable::Error *error)
    {
        Layout layout;
        skip();
        // The braced form is the same map written as an old-style property list.
        const bool braced = ok && p < t.size() && t[p] == u'{';
        if (braced) ++p, skip();
        while (ok && p < t.size() && !(braced && t[p] == u'}')) {
            Pair pair;
            pair.comment = m_comment;
            pair.line = lineAt(p);
            if (!word(pair.key)) return fail(error, QStringLiteral("expected a quoted or unquoted key"));
            skip();
            if (ok && p < t.size() && t[p] == u';') {
                pair.shortForm = true;
                pair.value = pair.key;
            } else {
                if (!ok || p >= t.size() || t[p] != u'=') return fail(error, QStringLiteral("expected \"=\" or \";\" after a key"));
                ++p, skip();
                if (!ok || !word(pair.value)) return fail(error, QStringLiteral("expected a value after \"=\""));
                skip();
                if (!ok || p >= t.size() || t[p] != u';') return fail(error, QStringLiteral("expected \";\" after a value"));
            }
            ++p;
            layout.pairs.append(pair);
            // A comment on the line of the semicolon belongs to this pair, not to the next one.
            m_comment.clear();
            m_afterPair = true;
            skip();
        }
        if (braced) {
            if (!ok || p >= t.size()) return fail(error, QStringLiteral("expected \"}\" at the end of the table"));
            ++p, skip();
        }
        if (!ok) return fail(error, m_message);
        if (p < t.size()) return fail(error, QStringLiteral("unexpected text after the table"));
        return layout;
    }

private:
    QStringView t;
    qsizetype p = 0;
    bool ok = true;
    QString m_message;
    QString m_comment;     // the last comment seen, while no blank line stands after it
    qsizetype m_newlines = 0;
    bool m_afterPair = false;  // no line feed yet since the last pair's semicolon

    std::optional<Layout> fail(StringsTable::Error *error, const QString &message)
    {
        if (error) {
            error->line = lineAt(qMin(p, t.size()));
            error->message = ok ? message : m_message;
        }
        return std::nullopt;
    }

    // Counts on from the last place asked for: pairs are met in order, so the whole table is
    // scanned once for line numbers, not once per pair.
    qsizetype lineAt(qsizetype at)
    {
        if (at < m_linePos) m_linePos = 0, m_line = 1;
        m_line += t.mid(m_linePos, at - m_linePos).count(u'\n');
        m_linePos = at;
        return m_line;
    }
    qsizetype m_linePos = 0;
    qsizetype m_line = 1;

    // Skips white space and comments, remembering the last comment unless a blank line follows
    // it: a header comment separated from the first pair describes the file, not the pair.
    void skip()
    {
        while (p < t.size()) {
            if (isSpace(t[p])) {
                if (t[p] == u'\n') {
                    m_afterPair = false;
                    if (++m_newlines > 1) m_comment.clear();
                }
                ++p;
            } else if (t[p] == u'/' && p + 1 < t.size() && t[p + 1] == u'*') {
                const qsizetype close = t.indexOf(QLatin1String("*/"), p + 2);
                if (close < 0) {
                    ok = false;
                    m_message = QStringLiteral("a comment is not closed");
                    return;
                }
                keepComment(t.mid(p + 2, close - p - 2));
                p = close + 2;
            } else if (t[p] == u'/' && p + 1 < t.size() && t[p + 1] == u'/') {
                qsizetype close = t.indexOf(u'\n', p);
                if (close < 0) close = t.size();
                keepComment(t.mid(p + 2, close - p - 2));
                p = close;
            } else {
                return;
            }
        }
    }

    void keepComment(QStringView body)
    {
        if (m_afterPair) return;
        m_comment = body.trimmed().toString();
        m_newlines = 0;
    }

    bool word(Span &span)
    {
        if (p >= t.size()) return false;
        if (t[p] == u'"') {
            span.quoted = true;
            span.begin = ++p;
            while (p < t.size() && t[p] != u'"') p += (t[p] == u'\\') ? 2 : 1;
            if (p >= t.size()) {
                ok = false;
                m_message = QStringLiteral("a quoted text is not closed");
                p = span.begin - 1;  // the user looks for where it opens
                return false;
            }
            span.end = p++;
        } else {
            span.quoted = false;
            span.begin = p;
            while (p < t.size() && isWordChar(t[p])) ++p;
            span.end = p;
            if (span.end == span.begin) return false;
        }
        m_newlines = 0;
        return true;
    }
};

}  // namespace

std::optional<Layout> read(QStringView text, StringsTable::Error *error)
{
    return Scanner(text).run(error);
}

QString escapedWord(QStringView text, const Span &span)
{
    QString word = text.mid(span.begin, span.end - span.begin).toString();
    word.replace(u'\n', QLatin1String("\\n"));
    return word;
}

QString withValues(QStringView text, const Layout &layout, const QList<OptString> &replacement)
{
    QString out;
    out.reserve(text.size() + text.size() / 4);
    qsizetype copied = 0;
    for (qsizetype i = 0; i < layout.pairs.size() && i < replacement.size(); ++i) {
        if (!replacement[i]) continue;
        const Pair &pair = layout.pairs[i];
        const QString quotedWord = u'"' + *replacement[i] + u'"';
        if (pair.shortForm) {
            const qsizetype after = pair.key.end + (pair.key.quoted ? 1 : 0);
            out += text.mid(copied, after - copied);
            out += QLatin1String(" = ") + quotedWord;
            copied = after;
        } else {
            const qsizetype from = pair.value.begin - (pair.value.quoted ? 1 : 0);
            const qsizetype to = pair.value.end + (pair.value.quoted ? 1 : 0);
            out += text.mid(copied, from - copied);
            out += quotedWord;
            copied = to;
        }
    }
    out += text.mid(copied);
    return out;
}

}  // namespace StringsLayout

OptString unescapedTableWord(const QString &escaped)
{
    // Most words hold nothing to resolve.
    if (!escaped.contains(u'\\') && !escaped.contains(u'"')) return escaped;
    const auto map = StringsTable::parse(QString(u'"' + escaped + QLatin1String("\";")));
    if (!map || map->size() != 1) return std::nullopt;
    return map->at(0).first.toString();
}
