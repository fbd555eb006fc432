#include "Resources.h"

#include <QtGlobal>

// Q_INIT_RESOURCE must stand outside any namespace.
static void initResourcesOnce()
{
    Q_INIT_RESOURCE(vocabrix);
}

void initVocabrixResources()
{
    static const bool done = (initResourcesOnce(), true);
    Q_UNUSED(done);
}
