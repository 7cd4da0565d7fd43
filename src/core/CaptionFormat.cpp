#include "core/CaptionFormat.h"

namespace cuewright {

std::string_view rawValue(CaptionFormat format)
{
    return format == CaptionFormat::srt ? "SRT" : "WebVTT";
}

std::string_view fileExtension(CaptionFormat format)
{
    return format == CaptionFormat::srt ? "srt" : "vtt";
}

std::optional<CaptionFormat> captionFormatFromRawValue(std::string_view raw)
{
    for (auto format : allCaptionFormats)
        if (rawValue(format) == raw)
            return format;
    return std::nullopt;
}

} // namespace cuewright
