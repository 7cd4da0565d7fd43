// The fuzz target is compiled in here so that its saved inputs replay in every test run; its entry
// point is renamed because the subtitle target's lives in this binary too.
#define LLVMFuzzerTestOneInput fuzzProjectFile
#include "fuzz/CaptionProjectFuzz.cpp"
#undef LLVMFuzzerTestOneInput

#include "fuzz/FuzzReplay.h"

TEST(CaptionProjectFuzz, savedInputsReplayCleanly)
{
    cuewright::fuzz::replayCorpus("project", fuzzProjectFile);
}
