#pragma once

#include "core/CueList.h"
#include "core/Uuid.h"

#include <optional>
#include <span>

namespace cuewright::CaptionNavigation {

enum class Direction { previous, next };

// The cue before or after `from` in timeline order (start, then end, then list position).
// At either end the given id comes back; an absent or unknown id gives the first cue for
// next and the last for previous; an empty list gives nothing.
std::optional<Uuid> adjacentCueID(const CueList& cues, std::optional<Uuid> from, Direction direction);
std::optional<Uuid> adjacentCueID(std::span<const CaptionCue> cues, std::optional<Uuid> from, Direction direction);

} // namespace cuewright::CaptionNavigation
