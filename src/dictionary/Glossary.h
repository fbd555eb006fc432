#pragma once
// Apple's glossaries (.ad, .lg, .wg): XML files of <TranslationSet> units, each pairing a base text
// with a translated text and their language abbreviations. They are read by literal text rules,
// not as XML, because that is how the files have always been taken in: the text is split at
// every "<TranslationSet>", and in each piece the "base" and "tran" stretches give the two texts
// (between the first ">" and the next "<"), entities left as they stand.

#include "StringUtility.h"

#include <QByteArray>
#include <QList>

namespace Glossary {

struct Unit {
    OptString baseText;
    OptString baseLoc;
    OptString tranText;
    OptString tranLoc;
};

// Every piece of the text, the one before the first marker included.
QList<Unit> units(const QString &text);

struct Pair {
    QString key;
    QString value;
};
struct Reading {
    QList<Pair> pairs;      // in file order, duplicates kept
    qsizetype skipped = 0;  // units of a third language, incomplete, or RTF
    QString error;          // why nothing could be read (not UTF-8, too large)
};

// The pairs for the language pair with these abbreviations: units of the reverse pair are
// exchanged, units of other languages skipped (comparisons exact). With `skipRtf`, units whose
// base text starts with "{\rtf" are skipped too (the .lg and .wg glossaries carry RTF resources).
Reading pairsFromData(const QByteArray &data, const QString &baseShort, const QString &targetShort, bool skipRtf);

// Larger glossaries are refused rather than read into memory.
constexpr qsizetype maximumBytes = qsizetype(512) << 20;

}  // namespace Glossary
