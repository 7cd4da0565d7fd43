#include "core/CaptionDocument.h"
#include "core/CaptionStyle.h"

#include <gtest/gtest.h>

#include <cmath>

using namespace cuewright;

namespace {
CaptionCue cue(double start, double end, std::string text = "x")
{
    return CaptionCue(Uuid::generate(), start, end, std::move(text));
}
} // namespace

TEST(CaptionCue, constructorClampsTimesAndPositions)
{
    const CaptionCue reversed(Uuid::generate(), 2, 1, "a");
    EXPECT_EQ(reversed.start, 2);
    EXPECT_DOUBLE_EQ(reversed.end, 2.05);

    const CaptionCue nan(Uuid::generate(), NAN, NAN, "a", 1.7, NAN);
    EXPECT_EQ(nan.start, 0);
    EXPECT_DOUBLE_EQ(nan.end, 0.05);
    EXPECT_EQ(nan.positionX, 1.0);
    EXPECT_EQ(nan.positionY, 0.0);

    CaptionCue assigned = reversed;
    assigned.end = 1; // setters are plain stores
    EXPECT_EQ(assigned.duration(), 0);
}

TEST(CaptionCue, equalityAndHashFollowAllFields)
{
    CaptionCue a(Uuid::generate(), 0, 1, "a");
    CaptionCue b = a;
    EXPECT_EQ(a, b);
    b.positionX = 0.5;
    EXPECT_NE(a, b);
    b = a;
    a.start = 0.0;
    b.start = -0.0;
    EXPECT_EQ(std::hash<CaptionCue>{}(a), std::hash<CaptionCue>{}(b));
    b.start = NAN;
    EXPECT_NE(b, b);
}

TEST(CaptionDocument, constructorSortsByStartOnlyNormalizeByStartThenEnd)
{
    const auto longer = cue(1, 3);
    const auto shorter = cue(1, 2);
    CaptionDocument document({cue(5, 6), longer, shorter});
    ASSERT_EQ(document.cues.size(), 3u);
    EXPECT_EQ(document.cues[0], longer);
    EXPECT_EQ(document.cues[1], shorter);

    document.normalize(std::nullopt);
    EXPECT_EQ(document.cues[0].id, shorter.id);
    EXPECT_EQ(document.cues[1].id, longer.id);
}

TEST(CaptionDocument, normalizeRepairsTrimsAndDrops)
{
    auto blank = cue(1, 2, " \n\t\u2028");
    auto beyond = cue(12, 13);
    auto nearEnd = cue(9.99, 9.995);
    auto padded = cue(0, 1, "\u00a0 Hi\nthere \r\n");
    padded.start = -3;
    padded.end = -2.99;
    padded.positionY = 1.4;
    CaptionDocument document = CaptionDocument::unsorted({blank, beyond, nearEnd, padded});
    document.normalize(10.0);
    ASSERT_EQ(document.cues.size(), 2u);
    EXPECT_EQ(document.cues[0].text, "Hi\nthere");
    EXPECT_EQ(document.cues[0].start, 0);
    EXPECT_DOUBLE_EQ(document.cues[0].end, 0.05);
    EXPECT_EQ(document.cues[0].positionY, 1.0);
    EXPECT_EQ(document.cues[1].start, 9.99);
    EXPECT_EQ(document.cues[1].end, 10.0);

    CaptionDocument everything({cue(0, 1), cue(3, 4)});
    everything.normalize(0.0);
    EXPECT_TRUE(everything.cues.empty());

    auto longCue = cue(0, 100);
    CaptionDocument unlimited({longCue});
    unlimited.normalize(std::nullopt);
    EXPECT_EQ(unlimited.cues[0].end, 100);
}

TEST(CaptionDocument, cueAtSearchesFromTheLastInListOrder)
{
    const auto outer = cue(1, 5);
    const auto inner = cue(2, 3);
    const auto document = CaptionDocument::unsorted({outer, inner});
    EXPECT_EQ(document.cueAt(2.5)->id, inner.id);
    EXPECT_EQ(document.cueAt(4)->id, outer.id);
    EXPECT_EQ(document.cueAt(3)->id, outer.id);
    EXPECT_EQ(document.cueAt(1)->id, outer.id);
    EXPECT_FALSE(document.cueAt(5));
    EXPECT_FALSE(CaptionDocument().cueAt(0));
}

TEST(RGBAColor, opacityReplacesAlpha)
{
    EXPECT_EQ(RGBAColor::white().opacity(0), (RGBAColor{1, 1, 1, 0}));
    EXPECT_EQ(RGBAColor::black().opacity(0.5).opacity(0.5).alpha, 0.5);
    auto style = defaultCaptionStyle();
    auto other = style;
    other.backgroundEnabled = false;
    other.backgroundColor.red = 0.1;
    auto same = other;
    EXPECT_EQ(other, same);
    same.backgroundColor.red = 0.2;
    EXPECT_NE(other, same);
}
