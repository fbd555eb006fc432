#include "ResourceHandler.h"

#include "SystemVersion.h"

#include <QFileInfo>
#include <QHash>

namespace HandlerRegistry {
namespace {
QHash<HandlerKind, std::shared_ptr<ResourceHandler>> &table()
{
    static QHash<HandlerKind, std::shared_ptr<ResourceHandler>> handlers;
    return handlers;
}
}  // namespace

void registerHandler(HandlerKind kind, std::shared_ptr<ResourceHandler> handler)
{
    table().insert(kind, std::move(handler));
}

ResourceHandler *handler(HandlerKind kind)
{
    return table().value(kind).get();
}

std::optional<HandlerKind> kindForPath(const QString &path)
{
    const QString ext = QFileInfo(path).suffix();
    if (ext == QLatin1String("nib") || ext == QLatin1String("xib") || ext == QLatin1String("storyboard"))
        return usesIbtool() ? HandlerKind::Ibtool : HandlerKind::Nibtool;
    if (ext == QLatin1String("strings")) return HandlerKind::Strings;
    if (ext == QLatin1String("plist")) return HandlerKind::Plist;
    if (ext == QLatin1String("stringsdict")) return HandlerKind::Stringsdict;
    return std::nullopt;
}
}  // namespace HandlerRegistry
