#pragma once

#include "update/UpdateInfo.h"
#include "update/UpdateSession.h"

#include <optional>
#include <string>
#include <string_view>

// Asks the publisher's manifest whether a newer version exists.
//
//     if (auto info = Updater::check(Updater::manifestURL(), AppBundle::version()))
//         offer(*info);
//
// check() blocks for up to ten seconds: call it off the UI thread. Nothing here holds state.
namespace cuewright::Updater {

// The manifest URL this build was configured with.
std::string manifestURL();

// True only when both are dotted decimal versions and `candidate` is strictly higher; a missing
// position counts as 0, so 1.2 equals 1.2.0 and 1.10 is newer than 1.9.
bool isNewer(std::string_view candidate, std::string_view current);

// The offer a manifest body makes to `currentVersion`, or nothing when it is malformed, its URL isn't
// https with a host, or its version isn't newer.
std::optional<UpdateInfo> updateInfo(std::string_view manifestBody, std::string_view currentVersion);

// Fetches the manifest (no cache, 10-second timeout, status 200 only). Never throws: every failure
// gives nothing, just like an up-to-date answer.
std::optional<UpdateInfo> check(
    const std::string& manifest, std::string_view currentVersion, const UpdateSession& session = {});

} // namespace cuewright::Updater
