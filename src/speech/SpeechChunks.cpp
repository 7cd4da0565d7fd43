#include "speech/SpeechChunks.h"

#include <algorithm>
#include <cmath>

namespace cuewright::SpeechChunks {

namespace {

    // Fewer loud frames than this are a click, not a word.
    constexpr std::size_t minimumSpeechFrames = 3;

    struct Region {
        std::size_t begin;
        std::size_t end;
        std::size_t loudFrames;
    };

    float percentile(std::vector<float>& levels, std::size_t percent)
    {
        const auto at = levels.begin() + static_cast<std::ptrdiff_t>(levels.size() * percent / 100);
        std::nth_element(levels.begin(), at, levels.end());
        return *at;
    }

    // Speech stands out of the quiet between words; where there is no quiet, as in speech over
    // music, it is whatever is not much softer than the loud part.
    float speechThreshold(std::span<const float> levels, const Options& options)
    {
        std::vector<float> sorted(levels.begin(), levels.end());
        const float quiet = percentile(sorted, 10);
        const float loud = percentile(sorted, 90);
        return std::max(options.floorDecibels, std::min(quiet + options.marginDecibels, loud - options.marginDecibels));
    }

} // namespace

void appendFrameLevels(std::span<const std::int16_t> samples, std::vector<float>& levels)
{
    for (std::size_t i = 0; i < samples.size(); i += samplesPerFrame) {
        const std::size_t n = std::min(samplesPerFrame, samples.size() - i);
        double power = 0;
        for (std::size_t j = i; j < i + n; ++j)
            power += double(samples[j]) * samples[j];
        levels.push_back(static_cast<float>(10 * std::log10(power / double(n) + 1)));
    }
}

std::vector<Chunk> split(std::span<const float> levels, const Options& options)
{
    if (levels.empty())
        return {};
    const float threshold = speechThreshold(levels, options);

    std::vector<Region> regions;
    for (std::size_t i = 0; i < levels.size(); ++i) {
        if (!(levels[i] > threshold))
            continue;
        if (!regions.empty() && i - regions.back().end < options.minimumPauseFrames) {
            regions.back().end = i + 1;
            ++regions.back().loudFrames;
        } else {
            regions.push_back({ i, i + 1, 1 });
        }
    }
    std::erase_if(regions, [](const Region& r) { return r.loudFrames < minimumSpeechFrames; });

    const std::size_t maximum = std::max<std::size_t>(options.maximumChunkFrames, 3);
    std::vector<Chunk> chunks;
    for (std::size_t k = 0; k < regions.size(); ++k) {
        const std::size_t before = k == 0 ? regions[k].begin : (regions[k].begin - regions[k - 1].end) / 2;
        const std::size_t after
            = k + 1 == regions.size() ? levels.size() - regions[k].end : (regions[k + 1].begin - regions[k].end) / 2;
        std::size_t begin = regions[k].begin - std::min(options.paddingFrames, before);
        const std::size_t end = regions[k].end + std::min(options.paddingFrames, after);

        while (end - begin > maximum) {
            const auto from = levels.begin() + static_cast<std::ptrdiff_t>(begin + maximum / 3);
            const auto to = levels.begin() + static_cast<std::ptrdiff_t>(begin + maximum);
            const auto cut = static_cast<std::size_t>(std::min_element(from, to) - levels.begin());
            chunks.push_back({ begin, cut - begin });
            begin = cut;
        }
        chunks.push_back({ begin, end - begin });
    }
    return chunks;
}

} // namespace cuewright::SpeechChunks
