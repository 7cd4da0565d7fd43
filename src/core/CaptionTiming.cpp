#include "core/CaptionTiming.h"

#include <algorithm>

namespace cuewright::CaptionTiming {

namespace {
    // Written so that NaN clamps to the bound.
    double clampedBelowToZero(double x)
    {
        return x >= 0 ? x : 0.0;
    }
} // namespace

CaptionTimeRange move(double start, double end, double delta, double duration)
{
    double length = end - start;
    if (!(length >= minimumDuration))
        length = minimumDuration;
    const double latestStart = clampedBelowToZero(duration - length);
    const double wantedStart = clampedBelowToZero(start + delta);
    const double newStart = std::min(latestStart, wantedStart);
    return { newStart, std::min(newStart + length, duration) };
}

double trimStart(double proposedStart, double end)
{
    return std::min(clampedBelowToZero(end - minimumDuration), clampedBelowToZero(proposedStart));
}

double trimEnd(double proposedEnd, double start, double duration)
{
    const double shortest = start + minimumDuration;
    const double wanted = proposedEnd <= shortest ? shortest : proposedEnd;
    const double limit = duration < shortest ? shortest : duration;
    return std::min(wanted, limit);
}

} // namespace cuewright::CaptionTiming
