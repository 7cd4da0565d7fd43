// Fuzz entry point for the update manifest reader; build and run as told in README.md.
// Its saved inputs under corpus/manifest replay in the update tests.
#include "core/CaptionJsonReader.h"
#include "update/Updater.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

namespace {

// Takes every event, so that only the syntax decides.
struct AnyJson {
    bool null() { return true; }
    bool boolean(bool) { return true; }
    bool number(double) { return true; }
    bool string(std::string&) { return true; }
    bool key(std::string_view) { return true; }
    bool start_object() { return true; }
    bool end_object() { return true; }
    bool start_array() { return true; }
    bool end_array() { return true; }
    void syntaxError(std::size_t, cuewright::CaptionJsonReader::JsonSyntax) { }
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    using namespace cuewright;
    const std::string_view body(reinterpret_cast<const char*>(data), size);
    // Both an old and a current-looking version, so that offers get past the version rule.
    for (const std::string_view current : { "0", "1.0.0" }) {
        const auto info = Updater::updateInfo(body, current);
        if (!info)
            continue;
        // Only strict JSON makes an offer; the project reader serves as the strict referee.
        AnyJson events;
        if (!CaptionJsonReader::read(body, events))
            std::abort();
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
