#pragma once

#include <optional>
#include <string>

namespace cuewright {

// What a manifest offers: a newer version, where its archive lies, and what to tell the user.
struct UpdateInfo {
    std::string version;
    std::string downloadURL;
    std::string notes;
    std::optional<std::string> sha256;

    bool operator==(const UpdateInfo&) const = default;
};

} // namespace cuewright
