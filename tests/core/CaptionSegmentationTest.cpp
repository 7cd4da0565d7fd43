#include "core/CaptionSegmentation.h"

#include <gtest/gtest.h>

#include <cmath>

using namespace cuewright;

TEST(CaptionSegmentation, chunksShareTheDurationEvenly)
{
    const auto cues = CaptionSegmentation::cues("a b c", 9, 2);
    ASSERT_EQ(cues.size(), 2u);
    EXPECT_EQ(cues[0].text, "a b");
    EXPECT_EQ(cues[0].start, 0);
    EXPECT_EQ(cues[0].end, 4.5);
    EXPECT_EQ(cues[1].text, "c");
    EXPECT_EQ(cues[1].start, 4.5);
    EXPECT_EQ(cues[1].end, 9);
    EXPECT_NE(cues[0].id, cues[1].id);

    // D * i / c in that order: 10 * 1 / 3 and 10 * 2 / 3 exactly as computed.
    const auto thirds = CaptionSegmentation::cues("a b c", 10, 1);
    ASSERT_EQ(thirds.size(), 3u);
    EXPECT_EQ(thirds[1].start, 10.0 * 1 / 3);
    EXPECT_EQ(thirds[1].end, 10.0 * 2 / 3);
}

TEST(CaptionSegmentation, wordsSplitAtAnyWhiteSpace)
{
    const auto cues = CaptionSegmentation::cues("  one\ttwo\r\nthree\u00A0four\u2003five\u3000six\n", 6, 3);
    ASSERT_EQ(cues.size(), 2u);
    EXPECT_EQ(cues[0].text, "one two three");
    EXPECT_EQ(cues[1].text, "four five six");
    // A combining mark stays with its word.
    EXPECT_EQ(CaptionSegmentation::cues("cafe\u0301 ok", 1, 5).at(0).text, "cafe\u0301 ok");
}

TEST(CaptionSegmentation, degenerateInputs)
{
    EXPECT_TRUE(CaptionSegmentation::cues(" \n\t", 5, 2).empty());
    EXPECT_TRUE(CaptionSegmentation::cues("a b", 0, 2).empty());
    EXPECT_TRUE(CaptionSegmentation::cues("a b", NAN, 2).empty());
    EXPECT_TRUE(CaptionSegmentation::cues("a b", -1, 2).empty());
    EXPECT_EQ(CaptionSegmentation::cues("a b", 2, 0).size(), 2u);
    EXPECT_EQ(CaptionSegmentation::cues("a b", 2, -3).size(), 2u);

    // Too many chunks for the duration: each is raised to the minimum length.
    const auto crowded = CaptionSegmentation::cues("a b c d", 0.1, 1);
    ASSERT_EQ(crowded.size(), 4u);
    EXPECT_DOUBLE_EQ(crowded[3].end, 0.075 + 0.05);
}
