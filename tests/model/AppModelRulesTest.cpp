#include "ModelTestSupport.h"

#include "core/CaptionNavigation.h"
#include "core/CaptionQuality.h"

using namespace cuewright;
using namespace cuewright::testing;

namespace {

using RulesTest = ModelTest;
using Direction = CaptionNavigation::Direction;

TEST_F(RulesTest, shiftReportsWhatWasApplied)
{
    model->loadVideo(file("talk.mov"));
    model->shiftAllCaptions(1);
    EXPECT_EQ(model->statusMessage(), "There are no captions to move.");

    loadVideoWithCues({ { 2, 3 }, { 5, 6 } });
    const int steps = model->undoStackCount();
    model->shiftAllCaptions(0);
    EXPECT_EQ(model->statusMessage(), "Captions are already aligned.");
    model->shiftAllCaptions(-5);
    EXPECT_EQ(model->statusMessage(), "Shifted all captions by -2.00 seconds.");
    EXPECT_EQ(model->document().cues[0].start, 0);
    model->shiftAllCaptions(-1);
    EXPECT_EQ(model->statusMessage(), "Captions are already at the timeline boundary.");
    EXPECT_EQ(model->undoStackCount(), steps + 1);
    EXPECT_EQ(model->playhead(), 0);
}

TEST_F(RulesTest, nudgeMovesThePlayheadAndJoinsRepeats)
{
    loadVideoWithCues({ { 2, 3 }, { 3, 4 }, { 4, 5 } });
    const auto ids = cueIDs();

    // Boxed in by both neighbours: nothing moves, nothing is said. (Binary fractions keep
    // the rule's arithmetic exact.)
    model->setSelectedCueID(ids[1]);
    model->seek(10);
    const auto status = model->statusMessage();
    model->nudgeSelectedCue(0.25);
    model->nudgeSelectedCue(-0.25);
    EXPECT_EQ(model->playhead(), 10);
    EXPECT_EQ(model->statusMessage(), status);

    model->setSelectedCueID(ids[2]);
    clock->advance(1);
    const int steps = model->undoStackCount();
    model->nudgeSelectedCue(0.1);
    EXPECT_EQ(model->statusMessage(), "Caption moved by +0.10 seconds.");
    EXPECT_NEAR(model->playhead(), 4.1, 1e-9);
    clock->advance(0.3);
    model->nudgeSelectedCue(0.1);
    EXPECT_EQ(model->undoStackCount(), steps + 1);
    model->undo();
    EXPECT_EQ(model->document().cues[2].start, 4);
}

TEST_F(RulesTest, startAndEndFollowThePlayhead)
{
    loadVideoWithCues({ { 2, 5 } });
    model->seek(3);
    model->setSelectedCueStartToPlayhead();
    EXPECT_EQ(model->document().cues[0].start, 3);
    EXPECT_EQ(model->statusMessage(), "Caption start set to playhead.");
    model->seek(4);
    model->setSelectedCueEndToPlayhead();
    EXPECT_EQ(model->document().cues[0].end, 4);
    EXPECT_EQ(model->statusMessage(), "Caption end set to playhead.");

    model->addCue(20);
    model->seek(4); // already the end of the first: silent
    model->setSelectedCueID(cueIDs()[0]);
    model->setSelectedCueEndToPlayhead();
    EXPECT_EQ(model->statusMessage(), "Caption added.");
    EXPECT_EQ(model->document().cues[0].end, 4);
}

TEST_F(RulesTest, mergeKeepsTheSelectedID)
{
    loadVideoWithCues({ { 1, 3 }, { 4, 5 } });
    const auto ids = cueIDs();
    model->setSelectedCueID(ids[1]);
    EXPECT_FALSE(model->canMergeSelectedCueWithNext());
    model->setSelectedCueID(ids[0]);
    model->mergeSelectedCueWithNext();
    EXPECT_EQ(model->document().cues.size(), 1u);
    EXPECT_EQ(model->selectedCueID(), ids[0]);
    EXPECT_EQ(model->statusMessage(), "Captions merged.");
}

TEST_F(RulesTest, navigationSelectsWithoutUndoSteps)
{
    loadVideoWithCues({ { 5, 6 }, { 1, 2 }, { 9, 10 } });
    const auto ids = cueIDs(); // sorted: 1, 5, 9
    const int steps = model->undoStackCount();
    model->setSelectedCueID(std::nullopt);
    model->selectAdjacentCue(Direction::next);
    EXPECT_EQ(model->selectedCueID(), ids[0]);
    EXPECT_EQ(model->playhead(), 1);
    EXPECT_EQ(model->statusMessage(), "Selected next caption.");
    model->setSelectedCueID(std::nullopt);
    model->selectAdjacentCue(Direction::previous);
    EXPECT_EQ(model->selectedCueID(), ids[2]);
    EXPECT_EQ(model->statusMessage(), "Selected previous caption.");
    EXPECT_EQ(model->undoStackCount(), steps);
}

TEST_F(RulesTest, theIssueWalkWrapsAndCountsEachCueOnce)
{
    loadVideoWithCues({ { 1, 2 }, { 3, 4 }, { 5, 6 }, { 7, 8 }, { 9, 10 } });
    model->selectNextQualityIssue(); // no issues: silent
    EXPECT_EQ(model->statusMessage(), "Caption added.");
    const auto ids = cueIDs();
    const std::string fastAndLong(120, 'x'); // too fast and too long a line
    for (const auto index : { 1, 4 }) {
        model->setSelectedCueID(ids[index]);
        clock->advance(1);
        model->updateSelected([&](CaptionCue& cue) { cue.text = fastAndLong; });
    }
    EXPECT_EQ(model->qualityIssueCueCount(), 2);
    EXPECT_GE(model->selectedCueIssues().size(), 2u);

    const int steps = model->undoStackCount();
    model->selectNextQualityIssue();
    EXPECT_EQ(model->selectedCueID(), ids[1]);
    EXPECT_EQ(model->playhead(), 3);
    model->selectNextQualityIssue();
    EXPECT_EQ(model->selectedCueID(), ids[4]);
    EXPECT_EQ(model->statusMessage(), "Selected the next caption issue.");
    EXPECT_EQ(model->undoStackCount(), steps);
}

} // namespace
