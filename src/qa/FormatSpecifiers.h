#pragma once
// The printf-style placeholders of a Cocoa format string, and whether a translation's agree with
// its base's.
//
// What counts as a placeholder: "%" then an optional position ("1$"), flags from "-+#0'", a width
// (digits or "*"), a precision ("." then digits or "*"), a length (hh h l ll q L z t j) and one
// conversion from "@ d D i u U x X o O c C s S f F e E g G a A p n". Besides these, "%#@name@"
// (a variable of a plural rule in a .stringsdict) and "%{name}@" (an Interface Builder display
// pattern) are named placeholders, compared by name. "%%" is a percent sign.
//
// Text that only looks like a placeholder. A percent sign is common in ordinary text ("100%",
// "% of screen", Swedish "50%-ig", Hungarian "20%-os", Turkish "%50"), so:
//  1. "%" followed by a space, by the end of the text or by anything that does not complete the
//     grammar above is a percent sign ("100%", "% of", "%50 indirim").
//  2. The base decides whether a text is a format at all. When the base holds no placeholder,
//     only the plain forms count in the translation: a conversion right after the "%" with at
//     most a position and a length ("%@", "%d", "%ld", "%2$@"), and the named forms. Anything with
//     flags, width or precision ("50%-ig" reads as "%-i") is then taken as text.
//  3. When the base holds a placeholder, the text is a format: both sides are read with the whole
//     grammar, the space flag included, because printf would read "% s" in "50% sont" as a
//     placeholder and crash. A percent sign must then be written "%%".

#include <QList>
#include <QString>
#include <QStringView>

namespace Qa {

struct Specifier {
    QString text;   // as written, e.g. "%1$@", "%.2f", "%#@files@"
    int position;   // n of "%n$"; 0 when plain or named
    QString type;   // the argument's kind in words ("object", "integer", "long integer", ...)
    QString name;   // of the named forms; empty otherwise
    bool plain;     // no flags, width or precision: unmistakably a placeholder
};

enum class FormatMode {
    Text,    // a text whose base is no format: no space flag (rule 1)
    Format,  // the whole grammar, the space flag included (rule 3)
};

// Every placeholder of `text`, in order; a "*" width or precision adds an "integer" of its own.
QList<Specifier> formatSpecifiers(QStringView text, FormatMode mode);

// Why the translation's placeholders disagree with the base's, in words a translator reads;
// empty when they agree (same kinds in the same order, or the same set by position, and the same
// named placeholders).
QString compareFormatSpecifiers(QStringView base, QStringView translation);

}  // namespace Qa
