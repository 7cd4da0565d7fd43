#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <span>
#include <vector>

// The audio handed from extraction to the recognisers: a WAVE file of 16 kHz mono 16-bit PCM.
namespace cuewright::SpeechWave {

inline constexpr int sampleRate = 16000;

// Streams samples to a new file; the header's sizes are filled in by close().
class Writer {
public:
    explicit Writer(const std::filesystem::path& path);
    ~Writer();
    Writer(const Writer&) = delete;
    Writer& operator=(const Writer&) = delete;

    void write(std::span<const std::int16_t> samples);
    void close();

private:
    std::filesystem::path m_path;
    int m_fd = -1;
    std::vector<std::int16_t> m_buffer;
    std::uint64_t m_sampleCount = 0;

    void flushBuffer();
};

// Random access to the samples of such a file; read() may be called from several threads.
class Reader {
public:
    explicit Reader(const std::filesystem::path& path);
    ~Reader();
    Reader(const Reader&) = delete;
    Reader& operator=(const Reader&) = delete;

    std::size_t sampleCount() const { return m_sampleCount; }
    std::vector<std::int16_t> read(std::size_t first, std::size_t count) const;

private:
    int m_fd = -1;
    std::uint64_t m_dataOffset = 0;
    std::size_t m_sampleCount = 0;

    void readHeader();
};

} // namespace cuewright::SpeechWave
