#pragma once

#include "update/UpdateInfo.h"
#include "update/VantrelSelfUpdater.h"

// The application's front to the installer: its team, its work-folder name, no document to reopen.
namespace cuewright::SelfUpdater {

inline constexpr const char* temporaryName = "vantrel-update";

inline std::string teamID()
{
    return VantrelSelfUpdater::defaultTeamID();
}

// Blocks; throws what VantrelSelfUpdater::install throws.
inline void install(
    const UpdateInfo& info, const UpdateSession& session = {}, const VantrelSelfUpdater::Environment& environment = {})
{
    VantrelSelfUpdater::install(
        info.version, info.downloadURL, info.sha256, session, teamID(), temporaryName, std::nullopt, environment);
}

} // namespace cuewright::SelfUpdater
