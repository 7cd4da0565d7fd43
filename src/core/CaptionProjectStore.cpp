#include "core/CaptionProjectStore.h"

#include "core/AtomicFile.h"
#include "core/CaptionJson.h"

namespace cuewright::CaptionProjectStore {

std::string encode(const CaptionProject& project)
{
    return CaptionJson::encode(project);
}

CaptionProject decode(std::string_view bytes)
{
    return CaptionJson::decodeProject(bytes);
}

CaptionProject read(const std::filesystem::path& path)
{
    return decode(readWholeFile(path));
}

void write(const CaptionProject& project, const std::filesystem::path& path)
{
    writeFileAtomically(path, encode(project));
}

} // namespace cuewright::CaptionProjectStore
