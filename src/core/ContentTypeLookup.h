#pragma once

#include <optional>
#include <string>

namespace cuewright {

// The platform's table of file types, as the open classification needs it. Types are named by
// identifiers of the implementation (MIME types on Linux). The core holds no list of its own.
class ContentTypeLookup {
public:
    virtual ~ContentTypeLookup() = default;

    // The type of an existing file; nothing when it is unknown or the file cannot be asked.
    virtual std::optional<std::string> contentTypeOfFile(const std::string& path) const = 0;
    // The type registered for a file name extension (without the point); nothing when none is.
    virtual std::optional<std::string> typeForFilenameExtension(const std::string& extension) const = 0;
    // Whether the type is a kind of movie.
    virtual bool conformsToMovie(const std::string& type) const = 0;
};

} // namespace cuewright
