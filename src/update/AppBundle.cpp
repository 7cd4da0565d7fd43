#include "update/AppBundle.h"

#include "update/PropertyList.h"

#include <system_error>

namespace cuewright::AppBundle {

namespace fs = std::filesystem;

namespace {

    std::optional<std::string> infoString(const fs::path& bundle, const std::string& key)
    {
        const auto strings = PropertyList::readStrings(bundle / "Contents" / "Info.plist");
        if (!strings)
            return std::nullopt;
        const auto found = strings->find(key);
        if (found == strings->end())
            return std::nullopt;
        return found->second;
    }

} // namespace

std::optional<fs::path> containing(const fs::path& file)
{
    std::error_code error;
    for (fs::path folder = file.parent_path(); !folder.empty(); folder = folder.parent_path()) {
        if (fs::is_regular_file(folder / "Contents" / "Info.plist", error))
            return folder;
        if (folder == folder.root_path())
            break;
    }
    return std::nullopt;
}

std::optional<fs::path> running()
{
    std::error_code error;
    const fs::path executable = fs::read_symlink("/proc/self/exe", error);
    if (error)
        return std::nullopt;
    return containing(executable);
}

std::optional<std::string> identifier(const fs::path& bundle)
{
    return infoString(bundle, "CFBundleIdentifier");
}

std::string version()
{
    if (const auto bundle = running()) {
        if (auto value = infoString(*bundle, "CFBundleShortVersionString"))
            return *value;
    }
    return "1.0.0";
}

} // namespace cuewright::AppBundle
