#include "Handlers.h"

void registerResourceHandlers()
{
    HandlerRegistry::registerHandler(HandlerKind::Strings, makeStringsHandler());
    HandlerRegistry::registerHandler(HandlerKind::Plist, makePlistHandler());
    HandlerRegistry::registerHandler(HandlerKind::Ibtool, makeIbtoolHandler());
    HandlerRegistry::registerHandler(HandlerKind::Nibtool, makeNibtoolHandler());
    HandlerRegistry::registerHandler(HandlerKind::Stringsdict, makeStringsdictHandler());
}
