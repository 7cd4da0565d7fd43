#pragma once

#include "core/RecognizedWord.h"
#include "speech/RecognitionEngine.h"
#include "speech/TranscriptionError.h"

#include <filesystem>
#include <string>
#include <vector>

// Speech of a video to timed words, on this machine.
//
//     auto words = LocalTranscriber::transcribe("/videos/talk.mp4", "en-US");
//
// transcribe() blocks for about a tenth of the video's length or more, so the editor runs it
// through QtConcurrent. Calls are independent and may run on several threads at once.
namespace cuewright::LocalTranscriber {

// Locale identifiers ("en-US") that have an installed recogniser, sorted by their names in the
// user's language (ICU's default locale), compared character by character.
std::vector<std::string> supportedLanguageIdentifiers();
std::vector<std::string> supportedLanguageIdentifiers(const RecognitionEngineFamilies& engines);

// The words of the video's first audio track in the recogniser's order, `start` in seconds
// from the start of the video. Throws TranscriptionError, or the recogniser's or the audio
// file's own error unchanged.
std::vector<RecognizedWord> transcribe(const std::filesystem::path& videoPath, const std::string& localeIdentifier);
std::vector<RecognizedWord> transcribe(const std::filesystem::path& videoPath, const std::string& localeIdentifier,
    const RecognitionEngineFamilies& engines);

} // namespace cuewright::LocalTranscriber
