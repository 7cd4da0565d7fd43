#pragma once

#include <string>

namespace cuewright {

// One word from speech recognition: its text as recognised (punctuation attached) and
// its time in seconds from the beginning of the video.
struct RecognizedWord {
    std::string text;
    double start = 0;
    double duration = 0;

    friend bool operator==(const RecognizedWord&, const RecognizedWord&) = default;
};

} // namespace cuewright
