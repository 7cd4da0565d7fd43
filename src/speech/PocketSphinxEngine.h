#pragma once

#include "speech/RecognitionEngine.h"

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace cuewright {

// One installed PocketSphinx model: acoustic model folder, language model and dictionary.
struct PocketSphinxModel {
    std::string localeIdentifier;
    std::filesystem::path acousticModel;
    std::filesystem::path languageModel;
    std::filesystem::path dictionary;

    bool isInstalled() const;
};

// Recognises with PocketSphinx: the audio is cut at its pauses and the pieces decoded in
// parallel, one decoder (one copy of the model) per thread. Several recognitions may run at once.
class PocketSphinxEngine : public RecognitionEngine {
public:
    // threads 0: one per processor.
    explicit PocketSphinxEngine(PocketSphinxModel model, unsigned threads = 0);

    bool isAvailable() const override;
    bool supportsOnDeviceRecognition() const override { return true; }
    std::shared_ptr<RecognitionTask> recognitionTask(
        const std::filesystem::path& audioFile, RecognitionHandler handler) override;

    // The models this system knows where Debian installs them; only those present are listed.
    static std::vector<PocketSphinxModel> installedModels();

    // The text of a decoder's segment as a word: none for silence, sentence marks and fillers
    // ("<sil>", "[NOISE]", "++UM++"), and without a pronunciation variant's "(2)".
    static std::optional<std::string> wordText(std::string_view segment);

private:
    PocketSphinxModel m_model;
    unsigned m_threads;
};

class PocketSphinxEngineFamily : public RecognitionEngineFamily {
public:
    // threads 0: one per processor.
    explicit PocketSphinxEngineFamily(unsigned threads = 0)
        : m_threads(threads)
    {
    }

    std::vector<std::string> supportedLocales() const override;
    std::unique_ptr<RecognitionEngine> makeEngine(const std::string& localeIdentifier) const override;

private:
    unsigned m_threads;
};

} // namespace cuewright
