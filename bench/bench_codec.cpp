#include "core/CaptionCodec.h"

#include <benchmark/benchmark.h>

using namespace cuewright;

namespace {

// Two-line cues of ordinary subtitle length, two and a half seconds apart.
CaptionDocument generatedDocument(int count)
{
    std::vector<CaptionCue> cues;
    cues.reserve(static_cast<std::size_t>(count));
    for (int i = 0; i < count; ++i) {
        const double start = i * 2.5;
        cues.emplace_back(Uuid::generate(), start, start + 2.1,
            "Line " + std::to_string(i) + " of the dialogue, spoken here\nand answered by someone else.");
    }
    return CaptionDocument(std::move(cues));
}

void BM_CodecDecodeSrt(benchmark::State& state)
{
    const std::string text = CaptionCodec::encode(generatedDocument(10000), CaptionFormat::srt);
    const std::span<const std::uint8_t> bytes(reinterpret_cast<const std::uint8_t*>(text.data()), text.size());
    for (auto _ : state) {
        auto document = CaptionCodec::decode(bytes);
        benchmark::DoNotOptimize(document);
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations()) * static_cast<std::int64_t>(text.size()));
}
BENCHMARK(BM_CodecDecodeSrt)->Unit(benchmark::kMillisecond);

void BM_CodecEncodeSrt(benchmark::State& state)
{
    const auto document = generatedDocument(10000);
    std::size_t size = 0;
    for (auto _ : state) {
        auto text = CaptionCodec::encode(document, CaptionFormat::srt);
        size = text.size();
        benchmark::DoNotOptimize(text);
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations()) * static_cast<std::int64_t>(size));
}
BENCHMARK(BM_CodecEncodeSrt)->Unit(benchmark::kMillisecond);

} // namespace
