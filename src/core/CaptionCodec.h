#pragma once

#include "core/CaptionDocument.h"
#include "core/CaptionFormat.h"

#include <cstdint>
#include <optional>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>

namespace cuewright {

// Why a subtitle file could not be read; what() is the text shown to the user.
class CaptionCodecError : public std::runtime_error {
public:
    enum class Kind { invalidTiming, noCues };

    // timingLine is the line as it stood in the file.
    static CaptionCodecError invalidTiming(std::string timingLine);
    static CaptionCodecError noCues();

    Kind kind;
    std::string timingLine; // empty for noCues

    friend bool operator==(const CaptionCodecError& a, const CaptionCodecError& b)
    {
        return a.kind == b.kind && a.timingLine == b.timingLine;
    }

private:
    CaptionCodecError(Kind kind, std::string timingLine, const std::string& message);
};

// Reads and writes SubRip and WebVTT text. Stateless and thread-safe; touches no file.
//
//     auto document = CaptionCodec::decode(bytes);           // may throw CaptionCodecError
//     std::string srt = CaptionCodec::encode(document, CaptionFormat::srt);
//
// Reading is tolerant: blocks that are not cues are passed over, only a malformed timing
// line is an error, and then nothing of the file is kept. Markup stays in the text.
namespace CaptionCodec {

    // UTF-8, else UTF-16 (byte order from its mark, else guessed from where the zero bytes
    // of ASCII text fall). A leading byte-order mark is dropped. Throws CaptionCodecError.
    CaptionDocument decode(std::span<const std::uint8_t> bytes);
    CaptionDocument decode(std::string_view text);

    // UTF-8 bytes with LF line ends and no byte-order mark, cues sorted by start (stable).
    std::string encode(const CaptionDocument& document, CaptionFormat format);

    // One time stamp: seconds, minutes:seconds or hours:minutes:seconds, "," or "." before
    // the fraction, no range checks ("00:99:99" is 6039).
    std::optional<double> parseTime(std::string_view text);

    // "HH:MM:SS,mmm" (or "." when comma is false), milliseconds rounded half away from zero,
    // hours never cut. Negative times and NaN give zero; +infinity and anything past the
    // int64 range of milliseconds give that range's end, "2562047788015:12:55,807".
    std::string formatTime(double seconds, bool comma);

} // namespace CaptionCodec

} // namespace cuewright
