#pragma once

#include "core/CaptionCue.h"
#include "media/CaptionLayerRenderer.h"

#include <cstdint>
#include <vector>

namespace cuewright {

// When a cue shows, as fractions of the export's duration D: on frames whose time t has
// begin <= t / D < end. Exact quotients, no rounding to frames and no slack.
struct CaptionVisibility {
    double begin = 0;
    double end = 0;
    friend bool operator==(const CaptionVisibility&, const CaptionVisibility&) = default;
};

// The colour matrix and range of the frames a layer is blended into.
enum class YuvMatrix { bt601, bt709, bt2020 };
enum class YuvRange { limited, full };

// A caption layer converted once for 8-bit 4:2:0 frames: premultiplied luma and chroma with
// their inverse alphas, on even coordinates so that chroma samples line up with the frame's.
struct YuvLayer {
    int left = 0;
    int top = 0;
    int width = 0; // even
    int height = 0; // even
    std::vector<std::uint8_t> luma, lumaInverseAlpha; // width × height
    std::vector<std::uint8_t> cb, cr, chromaInverseAlpha; // width/2 × height/2
    // Per luma row the covered columns [first, last); empty rows have first == last.
    std::vector<std::int32_t> rowFirst, rowLast;
};

namespace CaptionOverlay {

    CaptionVisibility visibility(const CaptionCue& cue, double duration);
    bool isVisible(CaptionVisibility visibility, double time, double duration);

    // The frames n (time n / framesPerSecond) among [0, frameCount) that show the cue, as [first, last).
    struct FrameRange {
        std::int64_t first = 0;
        std::int64_t last = 0;
        friend bool operator==(const FrameRange&, const FrameRange&) = default;
    };
    FrameRange visibleFrames(
        CaptionVisibility visibility, double duration, int framesPerSecond, std::int64_t frameCount);

    YuvLayer yuvLayer(const CaptionLayerBitmap& bitmap, YuvMatrix matrix, YuvRange range);

    // Blends into one 8-bit 4:2:0 frame, touching only the layer's covered pixels.
    void blend(
        const YuvLayer& layer, std::uint8_t* const planes[3], const int linesizes[3], int frameWidth, int frameHeight);

} // namespace CaptionOverlay
} // namespace cuewright
