#include "app/ui/CaptionListModel.h"
#include "core/CaptionDocument.h"

#include <benchmark/benchmark.h>

#include <string>
#include <vector>

namespace {

using namespace cuewright;

// A long transcript: 10,000 cues, one in twenty with a line too long to read.
CaptionDocument longDocument(int count)
{
    std::vector<CaptionCue> cues;
    cues.reserve(static_cast<std::size_t>(count));
    for (int i = 0; i < count; ++i) {
        std::string text = "Caption number " + std::to_string(i) + " says a few words";
        if (i % 20 == 0)
            text += " and then goes on for much longer than anybody can read";
        cues.emplace_back(Uuid::generate(), i * 2.0, i * 2.0 + 1.8, text);
    }
    return CaptionDocument(std::move(cues));
}

// What the caption list does when the document changes: new rows, new issue marks.
void BM_CaptionListRefresh(benchmark::State& state)
{
    const CaptionDocument first = longDocument(static_cast<int>(state.range(0)));
    const CaptionDocument second = longDocument(static_cast<int>(state.range(0)) + 1);
    CaptionListModel rows;
    bool flip = false;
    for (auto _ : state) {
        // Alternate lengths so that every round is a full model reset.
        rows.setDocument(flip ? first : second);
        flip = !flip;
        benchmark::DoNotOptimize(rows.issueCueCount());
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(BM_CaptionListRefresh)->Arg(10000)->Unit(benchmark::kMillisecond);

// A moving playhead repaints two rows, whatever the document's length.
void BM_CaptionListActiveCue(benchmark::State& state)
{
    const CaptionDocument document = longDocument(static_cast<int>(state.range(0)));
    CaptionListModel rows;
    rows.setDocument(document);
    std::size_t i = 0;
    for (auto _ : state) {
        rows.setActiveCueID(document.cues[i % document.cues.size()].id);
        i += 7;
    }
}
BENCHMARK(BM_CaptionListActiveCue)->Arg(10000);

} // namespace
