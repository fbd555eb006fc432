#pragma once
// The property-list handler: every string value of a property list, at any depth, becomes one
// entry; its word comes from the dictionary or else from the previous localized version at the
// same place (same key, same index). Export writes the base list again as XML with each string
// replaced by its entry's word. Keys and scalars never change.

#include "StringMap.h"
#include "StringUtility.h"

class LocEntry;
class LocFile;

namespace plistHandle {

void extractPlistDataWithDictionary(LocFile &file, const OptString &dictionaryPath, const OptString &previousPath);
StringMap makeLocalizedPlistFileAt(LocFile &file, const QString &folder);

// The word an entry made by this handler writes back: its pair line's whole value (a value typed
// with a quote before a semicolon is not cut short there), unescaped. Empty when there is none.
QString writtenWord(const LocEntry &entry);

}  // namespace plistHandle
