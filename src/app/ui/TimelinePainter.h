#pragma once

#include "app/ui/TimelineDragModel.h"

#include <QImage>
#include <QPalette>
#include <QRectF>

#include <cstdint>
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
    // Changes whenever the document does, so a cached picture of it can be trusted.
    std::uint64_t documentGeneration = 0;
    // The cue under the drag as the document holds it, when the caller knows it.
    const CaptionCue* draggedCue = nullptr;
};

// "m:ss" of the ruler: whole minutes, two-digit seconds, floor, never negative.
QString timelineClock(double seconds);

// The bar of a cue at the given timing, in strip coordinates.
QRectF timelineBarRect(double start, double end, double duration, double width);

// Paints the part of the strip inside `exposed`: background, ruler, the bars that cross it
// and the playhead. The dragged cue is drawn last, above its neighbours.
void paintTimeline(QPainter& painter, const TimelineScene& scene, const QRectF& exposed);

// paintTimeline with everything but the dragged bar and the playhead kept as a picture, so a
// drag sample or a playback tick repaints two items over a long document instead of all bars.
class TimelineLayerCache {
public:
    void paint(QPainter& painter, const TimelineScene& scene, const QRectF& exposed, qreal devicePixelRatio);
    void invalidate() { m_image = {}; }

private:
    struct Key {
        std::uint64_t documentGeneration = 0;
        std::optional<Uuid> selectedCueID;
        std::optional<Uuid> excludedCueID;
        double duration = 0;
        double width = 0;
        qint64 paletteKey = 0;
        qreal devicePixelRatio = 1;
        friend bool operator==(const Key&, const Key&) = default;
    };

    QImage m_image;
    QRectF m_rect;
    Key m_key;
};

} // namespace cuewright
