#include "MediaTestSupport.h"

#include "media/CaptionBurner.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

extern "C" {
#include <libavutil/log.h>
}

#include <fstream>
#include <regex>
#include <thread>

using namespace cuewright;
using namespace cuewright::test;
using Kind = CaptionBurnerError::Kind;

namespace {

const RgbFrame::Pixel blue { 0, 0, 255 };
const RgbFrame::Pixel red { 255, 0, 0 };
const RgbFrame::Pixel green { 0, 128, 0 };

// Solid boxes without text or shadow make every pixel of the band predictable.
CaptionStyle boxStyle()
{
    CaptionStyle style = defaultCaptionStyle();
    style.fontSize = 20;
    style.backgroundColor = { 1, 0, 0, 1 };
    style.shadowEnabled = false;
    return style;
}

CaptionCue cue(double start, double end, std::optional<double> x = std::nullopt, std::optional<double> y = std::nullopt)
{
    return CaptionCue(Uuid::generate(), start, end, " ", x, y);
}

std::string readAll(const std::filesystem::path& file)
{
    std::ifstream in(file, std::ios::binary);
    return { std::istreambuf_iterator<char>(in), {} };
}

class CaptionBurnerTest : public ::testing::Test {
protected:
    static void SetUpTestSuite() { av_log_set_level(AV_LOG_QUIET); }
    ScratchFolder folder;
};

} // namespace

TEST_F(CaptionBurnerTest, captionsShowOnExactlyTheirFramesAndOnlyInTheirBoxes)
{
    const auto source = folder / "blue.mp4";
    makeMedia("-f lavfi -i color=blue:s=320x240:r=25:d=2 -pix_fmt yuv420p -c:v libx264 -crf 10", source);
    const auto destination = folder / "out.mp4";
    // Band from 0.5 s to 1.5 s; a placed box in the top-left corner from 1 s to the end and beyond.
    const CaptionDocument document({ cue(0.5, 1.5), cue(1.0, 9, 0.0, 0.0) });
    CaptionBurner::exportVideo(source, destination, document, boxStyle());

    const auto frames = decodeFrames(destination);
    ASSERT_EQ(frames.size(), 60u);
    // Band: 0.84 × 320 wide from x 25.6, from 0.09 × 240 = 21.6 above the bottom, 46 high.
    const int bandY = 240 - 22 - 23;
    for (const RgbFrame& frame : frames) {
        const int n = static_cast<int>(std::lround(frame.seconds * 30));
        SCOPED_TRACE("frame " + std::to_string(n));
        const bool band = n >= 15 && n < 45;
        const bool corner = n >= 30;
        EXPECT_LT(distance(frame.at(40, bandY), band ? red : blue), 40);
        EXPECT_LT(distance(frame.at(290, bandY), band ? red : blue), 40);
        EXPECT_LT(distance(frame.at(8, bandY), blue), 40); // left of the band
        EXPECT_LT(distance(frame.at(160, 120), blue), 40); // above the band
        EXPECT_LT(distance(frame.at(20, 14), corner ? red : blue), 40);
        EXPECT_LT(distance(frame.at(60, 14), blue), 40); // right of the least box, 40 × 31
        EXPECT_LT(distance(frame.at(20, 45), blue), 40); // below it
    }
    EXPECT_THAT(folder.entries(), ::testing::ElementsAre("blue.mp4", "out.mp4"));
}

TEST_F(CaptionBurnerTest, rotatedPortraitVideoComesOutUprightWithSidesSwapped)
{
    // Red over green, stored turned by a quarter and marked to be shown turned back.
    const auto stored = folder / "stored.mp4";
    makeMedia("-f lavfi -i \"color=red:s=240x160:r=25:d=1[a];color=green:s=240x160:r=25:d=1[b];[a][b]vstack,"
              "transpose=clock,format=yuv420p\" -c:v libx264",
        stored);
    const auto source = folder / "portrait.mp4";
    makeMedia("-i '" + stored.string() + "' -c copy -metadata:s:v:0 rotate=90", source);
    const auto destination = folder / "upright.mp4";
    CaptionStyle style = boxStyle();
    style.backgroundColor = { 0, 0, 1, 1 };
    CaptionBurner::exportVideo(source, destination, CaptionDocument({ cue(0, 1) }), style);

    const MediaInfo info = probe(destination);
    EXPECT_EQ(info.width, 240);
    EXPECT_EQ(info.height, 320);
    const auto frames = decodeFrames(destination);
    ASSERT_FALSE(frames.empty());
    EXPECT_LT(distance(frames[5].at(120, 40), red), 40);
    EXPECT_LT(distance(frames[5].at(120, 200), green), 40);
    // The band is laid out against the upright size: 0.84 × 240 wide, 0.09 × 320 above the bottom.
    EXPECT_LT(distance(frames[5].at(25, 320 - 29 - 23), blue), 40);
    EXPECT_LT(distance(frames[5].at(15, 320 - 29 - 23), green), 40);
}

TEST_F(CaptionBurnerTest, sixtyFramesASecondBecomeThirtyAndEveryAudioTrackIsKept)
{
    // One AAC track, which MP4 holds as it is, and one PCM track, which it can't.
    const auto source = folder / "sixty.mkv";
    makeMedia("-f lavfi -i testsrc=s=160x120:r=60:d=2 -f lavfi -i sine=f=440:d=2 -f lavfi -i sine=f=880:d=2 "
              "-map 0 -map 1 -map 2 -c:v libx264 -pix_fmt yuv420p -c:a:0 aac -c:a:1 pcm_s16le",
        source);
    const auto destination = folder / "thirty.mp4";
    CaptionBurner::exportVideo(source, destination, CaptionDocument({ cue(0.2, 0.8) }), boxStyle());

    const MediaInfo info = probe(destination);
    EXPECT_DOUBLE_EQ(info.frameRate, 30);
    // Every frame time n / 30 below the source's duration, whatever its 60 frames were.
    const double duration = probe(source).durationSeconds;
    EXPECT_EQ(decodeFrames(destination).size(), static_cast<std::size_t>(std::ceil(duration * 30)));
    EXPECT_THAT(info.audioCodecs, ::testing::ElementsAre("aac", "aac"));
    EXPECT_NEAR(info.durationSeconds, 2.0, 0.1);
}

TEST_F(CaptionBurnerTest, audioOnlyFileFailsWithNoVideoAndLeavesNothing)
{
    const auto source = folder / "speech.m4a";
    makeMedia("-f lavfi -i sine=d=1 -c:a aac", source);
    const auto destination = folder / "out.mp4";
    try {
        CaptionBurner::exportVideo(source, destination, CaptionDocument({ cue(0, 1) }), boxStyle());
        FAIL() << "exported audio";
    } catch (const CaptionBurnerError& error) {
        EXPECT_EQ(error.kind, Kind::noVideo);
        EXPECT_STREQ(error.what(), "The selected file does not contain video.");
    }
    EXPECT_THAT(folder.entries(), ::testing::ElementsAre("speech.m4a"));
}

TEST_F(CaptionBurnerTest, failedVerificationKeepsTheOldDestinationByteForByte)
{
    // A video track without a single picture makes a file in which no frame decodes.
    const auto source = folder / "empty-track.mkv";
    makeMedia(
        "-f lavfi -i sine=d=1 -f lavfi -i color=s=160x120:d=1 -map 0 -map 1 -frames:v 0 -c:v libx264 -c:a aac", source);
    const auto destination = folder / "clip.mp4";
    const std::string old = "an earlier export\n";
    std::ofstream(destination, std::ios::binary) << old;
    try {
        CaptionBurner::exportVideo(source, destination, CaptionDocument({ cue(0, 1) }), boxStyle());
        FAIL() << "exported a file without pictures";
    } catch (const CaptionBurnerError& error) {
        EXPECT_EQ(error.kind, Kind::invalidExport);
        EXPECT_STREQ(error.what(), "The exported video could not be verified as a playable QuickTime file.");
    }
    EXPECT_EQ(readAll(destination), old);
    EXPECT_THAT(folder.entries(), ::testing::ElementsAre("clip.mp4", "empty-track.mkv"));
}

TEST_F(CaptionBurnerTest, existingDestinationIsReplacedByAVerifiedExport)
{
    const auto source = folder / "short.mp4";
    // Shorter than 0.1 s: verification probes at half the length.
    makeMedia("-f lavfi -i color=blue:s=160x120:r=30:d=0.05 -pix_fmt yuv420p -c:v libx264", source);
    const auto destination = folder / "short-captioned.mp4";
    std::ofstream(destination) << "old";
    CaptionBurner::exportVideo(source, destination, CaptionDocument({ cue(0, 1) }), boxStyle());
    EXPECT_GE(decodeFrames(destination).size(), 1u);
    EXPECT_NO_THROW(CaptionBurner::validateExport(destination));
    EXPECT_THAT(folder.entries(), ::testing::ElementsAre("short-captioned.mp4", "short.mp4"));
}

TEST_F(CaptionBurnerTest, missingSourcePassesTheLibraryErrorOn)
{
    EXPECT_THROW(CaptionBurner::exportVideo(folder / "absent.mov", folder / "out.mp4", {}, boxStyle()), MediaError);
    EXPECT_TRUE(folder.entries().empty());
}

TEST_F(CaptionBurnerTest, exportsRunSideBySideOnTheirOwnThreads)
{
    const auto source = folder / "small.mp4";
    makeMedia("-f lavfi -i color=blue:s=160x120:r=30:d=1 -pix_fmt yuv420p -c:v libx264", source);
    const CaptionDocument document({ cue(0, 0.5), cue(0.5, 1, 0.5, 0.5) });
    CaptionStyle style = defaultCaptionStyle();
    style.fontSize = 16;
    std::exception_ptr failure;
    std::thread other([&] {
        try {
            CaptionBurner::exportVideo(source, folder / "a.mp4", document, style);
        } catch (...) {
            failure = std::current_exception();
        }
    });
    CaptionBurner::exportVideo(source, folder / "b.mp4", document, style);
    other.join();
    EXPECT_FALSE(failure);
    EXPECT_THAT(folder.entries(), ::testing::ElementsAre("a.mp4", "b.mp4", "small.mp4"));
}

TEST(CaptionBurner, temporaryFileIsHiddenBesideTheDestination)
{
    const auto path = CaptionBurner::temporaryPath("/videos/clip.final.mp4");
    EXPECT_EQ(path.parent_path(), "/videos");
    EXPECT_TRUE(std::regex_match(path.filename().string(),
        std::regex(R"(\.clip\.final-[0-9A-F]{8}-[0-9A-F]{4}-[0-9A-F]{4}-[0-9A-F]{4}-[0-9A-F]{12}\.export\.mp4)")));
    EXPECT_NE(CaptionBurner::temporaryPath("/videos/clip.mp4"), CaptionBurner::temporaryPath("/videos/clip.mp4"));
}

TEST(CaptionBurner, errorsDescribeThemselves)
{
    EXPECT_STREQ(CaptionBurnerError(Kind::cannotCreateComposition).what(),
        "The video could not be prepared for caption export.");
    EXPECT_STREQ(
        CaptionBurnerError(Kind::cannotCreateExporter).what(), "The captioned video exporter could not be created.");
    EXPECT_STREQ(CaptionBurnerError(Kind::exportFailed).what(), "The captioned video could not be exported.");
}
