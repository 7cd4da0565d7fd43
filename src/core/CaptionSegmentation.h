#pragma once

#include "core/CaptionCue.h"

#include <string_view>
#include <vector>

// Spreads a plain text without times over a duration.
namespace cuewright::CaptionSegmentation {

// Words (split at white space, line breaks included) in chunks of wordsPerCue (at least 1),
// each chunk an equal share of duration whatever its length. No words, or a duration that
// is not positive, give no cues.
std::vector<CaptionCue> cues(std::string_view text, double duration, int wordsPerCue);

} // namespace cuewright::CaptionSegmentation
