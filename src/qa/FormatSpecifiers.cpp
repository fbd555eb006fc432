#include "FormatSpecifiers.h"

#include <QMap>
#include <QStringList>
#include <QVarLengthArray>

#include <algorithm>

namespace Qa {
namespace {

bool isDigit(QChar c) { return c >= u'0' && c <= u'9'; }
bool isNameChar(QChar c) { return c.isLetterOrNumber() || c == u'_' || c == u'-' || c == u'.'; }

enum class Length { None, Short, Long, LongDouble };

// The argument kind a conversion reads. Signed and unsigned integers are one kind: a translator
// who writes %u for %d prints the same number for every count an interface shows.
// The kinds' names, made once: every placeholder found carries one.
struct Kinds {
    const QString object = QStringLiteral("object"), integer = QStringLiteral("integer"),
                  longInteger = QStringLiteral("long integer"), character = QStringLiteral("char"),
                  unichar = QStringLiteral("unichar"), cString = QStringLiteral("C string"),
                  unicharString = QStringLiteral("unichar string"), real = QStringLiteral("double"),
                  longReal = QStringLiteral("long double"), pointer = QStringLiteral("pointer"),
                  count = QStringLiteral("count"), none;
};
const Kinds &kinds()
{
    static const Kinds k;
    return k;
}

const QString &argumentType(QChar conversion, Length length)
{
    const Kinds &k = kinds();
    const bool isLong = length == Length::Long;
    switch (conversion.unicode()) {
    case u'@': return k.object;
    case u'd': case u'i': case u'u': case u'x': case u'X': case u'o':
        return isLong ? k.longInteger : k.integer;
    case u'D': case u'U': case u'O': return k.longInteger;
    case u'c': return isLong ? k.unichar : k.character;
    case u'C': return k.unichar;
    case u's': return isLong ? k.unicharString : k.cString;
    case u'S': return k.unicharString;
    case u'f': case u'F': case u'e': case u'E': case u'g': case u'G': case u'a': case u'A':
        return length == Length::LongDouble ? k.longReal : k.real;
    case u'p': return k.pointer;
    case u'n': return k.count;
    default: return k.none;
    }
}

// A placeholder as found: views into the text, its kind one of kinds(). Checking a document
// parses every text holding a "%": nothing here allocates while a text has few placeholders.
struct Placeholder {
    QStringView text;
    int position;
    const QString *type;
    QStringView name;
    bool plain;
};
using Placeholders = QVarLengthArray<Placeholder, 8>;

// A named form at t[at] == '%': "%#@name@" or "%{name}@"; its length, or 0.
qsizetype namedAt(QStringView t, qsizetype at, QStringView *name)
{
    const qsizetype n = t.size();
    qsizetype i = at + 1;
    QChar close;
    if (i + 1 < n && t[i] == u'#' && t[i + 1] == u'@') {
        i += 2;
        close = u'@';
    } else if (i < n && t[i] == u'{') {
        i += 1;
        close = u'}';
    } else {
        return 0;
    }
    const qsizetype start = i;
    while (i < n && i - start < 128 && isNameChar(t[i])) ++i;
    if (i == start || i >= n || t[i] != close) return 0;
    *name = t.mid(start, i - start);
    if (close == u'}') {
        if (i + 1 >= n || t[i + 1] != u'@') return 0;
        ++i;
    }
    return i + 1 - at;
}

// Digits from t[*i]; their value (capped), or -1 when there are none.
int digitsAt(QStringView t, qsizetype *i)
{
    int value = -1;
    while (*i < t.size() && isDigit(t[*i])) {
        value = qMin((value < 0 ? 0 : value) * 10 + (t[*i].unicode() - u'0'), 100000);
        ++*i;
    }
    return value;
}

// A "*" width or precision: an integer argument of its own ("*" or "*3$").
void starAt(QStringView t, qsizetype *i, Placeholders &stars)
{
    const qsizetype start = *i;
    ++*i;
    qsizetype j = *i;
    const int position = digitsAt(t, &j);
    const bool positioned = position > 0 && j < t.size() && t[j] == u'$';
    if (positioned) *i = j + 1;
    stars.append({t.mid(start, *i - start), positioned ? position : 0, &kinds().integer, {}, false});
}

// One placeholder at t[at] == '%' appended to `out`; its length, or 0 when the percent sign
// begins none.
qsizetype specifierAt(QStringView t, qsizetype at, FormatMode mode, Placeholders &out)
{
    QStringView name;
    if (const qsizetype named = namedAt(t, at, &name)) {
        out.append({t.mid(at, named), 0, &kinds().object, name, true});
        return named;
    }
    const qsizetype n = t.size();
    qsizetype i = at + 1;
    int position = 0;
    qsizetype j = i;
    if (const int digits = digitsAt(t, &j); digits > 0 && j < n && t[j] == u'$' && t[i] != u'0') {
        position = digits;
        i = j + 1;
    }
    bool plain = true;
    while (i < n && (t[i] == u'-' || t[i] == u'+' || t[i] == u'#' || t[i] == u'0' || t[i] == u'\''
                     || (mode == FormatMode::Format && t[i] == u' '))) {
        ++i;
        plain = false;
    }
    Placeholders stars;
    if (i < n && t[i] == u'*') {
        starAt(t, &i, stars);
        plain = false;
    } else if (digitsAt(t, &i) >= 0) {
        plain = false;
    }
    if (i < n && t[i] == u'.') {
        ++i;
        plain = false;
        if (i < n && t[i] == u'*') starAt(t, &i, stars);
        else digitsAt(t, &i);
    }
    Length length = Length::None;
    if (i < n && t[i] == u'h') {
        length = Length::Short;
        i += (i + 1 < n && t[i + 1] == u'h') ? 2 : 1;
    } else if (i < n && t[i] == u'l') {
        length = Length::Long;
        i += (i + 1 < n && t[i + 1] == u'l') ? 2 : 1;
    } else if (i < n && (t[i] == u'q' || t[i] == u'z' || t[i] == u't' || t[i] == u'j')) {
        length = Length::Long;
        ++i;
    } else if (i < n && t[i] == u'L') {
        length = Length::LongDouble;
        ++i;
    }
    if (i >= n) return 0;
    const QString &type = argumentType(t[i], length);
    if (type.isEmpty()) return 0;
    ++i;
    out.append(stars.constData(), stars.size());
    out.append({t.mid(at, i - at), position, &type, {}, plain});
    return i - at;
}

Placeholders collect(QStringView text, FormatMode mode)
{
    Placeholders specs;
    qsizetype i = text.indexOf(u'%');
    while (i >= 0 && i < text.size()) {
        if (i + 1 < text.size() && text[i + 1] == u'%') {
            i += 2;
        } else {
            const qsizetype length = specifierAt(text, i, mode, specs);
            i += length > 0 ? length : 1;
        }
        i = text.indexOf(u'%', i);
    }
    return specs;
}

QString listed(const Placeholders &specs)
{
    QStringList texts;
    for (const Placeholder &s : specs) texts.append(s.text.toString());
    return texts.join(QLatin1String(", "));
}

QString counted(qsizetype n)
{
    return n == 1 ? QStringLiteral("1 placeholder") : QStringLiteral("%1 placeholders").arg(n);
}

QString described(const Placeholder &s)
{
    return QStringLiteral("%1 (%2)").arg(s.text.toString(), *s.type);
}

// Arguments by position: plain ones count from 1 in order. A position used twice with two
// kinds gives its first; `conflict` names the second.
QMap<int, Placeholder> byPosition(const Placeholders &args, QString *conflict)
{
    QMap<int, Placeholder> map;
    int next = 1;
    for (const Placeholder &s : args) {
        const int position = s.position > 0 ? s.position : next++;
        const auto found = map.constFind(position);
        if (found == map.cend()) map.insert(position, s);
        else if (found->type != s.type && conflict && conflict->isEmpty())
            *conflict = QStringLiteral("The translation uses argument %1 twice, as %2 and as %3: one argument has one kind.")
                            .arg(QString::number(position), described(*found), described(s));
    }
    return map;
}

QString compareNamed(const Placeholders &base, const Placeholders &translation)
{
    auto anyNamed = [](const Placeholders &specs) {
        return std::any_of(specs.begin(), specs.end(), [](const Placeholder &s) { return !s.name.isEmpty(); });
    };
    if (!anyNamed(base) && !anyNamed(translation)) return {};
    auto names = [](const Placeholders &specs) {
        QMap<QStringView, QStringView> map;  // name -> text as written
        for (const Placeholder &s : specs)
            if (!s.name.isEmpty()) map.insert(s.name, s.text);
        return map;
    };
    const auto b = names(base), t = names(translation);
    for (auto it = b.cbegin(); it != b.cend(); ++it)
        if (!t.contains(it.key()))
            return QStringLiteral("The translation lacks %1, which the base has: the value it stands for would be lost.")
                .arg(it.value().toString());
    for (auto it = t.cbegin(); it != t.cend(); ++it)
        if (!b.contains(it.key()))
            return QStringLiteral("The translation has %1, which the base does not have: there is no value of that name.")
                .arg(it.value().toString());
    return {};
}

QString compareArguments(const Placeholders &base, const Placeholders &translation)
{
    bool numbered = false, unnumbered = false;
    for (const Placeholder &s : translation) (s.position > 0 ? numbered : unnumbered) = true;
    if (numbered && unnumbered) {
        Placeholders withNumber, without;
        for (const Placeholder &s : translation) (s.position > 0 ? withNumber : without).append(s);
        return QStringLiteral("The translation mixes numbered placeholders (%1) with unnumbered ones (%2): "
                              "number all of them or none.").arg(listed(withNumber), listed(without));
    }
    bool basePositions = false;
    for (const Placeholder &s : base) basePositions |= s.position > 0;
    if (!numbered && !basePositions) {
        if (base.size() != translation.size())
            return QStringLiteral("The base has %1 (%2) and the translation %3%4: every placeholder of the base must "
                                  "appear in the translation, and no other.")
                .arg(counted(base.size()), listed(base), counted(translation.size()),
                     translation.isEmpty() ? QString() : QStringLiteral(" (%1)").arg(listed(translation)));
        for (qsizetype i = 0; i < base.size(); ++i)
            if (base[i].type != translation[i].type)
                return QStringLiteral("Placeholder %1 is %2 in the base but %3 in the translation: the kinds must agree, "
                                      "in the same order (to reorder, number them: %4).")
                    .arg(QString::number(i + 1), described(base[i]), described(translation[i]),
                         QStringLiteral("%1$@ %2$d"));
        return {};
    }
    QString conflict;
    const auto b = byPosition(base, nullptr);
    const auto t = byPosition(translation, &conflict);
    if (!conflict.isEmpty()) return conflict;
    for (auto it = b.cbegin(); it != b.cend(); ++it) {
        const auto other = t.constFind(it.key());
        if (other == t.cend())
            return QStringLiteral("The translation lacks argument %1, which the base shows as %2.")
                .arg(QString::number(it.key()), it->text.toString());
        if (other->type != it->type)
            return QStringLiteral("Argument %1 is %2 in the base but %3 in the translation: the kinds must agree.")
                .arg(QString::number(it.key()), described(*it), described(*other));
    }
    for (auto it = t.cbegin(); it != t.cend(); ++it)
        if (!b.contains(it.key()))
            return QStringLiteral("The translation has %1, but the base has no argument %2.")
                .arg(it->text.toString(), QString::number(it.key()));
    return {};
}

}  // namespace

QList<Specifier> formatSpecifiers(QStringView text, FormatMode mode)
{
    QList<Specifier> list;
    for (const Placeholder &s : collect(text, mode)) list.append({s.text.toString(), s.position, *s.type, s.name.toString(), s.plain});
    return list;
}

QString compareFormatSpecifiers(QStringView base, QStringView translation)
{
    const bool baseHasPercent = base.contains(u'%');
    const bool translationHasPercent = translation.contains(u'%');
    if (!baseHasPercent && !translationHasPercent) return {};
    if (!baseHasPercent || collect(base, FormatMode::Text).isEmpty()) {
        // No format: only what is unmistakably a placeholder counts (rule 2).
        Placeholders found;
        for (const Placeholder &s : collect(translation, FormatMode::Text))
            if (s.plain) found.append(s);
        if (found.isEmpty()) return {};
        return QStringLiteral("The translation has %1 (%2), but the base has none: the application has no value to put "
                              "there.")
            .arg(counted(found.size()), listed(found));
    }
    const Placeholders b = collect(base, FormatMode::Format);
    const Placeholders t = collect(translation, FormatMode::Format);
    Placeholders bArgs, tArgs;
    for (const Placeholder &s : b)
        if (s.name.isEmpty()) bArgs.append(s);
    for (const Placeholder &s : t)
        if (s.name.isEmpty()) tArgs.append(s);
    const QString named = compareNamed(b, t);
    return named.isEmpty() ? compareArguments(bArgs, tArgs) : named;
}

}  // namespace Qa
