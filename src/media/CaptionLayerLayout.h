#pragma once

#include "core/CaptionCue.h"
#include "core/CaptionStyle.h"

namespace cuewright {

// Width and height in render points; one point is one pixel of the exported picture.
struct RenderSize {
    double width = 0;
    double height = 0;
    friend bool operator==(const RenderSize&, const RenderSize&) = default;
};

// A rectangle in layer coordinates: origin at the bottom left of the picture, y upwards.
struct LayerRect {
    double x = 0;
    double y = 0;
    double width = 0;
    double height = 0;
    friend bool operator==(const LayerRect&, const LayerRect&) = default;
};

// Where a caption layer goes and how big its text bitmap is; no pixels involved, so the
// geometry can be checked without rendering anything.
struct CaptionLayerGeometry {
    LayerRect box;
    LayerRect textFrame; // inside the box, in the same picture coordinates
    double cornerRadius = 0;
    int textPixelWidth = 1; // the text bitmap, at the raster scale
    int textPixelHeight = 1;
};

namespace CaptionLayerLayout {

    inline constexpr double boxWidthShare = 0.84;
    inline constexpr double boxHeightShare = 0.5;
    inline constexpr double horizontalInset = 0.3; // times the font size
    inline constexpr double verticalInset = 0.18;
    inline constexpr double leastBoxWidth = 2.0;
    inline constexpr double leastBoxHeight = 1.55;
    inline constexpr double defaultBoxHeight = 2.3;
    inline constexpr double defaultBoxHeightShare = 0.09;
    inline constexpr double cornerRadius = 0.22;
    inline constexpr double rasterScale = 2.0;
    inline constexpr double shadowOpacity = 0.7;
    inline constexpr double shadowRadius = 3.0;
    inline constexpr double shadowOffsetDown = 2.0;

    // Both positions present; with one missing the cue sits in the default band.
    bool isPlaced(const CaptionCue& cue);

    // The constraint within which text of a placed cue is measured.
    RenderSize measureConstraint(const CaptionStyle& style, RenderSize renderSize);

    // The box of a placed cue from the size its wrapped text needs within measureConstraint().
    RenderSize positionedBoxSize(RenderSize measuredText, const CaptionStyle& style, RenderSize renderSize);

    // The whole geometry; measuredText matters only for a placed cue.
    CaptionLayerGeometry geometry(
        const CaptionCue& cue, const CaptionStyle& style, RenderSize renderSize, RenderSize measuredText);

    // Bitmap pixels for a length in points at the raster scale, at least 1 and never past what a
    // bitmap can hold.
    int rasterPixels(double points);

} // namespace CaptionLayerLayout
} // namespace cuewright
