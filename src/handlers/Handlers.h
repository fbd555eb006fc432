#pragma once
// The resource handlers, registered once at start-up by every program that makes files.

#include "ResourceHandler.h"

std::shared_ptr<ResourceHandler> makeStringsHandler();
std::shared_ptr<ResourceHandler> makePlistHandler();
std::shared_ptr<ResourceHandler> makeIbtoolHandler();
std::shared_ptr<ResourceHandler> makeNibtoolHandler();
std::shared_ptr<ResourceHandler> makeStringsdictHandler();

void registerResourceHandlers();
