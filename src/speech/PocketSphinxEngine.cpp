#include "speech/PocketSphinxEngine.h"

#include "speech/SpeechChunks.h"
#include "speech/SpeechWave.h"

#include <pocketsphinx.h>
#include <sphinxbase/err.h>

#include <algorithm>
#include <atomic>
#include <mutex>
#include <numeric>
#include <stdexcept>
#include <thread>

namespace cuewright {

namespace {

    const std::filesystem::path debianModels = "/usr/share/pocketsphinx/model";

    struct ConfigRelease {
        void operator()(cmd_ln_t* config) const { cmd_ln_free_r(config); }
    };
    struct DecoderRelease {
        void operator()(ps_decoder_t* decoder) const { ps_free(decoder); }
    };

    // One loaded model; not shared between threads.
    class Decoder {
    public:
        explicit Decoder(const PocketSphinxModel& model)
        {
            static std::once_flag quiet;
            // The library logs to stderr by default, and a caption editor keeps no log.
            std::call_once(quiet, [] { err_set_logfp(nullptr); });

            const std::string hmm = model.acousticModel.string();
            const std::string lm = model.languageModel.string();
            const std::string dict = model.dictionary.string();
            // Our own cutting decides where speech is; the library's silence removal would shift
            // frame numbers away from the audio's time.
            std::unique_ptr<cmd_ln_t, ConfigRelease> config(cmd_ln_init(nullptr, ps_args(), TRUE, "-hmm", hmm.c_str(),
                "-lm", lm.c_str(), "-dict", dict.c_str(), "-remove_silence", "no", nullptr));
            if (!config)
                throw std::runtime_error("The speech recognition model could not be configured.");
            m_decoder.reset(ps_init(config.get()));
            if (!m_decoder)
                throw std::runtime_error("The speech recognition model could not be loaded.");
        }

        void decode(std::span<const std::int16_t> samples, std::size_t firstFrame, std::vector<RecognizedWord>& words)
        {
            ps_decoder_t* ps = m_decoder.get();
            if (ps_start_utt(ps) < 0 || ps_process_raw(ps, samples.data(), samples.size(), FALSE, TRUE) < 0
                || ps_end_utt(ps) < 0)
                throw std::runtime_error("Speech recognition failed.");
            for (ps_seg_t* segment = ps_seg_iter(ps); segment; segment = ps_seg_next(segment)) {
                auto text = PocketSphinxEngine::wordText(ps_seg_word(segment));
                if (!text)
                    continue;
                int startFrame = 0;
                int endFrame = 0;
                ps_seg_frames(segment, &startFrame, &endFrame);
                words.push_back(
                    { std::move(*text), double(firstFrame + std::size_t(startFrame)) / SpeechChunks::framesPerSecond,
                        double(endFrame - startFrame + 1) / SpeechChunks::framesPerSecond });
            }
        }

    private:
        std::unique_ptr<ps_decoder_t, DecoderRelease> m_decoder;
    };

    std::vector<float> frameLevels(const SpeechWave::Reader& audio)
    {
        constexpr std::size_t block = SpeechChunks::samplesPerFrame * 4096;
        std::vector<float> levels;
        levels.reserve(audio.sampleCount() / SpeechChunks::samplesPerFrame + 1);
        for (std::size_t at = 0; at < audio.sampleCount(); at += block)
            SpeechChunks::appendFrameLevels(audio.read(at, block), levels);
        return levels;
    }

    std::vector<RecognizedWord> recognize(const PocketSphinxModel& model, const std::filesystem::path& audioFile,
        unsigned threads, const std::atomic<bool>& stop)
    {
        const SpeechWave::Reader audio(audioFile);
        const auto chunks = SpeechChunks::split(frameLevels(audio));

        // Longest first, so that no thread is left with a long piece at the end.
        std::vector<std::size_t> order(chunks.size());
        std::iota(order.begin(), order.end(), 0);
        std::ranges::stable_sort(order, std::greater {}, [&](std::size_t i) { return chunks[i].frameCount; });

        std::vector<std::vector<RecognizedWord>> words(chunks.size());
        std::atomic<std::size_t> next = 0;
        std::atomic<bool> failed = false;
        std::exception_ptr error;
        std::mutex errorLock;

        auto work = [&] {
            try {
                std::optional<Decoder> decoder;
                while (!stop && !failed) {
                    const std::size_t taken = next++;
                    if (taken >= order.size())
                        break;
                    if (!decoder)
                        decoder.emplace(model);
                    const auto& chunk = chunks[order[taken]];
                    const auto samples = audio.read(chunk.firstFrame * SpeechChunks::samplesPerFrame,
                        chunk.frameCount * SpeechChunks::samplesPerFrame);
                    decoder->decode(samples, chunk.firstFrame, words[order[taken]]);
                }
            } catch (...) {
                std::lock_guard guard(errorLock);
                if (!error)
                    error = std::current_exception();
                failed = true;
            }
        };
        {
            std::vector<std::jthread> helpers;
            for (std::size_t i = 1; i < std::min<std::size_t>(threads, chunks.size()); ++i)
                helpers.emplace_back(work);
            work();
        }
        if (error)
            std::rethrow_exception(error);

        std::vector<RecognizedWord> all;
        for (auto& piece : words)
            all.insert(all.end(), std::make_move_iterator(piece.begin()), std::make_move_iterator(piece.end()));
        return all;
    }

    class PocketSphinxTask : public RecognitionTask {
    public:
        PocketSphinxTask(
            PocketSphinxModel model, std::filesystem::path audioFile, RecognitionHandler handler, unsigned threads)
        {
            // The thread owns what it needs: the task may be released, even on this thread, before it ends.
            m_thread = std::thread([model = std::move(model), audioFile = std::move(audioFile),
                                       handler = std::move(handler), threads, stop = m_stop]() {
                std::optional<RecognitionResult> result;
                std::exception_ptr error;
                try {
                    result = RecognitionResult { true, recognize(model, audioFile, threads, *stop) };
                } catch (...) {
                    error = std::current_exception();
                }
                if (*stop)
                    return;
                try {
                    handler(result, error);
                } catch (...) {
                    // A handler's failure is its own; the recognition is over either way.
                }
            });
        }

        ~PocketSphinxTask() override
        {
            *m_stop = true;
            if (m_thread.get_id() == std::this_thread::get_id())
                m_thread.detach();
            else if (m_thread.joinable())
                m_thread.join();
        }

        void finish() override { *m_stop = true; }

    private:
        std::shared_ptr<std::atomic<bool>> m_stop = std::make_shared<std::atomic<bool>>(false);
        std::thread m_thread;
    };

} // namespace

bool PocketSphinxModel::isInstalled() const
{
    std::error_code ec;
    return std::filesystem::is_regular_file(acousticModel / "mdef", ec)
        && std::filesystem::is_regular_file(languageModel, ec) && std::filesystem::is_regular_file(dictionary, ec);
}

PocketSphinxEngine::PocketSphinxEngine(PocketSphinxModel model, unsigned threads)
    : m_model(std::move(model))
    , m_threads(threads ? threads : std::max(1u, std::thread::hardware_concurrency()))
{
}

bool PocketSphinxEngine::isAvailable() const
{
    return m_model.isInstalled();
}

std::shared_ptr<RecognitionTask> PocketSphinxEngine::recognitionTask(
    const std::filesystem::path& audioFile, RecognitionHandler handler)
{
    return std::make_shared<PocketSphinxTask>(m_model, audioFile, std::move(handler), m_threads);
}

std::vector<PocketSphinxModel> PocketSphinxEngine::installedModels()
{
    const auto english = debianModels / "en-us";
    std::vector<PocketSphinxModel> known {
        { "en-US", english / "en-us", english / "en-us.lm.bin", english / "cmudict-en-us.dict" },
    };
    std::erase_if(known, [](const PocketSphinxModel& model) { return !model.isInstalled(); });
    return known;
}

std::optional<std::string> PocketSphinxEngine::wordText(std::string_view segment)
{
    if (segment.empty())
        return std::nullopt;
    auto enclosed = [&](std::string_view open, std::string_view close) {
        return segment.size() >= open.size() + close.size() && segment.starts_with(open) && segment.ends_with(close);
    };
    if (enclosed("<", ">") || enclosed("[", "]") || enclosed("++", "++"))
        return std::nullopt;
    if (segment.back() == ')') {
        const auto open = segment.rfind('(');
        if (open != std::string_view::npos && open > 0 && open + 2 < segment.size()
            && std::all_of(segment.begin() + static_cast<std::ptrdiff_t>(open) + 1, segment.end() - 1,
                [](char c) { return c >= '0' && c <= '9'; }))
            segment = segment.substr(0, open);
    }
    return std::string(segment);
}

std::vector<std::string> PocketSphinxEngineFamily::supportedLocales() const
{
    std::vector<std::string> locales;
    for (const auto& model : PocketSphinxEngine::installedModels())
        locales.push_back(model.localeIdentifier);
    return locales;
}

std::unique_ptr<RecognitionEngine> PocketSphinxEngineFamily::makeEngine(const std::string& localeIdentifier) const
{
    for (auto& model : PocketSphinxEngine::installedModels()) {
        if (sameLocaleIdentifier(model.localeIdentifier, localeIdentifier))
            return std::make_unique<PocketSphinxEngine>(std::move(model), m_threads);
    }
    return nullptr;
}

} // namespace cuewright
