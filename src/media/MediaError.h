#pragma once

#include <stdexcept>
#include <string>

namespace cuewright {

// An error of the media libraries, passed on as they raise it: what() names the step and
// carries the library's own description; code is its error number.
class MediaError : public std::runtime_error {
public:
    MediaError(const std::string& step, int code);
    int code;
};

} // namespace cuewright
