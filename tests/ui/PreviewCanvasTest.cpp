#include "app/ui/PreviewCanvas.h"

#include "ViewsTestSupport.h"

#include <QDragEnterEvent>
#include <QMimeData>
#include <QPushButton>

namespace cuewright::testing {
namespace {

    namespace G = CanvasGeometry;

    CaptionStyle styleWithMargin(double bottomMargin)
    {
        auto style = defaultCaptionStyle();
        style.bottomMargin = bottomMargin;
        return style;
    }

    TEST(CanvasDragModel, unplacedCaptionsSitAboveTheBottomMarginButNotAboveTheTop)
    {
        EXPECT_NEAR(G::defaultY(styleWithMargin(0.08)), 0.85, 1e-12);
        EXPECT_EQ(G::defaultY(styleWithMargin(0.9)), 0.08);
        const CaptionCue cue(Uuid::generate(), 1, 2, "a");
        const auto point = CanvasDragModel().displayedCanvasPosition(cue, styleWithMargin(0.08), 200, 100);
        EXPECT_EQ(point.x, 100);
        EXPECT_NEAR(point.y, 85, 1e-9);
    }

    TEST(CanvasDragModel, theCentreStopsAtTheClampsWhateverThePointerDoes)
    {
        const CaptionCue cue(Uuid::generate(), 1, 2, "a", 0.5, 0.5);
        CanvasDragModel drag;
        ASSERT_TRUE(drag.sample(cue, defaultCaptionStyle(), 1000, -1000, 400, 300));
        EXPECT_EQ(drag.edit()->x, 0.98);
        EXPECT_EQ(drag.edit()->y, 0.02);
        // Each sample starts again from the press-time position.
        drag.sample(cue, defaultCaptionStyle(), 40, 30, 400, 300);
        EXPECT_DOUBLE_EQ(drag.edit()->x, 0.6);
        EXPECT_DOUBLE_EQ(drag.edit()->y, 0.6);
        EXPECT_EQ(drag.edit()->originalX, 0.5);
    }

    TEST(CanvasDragModel, aPreviewWithoutAreaIgnoresSamples)
    {
        const CaptionCue cue(Uuid::generate(), 1, 2, "a");
        CanvasDragModel drag;
        EXPECT_FALSE(drag.sample(cue, defaultCaptionStyle(), 10, 10, 0, 300));
        EXPECT_FALSE(drag.edit());
    }

    class PreviewCanvasTest : public ModelTest {
    protected:
        void SetUp() override
        {
            ModelTest::SetUp();
            canvas = std::make_unique<PreviewCanvas>(*model);
            canvas->resize(640, 360);
            canvas->show();
        }

        std::unique_ptr<PreviewCanvas> canvas;
    };

    TEST_F(PreviewCanvasTest, aClickSelectsWithoutPlacingAndADragCommitsOnceAtTheClamp)
    {
        loadVideoWithCues({ { 2, 4 } });
        const Uuid id = cueIDs()[0];
        model->setSelectedCueID(std::nullopt);
        model->seek(3);
        const QPointF centre = canvas->captionRect().center();
        ASSERT_FALSE(canvas->captionRect().isEmpty());

        press(canvas.get(), centre);
        release(canvas.get(), centre);
        EXPECT_EQ(model->selectedCueID(), id);
        EXPECT_FALSE(model->selectedCue()->positionX);

        const int undoBefore = model->undoStackCount();
        press(canvas.get(), centre);
        moveTo(canvas.get(), centre + QPointF(5000, 0));
        EXPECT_FALSE(model->selectedCue()->positionX) << "the document waits for the release";
        release(canvas.get(), centre + QPointF(5000, 0));
        EXPECT_EQ(model->selectedCue()->positionX, 0.98);
        EXPECT_NEAR(*model->selectedCue()->positionY, G::defaultY(model->style()), 1e-9);
        EXPECT_EQ(model->undoStackCount(), undoBefore + 1);
        EXPECT_EQ(model->playhead(), 3);
    }

    TEST_F(PreviewCanvasTest, escapeDropsTheDragAndOnlyTheActiveCaptionIsDrawn)
    {
        loadVideoWithCues({ { 2, 4 } });
        model->seek(3);
        const QPointF centre = canvas->captionRect().center();
        press(canvas.get(), centre);
        moveTo(canvas.get(), centre + QPointF(40, 0));
        ASSERT_TRUE(canvas->dragModel().edit());
        QKeyEvent escape(QEvent::KeyPress, Qt::Key_Escape, Qt::NoModifier);
        QApplication::sendEvent(canvas.get(), &escape);
        EXPECT_FALSE(canvas->dragModel().edit());
        release(canvas.get(), centre + QPointF(40, 0));
        EXPECT_FALSE(model->selectedCue()->positionX);

        model->seek(10);
        EXPECT_TRUE(canvas->captionRect().isEmpty()) << "a selected cue away from the playhead is not shown";
    }

    TEST_F(PreviewCanvasTest, theEmptyPlaceholderOffersAddVideoAndTheDropOverlayCoversIt)
    {
        auto* add = canvas->findChild<QPushButton*>(QStringLiteral("emptyAddVideoButton"));
        ASSERT_NE(add, nullptr);
        EXPECT_TRUE(add->isVisibleTo(canvas.get()));
        EXPECT_EQ(add->text(), QStringLiteral("Add Video\u2026"));

        QMimeData data;
        data.setUrls({ file("talk.mov") });
        QDragEnterEvent enter(QPoint(20, 20), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(canvas.get(), &enter);
        EXPECT_TRUE(canvas->videoDropTargeted());
        QDragLeaveEvent leave;
        QApplication::sendEvent(canvas.get(), &leave);
        EXPECT_FALSE(canvas->videoDropTargeted());
    }

} // namespace
} // namespace cuewright::testing
