#include "core/CaptionDocument.h"

#include "core/CaptionTiming.h"
#include "core/UnicodeText.h"

#include <algorithm>

namespace cuewright {

CaptionDocument::CaptionDocument(std::vector<CaptionCue> list)
{
    std::stable_sort(list.begin(), list.end(),
                     [](const CaptionCue& a, const CaptionCue& b) { return a.start < b.start; });
    cues = CueList(std::move(list));
}

CaptionDocument CaptionDocument::unsorted(CueList list)
{
    CaptionDocument document;
    document.cues = std::move(list);
    return document;
}

void CaptionDocument::normalize(std::optional<double> maximumDuration)
{
    std::vector<CaptionCue> kept;
    kept.reserve(cues.size());
    for (const auto& original : cues) {
        CaptionCue cue = original;
        cue.start = cue.start >= 0 ? cue.start : 0.0;
        if (!(cue.start + CaptionTiming::minimumDuration <= cue.end))
            cue.end = cue.start + CaptionTiming::minimumDuration;
        if (maximumDuration) {
            const double m = *maximumDuration;
            if (cue.start > m)
                cue.start = m;
            const double t = cue.start + CaptionTiming::minimumDuration;
            if (cue.end < t)
                cue.end = t;
            if (!(cue.end < m))
                cue.end = m;
        }
        const auto text = UnicodeText::trimmedWhitespaceAndNewlines(cue.text);
        if (text.size() != cue.text.size())
            cue.text = std::string(text);
        if (cue.positionX)
            cue.positionX = clampedUnit(*cue.positionX);
        if (cue.positionY)
            cue.positionY = clampedUnit(*cue.positionY);
        if (!cue.text.empty() && cue.start < cue.end)
            kept.push_back(std::move(cue));
    }
    std::stable_sort(kept.begin(), kept.end(), [](const CaptionCue& a, const CaptionCue& b) {
        if (a.start != b.start)
            return a.start < b.start;
        return a.end < b.end;
    });

    // Keep shared chunks where nothing changed, so undo snapshots stay small.
    if (kept.size() == cues.size() && std::equal(kept.begin(), kept.end(), cues.begin()))
        return;
    cues = CueList(std::move(kept));
}

std::optional<CaptionCue> CaptionDocument::cueAt(double time) const
{
    for (auto it = cues.end(); it != cues.begin();) {
        --it;
        if (it->start <= time && time < it->end)
            return *it;
    }
    return std::nullopt;
}

} // namespace cuewright
