#include "ModelTestSupport.h"

#include "core/CaptionFormat.h"

#include <QFile>

using namespace cuewright;
using namespace cuewright::testing;

namespace {

class FilesTest : public ModelTest {
protected:
    QUrl write(const QString& name, const QByteArray& bytes)
    {
        QFile out(dir.filePath(name));
        EXPECT_TRUE(out.open(QIODevice::WriteOnly));
        out.write(bytes);
        return file(name);
    }

    QByteArray read(const QUrl& url)
    {
        QFile in(url.toLocalFile());
        return in.open(QIODevice::ReadOnly) ? in.readAll() : QByteArray();
    }

    void importFile(const QUrl& url)
    {
        dialogs->openAnswers.push_back(url);
        model->importCaptions();
    }

    // A saved project on a video that exists.
    QUrl savedProject()
    {
        write("talk.mov", "not really a movie");
        loadVideoWithCues({ { 1, 2 }, { 3, 4 } });
        dialogs->saveAnswers.push_back(file("talk.vantrelcaption"));
        model->saveProject();
        EXPECT_EQ(model->projectURL(), file("talk.vantrelcaption"));
        return model->projectURL();
    }

    static constexpr char twoCues[]
        = "1\n00:00:01,000 --> 00:00:02,000\nOne\n\n2\n00:00:03,000 --> 00:00:04,500\nTwo\n";
};

TEST_F(FilesTest, importReplacesTheCuesAsOneStep)
{
    loadVideoWithCues({ { 10, 11 } });
    const auto before = model->document();
    importFile(write("one.srt", "1\n00:00:01,000 --> 00:00:02,000\nOnly\n"));
    ASSERT_EQ(model->document().cues.size(), 1u);
    EXPECT_EQ(model->document().cues[0].text, "Only");
    EXPECT_EQ(model->selectedCueID(), model->document().cues[0].id);
    EXPECT_EQ(model->statusMessage(), "Imported 1 captions.");
    EXPECT_EQ(dialogs->opens.back().types, std::vector<FileType> { FileType::plainText });
    model->undo();
    EXPECT_EQ(model->document(), before);
}

TEST_F(FilesTest, aFailedImportKeepsTheCues)
{
    loadVideoWithCues({ { 10, 11 } });
    const auto before = model->document();
    const int steps = model->undoStackCount();

    importFile(write("empty.srt", "no captions here\n"));
    EXPECT_EQ(model->statusMessage(), "No captions were found in the file.");
    importFile(file("missing.srt"));
    EXPECT_NE(model->statusMessage(), "No captions were found in the file.");
    EXPECT_FALSE(model->statusMessage().isEmpty());
    model->importCaptions(); // cancelled
    EXPECT_EQ(model->document(), before);
    EXPECT_EQ(model->undoStackCount(), steps);
}

TEST_F(FilesTest, importCountsCuesBeyondTheVideo)
{
    player->autoDuration = 2.5;
    model->loadVideo(file("short.mov"));
    importFile(write("two.srt", twoCues));
    EXPECT_EQ(model->statusMessage(), "Imported 2 captions.");
    EXPECT_EQ(model->document().cues.size(), 1u);
}

TEST_F(FilesTest, exportWritesTheChosenFormat)
{
    model->exportSidecar(); // empty document: no dialog
    EXPECT_TRUE(dialogs->saves.empty());

    model->addCue(1);
    model->exportSidecar();
    ASSERT_EQ(dialogs->saves.size(), 1u);
    EXPECT_EQ(dialogs->saves[0].proposedName, "Captions.srt");

    model->loadVideo(file("talk.final.mov"));
    importFile(write("two.srt", twoCues));
    model->setExportFormat(CaptionFormat::vtt);
    dialogs->saveAnswers.push_back(file("mine.txt")); // the user's name stands
    model->exportSidecar();
    EXPECT_EQ(dialogs->saves[1].proposedName, "talk.final.vtt");
    EXPECT_EQ(model->statusMessage(), "Exported mine.txt.");
    EXPECT_TRUE(read(file("mine.txt")).startsWith("WEBVTT"));
}

TEST_F(FilesTest, aFailedExportLeavesTheOldFile)
{
    model->addCue(1);
    const auto target = write("old.srt", "old contents");
    QDir(dir.path()).mkdir("old.srt.d");
    // A folder cannot be replaced by a file, whoever runs the test.
    dialogs->saveAnswers.push_back(file("old.srt.d"));
    model->exportSidecar();
    EXPECT_NE(model->statusMessage(), "Caption added.");
    EXPECT_FALSE(model->statusMessage().startsWith("Exported"));
    EXPECT_TRUE(QFileInfo(dir.filePath("old.srt.d")).isDir());
    EXPECT_EQ(read(target), "old contents");
}

TEST_F(FilesTest, aSavedProjectFollowsEveryChange)
{
    const auto project = savedProject();
    EXPECT_EQ(dialogs->saves.back().proposedName, "talk.vantrelcaption");
    EXPECT_EQ(model->statusMessage(), "Project saved.");
    const auto saved = read(project);
    EXPECT_TRUE(saved.contains("talk.mov"));

    clock->advance(1);
    model->updateSelected([](CaptionCue& cue) { cue.text = "Changed"; });
    EXPECT_TRUE(read(project).contains("Changed"));
    model->undo();
    EXPECT_FALSE(read(project).contains("Changed"));

    // Another video: the file keeps its last contents.
    const auto last = read(project);
    model->loadVideo(file("other.mov"));
    model->addCue(1);
    EXPECT_EQ(read(project), last);
    EXPECT_TRUE(model->projectURL().isEmpty());
}

TEST_F(FilesTest, saveProjectNeverDoublesTheExtension)
{
    model->loadVideo(file("talk.mov"));
    model->addCue(1);
    dialogs->saveAnswers.push_back(file("named.VANTRELCAPTION"));
    model->saveProject();
    EXPECT_EQ(model->projectURL(), file("named.vantrelcaption"));
    EXPECT_TRUE(QFileInfo::exists(dir.filePath("named.vantrelcaption")));

    dialogs->saveAnswers.push_back(file("nowhere/named"));
    model->saveProject();
    EXPECT_EQ(model->projectURL(), file("named.vantrelcaption"));
    EXPECT_NE(model->statusMessage(), "Project saved.");
}

TEST_F(FilesTest, aFailedAutomaticSaveKeepsTheStatusLine)
{
    savedProject();
    QFile::remove(dir.filePath("talk.vantrelcaption"));
    QDir(dir.path()).mkdir("talk.vantrelcaption"); // now unwritable as a file
    clock->advance(1);
    model->setCuePosition(cueIDs()[0], 0.5, 0.5);
    EXPECT_EQ(model->statusMessage(), "Caption position updated.");
}

TEST_F(FilesTest, aDamagedProjectLeavesTheOpenWork)
{
    savedProject();
    const auto before = model->document();
    const int steps = model->undoStackCount();
    model->openProject(write("broken.vantrelcaption", "{\"videoPath\": 3"));
    EXPECT_FALSE(model->statusMessage().isEmpty());
    EXPECT_NE(model->statusMessage(), "Project saved.");
    EXPECT_EQ(model->document(), before);
    EXPECT_EQ(model->projectURL(), file("talk.vantrelcaption"));
    EXPECT_EQ(model->undoStackCount(), steps);
}

TEST_F(FilesTest, aMissingVideoCanBeRelinked)
{
    const auto project = savedProject();
    const auto cues = model->document();
    QFile::remove(dir.filePath("talk.mov"));
    model->loadVideo(file("elsewhere.mov"));

    model->openProject(project);
    EXPECT_TRUE(model->videoURL().isEmpty());
    EXPECT_EQ(model->missingVideoPath(), dir.filePath("talk.mov"));
    EXPECT_EQ(model->document(), cues);
    EXPECT_EQ(model->duration(), 4);
    EXPECT_FALSE(model->canExport());
    EXPECT_FALSE(model->canUndo());
    EXPECT_EQ(model->statusMessage(), "Video missing. Choose Relink Video in the Project menu.");

    // Edits work against the cues' length but write nothing.
    const auto saved = read(project);
    model->addCue(100);
    EXPECT_EQ(model->document().cues.back().end, 4);
    EXPECT_EQ(read(project), saved);
    model->undo();

    write("moved.mov", "still not a movie");
    dialogs->openAnswers.push_back(file("moved.mov"));
    model->relinkVideo();
    EXPECT_EQ(dialogs->opens.back().proposedName, "talk.mov");
    EXPECT_EQ(model->videoURL(), file("moved.mov"));
    EXPECT_FALSE(model->missingVideoPath());
    EXPECT_EQ(model->statusMessage(), "Video relinked.");
    EXPECT_TRUE(read(project).contains("moved.mov"));
    EXPECT_EQ(model->document(), cues);
}

TEST_F(FilesTest, droppedAndHandedOverFiles)
{
    const QList<QUrl> textThenVideo { write("notes.txt", "hello"), file("clip.mp4") };
    EXPECT_TRUE(model->loadDroppedVideo(textThenVideo));
    EXPECT_EQ(model->videoURL(), file("clip.mp4"));

    model->addCue(1);
    EXPECT_FALSE(model->loadDroppedVideo({ file("notes.txt") }));
    EXPECT_EQ(model->statusMessage(), "Drop a video file such as MOV, MP4 or M4V.");
    EXPECT_EQ(model->document().cues.size(), 1u);

    model->openExternalURL(QUrl("https://example.com/talk.mov"));
    EXPECT_EQ(model->statusMessage(), "This file is not a Vantrel Cuewright project or supported video.");
    model->openExternalURL(file("next.mov"));
    EXPECT_EQ(model->videoURL(), file("next.mov"));
}

} // namespace
