#pragma once
// The string table of the older interface tool (nibtool, before 10.5), over any interface file
// the engine reads. One block per distinct text, in code-unit order of the text, each block
// ending in an empty line:
//
//   /* NSButton (Cancel) : <title:Cancel> (oid:54) */
//   "Cancel" = "Annuler";
//
// The comment names the object that carries the text (the last one in ibtool's order when
// several do); its marker "(oid:N)" is what the application pairs two listings by ("oid:N.prop"
// for a property other than the title, so that every marker names one string). The key is
// the text; the value is the text, or its translation from a previous localized version of the
// file (same object) or from a dictionary (same text), the previous version first. Merging
// works by text too: every string whose text is a key of the table takes the table's value.

#include "InterfaceFile.h"

namespace interface::nibtool {

struct ListingBlock {
    QString comment;  // "/* ... */", possibly over several lines (titles keep their line feeds)
    QString text;     // unescaped
    QString value;    // unescaped
};

QList<ListingBlock> listingBlocks(const InterfaceFile &file, const InterfaceFile *previous = nullptr,
                                  const StringMap *dictionary = nullptr);
// The blocks as nibtool prints them.
QString listingText(const QList<ListingBlock> &blocks);

// Translations keyed as InterfaceFile::write wants them ("OID.property") from a table keyed
// by text.
StringMap translationsByText(const InterfaceFile &file, const StringMap &table);

// The comment's class: the control rather than its cell (NSButton for NSButtonCell), as the
// old tool named objects.
QString listingClass(const QString &ibtoolClass);

}  // namespace interface::nibtool
