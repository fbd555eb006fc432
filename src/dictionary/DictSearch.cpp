#include "DictSearch.h"

#include <QSet>
#include <algorithm>
#include <array>
#include <optional>
#include <vector>

namespace {

// Latin-1 letters to their folded base letters ("É" -> "e", "ß" -> "ss"), built once from the
// same normaliser the slow path uses, so both paths agree.
const std::array<QString, 256> &latin1Folds()
{
    static const std::array<QString, 256> table = [] {
        std::array<QString, 256> t;
        for (int c = 0; c < 256; ++c) {
            const QString decomposed = QString(QChar(c)).normalized(QString::NormalizationForm_D);
            QString kept;
            for (QChar d : decomposed)
                if (d.category() != QChar::Mark_NonSpacing) kept.append(d);
            t[c] = kept.toCaseFolded();
        }
        t[0xDF] = QStringLiteral("ss");  // full case folding, as a reader of German expects
        return t;
    }();
    return table;
}

QString sharpSFolded(QString text)
{
    return text.replace(QChar(0xDF), QLatin1String("ss"));
}


bool isLatin1(QStringView text)
{
    return std::all_of(text.begin(), text.end(), [](QChar c) { return c.unicode() < 256; });
}

}  // namespace

namespace DictSearch {

QString fold(QStringView text)
{
    if (isLatin1(text)) {
        const auto &table = latin1Folds();
        QString out;
        out.reserve(text.size());
        for (QChar c : text) {
            const ushort u = c.unicode();
            // Plain ASCII letters and digits fold to themselves or their lower case.
            if (u < 128) out.append(QChar(u >= 'A' && u <= 'Z' ? u + 32 : u));
            else out.append(table[u]);
        }
        return out;
    }
    const QString decomposed = text.toString().normalized(QString::NormalizationForm_D);
    QString kept;
    kept.reserve(decomposed.size());
    for (QChar d : decomposed)
        if (d.category() != QChar::Mark_NonSpacing) kept.append(d);
    return sharpSFolded(kept.toCaseFolded());
}

DictRows narrow(const DictRows &all, const DictRows &shown, const QString &shownText, const QString &text)
{
    // Typing one more letter only ever removes rows: look again at the rows shown.
    if (!shownText.isEmpty() && !text.isEmpty() && fold(text).contains(fold(shownText))) return filter(shown, text);
    return filter(all, text);
}

DictRows filter(const DictRows &rows, const QString &text)
{
    if (text.isEmpty()) return rows;
    const QString needle = fold(text);
    DictRows shown;
    if (needle.contains(QChar(1))) {
        // The separator itself is looked for: each word on its own.
        for (const DictEntryPtr &row : rows) {
            const QStringView all(row->foldedText());
            if (row->foldedKey().contains(needle) || all.mid(row->foldedKey().size() + 1).contains(needle)) shown.append(row);
        }
        return shown;
    }
    for (const DictEntryPtr &row : rows)
        if (row->foldedText().contains(needle)) shown.append(row);
    return shown;
}

QStringList valuesStartFromString(const DictRows &rows, const QString &prefix)
{
    QStringList values;
    for (const DictEntryPtr &row : rows) {
        const OptString &v = row->value();
        if (v && v->size() > prefix.size() && v->startsWith(prefix)) values.append(*v);
    }
    return values;
}

namespace {

// Edit distance of a and b, or more than `bound` as soon as it cannot be within it: only the
// diagonal band of width 2*bound+1 is computed.
int boundedDistance(QStringView a, QStringView b, int bound)
{
    const int n = int(a.size());
    const int m = int(b.size());
    if (std::abs(n - m) > bound) return bound + 1;
    constexpr int far = 1 << 20;
    thread_local std::vector<int> previous, current;
    previous.assign(m + 1, far);
    current.assign(m + 1, far);
    for (int j = 0; j <= std::min(m, bound); ++j) previous[j] = j;
    for (int i = 1; i <= n; ++i) {
        const int from = std::max(1, i - bound);
        const int to = std::min(m, i + bound);
        std::fill(current.begin(), current.end(), far);
        if (i <= bound) current[0] = i;
        int best = current[0];
        for (int j = from; j <= to; ++j) {
            const int substitution = previous[j - 1] + (a[i - 1] == b[j - 1] ? 0 : 1);
            current[j] = std::min({substitution, previous[j] + 1, current[j - 1] + 1});
            best = std::min(best, current[j]);
        }
        if (best > bound) return bound + 1;
        std::swap(previous, current);
    }
    return previous[m];
}

// Myers' bit-parallel edit distance (in Hyyrö's form for whole words): one pass over `text` with
// the pattern's columns as the bits of one word, so a row costs a few operations per character
// instead of a table. The pattern holds at most 64 units.
class BitPattern {
public:
    explicit BitPattern(QStringView pattern) : m_size(int(pattern.size()))
    {
        m_latin1.fill(0);
        for (int i = 0; i < m_size; ++i) {
            const char16_t c = pattern[i].unicode();
            if (c < 256) {
                m_latin1[c] |= quint64(1) << i;
                continue;
            }
            auto it = std::find_if(m_other.begin(), m_other.end(), [c](const auto &p) { return p.first == c; });
            if (it == m_other.end()) m_other.push_back({c, quint64(1) << i});
            else it->second |= quint64(1) << i;
        }
    }
    int distance(QStringView text) const
    {
        const quint64 high = quint64(1) << (m_size - 1);
        quint64 pv = ~quint64(0);
        quint64 mv = 0;
        int score = m_size;
        for (QChar ch : text) {
            const quint64 eq = mask(ch.unicode());
            const quint64 xv = eq | mv;
            const quint64 xh = (((eq & pv) + pv) ^ pv) | eq;
            quint64 ph = mv | ~(xh | pv);
            quint64 mh = pv & xh;
            if (ph & high) ++score;
            else if (mh & high) --score;
            ph = (ph << 1) | 1;  // the first row of the table counts up: whole words, not a search
            mh <<= 1;
            pv = mh | ~(xv | ph);
            mv = ph & xv;
        }
        return score;
    }

private:
    quint64 mask(char16_t c) const
    {
        if (c < 256) return m_latin1[c];
        for (const auto &p : m_other)
            if (p.first == c) return p.second;
        return 0;
    }
    int m_size;
    std::array<quint64, 256> m_latin1;
    std::vector<std::pair<char16_t, quint64>> m_other;
};

}  // namespace

int similarity(QStringView a, QStringView b)
{
    const int longer = int(std::max(a.size(), b.size()));
    if (longer == 0) return 100;
    const int d = boundedDistance(a, b, longer);
    return (100 * (longer - d)) / longer;
}

QList<FuzzyMatch> fuzzyMatches(const DictRows &rows, const QString &baseWord, int limit, int minimumPercent)
{
    QList<FuzzyMatch> found;
    if (baseWord.isEmpty() || limit <= 0) return found;
    const QString word = fold(baseWord);
    const int n = int(word.size());
    std::optional<BitPattern> pattern;
    if (n <= 64) pattern.emplace(word);
    for (const DictEntryPtr &row : rows) {
        if (!row->key() || !row->value()) continue;
        const QStringView key = row->foldedKey();
        const int longer = int(std::max<qsizetype>(n, key.size()));
        if (longer == 0) continue;
        // The most edits that still reach the minimum: a cheap length test rejects most rows.
        const int bound = (longer * (100 - minimumPercent)) / 100;
        if (std::abs(int(key.size()) - n) > bound) continue;
        const int d = key == word ? 0 : pattern ? pattern->distance(key) : boundedDistance(word, key, bound);
        if (d > bound) continue;
        const int percent = (100 * (longer - d)) / longer;
        if (percent < minimumPercent) continue;
        found.append({row, percent});
    }
    std::stable_sort(found.begin(), found.end(), [](const FuzzyMatch &a, const FuzzyMatch &b) { return a.percent > b.percent; });
    // The same pair twice (a browser keeps rows apart that a file would merge) shows once.
    QList<FuzzyMatch> best;
    QSet<QPair<QString, QString>> seen;
    for (const FuzzyMatch &m : std::as_const(found)) {
        if (best.size() >= limit) break;
        const QPair<QString, QString> pair{*m.row->key(), *m.row->value()};
        if (seen.contains(pair)) continue;
        seen.insert(pair);
        best.append(m);
    }
    return best;
}

}  // namespace DictSearch
