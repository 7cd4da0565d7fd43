#pragma once

#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <string_view>

// Reads the string entries of an XML property list's top-level dictionary, which is all the updater
// needs of a bundle's Info.plist.
namespace cuewright::PropertyList {

// Keys of the top-level <dict> whose value is a <string>; values of other types are left out.
// Nothing when the text isn't a well-formed XML property list with a dictionary at its root, or a key
// appears twice.
std::optional<std::map<std::string, std::string>> parseStrings(std::string_view xml);

// The same for a file; nothing when it can't be read.
std::optional<std::map<std::string, std::string>> readStrings(const std::filesystem::path& file);

} // namespace cuewright::PropertyList
