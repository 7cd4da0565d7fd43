// What the caption layers cost: rendering one (once per cue) and blending it into a 1080p frame
// (once per frame it shows on).
#include "media/CaptionLayerRenderer.h"
#include "media/CaptionOverlay.h"

#include <benchmark/benchmark.h>

#include <vector>

using namespace cuewright;

namespace {

const RenderSize fullHD { 1920, 1080 };

CaptionCue twoLineCue()
{
    return CaptionCue(Uuid::generate(), 0, 2, "The quick brown fox jumps over\nthe lazy dog near the river bank");
}

void renderLayer(benchmark::State& state)
{
    CaptionLayerRenderer renderer;
    const CaptionStyle style = defaultCaptionStyle();
    const CaptionCue cue = twoLineCue();
    for (auto _ : state)
        benchmark::DoNotOptimize(renderer.makeCueLayer(cue, style, fullHD));
}
BENCHMARK(renderLayer)->Unit(benchmark::kMillisecond);

void blendLayer(benchmark::State& state)
{
    CaptionLayerRenderer renderer;
    const YuvLayer layer = CaptionOverlay::yuvLayer(
        renderer.makeCueLayer(twoLineCue(), defaultCaptionStyle(), fullHD), YuvMatrix::bt709, YuvRange::limited);
    std::vector<std::uint8_t> luma(1920 * 1080, 100), cb(960 * 540, 120), cr(960 * 540, 130);
    std::uint8_t* const planes[3] = { luma.data(), cb.data(), cr.data() };
    const int linesizes[3] = { 1920, 960, 960 };
    for (auto _ : state) {
        CaptionOverlay::blend(layer, planes, linesizes, 1920, 1080);
        benchmark::ClobberMemory();
    }
}
BENCHMARK(blendLayer)->Unit(benchmark::kMicrosecond);

} // namespace
