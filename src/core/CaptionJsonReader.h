#pragma once

// A strict RFC 8259 reader that hands each JSON event straight to a handler, so that values are
// decoded into their records without a document tree (several times faster than a general
// parser on long projects). Iterative: deep nesting costs heap, never stack.
//
// The handler provides, each returning false to stop:
//   null(), boolean(bool), number(double), string(std::string&) (the handler may move from it),
//   key(std::string_view), start_object(), end_object(), start_array(), end_array(),
// and void syntaxError(std::size_t offset, JsonSyntax what), called once before false is returned.

#include "core/UnicodeText.h"

#include <cerrno>
#include <charconv>
#include <cmath>
#include <cstdlib>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

namespace cuewright::CaptionJsonReader {

enum class JsonSyntax { invalid, numberOutOfRange };

template <typename Handler> class Reader {
public:
    Reader(std::string_view input, Handler& handler)
        : m_input(input)
        , m_handler(handler)
    {
    }

    bool run()
    {
        if (m_input.starts_with("\xEF\xBB\xBF"))
            m_pos = 3;
        for (;;) {
            if (!value())
                return false;
            // After a value: close containers, or find the next element.
            for (;;) {
                skipSpace();
                if (m_containers.empty()) {
                    if (m_pos != m_input.size())
                        return invalid();
                    return true;
                }
                if (m_pos == m_input.size())
                    return invalid();
                const char c = m_input[m_pos];
                const bool inObject = m_containers.back() == '{';
                if (c == ',') {
                    ++m_pos;
                    if (inObject && !member())
                        return false;
                    break;
                }
                if (c == (inObject ? '}' : ']')) {
                    ++m_pos;
                    m_containers.pop_back();
                    if (!(inObject ? m_handler.end_object() : m_handler.end_array()))
                        return false;
                    continue;
                }
                return invalid();
            }
        }
    }

private:
    bool invalid(JsonSyntax what = JsonSyntax::invalid)
    {
        m_handler.syntaxError(m_pos, what);
        return false;
    }

    void skipSpace()
    {
        while (m_pos < m_input.size()) {
            const char c = m_input[m_pos];
            if (c != ' ' && c != '\n' && c != '\r' && c != '\t')
                return;
            ++m_pos;
        }
    }

    // A key and its colon, leaving the reader before the member's value.
    bool member()
    {
        skipSpace();
        if (m_pos == m_input.size() || m_input[m_pos] != '"')
            return invalid();
        std::string_view name;
        if (!string(name))
            return false;
        if (!m_handler.key(name))
            return false;
        skipSpace();
        if (m_pos == m_input.size() || m_input[m_pos] != ':')
            return invalid();
        ++m_pos;
        return true;
    }

    // One value; a container only opened (its elements follow in run()).
    bool value()
    {
        for (;;) {
            skipSpace();
            if (m_pos == m_input.size())
                return invalid();
            const char c = m_input[m_pos];
            switch (c) {
            case '{':
                ++m_pos;
                if (!m_handler.start_object())
                    return false;
                skipSpace();
                if (m_pos < m_input.size() && m_input[m_pos] == '}') {
                    ++m_pos;
                    return m_handler.end_object();
                }
                m_containers.push_back('{');
                if (!member())
                    return false;
                continue;
            case '[':
                ++m_pos;
                if (!m_handler.start_array())
                    return false;
                skipSpace();
                if (m_pos < m_input.size() && m_input[m_pos] == ']') {
                    ++m_pos;
                    return m_handler.end_array();
                }
                m_containers.push_back('[');
                continue;
            case '"': {
                std::string_view text;
                if (!string(text))
                    return false;
                if (text.data() != m_buffer.data())
                    m_buffer.assign(text);
                return m_handler.string(m_buffer);
            }
            case 't':
                return literal("true") && m_handler.boolean(true);
            case 'f':
                return literal("false") && m_handler.boolean(false);
            case 'n':
                return literal("null") && m_handler.null();
            default:
                return number();
            }
        }
    }

    bool literal(std::string_view word)
    {
        if (m_input.substr(m_pos, word.size()) != word)
            return invalid();
        m_pos += word.size();
        return true;
    }

    static bool isDigit(char c) { return c >= '0' && c <= '9'; }

    bool number()
    {
        const std::size_t begin = m_pos;
        const std::size_t n = m_input.size();
        if (m_pos < n && m_input[m_pos] == '-')
            ++m_pos;
        if (m_pos == n || !isDigit(m_input[m_pos]))
            return invalid();
        if (m_input[m_pos] == '0') {
            ++m_pos;
        } else {
            while (m_pos < n && isDigit(m_input[m_pos]))
                ++m_pos;
        }
        if (m_pos < n && m_input[m_pos] == '.') {
            ++m_pos;
            if (m_pos == n || !isDigit(m_input[m_pos]))
                return invalid();
            while (m_pos < n && isDigit(m_input[m_pos]))
                ++m_pos;
        }
        if (m_pos < n && (m_input[m_pos] == 'e' || m_input[m_pos] == 'E')) {
            ++m_pos;
            if (m_pos < n && (m_input[m_pos] == '+' || m_input[m_pos] == '-'))
                ++m_pos;
            if (m_pos == n || !isDigit(m_input[m_pos]))
                return invalid();
            while (m_pos < n && isDigit(m_input[m_pos]))
                ++m_pos;
        }
        const char* first = m_input.data() + begin;
        const char* last = m_input.data() + m_pos;
        double result = 0;
        const auto [end, error] = std::from_chars(first, last, result);
        if (error == std::errc::result_out_of_range) {
            // Underflow reads as zero or a subnormal, as strtod gives it; overflow is refused.
            const std::string copy(first, last);
            errno = 0;
            result = std::strtod(copy.c_str(), nullptr);
            if (std::isinf(result)) {
                m_pos = begin;
                return invalid(JsonSyntax::numberOutOfRange);
            }
        } else if (error != std::errc() || end != last) {
            m_pos = begin;
            return invalid();
        }
        return m_handler.number(result);
    }

    static int hexDigit(char c)
    {
        if (c >= '0' && c <= '9')
            return c - '0';
        if (c >= 'a' && c <= 'f')
            return c - 'a' + 10;
        if (c >= 'A' && c <= 'F')
            return c - 'A' + 10;
        return -1;
    }

    bool hex4(char32_t& value)
    {
        if (m_input.size() - m_pos < 4)
            return invalid();
        value = 0;
        for (int i = 0; i < 4; ++i) {
            const int digit = hexDigit(m_input[m_pos + static_cast<std::size_t>(i)]);
            if (digit < 0)
                return invalid();
            value = value * 16 + static_cast<char32_t>(digit);
        }
        m_pos += 4;
        return true;
    }

    void appendUtf8(char32_t c)
    {
        if (c < 0x80) {
            m_buffer += static_cast<char>(c);
        } else if (c < 0x800) {
            m_buffer += static_cast<char>(0xC0 | (c >> 6));
            m_buffer += static_cast<char>(0x80 | (c & 0x3F));
        } else if (c < 0x10000) {
            m_buffer += static_cast<char>(0xE0 | (c >> 12));
            m_buffer += static_cast<char>(0x80 | ((c >> 6) & 0x3F));
            m_buffer += static_cast<char>(0x80 | (c & 0x3F));
        } else {
            m_buffer += static_cast<char>(0xF0 | (c >> 18));
            m_buffer += static_cast<char>(0x80 | ((c >> 12) & 0x3F));
            m_buffer += static_cast<char>(0x80 | ((c >> 6) & 0x3F));
            m_buffer += static_cast<char>(0x80 | (c & 0x3F));
        }
    }

    // Reads a string at m_pos (its opening quote). The text is a view of the input when it has
    // no escapes, else of m_buffer.
    bool string(std::string_view& text)
    {
        const std::size_t begin = ++m_pos;
        const std::size_t n = m_input.size();
        const char* data = m_input.data();
        bool ascii = true;
        bool escaped = false;
        std::size_t run = begin;
        for (;;) {
            // The common bytes, fast.
            while (m_pos < n) {
                const auto c = static_cast<unsigned char>(data[m_pos]);
                if (c == '"' || c == '\\' || c < 0x20)
                    break;
                ascii &= c < 0x80;
                ++m_pos;
            }
            if (m_pos == n)
                return invalid();
            const char c = data[m_pos];
            if (c == '"')
                break;
            if (c != '\\')
                return invalid(); // a raw control character
            if (!escaped) {
                escaped = true;
                m_buffer.clear();
            }
            m_buffer.append(data + run, m_pos - run);
            ++m_pos;
            if (m_pos == n)
                return invalid();
            const char e = data[m_pos++];
            switch (e) {
            case '"':
            case '\\':
            case '/':
                m_buffer += e;
                break;
            case 'b':
                m_buffer += '\b';
                break;
            case 'f':
                m_buffer += '\f';
                break;
            case 'n':
                m_buffer += '\n';
                break;
            case 'r':
                m_buffer += '\r';
                break;
            case 't':
                m_buffer += '\t';
                break;
            case 'u': {
                char32_t unit = 0;
                if (!hex4(unit))
                    return false;
                if (unit >= 0xDC00 && unit <= 0xDFFF)
                    return invalid(); // a low surrogate alone
                if (unit >= 0xD800 && unit <= 0xDBFF) {
                    char32_t low = 0;
                    if (m_input.substr(m_pos, 2) != "\\u")
                        return invalid();
                    m_pos += 2;
                    if (!hex4(low))
                        return false;
                    if (low < 0xDC00 || low > 0xDFFF)
                        return invalid();
                    unit = 0x10000 + ((unit - 0xD800) << 10) + (low - 0xDC00);
                }
                appendUtf8(unit);
                break;
            }
            default:
                --m_pos;
                return invalid();
            }
            run = m_pos;
        }
        const std::string_view raw = m_input.substr(begin, m_pos - begin);
        if (!ascii && !UnicodeText::isValidUtf8(raw))
            return invalid();
        if (escaped) {
            m_buffer.append(data + run, m_pos - run);
            text = m_buffer;
        } else {
            text = raw;
        }
        ++m_pos;
        return true;
    }

    std::string_view m_input;
    Handler& m_handler;
    std::size_t m_pos = 0;
    std::vector<char> m_containers;
    std::string m_buffer;
};

// Reads the whole input; false when the handler stopped or the JSON is malformed.
template <typename Handler> bool read(std::string_view input, Handler& handler)
{
    Reader<Handler> reader(input, handler);
    return reader.run();
}

} // namespace cuewright::CaptionJsonReader
