#pragma once

#include "core/RecognizedWord.h"

#include <exception>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

// The seam between the transcriber and a speech recogniser. An engine family (one per
// recognition library) lists the languages whose models are installed and makes a recogniser
// for one of them; a recogniser runs on a 16 kHz mono 16-bit PCM WAVE file and reports through
// a handler that may come on any thread, any number of times.
namespace cuewright {

struct RecognitionResult {
    bool isFinal = false;
    std::vector<RecognizedWord> words;
};

// An error, when present, wins over the result.
using RecognitionHandler = std::function<void(const std::optional<RecognitionResult>&, std::exception_ptr)>;

// A recognition in progress. finish() tells the recogniser that no more results are wanted.
class RecognitionTask {
public:
    virtual ~RecognitionTask() = default;
    virtual void finish() = 0;
};

class RecognitionEngine {
public:
    virtual ~RecognitionEngine() = default;
    virtual bool isAvailable() const = 0;
    virtual bool supportsOnDeviceRecognition() const = 0;
    virtual std::shared_ptr<RecognitionTask> recognitionTask(
        const std::filesystem::path& audioFile, RecognitionHandler handler)
        = 0;
};

class RecognitionEngineFamily {
public:
    virtual ~RecognitionEngineFamily() = default;
    // Locale identifiers in BCP 47 form ("en-US").
    virtual std::vector<std::string> supportedLocales() const = 0;
    // Null when the family has no recogniser for the locale.
    virtual std::unique_ptr<RecognitionEngine> makeEngine(const std::string& localeIdentifier) const = 0;
};

using RecognitionEngineFamilies = std::vector<std::shared_ptr<const RecognitionEngineFamily>>;

// The engines built into this program.
RecognitionEngineFamilies installedRecognitionEngines();

// "en_US", "en-us" and "en-US" name the same locale.
bool sameLocaleIdentifier(const std::string& a, const std::string& b);

} // namespace cuewright
