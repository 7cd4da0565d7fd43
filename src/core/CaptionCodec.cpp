#include "core/CaptionCodec.h"

#include "core/UnicodeText.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <locale.h>
#include <vector>

namespace cuewright {

namespace {

    std::string timingMessage(const std::string& line)
    {
        return "The caption timing \u2018" + line + "\u2019 is not valid.";
    }

    // Trimming and token splitting run once per cue; ASCII bytes never reach ICU.
    bool isAsciiWhitespaceOrNewline(unsigned char c)
    {
        return c == ' ' || (c >= 0x09 && c <= 0x0D);
    }

    std::string_view trimmed(std::string_view text)
    {
        std::size_t begin = 0;
        std::size_t end = text.size();
        while (begin < end && isAsciiWhitespaceOrNewline(static_cast<unsigned char>(text[begin])))
            ++begin;
        while (end > begin && isAsciiWhitespaceOrNewline(static_cast<unsigned char>(text[end - 1])))
            --end;
        text = text.substr(begin, end - begin);
        if (!text.empty()
            && (static_cast<unsigned char>(text.front()) >= 0x80 || static_cast<unsigned char>(text.back()) >= 0x80))
            return UnicodeText::trimmedWhitespaceAndNewlines(text);
        return text;
    }

    // The first piece up to a character of the whitespace class (Zs and tab).
    std::string_view firstToken(std::string_view text)
    {
        std::size_t i = 0;
        while (i < text.size()) {
            const auto c = static_cast<unsigned char>(text[i]);
            if (c < 0x80) {
                if (c == ' ' || c == '\t')
                    break;
                ++i;
                continue;
            }
            std::size_t next = i;
            if (UnicodeText::isWhitespace(UnicodeText::decodeNext(text, next)))
                break;
            i = next;
        }
        return text.substr(0, i);
    }

    constexpr double powersOfTen[] = { 1e0, 1e1, 1e2, 1e3, 1e4, 1e5, 1e6, 1e7, 1e8, 1e9, 1e10, 1e11, 1e12, 1e13, 1e14,
        1e15, 1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22 };

    locale_t cLocale()
    {
        static const locale_t locale = newlocale(LC_ALL_MASK, "C", static_cast<locale_t>(nullptr));
        return locale;
    }

    // The C library's text-to-number conversion over the whole piece. Plain decimals with
    // at most 15 digits take an exact path: the integer and the power of ten are both exact
    // doubles, so one division rounds correctly, as strtod does.
    std::optional<double> toDouble(std::string_view piece, bool commaIsPoint)
    {
        std::uint64_t mantissa = 0;
        int digits = 0;
        int fraction = -1;
        bool plain = !piece.empty();
        for (char ch : piece) {
            if (ch >= '0' && ch <= '9') {
                mantissa = mantissa * 10 + static_cast<std::uint64_t>(ch - '0');
                if (++digits > 15) {
                    plain = false;
                    break;
                }
                if (fraction >= 0)
                    ++fraction;
            } else if ((ch == '.' || (commaIsPoint && ch == ',')) && fraction < 0) {
                fraction = 0;
            } else {
                plain = false;
                break;
            }
        }
        if (plain && digits > 0)
            return static_cast<double>(mantissa) / powersOfTen[fraction > 0 ? fraction : 0];

        // strtod would skip leading space; the conversion allows none.
        if (piece.empty() || isAsciiWhitespaceOrNewline(static_cast<unsigned char>(piece.front())))
            return std::nullopt;
        std::string buffer(piece);
        if (commaIsPoint)
            for (char& ch : buffer)
                if (ch == ',')
                    ch = '.';
        char* end = nullptr;
        const double value = strtod_l(buffer.c_str(), &end, cLocale());
        if (end != buffer.c_str() + buffer.size())
            return std::nullopt;
        return value;
    }

    // Appends the decimal digits of value, at least `width` of them.
    char* appendNumber(char* out, std::uint64_t value, int width)
    {
        char digits[20];
        int n = 0;
        do {
            digits[n++] = static_cast<char>('0' + value % 10);
            value /= 10;
        } while (value != 0);
        for (int i = n; i < width; ++i)
            *out++ = '0';
        while (n > 0)
            *out++ = digits[--n];
        return out;
    }

    constexpr std::size_t maximumTimeLength = 32;

    char* appendTime(char* out, double seconds, bool comma)
    {
        const double scaled = seconds * 1000.0;
        std::uint64_t ms = 0;
        // 2^63 is the first double past the int64 range; NaN fails both tests.
        if (scaled >= 9223372036854775808.0)
            ms = static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max());
        else if (scaled > 0)
            ms = static_cast<std::uint64_t>(std::round(scaled));
        out = appendNumber(out, ms / 3600000, 2);
        *out++ = ':';
        out = appendNumber(out, ms / 60000 % 60, 2);
        *out++ = ':';
        out = appendNumber(out, ms / 1000 % 60, 2);
        *out++ = comma ? ',' : '.';
        return appendNumber(out, ms % 1000, 3);
    }

    // Guesses the byte order of UTF-16 without a mark from where the zero bytes of ASCII
    // characters fall: a file saved on Windows is little-endian.
    bool looksLittleEndian(std::span<const std::uint8_t> bytes)
    {
        std::size_t even = 0;
        std::size_t odd = 0;
        const std::size_t n = std::min<std::size_t>(bytes.size(), 4096);
        for (std::size_t i = 0; i + 1 < n; i += 2) {
            even += bytes[i] == 0;
            odd += bytes[i + 1] == 0;
        }
        return odd > even;
    }

    std::optional<std::string> utf16Text(std::span<const std::uint8_t> bytes)
    {
        const std::string_view view(reinterpret_cast<const char*>(bytes.data()), bytes.size());
        const bool marked
            = bytes.size() >= 2 && ((bytes[0] == 0xFF && bytes[1] == 0xFE) || (bytes[0] == 0xFE && bytes[1] == 0xFF));
        std::string text;
        bool ok;
        if (!marked && looksLittleEndian(bytes)) {
            std::string withMark = "\xFF\xFE";
            withMark.append(view);
            ok = UnicodeText::utf16ToUtf8(withMark, text);
        } else {
            ok = UnicodeText::utf16ToUtf8(view, text);
        }
        if (!ok)
            return std::nullopt;
        if (text.starts_with("\xEF\xBB\xBF")) // a second mark after the first
            text.erase(0, 3);
        return text;
    }

    bool isValidUtf8(std::string_view bytes)
    {
        // Skip the ASCII head eight bytes at a time; most subtitle files are all ASCII.
        std::size_t i = 0;
        for (; i + 8 <= bytes.size(); i += 8) {
            std::uint64_t word;
            std::memcpy(&word, bytes.data() + i, 8);
            if (word & 0x8080808080808080ull)
                break;
        }
        return UnicodeText::isValidUtf8(bytes.substr(i));
    }

} // namespace

CaptionCodecError::CaptionCodecError(Kind kind_, std::string timingLine_, const std::string& message)
    : std::runtime_error(message)
    , kind(kind_)
    , timingLine(std::move(timingLine_))
{
}

CaptionCodecError CaptionCodecError::invalidTiming(std::string line)
{
    const auto message = timingMessage(line);
    return CaptionCodecError(Kind::invalidTiming, std::move(line), message);
}

CaptionCodecError CaptionCodecError::noCues()
{
    return CaptionCodecError(Kind::noCues, {}, "No captions were found in the file.");
}

namespace CaptionCodec {

    std::optional<double> parseTime(std::string_view text)
    {
        text = trimmed(text);
        double pieces[3];
        int count = 0;
        std::size_t pos = 0;
        while (pos <= text.size()) {
            auto colon = text.find(':', pos);
            if (colon == std::string_view::npos)
                colon = text.size();
            const auto piece = text.substr(pos, colon - pos);
            pos = colon + 1;
            if (piece.empty())
                continue;
            const auto value = toDouble(piece, true);
            if (!value)
                return std::nullopt;
            if (count == 3)
                return std::nullopt;
            pieces[count++] = *value;
        }
        switch (count) {
        case 1:
            return pieces[0];
        case 2:
            return pieces[0] * 60 + pieces[1];
        case 3:
            return pieces[0] * 3600 + pieces[1] * 60 + pieces[2];
        default:
            return std::nullopt;
        }
    }

    std::string formatTime(double seconds, bool comma)
    {
        char buffer[maximumTimeLength];
        const char* end = appendTime(buffer, seconds, comma);
        return std::string(buffer, static_cast<std::size_t>(end - buffer));
    }

    CaptionDocument decode(std::span<const std::uint8_t> bytes)
    {
        const std::string_view view(reinterpret_cast<const char*>(bytes.data()), bytes.size());
        // ASCII in UTF-16 is valid UTF-8 too; its zero bytes give it away.
        const bool utf8 = isValidUtf8(view);
        if (utf8 && (std::memchr(view.data(), 0, view.size()) == nullptr || view.size() % 2 != 0)) {
            return decode(view.starts_with("\xEF\xBB\xBF") ? view.substr(3) : view);
        }
        if (auto text = utf16Text(bytes))
            return decode(std::string_view(*text));
        if (utf8)
            return decode(view.starts_with("\xEF\xBB\xBF") ? view.substr(3) : view);
        throw CaptionCodecError::noCues();
    }

    CaptionDocument decode(std::string_view input)
    {
        // CR LF, then lone CR, become LF.
        std::string normalized;
        std::string_view text = input;
        if (input.find('\r') != std::string_view::npos) {
            normalized.reserve(input.size());
            for (std::size_t i = 0; i < input.size(); ++i) {
                if (input[i] == '\r') {
                    normalized.push_back('\n');
                    if (i + 1 < input.size() && input[i + 1] == '\n')
                        ++i;
                } else {
                    normalized.push_back(input[i]);
                }
            }
            text = normalized;
        }
        text = trimmed(text);

        std::vector<CaptionCue> cues;
        cues.reserve(text.size() / 48 + 1);
        bool sorted = true;

        std::size_t pos = 0;
        while (pos <= text.size()) {
            auto blockEnd = text.find("\n\n", pos);
            if (blockEnd == std::string_view::npos)
                blockEnd = text.size();
            std::string_view block = text.substr(pos, blockEnd - pos);
            pos = blockEnd + 2;

            auto lineEnd = block.find('\n');
            std::string_view first = block.substr(0, lineEnd);
            if (first.starts_with("WEBVTT") || first.starts_with("NOTE"))
                continue;
            if (first.find("-->") == std::string_view::npos) {
                if (lineEnd == std::string_view::npos)
                    continue; // no line left
                block = block.substr(lineEnd + 1);
                lineEnd = block.find('\n');
                first = block.substr(0, lineEnd);
            }
            const auto arrow = first.find("-->");
            if (arrow == std::string_view::npos)
                continue;
            if (first.find("-->", arrow + 3) != std::string_view::npos)
                throw CaptionCodecError::invalidTiming(std::string(first));
            const auto start = parseTime(first.substr(0, arrow));
            const auto end = parseTime(firstToken(trimmed(first.substr(arrow + 3))));
            if (!start || !end)
                throw CaptionCodecError::invalidTiming(std::string(first));

            if (lineEnd == std::string_view::npos)
                continue;
            const auto cueText = trimmed(block.substr(lineEnd + 1));
            if (cueText.empty())
                continue;
            cues.emplace_back(Uuid::generate(), *start, *end, std::string(cueText));
            if (cues.size() > 1 && cues.back().start < cues[cues.size() - 2].start)
                sorted = false;
        }

        if (cues.empty())
            throw CaptionCodecError::noCues();
        if (sorted)
            return CaptionDocument::unsorted(CueList(std::move(cues)));
        return CaptionDocument(std::move(cues));
    }

    std::string encode(const CaptionDocument& document, CaptionFormat format)
    {
        const bool srt = format == CaptionFormat::srt;
        std::vector<const CaptionCue*> order;
        order.reserve(document.cues.size());
        std::size_t textBytes = 0;
        for (const auto& cue : document.cues) {
            order.push_back(&cue);
            textBytes += cue.text.size();
        }
        const auto byStart = [](const CaptionCue* a, const CaptionCue* b) { return a->start < b->start; };
        if (!std::is_sorted(order.begin(), order.end(), byStart))
            std::stable_sort(order.begin(), order.end(), byStart);

        // Index, two times, arrow and line ends fit in this much per cue.
        constexpr std::size_t perCue = 20 + 2 * maximumTimeLength + 5 + 3;
        std::string out;
        out.resize(8 + textBytes + order.size() * perCue);
        char* p = out.data();
        if (!srt) {
            std::memcpy(p, "WEBVTT\n\n", 8);
            p += 8;
        }
        std::uint64_t n = 0;
        for (const CaptionCue* cue : order) {
            if (srt) {
                p = appendNumber(p, ++n, 1);
                *p++ = '\n';
            }
            p = appendTime(p, cue->start, srt);
            std::memcpy(p, " --> ", 5);
            p += 5;
            p = appendTime(p, cue->end, srt);
            *p++ = '\n';
            std::memcpy(p, cue->text.data(), cue->text.size());
            p += cue->text.size();
            *p++ = '\n';
            *p++ = '\n';
        }
        out.resize(static_cast<std::size_t>(p - out.data()));
        return out;
    }

} // namespace CaptionCodec

} // namespace cuewright
