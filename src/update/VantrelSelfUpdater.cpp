#include "update/VantrelSelfUpdater.h"

#include "update/AppBundle.h"
#include "update/BundleSignature.h"
#include "update/HttpTransfer.h"
#include "update/PropertyList.h"
#include "update/UpdateArchive.h"

#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <sys/statvfs.h>
#include <unistd.h>

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <vector>

extern char** environ;

namespace cuewright {

namespace fs = std::filesystem;

VantrelSelfUpdaterError::VantrelSelfUpdaterError(Kind kind)
    : std::runtime_error(description(kind))
    , kind(kind)
{
}

const char* VantrelSelfUpdaterError::description(Kind kind)
{
    switch (kind) {
    case Kind::download:
        return "The update could not be downloaded.";
    case Kind::checksum:
        return "The downloaded update did not match its published checksum.";
    case Kind::unpack:
        return "The downloaded update could not be opened.";
    case Kind::notFound:
        return "The downloaded package did not contain the app.";
    case Kind::badSignature:
        return "The update was not signed by Vantrel Digital.";
    case Kind::wrongApp:
        return "The downloaded update is for a different app or version.";
    case Kind::readOnlyLocation:
        return "Move the app to Applications before updating.";
    }
    return "";
}

namespace VantrelSelfUpdater {

    namespace {

        using Kind = VantrelSelfUpdaterError::Kind;

        fs::path installedApplication(const Environment& environment)
        {
            if (!environment.application.empty())
                return fs::absolute(environment.application);
            return AppBundle::running().value_or(fs::path());
        }

        fs::path anchorCertificate(const Environment& environment)
        {
            const fs::path anchor = environment.anchorCertificate.empty()
                ? fs::path(CUEWRIGHT_UPDATE_ANCHOR_CERTIFICATE)
                : environment.anchorCertificate;
            return anchor.is_relative() ? installedApplication(environment) / anchor : anchor;
        }

        fs::path temporaryDirectory(const Environment& environment)
        {
            return fs::absolute(
                environment.temporaryDirectory.empty() ? fs::temp_directory_path() : environment.temporaryDirectory);
        }

        int processIdentifier(const Environment& environment)
        {
            return environment.processIdentifier > 0 ? environment.processIdentifier : static_cast<int>(getpid());
        }

        void report(const Environment& environment, InstallStep step)
        {
            if (environment.progress)
                environment.progress({ step, 0, std::nullopt });
        }

        bool isReadOnlyLocation(const fs::path& application)
        {
            struct statvfs volume { };
            if (statvfs(application.c_str(), &volume) == 0 && (volume.f_flag & ST_RDONLY))
                return true;
            if (application.native().find("/AppTranslocation/") != std::string::npos)
                return true;
            return access(application.parent_path().c_str(), W_OK) != 0;
        }

        [[noreturn]] void throwErrno(const std::string& what, const fs::path& path, int error)
        {
            throw fs::filesystem_error(what, path, std::error_code(error, std::generic_category()));
        }

        void writeAtomically(const fs::path& target, const std::string& text)
        {
            std::string temporary = target.native() + ".XXXXXX";
            const int fd = mkstemp(temporary.data());
            if (fd < 0)
                throwErrno("The update could not be prepared", target, errno);
            std::size_t written = 0;
            while (written < text.size()) {
                const ssize_t n = ::write(fd, text.data() + written, text.size() - written);
                if (n < 0 && errno == EINTR)
                    continue;
                if (n <= 0) {
                    const int error = errno;
                    ::close(fd);
                    ::unlink(temporary.c_str());
                    throwErrno("The update could not be prepared", target, error);
                }
                written += static_cast<std::size_t>(n);
            }
            if (::fsync(fd) != 0 || ::close(fd) != 0 || ::rename(temporary.c_str(), target.c_str()) != 0) {
                const int error = errno;
                ::unlink(temporary.c_str());
                throwErrno("The update could not be prepared", target, error);
            }
        }

        void launchSwap(const fs::path& newApp, const fs::path& destination, const std::string& temporaryName,
            const std::optional<fs::path>& reopening, const Environment& environment)
        {
            const int pid = processIdentifier(environment);
            const fs::path script
                = temporaryDirectory(environment) / (temporaryName + "-" + std::to_string(pid) + ".sh");
            writeAtomically(script, swapScript(pid, reopening));

            std::vector<std::string> arguments { "/bin/sh", script.native(), newApp.native(), destination.native() };
            if (reopening)
                arguments.push_back(fs::absolute(*reopening).native());
            std::vector<char*> argv;
            for (auto& argument : arguments)
                argv.push_back(argument.data());
            argv.push_back(nullptr);

            // Its own session and default signals, so that it outlives us and the end of our terminal.
            posix_spawnattr_t attributes;
            posix_spawn_file_actions_t actions;
            posix_spawnattr_init(&attributes);
            posix_spawn_file_actions_init(&actions);
            sigset_t none;
            sigset_t all;
            sigemptyset(&none);
            sigfillset(&all);
            posix_spawnattr_setsigmask(&attributes, &none);
            posix_spawnattr_setsigdefault(&attributes, &all);
            posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSID | POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF);
            for (int fd = 0; fd <= 2; ++fd)
                posix_spawn_file_actions_addopen(&actions, fd, "/dev/null", fd == 0 ? O_RDONLY : O_WRONLY, 0);
            pid_t child = 0;
            const int error = posix_spawn(&child, "/bin/sh", &actions, &attributes, argv.data(), environ);
            posix_spawn_file_actions_destroy(&actions);
            posix_spawnattr_destroy(&attributes);
            if (error != 0)
                throwErrno("The update could not be started", script, error);
        }

    } // namespace

    std::string defaultTeamID()
    {
        return CUEWRIGHT_UPDATE_TEAM_ID;
    }

    std::string relaunchLine(const std::optional<fs::path>& reopening)
    {
        return reopening ? R"(setsid -f "$2/Contents/bin/cuewright" "$3" </dev/null >/dev/null 2>&1)"
                         : R"(setsid -f "$2/Contents/bin/cuewright" </dev/null >/dev/null 2>&1)";
    }

    std::string swapScript(int processIdentifier, const std::optional<fs::path>& reopening)
    {
        return "#!/bin/sh\n"
               "update_root=\"$(dirname \"$(dirname \"$1\")\")\"\n"
               "while kill -0 "
            + std::to_string(processIdentifier)
            + " 2>/dev/null; do sleep 0.2; done\n"
              "if rm -rf \"$2.bak\" && mv \"$2\" \"$2.bak\" 2>/dev/null && cp -a \"$1\" \"$2\" 2>/dev/null; then\n"
              "  rm -rf \"$2.bak\"\n"
              "else\n"
              "  rm -rf \"$2\"\n"
              "  [ -d \"$2.bak\" ] && mv \"$2.bak\" \"$2\"\n"
              "fi\n"
            + relaunchLine(reopening) + "\nrm -rf \"$update_root\" \"$0\"";
    }

    void verifySignature(const fs::path& app, const std::string& teamID, const Environment& environment)
    {
        if (AppBundle::identifier(app) != AppBundle::identifier(installedApplication(environment))
            || !BundleSignature::isValid(app, anchorCertificate(environment), teamID))
            throw VantrelSelfUpdaterError(Kind::badSignature);
    }

    void verifyIdentity(const fs::path& app, const std::string& expectedVersion, const Environment& environment)
    {
        const auto strings = PropertyList::readStrings(app / "Contents" / "Info.plist");
        if (!strings)
            throw VantrelSelfUpdaterError(Kind::wrongApp);
        const auto value = [&](const char* key) -> std::optional<std::string> {
            const auto found = strings->find(key);
            return found == strings->end() ? std::nullopt : std::optional(found->second);
        };
        if (value("CFBundleIdentifier") != AppBundle::identifier(installedApplication(environment))
            || value("CFBundleShortVersionString") != expectedVersion)
            throw VantrelSelfUpdaterError(Kind::wrongApp);
    }

    void install(const std::string& version, const std::string& downloadURL, const std::optional<std::string>& sha256,
        const UpdateSession& session, const std::string& teamID, const std::string& temporaryName,
        const std::optional<fs::path>& reopening, const Environment& environment)
    {
        report(environment, InstallStep::checkLocation);
        const fs::path application = installedApplication(environment);
        if (application.empty() || isReadOnlyLocation(application))
            throw VantrelSelfUpdaterError(Kind::readOnlyLocation);

        const fs::path work
            = temporaryDirectory(environment) / (temporaryName + "-" + std::to_string(processIdentifier(environment)));
        std::error_code ignored;
        fs::remove_all(work, ignored);
        fs::create_directories(work);

        report(environment, InstallStep::download);
        const fs::path archive = work / "update.zip";
        HttpTransfer::ProgressCallback progress;
        if (environment.progress) {
            progress = [&](std::uint64_t received, std::optional<std::uint64_t> expected) {
                environment.progress({ InstallStep::download, received, expected });
            };
        }
        if (HttpTransfer::download(downloadURL, archive, session, progress) != 200)
            throw VantrelSelfUpdaterError(Kind::download);

        if (sha256 && !sha256->empty()) {
            report(environment, InstallStep::checksum);
            std::string expected = *sha256;
            std::transform(expected.begin(), expected.end(), expected.begin(),
                [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
            if (UpdateArchive::sha256Hex(archive) != expected)
                throw VantrelSelfUpdaterError(Kind::checksum);
        }

        report(environment, InstallStep::unpack);
        const fs::path unpacked = work / "unpacked";
        if (!UpdateArchive::unpack(archive, unpacked))
            throw VantrelSelfUpdaterError(Kind::unpack);
        const auto newApp = UpdateArchive::firstApp(unpacked);
        if (!newApp)
            throw VantrelSelfUpdaterError(Kind::notFound);

        report(environment, InstallStep::verify);
        verifySignature(*newApp, teamID, environment);
        verifyIdentity(*newApp, version, environment);

        report(environment, InstallStep::launchSwap);
        launchSwap(*newApp, application, temporaryName, reopening, environment);
    }

} // namespace VantrelSelfUpdater

} // namespace cuewright
