#pragma once

#include "update/UpdateSession.h"

#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <stdexcept>
#include <string>

namespace cuewright {

class VantrelSelfUpdaterError : public std::runtime_error {
public:
    enum class Kind { download, checksum, unpack, notFound, badSignature, wrongApp, readOnlyLocation };

    explicit VantrelSelfUpdaterError(Kind kind);
    static const char* description(Kind kind);

    Kind kind;
};

// Replaces the installed application bundle with a downloaded, verified one.
//
//     VantrelSelfUpdater::install(info.version, info.downloadURL, info.sha256, {},
//         VantrelSelfUpdater::defaultTeamID(), "vantrel-update", std::nullopt);
//     quit(); // the swap script waits for this process to end
//
// install() blocks (download, unpack, verification): run it off the UI thread. It holds no shared state.
// Until it returns the installed bundle is untouched; when it returns without throwing, a detached
// script is waiting for the process to end, then swaps the bundles and starts the result.
namespace VantrelSelfUpdater {

    // The organizational unit the publisher's signing certificate names.
    std::string defaultTeamID();

    enum class InstallStep { checkLocation, download, checksum, unpack, verify, launchSwap };

    struct InstallProgress {
        InstallStep step = InstallStep::checkLocation;
        std::uint64_t bytesReceived = 0; // during the download
        std::optional<std::uint64_t> bytesExpected;
    };

    // Whom and where install works on; every empty field means the running program's own.
    struct Environment {
        // The installed bundle to replace; default: the bundle of the running program.
        std::filesystem::path application;
        // PEM certificate authority a signature must chain to; default: the build's, a relative path
        // being taken inside `application`.
        std::filesystem::path anchorCertificate;
        // Default: the user's temporary directory ($TMPDIR, else /tmp).
        std::filesystem::path temporaryDirectory;
        // The process the swap waits for, which also names the work folder; default: this process.
        int processIdentifier = 0;
        // Called on the installing thread as each step begins and as bytes arrive.
        std::function<void(const InstallProgress&)> progress;
    };

    // Downloads `downloadURL` into <temporaryDirectory>/<temporaryName>-<pid>/, checks `sha256` when it
    // is given and non-empty (in any case), unpacks the ZIP, takes its first top-level *.app, verifies
    // its signature against `teamID` and that it is `version` of the same application, and starts the
    // swap script <temporaryName>-<pid>.sh. `reopening` is a document for the new version to open.
    // Throws VantrelSelfUpdaterError, UpdateTransferError, or std::filesystem::filesystem_error.
    void install(const std::string& version, const std::string& downloadURL, const std::optional<std::string>& sha256,
        const UpdateSession& session, const std::string& teamID, const std::string& temporaryName,
        const std::optional<std::filesystem::path>& reopening, const Environment& environment = {});

    // Throws badSignature unless `app` has the installed application's identifier, a detached CMS
    // signature of Contents/_CodeSignature/CodeResources that chains to the anchor and whose signer's
    // subject OU is `teamID`, and exactly the files that CodeResources lists, unchanged.
    void verifySignature(
        const std::filesystem::path& app, const std::string& teamID, const Environment& environment = {});

    // Throws wrongApp unless `app`'s Info.plist names the installed application's identifier and exactly
    // `expectedVersion`.
    void verifyIdentity(
        const std::filesystem::path& app, const std::string& expectedVersion, const Environment& environment = {});

    // The script's relaunch line: starts "$2/Contents/bin/cuewright" detached, with "$3" when reopening.
    std::string relaunchLine(const std::optional<std::filesystem::path>& reopening);

    // The whole swap script for the process `processIdentifier`; run as
    // `/bin/sh script newApp destination [document]`.
    std::string swapScript(int processIdentifier, const std::optional<std::filesystem::path>& reopening);

} // namespace VantrelSelfUpdater

} // namespace cuewright
