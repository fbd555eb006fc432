#pragma once
// How property-list strings stand in entries. An entry's text is a pair line cut apart by its
// delimiters (" = \"" before a value, "\";" after it, a line feed after a comment), so a string
// is stored in the escaped form of a string table, as every other handler's words are and as
// the translator's edits are stored: a backslash doubled, a quote and a line break escaped, and
// after a quote a semicolon or the space that begins " = " escaped too, so that no stored word
// holds a delimiter. Written back, the word is unescaped, so that a string comes out of export
// exactly as it went in, and a word the translator typed is written as typed (with the string
// table's \n, \t, \" and \\ read as their characters, and any other backslash kept as it is).

#include <QString>

QString escapePlistWord(const QString &word);
QString unescapePlistWord(const QString &stored);
