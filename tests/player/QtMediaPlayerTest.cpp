#include "app/ui/QtMediaPlayer.h"
#include "app/model/AppModel.h"

#include <QGuiApplication>
#include <QImage>
#include <QProcess>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <QVideoFrame>
#include <QVideoSink>

#include <gtest/gtest.h>

#include <cmath>
#include <memory>
#include <optional>

namespace cuewright {
namespace {

    constexpr double frameSeconds = 1.0 / 30;
    // Generous: the pipeline starts cold on a loaded machine.
    constexpr int waitMs = 10000;

    // Polls the event loop until `condition` holds; no assertion is made on how long it took.
    template <typename Condition> bool waitUntil(Condition condition, int timeoutMs = waitMs)
    {
        return QTest::qWaitFor(condition, timeoutMs);
    }

    // Frame n of the test video is a flat grey of luma 2n, so a picture tells which frame it is.
    std::optional<int> frameIndexShown(const QVideoFrame& frame)
    {
        const QImage image = QVideoFrame(frame).toImage();
        if (image.isNull())
            return std::nullopt;
        const QColor centre = image.pixelColor(image.width() / 2, image.height() / 2);
        return static_cast<int>(std::lround(centre.lightnessF() * 255.0 / 2.0));
    }

    class QtMediaPlayerTest : public ::testing::Test {
    protected:
        static void SetUpTestSuite()
        {
            s_folder = std::make_unique<QTemporaryDir>();
            ASSERT_TRUE(s_folder->isValid());
            s_video = s_folder->filePath(QStringLiteral("frames.mp4"));
            // One key frame only, so an exact seek cannot pass by landing on a key frame. The
            // tone gives the pipeline an audio stream to clock and sink, as real videos have.
            QProcess ffmpeg;
            ffmpeg.start(QStringLiteral("ffmpeg"),
                { "-nostdin", "-v", "error", "-y", "-f", "lavfi", "-i",
                    "color=c=black:s=320x240:r=30:d=3,format=gray,geq=lum='2*N',format=yuv420p", "-f", "lavfi", "-i",
                    "sine=frequency=440:sample_rate=48000:duration=3", "-c:v", "libx264", "-preset", "ultrafast", "-qp",
                    "0", "-g", "300", "-bf", "0", "-c:a", "aac", "-shortest", s_video });
            ASSERT_TRUE(ffmpeg.waitForFinished(60000));
            ASSERT_EQ(ffmpeg.exitCode(), 0) << ffmpeg.readAllStandardError().toStdString();
        }

        static void TearDownTestSuite() { s_folder.reset(); }

        void SetUp() override
        {
            auto player = std::make_unique<QtMediaPlayer>();
            m_player = player.get();
            AppModelSeams seams;
            seams.player = std::move(player);
            seams.services.supportedLanguageIdentifiers = [] { return QStringList { "en-US" }; };
            seams.services.currentLocaleIdentifier = [] { return QString("en-US"); };
            m_model = std::make_unique<AppModel>(std::move(seams));
        }

        void TearDown() override { m_model.reset(); }

        // Loads the test video and waits for its duration and the player standing at zero.
        void loadVideo()
        {
            m_model->loadVideo(QUrl::fromLocalFile(s_video));
            ASSERT_TRUE(waitUntil([&] { return m_model->duration() > 0; })) << m_model->statusMessage().toStdString();
            ASSERT_TRUE(waitUntil([&] { return m_model->statusMessage().startsWith("Ready to caption"); }));
        }

        AppModel& model() const { return *m_model; }
        QtMediaPlayer& player() const { return *m_player; }

        static inline std::unique_ptr<QTemporaryDir> s_folder;
        static inline QString s_video;
        std::unique_ptr<AppModel> m_model;
        QtMediaPlayer* m_player = nullptr;
    };

    TEST_F(QtMediaPlayerTest, loadingReportsTheDurationAndStandsAtTheStart)
    {
        loadVideo();
        EXPECT_NEAR(model().duration(), 3.0, 0.05);
        EXPECT_EQ(model().playhead(), 0.0);
        EXPECT_FALSE(model().isPlaying());
        EXPECT_EQ(model().statusMessage(), QStringLiteral("Ready to caption frames.mp4."));
    }

    TEST_F(QtMediaPlayerTest, loadingAFileThatIsNoVideoLeavesNoDuration)
    {
        const QString bogus = s_folder->filePath(QStringLiteral("notes.mp4"));
        {
            QFile file(bogus);
            ASSERT_TRUE(file.open(QIODevice::WriteOnly));
            file.write("these are not frames");
        }
        model().loadVideo(QUrl::fromLocalFile(bogus));
        ASSERT_TRUE(waitUntil([&] { return model().statusMessage().startsWith("Ready to caption"); }));
        EXPECT_EQ(model().duration(), 0.0);
        EXPECT_EQ(model().playhead(), 0.0);
    }

    TEST_F(QtMediaPlayerTest, exactSeekLandsOnTheFrameBetweenKeyFrames)
    {
        loadVideo();
        QVideoFrame shown;
        // The sink outlives this scope and still delivers a frame while it is torn down.
        QObject receiver;
        QObject::connect(player().videoSink(), &QVideoSink::videoFrameChanged, &receiver,
            [&](const QVideoFrame& frame) { shown = frame; });

        for (const double target : { 1.5, 0.7 }) {
            SCOPED_TRACE(target);
            model().seek(target);
            EXPECT_EQ(model().playhead(), target) << "the playhead takes the target before the player gets there";
            ASSERT_TRUE(waitUntil([&] { return std::abs(player().currentTime() - target) <= frameSeconds; }))
                << "player stands at " << player().currentTime();
            // The picture catches up with the position a little later.
            const int expectedFrame = static_cast<int>(std::lround(target * 30));
            ASSERT_TRUE(waitUntil([&] {
                const auto index = shown.isValid() ? frameIndexShown(shown) : std::nullopt;
                return index && std::abs(*index - expectedFrame) <= 1;
            })) << "frame shown: "
                << (shown.isValid() ? frameIndexShown(shown).value_or(-1) : -1);
            // A tick later the observer reports what the player says, still the target.
            QTest::qWait(100);
            EXPECT_NEAR(model().playhead(), target, frameSeconds);
        }
    }

    TEST_F(QtMediaPlayerTest, playAndPauseShowInIsPlayingAndTheObserverFallsSilentWhilePaused)
    {
        loadVideo();
        QSignalSpy playhead(&model(), &AppModel::playheadChanged);
        QSignalSpy playing(&model(), &AppModel::isPlayingChanged);

        model().togglePlayback();
        EXPECT_TRUE(model().isPlaying());
        ASSERT_TRUE(waitUntil([&] { return player().isPlaying() && model().playhead() > 0.3; }));
        EXPECT_TRUE(model().isPlaying());
        EXPECT_GT(playhead.count(), 1) << "the observer follows the moving picture";

        model().togglePlayback();
        EXPECT_FALSE(model().isPlaying());
        ASSERT_TRUE(waitUntil([&] { return !player().isPlaying(); }));
        const double pausedAt = player().currentTime();
        EXPECT_GT(pausedAt, 0.3);
        EXPECT_LT(pausedAt, 3.0);

        // Let the last in-flight position arrive, then listen to ten ticks of a standing picture.
        QTest::qWait(200);
        playhead.clear();
        playing.clear();
        QTest::qWait(500);
        EXPECT_EQ(playhead.count(), 0) << "playhead moved to " << model().playhead();
        EXPECT_EQ(playing.count(), 0);
        EXPECT_FALSE(model().isPlaying());
        EXPECT_NEAR(model().playhead(), player().currentTime(), 1e-9);
    }

    TEST_F(QtMediaPlayerTest, playingToTheEndStopsAndTheNextPlayStartsOver)
    {
        loadVideo();
        model().seek(2.6);
        ASSERT_TRUE(waitUntil([&] { return std::abs(player().currentTime() - 2.6) <= frameSeconds; }));

        model().togglePlayback();
        ASSERT_TRUE(waitUntil([&] { return model().playhead() > 2.7; }));
        ASSERT_TRUE(waitUntil([&] { return !model().isPlaying(); })) << "still playing at " << model().playhead();
        EXPECT_GE(model().playhead(), model().duration() - 0.05) << "the player stops at the end, not before";

        model().togglePlayback();
        EXPECT_TRUE(model().isPlaying());
        ASSERT_TRUE(waitUntil([&] { return player().isPlaying(); }));
        ASSERT_TRUE(waitUntil([&] { return model().playhead() > 0.1; }));
        EXPECT_LT(model().playhead(), 2.0) << "playback starts again from the beginning";
        model().togglePlayback();
    }

    // Video frames need a GUI application; the offscreen platform makes one without a display.
    class PlayerEnvironment : public ::testing::Environment {
    public:
        void SetUp() override
        {
            qputenv("QT_QPA_PLATFORM", "offscreen");
            qputenv("QT_MEDIA_BACKEND", "gstreamer");
            static int argc = 1;
            static char name[] = "test_player";
            static char* argv[] = { name, nullptr };
            m_app = std::make_unique<QGuiApplication>(argc, argv);
        }
        void TearDown() override { m_app.reset(); }

    private:
        std::unique_ptr<QGuiApplication> m_app;
    };

    const auto* const environment = ::testing::AddGlobalTestEnvironment(new PlayerEnvironment);

} // namespace
} // namespace cuewright
