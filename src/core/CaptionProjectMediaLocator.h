#pragma once

#include "core/CaptionProject.h"

#include <optional>
#include <string>
#include <string_view>

namespace cuewright::CaptionProjectMediaLocator {

// Where the project's video is now: its saved path if something exists there (made absolute
// against the working directory), else a file of the same name beside the project file, else
// nothing. A folder counts as existing; no other place is searched and the project is unchanged.
std::optional<std::string> existingMediaURL(const CaptionProject& project, std::string_view projectLocation);

} // namespace cuewright::CaptionProjectMediaLocator
