#include "core/VideoFileDrop.h"

#include "core/CaptionProjectFile.h"

namespace cuewright::VideoFileDrop {

bool accepts(std::string_view location, const ContentTypeLookup& types)
{
    const auto path = CaptionProjectFile::localPath(location);
    if (!path)
        return false;
    // A content type that says otherwise still lets the name decide.
    if (const auto type = types.contentTypeOfFile(*path); type && types.conformsToMovie(*type))
        return true;
    const std::string_view extension = CaptionProjectFile::pathExtension(*path);
    if (extension.empty())
        return false;
    const auto type = types.typeForFilenameExtension(std::string(extension));
    return type && types.conformsToMovie(*type);
}

std::optional<std::string> firstAccepted(const std::vector<std::string>& locations, const ContentTypeLookup& types)
{
    for (const auto& location : locations)
        if (accepts(location, types))
            return location;
    return std::nullopt;
}

} // namespace cuewright::VideoFileDrop
