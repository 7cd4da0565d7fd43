#pragma once

#include "core/ContentTypeLookup.h"

#include <QMimeDatabase>

namespace cuewright {

// The file types of the freedesktop shared-mime-info database; a movie is any video/* type or a
// type derived from one. Cheap to construct; usable from any thread.
class MimeContentTypes final : public ContentTypeLookup {
public:
    // The type by name and, where the name is not enough, by content; nothing for a missing file.
    std::optional<std::string> contentTypeOfFile(const std::string& path) const override;
    std::optional<std::string> typeForFilenameExtension(const std::string& extension) const override;
    bool conformsToMovie(const std::string& type) const override;

private:
    QMimeDatabase m_database;
};

} // namespace cuewright
