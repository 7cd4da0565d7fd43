#pragma once

#include "core/CaptionDocument.h"
#include "core/CaptionTiming.h"
#include "core/Uuid.h"

#include <cstddef>
#include <optional>
#include <vector>

namespace cuewright {

// A timeline drag in flight: the press-time timing and what the bar shows now. Lives in the
// view, outside the document and its undo history, until the release commits it.
struct TimelineCueEdit {
    Uuid id;
    double originalStart = 0;
    double originalEnd = 0;
    double start = 0;
    double end = 0;

    friend bool operator==(const TimelineCueEdit&, const TimelineCueEdit&) = default;
};

// Which edge of the committed cue the playhead goes to on release.
enum class TimelineSeekTarget { start, end };

// The three drag areas of a bar.
enum class TimelineBarPart { startHandle, middle, endHandle };

// The strip's fixed geometry, in points.
namespace TimelineGeometry {
    inline constexpr double baseWidth = 720.0;
    inline constexpr double stripHeight = 82.0;
    inline constexpr double barHeight = 42.0;
    inline constexpr double barTop = 33.0;
    inline constexpr double minimumBarWidth = 34.0;
    inline constexpr double trimHandleWidth = 12.0;
    inline constexpr double gripWidth = 3.0;
    inline constexpr double gripHeight = 28.0;
    inline constexpr double barCornerRadius = 7.0;
    inline constexpr double textInset = 14.0;
    inline constexpr double tickHeight = 10.0;
    inline constexpr double playheadWidth = 2.0;
    inline constexpr double snapTolerance = 0.12;

    // The content width W at a zoom; the strip never fits itself to the window.
    double contentWidth(double zoom);
    // Seconds to points; 0 when there is no duration. Serves positions and lengths.
    double x(double seconds, double duration, double width);
    // The ruler's spacing, which depends only on the duration.
    double tickInterval(double duration);
    // Tick times 0, i × interval ... up to the duration; none without a duration.
    std::vector<double> tickTimes(double duration);
    // Where a scrub at `locationX` seeks: clamped to the strip, 0 without a width.
    double scrubTime(double locationX, double width, double duration);
}

// The outcome of a release: what the model is told.
struct TimelineCommit {
    Uuid id;
    double start = 0;
    double end = 0;
    double seekTime = 0;

    friend bool operator==(const TimelineCommit&, const TimelineCommit&) = default;
};

// The drag logic of the timeline, free of any toolkit. Each sample is computed afresh from
// the press-time timing, so snapping applies to the whole drag distance and never drifts.
class TimelineDragModel {
public:
    const std::optional<TimelineCueEdit>& edit() const { return m_edit; }

    // The timing a bar is drawn with: the edit's for the dragged cue, else the cue's own.
    CaptionTimeRange displayedTiming(const CaptionCue& cue) const;

    // One drag sample of `part` of `cue`'s bar, `translationX` points from the press.
    // `cues` is the document's list as it stands (it still holds the dragged cue).
    void sample(const CaptionCue& cue, TimelineBarPart part, double translationX, double width, const CueList& cues,
        double duration);

    // Ends the drag: the commit to send, if a drag was in flight. The edit stays until
    // clear(), so the bar doesn't flicker back before the model has the new timing.
    std::optional<TimelineCommit> commit(TimelineSeekTarget target) const;

    // Drops the edit: after a commit, or when the toolkit cancels the gesture.
    void clear() { m_edit.reset(); }

private:
    std::optional<TimelineCueEdit> m_edit;
};

// The seek target of a release on a bar part: the end handle goes to the end.
TimelineSeekTarget seekTarget(TimelineBarPart part);

// Finds the cues whose bars cross a stretch of the strip without walking the whole list:
// indexes in start order with a running maximum of the ends, built once per document.
class TimelineCueIndex {
public:
    TimelineCueIndex() = default;
    explicit TimelineCueIndex(const CueList& cues);

    // Document positions of the cues whose bars (at least minimumBarWidth wide) may cross
    // [left, right] points, in start order.
    std::vector<std::size_t> visible(
        const CueList& cues, double left, double right, double duration, double width) const;

    std::size_t size() const { return m_order.size(); }

private:
    std::vector<std::size_t> m_order; // document positions by start, stable
    std::vector<double> m_starts; // start of m_order[i]
    std::vector<double> m_maxEnds; // max end of m_order[0...i]
};

} // namespace cuewright
