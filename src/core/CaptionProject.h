#pragma once

#include "core/CaptionDocument.h"
#include "core/CaptionStyle.h"

#include <string>

namespace cuewright {

// The work kept in a project file: the video's path, the captions and their style.
struct CaptionProject {
    std::string videoPath;
    CaptionDocument document;
    CaptionStyle style;

    friend bool operator==(const CaptionProject&, const CaptionProject&) = default;
};

} // namespace cuewright
