#include "core/AtomicFile.h"

#include "core/Uuid.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace cuewright {

namespace {

    std::string quoted(const std::string& text)
    {
        return "\u201C" + text + "\u201D";
    }

    std::string folderName(const std::filesystem::path& folder)
    {
        const auto name = folder.filename().string();
        return name.empty() ? folder.string() : name;
    }

    [[noreturn]] void throwWriteError(const std::filesystem::path& path, int error)
    {
        const std::string name = quoted(path.filename().string());
        const std::filesystem::path parent = path.has_parent_path() ? path.parent_path() : ".";
        const std::string folder = quoted(folderName(parent));
        std::string message;
        switch (error) {
        case EACCES:
        case EPERM:
            message = "You don\u2019t have permission to save the file " + name + " in the folder " + folder + ".";
            break;
        case EROFS:
            message = "The file " + name + " couldn\u2019t be saved because the volume is read only.";
            break;
        case ENOSPC:
        case EDQUOT:
        case EFBIG:
            message = "The file " + name + " couldn\u2019t be saved because there isn\u2019t enough space.";
            break;
        case ENOENT:
        case ENOTDIR:
            message
                = "The file " + name + " couldn\u2019t be saved because the folder " + folder + " doesn\u2019t exist.";
            break;
        case EISDIR:
            message = "The file " + name + " couldn\u2019t be saved because a folder of that name already exists.";
            break;
        default:
            message = "The file " + name + " couldn\u2019t be saved in the folder " + folder + ": "
                + std::generic_category().message(error) + ".";
        }
        throw FileError(FileError::Kind::writeFailed, std::error_code(error, std::generic_category()), message);
    }

    [[noreturn]] void throwReadError(const std::filesystem::path& path, int error)
    {
        const std::string name = quoted(path.filename().string());
        std::string message;
        switch (error) {
        case ENOENT:
        case ENOTDIR:
            message = "The file " + name + " couldn\u2019t be opened because there is no such file.";
            break;
        case EACCES:
        case EPERM:
            message
                = "The file " + name + " couldn\u2019t be opened because you don\u2019t have permission to view it.";
            break;
        case EISDIR:
            message = "The file " + name + " couldn\u2019t be opened because it is a folder.";
            break;
        default:
            message = "The file " + name + " couldn\u2019t be opened: " + std::generic_category().message(error) + ".";
        }
        throw FileError(FileError::Kind::readFailed, std::error_code(error, std::generic_category()), message);
    }

    class Descriptor {
    public:
        explicit Descriptor(int fd)
            : m_fd(fd)
        {
        }
        ~Descriptor()
        {
            if (m_fd >= 0)
                ::close(m_fd);
        }
        Descriptor(const Descriptor&) = delete;
        Descriptor& operator=(const Descriptor&) = delete;

        int get() const { return m_fd; }
        // Returns 0 or the error of close, which may report a failed delayed write.
        int close()
        {
            const int fd = m_fd;
            m_fd = -1;
            return ::close(fd) == 0 ? 0 : errno;
        }

    private:
        int m_fd;
    };

    // 0 or the error number.
    int writeAll(int fd, std::string_view bytes)
    {
        while (!bytes.empty()) {
            const ssize_t written = ::write(fd, bytes.data(), bytes.size());
            if (written < 0) {
                if (errno == EINTR)
                    continue;
                return errno;
            }
            if (written == 0)
                return EIO;
            bytes.remove_prefix(static_cast<std::size_t>(written));
        }
        return 0;
    }

    std::filesystem::path resolvedTarget(const std::filesystem::path& path)
    {
        std::error_code ec;
        if (!std::filesystem::is_symlink(path, ec))
            return path;
        auto target = std::filesystem::read_symlink(path, ec);
        if (ec)
            return path;
        return target.is_absolute() ? target : path.parent_path() / target;
    }

} // namespace

void writeFileAtomically(const std::filesystem::path& requested, std::string_view bytes)
{
    const std::filesystem::path path = resolvedTarget(requested);
    const std::filesystem::path folder = path.has_parent_path() ? path.parent_path() : ".";

    // Hidden, unique and short enough for the file system's name limit.
    std::string stem = path.filename().string().substr(0, 120);
    const std::filesystem::path temporary = folder / ("." + stem + "." + Uuid::generate().toString() + ".tmp");

    Descriptor file(::open(temporary.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666));
    if (file.get() < 0)
        throwWriteError(path, errno);

    auto fail = [&](int error) {
        ::unlink(temporary.c_str());
        throwWriteError(path, error);
    };

    // A replaced file keeps its permissions.
    struct stat old { };
    if (::stat(path.c_str(), &old) == 0) {
        if (S_ISDIR(old.st_mode))
            fail(EISDIR);
        ::fchmod(file.get(), old.st_mode & 07777);
    }

    if (int error = writeAll(file.get(), bytes))
        fail(error);
    if (::fsync(file.get()) != 0)
        fail(errno);
    if (int error = file.close())
        fail(error);
    if (::rename(temporary.c_str(), path.c_str()) != 0)
        fail(errno);

    // Makes the rename itself durable; the new file is already in place, so failure here is moot.
    Descriptor directory(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (directory.get() >= 0)
        ::fsync(directory.get());
}

std::string readWholeFile(const std::filesystem::path& path)
{
    Descriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC));
    if (file.get() < 0)
        throwReadError(path, errno);
    struct stat info { };
    if (::fstat(file.get(), &info) != 0)
        throwReadError(path, errno);
    if (S_ISDIR(info.st_mode))
        throwReadError(path, EISDIR);

    std::string bytes;
    if (info.st_size > 0)
        bytes.reserve(static_cast<std::size_t>(info.st_size));
    char buffer[65536];
    for (;;) {
        const ssize_t got = ::read(file.get(), buffer, sizeof buffer);
        if (got < 0) {
            if (errno == EINTR)
                continue;
            throwReadError(path, errno);
        }
        if (got == 0)
            break;
        bytes.append(buffer, static_cast<std::size_t>(got));
    }
    return bytes;
}

} // namespace cuewright
