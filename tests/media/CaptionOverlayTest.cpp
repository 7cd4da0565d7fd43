#include "media/CaptionOverlay.h"

#include <gtest/gtest.h>

#include <cmath>

#include <random>

using namespace cuewright;

namespace {

CaptionCue timed(double start, double end)
{
    CaptionCue cue;
    cue.start = start;
    cue.end = end;
    cue.text = "x";
    return cue;
}

} // namespace

TEST(CaptionOverlay, visibilityIsClampedToTheVideo)
{
    struct Row {
        double start, end;
        CaptionVisibility expected;
    };
    const double D = 10;
    for (const Row& row : {
             Row { 2, 4, { 0.2, 0.4 } }, Row { 12, 13, { 1, 1 } }, // after the end: never shown
             Row { 10, 11, { 1, 1 } }, Row { -3, 0, { 0, 0 } }, // ends at or before 0: never shown
             Row { -1, 5, { 0, 0.5 } }, // counts from 0
             Row { 8, 15, { 0.8, 1 } }, // cut at the end
             Row { 5, 4, { 0.5, 0.5 } }, // end before start
         }) {
        EXPECT_EQ(CaptionOverlay::visibility(timed(row.start, row.end), D), row.expected)
            << row.start << " " << row.end;
    }
}

TEST(CaptionOverlay, visibleFramesAgreeWithThePerFrameRule)
{
    // Frame times that fall exactly on cue boundaries are where an off-by-one hides.
    std::mt19937 random(7);
    std::uniform_int_distribution<int> frame(-40, 400);
    const double durations[] = { 10, 3, 7.3, 0.05, 1.0 / 3 };
    for (double D : durations) {
        const std::int64_t count = static_cast<std::int64_t>(std::ceil(D * 30));
        for (int i = 0; i < 300; ++i) {
            double start = frame(random) / 30.0;
            double end = frame(random) / 30.0 + (i % 3 == 0 ? 0.0001 : 0);
            if (i % 5 == 0)
                start = frame(random) * 0.0137;
            const CaptionVisibility v = CaptionOverlay::visibility(timed(start, end), D);
            const auto range = CaptionOverlay::visibleFrames(v, D, 30, count);
            for (std::int64_t n = 0; n < count; ++n) {
                const bool inside = n >= range.first && n < range.last;
                ASSERT_EQ(inside, CaptionOverlay::isVisible(v, n / 30.0, D))
                    << "D=" << D << " start=" << start << " end=" << end << " frame " << n;
            }
        }
    }
    // A cue from 0 to exactly D covers every frame.
    const auto whole = CaptionOverlay::visibleFrames(CaptionOverlay::visibility(timed(0, 3), 3), 3, 30, 90);
    EXPECT_EQ(whole, (CaptionOverlay::FrameRange { 0, 90 }));
}

namespace {

// A 4:2:0 frame with guard bytes around each plane to catch writes outside it.
struct Frame {
    int width, height;
    static constexpr int guard = 64;
    std::vector<std::uint8_t> y, u, v;
    Frame(int w, int h, std::uint8_t luma)
        : width(w)
        , height(h)
        , y(guard * 2 + w * h, luma)
        , u(guard * 2 + ((w + 1) / 2) * ((h + 1) / 2), 128)
        , v(u.size(), 128)
    {
        for (auto* plane : { &y, &u, &v })
            for (int i = 0; i < guard; ++i)
                (*plane)[i] = (*plane)[plane->size() - 1 - i] = 7;
    }
    void blend(const YuvLayer& layer)
    {
        std::uint8_t* const planes[3] = { y.data() + guard, u.data() + guard, v.data() + guard };
        const int linesizes[3] = { width, (width + 1) / 2, (width + 1) / 2 };
        CaptionOverlay::blend(layer, planes, linesizes, width, height);
    }
    std::uint8_t luma(int x, int row) const { return y[guard + row * width + x]; }
    bool guardsIntact() const
    {
        for (const auto* plane : { &y, &u, &v })
            for (int i = 0; i < guard; ++i)
                if ((*plane)[i] != 7 || (*plane)[plane->size() - 1 - i] != 7)
                    return false;
        return true;
    }
};

CaptionLayerBitmap solid(int left, int top, int width, int height, std::uint8_t value, std::uint8_t alpha)
{
    CaptionLayerBitmap bitmap { left, top, width, height, {} };
    for (int i = 0; i < width * height; ++i)
        bitmap.rgba.insert(bitmap.rgba.end(), { value, value, value, alpha });
    return bitmap;
}

} // namespace

TEST(CaptionOverlay, blendingMixesPremultipliedColourOnlyInsideTheLayer)
{
    Frame frame(32, 24, 100);
    frame.blend(CaptionOverlay::yuvLayer(solid(3, 5, 10, 6, 255, 255), YuvMatrix::bt709, YuvRange::limited));
    EXPECT_EQ(frame.luma(3, 5), 235); // opaque white, limited range
    EXPECT_EQ(frame.luma(12, 10), 235);
    EXPECT_EQ(frame.luma(2, 5), 100); // just outside, though the chroma block is shared
    EXPECT_EQ(frame.luma(13, 5), 100);
    EXPECT_EQ(frame.luma(3, 11), 100);

    Frame half(32, 24, 100);
    // Black at half opacity, premultiplied: colour 0, alpha 128.
    half.blend(CaptionOverlay::yuvLayer(solid(0, 0, 8, 8, 0, 128), YuvMatrix::bt601, YuvRange::limited));
    EXPECT_NEAR(half.luma(4, 4), 16 * 128 / 255.0 + 100 * 127 / 255.0, 1);
    EXPECT_EQ(half.u[Frame::guard], 128);
}

TEST(CaptionOverlay, layersCrossingTheFrameEdgesAreClipped)
{
    for (const auto& [left, top] :
        { std::pair { -5, -3 }, std::pair { 27, 19 }, std::pair { -40, 0 }, std::pair { 31, 23 } }) {
        Frame frame(33, 25, 50); // odd sizes, as a padded picture can have before padding
        frame.blend(CaptionOverlay::yuvLayer(solid(left, top, 9, 7, 200, 255), YuvMatrix::bt709, YuvRange::full));
        EXPECT_TRUE(frame.guardsIntact()) << left << "," << top;
    }
}
