// The fuzz target is compiled in here so that its saved inputs replay in every test run.
#include "fuzz/CaptionCodecFuzz.cpp"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

TEST(CaptionCodecFuzz, savedInputsReplayCleanly)
{
    const auto folder = std::filesystem::path(CUEWRIGHT_SOURCE_DIR) / "tests/fuzz/corpus/codec";
    int replayed = 0;
    for (const auto& entry : std::filesystem::directory_iterator(folder)) {
        std::ifstream in(entry.path(), std::ios::binary);
        const std::vector<char> bytes((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
        SCOPED_TRACE(entry.path().filename().string());
        EXPECT_EQ(LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size()), 0);
        ++replayed;
    }
    EXPECT_GT(replayed, 0);
}
