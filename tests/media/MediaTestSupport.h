#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

namespace cuewright::test {

// A fresh folder for one test, removed with the object.
class ScratchFolder {
public:
    ScratchFolder();
    ~ScratchFolder();
    const std::filesystem::path& path() const { return m_path; }
    std::filesystem::path operator/(const std::string& name) const { return m_path / name; }
    std::vector<std::string> entries() const;

private:
    std::filesystem::path m_path;
};

// Runs the ffmpeg command-line tool with arguments before the output file; throws if it fails.
void makeMedia(const std::string& arguments, const std::filesystem::path& output);

struct MediaInfo {
    int width = 0;
    int height = 0;
    double frameRate = 0;
    int videoStreams = 0;
    std::vector<std::string> audioCodecs;
    double durationSeconds = 0;
};
MediaInfo probe(const std::filesystem::path& file);

struct RgbFrame {
    double seconds = 0;
    int width = 0;
    int height = 0;
    std::vector<std::uint8_t> rgb;

    struct Pixel {
        int r, g, b;
    };
    Pixel at(int x, int y) const
    {
        const std::uint8_t* p = &rgb[(static_cast<std::size_t>(y) * width + x) * 3];
        return { p[0], p[1], p[2] };
    }
};

// Every frame of the first video stream, in presentation order.
std::vector<RgbFrame> decodeFrames(const std::filesystem::path& file);

// Colour distance, the largest difference of one component.
int distance(RgbFrame::Pixel a, RgbFrame::Pixel b);

} // namespace cuewright::test
