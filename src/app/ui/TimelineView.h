#pragma once

// Qt first: moc trips over <concepts> when the core headers come before it.
#include <QScrollArea>

#include "app/ui/TimelineDragModel.h"
#include "app/ui/TimelinePainter.h"

#include <optional>

namespace cuewright {

class AppModel;

// The strip inside the timeline's scroll area: fixed size, the ruler, one bar per cue and
// the playhead. Presses on a bar drag it; presses elsewhere scrub.
class TimelineStrip : public QWidget {
    Q_OBJECT

public:
    explicit TimelineStrip(AppModel& model, QWidget* parent = nullptr);

    void setZoom(double zoom);
    double zoom() const { return m_zoom; }
    double contentWidth() const { return TimelineGeometry::contentWidth(m_zoom); }

    const TimelineDragModel& dragModel() const { return m_drag; }
    // The bar area under a point of the strip, if any.
    struct Hit {
        CaptionCue cue;
        TimelineBarPart part;
    };
    std::optional<Hit> hitTest(QPointF point) const;

    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void changeEvent(QEvent* event) override;
    bool event(QEvent* event) override;

private:
    struct BarDrag {
        CaptionCue cue;
        TimelineBarPart part;
        double pressX;
    };

    void rebuildIndex();
    void dragSample(double x);
    void cancelGesture();
    void updatePlayhead();
    TimelineScene scene() const;

    AppModel& m_model;
    double m_zoom = 1.0;
    TimelineDragModel m_drag;
    TimelineCueIndex m_index;
    TimelineLayerCache m_cache;
    std::uint64_t m_documentGeneration = 0;
    std::optional<BarDrag> m_barDrag;
    bool m_scrubbing = false;
    double m_paintedPlayheadX = 0;
};

// The timeline: a horizontally scrolling strip under the transport bar.
class TimelineView : public QScrollArea {
    Q_OBJECT

public:
    explicit TimelineView(AppModel& model, QWidget* parent = nullptr);

    // Zoom comes from the transport bar's buttons (1.0 ... 8.0); the scroll stays where it is.
    void setZoom(double zoom);
    double zoom() const { return m_strip->zoom(); }
    TimelineStrip* strip() const { return m_strip; }

private:
    TimelineStrip* m_strip;
};

} // namespace cuewright
