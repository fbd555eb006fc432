#pragma once
// What a localizable file asks of the handler of its resource type: read the base file into
// entries (taking over a previous localized version and the dictionary), and write the localized
// counterpart into a folder, returning the pairs for the dictionary. Handlers are registered once
// at start-up (see registerResourceHandlers in src/handlers), one per kind.

#include "StringMap.h"
#include "StringUtility.h"

#include <QString>
#include <memory>

class LocFile;

enum class HandlerKind { Strings, Plist, Nibtool, Ibtool, Stringsdict };

class ResourceHandler {
public:
    virtual ~ResourceHandler() = default;
    // Appends the entries to file.allEntries (or finishes later, for a handler that waits on a
    // tool); may record a failure in file.initError.
    virtual void extract(LocFile &file, const OptString &dictionaryPath, const OptString &previousPath) = 0;
    virtual StringMap makeLocalized(LocFile &file, const QString &folder) = 0;
    // Entries from a localized and a base string table (interface files built from two tables).
    virtual void parseEntries(LocFile &, const QString & /*localized*/, const QString & /*original*/) {}
};

namespace HandlerRegistry {
void registerHandler(HandlerKind kind, std::shared_ptr<ResourceHandler> handler);
ResourceHandler *handler(HandlerKind kind);
// The kind for a path's extension (exact, case-sensitive), or none for other files. Interface
// files (nib, xib, storyboard) go to the newer or the older tool by the system version.
std::optional<HandlerKind> kindForPath(const QString &path);
}  // namespace HandlerRegistry
