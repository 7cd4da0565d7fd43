#include "update/Updater.h"

#include "core/UnicodeText.h"
#include "update/HttpTransfer.h"

#include <curl/curl.h>
#include <nlohmann/json.hpp>
#include <unicode/uchar.h>

#include <charconv>
#include <cstdint>
#include <memory>
#include <vector>

namespace cuewright::Updater {

namespace {

    constexpr std::size_t maximumManifestBytes = 1 << 20;

    bool isNumberCharacter(char32_t c)
    {
        return u_getIntPropertyValue(static_cast<UChar32>(c), UCHAR_NUMERIC_TYPE) != U_NT_NONE;
    }

    // Pieces that are numbers but not ASCII decimals within 64 bits are left out, so the ones behind move up.
    std::optional<std::vector<std::uint64_t>> versionNumbers(std::string_view version)
    {
        std::vector<std::uint64_t> numbers;
        std::size_t begin = 0;
        while (true) {
            const std::size_t dot = version.find('.', begin);
            const std::string_view piece
                = version.substr(begin, dot == std::string_view::npos ? std::string_view::npos : dot - begin);
            if (piece.empty())
                return std::nullopt;
            for (std::size_t pos = 0; pos < piece.size();) {
                if (!isNumberCharacter(UnicodeText::decodeNext(piece, pos)))
                    return std::nullopt;
            }
            std::int64_t value = 0;
            const auto [end, error] = std::from_chars(piece.data(), piece.data() + piece.size(), value);
            if (error == std::errc() && end == piece.data() + piece.size())
                numbers.push_back(static_cast<std::uint64_t>(value));
            if (dot == std::string_view::npos)
                return numbers;
            begin = dot + 1;
        }
    }

    bool hasHttpsSchemeAndHost(const std::string& url)
    {
        // The scheme is compared as written: curl would lower-case it.
        if (!url.starts_with("https://"))
            return false;
        // curl would take "https:///x" as the host x.
        const std::string_view authority = std::string_view(url).substr(8);
        if (authority.empty() || authority.front() == '/' || authority.front() == '?' || authority.front() == '#')
            return false;
        std::unique_ptr<CURLU, decltype(&curl_url_cleanup)> parsed(curl_url(), curl_url_cleanup);
        if (!parsed || curl_url_set(parsed.get(), CURLUPART_URL, url.c_str(), 0) != CURLUE_OK)
            return false;
        char* host = nullptr;
        if (curl_url_get(parsed.get(), CURLUPART_HOST, &host, 0) != CURLUE_OK || !host)
            return false;
        const bool hasHost = host[0] != '\0';
        curl_free(host);
        return hasHost;
    }

} // namespace

std::string manifestURL()
{
    return CUEWRIGHT_UPDATE_MANIFEST_URL;
}

bool isNewer(std::string_view candidate, std::string_view current)
{
    const auto a = versionNumbers(candidate);
    const auto b = versionNumbers(current);
    if (!a || !b)
        return false;
    const std::size_t length = std::max(a->size(), b->size());
    for (std::size_t i = 0; i < length; ++i) {
        const std::uint64_t x = i < a->size() ? (*a)[i] : 0;
        const std::uint64_t y = i < b->size() ? (*b)[i] : 0;
        if (x != y)
            return x > y;
    }
    return false;
}

std::optional<UpdateInfo> updateInfo(std::string_view manifestBody, std::string_view currentVersion)
{
    // nlohmann takes a NUL byte for the end of the text and would ignore whatever follows it.
    if (manifestBody.find('\0') != std::string_view::npos)
        return std::nullopt;
    const auto json = nlohmann::json::parse(manifestBody, nullptr, false);
    if (json.is_discarded() || !json.is_object())
        return std::nullopt;
    const auto version = json.find("version");
    const auto url = json.find("url");
    if (version == json.end() || !version->is_string() || url == json.end() || !url->is_string())
        return std::nullopt;
    UpdateInfo info;
    info.version = version->get<std::string>();
    info.downloadURL = url->get<std::string>();
    if (!hasHttpsSchemeAndHost(info.downloadURL) || !isNewer(info.version, currentVersion))
        return std::nullopt;
    if (const auto notes = json.find("notes"); notes != json.end() && notes->is_string())
        info.notes = notes->get<std::string>();
    if (const auto sha = json.find("sha256"); sha != json.end() && sha->is_string())
        info.sha256 = sha->get<std::string>();
    return info;
}

std::optional<UpdateInfo> check(
    const std::string& manifest, std::string_view currentVersion, const UpdateSession& session)
{
    try {
        const auto response = HttpTransfer::get(manifest, session, std::chrono::seconds(10), maximumManifestBytes);
        if (response.status != 200)
            return std::nullopt;
        return updateInfo(response.body, currentVersion);
    } catch (const std::exception&) {
        return std::nullopt;
    }
}

} // namespace cuewright::Updater
