#include "app/ui/ContentPanes.h"

#include "app/model/AppModel.h"
#include "app/ui/ContentView.h"
#include "app/ui/InspectorView.h"
#include "app/ui/ModelObserver.h"
#include "app/ui/TimelineView.h"
#include "app/ui/ViewStyle.h"

#include <QDragEnterEvent>
#include <QDropEvent>
#include <QLabel>
#include <QMediaPlayer>
#include <QMimeData>
#include <QPainter>
#include <QVBoxLayout>
#include <QVideoFrame>
#include <QVideoSink>

namespace cuewright {

namespace {

    // Stands in for the preview canvas: the player's picture, fitted, with the caption at the
    // playhead, and the drop target for videos.
    class PreviewPlaceholder final : public QWidget {
    public:
        PreviewPlaceholder(AppModel& model, QWidget* parent)
            : QWidget(parent)
            , m_model(model)
        {
            setObjectName(QStringLiteral("previewPane"));
            setAcceptDrops(true);
            setMinimumHeight(120);
            if (auto* player = qobject_cast<QMediaPlayer*>(model.player().videoOutputHost())) {
                if (QVideoSink* sink = player->videoSink()) {
                    connect(sink, &QVideoSink::videoFrameChanged, this, [this](const QVideoFrame& frame) {
                        m_frame = frame;
                        update();
                    });
                }
            }
            observe(
                model, this, [this] { update(); }, &AppModel::playheadChanged, &AppModel::documentChanged,
                &AppModel::videoURLChanged, &AppModel::styleChanged);
        }

    protected:
        void paintEvent(QPaintEvent*) override
        {
            QPainter painter(this);
            painter.fillRect(rect(), Qt::black);
            painter.setRenderHint(QPainter::SmoothPixmapTransform);
            if (!m_model.videoURL().isEmpty() && m_frame.isValid()) {
                const QImage image = m_frame.toImage();
                if (!image.isNull()) {
                    QSize fitted = image.size().scaled(size(), Qt::KeepAspectRatio);
                    QRect target(QPoint(0, 0), fitted);
                    target.moveCenter(rect().center());
                    painter.drawImage(target, image);
                }
            }
            if (m_model.videoURL().isEmpty()) {
                painter.setPen(QColor(255, 255, 255, 150));
                painter.setFont(ViewStyle::headlineFont());
                painter.drawText(rect(), Qt::AlignCenter, tr("Drop a video here or choose Add Video."));
                return;
            }
            if (auto cue = m_model.document().cueAt(m_model.playhead())) {
                const CaptionStyle& style = m_model.style();
                QFont font = ViewStyle::headlineFont();
                font.setPixelSize(qMax(12, height() / 16));
                painter.setFont(font);
                const double x = cue->positionX.value_or(0.5);
                const double y = cue->positionY.value_or(std::max(1.0 - style.bottomMargin - 0.07, 0.08));
                const int maxWidth = static_cast<int>(width() * 0.84);
                const QString text = QString::fromStdString(cue->text);
                QRect box = painter.fontMetrics().boundingRect(
                    QRect(0, 0, maxWidth, height()), Qt::AlignHCenter | Qt::TextWordWrap, text);
                box.moveCenter(QPoint(static_cast<int>(x * width()), static_cast<int>(y * height())));
                if (style.backgroundEnabled) {
                    const RGBAColor& bg = style.backgroundColor;
                    painter.fillRect(
                        box.adjusted(-10, -5, 10, 5), QColor::fromRgbF(bg.red, bg.green, bg.blue, bg.alpha));
                }
                const RGBAColor& fg = style.textColor;
                painter.setPen(QColor::fromRgbF(fg.red, fg.green, fg.blue, fg.alpha));
                painter.drawText(box, Qt::AlignHCenter | Qt::TextWordWrap, text);
            }
        }

        void dragEnterEvent(QDragEnterEvent* event) override
        {
            if (event->mimeData()->hasUrls())
                event->acceptProposedAction();
        }

        void dropEvent(QDropEvent* event) override
        {
            if (m_model.loadDroppedVideo(event->mimeData()->urls()))
                event->acceptProposedAction();
            else
                event->ignore();
        }

    private:
        AppModel& m_model;
        QVideoFrame m_frame;
    };

} // namespace

QWidget* makePreviewPane(AppModel& model, ContentView&)
{
    return new PreviewPlaceholder(model, nullptr);
}

QWidget* makeTimelinePane(AppModel& model, ContentView& content)
{
    auto* timeline = new TimelineView(model);
    timeline->setZoom(content.timelineZoom());
    QObject::connect(&content, &ContentView::timelineZoomChanged, timeline, &TimelineView::setZoom);
    return timeline;
}

QWidget* makeInspectorPane(AppModel& model, ContentView&)
{
    return new InspectorView(model);
}

} // namespace cuewright
