#pragma once

#include "core/CaptionDocument.h"

#include <array>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace cuewright {

enum class CaptionQualityIssueKind { overlap, tooFast, longLine, tooManyLines };

inline constexpr std::array<CaptionQualityIssueKind, 4> allCaptionQualityIssueKinds { CaptionQualityIssueKind::overlap,
    CaptionQualityIssueKind::tooFast, CaptionQualityIssueKind::longLine, CaptionQualityIssueKind::tooManyLines };

// "overlap", "tooFast", "longLine", "tooManyLines".
std::string_view rawValue(CaptionQualityIssueKind kind);
std::optional<CaptionQualityIssueKind> captionQualityIssueKindFromRawValue(std::string_view raw);

// One broken reading rule of one cue. Derived from the document when needed, never stored.
struct CaptionQualityIssue {
    Uuid cueID;
    CaptionQualityIssueKind kind;
    std::string message;

    // The cue's id text, "-", the kind: stable while the issue stands, whatever its numbers.
    std::string id() const;

    friend bool operator==(const CaptionQualityIssue&, const CaptionQualityIssue&) = default;
};

// Reading rules: overlaps, reading speed, line length and line count. Pure functions.
namespace CaptionQuality {

    inline constexpr double maximumCharactersPerSecond = 20.0;
    inline constexpr int maximumCharactersPerLine = 42;
    inline constexpr int maximumLineCount = 2;

    // Issues of every cue in list order, each cue's in the order of the kinds. Overlap
    // compares only neighbours in the list, as the list shows them.
    std::vector<CaptionQualityIssue> issues(const CaptionDocument& document);

    // Issues of one cue; overlap is tested against every other cue of the list.
    std::vector<CaptionQualityIssue> issues(const CaptionCue& cue, const CueList& among);
    std::vector<CaptionQualityIssue> issues(const CaptionCue& cue, std::span<const CaptionCue> among);

} // namespace CaptionQuality

} // namespace cuewright
