#include "app/ui/TimelinePainter.h"

#include <QFontMetricsF>
#include <QPainter>
#include <QPainterPath>

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
        QPainterPath shape;
        shape.addRoundedRect(bar, G::barCornerRadius, G::barCornerRadius);
        painter.fillPath(shape, accent);

        const QRectF textRect = bar.adjusted(G::textInset, 0, -G::textInset, 0);
        if (textRect.width() > 4) {
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

void paintTimeline(QPainter& painter, const TimelineScene& scene, const QRectF& exposed)
{
    painter.fillRect(exposed, scene.palette.color(QPalette::Base));
    painter.setRenderHint(QPainter::Antialiasing, true);
    painter.setRenderHint(QPainter::TextAntialiasing, true);
    const QFont barFont = painter.font();
    paintRuler(painter, scene, exposed);
    painter.setFont(barFont);

    if (scene.document && scene.index) {
        const auto& cues = scene.document->cues;
        const auto edit = scene.drag ? scene.drag->edit() : std::nullopt;
        // The edit may have carried its bar far from its document place, so it is drawn apart.
        const auto positions = scene.index->visible(cues, exposed.left(), exposed.right(), scene.duration, scene.width);
        const CaptionCue* dragged = nullptr;
        for (const auto position : positions) {
            const auto& cue = cues[position];
            if (edit && cue.id == edit->id) {
                dragged = &cue;
                continue;
            }
            paintBar(painter, scene, cue, scene.selectedCueID == cue.id);
        }
        if (edit && !dragged) {
            for (const auto& cue : cues)
                if (cue.id == edit->id) {
                    dragged = &cue;
                    break;
                }
        }
        if (dragged)
            paintBar(painter, scene, *dragged, scene.selectedCueID == dragged->id);
    }

    const double playheadX = G::x(scene.playhead, scene.duration, scene.width);
    painter.fillRect(QRectF(playheadX, 0, G::playheadWidth, G::stripHeight), QColor(52, 199, 89));
}

} // namespace cuewright
