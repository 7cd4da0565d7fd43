#pragma once

#include "core/Uuid.h"

#include <cstddef>
#include <optional>
#include <string>

namespace cuewright {

// One caption: a time range in seconds, UTF-8 text (line breaks are U+000A) and an
// optional place of its centre as fractions of the picture. The fields are plain
// stores; only the clamping constructor keeps them in range.
struct CaptionCue {
    Uuid id;
    double start = 0;
    double end = 0;
    std::string text;
    std::optional<double> positionX;
    std::optional<double> positionY;

    CaptionCue() = default;
    // Clamps: start to >= 0 (NaN gives 0), end to >= start + minimum duration,
    // positions to 0...1.
    CaptionCue(Uuid id, double start, double end, std::string text,
               std::optional<double> positionX = std::nullopt,
               std::optional<double> positionY = std::nullopt);

    // end - start, never negative.
    double duration() const;

    // All six fields; NaN equals nothing.
    friend bool operator==(const CaptionCue&, const CaptionCue&) = default;
};

// Clamps a fraction to 0...1; NaN gives 0.
double clampedUnit(double value);

} // namespace cuewright

template <>
struct std::hash<cuewright::CaptionCue> {
    std::size_t operator()(const cuewright::CaptionCue& cue) const noexcept;
};
