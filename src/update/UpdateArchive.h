#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

// The downloaded archive's checks and unpacking; internal to the update layer.
namespace cuewright::UpdateArchive {

// Lower-case hexadecimal SHA-256 of a file's bytes, or of a text.
std::string sha256Hex(const std::filesystem::path& file);
std::string sha256HexOfText(std::string_view text);

// Unpacks a ZIP file into `destination`. Absolute names, `..` components, links, and symbolic links
// that lead out of `destination` are refused: nothing is written outside it. Returns false on any
// failure, leaving what was unpacked so far.
bool unpack(const std::filesystem::path& archive, const std::filesystem::path& destination);

// The first entry of `folder` in name order whose extension is exactly ".app".
std::optional<std::filesystem::path> firstApp(const std::filesystem::path& folder);

} // namespace cuewright::UpdateArchive
