#include "core/CaptionNavigation.h"

#include <cstddef>

namespace cuewright::CaptionNavigation {

namespace {

    struct Position {
        const CaptionCue* cue;
        std::size_t index;
    };

    // Timeline order; written with < only so that NaN times cannot break it into a crash.
    bool before(const Position& a, const Position& b)
    {
        if (a.cue->start < b.cue->start)
            return true;
        if (b.cue->start < a.cue->start)
            return false;
        if (a.cue->end < b.cue->end)
            return true;
        if (b.cue->end < a.cue->end)
            return false;
        return a.index < b.index;
    }

    // One pass instead of sorting: the neighbour in the order is the nearest cue on that side.
    template <typename Cues>
    std::optional<Uuid> adjacent(const Cues& cues, std::optional<Uuid> from, Direction direction)
    {
        std::optional<Position> found;
        if (from) {
            std::size_t i = 0;
            for (const CaptionCue& cue : cues) {
                const Position p { &cue, i++ };
                if (cue.id == *from && (!found || before(p, *found)))
                    found = p;
            }
        }

        const bool next = direction == Direction::next;
        std::optional<Position> best;
        std::size_t i = 0;
        for (const CaptionCue& cue : cues) {
            const Position p { &cue, i++ };
            if (found) {
                if (next ? !before(*found, p) : !before(p, *found))
                    continue;
            }
            if (!best || (next ? before(p, *best) : before(*best, p)))
                best = p;
        }
        if (best)
            return best->cue->id;
        if (found)
            return found->cue->id;
        return std::nullopt;
    }

} // namespace

std::optional<Uuid> adjacentCueID(const CueList& cues, std::optional<Uuid> from, Direction direction)
{
    return adjacent(cues, from, direction);
}

std::optional<Uuid> adjacentCueID(std::span<const CaptionCue> cues, std::optional<Uuid> from, Direction direction)
{
    return adjacent(cues, from, direction);
}

} // namespace cuewright::CaptionNavigation
