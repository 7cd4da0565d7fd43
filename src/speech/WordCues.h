#pragma once

#include "core/CaptionCue.h"
#include "core/RecognizedWord.h"

#include <span>
#include <vector>

namespace cuewright::LocalTranscriber {

// Cuts recognised words, in the order given, into cues: a cue closes at its maximumWords-th
// word, at the word whose end reaches maximumDuration after the cue's first start, or at a
// word ending in ".", "!" or "?". Punctuation delivered as words of its own closes up to the
// word before. The editor uses 8 words and 4.5 seconds.
std::vector<CaptionCue> cues(std::span<const RecognizedWord> words, int maximumWords, double maximumDuration);

} // namespace cuewright::LocalTranscriber
