#pragma once
// Translation memories in TMX 1.4 (and the 1.1 "lang" attribute), the exchange format of
// OmegaT, Poedit, Lokalize and the rest: read into pairs of one language pair, and written from a
// dictionary's rows. Read with a real XML parser, bounded in size and depth; no external entity is
// ever fetched.

#include "DictEntry.h"

#include <QByteArray>
#include <QList>

namespace Tmx {

struct Pair {
    QString key;
    QString value;
};
struct Reading {
    QList<Pair> pairs;      // in file order
    qsizetype units = 0;    // <tu> elements seen
    QString error;          // set when the file is not a usable TMX file; `pairs` is then empty
};

// Whether a TMX language code ("en-US", "EN_us", "fr") names the language of this abbreviation
// (en, zh-Hans): equal ignoring case, or equal in their first part.
bool languageMatches(const QString &code, const QString &abbreviation);

// The units that hold a segment in both languages, each giving the base segment as key and the
// target segment as value. Inline codes (bpt, ept, it, ph, ut) are left out of the text; entities
// are decoded.
Reading read(const QByteArray &data, const QString &baseShort, const QString &targetShort);

// A TMX 1.4 document with one unit per row that has both words. Rows holding control characters
// that XML cannot carry are left out and counted in `skipped`.
QByteArray write(const DictRows &rows, const QString &baseShort, const QString &targetShort, qsizetype *skipped = nullptr);

constexpr qsizetype maximumBytes = qsizetype(512) << 20;
constexpr int maximumDepth = 64;

}  // namespace Tmx
