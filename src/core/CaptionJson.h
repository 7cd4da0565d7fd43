#pragma once

// JSON coding of the caption values and the project.
//
// The writer produces what a default platform JSON encoder writes: one compact line of UTF-8,
// keys in field order, "/" escaped as "\/", numbers in the shortest form that reads back as the
// same double (whole numbers without a fraction part). Absent positions write no key.
//
// The reader takes any valid JSON. Required keys that are missing, null or of another type fail
// the whole decode with a CaptionJsonError naming the value's path ("document.cues[3].start");
// unknown keys are ignored and values are stored as they stand (no clamps, no sorting).
// All functions are pure and safe to call from any thread.

#include "core/CaptionCue.h"
#include "core/CaptionDocument.h"
#include "core/CaptionProject.h"
#include "core/CaptionStyle.h"

#include <stdexcept>
#include <string>
#include <string_view>

namespace cuewright {

class CaptionJsonError : public std::runtime_error {
public:
    enum class Kind {
        invalidJSON,
        missingValue,
        nullValue,
        wrongType,
        invalidIdentifier,
        nonFiniteNumber,
    };

    CaptionJsonError(Kind kind, std::string path, const std::string& message)
        : std::runtime_error(message)
        , kind(kind)
        , path(std::move(path))
    {
    }

    Kind kind;
    // Where the fault lies, e.g. "style.textColor.alpha"; empty for the whole input.
    std::string path;
};

namespace CaptionJson {

    // Each throws CaptionJsonError (nonFiniteNumber) for a NaN or infinite number.
    std::string encode(const CaptionCue& cue);
    std::string encode(const CaptionDocument& document);
    std::string encode(const RGBAColor& color);
    std::string encode(const CaptionStyle& style);
    std::string encode(const CaptionProject& project);

    CaptionCue decodeCue(std::string_view json);
    CaptionDocument decodeDocument(std::string_view json);
    RGBAColor decodeColor(std::string_view json);
    CaptionStyle decodeStyle(std::string_view json);
    CaptionProject decodeProject(std::string_view json);

} // namespace CaptionJson

} // namespace cuewright
