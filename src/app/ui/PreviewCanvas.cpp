#include "app/ui/PreviewCanvas.h"

#include "app/model/AppModel.h"
#include "app/ui/ModelObserver.h"
#include "app/ui/SymbolIcons.h"
#include "app/ui/ViewStyle.h"

#include <QDragEnterEvent>
#include <QDropEvent>
#include <QFileInfo>
#include <QKeyEvent>
#include <QLabel>
#include <QMediaPlayer>
#include <QMimeData>
#include <QMouseEvent>
#include <QPainter>
#include <QPainterPath>
#include <QPushButton>
#include <QVBoxLayout>
#include <QVideoFrame>
#include <QVideoSink>

#include <algorithm>
#include <cmath>
#include <vector>

namespace cuewright {

namespace G = CanvasGeometry;

namespace {

    constexpr double shadowRadius = 3.0;
    constexpr double shadowOffsetY = 2.0;
    constexpr int shadowMargin = 6;

    QColor qColor(const RGBAColor& c)
    {
        return QColor::fromRgbF(float(c.red), float(c.green), float(c.blue), float(c.alpha));
    }

    // Two box-blur passes over the alpha channel approximate a Gaussian of `radius`.
    QImage blurredAlpha(const QImage& source, int radius)
    {
        const int w = source.width();
        const int h = source.height();
        std::vector<int> alpha(std::size_t(w) * std::size_t(h));
        for (int y = 0; y < h; ++y) {
            const auto* line = reinterpret_cast<const QRgb*>(source.constScanLine(y));
            for (int x = 0; x < w; ++x)
                alpha[std::size_t(y) * std::size_t(w) + std::size_t(x)] = qAlpha(line[x]);
        }
        std::vector<int> tmp(alpha.size());
        const auto pass = [&](std::vector<int>& in, std::vector<int>& out, bool horizontal) {
            const int outer = horizontal ? h : w;
            const int inner = horizontal ? w : h;
            for (int o = 0; o < outer; ++o) {
                int sum = 0;
                const auto at = [&](int i) -> int& {
                    return horizontal ? in[std::size_t(o) * std::size_t(w) + std::size_t(i)]
                                      : in[std::size_t(i) * std::size_t(w) + std::size_t(o)];
                };
                for (int i = -radius; i <= radius; ++i)
                    sum += (i >= 0 && i < inner) ? at(i) : 0;
                for (int i = 0; i < inner; ++i) {
                    (horizontal ? out[std::size_t(o) * std::size_t(w) + std::size_t(i)]
                                : out[std::size_t(i) * std::size_t(w) + std::size_t(o)])
                        = sum / (2 * radius + 1);
                    const int leaving = i - radius;
                    const int entering = i + radius + 1;
                    sum -= (leaving >= 0) ? at(leaving) : 0;
                    sum += (entering < inner) ? at(entering) : 0;
                }
            }
        };
        for (int round = 0; round < 2; ++round) {
            pass(alpha, tmp, true);
            pass(tmp, alpha, false);
        }
        QImage shadow(w, h, QImage::Format_ARGB32_Premultiplied);
        for (int y = 0; y < h; ++y) {
            auto* line = reinterpret_cast<QRgb*>(shadow.scanLine(y));
            for (int x = 0; x < w; ++x)
                line[x] = qRgba(0, 0, 0, int(alpha[std::size_t(y) * std::size_t(w) + std::size_t(x)] * 0.75));
        }
        shadow.setDevicePixelRatio(source.devicePixelRatio());
        return shadow;
    }

    QWidget* placeholder(const char* icon, const QString& title, QLabel** description, QPushButton* action)
    {
        auto* pane = new QWidget;
        auto* layout = new QVBoxLayout(pane);
        layout->addStretch(1);
        auto* image = new QLabel;
        image->setPixmap(symbolIcon(QString::fromLatin1(icon)).pixmap(48, 48));
        image->setAlignment(Qt::AlignHCenter);
        layout->addWidget(image);
        auto* heading = new QLabel(title);
        QFont font = ViewStyle::headlineFont();
        font.setPointSizeF(font.pointSizeF() * 1.4);
        heading->setFont(font);
        heading->setAlignment(Qt::AlignHCenter);
        heading->setStyleSheet(QStringLiteral("color: white;"));
        layout->addWidget(heading);
        if (description) {
            *description = new QLabel;
            (*description)->setAlignment(Qt::AlignHCenter);
            (*description)->setStyleSheet(QStringLiteral("color: rgba(255, 255, 255, 160);"));
            layout->addWidget(*description);
        }
        action->setDefault(true);
        action->setStyleSheet(QStringLiteral("QPushButton { background: palette(highlight); color: "
                                             "palette(highlighted-text); border-radius: 6px; padding: 5px 14px; }"));
        auto* actions = new QHBoxLayout;
        actions->addStretch(1);
        actions->addWidget(action);
        actions->addStretch(1);
        layout->addLayout(actions);
        layout->addStretch(1);
        return pane;
    }

    // Above everything, never in the way of the drop it announces.
    class DropOverlay final : public QWidget {
    public:
        using QWidget::QWidget;

    protected:
        void paintEvent(QPaintEvent*) override
        {
            QPainter painter(this);
            painter.setRenderHint(QPainter::Antialiasing);
            const QRectF frame = QRectF(rect()).adjusted(14, 14, -14, -14);
            QColor fill = ViewStyle::activeGreen();
            fill.setAlphaF(0.12f);
            painter.setPen(QPen(ViewStyle::activeGreen(), 3.0));
            painter.setBrush(fill);
            painter.drawRoundedRect(frame, 18, 18);

            QFont font = ViewStyle::headlineFont();
            font.setPointSizeF(font.pointSizeF() * 1.3);
            font.setWeight(QFont::DemiBold);
            painter.setFont(font);
            const QString text = QStringLiteral("Drop video to open");
            const QFontMetricsF metrics(font);
            const double iconSize = metrics.height();
            const QSizeF content(iconSize + 8 + metrics.horizontalAdvance(text), metrics.height());
            QRectF capsule(QPointF(), content + QSizeF(40, 24));
            capsule.moveCenter(QRectF(rect()).center());
            painter.setPen(Qt::NoPen);
            painter.setBrush(QColor(40, 40, 40, 210));
            painter.drawRoundedRect(capsule, capsule.height() / 2, capsule.height() / 2);
            const QRectF inner = capsule.adjusted(20, 12, -20, -12);
            symbolIcon(QStringLiteral("film.badge.plus"))
                .paint(&painter, QRectF(inner.left(), inner.top(), iconSize, iconSize).toRect());
            painter.setPen(Qt::white);
            painter.drawText(inner.adjusted(iconSize + 8, 0, 0, 0), Qt::AlignVCenter | Qt::AlignLeft, text);
        }
    };

} // namespace

PreviewCaptionImage renderPreviewCaption(
    const CaptionCue& cue, const CaptionStyle& style, bool selected, double maximumWidth, qreal dpr)
{
    QFont font;
    font.setBold(true);
    // The style's size counts in screen points, the same unit as the view's own geometry.
    font.setPixelSize(std::max(1, static_cast<int>(std::lround(style.fontSize))));
    const QFontMetricsF metrics(font);
    const QString text = QString::fromStdString(cue.text);
    const double textWidthLimit = std::max(1.0, maximumWidth - 2 * G::horizontalPadding);
    const int flags = Qt::AlignHCenter | Qt::TextWordWrap;
    const QRectF textBounds = metrics.boundingRect(QRectF(0, 0, textWidthLimit, 1e6), flags, text);
    const QSizeF box(std::min(maximumWidth, std::ceil(textBounds.width()) + 2 * G::horizontalPadding),
        std::ceil(textBounds.height()) + 2 * G::verticalPadding);

    const QSizeF imageSize = box + QSizeF(2 * shadowMargin, 2 * shadowMargin + shadowOffsetY);
    QImage content((imageSize * dpr).toSize(), QImage::Format_ARGB32_Premultiplied);
    content.setDevicePixelRatio(dpr);
    content.fill(Qt::transparent);
    const QRectF boxRect(QPointF(shadowMargin, shadowMargin), box);
    {
        QPainter painter(&content);
        painter.setRenderHint(QPainter::Antialiasing);
        if (style.backgroundEnabled) {
            painter.setPen(Qt::NoPen);
            painter.setBrush(qColor(style.backgroundColor));
            painter.drawRoundedRect(boxRect, G::cornerRadius, G::cornerRadius);
        }
        painter.setFont(font);
        painter.setPen(qColor(style.textColor));
        painter.drawText(
            boxRect.adjusted(G::horizontalPadding, G::verticalPadding, -G::horizontalPadding, -G::verticalPadding),
            flags, text);
    }

    QImage result((imageSize * dpr).toSize(), QImage::Format_ARGB32_Premultiplied);
    result.setDevicePixelRatio(dpr);
    result.fill(Qt::transparent);
    QPainter painter(&result);
    painter.setRenderHint(QPainter::Antialiasing);
    if (style.shadowEnabled)
        painter.drawImage(QPointF(0, shadowOffsetY), blurredAlpha(content, int(std::lround(shadowRadius * dpr))));
    painter.drawImage(QPointF(0, 0), content);
    if (selected) {
        QPen dashed(ViewStyle::activeGreen(), 2.0);
        dashed.setDashPattern({ 3.0, 2.0 }); // 6 on, 4 off at width 2
        painter.setPen(dashed);
        painter.setBrush(Qt::NoBrush);
        painter.drawRoundedRect(boxRect, G::cornerRadius, G::cornerRadius);
    }
    painter.end();
    return { result, box, QPointF(shadowMargin, shadowMargin) };
}

PreviewCanvas::PreviewCanvas(AppModel& model, QWidget* parent)
    : QWidget(parent)
    , m_model(model)
{
    setObjectName(QStringLiteral("previewCanvas"));
    setAccessibleName(QStringLiteral("Video preview"));
    setToolTip(QStringLiteral("Drop a MOV, MP4 or other video file here"));
    setAcceptDrops(true);
    setFocusPolicy(Qt::ClickFocus);
    setMinimumSize(160, 120);
    setAttribute(Qt::WA_OpaquePaintEvent);

    auto* relink = new QPushButton(QStringLiteral("Relink Video\u2026"));
    relink->setObjectName(QStringLiteral("relinkVideoButton"));
    relink->setAccessibleName(QStringLiteral("relinkVideoButton"));
    connect(relink, &QPushButton::clicked, &m_model, &AppModel::relinkVideo);
    m_missingPlaceholder
        = placeholder("questionmark.video", QStringLiteral("Video is missing"), &m_missingName, relink);
    m_missingPlaceholder->setParent(this);
    m_missingPlaceholder->setObjectName(QStringLiteral("missingVideoPlaceholder"));

    auto* add = new QPushButton(QStringLiteral("Add Video\u2026"));
    add->setObjectName(QStringLiteral("emptyAddVideoButton"));
    add->setAccessibleName(QStringLiteral("emptyAddVideoButton"));
    connect(add, &QPushButton::clicked, &m_model, &AppModel::addVideo);
    m_emptyPlaceholder = placeholder("film", QStringLiteral("Add a video"), nullptr, add);
    m_emptyPlaceholder->setParent(this);
    m_emptyPlaceholder->setObjectName(QStringLiteral("emptyVideoPlaceholder"));

    m_dropOverlay = new DropOverlay(this);
    m_dropOverlay->setObjectName(QStringLiteral("videoDropOverlay"));
    m_dropOverlay->setAttribute(Qt::WA_TransparentForMouseEvents);
    m_dropOverlay->hide();

    if (auto* player = qobject_cast<QMediaPlayer*>(model.player().videoOutputHost())) {
        if (QVideoSink* sink = player->videoSink())
            connect(sink, &QVideoSink::videoFrameChanged, this,
                [this](const QVideoFrame& frame) { setFrame(frame.toImage()); });
    }
    observe(
        model, this, [this] { refreshContent(); }, &AppModel::videoURLChanged, &AppModel::missingVideoPathChanged);
    observe(
        model, this, [this] { update(); }, &AppModel::playheadChanged, &AppModel::documentChanged,
        &AppModel::styleChanged, &AppModel::selectedCueIDChanged);
    connect(&m_model, &AppModel::documentChanged, this, [this] {
        // An undo in the middle of a drag may take the cue away.
        if (const auto& edit = m_drag.edit(); edit && !activeCue())
            cancelGesture();
    });
}

void PreviewCanvas::setFrame(const QImage& frame)
{
    m_frame = frame;
    update();
}

void PreviewCanvas::refreshContent()
{
    const bool hasVideo = !m_model.videoURL().isEmpty();
    const auto missing = m_model.missingVideoPath();
    m_missingPlaceholder->setVisible(!hasVideo && missing.has_value());
    m_emptyPlaceholder->setVisible(!hasVideo && !missing.has_value());
    if (missing)
        m_missingName->setText(QFileInfo(*missing).fileName());
    if (!hasVideo) {
        m_frame = {};
        cancelGesture();
    }
    m_dropOverlay->raise();
    update();
}

void PreviewCanvas::resizeEvent(QResizeEvent* event)
{
    m_missingPlaceholder->setGeometry(rect());
    m_emptyPlaceholder->setGeometry(rect());
    m_dropOverlay->setGeometry(rect());
    QWidget::resizeEvent(event);
}

std::optional<CaptionCue> PreviewCanvas::activeCue() const
{
    if (m_model.videoURL().isEmpty())
        return std::nullopt;
    return m_model.document().cueAt(m_model.playhead());
}

QRectF PreviewCanvas::captionRect() const
{
    const auto cue = activeCue();
    if (!cue)
        return {};
    const auto caption = renderPreviewCaption(*cue, m_model.style(), false, G::widthLimit * width(), 1.0);
    const auto centre = m_drag.displayedCanvasPosition(*cue, m_model.style(), width(), height());
    QRectF box(QPointF(), caption.boxSize);
    box.moveCenter({ centre.x, centre.y });
    return box;
}

void PreviewCanvas::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.fillRect(rect(), Qt::black);
    if (m_model.videoURL().isEmpty())
        return;
    if (!m_frame.isNull()) {
        painter.setRenderHint(QPainter::SmoothPixmapTransform);
        QRectF target(QPointF(), QSizeF(m_frame.size()).scaled(size(), Qt::KeepAspectRatio));
        target.moveCenter(QRectF(rect()).center());
        painter.drawImage(target, m_frame);
    }
    const auto cue = activeCue();
    if (!cue)
        return;
    const auto caption = renderPreviewCaption(
        *cue, m_model.style(), m_model.selectedCueID() == cue->id, G::widthLimit * width(), devicePixelRatioF());
    const auto centre = m_drag.displayedCanvasPosition(*cue, m_model.style(), width(), height());
    const QPointF boxTopLeft(centre.x - caption.boxSize.width() / 2, centre.y - caption.boxSize.height() / 2);
    painter.drawImage(boxTopLeft - caption.boxOffset, caption.image);
}

void PreviewCanvas::mousePressEvent(QMouseEvent* event)
{
    if (event->button() != Qt::LeftButton) {
        event->ignore();
        return;
    }
    const auto cue = activeCue();
    if (cue && captionRect().contains(event->position()))
        m_press = Press { *cue, event->position(), false };
    event->accept();
}

void PreviewCanvas::mouseMoveEvent(QMouseEvent* event)
{
    if (!m_press || !(event->buttons() & Qt::LeftButton))
        return;
    const QPointF translation = event->position() - m_press->position;
    if (!m_press->dragging && std::hypot(translation.x(), translation.y()) < G::dragThreshold)
        return;
    m_press->dragging = true;
    if (!m_drag.sample(m_press->cue, m_model.style(), translation.x(), translation.y(), width(), height()))
        return;
    if (m_model.selectedCueID() != m_press->cue.id)
        m_model.setSelectedCueID(m_press->cue.id);
    update();
}

void PreviewCanvas::mouseReleaseEvent(QMouseEvent* event)
{
    if (event->button() != Qt::LeftButton || !m_press)
        return;
    const auto press = *m_press;
    m_press.reset();
    if (!press.dragging) {
        m_model.setSelectedCueID(press.cue.id);
        return;
    }
    if (const auto edit = m_drag.edit())
        m_model.setCuePosition(edit->id, edit->x, edit->y);
    m_drag.clear();
    update();
}

void PreviewCanvas::cancelGesture()
{
    const bool hadEdit = m_drag.edit().has_value();
    m_press.reset();
    m_drag.clear();
    if (hadEdit)
        update();
}

void PreviewCanvas::keyPressEvent(QKeyEvent* event)
{
    if (event->key() == Qt::Key_Escape && m_press) {
        cancelGesture();
        return;
    }
    event->ignore();
}

void PreviewCanvas::focusOutEvent(QFocusEvent* event)
{
    if (QWidget::mouseGrabber() != this)
        cancelGesture();
    QWidget::focusOutEvent(event);
}

void PreviewCanvas::hideEvent(QHideEvent* event)
{
    cancelGesture();
    QWidget::hideEvent(event);
}

void PreviewCanvas::changeEvent(QEvent* event)
{
    if (event->type() == QEvent::ActivationChange && !isActiveWindow())
        cancelGesture();
    QWidget::changeEvent(event);
}

void PreviewCanvas::setVideoDropTargeted(bool targeted)
{
    m_videoDropTargeted = targeted;
    m_dropOverlay->setVisible(targeted);
    if (targeted)
        m_dropOverlay->raise();
}

void PreviewCanvas::dragEnterEvent(QDragEnterEvent* event)
{
    if (!event->mimeData()->hasUrls())
        return;
    setVideoDropTargeted(true);
    event->acceptProposedAction();
}

void PreviewCanvas::dragLeaveEvent(QDragLeaveEvent* event)
{
    setVideoDropTargeted(false);
    QWidget::dragLeaveEvent(event);
}

void PreviewCanvas::dropEvent(QDropEvent* event)
{
    setVideoDropTargeted(false);
    if (m_model.loadDroppedVideo(event->mimeData()->urls()))
        event->acceptProposedAction();
    else
        event->ignore();
}

} // namespace cuewright
