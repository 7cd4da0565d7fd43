#include "media/CaptionLayerLayout.h"

#include <algorithm>
#include <cmath>

namespace cuewright::CaptionLayerLayout {

namespace {

    // Cairo's image surfaces stop at 32767 pixels a side.
    constexpr double largestRaster = 32767;

    double atLeast(double value, double bound)
    {
        return value >= bound ? value : bound;
    }

} // namespace

bool isPlaced(const CaptionCue& cue)
{
    return cue.positionX.has_value() && cue.positionY.has_value();
}

RenderSize measureConstraint(const CaptionStyle& style, RenderSize renderSize)
{
    const double fs = style.fontSize;
    const double paddingWidth = 2 * horizontalInset * fs;
    return { atLeast(boxWidthShare * renderSize.width - paddingWidth, 1.0), boxHeightShare * renderSize.height };
}

RenderSize positionedBoxSize(RenderSize measuredText, const CaptionStyle& style, RenderSize renderSize)
{
    const double fs = style.fontSize;
    const double limitWidth = boxWidthShare * renderSize.width;
    const double limitHeight = boxHeightShare * renderSize.height;
    const double width = std::ceil(measuredText.width) + 2 * horizontalInset * fs;
    const double height = std::ceil(measuredText.height) + 2 * verticalInset * fs;
    return { std::min(std::max(leastBoxWidth * fs, width), limitWidth),
        std::min(std::max(leastBoxHeight * fs, height), limitHeight) };
}

CaptionLayerGeometry geometry(
    const CaptionCue& cue, const CaptionStyle& style, RenderSize renderSize, RenderSize measuredText)
{
    const double fs = style.fontSize;
    const double W = renderSize.width;
    const double H = renderSize.height;
    CaptionLayerGeometry result;
    if (isPlaced(cue)) {
        const RenderSize size = positionedBoxSize(measuredText, style, renderSize);
        const double centreX = *cue.positionX * W;
        const double centreY = (1 - *cue.positionY) * H;
        const double x = std::min(atLeast(centreX - size.width / 2, 0), W - size.width);
        const double y = std::min(atLeast(centreY - size.height / 2, 0), H - size.height);
        result.box = { x, y, size.width, size.height };
    } else {
        const double width = boxWidthShare * W;
        const double height = std::max(defaultBoxHeight * fs, defaultBoxHeightShare * H);
        result.box = { 0.5 * (W - width), style.bottomMargin * H, width, height };
    }
    const double dx = horizontalInset * fs;
    const double dy = verticalInset * fs;
    result.textFrame = { result.box.x + dx, result.box.y + dy, result.box.width - 2 * dx, result.box.height - 2 * dy };
    result.cornerRadius = cornerRadius * fs;
    result.textPixelWidth = rasterPixels(result.textFrame.width);
    result.textPixelHeight = rasterPixels(result.textFrame.height);
    return result;
}

int rasterPixels(double points)
{
    const double pixels = std::ceil(rasterScale * points);
    if (!(pixels >= 1))
        return 1;
    return static_cast<int>(std::min(pixels, largestRaster));
}

} // namespace cuewright::CaptionLayerLayout
