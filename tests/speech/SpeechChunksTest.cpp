#include "speech/SpeechChunks.h"

#include "speech/PocketSphinxEngine.h"

#include <gtest/gtest.h>

using namespace cuewright;
using Chunk = SpeechChunks::Chunk;

namespace {

// Levels of 10 ms frames: quiet at 0 dB, speech at 70 dB.
struct Levels {
    std::vector<float> values;
    Levels& quiet(std::size_t frames) { return add(frames, 0); }
    Levels& loud(std::size_t frames) { return add(frames, 70); }
    Levels& add(std::size_t frames, float level)
    {
        values.insert(values.end(), frames, level);
        return *this;
    }
};

TEST(SpeechChunks, cutsOnlyAtPausesLongEnoughAndPadsIntoThem)
{
    // Speech 100-200 and, after a 20-frame pause inside it, 220-300; a 40-frame pause; 340-380.
    const auto levels = Levels().quiet(100).loud(100).quiet(20).loud(80).quiet(40).loud(40).quiet(10).values;
    SpeechChunks::Options options;
    options.paddingFrames = 25;
    EXPECT_EQ(SpeechChunks::split(levels, options), (std::vector<Chunk> { { 75, 245 }, { 320, 70 } }));
}

TEST(SpeechChunks, ignoresSilenceAndClicks)
{
    EXPECT_TRUE(SpeechChunks::split({}).empty());
    EXPECT_TRUE(SpeechChunks::split(Levels().quiet(500).values).empty());
    EXPECT_TRUE(SpeechChunks::split(Levels().quiet(200).loud(2).quiet(200).values).empty());
    // Steady low noise is no speech, however loud against digital silence.
    EXPECT_TRUE(SpeechChunks::split(Levels().add(300, 25).values).empty());
}

TEST(SpeechChunks, speechWithoutPausesIsCutAtItsQuietestFrame)
{
    Levels levels;
    levels.loud(500).add(1, 40).loud(499);
    SpeechChunks::Options options;
    options.maximumChunkFrames = 600;
    EXPECT_EQ(SpeechChunks::split(levels.values, options), (std::vector<Chunk> { { 0, 500 }, { 500, 500 } }));
}

TEST(SpeechChunks, frameLevelsFollowLoudness)
{
    std::vector<std::int16_t> samples(SpeechChunks::samplesPerFrame * 2 + 10, 0);
    std::fill(samples.begin() + SpeechChunks::samplesPerFrame, samples.end(), 1000);
    std::vector<float> levels;
    SpeechChunks::appendFrameLevels(samples, levels);
    ASSERT_EQ(levels.size(), 3u);
    EXPECT_FLOAT_EQ(levels[0], 0);
    EXPECT_NEAR(levels[1], 60, 0.01);
    EXPECT_NEAR(levels[2], 60, 0.01);
}

TEST(PocketSphinxEngine, segmentsBecomeWordsWithoutMarkersOrVariants)
{
    const std::vector<std::pair<const char*, std::optional<std::string>>> cases {
        { "hello", "hello" },
        { "read(2)", "read" },
        { "o'clock", "o'clock" },
        { "(", "(" },
        { "x(a)", "x(a)" },
        { "<s>", std::nullopt },
        { "</s>", std::nullopt },
        { "<sil>", std::nullopt },
        { "[NOISE]", std::nullopt },
        { "++UM++", std::nullopt },
        { "", std::nullopt },
    };
    for (const auto& [segment, word] : cases)
        EXPECT_EQ(PocketSphinxEngine::wordText(segment), word) << segment;
}

} // namespace
