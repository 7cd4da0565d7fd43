// Fuzz entry point for the update manifest reader; build and run as told in README.md.
// Its saved inputs under corpus/manifest replay in the update tests.
#include "update/Updater.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    using namespace cuewright;
    const std::string_view body(reinterpret_cast<const char*>(data), size);
    // Both an old and a current-looking version, so that offers get past the version rule.
    for (const std::string_view current : { "0", "1.0.0" }) {
        const auto info = Updater::updateInfo(body, current);
        if (!info)
            continue;
        // An offer is only ever made for a strictly newer version and a secure URL.
        if (!Updater::isNewer(info->version, current) || Updater::isNewer(current, info->version))
            std::abort();
        if (!info->downloadURL.starts_with("https://") || info->downloadURL.size() <= 8)
            std::abort();
        if (Updater::isNewer(info->version, info->version))
            std::abort();
    }
    return 0;
}
