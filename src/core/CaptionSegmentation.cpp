#include "core/CaptionSegmentation.h"

#include "core/UnicodeText.h"

#include <unicode/uchar.h>

#include <algorithm>
#include <string>

namespace cuewright::CaptionSegmentation {

namespace {

    // A character is white space when its first code point is; a space carrying a
    // combining mark therefore separates words too.
    std::vector<std::string_view> words(std::string_view text)
    {
        std::vector<std::string_view> result;
        std::vector<std::size_t> boundaries;
        const bool ascii
            = std::all_of(text.begin(), text.end(), [](char c) { return static_cast<unsigned char>(c) < 0x80; });
        if (ascii) {
            for (std::size_t i = 0; i <= text.size(); ++i)
                boundaries.push_back(i);
        } else {
            UnicodeText::GraphemeBreaks breaks;
            if (!breaks.reset(text))
                return result;
            boundaries.push_back(0);
            while (const auto boundary = breaks.next())
                boundaries.push_back(*boundary);
        }

        std::size_t wordStart = 0;
        for (std::size_t k = 0; k + 1 < boundaries.size(); ++k) {
            std::size_t pos = boundaries[k];
            if (!u_isUWhiteSpace(static_cast<UChar32>(UnicodeText::decodeNext(text, pos))))
                continue;
            if (boundaries[k] > wordStart)
                result.push_back(text.substr(wordStart, boundaries[k] - wordStart));
            wordStart = boundaries[k + 1];
        }
        if (text.size() > wordStart)
            result.push_back(text.substr(wordStart));
        return result;
    }

} // namespace

std::vector<CaptionCue> cues(std::string_view text, double duration, int wordsPerCue)
{
    const auto list = words(text);
    if (list.empty() || !(duration > 0))
        return {};
    const std::size_t n = wordsPerCue < 1 ? 1 : static_cast<std::size_t>(wordsPerCue);
    const std::size_t chunks = (list.size() + n - 1) / n;

    std::vector<CaptionCue> result;
    result.reserve(chunks);
    for (std::size_t i = 0; i < chunks; ++i) {
        std::string joined;
        for (std::size_t w = i * n; w < std::min(list.size(), (i + 1) * n); ++w) {
            if (!joined.empty())
                joined += ' ';
            joined += list[w];
        }
        const double c = static_cast<double>(chunks);
        const double start = duration * static_cast<double>(i) / c;
        const double end = duration * static_cast<double>(i + 1) / c;
        result.emplace_back(Uuid::generate(), start, end, std::move(joined));
    }
    return result;
}

} // namespace cuewright::CaptionSegmentation
