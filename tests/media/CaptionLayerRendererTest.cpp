#include "media/CaptionLayerRenderer.h"

#include <gtest/gtest.h>

#include <cmath>

using namespace cuewright;

namespace {

struct Rgba {
    int r, g, b, a;
};

// A pixel of the layer by picture coordinates (top left origin).
Rgba pixel(const CaptionLayerBitmap& layer, int x, int y)
{
    x -= layer.left;
    y -= layer.top;
    if (x < 0 || y < 0 || x >= layer.width || y >= layer.height)
        return { 0, 0, 0, 0 };
    const std::uint8_t* p = &layer.rgba[(static_cast<std::size_t>(y) * layer.width + x) * 4];
    return { p[0], p[1], p[2], p[3] };
}

// Counts pixels of the layer that satisfy a test, within rows [top, bottom) of the picture.
template <typename Test> int count(const CaptionLayerBitmap& layer, int top, int bottom, Test test)
{
    int n = 0;
    for (int y = std::max(top, layer.top); y < std::min(bottom, layer.top + layer.height); ++y)
        for (int x = layer.left; x < layer.left + layer.width; ++x)
            n += test(pixel(layer, x, y)) ? 1 : 0;
    return n;
}

CaptionCue cue(std::string text, std::optional<double> x = std::nullopt, std::optional<double> y = std::nullopt)
{
    return CaptionCue(Uuid::generate(), 0, 1, std::move(text), x, y);
}

} // namespace

TEST(CaptionLayerRenderer, defaultStyleDrawsTheTranslucentBandWithWhiteTextFromTheTop)
{
    CaptionLayerRenderer renderer;
    const CaptionStyle style = defaultCaptionStyle();
    const RenderSize size { 1280, 720 };
    const CaptionLayerBitmap layer = renderer.makeCueLayer(cue("Hello"), style, size);
    const auto g = renderer.layerGeometry(cue("Hello"), style, size);
    const int boxTop = static_cast<int>(720 - g.box.y - g.box.height);
    const int boxBottom = static_cast<int>(720 - g.box.y);

    // Inside the band, away from the text and the rounded corners: black at 0.72, premultiplied.
    const Rgba background = pixel(layer, static_cast<int>(g.box.x) + 20, boxBottom - 5);
    EXPECT_NEAR(background.a, 184, 1);
    EXPECT_EQ(background.r, 0);
    // Outside the band nothing is drawn, shadow margin included.
    EXPECT_EQ(pixel(layer, 10, boxBottom - 5).a, 0);
    EXPECT_EQ(pixel(layer, 640, boxTop - 20).a, 0);
    // The very corner of the box is cut by the radius.
    EXPECT_LT(pixel(layer, static_cast<int>(std::ceil(g.box.x)), boxTop).a, 120);

    // White glyphs sit in the upper part of the text frame, centred horizontally.
    const auto white = [](Rgba p) { return p.a == 255 && p.r > 240 && p.g > 240 && p.b > 240; };
    const int textTop = boxTop + static_cast<int>(0.18 * 54);
    EXPECT_GT(count(layer, textTop, textTop + 54, white), 200);
    EXPECT_EQ(count(layer, boxBottom - 15, boxBottom, white), 0);
    int leftmost = 1280, rightmost = 0;
    for (int y = textTop; y < textTop + 54; ++y)
        for (int x = layer.left; x < layer.left + layer.width; ++x)
            if (white(pixel(layer, x, y)))
                leftmost = std::min(leftmost, x), rightmost = std::max(rightmost, x);
    EXPECT_NEAR((leftmost + rightmost) / 2.0, 640, 6);
}

TEST(CaptionLayerRenderer, withoutBackgroundOnlyGlyphsAndTheirShadowAppear)
{
    CaptionLayerRenderer renderer;
    CaptionStyle style = defaultCaptionStyle();
    style.backgroundEnabled = false;
    style.shadowEnabled = false;
    const RenderSize size { 640, 360 };
    const CaptionLayerBitmap plain = renderer.makeCueLayer(cue("Shadow"), style, size);
    const auto translucentDark = [](Rgba p) { return p.a > 10 && p.a < 240 && p.r < 40; };
    const auto opaque = [](Rgba p) { return p.a > 0; };
    const int plainPixels = count(plain, 0, 360, opaque);
    EXPECT_GT(plainPixels, 100);
    // Every visible pixel is a glyph pixel: white, possibly antialiased.
    EXPECT_EQ(count(plain, 0, 360, [](Rgba p) { return p.a > 0 && p.r < p.a - 2; }), 0);

    style.shadowEnabled = true;
    const CaptionLayerBitmap shadowed = renderer.makeCueLayer(cue("Shadow"), style, size);
    EXPECT_GT(count(shadowed, 0, 360, opaque), plainPixels + 100);
    EXPECT_GT(count(shadowed, 0, 360, translucentDark), 50);
    // The shadow falls downwards: the lowest covered row moves down, the highest hardly.
    const auto lowest = [&](const CaptionLayerBitmap& layer) {
        for (int y = layer.top + layer.height - 1; y >= layer.top; --y)
            if (count(layer, y, y + 1, [](Rgba p) { return p.a > 20; }) > 0)
                return y;
        return -1;
    };
    EXPECT_GE(lowest(shadowed), lowest(plain) + 2);
}

TEST(CaptionLayerRenderer, placedBoxGrowsWithItsLinesUpToHalfThePicture)
{
    CaptionLayerRenderer renderer;
    const CaptionStyle style = defaultCaptionStyle();
    const RenderSize size { 1920, 1080 };
    const RenderSize one = renderer.positionedCueSize("One line", style, size);
    const RenderSize two = renderer.positionedCueSize("One line\nand another", style, size);
    EXPECT_GT(two.height, one.height + 40);
    EXPECT_LT(one.width, 0.84 * 1920);
    std::string many;
    for (int i = 0; i < 40; ++i)
        many += "line\n";
    // Only whole lines that fit are measured, so the box stops within a line of the limit.
    const double tall = renderer.positionedCueSize(many, style, size).height;
    EXPECT_LE(tall, 540);
    EXPECT_GT(tall, 540 - 70);
    // Long text wraps at the limit width instead of growing past it.
    const RenderSize wide = renderer.positionedCueSize(std::string(400, 'w'), style, size);
    EXPECT_LE(wide.width, 0.84 * 1920);
    EXPECT_GT(wide.width, 0.84 * 1920 - 60);
    EXPECT_GT(wide.height, one.height);
}

TEST(CaptionLayerRenderer, unknownFontsFallBackToASubstituteThatDrawsText)
{
    CaptionLayerRenderer renderer;
    CaptionStyle style = defaultCaptionStyle();
    style.fontName = "No Such Font Family 9";
    style.backgroundEnabled = false;
    const CaptionLayerBitmap layer = renderer.makeCueLayer(cue("Visible", 0.5, 0.5), style, { 640, 360 });
    EXPECT_GT(count(layer, 0, 360, [](Rgba p) { return p.a == 255; }), 100);
}

TEST(CaptionLayerRenderer, fontSizeIsNotScaledWithThePicture)
{
    CaptionLayerRenderer renderer;
    const CaptionStyle style = defaultCaptionStyle();
    EXPECT_EQ(renderer.positionedCueSize("Same", style, { 640, 360 }),
        renderer.positionedCueSize("Same", style, { 3840, 2160 }));
}
