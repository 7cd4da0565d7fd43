#include "TemporaryFolder.h"

#include "core/CaptionOpenItem.h"
#include "core/CaptionProjectFile.h"
#include "core/CaptionProjectMediaLocator.h"
#include "core/VideoFileDrop.h"

#include <gtest/gtest.h>

#include <map>

using namespace cuewright;
using cuewright::testing::TemporaryFolder;
using cuewright::testing::writeText;

namespace {

// A small type table; contents are what the test declares.
class FakeTypes : public ContentTypeLookup {
public:
    std::map<std::string, std::string> contents;
    mutable std::vector<std::string> asked;

    std::optional<std::string> contentTypeOfFile(const std::string& path) const override
    {
        asked.push_back(path);
        const auto it = contents.find(path);
        return it == contents.end() ? std::nullopt : std::optional(it->second);
    }
    std::optional<std::string> typeForFilenameExtension(const std::string& extension) const override
    {
        static const std::map<std::string, std::string> table {
            { "mov", "video/quicktime" },
            { "MOV", "video/quicktime" },
            { "mp4", "video/mp4" },
            { "m4v", "video/x-m4v" },
            { "srt", "application/x-subrip" },
            { "txt", "text/plain" },
        };
        const auto it = table.find(extension);
        return it == table.end() ? std::nullopt : std::optional(it->second);
    }
    bool conformsToMovie(const std::string& type) const override { return type.starts_with("video/"); }
};

} // namespace

TEST(CaptionProjectFile, normalizedFilenameKeepsOneExtension)
{
    const std::pair<const char*, const char*> cases[] = {
        { "talk", "talk.vantrelcaption" },
        { "talk.VantrelCaption", "talk.vantrelcaption" },
        { "a.vantrelcaption.VANTRELCAPTION", "a.vantrelcaption" },
        { ".vantrelcaption", "Captions.vantrelcaption" },
        { "", "Captions.vantrelcaption" },
        { "talk.mov", "talk.mov.vantrelcaption" },
        { " Talk vantrelcaption", " Talk vantrelcaption.vantrelcaption" },
        { "\u00C9t\u00E9.VANTRELCAPTION", "\u00C9t\u00E9.vantrelcaption" },
    };
    for (const auto& [name, expected] : cases)
        EXPECT_EQ(CaptionProjectFile::normalizedFilename(name), expected) << name;
}

TEST(CaptionProjectFile, locationsNameLocalFilesOrOtherUrls)
{
    using CaptionProjectFile::localPath;
    EXPECT_EQ(localPath("/home/a/talk.mov"), "/home/a/talk.mov");
    EXPECT_EQ(localPath("clips/talk.mov"), "clips/talk.mov");
    EXPECT_EQ(localPath("file:///home/a%20b/caf%C3%A9.mov"), "/home/a b/caf\u00E9.mov");
    EXPECT_EQ(localPath("FILE://localhost/x.mov"), "/x.mov");
    EXPECT_EQ(localPath("./a:b.mov"), "./a:b.mov");
    EXPECT_EQ(localPath("https://example.com/talk.mov"), std::nullopt);
    EXPECT_EQ(localPath("notes:v2.mov"), std::nullopt);

    EXPECT_EQ(CaptionProjectFile::pathExtension("/a/b.tar.GZ"), "GZ");
    EXPECT_EQ(CaptionProjectFile::pathExtension("/a.d/noext"), "");
    EXPECT_EQ(CaptionProjectFile::pathExtension("/a/clip.mov/"), "mov");

    EXPECT_TRUE(CaptionProjectFile::isProject("/nowhere/talk.VANTRELCAPTION"));
    EXPECT_TRUE(CaptionProjectFile::isProject("file:///nowhere/talk.vantrelcaption"));
    EXPECT_FALSE(CaptionProjectFile::isProject("https://example.com/talk.vantrelcaption"));
    EXPECT_FALSE(CaptionProjectFile::isProject("/a/talk.vantrelcaption.mov"));
}

TEST(CaptionOpenItem, classifiesByExtensionThenContent)
{
    FakeTypes types;
    types.contents = { { "/v/noext-video", "video/mp4" }, { "/v/noext-text", "text/plain" },
        { "/v/really-video.srt", "video/mp4" }, { "/v/says-text.mov", "text/plain" } };
    const std::pair<const char*, CaptionOpenItem> cases[] = {
        { "/nowhere/talk.VANTRELCAPTION", CaptionOpenItem::project },
        { "/nowhere/talk.mov", CaptionOpenItem::video },
        { "/nowhere/talk.MOV", CaptionOpenItem::video },
        { "/nowhere/talk.mp4", CaptionOpenItem::video },
        { "file:///nowhere/talk.m4v", CaptionOpenItem::video },
        { "/nowhere/talk.srt", CaptionOpenItem::unsupported },
        { "/nowhere/talk.txt", CaptionOpenItem::unsupported },
        { "/nowhere/talk.xyz", CaptionOpenItem::unsupported },
        { "/v/noext-video", CaptionOpenItem::video },
        { "/v/noext-text", CaptionOpenItem::unsupported },
        { "/v/really-video.srt", CaptionOpenItem::video },
        { "/v/says-text.mov", CaptionOpenItem::video },
        { "https://example.com/talk.mov", CaptionOpenItem::unsupported },
        { "https://example.com/talk.vantrelcaption", CaptionOpenItem::unsupported },
    };
    for (const auto& [location, expected] : cases)
        EXPECT_EQ(CaptionOpenItem::classify(location, types), expected) << location;
}

TEST(VideoFileDrop, firstAcceptedStopsAtTheFirstVideo)
{
    FakeTypes types;
    EXPECT_EQ(VideoFileDrop::firstAccepted({ "/d/notes.txt", "/d/one.mov", "/d/two.mp4" }, types), "/d/one.mov");
    EXPECT_EQ(types.asked, (std::vector<std::string> { "/d/notes.txt", "/d/one.mov" }));
    EXPECT_EQ(VideoFileDrop::firstAccepted({}, types), std::nullopt);
    EXPECT_EQ(VideoFileDrop::firstAccepted({ "https://e.com/a.mov", "/d/a.srt" }, types), std::nullopt);
}

TEST(CaptionProjectMediaLocator, triesTheSavedPathThenBesideTheProject)
{
    TemporaryFolder folder;
    std::filesystem::create_directories(folder / "projects");
    std::filesystem::create_directories(folder / "movies");
    const std::string projectFile = (folder / "projects" / "talk.vantrelcaption").string();
    const std::string saved = (folder / "movies" / "talk.mov").string();
    const std::string beside = (folder / "projects" / "talk.mov").string();
    const CaptionProject project { saved, {}, defaultCaptionStyle() };
    using CaptionProjectMediaLocator::existingMediaURL;

    EXPECT_EQ(existingMediaURL(project, projectFile), std::nullopt);
    writeText(beside, "x");
    EXPECT_EQ(existingMediaURL(project, projectFile), beside);
    EXPECT_EQ(existingMediaURL(project, "file://" + projectFile), beside);
    writeText(saved, "x");
    EXPECT_EQ(existingMediaURL(project, projectFile), saved);

    // Only the exact name counts beside the project; the saved path's folder is not searched.
    std::filesystem::remove(saved);
    std::filesystem::remove(beside);
    writeText(folder / "projects" / "TALK.MOV", "x");
    EXPECT_EQ(existingMediaURL(project, projectFile), std::nullopt);
    EXPECT_EQ(existingMediaURL(CaptionProject { "", {}, defaultCaptionStyle() }, projectFile), std::nullopt);
}
