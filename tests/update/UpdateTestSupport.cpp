#include "UpdateTestSupport.h"

#include <archive.h>
#include <archive_entry.h>
#include <arpa/inet.h>
#include <netinet/in.h>
#include <openssl/err.h>
#include <openssl/ssl.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/time.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <memory>
#include <sstream>
#include <stdexcept>

namespace cuewright::test {

ScratchFolder::ScratchFolder()
{
    std::string pattern = (fs::temp_directory_path() / "cuewright update test XXXXXX").native();
    if (!mkdtemp(pattern.data()))
        throw std::runtime_error("mkdtemp failed");
    m_path = pattern;
}

ScratchFolder::~ScratchFolder()
{
    std::error_code ignored;
    fs::remove_all(m_path, ignored);
}

std::string shellQuoted(const fs::path& path)
{
    std::string out = "'";
    for (char c : path.native())
        out += c == '\'' ? std::string("'\\''") : std::string(1, c);
    return out + "'";
}

void runShell(const std::string& command)
{
    const std::string full = "bash -c " + shellQuoted(command) + " 2>&1";
    std::unique_ptr<FILE, int (*)(FILE*)> pipe(popen(full.c_str(), "r"), pclose);
    std::string output;
    std::array<char, 512> buffer {};
    while (size_t n = fread(buffer.data(), 1, buffer.size(), pipe.get()))
        output.append(buffer.data(), n);
    if (pclose(pipe.release()) != 0)
        throw std::runtime_error("command failed: " + command + "\n" + output);
}

void writeFile(const fs::path& path, const std::string& text)
{
    fs::create_directories(path.parent_path());
    std::ofstream(path, std::ios::binary) << text;
}

std::string readFile(const fs::path& path)
{
    std::ifstream in(path, std::ios::binary);
    std::ostringstream text;
    text << in.rdbuf();
    return text.str();
}

const Pki& Pki::shared()
{
    static ScratchFolder folder;
    static const Pki pki(folder.path());
    return pki;
}

Pki::Pki(const fs::path& folder)
{
    const fs::path config = folder / "pki.cnf";
    writeFile(config,
        "[req]\ndistinguished_name = dn\nprompt = no\n[dn]\nCN = unused\n"
        "[ca]\nbasicConstraints = critical,CA:TRUE\nkeyUsage = critical,keyCertSign\nsubjectKeyIdentifier = hash\n"
        "[signer]\nbasicConstraints = CA:FALSE\nkeyUsage = critical,digitalSignature\n"
        "extendedKeyUsage = codeSigning\n"
        "[server]\nbasicConstraints = CA:FALSE\nsubjectAltName = IP:127.0.0.1\nextendedKeyUsage = serverAuth\n");
    const std::string ec = " -newkey ec -pkeyopt ec_paramgen_curve:prime256v1 -nodes -config " + shellQuoted(config);
    const auto authority = [&](const std::string& name) {
        runShell("openssl req -x509 -days 2" + ec + " -extensions ca -subj '/CN=" + name + "' -keyout "
            + shellQuoted(folder / (name + ".key")) + " -out " + shellQuoted(folder / (name + ".pem")));
    };
    int serial = 1;
    const auto issue = [&](const std::string& name, const std::string& subject, const std::string& ca,
                           const std::string& extensions) {
        const fs::path csr = folder / (name + ".csr");
        runShell("openssl req -new" + ec + " -subj '" + subject + "' -keyout " + shellQuoted(folder / (name + ".key"))
            + " -out " + shellQuoted(csr) + " && openssl x509 -req -days 2 -in " + shellQuoted(csr) + " -CA "
            + shellQuoted(folder / (ca + ".pem")) + " -CAkey " + shellQuoted(folder / (ca + ".key")) + " -set_serial "
            + std::to_string(serial++) + " -extfile " + shellQuoted(config) + " -extensions " + extensions + " -out "
            + shellQuoted(folder / (name + ".pem")));
    };
    authority("publisher");
    authority("rogue");
    issue("server", "/CN=127.0.0.1", "publisher", "server");
    issue("signer", std::string("/O=Vantrel Digital/OU=") + team + "/CN=Signer", "publisher", "signer");
    issue("otherteam", "/O=Vantrel Digital/OU=OTHERTEAM0/CN=Signer", "publisher", "signer");
    issue("roguesigner", std::string("/O=Vantrel Digital/OU=") + team + "/CN=Signer", "rogue", "signer");
    caCertificate = folder / "publisher.pem";
    serverKey = folder / "server.key";
    serverCertificate = folder / "server.pem";
    signerKey = folder / "signer.key";
    signerCertificate = folder / "signer.pem";
    otherTeamKey = folder / "otherteam.key";
    otherTeamCertificate = folder / "otherteam.pem";
    rogueKey = folder / "roguesigner.key";
    rogueCertificate = folder / "roguesigner.pem";
}

HttpsServer::HttpsServer()
{
    const Pki& pki = Pki::shared();
    SSL_CTX* context = SSL_CTX_new(TLS_server_method());
    if (!context || SSL_CTX_use_certificate_file(context, pki.serverCertificate.c_str(), SSL_FILETYPE_PEM) != 1
        || SSL_CTX_use_PrivateKey_file(context, pki.serverKey.c_str(), SSL_FILETYPE_PEM) != 1)
        throw std::runtime_error("TLS server setup failed");
    m_context = context;

    m_listener = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in address {};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t length = sizeof address;
    if (bind(m_listener, reinterpret_cast<sockaddr*>(&address), sizeof address) != 0 || listen(m_listener, 8) != 0
        || getsockname(m_listener, reinterpret_cast<sockaddr*>(&address), &length) != 0)
        throw std::runtime_error("loopback listen failed");
    m_port = ntohs(address.sin_port);
    m_thread = std::thread([this] { serve(); });
}

HttpsServer::~HttpsServer()
{
    m_stop = true;
    m_thread.join();
    close(m_listener);
    SSL_CTX_free(static_cast<SSL_CTX*>(m_context));
}

std::string HttpsServer::url(const std::string& path) const
{
    return "https://127.0.0.1:" + std::to_string(m_port) + path;
}

void HttpsServer::route(const std::string& path, Route route)
{
    std::lock_guard lock(m_mutex);
    m_routes[path] = std::move(route);
}

std::vector<std::string> HttpsServer::requests() const
{
    std::lock_guard lock(m_mutex);
    return m_requests;
}

void HttpsServer::serve()
{
    while (!m_stop) {
        pollfd waiting { m_listener, POLLIN, 0 };
        if (poll(&waiting, 1, 50) <= 0)
            continue;
        const int client = accept4(m_listener, nullptr, nullptr, SOCK_CLOEXEC);
        if (client < 0)
            continue;
        // A client that stalls can hold the server for two seconds at most.
        timeval limit { 2, 0 };
        setsockopt(client, SOL_SOCKET, SO_RCVTIMEO, &limit, sizeof limit);
        setsockopt(client, SOL_SOCKET, SO_SNDTIMEO, &limit, sizeof limit);
        SSL* ssl = SSL_new(static_cast<SSL_CTX*>(m_context));
        SSL_set_fd(ssl, client);
        if (SSL_accept(ssl) == 1) {
            std::string head;
            char buffer[4096];
            while (head.find("\r\n\r\n") == std::string::npos && head.size() < 65536) {
                const int n = SSL_read(ssl, buffer, sizeof buffer);
                if (n <= 0)
                    break;
                head.append(buffer, static_cast<size_t>(n));
            }
            const size_t space = head.find(' ');
            const size_t end = head.find(' ', space + 1);
            const std::string path = space == std::string::npos ? "" : head.substr(space + 1, end - space - 1);
            Route route { 404, "not found" };
            {
                std::lock_guard lock(m_mutex);
                m_requests.push_back(head);
                if (auto found = m_routes.find(path); found != m_routes.end())
                    route = found->second;
            }
            const std::string response = "HTTP/1.1 " + std::to_string(route.status) + " Test\r\nContent-Length: "
                + std::to_string(route.body.size()) + "\r\nConnection: close\r\n\r\n" + route.body;
            size_t sent = 0;
            while (sent < response.size()) {
                const int n = SSL_write(ssl, response.data() + sent, static_cast<int>(response.size() - sent));
                if (n <= 0)
                    break;
                sent += static_cast<size_t>(n);
            }
            SSL_shutdown(ssl);
        }
        SSL_free(ssl);
        close(client);
        ERR_clear_error();
    }
}

void makeBundle(const fs::path& bundle, const std::string& identifier, const std::string& version,
    const std::string& tag, const fs::path& marker)
{
    writeFile(bundle / "Contents" / "Info.plist",
        "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plist version=\"1.0\">\n<dict>\n"
        "\t<key>CFBundleIdentifier</key>\n\t<string>"
            + identifier + "</string>\n\t<key>CFBundleShortVersionString</key>\n\t<string>" + version
            + "</string>\n\t<key>CFBundleExecutable</key>\n\t<string>cuewright</string>\n</dict>\n</plist>\n");
    const fs::path program = bundle / "Contents" / "bin" / "cuewright";
    writeFile(program, "#!/bin/sh\nprintf '%s %s' " + tag + " \"$1\" > " + shellQuoted(marker) + "\n");
    fs::permissions(program,
        fs::perms::owner_all | fs::perms::group_read | fs::perms::group_exec | fs::perms::others_read
            | fs::perms::others_exec);
    writeFile(bundle / "Contents" / "share" / "cuewright" / "read me.txt", "version " + version + "\n");
}

void signBundle(const fs::path& bundle, const fs::path& key, const fs::path& certificate)
{
    runShell(shellQuoted(fs::path(CUEWRIGHT_SOURCE_DIR) / "tools" / "sign-bundle") + " " + shellQuoted(bundle) + " "
        + shellQuoted(key) + " " + shellQuoted(certificate));
}

void writeZip(const fs::path& zip, const std::vector<ZipEntry>& entries)
{
    std::unique_ptr<archive, int (*)(archive*)> writer(archive_write_new(), archive_write_free);
    archive_write_set_format_zip(writer.get());
    if (archive_write_open_filename(writer.get(), zip.c_str()) != ARCHIVE_OK)
        throw std::runtime_error("cannot write " + zip.native());
    for (const auto& item : entries) {
        std::unique_ptr<archive_entry, void (*)(archive_entry*)> entry(archive_entry_new(), archive_entry_free);
        archive_entry_set_pathname(entry.get(), item.name.c_str());
        switch (item.type) {
        case ZipEntry::Type::file:
            archive_entry_set_filetype(entry.get(), AE_IFREG);
            archive_entry_set_perm(entry.get(), 0755);
            archive_entry_set_size(entry.get(), static_cast<la_int64_t>(item.content.size()));
            break;
        case ZipEntry::Type::directory:
            archive_entry_set_filetype(entry.get(), AE_IFDIR);
            archive_entry_set_perm(entry.get(), 0755);
            break;
        case ZipEntry::Type::symlink:
            archive_entry_set_filetype(entry.get(), AE_IFLNK);
            archive_entry_set_perm(entry.get(), 0777);
            archive_entry_set_symlink(entry.get(), item.content.c_str());
            break;
        }
        if (archive_write_header(writer.get(), entry.get()) != ARCHIVE_OK)
            throw std::runtime_error(archive_error_string(writer.get()));
        if (item.type == ZipEntry::Type::file && !item.content.empty())
            archive_write_data(writer.get(), item.content.data(), item.content.size());
    }
    archive_write_close(writer.get());
}

void zipFolder(const fs::path& zip, const fs::path& folder)
{
    std::vector<ZipEntry> entries;
    for (auto it = fs::recursive_directory_iterator(folder); it != fs::recursive_directory_iterator(); ++it) {
        const std::string name = it->path().lexically_relative(folder).generic_string();
        if (it->is_symlink())
            entries.push_back({ ZipEntry::Type::symlink, name, fs::read_symlink(it->path()).native() });
        else if (it->is_directory())
            entries.push_back({ ZipEntry::Type::directory, name + "/", {} });
        else
            entries.push_back({ ZipEntry::Type::file, name, readFile(it->path()) });
    }
    std::sort(entries.begin(), entries.end(), [](const auto& a, const auto& b) { return a.name < b.name; });
    writeZip(zip, entries);
}

} // namespace cuewright::test
