#pragma once

// Replays a fuzz target's saved inputs inside a test. Include the target's source after renaming
// its entry point, so that several targets can live in one test binary:
//     #define LLVMFuzzerTestOneInput fuzzProjectFile
//     #include "fuzz/CaptionProjectFuzz.cpp"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

namespace cuewright::fuzz {

// Every file under tests/fuzz/corpus/<folder> must run through `target` without a crash.
template <typename Target> void replayCorpus(const std::string& folder, Target target)
{
    const auto directory = std::filesystem::path(CUEWRIGHT_SOURCE_DIR) / "tests/fuzz/corpus" / folder;
    int replayed = 0;
    for (const auto& entry : std::filesystem::directory_iterator(directory)) {
        std::ifstream in(entry.path(), std::ios::binary);
        const std::vector<char> bytes((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
        SCOPED_TRACE(entry.path().filename().string());
        EXPECT_EQ(target(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size()), 0);
        ++replayed;
    }
    EXPECT_GT(replayed, 0);
}

} // namespace cuewright::fuzz
