#pragma once

#include <array>
#include <optional>
#include <string_view>

namespace cuewright {

// The subtitle file formats the editor reads and writes.
enum class CaptionFormat { srt, vtt };

inline constexpr std::array<CaptionFormat, 2> allCaptionFormats { CaptionFormat::srt, CaptionFormat::vtt };

// The name shown to the user and stored in files: "SRT" or "WebVTT".
std::string_view rawValue(CaptionFormat format);
// Without the dot: "srt" or "vtt".
std::string_view fileExtension(CaptionFormat format);
// Only the exact raw values are known.
std::optional<CaptionFormat> captionFormatFromRawValue(std::string_view raw);

} // namespace cuewright
