#include "UiTestSupport.h"

#include "app/ui/AppMenus.h"
#include "app/ui/TransportBar.h"

#include <QLabel>
#include <QSignalSpy>
#include <QToolButton>

namespace cuewright::testing {
namespace {

    using TransportBarTest = AppTest;

    TEST(TransportZoom, stepsGeometricallyAndStopsAtTheLimits)
    {
        double zoom = 1.0;
        for (int click = 0; click < 9; ++click)
            zoom = TransportBar::zoomedIn(zoom);
        EXPECT_NEAR(zoom, 7.4506, 1e-4);
        EXPECT_DOUBLE_EQ(TransportBar::zoomedIn(zoom), 8.0);
        EXPECT_DOUBLE_EQ(TransportBar::zoomedIn(8.0), 8.0);

        zoom = 8.0;
        EXPECT_DOUBLE_EQ(zoom = TransportBar::zoomedOut(zoom), 6.4);
        EXPECT_DOUBLE_EQ(zoom = TransportBar::zoomedOut(zoom), 5.12);
        for (int click = 2; click < 9; ++click)
            zoom = TransportBar::zoomedOut(zoom);
        EXPECT_NEAR(zoom, 1.0737, 1e-4);
        EXPECT_DOUBLE_EQ(TransportBar::zoomedOut(zoom), 1.0);
        EXPECT_DOUBLE_EQ(TransportBar::zoomedOut(1.0), 1.0);
    }

    TEST_F(TransportBarTest, zoomButtonsChangeTheWindowsZoomAndStayEnabledAtTheLimits)
    {
        TransportBar* bar = content().transportBar();
        QSignalSpy changes(&content(), &ContentView::timelineZoomChanged);
        QTest::mouseClick(bar->zoomOutButton(), Qt::LeftButton);
        EXPECT_DOUBLE_EQ(content().timelineZoom(), 1.0);
        EXPECT_EQ(changes.count(), 0);
        EXPECT_TRUE(bar->zoomOutButton()->isEnabled());

        QTest::mouseClick(bar->zoomInButton(), Qt::LeftButton);
        QTest::mouseClick(bar->zoomInButton(), Qt::LeftButton);
        EXPECT_DOUBLE_EQ(content().timelineZoom(), 1.5625);
        ASSERT_EQ(changes.count(), 2);
        EXPECT_DOUBLE_EQ(changes.last().at(0).toDouble(), 1.5625);
    }

    TEST_F(TransportBarTest, controlsFollowVideoCuesAndSelection)
    {
        TransportBar* bar = content().transportBar();
        EXPECT_EQ(bar->timeLabel()->text(), "0:00 / 0:00");
        EXPECT_FALSE(bar->addButton()->isEnabled());
        EXPECT_TRUE(app->menus().addCaption->isEnabled()) << "the menu item stays on without a video";
        EXPECT_FALSE(bar->splitButton()->isEnabled());
        EXPECT_FALSE(bar->previousButton()->isEnabled());
        EXPECT_FALSE(bar->nextButton()->isEnabled());
        EXPECT_TRUE(bar->playButton()->isEnabled());
        EXPECT_EQ(bar->playButton()->toolTip(), "Play or pause (Space)");

        loadVideoWithCues({ { 1, 3, "One" } });
        EXPECT_TRUE(bar->addButton()->isEnabled());
        EXPECT_TRUE(bar->splitButton()->isEnabled());
        EXPECT_TRUE(bar->nextButton()->isEnabled());
        EXPECT_EQ(bar->timeLabel()->text(), "0:00 / 1:00");
        model().seek(2);
        QTest::mouseClick(bar->splitButton(), Qt::LeftButton);
        EXPECT_EQ(model().statusMessage(), "Caption split at playhead.");
        model().setSelectedCueID(std::nullopt);
        EXPECT_FALSE(bar->splitButton()->isEnabled());
    }

    TEST_F(TransportBarTest, backOneSecondStopsAtZeroAndPlayShowsItsState)
    {
        TransportBar* bar = content().transportBar();
        model().loadVideo(file("talk.mov"));
        model().seek(0.4);
        QTest::mouseClick(bar->backButton(), Qt::LeftButton);
        EXPECT_DOUBLE_EQ(model().playhead(), 0.0);
        model().seek(12.7);
        QTest::mouseClick(bar->backButton(), Qt::LeftButton);
        EXPECT_DOUBLE_EQ(model().playhead(), 11.7);
        EXPECT_EQ(bar->timeLabel()->text(), "0:11 / 1:00");

        const qint64 playIcon = bar->playButton()->icon().cacheKey();
        QTest::mouseClick(bar->playButton(), Qt::LeftButton);
        EXPECT_TRUE(model().isPlaying());
        EXPECT_NE(bar->playButton()->icon().cacheKey(), playIcon);
    }

} // namespace
} // namespace cuewright::testing
