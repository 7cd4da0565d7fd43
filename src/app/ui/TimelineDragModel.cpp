#include "app/ui/TimelineDragModel.h"

#include "core/CaptionTimeline.h"

#include <algorithm>
#include <cmath>
#include <numeric>

namespace cuewright {

namespace TimelineGeometry {

    double contentWidth(double zoom)
    {
        return std::max(baseWidth * zoom, baseWidth);
    }

    double x(double seconds, double duration, double width)
    {
        if (!(duration > 0))
            return 0;
        return seconds / duration * width;
    }

    double tickInterval(double duration)
    {
        if (duration > 300)
            return 30;
        if (duration > 90)
            return 10;
        return 5;
    }

    std::vector<double> tickTimes(double duration)
    {
        std::vector<double> ticks;
        if (!(duration > 0) || !std::isfinite(duration))
            return ticks;
        const double interval = tickInterval(duration);
        // Multiplying, not adding, keeps the last tick exactly on a whole-multiple duration.
        for (long i = 0;; ++i) {
            const double t = static_cast<double>(i) * interval;
            if (t > duration)
                break;
            ticks.push_back(t);
        }
        return ticks;
    }

    double scrubTime(double locationX, double width, double duration)
    {
        if (!(width > 0))
            return 0;
        return std::min(std::max(locationX, 0.0), width) / width * duration;
    }

} // namespace TimelineGeometry

CaptionTimeRange TimelineDragModel::displayedTiming(const CaptionCue& cue) const
{
    if (m_edit && m_edit->id == cue.id)
        return { m_edit->start, m_edit->end };
    return { cue.start, cue.end };
}

void TimelineDragModel::sample(const CaptionCue& cue, TimelineBarPart part, double translationX, double width,
    const CueList& cues, double duration)
{
    TimelineCueEdit edit
        = m_edit && m_edit->id == cue.id ? *m_edit : TimelineCueEdit { cue.id, cue.start, cue.end, cue.start, cue.end };

    // Plain field stores: the clamping constructor must not alter the press-time timing.
    CaptionCue reference;
    reference.id = cue.id;
    reference.text = cue.text;
    reference.start = edit.originalStart;
    reference.end = edit.originalEnd;

    const double delta = width > 0 ? translationX / width * duration : 0;
    constexpr double tolerance = TimelineGeometry::snapTolerance;
    switch (part) {
    case TimelineBarPart::startHandle:
        edit.start = CaptionTimeline::trimmedStart(reference, edit.originalStart + delta, cues, tolerance);
        edit.end = edit.originalEnd;
        break;
    case TimelineBarPart::endHandle:
        edit.start = edit.originalStart;
        edit.end = CaptionTimeline::trimmedEnd(reference, edit.originalEnd + delta, cues, duration, tolerance);
        break;
    case TimelineBarPart::middle: {
        const auto range = CaptionTimeline::moved(reference, delta, cues, duration, tolerance);
        edit.start = range.start;
        edit.end = range.end;
        break;
    }
    }
    m_edit = edit;
}

std::optional<TimelineCommit> TimelineDragModel::commit(TimelineSeekTarget target) const
{
    if (!m_edit)
        return std::nullopt;
    return TimelineCommit { m_edit->id, m_edit->start, m_edit->end,
        target == TimelineSeekTarget::start ? m_edit->start : m_edit->end };
}

TimelineSeekTarget seekTarget(TimelineBarPart part)
{
    return part == TimelineBarPart::endHandle ? TimelineSeekTarget::end : TimelineSeekTarget::start;
}

TimelineCueIndex::TimelineCueIndex(const CueList& cues)
{
    m_order.resize(cues.size());
    std::iota(m_order.begin(), m_order.end(), std::size_t { 0 });
    const bool sorted = std::is_sorted(
        cues.begin(), cues.end(), [](const CaptionCue& a, const CaptionCue& b) { return a.start < b.start; });
    if (!sorted) {
        std::vector<double> starts(cues.size());
        for (std::size_t i = 0; i < cues.size(); ++i)
            starts[i] = cues[i].start;
        std::stable_sort(
            m_order.begin(), m_order.end(), [&](std::size_t a, std::size_t b) { return starts[a] < starts[b]; });
    }
    m_starts.reserve(m_order.size());
    m_maxEnds.reserve(m_order.size());
    double maxEnd = -INFINITY;
    for (const auto position : m_order) {
        const auto& cue = cues[position];
        m_starts.push_back(cue.start);
        maxEnd = std::max(maxEnd, cue.end);
        m_maxEnds.push_back(maxEnd);
    }
}

std::vector<std::size_t> TimelineCueIndex::visible(
    const CueList& cues, double left, double right, double duration, double width) const
{
    std::vector<std::size_t> result;
    if (m_order.size() != cues.size())
        return result;
    if (!(duration > 0) || !(width > 0)) {
        // Every bar stands at 0, on top of each other.
        if (left <= TimelineGeometry::minimumBarWidth)
            result = m_order;
        return result;
    }
    const double secondsPerPoint = duration / width;
    const double leftTime = left * secondsPerPoint;
    const double rightTime = right * secondsPerPoint;
    const double minimumSeconds = TimelineGeometry::minimumBarWidth * secondsPerPoint;
    // A bar reaches `leftTime` if its end does, or if its minimum width does.
    const auto byEnd = std::lower_bound(m_maxEnds.begin(), m_maxEnds.end(), leftTime) - m_maxEnds.begin();
    const auto byWidth
        = std::lower_bound(m_starts.begin(), m_starts.end(), leftTime - minimumSeconds) - m_starts.begin();
    const auto last = std::upper_bound(m_starts.begin(), m_starts.end(), rightTime) - m_starts.begin();
    for (auto i = std::min(byEnd, byWidth); i < last; ++i) {
        const auto& cue = cues[m_order[static_cast<std::size_t>(i)]];
        if (std::max(cue.end, cue.start + minimumSeconds) >= leftTime)
            result.push_back(m_order[static_cast<std::size_t>(i)]);
    }
    return result;
}

} // namespace cuewright
