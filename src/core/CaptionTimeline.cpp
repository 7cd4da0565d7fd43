#include "core/CaptionTimeline.h"

#include "core/UnicodeText.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace cuewright::CaptionTimeline {

namespace {

    // nearest(to:in:tolerance:) fed one candidate at a time, so the anchors are never gathered
    // into a list. The candidates' order is the tie-break: a later one wins only when strictly
    // nearer.
    class Nearest {
    public:
        Nearest(double value, double tolerance)
            : m_value(value)
            , m_tolerance(tolerance)
        {
        }

        void offer(double candidate)
        {
            const double distance = std::abs(candidate - m_value);
            if (distance <= m_tolerance && (!m_best || distance < m_bestDistance)) {
                m_best = candidate;
                m_bestDistance = distance;
            }
        }

        const std::optional<double>& result() const { return m_best; }

    private:
        double m_value;
        double m_tolerance;
        std::optional<double> m_best;
        double m_bestDistance = 0;
    };

    // availableGaps(among:within:) as a stream: cues are fed in start order, each free stretch
    // is handed to emit(gapStart, gapEnd) as it is found.
    class GapWalker {
    public:
        template <class Emit> void feed(double start, double end, Emit&& emit)
        {
            if (m_cursor < start)
                emit(m_cursor, start);
            // The cursor never goes back: a long cue keeps its reach over the ones inside it.
            if (m_cursor <= end)
                m_cursor = end;
        }

        template <class Emit> void finish(double duration, Emit&& emit)
        {
            if (m_cursor < duration)
                emit(m_cursor, duration);
        }

    private:
        double m_cursor = 0;
    };

    struct Edges {
        double start;
        double end;
        std::size_t index;
    };

    // The cues of a list other than the one with `id`, in start order (stable). A list already
    // in that order is walked in place; otherwise its edges are sorted once.
    template <class Range> class OthersInStartOrder {
    public:
        OthersInStartOrder(const Range& cues, const Uuid& id)
            : m_cues(cues)
            , m_id(id)
        {
            bool first = true;
            double previous = 0;
            for (const auto& cue : cues) {
                if (cue.id == id)
                    continue;
                if (!first && cue.start < previous) {
                    sortEdges();
                    return;
                }
                previous = cue.start;
                first = false;
            }
        }

        template <class F> void forEach(F&& f) const
        {
            if (m_sorted) {
                for (const auto& edges : *m_sorted)
                    f(edges.start, edges.end);
                return;
            }
            for (const auto& cue : m_cues) {
                if (cue.id != m_id)
                    f(cue.start, cue.end);
            }
        }

    private:
        void sortEdges()
        {
            std::vector<Edges> edges;
            edges.reserve(m_cues.size());
            std::size_t index = 0;
            for (const auto& cue : m_cues) {
                if (cue.id != m_id)
                    edges.push_back({ cue.start, cue.end, index });
                ++index;
            }
            // The index tie-break makes an unstable sort stable.
            std::sort(edges.begin(), edges.end(), [](const Edges& a, const Edges& b) {
                if (a.start != b.start)
                    return a.start < b.start;
                return a.index < b.index;
            });
            m_sorted = std::move(edges);
        }

        const Range& m_cues;
        const Uuid& m_id;
        std::optional<std::vector<Edges>> m_sorted;
    };

    template <class Range>
    double trimmedStartAmong(const CaptionCue& cue, double proposedStart, const Range& among, double snapTolerance)
    {
        // The bound and the fixed anchors 0, B come before every cue edge in the anchor order,
        // so the cue edges are collected separately and win only when strictly nearer.
        std::optional<double> bound;
        Nearest fromEdges(proposedStart, snapTolerance);
        for (const auto& other : among) {
            if (other.id == cue.id)
                continue;
            if (other.start < cue.start && (!bound || other.end > *bound))
                bound = other.end;
            fromEdges.offer(other.start);
            fromEdges.offer(other.end);
        }
        const double lower = bound.value_or(0.0);
        Nearest snap(proposedStart, snapTolerance);
        snap.offer(0.0);
        snap.offer(lower);
        if (fromEdges.result())
            snap.offer(*fromEdges.result());
        const double trimmed = CaptionTiming::trimStart(snap.result().value_or(proposedStart), cue.end);
        // The neighbour wins over the minimum duration.
        return trimmed < lower ? lower : trimmed;
    }

    template <class Range>
    double trimmedEndAmong(
        const CaptionCue& cue, double proposedEnd, const Range& among, double duration, double snapTolerance)
    {
        std::optional<double> bound;
        Nearest fromEdges(proposedEnd, snapTolerance);
        for (const auto& other : among) {
            if (other.id == cue.id)
                continue;
            if (other.start > cue.start && (!bound || other.start < *bound))
                bound = other.start;
            fromEdges.offer(other.start);
            fromEdges.offer(other.end);
        }
        const double upper = bound.value_or(duration);
        Nearest snap(proposedEnd, snapTolerance);
        snap.offer(upper);
        snap.offer(duration);
        if (fromEdges.result())
            snap.offer(*fromEdges.result());
        const double trimmed = CaptionTiming::trimEnd(snap.result().value_or(proposedEnd), cue.start, duration);
        return upper < trimmed ? upper : trimmed;
    }

    template <class Range>
    CaptionTimeRange movedAmong(
        const CaptionCue& cue, double delta, const Range& among, double duration, double snapTolerance)
    {
        const auto plain = CaptionTiming::move(cue.start, cue.end, delta, duration);
        const double length = plain.end - plain.start;
        const OthersInStartOrder others(among, cue.id);

        // The leading edge has priority, whichever edge is nearer.
        Nearest leading(plain.start, snapTolerance);
        Nearest trailing(plain.end, snapTolerance);
        for (const double anchor : { 0.0, duration }) {
            leading.offer(anchor);
            trailing.offer(anchor);
        }
        others.forEach([&](double start, double end) {
            leading.offer(start);
            leading.offer(end);
            trailing.offer(start);
            trailing.offer(end);
        });
        double target = plain.start;
        if (leading.result())
            target = *leading.result();
        else if (trailing.result())
            target = *trailing.result() - length;

        std::optional<double> best;
        double bestDistance = 0;
        const auto consider = [&](double gapStart, double gapEnd) {
            if (!(gapEnd - gapStart >= length))
                return;
            double place = target < gapStart ? gapStart : target;
            if (gapEnd - length < place)
                place = gapEnd - length;
            const double distance = std::abs(place - target);
            if (!best || distance < bestDistance) {
                best = place;
                bestDistance = distance;
            }
        };
        GapWalker gaps;
        others.forEach([&](double start, double end) { gaps.feed(start, end, consider); });
        gaps.finish(duration, consider);

        if (!best)
            return plain;
        return { *best, *best + length };
    }

    template <class Range> int overlapCountAmong(const Range& cues)
    {
        if (cues.size() < 2)
            return 0;
        const auto precedes
            = [](const auto& a, const auto& b) { return a.start < b.start || (a.start == b.start && a.end < b.end); };
        // Equal (start, end) pairs count alike in either order, so stability does not matter here.
        int count = 0;
        bool ordered = true;
        const CaptionCue* previous = nullptr;
        for (const auto& cue : cues) {
            if (previous) {
                if (precedes(cue, *previous)) {
                    ordered = false;
                    break;
                }
                if (cue.start < previous->end)
                    ++count;
            }
            previous = &cue;
        }
        if (ordered)
            return count;

        std::vector<CaptionTimeRange> ranges;
        ranges.reserve(cues.size());
        for (const auto& cue : cues)
            ranges.push_back({ cue.start, cue.end });
        std::sort(ranges.begin(), ranges.end(), precedes);
        count = 0;
        for (std::size_t i = 1; i < ranges.size(); ++i) {
            if (ranges[i].start < ranges[i - 1].end)
                ++count;
        }
        return count;
    }

    // The order of merging: start, then end, then the position in the document's list.
    bool timelineBefore(const CaptionCue& a, std::size_t ia, const CaptionCue& b, std::size_t ib)
    {
        if (a.start != b.start)
            return a.start < b.start;
        if (a.end != b.end)
            return a.end < b.end;
        return ia < ib;
    }

    std::string mergedText(std::string_view a, std::string_view b)
    {
        const auto first = UnicodeText::trimmedWhitespaceAndNewlines(a);
        const auto second = UnicodeText::trimmedWhitespaceAndNewlines(b);
        std::string result;
        result.reserve(first.size() + second.size() + 1);
        result += first;
        if (!first.empty() && !second.empty())
            result += ' ';
        result += second;
        return result;
    }

} // namespace

CaptionTimeRange alignedStart(const CaptionCue& cue, double time, CueRange among)
{
    if (!std::isfinite(time))
        return { cue.start, cue.end };
    return { trimmedStart(cue, time, among, 0.0), cue.end };
}

CaptionTimeRange alignedEnd(const CaptionCue& cue, double time, CueRange among, double duration)
{
    if (!std::isfinite(time) || !std::isfinite(duration))
        return { cue.start, cue.end };
    return { cue.start, trimmedEnd(cue, time, among, duration, 0.0) };
}

double trimmedStart(const CaptionCue& cue, double proposedStart, CueRange among, double snapTolerance)
{
    return among.visit([&](const auto& cues) { return trimmedStartAmong(cue, proposedStart, cues, snapTolerance); });
}

double trimmedEnd(const CaptionCue& cue, double proposedEnd, CueRange among, double duration, double snapTolerance)
{
    return among.visit(
        [&](const auto& cues) { return trimmedEndAmong(cue, proposedEnd, cues, duration, snapTolerance); });
}

CaptionTimeRange nudged(const CaptionCue& cue, double delta, CueRange among, double duration)
{
    if (!std::isfinite(delta) || !std::isfinite(duration))
        return { cue.start, cue.end };
    return moved(cue, delta, among, duration, 0.0);
}

CaptionTimeRange moved(const CaptionCue& cue, double delta, CueRange among, double duration, double snapTolerance)
{
    return among.visit([&](const auto& cues) { return movedAmong(cue, delta, cues, duration, snapTolerance); });
}

ShiftResult shifted(const CaptionDocument& document, double delta, double duration)
{
    if (!std::isfinite(delta) || !std::isfinite(duration) || duration < 0 || document.cues.empty())
        return { document, 0.0 };
    double earliestStart = document.cues.front().start;
    double latestEnd = document.cues.front().end;
    for (const auto& cue : document.cues) {
        earliestStart = std::min(earliestStart, cue.start);
        latestEnd = std::max(latestEnd, cue.end);
    }
    const double lower = -earliestStart;
    double upper = duration - latestEnd;
    if (upper < lower)
        upper = lower;
    double applied = delta <= lower ? lower : delta;
    if (upper < applied)
        applied = upper;
    if (applied == 0)
        return { document, 0.0 };

    std::vector<CaptionCue> cues = document.cues.toVector();
    for (auto& cue : cues) {
        cue.start += applied;
        cue.end += applied;
    }
    return { CaptionDocument(std::move(cues)), applied };
}

int overlapCount(CueRange cues)
{
    return cues.visit([](const auto& list) { return overlapCountAmong(list); });
}

CaptionDocument removingOverlaps(const CaptionDocument& document, double duration)
{
    const auto& list = document.cues;
    if (list.size() < 2)
        return document;

    std::vector<CaptionCue> cues = list.toVector();
    const bool ordered = std::is_sorted(cues.begin(), cues.end(), [](const CaptionCue& a, const CaptionCue& b) {
        return a.start < b.start || (a.start == b.start && a.end < b.end);
    });
    if (!ordered) {
        // Sort positions, not cues with their texts; the index keeps it stable.
        std::vector<Edges> order;
        order.reserve(cues.size());
        for (std::size_t i = 0; i < cues.size(); ++i)
            order.push_back({ cues[i].start, cues[i].end, i });
        std::sort(order.begin(), order.end(), [](const Edges& a, const Edges& b) {
            if (a.start != b.start)
                return a.start < b.start;
            if (a.end != b.end)
                return a.end < b.end;
            return a.index < b.index;
        });
        std::vector<CaptionCue> sorted;
        sorted.reserve(cues.size());
        for (const auto& edges : order)
            sorted.push_back(std::move(cues[edges.index]));
        cues = std::move(sorted);
    }

    for (std::size_t i = 1; i < cues.size(); ++i) {
        auto& previous = cues[i - 1];
        auto& current = cues[i];
        if (!(current.start < previous.end))
            continue;
        if (current.start - previous.start >= CaptionTiming::minimumDuration) {
            previous.end = current.start;
        } else {
            const double length = std::max(current.end - current.start, 0.0);
            current.start = previous.end;
            current.end = current.start + length;
            if (duration < current.end)
                current.end = duration;
        }
    }

    CaptionDocument result(std::move(cues));
    result.normalize(duration);
    return result;
}

std::optional<CaptionDocument> mergingCueWithNext(const CaptionDocument& document, const Uuid& selectedID)
{
    const auto& cues = document.cues;
    // The selected cue and its successor in timeline order, found by two scans instead of
    // a sort: the first is the least cue with the id, the second the least cue after it.
    std::optional<std::size_t> selected;
    std::optional<std::size_t> firstInList;
    std::size_t index = 0;
    for (const auto& cue : cues) {
        if (cue.id == selectedID) {
            if (!firstInList)
                firstInList = index;
            if (!selected || timelineBefore(cue, index, cues[*selected], *selected))
                selected = index;
        }
        ++index;
    }
    if (!selected)
        return std::nullopt;

    const CaptionCue& chosen = cues[*selected];
    std::optional<std::size_t> next;
    const CaptionCue* nextCue = nullptr;
    index = 0;
    for (const auto& cue : cues) {
        if (timelineBefore(chosen, *selected, cue, index) && (!next || timelineBefore(cue, index, *nextCue, *next))) {
            next = index;
            nextCue = &cue;
        }
        ++index;
    }
    if (!next)
        return std::nullopt;

    const Uuid removedID = nextCue->id;
    CaptionCue merged = cues[*firstInList];
    if (nextCue->end > merged.end)
        merged.end = nextCue->end;
    merged.text = mergedText(merged.text, nextCue->text);

    std::vector<CaptionCue> kept;
    kept.reserve(cues.size() - 1);
    index = 0;
    for (const auto& cue : cues) {
        if (cue.id != removedID)
            kept.push_back(index == *firstInList ? merged : cue);
        ++index;
    }
    return CaptionDocument(std::move(kept));
}

} // namespace cuewright::CaptionTimeline
