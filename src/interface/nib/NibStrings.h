#pragma once
// Which strings of a compiled nib a translator sees, under which key. The places are those
// ibtool reads in a xib (window and menu titles, cell titles and placeholders, box titles, tab
// labels, column headers, tool tips, accessibility texts, binding placeholders, ...).
//
// Keys: a nib compiled from a Base.lproj xib wraps each of those strings in an
// NSLocalizableString that carries its ibtool key, so its table is the source xib's. Other nibs
// have no xib ids; their strings are keyed by the object's oid from the nib's own id table
// (IB 2 nibs number cells after NSNextOid, as ibtool did), else by "o" and the object's index.
// Both stay the same from run to run and between a base nib and its localized copies.

#include "ArchiveGraph.h"
#include "InterfaceFile.h"

namespace interface::nib {

struct FoundString {
    LocalizableString string;
    QList<Slot> places;  // every place that shows this string
};

// Every non-empty localizable string, each key once, in ibtool's order (integer object ids
// numerically first, then the others; properties in code-unit order).
QList<FoundString> findLocalizableStrings(const ArchiveGraph &graph);

}  // namespace interface::nib
