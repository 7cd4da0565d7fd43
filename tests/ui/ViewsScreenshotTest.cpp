#include "app/ui/InspectorView.h"
#include "app/ui/PreviewCanvas.h"
#include "app/ui/SymbolIcons.h"
#include "app/ui/TimelineView.h"

#include "ViewsTestSupport.h"

#include <QDir>
#include <QPainter>

namespace cuewright::testing {
namespace {

    // Renders the three views in telling states. With CUEWRIGHT_SCREENSHOT_DIR set the
    // pictures are kept for review (CUEWRIGHT_SCREENSHOT_FRAME may name a real video frame).
    class ViewsScreenshot : public ModelTest {
    protected:
        void SetUp() override
        {
            ModelTest::SetUp();
            installIconTheme();
        }

        void keep(QWidget& widget, const char* name)
        {
            // Lets word-wrapped labels settle at the final width.
            QCoreApplication::processEvents();
            const QImage image = widget.grab().toImage();
            ASSERT_FALSE(image.isNull());
            const QString dir = qEnvironmentVariable("CUEWRIGHT_SCREENSHOT_DIR");
            if (!dir.isEmpty()) {
                ASSERT_TRUE(image.save(QDir(dir).filePath(QString::fromLatin1(name))));
            }
        }

        void loadCaptions()
        {
            loadVideoWithCues({ { 1, 3.5 }, { 4, 6.8 }, { 6.5, 9 }, { 12, 14.5 }, { 20, 23 } });
            const char* texts[] = { "Welcome back to the workshop.", "Today we build a bird house",
                "from one plank of pine and a handful of screws that anyone can find.", "Measure twice.", "Cut once." };
            const auto ids = cueIDs();
            for (std::size_t i = 0; i < ids.size(); ++i) {
                model->setSelectedCueID(ids[i]);
                model->updateSelected([&](CaptionCue& cue) { cue.text = texts[i]; });
                clock->advance(1);
            }
        }
    };

    TEST_F(ViewsScreenshot, timelineMidDrag)
    {
        loadCaptions();
        model->seek(8);
        TimelineView view(*model);
        view.resize(760, 110);
        view.setZoom(1.5625);
        view.show();
        auto* strip = view.strip();
        const QPointF onBar(13 * 1125.0 / 60, TimelineGeometry::barTop + 20);
        press(strip, onBar);
        moveTo(strip, onBar + QPointF(60, 4));
        ASSERT_TRUE(strip->dragModel().edit());
        keep(view, "timeline-drag.png");
    }

    TEST_F(ViewsScreenshot, previewWithPlacedCaption)
    {
        loadCaptions();
        model->setCuePosition(cueIDs()[1], 0.5, 0.3);
        model->seek(5);
        PreviewCanvas canvas(*model);
        canvas.resize(960, 540);
        QImage frame(qEnvironmentVariable("CUEWRIGHT_SCREENSHOT_FRAME"));
        if (frame.isNull()) {
            frame = QImage(1280, 720, QImage::Format_RGB32);
            QPainter painter(&frame);
            QLinearGradient sky(0, 0, 0, 720);
            sky.setColorAt(0, QColor(70, 120, 190));
            sky.setColorAt(1, QColor(200, 170, 120));
            painter.fillRect(frame.rect(), sky);
            painter.fillRect(0, 500, 1280, 220, QColor(60, 90, 50));
        }
        canvas.setFrame(frame);
        canvas.show();
        keep(canvas, "preview-placed-caption.png");
        model->setSelectedCueID(std::nullopt);
        PreviewCanvas empty(*std::make_unique<AppModel>());
        empty.resize(640, 360);
        empty.show();
        keep(empty, "preview-empty.png");
    }

    TEST_F(ViewsScreenshot, inspectorWithIssues)
    {
        loadCaptions();
        model->setSelectedCueID(cueIDs()[2]);
        InspectorView view(*model);
        view.resize(400, 960);
        view.show();
        keep(view, "inspector-issues.png");
    }

} // namespace
} // namespace cuewright::testing
