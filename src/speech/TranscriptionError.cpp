#include "speech/TranscriptionError.h"

namespace cuewright {

namespace {

    const char* description(TranscriptionError::Kind kind)
    {
        switch (kind) {
        case TranscriptionError::Kind::permissionDenied:
            return "Speech Recognition permission is required to create captions.";
        case TranscriptionError::Kind::unavailable:
            return "Speech recognition is not available for the selected language.";
        case TranscriptionError::Kind::onDeviceUnavailable:
            return "Local transcription is not available for this language on this Mac.";
        case TranscriptionError::Kind::noSpeech:
            return "No spoken words were found in the video.";
        case TranscriptionError::Kind::audioExtractionFailed:
            return "The audio track could not be prepared for transcription.";
        }
        return "";
    }

} // namespace

TranscriptionError::TranscriptionError(Kind kind)
    : std::runtime_error(description(kind))
    , kind(kind)
{
}

} // namespace cuewright
