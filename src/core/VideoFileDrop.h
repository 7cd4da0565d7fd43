#pragma once

#include "core/ContentTypeLookup.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

// Which dropped or opened locations are videos (locations as in CaptionProjectFile.h).
namespace cuewright::VideoFileDrop {

// A local file whose content type is a movie, or whose extension's type is; a name that does
// not exist can pass by its extension alone.
bool accepts(std::string_view location, const ContentTypeLookup& types);

// The first accepted location in list order; later ones are not asked.
std::optional<std::string> firstAccepted(const std::vector<std::string>& locations, const ContentTypeLookup& types);

} // namespace cuewright::VideoFileDrop
