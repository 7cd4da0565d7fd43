#include "core/CaptionJson.h"
#include "core/CaptionProjectStore.h"

#include <benchmark/benchmark.h>

#include <filesystem>
#include <fstream>
#include <random>
#include <unistd.h>

using namespace cuewright;

namespace {

CaptionProject longProject()
{
    std::mt19937 random(7);
    std::uniform_real_distribution<double> unit(0.0, 1.0);
    std::vector<CaptionCue> cues;
    cues.reserve(10'000);
    double time = 0.25;
    for (int i = 0; i < 10'000; ++i) {
        const double start = time + unit(random);
        const double end = start + 1.0 + 3.0 * unit(random);
        std::string text = "Caption number " + std::to_string(i) + " with a few / more words";
        if (i % 3 == 0)
            text += "\nand a second line \u2014 caf\u00E9";
        CaptionCue cue(Uuid::generate(), start, end, std::move(text));
        if (i % 4 == 0) {
            cue.positionX = unit(random);
            cue.positionY = unit(random);
        }
        cues.push_back(std::move(cue));
        time = end;
    }
    return CaptionProject { "/home/editor/Movies/long talk.mov", CaptionDocument(std::move(cues)),
        defaultCaptionStyle() };
}

const CaptionProject& project()
{
    static const CaptionProject value = longProject();
    return value;
}

void BM_ProjectEncode(benchmark::State& state)
{
    std::size_t bytes = 0;
    for (auto _ : state) {
        auto encoded = CaptionProjectStore::encode(project());
        bytes = encoded.size();
        benchmark::DoNotOptimize(encoded);
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * bytes));
}
BENCHMARK(BM_ProjectEncode)->Unit(benchmark::kMillisecond);

void BM_ProjectDecode(benchmark::State& state)
{
    const std::string encoded = CaptionProjectStore::encode(project());
    for (auto _ : state) {
        auto decoded = CaptionProjectStore::decode(encoded);
        benchmark::DoNotOptimize(decoded);
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * encoded.size()));
}
BENCHMARK(BM_ProjectDecode)->Unit(benchmark::kMillisecond);

// Encode, write, fsync and rename, as the save after every edit does.
void BM_ProjectWrite(benchmark::State& state)
{
    const auto folder = std::filesystem::temp_directory_path() / ("cuewright-bench-" + std::to_string(::getpid()));
    std::filesystem::create_directories(folder);
    const auto target = folder / "long.vantrelcaption";
    std::size_t bytes = 0;
    for (auto _ : state) {
        CaptionProjectStore::write(project(), target);
        bytes = std::filesystem::file_size(target);
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * bytes));
    std::filesystem::remove_all(folder);
}
BENCHMARK(BM_ProjectWrite)->Unit(benchmark::kMillisecond);

// The same save without fsync, to show what durability costs.
void BM_ProjectWriteWithoutSync(benchmark::State& state)
{
    const auto folder = std::filesystem::temp_directory_path() / ("cuewright-bench-" + std::to_string(::getpid()));
    std::filesystem::create_directories(folder);
    const auto target = folder / "long.vantrelcaption";
    const auto temporary = folder / ".long.vantrelcaption.tmp";
    std::size_t bytes = 0;
    for (auto _ : state) {
        const std::string encoded = CaptionProjectStore::encode(project());
        std::ofstream(temporary, std::ios::binary).write(encoded.data(), static_cast<std::streamsize>(encoded.size()));
        std::filesystem::rename(temporary, target);
        bytes = encoded.size();
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * bytes));
    std::filesystem::remove_all(folder);
}
BENCHMARK(BM_ProjectWriteWithoutSync)->Unit(benchmark::kMillisecond);

} // namespace
