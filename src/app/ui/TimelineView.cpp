#include "app/ui/TimelineView.h"

#include "app/model/AppModel.h"

#include <QHelpEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPaintEvent>
#include <QPainter>
#include <QScrollBar>
#include <QToolTip>

#include <cmath>

namespace cuewright {

namespace G = TimelineGeometry;

TimelineStrip::TimelineStrip(AppModel& model, QWidget* parent)
    : QWidget(parent)
    , m_model(model)
{
    setObjectName(QStringLiteral("timelineStrip"));
    setAccessibleName(QStringLiteral("Timeline"));
    setAccessibleDescription(QStringLiteral("Drag the middle to move. Drag either edge to trim."));
    setFocusPolicy(Qt::ClickFocus);
    setMouseTracking(false);
    setAttribute(Qt::WA_OpaquePaintEvent);
    setFixedSize(int(std::ceil(contentWidth())), int(G::stripHeight));
    rebuildIndex();

    connect(&m_model, &AppModel::documentChanged, this, [this] {
        rebuildIndex();
        // An undo during a drag may take the dragged cue away.
        if (const auto& edit = m_drag.edit()) {
            bool found = false;
            for (const auto& cue : m_model.document().cues)
                if (cue.id == edit->id) {
                    found = true;
                    break;
                }
            if (!found)
                cancelGesture();
        }
        update();
    });
    connect(&m_model, &AppModel::selectedCueIDChanged, this, qOverload<>(&QWidget::update));
    connect(&m_model, &AppModel::durationChanged, this, [this] {
        rebuildIndex();
        update();
    });
    connect(&m_model, &AppModel::playheadChanged, this, &TimelineStrip::updatePlayhead);
}

QSize TimelineStrip::sizeHint() const
{
    return { int(std::ceil(contentWidth())), int(G::stripHeight) };
}

void TimelineStrip::setZoom(double zoom)
{
    if (!(zoom > 0) || zoom == m_zoom)
        return;
    m_zoom = zoom;
    setFixedSize(int(std::ceil(contentWidth())), int(G::stripHeight));
    update();
}

void TimelineStrip::rebuildIndex()
{
    m_index = TimelineCueIndex(m_model.document().cues);
}

TimelineScene TimelineStrip::scene() const
{
    TimelineScene scene;
    scene.document = &m_model.document();
    scene.index = &m_index;
    scene.drag = &m_drag;
    scene.selectedCueID = m_model.selectedCueID();
    scene.duration = m_model.duration();
    scene.playhead = m_model.playhead();
    scene.width = contentWidth();
    scene.palette = palette();
    scene.documentGeneration = m_documentGeneration;
    scene.draggedCue = m_barDrag ? &m_barDrag->cue : nullptr;
    return scene;
}

void TimelineStrip::paintEvent(QPaintEvent* event)
{
    QPainter painter(this);
    const auto current = scene();
    m_cache.paint(painter, current, QRectF(event->rect()), devicePixelRatioF());
    m_paintedPlayheadX = G::x(current.playhead, current.duration, current.width);
}

void TimelineStrip::updatePlayhead()
{
    // Only the old and the new line, so playback costs two thin repaints per tick.
    const double x = G::x(m_model.playhead(), m_model.duration(), contentWidth());
    update(QRectF(m_paintedPlayheadX - 1, 0, G::playheadWidth + 2, G::stripHeight).toAlignedRect());
    update(QRectF(x - 1, 0, G::playheadWidth + 2, G::stripHeight).toAlignedRect());
}

std::optional<TimelineStrip::Hit> TimelineStrip::hitTest(QPointF point) const
{
    if (point.y() < G::barTop || point.y() >= G::barTop + G::barHeight)
        return std::nullopt;
    const auto& cues = m_model.document().cues;
    const double duration = m_model.duration();
    const double width = contentWidth();
    const auto partAt = [&](const CaptionCue& cue) -> std::optional<TimelineBarPart> {
        const auto timing = m_drag.displayedTiming(cue);
        const QRectF bar = timelineBarRect(timing.start, timing.end, duration, width);
        if (point.x() < bar.left() || point.x() >= bar.right())
            return std::nullopt;
        if (point.x() < bar.left() + G::trimHandleWidth)
            return TimelineBarPart::startHandle;
        if (point.x() >= bar.right() - G::trimHandleWidth)
            return TimelineBarPart::endHandle;
        return TimelineBarPart::middle;
    };
    // The dragged bar is drawn on top, so it takes the press first.
    if (const auto& edit = m_drag.edit(); edit && m_barDrag && m_barDrag->cue.id == edit->id)
        if (const auto part = partAt(m_barDrag->cue))
            return Hit { m_barDrag->cue, *part };
    const auto positions = m_index.visible(cues, point.x() - 1, point.x() + 1, duration, width);
    for (auto it = positions.rbegin(); it != positions.rend(); ++it) {
        const auto& cue = cues[*it];
        if (const auto part = partAt(cue))
            return Hit { cue, *part };
    }
    return std::nullopt;
}

void TimelineStrip::mousePressEvent(QMouseEvent* event)
{
    if (event->button() != Qt::LeftButton) {
        event->ignore();
        return;
    }
    const QPointF position = event->position();
    if (const auto hit = hitTest(position)) {
        m_barDrag = BarDrag { hit->cue, hit->part, position.x() };
        dragSample(position.x());
    } else {
        m_scrubbing = true;
        m_model.seek(G::scrubTime(position.x(), contentWidth(), m_model.duration()));
    }
    event->accept();
}

void TimelineStrip::mouseMoveEvent(QMouseEvent* event)
{
    if (!(event->buttons() & Qt::LeftButton))
        return;
    if (m_barDrag)
        dragSample(event->position().x());
    else if (m_scrubbing)
        m_model.seek(G::scrubTime(event->position().x(), contentWidth(), m_model.duration()));
}

void TimelineStrip::dragSample(double x)
{
    const auto& drag = *m_barDrag;
    m_drag.sample(drag.cue, drag.part, x - drag.pressX, contentWidth(), m_model.document().cues, m_model.duration());
    if (m_model.selectedCueID() != drag.cue.id)
        m_model.setSelectedCueID(drag.cue.id);
    update();
}

void TimelineStrip::mouseReleaseEvent(QMouseEvent* event)
{
    if (event->button() != Qt::LeftButton)
        return;
    m_scrubbing = false;
    if (!m_barDrag)
        return;
    const auto target = seekTarget(m_barDrag->part);
    m_barDrag.reset();
    if (const auto commit = m_drag.commit(target)) {
        m_model.setCueTiming(commit->id, commit->start, commit->end);
        m_model.seek(commit->seekTime);
    }
    m_drag.clear();
    update();
}

void TimelineStrip::cancelGesture()
{
    const bool hadEdit = m_drag.edit().has_value();
    m_barDrag.reset();
    m_scrubbing = false;
    m_drag.clear();
    if (hadEdit)
        update();
}

void TimelineStrip::keyPressEvent(QKeyEvent* event)
{
    if (event->key() == Qt::Key_Escape && (m_barDrag || m_scrubbing)) {
        cancelGesture();
        return;
    }
    // Space, delete and the rest belong to the window.
    event->ignore();
}

void TimelineStrip::focusOutEvent(QFocusEvent* event)
{
    // A popup or another window took the mouse: no release will come.
    if (QWidget::mouseGrabber() != this)
        cancelGesture();
    QWidget::focusOutEvent(event);
}

void TimelineStrip::hideEvent(QHideEvent* event)
{
    cancelGesture();
    QWidget::hideEvent(event);
}

void TimelineStrip::changeEvent(QEvent* event)
{
    if (event->type() == QEvent::ActivationChange && !isActiveWindow())
        cancelGesture();
    QWidget::changeEvent(event);
}

bool TimelineStrip::event(QEvent* event)
{
    if (event->type() == QEvent::ToolTip) {
        auto* help = static_cast<QHelpEvent*>(event);
        const auto hit = hitTest(help->pos());
        if (!hit) {
            QToolTip::hideText();
            event->ignore();
            return true;
        }
        switch (hit->part) {
        case TimelineBarPart::startHandle:
            QToolTip::showText(help->globalPos(), QStringLiteral("Drag to change caption start"), this);
            break;
        case TimelineBarPart::middle:
            QToolTip::showText(help->globalPos(), QStringLiteral("Drag to move caption"), this);
            break;
        case TimelineBarPart::endHandle:
            QToolTip::showText(help->globalPos(), QStringLiteral("Drag to change caption end"), this);
            break;
        }
        return true;
    }
    return QWidget::event(event);
}

TimelineView::TimelineView(AppModel& model, QWidget* parent)
    : QScrollArea(parent)
    , m_strip(new TimelineStrip(model, this))
{
    setObjectName(QStringLiteral("timelineView"));
    setWidget(m_strip);
    setWidgetResizable(false);
    setAlignment(Qt::AlignLeft | Qt::AlignTop);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setFrameShape(QFrame::NoFrame);
    setFixedHeight(int(G::stripHeight) + horizontalScrollBar()->sizeHint().height());
}

void TimelineView::setZoom(double zoom)
{
    m_strip->setZoom(zoom);
}

} // namespace cuewright
