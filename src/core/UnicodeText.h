#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

// Unicode rules the caption core shares, on UTF-8 text (through ICU).
namespace cuewright::UnicodeText {

// Separators of the categories Zs, Zl and Zp, U+0009 to U+000D and U+0085.
bool isWhitespaceOrNewline(char32_t c);
// The Zs separators and U+0009 (the "whitespace" class, without newlines).
bool isWhitespace(char32_t c);
// The Unicode White_Space property.
bool isWhiteSpaceProperty(char32_t c);

// Trims characters of the whitespace-and-newlines class at both ends.
std::string_view trimmedWhitespaceAndNewlines(std::string_view text);
std::string trimmed(std::string_view text);

// Number of extended grapheme clusters.
std::size_t characterCount(std::string_view text);

// Walks the extended grapheme cluster boundaries of UTF-8 text. One object may serve many
// texts in turn, which saves opening ICU's break iterator for each.
class GraphemeBreaks {
public:
    GraphemeBreaks();
    ~GraphemeBreaks();
    GraphemeBreaks(const GraphemeBreaks&) = delete;
    GraphemeBreaks& operator=(const GraphemeBreaks&) = delete;

    // Starts a walk over `text`, which must outlive it; false when ICU refuses.
    bool reset(std::string_view text);
    // The byte offset of the next boundary after offset 0, then after each one given; none at the end.
    std::optional<std::size_t> next();
    // The byte offset at which the last cluster begins.
    std::size_t lastClusterStart();

private:
    struct Handles;
    std::unique_ptr<Handles> m_handles;
};

// Decodes one code point at `pos`, advancing it; malformed bytes give U+FFFD.
char32_t decodeNext(std::string_view text, std::size_t& pos);

bool isValidUtf8(std::string_view bytes);
// Converts UTF-16 bytes (byte order from a byte-order mark, else big-endian) to UTF-8.
// Returns false when the bytes are not well-formed UTF-16.
bool utf16ToUtf8(std::string_view bytes, std::string& out);

} // namespace cuewright::UnicodeText
