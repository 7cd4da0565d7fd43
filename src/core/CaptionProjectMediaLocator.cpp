#include "core/CaptionProjectMediaLocator.h"

#include "core/CaptionProjectFile.h"

#include <filesystem>

namespace cuewright::CaptionProjectMediaLocator {

namespace {

    bool somethingExists(const std::filesystem::path& path)
    {
        std::error_code ec;
        return std::filesystem::exists(path, ec);
    }

} // namespace

std::optional<std::string> existingMediaURL(const CaptionProject& project, std::string_view projectLocation)
{
    // An empty path would name the working directory, which is never the video.
    if (project.videoPath.empty())
        return std::nullopt;

    std::error_code ec;
    std::filesystem::path saved = std::filesystem::absolute(project.videoPath, ec);
    if (ec)
        saved = project.videoPath;
    if (somethingExists(saved))
        return saved.string();

    const auto projectPath = CaptionProjectFile::localPath(projectLocation);
    const std::string_view name = CaptionProjectFile::lastPathComponent(project.videoPath);
    if (!projectPath || name.empty() || name == "/" || name == "." || name == "..")
        return std::nullopt;
    std::filesystem::path projectFile = std::filesystem::absolute(*projectPath, ec);
    if (ec)
        projectFile = *projectPath;
    const std::filesystem::path beside = projectFile.parent_path() / name;
    if (somethingExists(beside))
        return beside.string();
    return std::nullopt;
}

} // namespace cuewright::CaptionProjectMediaLocator
