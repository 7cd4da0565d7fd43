#include "core/CaptionTimeline.h"

#include <benchmark/benchmark.h>

#include <string>
#include <vector>

using namespace cuewright;

namespace {

// A long transcript: 10,000 cues of 2 s with 0.5 s gaps and realistic text lengths.
CaptionDocument longDocument(bool shuffled)
{
    std::vector<CaptionCue> cues;
    cues.reserve(10'000);
    for (int i = 0; i < 10'000; ++i) {
        const double start = i * 2.5;
        cues.emplace_back(
            Uuid::generate(), start, start + 2, "caption number " + std::to_string(i) + " with some words");
    }
    if (!shuffled)
        return CaptionDocument(std::move(cues));
    // Interleave halves so the list is far from start order, as after direct edits.
    std::vector<CaptionCue> mixed;
    mixed.reserve(cues.size());
    for (std::size_t i = 0; i < cues.size() / 2; ++i) {
        mixed.push_back(cues[cues.size() / 2 + i]);
        mixed.push_back(cues[i]);
    }
    return CaptionDocument::unsorted(CueList(std::move(mixed)));
}

// One mouse sample of a drag: the cue in the middle pulled onto its neighbour.
void dragSample(benchmark::State& state, bool shuffled)
{
    const auto document = longDocument(shuffled);
    const double duration = 25'000;
    CaptionCue dragged;
    for (const auto& cue : document.cues) {
        if (cue.start == 12'500)
            dragged = cue;
    }
    double delta = 0.3;
    for (auto _ : state) {
        auto range
            = CaptionTimeline::moved(dragged, delta, document.cues, duration, CaptionTimeline::defaultSnapTolerance);
        benchmark::DoNotOptimize(range);
        delta = delta > 2 ? 0.3 : delta + 0.01;
    }
}

void BM_TimelineMoved(benchmark::State& state)
{
    dragSample(state, false);
}
BENCHMARK(BM_TimelineMoved)->Unit(benchmark::kMicrosecond);

void BM_TimelineMovedUnsorted(benchmark::State& state)
{
    dragSample(state, true);
}
BENCHMARK(BM_TimelineMovedUnsorted)->Unit(benchmark::kMicrosecond);

void BM_TimelineTrimmedStart(benchmark::State& state)
{
    const auto document = longDocument(false);
    const auto cue = document.cues[5'000];
    double proposed = cue.start - 0.4;
    for (auto _ : state) {
        benchmark::DoNotOptimize(
            CaptionTimeline::trimmedStart(cue, proposed, document.cues, CaptionTimeline::defaultSnapTolerance));
        proposed = proposed > cue.start ? cue.start - 0.4 : proposed + 0.01;
    }
}
BENCHMARK(BM_TimelineTrimmedStart)->Unit(benchmark::kMicrosecond);

void BM_OverlapCount(benchmark::State& state)
{
    const auto document = longDocument(state.range(0) != 0);
    for (auto _ : state)
        benchmark::DoNotOptimize(CaptionTimeline::overlapCount(document.cues));
}
BENCHMARK(BM_OverlapCount)->Arg(0)->Arg(1)->Unit(benchmark::kMicrosecond);

} // namespace
