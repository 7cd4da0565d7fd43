// Fuzz entry point for the project file reader; build and run as told in README.md.
// Its saved inputs under corpus/project replay in the core tests.
#include "core/CaptionJson.h"
#include "core/CaptionProjectStore.h"

#include <nlohmann/json.hpp>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    using namespace cuewright;
    const std::string_view bytes(reinterpret_cast<const char*>(data), size);
    // A second, independent JSON reader referees the syntax: the project reader must refuse exactly
    // what it refuses, or it would open files other tools call broken, or call good files broken.
    // The referee takes a NUL byte for the end of the text; JSON has no place for one at all.
    const bool hasNul = bytes.find('\0') != std::string_view::npos;
    const bool wellFormed = !hasNul && nlohmann::json::accept(bytes);
    CaptionProject project;
    try {
        project = CaptionProjectStore::decode(bytes);
    } catch (const CaptionJsonError& error) {
        if (error.kind == CaptionJsonError::Kind::invalidJSON && wellFormed)
            std::abort();
        return 0;
    }
    if (!wellFormed)
        std::abort();

    // Whatever was accepted must save, and the saved text must read back as the same project;
    // a throw out of encode or the second decode ends the run as a crash.
    const std::string saved = CaptionProjectStore::encode(project);
    if (CaptionProjectStore::decode(saved) != project)
        std::abort();
    // The writer's output is its own fixed point.
    if (CaptionProjectStore::encode(CaptionProjectStore::decode(saved)) != saved)
        std::abort();
    return 0;
}
