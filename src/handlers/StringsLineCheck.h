#pragma once
// A base table is read line by line, which keeps each pair's own text but cannot take a value
// that spans lines, an unquoted value or the short form "key";. This check reads the same text
// with the full table grammar and tells the user which pairs the lines missed or read otherwise,
// so that nothing drops out of a translation silently.

#include "StringUtility.h"

#include <QList>

class LocFile;

// One pair as the line reader took it: key and value as they stand in the line (escaped), and
// the line's number from 1.
struct TakenPair {
    QString key;
    OptString value;
    qsizetype line = 0;
};

// Adds at most one warning per kind of difference to `file`, naming the keys concerned.
void reportPairsNotTaken(LocFile &file, const QString &text, const QList<TakenPair> &taken);

// A word as the table grammar reads it between quotes (escapes resolved); none when the text
// cannot stand between quotes (an unescaped quote, a trailing backslash).
OptString unescapedTableWord(const QString &escaped);
