#include "ModelTestSupport.h"

using namespace cuewright;
using namespace cuewright::testing;

namespace {

using VideoTest = ModelTest;

TEST_F(VideoTest, loadingAVideoStartsFreshWork)
{
    model->loadVideo(file("first.mov"));
    model->addCue(1);
    model->updateStyle("style-fontSize", [](CaptionStyle& style) { style.fontSize = 20; });
    model->seek(30);
    model->setLanguageIdentifier("de-DE");

    player->autoDuration = 12.5;
    model->loadVideo(file("second.mp4"));
    EXPECT_EQ(model->videoURL(), file("second.mp4"));
    EXPECT_EQ(model->duration(), 12.5);
    EXPECT_EQ(model->playhead(), 0);
    EXPECT_TRUE(model->document().cues.empty());
    EXPECT_FALSE(model->selectedCueID());
    EXPECT_FALSE(model->canUndo());
    EXPECT_EQ(model->style().fontSize, 20);
    EXPECT_EQ(model->languageIdentifier(), "de-DE");
    EXPECT_EQ(model->statusMessage(), "Ready to caption second.mp4.");
}

TEST_F(VideoTest, aFailedLoadGivesZeroDurationAndStillSucceeds)
{
    player->autoDuration = std::nullopt;
    model->loadVideo(file("broken.mov"));
    EXPECT_EQ(model->duration(), 0);
    EXPECT_EQ(model->statusMessage(), "Ready to caption broken.mov.");
    EXPECT_TRUE(model->videoURL().isValid());
}

TEST_F(VideoTest, theLastLoadWins)
{
    player->autoComplete = false;
    model->loadVideo(file("old.mov"));
    model->loadVideo(file("new.mov"));
    ASSERT_EQ(player->pending.size(), 2u);
    player->finishLoad(1, 30.0);
    player->finishLoad(0, 90.0); // the older one, late
    EXPECT_EQ(model->videoURL(), file("new.mov"));
    EXPECT_EQ(model->duration(), 30.0);
    EXPECT_EQ(model->statusMessage(), "Ready to caption new.mov.");
}

} // namespace
