#include "media/CaptionLayerRenderer.h"

#include <cairo.h>
#include <pango/pangocairo.h>

#include <algorithm>
#include <cmath>
#include <cstring>

namespace cuewright {

namespace {

    template <typename T, void (*Free)(T*)> struct Deleter {
        void operator()(T* p) const { Free(p); }
    };
    void unrefObject(void* p)
    {
        g_object_unref(p);
    }
    using SurfacePtr = std::unique_ptr<cairo_surface_t, Deleter<cairo_surface_t, cairo_surface_destroy>>;
    using CairoPtr = std::unique_ptr<cairo_t, Deleter<cairo_t, cairo_destroy>>;
    using FontDescriptionPtr
        = std::unique_ptr<PangoFontDescription, Deleter<PangoFontDescription, pango_font_description_free>>;
    struct GObjectDeleter {
        void operator()(void* p) const { unrefObject(p); }
    };
    using ContextPtr = std::unique_ptr<PangoContext, GObjectDeleter>;
    using LayoutPtr = std::unique_ptr<PangoLayout, GObjectDeleter>;
    using FontMapPtr = std::unique_ptr<PangoFontMap, GObjectDeleter>;

    constexpr double pangoUnits = PANGO_SCALE;

    FontDescriptionPtr fontDescription(const CaptionStyle& style)
    {
        FontDescriptionPtr description;
        if (style.fontName.empty() || style.fontName.front() == '.') {
            description.reset(pango_font_description_new());
            pango_font_description_set_family(description.get(), "Sans");
            pango_font_description_set_weight(description.get(), PANGO_WEIGHT_BOLD);
        } else {
            description.reset(pango_font_description_from_string(style.fontName.c_str()));
            if (!pango_font_description_get_family(description.get()))
                pango_font_description_set_family(description.get(), "Sans");
        }
        // Absolute size: one point of the style is one pixel of the picture.
        const double size = std::clamp(style.fontSize, 0.0, 4096.0);
        pango_font_description_set_absolute_size(description.get(), std::max(1.0, std::round(size * pangoUnits)));
        return description;
    }

    // The lines that fit whole into maxHeight, and the height they take; lower lines are dropped.
    struct FittingLines {
        int count = 0;
        double height = 0;
        double width = 0;
    };

    FittingLines fittingLines(PangoLayout* layout, double maxHeight)
    {
        FittingLines result;
        PangoLayoutIter* iter = pango_layout_get_iter(layout);
        do {
            PangoRectangle logical;
            pango_layout_iter_get_line_extents(iter, nullptr, &logical);
            const double bottom = (logical.y + logical.height) / pangoUnits;
            if (bottom > maxHeight + 1e-6)
                break;
            ++result.count;
            result.height = bottom;
            result.width = std::max(result.width, logical.width / pangoUnits);
        } while (pango_layout_iter_next_line(iter));
        pango_layout_iter_free(iter);
        return result;
    }

    // Gaussian blur of an alpha plane, separable; sigma in pixels.
    std::vector<float> blurred(const std::vector<float>& alpha, int width, int height, double sigma)
    {
        const int radius = static_cast<int>(std::ceil(3 * sigma));
        std::vector<float> kernel(2 * radius + 1);
        float sum = 0;
        for (int i = -radius; i <= radius; ++i)
            sum += kernel[i + radius] = static_cast<float>(std::exp(-(i * i) / (2 * sigma * sigma)));
        for (float& k : kernel)
            k /= sum;
        std::vector<float> horizontal(alpha.size(), 0.0f), result(alpha.size(), 0.0f);
        for (int y = 0; y < height; ++y)
            for (int x = 0; x < width; ++x) {
                float acc = 0;
                for (int i = std::max(-radius, -x); i <= std::min(radius, width - 1 - x); ++i)
                    acc += kernel[i + radius] * alpha[y * width + x + i];
                horizontal[y * width + x] = acc;
            }
        for (int y = 0; y < height; ++y)
            for (int x = 0; x < width; ++x) {
                float acc = 0;
                for (int i = std::max(-radius, -y); i <= std::min(radius, height - 1 - y); ++i)
                    acc += kernel[i + radius] * horizontal[(y + i) * width + x];
                result[y * width + x] = acc;
            }
        return result;
    }

    void setSource(cairo_t* cr, const RGBAColor& color)
    {
        cairo_set_source_rgba(cr, color.red, color.green, color.blue, color.alpha);
    }

    void roundedRectangle(cairo_t* cr, double x, double y, double width, double height, double radius)
    {
        radius = std::clamp(radius, 0.0, std::min(width, height) / 2);
        if (radius <= 0) {
            cairo_rectangle(cr, x, y, width, height);
            return;
        }
        cairo_new_sub_path(cr);
        cairo_arc(cr, x + width - radius, y + radius, radius, -M_PI / 2, 0);
        cairo_arc(cr, x + width - radius, y + height - radius, radius, 0, M_PI / 2);
        cairo_arc(cr, x + radius, y + height - radius, radius, M_PI / 2, M_PI);
        cairo_arc(cr, x + radius, y + radius, radius, M_PI, 3 * M_PI / 2);
        cairo_close_path(cr);
    }

} // namespace

struct CaptionLayerRenderer::Fonts {
    FontMapPtr fontMap;
    ContextPtr context;

    Fonts()
        : fontMap(pango_cairo_font_map_new())
        , context(pango_font_map_create_context(fontMap.get()))
    {
        // Unhinted metrics, so that text wraps alike at the raster scale and when measured.
        cairo_font_options_t* options = cairo_font_options_create();
        cairo_font_options_set_hint_metrics(options, CAIRO_HINT_METRICS_OFF);
        cairo_font_options_set_hint_style(options, CAIRO_HINT_STYLE_NONE);
        cairo_font_options_set_antialias(options, CAIRO_ANTIALIAS_GRAY);
        pango_cairo_context_set_font_options(context.get(), options);
        cairo_font_options_destroy(options);
        pango_cairo_context_set_resolution(context.get(), 72);
    }

    LayoutPtr layout(const std::string& text, const CaptionStyle& style, double width)
    {
        LayoutPtr layout(pango_layout_new(context.get()));
        FontDescriptionPtr description = fontDescription(style);
        pango_layout_set_font_description(layout.get(), description.get());
        pango_layout_set_wrap(layout.get(), PANGO_WRAP_WORD_CHAR);
        pango_layout_set_width(layout.get(), static_cast<int>(std::clamp(width * pangoUnits, 1.0, 1e9)));
        pango_layout_set_text(layout.get(), text.data(), static_cast<int>(text.size()));
        return layout;
    }
};

CaptionLayerRenderer::CaptionLayerRenderer()
    : m_fonts(std::make_unique<Fonts>())
{
}

CaptionLayerRenderer::~CaptionLayerRenderer() = default;

RenderSize CaptionLayerRenderer::positionedCueSize(
    const std::string& text, const CaptionStyle& style, RenderSize renderSize)
{
    const RenderSize constraint = CaptionLayerLayout::measureConstraint(style, renderSize);
    LayoutPtr layout = m_fonts->layout(text, style, constraint.width);
    const FittingLines lines = fittingLines(layout.get(), constraint.height);
    return CaptionLayerLayout::positionedBoxSize({ lines.width, lines.height }, style, renderSize);
}

CaptionLayerGeometry CaptionLayerRenderer::layerGeometry(
    const CaptionCue& cue, const CaptionStyle& style, RenderSize renderSize)
{
    RenderSize measured;
    if (CaptionLayerLayout::isPlaced(cue)) {
        const RenderSize constraint = CaptionLayerLayout::measureConstraint(style, renderSize);
        LayoutPtr layout = m_fonts->layout(cue.text, style, constraint.width);
        const FittingLines lines = fittingLines(layout.get(), constraint.height);
        measured = { lines.width, lines.height };
    }
    return CaptionLayerLayout::geometry(cue, style, renderSize, measured);
}

CaptionLayerBitmap CaptionLayerRenderer::makeCueLayer(
    const CaptionCue& cue, const CaptionStyle& style, RenderSize renderSize)
{
    namespace L = CaptionLayerLayout;
    const CaptionLayerGeometry g = layerGeometry(cue, style, renderSize);
    const double pictureHeight = renderSize.height;
    const int pictureWidthPx = static_cast<int>(std::ceil(renderSize.width));
    const int pictureHeightPx = static_cast<int>(std::ceil(renderSize.height));

    // The glyphs' shadow may spill a few pixels past the box.
    const double margin = style.shadowEnabled ? std::ceil(3 * L::shadowRadius / 2) + L::shadowOffsetDown + 1 : 1;
    const double boxTop = pictureHeight - (g.box.y + g.box.height);
    CaptionLayerBitmap bitmap;
    bitmap.left = std::max(0, static_cast<int>(std::floor(g.box.x - margin)));
    bitmap.top = std::max(0, static_cast<int>(std::floor(boxTop - margin)));
    const int right = std::min(pictureWidthPx, static_cast<int>(std::ceil(g.box.x + g.box.width + margin)));
    const int bottom = std::min(pictureHeightPx, static_cast<int>(std::ceil(boxTop + g.box.height + margin)));
    bitmap.width = std::max(0, right - bitmap.left);
    bitmap.height = std::max(0, bottom - bitmap.top);
    if (bitmap.empty())
        return bitmap;

    SurfacePtr layer(cairo_image_surface_create(CAIRO_FORMAT_ARGB32, bitmap.width, bitmap.height));
    if (cairo_surface_status(layer.get()) != CAIRO_STATUS_SUCCESS)
        return {};
    CairoPtr cr(cairo_create(layer.get()));
    cairo_translate(cr.get(), -bitmap.left, -bitmap.top);
    if (style.backgroundEnabled) {
        roundedRectangle(cr.get(), g.box.x, boxTop, g.box.width, g.box.height, g.cornerRadius);
        setSource(cr.get(), style.backgroundColor);
        cairo_fill(cr.get());
    }

    // The text at the raster scale, set from the top of its frame, centred on each line.
    const double textWidth = g.textFrame.width;
    const double textHeight = g.textFrame.height;
    SurfacePtr text(cairo_image_surface_create(CAIRO_FORMAT_ARGB32, g.textPixelWidth, g.textPixelHeight));
    if (textWidth > 0 && textHeight > 0 && cairo_surface_status(text.get()) == CAIRO_STATUS_SUCCESS) {
        CairoPtr tcr(cairo_create(text.get()));
        cairo_scale(tcr.get(), L::rasterScale, L::rasterScale);
        LayoutPtr layout = m_fonts->layout(cue.text, style, textWidth);
        pango_layout_set_alignment(layout.get(), PANGO_ALIGN_CENTER);
        pango_cairo_update_layout(tcr.get(), layout.get());
        const FittingLines lines = fittingLines(layout.get(), textHeight);
        setSource(tcr.get(), style.textColor);
        PangoLayoutIter* iter = pango_layout_get_iter(layout.get());
        for (int i = 0; i < lines.count; ++i) {
            PangoRectangle logical;
            pango_layout_iter_get_line_extents(iter, nullptr, &logical);
            cairo_move_to(tcr.get(), logical.x / pangoUnits, pango_layout_iter_get_baseline(iter) / pangoUnits);
            pango_cairo_show_layout_line(tcr.get(), pango_layout_iter_get_line_readonly(iter));
            if (!pango_layout_iter_next_line(iter))
                break;
        }
        pango_layout_iter_free(iter);
        cairo_surface_flush(text.get());

        // Bring the bitmap onto the picture grid, fitted to the text frame with its aspect kept.
        SurfacePtr glyphs(cairo_image_surface_create(CAIRO_FORMAT_ARGB32, bitmap.width, bitmap.height));
        CairoPtr gcr(cairo_create(glyphs.get()));
        const double scale = std::min(textWidth / g.textPixelWidth, textHeight / g.textPixelHeight);
        const double frameTop = pictureHeight - (g.textFrame.y + textHeight);
        cairo_translate(gcr.get(), g.textFrame.x - bitmap.left + (textWidth - g.textPixelWidth * scale) / 2,
            frameTop - bitmap.top + (textHeight - g.textPixelHeight * scale) / 2);
        cairo_scale(gcr.get(), scale, scale);
        cairo_set_source_surface(gcr.get(), text.get(), 0, 0);
        cairo_pattern_set_filter(cairo_get_source(gcr.get()), CAIRO_FILTER_GOOD);
        cairo_paint(gcr.get());
        cairo_surface_flush(glyphs.get());

        if (style.shadowEnabled) {
            const int stride = cairo_image_surface_get_stride(glyphs.get());
            const unsigned char* data = cairo_image_surface_get_data(glyphs.get());
            std::vector<float> alpha(static_cast<std::size_t>(bitmap.width) * bitmap.height);
            for (int y = 0; y < bitmap.height; ++y)
                for (int x = 0; x < bitmap.width; ++x) {
                    std::uint32_t pixel;
                    std::memcpy(&pixel, data + y * stride + 4 * x, 4);
                    alpha[y * bitmap.width + x] = static_cast<float>(pixel >> 24) / 255.0f;
                }
            const std::vector<float> shadow = blurred(alpha, bitmap.width, bitmap.height, L::shadowRadius / 2);
            SurfacePtr mask(cairo_image_surface_create(CAIRO_FORMAT_A8, bitmap.width, bitmap.height));
            const int maskStride = cairo_image_surface_get_stride(mask.get());
            unsigned char* maskData = cairo_image_surface_get_data(mask.get());
            for (int y = 0; y < bitmap.height; ++y)
                for (int x = 0; x < bitmap.width; ++x)
                    maskData[y * maskStride + x] = static_cast<unsigned char>(
                        std::lround(std::clamp(shadow[y * bitmap.width + x], 0.0f, 1.0f) * 255));
            cairo_surface_mark_dirty(mask.get());
            cairo_identity_matrix(cr.get());
            cairo_set_source_rgba(cr.get(), 0, 0, 0, L::shadowOpacity);
            cairo_mask_surface(cr.get(), mask.get(), 0, L::shadowOffsetDown);
        }
        cairo_identity_matrix(cr.get());
        cairo_set_source_surface(cr.get(), glyphs.get(), 0, 0);
        cairo_paint(cr.get());
    }
    cairo_surface_flush(layer.get());

    // Cairo keeps premultiplied ARGB in native words; hand it out as bytes R, G, B, A.
    bitmap.rgba.resize(static_cast<std::size_t>(bitmap.width) * bitmap.height * 4);
    const int stride = cairo_image_surface_get_stride(layer.get());
    const unsigned char* data = cairo_image_surface_get_data(layer.get());
    for (int y = 0; y < bitmap.height; ++y)
        for (int x = 0; x < bitmap.width; ++x) {
            std::uint32_t pixel;
            std::memcpy(&pixel, data + y * stride + 4 * x, 4);
            std::uint8_t* out = &bitmap.rgba[(static_cast<std::size_t>(y) * bitmap.width + x) * 4];
            out[0] = static_cast<std::uint8_t>(pixel >> 16);
            out[1] = static_cast<std::uint8_t>(pixel >> 8);
            out[2] = static_cast<std::uint8_t>(pixel);
            out[3] = static_cast<std::uint8_t>(pixel >> 24);
        }
    return bitmap;
}

} // namespace cuewright
