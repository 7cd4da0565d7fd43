#pragma once

// Burns a document's captions into a copy of a video.
//
//     CaptionBurner::exportVideo("talk.mov", "talk-captioned.mp4", document, style);
//
// exportVideo is synchronous and thread-safe: it shares no state, so callers run it off the UI
// thread (QtConcurrent::run with copies of the document and style). It reports no progress.
// The result is written to a hidden file beside the destination, verified by decoding a frame,
// and only then renamed over the destination; on any failure the destination stays as it was
// and the hidden file is removed.

#include "core/CaptionDocument.h"
#include "core/CaptionStyle.h"
#include "media/MediaError.h"

#include <filesystem>
#include <stdexcept>

namespace cuewright {

class CaptionBurnerError : public std::runtime_error {
public:
    enum class Kind { noVideo, cannotCreateComposition, cannotCreateExporter, exportFailed, invalidExport };
    explicit CaptionBurnerError(Kind kind);
    Kind kind;
};

namespace CaptionBurner {

    inline constexpr int framesPerSecond = 30;

    // Where the time of an export went; for benchmarks.
    struct ExportStatistics {
        double totalSeconds = 0;
        double layerSeconds = 0; // rendering the caption layers
        double compositingSeconds = 0; // blending them into frames
        long long frames = 0;
    };

    // Throws CaptionBurnerError, MediaError for errors of the media libraries and
    // std::filesystem::filesystem_error for the final rename, each as it arises.
    void exportVideo(const std::filesystem::path& source, const std::filesystem::path& destination,
        const CaptionDocument& document, const CaptionStyle& style, ExportStatistics* statistics = nullptr);

    // The hidden file beside destination that an export writes first: .<name>-<UUID>.export.mp4
    std::filesystem::path temporaryPath(const std::filesystem::path& destination);

    // Throws CaptionBurnerError invalidExport unless the file is a playable video of positive
    // duration from which a frame at min(duration / 2, 0.1 s) decodes.
    void validateExport(const std::filesystem::path& file);

} // namespace CaptionBurner
} // namespace cuewright
