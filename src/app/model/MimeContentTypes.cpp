#include "model/MimeContentTypes.h"

#include <QFileInfo>

namespace cuewright {

std::optional<std::string> MimeContentTypes::contentTypeOfFile(const std::string& path) const
{
    const QFileInfo info(QString::fromStdString(path));
    if (!info.exists())
        return std::nullopt;
    const QMimeType type = m_database.mimeTypeForFile(info, QMimeDatabase::MatchDefault);
    if (!type.isValid())
        return std::nullopt;
    return type.name().toStdString();
}

std::optional<std::string> MimeContentTypes::typeForFilenameExtension(const std::string& extension) const
{
    if (extension.empty())
        return std::nullopt;
    const QList<QMimeType> types
        = m_database.mimeTypesForFileName(QStringLiteral("file.") + QString::fromStdString(extension));
    if (types.isEmpty())
        return std::nullopt;
    return types.first().name().toStdString();
}

bool MimeContentTypes::conformsToMovie(const std::string& name) const
{
    const QMimeType type = m_database.mimeTypeForName(QString::fromStdString(name));
    if (!type.isValid())
        return false;
    auto isVideo = [](const QString& n) { return n.startsWith(QLatin1String("video/")); };
    if (isVideo(type.name()))
        return true;
    const QStringList ancestors = type.allAncestors();
    return std::any_of(ancestors.begin(), ancestors.end(), isVideo);
}

} // namespace cuewright
