#include "media/CaptionLayerLayout.h"

#include <gtest/gtest.h>

#include <cmath>

using namespace cuewright;
namespace L = CaptionLayerLayout;

namespace {

CaptionCue cueAt(std::optional<double> x, std::optional<double> y)
{
    CaptionCue cue(Uuid::generate(), 0, 1, "Hello");
    cue.positionX = x;
    cue.positionY = y;
    return cue;
}

CaptionStyle styleWithSize(double fontSize)
{
    CaptionStyle style = defaultCaptionStyle();
    style.fontSize = fontSize;
    return style;
}

} // namespace

TEST(CaptionLayerLayout, unplacedCueIsAFixedBandAboveTheBottomMargin)
{
    struct Row {
        RenderSize size;
        double fontSize;
        double expectedHeight;
    };
    // The band is 2.3 × fs high unless 9% of the picture is more.
    for (const Row& row :
        { Row { { 1920, 1080 }, 54, 124.2 }, Row { { 1920, 2000 }, 54, 180 }, Row { { 320, 240 }, 20, 46 } }) {
        const CaptionStyle style = styleWithSize(row.fontSize);
        // A long measurement changes nothing: the band's text isn't measured.
        const auto g = L::geometry(cueAt(std::nullopt, std::nullopt), style, row.size, { 5000, 5000 });
        EXPECT_DOUBLE_EQ(g.box.width, 0.84 * row.size.width);
        EXPECT_DOUBLE_EQ(g.box.x, 0.5 * (row.size.width - 0.84 * row.size.width));
        EXPECT_DOUBLE_EQ(g.box.y, 0.09 * row.size.height);
        EXPECT_NEAR(g.box.height, row.expectedHeight, 1e-9);
    }
}

TEST(CaptionLayerLayout, aCueWithOnlyOnePositionSitsInTheBand)
{
    const CaptionStyle style = defaultCaptionStyle();
    const RenderSize size { 1280, 720 };
    const auto band = L::geometry(cueAt(std::nullopt, std::nullopt), style, size, {});
    EXPECT_EQ(L::geometry(cueAt(0.1, std::nullopt), style, size, { 100, 40 }).box, band.box);
    EXPECT_EQ(L::geometry(cueAt(std::nullopt, 0.1), style, size, { 100, 40 }).box, band.box);
}

TEST(CaptionLayerLayout, placedBoxesStayInsideThePictureAtTheCorners)
{
    const CaptionStyle style = styleWithSize(40);
    const RenderSize size { 1280, 720 };
    const RenderSize text { 200, 48 };
    const RenderSize box = L::positionedBoxSize(text, style, size);
    const auto topLeft = L::geometry(cueAt(0, 0), style, size, text);
    EXPECT_EQ(topLeft.box, (LayerRect { 0, 720 - box.height, box.width, box.height }));
    const auto bottomRight = L::geometry(cueAt(1, 1), style, size, text);
    EXPECT_EQ(bottomRight.box, (LayerRect { 1280 - box.width, 0, box.width, box.height }));
    // In the middle the position is the box's centre; y is measured from the top.
    const auto centre = L::geometry(cueAt(0.5, 0.25), style, size, text);
    EXPECT_DOUBLE_EQ(centre.box.x + centre.box.width / 2, 640);
    EXPECT_DOUBLE_EQ(centre.box.y + centre.box.height / 2, 540);
}

TEST(CaptionLayerLayout, placedBoxRoundsTheTextUpAddsInsetsAndKeepsBetweenLeastAndLimit)
{
    const CaptionStyle style = styleWithSize(50);
    const RenderSize size { 1920, 1080 };
    // Rounded up each on its own, then 0.6 × fs and 0.36 × fs of padding.
    EXPECT_EQ(L::positionedBoxSize({ 300.2, 60.01 }, style, size), (RenderSize { 301 + 30, 61 + 18 }));
    // Very short text: the least box, 2 × fs by 1.55 × fs.
    EXPECT_EQ(L::positionedBoxSize({ 10, 10 }, style, size), (RenderSize { 100, 77.5 }));
    // Text that needs everything: 0.84 × W by 0.5 × H.
    EXPECT_EQ(L::positionedBoxSize({ 5000, 5000 }, style, size), (RenderSize { 0.84 * 1920, 540 }));
}

TEST(CaptionLayerLayout, inTinyPicturesTheLimitsWinOverTheLeastBox)
{
    const CaptionStyle style = defaultCaptionStyle(); // 54 points
    const RenderSize size { 32, 24 };
    EXPECT_EQ(L::positionedBoxSize({ 1, 1 }, style, size), (RenderSize { 0.84 * 32, 12 }));
    const auto g = L::geometry(cueAt(0.5, 0.5), style, size, { 1, 1 });
    EXPECT_GE(g.box.x, 0);
    EXPECT_GE(g.box.y, 0);
    // The insets are larger than the box: the text bitmap still has a pixel.
    EXPECT_EQ(g.textPixelWidth, 1);
    EXPECT_EQ(g.textPixelHeight, 1);
    // The measuring width never goes below one point.
    EXPECT_EQ(L::measureConstraint(style, size).width, 1.0);
}

TEST(CaptionLayerLayout, textFrameIsInsetAndRasterisedAtTwicePointSize)
{
    const CaptionStyle style = styleWithSize(20);
    const auto g = L::geometry(cueAt(std::nullopt, std::nullopt), style, { 320, 240 }, {});
    EXPECT_DOUBLE_EQ(g.textFrame.x, g.box.x + 6);
    EXPECT_DOUBLE_EQ(g.textFrame.y, g.box.y + 3.6);
    EXPECT_DOUBLE_EQ(g.textFrame.width, g.box.width - 12);
    EXPECT_DOUBLE_EQ(g.textFrame.height, g.box.height - 7.2);
    EXPECT_EQ(g.textPixelWidth, static_cast<int>(std::ceil(2 * g.textFrame.width)));
    EXPECT_EQ(g.textPixelHeight, static_cast<int>(std::ceil(2 * g.textFrame.height)));
    EXPECT_DOUBLE_EQ(g.cornerRadius, 4.4);
    // A size that no bitmap can hold is capped, not overflowed.
    EXPECT_EQ(L::rasterPixels(1e12), 32767);
    EXPECT_EQ(L::rasterPixels(std::nan("")), 1);
}
