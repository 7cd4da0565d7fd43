#include "update/PropertyList.h"

#include <cctype>
#include <charconv>
#include <cstdint>
#include <fstream>
#include <set>
#include <sstream>

namespace cuewright::PropertyList {

namespace {

    void appendUtf8(std::string& out, char32_t c)
    {
        if (c < 0x80) {
            out += static_cast<char>(c);
        } else if (c < 0x800) {
            out += static_cast<char>(0xC0 | (c >> 6));
            out += static_cast<char>(0x80 | (c & 0x3F));
        } else if (c < 0x10000) {
            out += static_cast<char>(0xE0 | (c >> 12));
            out += static_cast<char>(0x80 | ((c >> 6) & 0x3F));
            out += static_cast<char>(0x80 | (c & 0x3F));
        } else {
            out += static_cast<char>(0xF0 | (c >> 18));
            out += static_cast<char>(0x80 | ((c >> 12) & 0x3F));
            out += static_cast<char>(0x80 | ((c >> 6) & 0x3F));
            out += static_cast<char>(0x80 | (c & 0x3F));
        }
    }

    bool isNameChar(char c)
    {
        return std::isalnum(static_cast<unsigned char>(c)) || c == '_' || c == '-' || c == '.' || c == ':'
            || static_cast<unsigned char>(c) >= 0x80;
    }

    // A small XML reader: elements, attributes (skipped), character data with the predefined and numeric
    // entities, CDATA sections, comments and processing instructions. No external entities are ever read.
    class Reader {
    public:
        explicit Reader(std::string_view text)
            : m_s(text)
        {
            if (m_s.starts_with("\xEF\xBB\xBF"))
                m_i = 3;
        }

        bool atEnd() const { return m_i >= m_s.size(); }

        // Skips whitespace, comments and processing instructions; with `prolog`, also a document type.
        bool skipMisc(bool prolog)
        {
            while (true) {
                while (m_i < m_s.size() && isSpace(m_s[m_i]))
                    ++m_i;
                if (const auto end = ignorableEnd(); !end.empty()) {
                    if (!skipPast(end))
                        return false;
                } else if (prolog && lookingAt("<!DOCTYPE")) {
                    if (!skipDoctype())
                        return false;
                } else {
                    return true;
                }
            }
        }

        // Reads `<name ...>` or `<name .../>`.
        bool startTag(std::string& name, bool& empty)
        {
            if (!lookingAt("<") || lookingAt("</") || lookingAt("<!") || lookingAt("<?"))
                return false;
            ++m_i;
            name = readName();
            if (name.empty())
                return false;
            while (m_i < m_s.size()) {
                const char c = m_s[m_i];
                if (c == '>') {
                    ++m_i;
                    empty = false;
                    return true;
                }
                if (c == '/' && lookingAt("/>")) {
                    m_i += 2;
                    empty = true;
                    return true;
                }
                if (c == '"' || c == '\'') {
                    const std::size_t close = m_s.find(c, m_i + 1);
                    if (close == std::string_view::npos)
                        return false;
                    m_i = close + 1;
                } else if (c == '<') {
                    return false;
                } else {
                    ++m_i;
                }
            }
            return false;
        }

        bool endTag(std::string_view name)
        {
            if (!lookingAt("</"))
                return false;
            m_i += 2;
            if (readName() != name)
                return false;
            while (m_i < m_s.size() && isSpace(m_s[m_i]))
                ++m_i;
            if (!lookingAt(">"))
                return false;
            ++m_i;
            return true;
        }

        // Character content up to the end tag of `name`, which must hold no elements.
        bool textUntilEnd(std::string_view name, std::string& out)
        {
            out.clear();
            while (m_i < m_s.size()) {
                if (lookingAt("</"))
                    return endTag(name);
                if (const auto end = ignorableEnd(); !end.empty()) {
                    if (!skipPast(end))
                        return false;
                } else if (lookingAt("<![CDATA[")) {
                    const std::size_t close = m_s.find("]]>", m_i + 9);
                    if (close == std::string_view::npos)
                        return false;
                    out.append(m_s.substr(m_i + 9, close - m_i - 9));
                    m_i = close + 3;
                } else if (m_s[m_i] == '<') {
                    return false;
                } else if (m_s[m_i] == '&') {
                    if (!entity(out))
                        return false;
                } else {
                    out += m_s[m_i++];
                }
            }
            return false;
        }

        // Skips the content of an element whose start tag was read, nested elements included.
        bool skipContent(std::string_view name, int depth = 0)
        {
            if (depth > 256)
                return false;
            while (m_i < m_s.size()) {
                if (lookingAt("</"))
                    return endTag(name);
                if (const auto end = ignorableEnd(); !end.empty()) {
                    if (!skipPast(end))
                        return false;
                } else if (lookingAt("<![CDATA[")) {
                    if (!skipPast("]]>"))
                        return false;
                } else if (m_s[m_i] == '<') {
                    std::string child;
                    bool empty = false;
                    if (!startTag(child, empty) || (!empty && !skipContent(child, depth + 1)))
                        return false;
                } else if (m_s[m_i] == '&') {
                    std::string ignored;
                    if (!entity(ignored))
                        return false;
                } else {
                    ++m_i;
                }
            }
            return false;
        }

    private:
        static bool isSpace(char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n'; }

        bool lookingAt(std::string_view prefix) const { return m_s.substr(m_i).starts_with(prefix); }

        // The terminator of a comment or processing instruction at the cursor; empty when none.
        std::string_view ignorableEnd() const
        {
            if (lookingAt("<!--"))
                return "-->";
            if (lookingAt("<?"))
                return "?>";
            return {};
        }

        bool skipPast(std::string_view terminator)
        {
            const std::size_t at = m_s.find(terminator, m_i);
            if (at == std::string_view::npos)
                return false;
            m_i = at + terminator.size();
            return true;
        }

        bool skipDoctype()
        {
            int brackets = 0;
            for (; m_i < m_s.size(); ++m_i) {
                const char c = m_s[m_i];
                if (c == '"' || c == '\'') {
                    const std::size_t close = m_s.find(c, m_i + 1);
                    if (close == std::string_view::npos)
                        return false;
                    m_i = close;
                } else if (c == '[') {
                    ++brackets;
                } else if (c == ']') {
                    --brackets;
                } else if (c == '>' && brackets <= 0) {
                    ++m_i;
                    return true;
                }
            }
            return false;
        }

        std::string readName()
        {
            const std::size_t begin = m_i;
            while (m_i < m_s.size() && isNameChar(m_s[m_i]))
                ++m_i;
            return std::string(m_s.substr(begin, m_i - begin));
        }

        bool entity(std::string& out)
        {
            const std::size_t semicolon = m_s.find(';', m_i);
            if (semicolon == std::string_view::npos || semicolon - m_i > 12)
                return false;
            const std::string_view name = m_s.substr(m_i + 1, semicolon - m_i - 1);
            m_i = semicolon + 1;
            if (name == "amp")
                out += '&';
            else if (name == "lt")
                out += '<';
            else if (name == "gt")
                out += '>';
            else if (name == "quot")
                out += '"';
            else if (name == "apos")
                out += '\'';
            else if (name.starts_with('#') && name.size() > 1) {
                const bool hex = name[1] == 'x';
                const std::string_view digits = name.substr(hex ? 2 : 1);
                std::uint32_t code = 0;
                const auto [end, error]
                    = std::from_chars(digits.data(), digits.data() + digits.size(), code, hex ? 16 : 10);
                if (digits.empty() || error != std::errc() || end != digits.data() + digits.size() || code == 0
                    || code > 0x10FFFF || (code >= 0xD800 && code <= 0xDFFF))
                    return false;
                appendUtf8(out, code);
            } else {
                return false;
            }
            return true;
        }

        std::string_view m_s;
        std::size_t m_i = 0;
    };

} // namespace

std::optional<std::map<std::string, std::string>> parseStrings(std::string_view xml)
{
    Reader reader(xml);
    std::string name;
    bool empty = false;
    if (!reader.skipMisc(true) || !reader.startTag(name, empty) || name != "plist" || empty)
        return std::nullopt;
    if (!reader.skipMisc(false) || !reader.startTag(name, empty) || name != "dict")
        return std::nullopt;

    std::map<std::string, std::string> strings;
    if (!empty) {
        std::set<std::string> keys;
        while (true) {
            if (!reader.skipMisc(false))
                return std::nullopt;
            if (reader.endTag("dict"))
                break;
            std::string key;
            if (!reader.startTag(name, empty) || name != "key")
                return std::nullopt;
            if (!empty && !reader.textUntilEnd("key", key))
                return std::nullopt;
            if (!keys.insert(key).second)
                return std::nullopt;
            if (!reader.skipMisc(false) || !reader.startTag(name, empty))
                return std::nullopt;
            if (name == "string") {
                std::string value;
                if (!empty && !reader.textUntilEnd("string", value))
                    return std::nullopt;
                strings.emplace(std::move(key), std::move(value));
            } else if (name == "key" || (!empty && !reader.skipContent(name))) {
                return std::nullopt;
            }
        }
    }
    if (!reader.skipMisc(false) || !reader.endTag("plist") || !reader.skipMisc(false) || !reader.atEnd())
        return std::nullopt;
    return strings;
}

std::optional<std::map<std::string, std::string>> readStrings(const std::filesystem::path& file)
{
    std::ifstream in(file, std::ios::binary);
    if (!in)
        return std::nullopt;
    std::ostringstream text;
    text << in.rdbuf();
    if (in.bad())
        return std::nullopt;
    return parseStrings(text.str());
}

} // namespace cuewright::PropertyList
