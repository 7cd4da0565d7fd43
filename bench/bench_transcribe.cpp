// The transcriber's own work besides decoding: finding the pauses of a long film.
#include "speech/SpeechChunks.h"

#include <benchmark/benchmark.h>

#include <cmath>
#include <random>

using namespace cuewright;

namespace {

// Sentences of 2-8 s between pauses of 0.2-1.5 s, over a low noise floor.
std::vector<std::int16_t> speechLikeSamples(double seconds)
{
    std::mt19937 random(7);
    std::uniform_real_distribution<double> sentence(2, 8), pause(0.2, 1.5);
    std::normal_distribution<double> noise(0, 30), voice(0, 3000);
    std::vector<std::int16_t> samples(static_cast<std::size_t>(seconds * 16000));
    std::size_t at = 0;
    while (at < samples.size()) {
        const auto loud = static_cast<std::size_t>(sentence(random) * 16000);
        const auto quiet = static_cast<std::size_t>(pause(random) * 16000);
        for (std::size_t i = 0; i < loud && at < samples.size(); ++i, ++at)
            samples[at] = static_cast<std::int16_t>(voice(random));
        for (std::size_t i = 0; i < quiet && at < samples.size(); ++i, ++at)
            samples[at] = static_cast<std::int16_t>(noise(random));
    }
    return samples;
}

void BM_FrameLevelsOfTenMinutes(benchmark::State& state)
{
    const auto samples = speechLikeSamples(600);
    for (auto _ : state) {
        std::vector<float> levels;
        SpeechChunks::appendFrameLevels(samples, levels);
        benchmark::DoNotOptimize(levels.data());
    }
    state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations() * samples.size()));
}
BENCHMARK(BM_FrameLevelsOfTenMinutes)->Unit(benchmark::kMillisecond);

void BM_SplitTwoHours(benchmark::State& state)
{
    std::vector<float> levels;
    SpeechChunks::appendFrameLevels(speechLikeSamples(600), levels);
    std::vector<float> twoHours;
    for (int i = 0; i < 12; ++i)
        twoHours.insert(twoHours.end(), levels.begin(), levels.end());
    for (auto _ : state)
        benchmark::DoNotOptimize(SpeechChunks::split(twoHours));
}
BENCHMARK(BM_SplitTwoHours)->Unit(benchmark::kMillisecond);

} // namespace
