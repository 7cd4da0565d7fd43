#pragma once

#include "core/CaptionDocument.h"
#include "core/CaptionTiming.h"

#include <optional>
#include <span>
#include <vector>

// Timing rules that look at more than one cue: snapping to other cues' edges, trims that
// stop at a neighbour, finding room for a moved cue, shifting the whole document, overlaps
// and merging. Pure functions over values; none changes its arguments or fails.
//
// `among` is the document's cue list (or any span of cues); a cue with the same id as the
// edited cue is skipped there, so the edited cue may be in it. The drag functions run on
// every mouse sample over a whole document: they cost one or two passes over `among` and
// allocate nothing when it is in start order, as documents usually are.
//
//     auto range = CaptionTimeline::moved(cue, dx, model.document().cues, duration,
//                                         CaptionTimeline::defaultSnapTolerance);
namespace cuewright::CaptionTimeline {

// Snap distance of the timeline's drags and the inspector's time fields, in seconds.
inline constexpr double defaultSnapTolerance = 0.12;

// The cues a rule looks at: a document's CueList, a vector or a span of cues. A view that
// is valid while its source lives; pass it by value.
class CueRange {
public:
    CueRange(const CueList& cues)
        : m_list(&cues)
    {
    }
    CueRange(std::span<const CaptionCue> cues)
        : m_span(cues)
    {
    }
    CueRange(const std::vector<CaptionCue>& cues)
        : m_span(cues)
    {
    }

    // Calls f with the underlying CueList or span, so loops over it are not type-erased.
    template <class F> decltype(auto) visit(F&& f) const
    {
        if (m_list)
            return f(*m_list);
        return f(m_span);
    }

private:
    const CueList* m_list = nullptr;
    std::span<const CaptionCue> m_span;
};

struct ShiftResult {
    CaptionDocument document;
    double appliedDelta = 0;
};

// Sets the start to time (no snapping), bounded by the earlier cues and the cue's end.
// A non-finite time leaves the cue as it is.
CaptionTimeRange alignedStart(const CaptionCue& cue, double time, CueRange among);

// Sets the end to time (no snapping), bounded by the later cues and the duration.
CaptionTimeRange alignedEnd(const CaptionCue& cue, double time, CueRange among, double duration);

// The start for a dragged left edge: snapped to 0, the bound or another cue's edge within
// the tolerance, then never before the largest end of the cues that start earlier.
double trimmedStart(const CaptionCue& cue, double proposedStart, CueRange among, double snapTolerance);

// The end for a dragged right edge: snapped, then never after the next later cue's start.
double trimmedEnd(const CaptionCue& cue, double proposedEnd, CueRange among, double duration, double snapTolerance);

// moved() without snapping; a non-finite delta or duration leaves the cue as it is.
CaptionTimeRange nudged(const CaptionCue& cue, double delta, CueRange among, double duration);

// The place of a cue dragged as a whole: its length kept, snapped by its leading edge (else
// its trailing edge), then put into the nearest free stretch that holds it. Where none does,
// the plain clamped move, which may lie over other cues.
CaptionTimeRange moved(const CaptionCue& cue, double delta, CueRange among, double duration, double snapTolerance);

// Moves all cues by one amount, limited so that none starts before 0 or ends after the
// duration; cues already past the end are pulled back. appliedDelta is what was applied.
ShiftResult shifted(const CaptionDocument& document, double delta, double duration);

// Adjacent pairs, by start then end, where the later starts before the earlier ends.
int overlapCount(CueRange cues);

// Cuts each earlier cue short at the later one's start, or pushes the later one behind it
// where there is no room to cut; then normalizes to the duration.
CaptionDocument removingOverlaps(const CaptionDocument& document, double duration);

// Joins the selected cue with the next in timeline order; nothing when the id is unknown
// or the cue is the last.
std::optional<CaptionDocument> mergingCueWithNext(const CaptionDocument& document, const Uuid& selectedID);

} // namespace cuewright::CaptionTimeline
