#pragma once

// Whole-file reads and crash-safe replacement of files.
//
//     writeFileAtomically("/work/talk.vantrelcaption", bytes); // old file or whole new one
//
// The bytes go to a temporary file beside the target, which is flushed, fsync'ed and renamed over
// the target; the folder is synced after. On any failure the target keeps its old bytes and the
// temporary file is removed. A symbolic link as the target is followed, so the link survives.

#include <filesystem>
#include <stdexcept>
#include <string>
#include <string_view>
#include <system_error>

namespace cuewright {

class FileError : public std::runtime_error {
public:
    enum class Kind { readFailed, writeFailed };

    FileError(Kind kind, std::error_code code, const std::string& message)
        : std::runtime_error(message)
        , kind(kind)
        , code(code)
    {
    }

    Kind kind;
    std::error_code code; // the system's reason
};

// Throws FileError (writeFailed).
void writeFileAtomically(const std::filesystem::path& path, std::string_view bytes);

// The whole file. Throws FileError (readFailed).
std::string readWholeFile(const std::filesystem::path& path);

} // namespace cuewright
