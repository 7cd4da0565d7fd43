#include "core/UnicodeText.h"

#include <unicode/ubrk.h>
#include <unicode/uchar.h>
#include <unicode/utext.h>
#include <unicode/utf8.h>

#include <memory>

namespace cuewright::UnicodeText {

bool isWhitespace(char32_t c)
{
    return c == 0x09 || u_charType(static_cast<UChar32>(c)) == U_SPACE_SEPARATOR;
}

bool isWhitespaceOrNewline(char32_t c)
{
    if ((c >= 0x09 && c <= 0x0D) || c == 0x85)
        return true;
    const auto type = u_charType(static_cast<UChar32>(c));
    return type == U_SPACE_SEPARATOR || type == U_LINE_SEPARATOR || type == U_PARAGRAPH_SEPARATOR;
}

bool isWhiteSpaceProperty(char32_t c)
{
    return u_isUWhiteSpace(static_cast<UChar32>(c));
}

char32_t decodeNext(std::string_view text, std::size_t& pos)
{
    UChar32 c;
    int32_t i = static_cast<int32_t>(pos);
    U8_NEXT(reinterpret_cast<const uint8_t*>(text.data()), i, static_cast<int32_t>(text.size()), c);
    pos = static_cast<std::size_t>(i);
    return c < 0 ? U'\uFFFD' : static_cast<char32_t>(c);
}

std::string_view trimmedWhitespaceAndNewlines(std::string_view text)
{
    std::size_t begin = 0;
    while (begin < text.size()) {
        std::size_t next = begin;
        if (!isWhitespaceOrNewline(decodeNext(text, next)))
            break;
        begin = next;
    }
    std::size_t end = text.size();
    while (end > begin) {
        int32_t i = static_cast<int32_t>(end);
        UChar32 c;
        U8_PREV(reinterpret_cast<const uint8_t*>(text.data()), static_cast<int32_t>(begin), i, c);
        if (c < 0 || !isWhitespaceOrNewline(static_cast<char32_t>(c)))
            break;
        end = static_cast<std::size_t>(i);
    }
    return text.substr(begin, end - begin);
}

std::string trimmed(std::string_view text)
{
    return std::string(trimmedWhitespaceAndNewlines(text));
}

std::size_t characterCount(std::string_view text)
{
    if (text.empty())
        return 0;
    bool ascii = true;
    for (unsigned char ch : text) {
        if (ch >= 0x80 || ch == '\r') {
            ascii = false;
            break;
        }
    }
    if (ascii) // every ASCII character but CR LF is its own cluster
        return text.size();

    GraphemeBreaks breaks;
    if (!breaks.reset(text))
        return 0;
    std::size_t count = 0;
    while (breaks.next())
        ++count;
    return count;
}

struct GraphemeBreaks::Handles {
    struct TextClose {
        void operator()(UText* t) const { utext_close(t); }
    };
    struct IteratorClose {
        void operator()(UBreakIterator* b) const { ubrk_close(b); }
    };
    std::unique_ptr<UText, TextClose> text;
    std::unique_ptr<UBreakIterator, IteratorClose> iterator;
};

GraphemeBreaks::GraphemeBreaks()
    : m_handles(std::make_unique<Handles>())
{
}

GraphemeBreaks::~GraphemeBreaks() = default;

bool GraphemeBreaks::reset(std::string_view text)
{
    UErrorCode status = U_ZERO_ERROR;
    m_handles->text.reset(
        utext_openUTF8(m_handles->text.release(), text.data(), static_cast<int64_t>(text.size()), &status));
    if (!m_handles->iterator && U_SUCCESS(status))
        m_handles->iterator.reset(ubrk_open(UBRK_CHARACTER, nullptr, nullptr, 0, &status));
    if (U_SUCCESS(status))
        ubrk_setUText(m_handles->iterator.get(), m_handles->text.get(), &status);
    if (U_FAILURE(status)) {
        m_handles->iterator.reset();
        return false;
    }
    ubrk_first(m_handles->iterator.get());
    return true;
}

std::optional<std::size_t> GraphemeBreaks::next()
{
    if (!m_handles->iterator)
        return std::nullopt;
    const int32_t boundary = ubrk_next(m_handles->iterator.get());
    if (boundary == UBRK_DONE)
        return std::nullopt;
    return static_cast<std::size_t>(boundary);
}

std::size_t GraphemeBreaks::lastClusterStart()
{
    if (!m_handles->iterator)
        return 0;
    ubrk_last(m_handles->iterator.get());
    const int32_t boundary = ubrk_previous(m_handles->iterator.get());
    return boundary == UBRK_DONE ? 0 : static_cast<std::size_t>(boundary);
}

bool isValidUtf8(std::string_view bytes)
{
    std::size_t i = 0;
    const auto* data = reinterpret_cast<const uint8_t*>(bytes.data());
    const auto n = static_cast<int32_t>(bytes.size());
    while (i < bytes.size()) {
        if (data[i] < 0x80) {
            ++i;
            continue;
        }
        int32_t j = static_cast<int32_t>(i);
        UChar32 c;
        U8_NEXT(data, j, n, c);
        if (c < 0)
            return false;
        i = static_cast<std::size_t>(j);
    }
    return true;
}

bool utf16ToUtf8(std::string_view bytes, std::string& out)
{
    if (bytes.size() % 2 != 0)
        return false;
    bool bigEndian = true;
    std::size_t pos = 0;
    if (bytes.size() >= 2) {
        const auto b0 = static_cast<unsigned char>(bytes[0]);
        const auto b1 = static_cast<unsigned char>(bytes[1]);
        if (b0 == 0xFF && b1 == 0xFE) {
            bigEndian = false;
            pos = 2;
        } else if (b0 == 0xFE && b1 == 0xFF) {
            pos = 2;
        }
    }
    auto unit = [&](std::size_t at) -> char16_t {
        const auto a = static_cast<unsigned char>(bytes[at]);
        const auto b = static_cast<unsigned char>(bytes[at + 1]);
        return static_cast<char16_t>(bigEndian ? (a << 8 | b) : (b << 8 | a));
    };
    out.clear();
    out.reserve(bytes.size());
    while (pos < bytes.size()) {
        char32_t c = unit(pos);
        pos += 2;
        if (c >= 0xD800 && c <= 0xDBFF) {
            if (pos >= bytes.size())
                return false;
            const char32_t low = unit(pos);
            if (low < 0xDC00 || low > 0xDFFF)
                return false;
            pos += 2;
            c = 0x10000 + ((c - 0xD800) << 10) + (low - 0xDC00);
        } else if (c >= 0xDC00 && c <= 0xDFFF) {
            return false;
        }
        char buffer[4];
        int32_t length = 0;
        UBool error = false;
        U8_APPEND(reinterpret_cast<uint8_t*>(buffer), length, 4, static_cast<UChar32>(c), error);
        if (error)
            return false;
        out.append(buffer, static_cast<std::size_t>(length));
    }
    return true;
}

} // namespace cuewright::UnicodeText
