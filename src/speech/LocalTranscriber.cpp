#include "speech/LocalTranscriber.h"

#include "speech/RecognitionState.h"
#include "speech/SpeechAudio.h"

#include <unicode/locid.h>
#include <unicode/unistr.h>

#include <algorithm>
#include <system_error>

namespace cuewright::LocalTranscriber {

namespace {

    enum class AuthorizationStatus { notDetermined, denied, restricted, authorized };

    // Linux has no permission for speech recognition; a recogniser that works offline on a file
    // the user chose needs none.
    AuthorizationStatus authorizationStatus()
    {
        return AuthorizationStatus::authorized;
    }

    std::string displayName(const std::string& identifier)
    {
        UErrorCode status = U_ZERO_ERROR;
        const icu::Locale locale = icu::Locale::forLanguageTag(identifier, status);
        if (U_FAILURE(status) || locale.isBogus())
            return identifier;
        icu::UnicodeString name;
        locale.getDisplayName(icu::Locale::getDefault(), name);
        std::string text;
        name.toUTF8String(text);
        return text.empty() ? identifier : text;
    }

    std::unique_ptr<RecognitionEngine> engineFor(
        const std::string& localeIdentifier, const RecognitionEngineFamilies& engines)
    {
        for (const auto& family : engines) {
            if (auto engine = family->makeEngine(localeIdentifier))
                return engine;
        }
        return nullptr;
    }

    // The folder of one transcription's audio, removed on every way out of recognition.
    struct AudioFolder {
        std::filesystem::path path;
        ~AudioFolder()
        {
            std::error_code ignored;
            std::filesystem::remove_all(path, ignored);
        }
    };

} // namespace

std::vector<std::string> supportedLanguageIdentifiers()
{
    return supportedLanguageIdentifiers(installedRecognitionEngines());
}

std::vector<std::string> supportedLanguageIdentifiers(const RecognitionEngineFamilies& engines)
{
    std::vector<std::pair<std::string, std::string>> named;
    for (const auto& family : engines) {
        for (auto& identifier : family->supportedLocales())
            named.emplace_back(displayName(identifier), std::move(identifier));
    }
    // UTF-8 byte order is code point order.
    std::ranges::stable_sort(named, {}, [](const auto& entry) { return entry.first; });
    std::vector<std::string> identifiers;
    for (auto& entry : named)
        identifiers.push_back(std::move(entry.second));
    return identifiers;
}

std::vector<RecognizedWord> transcribe(const std::filesystem::path& videoPath, const std::string& localeIdentifier)
{
    return transcribe(videoPath, localeIdentifier, installedRecognitionEngines());
}

std::vector<RecognizedWord> transcribe(const std::filesystem::path& videoPath, const std::string& localeIdentifier,
    const RecognitionEngineFamilies& engines)
{
    if (authorizationStatus() != AuthorizationStatus::authorized)
        throw TranscriptionError(TranscriptionError::Kind::permissionDenied);
    const auto engine = engineFor(localeIdentifier, engines);
    if (!engine || !engine->isAvailable())
        throw TranscriptionError(TranscriptionError::Kind::unavailable);
    if (!engine->supportsOnDeviceRecognition())
        throw TranscriptionError(TranscriptionError::Kind::onDeviceUnavailable);

    const auto audioFile = SpeechAudio::extractAudio(videoPath);
    const AudioFolder folder { audioFile.parent_path() };

    auto state = std::make_shared<RecognitionState>();
    auto words = state->words();
    auto task = engine->recognitionTask(
        audioFile, [state](const std::optional<RecognitionResult>& result, std::exception_ptr error) {
            if (error) {
                state->finish(error);
                return;
            }
            if (!result || !result->isFinal)
                return;
            if (result->words.empty())
                state->finish(std::make_exception_ptr(TranscriptionError(TranscriptionError::Kind::noSpeech)));
            else
                state->finish(result->words);
        });
    state->setTask(task);
    return words.get();
}

} // namespace cuewright::LocalTranscriber
