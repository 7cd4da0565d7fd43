#include "core/CaptionProjectFile.h"

#include <algorithm>
#include <cctype>

namespace cuewright::CaptionProjectFile {

namespace {

    char asciiLower(char c)
    {
        return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
    }

    bool equalsIgnoringCase(std::string_view a, std::string_view b)
    {
        return a.size() == b.size()
            && std::equal(a.begin(), a.end(), b.begin(), [](char x, char y) { return asciiLower(x) == asciiLower(y); });
    }

    // The length of an RFC 3986 scheme followed by ':' at the start, or 0.
    std::size_t schemeLength(std::string_view text)
    {
        if (text.empty() || !std::isalpha(static_cast<unsigned char>(text[0])))
            return 0;
        for (std::size_t i = 1; i < text.size(); ++i) {
            const auto c = static_cast<unsigned char>(text[i]);
            if (c == ':')
                return i >= 2 ? i : 0; // one letter would be a drive, not a scheme
            if (!std::isalnum(c) && c != '+' && c != '-' && c != '.')
                return 0;
        }
        return 0;
    }

    int hexValue(char c)
    {
        if (c >= '0' && c <= '9')
            return c - '0';
        c = asciiLower(c);
        if (c >= 'a' && c <= 'f')
            return c - 'a' + 10;
        return -1;
    }

    std::string percentDecoded(std::string_view text)
    {
        std::string result;
        result.reserve(text.size());
        for (std::size_t i = 0; i < text.size(); ++i) {
            if (text[i] == '%' && i + 2 < text.size()) {
                const int high = hexValue(text[i + 1]);
                const int low = hexValue(text[i + 2]);
                if (high >= 0 && low >= 0) {
                    result += static_cast<char>(high * 16 + low);
                    i += 2;
                    continue;
                }
            }
            result += text[i];
        }
        return result;
    }

} // namespace

std::optional<std::string> localPath(std::string_view location)
{
    const std::size_t scheme = schemeLength(location);
    if (scheme == 0)
        return std::string(location);
    if (!equalsIgnoringCase(location.substr(0, scheme), "file"))
        return std::nullopt;
    std::string_view rest = location.substr(scheme + 1);
    if (rest.starts_with("//")) {
        rest.remove_prefix(2);
        const auto slash = rest.find('/');
        rest = slash == std::string_view::npos ? std::string_view("/") : rest.substr(slash); // host dropped
    }
    rest = rest.substr(0, rest.find_first_of("?#"));
    return percentDecoded(rest);
}

std::string_view lastPathComponent(std::string_view path)
{
    while (path.size() > 1 && path.back() == '/')
        path.remove_suffix(1);
    const auto slash = path.rfind('/');
    if (slash == std::string_view::npos || path.size() == 1)
        return path;
    return path.substr(slash + 1);
}

std::string_view pathExtension(std::string_view path)
{
    const std::string_view name = lastPathComponent(path);
    const auto dot = name.rfind('.');
    if (dot == std::string_view::npos)
        return {};
    return name.substr(dot + 1);
}

bool isProject(std::string_view location)
{
    const auto path = localPath(location);
    return path && equalsIgnoringCase(pathExtension(*path), fileExtension);
}

std::string normalizedFilename(std::string_view name)
{
    constexpr std::size_t suffixLength = fileExtension.size() + 1;
    auto endsWithSuffix = [](std::string_view text) {
        return text.size() >= suffixLength && text[text.size() - suffixLength] == '.'
            && equalsIgnoringCase(text.substr(text.size() - fileExtension.size()), fileExtension);
    };
    while (endsWithSuffix(name))
        name.remove_suffix(suffixLength);
    std::string result = name.empty() ? std::string("Captions") : std::string(name);
    result += '.';
    result += fileExtension;
    return result;
}

} // namespace cuewright::CaptionProjectFile
