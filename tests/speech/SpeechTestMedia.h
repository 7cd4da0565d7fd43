#pragma once

#include <cstdlib>
#include <filesystem>
#include <stdexcept>
#include <string>
#include <unistd.h>

// Short videos made on the spot with flite and the ffmpeg command-line tool.
namespace cuewright::test {

inline std::filesystem::path freshFolder(const std::string& prefix)
{
    std::string pattern = (std::filesystem::path(P_tmpdir) / (prefix + "-XXXXXX")).string();
    if (!::mkdtemp(pattern.data()))
        throw std::runtime_error("mkdtemp failed");
    return pattern;
}

inline void run(const std::string& command)
{
    if (std::system(command.c_str()) != 0)
        throw std::runtime_error("command failed: " + command);
}

inline std::string quoted(const std::filesystem::path& path)
{
    return "'" + path.string() + "'";
}

inline std::filesystem::path speak(
    const std::filesystem::path& folder, const std::string& name, const std::string& text)
{
    const auto wave = folder / (name + ".wav");
    run("flite -voice slt -t '" + text + "' -o " + quoted(wave));
    return wave;
}

inline const char* picture = "-f lavfi -i color=c=gray:s=320x240:r=10";
inline const char* encoding = "-c:v libx264 -preset ultrafast -pix_fmt yuv420p -c:a aac -b:a 64k";

// A video whose sound is `audioFilter` applied to the given inputs (labelled [a]).
inline std::filesystem::path video(const std::filesystem::path& folder, const std::string& name,
    const std::string& audioInputs, const std::string& audioFilter)
{
    const auto path = folder / (name + ".mp4");
    run(std::string("ffmpeg -nostdin -y -loglevel error ") + picture + " " + audioInputs + " -filter_complex \""
        + audioFilter + "\" -map 0:v -map '[a]' -shortest " + encoding + " " + quoted(path));
    return path;
}

inline std::filesystem::path silentVideo(const std::filesystem::path& folder)
{
    return video(folder, "silent", "", "anullsrc=r=44100:cl=stereo,atrim=duration=2[a]");
}

inline std::filesystem::path videoWithoutAudio(const std::filesystem::path& folder)
{
    const auto path = folder / "mute.mp4";
    run(std::string("ffmpeg -nostdin -y -loglevel error ") + picture + " -t 1 -c:v libx264 -preset ultrafast "
        + quoted(path));
    return path;
}

} // namespace cuewright::test
