#pragma once

#include <filesystem>

// Pulls the speech out of a video for the recognisers.
namespace cuewright::SpeechAudio {

// Decodes the first audio track of `videoPath` to 16 kHz mono 16-bit PCM in "speech.wav", inside
// a new folder named by a fresh UUID under the temporary directory, and gives the file's path.
// Throws TranscriptionError audioExtractionFailed when the video cannot be read or has no
// usable audio track; a failure after the folder was made leaves the folder for the caller.
std::filesystem::path extractAudio(const std::filesystem::path& videoPath);

// The same decoding into a given file.
void writeSpeechWave(const std::filesystem::path& videoPath, const std::filesystem::path& wavePath);

} // namespace cuewright::SpeechAudio
