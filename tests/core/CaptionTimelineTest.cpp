#include "core/CaptionTimeline.h"

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

using namespace cuewright;
using namespace cuewright::CaptionTimeline;

namespace {
CaptionCue cue(double start, double end, std::string text = "x")
{
    return CaptionCue(Uuid::generate(), start, end, std::move(text));
}

std::vector<CaptionTimeRange> times(const CaptionDocument& document)
{
    std::vector<CaptionTimeRange> result;
    for (const auto& c : document.cues)
        result.push_back({ c.start, c.end });
    return result;
}

using Ranges = std::vector<CaptionTimeRange>;
} // namespace

TEST(CaptionTimelineSnap, tieGoesToTheEarlierAnchorInListOrder)
{
    const auto edited = cue(1, 8);
    const auto later = cue(5.0625, 6);
    const auto earlier = cue(2, 4.9375);
    EXPECT_EQ(trimmedStart(edited, 5, CueList { later, earlier }, 0.12), 5.0625);
    EXPECT_EQ(trimmedStart(edited, 5, CueList { earlier, later }, 0.12), 4.9375);
}

TEST(CaptionTimelineSnap, toleranceIsInclusiveAndZeroDisablesIt)
{
    const auto edited = cue(1, 8);
    const std::vector<CaptionCue> among { cue(5.25, 6) };
    EXPECT_EQ(trimmedStart(edited, 5, among, 0.25), 5.25);
    EXPECT_EQ(trimmedStart(edited, 5, among, 0.2499), 5);
    EXPECT_EQ(trimmedStart(edited, 5, among, 0), 5);
    // Timeline start and video end are anchors even with no other cue.
    EXPECT_EQ(trimmedStart(edited, 0.1, CueList {}, defaultSnapTolerance), 0);
    EXPECT_EQ(trimmedEnd(edited, 9.9, CueList {}, 10, defaultSnapTolerance), 10);
}

TEST(CaptionTimelineSnap, editedCueIsNotItsOwnAnchorOrBound)
{
    const auto edited = cue(2, 5);
    const CueList among { edited };
    EXPECT_EQ(trimmedStart(edited, 2.1, among, 0.12), 2.1);
    EXPECT_EQ(trimmedEnd(edited, 4.9, among, 10, 0.12), 4.9);
}

TEST(CaptionTimelineTrim, startIsBoundedByTheLargestEarlierEnd)
{
    const auto edited = cue(5, 8);
    // The nearest earlier cue ends at 4, but a longer earlier one reaches 4.6.
    const CueList among { cue(3, 4), cue(0, 4.6), cue(6, 7) };
    EXPECT_DOUBLE_EQ(trimmedStart(edited, 3.5, among, 0), 4.6);
    EXPECT_EQ(trimmedStart(edited, 3, CueList { cue(1, 4) }, 0.12), 4);
    // A cue with the same start is neither earlier nor later.
    EXPECT_EQ(trimmedStart(edited, 2, CueList { cue(5, 6) }, 0), 2);
    EXPECT_EQ(trimmedEnd(edited, 9, CueList { cue(5, 6) }, 10, 0), 9);
}

TEST(CaptionTimelineTrim, neighbourBoundWinsOverMinimumDuration)
{
    const auto edited = cue(5, 5.2);
    EXPECT_DOUBLE_EQ(trimmedStart(edited, 5.19, CueList { cue(1, 5.18) }, 0), 5.18);
    EXPECT_DOUBLE_EQ(trimmedStart(edited, 5.19, CueList {}, 0), 5.15);

    const auto short_ = cue(2, 3);
    EXPECT_DOUBLE_EQ(trimmedEnd(short_, 1, CueList {}, 10, 0), 2.05);
    EXPECT_DOUBLE_EQ(trimmedEnd(short_, 2.5, CueList { cue(2.5, 3), cue(2.03, 4) }, 10, 0), 2.03);
}

TEST(CaptionTimelineTrim, endIsBoundedByTheSmallestLaterStart)
{
    const auto edited = cue(1, 2);
    EXPECT_EQ(trimmedEnd(edited, 8, CueList { cue(6, 7), cue(4, 9) }, 10, 0), 4);
    EXPECT_EQ(trimmedEnd(edited, 20, CueList {}, 10, 0), 10);
}

TEST(CaptionTimelineAlign, nonFiniteInputLeavesTheCueAndFiniteDoesNotSnap)
{
    const auto edited = cue(5, 8);
    const CueList among { cue(1, 4.9) };
    EXPECT_EQ(alignedStart(edited, NAN, among), (CaptionTimeRange { 5, 8 }));
    EXPECT_EQ(alignedStart(edited, 4.95, among), (CaptionTimeRange { 4.95, 8 }));
    EXPECT_EQ(alignedStart(edited, 3, among), (CaptionTimeRange { 4.9, 8 }));
    EXPECT_EQ(alignedEnd(edited, 9.95, among, INFINITY), (CaptionTimeRange { 5, 8 }));
    EXPECT_EQ(alignedEnd(edited, 9.95, among, 10), (CaptionTimeRange { 5, 9.95 }));
}

TEST(CaptionTimelineMove, snapsToTimelineEndsWithNoOtherCue)
{
    const auto edited = cue(3, 5);
    EXPECT_EQ(moved(edited, -2.9, CueList {}, 10, 0.12), (CaptionTimeRange { 0, 2 }));
    // Only the trailing edge is near an anchor: it lands on the video's end.
    EXPECT_EQ(moved(edited, 4.95, CueList {}, 10, 0.12), (CaptionTimeRange { 8, 10 }));
}

TEST(CaptionTimelineMove, choosesTheNearerGapOnEitherSide)
{
    const auto edited = cue(0, 1);
    const CueList among { edited, cue(3, 5) };
    // Places 2 and 5 are equally far from 3.5: the earlier gap wins.
    EXPECT_EQ(moved(edited, 3.5, among, 10, 0.12), (CaptionTimeRange { 2, 3 }));
    // The trailing edge snaps to 5, so the target is 4 and the later gap is nearer.
    EXPECT_EQ(moved(edited, 4, among, 10, 0.12), (CaptionTimeRange { 5, 6 }));
}

TEST(CaptionTimelineMove, longCueKeepsItsReachOverCuesInsideIt)
{
    const auto edited = cue(9, 10);
    const CueList among { cue(1, 8), cue(2, 3) };
    EXPECT_EQ(moved(edited, -5.5, among, 10, 0), (CaptionTimeRange { 0, 1 }));
}

TEST(CaptionTimelineMove, snapTieFollowsStartOrderNotListOrder)
{
    const auto edited = cue(8, 8.1);
    const auto result = moved(edited, -3, CueList { cue(5.0625, 6), cue(1, 4.9375) }, 10, 0.12);
    EXPECT_EQ(result.start, 4.9375);
    EXPECT_DOUBLE_EQ(result.end, 4.9375 + 0.1);
    const std::vector<CaptionCue> unsorted { cue(5.0625, 6), edited, cue(1, 4.9375) };
    EXPECT_EQ(moved(edited, -3, unsorted, 10, 0.12), result);
}

TEST(CaptionTimelineMove, withoutRoomGivesThePlainMoveUnsnapped)
{
    const auto edited = cue(0, 3);
    const auto result = moved(edited, 5.05, CueList { cue(2, 4), cue(6, 8) }, 10, 0.12);
    EXPECT_DOUBLE_EQ(result.start, 5.05);
    EXPECT_DOUBLE_EQ(result.end, 8.05);
}

TEST(CaptionTimelineNudge, movesExactlyUnlessBlocked)
{
    const auto edited = cue(2, 3);
    const CueList among { cue(3.15, 4) };
    const auto nudge = nudged(edited, 0.1, among, 10);
    EXPECT_DOUBLE_EQ(nudge.start, 2.1);
    EXPECT_DOUBLE_EQ(nudge.end, 3.1);
    EXPECT_DOUBLE_EQ(moved(edited, 0.1, among, 10, 0.12).start, 2.15);
    EXPECT_EQ(nudged(edited, 0.5, CueList { cue(3.2, 5) }, 10), (CaptionTimeRange { 2.2, 3.2 }));
    EXPECT_EQ(nudged(edited, NAN, among, 10), (CaptionTimeRange { 2, 3 }));
}

TEST(CaptionTimelineShift, clampsToTheVideoAndPullsBackCuesPastTheEnd)
{
    const CaptionDocument document({ cue(3, 4, "a"), cue(6, 9, "b") });
    EXPECT_EQ(shifted(document, -10, 10).appliedDelta, -3);
    const auto forward = shifted(document, 10, 10);
    EXPECT_EQ(forward.appliedDelta, 1);
    EXPECT_EQ(times(forward.document), (Ranges { { 4, 5 }, { 7, 10 } }));
    EXPECT_EQ(forward.document.cues[1].id, document.cues[1].id);

    const CaptionDocument pastEnd({ cue(5, 6), cue(8, 12) });
    EXPECT_EQ(shifted(pastEnd, 1, 10).appliedDelta, -2);
    const CaptionDocument spanning({ cue(1, 6), cue(8, 12) });
    EXPECT_EQ(shifted(spanning, 1, 10).appliedDelta, -1);

    const CaptionDocument atLimits({ cue(0, 4), cue(6, 10) });
    for (const double delta : { -1.0, 1.0, std::nan("") }) {
        const auto result = shifted(atLimits, delta, 10);
        EXPECT_EQ(result.appliedDelta, 0);
        EXPECT_EQ(result.document, atLimits);
    }
    EXPECT_EQ(shifted(document, 1, -1).appliedDelta, 0);
}

TEST(CaptionTimelineOverlaps, countsNeighboursInFullOrder)
{
    EXPECT_EQ(overlapCount(CueList { cue(0, 2), cue(2, 3) }), 0);
    EXPECT_EQ(overlapCount(CueList { cue(0, 2), cue(1, 3) }), 1);
    EXPECT_EQ(overlapCount(CueList { cue(0, 10), cue(1, 2), cue(3, 4), cue(5, 6) }), 1);
    // By start alone this would be one overlap; by start then end it is two.
    EXPECT_EQ(overlapCount(CueList { cue(0, 3), cue(0, 1), cue(2, 4) }), 2);
    EXPECT_EQ(overlapCount(CueList { cue(1, 3), cue(0, 2) }), 1);
}

TEST(CaptionTimelineOverlaps, removingCutsTheEarlierOrPushesTheLater)
{
    EXPECT_EQ(times(removingOverlaps(CaptionDocument({ cue(0, 2), cue(1, 3) }), 10)), (Ranges { { 0, 1 }, { 1, 3 } }));
    const auto pushed = times(removingOverlaps(CaptionDocument({ cue(0, 2), cue(0.02, 3) }), 10));
    EXPECT_EQ(pushed[1].start, 2);
    EXPECT_DOUBLE_EQ(pushed[1].end, 4.98);
    EXPECT_EQ(
        times(removingOverlaps(CaptionDocument({ cue(0, 2), cue(0.02, 3) }), 4)), (Ranges { { 0, 2 }, { 2, 4 } }));

    // Each step sees the one before: the third cue is pushed behind the pushed second.
    const auto chained = times(removingOverlaps(CaptionDocument({ cue(0, 2), cue(0.01, 1), cue(0.02, 5) }), 10));
    ASSERT_EQ(chained.size(), 3u);
    EXPECT_DOUBLE_EQ(chained[1].end, 2.99);
    EXPECT_DOUBLE_EQ(chained[2].start, 2.99);
    EXPECT_DOUBLE_EQ(chained[2].end, 7.97);
}

TEST(CaptionTimelineOverlaps, removingUsesFullOrderAndNormalizes)
{
    // Same start: the shorter cue goes first and the longer is pushed behind it.
    const auto document = CaptionDocument::unsorted(CueList { cue(0, 5, " a "), cue(0, 1, "b") });
    const auto result = removingOverlaps(document, 10);
    EXPECT_EQ(times(result), (Ranges { { 0, 1 }, { 1, 6 } }));
    EXPECT_EQ(result.cues[1].text, "a");

    const auto single = CaptionDocument::unsorted(CueList { cue(-1, 20, " ") });
    EXPECT_EQ(removingOverlaps(single, 10), single);
}

TEST(CaptionTimelineMerge, nextFollowsStartThenEndThenIndex)
{
    const auto a = cue(1, 3, "a");
    const auto b = cue(1, 2, "b");
    const auto c = cue(4, 5, "c");
    const auto document = CaptionDocument::unsorted(CueList { a, b, c });

    const auto fromB = mergingCueWithNext(document, b.id);
    ASSERT_TRUE(fromB);
    ASSERT_EQ(fromB->cues.size(), 2u);
    EXPECT_EQ(fromB->cues[0].id, b.id);
    EXPECT_EQ(fromB->cues[0].text, "b a");
    EXPECT_EQ(fromB->cues[0].end, 3);

    const auto fromA = mergingCueWithNext(document, a.id);
    ASSERT_TRUE(fromA);
    EXPECT_EQ(times(*fromA), (Ranges { { 1, 5 }, { 1, 2 } }));

    EXPECT_FALSE(mergingCueWithNext(document, c.id));
    EXPECT_FALSE(mergingCueWithNext(document, Uuid::generate()));

    const auto twin = cue(1, 3, "twin");
    const auto twins = CaptionDocument::unsorted(CueList { twin, a });
    EXPECT_EQ(mergingCueWithNext(twins, twin.id)->cues[0].text, "twin a");
    EXPECT_FALSE(mergingCueWithNext(twins, a.id));
}

TEST(CaptionTimelineMerge, innerCueKeepsTheOuterEndAndTextsJoinWithOneSpace)
{
    auto outer = cue(0, 5, " a\n");
    outer.positionX = 0.25;
    auto inner = cue(1, 2, "b");
    inner.positionY = 0.75;
    const auto merged = mergingCueWithNext(CaptionDocument({ outer, inner }), outer.id);
    ASSERT_TRUE(merged);
    ASSERT_EQ(merged->cues.size(), 1u);
    const auto& result = merged->cues[0];
    EXPECT_EQ(result.end, 5);
    EXPECT_EQ(result.text, "a b");
    EXPECT_EQ(result.positionX, 0.25);
    EXPECT_FALSE(result.positionY);

    const auto texts = [](std::string first, std::string second) {
        const auto a = cue(0, 1, std::move(first));
        return mergingCueWithNext(CaptionDocument({ a, cue(3, 4, std::move(second)) }), a.id)->cues[0];
    };
    EXPECT_EQ(texts("", "b").text, "b");
    EXPECT_EQ(texts("a\nb", "c").text, "a\nb c");
    EXPECT_EQ(texts("", " ").text, "");
    EXPECT_EQ(texts("a", "b").end, 4);
}
