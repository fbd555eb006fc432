#include "StringUtility.h"

#include "TextSearch.h"

#include <QFile>
#include <QStringDecoder>

#include <algorithm>

namespace StringUtility {

namespace {
// QString::indexOf ignoring case, as the cutting functions compare. Their delimiters are mostly
// quotes, spaces and signs: no character but itself folds to one of those, so for such a
// delimiter ignoring case changes nothing and the much faster exact search gives the same place.
qsizetype indexOfIgnoringCase(QStringView text, const QString &delimiter, qsizetype from = 0)
{
    const bool caseless = std::all_of(delimiter.cbegin(), delimiter.cend(), [](QChar c) {
        return c.unicode() < 0x80 && !((c >= u'a' && c <= u'z') || (c >= u'A' && c <= u'Z'));
    });
    if (!caseless) return text.indexOf(delimiter, from, Qt::CaseInsensitive);
    if (from < 0 || from > text.size()) return -1;
    return TextSearch::find(reinterpret_cast<const char16_t *>(text.data()), text.size(),
                            std::u16string_view(reinterpret_cast<const char16_t *>(delimiter.constData()), size_t(delimiter.size())),
                            from);
}
}  // namespace

OptString substringFrom(const QString &text, const QString &open, const QString &close)
{
    const qsizetype at = indexOfIgnoringCase(text, open);
    if (at < 0) return std::nullopt;
    const qsizetype start = at + open.size();
    if (start >= text.size()) return std::nullopt;
    const qsizetype end = indexOfIgnoringCase(text, close, start);
    if (end < 0 || end == start) return std::nullopt;
    return text.mid(start, end - start);
}

OptString substringFrom(const QString &text, const QString &open, const QString &close, qsizetype start,
                        qsizetype length)
{
    if (start < 0 || length < 0 || start + length > text.size()) return std::nullopt;
    const qsizetype at = indexOfIgnoringCase(QStringView(text).mid(start, length), open);
    if (at < 0) return std::nullopt;
    const qsizetype from = start + at + open.size();
    const qsizetype end = indexOfIgnoringCase(text, close, from);
    if (end < 0 || end == from) return std::nullopt;
    return text.mid(from, end - from);
}

OptString substringFrom(const QString &text, const QString &delimiter)
{
    const qsizetype at = indexOfIgnoringCase(text, delimiter);
    if (at < 0) return std::nullopt;
    const qsizetype start = at + delimiter.size();
    if (start >= text.size()) return std::nullopt;
    return text.mid(start);
}

OptString substringTo(const QString &text, const QString &delimiter)
{
    const qsizetype at = indexOfIgnoringCase(text, delimiter);
    if (at <= 0) return std::nullopt;
    return text.left(at);
}

QString replaceStringFrom(const QString &text, const QString &target, const QString &replacement)
{
    if (target.isEmpty()) return text;
    // QString::replace scans left to right without overlap, which is the rule.
    QString result = text;
    return result.replace(target, replacement, Qt::CaseSensitive);
}

QString removeString(const QString &text, const QString &target)
{
    return replaceStringFrom(text, target, QString());
}

QString replaceReturnCode(const QString &text)
{
    return replaceStringFrom(replaceStringFrom(text, QStringLiteral("\r\n"), QStringLiteral("\n")),
                             QStringLiteral("\r"), QStringLiteral("\n"));
}

QString escapeForStringsFile(const QString &text)
{
    // Every target below holds a backslash or a quote: a text with neither is its own escape,
    // which spares most words five copies.
    if (!text.contains(u'\\') && !text.contains(u'"')) return text;
    // Order matters: unescaping quotes before escaping them makes the quoting idempotent.
    QString s = replaceStringFrom(text, QStringLiteral("\\\\"), QStringLiteral("\\"));
    s = replaceStringFrom(s, QStringLiteral("\\\""), QStringLiteral("\""));
    s = replaceStringFrom(s, QStringLiteral("\""), QStringLiteral("\\\""));
    s = replaceStringFrom(s, QStringLiteral("\\;"), QStringLiteral(";"));
    s = replaceStringFrom(s, QStringLiteral("\\\\n"), QStringLiteral("\n"));
    return s;
}

namespace {
inline char16_t fold(char16_t c)
{
    if (c < 128) return (c >= u'A' && c <= u'Z') ? char16_t(c + 32) : c;
    return char16_t(QChar::toCaseFolded(char32_t(c)));
}
}  // namespace

CaseInsensitiveMatcher::CaseInsensitiveMatcher(QStringView key)
{
    m_folded.reserve(key.size());
    for (QChar c : key) m_folded.push_back(fold(c.unicode()));
}

bool CaseInsensitiveMatcher::foundIn(QStringView text) const
{
    const qsizetype n = qsizetype(m_folded.size());
    if (n == 0) return true;
    if (n > text.size()) return false;
    const char16_t *t = text.utf16();
    const char16_t *k = m_folded.data();
    const qsizetype last = text.size() - n;
    for (qsizetype i = 0; i <= last; ++i) {
        if (fold(t[i]) != k[0]) continue;
        qsizetype j = 1;
        while (j < n && fold(t[i + j]) == k[j]) ++j;
        if (j == n) return true;
    }
    return false;
}

bool containsCaseInsensitive(QStringView text, QStringView key)
{
    return CaseInsensitiveMatcher(key).foundIn(text);
}

OptString stringFromUTF16DataFilePath(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) return std::nullopt;
    const QByteArray bytes = file.readAll();
    auto encoding = QStringConverter::Utf16LE;
    qsizetype skip = 0;
    if (bytes.startsWith("\xFE\xFF")) {
        encoding = QStringConverter::Utf16BE;
        skip = 2;
    } else if (bytes.startsWith("\xFF\xFE")) {
        skip = 2;
    }
    QStringDecoder decoder(encoding, QStringConverter::Flag::Stateless);
    QString text = decoder.decode(QByteArrayView(bytes).sliced(skip));
    if (decoder.hasError() || (bytes.size() - skip) % 2 != 0) return std::nullopt;
    return text;
}

}  // namespace StringUtility
