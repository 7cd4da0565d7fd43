#pragma once

#include "app/ui/ContentView.h"
#include "app/ui/CuewrightApp.h"
#include "app/ui/EditorWindow.h"
#include "model/ModelTestSupport.h"

#include <QTest>

#include <atomic>
#include <chrono>
#include <thread>

namespace cuewright::testing {

// The whole application on a fake player and fake dialogs, its window shown and active.
class AppTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        auto fakePlayer = std::make_unique<FakePlayer>();
        auto fakeDialogs = std::make_unique<FakeDialogs>();
        player = fakePlayer.get();
        dialogs = fakeDialogs.get();
        clock = std::make_shared<ManualClock>(1000.0);
        CuewrightApp::Options options;
        options.seams.player = std::move(fakePlayer);
        options.seams.dialogs = std::move(fakeDialogs);
        options.seams.clock = clock;
        options.seams.services.supportedLanguageIdentifiers = [] { return QStringList { "en-US", "de-DE" }; };
        options.seams.services.currentLocaleIdentifier = [] { return QString("en-US"); };
        // Transcription runs until the test releases it, then finds no words.
        options.seams.services.transcribe = [release = releaseTranscription](const QString&, const QString&) {
            for (int i = 0; i < 500 && !release->load(); ++i)
                std::this_thread::sleep_for(std::chrono::milliseconds(10));
            return std::vector<RecognizedWord> {};
        };
        options.openLink = [this](const QUrl& url) { openedLinks.push_back(url); };
        app = std::make_unique<CuewrightApp>(std::move(options));
        app->window().show();
        app->window().activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(&app->window()));
    }

    void TearDown() override
    {
        releaseTranscription->store(true);
        app.reset();
    }

    AppModel& model() const { return app->model(); }
    ContentView& content() const { return *app->window().content(); }
    QUrl file(const QString& name) const { return QUrl::fromLocalFile(dir.filePath(name)); }

    // A 60-second video, then one cue per (start, end, text), the last one selected.
    void loadVideoWithCues(std::initializer_list<std::tuple<double, double, const char*>> cues)
    {
        model().loadVideo(file("talk.mov"));
        for (const auto& [start, end, text] : cues) {
            model().addCue(start);
            const Uuid id = *model().selectedCueID();
            model().setCueTiming(id, start, end);
            model().updateSelected([text = std::string(text)](CaptionCue& cue) { cue.text = text; });
            clock->advance(1);
        }
    }

    QTemporaryDir dir;
    std::shared_ptr<ManualClock> clock;
    FakePlayer* player = nullptr;
    FakeDialogs* dialogs = nullptr;
    std::vector<QUrl> openedLinks;
    std::shared_ptr<std::atomic<bool>> releaseTranscription = std::make_shared<std::atomic<bool>>(false);
    std::unique_ptr<CuewrightApp> app;
};

} // namespace cuewright::testing
