#include "UiTestSupport.h"

#include "app/ui/CaptionListModel.h"
#include "app/ui/CaptionListView.h"

#include <QLabel>
#include <QListView>
#include <QPushButton>
#include <QScrollBar>
#include <QToolButton>

namespace cuewright::testing {
namespace {

    using CaptionListTest = AppTest;

    constexpr const char* tooLong = "This single line of caption text is far longer than any reader can take in.";

    TEST_F(CaptionListTest, emptyStatesFollowTheVideo)
    {
        CaptionListView* list = content().captionList();
        EXPECT_EQ(list->emptyMessageLabel()->text(), "Add a video to begin.");
        EXPECT_FALSE(list->emptyTranscribeButton()->isVisible());
        EXPECT_FALSE(list->addButton()->isEnabled());
        EXPECT_EQ(list->addButton()->toolTip(), "Add caption at the playhead");

        model().loadVideo(file("talk.mov"));
        EXPECT_EQ(list->emptyMessageLabel()->text(), "Transcribe, import or add one manually.");
        EXPECT_TRUE(list->emptyTranscribeButton()->isVisible());
        EXPECT_TRUE(list->emptyTranscribeButton()->isEnabled());
        EXPECT_TRUE(list->addButton()->isEnabled());

        model().transcribe();
        EXPECT_FALSE(list->emptyTranscribeButton()->isEnabled());
        releaseTranscription->store(true);
        ASSERT_TRUE(waitFor([&] { return !model().isWorking(); }));
        EXPECT_TRUE(list->emptyTranscribeButton()->isEnabled());

        model().addCue(1);
        EXPECT_FALSE(list->emptyMessageLabel()->isVisible());
        EXPECT_TRUE(list->listView()->isVisible());
    }

    TEST_F(CaptionListTest, theIssueButtonCountsCuesAndGoesWithTheLastIssue)
    {
        CaptionListView* list = content().captionList();
        loadVideoWithCues({ { 1, 3, "Fine." } });
        EXPECT_FALSE(list->issueCountButton()->isVisible());

        loadVideoWithCues({ { 1, 3, "Fine." }, { 5, 9, tooLong } });
        ASSERT_TRUE(list->issueCountButton()->isVisible());
        EXPECT_EQ(list->issueCountButton()->text(), "1");
        EXPECT_EQ(list->issueCountButton()->accessibleName(), "1 captions need attention");
        EXPECT_EQ(list->issueCountButton()->toolTip(), "Select the next caption issue");
        EXPECT_TRUE(list->listModel()->index(1).data(CaptionListModel::HasIssueRole).toBool());
        EXPECT_FALSE(list->listModel()->index(0).data(CaptionListModel::HasIssueRole).toBool());

        model().setSelectedCueID(std::nullopt);
        QTest::mouseClick(list->issueCountButton(), Qt::LeftButton);
        EXPECT_EQ(model().selectedCueID(), model().document().cues[1].id);

        model().updateSelected([](CaptionCue& cue) { cue.text = "Short now."; });
        EXPECT_FALSE(list->issueCountButton()->isVisible());
        EXPECT_FALSE(list->listModel()->index(1).data(CaptionListModel::HasIssueRole).toBool());
    }

    TEST_F(CaptionListTest, aClickOnARowSelectsTheCueAndSeeksToItsStart)
    {
        loadVideoWithCues({ { 1, 3, "One" }, { 5, 7, "Two" }, { 9, 11, "Three" } });
        model().setSelectedCueID(std::nullopt);
        QListView* rows = content().captionList()->listView();
        const QRect second = rows->visualRect(rows->model()->index(1, 0));
        ASSERT_TRUE(second.isValid());
        QTest::mouseClick(rows->viewport(), Qt::LeftButton, {}, second.center());
        EXPECT_EQ(model().selectedCueID(), model().document().cues[1].id);
        EXPECT_DOUBLE_EQ(model().playhead(), 5.0);
        ASSERT_FALSE(player->seeks.empty());
        EXPECT_DOUBLE_EQ(player->seeks.back(), 5.0);

        // During playback the click moves the playhead and playing goes on.
        model().togglePlayback();
        QTest::mouseClick(rows->viewport(), Qt::LeftButton, {}, rows->visualRect(rows->model()->index(2, 0)).center());
        EXPECT_DOUBLE_EQ(model().playhead(), 9.0);
        EXPECT_TRUE(player->playing);
    }

    TEST_F(CaptionListTest, rowsMarkTheCueAtThePlayheadAndTheSelection)
    {
        loadVideoWithCues({ { 1, 6, "One" }, { 4, 8, "Overlapping" }, { 9, 11, "Three" } });
        CaptionListModel* rows = content().captionList()->listModel();
        model().seek(5);
        const auto atPlayhead = model().document().cueAt(5);
        ASSERT_TRUE(atPlayhead);
        int active = 0;
        for (int row = 0; row < rows->rowCount(); ++row) {
            const bool isActive = rows->index(row).data(CaptionListModel::ActiveRole).toBool();
            active += isActive;
            if (isActive) {
                EXPECT_EQ(rows->cueIDAt(row), atPlayhead->id);
            }
        }
        EXPECT_EQ(active, 1) << "only the cue that cueAt gives has the green dot";

        model().setSelectedCueID(atPlayhead->id);
        const int row = *rows->rowOf(atPlayhead->id);
        EXPECT_TRUE(rows->index(row).data(CaptionListModel::SelectedRole).toBool());
        EXPECT_TRUE(rows->index(row).data(CaptionListModel::ActiveRole).toBool());
        EXPECT_EQ(rows->index(row).data(CaptionListModel::TimesRole).toString(),
            QString("0:0%1  \u2013  0:0%2").arg(int(atPlayhead->start)).arg(int(atPlayhead->end)));
    }

    TEST_F(CaptionListTest, theListKeepsItsScrollPositionWhenTheSelectionMoves)
    {
        model().loadVideo(file("talk.mov"));
        for (int i = 0; i < 40; ++i) {
            model().addCue(i * 1.4);
            clock->advance(1);
        }
        QListView* rows = content().captionList()->listView();
        QCoreApplication::processEvents();
        rows->verticalScrollBar()->setValue(rows->verticalScrollBar()->maximum() / 2);
        const int scrolled = rows->verticalScrollBar()->value();
        ASSERT_GT(scrolled, 0);
        model().setSelectedCueID(model().document().cues[0].id);
        model().seek(50);
        model().updateSelected([](CaptionCue& cue) { cue.text = "Edited"; });
        EXPECT_EQ(rows->verticalScrollBar()->value(), scrolled);
    }

} // namespace
} // namespace cuewright::testing
