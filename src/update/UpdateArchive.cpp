#include "update/UpdateArchive.h"

#include <archive.h>
#include <archive_entry.h>
#include <openssl/evp.h>

#include <algorithm>
#include <array>
#include <fstream>
#include <memory>
#include <stdexcept>
#include <vector>

namespace cuewright::UpdateArchive {

namespace fs = std::filesystem;

namespace {

    struct DigestDeleter {
        void operator()(EVP_MD_CTX* context) const { EVP_MD_CTX_free(context); }
    };
    struct ReadDeleter {
        void operator()(archive* a) const { archive_read_free(a); }
    };
    struct WriteDeleter {
        void operator()(archive* a) const { archive_write_free(a); }
    };

    class Sha256 {
    public:
        Sha256()
            : m_context(EVP_MD_CTX_new())
        {
            if (!m_context || EVP_DigestInit_ex(m_context.get(), EVP_sha256(), nullptr) != 1)
                throw std::runtime_error("SHA-256 is not available.");
        }
        void update(const void* data, std::size_t size) { EVP_DigestUpdate(m_context.get(), data, size); }
        std::string hex()
        {
            std::array<unsigned char, EVP_MAX_MD_SIZE> digest {};
            unsigned int length = 0;
            EVP_DigestFinal_ex(m_context.get(), digest.data(), &length);
            static constexpr char digits[] = "0123456789abcdef";
            std::string out;
            for (unsigned int i = 0; i < length; ++i) {
                out += digits[digest[i] >> 4];
                out += digits[digest[i] & 0x0F];
            }
            return out;
        }

    private:
        std::unique_ptr<EVP_MD_CTX, DigestDeleter> m_context;
    };

    bool isInside(const fs::path& root, const fs::path& path)
    {
        const fs::path relative = path.lexically_relative(root);
        return !relative.empty() && *relative.begin() != "..";
    }

    // The entry's name below `root`, or nothing when it is absolute or climbs with `..`.
    std::optional<fs::path> safeName(const char* name)
    {
        if (!name || !*name || name[0] == '/')
            return std::nullopt;
        const fs::path path(name);
        for (const auto& part : path) {
            if (part == "..")
                return std::nullopt;
        }
        const fs::path normal = path.lexically_normal();
        if (normal.empty() || normal == ".")
            return std::nullopt;
        return normal;
    }

    bool copyData(archive* reader, archive* writer)
    {
        const void* block = nullptr;
        size_t size = 0;
        la_int64_t offset = 0;
        while (true) {
            const int status = archive_read_data_block(reader, &block, &size, &offset);
            if (status == ARCHIVE_EOF)
                return true;
            if (status != ARCHIVE_OK || archive_write_data_block(writer, block, size, offset) != ARCHIVE_OK)
                return false;
        }
    }

    // A link whose target was harmless in words may still lead out through other links; resolve them all.
    bool linksStayInside(const fs::path& root)
    {
        std::error_code error;
        for (auto it = fs::recursive_directory_iterator(root, error);
             !error && it != fs::recursive_directory_iterator(); it.increment(error)) {
            if (!it->is_symlink(error))
                continue;
            const fs::path resolved = fs::weakly_canonical(it->path(), error);
            if (error || !isInside(root, resolved))
                return false;
        }
        return !error;
    }

} // namespace

std::string sha256Hex(const fs::path& file)
{
    std::ifstream in(file, std::ios::binary);
    if (!in)
        throw fs::filesystem_error(
            "The update could not be read", file, std::make_error_code(std::errc::no_such_file_or_directory));
    Sha256 digest;
    std::vector<char> buffer(1 << 16);
    while (in.read(buffer.data(), static_cast<std::streamsize>(buffer.size())) || in.gcount() > 0)
        digest.update(buffer.data(), static_cast<std::size_t>(in.gcount()));
    if (in.bad())
        throw fs::filesystem_error("The update could not be read", file, std::make_error_code(std::errc::io_error));
    return digest.hex();
}

std::string sha256HexOfText(std::string_view text)
{
    Sha256 digest;
    digest.update(text.data(), text.size());
    return digest.hex();
}

bool unpack(const fs::path& archivePath, const fs::path& destination)
{
    std::error_code error;
    fs::create_directories(destination, error);
    // Canonical, so that the no-symlink check on the full path doesn't trip over a linked /tmp.
    const fs::path root = fs::canonical(destination, error);
    if (error)
        return false;

    std::unique_ptr<archive, ReadDeleter> reader(archive_read_new());
    std::unique_ptr<archive, WriteDeleter> writer(archive_write_disk_new());
    if (!reader || !writer)
        return false;
    archive_read_support_format_zip(reader.get());
    // Names are checked here and then made absolute below `root`, so the absolute-path refusal of
    // libarchive can't be used; its refusal of `..` and of writing through links still applies.
    archive_write_disk_set_options(
        writer.get(), ARCHIVE_EXTRACT_TIME | ARCHIVE_EXTRACT_SECURE_SYMLINKS | ARCHIVE_EXTRACT_SECURE_NODOTDOT);
    if (archive_read_open_filename(reader.get(), archivePath.c_str(), 1 << 16) != ARCHIVE_OK)
        return false;

    archive_entry* entry = nullptr;
    while (true) {
        const int status = archive_read_next_header(reader.get(), &entry);
        if (status == ARCHIVE_EOF)
            break;
        if (status != ARCHIVE_OK)
            return false;
        const auto name = safeName(archive_entry_pathname(entry));
        if (!name || archive_entry_hardlink(entry))
            return false;
        const mode_t type = archive_entry_filetype(entry);
        if (type == AE_IFLNK) {
            const char* target = archive_entry_symlink(entry);
            if (!target || !*target || target[0] == '/'
                || !isInside(root, (root / name->parent_path() / target).lexically_normal()))
                return false;
        } else if (type != AE_IFREG && type != AE_IFDIR) {
            return false;
        }
        const fs::path full = root / *name;
        archive_entry_set_pathname(entry, full.c_str());
        // Never set-id bits; always enough for this user to read, verify and clean up.
        archive_entry_set_perm(entry, (archive_entry_perm(entry) & 0755) | (type == AE_IFDIR ? 0700 : 0600));
        if (archive_write_header(writer.get(), entry) != ARCHIVE_OK)
            return false;
        if (type == AE_IFREG && !copyData(reader.get(), writer.get()))
            return false;
        if (archive_write_finish_entry(writer.get()) != ARCHIVE_OK)
            return false;
    }
    if (archive_write_close(writer.get()) != ARCHIVE_OK)
        return false;
    return linksStayInside(root);
}

std::optional<fs::path> firstApp(const fs::path& folder)
{
    std::vector<fs::path> apps;
    for (const auto& entry : fs::directory_iterator(folder)) {
        if (entry.path().extension() == ".app" && entry.path().stem() != "")
            apps.push_back(entry.path());
    }
    if (apps.empty())
        return std::nullopt;
    return *std::min_element(apps.begin(), apps.end());
}

} // namespace cuewright::UpdateArchive
