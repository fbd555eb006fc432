#pragma once
// The handler of .stringsdict files: the plural rules of Localizable.stringsdict, a property
// list of format keys, each a dictionary with its format (NSStringLocalizedFormatKey) and one
// dictionary per variable, whose plural-category strings (zero, one, two, few, many, other) are
// the words to translate. Only those texts become entries; the keys that describe the format
// (NSStringFormatSpecTypeKey, NSStringFormatValueTypeKey) and anything else stay as they are.
//
// An entry has the shape of a string-table entry whose key is the text's place,
// "FORMATKEY/NSStringLocalizedFormatKey" or "FORMATKEY/VARIABLE/CATEGORY", so the key word is that
// place and the base word the text. A previous localized .stringsdict gives words by place (and
// such an entry starts checked, as what that release shipped); the dictionary fills the rest by
// base word. Export writes the whole base file back as an XML property list with the localized
// words in place.

#include "StringMap.h"
#include "StringUtility.h"

#include <QStringList>

class LocFile;

namespace stringsdictHandle {

// The places and base texts of a .stringsdict's bytes, in file order; none when the bytes are
// not a property list whose root is a dictionary (`error` says why).
std::optional<QList<QPair<QString, QString>>> translatableTexts(const QByteArray &data, QString *error = nullptr);

void extractStringsdictWithDictionary(LocFile &file, const OptString &dictionaryPath, const OptString &previousPath);
StringMap makeLocalizedStringsdictAt(LocFile &file, const QString &folder);

}  // namespace stringsdictHandle
