#include "app/model/Clock.h"

#include <chrono>

namespace cuewright {

double SystemClock::now() const
{
    return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

} // namespace cuewright
