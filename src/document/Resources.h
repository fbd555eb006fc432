#pragma once
// The compiled-in application resources (":/vocabrix/..."). A static library's resources are
// only linked when something asks for them: every reader calls this first.

void initVocabrixResources();
