#pragma once

#include "app/ui/TimelineDragModel.h"

#include <QPalette>
#include <QRectF>

#include <optional>

class QPainter;

namespace cuewright {

// Everything one paint of the timeline strip reads.
struct TimelineScene {
    const CaptionDocument* document = nullptr;
    const TimelineCueIndex* index = nullptr;
    const TimelineDragModel* drag = nullptr;
    std::optional<Uuid> selectedCueID;
    double duration = 0;
    double playhead = 0;
    double width = TimelineGeometry::baseWidth; // W
    QPalette palette;
};

// "m:ss" of the ruler: whole minutes, two-digit seconds, floor, never negative.
QString timelineClock(double seconds);

// The bar of a cue at the given timing, in strip coordinates.
QRectF timelineBarRect(double start, double end, double duration, double width);

// Paints the part of the strip inside `exposed`: background, ruler, the bars that cross it
// and the playhead. The dragged cue is drawn last, above its neighbours.
void paintTimeline(QPainter& painter, const TimelineScene& scene, const QRectF& exposed);

} // namespace cuewright
