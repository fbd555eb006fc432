// Placeholder until this handler lands: files of this type are made without entries, and
// LocFile tells the user that no reader is available.
#include "Handlers.h"

std::shared_ptr<ResourceHandler> makeNibtoolHandler() { return nullptr; }
