#include "speech/SpeechWave.h"

#include <array>
#include <bit>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <stdexcept>
#include <string>
#include <system_error>
#include <unistd.h>

namespace cuewright::SpeechWave {

static_assert(std::endian::native == std::endian::little, "samples are written as they lie in memory");

namespace {

    constexpr std::size_t headerSize = 44;
    constexpr std::size_t bufferSamples = 1 << 16;

    void put32(std::uint8_t* at, std::uint32_t v)
    {
        for (int i = 0; i < 4; ++i)
            at[i] = static_cast<std::uint8_t>(v >> (8 * i));
    }

    void put16(std::uint8_t* at, std::uint16_t v)
    {
        at[0] = static_cast<std::uint8_t>(v);
        at[1] = static_cast<std::uint8_t>(v >> 8);
    }

    std::uint32_t get32(const std::uint8_t* at)
    {
        return at[0] | (at[1] << 8) | (at[2] << 16) | (std::uint32_t(at[3]) << 24);
    }

    std::uint16_t get16(const std::uint8_t* at)
    {
        return static_cast<std::uint16_t>(at[0] | (at[1] << 8));
    }

    std::array<std::uint8_t, headerSize> header(std::uint64_t sampleCount)
    {
        // Sizes beyond the 32-bit fields are clamped; the reader trusts the file size instead.
        const std::uint64_t dataBytes = std::min<std::uint64_t>(sampleCount * 2, 0xFFFFFFFFu - 36);
        std::array<std::uint8_t, headerSize> h {};
        std::memcpy(&h[0], "RIFF", 4);
        put32(&h[4], static_cast<std::uint32_t>(36 + dataBytes));
        std::memcpy(&h[8], "WAVEfmt ", 8);
        put32(&h[16], 16);
        put16(&h[20], 1); // PCM
        put16(&h[22], 1);
        put32(&h[24], sampleRate);
        put32(&h[28], sampleRate * 2);
        put16(&h[32], 2);
        put16(&h[34], 16);
        std::memcpy(&h[36], "data", 4);
        put32(&h[40], static_cast<std::uint32_t>(dataBytes));
        return h;
    }

    [[noreturn]] void throwErrno(const std::string& what)
    {
        throw std::system_error(errno, std::generic_category(), what);
    }

    void writeAll(int fd, const void* data, std::size_t size, std::uint64_t offset)
    {
        auto* bytes = static_cast<const char*>(data);
        while (size > 0) {
            const ssize_t n = ::pwrite(fd, bytes, size, static_cast<off_t>(offset));
            if (n < 0) {
                if (errno == EINTR)
                    continue;
                throwErrno("Could not write the audio file");
            }
            bytes += n;
            size -= static_cast<std::size_t>(n);
            offset += static_cast<std::uint64_t>(n);
        }
    }

    void readAll(int fd, void* data, std::size_t size, std::uint64_t offset)
    {
        auto* bytes = static_cast<char*>(data);
        while (size > 0) {
            const ssize_t n = ::pread(fd, bytes, size, static_cast<off_t>(offset));
            if (n < 0 && errno == EINTR)
                continue;
            if (n < 0)
                throwErrno("Could not read the audio file");
            if (n == 0)
                throw std::runtime_error("The audio file ended early.");
            bytes += n;
            size -= static_cast<std::size_t>(n);
            offset += static_cast<std::uint64_t>(n);
        }
    }

} // namespace

Writer::Writer(const std::filesystem::path& path)
    : m_path(path)
{
    m_fd = ::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0644);
    if (m_fd < 0)
        throwErrno("Could not create the audio file");
    m_buffer.reserve(bufferSamples);
    const auto h = header(0);
    writeAll(m_fd, h.data(), h.size(), 0);
}

Writer::~Writer()
{
    if (m_fd >= 0)
        ::close(m_fd);
}

void Writer::write(std::span<const std::int16_t> samples)
{
    while (!samples.empty()) {
        const std::size_t n = std::min(samples.size(), bufferSamples - m_buffer.size());
        m_buffer.insert(m_buffer.end(), samples.begin(), samples.begin() + static_cast<std::ptrdiff_t>(n));
        samples = samples.subspan(n);
        if (m_buffer.size() == bufferSamples)
            flushBuffer();
    }
}

void Writer::flushBuffer()
{
    writeAll(m_fd, m_buffer.data(), m_buffer.size() * 2, headerSize + m_sampleCount * 2);
    m_sampleCount += m_buffer.size();
    m_buffer.clear();
}

void Writer::close()
{
    flushBuffer();
    const auto h = header(m_sampleCount);
    writeAll(m_fd, h.data(), h.size(), 0);
    const int fd = m_fd;
    m_fd = -1;
    if (::close(fd) != 0)
        throwErrno("Could not write the audio file");
}

Reader::Reader(const std::filesystem::path& path)
{
    m_fd = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (m_fd < 0)
        throwErrno("Could not open the audio file");
    try {
        readHeader();
    } catch (...) {
        ::close(m_fd);
        throw;
    }
}

void Reader::readHeader()
{
    const off_t fileSize = ::lseek(m_fd, 0, SEEK_END);
    if (fileSize < 0)
        throwErrno("Could not read the audio file");

    std::array<std::uint8_t, 12> riff {};
    if (static_cast<std::uint64_t>(fileSize) < headerSize)
        throw std::runtime_error("The audio file is not a WAVE file.");
    readAll(m_fd, riff.data(), riff.size(), 0);
    if (std::memcmp(&riff[0], "RIFF", 4) != 0 || std::memcmp(&riff[8], "WAVE", 4) != 0)
        throw std::runtime_error("The audio file is not a WAVE file.");

    bool formatSeen = false;
    std::uint64_t at = 12;
    while (at + 8 <= static_cast<std::uint64_t>(fileSize)) {
        std::array<std::uint8_t, 8> chunk {};
        readAll(m_fd, chunk.data(), chunk.size(), at);
        const std::uint32_t size = get32(&chunk[4]);
        if (std::memcmp(&chunk[0], "fmt ", 4) == 0 && size >= 16) {
            std::array<std::uint8_t, 16> fmt {};
            readAll(m_fd, fmt.data(), fmt.size(), at + 8);
            if (get16(&fmt[0]) != 1 || get16(&fmt[2]) != 1 || get32(&fmt[4]) != sampleRate || get16(&fmt[14]) != 16)
                throw std::runtime_error("The audio file is not 16 kHz mono 16-bit PCM.");
            formatSeen = true;
        } else if (std::memcmp(&chunk[0], "data", 4) == 0) {
            if (!formatSeen)
                break;
            m_dataOffset = at + 8;
            // The data runs to the end of the file, also where its size field was clamped.
            m_sampleCount = static_cast<std::size_t>((static_cast<std::uint64_t>(fileSize) - m_dataOffset) / 2);
            return;
        }
        at += 8 + size + (size & 1);
    }
    throw std::runtime_error("The audio file is not 16 kHz mono 16-bit PCM.");
}

Reader::~Reader()
{
    if (m_fd >= 0)
        ::close(m_fd);
}

std::vector<std::int16_t> Reader::read(std::size_t first, std::size_t count) const
{
    first = std::min(first, m_sampleCount);
    count = std::min(count, m_sampleCount - first);
    std::vector<std::int16_t> samples(count);
    readAll(m_fd, samples.data(), count * 2, m_dataOffset + first * 2);
    return samples;
}

} // namespace cuewright::SpeechWave
