#pragma once
// Quality checks of a translation against its base text: the mistakes a translator makes without
// seeing them, found before the application ships. Each problem names its check, a severity and
// a message for the translator. The window shows them per entry, vocabrix-cli check gates builds.
//
// The checks (identifier: severity):
//  format-specifiers: error. The placeholders must agree (see FormatSpecifiers.h for what counts
//      as one and how "100%", "% of" and "50%-ig" are kept apart from placeholders).
//  line-breaks: warning. A different number of line breaks than the base.
//  whitespace: warning. Leading or trailing white space differs from the base's (no-break and
//      narrow no-break spaces count as spaces).
//  ending-punctuation: warning. The base ends in ":" "." "…" "..." "?" "!" and the translation
//      does not end in the same mark or its equivalent in another script (full-width forms, "。",
//      "؟", the Greek question mark ";", ...), or the translation ends in one and the base does
//      not. Closing quotes and brackets and the spaces before them are looked through, so French
//      « Ouvrir ? » ends in "?" as "Open?" does.
//  empty-translation: warning. A checked entry whose translation is empty.
//  same-as-base: warning. A checked entry whose translation is its base text, when that has a
//      letter: usually a forgotten translation, but names and "OK" are often meant so.
// Texts are checked as the application shows them: unescaped ("\n" a line break).

#include "LocEntry.h"

#include <QList>
#include <QString>

namespace Qa {

enum class Severity { None, Warning, Error };

struct Problem {
    QString check;  // identifier, e.g. "format-specifiers"
    Severity severity = Severity::None;
    QString message;
    bool operator==(const Problem &other) const = default;
};

// The checks' identifiers, in the order problems are reported.
QStringList checkIdentifiers();
QString severityName(Severity severity);  // "error", "warning", "" for none
Severity worstSeverity(const QList<Problem> &problems);

// `checked`: the translator has passed the entry (every pair of a shipped table is).
QList<Problem> checkTranslation(QStringView base, QStringView translation, bool checked);

// A word as it stands in an entry or a string table ("\n", "\"", "\\", "\t", "\U00E9", "\351"
// escapes, read as the string-table reader reads them) as the user sees it. Without a backslash
// the same text, not copied.
QString unescapedWord(const QString &escaped);

// An entry's base and localized words as it stores them (escaped), read as LocEntry reads them
// (baseWord, localizedWord; absent reads empty), but several times faster.
struct EntryWords {
    QString base;
    QString translation;
};
EntryWords entryWords(const LocEntry &entry);

// An entry's localized word against its base word, both unescaped.
QList<Problem> checkEntry(const LocEntry &entry);
// The same for a localized word being typed (escaped as the editor shows it) in `entry`.
QList<Problem> checkTypedWord(const LocEntry &entry, const QString &typed, bool checked);

}  // namespace Qa
