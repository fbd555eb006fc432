#pragma once
// Cutting text between delimiters, search-and-replace, line ends and the escaping of a word
// written into an entry. Every parse of entry text rests on these exact rules: which delimiter
// occurrence is taken, and when the result is absent (std::nullopt) rather than empty.

#include <QString>
#include <optional>
#include <string>

// A word that may be absent. Absent is not the empty text: it has length 0 and equals nothing.
using OptString = std::optional<QString>;

namespace StringUtility {

// Text strictly between the first `open` (case-insensitive) and the first `close` after it.
// Absent when either is missing or nothing lies between them.
OptString substringFrom(const QString &text, const QString &open, const QString &close);
// As above, `open` looked for inside [start, start+length) only; `close` in the whole rest.
OptString substringFrom(const QString &text, const QString &open, const QString &close, qsizetype start,
                        qsizetype length);
// Text after the first `delimiter`; absent when missing or nothing follows.
OptString substringFrom(const QString &text, const QString &delimiter);
// Text before the first `delimiter`; absent when missing or nothing precedes.
OptString substringTo(const QString &text, const QString &delimiter);

// Every exact, non-overlapping occurrence of `target` replaced; an empty target changes nothing.
QString replaceStringFrom(const QString &text, const QString &target, const QString &replacement);
QString removeString(const QString &text, const QString &target);
// "\r\n" and lone "\r" become "\n".
QString replaceReturnCode(const QString &text);
// Normalises a word for use between the quotes of a string-table value; idempotent on its own
// output as long as that holds no doubled backslash.
QString escapeForStringsFile(const QString &text);

// A file's bytes decoded as UTF-16 in the byte order of its byte-order mark; absent when the
// file cannot be read or decoded. Without a mark the bytes are taken as little-endian, the order
// of every machine that writes these files today.
OptString stringFromUTF16DataFilePath(const QString &path);

// Whether `text` contains `key`, letters compared by simple case folding (as
// Qt::CaseInsensitive does, unit by unit). Several times faster than QString::contains with
// Qt::CaseInsensitive, which matters when one search runs over every entry of a large file.
bool containsCaseInsensitive(QStringView text, QStringView key);
// The same search with the key folded once, for one key against many texts.
class CaseInsensitiveMatcher {
public:
    explicit CaseInsensitiveMatcher(QStringView key);
    bool foundIn(QStringView text) const;

private:
    std::u16string m_folded;
};

// Absent compares unequal to every word, to the empty text and to another absent word.
inline bool wordsEqual(const OptString &a, const OptString &b) { return a && b && *a == *b; }
inline qsizetype wordLength(const OptString &w) { return w ? w->size() : 0; }
inline QString wordOrEmpty(const OptString &w) { return w ? *w : QString(); }

}  // namespace StringUtility
