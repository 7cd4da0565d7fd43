#include "core/CaptionOpenItem.h"

#include "core/CaptionProjectFile.h"
#include "core/VideoFileDrop.h"

namespace cuewright {

CaptionOpenItem CaptionOpenItem::classify(std::string_view location, const ContentTypeLookup& types)
{
    if (CaptionProjectFile::isProject(location))
        return project;
    if (VideoFileDrop::accepts(location, types))
        return video;
    return unsupported;
}

} // namespace cuewright
