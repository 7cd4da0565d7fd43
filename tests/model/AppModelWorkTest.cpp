#include "ModelTestSupport.h"

#include <QSignalSpy>

#include <atomic>
#include <stdexcept>

using namespace cuewright;
using namespace cuewright::testing;

namespace {

class WorkTest : public ModelTest {
protected:
    void SetUp() override
    {
        ModelServices services;
        services.transcribe = [this](const QString& path, const QString& language) {
            transcribedPath = path;
            transcribedLanguage = language;
            while (holdTranscription.load())
                QThread::msleep(1);
            if (failTranscription)
                throw std::runtime_error("Speech recognition is not available for this language.");
            return words;
        };
        services.cuesFromWords = [](const std::vector<RecognizedWord>& words, int maximumWords, double) {
            EXPECT_EQ(maximumWords, 8);
            std::vector<CaptionCue> cues;
            for (const auto& word : words)
                cues.emplace_back(Uuid::generate(), word.start, word.start + word.duration, word.text);
            return cues;
        };
        services.exportBurnedVideo = [this](const QString& source, const QString& destination,
                                         const CaptionDocument& document, const CaptionStyle&) {
            exportedSource = source;
            exportedDestination = destination;
            while (holdExport.load())
                QThread::msleep(1);
            exportedDocument = document;
            if (failExport)
                throw std::runtime_error("The video could not be written.");
        };
        makeModel(services);
    }

    bool finished()
    {
        return waitFor([&] { return !model->isWorking(); });
    }

    std::vector<RecognizedWord> words { { "Hello", 1.0, 0.5 }, { "world", 2.0, 0.5 } };
    bool failTranscription = false;
    bool failExport = false;
    std::atomic<bool> holdTranscription = false;
    std::atomic<bool> holdExport = false;
    QString transcribedPath;
    QString transcribedLanguage;
    QString exportedSource;
    QString exportedDestination;
    CaptionDocument exportedDocument;
};

TEST_F(WorkTest, transcriptionIsOneUndoStep)
{
    model->transcribe(); // no video: nothing
    EXPECT_FALSE(model->isWorking());
    model->loadVideo(file("talk.mov"));
    model->addCue(10);
    const auto before = model->document();
    clock->advance(1);

    QSignalSpy progress(model.get(), &AppModel::progressChanged);
    model->transcribe();
    EXPECT_TRUE(model->isWorking());
    EXPECT_FALSE(model->canExport());
    EXPECT_EQ(model->progress(), 0.15);
    EXPECT_EQ(model->statusMessage(), "Preparing audio for local transcription\u2026");
    model->transcribe(); // already working: nothing
    ASSERT_TRUE(finished());

    EXPECT_EQ(transcribedPath, dir.filePath("talk.mov"));
    EXPECT_EQ(transcribedLanguage, "en-US");
    ASSERT_EQ(model->document().cues.size(), 2u);
    EXPECT_EQ(model->selectedCueID(), model->document().cues[0].id);
    EXPECT_EQ(model->statusMessage(), "Created 2 captions locally on this Mac.");
    EXPECT_EQ(model->progress(), 1.0);
    EXPECT_TRUE(model->canExport());
    EXPECT_EQ(progress.count(), 4); // 0.15, 0.35, 0.9, 1.0

    const auto transcribed = model->document();
    model->undo();
    EXPECT_EQ(model->document(), before);
    model->redo();
    EXPECT_EQ(model->document(), transcribed);
}

TEST_F(WorkTest, aFailedTranscriptionKeepsTheDocument)
{
    model->loadVideo(file("talk.mov"));
    model->addCue(10);
    const auto before = model->document();
    failTranscription = true;
    model->transcribe();
    ASSERT_TRUE(finished());
    EXPECT_EQ(model->document(), before);
    EXPECT_EQ(model->progress(), 1.0);
    EXPECT_EQ(model->statusMessage(), "Speech recognition is not available for this language.");
    EXPECT_EQ(model->undoStackCount(), 1);
}

TEST_F(WorkTest, aResultForReplacedWorkIsDropped)
{
    model->loadVideo(file("talk.mov"));
    holdTranscription = true;
    model->transcribe();
    ASSERT_TRUE(waitFor([&] { return !transcribedPath.isEmpty(); }));
    model->loadVideo(file("other.mov"));
    holdTranscription = false;
    ASSERT_TRUE(finished());
    EXPECT_TRUE(model->document().cues.empty());
    EXPECT_FALSE(model->canUndo());
    EXPECT_EQ(model->statusMessage(), "Ready to caption other.mov.");
}

TEST_F(WorkTest, exportRendersACopyTakenAtTheStart)
{
    model->loadVideo(file("talk.mov"));
    model->addCue(1);
    const auto atStart = model->document();

    model->exportBurnedVideo(); // cancelled
    ASSERT_EQ(dialogs->saves.size(), 1u);
    EXPECT_EQ(dialogs->saves[0].proposedName, "talk-captioned.mp4");
    EXPECT_EQ(dialogs->saves[0].types, std::vector<FileType> { FileType::mpeg4Movie });
    EXPECT_FALSE(model->isWorking());
    EXPECT_EQ(model->statusMessage(), "Caption added.");

    dialogs->saveAnswers.push_back(file("out.mp4"));
    holdExport = true;
    model->exportBurnedVideo();
    EXPECT_EQ(model->progress(), 0.1);
    EXPECT_EQ(model->statusMessage(), "Rendering captions into the video\u2026");
    model->exportBurnedVideo(); // working: no dialog
    EXPECT_EQ(dialogs->saves.size(), 2u);
    clock->advance(1);
    model->addCue(20); // editing goes on meanwhile
    holdExport = false;
    ASSERT_TRUE(finished());
    EXPECT_EQ(exportedDocument, atStart);
    EXPECT_EQ(model->document().cues.size(), 2u);
    EXPECT_EQ(exportedSource, dir.filePath("talk.mov"));
    EXPECT_EQ(exportedDestination, dir.filePath("out.mp4"));
    EXPECT_EQ(model->statusMessage(), "Exported out.mp4.");
    EXPECT_EQ(model->progress(), 1.0);
}

TEST_F(WorkTest, aFailedExportKeepsItsProgress)
{
    model->loadVideo(file("talk.mov"));
    model->addCue(1);
    failExport = true;
    dialogs->saveAnswers.push_back(file("out.mp4"));
    model->exportBurnedVideo();
    ASSERT_TRUE(finished());
    EXPECT_EQ(model->progress(), 0.1);
    EXPECT_EQ(model->statusMessage(), "The video could not be written.");
}

TEST(LanguageChoice, prefersTheLocaleThenItsLanguageThenEnglish)
{
    const QStringList supported { "de-AT", "en-GB", "de-DE", "fr-FR" };
    EXPECT_EQ(AppModel::chooseLanguageIdentifier(supported, "de-DE"), "de-DE");
    EXPECT_EQ(AppModel::chooseLanguageIdentifier(supported, "de-CH"), "de-AT");
    EXPECT_EQ(AppModel::chooseLanguageIdentifier(supported, "en_US"), "en-GB");
    EXPECT_EQ(AppModel::chooseLanguageIdentifier(supported, "ja-JP"), "en-US");
    EXPECT_EQ(AppModel::chooseLanguageIdentifier({}, "de-DE"), "en-US");
}

} // namespace
