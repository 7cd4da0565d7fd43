#include "media/CaptionOverlay.h"

#include <algorithm>
#include <cmath>

namespace cuewright::CaptionOverlay {

CaptionVisibility visibility(const CaptionCue& cue, double duration)
{
    const double begin = std::clamp(cue.start / duration, 0.0, 1.0);
    const double end = std::max(begin, std::min(cue.end / duration, 1.0));
    // NaN times show nothing.
    if (std::isnan(begin) || std::isnan(end))
        return { 1, 1 };
    return { begin, end };
}

bool isVisible(CaptionVisibility v, double time, double duration)
{
    const double fraction = time / duration;
    return v.begin <= fraction && fraction < v.end;
}

namespace {

    // The least n in [0, count] for which the monotonic predicate holds, starting near a guess.
    template <typename Predicate> std::int64_t firstFrame(double guess, std::int64_t count, Predicate holds)
    {
        std::int64_t n = std::clamp<std::int64_t>(static_cast<std::int64_t>(std::floor(guess)) - 2, 0, count);
        while (n < count && !holds(n))
            ++n;
        return n;
    }

} // namespace

FrameRange visibleFrames(CaptionVisibility v, double duration, int framesPerSecond, std::int64_t frameCount)
{
    if (frameCount <= 0 || !(v.begin < v.end))
        return {};
    const auto fraction = [&](std::int64_t n) { return (static_cast<double>(n) / framesPerSecond) / duration; };
    const double scale = duration * framesPerSecond;
    const std::int64_t first
        = firstFrame(v.begin * scale, frameCount, [&](std::int64_t n) { return v.begin <= fraction(n); });
    const std::int64_t last
        = firstFrame(v.end * scale, frameCount, [&](std::int64_t n) { return !(fraction(n) < v.end); });
    return { first, std::max(first, last) };
}

namespace {

    struct Coefficients {
        double kr, kb;
    };

    Coefficients coefficients(YuvMatrix matrix)
    {
        switch (matrix) {
        case YuvMatrix::bt601:
            return { 0.299, 0.114 };
        case YuvMatrix::bt2020:
            return { 0.2627, 0.0593 };
        case YuvMatrix::bt709:
            break;
        }
        return { 0.2126, 0.0722 };
    }

    std::uint8_t toByte(double value)
    {
        return static_cast<std::uint8_t>(std::clamp(std::lround(value), 0L, 255L));
    }

    // x / 255 rounded, for x in 0 ... 255 × 255.
    inline unsigned divide255(unsigned x)
    {
        x += 128;
        return (x + (x >> 8)) >> 8;
    }

} // namespace

YuvLayer yuvLayer(const CaptionLayerBitmap& bitmap, YuvMatrix matrix, YuvRange range)
{
    YuvLayer layer;
    if (bitmap.empty())
        return layer;
    layer.left = bitmap.left & ~1;
    layer.top = bitmap.top & ~1;
    layer.width = (bitmap.left + bitmap.width - layer.left + 1) & ~1;
    layer.height = (bitmap.top + bitmap.height - layer.top + 1) & ~1;
    const int dx = bitmap.left - layer.left;
    const int dy = bitmap.top - layer.top;
    const auto [kr, kb] = coefficients(matrix);
    const double kg = 1 - kr - kb;
    const bool limited = range == YuvRange::limited;
    const double lumaScale = limited ? 219.0 / 255 : 1;
    const double chromaScale = limited ? 224.0 / 255 : 1;
    const double lumaOffset = limited ? 16 : 0;

    const std::size_t lumaSize = static_cast<std::size_t>(layer.width) * layer.height;
    std::vector<double> y(lumaSize, 0), u(lumaSize, 0), v(lumaSize, 0), a(lumaSize, 0);
    for (int row = 0; row < bitmap.height; ++row)
        for (int col = 0; col < bitmap.width; ++col) {
            const std::uint8_t* p = &bitmap.rgba[(static_cast<std::size_t>(row) * bitmap.width + col) * 4];
            const double alpha = p[3] / 255.0;
            const double luma = kr * p[0] + kg * p[1] + kb * p[2];
            const std::size_t i = static_cast<std::size_t>(row + dy) * layer.width + col + dx;
            y[i] = alpha * lumaOffset + lumaScale * luma;
            u[i] = alpha * 128 + chromaScale * (p[2] - luma) / (2 * (1 - kb));
            v[i] = alpha * 128 + chromaScale * (p[0] - luma) / (2 * (1 - kr));
            a[i] = p[3];
        }

    layer.luma.resize(lumaSize);
    layer.lumaInverseAlpha.resize(lumaSize);
    layer.rowFirst.assign(layer.height, 0);
    layer.rowLast.assign(layer.height, 0);
    for (int row = 0; row < layer.height; ++row) {
        int first = layer.width, last = 0;
        for (int col = 0; col < layer.width; ++col) {
            const std::size_t i = static_cast<std::size_t>(row) * layer.width + col;
            layer.luma[i] = toByte(y[i]);
            layer.lumaInverseAlpha[i] = static_cast<std::uint8_t>(255 - a[i]);
            if (a[i] > 0) {
                first = std::min(first, col);
                last = col + 1;
            }
        }
        // Whole chroma pairs, so the chroma loop can use the same span.
        layer.rowFirst[row] = first < last ? first & ~1 : 0;
        layer.rowLast[row] = first < last ? (last + 1) & ~1 : 0;
    }

    const int cw = layer.width / 2, ch = layer.height / 2;
    layer.cb.resize(static_cast<std::size_t>(cw) * ch);
    layer.cr.resize(layer.cb.size());
    layer.chromaInverseAlpha.resize(layer.cb.size());
    for (int row = 0; row < ch; ++row)
        for (int col = 0; col < cw; ++col) {
            double su = 0, sv = 0, sa = 0;
            for (int k = 0; k < 4; ++k) {
                const std::size_t i = static_cast<std::size_t>(2 * row + k / 2) * layer.width + 2 * col + k % 2;
                su += u[i];
                sv += v[i];
                sa += a[i];
            }
            const std::size_t j = static_cast<std::size_t>(row) * cw + col;
            layer.cb[j] = toByte(su / 4);
            layer.cr[j] = toByte(sv / 4);
            layer.chromaInverseAlpha[j] = toByte(255 - sa / 4);
        }
    return layer;
}

void blend(
    const YuvLayer& layer, std::uint8_t* const planes[3], const int linesizes[3], int frameWidth, int frameHeight)
{
    const int columnStart = std::max(0, -layer.left);
    const int columnEnd = std::min(layer.width, frameWidth - layer.left);
    const int rowEnd = std::min(layer.height, frameHeight - layer.top);
    for (int row = std::max(0, -layer.top); row < rowEnd; ++row) {
        const int first = std::max(layer.rowFirst[row], columnStart);
        const int last = std::min(layer.rowLast[row], columnEnd);
        std::uint8_t* out = planes[0] + static_cast<std::ptrdiff_t>(layer.top + row) * linesizes[0] + layer.left;
        const std::size_t base = static_cast<std::size_t>(row) * layer.width;
        for (int col = first; col < last; ++col)
            out[col] = static_cast<std::uint8_t>(
                std::min(255u, layer.luma[base + col] + divide255(out[col] * layer.lumaInverseAlpha[base + col])));
    }

    // A chroma sample covers two luma rows and two columns; the layer starts on even coordinates.
    const int cw = layer.width / 2;
    const int chromaRowEnd = std::min(layer.height / 2, (frameHeight + 1) / 2 - layer.top / 2);
    const int chromaColumnStart = columnStart / 2;
    const int chromaColumnEnd = std::min(cw, (frameWidth + 1) / 2 - layer.left / 2);
    for (int crow = std::max(0, -layer.top / 2); crow < chromaRowEnd; ++crow) {
        const int a = 2 * crow, b = 2 * crow + 1;
        int first = std::min(layer.rowFirst[a], layer.rowFirst[b]);
        int last = std::max(layer.rowLast[a], layer.rowLast[b]);
        if (layer.rowFirst[a] == layer.rowLast[a])
            first = layer.rowFirst[b], last = layer.rowLast[b];
        else if (layer.rowFirst[b] == layer.rowLast[b])
            first = layer.rowFirst[a], last = layer.rowLast[a];
        first = std::max(first / 2, chromaColumnStart);
        last = std::min(last / 2, chromaColumnEnd);
        const std::ptrdiff_t chromaRow = layer.top / 2 + crow;
        std::uint8_t* outU = planes[1] + chromaRow * linesizes[1] + layer.left / 2;
        std::uint8_t* outV = planes[2] + chromaRow * linesizes[2] + layer.left / 2;
        const std::size_t base = static_cast<std::size_t>(crow) * cw;
        for (int col = first; col < last; ++col) {
            const unsigned inverse = layer.chromaInverseAlpha[base + col];
            outU[col]
                = static_cast<std::uint8_t>(std::min(255u, layer.cb[base + col] + divide255(outU[col] * inverse)));
            outV[col]
                = static_cast<std::uint8_t>(std::min(255u, layer.cr[base + col] + divide255(outV[col] * inverse)));
        }
    }
}

} // namespace cuewright::CaptionOverlay
