#include "app/ui/TimelinePainter.h"

#include <QFontMetricsF>
#include <QPainter>

#include <algorithm>
#include <cmath>

namespace cuewright {

namespace G = TimelineGeometry;

QString timelineClock(double seconds)
{
    const double value = seconds >= 0 && std::isfinite(seconds) ? std::floor(seconds) : 0;
    const auto whole = static_cast<long long>(value);
    return QStringLiteral("%1:%2").arg(whole / 60).arg(whole % 60, 2, 10, QLatin1Char('0'));
}

QRectF timelineBarRect(double start, double end, double duration, double width)
{
    const double barWidth = std::max(G::x(end - start, duration, width), G::minimumBarWidth);
    return { G::x(start, duration, width), G::barTop, barWidth, G::barHeight };
}

namespace {

    QFont scaledFont(const QFont& base, double factor)
    {
        QFont font = base;
        font.setPointSizeF(std::max(6.0, base.pointSizeF() * factor));
        return font;
    }

    void paintRuler(QPainter& painter, const TimelineScene& scene, const QRectF& exposed)
    {
        if (!(scene.duration > 0))
            return;
        QColor secondary = scene.palette.color(QPalette::PlaceholderText);
        QColor tickColor = secondary;
        tickColor.setAlphaF(0.6f);
        const QFont labelFont = scaledFont(painter.font(), 0.8);
        const QFontMetricsF metrics(labelFont);
        painter.setFont(labelFont);
        const double interval = G::tickInterval(scene.duration);
        // Only the ticks whose labels may reach into the exposed stretch.
        const double secondsPerPoint = scene.duration / scene.width;
        const double firstTime = std::max(0.0, (exposed.left() - 60) * secondsPerPoint);
        const auto first = static_cast<long>(std::floor(firstTime / interval));
        for (long i = first;; ++i) {
            const double t = static_cast<double>(i) * interval;
            if (t > scene.duration)
                break;
            const double x = G::x(t, scene.duration, scene.width);
            if (x > exposed.right())
                break;
            painter.setPen(QPen(tickColor, 1.0));
            painter.drawLine(QPointF(x, 0), QPointF(x, G::tickHeight));
            painter.setPen(secondary);
            painter.drawText(QPointF(x + 4, 15 + (metrics.ascent() - metrics.descent()) / 2), timelineClock(t));
        }
    }

    void paintBar(QPainter& painter, const TimelineScene& scene, const CaptionCue& cue, bool selected)
    {
        const auto timing = scene.drag ? scene.drag->displayedTiming(cue) : CaptionTimeRange { cue.start, cue.end };
        const QRectF bar = timelineBarRect(timing.start, timing.end, scene.duration, scene.width);

        QColor accent = scene.palette.color(QPalette::Highlight);
        accent.setAlphaF(selected ? 1.0f : 0.38f);
        painter.setPen(Qt::NoPen);
        painter.setBrush(accent);
        painter.drawRoundedRect(bar, G::barCornerRadius, G::barCornerRadius);

        // Too narrow for a letter: eliding thousands of texts to nothing is what a dense
        // zoomed-out strip would otherwise spend its time on.
        const QRectF textRect = bar.adjusted(G::textInset, 0, -G::textInset, 0);
        if (textRect.width() >= 16) {
            painter.setPen(scene.palette.color(selected ? QPalette::HighlightedText : QPalette::Text));
            const QString text = QString::fromStdString(cue.text).replace(QLatin1Char('\n'), QLatin1Char(' '));
            const QString line = painter.fontMetrics().elidedText(text, Qt::ElideRight, int(textRect.width()));
            painter.drawText(textRect, Qt::AlignVCenter | Qt::AlignLeft | Qt::TextSingleLine, line);
        }

        QColor grip(Qt::white);
        grip.setAlphaF(selected ? 0.95f : 0.65f);
        painter.setPen(Qt::NoPen);
        painter.setBrush(grip);
        const double gripTop = bar.top() + (G::barHeight - G::gripHeight) / 2;
        for (const double areaLeft : { bar.left(), bar.right() - G::trimHandleWidth }) {
            const QRectF capsule(
                areaLeft + (G::trimHandleWidth - G::gripWidth) / 2, gripTop, G::gripWidth, G::gripHeight);
            painter.drawRoundedRect(capsule, G::gripWidth / 2, G::gripWidth / 2);
        }
        painter.setBrush(Qt::NoBrush);
    }

} // namespace

namespace {

    // Background, ruler and every bar except `excluded`.
    void paintStatic(
        QPainter& painter, const TimelineScene& scene, const QRectF& exposed, const std::optional<Uuid>& excluded);
    void paintPlayhead(QPainter& painter, const TimelineScene& scene)
    {
        const double playheadX = G::x(scene.playhead, scene.duration, scene.width);
        painter.fillRect(QRectF(playheadX, 0, G::playheadWidth, G::stripHeight), QColor(52, 199, 89));
    }

    const CaptionCue* findCue(const TimelineScene& scene, const Uuid& id)
    {
        if (scene.draggedCue && scene.draggedCue->id == id)
            return scene.draggedCue;
        const auto& cues = scene.document->cues;
        for (const auto& cue : cues)
            if (cue.id == id)
                return &cue;
        return nullptr;
    }

} // namespace

void paintTimeline(QPainter& painter, const TimelineScene& scene, const QRectF& exposed)
{
    const auto edit = scene.drag ? scene.drag->edit() : std::nullopt;
    paintStatic(painter, scene, exposed, edit ? std::optional(edit->id) : std::nullopt);
    if (edit && scene.document)
        if (const auto* dragged = findCue(scene, edit->id))
            paintBar(painter, scene, *dragged, scene.selectedCueID == dragged->id);
    paintPlayhead(painter, scene);
}

void TimelineLayerCache::paint(QPainter& painter, const TimelineScene& scene, const QRectF& exposed, qreal dpr)
{
    const auto edit = scene.drag ? scene.drag->edit() : std::nullopt;
    const Key key { scene.documentGeneration, scene.selectedCueID, edit ? std::optional(edit->id) : std::nullopt,
        scene.duration, scene.width, scene.palette.cacheKey(), dpr };
    if (m_image.isNull() || !(key == m_key) || !m_rect.contains(exposed)) {
        m_rect = exposed.toAlignedRect();
        m_key = key;
        m_image = QImage((m_rect.size() * dpr).toSize(), QImage::Format_ARGB32_Premultiplied);
        m_image.setDevicePixelRatio(dpr);
        QPainter layer(&m_image);
        layer.setFont(painter.font());
        layer.translate(-m_rect.topLeft());
        paintStatic(layer, scene, m_rect, key.excludedCueID);
    }
    const QRectF source((exposed.topLeft() - m_rect.topLeft()) * dpr, exposed.size() * dpr);
    painter.drawImage(exposed, m_image, source);
    painter.setRenderHint(QPainter::Antialiasing, true);
    painter.setRenderHint(QPainter::TextAntialiasing, true);
    if (edit && scene.document) {
        if (const auto* dragged = findCue(scene, edit->id)) {
            painter.save();
            painter.setClipRect(exposed);
            paintBar(painter, scene, *dragged, scene.selectedCueID == dragged->id);
            painter.restore();
        }
    }
    paintPlayhead(painter, scene);
}

namespace {

    void paintStatic(
        QPainter& painter, const TimelineScene& scene, const QRectF& exposed, const std::optional<Uuid>& excluded)
    {
        painter.fillRect(exposed, scene.palette.color(QPalette::Base));
        painter.setRenderHint(QPainter::Antialiasing, true);
        painter.setRenderHint(QPainter::TextAntialiasing, true);
        const QFont barFont = painter.font();
        paintRuler(painter, scene, exposed);
        painter.setFont(barFont);

        if (scene.document && scene.index) {
            const auto& cues = scene.document->cues;
            const auto positions
                = scene.index->visible(cues, exposed.left(), exposed.right(), scene.duration, scene.width);
            // Where many bars share one pixel column and width, only the topmost can be seen.
            const CaptionCue* pending = nullptr;
            QRect pendingRect;
            for (const auto position : positions) {
                const auto& cue = cues[position];
                if (excluded && cue.id == *excluded)
                    continue;
                const QRect rect = timelineBarRect(cue.start, cue.end, scene.duration, scene.width).toRect();
                const bool selected = scene.selectedCueID == cue.id;
                if (pending && (rect != pendingRect || selected || scene.selectedCueID == pending->id))
                    paintBar(painter, scene, *pending, scene.selectedCueID == pending->id);
                pending = &cue;
                pendingRect = rect;
            }
            if (pending)
                paintBar(painter, scene, *pending, scene.selectedCueID == pending->id);
        }
    }

} // namespace

} // namespace cuewright
