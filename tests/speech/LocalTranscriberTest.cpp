#include "speech/LocalTranscriber.h"

#include "speech/SpeechTestMedia.h"
#include "speech/SpeechWave.h"

#include <gtest/gtest.h>

#include <unicode/locid.h>

#include <algorithm>
#include <atomic>
#include <cctype>
#include <cmath>
#include <fstream>
#include <sstream>
#include <thread>

using namespace cuewright;
namespace fs = std::filesystem;

namespace {

// Every test gets its own temporary directory, so that leftovers of a transcription show.
class Transcription : public ::testing::Test {
protected:
    void SetUp() override
    {
        media = test::freshFolder("cuewright-speech-media");
        temporary = test::freshFolder("cuewright-speech-tmp");
        ::setenv("TMPDIR", temporary.c_str(), 1);
    }
    void TearDown() override
    {
        ::unsetenv("TMPDIR");
        fs::remove_all(media);
        fs::remove_all(temporary);
    }
    bool temporaryIsEmpty() const { return fs::is_empty(temporary); }

    fs::path media;
    fs::path temporary;
};

std::vector<std::string> normalizedWords(const std::string& text)
{
    std::vector<std::string> words;
    std::istringstream in(text);
    for (std::string word; in >> word;) {
        std::string clean;
        for (char c : word)
            if (std::isalnum(static_cast<unsigned char>(c)) || c == '\'')
                clean += static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
        if (!clean.empty())
            words.push_back(clean);
    }
    return words;
}

std::size_t wordErrors(const std::vector<std::string>& reference, const std::vector<std::string>& hypothesis)
{
    std::vector<std::size_t> row(hypothesis.size() + 1);
    for (std::size_t j = 0; j < row.size(); ++j)
        row[j] = j;
    for (std::size_t i = 1; i <= reference.size(); ++i) {
        std::size_t diagonal = row[0];
        row[0] = i;
        for (std::size_t j = 1; j <= hypothesis.size(); ++j) {
            const std::size_t substitution = diagonal + (reference[i - 1] == hypothesis[j - 1] ? 0 : 1);
            diagonal = row[j];
            row[j] = std::min({ row[j] + 1, row[j - 1] + 1, substitution });
        }
    }
    return row.back();
}

struct Spoken {
    double leadIn; // seconds of quiet flite puts before the voice
    double duration;
};

Spoken measure(const fs::path& wave)
{
    const SpeechWave::Reader reader(wave);
    const auto samples = reader.read(0, reader.sampleCount());
    const auto loud = std::ranges::find_if(samples, [](std::int16_t s) { return std::abs(s) > 1000; });
    return { double(loud - samples.begin()) / SpeechWave::sampleRate, double(samples.size()) / SpeechWave::sampleRate };
}

TEST_F(Transcription, knownSentencesComeBackWithTheirTimes)
{
    const std::string first = "The quick brown fox jumps over the lazy dog.";
    const std::string second = "Please call me tomorrow morning at seven.";
    const auto a = test::speak(media, "a", first);
    const auto b = test::speak(media, "b", second);
    // 1 s of silence, the first sentence, a pause of 1.2 s that the recogniser may cut at, the
    // second, and the audio resampled from 16 to 44.1 kHz stereo as a camera would record it.
    const auto path = test::video(media, "speech", "-i " + test::quoted(a) + " -i " + test::quoted(b),
        "anullsrc=r=16000:cl=mono,atrim=duration=1[s1];anullsrc=r=16000:cl=mono,atrim=duration=1.2[s2];"
        "anullsrc=r=16000:cl=mono,atrim=duration=0.6[s3];[s1][1:a][s2][2:a][s3]concat=n=5:v=0:a=1,"
        "aresample=44100,aformat=channel_layouts=stereo[a]");

    const auto words = LocalTranscriber::transcribe(path, "en-US");

    std::string heard;
    for (const auto& word : words) {
        EXPECT_EQ(word.text.find_first_of("<[(+"), std::string::npos) << word.text;
        EXPECT_GT(word.duration, 0) << word.text;
        heard += word.text + " ";
    }
    const auto reference = normalizedWords(first + " " + second);
    EXPECT_LE(double(wordErrors(reference, normalizedWords(heard))), 0.1 * double(reference.size())) << heard;
    EXPECT_TRUE(std::ranges::is_sorted(words, {}, &RecognizedWord::start));

    const Spoken spokenA = measure(a);
    const Spoken spokenB = measure(b);
    const auto startOf = [&](const std::string& text, double after) {
        const auto it = std::ranges::find_if(words, [&](const auto& w) { return w.text == text && w.start >= after; });
        return it == words.end() ? -1.0 : it->start;
    };
    EXPECT_NEAR(startOf("the", 0), 1.0 + spokenA.leadIn, 0.3) << heard;
    const double secondStart = 1.0 + spokenA.duration + 1.2 + spokenB.leadIn;
    EXPECT_NEAR(startOf("please", secondStart - 0.5), secondStart, 0.3);
    EXPECT_TRUE(temporaryIsEmpty());
}

TEST_F(Transcription, silenceEndsInNoSpeechAndLeavesNothingBehind)
{
    try {
        LocalTranscriber::transcribe(test::silentVideo(media), "en-US");
        FAIL() << "expected noSpeech";
    } catch (const TranscriptionError& error) {
        EXPECT_EQ(error.kind, TranscriptionError::Kind::noSpeech);
        EXPECT_STREQ(error.what(), "No spoken words were found in the video.");
    }
    EXPECT_TRUE(temporaryIsEmpty());
}

TEST_F(Transcription, videosWithoutReadableAudioFailInExtraction)
{
    std::ofstream(media / "notes.mp4") << "not a video";
    for (const auto& path : { test::videoWithoutAudio(media), media / "notes.mp4", media / "missing.mp4" }) {
        try {
            LocalTranscriber::transcribe(path, "en-US");
            ADD_FAILURE() << "expected audioExtractionFailed for " << path;
        } catch (const TranscriptionError& error) {
            EXPECT_EQ(error.kind, TranscriptionError::Kind::audioExtractionFailed) << path;
            EXPECT_STREQ(error.what(), "The audio track could not be prepared for transcription.");
        }
    }
}

// A recogniser that replays a script of handler calls, from a thread of its own.
class ScriptedEngine : public RecognitionEngine {
public:
    struct Call {
        std::optional<RecognitionResult> result;
        std::exception_ptr error;
    };
    struct Task : RecognitionTask {
        void finish() override { ++finished; }
        std::atomic<int> finished = 0;
    };

    bool available = true;
    bool onDevice = true;
    std::vector<Call> script;
    std::shared_ptr<Task> task = std::make_shared<Task>();
    bool audioExisted = false;

    bool isAvailable() const override { return available; }
    bool supportsOnDeviceRecognition() const override { return onDevice; }
    std::shared_ptr<RecognitionTask> recognitionTask(const fs::path& audioFile, RecognitionHandler handler) override
    {
        audioExisted = SpeechWave::Reader(audioFile).sampleCount() > 0;
        std::thread([script = script, handler] {
            for (const auto& call : script)
                handler(call.result, call.error);
        }).join();
        return task;
    }
};

class ScriptedFamily : public RecognitionEngineFamily {
public:
    explicit ScriptedFamily(std::vector<std::string> locales, std::shared_ptr<ScriptedEngine> engine = {})
        : locales(std::move(locales))
        , engine(std::move(engine))
    {
    }
    std::vector<std::string> supportedLocales() const override { return locales; }
    std::unique_ptr<RecognitionEngine> makeEngine(const std::string& locale) const override
    {
        if (!engine || !sameLocaleIdentifier(locale, locales.front()))
            return nullptr;
        // The transcriber owns what it is given; the test keeps looking at the shared one.
        struct Forward : RecognitionEngine {
            std::shared_ptr<ScriptedEngine> to;
            bool isAvailable() const override { return to->isAvailable(); }
            bool supportsOnDeviceRecognition() const override { return to->supportsOnDeviceRecognition(); }
            std::shared_ptr<RecognitionTask> recognitionTask(const fs::path& f, RecognitionHandler h) override
            {
                return to->recognitionTask(f, std::move(h));
            }
        };
        auto forward = std::make_unique<Forward>();
        forward->to = engine;
        return forward;
    }
    std::vector<std::string> locales;
    std::shared_ptr<ScriptedEngine> engine;
};

TranscriptionError::Kind kindOf(const std::function<void()>& call)
{
    try {
        call();
    } catch (const TranscriptionError& error) {
        return error.kind;
    }
    throw std::logic_error("no TranscriptionError");
}

TEST_F(Transcription, refusesLanguagesItCannotTranscribeBeforeMakingAnyFile)
{
    auto engine = std::make_shared<ScriptedEngine>();
    const RecognitionEngineFamilies engines { std::make_shared<ScriptedFamily>(
        std::vector<std::string> { "fr-FR" }, engine) };
    const auto video = media / "never-read.mp4";

    EXPECT_EQ(
        kindOf([&] { LocalTranscriber::transcribe(video, "de-DE", engines); }), TranscriptionError::Kind::unavailable);
    EXPECT_EQ(kindOf([&] { LocalTranscriber::transcribe(video, "xx-YY"); }), TranscriptionError::Kind::unavailable);
    engine->available = false;
    EXPECT_EQ(
        kindOf([&] { LocalTranscriber::transcribe(video, "fr_FR", engines); }), TranscriptionError::Kind::unavailable);
    engine->available = true;
    engine->onDevice = false;
    try {
        LocalTranscriber::transcribe(video, "fr-FR", engines);
        FAIL();
    } catch (const TranscriptionError& error) {
        EXPECT_EQ(error.kind, TranscriptionError::Kind::onDeviceUnavailable);
        EXPECT_STREQ(error.what(), "Local transcription is not available for this language on this Mac.");
    }
    EXPECT_TRUE(temporaryIsEmpty());
}

TEST_F(Transcription, takesTheFirstFinalResultAndLetsErrorsWin)
{
    const auto video = test::silentVideo(media);
    auto engine = std::make_shared<ScriptedEngine>();
    const RecognitionEngineFamilies engines { std::make_shared<ScriptedFamily>(
        std::vector<std::string> { "en-GB" }, engine) };
    const RecognizedWord hello { "Hello", 0.5, 0.25 };
    const RecognizedWord world { "world.", 0.8, 0.3 };

    engine->script = { { RecognitionResult { false, { hello } }, nullptr },
        { RecognitionResult { true, { hello, world } }, nullptr }, { RecognitionResult { true, { world } }, nullptr } };
    EXPECT_EQ(LocalTranscriber::transcribe(video, "en-GB", engines), (std::vector { hello, world }));
    EXPECT_TRUE(engine->audioExisted);
    EXPECT_TRUE(temporaryIsEmpty());

    engine->script = { { RecognitionResult { true, {} }, nullptr } };
    EXPECT_EQ(
        kindOf([&] { LocalTranscriber::transcribe(video, "en-GB", engines); }), TranscriptionError::Kind::noSpeech);

    engine->script = { { RecognitionResult { true, { hello } },
        std::make_exception_ptr(std::runtime_error("The recogniser stopped.")) } };
    EXPECT_THROW(
        {
            try {
                LocalTranscriber::transcribe(video, "en-GB", engines);
            } catch (const std::runtime_error& error) {
                EXPECT_STREQ(error.what(), "The recogniser stopped.");
                throw;
            }
        },
        std::runtime_error);
    EXPECT_TRUE(temporaryIsEmpty());
}

TEST(SupportedLanguages, sortedByNameInTheUsersLanguage)
{
    UErrorCode status = U_ZERO_ERROR;
    icu::Locale::setDefault(icu::Locale("en_US"), status);
    const RecognitionEngineFamilies engines {
        std::make_shared<ScriptedFamily>(std::vector<std::string> { "fr-FR", "de-DE" }),
        std::make_shared<ScriptedFamily>(std::vector<std::string> { "en-US", "de-AT" }),
    };
    // English (United States), French (France), German (Austria), German (Germany).
    EXPECT_EQ(LocalTranscriber::supportedLanguageIdentifiers(engines),
        (std::vector<std::string> { "en-US", "fr-FR", "de-AT", "de-DE" }));

    const auto installed = LocalTranscriber::supportedLanguageIdentifiers();
    EXPECT_NE(std::ranges::find(installed, "en-US"), installed.end());
}

} // namespace
