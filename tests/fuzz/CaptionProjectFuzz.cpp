// Fuzz entry point for the project file reader; build and run as told in README.md.
// Its saved inputs under corpus/project replay in the core tests.
#include "core/CaptionJson.h"
#include "core/CaptionProjectStore.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    using namespace cuewright;
    CaptionProject project;
    try {
        project = CaptionProjectStore::decode(std::string_view(reinterpret_cast<const char*>(data), size));
    } catch (const CaptionJsonError&) {
        return 0;
    }

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
