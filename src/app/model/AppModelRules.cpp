#include "app/model/AppModel.h"

#include "core/CaptionNavigation.h"
#include "core/CaptionQuality.h"
#include "core/CaptionTimeline.h"

#include <limits>
#include <unordered_set>

// The commands that ask the timeline, navigation and quality rules.

namespace cuewright {

double AppModel::timelineLimit() const
{
    // Without a known length the rules get room instead of a limit of 0.
    return m_duration > 0 ? m_duration : std::numeric_limits<double>::max();
}

bool AppModel::canMergeSelectedCueWithNext() const
{
    return m_selectedCueID && CaptionTimeline::mergingCueWithNext(m_document, *m_selectedCueID).has_value();
}

void AppModel::mergeSelectedCueWithNext()
{
    if (!m_selectedCueID)
        return;
    const Uuid id = *m_selectedCueID;
    const auto merged = CaptionTimeline::mergingCueWithNext(m_document, id);
    if (!merged)
        return;
    mutate("merge", QStringLiteral("Captions merged."), [&](EditorSnapshot& s) {
        s.document = *merged;
        s.selectedCueID = id;
    });
}

void AppModel::removeCaptionOverlaps()
{
    if (CaptionTimeline::overlapCount(m_document.cues) <= 0)
        return;
    const double limit = timelineLimit();
    mutate("overlaps", QStringLiteral("Caption overlaps removed."),
        [&](EditorSnapshot& s) { s.document = CaptionTimeline::removingOverlaps(s.document, limit); });
}

void AppModel::shiftAllCaptions(double delta)
{
    const auto result = CaptionTimeline::shifted(m_document, delta, timelineLimit());
    if (result.appliedDelta != 0) {
        mutate("shift-all", QString::asprintf("Shifted all captions by %+.2f seconds.", result.appliedDelta),
            [&](EditorSnapshot& s) { s.document = result.document; });
        return;
    }
    if (m_document.cues.empty())
        setStatusMessage(QStringLiteral("There are no captions to move."));
    else if (std::abs(delta) < 0.001)
        setStatusMessage(QStringLiteral("Captions are already aligned."));
    else
        setStatusMessage(QStringLiteral("Captions are already at the timeline boundary."));
}

void AppModel::setSelectedCueStartToPlayhead()
{
    const auto cue = selectedCue();
    if (!cue)
        return;
    const auto range = CaptionTimeline::alignedStart(*cue, m_playhead, m_document.cues);
    if (range.start == cue->start)
        return;
    setCueTiming(cue->id, range.start, range.end);
    setStatusMessage(QStringLiteral("Caption start set to playhead."));
}

void AppModel::setSelectedCueEndToPlayhead()
{
    const auto cue = selectedCue();
    if (!cue)
        return;
    const auto range = CaptionTimeline::alignedEnd(*cue, m_playhead, m_document.cues, timelineLimit());
    if (range.end == cue->end)
        return;
    setCueTiming(cue->id, range.start, range.end);
    setStatusMessage(QStringLiteral("Caption end set to playhead."));
}

void AppModel::nudgeSelectedCue(double delta)
{
    const auto cue = selectedCue();
    if (!cue)
        return;
    const auto range = CaptionTimeline::nudged(*cue, delta, m_document.cues, timelineLimit());
    if (range.start == cue->start)
        return;
    setCueTiming(cue->id, range.start, range.end);
    seek(range.start);
    setStatusMessage(QString::asprintf("Caption moved by %+.2f seconds.", range.start - cue->start));
}

void AppModel::selectAdjacentCue(CaptionNavigation::Direction direction)
{
    const auto id = CaptionNavigation::adjacentCueID(m_document.cues, m_selectedCueID, direction);
    if (!id)
        return;
    const auto index = indexOfCue(*id);
    if (!index)
        return;
    setSelectedCueID(id);
    seek(m_document.cues[static_cast<std::size_t>(*index)].start);
    setStatusMessage(direction == CaptionNavigation::Direction::next ? QStringLiteral("Selected next caption.")
                                                                     : QStringLiteral("Selected previous caption."));
}

void AppModel::selectNextQualityIssue()
{
    std::unordered_set<Uuid> withIssues;
    for (const auto& issue : CaptionQuality::issues(m_document))
        withIssues.insert(issue.cueID);
    std::vector<std::size_t> candidates;
    const auto& cues = m_document.cues;
    for (std::size_t i = 0; i < cues.size(); ++i) {
        if (withIssues.contains(cues[i].id))
            candidates.push_back(i);
    }
    if (candidates.empty())
        return;
    std::size_t target = candidates.front();
    for (std::size_t k = 0; k < candidates.size(); ++k) {
        if (m_selectedCueID && cues[candidates[k]].id == *m_selectedCueID) {
            target = candidates[(k + 1) % candidates.size()];
            break;
        }
    }
    setSelectedCueID(cues[target].id);
    seek(cues[target].start);
    setStatusMessage(QStringLiteral("Selected the next caption issue."));
}

std::vector<CaptionQualityIssue> AppModel::selectedCueIssues() const
{
    std::vector<CaptionQualityIssue> result;
    if (!m_selectedCueID)
        return result;
    for (auto& issue : CaptionQuality::issues(m_document)) {
        if (issue.cueID == *m_selectedCueID)
            result.push_back(std::move(issue));
    }
    return result;
}

int AppModel::qualityIssueCueCount() const
{
    std::unordered_set<Uuid> ids;
    for (const auto& issue : CaptionQuality::issues(m_document))
        ids.insert(issue.cueID);
    return static_cast<int>(ids.size());
}

} // namespace cuewright
