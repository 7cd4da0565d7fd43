// The fuzz targets are compiled in here so that their saved inputs replay in every test run; their
// entry points are renamed so that all fit in one binary.
#define LLVMFuzzerTestOneInput fuzzManifest
#include "fuzz/UpdateManifestFuzz.cpp"
#undef LLVMFuzzerTestOneInput
#define LLVMFuzzerTestOneInput fuzzPropertyList
#include "fuzz/PropertyListFuzz.cpp"
#undef LLVMFuzzerTestOneInput
#define LLVMFuzzerTestOneInput fuzzArchive
#include "fuzz/UpdateArchiveFuzz.cpp"
#undef LLVMFuzzerTestOneInput

#include "fuzz/FuzzReplay.h"

TEST(UpdateFuzz, savedManifestsReplayCleanly)
{
    cuewright::fuzz::replayCorpus("manifest", fuzzManifest);
}

TEST(UpdateFuzz, savedPropertyListsReplayCleanly)
{
    cuewright::fuzz::replayCorpus("plist", fuzzPropertyList);
}

TEST(UpdateFuzz, savedArchivesReplayCleanly)
{
    cuewright::fuzz::replayCorpus("archive", fuzzArchive);
}
