#include "ModelTestSupport.h"

#include <QSignalSpy>

using namespace cuewright;
using namespace cuewright::testing;

namespace {

using PlaybackTest = ModelTest;

TEST_F(PlaybackTest, seekClampsToTheVideoAndMovesThePlayheadAtOnce)
{
    model->loadVideo(file("talk.mov"));
    for (const auto& [asked, expected] :
        std::vector<std::pair<double, double>> { { -1, 0 }, { 1000, 60 }, { std::nan(""), 0 }, { 12.5, 12.5 } }) {
        player->seeks.clear();
        model->seek(asked);
        EXPECT_EQ(model->playhead(), expected) << asked;
        ASSERT_EQ(player->seeks.size(), 1u);
        EXPECT_EQ(player->seeks[0], expected);
    }
}

TEST_F(PlaybackTest, toggleRestartsFromTheBeginningOnlyAtTheEnd)
{
    model->loadVideo(file("talk.mov"));
    model->seek(59.96);
    model->togglePlayback();
    EXPECT_TRUE(player->playing);
    EXPECT_TRUE(model->isPlaying());
    EXPECT_EQ(model->playhead(), 0);

    model->togglePlayback();
    EXPECT_FALSE(player->playing);
    EXPECT_FALSE(model->isPlaying());

    model->seek(59.94);
    model->togglePlayback();
    EXPECT_EQ(model->playhead(), 59.94);
    EXPECT_TRUE(player->playing);
}

TEST_F(PlaybackTest, theObserverMirrorsThePlayer)
{
    model->loadVideo(file("talk.mov"));
    QSignalSpy playing(model.get(), &AppModel::isPlayingChanged);
    player->playing = true;
    player->time = -4;
    EXPECT_TRUE(waitFor([&] { return model->isPlaying(); }));
    EXPECT_EQ(model->playhead(), 0);
    player->time = 7.25;
    EXPECT_TRUE(waitFor([&] { return model->playhead() == 7.25; }));
    player->playing = false; // stopped at the end by itself
    EXPECT_TRUE(waitFor([&] { return !model->isPlaying(); }));
    EXPECT_EQ(playing.count(), 2);
    EXPECT_FALSE(model->canUndo()); // nothing here is an edit
}

} // namespace
