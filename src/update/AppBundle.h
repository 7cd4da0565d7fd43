#pragma once

#include <filesystem>
#include <optional>
#include <string>

// The relocatable application bundle: <name>.app/Contents/{Info.plist, bin/cuewright, ...}.
namespace cuewright::AppBundle {

// The nearest folder above `file` that holds Contents/Info.plist.
std::optional<std::filesystem::path> containing(const std::filesystem::path& file);

// The bundle of the running program, found from /proc/self/exe.
std::optional<std::filesystem::path> running();

// CFBundleIdentifier of a bundle's Info.plist; nothing when it is missing, unreadable or not a string.
std::optional<std::string> identifier(const std::filesystem::path& bundle);

// CFBundleShortVersionString of the running bundle, else "1.0.0".
std::string version();

} // namespace cuewright::AppBundle
