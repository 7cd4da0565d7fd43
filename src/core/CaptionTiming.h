#pragma once

namespace cuewright::CaptionTiming {

// The shortest time a cue lasts, in seconds.
inline constexpr double minimumDuration = 0.05;

} // namespace cuewright::CaptionTiming
