#pragma once

#include "update/UpdateSession.h"

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>

// libcurl behind two calls; internal to the update layer. Both throw UpdateTransferError when the
// transfer fails and otherwise give the final HTTP status, whatever it is.
namespace cuewright::HttpTransfer {

struct Response {
    long status = 0;
    std::string body;
};

// Fetches bypassing caches; a body beyond `maximumBytes` counts as a transfer failure.
Response get(
    const std::string& url, const UpdateSession& session, std::chrono::seconds timeout, std::size_t maximumBytes);

using ProgressCallback = std::function<void(std::uint64_t received, std::optional<std::uint64_t> expected)>;

// Streams the body into `destination` only when the status is 200; other statuses stop at the headers.
long download(const std::string& url, const std::filesystem::path& destination, const UpdateSession& session,
    const ProgressCallback& progress);

} // namespace cuewright::HttpTransfer
