#pragma once

#include <QString>

#include <optional>

namespace cuewright {

// A short sample video with synthetic speech for trying the editor: made once with flite
// and the ffmpeg tool, then reused from `cacheDirectory`. Gives the file's path, or nothing
// with `error` set when the tools are missing or fail.
std::optional<QString> ensureDemoVideo(const QString& cacheDirectory, QString* error = nullptr);

} // namespace cuewright
