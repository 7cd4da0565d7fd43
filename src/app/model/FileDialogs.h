#pragma once

#include <QString>
#include <QUrl>

#include <optional>
#include <vector>

namespace cuewright {

// The kinds of files a dialog offers.
enum class FileType {
    plainText, // subtitle files
    movie, // any video
    mpeg4Movie, // .mp4
    quickTimeMovie, // .mov
    project, // .vantrelcaption
};

// Modal open and save panels. Each gives a local file URL, or nothing when cancelled.
// No title, prompt or starting folder: the platform's defaults stand.
class FileDialogs {
public:
    virtual ~FileDialogs() = default;
    // `proposedName` empty: no name is proposed.
    virtual std::optional<QUrl> openFile(const std::vector<FileType>& allowedTypes, const QString& proposedName) = 0;
    // The extension is shown and not forced: the user's name stands.
    virtual std::optional<QUrl> saveFile(const std::vector<FileType>& allowedTypes, const QString& proposedName) = 0;
};

// Cancels every dialog; the default until the user interface installs real ones.
class CancellingFileDialogs final : public FileDialogs {
public:
    std::optional<QUrl> openFile(const std::vector<FileType>&, const QString&) override { return std::nullopt; }
    std::optional<QUrl> saveFile(const std::vector<FileType>&, const QString&) override { return std::nullopt; }
};

} // namespace cuewright
