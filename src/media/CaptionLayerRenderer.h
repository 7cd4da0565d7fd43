#pragma once

#include "core/CaptionCue.h"
#include "core/CaptionStyle.h"
#include "media/CaptionLayerLayout.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace cuewright {

// A finished caption layer flattened onto the picture's pixel grid: box, text and shadow.
// Premultiplied RGBA, 8 bits a component, rows of 4 × width bytes, no padding.
struct CaptionLayerBitmap {
    int left = 0; // picture pixels from the left
    int top = 0; // picture pixels from the top
    int width = 0;
    int height = 0;
    std::vector<std::uint8_t> rgba;

    bool empty() const { return width <= 0 || height <= 0; }
};

// Sets caption text with Pango and Cairo. Font names that fontconfig doesn't know get its
// substitute; the platform's private system name (leading dot) becomes a bold sans.
// One renderer per thread: it owns its own font map.
class CaptionLayerRenderer {
public:
    CaptionLayerRenderer();
    ~CaptionLayerRenderer();
    CaptionLayerRenderer(const CaptionLayerRenderer&) = delete;
    CaptionLayerRenderer& operator=(const CaptionLayerRenderer&) = delete;

    // The box of a placed cue: its wrapped text plus the insets, between the least box and the limits.
    RenderSize positionedCueSize(const std::string& text, const CaptionStyle& style, RenderSize renderSize);

    CaptionLayerGeometry layerGeometry(const CaptionCue& cue, const CaptionStyle& style, RenderSize renderSize);

    // Never fails: text that can't be rasterised leaves the box alone.
    CaptionLayerBitmap makeCueLayer(const CaptionCue& cue, const CaptionStyle& style, RenderSize renderSize);

private:
    struct Fonts;
    std::unique_ptr<Fonts> m_fonts;
};

} // namespace cuewright
