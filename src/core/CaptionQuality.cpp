#include "core/CaptionQuality.h"

#include "core/CaptionTiming.h"
#include "core/UnicodeText.h"

#include <unicode/uchar.h>

#include <algorithm>
#include <cmath>

namespace cuewright {

std::string_view rawValue(CaptionQualityIssueKind kind)
{
    switch (kind) {
    case CaptionQualityIssueKind::overlap:
        return "overlap";
    case CaptionQualityIssueKind::tooFast:
        return "tooFast";
    case CaptionQualityIssueKind::longLine:
        return "longLine";
    case CaptionQualityIssueKind::tooManyLines:
        return "tooManyLines";
    }
    return {};
}

std::optional<CaptionQualityIssueKind> captionQualityIssueKindFromRawValue(std::string_view raw)
{
    for (auto kind : allCaptionQualityIssueKinds)
        if (rawValue(kind) == raw)
            return kind;
    return std::nullopt;
}

std::string CaptionQualityIssue::id() const
{
    std::string result = cueID.toString();
    result += '-';
    result += rawValue(kind);
    return result;
}

namespace {

    struct TextMetrics {
        std::size_t visibleCharacters = 0; // grapheme clusters that are not white space
        std::size_t longestLine = 0; // in grapheme clusters, white space included
        std::size_t lineCount = 1;
    };

    bool isNewline(char32_t c)
    {
        return (c >= 0x0A && c <= 0x0D) || c == 0x85 || c == 0x2028 || c == 0x2029;
    }

    // Measures cue texts. Below U+0300 every code point is a grapheme cluster of its own
    // (CR LF aside, which only ever counts as white space and line cuts), so most texts
    // never reach ICU; the break iterator is opened once for the rest.
    class TextMeasure {
    public:
        TextMetrics operator()(std::string_view text)
        {
            TextMetrics metrics;
            std::size_t line = 0;
            std::size_t i = 0;
            while (i < text.size()) {
                const auto byte = static_cast<unsigned char>(text[i]);
                char32_t c;
                if (byte < 0x80) {
                    c = byte;
                    ++i;
                } else {
                    std::size_t next = i;
                    c = UnicodeText::decodeNext(text, next);
                    if (c >= 0x300)
                        return clustered(text);
                    i = next;
                }
                if (isNewline(c)) {
                    metrics.longestLine = std::max(metrics.longestLine, line);
                    line = 0;
                    ++metrics.lineCount;
                    continue;
                }
                ++line;
                if (!(c == ' ' || c == 0x09 || c == 0xA0))
                    ++metrics.visibleCharacters;
            }
            metrics.longestLine = std::max(metrics.longestLine, line);
            return metrics;
        }

    private:
        TextMetrics clustered(std::string_view text)
        {
            TextMetrics metrics;
            if (!m_breaks.reset(text))
                return metrics;

            std::size_t line = 0;
            std::size_t begin = 0;
            while (const auto next = m_breaks.next()) {
                const auto end = *next;
                std::size_t pos = begin;
                const char32_t first = UnicodeText::decodeNext(text, pos);
                if (isNewline(first)) {
                    metrics.longestLine = std::max(metrics.longestLine, line);
                    line = 0;
                    // CR LF is one cluster but two cuts, with an empty line between.
                    metrics.lineCount += (first == '\r' && end - begin == 2 && text[begin + 1] == '\n') ? 2 : 1;
                } else {
                    ++line;
                    if (!u_isUWhiteSpace(static_cast<UChar32>(first)))
                        ++metrics.visibleCharacters;
                }
                begin = end;
            }
            metrics.longestLine = std::max(metrics.longestLine, line);
            return metrics;
        }

        UnicodeText::GraphemeBreaks m_breaks;
    };

    void appendIssues(
        std::vector<CaptionQualityIssue>& out, const CaptionCue& cue, bool isOverlapping, TextMeasure& measure)
    {
        if (isOverlapping)
            out.push_back({ cue.id, CaptionQualityIssueKind::overlap, "Overlaps another caption." });

        const auto metrics = measure(cue.text);
        const double length = std::max(cue.duration(), CaptionTiming::minimumDuration);
        const double speed = static_cast<double>(metrics.visibleCharacters) / length;
        if (speed > CaptionQuality::maximumCharactersPerSecond) {
            out.push_back({ cue.id, CaptionQualityIssueKind::tooFast,
                std::to_string(static_cast<long long>(std::round(speed)))
                    + " characters per second \u2014 shorten the text or extend the caption." });
        }
        if (metrics.longestLine > static_cast<std::size_t>(CaptionQuality::maximumCharactersPerLine)) {
            out.push_back({ cue.id, CaptionQualityIssueKind::longLine,
                "One line has " + std::to_string(metrics.longestLine) + " characters \u2014 keep lines at "
                    + std::to_string(CaptionQuality::maximumCharactersPerLine) + " or fewer." });
        }
        if (metrics.lineCount > static_cast<std::size_t>(CaptionQuality::maximumLineCount)) {
            out.push_back({ cue.id, CaptionQualityIssueKind::tooManyLines,
                std::to_string(metrics.lineCount) + " lines \u2014 use no more than "
                    + std::to_string(CaptionQuality::maximumLineCount) + "." });
        }
    }

    template <typename Cues> std::vector<CaptionQualityIssue> issuesAmong(const CaptionCue& cue, const Cues& among)
    {
        bool overlapping = false;
        for (const CaptionCue& other : among) {
            if (other.id != cue.id && cue.start < other.end && other.start < cue.end) {
                overlapping = true;
                break;
            }
        }
        std::vector<CaptionQualityIssue> result;
        TextMeasure measure;
        appendIssues(result, cue, overlapping, measure);
        return result;
    }

} // namespace

namespace CaptionQuality {

    std::vector<CaptionQualityIssue> issues(const CaptionDocument& document)
    {
        const auto& cues = document.cues;
        // The overlap set holds ids, so a duplicated id is flagged at each of its places.
        std::vector<Uuid> overlapping;
        const CaptionCue* previous = nullptr;
        for (const CaptionCue& cue : cues) {
            if (previous && cue.start < previous->end) {
                overlapping.push_back(previous->id);
                overlapping.push_back(cue.id);
            }
            previous = &cue;
        }
        std::sort(overlapping.begin(), overlapping.end());

        std::vector<CaptionQualityIssue> result;
        TextMeasure measure;
        for (const CaptionCue& cue : cues) {
            const bool isOverlapping
                = !overlapping.empty() && std::binary_search(overlapping.begin(), overlapping.end(), cue.id);
            appendIssues(result, cue, isOverlapping, measure);
        }
        return result;
    }

    std::vector<CaptionQualityIssue> issues(const CaptionCue& cue, const CueList& among)
    {
        return issuesAmong(cue, among);
    }

    std::vector<CaptionQualityIssue> issues(const CaptionCue& cue, std::span<const CaptionCue> among)
    {
        return issuesAmong(cue, among);
    }

} // namespace CaptionQuality

} // namespace cuewright
