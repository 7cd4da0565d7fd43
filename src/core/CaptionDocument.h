#pragma once

#include "core/CaptionCue.h"
#include "core/CueList.h"

#include <optional>
#include <vector>

namespace cuewright {

// The cues of one piece of work. A value; copies share storage (see CueList).
// Overlapping cues are legal. Only the sorting constructor and normalize() order the cues.
struct CaptionDocument {
    CueList cues;

    CaptionDocument() = default;
    // Holds the cues sorted by start alone, stable.
    explicit CaptionDocument(std::vector<CaptionCue> cues);

    // Repairs times, trims text, clamps positions, drops empty or zero-length cues and sorts
    // by start, then end. maximumDuration is the video's length when known.
    void normalize(std::optional<double> maximumDuration);

    // The cue containing time (start <= time < end), searched from the last in list order.
    std::optional<CaptionCue> cueAt(double time) const;

    // A document whose cues keep the given order (as read from a file).
    static CaptionDocument unsorted(CueList cues);

    friend bool operator==(const CaptionDocument&, const CaptionDocument&) = default;
};

} // namespace cuewright
