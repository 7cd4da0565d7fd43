#pragma once

namespace cuewright {

// A cue's new start and end, as the timing rules give them.
struct CaptionTimeRange {
    double start = 0;
    double end = 0;

    friend bool operator==(const CaptionTimeRange&, const CaptionTimeRange&) = default;
};

} // namespace cuewright

// The rules for one cue taken alone, inside a video of the given duration (seconds).
// Pure functions; none can fail. Rules among several cues are in CaptionTimeline.
namespace cuewright::CaptionTiming {

// The shortest time a cue lasts, in seconds.
inline constexpr double minimumDuration = 0.05;

// Moves a cue by delta, keeping its length (at least the minimum) and staying inside
// 0...duration; a video shorter than the cue gives 0...duration.
CaptionTimeRange move(double start, double end, double delta, double duration);

// The new start for a dragged left edge: never negative, never past end - minimum.
double trimStart(double proposedStart, double end);

// The new end for a dragged right edge: at least start + minimum, at most the duration
// unless the cue starts within the minimum of the video's end.
double trimEnd(double proposedEnd, double start, double duration);

} // namespace cuewright::CaptionTiming
