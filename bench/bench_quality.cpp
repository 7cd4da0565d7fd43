#include "core/CaptionQuality.h"

#include <benchmark/benchmark.h>

using namespace cuewright;

namespace {

// Realistic two-line cues; every tenth has an accent, every fiftieth overlaps its neighbour.
void BM_QualityIssues(benchmark::State& state)
{
    std::vector<CaptionCue> cues;
    for (int i = 0; i < 10000; ++i) {
        const double start = i * 4.5;
        const double end = start + (i % 50 == 0 ? 6.0 : 4.2);
        std::string text = "Speaker " + std::to_string(i) + (i % 10 == 0 ? " says caf\u00e9" : " says hello")
            + " to the room,\nand then waits for somebody to answer.";
        cues.emplace_back(Uuid::generate(), start, end, std::move(text));
    }
    const CaptionDocument document(std::move(cues));
    for (auto _ : state) {
        auto issues = CaptionQuality::issues(document);
        benchmark::DoNotOptimize(issues);
    }
}
BENCHMARK(BM_QualityIssues)->Unit(benchmark::kMillisecond);

} // namespace
