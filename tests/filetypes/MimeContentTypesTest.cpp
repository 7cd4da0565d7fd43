#include "model/MimeContentTypes.h"

#include "core/CaptionOpenItem.h"
#include "core/Uuid.h"
#include "core/VideoFileDrop.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>

using namespace cuewright;

namespace {

// A fresh folder with a one-second tiny MP4 and a SubRip file, both without an extension so
// that only their content can tell.
class SamplesFolder {
public:
    SamplesFolder()
        : m_path(std::filesystem::temp_directory_path() / ("cuewright-filetypes-" + Uuid::generate().toString()))
    {
        std::filesystem::create_directories(m_path);
        const std::string command = "ffmpeg -nostdin -loglevel error -f lavfi -i testsrc=size=64x48:rate=10 -t 1 "
                                    "-c:v mpeg4 -f mp4 '"
            + at("clip") + "'";
        videoMade = std::system(command.c_str()) == 0;
        std::ofstream(m_path / "subtitles") << "1\n00:00:01,000 --> 00:00:02,000\nHello\n\n";
    }
    ~SamplesFolder() { std::filesystem::remove_all(m_path); }

    std::string at(const std::string& name) const { return (m_path / name).string(); }
    bool videoMade = false;

private:
    std::filesystem::path m_path;
};

class MimeContentTypesTest : public ::testing::Test {
protected:
    MimeContentTypes types;
};

} // namespace

TEST_F(MimeContentTypesTest, videoNamesAreMoviesWithoutTheFile)
{
    for (const char* name :
        { "/nowhere/talk.mov", "/nowhere/talk.MP4", "/nowhere/talk.m4v", "file:///nowhere/a%20b.mov" })
        EXPECT_EQ(CaptionOpenItem::classify(name, types), CaptionOpenItem::video) << name;
    for (const char* name : { "/nowhere/talk.srt", "/nowhere/talk.txt", "/nowhere/talk", "/nowhere/talk.vtt",
             "https://example.com/talk.mov" })
        EXPECT_EQ(CaptionOpenItem::classify(name, types), CaptionOpenItem::unsupported) << name;
    EXPECT_EQ(CaptionOpenItem::classify("/nowhere/talk.VantrelCaption", types), CaptionOpenItem::project);
}

TEST_F(MimeContentTypesTest, aFileWithoutExtensionIsJudgedByItsContent)
{
    const SamplesFolder samples;
    ASSERT_TRUE(samples.videoMade) << "ffmpeg could not make the test video";
    auto at = [&](const std::string& name) { return samples.at(name); };
    const auto type = types.contentTypeOfFile(at("clip"));
    ASSERT_TRUE(type.has_value());
    EXPECT_TRUE(types.conformsToMovie(*type)) << *type;
    EXPECT_EQ(CaptionOpenItem::classify(at("clip"), types), CaptionOpenItem::video);
    EXPECT_EQ(CaptionOpenItem::classify(at("subtitles"), types), CaptionOpenItem::unsupported);
    EXPECT_EQ(VideoFileDrop::firstAccepted({ at("subtitles"), at("clip") }, types), at("clip"));
    EXPECT_EQ(types.contentTypeOfFile(at("missing")), std::nullopt);
}

TEST_F(MimeContentTypesTest, movieMeansAVideoType)
{
    EXPECT_TRUE(types.conformsToMovie("video/quicktime"));
    EXPECT_TRUE(types.conformsToMovie("video/x-matroska"));
    EXPECT_FALSE(types.conformsToMovie("application/x-subrip"));
    EXPECT_FALSE(types.conformsToMovie("audio/mp4"));
    EXPECT_FALSE(types.conformsToMovie("inode/directory"));
    EXPECT_FALSE(types.conformsToMovie("no/such-type"));
    EXPECT_EQ(types.typeForFilenameExtension(""), std::nullopt);
    EXPECT_EQ(types.typeForFilenameExtension("mov"), "video/quicktime");
}
