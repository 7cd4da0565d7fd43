#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

// Cuts audio at its pauses into pieces that recognisers can decode independently and in
// parallel. Works on the level of 10 ms frames, so a two-hour film costs a few hundred
// kilobytes of levels, not its samples.
namespace cuewright::SpeechChunks {

inline constexpr std::size_t samplesPerFrame = 160; // 10 ms at 16 kHz
inline constexpr double framesPerSecond = 100;

struct Chunk {
    std::size_t firstFrame = 0;
    std::size_t frameCount = 0;
    friend bool operator==(const Chunk&, const Chunk&) = default;
};

struct Options {
    // A quieter stretch at least this long may separate two chunks; shorter ones are pauses
    // inside words and between them.
    std::size_t minimumPauseFrames = 30;
    // Silence kept on either side of the speech, at most half the pause.
    std::size_t paddingFrames = 15;
    // Longer speech without such a pause is cut at its quietest frame.
    std::size_t maximumChunkFrames = 3000;
    // Speech must rise this far above the quiet frames, and above an absolute floor (dB of
    // full-scale-squared sample power, about -60 dBFS).
    float marginDecibels = 12;
    float floorDecibels = 30;
};

// Appends the level in dB of each 10 ms frame; a last partial frame counts as a frame.
void appendFrameLevels(std::span<const std::int16_t> samples, std::vector<float>& levels);

// Chunks in time order, without overlap; none where there is no speech.
std::vector<Chunk> split(std::span<const float> levels, const Options& options = {});

} // namespace cuewright::SpeechChunks
