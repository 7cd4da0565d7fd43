#include "app/ui/TimelineDragModel.h"

#include "core/CaptionDocument.h"

#include <gtest/gtest.h>

#include <random>

namespace cuewright {
namespace {

    namespace G = TimelineGeometry;

    CaptionCue cue(double start, double end, std::string text = "x")
    {
        return CaptionCue(Uuid::generate(), start, end, std::move(text));
    }

    TEST(TimelineGeometry, tickIntervalsChangeAboveNinetyAndThreeHundredSeconds)
    {
        EXPECT_EQ(G::tickInterval(90), 5);
        EXPECT_EQ(G::tickInterval(90.001), 10);
        EXPECT_EQ(G::tickInterval(300), 10);
        EXPECT_EQ(G::tickInterval(300.001), 30);
    }

    TEST(TimelineGeometry, lastTickStandsOnAWholeMultipleDuration)
    {
        const auto ticks = G::tickTimes(300);
        ASSERT_EQ(ticks.size(), 31u);
        EXPECT_EQ(ticks.back(), 300);
        EXPECT_EQ(G::x(ticks.back(), 300, 720), 720);
        // An hour at zoom 1: ticks every 30 s stand 6 points apart, none thinned out.
        const auto hour = G::tickTimes(3600);
        EXPECT_EQ(hour.size(), 121u);
        EXPECT_DOUBLE_EQ(G::x(hour[1], 3600, G::contentWidth(1.0)), 6.0);
        EXPECT_TRUE(G::tickTimes(0).empty());
    }

    TEST(TimelineGeometry, contentWidthFollowsZoomButNeverShrinks)
    {
        EXPECT_EQ(G::contentWidth(1.0), 720);
        EXPECT_EQ(G::contentWidth(8.0), 5760);
        EXPECT_EQ(G::contentWidth(0.5), 720);
    }

    TEST(TimelineGeometry, scrubbingPastEitherEndStaysInsideTheVideo)
    {
        EXPECT_EQ(G::scrubTime(-50, 720, 60), 0);
        EXPECT_EQ(G::scrubTime(900, 720, 60), 60);
        EXPECT_EQ(G::scrubTime(360, 720, 60), 30);
        EXPECT_EQ(G::scrubTime(100, 0, 60), 0);
        EXPECT_EQ(G::x(10, 0, 720), 0);
    }

    class TimelineDrag : public ::testing::Test {
    protected:
        // 60 s on 720 points: 12 points a second.
        static constexpr double width = 720;
        static constexpr double duration = 60;
        CaptionCue first = cue(2, 4);
        CaptionCue second = cue(10, 12);
        CaptionDocument document { { first, second } };
        TimelineDragModel drag;
    };

    TEST_F(TimelineDrag, draggingLeftAndBackShowsThePressTimingAgain)
    {
        drag.sample(second, TimelineBarPart::middle, 0, width, document.cues, duration);
        drag.sample(second, TimelineBarPart::middle, -30, width, document.cues, duration);
        EXPECT_NEAR(drag.edit()->start, 7.5, 1e-9);
        drag.sample(second, TimelineBarPart::middle, -1000, width, document.cues, duration);
        drag.sample(second, TimelineBarPart::middle, 0, width, document.cues, duration);
        EXPECT_EQ(*drag.edit(), (TimelineCueEdit { second.id, 10, 12, 10, 12 }));
    }

    TEST_F(TimelineDrag, snapsToTheNeighboursEdgeWithinTheTolerance)
    {
        // 5.9 s of travel would start the cue at 4.1, 0.1 s from the first cue's end.
        drag.sample(second, TimelineBarPart::middle, -5.9 * 12, width, document.cues, duration);
        EXPECT_NEAR(drag.edit()->start, 4.0, 1e-9);
        EXPECT_NEAR(drag.edit()->end, 6.0, 1e-9);
        // A start trim stops at the earlier cue's end instead of running over it.
        drag.clear();
        drag.sample(second, TimelineBarPart::startHandle, -8 * 12, width, document.cues, duration);
        EXPECT_NEAR(drag.edit()->start, 4.0, 1e-9);
        EXPECT_EQ(drag.edit()->end, 12);
    }

    TEST_F(TimelineDrag, endTrimKeepsTheStartAndCommitsWithSeekToTheEnd)
    {
        drag.sample(first, TimelineBarPart::endHandle, 2 * 12, width, document.cues, duration);
        const auto commit = drag.commit(seekTarget(TimelineBarPart::endHandle));
        ASSERT_TRUE(commit);
        EXPECT_EQ(commit->start, 2);
        EXPECT_NEAR(commit->end, 6, 1e-9);
        EXPECT_NEAR(commit->seekTime, 6, 1e-9);
        EXPECT_EQ(drag.displayedTiming(first).end, commit->end);
        EXPECT_EQ(drag.displayedTiming(second).start, 10) << "other bars keep their own timing";
    }

    TEST_F(TimelineDrag, withoutDurationTheTranslationCountsForNothing)
    {
        drag.sample(first, TimelineBarPart::startHandle, -200, width, document.cues, 0);
        EXPECT_EQ(*drag.commit(TimelineSeekTarget::start), (TimelineCommit { first.id, 2, 4, 2 }));
        EXPECT_FALSE(TimelineDragModel().commit(TimelineSeekTarget::start));
    }

    TEST_F(TimelineDrag, anEditLeftForAnotherCueIsReplaced)
    {
        drag.sample(first, TimelineBarPart::middle, 24, width, document.cues, duration);
        drag.sample(second, TimelineBarPart::middle, 0, width, document.cues, duration);
        EXPECT_EQ(drag.edit()->id, second.id);
        EXPECT_EQ(drag.displayedTiming(first).start, 2);
    }

    std::vector<std::size_t> bruteForceVisible(const CueList& cues, double left, double right, double duration)
    {
        std::vector<std::pair<double, std::size_t>> hits;
        for (std::size_t i = 0; i < cues.size(); ++i) {
            const double x = G::x(cues[i].start, duration, 720);
            const double w = std::max(G::x(cues[i].end - cues[i].start, duration, 720), G::minimumBarWidth);
            if (x <= right && x + w >= left)
                hits.push_back({ cues[i].start, i });
        }
        std::stable_sort(hits.begin(), hits.end(), [](auto& a, auto& b) { return a.first < b.first; });
        std::vector<std::size_t> result;
        for (auto& hit : hits)
            result.push_back(hit.second);
        return result;
    }

    TEST(TimelineCueIndex, findsTheSameBarsAsAFullWalk)
    {
        std::mt19937 random(7);
        std::uniform_real_distribution<double> startOf(0, 600);
        std::uniform_real_distribution<double> lengthOf(0.05, 40);
        std::vector<CaptionCue> cues;
        for (int i = 0; i < 400; ++i) {
            const double start = startOf(random);
            cues.push_back(cue(start, start + lengthOf(random)));
        }
        // Kept in file order, so the index has to sort for itself.
        const auto document = CaptionDocument::unsorted(CueList(cues));
        const TimelineCueIndex index(document.cues);
        for (double left = -10; left < 720; left += 37) {
            auto found = index.visible(document.cues, left, left + 50, 600, 720);
            auto expected = bruteForceVisible(document.cues, left, left + 50, 600);
            EXPECT_EQ(found, expected) << "left " << left;
        }
    }

    TEST(TimelineCueIndex, withoutDurationAllBarsStandAtZero)
    {
        const CaptionDocument document({ cue(5, 6), cue(50, 60) });
        const TimelineCueIndex index(document.cues);
        EXPECT_EQ(index.visible(document.cues, 0, 720, 0, 720).size(), 2u);
        EXPECT_TRUE(index.visible(document.cues, 100, 720, 0, 720).empty());
    }

} // namespace
} // namespace cuewright
