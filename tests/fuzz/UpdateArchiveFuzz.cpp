// Fuzz entry point for unpacking a downloaded update; build and run as told in README.md.
// Its saved inputs under corpus/archive replay in the update tests.
#include "update/UpdateArchive.h"

#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    namespace fs = std::filesystem;
    // The destination sits two levels down a private scratch folder, so that an entry climbing out of
    // it still lands somewhere this run can see.
    static const fs::path scratch = fs::temp_directory_path() / ("cuewright-archive-fuzz-" + std::to_string(getpid()));
    static const fs::path destination = scratch / "a" / "b" / "destination";
    static const fs::path input = scratch / "update.zip";
    fs::remove_all(scratch);
    fs::create_directories(destination);
    {
        std::ofstream out(input, std::ios::binary);
        out.write(reinterpret_cast<const char*>(data), static_cast<std::streamsize>(size));
    }

    cuewright::UpdateArchive::unpack(input, destination);

    // Whatever the verdict, nothing may have been written beside the destination.
    for (auto it = fs::recursive_directory_iterator(scratch); it != fs::recursive_directory_iterator(); ++it) {
        const fs::path& path = it->path();
        if (path == input || path == scratch / "a" || path == scratch / "a" / "b" || path == destination)
            continue;
        if (path.lexically_relative(destination).begin()->string() == "..")
            std::abort();
    }
    fs::remove_all(scratch);
    return 0;
}
