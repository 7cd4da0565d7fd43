#include "app/ui/TimeText.h"

#include <cmath>
#include <limits>

namespace cuewright {

QString clock(double seconds)
{
    const double floored = std::floor(seconds);
    // Out-of-range values would make the integer conversion undefined.
    long long total = 0;
    if (floored > 0)
        total = floored >= static_cast<double>(std::numeric_limits<long long>::max())
            ? std::numeric_limits<long long>::max()
            : static_cast<long long>(floored);
    return QString::asprintf("%lld:%02lld", total / 60, total % 60);
}

} // namespace cuewright
