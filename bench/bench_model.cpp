#include "app/model/AppModel.h"

#include <QCoreApplication>
#include <QDeadlineTimer>

#include <benchmark/benchmark.h>

#include <malloc.h>

using namespace cuewright;

namespace {

QCoreApplication& application()
{
    static int argc = 1;
    static char name[] = "bench_model";
    static char* argv[] = { name, nullptr };
    static QCoreApplication app(argc, argv);
    return app;
}

// Loads every video at once with a fixed length.
class InstantPlayer final : public MediaPlayer {
public:
    void attach(const QUrl&, std::function<void(std::optional<double>)> loaded) override { loaded(1e6); }
    void detach() override { }
    void seek(double seconds, std::function<void()> done) override
    {
        m_time = seconds;
        if (done)
            done();
    }
    void play() override { }
    void pause() override { }
    bool isPlaying() const override { return false; }
    double currentTime() const override { return m_time; }

private:
    double m_time = 0;
};

std::size_t heapInUse()
{
    return mallinfo2().uordblks;
}

// Heap that 100 single-cue edits (distinct keys, so 100 undo steps) add, relative to the
// heap of the 10,000-cue document they edit. Snapshots share all untouched cues.
void BM_UndoHistoryMemory(benchmark::State& state)
{
    application();
    constexpr int cueCount = 10'000;
    for (auto _ : state) {
        ModelServices services;
        services.transcribe = [](const QString&, const QString&) {
            std::vector<RecognizedWord> words;
            for (int i = 0; i < cueCount; ++i)
                words.push_back({ "Caption number " + std::to_string(i), i * 3.0, 2.0 });
            return words;
        };
        services.cuesFromWords = [](const std::vector<RecognizedWord>& words, int, double) {
            std::vector<CaptionCue> cues;
            for (const auto& word : words)
                cues.emplace_back(Uuid::generate(), word.start, word.start + word.duration, word.text);
            return cues;
        };
        auto clock = std::make_shared<ManualClock>();
        AppModel model(AppModelSeams { std::make_unique<InstantPlayer>(), nullptr, clock, services });
        model.loadVideo(QUrl::fromLocalFile("/tmp/talk.mov"));

        const auto empty = heapInUse();
        model.transcribe();
        for (QDeadlineTimer deadline(60'000); model.isWorking() && !deadline.hasExpired();)
            QCoreApplication::processEvents(QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents, 50);
        const auto built = heapInUse();
        const auto& cues = model.document().cues;
        if (cues.size() != cueCount)
            state.SkipWithError("the document was not built");

        for (int i = 0; i < 100; ++i) {
            clock->advance(1);
            model.setSelectedCueID(cues[static_cast<std::size_t>(i) * 97].id);
            model.updateSelected([i](CaptionCue& cue) { cue.text = "Edited " + std::to_string(i); });
        }
        const auto edited = heapInUse();
        if (model.undoStackCount() != 100)
            state.SkipWithError("the edits did not make 100 steps");

        state.counters["history_ratio"]
            = static_cast<double>(edited - built) / static_cast<double>(built > empty ? built - empty : 1);
        state.counters["document_bytes"] = static_cast<double>(built - empty);
        state.counters["history_bytes"] = static_cast<double>(edited - built);
    }
}
BENCHMARK(BM_UndoHistoryMemory)->Iterations(1)->Unit(benchmark::kMillisecond);

} // namespace
