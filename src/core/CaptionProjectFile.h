#pragma once

// Naming of project files, and the reading of the locations the open paths hand over.
//
// A location is a std::string: either a file-system path ("/home/a/talk.mov", or relative) or a
// URL text with a scheme ("https://example.com/talk.mov", "file:///home/a/talk.mov"). A "file:"
// URL names the local file at its percent-decoded path; any other scheme is not a local file.
// A relative path with a colon before its first slash must be written "./name" to stay a path.

#include <optional>
#include <string>
#include <string_view>

namespace cuewright::CaptionProjectFile {

inline constexpr std::string_view fileExtension = "vantrelcaption";

// True for a local file whose extension is fileExtension in any case; the file is not looked at.
bool isProject(std::string_view location);

// The name to save under: any number of project extensions dropped, "Captions" for an empty
// rest, then one ".vantrelcaption" added.
std::string normalizedFilename(std::string_view name);

// The local path a location names, or nothing for a URL of another scheme.
std::optional<std::string> localPath(std::string_view location);

// The text after the last point of the last path component; empty when it has none.
std::string_view pathExtension(std::string_view path);

// The last path component, trailing slashes ignored.
std::string_view lastPathComponent(std::string_view path);

} // namespace cuewright::CaptionProjectFile
