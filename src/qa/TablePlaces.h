#pragma once
// Where each key of a string table stands: its line, for messages an editor can jump to, and the
// comment just before it, which in an interface tool's table holds the base text
// (/* Class = "NSButton"; title = "Cancel"; ObjectID = "12"; */). The string-table reader gives
// the words; this only finds places, so it reads as far as it can and stops at a syntax error.

#include <QHash>
#include <QString>
#include <QStringView>
#include <optional>

namespace Qa {

struct TablePlace {
    int line = 0;     // 1-based line of the key
    QString comment;  // the block comment right before the pair, without its /* */; empty if none
    QString trailingComment;  // a block comment after the pair on the same line
};

// By key, unescaped as the reader unescapes it; a repeated key has the place of its last pair,
// whose value the reader keeps.
QHash<QString, TablePlace> tablePlaces(QStringView text);

// The base text an interface tool's comment gives for its pair, unescaped; none when the
// comment is not of that form.
std::optional<QString> interfaceCommentBase(const QString &comment);

// Whether a key has the interface tool's form, object id then property ("12.title",
// "FAF-cL-AAk.headerToolTip"): such a key is no base text.
bool isInterfaceKey(const QString &key);
// Whether a key names its text rather than being it: no white space, and a full stop, an
// underscore or a capital inside a word ("CFBundleName", "alert.title", "ok_button").
bool isIdentifierKey(const QString &key);

}  // namespace Qa
