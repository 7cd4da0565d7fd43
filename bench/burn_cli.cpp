// Burns captions from a tab-separated list into a video, for benchmarks and for looking at frames.
//
//   burn_cli SOURCE DESTINATION CUES.tsv [--no-background] [--no-shadow] [--font-size N] [--stats]
//
// Each line of CUES.tsv is: start<TAB>end<TAB>text[<TAB>positionX<TAB>positionY], with "\n" in the
// text standing for a line break.

#include "media/CaptionBurner.h"

extern "C" {
#include <libavutil/log.h>
}

#include <cstring>
#include <fstream>
#include <iostream>
#include <sstream>

using namespace cuewright;

namespace {

std::vector<std::string> split(const std::string& line, char separator)
{
    std::vector<std::string> fields;
    std::stringstream stream(line);
    std::string field;
    while (std::getline(stream, field, separator))
        fields.push_back(field);
    return fields;
}

std::string unescaped(const std::string& text)
{
    std::string result;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '\\' && i + 1 < text.size() && text[i + 1] == 'n') {
            result.push_back('\n');
            ++i;
        } else {
            result.push_back(text[i]);
        }
    }
    return result;
}

} // namespace

int main(int argc, char** argv)
{
    if (argc < 4) {
        std::cerr << "usage: burn_cli SOURCE DESTINATION CUES.tsv [--no-background] [--no-shadow] [--font-size N] "
                     "[--stats]\n";
        return 2;
    }
    av_log_set_level(AV_LOG_ERROR);
    CaptionStyle style = defaultCaptionStyle();
    bool stats = false;
    for (int i = 4; i < argc; ++i) {
        if (!std::strcmp(argv[i], "--no-background"))
            style.backgroundEnabled = false;
        else if (!std::strcmp(argv[i], "--no-shadow"))
            style.shadowEnabled = false;
        else if (!std::strcmp(argv[i], "--stats"))
            stats = true;
        else if (!std::strcmp(argv[i], "--font-size") && i + 1 < argc)
            style.fontSize = std::stod(argv[++i]);
    }
    std::ifstream file(argv[3]);
    if (!file) {
        std::cerr << "cannot read " << argv[3] << "\n";
        return 2;
    }
    std::vector<CaptionCue> cues;
    for (std::string line; std::getline(file, line);) {
        const auto fields = split(line, '\t');
        if (fields.size() < 3)
            continue;
        std::optional<double> x, y;
        if (fields.size() >= 5)
            x = std::stod(fields[3]), y = std::stod(fields[4]);
        cues.emplace_back(Uuid::generate(), std::stod(fields[0]), std::stod(fields[1]), unescaped(fields[2]), x, y);
    }
    try {
        CaptionBurner::ExportStatistics statistics;
        CaptionBurner::exportVideo(argv[1], argv[2], CaptionDocument(cues), style, &statistics);
        if (stats)
            std::cout << "frames=" << statistics.frames << " total=" << statistics.totalSeconds
                      << " layers=" << statistics.layerSeconds << " compositing=" << statistics.compositingSeconds
                      << " compositing_share=" << statistics.compositingSeconds / statistics.totalSeconds << "\n";
    } catch (const std::exception& error) {
        std::cerr << error.what() << "\n";
        return 1;
    }
    return 0;
}
