// Fuzz entry point for the subtitle reader. Built with clang from the sources, so that the
// reader itself is instrumented:
//   clang++ -std=c++20 -g -O1 -fsanitize=fuzzer,address,undefined -I src tests/fuzz/CaptionCodecFuzz.cpp
//       src/core/{CaptionCodec,CaptionCue,CaptionDocument,CueList,UnicodeText,Uuid}.cpp
//       $(pkg-config --libs icu-uc icu-i18n uuid) -o codec_fuzz
//   ./codec_fuzz tests/fuzz/corpus/codec
// Its saved inputs under corpus/codec replay in the core tests.
#include "core/CaptionCodec.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    using namespace cuewright;
    CaptionDocument document;
    try {
        document = CaptionCodec::decode(std::span<const std::uint8_t>(data, size));
    } catch (const CaptionCodecError&) {
        return 0;
    }
    if (document.cues.empty())
        std::abort();

    // What was read must read back the same: times round to milliseconds, texts stay.
    for (auto format : allCaptionFormats) {
        const auto again = CaptionCodec::decode(std::string_view(CaptionCodec::encode(document, format)));
        if (again.cues.size() != document.cues.size())
            std::abort();
        for (std::size_t i = 0; i < again.cues.size(); ++i)
            if (again.cues[i].text != document.cues[i].text)
                std::abort();
    }
    return 0;
}
