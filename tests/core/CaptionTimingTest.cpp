#include "core/CaptionTiming.h"

#include <gtest/gtest.h>

#include <cmath>

using namespace cuewright;
using namespace cuewright::CaptionTiming;

TEST(CaptionTiming, moveKeepsLengthInsideTheVideo)
{
    EXPECT_EQ(move(1, 3, 100, 10), (CaptionTimeRange { 8, 10 }));
    EXPECT_EQ(move(1, 3, -100, 10), (CaptionTimeRange { 0, 2 }));
    // A too-short cue grows to the minimum; a too-short video gives the length up.
    const auto grown = move(1, 1.01, 1, 10);
    EXPECT_EQ(grown.start, 2);
    EXPECT_DOUBLE_EQ(grown.end, 2.05);
    EXPECT_EQ(move(1, 3, 0, 1.5), (CaptionTimeRange { 0, 1.5 }));
    EXPECT_EQ(move(1, 3, NAN, 10), (CaptionTimeRange { 0, 2 }));
}

TEST(CaptionTiming, trimStartStopsBeforeTheEndAndAtZero)
{
    EXPECT_DOUBLE_EQ(trimStart(5, 3), 2.95);
    EXPECT_EQ(trimStart(-1, 3), 0);
    EXPECT_EQ(trimStart(NAN, 3), 0);
    EXPECT_EQ(trimStart(2, 0.01), 0); // end is not moved, cue stays short
}

TEST(CaptionTiming, trimEndKeepsMinimumAndDurationButMinimumWins)
{
    EXPECT_DOUBLE_EQ(trimEnd(1, 2, 10), 2.05);
    EXPECT_EQ(trimEnd(20, 2, 10), 10);
    EXPECT_DOUBLE_EQ(trimEnd(20, 9.99, 10), 10.04);
    EXPECT_DOUBLE_EQ(trimEnd(2.05, 2, 10), 2.05);
}
