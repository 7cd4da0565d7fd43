#include "core/CaptionCue.h"

#include "core/CaptionTiming.h"

#include <functional>

namespace cuewright {

double clampedUnit(double value)
{
    if (!(value >= 0))
        return 0.0;
    return value > 1.0 ? 1.0 : value;
}

CaptionCue::CaptionCue(Uuid id_, double start_, double end_, std::string text_,
                       std::optional<double> positionX_, std::optional<double> positionY_)
    : id(id_)
    , text(std::move(text_))
{
    start = start_ >= 0 ? start_ : 0.0;
    // Measured from the clamped start, so a negative argument still gives a valid cue.
    end = start + CaptionTiming::minimumDuration <= end_ ? end_ : start + CaptionTiming::minimumDuration;
    if (positionX_)
        positionX = clampedUnit(*positionX_);
    if (positionY_)
        positionY = clampedUnit(*positionY_);
}

double CaptionCue::duration() const
{
    const double d = end - start;
    return d > 0 ? d : 0.0;
}

} // namespace cuewright

namespace {

void combine(std::size_t& seed, std::size_t value)
{
    seed ^= value + 0x9E3779B97F4A7C15ull + (seed << 6) + (seed >> 2);
}

std::size_t hashDouble(double value)
{
    return std::hash<double>{}(value == 0 ? 0.0 : value); // 0 and -0 alike
}

void combineOptional(std::size_t& seed, const std::optional<double>& value)
{
    combine(seed, value ? 1 : 0);
    if (value)
        combine(seed, hashDouble(*value));
}

} // namespace

std::size_t std::hash<cuewright::CaptionCue>::operator()(const cuewright::CaptionCue& cue) const noexcept
{
    std::size_t seed = std::hash<cuewright::Uuid>{}(cue.id);
    combine(seed, hashDouble(cue.start));
    combine(seed, hashDouble(cue.end));
    combine(seed, std::hash<std::string>{}(cue.text));
    combineOptional(seed, cue.positionX);
    combineOptional(seed, cue.positionY);
    return seed;
}
