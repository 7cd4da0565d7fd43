#include "speech/WordCues.h"

#include "core/UnicodeText.h"

#include <string>
#include <string_view>

namespace cuewright::LocalTranscriber {

namespace {

    bool isSentencePoint(char c)
    {
        return c == '.' || c == '!' || c == '?';
    }

    // The last whole character must be the point itself: "end.”" and a point carrying a
    // combining mark end nothing.
    bool endsSentence(std::string_view text)
    {
        if (text.empty() || !isSentencePoint(text.back()))
            return false;
        if (text.size() == 1 || static_cast<unsigned char>(text[text.size() - 2]) < 0x80)
            return true;
        // A prepended character could join the point into one cluster.
        UnicodeText::GraphemeBreaks breaks;
        return breaks.reset(text) && breaks.lastClusterStart() == text.size() - 1;
    }

    void replaceAll(std::string& text, std::string_view from, std::string_view to)
    {
        std::size_t pos = text.find(from);
        if (pos == std::string::npos)
            return;
        std::string out;
        out.reserve(text.size());
        std::size_t last = 0;
        for (; pos != std::string::npos; pos = text.find(from, last)) {
            out.append(text, last, pos - last);
            out.append(to);
            last = pos + from.size();
        }
        out.append(text, last);
        text = std::move(out);
    }

    void flush(std::vector<CaptionCue>& result, std::span<const RecognizedWord> current)
    {
        if (current.empty())
            return;
        std::string text;
        for (const auto& word : current) {
            if (&word != &current.front())
                text += ' ';
            text += word.text;
        }
        replaceAll(text, " ,", ",");
        replaceAll(text, " .", ".");
        replaceAll(text, " ?", "?");
        replaceAll(text, " !", "!");
        const auto& last = current.back();
        result.emplace_back(Uuid::generate(), current.front().start, last.start + last.duration, std::move(text));
    }

} // namespace

std::vector<CaptionCue> cues(std::span<const RecognizedWord> words, int maximumWords, double maximumDuration)
{
    std::vector<CaptionCue> result;
    std::size_t first = 0;
    for (std::size_t i = 0; i < words.size(); ++i) {
        const auto& word = words[i];
        const std::size_t count = i - first + 1;
        const double span = word.start + word.duration - words[first].start;
        if (static_cast<long long>(count) >= maximumWords || span >= maximumDuration || endsSentence(word.text)) {
            flush(result, words.subspan(first, count));
            first = i + 1;
        }
    }
    flush(result, words.subspan(first));
    return result;
}

} // namespace cuewright::LocalTranscriber
