#include "app/ui/TimelineView.h"

#include "ViewsTestSupport.h"

#include <QKeyEvent>
#include <QTest>

namespace cuewright::testing {
namespace {

    namespace G = TimelineGeometry;

    // A 60-second video on a 720-point strip: 12 points a second.
    class TimelineViewTest : public ModelTest {
    protected:
        void SetUp() override
        {
            ModelTest::SetUp();
            loadVideoWithCues({ { 2, 4 }, { 10, 12 } });
            ids = cueIDs();
            model->setSelectedCueID(std::nullopt);
            model->seek(30);
            view = std::make_unique<TimelineView>(*model);
            view->resize(720, 120);
            view->show();
            strip = view->strip();
        }

        QPointF barPoint(double seconds) const { return { seconds * 12, G::barTop + 20 }; }

        std::vector<Uuid> ids;
        std::unique_ptr<TimelineView> view;
        TimelineStrip* strip = nullptr;
    };

    TEST_F(TimelineViewTest, aClickOnABarSelectsItCommitsItsTimingAndSeeks)
    {
        const int undoBefore = model->undoStackCount();
        press(strip, barPoint(11));
        EXPECT_EQ(model->selectedCueID(), ids[1]) << "the press itself selects";
        release(strip, barPoint(11));
        EXPECT_EQ(model->playhead(), 10);
        EXPECT_EQ(cueWithID(*model, ids[1])->end, 12);
        EXPECT_EQ(model->undoStackCount(), undoBefore) << "an unchanged timing is no edit";
        EXPECT_FALSE(strip->dragModel().edit());

        // Just inside the end handle the playhead goes to the end.
        press(strip, barPoint(12) - QPointF(2, 0));
        release(strip, barPoint(12) - QPointF(2, 0));
        EXPECT_EQ(model->playhead(), 12);
    }

    TEST_F(TimelineViewTest, aDragChangesOnlyTheViewUntilReleaseThenMakesOneStep)
    {
        const int undoBefore = model->undoStackCount();
        const auto documentBefore = model->document();
        press(strip, barPoint(11));
        moveTo(strip, barPoint(11) + QPointF(5 * 12, 30));
        EXPECT_EQ(model->document(), documentBefore);
        EXPECT_EQ(model->playhead(), 30);
        EXPECT_NEAR(strip->dragModel().edit()->start, 15, 1e-9) << "vertical movement has no effect";
        release(strip, barPoint(11) + QPointF(5 * 12, 30));
        EXPECT_NEAR(cueWithID(*model, ids[1])->start, 15, 1e-9);
        EXPECT_NEAR(model->playhead(), 15, 1e-9);
        EXPECT_EQ(model->undoStackCount(), undoBefore + 1);
    }

    TEST_F(TimelineViewTest, escapeOrFocusLossCancelsTheDragWithoutAnEdit)
    {
        const auto documentBefore = model->document();
        press(strip, barPoint(3));
        moveTo(strip, barPoint(3) + QPointF(60, 0));
        QKeyEvent escape(QEvent::KeyPress, Qt::Key_Escape, Qt::NoModifier);
        QApplication::sendEvent(strip, &escape);
        EXPECT_FALSE(strip->dragModel().edit());
        moveTo(strip, barPoint(3) + QPointF(90, 0));
        release(strip, barPoint(3) + QPointF(90, 0));
        EXPECT_EQ(model->document(), documentBefore);
        EXPECT_FALSE(strip->dragModel().edit());

        press(strip, barPoint(3));
        moveTo(strip, barPoint(3) + QPointF(60, 0));
        view->hide();
        EXPECT_FALSE(strip->dragModel().edit());
    }

    TEST_F(TimelineViewTest, pressingEmptyGroundScrubsAndStaysInsideTheVideo)
    {
        press(strip, { 240, 5 });
        EXPECT_EQ(model->playhead(), 20);
        moveTo(strip, { -80, 5 });
        EXPECT_EQ(model->playhead(), 0);
        moveTo(strip, { 2000, 5 });
        EXPECT_EQ(model->playhead(), 60);
        release(strip, { 2000, 5 });
        EXPECT_EQ(model->selectedCueID(), std::nullopt);
    }

    TEST_F(TimelineViewTest, zoomWidensTheStripAndItsMapping)
    {
        view->setZoom(2.0);
        EXPECT_EQ(strip->width(), 1440);
        press(strip, { 24 * 11, G::barTop + 20 });
        release(strip, { 24 * 11, G::barTop + 20 });
        EXPECT_EQ(model->selectedCueID(), ids[1]);
    }

} // namespace
} // namespace cuewright::testing
