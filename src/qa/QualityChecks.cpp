#include "QualityChecks.h"

#include "FormatSpecifiers.h"

#include <algorithm>

namespace Qa {
namespace {

const QString FormatCheck = QStringLiteral("format-specifiers");
const QString LineBreakCheck = QStringLiteral("line-breaks");
const QString WhitespaceCheck = QStringLiteral("whitespace");
const QString PunctuationCheck = QStringLiteral("ending-punctuation");
const QString EmptyCheck = QStringLiteral("empty-translation");
const QString SameCheck = QStringLiteral("same-as-base");

qsizetype lineBreaks(QStringView t)
{
    qsizetype n = 0;
    for (qsizetype i = 0; i < t.size(); ++i) {
        const char16_t c = t[i].unicode();
        if (c == u'\n' || c == 0x2028 || c == 0x2029 || (c == u'\r' && (i + 1 == t.size() || t[i + 1] != u'\n'))) ++n;
    }
    return n;
}

// White space as it matters at an end of a text: every kind of space is a space.
QString normalizedRun(QStringView run)
{
    QString out;
    for (QChar c : run) out.append(c.category() == QChar::Separator_Space ? QChar(u' ') : c);
    return out;
}

QString describedRun(const QString &run)
{
    if (run.isEmpty()) return QStringLiteral("none");
    if (run.count(u' ') == run.size()) return run.size() == 1 ? QStringLiteral("a space") : QStringLiteral("%1 spaces").arg(run.size());
    if (run.count(u'\t') == run.size()) return run.size() == 1 ? QStringLiteral("a tab") : QStringLiteral("%1 tabs").arg(run.size());
    if (run.count(u'\n') == run.size())
        return run.size() == 1 ? QStringLiteral("a line break") : QStringLiteral("%1 line breaks").arg(run.size());
    return QStringLiteral("%1 white-space characters").arg(run.size());
}

// Full-width punctuation carries its own spacing: "名前：" needs no space after it.
bool isFullWidthPunctuation(QChar c)
{
    const char16_t u = c.unicode();
    return (u >= 0x3000 && u <= 0x303F) || (u >= 0xFF01 && u <= 0xFF0F) || (u >= 0xFF1A && u <= 0xFF20)
        || (u >= 0xFF3B && u <= 0xFF40) || (u >= 0xFF5B && u <= 0xFF65);
}

// `breaksCounted`: the line-break check has spoken, so line breaks at the ends are not told again.
QString whitespaceMessage(QStringView base, QStringView translation, bool breaksCounted)
{
    auto leadingLength = [](QStringView t) {
        qsizetype i = 0;
        while (i < t.size() && t[i].isSpace()) ++i;
        return i;
    };
    auto trailingLength = [](QStringView t) {
        qsizetype i = t.size();
        while (i > 0 && t[i - 1].isSpace()) --i;
        return t.size() - i;
    };
    auto run = [breaksCounted](QStringView r) {
        QString n = normalizedRun(r);
        if (breaksCounted) n.remove(u'\n');
        return n;
    };
    // A space of the base beside full-width punctuation of the translation is in that mark.
    auto same = [](const QString &b, const QString &t, QChar next) {
        return b == t || (t.isEmpty() && b.count(u' ') == b.size() && isFullWidthPunctuation(next));
    };
    QStringList parts;
    const qsizetype bl = leadingLength(base), tl = leadingLength(translation);
    if (const QString b = run(base.left(bl)), t = run(translation.left(tl)); !same(b, t, translation.at(tl < translation.size() ? tl : 0)))
        parts.append(QStringLiteral("The base starts with %1, the translation with %2.").arg(describedRun(b), describedRun(t)));
    const qsizetype bt = trailingLength(base), tt = trailingLength(translation);
    const QChar last = translation.size() > tt ? translation.at(translation.size() - tt - 1) : QChar();
    if (const QString b = run(base.right(bt)), t = run(translation.right(tt)); !same(b, t, last))
        parts.append(QStringLiteral("The base ends with %1, the translation with %2.").arg(describedRun(b), describedRun(t)));
    return parts.join(u' ');
}

enum class Ending { None, Period, Ellipsis, Colon, Question, Exclamation, Semicolon };

bool isClosing(char16_t c)
{
    switch (c) {
    case u'"': case u'\'': case u')': case u']': case u'}': case 0x00BB: case 0x203A: case 0x2019: case 0x201D:
    case 0xFF09: case 0xFF3D: case 0x300D: case 0x300F: case 0x3011: case 0x3009: case 0x300B: case 0xFF02:
        return true;
    default:
        return false;
    }
}

// The mark a text ends with, looking through white space and closing quotes and brackets;
// `mark` gets the mark as written.
Ending endingOf(QStringView t, QStringView *mark)
{
    qsizetype end = t.size();
    while (end > 0 && (t[end - 1].isSpace() || isClosing(t[end - 1].unicode()))) --end;
    if (end == 0) return Ending::None;
    const char16_t c = t[end - 1].unicode();
    *mark = t.mid(end - 1, 1);
    switch (c) {
    case u'.': case 0x3002: case 0xFF0E: case 0xFF61: {
        qsizetype start = end - 1;
        while (start > 0 && t[start - 1] == t[end - 1]) --start;
        if (end - start >= 3) {
            *mark = t.mid(start, end - start);
            return Ending::Ellipsis;
        }
        return Ending::Period;
    }
    case 0x0964: case 0x0965: case 0x06D4: case 0x0589: case 0x1362: case 0x104B:
        return Ending::Period;
    case 0x2026: case 0x22EF: return Ending::Ellipsis;
    case u':': case 0xFF1A: case 0xFE13: case 0xFE55: return Ending::Colon;
    case u'?': case 0xFF1F: case 0x061F: case 0x2E2E: case 0x1367: case 0xFE56: return Ending::Question;
    case u'!': case 0xFF01: case 0xFE57: case 0x055C: return Ending::Exclamation;
    case u';': case 0x037E: case 0x061B: case 0xFF1B: return Ending::Semicolon;
    default: return Ending::None;
    }
}

// A label of a few words ending in a letter and a full stop is abbreviated ("мин.", "Geschw.",
// "Vitesse de télévers."): its full stop is no sentence end.
bool isAbbreviation(QStringView t)
{
    const QStringView trimmed = t.trimmed();
    if (trimmed.size() < 2 || trimmed.back() != u'.' || !trimmed[trimmed.size() - 2].isLetter()) return false;
    return trimmed.count(u' ') < 3;
}

QString punctuationMessage(QStringView base, QStringView translation)
{
    QStringView baseMark, translationMark;
    const Ending b = endingOf(base, &baseMark);
    const Ending t = endingOf(translation, &translationMark);
    const bool baseCounts = b != Ending::None && b != Ending::Semicolon;
    const bool translationCounts = t != Ending::None && t != Ending::Semicolon;
    if (b == t) return {};
    // Greek asks with a semicolon.
    if (b == Ending::Question && t == Ending::Semicolon) return {};
    if (baseCounts && t == Ending::None)
        return QStringLiteral("The base ends with \u201C%1\u201D, the translation with no such mark.").arg(baseMark);
    if (baseCounts)
        return QStringLiteral("The base ends with \u201C%1\u201D, the translation with \u201C%2\u201D.").arg(baseMark, translationMark);
    if (translationCounts && !(t == Ending::Period && isAbbreviation(translation)))
        return QStringLiteral("The translation ends with \u201C%1\u201D, the base with no such mark.").arg(translationMark);
    return {};
}

int hexValue(QChar c)
{
    const char16_t u = c.unicode();
    if (u >= u'0' && u <= u'9') return u - u'0';
    if (u >= u'a' && u <= u'f') return u - u'a' + 10;
    if (u >= u'A' && u <= u'F') return u - u'A' + 10;
    return -1;
}

bool hasLetter(QStringView t)
{
    for (QChar c : t)
        if (c.isLetter()) return true;
    return false;
}

}  // namespace

QStringList checkIdentifiers()
{
    return {FormatCheck, LineBreakCheck, WhitespaceCheck, PunctuationCheck, EmptyCheck, SameCheck};
}

QString severityName(Severity severity)
{
    switch (severity) {
    case Severity::Error: return QStringLiteral("error");
    case Severity::Warning: return QStringLiteral("warning");
    default: return QString();
    }
}

Severity worstSeverity(const QList<Problem> &problems)
{
    Severity worst = Severity::None;
    for (const Problem &p : problems) worst = std::max(worst, p.severity);
    return worst;
}

QList<Problem> checkTranslation(QStringView base, QStringView translation, bool checked)
{
    QList<Problem> problems;
    if (!translation.isEmpty()) {
        if (const QString m = compareFormatSpecifiers(base, translation); !m.isEmpty())
            problems.append({FormatCheck, Severity::Error, m});
    }
    if (base.isEmpty() || translation.isEmpty()) {
        if (checked && translation.isEmpty() && !base.isEmpty())
            problems.append({EmptyCheck, Severity::Warning, QStringLiteral("The entry is checked, but its translation is empty.")});
        return problems;
    }
    const qsizetype baseBreaks = lineBreaks(base), translationBreaks = lineBreaks(translation);
    if (const qsizetype b = baseBreaks, t = translationBreaks; b != t) {
        auto breaks = [](qsizetype n) {
            return n == 0 ? QStringLiteral("none") : n == 1 ? QStringLiteral("1 line break") : QStringLiteral("%1 line breaks").arg(n);
        };
        problems.append({LineBreakCheck, Severity::Warning,
                         QStringLiteral("The base has %1, the translation %2.").arg(breaks(b), breaks(t))});
    }
    if (const QString m = whitespaceMessage(base, translation, baseBreaks != translationBreaks); !m.isEmpty())
        problems.append({WhitespaceCheck, Severity::Warning, m});
    if (const QString m = punctuationMessage(base, translation); !m.isEmpty())
        problems.append({PunctuationCheck, Severity::Warning, m});
    if (checked && translation == base && hasLetter(base))
        problems.append({SameCheck, Severity::Warning,
                         QStringLiteral("The entry is checked, but its translation is the same as the base text. "
                                        "Leave it so only if it needs no translation (a name, \u201COK\u201D).")});
    return problems;
}

QString unescapedWord(const QString &escaped)
{
    if (!escaped.contains(u'\\')) return escaped;
    QString out;
    out.reserve(escaped.size());
    const qsizetype n = escaped.size();
    for (qsizetype i = 0; i < n; ++i) {
        const QChar c = escaped[i];
        if (c != u'\\' || i + 1 == n) {
            out.append(c);
            continue;
        }
        const QChar e = escaped[++i];
        switch (e.unicode()) {
        case u'a': out.append(QChar(7)); break;
        case u'b': out.append(QChar(8)); break;
        case u'f': out.append(QChar(12)); break;
        case u'n': out.append(u'\n'); break;
        case u'r': out.append(u'\r'); break;
        case u't': out.append(u'\t'); break;
        case u'v': out.append(QChar(11)); break;
        case u'U': case u'u': {
            int code = 0, digits = 0;
            while (digits < 4 && i + 1 < n && hexValue(escaped[i + 1]) >= 0) {
                code = code * 16 + hexValue(escaped[++i]);
                ++digits;
            }
            out.append(digits ? QChar(char16_t(code)) : e);
            break;
        }
        default:
            if (e >= u'0' && e <= u'7') {
                // Up to three octal digits: one byte, read as Latin-1.
                int code = e.unicode() - u'0', digits = 1;
                while (digits < 3 && i + 1 < n && escaped[i + 1] >= u'0' && escaped[i + 1] <= u'7')
                    code = code * 8 + (escaped[++i].unicode() - u'0'), ++digits;
                out.append(QChar(char16_t(code & 0xFF)));
            } else {
                out.append(e);  // \" \\ \' and anything else stand for themselves
            }
        }
    }
    return out;
}

namespace {

// An entry's words cut out of its text by the entry's own rules (LocEntry::baseWord and
// localizedWord), without copying: checking every entry of a document must take milliseconds.
// Those rules search case-insensitively; their delimiters hold no letters, except the
// property's name before an interface entry's base word, so exact searches find the same places.
// The delimiters are a few characters long: finding their first character (a vectorised scan)
// and comparing the rest beats a general substring search several times.
qsizetype find(QStringView t, QStringView what, qsizetype from = 0)
{
    const QChar first = what.front();
    const qsizetype n = what.size();
    for (qsizetype at = t.indexOf(first, from); at >= 0 && at + n <= t.size(); at = t.indexOf(first, at + 1))
        if (std::equal(what.utf16() + 1, what.utf16() + n, t.utf16() + at + 1)) return at;
    return -1;
}

QStringView between(QStringView t, QStringView open, QStringView close)
{
    const qsizetype at = find(t, open);
    if (at < 0) return {};
    const qsizetype start = at + open.size();
    if (start >= t.size()) return {};
    const qsizetype end = find(t, close, start);
    if (end < 0 || end == start) return {};
    return t.mid(start, end - start);
}

QStringView localizedWordOf(QStringView t)
{
    const qsizetype lineFeed = t.indexOf(u'\n');
    if (lineFeed < 0) return between(t, u" = \"", u"\";");
    if (lineFeed + 1 >= t.size()) return {};
    return between(t.mid(lineFeed + 1), u" = \"", u"\";");
}

QStringView baseWordOf(QStringView t)
{
    static const QStringView pairOpen = u" = \"";
    if (find(t, u"; ObjectID = \"") >= 0) {
        const QStringView type = between(t, u"\"; ", pairOpen);
        if (type.isEmpty()) return {};
        // The first "<type> = \"", the type's letters in any case.
        for (qsizetype at = find(t, pairOpen); at >= 0; at = find(t, pairOpen, at + 1)) {
            const qsizetype from = at - type.size();
            if (from < 0) continue;
            const QStringView candidate = t.mid(from, type.size());
            if (candidate != type && candidate.compare(type, Qt::CaseInsensitive) != 0) continue;
            return between(t.mid(from), pairOpen, u"\";");
        }
        return {};
    }
    if (const QStringView w = between(t, u"\n\"", u"\" = "); !w.isEmpty()) return w;
    if (t.mid(t.indexOf(u'\n') + 1).startsWith(u"\"\" = ")) return {};
    if (const QStringView w = between(t, u"\"", u"\" = "); !w.isEmpty()) return w;
    const qsizetype at = find(t, u" = ");
    return at > 0 ? t.left(at) : QStringView();
}

// A word as the user sees it, kept in `storage` only when unescaping changed it.
QStringView unescaped(QStringView word, QString &storage)
{
    if (!word.contains(u'\\')) return word;
    storage = unescapedWord(word.toString());
    return storage;
}

}  // namespace

EntryWords entryWords(const LocEntry &entry)
{
    return {baseWordOf(entry.entry()).toString(), localizedWordOf(entry.entry()).toString()};
}

QList<Problem> checkEntry(const LocEntry &entry)
{
    QString baseStorage, translationStorage;
    const QStringView base = unescaped(baseWordOf(entry.entry()), baseStorage);
    const QStringView translation = unescaped(localizedWordOf(entry.entry()), translationStorage);
    return checkTranslation(base, translation, entry.isChecked());
}

QList<Problem> checkTypedWord(const LocEntry &entry, const QString &typed, bool checked)
{
    QString baseStorage;
    return checkTranslation(unescaped(baseWordOf(entry.entry()), baseStorage), unescapedWord(typed), checked);
}

}  // namespace Qa
