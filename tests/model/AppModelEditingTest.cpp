#include "ModelTestSupport.h"

using namespace cuewright;
using namespace cuewright::testing;

namespace {

using EditingTest = ModelTest;

TEST_F(EditingTest, addCueStaysInsideTheVideo)
{
    model->loadVideo(file("talk.mov")); // 60 s
    struct Case {
        double at;
        double start;
        double end;
    };
    for (const auto& c : { Case { 1000, 59.95, 60.0 }, Case { 59, 59, 60 }, Case { -3, 0, 2.5 },
             Case { std::nan(""), 0, 2.5 }, Case { 10, 10, 12.5 } }) {
        model->addCue(c.at);
        const auto cue = model->selectedCue();
        ASSERT_TRUE(cue) << c.at;
        EXPECT_NEAR(cue->start, c.start, 1e-9) << c.at;
        EXPECT_NEAR(cue->end, c.end, 1e-9) << c.at;
        EXPECT_EQ(cue->text, "New caption");
        EXPECT_FALSE(cue->positionX);
    }
    EXPECT_EQ(model->statusMessage(), "Caption added.");
    EXPECT_EQ(model->playhead(), 0);
    // All five within the interval: one step.
    EXPECT_EQ(model->document().cues.size(), 5u);
    model->undo();
    EXPECT_TRUE(model->document().cues.empty());
}

TEST_F(EditingTest, withoutAVideoCuesAreKept)
{
    model->addCue(std::nullopt);
    model->addCue(4.0);
    ASSERT_EQ(model->document().cues.size(), 2u);
    EXPECT_EQ(model->document().cues[1].end, 6.5);
}

TEST_F(EditingTest, splitOnlyStrictlyInsideTheCue)
{
    loadVideoWithCues({ { 2, 6 } });
    const auto original = model->document().cues[0];
    model->setCuePosition(original.id, 0.3, 0.4);
    clock->advance(1);
    for (double at : { 2.0, 6.0, 1.0 }) {
        model->seek(at);
        model->splitSelectedCue();
        EXPECT_EQ(model->document().cues.size(), 1u) << at;
    }
    EXPECT_EQ(model->statusMessage(), "Caption position updated.");

    model->seek(3.5);
    model->splitSelectedCue();
    ASSERT_EQ(model->document().cues.size(), 2u);
    const auto& first = model->document().cues[0];
    const auto& second = model->document().cues[1];
    EXPECT_EQ(first.id, original.id);
    EXPECT_EQ(first.end, 3.5);
    EXPECT_EQ(second.start, 3.5);
    EXPECT_EQ(second.end, 6);
    EXPECT_EQ(second.text, first.text);
    EXPECT_EQ(first.positionX, 0.3);
    EXPECT_FALSE(second.positionX);
    EXPECT_EQ(model->selectedCueID(), second.id);
    EXPECT_EQ(model->statusMessage(), "Caption split at playhead.");

    model->undo();
    ASSERT_EQ(model->document().cues.size(), 1u);
    EXPECT_EQ(model->document().cues[0], *model->selectedCue());
    EXPECT_EQ(model->document().cues[0].id, original.id);
}

TEST_F(EditingTest, removeSelectsTheFirstCue)
{
    loadVideoWithCues({ { 1, 2 }, { 3, 4 }, { 5, 6 }, { 7, 8 }, { 9, 10 } });
    const auto ids = cueIDs();
    model->setSelectedCueID(ids[2]);
    model->removeSelectedCue();
    EXPECT_EQ(model->document().cues.size(), 4u);
    EXPECT_EQ(model->selectedCueID(), ids[0]);
    EXPECT_EQ(model->statusMessage(), "Caption removed.");
    for (int i = 0; i < 4; ++i) {
        clock->advance(1);
        model->removeSelectedCue();
    }
    EXPECT_TRUE(model->document().cues.empty());
    EXPECT_FALSE(model->selectedCueID());
}

TEST_F(EditingTest, positionsAreClampedAndSelectTheCue)
{
    loadVideoWithCues({ { 1, 2 }, { 3, 4 } });
    const auto ids = cueIDs();
    model->setSelectedCueID(ids[1]);
    model->setCuePosition(ids[0], 1.7, -0.2);
    EXPECT_EQ(model->document().cues[0].positionX, 1.0);
    EXPECT_EQ(model->document().cues[0].positionY, 0.0);
    EXPECT_EQ(model->selectedCueID(), ids[0]);
    clock->advance(1);
    model->resetSelectedCuePosition();
    EXPECT_FALSE(model->document().cues[0].positionX);
}

TEST_F(EditingTest, blankTextRemovesTheCueButKeepsTheSelection)
{
    loadVideoWithCues({ { 1, 2 } });
    const auto id = cueIDs()[0];
    model->updateSelected([](CaptionCue& cue) { cue.text = " \n\t "; });
    EXPECT_TRUE(model->document().cues.empty());
    EXPECT_EQ(model->selectedCueID(), id);
    EXPECT_FALSE(model->selectedCue());
    model->undo();
    EXPECT_TRUE(model->selectedCue());
}

} // namespace
