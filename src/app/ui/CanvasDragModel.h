#pragma once

#include "core/CaptionCue.h"
#include "core/CaptionStyle.h"

#include <optional>

namespace cuewright {

// A caption drag on the preview in flight: fractions of the preview area for the caption's
// centre. Held by the view; the document gets one setCuePosition on release.
struct CanvasCueEdit {
    Uuid id;
    double originalX = 0;
    double originalY = 0;
    double x = 0;
    double y = 0;

    friend bool operator==(const CanvasCueEdit&, const CanvasCueEdit&) = default;
};

namespace CanvasGeometry {
    inline constexpr double defaultX = 0.5;
    inline constexpr double lowerClamp = 0.02;
    inline constexpr double upperClamp = 0.98;
    inline constexpr double widthLimit = 0.84;
    inline constexpr double dragThreshold = 1.0;
    inline constexpr double horizontalPadding = 18.0;
    inline constexpr double verticalPadding = 10.0;
    inline constexpr double cornerRadius = 12.0;

    // Where an unplaced caption's centre sits: above the style's bottom margin, never
    // higher than 0.08 from the top.
    double defaultY(const CaptionStyle& style);
}

struct CanvasPoint {
    double x = 0;
    double y = 0;
    friend bool operator==(const CanvasPoint&, const CanvasPoint&) = default;
};

class CanvasDragModel {
public:
    const std::optional<CanvasCueEdit>& edit() const { return m_edit; }

    // The caption's centre in a preview of the given size, through the edit while one exists.
    CanvasPoint displayedCanvasPosition(
        const CaptionCue& cue, const CaptionStyle& style, double width, double height) const;

    // One drag sample, the translation measured from the press in points. Ignored, returning
    // false, while the preview has no area.
    bool sample(const CaptionCue& cue, const CaptionStyle& style, double translationX, double translationY,
        double width, double height);

    void clear() { m_edit.reset(); }

private:
    std::optional<CanvasCueEdit> m_edit;
};

} // namespace cuewright
