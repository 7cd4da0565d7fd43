#pragma once

#include <stdexcept>

namespace cuewright {

// Why a transcription could not give words; what() is the text shown to the user.
class TranscriptionError : public std::runtime_error {
public:
    enum class Kind {
        permissionDenied,
        unavailable,
        onDeviceUnavailable,
        noSpeech,
        audioExtractionFailed,
    };

    explicit TranscriptionError(Kind kind);

    Kind kind;
};

} // namespace cuewright
