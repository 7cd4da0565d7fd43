#include "UpdateTestSupport.h"

#include "update/VantrelSelfUpdater.h"

#include <gtest/gtest.h>

#include <openssl/evp.h>

#include <chrono>
#include <csignal>
#include <spawn.h>
#include <sys/wait.h>
#include <thread>

extern char** environ;

using namespace cuewright;
using namespace cuewright::test;
using Kind = VantrelSelfUpdaterError::Kind;

namespace {

constexpr const char* identifier = "com.vantrel.cuewright";

std::string sha256(const std::string& bytes)
{
    unsigned char digest[EVP_MAX_MD_SIZE];
    unsigned int length = 0;
    EVP_Digest(bytes.data(), bytes.size(), digest, &length, EVP_sha256(), nullptr);
    std::string hex;
    char pair[3];
    for (unsigned int i = 0; i < length; ++i) {
        std::snprintf(pair, sizeof pair, "%02x", digest[i]);
        hex += pair;
    }
    return hex;
}

template <typename Predicate> bool eventually(Predicate predicate)
{
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(10);
    while (!predicate()) {
        if (std::chrono::steady_clock::now() > deadline)
            return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
    }
    return true;
}

std::optional<Kind> errorOf(const std::function<void()>& action)
{
    try {
        action();
    } catch (const VantrelSelfUpdaterError& error) {
        return error.kind;
    }
    return std::nullopt;
}

std::string versionIn(const fs::path& bundle)
{
    const std::string plist = readFile(bundle / "Contents" / "Info.plist");
    const auto at = plist.find("<key>CFBundleShortVersionString</key>\n\t<string>");
    return at == std::string::npos ? "" : plist.substr(at + 47, plist.find('<', at + 47) - at - 47);
}

} // namespace

TEST(VantrelSelfUpdaterError, describesEachCaseForTheUser)
{
    const std::pair<Kind, const char*> cases[] = {
        { Kind::download, "The update could not be downloaded." },
        { Kind::checksum, "The downloaded update did not match its published checksum." },
        { Kind::unpack, "The downloaded update could not be opened." },
        { Kind::notFound, "The downloaded package did not contain the app." },
        { Kind::badSignature, "The update was not signed by Vantrel Digital." },
        { Kind::wrongApp, "The downloaded update is for a different app or version." },
        { Kind::readOnlyLocation, "Move the app to Applications before updating." },
    };
    for (const auto& [kind, text] : cases)
        EXPECT_STREQ(VantrelSelfUpdaterError(kind).what(), text);
}

class Installer : public ::testing::Test {
protected:
    void SetUp() override
    {
        temporary = scratch.path() / "tmp dir";
        fs::create_directories(temporary);
        installed = scratch.path() / "Applications folder" / "Cuewright.app";
        marker = scratch.path() / "relaunched marker";
        makeBundle(installed, identifier, "1.0", "old", marker);
        startStandIn();
        environment.application = installed;
        environment.anchorCertificate = pki.caCertificate;
        environment.temporaryDirectory = temporary;
    }

    // A stand-in for the running program, so that the swap never waits for the test itself.
    void startStandIn()
    {
        char sleepProgram[] = "sleep";
        char seconds[] = "30";
        char* argv[] = { sleepProgram, seconds, nullptr };
        ASSERT_EQ(posix_spawnp(&standIn, "sleep", nullptr, nullptr, argv, environ), 0);
        environment.processIdentifier = standIn;
    }

    // Lets a launched swap run to its end, then stands in again for a further install.
    void finishSwap()
    {
        endStandIn();
        EXPECT_TRUE(eventually([&] { return !fs::exists(script()); }));
        startStandIn();
    }

    void TearDown() override
    {
        endStandIn();
        EXPECT_TRUE(eventually([&] { return !fs::exists(script()); })) << "the swap script did not finish";
    }

    void endStandIn()
    {
        if (standIn > 0) {
            kill(standIn, SIGKILL);
            waitpid(standIn, nullptr, 0);
            standIn = 0;
        }
    }

    fs::path work() const { return temporary / ("vantrel-update-" + std::to_string(environment.processIdentifier)); }
    fs::path script() const
    {
        return temporary / ("vantrel-update-" + std::to_string(environment.processIdentifier) + ".sh");
    }

    // A signed bundle in the staging folder that becomes the archive.
    fs::path stageBundle(const std::string& name = "Cuewright.app", const std::string& version = "2.0",
        const fs::path& key = {}, const fs::path& certificate = {})
    {
        const fs::path bundle = staging / name;
        makeBundle(bundle, identifier, version, "new", marker);
        signBundle(
            bundle, key.empty() ? pki.signerKey : key, certificate.empty() ? pki.signerCertificate : certificate);
        return bundle;
    }

    std::string publishStaging()
    {
        const fs::path zip = scratch.path() / "update.zip";
        zipFolder(zip, staging);
        return publish(readFile(zip));
    }

    std::string publish(const std::string& bytes)
    {
        server.route("/update.zip", { 200, bytes });
        return sha256(bytes);
    }

    void install(const std::optional<std::string>& sha = std::nullopt, const std::string& version = "2.0",
        const std::optional<fs::path>& reopening = std::nullopt)
    {
        VantrelSelfUpdater::install(
            version, server.url("/update.zip"), sha, session, Pki::team, "vantrel-update", reopening, environment);
    }

    const Pki& pki = Pki::shared();
    ScratchFolder scratch;
    fs::path staging = scratch.path() / "staging area";
    fs::path temporary, installed, marker;
    pid_t standIn = 0;
    HttpsServer server;
    UpdateSession session { pki.caCertificate };
    VantrelSelfUpdater::Environment environment;
};

TEST_F(Installer, swapsInTheNewVersionOnceTheOldProcessEndsAndRelaunchesWithTheDocument)
{
    stageBundle();
    publishStaging();
    // A backup left by an earlier failed run.
    writeFile(installed.native() + ".bak/Contents/stale", "x");
    const fs::path document = scratch.path() / "My Captions.vantrelcaption";
    std::vector<VantrelSelfUpdater::InstallStep> steps;
    environment.progress = [&](const VantrelSelfUpdater::InstallProgress& progress) {
        if (steps.empty() || steps.back() != progress.step)
            steps.push_back(progress.step);
    };

    install(std::nullopt, "2.0", document);

    using Step = VantrelSelfUpdater::InstallStep;
    EXPECT_EQ(
        steps, (std::vector { Step::checkLocation, Step::download, Step::unpack, Step::verify, Step::launchSwap }));
    ASSERT_TRUE(fs::exists(script()));
    std::this_thread::sleep_for(std::chrono::milliseconds(300));
    EXPECT_EQ(versionIn(installed), "1.0") << "nothing may change while the old process runs";

    endStandIn();
    ASSERT_TRUE(eventually([&] { return !fs::exists(script()) && fs::exists(marker); }));
    EXPECT_TRUE(eventually([&] { return readFile(marker) == "new " + document.native(); })) << readFile(marker);
    EXPECT_EQ(versionIn(installed), "2.0");
    EXPECT_TRUE(fs::exists(installed / "Contents" / "_CodeSignature" / "CodeSignature.p7s"));
    EXPECT_FALSE(fs::exists(installed.native() + ".bak"));
    EXPECT_FALSE(fs::exists(work()));
}

TEST_F(Installer, swapScriptRestoresAndRelaunchesTheOldVersionWhenTheCopyFails)
{
    const std::string text = VantrelSelfUpdater::swapScript(environment.processIdentifier, std::nullopt);
    EXPECT_TRUE(text.starts_with("#!/bin/sh\n"));
    EXPECT_NE(text.find("\nwhile kill -0 " + std::to_string(standIn) + " 2>/dev/null; do sleep 0.2; done\n"),
        std::string::npos);
    EXPECT_NE(text.back(), '\n');

    writeFile(script(), text);
    fs::create_directories(work() / "unpacked");
    const fs::path missing = work() / "unpacked" / "Cuewright.app"; // cp -a fails: there is nothing to copy
    endStandIn();
    runShell("/bin/sh " + shellQuoted(script()) + " " + shellQuoted(missing) + " " + shellQuoted(installed));

    EXPECT_EQ(versionIn(installed), "1.0");
    EXPECT_FALSE(fs::exists(installed.native() + ".bak"));
    EXPECT_FALSE(fs::exists(work()));
    EXPECT_TRUE(eventually([&] { return readFile(marker) == "old "; })) << readFile(marker);
}

TEST_F(Installer, checksumIsComparedInLowerCaseAndSkippedWhenEmpty)
{
    stageBundle();
    const std::string digest = publishStaging();
    std::string upper = digest;
    for (char& c : upper)
        c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));

    EXPECT_EQ(errorOf([&] { install(std::string(64, '0')); }), Kind::checksum);
    EXPECT_FALSE(fs::exists(script()));
    EXPECT_EQ(errorOf([&] { install(upper); }), std::nullopt);
    finishSwap();
    EXPECT_EQ(errorOf([&] { install(std::string()); }), std::nullopt);
    finishSwap();
    EXPECT_EQ(errorOf([&] { install(); }), std::nullopt);
}

TEST_F(Installer, downloadFailuresAreReportedBeforeAnythingIsUnpacked)
{
    server.route("/update.zip", { 404, "missing" });
    EXPECT_EQ(errorOf([&] { install(); }), Kind::download);
    EXPECT_FALSE(fs::exists(work() / "unpacked"));

    // A transfer that can't happen passes the network's own error.
    session = UpdateSession {};
    EXPECT_THROW(install(), UpdateTransferError);
}

TEST_F(Installer, refusesAReadOnlyOrUnknownLocationBeforeDownloading)
{
    environment.application = scratch.path() / "AppTranslocation" / "x" / "Cuewright.app";
    makeBundle(environment.application, identifier, "1.0", "old", marker);
    EXPECT_EQ(errorOf([&] { install(); }), Kind::readOnlyLocation);
    // The test program runs from no bundle at all.
    environment.application.clear();
    EXPECT_EQ(errorOf([&] { install(); }), Kind::readOnlyLocation);
    EXPECT_TRUE(server.requests().empty());
}

TEST_F(Installer, archivesThatReachOutsideTheWorkFolderAreRefused)
{
    const fs::path bundle = stageBundle();
    std::vector<ZipEntry> app;
    for (const auto& entry : fs::recursive_directory_iterator(bundle)) {
        if (entry.is_regular_file())
            app.push_back({ ZipEntry::Type::file, entry.path().lexically_relative(staging).generic_string(),
                readFile(entry.path()) });
    }
    fs::create_directories(temporary / "escaped");
    const std::vector<std::vector<ZipEntry>> attacks = {
        { { ZipEntry::Type::file, "../escaped.txt", "x" } },
        { { ZipEntry::Type::file, "Cuewright.app/../../escaped.txt", "x" } },
        { { ZipEntry::Type::file, (temporary / "absolute.txt").native(), "x" } },
        { { ZipEntry::Type::symlink, "Cuewright.app/link", "../../../escaped" },
            { ZipEntry::Type::file, "Cuewright.app/link/evil.txt", "x" } },
        { { ZipEntry::Type::symlink, "Cuewright.app/abs", temporary.native() } },
        // Harmless in words, but b resolves through a to the folder above.
        { { ZipEntry::Type::symlink, "a", "." }, { ZipEntry::Type::symlink, "b", "a/.." } },
    };
    for (const auto& attack : attacks) {
        std::vector<ZipEntry> entries = app;
        entries.insert(entries.end(), attack.begin(), attack.end());
        const fs::path zip = scratch.path() / "attack.zip";
        writeZip(zip, entries);
        publish(readFile(zip));
        EXPECT_EQ(errorOf([&] { install(); }), Kind::unpack) << attack.back().name;
    }
    EXPECT_FALSE(fs::exists(work() / "escaped.txt"));
    EXPECT_FALSE(fs::exists(temporary / "escaped.txt"));
    EXPECT_FALSE(fs::exists(temporary / "absolute.txt"));
    EXPECT_FALSE(fs::exists(temporary / "escaped" / "evil.txt"));
    EXPECT_FALSE(fs::exists(script()));

    publish("this is not a ZIP file");
    EXPECT_EQ(errorOf([&] { install(); }), Kind::unpack);
}

TEST_F(Installer, takesTheFirstAppOfTheTopLevel)
{
    writeFile(staging / "Read Me.txt", "hello");
    writeFile(staging / "Nested" / "Cuewright.app" / "Contents" / "Info.plist", "<plist/>");
    publishStaging();
    EXPECT_EQ(errorOf([&] { install(); }), Kind::notFound);

    // Only the first in name order is looked at: a good second one doesn't save a bad first.
    stageBundle("A.app", "2.0", pki.rogueKey, pki.rogueCertificate);
    stageBundle("B.app");
    publishStaging();
    EXPECT_EQ(errorOf([&] { install(); }), Kind::badSignature);

    fs::remove_all(staging);
    stageBundle("A.app");
    stageBundle("B.app", "2.0", pki.rogueKey, pki.rogueCertificate);
    publishStaging();
    EXPECT_EQ(errorOf([&] { install(); }), std::nullopt);
}

TEST_F(Installer, refusesAWellSignedBundleOfAnotherVersion)
{
    stageBundle("Cuewright.app", "2.0.1");
    publishStaging();
    EXPECT_EQ(errorOf([&] { install(std::nullopt, "2.0"); }), Kind::wrongApp);
    EXPECT_FALSE(fs::exists(script()));
    EXPECT_EQ(versionIn(installed), "1.0");
}

TEST_F(Installer, verifySignatureRefusesEveryFlaw)
{
    const auto refused = [&](const fs::path& bundle) {
        return errorOf([&] { VantrelSelfUpdater::verifySignature(bundle, Pki::team, environment); })
            == Kind::badSignature;
    };
    const fs::path good = stageBundle("Good.app");
    // Signing is slow; the flawed copies start from one signed bundle.
    const auto copyOf = [&](const fs::path& bundle, const std::string& name) {
        fs::copy(bundle, staging / name, fs::copy_options::recursive | fs::copy_options::copy_symlinks);
        return staging / name;
    };
    EXPECT_EQ(errorOf([&] { VantrelSelfUpdater::verifySignature(good, Pki::team, environment); }), std::nullopt);
    EXPECT_TRUE(errorOf([&] { VantrelSelfUpdater::verifySignature(good, "OTHERTEAM0", environment); }));

    EXPECT_TRUE(refused(stageBundle("Rogue.app", "2.0", pki.rogueKey, pki.rogueCertificate)));
    EXPECT_TRUE(refused(stageBundle("Other team.app", "2.0", pki.otherTeamKey, pki.otherTeamCertificate)));

    const fs::path changed = copyOf(good, "Changed.app");
    writeFile(changed / "Contents" / "share" / "cuewright" / "read me.txt", "tampered\n");
    EXPECT_TRUE(refused(changed));

    const fs::path added = copyOf(good, "Added.app");
    writeFile(added / "Contents" / "bin" / "helper", "#!/bin/sh\n");
    EXPECT_TRUE(refused(added));

    const fs::path removed = copyOf(good, "Removed.app");
    fs::remove(removed / "Contents" / "share" / "cuewright" / "read me.txt");
    EXPECT_TRUE(refused(removed));

    const fs::path relinked = stageBundle("Relinked.app");
    fs::create_symlink("../Info.plist", relinked / "Contents" / "bin" / "link");
    signBundle(relinked, pki.signerKey, pki.signerCertificate);
    EXPECT_FALSE(refused(relinked));
    fs::remove(relinked / "Contents" / "bin" / "link");
    fs::create_symlink("../../../Good.app", relinked / "Contents" / "bin" / "link");
    EXPECT_TRUE(refused(relinked));

    const fs::path resigned = copyOf(good, "Resigned.app");
    writeFile(resigned / "Contents" / "_CodeSignature" / "CodeResources",
        readFile(good / "Contents" / "_CodeSignature" / "CodeResources") + "F " + std::string(64, '0') + " x\n");
    EXPECT_TRUE(refused(resigned));

    const fs::path unsigned_ = staging / "Unsigned.app";
    makeBundle(unsigned_, identifier, "2.0", "new", marker);
    EXPECT_TRUE(refused(unsigned_));

    const fs::path otherApp = staging / "Other.app";
    makeBundle(otherApp, "com.example.other", "2.0", "new", marker);
    signBundle(otherApp, pki.signerKey, pki.signerCertificate);
    EXPECT_TRUE(refused(otherApp));

    environment.anchorCertificate = scratch.path() / "no anchor.pem";
    EXPECT_TRUE(refused(good));
}

TEST_F(Installer, verifyIdentityWantsTheSameAppAndExactlyThePromisedVersion)
{
    const auto identity = [&](const fs::path& bundle, const std::string& version) {
        return errorOf([&] { VantrelSelfUpdater::verifyIdentity(bundle, version, environment); });
    };
    const fs::path bundle = staging / "Cuewright.app";
    makeBundle(bundle, identifier, "2.0", "new", marker);
    EXPECT_EQ(identity(bundle, "2.0"), std::nullopt);
    EXPECT_EQ(identity(bundle, "2.0.0"), Kind::wrongApp);
    EXPECT_EQ(identity(bundle, "2"), Kind::wrongApp);

    makeBundle(bundle, "com.example.other", "2.0", "new", marker);
    EXPECT_EQ(identity(bundle, "2.0"), Kind::wrongApp);

    writeFile(bundle / "Contents" / "Info.plist",
        "<plist><dict><key>CFBundleIdentifier</key><string>com.vantrel.cuewright</string>"
        "<key>CFBundleShortVersionString</key><real>2.0</real></dict></plist>");
    EXPECT_EQ(identity(bundle, "2.0"), Kind::wrongApp);
    writeFile(bundle / "Contents" / "Info.plist", "<plist><dict>");
    EXPECT_EQ(identity(bundle, "2.0"), Kind::wrongApp);
}
