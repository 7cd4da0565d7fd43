#pragma once

#include <atomic>
#include <filesystem>
#include <map>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

// Fixtures for the update tests: a scratch folder with spaces in its name, a certificate authority
// made at run time, an HTTPS server on 127.0.0.1, signed bundles and hand-made ZIP files.
namespace cuewright::test {

namespace fs = std::filesystem;

class ScratchFolder {
public:
    ScratchFolder();
    ~ScratchFolder();
    ScratchFolder(const ScratchFolder&) = delete;
    ScratchFolder& operator=(const ScratchFolder&) = delete;
    const fs::path& path() const { return m_path; }

private:
    fs::path m_path;
};

// Runs a command through bash; throws with its output when it fails.
void runShell(const std::string& command);
std::string shellQuoted(const fs::path& path);
void writeFile(const fs::path& path, const std::string& text);
std::string readFile(const fs::path& path);

// Keys and certificates made once per process: a publisher CA with signers of two teams, a server
// certificate for 127.0.0.1, and an unrelated CA with a signer claiming the right team.
struct Pki {
    static const Pki& shared();
    static constexpr const char* team = "TESTTEAM42";
    fs::path caCertificate;
    fs::path serverKey, serverCertificate;
    fs::path signerKey, signerCertificate;
    fs::path otherTeamKey, otherTeamCertificate;
    fs::path rogueKey, rogueCertificate;

private:
    explicit Pki(const fs::path& folder);
};

struct Route {
    int status = 200;
    std::string body;
};

class HttpsServer {
public:
    HttpsServer();
    ~HttpsServer();
    std::string url(const std::string& path) const;
    void route(const std::string& path, Route route);
    std::vector<std::string> requests() const; // raw request heads, oldest first

private:
    void serve();
    int m_listener = -1;
    int m_port = 0;
    void* m_context = nullptr;
    std::atomic<bool> m_stop { false };
    mutable std::mutex m_mutex;
    std::map<std::string, Route> m_routes;
    std::vector<std::string> m_requests;
    std::thread m_thread;
};

// Writes a bundle: Contents/Info.plist, an executable Contents/bin/cuewright (a shell script that
// writes "<tag> <first argument>" to `marker`), and a resource file.
void makeBundle(const fs::path& bundle, const std::string& identifier, const std::string& version,
    const std::string& tag, const fs::path& marker);
void signBundle(const fs::path& bundle, const fs::path& key, const fs::path& certificate);

struct ZipEntry {
    enum class Type { file, directory, symlink } type = Type::file;
    std::string name;
    std::string content; // file bytes or link target
};
void writeZip(const fs::path& zip, const std::vector<ZipEntry>& entries);
// Every entry below `folder`, named relative to it.
void zipFolder(const fs::path& zip, const fs::path& folder);

} // namespace cuewright::test
