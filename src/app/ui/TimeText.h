#pragma once

#include <QString>

namespace cuewright {

// The view layer's one time format: whole minutes and two-digit seconds ("62:05"), the
// floor of the value, never negative. Minutes are not padded and there is no hour field.
QString clock(double seconds);

} // namespace cuewright
