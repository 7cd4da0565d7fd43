#pragma once

// Reading and writing project files: one compact JSON object with the keys videoPath, document
// and style (see CaptionJson.h for the coding).
//
// Errors pass through as thrown: CaptionJsonError for content that cannot be coded, FileError
// for a file that cannot be read or written. Their what() is the user-readable description.

#include "core/CaptionProject.h"

#include <filesystem>
#include <string>
#include <string_view>

namespace cuewright::CaptionProjectStore {

std::string encode(const CaptionProject& project);
CaptionProject decode(std::string_view bytes);

CaptionProject read(const std::filesystem::path& path);
// Atomic: the target holds either its old bytes or the whole new project, also when encoding
// fails. The extension is not checked (see CaptionProjectFile::normalizedFilename).
void write(const CaptionProject& project, const std::filesystem::path& path);

} // namespace cuewright::CaptionProjectStore
