// Transcribes one video and prints its words, one a line: start, duration, text.
// Usage: transcribe_rtf_helper VIDEO [THREADS]   (THREADS 0 or absent: one per processor)
#include "speech/LocalTranscriber.h"
#include "speech/PocketSphinxEngine.h"

#include <cstdio>
#include <exception>
#include <string>

int main(int argc, char** argv)
{
    using namespace cuewright;
    if (argc < 2) {
        std::fprintf(stderr, "usage: %s VIDEO [THREADS]\n", argv[0]);
        return 2;
    }
    const unsigned threads = argc > 2 ? static_cast<unsigned>(std::stoul(argv[2])) : 0;
    try {
        const RecognitionEngineFamilies engines { std::make_shared<PocketSphinxEngineFamily>(threads) };
        for (const auto& word : LocalTranscriber::transcribe(argv[1], "en-US", engines))
            std::printf("%.2f %.2f %s\n", word.start, word.duration, word.text.c_str());
    } catch (const std::exception& error) {
        std::fprintf(stderr, "%s\n", error.what());
        return 1;
    }
    return 0;
}
